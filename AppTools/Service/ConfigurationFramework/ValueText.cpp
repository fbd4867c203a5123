#include <ConfigurationFramework/ValueText.h>

#include <ConfigurationFramework/ConfigurationDescription.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/xml/NumberText.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <type_traits>

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
std::vector<std::string> formatAll(const std::vector<std::string>& values) {
    std::vector<std::string> items;
    items.reserve(values.size());
    for (const std::string& value : values)
        items.push_back(throughDocument(value));
    return items;
}
std::string format(const std::vector<std::string>& values) {
    return joined(formatAll(values));
}

/// @param otherwise what to return for a class that the library does not have
template <typename T, typename Result, typename Visit>
Result visitAs(const ConfigurationValueBase& value, const Result& otherwise, Visit visit) {
    const auto* const typed = dynamic_cast<const ConfigurationValue<T>*>(&value);
    return typed == nullptr ? otherwise : visit(*typed);
}

/// Calls back with a value as what it is.
/// @return what the callback returns, or else `otherwise`
template <typename Result, typename Visit>
Result visitTyped(const ConfigurationValueBase& value, const Result& otherwise, Visit visit) {
    switch (value.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        return visitAs<bool>(value, otherwise, visit);
    case ConfigurationValueBase::IntValue:
        return visitAs<int>(value, otherwise, visit);
    case ConfigurationValueBase::UnsignedIntValue:
        return visitAs<unsigned int>(value, otherwise, visit);
    case ConfigurationValueBase::DoubleValue:
        return visitAs<double>(value, otherwise, visit);
    case ConfigurationValueBase::FloatValue:
        return visitAs<float>(value, otherwise, visit);
    case ConfigurationValueBase::StringValue:
        return visitAs<std::string>(value, otherwise, visit);
    case ConfigurationValueBase::StringVectorValue:
        return visitAs<std::vector<std::string>>(value, otherwise, visit);
    }
    return otherwise;
}

template <typename Number>
std::string withAllDigits(Number number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
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

std::vector<std::string> itemsIn(DocumentTree& tree, DocumentTree::Element list) {
    std::vector<std::string> items;
    tree.forEachBelow(list, "item", [&](DocumentTree::Element item) {
        items.emplace_back(tree.text(item).value_or(""));
        return true;
    });
    return items;
}

/// @param text that converts to the type
template <typename T>
T parse(std::string_view text) {
    if constexpr (std::is_same_v<T, bool>) {
        return text == "true";
    } else if constexpr (std::is_same_v<T, std::string>) {
        return std::string(text);
    } else {
        std::conditional_t<std::is_floating_point_v<T>, double, int> number{};
        extractNumber(text, number);
        return static_cast<T>(number);
    }
}

/// Whether the rule of a value allows what converts to it.
bool allows(const ConfigurationValueBase& value, DocumentTree& tree,
            DocumentTree::Element element) {
    return visitTyped(value, true, [&]<typename T>(const ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, std::vector<std::string>>)
            return typed.isAllowed(itemsIn(tree, element));
        else
            return typed.isAllowed(parse<T>(tree.text(element).value_or("")));
    });
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

/// What a text should have been.
std::string expected(ConfigurationValueBase::ValueType type) {
    switch (type) {
    case ConfigurationValueBase::BoolValue:
        return "neither true nor false";
    case ConfigurationValueBase::DoubleValue:
    case ConfigurationValueBase::FloatValue:
        return "not a number";
    default:
        return "not an integer";
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
    return visitTyped(value, std::string(),
                      [](const auto& typed) { return format(typed.getValue()); });
}

std::vector<std::string> textsOf(const ConfigurationValueBase& value) {
    return visitTyped(value, std::vector<std::string>(),
                      []<typename T>(const ConfigurationValue<T>& typed) {
                          if constexpr (std::is_same_v<T, std::vector<std::string>>)
                              return formatAll(typed.getValue());
                          else
                              return std::vector{format(typed.getValue())};
                      });
}

std::string defaultTextOf(const ConfigurationValueBase& value) {
    return visitTyped(value, std::string(),
                      [](const auto& typed) { return format(typed.getDefaultValue()); });
}

std::string exactText(bool value) {
    return format(value);
}
std::string exactText(int value) {
    return withAllDigits(value);
}
std::string exactText(unsigned int value) {
    return withAllDigits(value);
}
std::string exactText(float value) {
    return withAllDigits(value);
}
std::string exactText(double value) {
    return withAllDigits(value);
}
std::string exactText(const std::string& value) {
    return value;
}

std::vector<std::string> exactDefaultTextsOf(const ConfigurationValueBase& value) {
    using Texts = std::vector<std::string>;
    return visitTyped(value, Texts(), []<typename T>(const ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, Texts>)
            return typed.getDefaultValue();
        else
            return Texts{exactText(typed.getDefaultValue())};
    });
}

std::string exactTextOf(const ConfigurationValueBase& value) {
    return visitTyped(value, std::string(), []<typename T>(const ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, std::vector<std::string>>)
            return typed.getValue().empty() ? "(empty)" : joined(typed.getValue());
        else if constexpr (std::is_same_v<T, std::string>)
            return '"' + typed.getValue() + '"';
        else
            return exactText(typed.getValue());
    });
}

