#pragma once

#include <ConfigurationFramework/ConstrainedValue.h>
#include <ConfigurationFramework/Export.h>
#include <ConfigurationFramework/SettingRules.h>

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// How a Setting becomes a value: what its type is stored as, and what its options say.

/// @cond
// A default that is out of its range is found by the compiler where that can tell: Clang always,
// GCC when it optimises. It is an exception at construction everywhere.
#if defined(__clang__)
#define ORVANT_REFUSE_IF(condition, text)                                                          \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wgcc-compat\"")          \
        __attribute__((diagnose_if(condition, text, "error"))) _Pragma("clang diagnostic pop")
#else
#define ORVANT_REFUSE_IF(condition, text)
#endif
#if defined(__GNUC__) && !defined(__clang__) && defined(__OPTIMIZE__)
#define ORVANT_ALWAYS_INLINE [[gnu::always_inline]] inline
#else
#define ORVANT_ALWAYS_INLINE
#endif
/// @endcond

namespace Orvant {

class SettingsBase;

/// How a type of settings is stored.
/// @tparam T type of a Setting
template <typename T>
struct SettingType {
    static_assert(
        !std::is_enum_v<T>,
        "an enumeration needs texts to be a Setting: specialise Orvant::EnumTexts for it, "
        "with a static constexpr std::array `texts` of Orvant::EnumText");
    static_assert(std::is_enum_v<T>,
                  "a Setting holds bool, int, unsigned int, float, double, std::string, "
                  "std::vector<std::string> or an enumeration with Orvant::EnumTexts");
    using Stored = std::string; ///< none
};

/// Stored as it is.
template <StoredType T>
struct SettingType<T> {
    using Stored = T; ///< type of the ConfigurationValue
    /// @return the value as it is stored
    static const T& toStored(const T& value) { return value; }
};

/// @return whether each enumerator is listed once, with a text of its own
template <EnumWithTexts E>
constexpr bool areTextsDistinct() {
    const auto& texts = EnumTexts<E>::texts;
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (texts[i].value == texts[j].value || texts[i].text == texts[j].text)
                return false;
    return true;
}

/// Stored as its text.
template <EnumWithTexts E>
struct SettingType<E> {
    using Stored = std::string; ///< type of the ConfigurationValue

    static_assert(areTextsDistinct<E>(),
                  "Orvant::EnumTexts lists each enumerator once, each with a text of its own");

    /// @return whether the enumerator has a text
    static constexpr bool isListed(E value) {
        return std::ranges::any_of(EnumTexts<E>::texts,
                                   [&](const auto& entry) { return entry.value == value; });
    }
    /// @return what is listed of an enumerator
    /// @throws std::out_of_range when it is not
    static const auto& entryOf(E value) {
        for (const auto& entry : EnumTexts<E>::texts)
            if (entry.value == value)
                return entry;
        throw std::out_of_range("the enumerator has no text");
    }
    /// @return its text
    /// @throws std::out_of_range when it has none
    static std::string toStored(E value) { return std::string(entryOf(value).text); }
};

/// What the options of a Setting say.
/// @tparam T type of the Setting
template <typename T>
class SettingOptions {
    using Type = SettingType<T>;
    using Stored = typename Type::Stored;
    using Rule = ValueRule<Stored>;
    static constexpr bool isNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, bool>;

public:
    /// Whether a dialogue shows the setting.
    ConfigurationItemBase::GuiVisibility visibility = ConfigurationItemBase::Visible;
    /// Whether it is loaded and saved.
    ConfigurationItemBase::Persistence persistence = ConfigurationItemBase::LoadAndSave;
    /// Products that have it.
    ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;

    /// Takes one option.
    /// @throws std::logic_error for a second range, list of choices or condition, and for a limit
    ///         or choice that is not of the setting's type
    /// @{
    void add(HiddenSetting /*option*/) { visibility = ConfigurationItemBase::Hidden; }
    void add(ConfigurationItemBase::Persistence option) { persistence = option; }
    void add(ConfigurationItemBase::ProductType option) { products = option; }
    void add(Label option) { rule().label = std::move(option.text); }
    template <typename Number>
    void add(Range<Number> option) {
        static_assert(isNumber, "only a Setting of numbers has a range");
        if constexpr (isNumber) {
            takeOnce(m_hasRange, "ranges");
            rule().minimum = toNumber(option.minimum);
            rule().maximum = toNumber(option.maximum);
            if (!(*rule().minimum <= *rule().maximum))
                throw std::logic_error("the smallest number of a range is larger than the largest");
        }
    }
    template <typename Value, std::size_t N>
    void add(const OneOf<Value, N>& option) {
        takeOnce(m_hasChoices, "lists of choices");
        rule().choices.clear();
        rule().codes.clear();
        for (const Value& value : option.values) {
            if constexpr (std::is_enum_v<T>)
                addChoice(rule(), Type::entryOf(value));
            else if constexpr (isNumber)
                rule().choices.emplace_back(toNumber(value), "");
            else
                rule().choices.emplace_back(value, "");
        }
    }
    template <typename Condition>
    void add(Check<Condition> option) {
        rule().conditionText = std::move(option.text);
        add(std::move(option.condition));
    }
    template <std::predicate<const T&> Condition>
    void add(Condition condition) {
        takeOnce(m_hasCondition, "conditions");
        if constexpr (std::is_enum_v<T>)
            rule().condition = [condition](const std::string& text) {
                for (const auto& entry : EnumTexts<T>::texts)
                    if (entry.text == text)
                        return static_cast<bool>(condition(entry.value));
                return false;
            };
        else
            rule().condition = std::move(condition);
    }
    /// @}

