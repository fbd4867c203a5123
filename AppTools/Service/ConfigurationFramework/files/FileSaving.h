#pragma once

#include <string>
#include <system_error>

namespace Orvant {

class FileName;

/// Writes a file in place, or creates it. Links are followed. A pipe is never opened: one that
/// nobody reads would block the application for ever.
///
/// A failure leaves what was there: overwritten bytes are restored as far as the disk allows, and a
/// file is removed only if this call made it.
/// @return what the system reported; no error when all bytes are written
/// @throws FileNameException for a name that no file system could hold
std::error_code saveInPlace(const FileName& file, const std::string& bytes);

} // namespace Orvant
