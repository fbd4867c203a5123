#pragma once

#include <FileHandling/FileName.h>

#include <string>

namespace Orvant::Tool {

/// @return a line that editors jump to: "FILE:LINE: SEVERITY: TEXT", without a line if that is 0,
///         and with a column behind it unless that is 0
std::string messageAt(const FileName& file, unsigned int line, const std::string& severity,
                      const std::string& text, unsigned int column = 0);

} // namespace Orvant::Tool
