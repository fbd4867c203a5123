#pragma once

#include <string>

namespace Orvant {

class ConfigurationCatalogue;

/// @return the file of a catalogue, in UTF-8
/// @throws std::invalid_argument when XML cannot express it: it is nested too deeply
std::string writeCatalogue(const ConfigurationCatalogue& catalogue);

} // namespace Orvant
