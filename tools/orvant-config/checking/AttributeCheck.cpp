#include "checking/AttributeCheck.h"

#include "FileParsing.h"
#include "common/NearestName.h"

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <string>
#include <utility>

#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax2/Attributes.hpp>

namespace Orvant::Tool {

namespace {

std::string toUtf8(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

class AttributeHandler : public xercesc::DefaultHandler {
public:
    explicit AttributeHandler(const FileName& file) : m_file(file) {}

    std::vector<Finding> take() { return std::move(m_findings); }

    void setDocumentLocator(const xercesc::Locator* locator) override { m_locator = locator; }
    void startElement(const XMLCh* /*uri*/, const XMLCh* /*localName*/, const XMLCh* name,
                      const xercesc::Attributes& attributes) override {
        const std::string key = toUtf8(attributes.getValue(u"key"));
        const std::string step = toUtf8(name) + (key.empty() ? "" : '[' + key + ']');
        const bool isRoot = m_paths.empty();
        m_paths.push_back(isRoot                   ? ""
                          : m_paths.back().empty() ? step
                                                   : m_paths.back() + '/' + step);
        const std::vector<std::string> known = isRoot
                                                   ? std::vector<std::string>{"version", "editable"}
                                                   : std::vector<std::string>{"editable", "key"};
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i)
            check(toUtf8(attributes.getQName(i)), known);
    }
    void endElement(const XMLCh* /*uri*/, const XMLCh* /*localName*/,
                    const XMLCh* /*name*/) override {
        m_paths.pop_back();
    }

private:
    void check(const std::string& name, const std::vector<std::string>& known) {
        const bool isOfOthers = name.find(':') != std::string::npos || name == "xmlns";
        if (isOfOthers || std::ranges::find(known, name) != known.end())
            return;
        const std::string meant = nearestName(name, known);
        m_findings.push_back({meant.empty() ? Finding::Warning : Finding::Error, "Attribute",
                              m_file, static_cast<unsigned int>(m_locator->getLineNumber()), 0,
                              m_paths.back(), "the attribute \"" + name + "\" means nothing",
                              meant});
    }

    FileName m_file;
    const xercesc::Locator* m_locator = nullptr;
    std::vector<std::string> m_paths; ///< of the open elements
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> findMeaninglessAttributes(const FileName& file) {
    AttributeHandler handler(file);
    return parseFile(file, handler) ? handler.take() : std::vector<Finding>();
}

} // namespace Orvant::Tool
