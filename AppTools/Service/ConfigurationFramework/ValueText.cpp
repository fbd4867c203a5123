#include <ConfigurationFramework/ValueText.h>

#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/xml/NumberText.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <cmath>
#include <optional>
#include <string_view>

namespace Orvant {

namespace {

std::string format(bool value) {
    return value ? "true" : "false";
}
std::string format(int value) {
    return formatNumber(value);
}
// Files hold it as the signed number with the same bits.
std::string format(unsigned int value) {
    return formatNumber(static_cast<int>(value));
}
std::string format(double value) {
    return formatNumber(value);
}
std::string format(const std::string& value) {
    return throughDocument(value);
}
std::string format(const std::vector<std::string>& values) {
    std::vector<std::string> items;
    items.reserve(values.size());
    for (const std::string& value : values)
        items.push_back(throughDocument(value));
    return joined(items);
}

/// @param get takes one of the two values that a typed value has
template <typename T, typename Get>
std::string formatAs(const ConfigurationValueBase& value, Get get) {
    const auto* const typed = dynamic_cast<const ConfigurationValue<T>*>(&value);
    return typed == nullptr ? std::string() : format(get(*typed));
}

template <typename Get>
std::string formatted(const ConfigurationValueBase& value, Get get) {
    switch (value.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        return formatAs<bool>(value, get);
    case ConfigurationValueBase::IntValue:
        return formatAs<int>(value, get);
    case ConfigurationValueBase::UnsignedIntValue:
        return formatAs<unsigned int>(value, get);
    case ConfigurationValueBase::DoubleValue:
        return formatAs<double>(value, get);
    case ConfigurationValueBase::FloatValue:
        return formatAs<float>(value, get);
    case ConfigurationValueBase::StringValue:
        return formatAs<std::string>(value, get);
    case ConfigurationValueBase::StringVectorValue:
        return formatAs<std::vector<std::string>>(value, get);
    }
    return {};
}

Conversion conversionOf(NumberMatch match, const std::string& result) {
    switch (match) {
    case NumberMatch::OutOfRange:
        return {Conversion::OutOfRange};
    case NumberMatch::Beginning:
        return {Conversion::Partly, result};
    case NumberMatch::Whole:
        return {Conversion::Whole, result};
    case NumberMatch::None:
        break;
    }
    return {Conversion::None};
}

template <typename Number>
Conversion convertNumber(std::string_view text) {
    Number number{};
    const NumberMatch match = matchNumber(text, number);
    return conversionOf(match, formatNumber(number));
}

Conversion convertFloat(std::string_view text) {
    double number = 0.0;
    const NumberMatch match = matchNumber(text, number);
    const bool isTooLarge = std::isinf(static_cast<float>(number)) && !std::isinf(number);
    // Narrowed to infinity.
    return isTooLarge ? Conversion{Conversion::OutOfRange, number > 0 ? "inf" : "-inf"}
                      : conversionOf(match, formatNumber(number));
}

Conversion convertBool(std::string_view text) {
    const bool isBool = text == "true" || text == "false";
    return isBool ? Conversion{Conversion::Whole, std::string(text)} : Conversion{Conversion::None};
}

/// Whether a string is read from an element.
bool holdsString(const DocumentTree& tree, DocumentTree::Element element) {
    return !tree.hasChildren(element) || tree.text(element);
}

/// Whether strings are read from all items of a list.
bool holdsStrings(DocumentTree& tree, DocumentTree::Element list) {
    return tree.forEachBelow(list, "item", [&](auto item) { return holdsString(tree, item); });
}

/// Converts what readers see of an element.
Conversion convertSeen(DocumentTree& tree, DocumentTree::Element element,
                       ConfigurationValueBase::ValueType type) {
    const bool isList = type == ConfigurationValueBase::StringVectorValue;
    if (isList || type == ConfigurationValueBase::StringValue)
        return (isList ? holdsStrings(tree, element) : holdsString(tree, element))
                   ? Conversion{Conversion::Whole, textIn(tree, element, isList)}
                   : Conversion{Conversion::NoText};
    const std::optional<std::string_view> text = tree.text(element);
    if (!text)
        return {Conversion::NoText};
    switch (type) {
    case ConfigurationValueBase::BoolValue:
        return convertBool(*text);
    case ConfigurationValueBase::DoubleValue:
        return convertNumber<double>(*text);
    case ConfigurationValueBase::FloatValue:
        return convertFloat(*text);
    default:
        return convertNumber<int>(*text);
    }
}

/// Whether markup cuts off a part of the text.
bool isCut(LocatedDocument& document, DocumentTree::Element element, bool isList) {
    const auto isWhole = [&](auto part) { return document.textCutOff(part).empty(); };
    return isList ? !document.tree().forEachBelow(element, "item", isWhole) : !isWhole(element);
}

} // namespace

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text += (text.empty() ? "\"" : ", \"") + item + '"';
    return text;
}

std::string textOf(const ConfigurationValueBase& value) {
    return formatted(value, [](const auto& typed) { return typed.getValue(); });
}

std::string defaultTextOf(const ConfigurationValueBase& value) {
    return formatted(value, [](const auto& typed) { return typed.getDefaultValue(); });
}

std::string textIn(DocumentTree& tree, DocumentTree::Element element, bool isList) {
    if (!isList)
        return std::string(tree.text(element).value_or(""));
    std::vector<std::string> items;
    tree.forEachBelow(element, "item", [&](DocumentTree::Element item) {
        items.push_back(textIn(tree, item, false));
        return true;
    });
    return joined(items);
}

Conversion convert(LocatedDocument& document, DocumentTree::Element element,
                   ConfigurationValueBase::ValueType type) {
    Conversion conversion = convertSeen(document.tree(), element, type);
    const bool isList = type == ConfigurationValueBase::StringVectorValue;
    if (conversion.kind == Conversion::Whole && isCut(document, element, isList))
        conversion.kind = Conversion::Partly;
    return conversion;
}

} // namespace Orvant
