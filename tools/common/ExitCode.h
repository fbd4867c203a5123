#pragma once

#include <stdexcept>
#include <string>

namespace Orvant::Tool {

/// What a shell script is told.
enum class ExitCode : int {
    Clean = 0,       ///< yes, equal, nothing found
    Findings = 1,    ///< findings, differences, not writable
    FileError = 2,   ///< a file cannot be read or written
    NoCatalogue = 3, ///< there is no catalogue, or it is damaged
    Usage = 64       ///< wrong usage
};

/// Why a verb ends before it is done.
class Failure : public std::runtime_error {
public:
    /// @param code    what the shell is told
    /// @param message what the user is told
    /// @param isPlaced whether the message begins with the place of the fault in a file, for
    /// editors
    Failure(ExitCode code, const std::string& message, bool isPlaced = false)
        : std::runtime_error(message), m_code(code), m_isPlaced(isPlaced) {}

    /// @return what the shell is told
    ExitCode code() const { return m_code; }
    /// @return whether the message begins with the place of the fault in a file
    bool isPlaced() const { return m_isPlaced; }

private:
    ExitCode m_code;
    bool m_isPlaced;
};

} // namespace Orvant::Tool
