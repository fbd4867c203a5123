#include <ConfigurationFramework/ConfigurationDescription.h>

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConstrainedValue.h>
#include <ConfigurationFramework/DescribedObject.h>
#include <ConfigurationFramework/ValueText.h>
#include <ConfigurationFramework/reading/LocatedDocument.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <type_traits>

namespace Orvant {

namespace {

using Description = ConfigurationValueDescription;

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

bool isLoadable(ConfigurationItemBase::Persistence persistence) {
    return persistence == ConfigurationItemBase::LoadAndSave ||
           persistence == ConfigurationItemBase::LoadOnly;
}

/// @return nothing for a text that is not all of a number
template <typename Number>
std::optional<Number> numberIn(const std::string& text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// @throws std::invalid_argument for a text that is not all of a number
template <typename Number>
Number parseNumber(const std::string& text) {
    if (const auto number = numberIn<Number>(text))
        return *number;
    throw std::invalid_argument(quoted(text) + " is not a value of the type");
}

/// The inverse of exactText().
/// @throws std::invalid_argument for a text that is not of the type
template <typename T>
T parse(const std::string& text) {
    if constexpr (std::is_same_v<T, std::string>) {
        return text;
    } else if constexpr (std::is_same_v<T, bool>) {
        if (text != "true" && text != "false")
            throw std::invalid_argument(quoted(text) + " is neither true nor false");
        return text == "true";
    } else {
        return parseNumber<T>(text);
    }
}

template <typename T>
T parseDefault(const std::vector<std::string>& texts) {
    if constexpr (std::is_same_v<T, std::vector<std::string>>) {
        return texts;
    } else {
        if (texts.size() != 1)
            throw std::invalid_argument("the default is not one text");
        return parse<T>(texts.front());
    }
}

template <typename T>
std::optional<T> parseLimit(const std::optional<std::string>& text) {
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
        return text ? std::optional(parse<T>(*text)) : std::nullopt;
    else if (text)
        throw std::invalid_argument("only numbers have a range");
    else
        return std::nullopt;
}

template <typename T>
std::shared_ptr<const ValueRule<T>> makeRule(const ConfigurationConstraint& constraint) {
    auto rule = std::make_shared<ValueRule<T>>();
    rule->label = constraint.label;
    rule->minimum = parseLimit<T>(constraint.minimum);
    rule->maximum = parseLimit<T>(constraint.maximum);
    for (const auto& [text, label] : constraint.choices)
        rule->choices.emplace_back(parse<typename ValueRule<T>::Item>(text), label);
    if (!constraint.condition.empty()) {
        rule->condition = [](const T&) { return true; }; // only the application can tell
        rule->conditionText = constraint.condition;
    }
    return rule;
}

template <typename T>
std::unique_ptr<ConfigurationValueBase> makeTyped(const Description& description) {
    const T defaultValue = parseDefault<T>(description.defaultTexts);
    const ConfigurationConstraint& constraint = description.constraint;
    const bool isLabelled =
        !constraint.label.empty() && constraint.label != description.description;
    std::unique_ptr<ConfigurationValueBase> value;
    if (constraint.isLimited() || isLabelled)
        value = std::make_unique<ConstrainedValue<T>>(
            description.name, description.description, defaultValue, description.visibility,
            description.persistence, description.products, makeRule<T>(constraint));
    else
        value = std::make_unique<ConfigurationValue<T>>(
            description.name, description.description, defaultValue, description.visibility,
            description.persistence, description.products);
    value->setEditable(description.isEditable);
    return value;
}

std::unique_ptr<ConfigurationValueBase> makeOfType(const Description& description) {
    switch (description.type) {
    case ConfigurationValueBase::BoolValue:
        return makeTyped<bool>(description);
    case ConfigurationValueBase::IntValue:
        return makeTyped<int>(description);
    case ConfigurationValueBase::UnsignedIntValue:
        return makeTyped<unsigned int>(description);
    case ConfigurationValueBase::DoubleValue:
        return makeTyped<double>(description);
    case ConfigurationValueBase::FloatValue:
        return makeTyped<float>(description);
    case ConfigurationValueBase::StringValue:
        return makeTyped<std::string>(description);
    case ConfigurationValueBase::StringVectorValue:
        return makeTyped<std::vector<std::string>>(description);
    }
    throw std::invalid_argument("there is no such type");
}

} // namespace

bool ConfigurationValueDescription::isLoadable() const {
    return Orvant::isLoadable(persistence);
}

std::string ConfigurationValueDescription::fileTextOf(const std::string& text) const {
    if (type != ConfigurationValueBase::UnsignedIntValue)
        return text;
    const auto number = numberIn<unsigned int>(text);
    return number ? exactText(static_cast<int>(*number)) : text;
}

std::string ConfigurationValueDescription::problemOf(const std::vector<std::string>& texts) const {
    if (!isList() && texts.size() != 1)
        return "one text is needed";
    if (std::ranges::any_of(texts, [](const auto& text) { return throughDocument(text) != text; }))
        return "it has a character that XML does not allow";
    ConfigWriter writer("");
    if (isList())
        writer.putStringVector(name, texts, "");
    else
        writer.putString(name, texts.front(), "");
    LocatedDocument document(writer.getAsString());
    constexpr DocumentTree::Element element = DocumentTree::root + 1;
    return problemIn(document, element, *makeValue());
}

std::unique_ptr<ConfigurationValueBase> ConfigurationValueDescription::makeValue() const {
    if (!isXmlName(name))
        throw std::invalid_argument(quoted(name) + " cannot be the name of an element");
    try {
        return makeOfType(*this);
    } catch (const std::logic_error& e) {
        throw std::invalid_argument(quoted(name) + ": " + e.what());
    }
}

bool ConfigurationObjectDescription::isLoadable() const {
    return Orvant::isLoadable(persistence);
}

std::unique_ptr<ConfigurationObject> ConfigurationObjectDescription::makeObject() const {
    return std::make_unique<DescribedObject>(DescribedObject::makeBlueprint(*this));
}

} // namespace Orvant
