#include <ConfigurationFramework/xml/DocumentMeasure.h>

#include <algorithm>
#include <array>
#include <utility>

#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

// Bytes that Xerces-C++ 3.2 takes on a 64-bit machine, as measured, plus what the printer adds.
constexpr std::size_t elementBytes = 208;
constexpr std::size_t levelBytes = 400; // of the scanner's stack
constexpr std::size_t nameBytes = 560;
constexpr std::size_t attributeBytes = 304;
constexpr std::size_t attributeNameBytes = 112;
constexpr std::size_t nodeBytes = 160;

bool isEverywhere(const XMLCh* attributeName) {
    static constexpr std::array<const XMLCh*, 3> s_names = {u"key", u"editable", u"version"};
    return std::ranges::any_of(s_names, [attributeName](const XMLCh* name) {
        return xercesc::XMLString::equals(name, attributeName);
    });
}

void refuseIf(bool isTooMuch) {
    if (isTooMuch)
        ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
}

} // namespace

void DocumentMeasure::startElement(const xercesc::XMLElementDecl& declaration,
                                   const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                   XMLSize_t attributeCount) {
    m_endsWithSpace = false;
    if (++m_depth > m_deepest) {
        m_deepest = m_depth;
        add(levelBytes);
    }
    add(elementBytes);
    compare(hashOf(declaration));
    const std::size_t declared =
        declaration.hasAttDefs() ? declaration.getAttDefList().getAttDefCount() : 0;
    refuseIf(attributeCount > maxAttributes || declared > maxAttributes);
    // A DOM has those with a default twice.
    add(declared * attributeBytes);
    for (XMLSize_t i = 0; i < attributeCount; ++i)
        addAttribute(*attributes.elementAt(i));
}

void DocumentMeasure::addAttribute(const xercesc::XMLAttr& attribute) {
    const std::size_t length = xercesc::XMLString::stringLen(attribute.getValue());
    const std::size_t copies = attribute.getSpecified() ? 1 : 2;
    add(attributeBytes + copies * length * sizeof(XMLCh));
    refuseIf(attribute.getType() == xercesc::XMLAttDef::ID && ++m_ids > maxIds);
    if (isEverywhere(attribute.getName()))
        return;
    const auto [name, isNew] = m_attributeNames.try_emplace(attribute.getName());
    if (isNew) {
        refuseIf(m_attributeNames.size() > maxNames);
        add(attributeNameBytes);
        name->second = addName(attribute.getName());
    }
    compare(name->second);
}

DocumentMeasure::Hash DocumentMeasure::hashOf(const xercesc::XMLElementDecl& declaration) {
    const std::size_t number = declaration.getId();
    if (number >= m_tags.size()) {
        refuseIf(number > maxNames);
        m_tags.resize(number + 1);
    }
    Tag& tag = m_tags[number];
    if (tag.declaration == nullptr) {
        add(nameBytes);
        tag = {&declaration, addName(declaration.getFullName())};
    }
    if (tag.declaration == &declaration)
        return tag.hash;
    const auto [other, isNew] = m_otherTags.try_emplace(&declaration);
    if (isNew) {
        add(nameBytes);
        other->second = addName(declaration.getFullName());
    }
    return other->second;
}

DocumentMeasure::Hash DocumentMeasure::addName(const XMLCh* name) {
    const auto hash = static_cast<Hash>(xercesc::XMLString::hash(name, hashes));
    ++m_namesOfHash[hash];
    return hash;
}

void DocumentMeasure::compare(Hash hash) {
    m_comparisons += m_namesOfHash[hash];
    refuseIf(m_comparisons > m_maxComparisons);
}

void DocumentMeasure::endElement() {
    if (std::exchange(m_endsWithSpace, false))
        add(nodeBytes);
    --m_depth;
}

void DocumentMeasure::addText(const XMLCh* text, XMLSize_t length, bool isCData) {
    // Indentation is no node in an edited document; a blank value is one, as its end tag shows.
    m_endsWithSpace =
        !isCData && std::all_of(text, text + length, [](XMLCh c) { return c <= u' '; });
    if (m_endsWithSpace)
        add(length * sizeof(XMLCh));
    else
        addNode(length);
}

void DocumentMeasure::addComment(const XMLCh* comment) {
    if (std::exchange(m_endsWithSpace, false))
        add(nodeBytes);
    addNode(xercesc::XMLString::stringLen(comment));
}

void DocumentMeasure::addInstruction(const XMLCh* target, const XMLCh* data) {
    m_endsWithSpace = false;
    addNode(xercesc::XMLString::stringLen(target) + xercesc::XMLString::stringLen(data));
}

void DocumentMeasure::addNode(XMLSize_t characters) {
    add(nodeBytes + characters * sizeof(XMLCh));
}

void DocumentMeasure::add(std::size_t bytes) {
    m_bytes += bytes;
    refuseIf(m_bytes > m_maxBytes);
}

} // namespace Orvant
