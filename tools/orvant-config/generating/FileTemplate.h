#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <string>

namespace Orvant::Tool {

/// @return a file of the application with every setting in a comment of its own: with "<!--<"
///         replaced by "<" and ">-->" by ">", it says the defaults
std::string makeTemplate(const ConfigurationCatalogue& catalogue);

} // namespace Orvant::Tool
