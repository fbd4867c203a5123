#include "common/Progress.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stop_token>

#include <unistd.h>

namespace Orvant::Tool {

namespace {

void watch(const std::stop_token& done, const std::string& message) {
    std::mutex mutex;
    std::condition_variable_any end;
    std::unique_lock lock(mutex);
    end.wait_for(lock, done, std::chrono::seconds(1), [] { return false; });
    if (!done.stop_requested())
        std::fputs(message.c_str(), stderr);
}

} // namespace

Progress::Progress(const std::string& program, bool isWanted) {
    if (isWanted && isatty(STDERR_FILENO) == 1)
        m_watch = std::jthread(watch, program + ": still reading ...\n");
}

} // namespace Orvant::Tool
