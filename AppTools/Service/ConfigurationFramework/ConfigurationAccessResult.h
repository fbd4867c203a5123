#pragma once

#include <cstdint>

namespace Orvant {

/// Status of every navigation and every typed access of readers and writers.
enum ConfigurationAccessResult : std::uint32_t {
    Success = 0, ///< the node, key or value was found and converted; outputs were written
    Failure = 1  ///< no such node, keyed node or text, text that does not convert, no source
};

} // namespace Orvant
