#pragma once

#include <filesystem>
#include <vector>

namespace Orvant {

class FileName;

/// Follows a link from name to name.
/// @return the given name, then the target of each link in turn. The last is not a link, unless
///         there are more links than Linux follows.
std::vector<std::filesystem::path> followLinks(const std::filesystem::path& path);

/// Whether two names lead to the same file, there or not. Names that no file system could hold lead
/// to none.
bool isSameFile(const FileName& first, const FileName& second);

} // namespace Orvant
