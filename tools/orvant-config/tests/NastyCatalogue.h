#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <string>
#include <utility>
#include <vector>

namespace Orvant::Support {

using ValueDescription = ConfigurationValueDescription;
using ObjectDescription = ConfigurationObjectDescription;

inline ValueDescription makeValue(const std::string& name, ConfigurationValueBase::ValueType type,
                                  const std::string& defaultText,
                                  const ConfigurationConstraint& constraint = {}) {
    ValueDescription value{.name = name, .description = "About " + name, .type = type};
    value.defaultTexts = {defaultText};
    value.constraint = constraint;
    return value;
}

inline ValueDescription makeText(const std::string& name, const std::string& defaultText) {
    return makeValue(name, ConfigurationValueBase::StringValue, defaultText);
}

inline ValueDescription makeList(const std::string& name, const std::vector<std::string>& items,
                                 const std::vector<ConfigurationChoice>& choices = {}) {
    ValueDescription value = makeText(name, "");
    value.type = ConfigurationValueBase::StringVectorValue;
    value.defaultTexts = items;
    value.constraint.choices = choices;
    return value;
}

/// Texts that are hard to write, in comments most of all.
inline ObjectDescription makeTexts() {
    ObjectDescription texts{
        .name = "Texts", .description = "Texts -- and -->more\nof them-", .children = {}};
    const std::vector<std::string> hard = {
        "",  "<b>&amp;</b>", "--",    "-",      "---->", "-->",  "\"quoted\" 'too'", "  leading",
        " ", "two\nlines",   "\ttab", "\r\n\r", "]]>",   "ä€😀", "<!--<a>-->",       "&#45;"};
    for (std::size_t i = 0; i < hard.size(); ++i)
        texts.values.push_back(makeText("Text" + std::to_string(i), hard[i]));
    texts.values.push_back(makeList("NoItems", {}));
    texts.values.push_back(makeList("Items", {"a--b", "", " ", "<item>", "-"}));
    texts.values.push_back(makeText("ends-", "-"));
    texts.values.push_back(makeText("two--hyphens", "-->"));
    return texts;
}

/// Numbers with all their digits, and at the limits of their types.
inline ObjectDescription makeNumbers() {
    using Base = ConfigurationValueBase;
    ObjectDescription numbers{.name = "Numbers--all", .description = "Numbers", .children = {}};
    numbers.values = {makeValue("Int", Base::IntValue, "-2147483648"),
                      makeValue("Unsigned", Base::UnsignedIntValue, "4294967295"),
                      makeValue("Middle", Base::UnsignedIntValue, "2147483648"),
                      makeValue("Third", Base::DoubleValue, "0.3333333333333333"),
                      makeValue("Least", Base::DoubleValue, "5e-324"),
                      makeValue("Most", Base::DoubleValue, "-1.7976931348623157e+308"),
                      makeValue("FloatMost", Base::FloatValue, "3.4028235e+38"),
                      makeValue("FloatTenth", Base::FloatValue, "0.1"),
                      makeValue("Infinite", Base::DoubleValue, "inf"),
                      makeValue("Flag", Base::BoolValue, "true")};
    return numbers;
}

inline ObjectDescription makeMachine() {
    ObjectDescription machine{.name = "Machine", .description = "A machine", .children = {}};
    machine.values = {makeValue("MaxFeed", ConfigurationValueBase::IntValue, "5000",
                                {.label = "Feed", .minimum = "1", .maximum = "20000"})};
    return machine;
}

/// What objects can be in objects, with lists of one name at several depths.
inline ObjectDescription makeNested() {
    ObjectDescription camera{.name = "Camera", .description = "", .children = {}};
    camera.values = {makeList("Recent", {"inner"}), makeText("Lens", "wide")};
    ObjectDescription stored{.name = "", .description = "", .children = {}};
    stored.values = {makeList("Recent", {"outer"}), makeText("Inline", "yes")};
    stored.children = {{.object = makeMachine(), .isKind = true}};
    ObjectDescription keyed{.name = "Printer", .description = "", .children = {}};
    keyed.values = {makeText("Paper", "A4")};
    ObjectDescription unloaded{.name = "Unloaded", .description = "", .children = {}};
    unloaded.persistence = ConfigurationItemBase::SaveOnly;
    unloaded.values = {makeText("Text", "saved")};
    ObjectDescription nested{.name = "Nested", .description = "Objects in objects", .children = {}};
    ValueDescription saved = makeText("Saved", "only");
    saved.persistence = ConfigurationItemBase::SaveOnly;
    ValueDescription locked = makeText("Locked", "by its class");
    locked.isEditable = false;
    nested.values = {saved, locked};
    nested.children = {{.object = camera},
                       {.object = stored},
                       {.object = keyed, .key = "Hall \"1\""},
                       {.object = keyed, .key = "Hall 2"},
                       {.object = unloaded}};
    return nested;
}

/// A catalogue with what is hard to write and read.
inline ConfigurationCatalogue makeNastyCatalogue() {
    ConfigurationCatalogue catalogue("nasty", {"1.0", "2 & 3"}, "2 & 3");
    for (const ObjectDescription& object : {makeTexts(), makeNumbers(), makeNested()})
        catalogue.add({object}, object.name);
    catalogue.add({.object = makeMachine(), .isKeyed = true}, "Machine");
    return catalogue;
}

} // namespace Orvant::Support
