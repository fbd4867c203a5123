#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationSaveReport.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <FileHandling/FileName.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Orvant {

class ConfigWriterImpl;
class ConfigurationManagerChanges;

/// One save of the manager's objects to a file. How it went goes to the manager's report.
class ConfigurationManager::Saving {
public:
    /// @param differencesOnly true: only what differs from the system file is written
    Saving(const ConfigurationManager& manager, const FileName& target, bool differencesOnly);

    /// Saves as the manager's mode has it; any exception leaves the file unchanged.
    /// @param version of a new document
    /// @return true for a success
    bool run(const std::string& version);

    /// Puts all objects in full into a writer of the file, and stores it.
    /// @throws SaveFailure when it cannot be written, and what objects throw
    void putAll(ConfigWriter& writer);
    /// Puts what differs from the system file into a writer of the file, and stores it.
    /// @throws SaveFailure when it cannot be written or would ignore the system file, and what
    ///         objects throw
    void putDifferences(ConfigWriter& writer);

private:
    void write(const std::string& version);
    std::unique_ptr<ConfigWriter> openTarget(const std::string& version, bool& isTakenOver) const;
    std::size_t dropRemoved(ConfigWriterImpl& document) const;
    bool isLoadedFile() const;
    void storeAll(const ConfigWriter& writer);
    void merge(const std::string& version);
    const LayerDocument* lockingSystem() const;
    void findChanges(ConfigurationManagerChanges& changes) const;
    std::shared_ptr<const ConfigurationManagerLayers>
    mergeInto(const ConfigurationManagerChanges& changes, const std::string& version);
    std::shared_ptr<const ConfigurationManagerLayers> store(ConfigWriterImpl& document) const;
    std::shared_ptr<const ConfigurationManagerLayers>
    setSeen(const std::shared_ptr<const ConfigurationManagerLayers>& saved) const;
    void setSaved(const ConfigurationRegistration& registration,
                  std::shared_ptr<const ConfigurationManagerLayers> layers,
                  std::shared_ptr<const WrittenElement> written) const;

    template <typename Check>
    void forEachKnown(Check check) const;
    void checkTarget();
    void checkTarget(const std::string& name, const KnownState& known, const LayerDocument& atLoad);
    void checkSystemFile() const;
    static void checkLayer(const LayerDocument& atLoad, const LayerDocument& now,
                           const std::string& name);
    bool isSystemFile(const FileName& file) const;
    bool areOfTarget(const std::shared_ptr<const ConfigurationManagerLayers>& layers) const;
    bool isKnownInTarget(const ConfigurationRegistration& registration) const;
    FileName knownTarget() const;
    LayerDocument readUserFile() const;
    void readSystemFile();

    const ConfigurationManager& m_manager;
    const FileName& m_target;
    bool m_differencesOnly;
    LayerDocument m_system; ///< now, when it was read
    LayerDocument m_user;   ///< the target now, when it was read
    /// What was asked before: most objects know the same files.
    mutable std::map<std::shared_ptr<const ConfigurationManagerLayers>, bool> m_areOfTarget;
};

} // namespace Orvant
