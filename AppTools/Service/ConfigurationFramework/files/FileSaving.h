#pragma once

#include <string>
#include <system_error>

namespace Orvant {

class FileName;

/// Writes a file in place, or makes it. Links are followed, pipes are never opened: one that nobody
/// reads would keep the application waiting for ever.
///
/// When it fails, what was there is there: bytes that were overwritten are put back as far as the
/// disk allows, and nothing is removed but a file that was made by this call.
/// @return what the system reported; none when all bytes are written
/// @throws FileNameException for a name that no file system could hold
std::error_code saveInPlace(const FileName& file, const std::string& bytes);

} // namespace Orvant
