#include "generating/SchemaTypes.h"

#include <charconv>
#include <limits>
#include <optional>
#include <vector>

namespace Orvant::Tool {

namespace {

using Base = ConfigurationValueBase;
using Value = ConfigurationValueDescription;

// How the library reads numbers. Beside the types of XML Schema, which some validators take with
// other texts, or without blanks around them.
constexpr const char* integers = "[+\\-]?[0-9]+";
constexpr const char* decimals = "[+\\-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+\\-]?[0-9]+)?";
constexpr const char* mostDouble = "1.7976931348623157e+308";
constexpr const char* mostFloat = "3.4028235e+38";

void addFacet(MarkupText& markup, const std::string& facet, const std::string& value) {
    markup.addEmpty("xs:" + facet, {{"value", value}});
}

/// @param addFacets adds what restricts the base
template <typename AddFacets>
void addType(MarkupText& markup, const std::string& name, const std::string& base,
             AddFacets addFacets) {
    markup.open("xs:simpleType", {{"name", name}});
    markup.open("xs:restriction", {{"base", base}});
    addFacets();
    markup.close();
    markup.close();
}

void addTexts(MarkupText& markup, const std::string& name, const std::vector<std::string>& texts) {
    addType(markup, name, "xs:string", [&] {
        for (const std::string& text : texts)
            addFacet(markup, "enumeration", text);
    });
}

/// Adds a type of floating-point numbers: without infinity, which is what larger ones would be.
void addFloating(MarkupText& markup, const std::string& name, const std::string& base,
                 const std::string& most) {
    addType(markup, name, base, [&] {
        addFacet(markup, "pattern", decimals);
        addFacet(markup, "minInclusive", '-' + most);
        addFacet(markup, "maxInclusive", most);
    });
}

std::string typeName(Base::ValueType type) {
    switch (type) {
    case Base::BoolValue:
        return "Bool";
    case Base::IntValue:
    case Base::UnsignedIntValue:
        return "Int";
    case Base::DoubleValue:
        return "Double";
    case Base::FloatValue:
        return "Float";
    default:
        return "xs:string";
    }
}

void addLimit(MarkupText& markup, const std::string& facet,
              const std::optional<std::string>& limit) {
    if (limit && limit->find('n') == std::string::npos) // infinity limits nothing
        addFacet(markup, facet, *limit);
}

void addRestriction(MarkupText& markup, const Value& value,
                    const std::optional<std::string>& minimum,
                    const std::optional<std::string>& maximum) {
    markup.open("xs:restriction", {{"base", typeName(value.type)}});
    addLimit(markup, "minInclusive", minimum);
    addLimit(markup, "maxInclusive", maximum);
    for (const auto& [text, label] : value.constraint.choices) {
        const MarkupText::Attributes attributes{{"value", value.fileTextOf(text)}};
        if (label.empty() || label == text) {
            markup.addEmpty("xs:enumeration", attributes);
            continue;
        }
        markup.open("xs:enumeration", attributes);
        markup.addDocumentation(label);
        markup.close();
    }
    markup.close();
}

/// Files hold the signed number with the same bits, so that the larger half is below the other.
bool wraps(const Value& value) {
    const ConfigurationConstraint& constraint = value.constraint;
    if (value.type != Base::UnsignedIntValue || (!constraint.minimum && !constraint.maximum))
        return false;
    const auto isNegative = [&](const std::string& text) {
        return value.fileTextOf(text).starts_with('-');
    };
    return !isNegative(constraint.minimum.value_or("0")) &&
           (!constraint.maximum || isNegative(*constraint.maximum));
}

std::string restrictionsOf(const Value& value) {
    MarkupText markup;
    std::optional<std::string> minimum = value.constraint.minimum;
    std::optional<std::string> maximum = value.constraint.maximum;
    if (minimum)
        minimum = value.fileTextOf(*minimum);
    if (maximum)
        maximum = value.fileTextOf(*maximum);
    if (wraps(value)) {
        markup.open("xs:union");
        for (const bool isLarge : {false, true}) {
            markup.open("xs:simpleType");
            if (isLarge)
                addRestriction(markup, value, std::nullopt, maximum.value_or("-1"));
            else
                addRestriction(markup, value, minimum.value_or("0"), std::nullopt);
            markup.close();
        }
        markup.close();
    } else {
        if (value.type == Base::UnsignedIntValue && minimum && !maximum)
            maximum = "-1";
        if (value.type == Base::UnsignedIntValue && maximum && !minimum)
            minimum = "0";
        addRestriction(markup, value, minimum, maximum);
    }
    return markup.text();
}

} // namespace

SchemaTypes::SchemaTypes(MarkupText& markup)
    : m_markup(markup), m_taken{lock, noLock, "Bool", "Int", "Double", "Float"} {
    addTexts(markup, lock, {"true", "false"});
    addTexts(markup, noLock, {"true"});
    addTexts(markup, "Bool", {"true", "false"});
    addType(markup, "Int", "xs:int", [&] { addFacet(markup, "pattern", integers); });
    addFloating(markup, "Double", "xs:double", mostDouble);
    addFloating(markup, "Float", "xs:float", mostFloat);
}

std::string SchemaTypes::add(const Value& value) {
    const ConfigurationConstraint& constraint = value.constraint;
    if (!constraint.minimum && !constraint.maximum && constraint.choices.empty())
        return typeName(value.type);
    const std::string restrictions = restrictionsOf(value);
    const auto [known, isNew] = m_names.try_emplace(restrictions, value.name);
    if (!isNew)
        return known->second;
    for (unsigned int number = 2; !m_taken.insert(known->second).second; ++number)
        known->second = value.name + '-' + std::to_string(number);
    m_markup.open("xs:simpleType", {{"name", known->second}});
    m_markup.addLines(restrictions);
    m_markup.close();
    return known->second;
}

} // namespace Orvant::Tool
