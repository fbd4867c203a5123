#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationManagerSettings.h>
#include <ConfigurationFramework/ConfigurationOrigin.h>

#include <utility>
#include <vector>

namespace Orvant {

/// Where the values of registered objects come from.
class ConfigurationManagerExplaining {
public:
    /// @param layers the files at the last load or save; must outlive this
    explicit ConfigurationManagerExplaining(const ConfigurationManagerLayers& layers)
        : m_layers(layers) {}

    /// Adds the values of an object.
    /// @param isLoaded false: the object was registered without being loaded from the files
    void add(const ConfigurationRegistration& registration, bool isLoaded);
    /// @return origins of the values in the order in which they were added
    std::vector<ConfigurationOrigin> takeOrigins() { return std::move(m_origins); }

private:
    ConfigurationOrigin originOf(const Setting& setting) const;
    void setLayer(FileLayer layer, DocumentTree::Element element,
                  ConfigurationOrigin& origin) const;

    const LocatedLayers m_layers;
    std::vector<ConfigurationOrigin> m_origins;
};

} // namespace Orvant
