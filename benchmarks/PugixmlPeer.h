#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <memory>

namespace Orvant::Benchmarks {

Loaded loadWithPugixml(const SettingsFiles& files);
int readOneWithPugixml(const SettingsFiles& files);
/// @return the document, null when it is broken
std::shared_ptr<void> parseWithPugixml(const std::string& file);

} // namespace Orvant::Benchmarks
