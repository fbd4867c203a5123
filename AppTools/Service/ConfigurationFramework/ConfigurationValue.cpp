#include <ConfigurationFramework/ConfigurationValue.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>

#include <functional>
#include <utility>

namespace Orvant {

namespace {

template <typename T>
using Getter = ConfigurationAccessResult (ConfigReader::*)(const std::string&, T&, bool&);

/// What depends on the type of a value.
template <typename T>
struct TypeOf;

template <>
struct TypeOf<bool> {
    static constexpr auto type = ConfigurationValueBase::BoolValue;
    static constexpr Getter<bool> get = &ConfigReader::getBool;
    static constexpr auto put = &ConfigWriter::putBool;
};
template <>
struct TypeOf<int> {
    static constexpr auto type = ConfigurationValueBase::IntValue;
    static constexpr Getter<int> get = &ConfigReader::getInt;
    static constexpr auto put = &ConfigWriter::putInt;
};
template <>
struct TypeOf<unsigned int> {
    static constexpr auto type = ConfigurationValueBase::UnsignedIntValue;
    static constexpr Getter<unsigned int> get = &ConfigReader::getUnsignedInt;
    static constexpr auto put = &ConfigWriter::putUnsignedInt;
};
template <>
struct TypeOf<double> {
    static constexpr auto type = ConfigurationValueBase::DoubleValue;
    static constexpr Getter<double> get = &ConfigReader::getDouble;
    static constexpr auto put = &ConfigWriter::putDouble;
};
template <>
struct TypeOf<float> {
    static constexpr auto type = ConfigurationValueBase::FloatValue;
    static constexpr Getter<float> get = &ConfigReader::getFloat;
    static constexpr auto put = &ConfigWriter::putFloat;
};
template <>
struct TypeOf<std::string> {
    static constexpr auto type = ConfigurationValueBase::StringValue;
    static constexpr Getter<std::string> get = &ConfigReader::getString;
    static constexpr void (ConfigWriter::*put)(const std::string&, const std::string&,
                                               const std::string&) = &ConfigWriter::putString;
};
template <>
struct TypeOf<std::vector<std::string>> {
    static constexpr auto type = ConfigurationValueBase::StringVectorValue;
    static constexpr Getter<std::vector<std::string>> get = &ConfigReader::getStrings;
    static constexpr auto put = &ConfigWriter::putStringVector;
};

} // namespace

template <typename T>
ConfigurationValue<T>::ConfigurationValue(const std::string& name, const std::string& description,
                                          const T& defaultValue, GuiVisibility guiVisibility,
                                          Persistence persistence, ProductType productType)
    : ConfigurationValueBase(name, description, guiVisibility, TypeOf<T>::type, persistence,
                             productType),
      m_defaultValue(defaultValue) {}

template <typename T>
const T& ConfigurationValue<T>::getValue() const {
    return hasValue() ? m_value.value() : m_defaultValue;
}

template <typename T>
void ConfigurationValue<T>::loadContent(ConfigReader& reader) {
    if (!isLoadable() || !isEditable())
        return;
    T loaded{};
    bool editable = isEditable();
    const auto result = std::invoke(TypeOf<T>::get, reader, getName(), loaded, editable);
    setEditable(editable);
    if (result != ConfigurationAccessResult::Success || !isAllowed(loaded)) {
        resetValue();
        return;
    }
    m_value = std::move(loaded);
    onValueChanged();
}

template <typename T>
void ConfigurationValue<T>::saveContent(ConfigWriter& writer) const {
    if (isWrittenByCurrentProduct())
        std::invoke(TypeOf<T>::put, writer, getName(), getValue(), getDescription());
}

template <typename T>
bool ConfigurationValue<T>::comapreValue(const ConfigurationValueBase* other) const {
    const auto* const sameType = dynamic_cast<const ConfigurationValue<T>*>(other);
    return sameType != nullptr && getValue() == sameType->getValue();
}

template <typename T>
ConfigurationValueBase* ConfigurationValue<T>::clone() const {
    return new ConfigurationValue<T>(*this);
}

template <typename T>
void ConfigurationValue<T>::adoptValue(const ConfigurationValueBase* other) {
    if (const auto* const sameType = dynamic_cast<const ConfigurationValue<T>*>(other))
        setValue(sameType->getValue());
}

template <typename T>
bool ConfigurationValue<T>::isAllowed(const T& /*value*/) const {
    return true;
}

template <typename T>
void ConfigurationValue<T>::onValueChanged() {}

template class ConfigurationValue<bool>;
template class ConfigurationValue<int>;
template class ConfigurationValue<unsigned int>;
template class ConfigurationValue<double>;
template class ConfigurationValue<float>;
template class ConfigurationValue<std::string>;
template class ConfigurationValue<std::vector<std::string>>;

} // namespace Orvant
