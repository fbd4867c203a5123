#pragma once

#include "LayeredDomReader.h"

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// Loads and saves objects as a manager with the mode InPlace promises, in the most literal way: it
/// keeps nothing of what it reads, and parses the files anew for each object. To compare the
/// library's own with, whose operations it has.
class LiteralManager {
public:
    void setConfigurationFile(const FileName& file);
    void setSystemAndUserConfigurationFile(const FileName& systemFile, const FileName& userFile);
    void setValidVersionList(const std::list<std::string>& versions) { m_versions = versions; }

    void addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                const std::string& name);
    void addConfigurationObject(std::shared_ptr<ConfigurationObject> object,
                                const std::string& name, const std::string& key);
    void addConfigurationObjects(const std::vector<ConfigurationRegistration>& registrations);
    void resetConfigurationObject(const std::string& name, bool fromUserFile);
    void resetConfigurationObject(const std::string& name, const std::string& key,
                                  bool fromUserFile);
    void reset();
    void releaseMemory() {}

    bool hasSystemConfigFileErrors() const { return hasErrors(m_systemFile); }
    bool hasUserConfigFileErrors() const { return hasErrors(m_userFile); }

    bool saveConfiguration(const std::string& version) const;
    bool saveConfigurationToFile(const std::string& fileName, const std::string& version) const;

private:
    /// A file as it was when it was read.
    struct Layer {
        FileName file;
        bool isThere = false;
        bool isAccepted = false;
    };
    /// What an object was loaded from.
    struct Layers {
        Layer system;
        Layer user;
    };
    struct Entry {
        ConfigurationRegistration registration;
        Layers loaded;
    };
    /// By name; objects of the same name in order of registration.
    using Entries = std::multimap<std::string, Entry>;

    Entry* find(const ConfigurationRegistration& registration);
    void registerObject(const ConfigurationRegistration& registration);
    void resetObject(Entry& entry, bool fromUserFile);
    FileName target() const { return m_usesTwoFiles ? m_userFile : m_file; }
    bool hasErrors(const FileName& file) const;
    Layer look(const FileName& file) const;
    Layer addTo(LayeredDomReader& reader, const FileName& file,
                AdvancedConfigReader::Priority priority) const;
    bool mayBeSaved(const FileName& target, bool differencesOnly) const;
    bool save(const FileName& target, const std::string& version, bool differencesOnly) const;
    void putDifferences(ConfigWriter& writer) const;

    bool m_hasFiles = false;
    bool m_usesTwoFiles = false;
    FileName m_file;
    FileName m_systemFile;
    FileName m_userFile;
    std::list<std::string> m_versions;
    Entries m_entries;
};

} // namespace Orvant::Support
