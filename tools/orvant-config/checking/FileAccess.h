#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvant::Tool {

/// Who may do something.
enum class Who : std::int32_t { Nobody, Group, Users };

/// What ordinary users may do with a file or folder.
struct FileAccess {
    Who reads = Who::Nobody;  ///< the content of a file; into a folder
    Who writes = Who::Nobody; ///< of a folder: may remove what others have there
};

/// @return what the modes of files and folders allow everybody, or members of their groups other
///         than that of root
std::vector<FileAccess> accessByMode(const std::vector<std::filesystem::path>& paths);
/// @return what a user may do
/// @throws Failure(FileError) when this process cannot find that out
std::vector<FileAccess> accessOf(const std::string& user,
                                 const std::vector<std::filesystem::path>& paths);

} // namespace Orvant::Tool
