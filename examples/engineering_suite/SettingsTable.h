#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>

#include <list>
#include <optional>
#include <string>
#include <vector>

namespace Suite {

/// A registered object with the element that it is stored in.
struct Registered {
    const Orvant::ConfigurationObject* object;
    std::optional<std::string> key;
};

/// Where the settings come from.
struct Layers {
    std::string systemFile;
    std::string userFile;
    std::list<std::string> versions;
};

/// @return a table with a row for each value: where it is, what it is, which layer set it and
///         whether the administrator locked it
std::string settingsTable(const std::vector<Registered>& settings, const Layers& layers);

} // namespace Suite
