#pragma once

#include <ConfigurationFramework/source/SourceDocument.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>

#include <cstddef>
#include <utility>
#include <vector>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RefVectorOf.hpp>

namespace Orvant {

/// Fills a SourceDocument instead of a DOM. The scanner tells only where a tag ends; but whatever
/// comes before a tag ends where the tag begins, and the scanner tells that, too.
class SourceParser : public ConfinedParser {
public:
    explicit SourceParser(ParserConfinement& confinement);

    /// @return result of the last parse
    SourceDocument take() { return std::move(m_document); }

    void resetDocument() override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void doctypeDecl(const xercesc::DTDElementDecl& declaration, const XMLCh* publicId,
                     const XMLCh* systemId, bool hasInternalSubset,
                     bool hasExternalSubset) override;
    void endIntSubset() override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    struct Place {
        std::size_t offset = 0;
        unsigned int line = 1;
        unsigned int column = 1;
    };

    void add(SourceDocument::Kind kind);
    void addAttributes(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                       XMLSize_t attributeCount);
    void endNode(SourceDocument::Index node);
    void endToken();
    void moveOn();
    SourceDocument::Namespace nameSpaceOf(unsigned int uri);

    SourceDocument m_document;
    std::vector<SourceDocument::Index> m_open;
    std::vector<std::pair<unsigned int, SourceDocument::Namespace>> m_nameSpaces; ///< by number
    std::size_t m_references = 0;                                                 ///< that are open
    Place m_last;               ///< where the last thing in the document ended
    std::size_t m_tokenEnd = 0; ///< where the last one that is no text ended
    unsigned int m_breaks = 0;  ///< lines that ended since then
    bool m_hasText = false;     ///< whether there was more than white space since then
};

} // namespace Orvant
