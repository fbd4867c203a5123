#include "LayeredDomReader.h"

#include <ConfigurationFramework/ConfigurationObject.h>

namespace Orvant::Support {

namespace {

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

} // namespace

ConfigurationAccessResult LayeredDomReader::addSource(const std::string& document,
                                                      const std::list<std::string>& nodePath,
                                                      AdvancedConfigReader::Priority priority) {
    auto source = std::make_shared<DomConfigReader>(document);
    for (const std::string& name : nodePath)
        if (source->setCurrentNode(name) == failure)
            return failure;
    m_sources[priority] = source;
    return success;
}

template <typename Operation>
ConfigurationAccessResult LayeredDomReader::askAll(Operation operation) {
    bool found = false;
    for (const auto& [priority, source] : m_sources)
        if (operation(*source) == success)
            found = true;
    return found ? success : failure;
}

template <typename Operation>
ConfigurationAccessResult LayeredDomReader::load(ConfigurationObject& object, Operation operation) {
    std::unique_ptr<ConfigurationObject> systemCopy;
    bool found = false;
    for (const auto& [priority, source] : m_sources) {
        if (operation(*source) == failure)
            continue;
        found = true;
        if (priority == AdvancedConfigReader::System)
            systemCopy.reset(object.clone());
        if (priority == AdvancedConfigReader::User && systemCopy != nullptr)
            object.overwriteInvalidConfigValues(systemCopy.get());
    }
    if (found)
        object.emitSignalsAfterConfigLoading();
    return found ? success : failure;
}

ConfigurationAccessResult LayeredDomReader::findAndGetClassContents(const std::string& name,
                                                                    const std::string& key,
                                                                    ConfigurationObject& object) {
    return load(object, [&](ConfigReader& source) {
        return source.findAndGetClassContents(name, key, object);
    });
}

ConfigurationAccessResult LayeredDomReader::findAndGetClassContents(const std::string& name,
                                                                    ConfigurationObject& object) {
    return load(object,
                [&](ConfigReader& source) { return source.findAndGetClassContents(name, object); });
}

ConfigurationAccessResult LayeredDomReader::getClassContents(ConfigurationObject& object) {
    if (m_sources.empty())
        return failure;
    m_sources.rbegin()->second->getClassContents(object);
    object.emitSignalsAfterConfigLoading();
    return success;
}

ConfigurationAccessResult
LayeredDomReader::getClassContents(const std::string& name, const std::vector<std::string>& keys,
                                   std::vector<ConfigurationObject*>& objects) {
    bool allFound = true;
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (getClassContents(name, keys[i], *objects[i]) == failure)
            allFound = false;
    return allFound ? success : failure;
}

ConfigurationAccessResult LayeredDomReader::getClassContents(const std::string& name,
                                                             const std::string& key,
                                                             ConfigurationObject& object) {
    return load(object,
                [&](ConfigReader& source) { return source.getClassContents(name, key, object); });
}

ConfigurationAccessResult LayeredDomReader::getClassContents(const std::string& name,
                                                             ConfigurationObject& object) {
    return load(object,
                [&](ConfigReader& source) { return source.getClassContents(name, object); });
}

ConfigurationAccessResult LayeredDomReader::getBool(const std::string& name, bool& value,
                                                    bool& editable) {
    return askAll([&](ConfigReader& source) { return source.getBool(name, value, editable); });
}

ConfigurationAccessResult LayeredDomReader::getInt(const std::string& name, int& value,
                                                   bool& editable) {
    return askAll([&](ConfigReader& source) { return source.getInt(name, value, editable); });
}

ConfigurationAccessResult LayeredDomReader::getUnsignedInt(const std::string& name,
                                                           unsigned int& value, bool& editable) {
    int number = 0;
    const auto result = getInt(name, number, editable);
    value = static_cast<unsigned int>(number);
    return result;
}

ConfigurationAccessResult LayeredDomReader::getDouble(const std::string& name, double& value,
                                                      bool& editable) {
    return askAll([&](ConfigReader& source) { return source.getDouble(name, value, editable); });
}

ConfigurationAccessResult LayeredDomReader::getDoubleScientific(const std::string& name,
                                                                const int& precision, double& value,
                                                                bool& editable) {
    return askAll([&](ConfigReader& source) {
        return source.getDoubleScientific(name, precision, value, editable);
    });
}

ConfigurationAccessResult LayeredDomReader::getFloat(const std::string& name, float& value,
                                                     bool& editable) {
    double number = 0.0;
    const auto result = getDouble(name, number, editable);
    value = static_cast<float>(number);
    return result;
}

ConfigurationAccessResult LayeredDomReader::getString(const std::string& name, std::string& value,
                                                      bool& editable) {
    return askAll([&](ConfigReader& source) { return source.getString(name, value, editable); });
}

ConfigurationAccessResult
LayeredDomReader::getStringVector(const std::string& name, std::vector<std::string>& values,
                                  bool& editable, std::map<std::string, bool>& itemEditable) {
    return askAll([&](ConfigReader& source) {
        return source.getStringVector(name, values, editable, itemEditable);
    });
}

ConfigurationAccessResult LayeredDomReader::tagExists(const std::string& name) {
    return askAll([&](ConfigReader& source) { return source.tagExists(name); });
}

ConfigurationAccessResult LayeredDomReader::getEditable(bool& editable) {
    bool found = false;
    for (const auto priority : {AdvancedConfigReader::Default, AdvancedConfigReader::System})
        if (const auto source = m_sources.find(priority); source != m_sources.end())
            found = source->second->getEditable(editable) == success;
    return found ? success : failure;
}

ConfigurationAccessResult LayeredDomReader::getKeys(const std::string& name,
                                                    std::set<std::string>& keys) {
    return askAll([&](ConfigReader& source) { return source.getKeys(name, keys); });
}

ConfigurationAccessResult
LayeredDomReader::createConfigurationObjects(const std::string& name,
                                             std::function<void(std::string)> callback) {
    return askAll(
        [&](ConfigReader& source) { return source.createConfigurationObjects(name, callback); });
}

} // namespace Orvant::Support
