#include <ConfigurationFramework/Settings.h>

#include <ConfigurationFramework/ConfigurationManager.h>

#include <SettingSupport.h>
#include <ViewFixture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

const auto isEven = [](int number) { return number % 2 == 0; };

struct Print : Settings<Print> {
    Print() : Settings("Print") {}
    Setting<int> copies{this, "Copies", "", 5, Range{1, 10}};
    Setting<unsigned int> sheets{this, "Sheets", "", 5U, Range{2U, 3000000000U}};
    Setting<double> angle{this, "Angle", "", 45.0, Range{1.0, 170.0}};
    Setting<float> gray{this, "Gray", "", 0.1F, Range{0.1, 0.7}};
    Setting<double> width{this, "Width", "", 1.0, Range{0, infinity}};
    Setting<std::string> paper{this, "Paper", "", "A4", OneOf{"A4", "A3"}};
    Setting<Strings> sides{this, "Sides", "", {}, OneOf{"left", "right"}};
    Setting<int> dots{this, "Dots", "", 300, OneOf{300, 600}};
    Setting<int> even{this, "Even", "", 2, Check{isEven, "an even number"}};
    Setting<int> odd{this, "Odd", "", 1, [](int number) { return !isEven(number); }};
    Setting<int> both{this, "Both", "", 2, Check{isEven, "an even number"}, Range{1, 7}};
    Setting<Strings> trays{this,
                           "Trays",
                           "",
                           {"upper"},
                           Check{[](const Strings& list) { return !list.empty(); }, "not empty"}};
    Setting<Unit> unit{this, "Unit", "", Unit::Millimetre};
    Setting<Unit> inch{this, "Inch", "", Unit::Inch, OneOf{Unit::Inch}};
    Setting<Unit> metric{this, "Metric", "", Unit::Millimetre,
                         [](Unit chosen) { return chosen == Unit::Millimetre; }};
};

struct Shelf : Settings<Shelf> {
    Shelf() : Settings("Shelf") {}
    Child<Print> print{this};
};

struct Rack : Settings<Rack> {
    Rack() : Settings("Rack") {}
    KeyedChildren<Print> prints{this};
};

/// Sets a setting against its rule.
/// @return the message of the exception
template <typename T, typename Value>
std::string refusal(Setting<T>& setting, const Value& value) {
    const T former = setting.get();
    int calls = 0;
    const auto watch = setting.onChange([&](const T&) { ++calls; });
    std::string message = messageOf<std::out_of_range>([&] { setting.set(value); });
    EXPECT_EQ(former, setting.get());
    EXPECT_FALSE(setting.item().hasValue());
    EXPECT_EQ(0, calls);
    EXPECT_EQ(message, messageOf<std::out_of_range>([&] { setting = value; }));
    return message;
}

TEST(SettingRules, KeepWhatTheyForbidFromBeingSet) {
    Print print;
    EXPECT_EQ("Print/Copies cannot be 11: it must be from 1 to 10", refusal(print.copies, 11));
    EXPECT_EQ("Print/Copies cannot be 0: it must be from 1 to 10", refusal(print.copies, 0));
    EXPECT_EQ("Print/Sheets cannot be 4000000000: it must be from 2 to 3000000000",
              refusal(print.sheets, 4000000000U));
    EXPECT_EQ("Print/Angle cannot be 170.0000001: it must be from 1 to 170",
              refusal(print.angle, 170.0000001));
    EXPECT_EQ("Print/Angle cannot be nan: it must be from 1 to 170", refusal(print.angle, nothing));
    EXPECT_EQ("Print/Angle cannot be -inf: it must be from 1 to 170",
              refusal(print.angle, -infinity));
    EXPECT_EQ("Print/Gray cannot be 0.8: it must be from 0.1 to 0.7", refusal(print.gray, 0.8F));
    EXPECT_EQ("Print/Width cannot be -1: it must be from 0 to inf", refusal(print.width, -1.0));
    EXPECT_EQ("Print/Paper cannot be \"\": it must be one of \"A4\", \"A3\"",
              refusal(print.paper, ""));
    EXPECT_EQ("Print/Sides cannot be \"left\", \"up\": it must be one of \"left\", \"right\"",
              refusal(print.sides, Strings{"left", "up"}));
    EXPECT_EQ("Print/Dots cannot be 400: it must be one of \"300\", \"600\"",
              refusal(print.dots, 400));
    EXPECT_EQ("Print/Even cannot be 3: it must be an even number", refusal(print.even, 3));
    EXPECT_EQ("Print/Odd cannot be 2: it must be what its condition allows", refusal(print.odd, 2));
    EXPECT_EQ("Print/Both cannot be 8: it must be from 1 to 7 and an even number",
              refusal(print.both, 8));
    EXPECT_EQ("Print/Both cannot be 3: it must be from 1 to 7 and an even number",
              refusal(print.both, 3));
    EXPECT_EQ("Print/Trays cannot be (empty): it must be not empty",
              refusal(print.trays, Strings{}));
    EXPECT_EQ("Print/Unit cannot be an enumerator without a text: "
              "it must be one of \"mm\", \"inch\"",
              refusal(print.unit, Unit::Mile));
    EXPECT_EQ("Print/Inch cannot be \"mm\": it must be one of \"inch\"",
              refusal(print.inch, Unit::Millimetre));
    EXPECT_EQ("Print/Metric cannot be \"inch\": it must be one of \"mm\", \"inch\" and what its "
              "condition allows",
              refusal(print.metric, Unit::Inch));
}

