#pragma once

#include <ConfigurationFramework/Export.h>
#include <FileHandling/FileName.h>

#include <string>

namespace Orvant {

/// Where the files of an application are. Neither has to exist.
struct StandardConfigurationFiles {
    FileName system; ///< the administrator's
    FileName user;   ///< the user's
};

/// Finds the files of an application in the XDG base directories (freedesktop.org, version 0.8):
/// "NAME/NAME.xml" in the first folder of XDG_CONFIG_DIRS that has it ("/etc/xdg" unless set), and
/// in XDG_CONFIG_HOME ("~/.config" unless set).
///
/// @code
/// const auto files = Orvant::standardConfigurationFiles("planner");
/// manager.setSystemAndUserConfigurationFile(files.system, files.user);
/// @endcode
///
/// Paths in these variables that are not absolute are ignored: they would mean another folder in
/// each process.
/// @param application name of folder and file, UTF-8
/// @return absolute paths, UTF-8. Where no folder has the system file: that in the first one, for
///         the administrator to put it there. Where there is no home folder: no user file.
/// @throws std::invalid_argument for a name that is empty, ".", ".." or contains '/' or a NUL
ORVANT_CONFIGURATIONFRAMEWORK_EXPORT StandardConfigurationFiles
standardConfigurationFiles(const std::string& application);

} // namespace Orvant
