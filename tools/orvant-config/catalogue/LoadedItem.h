#pragma once

#include "Session.h"

namespace Orvant::Tool {

/// What an application that starts with the files has for a path.
struct LoadedItem {
    const ConfigurationValueBase* value; ///< null: an object
    bool isLocked;                       ///< it, or something that it is in
};

/// Finds what a path means in the files of a session. What has a key that the files do not have is
/// made as the application makes it; without a key, it is the default entry.
/// @return its value lives until the session loads other files
/// @throws Failure(Usage) when there is no such path; Failure like Session::loadUsable()
LoadedItem findLoaded(Session& session, const std::string& path);

} // namespace Orvant::Tool