TEST(SettingRules, NameThePathOfTheSetting) {
    Shelf shelf;
    EXPECT_THAT(refusal(shelf.print->copies, 11), StartsWith("Shelf/Print/Copies cannot be 11"));
    Rack rack;
    EXPECT_THAT(refusal(rack.prints.add("Hall 1").copies, 11),
                StartsWith("Rack/Print[Hall 1]/Copies cannot be 11"));
}

TEST(SettingRules, AllowTheRest) {
    Print print;
    for (const int copies : {1, 5, 10})
        EXPECT_EQ(copies, print.copies = copies);
    for (const unsigned int sheets : {2U, 3000000000U})
        EXPECT_EQ(sheets, print.sheets = sheets);
    for (const double angle : {1.0, 170.0})
        EXPECT_EQ(angle, print.angle = angle);
    for (const float gray : {0.1F, 0.7F}) // rounded like the limits
        EXPECT_EQ(gray, print.gray = gray);
    for (const double width : {0.0, infinity})
        EXPECT_EQ(width, print.width = width);
    EXPECT_TRUE(print.paper.set("A3"));
    EXPECT_TRUE(print.sides.set({"right", "left", "right"}));
    EXPECT_TRUE(print.sides.set({}));
    EXPECT_TRUE(print.dots.set(600));
    EXPECT_TRUE(print.even.set(-4));
    EXPECT_TRUE(print.odd.set(3));
    EXPECT_TRUE(print.both.set(6));
    EXPECT_TRUE(print.unit.set(Unit::Inch));
    EXPECT_TRUE(print.inch.set(Unit::Inch));
    EXPECT_TRUE(print.metric.set(Unit::Millimetre));
}

TEST(SettingRules, DoNotMatterToALockedSetting) {
    Print print;
    print.setEditable(false);
    EXPECT_FALSE(print.copies.set(11));
    EXPECT_FALSE(print.unit.set(Unit::Mile));
}

/// One setting with these options.
template <typename T>
struct Only : SettingsBase {
    template <typename... Options>
    explicit Only(const T& defaultValue, Options... options)
        : SettingsBase("Only", "", LoadAndSave, AllProducts),
          setting(this, "It", "", defaultValue, options...) {}
    ConfigurationObject* createConfigurationObject() const override { return nullptr; }
    Setting<T> setting;
};

template <typename T, typename... Options>
std::string faultOf(const T& defaultValue, Options... options) {
    const std::string message =
        messageOf<std::logic_error>([&] { const Only<T> made(defaultValue, options...); });
    const std::string names = "the setting \"It\" of the object \"Only\": ";
    EXPECT_THAT(message, StartsWith(names));
    return message.substr(std::min(message.size(), names.size()));
}

