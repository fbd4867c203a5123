#pragma once

#include "common/OutputOptions.h"

#include <optional>
#include <string>

namespace Orvant::Tool {

/// What can be said before and after any verb.
struct Options : OutputOptions {
    std::optional<std::string> application; ///< whose catalogue is looked for
    std::optional<std::string> catalogue;   ///< file
    std::optional<std::string> systemFile;  ///< instead of that in the catalogue
    std::optional<std::string> userFile;    ///< instead of that in the catalogue
    std::optional<std::string> user;        ///< whose files and rights
};

} // namespace Orvant::Tool
