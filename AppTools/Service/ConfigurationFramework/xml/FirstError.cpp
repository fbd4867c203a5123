#include <ConfigurationFramework/xml/FirstError.h>

#include <ConfigurationFramework/xml/ConfinedParsing.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

namespace {

/// Keeps the first error of a parser, which reports to nobody after this object's end.
class FirstError : public xercesc::ErrorHandler {
public:
    explicit FirstError(ConfinedParser& parser) : m_parser(parser) {
        m_parser.setErrorHandler(this);
    }
    FirstError(const FirstError&) = delete;
    FirstError& operator=(const FirstError&) = delete;
    ~FirstError() override { m_parser.setErrorHandler(nullptr); }

    /// Keeps an error without a place.
    void keep(const XMLCh* message) { keep({}, message); }
    std::optional<DocumentError> take() { return std::move(m_error); }

    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException& exception) override { keep(exception); }
    void fatalError(const xercesc::SAXParseException& exception) override { keep(exception); }
    void resetErrors() override {}

private:
    void keep(const xercesc::SAXParseException& exception) {
        keep({static_cast<unsigned int>(exception.getLineNumber()),
              static_cast<unsigned int>(exception.getColumnNumber())},
             exception.getMessage());
    }
    void keep(const DocumentPlace& place, const XMLCh* message) {
        if (!m_error)
            m_error = {place, XercesHelperFunctions::xmlChToString(message)};
    }

    ConfinedParser& m_parser;
    std::optional<DocumentError> m_error;
};

} // namespace

std::optional<DocumentError> findFirstError(ParserConfinement& confinement, ConfinedParser& parser,
                                            const std::string& bytes) {
    FirstError errors(parser);
    try {
        confinement.parseBytes(parser, bytes);
    } catch (const xercesc::XMLException& e) {
        errors.keep(e.getMessage());
    } catch (const xercesc::DOMException& e) {
        errors.keep(e.getMessage());
    }
    return errors.take();
}

} // namespace Orvant
