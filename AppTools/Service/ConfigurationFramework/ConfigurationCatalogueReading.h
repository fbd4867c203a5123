#pragma once

#include <string>

namespace Orvant {

class ConfigurationCatalogue;
class FileName;

/// @param file  for messages
/// @param bytes what it holds
/// @throws ConfigurationCatalogueError when that is not a catalogue
ConfigurationCatalogue readCatalogue(const FileName& file, const std::string& bytes);

} // namespace Orvant
