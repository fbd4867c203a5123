#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace Orvant {

class FileName;

/// The name for the standard library. Made here, since a suite's FileName need not have a toPath().
/// @throws FileNameException for a name that no file system could hold
std::filesystem::path toPath(const FileName& file);

/// What was read, or why nothing was.
struct FileBytes {
    std::optional<std::string> bytes;
    std::error_code error; ///< as the system reported it; none when there are bytes
};

/// Reads all bytes of a regular file, however its size changes meanwhile. Nothing else is ever
/// opened: a pipe or a device would keep the application waiting for ever.
/// @return no bytes when the name is not that of a regular file, or the file cannot be read to its
///         end or is larger than 1 GiB, which no settings are
/// @throws FileNameException for a name that no file system could hold
FileBytes readBytes(const FileName& file);

/// @return true when readBytes() would return just these bytes
/// @throws FileNameException for a name that no file system could hold
bool fileHolds(const FileName& file, std::string_view bytes);

/// @return the bytes of readBytes()
/// @throws FileNameException for a name that no file system could hold
std::optional<std::string> readRegularFile(const FileName& file);

/// @return the error of readBytes()
/// @throws FileNameException for a name that no file system could hold
std::error_code checkRegularFile(const FileName& file);

} // namespace Orvant
