#include <ConfigurationFramework/ConfigurationManagerExplaining.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace Orvant {

void ConfigurationManagerExplaining::add(const ConfigurationRegistration& registration,
                                         bool isLoaded) {
    static const ConfigurationManagerLayers s_none;
    const std::unique_ptr<ConfigurationObject> fresh =
        loadFresh(registration, isLoaded ? m_layers.layers() : s_none);
    ConfigurationManagerSettings former(m_layers);
    former.add(registration, *fresh);
    std::unordered_map<std::string, const Setting*> formerByPath;
    for (const Setting& setting : former.settings())
        if (!setting.isGroup)
            formerByPath.emplace(setting.path, &setting);

    ConfigurationManagerSettings now(m_layers);
    now.add(registration, *registration.object);
    for (const Setting& setting : now.settings()) {
        if (setting.isGroup)
            continue;
        ConfigurationOrigin origin = originOf(setting);
        const auto found = formerByPath.find(setting.path);
        if (found == formerByPath.end() || found->second->text != setting.text)
            origin.layer = ConfigurationOrigin::User; // changed since
        else if (isLoaded)
            decide(*found->second, origin);
        m_origins.push_back(std::move(origin));
    }
}

/// All but the deciding layer.
ConfigurationOrigin ConfigurationManagerExplaining::originOf(const Setting& setting) const {
    return {.path = setting.path,
            .value = setting.text,
            .layer = ConfigurationOrigin::Default,
            .locked = !setting.lockedBy.empty(),
            .lockedBy = setting.lockedBy,
            .systemValue = setting.textIn(SystemLayer, m_layers),
            .userValue = setting.textIn(UserLayer, m_layers),
            .file = {},
            .line = 0};
}

/// Finds the file that a setting was loaded from.
void ConfigurationManagerExplaining::decide(const Setting& loaded,
                                            ConfigurationOrigin& origin) const {
    const bool isLockedBySystem = loaded.isOfSystem && !loaded.lockedBy.empty();
    FileLayer layer = UserLayer;
    if (isLockedBySystem || !loaded.isReadFrom(UserLayer, m_layers)) {
        layer = SystemLayer;
        if (!loaded.isReadFrom(SystemLayer, m_layers))
            return;
    }
    origin.layer = layer == UserLayer ? ConfigurationOrigin::User : ConfigurationOrigin::System;
    origin.file = m_layers.file(layer).file();
    origin.line = m_layers.document(layer)->items()[loaded.elements[layer]].place.line;
}

} // namespace Orvant
