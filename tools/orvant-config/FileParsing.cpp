#include "FileParsing.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant::Tool {

namespace {

/// Xerces, as long as this lives.
class XercesUse {
public:
    XercesUse() { xercesc::XMLPlatformUtils::Initialize(); }
    XercesUse(const XercesUse&) = delete;
    XercesUse& operator=(const XercesUse&) = delete;
    ~XercesUse() { xercesc::XMLPlatformUtils::Terminate(); }
};

std::string contentOf(const FileName& file) {
    std::ifstream stream(file.toString(), std::ios::binary);
    return {std::istreambuf_iterator(stream), {}};
}

void parse(const std::string& content, xercesc::DefaultHandler& handler) {
    using xercesc::XMLUni;
    const std::unique_ptr<xercesc::SAX2XMLReader> parser(
        xercesc::XMLReaderFactory::createXMLReader());
    parser->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    parser->setFeature(XMLUni::fgSAX2CoreValidation, false);
    parser->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    parser->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
    parser->setContentHandler(&handler);
    parser->setErrorHandler(&handler);
    parser->parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(content.data()),
                                             content.size(), u"file"));
}

} // namespace

bool parseFile(const FileName& file, xercesc::DefaultHandler& handler) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file.toPath(), error)) // a pipe could block for ever
        return false;
    const XercesUse use;
    try {
        parse(contentOf(file), handler);
        return true;
    } catch (const xercesc::SAXException&) {
        return false;
    } catch (const xercesc::XMLException&) {
        return false;
    }
}

} // namespace Orvant::Tool
