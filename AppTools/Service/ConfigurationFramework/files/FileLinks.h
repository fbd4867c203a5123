#pragma once

#include <filesystem>
#include <vector>

namespace Orvant {

/// @return a name and, if it is that of a link, the names that one link after the other leads to.
///         The last is that of no link, unless there are more links than any system follows.
std::vector<std::filesystem::path> followLinks(const std::filesystem::path& path);

} // namespace Orvant
