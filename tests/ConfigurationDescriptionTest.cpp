#include <ConfigurationFramework/ConfigurationDescription.h>

#include "SettingSupport.h"

#include <ConfigurationFramework/ConfigurationValue.h>

#include <TestSupport.h>

#include <gmock/gmock.h>

#include <limits>

using namespace Orvant;
using Support::messageOf;
using ::testing::HasSubstr;

namespace {

using Base = ConfigurationValueBase;

ConfigurationValueDescription describe(Base::ValueType type, const std::string& text) {
    return {.name = "V", .description = "", .type = type, .defaultTexts = {text}};
}

template <typename T>
T defaultOf(const ConfigurationValueDescription& description) {
    const auto value = description.makeValue();
    return dynamic_cast<const ConfigurationValue<T>&>(*value).getDefaultValue();
}

/// The default of a value through its description.
template <typename T>
void expectKept(const T& value) {
    const auto object =
        Support::TestObject::make("O", [&](Support::TestObject& made) { made.add("V", value); });
    EXPECT_EQ(defaultOf<T>(describeConfiguration(*object).values.at(0)), value);
}

} // namespace

TEST(ConfigurationDescriptionTest, KeepsDefaultsWithAllTheirDigits) {
    expectKept(0.1);
    expectKept(0.1F);
    expectKept(std::numeric_limits<double>::max());
    expectKept(std::numeric_limits<double>::denorm_min());
    expectKept(-std::numeric_limits<double>::infinity());
    expectKept(std::numeric_limits<float>::max());
    expectKept(std::numeric_limits<int>::min());
    expectKept(std::numeric_limits<unsigned int>::max());
    expectKept(true);
    expectKept(std::string(" a\n"));
    expectKept(std::vector<std::string>{"", "b"});
    expectKept(std::vector<std::string>{});
}

TEST(ConfigurationDescriptionTest, GivesUnsignedNumbersTheSignThatTheyHaveInFiles) {
    const auto unsignedValue = describe(Base::UnsignedIntValue, "0");
    EXPECT_EQ(unsignedValue.fileTextOf("4294967295"), "-1");
    EXPECT_EQ(unsignedValue.fileTextOf("7"), "7");
    EXPECT_EQ(unsignedValue.fileTextOf("nonsense"), "nonsense");
    EXPECT_EQ(unsignedValue.fileTextOf("-1"), "-1");
    EXPECT_EQ(describe(Base::IntValue, "0").fileTextOf("4294967295"), "4294967295");
}

TEST(ConfigurationDescriptionTest, SaysWhatALoadMakesOfATextLikeTheLoad) {
    auto number = describe(Base::DoubleValue, "60");
    number.constraint.minimum = "1";
    number.constraint.maximum = "170";
    EXPECT_EQ(number.problemOf({"12.5"}), "");
    EXPECT_EQ(number.problemOf({"60,5"}), "\"60,5\" reads as 60");
    EXPECT_EQ(number.problemOf({"wide"}), "\"wide\" is not a number");
    EXPECT_EQ(number.problemOf({""}), "the element has no text at its front");
    EXPECT_EQ(number.problemOf({"200"}), "\"200\" is not allowed: it must be from 1 to 170");
    EXPECT_EQ(number.problemOf({}), "one text is needed");
    EXPECT_EQ(number.problemOf({"1", "2"}), "one text is needed");
    EXPECT_EQ(describe(Base::IntValue, "1").problemOf({"3O"}), "\"3O\" reads as 3");
    EXPECT_EQ(describe(Base::IntValue, "1").problemOf({"99999999999"}),
              "\"99999999999\" is too large for the type of the value");
    EXPECT_EQ(describe(Base::BoolValue, "true").problemOf({"True"}),
              "\"True\" is neither true nor false");
    EXPECT_EQ(describe(Base::StringValue, "").problemOf({"\x01"}),
              "it has a character that XML does not allow");
    EXPECT_EQ(describe(Base::StringValue, "").problemOf({" <b/> &amp; "}), "");

    auto list = describe(Base::StringVectorValue, "a");
    list.constraint.choices = {{"a", "A"}, {"b", "B"}};
    EXPECT_EQ(list.problemOf({}), "");
    EXPECT_EQ(list.problemOf({"a", "b"}), "");
    EXPECT_EQ(list.problemOf({"a", "c"}),
              "\"a\", \"c\" is not allowed: it must be one of \"a\", \"b\"");
}

