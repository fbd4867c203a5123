#pragma once

#include <ConfigurationFramework/ConfigurationValueBase.h>

#include <optional>
#include <string>
#include <vector>

namespace Orvant {

template <typename T>
class Setting;

/// One named, typed setting with a default.
///
/// @code
/// ConfigurationValue<double> zoom("Zoom", "Zoom factor at start", 1.0,
///                                 ConfigurationItemBase::Visible,
///                                 ConfigurationItemBase::LoadAndSave,
///                                 ConfigurationItemBase::AllProducts);
/// zoom.setValue(1.5);
/// @endcode
///
/// @tparam T one of int, unsigned int, float, double, std::string, std::vector<std::string>, bool
template <typename T>
class ConfigurationValue : public ConfigurationValueBase {
public:
    /// Makes a value that reads as its default.
    /// @param name          XML tag of the value and its name in look-ups
    /// @param description   label in dialogues and comment before the element
    /// @param defaultValue  what the value is until it is set or loaded
    /// @param guiVisibility whether a dialogue shows the value
    /// @param persistence   whether the value is loaded and saved
    /// @param productType   products that have the value
    ConfigurationValue(const std::string& name, const std::string& description,
                       const T& defaultValue, GuiVisibility guiVisibility, Persistence persistence,
                       ProductType productType);
    /// Copies default, value and lock.
    /// @{
    ConfigurationValue(const ConfigurationValue&) = default;
    ConfigurationValue& operator=(const ConfigurationValue&) = default;
    /// @}

    /// @return the value, or the default when there is none
    /// @throws std::bad_optional_access when an override of hasValue() claims a value that is not
    ///         there
    const T& getValue() const;
    /// @return the default
    const T& getDefaultValue() const { return m_defaultValue; }
    /// Sets the value; one that equals the default is still a value. Does not check locks: the
    /// application must honour them as well.
    void setValue(const T& value) {
        m_value = value;
        onValueChanged();
    }

    void loadContent(ConfigReader& reader) override;
    void saveContent(ConfigWriter& writer) const override;
    /// @copydoc ConfigurationValueBase::comapreValue
    /// Floating-point values are compared without tolerance.
    bool comapreValue(const ConfigurationValueBase* other) const override;
    ConfigurationValueBase* clone() const override;
    bool hasValue() const override { return m_value.has_value(); }
    void resetValue() override {
        m_value.reset();
        onValueChanged();
    }
    void adoptValue(const ConfigurationValueBase* other) override;
    /// @return whether a load takes a value; what it does not take counts as unreadable. True by
    ///         default.
    virtual bool isAllowed(const T& value) const;

protected:
    /// Is called when the value was set, loaded, adopted or reset. Does nothing by default.
    virtual void onValueChanged();

private:
    template <typename U>
    friend class Setting; // which reads as fast as a member

    /// The value, provided that hasValue() is not overridden.
    const T& effectiveValue() const { return m_value ? *m_value : m_defaultValue; }

    T m_defaultValue;
    std::optional<T> m_value;
};

extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<bool>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<int>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<unsigned int>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<double>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<float>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValue<std::string>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT
    ConfigurationValue<std::vector<std::string>>;

} // namespace Orvant
