#pragma once

#include <FileHandling/FileName.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Orvant {

/// Where the value of a setting comes from.
///
/// @code
/// for (const ConfigurationOrigin& origin : manager.explain())
///     if (origin.locked)
///         std::cout << origin.path << " = " << origin.value << ", locked by " << origin.lockedBy
///                   << '\n';
/// @endcode
///
/// Texts are as the files hold them; the items of a list are joined by ", ", each in double quotes.
struct ConfigurationOrigin {
    /// What decides the value, in ascending priority.
    enum Layer : std::int32_t {
        Default, ///< built in
        System,  ///< the administrator's file
        User     ///< the user's file, the only file, or a change that is not saved yet
    };

    /// Names of the elements from the object's on, such as "View3D/Camera/FieldOfView"; keys stand
    /// in brackets: "Machine[Hall 1]/MaxFeed".
    std::string path;
    std::string value; ///< what applies
    Layer layer;       ///< which layer decided
    bool locked;       ///< the user cannot change it
    /// Path of the locking element as it stands in the file, perhaps without the key of `path`; of
    /// what a class or the application locked, the path of that value or object. Empty: not locked.
    std::string lockedBy;
    std::optional<std::string> systemValue; ///< what the system file says, in vain or not
    std::optional<std::string> userValue;   ///< what the user's file, or the only file, says
    FileName file;                          ///< the deciding element's; empty: not from a file
    unsigned int line;                      ///< the deciding element's, from 1; 0: not from a file
    unsigned int systemLine = 0; ///< of the system file's element, from 1; 0: it has none
    unsigned int userLine = 0;   ///< of the element in the user's file, or the only file; 0: none
    /// Of the locking element in the file whose locks count, from 1; 0: no file locks the value. A
    /// lock of a class or the application has none, though `lockedBy` has a path.
    unsigned int lockLine = 0;
    FileName lockFile = {}; ///< that file; empty: none
};

} // namespace Orvant
