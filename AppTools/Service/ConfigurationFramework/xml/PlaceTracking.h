#pragma once

#include <ConfigurationFramework/xml/FirstError.h>

#include <algorithm>
#include <cstddef>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/RefVectorOf.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

/// A parser that knows where tags begin. The scanner tells only where they end; but whatever comes
/// before a tag ends where the tag begins, and the scanner reports that, too.
/// @tparam Parser a ConfinedParser
template <typename Parser>
class PlaceTracking : public Parser {
public:
    using Parser::Parser;

    /// @return where the last thing in the document ended that was reported; what comes from an
    ///         entity stands at the reference
    const DocumentPlace& last() const { return m_last; }

    void resetDocument() override {
        Parser::resetDocument();
        m_references = 0;
        m_last = {1, 1};
    }
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override {
        Parser::XMLDecl(version, encoding, standalone, actualEncoding);
        mark();
    }
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override {
        Parser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty, isRoot);
        mark();
    }
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override {
        Parser::endElement(declaration, uri, isRoot, prefix);
        mark();
    }
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        Parser::startEntityReference(declaration);
        if (m_references == 0) {
            // The scanner stands after the reference: "&", the name, and ";".
            m_last = here();
            m_last.column -= static_cast<unsigned int>(std::min<XMLSize_t>(
                xercesc::XMLString::stringLen(declaration.getName()) + 2, m_last.column - 1));
        }
        ++m_references;
    }
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        Parser::endEntityReference(declaration);
        --m_references;
        mark();
    }
    void endIntSubset() override {
        Parser::endIntSubset();
        mark();
    }
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override {
        Parser::docCharacters(text, length, isCData);
        mark();
    }
    void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) override {
        Parser::ignorableWhitespace(text, length, isCData);
        mark();
    }
    void docComment(const XMLCh* comment) override {
        Parser::docComment(comment);
        mark();
    }
    void docPI(const XMLCh* target, const XMLCh* data) override {
        Parser::docPI(target, data);
        mark();
    }

private:
    DocumentPlace here() const {
        const xercesc::Locator& locator = *this->getScanner()->getLocator();
        return {static_cast<unsigned int>(locator.getLineNumber()),
                static_cast<unsigned int>(locator.getColumnNumber())};
    }
    void mark() {
        if (m_references == 0)
            m_last = here();
    }

    std::size_t m_references = 0; ///< that are open
    DocumentPlace m_last;
};

} // namespace Orvant
