#include <ConfigurationFramework/AdvancedConfigReader.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/LoadedLayer.h>
#include <ConfigurationFramework/SharedReference.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <ConfigurationFramework/SimpleConfigReaderImpl.h>

#include <FileHandling/FileUtilities.h>

#include <algorithm>
#include <ranges>

namespace Orvant {

namespace {

bool fileIsMissing(const FileName& file) try {
    return !file.empty() && !FileUtilities::exists(file, false);
} catch (const FileNameException&) {
    return true;
}

} // namespace

AdvancedConfigReader::AdvancedConfigReader() = default;

AdvancedConfigReader::~AdvancedConfigReader() = default;

ConfigurationAccessResult
AdvancedConfigReader::addFileSource(const FileName& file, const std::list<std::string>& nodePath,
                                    Priority priority,
                                    const std::list<std::string>& validVersions) {
    return addSource(file, "", nodePath, priority, validVersions);
}

ConfigurationAccessResult
AdvancedConfigReader::addStringSource(const std::string& content,
                                      const std::list<std::string>& nodePath, Priority priority,
                                      const std::list<std::string>& validVersions) {
    return addSource(FileName(), content, nodePath, priority, validVersions);
}

ConfigurationAccessResult
AdvancedConfigReader::addSource(const FileName& file, const std::string& content,
                                const std::list<std::string>& nodePath, Priority priority,
                                const std::list<std::string>& validVersions) {
    if (fileIsMissing(file))
        return ConfigurationAccessResult::Failure;
    std::shared_ptr<SimpleConfigReader> source;
    try {
        source = std::make_shared<SimpleConfigReader>(file, content, validVersions);
    } catch (const ConfigException&) {
        return ConfigurationAccessResult::Failure;
    }
    for (const std::string& name : nodePath)
        if (source->setCurrentNode(name) != ConfigurationAccessResult::Success)
            return ConfigurationAccessResult::Failure;
    m_sources[priority] = std::move(source);
    SharedReference::forget(*this);
    return ConfigurationAccessResult::Success;
}

/// Calls an operation on every source in ascending priority.
/// @return Success when it succeeded on at least one
template <typename Operation>
ConfigurationAccessResult AdvancedConfigReader::askAll(Operation operation) {
    auto result = ConfigurationAccessResult::Failure;
    for (const auto& [priority, source] : m_sources)
        if (operation(*source, priority) == ConfigurationAccessResult::Success)
            result = ConfigurationAccessResult::Success;
    return result;
}

/// Loads an object from every source in ascending priority and repairs what the user's document may
/// not change.
/// @param find finds the object's element in a source
template <typename Find>
ConfigurationAccessResult AdvancedConfigReader::loadLayered(ConfigurationObject& object,
                                                            Find find) {
    std::unique_ptr<ConfigurationObject> systemCopy;
    const auto result = askAll([&](SimpleConfigReader& source, Priority priority) {
        const auto element = find(*source.m_impl);
        const LoadedLayer layer(priority == Priority::System);
        const auto loaded = source.m_impl->loadFrom(element, object);
        if (loaded == ConfigurationAccessResult::Success &&
            (priority != Priority::System || isInUserDocument(find)))
            integerateUserWithSystemConfig(priority, object, systemCopy);
        return loaded;
    });
    if (result == ConfigurationAccessResult::Success)
        object.emitSignalsAfterConfigLoading();
    return result;
}

/// Whether the user's document holds something for an object: most have nothing for most objects,
/// and these need not be copied.
template <typename Find>
bool AdvancedConfigReader::isInUserDocument(Find find) const {
    const auto user = m_sources.find(Priority::User);
    return user != m_sources.end() && find(*user->second->m_impl) != DocumentTree::none;
}

void AdvancedConfigReader::integerateUserWithSystemConfig(
    Priority priority, ConfigurationObject& object,
    std::unique_ptr<ConfigurationObject>& systemCopy) {
    // The user's document is compared with this copy.
    if (priority == Priority::System)
        systemCopy.reset(object.clone());
    else if (priority == Priority::User && systemCopy != nullptr)
        object.overwriteInvalidConfigValues(systemCopy.get());
}

ConfigurationAccessResult
AdvancedConfigReader::findAndGetClassContents(const std::string& name, const std::string& key,
                                              ConfigurationObject& object) {
    return loadLayered(
        object, [&](SimpleConfigReaderImpl& source) { return source.findAnywhere(name, key); });
}

ConfigurationAccessResult
AdvancedConfigReader::findAndGetClassContents(const std::string& name,
                                              ConfigurationObject& object) {
    return loadLayered(object,
                       [&](SimpleConfigReaderImpl& source) { return source.findAnywhere(name); });
}

ConfigurationAccessResult AdvancedConfigReader::getClassContents(ConfigurationObject& object) {
    for (const auto& [priority, source] : m_sources | std::views::reverse) {
        if (source->getClassContents(object) == ConfigurationAccessResult::Success) {
            object.emitSignalsAfterConfigLoading();
            return ConfigurationAccessResult::Success;
        }
    }
    return ConfigurationAccessResult::Failure;
}

ConfigurationAccessResult
AdvancedConfigReader::getClassContents(const std::string& name,
                                       const std::vector<std::string>& keys,
                                       std::vector<ConfigurationObject*>& objects) {
    auto result = keys.size() <= objects.size() ? ConfigurationAccessResult::Success
                                                : ConfigurationAccessResult::Failure;
    for (std::size_t i = 0; i < std::min(keys.size(), objects.size()); ++i)
        if (getClassContents(name, keys[i], *objects[i]) != ConfigurationAccessResult::Success)
            result = ConfigurationAccessResult::Failure;
    return result;
}

ConfigurationAccessResult AdvancedConfigReader::getClassContents(const std::string& name,
                                                                 const std::string& key,
                                                                 ConfigurationObject& object) {
    return loadLayered(object,
                       [&](SimpleConfigReaderImpl& source) { return source.findChild(name, key); });
}

ConfigurationAccessResult AdvancedConfigReader::getClassContents(const std::string& name,
                                                                 ConfigurationObject& object) {
    return loadLayered(object,
                       [&](SimpleConfigReaderImpl& source) { return source.findChild(name); });
}

ConfigurationAccessResult AdvancedConfigReader::getBool(const std::string& name, bool& value,
                                                        bool& editable) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.getBool(name, value, editable);
    });
}

