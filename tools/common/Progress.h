#pragma once

#include <string>
#include <thread>

namespace Orvant::Tool {

/// Tells on standard error, where that is a terminal, when work takes longer than a second.
class Progress {
public:
    /// @param program  who tells
    /// @param isWanted false: tells nothing
    Progress(const std::string& program, bool isWanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() = default; ///< the work is done

private:
    std::jthread m_watch;
};

} // namespace Orvant::Tool
