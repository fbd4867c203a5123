#pragma once

#include "Session.h"
#include "checking/Finding.h"

#include <vector>

namespace Orvant::Tool {

/// Loads files, and finds what does not take effect as it is written, or takes effect elsewhere.
/// @param files as for Session::load()
/// @return findings of the system file, then those of the user's, in the order of the text
std::vector<Finding> checkFiles(Session& session, const StandardConfigurationFiles& files);

} // namespace Orvant::Tool
