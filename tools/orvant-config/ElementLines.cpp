#include "ElementLines.h"

#include <GeneralServices/XercesHelperFunctions.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant::Tool {

namespace {

using Lines = std::unordered_map<std::string, unsigned int>;

/// Xerces, as long as this lives.
class XercesUse {
public:
    XercesUse() { xercesc::XMLPlatformUtils::Initialize(); }
    XercesUse(const XercesUse&) = delete;
    XercesUse& operator=(const XercesUse&) = delete;
    ~XercesUse() { xercesc::XMLPlatformUtils::Terminate(); }
};

/// A text that no other step has.
std::string identify(const std::string& name, const std::string& key) {
    return '/' + name + '\n' + std::to_string(key.size()) + '\n' + key;
}

class Handler : public xercesc::DefaultHandler {
public:
    explicit Handler(Lines& lines) : m_lines(lines) {}

    void setDocumentLocator(const xercesc::Locator* locator) override { m_locator = locator; }
    void startElement(const XMLCh* /*uri*/, const XMLCh* /*localName*/, const XMLCh* name,
                      const xercesc::Attributes& attributes) override {
        using Orvant::XercesHelperFunctions;
        const bool isRoot = m_paths.empty();
        std::string path =
            isRoot
                ? ""
                : m_paths.back() +
                      identify(XercesHelperFunctions::xmlChToString(name),
                               XercesHelperFunctions::xmlChToString(attributes.getValue(u"key")));
        m_lines.try_emplace(path, static_cast<unsigned int>(m_locator->getLineNumber()));
        m_paths.push_back(std::move(path));
    }
    void endElement(const XMLCh* /*uri*/, const XMLCh* /*localName*/,
                    const XMLCh* /*name*/) override {
        m_paths.pop_back();
    }

private:
    Lines& m_lines;
    const xercesc::Locator* m_locator = nullptr;
    std::vector<std::string> m_paths;
};

std::string contentOf(const FileName& file) {
    std::ifstream stream(file.toString(), std::ios::binary);
    return {std::istreambuf_iterator(stream), {}};
}

void parse(const std::string& content, Handler& handler) {
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

ElementLines::ElementLines(const FileName& file) {
    const XercesUse use;
    Handler handler(m_lines);
    try {
        parse(contentOf(file), handler);
    } catch (const xercesc::SAXException&) {
        m_lines.clear();
    } catch (const xercesc::XMLException&) {
        m_lines.clear();
    }
}

unsigned int ElementLines::of(const ConfigurationElementPath& path) const {
    std::string text;
    for (const auto& [name, key] : path)
        text += identify(name, key.value_or(""));
    const auto found = m_lines.find(text);
    return found == m_lines.end() ? 0 : found->second;
}

} // namespace Orvant::Tool
