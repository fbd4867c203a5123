#pragma once

#include <ConfigurationFramework/xml/XmlText.h>

#include <cstddef>
#include <unordered_set>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RefVectorOf.hpp>

namespace Orvant {

/// Adds up, while a configuration document is parsed, what a DOM of it takes, and ends the parse
/// when that is too much, before the memory is filled. Readers make no DOM, but measure all the
/// same: what is read can then be written, too.
///
/// What an application's settings take is far below: it needs default attributes of a DTD, entities
/// or megabytes of empty elements to get there.
///
/// All operations that add throw xercesc::RuntimeException when a limit is passed; the scanner
/// makes a parse error of it.
class DocumentMeasure {
public:
    /// Most attributes of an element, given or declared. Xerces compares each with the others.
    static constexpr std::size_t maxAttributes = 1'000;
    /// Most tags, and most names of attributes: Xerces searches them one by one.
    static constexpr std::size_t maxNames = 50'000;

    /// @return most bytes that the nodes of a DOM may take
    static constexpr std::size_t maxNodeBytes(std::size_t documentSize) {
        return (std::size_t{52} << 20U) + 12 * documentSize;
    }

    /// @param documentSize bytes of the document to come
    explicit DocumentMeasure(std::size_t documentSize = 0)
        : m_maxBytes(maxNodeBytes(documentSize)) {}

    void startElement(const xercesc::XMLElementDecl& declaration,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount);
    void endElement();
    void addText(const XMLCh* text, XMLSize_t length, bool isCData);
    void addComment(const XMLCh* comment);
    void addInstruction(const XMLCh* target, const XMLCh* data);

private:
    void addAttribute(const xercesc::XMLAttr& attribute);
    void addNode(XMLSize_t characters);
    void add(std::size_t bytes);

    std::size_t m_maxBytes;
    std::size_t m_bytes = 0;
    std::size_t m_depth = 0;
    std::size_t m_deepest = 0;
    std::size_t m_names = 0;                        ///< of elements
    std::unordered_set<XmlString> m_attributeNames; ///< but for those that are everywhere
    bool m_endsWithSpace = false; ///< in the open element, with nothing else after it
};

} // namespace Orvant
