#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <memory>

class QSettings;

namespace Orvant::Benchmarks {

Loaded loadWithQSettings(const SettingsFiles& files);
int readOneWithQSettings(const SettingsFiles& files);
/// @return true when the user file can be loaded
bool checkWithQSettings(const SettingsFiles& files);

class QSettingsStore {
public:
    explicit QSettingsStore(const SettingsFiles& files);

    void set(std::size_t object, std::size_t value, const Value& newValue);
    bool save();

private:
    std::shared_ptr<QSettings> m_settings;
};

} // namespace Orvant::Benchmarks
