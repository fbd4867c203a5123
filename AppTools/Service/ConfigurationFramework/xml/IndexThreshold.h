#pragma once

#include <cstdint>

namespace Orvant {

/// Up to this many, comparing the children of an element one by one is faster than an index.
constexpr std::uint32_t mostChildrenWithoutIndex = 32;

} // namespace Orvant
