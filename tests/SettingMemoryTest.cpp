// How many allocations a declaration makes. The program counts all of them.

#include <ConfigurationFramework/Settings.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

std::atomic<std::size_t> s_allocations = 0;

} // namespace

void* operator new(std::size_t size) {
    ++s_allocations;
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Orvant {
namespace {

// All too long for the room that a string has in itself.
constexpr const char* first = "TheFirstValueOfTheObject";
constexpr const char* second = "TheSecondValueOfTheObject";
constexpr const char* objectName = "TheObjectThatHasTheValues";
constexpr const char* description = "what is said of the value in dialogues";

template <typename T>
struct Sample {
    static T get() { return T(1); }
};
template <>
struct Sample<std::string> {
    static const char* get() { return "a default that is a rather long text"; }
};
template <>
struct Sample<std::vector<std::string>> {
    static std::vector<std::string> get() { return {description, description}; }
};

template <typename T>
struct Declared : Settings<Declared<T>> {
    Declared() : Settings<Declared<T>>(objectName) {}
    Setting<T> one{this, first, description, Sample<T>::get()};
    Setting<T> other{this, second, description, Sample<T>::get(), hidden};
};

template <typename T>
struct ByHand : ConfigurationObject {
    ByHand() : ConfigurationObject(objectName, "", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<T>(first, description, Sample<T>::get(),
                                                        Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<T>(second, description, Sample<T>::get(),
                                                        Hidden, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new ByHand; }
};

template <typename Object>
std::size_t allocationsOf() {
    const std::size_t before = s_allocations;
    const Object object;
    return s_allocations - before;
}

template <typename T>
class SettingMemory : public testing::Test {};

using Types =
    testing::Types<bool, int, unsigned int, float, double, std::string, std::vector<std::string>>;
TYPED_TEST_SUITE(SettingMemory, Types);

TYPED_TEST(SettingMemory, IsAllocatedNoMoreOftenThanByHand) {
    const std::size_t byHand = allocationsOf<ByHand<TypeParam>>();
    EXPECT_GE(byHand, 2U); // they are counted
    EXPECT_LE(allocationsOf<Declared<TypeParam>>(), byHand);
}

} // namespace
} // namespace Orvant
