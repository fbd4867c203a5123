#pragma once

#include <FileHandling/FileName.h>

namespace Orvant {

/// Queries and changes of the file system.
///
/// @code
/// if (FileUtilities::exists(file))
///     FileUtilities::copyFile(file, backup);
/// @endcode
///
/// All of them throw FileNameException for a name that no file system could hold and report every
/// other failure by their result.
class ORVANT_FILEHANDLING_EXPORT FileUtilities {
public:
    /// @param file        what to look for; links are followed
    /// @param asDirectory true when only a directory will do
    /// @return true when something (a directory, with `asDirectory`) of that name is there, or when
    ///         the file system cannot tell
    static bool exists(const FileName& file, bool asDirectory = false);

    /// @return true when the file was there and is gone
    static bool remove(const FileName& file);

    /// Copies the contents of a file, overwriting the target if there is one.
    /// @return true when the copy is complete
    static bool copyFile(const FileName& source, const FileName& target);

    /// Moves a file over another, in one step where the file system can.
    /// @return true when the file now has the name of the target
    static bool replaceFile(const FileName& source, const FileName& target);
};

} // namespace Orvant
