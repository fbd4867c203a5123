#include "LiteralManager.h"

#include <ConfigurationFramework/ConfigurationObject.h>
#include <FileHandling/FileUtilities.h>
#include <TestSupport.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <ranges>

namespace Orvant::Support {

namespace {

using Registration = ConfigurationRegistration;

std::filesystem::path withoutLinks(const FileName& file) {
    std::filesystem::path path = file.toString();
    while (std::filesystem::is_symlink(path))
        path = path.parent_path() / std::filesystem::read_symlink(path);
    return path;
}

ConfigurationAccessResult loadAt(LayeredDomReader& reader, const Registration& registration,
                                 ConfigurationObject& object) {
    return registration.key ? reader.LayeredDomReader::getClassContents(registration.name,
                                                                        *registration.key, object)
                            : reader.LayeredDomReader::getClassContents(registration.name, object);
}

/// What an object that asks for itself by its own name finds at the address where it is registered.
class ReferenceReader : public LayeredDomReader {
public:
    using LayeredDomReader::getClassContents;

    ConfigurationAccessResult getClassContents(const std::string& name,
                                               ConfigurationObject& object) override {
        return name == compared->object->getName()
                   ? loadAt(*this, *compared, object)
                   : LayeredDomReader::getClassContents(name, object);
    }

    const Registration* compared = nullptr;
};

/// Has each of the two questions of a difference save answered from a reader of its own, so that
/// nothing of the first answer can be used for the second.
class SeparatelyAsked : public ConfigurationObject {
public:
    SeparatelyAsked(const ConfigurationObject& object, ConfigReader& first, ConfigReader& second)
        : ConfigurationObject(object), m_object(object), m_first(first), m_second(second) {}

    ConfigurationObject* createConfigurationObject() const override {
        return m_object.createConfigurationObject();
    }
    using ConfigurationObject::saveContent;
    bool canBeSavedToUserConfig(ConfigReader& /*reader*/) const override {
        return m_object.canBeSavedToUserConfig(m_first);
    }
    void saveContent(ConfigWriter& writer, ConfigReader& /*reader*/,
                     bool onlyDifferent) const override {
        m_object.saveContent(writer, m_second, onlyDifferent);
    }

private:
    const ConfigurationObject& m_object;
    ConfigReader& m_first;
    ConfigReader& m_second;
};

} // namespace

void LiteralManager::setConfigurationFile(const FileName& file) {
    m_file = file;
    m_hasFiles = true;
    m_usesTwoFiles = false;
}

void LiteralManager::setSystemAndUserConfigurationFile(const FileName& systemFile,
                                                       const FileName& userFile) {
    m_systemFile = systemFile;
    m_userFile = userFile;
    m_hasFiles = true;
    m_usesTwoFiles = true;
}

void LiteralManager::reset() {
    const std::list<std::string> versions = m_versions;
    *this = LiteralManager();
    m_versions = versions;
}

LiteralManager::Layer LiteralManager::look(const FileName& file) const {
    return {file, FileUtilities::exists(file),
            AdvancedConfigReader().addFileSource(file, {}, AdvancedConfigReader::System,
                                                 m_versions) == ConfigurationAccessResult::Success};
}

LiteralManager::Layer LiteralManager::addTo(LayeredDomReader& reader, const FileName& file,
                                            AdvancedConfigReader::Priority priority) const {
    Layer layer = look(file);
    if (layer.isAccepted)
        reader.addSource(readFile(file), {}, priority);
    return layer;
}

bool LiteralManager::hasErrors(const FileName& file) const {
    const Layer layer = look(file);
    return m_usesTwoFiles && layer.isThere && !layer.isAccepted;
}

LiteralManager::Entry* LiteralManager::find(const Registration& registration) {
    const auto [first, last] = m_entries.equal_range(registration.name);
    const auto found = std::find_if(first, last, [&](const auto& entry) {
        return entry.second.registration.key == registration.key;
    });
    return found == last ? nullptr : &found->second;
}

void LiteralManager::registerObject(const Registration& registration) {
    const auto namesake = m_entries.find(registration.name);
    const bool isFree = namesake == m_entries.end();
    if (isFree || (registration.key && namesake->second.registration.key && !find(registration)))
        m_entries.emplace(registration.name, Entry{registration, {}});
}

void LiteralManager::addConfigurationObjects(const std::vector<Registration>& registrations) {
    for (const Registration& registration : registrations) {
        registerObject(registration);
        if (!m_hasFiles)
            continue;
        LayeredDomReader reader;
        Layers layers;
        if (m_usesTwoFiles)
            layers.system = addTo(reader, m_systemFile, AdvancedConfigReader::System);
        layers.user = addTo(reader, target(), AdvancedConfigReader::User);
        loadAt(reader, registration, *registration.object);
        Entry* const entry = find(registration);
        if (entry != nullptr && entry->registration.object == registration.object)
            entry->loaded = layers;
    }
}

void LiteralManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                            const std::string& name) {
    addConfigurationObjects({{std::move(object), name}});
}

