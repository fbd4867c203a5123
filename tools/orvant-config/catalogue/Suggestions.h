#pragma once

#include "catalogue/SettingIndex.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Orvant::Tool {

/// Guesses what was meant by names that a catalogue does not have.
class Suggestions {
public:
    /// @param settings must outlive this
    explicit Suggestions(const SettingIndex& settings);

    /// @param path of an element that no object declares
    /// @return the name of what is most like it in the same object; else the path of what has its
    ///         name in another; empty: none is known
    std::string forUnknown(const std::string& path) const;

private:
    const SettingIndex& m_settings;
    std::unordered_map<std::string, std::vector<std::string>> m_names; ///< by path of the object
    std::unordered_map<std::string, std::string> m_paths;              ///< by name, the first
};

} // namespace Orvant::Tool
