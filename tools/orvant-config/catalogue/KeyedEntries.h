#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <map>
#include <string>
#include <vector>

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

/// What default entries hold for keys that have no element: the manager knows only what is
/// registered, so an object is registered for such a key.
class DefaultEntries {
public:
    /// @param catalogue  that of the manager's objects
    /// @param ofAllKinds false: only where the files have a default entry
    DefaultEntries(const ConfigurationCatalogue& catalogue, ConfigurationManager& manager,
                   bool ofAllKinds);

    /// @return the path of a setting, or "Machine/MaxFeed" if it is that of a default entry
    std::string pathOf(const std::string& path) const;

private:
    std::map<std::string, std::string> m_names; ///< by what paths begin with
};

} // namespace Orvant::Tool
