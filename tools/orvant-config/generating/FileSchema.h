#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <string>

namespace Orvant::Tool {

/// @return an XML Schema of the application's files, of the system's and the user's alike
std::string makeSchema(const ConfigurationCatalogue& catalogue);

} // namespace Orvant::Tool
