#include "Progress.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stop_token>

#include <unistd.h>

namespace Orvant::Tool {

namespace {

void watch(const std::stop_token& done) {
    std::mutex mutex;
    std::condition_variable_any end;
    std::unique_lock lock(mutex);
    end.wait_for(lock, done, std::chrono::seconds(1), [] { return false; });
    if (!done.stop_requested())
        std::fputs("orvant-config: still reading ...\n", stderr);
}

} // namespace

Progress::Progress(bool isWanted) {
    if (isWanted && isatty(STDERR_FILENO) == 1)
        m_watch = std::jthread(watch);
}

} // namespace Orvant::Tool
