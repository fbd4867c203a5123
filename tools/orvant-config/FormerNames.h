#pragma once

#include "SettingIndex.h"

#include <ConfigurationFramework/ConfigurationFileEditor.h>

#include <optional>
#include <string>
#include <unordered_map>

namespace Orvant::Tool {

/// Finds the settings that elements of files hold, also of files of earlier versions.
class FormerNames {
public:
    /// @param catalogue must outlive this, and so must the settings
    FormerNames(const ConfigurationCatalogue& catalogue, const SettingIndex& settings);

    /// @return what an element is today; null: nothing
    const CatalogueItem* itemAt(const ConfigurationElementPath& path) const;
    /// @return where an element stands today. One that is something today stands where it is, even
    ///         if something else had its name. Nothing: it has no place.
    std::optional<ConfigurationElementPath> placeToday(const ConfigurationElementPath& path) const;

private:
    std::optional<ConfigurationElementPath> rename(const ConfigurationElementPath& path) const;
    std::optional<ConfigurationElementPath> replaceFront(const ConfigurationElementPath& path,
                                                         std::size_t size,
                                                         const std::string& today) const;

    std::unordered_map<std::string, std::vector<const CatalogueItem*>> m_items; ///< by names
    std::unordered_map<std::string, std::string> m_paths; ///< of today, by former ones
};

/// @return the names on a path, joined by slashes
std::string namesOf(const ConfigurationElementPath& path);

} // namespace Orvant::Tool
