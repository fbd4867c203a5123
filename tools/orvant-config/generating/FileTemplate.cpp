#include "generating/FileTemplate.h"

#include "catalogue/SettingText.h"
#include "common/Output.h"
#include "generating/ElementContents.h"
#include "generating/Markup.h"

#include <set>
#include <utility>

namespace Orvant::Tool {

namespace {

using Value = ConfigurationValueDescription;

/// Text of an element that may stand in a comment: XML does not allow two hyphens there.
std::string commentable(const std::string& text) {
    std::string result;
    for (const char character : escaped(text)) {
        if (character == '-' && result.ends_with('-'))
            result += "&#45;";
        else
            result += character;
    }
    return result;
}

std::string elementOf(const std::string& tag, const std::string& content) {
    return '<' + tag + '>' + content + "</" + tag + '>';
}

std::string elementOf(const Value& value) {
    std::string content;
    for (const std::string& text : value.defaultTexts) {
        const std::string inFile = commentable(value.fileTextOf(text));
        content += value.isList() ? elementOf("item", inFile) : inFile;
    }
    return elementOf(value.name, content);
}

/// Infinity and what is not a number have no text that a load takes.
bool hasFileText(const Value& value) {
    const bool isFloating = value.type == ConfigurationValueBase::DoubleValue ||
                            value.type == ConfigurationValueBase::FloatValue;
    return !isFloating || value.defaultTexts.front().find('n') == std::string::npos;
}

bool canBeCommentedOut(const Value& value) {
    return hasFileText(value) && value.name.find("--") == std::string::npos;
}

std::string helpOf(const ElementChild& kind) {
    const std::string& name = kind.object->name;
    return "With a key, such as <" + name + " key=\"NAME\">, the element is for that " + name +
           " alone. This one without a key is for each " + name + " that has none of its own.";
}

class TemplateText {
public:
    explicit TemplateText(const ConfigurationCatalogue& catalogue);

    const std::string& text() const { return m_markup.text(); }

private:
    void addAll(const ElementContents& contents);
    void add(const Value& value);
    void add(const ElementChild& child);

    MarkupText m_markup;
};

TemplateText::TemplateText(const ConfigurationCatalogue& catalogue) {
    m_markup.addLine("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    m_markup.addComment("Settings of " + catalogue.getApplication() +
                        ", each with its default. What is taken out of its comment is set; "
                        "editable=\"false\" in its tag locks it.");
    m_markup.open("Configuration", {{"version", catalogue.getWrittenVersion()}});
    addAll(contentsOfRoot(catalogue));
    m_markup.close();
}

/// Values come first: a list is read from the first element of its name, even one in a child.
void TemplateText::addAll(const ElementContents& contents) {
    std::set<std::pair<std::string, std::string>> names; // of several, only the first is read
    for (const auto& [value, isLoaded] : contents.values)
        if (isLoaded && names.insert({value->name, ""}).second)
            add(*value);
    for (const ElementChild& child : contents.children)
        if (child.isLoaded && names.insert({child.object->name, child.key.value_or("")}).second)
            add(child);
}

void TemplateText::add(const Value& value) {
    const std::string& label = value.constraint.label;
    m_markup.addComment(oneLine((label.empty() ? "" : label + ". ") + declarationText(value)));
    if (canBeCommentedOut(value))
        m_markup.addLine("<!--" + elementOf(value) + "-->");
    else if (hasFileText(value))
        m_markup.addComment("It cannot be in a comment because of its name: " + value.name);
    else
        m_markup.addComment("No file can say its default: " + value.name);
}

void TemplateText::add(const ElementChild& child) {
    const ElementContents contents = contentsOf(child);
    if (!contents.hasLoadedValues())
        return;
    if (!child.object->description.empty())
        m_markup.addComment(oneLine(child.object->description));
    if (child.isKind)
        m_markup.addComment(helpOf(child));
    MarkupText::Attributes attributes;
    if (child.key && !child.key->empty())
        attributes.emplace_back("key", *child.key);
    m_markup.open(child.object->name, attributes);
    addAll(contents);
    m_markup.close();
}

} // namespace

std::string makeTemplate(const ConfigurationCatalogue& catalogue) {
    return TemplateText(catalogue).text();
}

} // namespace Orvant::Tool
