#pragma once

#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/ValueRule.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvant {

/// A setting of which not every value is allowed: what a file holds against the rule counts as
/// unreadable, so that the next layer decides.
///
/// @code
/// auto rule = std::make_shared<ValueRule<int>>();
/// rule->minimum = 1;
/// ConstrainedValue<int> copies("Copies", "Copies of each sheet", 1,
///                              ConfigurationItemBase::Visible,
///                              ConfigurationItemBase::LoadAndSave,
///                              ConfigurationItemBase::AllProducts, rule);
/// if (copies.isAllowed(3))
///     copies.setValue(3);
/// @endcode
///
/// Like locks, the rule is not checked by setValue(): ask isAllowed() before, or use a Setting,
/// which does.
///
/// @tparam T type of a ConfigurationValue
template <typename T>
class ConstrainedValue final : public ConfigurationValue<T> {
public:
    using typename ConfigurationItemBase::GuiVisibility;
    using typename ConfigurationItemBase::Persistence;
    using typename ConfigurationItemBase::ProductType;

    /// Makes a value that reads as its default.
    /// @param name          XML tag of the value and its name in look-ups
    /// @param description   label in dialogues and comment before the element
    /// @param defaultValue  what the value is until it is set or loaded
    /// @param guiVisibility whether a dialogue shows the value
    /// @param persistence   whether the value is loaded and saved
    /// @param productType   products that have the value
    /// @param rule          which values are allowed; values may share it; not null
    /// @throws std::logic_error when the rule does not allow the default, and what its condition
    ///         throws
    ConstrainedValue(const std::string& name, const std::string& description, const T& defaultValue,
                     GuiVisibility guiVisibility, Persistence persistence, ProductType productType,
                     std::shared_ptr<const ValueRule<T>> rule);

    ConfigurationValueBase* clone() const override;
    ConfigurationConstraint getConstraint() const override;
    /// @throws what the condition of the rule throws
    bool isAllowed(const T& value) const override;
    /// @return which values are allowed
    const ValueRule<T>& getRule() const { return *m_rule; }
    /// @return code of the choice that applies; of a value that is none of them, getDefaultCode()
    std::int64_t getCode() const { return m_code; }
    /// @return code of the default; 0 when the rule has no codes
    std::int64_t getDefaultCode() const { return m_defaultCode; }

protected:
    void onValueChanged() override;

private:
    std::int64_t codeOf(const T& value) const;

    std::shared_ptr<const ValueRule<T>> m_rule;
    std::int64_t m_defaultCode = 0;
    std::int64_t m_code = 0; ///< known before it is asked for, so that reading needs no search
};

extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<bool>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<int>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<unsigned int>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<double>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<float>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConstrainedValue<std::string>;
extern template class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT
    ConstrainedValue<std::vector<std::string>>;

} // namespace Orvant
