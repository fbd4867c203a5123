#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationManagerSettings.h>
#include <ConfigurationFramework/ConfigurationProblem.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Orvant {

/// What in the files does not take effect when registered objects are loaded.
class ConfigurationManagerChecking {
public:
    /// @param layers           the files; must outlive this
    /// @param validVersions    versions that loading accepts
    /// @param isSystemRequired whether nothing is loaded without the system file
    ConfigurationManagerChecking(const ConfigurationManagerLayers& layers,
                                 const std::list<std::string>& validVersions,
                                 bool isSystemRequired);

    /// Adds an object that may be in the files.
    void add(const ConfigurationRegistration& registration);
    /// @return problems of the system file, then those of the user's, in the order of the text
    std::vector<ConfigurationProblem> problems() const;

private:
    class Document;

    void checkFile(FileLayer layer, std::vector<ConfigurationProblem>& problems) const;

    const LocatedLayers m_layers;
    const std::list<std::string>& m_validVersions;
    bool m_isSystemRequired;
    ConfigurationManagerSettings m_settings;
    std::vector<std::unique_ptr<ConfigurationObject>> m_objects; ///< as they were loaded
};

} // namespace Orvant
