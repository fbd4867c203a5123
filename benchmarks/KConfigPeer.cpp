#include "KConfigPeer.h"

#include "QtTexts.h"

#include <KConfig>
#include <KConfigGroup>

namespace Orvant::Benchmarks {

namespace {

/// Both layers as KConfig stacks them: the system's directory below the user's.
std::shared_ptr<KConfig> open(const SettingsFiles& files) {
    qputenv("XDG_CONFIG_DIRS", files.systemDirectory().c_str());
    qputenv("XDG_CONFIG_HOME", files.userDirectory().c_str());
    return std::make_shared<KConfig>(SettingsFiles::iniName, KConfig::NoGlobals);
}

struct Group {
    KConfigGroup group;

    template <typename T>
    T get(const std::string& name) const {
        return group.readEntry(name.c_str(), T{});
    }
};

Group groupOf(const KConfig& config, const std::string& object) {
    return {config.group(object.c_str())};
}

} // namespace

Loaded loadWithKConfig(const SettingsFiles& files) {
    const auto config = open(files);
    return readTyped<QString, QStringList>(
        config, files.shape(), [&](const std::string& object) { return groupOf(*config, object); });
}

int readOneWithKConfig(const SettingsFiles& files) {
    const auto [object, value] = probeOf(files.shape());
    return groupOf(*open(files), objectName(object)).get<int>(valueName(value));
}

KConfigStore::KConfigStore(const SettingsFiles& files) : m_config(open(files)) {}

void KConfigStore::set(std::size_t object, std::size_t value, const Value& newValue) {
    KConfigGroup group = m_config->group(objectName(object).c_str());
    std::visit([&](const auto& held) { group.writeEntry(valueName(value).c_str(), toQt(held)); },
               newValue);
}

bool KConfigStore::save() {
    return m_config->sync();
}

} // namespace Orvant::Benchmarks
