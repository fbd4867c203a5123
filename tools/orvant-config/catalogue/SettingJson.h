#pragma once

#include "catalogue/SettingIndex.h"

#include <nlohmann/json.hpp>

namespace Orvant::Tool {

/// @param item a value of a catalogue
/// @return what programs read of its declaration
nlohmann::ordered_json jsonOf(const CatalogueItem& item);

} // namespace Orvant::Tool