TEST(ConfigurationDescriptionTest, RefusesADefaultThatIsNotOfItsTypeOrRule) {
    EXPECT_THROW((void)describe(Base::IntValue, "1.0").makeValue(), std::invalid_argument);
    EXPECT_THROW((void)describe(Base::FloatValue, "1e99").makeValue(), std::invalid_argument);
    EXPECT_THROW((void)describe(static_cast<Base::ValueType>(4), "1").makeValue(),
                 std::invalid_argument);
    auto limited = describe(Base::IntValue, "1");
    limited.constraint.minimum = "2";
    EXPECT_THAT(messageOf<std::invalid_argument>([&] { (void)limited.makeValue(); }),
                HasSubstr("\"V\""));
    auto named = describe(Base::IntValue, "1");
    named.name = "a b";
    EXPECT_THROW((void)named.makeValue(), std::invalid_argument);
}

TEST(ConfigurationDescriptionTest, MakesObjectsThatOutliveIt) {
    std::unique_ptr<ConfigurationObject> object;
    {
        ConfigurationObjectDescription description{
            .name = "O", .description = "Words", .children = {}};
        description.values.push_back(describe(Base::IntValue, "7"));
        description.values.back().isEditable = false;
        description.children.push_back(
            {.object = {.name = "Child", .description = "", .children = {}}, .key = "k"});
        description.isEditable = false;
        object = description.makeObject();
    }
    const std::unique_ptr<ConfigurationObject> copy(object->clone());
    EXPECT_EQ(copy->getName(), "O");
    EXPECT_EQ(copy->getDescription(), "Words");
    EXPECT_FALSE(copy->isEditable());
    EXPECT_FALSE(copy->getConfigurationValue("V")->isEditable());
    EXPECT_EQ(copy->getChildKey(0), "k");
}

TEST(ConfigurationDescriptionTest, RefusesNamesThatXmlDoesNotAllow) {
    ConfigurationObjectDescription description{.name = "a b", .description = "", .children = {}};
    EXPECT_THROW((void)description.makeObject(), std::invalid_argument);
    description.name = "O";
    description.children.push_back(
        {.object = {.name = "", .description = "", .children = {}}, .isKind = true});
    EXPECT_THROW((void)description.makeObject(), std::invalid_argument);
    description.children.front().isKind = false; // inline
    EXPECT_EQ(description.makeObject()->getConfigurationObjectsSize(), 1U);
}

TEST(ConfigurationDescriptionTest, GivesTheTextsThatASaveWrites) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(textsOf(*describe(Base::BoolValue, "true").makeValue()), Texts{"true"});
    EXPECT_EQ(textsOf(*describe(Base::DoubleValue, "60.5").makeValue()), Texts{"60.5"});
    EXPECT_EQ(textsOf(*describe(Base::UnsignedIntValue, "4294967295").makeValue()), Texts{"-1"});
    EXPECT_EQ(textsOf(*describe(Base::StringValue, "").makeValue()), Texts{""});
    auto list = describe(Base::StringVectorValue, "a\x01");
    list.defaultTexts.emplace_back("b, \"c\"");
    EXPECT_EQ(textsOf(*list.makeValue()), (Texts{"a\xEF\xBF\xBD", "b, \"c\""}));
    list.defaultTexts.clear();
    EXPECT_EQ(textsOf(*list.makeValue()), Texts{});
}
