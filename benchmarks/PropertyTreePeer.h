#pragma once

#include "Loaded.h"
#include "SettingsFiles.h"

namespace Orvant::Benchmarks {

Loaded loadWithPropertyTree(const SettingsFiles& files);
int readOneWithPropertyTree(const SettingsFiles& files);

} // namespace Orvant::Benchmarks