void LiteralManager::addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                            const std::string& name, const std::string& key) {
    addConfigurationObjects({{std::move(object), name, key}});
}

void LiteralManager::resetConfigurationObject(const std::string& name, bool fromUserFile) {
    const auto first = m_entries.lower_bound(name);
    if (first != m_entries.end() && first->first == name)
        resetObject(first->second, fromUserFile);
}

void LiteralManager::resetConfigurationObject(const std::string& name, const std::string& key,
                                              bool fromUserFile) {
    if (Entry* const entry = find({nullptr, name, key}))
        resetObject(*entry, fromUserFile);
}

void LiteralManager::resetObject(Entry& entry, bool fromUserFile) {
    ConfigurationObject& object = *entry.registration.object;
    const bool fromSystemFile = m_usesTwoFiles && !fromUserFile;
    const std::unique_ptr<const ConfigurationObject> former(object.clone());
    object.setDefaultValues();
    if (!m_hasFiles)
        return;
    LayeredDomReader reader;
    const Layer layer = fromSystemFile ? addTo(reader, m_systemFile, AdvancedConfigReader::System)
                                       : addTo(reader, target(), AdvancedConfigReader::User);
    const auto loaded = loadAt(reader, entry.registration, object);
    (fromSystemFile ? entry.loaded.system : entry.loaded.user) = layer;
    // The user's file alone neither locks nor unlocks.
    if (m_usesTwoFiles && fromUserFile)
        object.restoreLocks(*former);
    if (layer.isAccepted && loaded == ConfigurationAccessResult::Failure)
        object.emitSignalsAfterConfigLoading();
}

bool LiteralManager::saveConfiguration(const std::string& version) const {
    return save(m_hasFiles ? target() : FileName(), version, m_usesTwoFiles);
}

bool LiteralManager::saveConfigurationToFile(const std::string& fileName,
                                             const std::string& version) const {
    return save(FileName(fileName), version, false);
}

/// @return false when a file could not be read when an object was loaded and can be now, or where
///         the system's locks would be ignored
bool LiteralManager::mayBeSaved(const FileName& target, bool differencesOnly) const {
    const auto isSame = [](const FileName& first, const FileName& second) {
        return !first.empty() && withoutLinks(first) == withoutLinks(second);
    };
    const auto isKnown = [](const Layer& atLoad, const Layer& now) {
        return !atLoad.isThere || atLoad.isAccepted || !now.isAccepted;
    };
    if (differencesOnly && isSame(m_systemFile, target))
        return false;
    const Layer userNow = look(target);
    const Layer systemNow = look(m_systemFile);
    return std::ranges::all_of(m_entries | std::views::values, [&](const Entry& entry) {
        const auto& [system, user] = entry.loaded;
        if (!entry.registration.object->writesContent())
            return true;
        for (const Layer& atLoad : {system, user})
            if (isSame(atLoad.file, target) && !isKnown(atLoad, userNow))
                return false;
        if (!differencesOnly || !isSame(system.file, m_systemFile))
            return true;
        const bool isLost = system.isAccepted && systemNow.isThere && !systemNow.isAccepted;
        return isKnown(system, systemNow) && !isLost;
    });
}

bool LiteralManager::save(const FileName& target, const std::string& version,
                          bool differencesOnly) const {
    if (target.empty())
        return true;
    if (!mayBeSaved(target, differencesOnly))
        return false;
    try {
        const auto writer = FileUtilities::exists(target)
                                ? std::make_unique<ConfigWriter>(target, "")
                                : std::make_unique<ConfigWriter>(version);
        if (differencesOnly)
            putDifferences(*writer);
        else
            for (const auto& [object, name, key] :
                 m_entries | std::views::values | std::views::transform(&Entry::registration))
                if (object->writesContent() && key)
                    writer->putClassContents(name, *key, *object, "");
                else if (object->writesContent())
                    writer->putClassContents(name, *object, "");
        return writer->saveToFile(target);
    } catch (const std::exception&) {
        return false;
    }
}

void LiteralManager::putDifferences(ConfigWriter& writer) const {
    ReferenceReader first;
    ReferenceReader second;
    for (ReferenceReader* reader : {&first, &second})
        addTo(*reader, m_systemFile, AdvancedConfigReader::System);
    for (const auto& [name, entry] : m_entries) {
        const auto& [object, registeredName, key] = entry.registration;
        if (!object->writesContent())
            continue;
        first.compared = second.compared = &entry.registration;
        const SeparatelyAsked asked(*object, first, second);
        if (key)
            writer.putOnlyDifferentClassContents(name, *key, asked, first, "");
        else
            writer.putOnlyDifferentClassContents(name, asked, first, "");
    }
}

} // namespace Orvant::Support
