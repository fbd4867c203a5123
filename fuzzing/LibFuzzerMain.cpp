// What libFuzzer calls.

#include "FuzzTarget.h"

#include <spdlog/spdlog.h>

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    // A line of log for each damaged document takes longer than the document.
    spdlog::set_level(spdlog::level::off);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Orvant::Fuzzing::runTarget({data, size});
    return 0;
}
