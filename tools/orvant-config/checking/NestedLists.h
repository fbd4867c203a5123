#pragma once

#include "Session.h"
#include "checking/Finding.h"

#include <vector>

namespace Orvant::Tool {

/// Finds lists that are read from an element that is not in that of their object, but deeper: lists
/// are looked for at every depth, so that one of a child counts for its parents, too.
/// @param files   that the session has loaded
/// @param origins of all settings
std::vector<Finding> findNestedLists(Session& session, const StandardConfigurationFiles& files,
                                     const std::vector<ConfigurationOrigin>& origins);

} // namespace Orvant::Tool
