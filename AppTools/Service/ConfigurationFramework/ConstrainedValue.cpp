#include <ConfigurationFramework/ConstrainedValue.h>

#include <ConfigurationFramework/ValueText.h>

#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

template <typename T>
std::optional<std::string> limitText(const std::optional<T>& limit) {
    if constexpr (std::is_arithmetic_v<T>)
        return limit ? std::optional(exactText(*limit)) : std::nullopt;
    else
        return std::nullopt;
}

} // namespace

template <typename T>
ConstrainedValue<T>::ConstrainedValue(const std::string& name, const std::string& description,
                                      const T& defaultValue, GuiVisibility guiVisibility,
                                      Persistence persistence, ProductType productType,
                                      std::shared_ptr<const ValueRule<T>> rule)
    : ConfigurationValue<T>(name, description, defaultValue, guiVisibility, persistence,
                            productType),
      m_rule(std::move(rule)) {
    if (!m_rule->allows(defaultValue))
        throw std::logic_error("the default of \"" + name + "\" is not allowed: it must be " +
                               getConstraint().describe());
    m_defaultCode = m_code = codeOf(defaultValue);
}

template <typename T>
ConfigurationValueBase* ConstrainedValue<T>::clone() const {
    return new ConstrainedValue<T>(*this);
}

template <typename T>
ConfigurationConstraint ConstrainedValue<T>::getConstraint() const {
    ConfigurationConstraint constraint = ConfigurationValue<T>::getConstraint();
    if (!m_rule->label.empty())
        constraint.label = m_rule->label;
    constraint.minimum = limitText(m_rule->minimum);
    constraint.maximum = limitText(m_rule->maximum);
    for (const auto& [value, label] : m_rule->choices)
        constraint.choices.push_back({exactText(value), label.empty() ? exactText(value) : label});
    if (m_rule->condition)
        constraint.condition =
            m_rule->conditionText.empty() ? "what its condition allows" : m_rule->conditionText;
    return constraint;
}

template <typename T>
bool ConstrainedValue<T>::isAllowed(const T& value) const {
    return m_rule->allows(value);
}

template <typename T>
void ConstrainedValue<T>::onValueChanged() {
    if (!m_rule->codes.empty())
        m_code = codeOf(this->getValue());
}

template <typename T>
std::int64_t ConstrainedValue<T>::codeOf(const T& value) const {
    if constexpr (std::is_same_v<T, typename ValueRule<T>::Item>)
        for (std::size_t i = 0; i < m_rule->codes.size(); ++i)
            if (m_rule->choices[i].first == value)
                return m_rule->codes[i];
    return m_defaultCode;
}

template class ConstrainedValue<bool>;
template class ConstrainedValue<int>;
template class ConstrainedValue<unsigned int>;
template class ConstrainedValue<double>;
template class ConstrainedValue<float>;
template class ConstrainedValue<std::string>;
template class ConstrainedValue<std::vector<std::string>>;

} // namespace Orvant
