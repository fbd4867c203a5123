#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <memory>
#include <string>

namespace Orvant::Benchmarks {

Loaded loadWithPropertyTree(const SettingsFiles& files);
int readOneWithPropertyTree(const SettingsFiles& files);
/// @return true when the user file can be loaded
bool checkWithPropertyTree(const SettingsFiles& files);

/// The user's layer alone.
class PropertyTreeStore {
public:
    explicit PropertyTreeStore(const SettingsFiles& files);

    void set(std::size_t object, std::size_t value, const Value& newValue);
    bool save();

private:
    struct Document;
    std::shared_ptr<Document> m_document;
};

} // namespace Orvant::Benchmarks
