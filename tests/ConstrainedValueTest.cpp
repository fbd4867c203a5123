#include <ConfigurationFramework/ConstrainedValue.h>

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <ModelTestSupport.h>
#include <SettingSupport.h>
#include <ViewFixture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using Strings = std::vector<std::string>;
using testing::ElementsAre;
using Item = ConfigurationItemBase;

template <typename T>
std::shared_ptr<ValueRule<T>> ruleOfRange(T minimum, T maximum) {
    auto rule = std::make_shared<ValueRule<T>>();
    rule->minimum = minimum;
    rule->maximum = maximum;
    return rule;
}

template <typename T>
std::unique_ptr<ConstrainedValue<T>> make(const std::string& name, const T& defaultValue,
                                          std::shared_ptr<const ValueRule<T>> rule) {
    return std::make_unique<ConstrainedValue<T>>(name, "The " + name, defaultValue, Item::Visible,
                                                 Item::LoadAndSave, Item::AllProducts,
                                                 std::move(rule));
}

/// Has a value "Copies" (1, from 1 to 10).
class Print : public ConfigurationObject {
public:
    Print() : ConfigurationObject("Print", "", LoadAndSave, AllProducts) {
        addConfigurationValue(make<int>("Copies", 1, ruleOfRange(1, 10)).release());
    }
    ConfigurationObject* createConfigurationObject() const override { return new Print; }
    ConstrainedValue<int>& copies() const {
        return dynamic_cast<ConstrainedValue<int>&>(*getConfigurationValue("Copies"));
    }
};

TEST(ConstrainedValue, IsAValueLikeOthersWithWhatIsAllowed) {
    const auto value = make<int>("Copies", 1, ruleOfRange(1, 10));
    EXPECT_EQ("Copies", value->getName());
    EXPECT_EQ("The Copies", value->getConstraint().label);
    EXPECT_EQ("1", value->getConstraint().minimum);
    EXPECT_EQ("10", value->getConstraint().maximum);
    EXPECT_EQ(10, value->getRule().maximum);
    EXPECT_TRUE(value->isAllowed(10));
    EXPECT_FALSE(value->isAllowed(11));
    value->setValue(11); // who sets it asks before
    EXPECT_EQ(11, value->getValue());
}

TEST(ConstrainedValue, HasADefaultThatIsAllowed) {
    EXPECT_EQ("the default of \"Copies\" is not allowed: it must be from 1 to 10",
              messageOf<std::logic_error>([] { make<int>("Copies", 0, ruleOfRange(1, 10)); }));
}

TEST(ConstrainedValue, MayHaveOneLimit) {
    auto rule = std::make_shared<ValueRule<double>>();
    rule->minimum = 0.5;
    auto value = make<double>("Width", 1.0, rule);
    EXPECT_EQ("at least 0.5", value->getConstraint().describe());
    EXPECT_TRUE(value->isAllowed(0.5));
    EXPECT_FALSE(value->isAllowed(0.25));
    EXPECT_FALSE(value->isAllowed(std::numeric_limits<double>::quiet_NaN()));
    rule = std::make_shared<ValueRule<double>>();
    rule->maximum = 2;
    rule->label = "How wide";
    value = make<double>("Width", 1.0, rule);
    EXPECT_EQ("at most 2", value->getConstraint().describe());
    EXPECT_EQ("How wide", value->getConstraint().label);
    EXPECT_TRUE(value->isAllowed(-1e300));
    EXPECT_FALSE(value->isAllowed(2.5));
    EXPECT_FALSE(value->isAllowed(std::numeric_limits<double>::quiet_NaN()));
    value = make<double>("Width", 1.0, std::make_shared<ValueRule<double>>());
    EXPECT_FALSE(value->getConstraint().isLimited());
    EXPECT_TRUE(value->isAllowed(std::numeric_limits<double>::quiet_NaN()));
}

TEST(ConstrainedValue, MayHaveChoicesWithLabels) {
    auto rule = std::make_shared<ValueRule<Strings>>();
    rule->choices = {{"l", "Left"}, {"r", ""}};
    const auto value = make<Strings>("Sides", {}, rule);
    const auto choices = value->getConstraint().choices;
    ASSERT_EQ(2U, choices.size());
    EXPECT_EQ("l", choices[0].text);
    EXPECT_EQ("Left", choices[0].label);
    EXPECT_EQ("r", choices[1].label);
    EXPECT_TRUE(value->isAllowed({}));
    EXPECT_TRUE(value->isAllowed({"r", "l"}));
    EXPECT_FALSE(value->isAllowed({"r", "x"}));
    EXPECT_FALSE(value->getConstraint().minimum);
}

