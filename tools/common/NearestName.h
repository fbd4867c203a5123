#pragma once

#include <string>
#include <vector>

namespace Orvant::Tool {

/// @return the candidate that is most like a text; empty when none is
std::string nearestName(const std::string& text, const std::vector<std::string>& candidates);

/// @param name what may be meant; empty: nothing is known
/// @return the end of a message that asks whether it is
std::string didYouMean(const std::string& name);

} // namespace Orvant::Tool
