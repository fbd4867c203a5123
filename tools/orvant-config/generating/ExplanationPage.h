#pragma once

#include "catalogue/SettingIndex.h"

#include <ConfigurationFramework/ConfigurationOrigin.h>
#include <ConfigurationFramework/StandardConfigurationFiles.h>

#include <string>
#include <vector>

namespace Orvant::Tool {

/// Makes an HTML page that shows where the values of settings come from. It needs no other file.
/// @param application whose settings they are
/// @param files       that the settings were loaded from
/// @param origins     as explain() answers
std::string makePage(const std::string& application, const SettingIndex& settings,
                     const StandardConfigurationFiles& files,
                     const std::vector<ConfigurationOrigin>& origins);

} // namespace Orvant::Tool
