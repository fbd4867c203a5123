#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <memory>

class KConfig;

namespace Orvant::Benchmarks {

Loaded loadWithKConfig(const SettingsFiles& files);
int readOneWithKConfig(const SettingsFiles& files);

class KConfigStore {
public:
    explicit KConfigStore(const SettingsFiles& files);

    void set(std::size_t object, std::size_t value, const Value& newValue);
    bool save();

private:
    std::shared_ptr<KConfig> m_config;
};

} // namespace Orvant::Benchmarks
