#pragma once

#include <ConfigurationFramework/ConfigurationDescription.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <string>

namespace Orvant::Tool {

// Objects of which any number are registered, one for each key.

/// @return a key that no file has: what is loaded for it is the default entry
std::string keyOfNone(const ConfigurationManager& manager, const std::string& name);

/// Registers the object of a key, unless it is registered, and loads it.
/// @param manager keeps the object
/// @param kind    of a keyed entry of a catalogue
ConfigurationObject& registerEntry(ConfigurationManager& manager,
                                   const ConfigurationObjectDescription& kind,
                                   const std::string& key);

} // namespace Orvant::Tool
