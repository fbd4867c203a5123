#include <ConfigurationFramework/schema/SchemaParser.h>

#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/schema/AnySchema.h>
#include <ConfigurationFramework/schema/ContentParser.h>
#include <ConfigurationFramework/schema/MeasuringParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XmlErrorHandler.h>
#include <Logging/Logging.h>

#include <optional>
#include <source_location>
#include <string>
#include <utility>

namespace Orvant {

namespace {

const Logging s_log("SchemaParsing");

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
