#pragma once

#include "checking/Finding.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvant::Tool {

/// Finds out whether users can read a system file and cannot change it: neither the file, nor the
/// folders that it, and a link to it, are in.
/// @param user whose access counts, access lists and groups included; nothing: what the modes of
///             the files allow everybody
/// @throws Failure(FileError) when the rights of another user cannot be found out
std::vector<Finding> checkRights(const FileName& file, const std::optional<std::string>& user);

} // namespace Orvant::Tool
