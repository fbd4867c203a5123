#pragma once

#include <ConfigurationFramework/ChangeSubscription.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/SettingDeclaration.h>
#include <ConfigurationFramework/SettingsBase.h>

#include <cmath>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvant {

/// A handle to one value of Settings, which reads and writes it without a cast.
///
/// @code
/// struct View3D : Orvant::Settings<View3D> {
///     View3D() : Settings("View3D", "The 3D view") {}
///     Orvant::Setting<bool> showGrid{this, "ShowGrid", "Whether the grid is drawn", true};
/// };
/// View3D view;
/// view.showGrid = false;
/// @endcode
///
/// What a file holds against the setting's range, choices or condition counts as unreadable: the
/// next layer decides.
///
/// @tparam T bool, int, unsigned int, float, double, std::string, std::vector<std::string>, or an
///           enumeration with EnumTexts
template <typename T>
class Setting : public SettingHandle {
    using Type = SettingType<T>;
    using Stored = typename Type::Stored;

public:
    /// What reading returns: T itself, or a reference to a text or list, valid until the next
    /// change.
    using Value = std::conditional_t<std::is_scalar_v<T>, T, const T&>;

    /// Declares a setting; for use in the class of its owner, as a default member initializer.
    /// @param owner        the Settings that it is a member of
    /// @param name         tag of its element
    /// @param description  comment before its element, and label unless there is a Label
    /// @param defaultValue what it is until it is set or loaded
    /// @param options      in any order: Range, OneOf, Check or a predicate, Label, `hidden`, a
    ///                     ConfigurationItemBase::Persistence and
    ///                     ConfigurationItemBase::ProductType
    /// @throws std::logic_error, with the names of object and setting, for a name that XML does not
    ///         allow or that is declared twice, and for a default that the options do not allow.
    ///         Clang, and an optimising GCC, refuse to compile one that is out of its Range, if
    ///         that is the first option.
    template <typename... Options>
    Setting(SettingsBase* owner, const char* name, const char* description, const T& defaultValue,
            Options... options)
        : SettingHandle(*owner, declareValue<T>(*owner, name, description, defaultValue,
                                                std::move(options)...)) {}
    /// Like the above, with the range first.
    template <typename Number, typename... Options>
        requires(std::is_arithmetic_v<T> && !std::same_as<T, bool>)
    ORVANT_ALWAYS_INLINE Setting(SettingsBase* owner, const char* name, const char* description,
                                 T defaultValue, Range<Number> range, Options... options)
        ORVANT_REFUSE_IF(isOutOf(range, defaultValue),
                         "the default of the setting is out of its range");
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
    ~Setting() = default;

    /// @return the value that applies; of an enumeration whose text was changed to none of its own,
    ///         the default
    Value get() const {
        if constexpr (std::is_enum_v<T>)
            return static_cast<T>(constrained().getCode());
        else
            return stored().effectiveValue();
    }
    /// @copydoc get()
    operator Value() const { return get(); }

    /// Sets the value and tells those who watch it. What the administrator locked stays as it is.
    /// @return false when the setting is locked: nothing was done
    /// @throws std::out_of_range, before anything is changed, for a value that the rules of the
    ///         setting do not allow; the first exception of a callback, when all have been called
    bool set(const T& value) {
        if (isLocked())
            return false;
        if constexpr (std::is_enum_v<T>)
            if (!Type::isListed(value))
                throwNotAllowed(owner(), stored(), nullptr);
        const Stored& text = Type::toStored(value);
        if (!stored().isAllowed(text))
            refuse(text);
        stored().setValue(text);
        owner().tellChanges();
        return true;
    }
    /// set()
    Setting& operator=(const T& value) {
        set(value);
        return *this;
    }
    /// Goes back to the default, and tells those who watch. What the administrator locked stays as
    /// it is.
    /// @return false when the setting is locked: nothing was done
    /// @throws the first exception of a callback, when all have been called
    bool reset() {
        if (isLocked())
            return false;
        stored().resetValue();
        owner().tellChanges();
        return true;
    }

