#pragma once

#include <cstddef>

#include <xercesc/parsers/XercesDOMParser.hpp>

namespace Orvant {

/// The parser of a document that is edited: refuses elements that are nested too deeply within an
/// entity reference, which Xerces walks by recursion, so that the stack would overflow.
class EditingParser : public xercesc::XercesDOMParser {
public:
    using XercesDOMParser::XercesDOMParser;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;

private:
    void goDeeper();

    std::size_t m_openReferences = 0;
    std::size_t m_depth = 0; ///< of references and of elements within them
};

} // namespace Orvant
