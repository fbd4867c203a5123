#include <ConfigurationFramework/ConfigurationManagerExplaining.h>

namespace Orvant {

void ConfigurationManagerExplaining::add(const ConfigurationRegistration& registration,
                                         bool isLoaded) {
    ConfigurationManagerSettings former(m_layers);
    former.addFresh(registration, isLoaded);
    SettingPairs pairs(former.settings());
    ConfigurationManagerSettings now(m_layers);
    now.add(registration, *registration.object);
    for (const Setting& setting : now.settings()) {
        if (setting.isGroup)
            continue;
        ConfigurationOrigin origin = originOf(setting);
        const Setting* const before = pairs.take(setting);
        if (before == nullptr || before->text != setting.text)
            origin.layer = ConfigurationOrigin::User; // changed since
        else if (const auto layer = before->decidingLayer(m_layers); isLoaded && layer)
            setLayer(*layer, before->elements[*layer], origin);
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

void ConfigurationManagerExplaining::setLayer(FileLayer layer, DocumentTree::Element element,
                                              ConfigurationOrigin& origin) const {
    origin.layer = layer == UserLayer ? ConfigurationOrigin::User : ConfigurationOrigin::System;
    origin.file = m_layers.file(layer).file();
    origin.line = m_layers.document(layer)->items()[element].place.line;
}

} // namespace Orvant
