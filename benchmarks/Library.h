#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <vector>

// The library that is measured.

namespace Orvant::Benchmarks {

/// Makes the objects with their defaults.
std::vector<ConfigurationRegistration> declare(Shape shape);

Loaded loadInBatch(const SettingsFiles& files);
Loaded loadOneByOne(const SettingsFiles& files);
/// Opens both layers and reads the probe.
int readOne(const SettingsFiles& files);
/// @return true when the user file can be loaded
bool checkUserFile(const SettingsFiles& files);

/// The loaded settings of an application.
class LibraryStore {
public:
    explicit LibraryStore(const SettingsFiles& files);
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