std::string textIn(DocumentTree& tree, DocumentTree::Element element, bool isList) {
    return isList ? joined(itemsIn(tree, element)) : std::string(tree.text(element).value_or(""));
}

Conversion convert(LocatedDocument& document, DocumentTree::Element element,
                   const ConfigurationValueBase& value) {
    Conversion conversion = convertSeen(document.tree(), element, value.getValueType());
    if (conversion.succeeded() && !allows(value, document.tree(), element))
        return {Conversion::NotAllowed};
    const bool isList = value.getValueType() == ConfigurationValueBase::StringVectorValue;
    if (conversion.kind == Conversion::Whole && isCut(document, element, isList))
        conversion.kind = Conversion::Partly;
    return conversion;
}

std::string shownText(const std::string& text, const ConfigurationValueBase& value) {
    return value.getValueType() == ConfigurationValueBase::StringValue ? '"' + text + '"'
           : text.empty()                                              ? "(empty)"
                                                                       : text;
}

std::string saidIn(LocatedDocument& document, DocumentTree::Element element, bool isList) {
    if (!isList) {
        const std::string cutOff = document.textCutOff(element);
        return '"' + textIn(document.tree(), element, false) + '"' +
               (cutOff.empty() ? "" : " followed by markup and \"" + cutOff + '"');
    }
    std::string items;
    document.tree().forEachBelow(element, "item", [&](DocumentTree::Element item) {
        items += (items.empty() ? "" : ", ") + saidIn(document, item, false);
        return true;
    });
    return items.empty() ? "(empty)" : items;
}

std::string refusalOf(const Conversion& conversion, const std::string& said,
                      const ConfigurationValueBase& value) {
    switch (conversion.kind) {
    case Conversion::OutOfRange:
        return said + " is too large for the type of the value";
    case Conversion::NotAllowed:
        return said + " is not allowed: it must be " + value.getConstraint().describe();
    case Conversion::NoText:
        return (value.getValueType() == ConfigurationValueBase::StringVectorValue ? "an item"
                                                                                  : "the element") +
               std::string(" has no text at its front");
    default:
        return said + " is " + expected(value.getValueType());
    }
}

std::string problemIn(LocatedDocument& document, DocumentTree::Element element,
                      const ConfigurationValueBase& value) {
    const Conversion conversion = convert(document, element, value);
    const bool isList = value.getValueType() == ConfigurationValueBase::StringVectorValue;
    switch (conversion.kind) {
    case Conversion::Whole:
        return "";
    case Conversion::Partly:
        return saidIn(document, element, isList) + " reads as " +
               shownText(conversion.result, value);
    default:
        return refusalOf(conversion, saidIn(document, element, isList), value);
    }
}

} // namespace Orvant