    /// @return whether the value that applies is the default
    bool isDefault() const {
        if constexpr (std::is_enum_v<T>)
            return constrained().getCode() == constrained().getDefaultCode();
        else
            return isSame(stored().effectiveValue(), stored().getDefaultValue());
    }
    /// @return the default
    Value defaultValue() const {
        if constexpr (std::is_enum_v<T>)
            return static_cast<T>(constrained().getDefaultCode());
        else
            return stored().getDefaultValue();
    }
    /// @return whether the setting, its object or one that this is in is locked
    bool isLocked() const { return !stored().isEditable() || owner().isLocked(); }
    /// @return tag of its element
    const std::string& name() const { return stored().getName(); }
    /// @return what a dialogue calls it
    std::string label() const { return stored().getConstraint().label; }
    /// @return the value underneath; of an enumeration, that of its text. It checks neither rules
    ///         nor locks, and tells nobody; valid until its object is cloned into or destroyed.
    ConfigurationValue<Stored>& item() const { return stored(); }

    /// Has a callback told of sets, resets, loads and reloads that change the value that applies:
    /// once for each, with the new value. It may set settings, which is told at once, and end
    /// subscriptions, its own too. Its exceptions reach who sets or loads, when all callbacks have
    /// been called.
    /// @param callback takes the value
    /// @return has to be kept: the callback is called as long as it and the setting live
    template <std::invocable<const T&> Callback>
    [[nodiscard]] ChangeSubscription onChange(Callback callback) {
        auto observer = std::make_shared<Observer<Callback>>(*this, std::move(callback));
        owner().observe(observer);
        return ChangeSubscription(std::move(observer));
    }

    /// @return whether the value that applies is this one
    friend bool operator==(const Setting& setting, const T& value)
        requires(!std::is_scalar_v<T>)
    {
        return setting.get() == value;
    }
    /// @return whether the same value applies
    friend bool operator==(const Setting& first, const Setting& second)
        requires(!std::is_scalar_v<T>)
    {
        return first.get() == second.get();
    }

private:
    template <typename Callback>
    class Observer : public ChangeObserver {
    public:
        Observer(const Setting& setting, Callback callback)
            : m_setting(setting), m_told(setting.get()), m_callback(std::move(callback)) {}

        void tell() override {
            if (!isActive())
                return;
            T value = m_setting.get();
            if (isSame(value, m_told))
                return;
            m_told = value;
            m_callback(std::as_const(value));
        }

    private:
        const Setting& m_setting;
        T m_told;
        Callback m_callback;
    };

    /// Not-a-number is the same as itself.
    template <typename Any>
    static bool isSame(const Any& first, const Any& second) {
        if constexpr (std::is_floating_point_v<Any>)
            return first == second || (std::isnan(first) && std::isnan(second));
        else
            return first == second;
    }

    ConfigurationValue<Stored>& stored() const {
        return static_cast<ConfigurationValue<Stored>&>(value());
    }
    const ConstrainedValue<Stored>& constrained() const {
        return static_cast<const ConstrainedValue<Stored>&>(value());
    }
    [[noreturn]] void refuse(const Stored& value) const {
        ConfigurationValue<Stored> refused(stored());
        refused.setValue(value);
        throwNotAllowed(owner(), stored(), &refused);
    }
};

template <typename T>
template <typename Number, typename... Options>
    requires(std::is_arithmetic_v<T> && !std::same_as<T, bool>)
ORVANT_ALWAYS_INLINE Setting<T>::Setting(SettingsBase* owner, const char* name,
                                         const char* description, T defaultValue,
                                         Range<Number> range, Options... options)
    : SettingHandle(*owner,
                    declareValue<T>(*owner, name, description, defaultValue,
                                    checkedAtBuild(range, defaultValue), std::move(options)...)) {}

} // namespace Orvant
