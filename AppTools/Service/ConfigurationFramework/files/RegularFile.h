#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace Orvant {

class FileName;

/// The name for the standard library. Converted here, since a suite's FileName may lack toPath().
/// @throws FileNameException for a name that no file system could hold
std::filesystem::path toPath(const FileName& file);

/// Reads all bytes of a regular file. Nothing else is ever opened: a pipe or a device would block
/// the application for ever.
/// @return nothing when the name is not that of a regular file, or the file cannot be read or is
///         larger than 1 GiB, which no settings are
/// @throws FileNameException for a name that no file system could hold
std::optional<std::string> readRegularFile(const FileName& file);

/// @return why readRegularFile() would return nothing, as the system reports it; no error when it
/// would not
/// @throws FileNameException for a name that no file system could hold
std::error_code checkRegularFile(const FileName& file);

} // namespace Orvant
