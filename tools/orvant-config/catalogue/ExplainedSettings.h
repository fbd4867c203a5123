#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <string>
#include <vector>

namespace Orvant::Tool {

/// A setting of loaded files.
struct ExplainedSetting {
    ConfigurationOrigin origin;
    std::vector<std::string> items; ///< of a list: its text does not tell where one ends
};

/// @param catalogue that of the manager's objects
/// @return what applies, with the default entries of the files, in the order of the catalogue
std::vector<ExplainedSetting> explainAll(const ConfigurationCatalogue& catalogue,
                                         ConfigurationManager& manager);

} // namespace Orvant::Tool
