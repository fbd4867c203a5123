#pragma once

#include <string>
#include <system_error>

namespace Orvant {

class FileName;

/// How a save went.
struct FileSave {
    std::error_code error; ///< what the system reported; none: the file holds the new bytes
    bool inPlace = false;  ///< true: it holds them, but is not a new file
};

/// Replaces a file by a new one with other bytes, or makes it. Whoever opens it, and even after a
/// crash, finds the old bytes or the new ones. Links are followed: their target is replaced.
///
/// The new file is flushed to the disk beside the old one, under a name that nobody can foresee. It
/// gets the owner, group, mode and access list of the old one, but not its other attributes. If
/// there is no old file, it gets what the process's mask and the directory give.
///
/// Where a new file cannot be made, cannot take the place of the old one or cannot get its rights,
/// and where the old one has several hard links or is not a regular file, the bytes are written in
/// place, as by saveInPlace(). That is not done when the disk is full. A file that this process may
/// not write stays as it is, even if its directory would allow a replacement.
///
/// A failure leaves what was there, and no other file beside it. Only a process that is ended in
/// the middle leaves its new file behind: a later save to the same target removes such files once
/// nobody has written to them for ten minutes.
/// @throws FileNameException for a name that no file system could hold
FileSave replaceFile(const FileName& file, const std::string& bytes);

} // namespace Orvant
