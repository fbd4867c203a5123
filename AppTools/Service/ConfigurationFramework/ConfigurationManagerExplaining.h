#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationManagerSettings.h>
#include <ConfigurationFramework/ConfigurationOrigin.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Orvant {

/// Where the values of registered objects come from.
class ConfigurationManagerExplaining {
public:
    using Layers = std::shared_ptr<const ConfigurationManagerLayers>;

    /// Adds the values of an object that was loaded.
    /// @param files as they were when the object was last loaded, reset or saved, then as they were
    ///              before: others may have changed a value that the object still has from there
    void add(const ConfigurationRegistration& registration, const std::vector<Layers>& files);
    /// Adds the values of an object that was registered without being loaded.
    /// @param files at the last load or save
    void addUnloaded(const ConfigurationRegistration& registration, const Layers& files);
    /// @return origins of the values in the order in which they were added
    std::vector<ConfigurationOrigin> takeOrigins() { return std::move(m_origins); }

private:
    class Source;

    void add(const ConfigurationRegistration& registration, std::vector<Source> sources);
    const LocatedLayers& located(const Layers& files);

    std::map<Layers, std::unique_ptr<const LocatedLayers>> m_located;
    std::vector<ConfigurationOrigin> m_origins;
};

} // namespace Orvant
