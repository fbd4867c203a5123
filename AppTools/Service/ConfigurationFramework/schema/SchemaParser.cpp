#include <ConfigurationFramework/schema/SchemaParser.h>

#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XmlErrorHandler.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <source_location>
#include <string>
#include <string_view>

#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

const Logging s_log("SchemaParsing");

/// A DOM parser that keeps nothing but elements and their texts.
class ContentParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void docComment(const XMLCh*) override {}
    void docPI(const XMLCh*, const XMLCh*) override {}
};

/// Makes no document, but measures one. For use without namespaces: what resolves the prefixes of
/// an element takes quadratic time and is through before the element is told.
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
        if (isEmpty)
            --m_depth;
        add(declaration.getFullName(), "</>");
        for (XMLSize_t i = 0; i < attributeCount; ++i) {
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
    static void refuseIf(bool isTooLarge) {
        // The scanner makes a parse error of it.
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

    std::size_t m_depth = 0;
    std::size_t m_size = 0; ///< at most that of the document, as long as there are no references
};

/// A confined parser with what it needs for one parse.
template <typename Parser>
class ParserForSchema {
public:
    ParserForSchema() : m_parser(m_confinement.makeParser<Parser>()) {
        m_parser->setErrorHandler(&m_errors);
    }

    Parser* operator->() { return m_parser.get(); }

    /// @return null when the document is not well-formed or is refused
    const xercesc::DOMDocument* parse(const std::string& bytes) {
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

/// Calls back with the document of a file, with null when there is none to be had.
/// @return what the callback returns
template <typename Callback>
auto withDocument(const FileName& file, const Callback& callback) {
    const XercesSession session(s_log, std::source_location::current());
    const auto bytes = readRegularFile(file);
    if (!bytes || !isWithinLimits(*bytes))
        return callback(nullptr);
    ParserForSchema<ContentParser> parser;
    parser->setDoNamespaces(true);
    return callback(parser.parse(*bytes));
}

} // namespace

std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const FileName& file) {
    return withDocument(file, [](const xercesc::DOMDocument* document) {
        if (document == nullptr)
            throw xml_schema::parsing();
        return OV_XsdReader::schema_(*document, xml_schema::flags::dont_validate);
    });
}

bool isWellFormed(const FileName& file) {
    return withDocument(file,
                        [](const xercesc::DOMDocument* document) { return document != nullptr; });
}

} // namespace Orvant
