#include "SettingText.h"

namespace Orvant::Tool {

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
    if (!value.isList())
        return valueText(value, value.defaultTexts.front());
    std::string text;
    for (const std::string& item : value.defaultTexts)
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
