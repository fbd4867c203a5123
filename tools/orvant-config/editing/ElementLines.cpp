#include "editing/ElementLines.h"

#include "FileParsing.h"

#include <GeneralServices/XercesHelperFunctions.h>

#include <utility>
#include <vector>

#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

namespace Orvant::Tool {

namespace {

using Lines = std::unordered_map<std::string, unsigned int>;

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

} // namespace

ElementLines::ElementLines(const FileName& file) {
    Handler handler(m_lines);
    if (!parseFile(file, handler))
        m_lines.clear();
}

unsigned int ElementLines::of(const ConfigurationElementPath& path) const {
    std::string text;
    for (const auto& [name, key] : path)
        text += identify(name, key.value_or(""));
    const auto found = m_lines.find(text);
    return found == m_lines.end() ? 0 : found->second;
}

} // namespace Orvant::Tool
