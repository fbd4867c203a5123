#pragma once

#include <csignal>

#include <sys/resource.h>

namespace Orvant::Support {

/// Limits files to some bytes while it is in scope, as a full disk does.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_formerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_formerLimit);
        const rlimit limit{bytes, m_formerLimit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_formerLimit);
        std::signal(SIGXFSZ, m_formerHandler);
    }

private:
    rlimit m_formerLimit{};
    void (*m_formerHandler)(int);
};

} // namespace Orvant::Support
