#pragma once

#include <cstddef>

namespace Orvant::Benchmarks {

/// Counts what the whole process, C libraries included, takes from the heap and frees while the
/// meter is in scope. There is one meter at a time, and one thread.
class MemoryMeter {
public:
    MemoryMeter();
    MemoryMeter(const MemoryMeter&) = delete;
    MemoryMeter& operator=(const MemoryMeter&) = delete;
    ~MemoryMeter();

    /// @return number of allocations
    std::size_t allocations() const;
    /// @return bytes taken and not freed
    std::size_t held() const;
    /// @return most bytes held at a time
    std::size_t peak() const;
};

} // namespace Orvant::Benchmarks
