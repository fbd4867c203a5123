#pragma once

#include <cstdint>

namespace Orvant {

/// Up to here, comparing one child of an element after the other is faster than an index of them.
constexpr std::uint32_t mostChildrenWithoutIndex = 32;

} // namespace Orvant