ConfigurationAccessResult AdvancedConfigReader::getInt(const std::string& name, int& value,
                                                       bool& editable) {
    return askAll(
        [&](SimpleConfigReader& source, Priority) { return source.getInt(name, value, editable); });
}

ConfigurationAccessResult
AdvancedConfigReader::getUnsignedInt(const std::string& name, unsigned int& value, bool& editable) {
    return ConfigReader::getUnsignedInt(name, value, editable);
}

ConfigurationAccessResult AdvancedConfigReader::getDouble(const std::string& name, double& value,
                                                          bool& editable) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.getDouble(name, value, editable);
    });
}

ConfigurationAccessResult AdvancedConfigReader::getDoubleScientific(const std::string& name,
                                                                    const int& precision,
                                                                    double& value, bool& editable) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.getDoubleScientific(name, precision, value, editable);
    });
}

ConfigurationAccessResult AdvancedConfigReader::getFloat(const std::string& name, float& value,
                                                         bool& editable) {
    return ConfigReader::getFloat(name, value, editable);
}

ConfigurationAccessResult AdvancedConfigReader::getString(const std::string& name,
                                                          std::string& value, bool& editable) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.getString(name, value, editable);
    });
}

ConfigurationAccessResult
AdvancedConfigReader::getStringVector(const std::string& name, std::vector<std::string>& values,
                                      bool& editable, std::map<std::string, bool>& itemEditable) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.getStringVector(name, values, editable, itemEditable);
    });
}

ConfigurationAccessResult AdvancedConfigReader::tagExists(const std::string& name) {
    SharedReference::forget(*this);
    return askAll([&](SimpleConfigReader& source, Priority) { return source.tagExists(name); });
}

ConfigurationAccessResult AdvancedConfigReader::getEditable(bool& editable) {
    return askAll([&](SimpleConfigReader& source, Priority priority) {
        return priority == Priority::User ? ConfigurationAccessResult::Failure
                                          : source.getEditable(editable);
    });
}

ConfigurationAccessResult AdvancedConfigReader::getKeys(const std::string& name,
                                                        std::set<std::string>& keys) {
    return askAll([&](SimpleConfigReader& source, Priority) { return source.getKeys(name, keys); });
}

ConfigurationAccessResult
AdvancedConfigReader::createConfigurationObjects(const std::string& name,
                                                 std::function<void(std::string)> callback) {
    return askAll([&](SimpleConfigReader& source, Priority) {
        return source.createConfigurationObjects(name, callback);
    });
}

} // namespace Orvant