TEST(SettingRules, AllowTheDefault) {
    const std::string start = "the default of \"It\" is not allowed: it must be ";
    EXPECT_EQ(start + "from 1 to 10", faultOf(11, Range{1, 10}));
    EXPECT_EQ(start + "from 1 to 10", faultOf(0, hidden, Range{1, 10}));
    EXPECT_EQ(start + "from 1 to 10", faultOf(nothing, Range{1, 10}));
    EXPECT_EQ(start + "one of \"A4\", \"A3\"", faultOf<std::string>("A5", OneOf{"A4", "A3"}));
    EXPECT_EQ(start + "one of \"a\"", faultOf<Strings>({"a", "b"}, OneOf{"a"}));
    EXPECT_EQ(start + "an even number", faultOf(3, Check{isEven, "an even number"}));
    EXPECT_EQ(start + "what its condition allows", faultOf(3, isEven));
    EXPECT_EQ(start + "one of \"inch\"", faultOf(Unit::Millimetre, OneOf{Unit::Inch}));
    EXPECT_EQ("the enumerator has no text", faultOf(Unit::Mile));
}

TEST(SettingRules, HaveLimitsAndChoicesOfTheSettingsType) {
    const std::string fault = "a limit or choice is not a value of the setting's type";
    EXPECT_EQ(fault, faultOf(2, Range{1.5, 3.0}));
    EXPECT_EQ(fault, faultOf(2, Range{1.0, 3.5}));
    EXPECT_EQ(fault, faultOf(2, Range{0.0, 1e10}));
    EXPECT_EQ(fault, faultOf(2, Range{-1e300, 5.0}));
    EXPECT_EQ(fault, faultOf(2, Range{nothing, 5.0}));
    EXPECT_EQ(fault, faultOf(2, Range{0.0, infinity}));
    EXPECT_EQ(fault, faultOf(2, Range{0U, 4000000000U}));
    EXPECT_EQ(fault, faultOf(2, Range{INT64_MIN, INT64_C(5)}));
    EXPECT_EQ(fault, faultOf(2U, Range{-1, 5}));
    EXPECT_EQ(fault, faultOf(2U, Range{-1.0, 5.0}));
    EXPECT_EQ(fault, faultOf(2U, Range{INT64_C(0), INT64_C(4294967296)}));
    EXPECT_EQ(fault, faultOf(2.0F, Range{0.0, 1e300}));
    EXPECT_EQ(fault, faultOf(2, OneOf{2, 2.5}));
    EXPECT_EQ(fault, faultOf(2U, OneOf{2, -2}));
    EXPECT_EQ("the enumerator has no text",
              faultOf(Unit::Millimetre, OneOf{Unit::Millimetre, Unit::Mile}));

    EXPECT_EQ("10", Only<int>(2, Range{0.0, 10.0}).setting.item().getConstraint().maximum);
    EXPECT_EQ("4294967295", Only<unsigned int>(2U, Range{INT64_C(0), INT64_C(4294967295)})
                                .setting.item()
                                .getConstraint()
                                .maximum);
    EXPECT_EQ(
        "-2147483648",
        Only<int>(2, Range{-2147483648.0, 2147483647.0}).setting.item().getConstraint().minimum);
    EXPECT_EQ("10", Only<float>(2, Range{0, 10}).setting.item().getConstraint().maximum);
    EXPECT_NO_THROW(Only<double>(2.5, OneOf{1, 2.5}));
}

TEST(SettingRules, DoNotContradictEachOther) {
    EXPECT_EQ("the smallest number of a range is larger than the largest", faultOf(2, Range{3, 1}));
    EXPECT_EQ("the smallest number of a range is larger than the largest",
              faultOf(2.0, Range{1.0, nothing}));
    EXPECT_NO_THROW(Only<int>(2, Range{2, 2}));
    EXPECT_EQ("it has two ranges", faultOf(2, Range{1, 3}, Range{1, 2}));
    EXPECT_EQ("it has two lists of choices", faultOf(2, OneOf{2}, OneOf{2, 3}));
    EXPECT_EQ("it has two conditions", faultOf(2, isEven, Check{isEven, "an even number"}));
}

TEST(SettingRules, LetAConditionThrow) {
    const auto strict = [](int number) {
        if (number > 3)
            throw std::domain_error("more than 3");
        return true;
    };
    Only<int> only(2, strict);
    EXPECT_EQ("more than 3", messageOf<std::domain_error>([&] { only.setting = 4; }));
    EXPECT_EQ(2, only.setting);
    EXPECT_EQ("more than 3", faultOf(4, strict));
}

