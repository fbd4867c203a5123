#pragma once

#include <filesystem>
#include <vector>

namespace Orvant {

/// Follows a link from name to name.
/// @return the given name and then, each after the link that leads to it, all others. The last is
///         no link, unless there are more links than Linux follows.
std::vector<std::filesystem::path> followLinks(const std::filesystem::path& path);

} // namespace Orvant
