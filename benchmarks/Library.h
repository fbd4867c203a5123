#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <vector>

// The library that is measured.

namespace Orvant::Benchmarks {

/// Makes the objects with their defaults.
std::vector<ConfigurationRegistration> declare(Shape shape);

using SaveMode = ConfigurationManager::SaveMode;

Loaded loadInBatch(const SettingsFiles& files);
/// Loads for an application that will save in another mode.
template <SaveMode mode>
Loaded loadInBatchFor(const SettingsFiles& files) {
    ConfigurationManager::getInstance().setSaveMode(mode);
    Loaded loaded = loadInBatch(files);
    ConfigurationManager::getInstance().setSaveMode(SaveMode::InPlace);
    return loaded;
}
Loaded loadOneByOne(const SettingsFiles& files);
/// Opens both layers and reads the probe.
int readOne(const SettingsFiles& files);
/// @return true when the user file can be loaded
bool checkUserFile(const SettingsFiles& files);

/// The loaded settings of an application.
class LibraryStore {
public:
    explicit LibraryStore(const SettingsFiles& files, SaveMode mode = SaveMode::InPlace);
    LibraryStore(const LibraryStore&) = delete;
    LibraryStore& operator=(const LibraryStore&) = delete;
    ~LibraryStore();

    void set(std::size_t object, std::size_t value, const Value& newValue);
    bool save();
    /// Writes everything into one new file.
    bool saveInFull(const std::string& file);

private:
    std::vector<ConfigurationRegistration> m_registrations;
};

} // namespace Orvant::Benchmarks
