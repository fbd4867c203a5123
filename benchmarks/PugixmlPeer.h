#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <memory>

namespace Orvant::Benchmarks {

Loaded loadWithPugixml(const SettingsFiles& files);
int readOneWithPugixml(const SettingsFiles& files);
/// @return the document, null when it is broken
std::shared_ptr<void> parseWithPugixml(const std::string& file);

/// The user's layer alone.
class PugixmlStore {
public:
    explicit PugixmlStore(const SettingsFiles& files);

    void set(std::size_t object, std::size_t value, const Value& newValue);
    bool save();

private:
    struct Document;
    std::shared_ptr<Document> m_document;
};

} // namespace Orvant::Benchmarks
