#include <ConfigurationFramework/schema/SchemaParser.h>

#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/schema/AnySchema.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XmlErrorHandler.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <optional>
#include <source_location>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

const Logging s_log("SchemaParsing");

/// A DOM parser that keeps elements and their texts, which is all that the model looks at.
class ContentParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void docComment(const XMLCh*) override {}
    void docPI(const XMLCh*, const XMLCh*) override {}
};

/// Measures a document instead of building one. It does so without namespaces: Xerces resolves the
/// prefixes of an element in quadratic time, before it reports the element.
class MeasuringParser : public ContentParser {
public:
    using ContentParser::ContentParser;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int, const XMLCh*,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool) override {
        const std::size_t declared =
            declaration.hasAttDefs() ? declaration.getAttDefList().getAttDefCount() : 0;
        refuseIf(attributeCount > SchemaLimits::attributes || declared > SchemaLimits::attributes);
        refuseIf(++m_depth > SchemaLimits::depth);
        refuseIf(declaration.getId() > SchemaLimits::names);
        if (isEmpty)
            --m_depth;
        add(declaration.getFullName(), "</>");
        for (XMLSize_t i = 0; i < attributeCount; ++i) {
            m_attributeNames.emplace(attributes.elementAt(i)->getName());
            refuseIf(m_attributeNames.size() > SchemaLimits::names);
            add(attributes.elementAt(i)->getName(), " =''");
            add(attributes.elementAt(i)->getValue());
        }
    }
    void endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) override {
        --m_depth;
    }
    void docCharacters(const XMLCh*, XMLSize_t length, bool) override { add(length); }
    void docComment(const XMLCh* comment) override { add(comment); }
    void docPI(const XMLCh*, const XMLCh* data) override { add(data); }

private:
    /// Ends the parse: the scanner turns the exception into a parse error.
    static void refuseIf(bool isTooLarge) {
        if (isTooLarge)
            ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
    }
    void add(const XMLCh* text, std::string_view markup = "") {
        add(xercesc::XMLString::stringLen(text) + markup.size());
    }
    void add(std::size_t length) {
        m_size += length;
        refuseIf(m_size > std::max(documentSize(), SchemaLimits::expandedSize));
    }

    std::unordered_set<XmlString> m_attributeNames;
    std::size_t m_depth = 0;
    std::size_t m_size = 0; ///< without references, never more than the document's
};

/// A parser with its limits and its error handler, for one parse.
template <typename Parser>
class ParserForSchema {
public:
    ParserForSchema() : m_parser(m_confinement.makeParser<Parser>()) {
        m_parser->setErrorHandler(&m_errors);
    }

    void setDoNamespaces(bool doNamespaces) { m_parser->setDoNamespaces(doNamespaces); }

    /// @return the document, which lives as long as this parser; null when the document is not
    /// well-formed or is refused
    xercesc::DOMDocument* parse(const std::string& bytes) {
        m_confinement.parseBytes(*m_parser, bytes);
        return m_errors.getSawErrors() ? nullptr : m_parser->getDocument();
    }

private:
    ParserConfinement m_confinement{ParserConfinement::schemas};
    XmlErrorHandler m_errors;
    std::unique_ptr<Parser> m_parser;
};

bool isWithinLimits(const std::string& bytes) {
    return ParserForSchema<MeasuringParser>().parse(bytes) != nullptr;
}

/// The document of a schema.
class SchemaDocument {
public:
    explicit SchemaDocument(const std::string& bytes)
        : m_session(s_log, std::source_location::current()) {
        if (!isWithinLimits(bytes))
            return;
        m_parser.emplace();
        m_parser->setDoNamespaces(true);
        m_document = m_parser->parse(bytes);
    }

    /// @return null when it is not well-formed or is refused
    xercesc::DOMDocument* get() const { return m_document; }

private:
    XercesSession m_session;
    std::optional<ParserForSchema<ContentParser>> m_parser;
    xercesc::DOMDocument* m_document = nullptr;
};

} // namespace

std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const std::string& bytes,
                                                     SchemaDialect dialect) {
    const SchemaDocument document(bytes);
    if (document.get() == nullptr)
        throw xml_schema::parsing();
    if (dialect == SchemaDialect::Any)
        translateForReader(*document.get());
    return OV_XsdReader::schema_(std::as_const(*document.get()), xml_schema::flags::dont_validate);
}

bool isWellFormed(const FileName& file) {
    const auto bytes = readRegularFile(file);
    return bytes && SchemaDocument(*bytes).get() != nullptr;
}

} // namespace Orvant
