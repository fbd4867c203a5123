#pragma once

#include <cstdint>
#include <string>
#include <system_error>

namespace Orvant {

/// How the last save went.
///
/// @code
/// if (!manager.saveConfiguration("1.0"))
///     showError(manager.getSaveReport().text);
/// @endcode
struct ConfigurationSaveReport {
    /// Why a save ended as it did. Only the first two are successes.
    enum Reason : std::int32_t {
        Saved,          ///< the file holds the settings
        NothingToSave,  ///< no file is set, or nothing was changed; nothing was written
        NoFolder,       ///< the folder of the file is missing
        NoPermission,   ///< the file or its folder may not be written
        NoSpace,        ///< the disk is full or a quota is used up
        Busy,           ///< other processes kept the file locked all the time
        Damaged,        ///< a file is not a configuration document
        OtherVersion,   ///< the file is of a version that is not accepted
        NotLoaded,      ///< a file could not be read when the objects were loaded, or cannot be now
        SameFile,       ///< system and user file are one and the same
        InvalidContent, ///< an object cannot be written as XML
        Failed          ///< anything else
    };

    Reason reason = NothingToSave; ///< why it ended so
    std::error_code error = {};    ///< what the system reported; none when it reported nothing
    /// A sentence in English for the user, which names the file. After a success it is empty unless
    /// something could not be done as intended.
    std::string text = {};
    bool writtenInPlace = false; ///< the file was overwritten, which a crash could have cut short
};

} // namespace Orvant