class SettingRulesInFiles : public ViewFixture {
protected:
    std::shared_ptr<Print> addPrint() { return add(std::make_shared<Print>()); }
    /// @return line, path and text of each problem
    Strings problems() const {
        Strings lines;
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems()) {
            EXPECT_EQ(ConfigurationProblem::OutOfRange, problem.kind);
            lines.push_back(withoutFolder(problem.file) + ':' + std::to_string(problem.line) + ' ' +
                            problem.path + ": " + problem.text);
        }
        return lines;
    }
    ConfigurationOrigin origin(const std::string& path) const {
        for (const ConfigurationOrigin& found : m_manager.explain())
            if (found.path == path)
                return found;
        ADD_FAILURE() << path << " is not explained";
        return {};
    }
};

TEST_F(SettingRulesInFiles, MakeTheDefaultApply) {
    writeOne("<Print>\n<Copies>11</Copies>\n<Sheets>-1</Sheets>\n<Angle>0.5</Angle>\n"
             "<Gray>0.75</Gray>\n<Paper>A5</Paper>\n"
             "<Sides><item>left</item><item>up</item></Sides>\n<Dots>400</Dots>\n<Even>3</Even>\n"
             "<Odd>4</Odd>\n<Both>9</Both>\n<Unit>furlong</Unit>\n<Inch>mm</Inch>\n"
             "<Metric>inch</Metric>\n<Trays/></Print>");
    const auto print = addPrint();
    for (auto value = print->beginValueIterator(); value != print->endValueIterator(); ++value)
        EXPECT_FALSE((*value)->hasValue()) << (*value)->getName();
    EXPECT_EQ(5, print->copies);
    EXPECT_EQ(Unit::Millimetre, print->unit);
    EXPECT_THAT(
        problems(),
        ElementsAre(
            R"(settings.xml:2 Print/Copies: "11" is not allowed: it must be from 1 to 10; the default 5 was taken)",
            R"(settings.xml:3 Print/Sheets: "-1" is not allowed: it must be from 2 to 3000000000; the default 5 was taken)",
            R"(settings.xml:4 Print/Angle: "0.5" is not allowed: it must be from 1 to 170; the default 45 was taken)",
            R"(settings.xml:5 Print/Gray: "0.75" is not allowed: it must be from 0.1 to 0.7; the default 0.1 was taken)",
            R"(settings.xml:6 Print/Paper: "A5" is not allowed: it must be one of "A4", "A3"; the default "A4" was taken)",
            R"(settings.xml:7 Print/Sides: "left", "up" is not allowed: it must be one of "left", "right"; the default (empty) was taken)",
            R"(settings.xml:8 Print/Dots: "400" is not allowed: it must be one of "300", "600"; the default 300 was taken)",
            R"(settings.xml:9 Print/Even: "3" is not allowed: it must be an even number; the default 2 was taken)",
            R"(settings.xml:10 Print/Odd: "4" is not allowed: it must be what its condition allows; the default 1 was taken)",
            R"(settings.xml:11 Print/Both: "9" is not allowed: it must be from 1 to 7 and an even number; the default 2 was taken)",
            R"(settings.xml:12 Print/Unit: "furlong" is not allowed: it must be one of "mm", "inch"; the default "mm" was taken)",
            R"(settings.xml:13 Print/Inch: "mm" is not allowed: it must be one of "inch"; the default "inch" was taken)",
            R"(settings.xml:14 Print/Metric: "inch" is not allowed: it must be one of "mm", "inch" and what its condition allows; the default "mm" was taken)",
            R"(settings.xml:15 Print/Trays: (empty) is not allowed: it must be not empty; the default "upper" was taken)"));
    const ConfigurationOrigin copies = origin("Print/Copies");
    EXPECT_EQ(ConfigurationOrigin::Default, copies.layer);
    EXPECT_EQ("5", copies.value);
    EXPECT_EQ("11", copies.userValue);
    EXPECT_FALSE(copies.locked);
}

