#pragma once

#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <cstddef>
#include <string_view>
#include <unordered_set>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RefVectorOf.hpp>

namespace Orvant {

/// The limits of a schema file. Real schemas are far below them. Without them, a file of a few
/// kilobytes could keep the application busy for hours or fill its memory.
struct SchemaLimits {
    static constexpr std::size_t attributes = 100; ///< of one element, or declared for one
    static constexpr std::size_t depth = 1'000;    ///< of elements
    /// Different tags, and attribute names: Xerces searches them one by one.
    static constexpr std::size_t names = 10'000;
    /// Characters of a document whose references are expanded. One without references may be
    /// longer.
    static constexpr std::size_t expandedSize = 10'000'000;
};

/// Measures a document instead of building one. It is to do so without namespaces: Xerces resolves
/// the prefixes of an element in quadratic time, before it reports the element. What exceeds a
/// limit of SchemaLimits is a parse error; an error handler must be there to take it.
class MeasuringParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    void refuseIf(bool isTooLarge, const XMLCh* limit);
    void add(const XMLCh* text, std::string_view markup = "");
    void add(std::size_t length);

    std::unordered_set<XmlString> m_attributeNames;
    std::size_t m_depth = 0;
    std::size_t m_size = 0; ///< without references, never more than the document's
};

} // namespace Orvant
