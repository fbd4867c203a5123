#include "QSettingsPeer.h"

#include "QtTexts.h"

#include <QSettings>
#include <QVariant>

#include <chrono>
#include <filesystem>

namespace Orvant::Benchmarks {

namespace {

/// Opens a file anew. QSettings caches a file until the file's time changes.
std::shared_ptr<QSettings> open(const std::string& file) {
    static std::filesystem::file_time_type s_time = std::filesystem::file_time_type::clock::now();
    s_time += std::chrono::seconds(1);
    std::filesystem::last_write_time(file, s_time);
    return std::make_shared<QSettings>(toQt(file), QSettings::IniFormat);
}

/// Two files by hand: the user's value, or else the system's.
struct Layers {
    std::shared_ptr<QSettings> system;
    std::shared_ptr<QSettings> user;
};

std::shared_ptr<Layers> openLayers(const SettingsFiles& files) {
    return std::make_shared<Layers>(open(files.systemIni()), open(files.userIni()));
}

QString keyOf(const std::string& object, const std::string& value) {
    return QString::fromLatin1((object + '/' + value).c_str());
}

struct Group {
    const Layers& layers;
    const std::string& object;

    template <typename T>
    T get(const std::string& name) const {
        const QString key = keyOf(object, name);
        const QVariant users = layers.user->value(key);
        return (users.isValid() ? users : layers.system->value(key)).value<T>();
    }
};

} // namespace

Loaded loadWithQSettings(const SettingsFiles& files) {
    const auto layers = openLayers(files);
    return readTyped<QString, QStringList>(
        layers, files.shape(), [&](const std::string& object) { return Group{*layers, object}; });
}

int readOneWithQSettings(const SettingsFiles& files) {
    const auto [object, value] = probeOf(files.shape());
    return Group{*openLayers(files), objectName(object)}.get<int>(valueName(value));
}

bool checkWithQSettings(const SettingsFiles& files) {
    const auto settings = open(files.userIni());
    // Sections are parsed when something in them is asked for.
    return !settings->allKeys().isEmpty() && settings->status() == QSettings::NoError;
}

QSettingsStore::QSettingsStore(const SettingsFiles& files) : m_settings(open(files.userIni())) {}

void QSettingsStore::set(std::size_t object, std::size_t value, const Value& newValue) {
    const QString key = keyOf(objectName(object), valueName(value));
    std::visit([&](const auto& held) { m_settings->setValue(key, toQt(held)); }, newValue);
}

bool QSettingsStore::save() {
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}

} // namespace Orvant::Benchmarks
