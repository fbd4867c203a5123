#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationManagerSettings.h>
#include <ConfigurationFramework/ConfigurationProblem.h>

#include <vector>

namespace Orvant {

/// What in the files does not take effect when registered objects are loaded.
class ConfigurationManagerChecking {
public:
    /// @param layers the files; must outlive this
    explicit ConfigurationManagerChecking(const ConfigurationManagerLayers& layers)
        : m_layers(layers), m_settings(m_layers) {}

    /// Adds an object that may be in the files.
    void add(const ConfigurationRegistration& registration) {
        m_settings.addFresh(registration, true);
    }
    /// @return problems of the system file, then those of the user's, in the order of the text
    std::vector<ConfigurationProblem> problems() const;

private:
    class Document;

    void checkFile(FileLayer layer, std::vector<ConfigurationProblem>& problems) const;

    const LocatedLayers m_layers;
    ConfigurationManagerSettings m_settings;
};

} // namespace Orvant
