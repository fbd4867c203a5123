#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace Orvant {
namespace {

TEST(ConfigurationAccessResult, HasTwoNumbersIn32Bits) {
    EXPECT_EQ(0u, ConfigurationAccessResult::Success);
    EXPECT_EQ(1u, ConfigurationAccessResult::Failure);
    EXPECT_EQ(4u, sizeof(ConfigurationAccessResult));
}

TEST(ConfigReader, IsAbstractAndDeletedThroughItsBase) {
    EXPECT_TRUE(std::is_abstract_v<ConfigReader>);
    EXPECT_TRUE(std::has_virtual_destructor_v<ConfigReader>);
    EXPECT_TRUE((std::is_base_of_v<ConfigReader, SimpleConfigReader>));
    EXPECT_TRUE((std::is_base_of_v<ConfigReader, AdvancedConfigReader>));
    EXPECT_FALSE(std::is_abstract_v<SimpleConfigReader>);
    EXPECT_FALSE(std::is_abstract_v<AdvancedConfigReader>);
}

TEST(ConfigReader, IsNotCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<SimpleConfigReader>);
    EXPECT_FALSE(std::is_copy_assignable_v<SimpleConfigReader>);
    EXPECT_FALSE(std::is_copy_constructible_v<AdvancedConfigReader>);
    EXPECT_FALSE(std::is_copy_assignable_v<AdvancedConfigReader>);
}

#if defined(__GNUC__) && defined(__x86_64__)

/// The slot of a virtual function in the virtual table: under the Itanium C++ ABI a pointer to it
/// is one more than its offset there.
template <typename Function>
std::size_t slotOf(Function function) {
    std::size_t pointer = 0;
    static_assert(sizeof(function) >= sizeof(pointer));
    std::memcpy(&pointer, &function, sizeof(pointer));
    return (pointer - 1) / sizeof(void*);
}

template <typename Reader>
class ReaderVirtualTable : public testing::Test {};

using Readers = testing::Types<ConfigReader, SimpleConfigReader, AdvancedConfigReader>;
TYPED_TEST_SUITE(ReaderVirtualTable, Readers);

/// Modules of the suite that were built earlier call by these positions.
TYPED_TEST(ReaderVirtualTable, KeepsTheOrderOfTheOperations) {
    using Result = ConfigurationAccessResult;
    using Text = const std::string&;
    using Object = ConfigurationObject&;
    const auto slot = []<typename... Arguments>(Result (TypeParam::*function)(Arguments...)) {
        return slotOf(function);
    };
    const auto found = [&]<typename... Arguments>() {
        return slotOf(
            static_cast<Result (TypeParam::*)(Arguments...)>(&TypeParam::findAndGetClassContents));
    };
    const auto got = [&]<typename... Arguments>() {
        return slotOf(
            static_cast<Result (TypeParam::*)(Arguments...)>(&TypeParam::getClassContents));
    };
    const std::vector<std::size_t> slots = {
        found.template operator()<Text, Text, Object>(),
        found.template operator()<Text, Object>(),
        got.template operator()<Object>(),
        got.template
        operator()<Text, const std::vector<std::string>&, std::vector<ConfigurationObject*>&>(),
        got.template operator()<Text, Text, Object>(),
        got.template operator()<Text, Object>(),
        slot(&TypeParam::getBool),
        slot(&TypeParam::getInt),
        slot(&TypeParam::getUnsignedInt),
        slot(&TypeParam::getDouble),
        slot(&TypeParam::getDoubleScientific),
        slot(&TypeParam::getFloat),
        slotOf(
            static_cast<Result (TypeParam::*)(Text, std::string&, bool&)>(&TypeParam::getString)),
        slot(&TypeParam::getStringVector),
        slot(&TypeParam::tagExists),
        slot(&TypeParam::getEditable),
        slot(&TypeParam::getKeys),
        slot(&TypeParam::createConfigurationObjects),
        slotOf(&TypeParam::getStrings),
    };
    ASSERT_EQ(19u, slots.size());
    // The destructor has the first two slots: one deletes and one does not.
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(i + 2, slots[i]) << "operation " << i + 1;
}

#endif

} // namespace
} // namespace Orvant
