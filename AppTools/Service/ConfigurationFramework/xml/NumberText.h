#pragma once

#include <string_view>

namespace Orvant {

/// Reads a number off the front of a text, as a stream in the classic locale extracts it: white
/// space before it is skipped, anything behind it ignored. An overflow is no number; an underflow
/// is.
/// @param number written on success only
/// @return true when there was a number
bool extractNumber(std::string_view text, int& number);
/// @copydoc extractNumber(std::string_view, int&)
bool extractNumber(std::string_view text, double& number);

} // namespace Orvant
