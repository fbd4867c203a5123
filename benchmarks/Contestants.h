#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

#include <vector>

namespace Orvant::Benchmarks {

/// Something that loads both layers.
struct Contestant {
    const char* name;
    Loaded (*load)(const SettingsFiles&);
};

/// @return this library, the peers, and the parsers that only parse
const std::vector<Contestant>& contestants();

} // namespace Orvant::Benchmarks
