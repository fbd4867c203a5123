#include <GeneralServices/XmlErrorHandler.h>

namespace Orvant {

void XmlErrorHandler::warning(const xercesc::SAXParseException&) {}

void XmlErrorHandler::error(const xercesc::SAXParseException&) {
    m_sawErrors = true;
}

void XmlErrorHandler::fatalError(const xercesc::SAXParseException&) {
    m_sawErrors = true;
}

void XmlErrorHandler::resetErrors() {
    m_sawErrors = false;
}

} // namespace Orvant
