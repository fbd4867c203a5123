#pragma once

#include <filesystem>
#include <vector>

namespace Orvant {

/// Follows a link from name to name.
/// @return the given name, then the target of each link in turn. The last is not a link, unless
///         there are more links than Linux follows.
std::vector<std::filesystem::path> followLinks(const std::filesystem::path& path);

} // namespace Orvant
