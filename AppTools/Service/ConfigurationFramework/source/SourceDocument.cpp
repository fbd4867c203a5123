#include <ConfigurationFramework/source/SourceDocument.h>

#include <ConfigurationFramework/source/SourceParser.h>
#include <ConfigurationFramework/xml/ByteOrderMark.h>

#include <GeneralServices/XmlErrorHandler.h>

#include <algorithm>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

std::optional<SourceDocument> SourceDocument::parse(const std::string& bytes) {
    XmlErrorHandler errors;
    ParserConfinement confinement(ParserConfinement::schemas);
    const auto parser = confinement.makeParser<SourceParser>();
    parser->setErrorHandler(&errors);
    confinement.parseBytes(*parser, bytes);
    SourceDocument document = parser->take();
    if (errors.getSawErrors() || document.m_root == none)
        return std::nullopt;
    if (const std::size_t mark = bytes.size() - withoutByteOrderMark(bytes).size())
        for (Node& node : document.m_nodes) {
            node.begin += mark;
            node.end += mark;
            node.gap += mark;
        }
    return document;
}

SourceDocument::Attributes SourceDocument::attributes(Index element) const {
    const Node& node = m_nodes[element];
    const Attribute* const first = m_attributes.data() + node.firstAttribute;
    return {first, first + node.attributeCount};
}

const std::string* SourceDocument::attribute(Index element, std::string_view name) const {
    const Attributes all = attributes(element);
    const Attribute* const found = std::ranges::find(all, name, &Attribute::name);
    return found == all.end() ? nullptr : &found->value;
}

std::optional<std::string_view> SourceDocument::nameSpaceOf(std::string_view prefix,
                                                            Index element) const {
    const std::string declaration = prefix.empty() ? "xmlns" : std::string("xmlns:").append(prefix);
    for (Index scope = m_nodes[element].scope; scope != none;) {
        if (const std::string* const uri = attribute(scope, declaration))
            return *uri;
        const Index parent = m_nodes[scope].parent;
        scope = parent == none ? none : m_nodes[parent].scope;
    }
    if (prefix.empty())
        return std::string_view();
    return std::nullopt;
}

} // namespace Orvant
