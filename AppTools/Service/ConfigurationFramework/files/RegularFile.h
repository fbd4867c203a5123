#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace Orvant {

class FileName;

/// The name for the standard library. Made here, since a suite's FileName need not have a toPath().
/// @throws FileNameException for a name that no file system could hold
std::filesystem::path toPath(const FileName& file);

/// Reads all bytes of a regular file. Nothing else is ever opened: a pipe or a device would keep
/// the application waiting for ever.
/// @return nothing when the name is not that of a regular file, or the file cannot be read or is
///         larger than 1 GiB, which no settings are
/// @throws FileNameException for a name that no file system could hold
std::optional<std::string> readRegularFile(const FileName& file);

/// @return why readRegularFile() would answer nothing, as the system reports it; none when it would
/// not
/// @throws FileNameException for a name that no file system could hold
std::error_code checkRegularFile(const FileName& file);

} // namespace Orvant
