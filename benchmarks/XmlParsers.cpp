#include "XmlParsers.h"

#include <libxml/parser.h>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

namespace Orvant::Benchmarks {

namespace {

template <typename Parser>
std::shared_ptr<void> parseWithXerces(const std::string& file) {
    auto parser = std::make_shared<Parser>();
    parser->parse(file.c_str());
    return parser->getErrorCount() == 0 ? parser : nullptr;
}

} // namespace

std::shared_ptr<void> parseWithXercesDom(const std::string& file) {
    return parseWithXerces<xercesc::XercesDOMParser>(file);
}

std::shared_ptr<void> scanWithXercesSax(const std::string& file) {
    return parseWithXerces<xercesc::SAXParser>(file);
}

std::shared_ptr<void> parseWithLibxml2(const std::string& file) {
    return {xmlReadFile(file.c_str(), nullptr, XML_PARSE_NONET), xmlFreeDoc};
}

} // namespace Orvant::Benchmarks
