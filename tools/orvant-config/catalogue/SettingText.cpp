#include "catalogue/SettingText.h"

#include <charconv>
#include <system_error>

namespace Orvant::Tool {

namespace {

/// Whether a text is a number, and nothing else.
bool isWholly(const std::string& text, int& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

} // namespace

const char* layerText(ConfigurationOrigin::Layer layer) {
    switch (layer) {
    case ConfigurationOrigin::System:
        return "system";
    case ConfigurationOrigin::User:
        return "user";
    case ConfigurationOrigin::Default:
        break;
    }
    return "default";
}

std::string shownText(const ConfigurationValueDescription* value, const std::string& text) {
    return value == nullptr ? '"' + text + '"' : valueText(*value, text);
}

std::string typeText(ConfigurationValueBase::ValueType type) {
    switch (type) {
    case ConfigurationValueBase::BoolValue:
        return "bool";
    case ConfigurationValueBase::IntValue:
        return "int";
    case ConfigurationValueBase::UnsignedIntValue:
        return "unsigned";
    case ConfigurationValueBase::DoubleValue:
        return "double";
    case ConfigurationValueBase::FloatValue:
        return "float";
    case ConfigurationValueBase::StringVectorValue:
        return "list";
    default:
        return "string";
    }
}

std::string defaultText(const ConfigurationValueDescription& value) {
    return valueText(value, value.defaultTexts);
}

std::vector<std::string> readableTexts(const ConfigurationValueDescription& value,
                                       std::vector<std::string> texts) {
    int number = 0; // files have unsigned numbers as signed ones
    if (value.type == ConfigurationValueBase::UnsignedIntValue && texts.front().starts_with('-') &&
        isWholly(texts.front(), number))
        texts.front() = std::to_string(static_cast<unsigned int>(number));
    return texts;
}

std::string valueText(const ConfigurationValueDescription& value,
                      const std::vector<std::string>& texts) {
    if (!value.isList())
        return valueText(value, readableTexts(value, texts).front());
    std::string text;
    for (const std::string& item : texts)
        text += (text.empty() ? "\"" : ", \"") + item + '"';
    return valueText(value, text);
}

std::string valueText(const ConfigurationValueDescription& value, const std::string& text) {
    if (value.type == ConfigurationValueBase::StringValue)
        return '"' + text + '"';
    return value.isList() && text.empty() ? "(empty)" : text;
}

std::string declarationText(const ConfigurationValueDescription& value) {
    std::string text = typeText(value.type) + ", " + defaultText(value) + " unless set";
    const std::string inFile = value.isList() ? "" : value.fileTextOf(value.defaultTexts.front());
    if (!value.isList() && inFile != value.defaultTexts.front())
        text += " (files say " + inFile + ')';
    const std::string rule = value.constraint.describe();
    return rule.empty() ? text : text + ", " + rule;
}

} // namespace Orvant::Tool
