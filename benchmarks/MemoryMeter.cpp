#include "MemoryMeter.h"

#include <algorithm>

#include <malloc.h>

namespace {

struct Counts {
    bool counting = false;
    std::size_t allocations = 0;
    std::ptrdiff_t held = 0;
    std::ptrdiff_t peak = 0;
};
constinit Counts s_counts;

void* taken(void* block) {
    if (s_counts.counting && block != nullptr) {
        ++s_counts.allocations;
        s_counts.held += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
        s_counts.peak = std::max(s_counts.peak, s_counts.held);
    }
    return block;
}

void giveBack(void* block) {
    if (s_counts.counting && block != nullptr)
        s_counts.held -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

} // namespace

// The GNU C library's heap under its own names, and in front of it the functions that every library
// of the process calls, operator new included.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    return taken(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return taken(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    giveBack(block);
    return taken(__libc_realloc(block, size));
}

void free(void* block) {
    giveBack(block);
    __libc_free(block);
}

} // extern "C"

namespace Orvant::Benchmarks {

MemoryMeter::MemoryMeter() {
    s_counts = {.counting = true};
}

MemoryMeter::~MemoryMeter() {
    s_counts.counting = false;
}

std::size_t MemoryMeter::allocations() const {
    return s_counts.allocations;
}

std::size_t MemoryMeter::held() const {
    return static_cast<std::size_t>(std::max(s_counts.held, std::ptrdiff_t{0}));
}

std::size_t MemoryMeter::peak() const {
    return static_cast<std::size_t>(s_counts.peak);
}

} // namespace Orvant::Benchmarks
