#include <ConfigurationFramework/ConfigurationManagerExplaining.h>

#include <optional>
#include <unordered_set>

namespace Orvant {

namespace {

/// All but the deciding layer and what locks in a file.
ConfigurationOrigin originOf(const PlacedSetting& setting, const LocatedLayers& layers) {
    return {.path = setting.path,
            .value = setting.text,
            .layer = ConfigurationOrigin::User, // changed since
            .locked = !setting.lockedBy.empty(),
            .lockedBy = setting.lockedBy,
            .systemValue = setting.textIn(SystemLayer, layers),
            .userValue = setting.textIn(UserLayer, layers),
            .file = {},
            .line = 0,
            .systemLine = layers.line(SystemLayer, setting.elements[SystemLayer]),
            .userLine = layers.line(UserLayer, setting.elements[UserLayer])};
}

} // namespace

/// What the files of one time make of a fresh object.
class ConfigurationManagerExplaining::Source {
public:
    Source(const ConfigurationRegistration& registration, const LocatedLayers& layers,
           bool isLoaded)
        : m_layers(&layers), m_isLoaded(isLoaded), m_settings(layers) {
        m_settings.addFresh(registration, isLoaded);
        m_pairs.emplace(m_settings.settings());
        for (const PlacedSetting& setting : m_settings.settings())
            addIdleLock(setting);
    }

    /// @return the setting as these files give it; null when they do not
    const PlacedSetting* take(const PlacedSetting& setting) { return m_pairs->take(setting); }
    /// Says which layer decided a setting that these files give.
    void decide(const PlacedSetting& given, ConfigurationOrigin& origin) const {
        const auto layer = given.decidingLayer(*m_layers);
        origin.layer = ConfigurationOrigin::Default;
        if (!m_isLoaded || !layer)
            return;
        origin.layer =
            *layer == UserLayer ? ConfigurationOrigin::User : ConfigurationOrigin::System;
        origin.file = m_layers->file(*layer).file();
        origin.line = m_layers->line(*layer, given.elements[*layer]);
    }
    /// Says where a file locks a setting, if one does.
    void locateLock(const PlacedSetting& setting, ConfigurationOrigin& origin) const {
        if (!m_isLoaded || setting.lock == DocumentTree::none || m_idleLocks.contains(setting.lock))
            return;
        origin.lockFile = m_layers->file(setting.lockingLayer()).file();
        origin.lockLine = m_layers->line(setting.lockingLayer(), setting.lock);
    }
    const LocatedLayers& layers() const { return *m_layers; }

private:
    /// Notes a lock in a file that is not loaded, perhaps beside one that its class made.
    void addIdleLock(const PlacedSetting& setting) {
        const FileLayer locking = setting.lockingLayer();
        const DocumentTree::Element element = setting.elements[locking];
        if (element != DocumentTree::none &&
            !m_layers->document(locking)->tree().isEditable(element) &&
            !setting.obstacleToLock(locking, *m_layers).empty())
            m_idleLocks.insert(element);
    }

    const LocatedLayers* m_layers;
    bool m_isLoaded;
    ConfigurationManagerSettings m_settings;
    std::optional<SettingPairs> m_pairs;
    std::unordered_set<DocumentTree::Element> m_idleLocks; ///< in the file whose locks count
};

void ConfigurationManagerExplaining::add(const ConfigurationRegistration& registration,
                                         const std::vector<Layers>& files) {
    std::vector<Source> sources;
    sources.reserve(files.size());
    for (const Layers& layers : files)
        if (layers != files.front() || sources.empty()) // the same files say the same
            sources.emplace_back(registration, located(layers), true);
    add(registration, std::move(sources));
}

void ConfigurationManagerExplaining::addUnloaded(const ConfigurationRegistration& registration,
                                                 const Layers& files) {
    std::vector<Source> sources;
    sources.emplace_back(registration, located(files), false);
    add(registration, std::move(sources));
}

void ConfigurationManagerExplaining::add(const ConfigurationRegistration& registration,
                                         std::vector<Source> sources) {
    const LocatedLayers& latest = sources.front().layers();
    ConfigurationManagerSettings now(latest);
    now.add(registration, *registration.object);
    for (const PlacedSetting& setting : now.settings()) {
        if (setting.isGroup)
            continue;
        ConfigurationOrigin origin = originOf(setting, latest);
        sources.front().locateLock(setting, origin);
        bool isOpen = true;
        for (Source& source : sources) {
            const PlacedSetting* const given =
                source.take(setting); // of all: values may share a path
            if (!isOpen || given == nullptr || given->text != setting.text)
                continue;
            source.decide(*given, origin);
            isOpen = false;
        }
        m_origins.push_back(std::move(origin));
    }
}

const LocatedLayers& ConfigurationManagerExplaining::located(const Layers& files) {
    auto& found = m_located[files];
    if (found == nullptr)
        found = std::make_unique<const LocatedLayers>(*files);
    return *found;
}

} // namespace Orvant
