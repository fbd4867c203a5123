#pragma once

#include <string>

namespace Orvant::Tool {

/// What can be said about the output of any verb of any tool.
struct OutputOptions {
    bool json = false;          ///< for programs instead of people
    bool quiet = false;         ///< only the exit code
    std::string color = "auto"; ///< "auto", "always" or "never"
};

} // namespace Orvant::Tool