TEST_F(SettingRulesInFiles, HaveNothingAgainstTheRest) {
    writeOne("<Print><Copies>10</Copies><Sheets>-1294967296</Sheets><Gray>0.7</Gray>"
             "<Paper>A3</Paper><Sides><item>right</item></Sides><Unit>inch</Unit></Print>");
    const auto print = addPrint();
    EXPECT_EQ(10, print->copies);
    EXPECT_EQ(3000000000U, print->sheets);
    EXPECT_EQ(0.7F, print->gray);
    EXPECT_EQ("A3", print->paper.get());
    EXPECT_EQ(Strings{"right"}, print->sides.get());
    EXPECT_EQ(Unit::Inch, print->unit);
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(SettingRulesInFiles, MakeTheSystemsValueApplyInsteadOfTheUsers) {
    writeTwo("<Print><Copies>7</Copies><Unit>inch</Unit></Print>",
             "<Print>\n<Copies>11</Copies><Unit>furlong</Unit></Print>");
    const auto print = addPrint();
    EXPECT_EQ(7, print->copies);
    EXPECT_EQ(Unit::Inch, print->unit);
    EXPECT_THAT(
        problems(),
        ElementsAre(
            R"(user.xml:2 Print/Copies: "11" is not allowed: it must be from 1 to 10; the system file's "7" was taken)",
            R"(user.xml:2 Print/Unit: "furlong" is not allowed: it must be one of "mm", "inch"; the system file's "inch" was taken)"));
    const ConfigurationOrigin copies = origin("Print/Copies");
    EXPECT_EQ(ConfigurationOrigin::System, copies.layer);
    EXPECT_EQ("7", copies.value);
    EXPECT_EQ("7", copies.systemValue);
    EXPECT_EQ("11", copies.userValue);
    EXPECT_EQ("system.xml", withoutFolder(copies.file));
    EXPECT_FALSE(print->copies.isLocked());
}

TEST_F(SettingRulesInFiles, MakeTheUsersValueApplyInsteadOfTheSystems) {
    writeTwo("<Print>\n\n<Copies>11</Copies><Even>3</Even></Print>",
             "<Print><Copies>7</Copies></Print>");
    const auto print = addPrint();
    EXPECT_EQ(7, print->copies);
    EXPECT_EQ(2, print->even);
    EXPECT_THAT(
        problems(),
        ElementsAre(
            R"(system.xml:3 Print/Copies: "11" is not allowed: it must be from 1 to 10; the user file's "7" was taken)",
            R"(system.xml:3 Print/Even: "3" is not allowed: it must be an even number; the default 2 was taken)"));
    EXPECT_EQ(ConfigurationOrigin::User, origin("Print/Copies").layer);
    EXPECT_EQ(ConfigurationOrigin::Default, origin("Print/Even").layer);
}

TEST_F(SettingRulesInFiles, LeaveALockOnTheDefault) {
    writeTwo("<Print>\n<Copies editable=\"false\">11</Copies></Print>",
             "<Print><Copies>7</Copies></Print>");
    const auto print = addPrint();
    EXPECT_EQ(5, print->copies);
    EXPECT_TRUE(print->copies.isLocked());
    EXPECT_FALSE(print->copies.set(7));
    EXPECT_THAT(
        problems(),
        ElementsAre(
            R"(system.xml:2 Print/Copies: "11" is not allowed: it must be from 1 to 10; the default 5 was taken)"));
    const ConfigurationOrigin copies = origin("Print/Copies");
    EXPECT_EQ(ConfigurationOrigin::Default, copies.layer);
    EXPECT_EQ("5", copies.value);
    EXPECT_TRUE(copies.locked);
    EXPECT_EQ("Print/Copies", copies.lockedBy);
}

TEST_F(SettingRulesInFiles, HoldInChildren) {
    writeOne("<Shelf><Print><Copies>11</Copies></Print></Shelf>\n"
             "<Rack><Print key=\"Hall 1\"><Copies>12</Copies></Print></Rack>");
    const auto shelf = add(std::make_shared<Shelf>());
    const auto rack = add(std::make_shared<Rack>());
    EXPECT_EQ(5, shelf->print->copies);
    EXPECT_EQ(5, rack->prints.find("Hall 1")->copies);
    EXPECT_THAT(problems(),
                ElementsAre(StartsWith("settings.xml:1 Shelf/Print/Copies: \"11\" is not allowed"),
                            StartsWith("settings.xml:2 Rack/Print[Hall 1]/Copies: \"12\" is not")));
}

TEST_F(SettingRulesInFiles, HoldInReloadsAndResets) {
    writeOne("<Print><Copies>7</Copies></Print>");
    const auto print = addPrint();
    std::optional<int> told;
    const auto watch = print->copies.onChange([&](int copies) { told = copies; });
    writeOne("<Print><Copies>11</Copies></Print>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, print->copies);
    EXPECT_EQ(5, told);
    print->copies = 8;
    m_manager.resetConfigurationObject("Print", true);
    EXPECT_EQ(5, print->copies);
    EXPECT_EQ(5, told);
}

} // namespace
} // namespace Orvant
