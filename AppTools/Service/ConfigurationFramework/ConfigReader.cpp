#include <ConfigurationFramework/ConfigReader.h>

namespace Orvant {

ConfigReader::~ConfigReader() = default;

ConfigurationAccessResult ConfigReader::getUnsignedInt(const std::string& name, unsigned int& value,
                                                       bool& editable) {
    int signedValue = 0;
    const auto result = getInt(name, signedValue, editable);
    value = static_cast<unsigned int>(signedValue);
    return result;
}

ConfigurationAccessResult ConfigReader::getFloat(const std::string& name, float& value,
                                                 bool& editable) {
    double wideValue = 0.0;
    const auto result = getDouble(name, wideValue, editable);
    value = static_cast<float>(wideValue);
    return result;
}

ConfigurationAccessResult ConfigReader::getStrings(const std::string& name,
                                                   std::vector<std::string>& values,
                                                   bool& editable) {
    std::map<std::string, bool> itemEditable;
    return getStringVector(name, values, editable, itemEditable);
}

} // namespace Orvant