TEST(ConstrainedValue, IsLoadedOnlyWithWhatIsAllowed) {
    const auto value = make<int>("Copies", 1, ruleOfRange(1, 10));
    auto good = readerOf("<Copies>10</Copies>");
    value->loadContent(good);
    EXPECT_EQ(10, value->getValue());
    auto bad = readerOf("<Copies editable='false'>11</Copies>");
    value->loadContent(bad);
    EXPECT_FALSE(value->hasValue());
    EXPECT_FALSE(value->isEditable());
}

TEST(ConstrainedValue, KeepsItsRuleInCopies) {
    const auto value = make<int>("Copies", 1, ruleOfRange(1, 10));
    value->setValue(4);
    value->setEditable(false);
    const std::unique_ptr<ConfigurationValueBase> clone(value->clone());
    const auto& copy = dynamic_cast<const ConstrainedValue<int>&>(*clone);
    EXPECT_EQ(4, copy.getValue());
    EXPECT_FALSE(copy.isEditable());
    EXPECT_FALSE(copy.isAllowed(11));
    const ConstrainedValue<int> second(*value);
    EXPECT_EQ(&value->getRule(), &second.getRule());
    const auto other = make<int>("Copies", 25, ruleOfRange(20, 30));
    *other = *value;
    EXPECT_EQ(4, other->getValue());
    EXPECT_EQ(1, other->getDefaultValue());
    EXPECT_FALSE(other->isAllowed(20));
    value->setValue(5);
    EXPECT_EQ(4, copy.getValue());
    EXPECT_EQ(4, other->getValue());
}

TEST(ConstrainedValue, AdoptsValuesOfItsTypeOnly) {
    const auto value = make<int>("Copies", 1, ruleOfRange(1, 10));
    const ConfigurationValue<int> plain("Plain", "", 7, Item::Visible, Item::LoadAndSave,
                                        Item::AllProducts);
    const ConfigurationValue<double> number("Plain", "", 7.0, Item::Visible, Item::LoadAndSave,
                                            Item::AllProducts);
    EXPECT_FALSE(value->comapreValue(&plain));
    value->adoptValue(&number);
    EXPECT_FALSE(value->hasValue());
    value->adoptValue(&plain);
    EXPECT_EQ(7, value->getValue());
    EXPECT_TRUE(value->comapreValue(&plain));
    EXPECT_TRUE(plain.comapreValue(value.get()));
}

TEST(ConstrainedValue, IsCopiedWithItsObject) {
    Print print;
    print.copies().setValue(4);
    const std::unique_ptr<ConfigurationObject> clone(print.clone());
    const Print copy(print);
    Print assigned;
    assigned = print;
    for (const Print* const other :
         {dynamic_cast<const Print*>(clone.get()), &copy, static_cast<const Print*>(&assigned)}) {
        EXPECT_EQ(4, other->copies().getValue());
        EXPECT_FALSE(other->copies().isAllowed(11));
        EXPECT_NE(&print.copies(), &other->copies());
    }
}

/// Takes its limits from a state that its factory does not know.
class Widened : public ConfigurationObject {
public:
    explicit Widened(int maximum = 10)
        : ConfigurationObject("Widened", "", LoadAndSave, AllProducts) {
        addConfigurationValue(make<int>("Copies", 1, ruleOfRange(1, maximum)).release());
    }
    ConfigurationObject* createConfigurationObject() const override { return new Widened; }
};

TEST(ConstrainedValue, KeepsItsRuleInAnObjectWhoseFactoryHasAnother) {
    const Widened wide(20);
    const std::unique_ptr<ConfigurationObject> clone(wide.clone());
    EXPECT_EQ("20", clone->getConfigurationValue("Copies")->getConstraint().maximum);
}

class ConstrainedValueInFiles : public ViewFixture {};

TEST_F(ConstrainedValueInFiles, IsLoadedByLayers) {
    writeTwo("<Print><Copies>4</Copies></Print>", "<Print><Copies>11</Copies></Print>");
    const auto print = add(std::make_shared<Print>());
    EXPECT_EQ(4, print->copies().getValue());
    ASSERT_EQ(1U, m_manager.getLoadProblems().size());
    EXPECT_EQ("\"11\" is not allowed: it must be from 1 to 10; the system file's \"4\" was taken",
              m_manager.getLoadProblems()[0].text);
    EXPECT_EQ(ConfigurationOrigin::System, m_manager.explain().at(0).layer);
}

} // namespace
} // namespace Orvant
