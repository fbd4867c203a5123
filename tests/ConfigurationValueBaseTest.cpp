#include <ConfigurationFramework/ConfigurationValueBase.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Orvant {
namespace {

using Base = ConfigurationValueBase;

class Value : public Base {
public:
    explicit Value(GuiVisibility visibility, ValueType type = StringValue)
        : Base("Name", "Text", visibility, type, LoadOnly, Product2) {}

    void loadContent(ConfigReader&) override {}
    void saveContent(ConfigWriter&) const override {}
    bool comapreValue(const ConfigurationValueBase*) const override { return false; }
    ConfigurationValueBase* clone() const override { return new Value(*this); }
    bool hasValue() const override { return false; }
    void resetValue() override {}
    void adoptValue(const ConfigurationValueBase*) override {}
};

constexpr Base::ValueType allTypes[] = {
    Base::BoolValue,  Base::IntValue,    Base::UnsignedIntValue, Base::DoubleValue,
    Base::FloatValue, Base::StringValue, Base::StringVectorValue};

TEST(ConfigurationValueBase, NumbersTheTypesAndLeavesFourFree) {
    EXPECT_EQ(0u, Base::BoolValue);
    EXPECT_EQ(1u, Base::IntValue);
    EXPECT_EQ(2u, Base::UnsignedIntValue);
    EXPECT_EQ(3u, Base::DoubleValue);
    EXPECT_EQ(5u, Base::FloatValue);
    EXPECT_EQ(6u, Base::StringValue);
    EXPECT_EQ(7u, Base::StringVectorValue);
    EXPECT_EQ(4u, sizeof(Base::ValueType));
}

TEST(ConfigurationValueBase, IsAbstractWithAVirtualDestructor) {
    EXPECT_TRUE(std::is_abstract_v<Base>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Base>);
    EXPECT_TRUE((std::is_base_of_v<ConfigurationItemBase, Base>));
}

TEST(ConfigurationValueBase, IsAnItemOfKindValue) {
    Value value(Base::Visible);
    EXPECT_EQ(Base::ValueItem, value.getConfigItemType());
    EXPECT_EQ("Name", value.getName());
    EXPECT_EQ("Text", value.getDescription());
    EXPECT_EQ(Base::LoadOnly, value.getPersistenceType());
    EXPECT_EQ(Base::Product2, value.getProductType());
    EXPECT_TRUE(value.isEditable());
}

TEST(ConfigurationValueBase, IsVisibleForZeroOnly) {
    EXPECT_TRUE(Value(Base::Visible).isGuiVisible());
    for (const std::uint32_t hidden : {1u, 2u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_FALSE(Value(static_cast<Base::GuiVisibility>(hidden)).isGuiVisible()) << hidden;
}

TEST(ConfigurationValueBase, KeepsItsType) {
    for (const auto type : allTypes)
        EXPECT_EQ(type, Value(Base::Visible, type).getValueType());
}

TEST(ConfigurationValueBase, CopiesVisibilityTypeAndLock) {
    Value original(Base::Hidden, Base::FloatValue);
    original.setEditable(false);
    Value assigned(Base::Visible, Base::IntValue);
    assigned = original;
    for (const Value& copy : {Value(original), assigned}) {
        EXPECT_FALSE(copy.isGuiVisible());
        EXPECT_EQ(Base::FloatValue, copy.getValueType());
        EXPECT_FALSE(copy.isEditable());
    }
}

} // namespace
} // namespace Orvant
