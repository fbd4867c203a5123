#pragma once

#include <System/XercesInitializationMutex.h>

#include <memory>
#include <string>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace Orvant::Support {

/// Validates documents with one schema.
class SchemaValidator {
public:
    explicit SchemaValidator(const std::string& schema) {
        m_parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        m_parser.setDoNamespaces(true);
        m_parser.setDoSchema(true);
        m_parser.setValidationSchemaFullChecking(true);
        m_parser.setErrorHandler(&m_errors);
        m_parser.useCachedGrammarInParse(true);
        const auto source = sourceOf(schema);
        m_isSchema =
            m_parser.loadGrammar(*source, xercesc::Grammar::SchemaGrammarType, true) != nullptr &&
            m_errors.text.empty();
    }

    /// @return whether the schema is one
    bool isSchema() const { return m_isSchema; }
    /// @return whether a document is valid
    bool accepts(const std::string& document) {
        m_errors.text.clear();
        m_parser.parse(*sourceOf(document));
        return m_errors.text.empty();
    }
    /// @return what is wrong with the schema, or with the last document
    const std::string& errors() const { return m_errors.text; }

private:
    struct Initialisation {
        Initialisation() {
            const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
            xercesc::XMLPlatformUtils::Initialize();
        }
        ~Initialisation() {
            const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
            xercesc::XMLPlatformUtils::Terminate();
        }
        Initialisation(const Initialisation&) = delete;
        Initialisation& operator=(const Initialisation&) = delete;
    };
    struct Errors : xercesc::HandlerBase {
        void warning(const xercesc::SAXParseException& e) override { add(e); }
        void error(const xercesc::SAXParseException& e) override { add(e); }
        void fatalError(const xercesc::SAXParseException& e) override { add(e); }
        void add(const xercesc::SAXParseException& e) {
            for (const XMLCh* unit = e.getMessage(); *unit != 0; ++unit)
                text += static_cast<char>(*unit);
            text += '\n';
        }
        std::string text;
    };

    static std::unique_ptr<xercesc::InputSource> sourceOf(const std::string& text) {
        return std::make_unique<xercesc::MemBufInputSource>(
            reinterpret_cast<const XMLByte*>(text.data()), text.size(), u"memory");
    }

    Initialisation m_initialisation;
    Errors m_errors;
    xercesc::XercesDOMParser m_parser;
    bool m_isSchema = false;
};

} // namespace Orvant::Support