    /// @return which values are allowed; null: any
    std::shared_ptr<const Rule> takeRule() {
        if constexpr (std::is_enum_v<T>)
            if (m_rule == nullptr)
                return listedTexts();
        return std::move(m_rule);
    }

private:
    Rule& rule() {
        if (m_rule == nullptr) {
            if constexpr (std::is_enum_v<T>)
                m_rule = std::make_shared<Rule>(*listedTexts());
            else
                m_rule = std::make_shared<Rule>();
        }
        return *m_rule;
    }
    /// Shared by all settings of the enumeration that say nothing else.
    static const std::shared_ptr<const Rule>& listedTexts() {
        static const std::shared_ptr<const Rule> texts = [] {
            auto made = std::make_shared<Rule>();
            for (const auto& entry : EnumTexts<T>::texts)
                addChoice(*made, entry);
            return made;
        }();
        return texts;
    }
    static void takeOnce(bool& isTaken, const char* what) {
        if (std::exchange(isTaken, true))
            throw std::logic_error(std::string("it has two ") + what);
    }
    /// Whether a number is one of the setting's type, perhaps rounded.
    template <typename Number>
    static bool isOfType(Number number) {
        using Limits = std::numeric_limits<Stored>;
        if constexpr (std::is_integral_v<Number> && std::is_integral_v<Stored>)
            return std::in_range<Stored>(number);
        const auto wide = static_cast<double>(number);
        if constexpr (std::is_integral_v<Stored>)
            return wide == std::trunc(wide) && wide >= Limits::min() && wide <= Limits::max();
        else
            return !std::isfinite(wide) || std::abs(wide) <= Limits::max();
    }
    template <typename Number>
    static Stored toNumber(Number number) {
        if (!isOfType(number))
            throw std::logic_error("a limit or choice is not a value of the setting's type");
        return static_cast<Stored>(number);
    }
    static void addChoice(Rule& rule, const auto& entry) {
        rule.choices.emplace_back(entry.text, entry.label);
        rule.codes.push_back(static_cast<std::int64_t>(entry.value));
    }

    std::shared_ptr<Rule> m_rule;
    bool m_hasRange = false;
    bool m_hasChoices = false;
    bool m_hasCondition = false;
};

/// @throws std::logic_error with the names of object and setting
[[noreturn]] ORVANT_CONFIGURATIONFRAMEWORK_EXPORT void
throwBadDeclaration(const SettingsBase& owner, const char* name, const std::string& reason);

/// @param owner   the object of the setting
/// @param value   the setting
/// @param refused a value of its type that is not allowed; null: an enumerator without a text
/// @throws std::out_of_range with the path of the setting, the refused value, and what is allowed
[[noreturn]] ORVANT_CONFIGURATIONFRAMEWORK_EXPORT void
throwNotAllowed(const SettingsBase& owner, const ConfigurationValueBase& value,
                const ConfigurationValueBase* refused);

/// @return the value of a Setting
/// @throws std::logic_error, with the names of object and setting, for options that contradict each
///         other or the default
template <typename T, typename... Options>
std::unique_ptr<ConfigurationValueBase> declareValue(const SettingsBase& owner, const char* name,
                                                     const char* description, const T& defaultValue,
                                                     Options... options) {
    using Type = SettingType<T>;
    using Stored = typename Type::Stored;
    try {
        SettingOptions<T> taken;
        (taken.add(std::move(options)), ...);
        const auto& [visibility, persistence, products] =
            std::tie(taken.visibility, taken.persistence, taken.products);
        const Stored& stored = Type::toStored(defaultValue);
        if (auto rule = taken.takeRule())
            return std::make_unique<ConstrainedValue<Stored>>(
                name, description, stored, visibility, persistence, products, std::move(rule));
        return std::make_unique<ConfigurationValue<Stored>>(name, description, stored, visibility,
                                                            persistence, products);
    } catch (const std::logic_error& error) { // std::out_of_range is one
        throwBadDeclaration(owner, name, error.what());
    }
}

/// @cond
template <typename Number, typename T>
constexpr bool isOutOf(const Range<Number>& range, const T& value) {
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
        return !range.contains(value);
    else
        return false; // another message follows
}

#if defined(__GNUC__) && !defined(__clang__) && defined(__OPTIMIZE__)
[[gnu::error("the default of the setting is out of its range")]] void refuseDefault();

template <typename Number, typename T>
[[gnu::always_inline]] inline Range<Number> checkedAtBuild(Range<Number> range, T defaultValue) {
    const bool isOutside = isOutOf(range, defaultValue);
    if (__builtin_constant_p(isOutside) && isOutside)
        refuseDefault();
    return range;
}
#else
template <typename Number, typename T>
Range<Number> checkedAtBuild(Range<Number> range, T /*defaultValue*/) {
    return range;
}
#endif
/// @endcond

} // namespace Orvant
