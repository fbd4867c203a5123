#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>

namespace Orvant::Fuzzing {

/// What a target does with one input. Each target's file defines it; libFuzzer calls it with inputs
/// that it makes up, the test with those that are kept.
void runTarget(std::span<const std::uint8_t> input);

/// Ends the process when the library broke a promise.
/// @param promise what should hold
/// @param details what to look at
template <typename... Details>
void require(bool holds, std::string_view promise, const Details&... details) {
    if (holds)
        return;
    std::cerr << "Broken promise: " << promise << '\n';
    ((std::cerr << "---\n" << details << '\n'), ...);
    std::abort();
}

} // namespace Orvant::Fuzzing
