#pragma once

#include <Logging/Export.h>

#include <string>

namespace Orvant {

/// Error log of one source file.
///
/// @code
/// const Logging s_log("ConfigWriter");
/// s_log.logERROR("cannot do it", __FILE__, __func__, __LINE__);
/// @endcode
///
/// Messages go to the spdlog logger that is registered under the name; if there is none, one that
/// writes to standard error is registered. A host application routes them by registering its own
/// logger of that name, or by adding sinks to the one that is there.
class ORVANT_LOGGING_EXPORT Logging {
public:
    /// @param name name of the spdlog logger to write to
    explicit Logging(std::string name);

    /// Logs one error with the place that reports it. Does not throw when a sink fails.
    /// @param message  what went wrong
    /// @param file     source file of the place
    /// @param function signature of the function
    /// @param line     line in the file, counted from 1
    void logERROR(const std::string& message, const char* file, const char* function,
                  unsigned line) const;

private:
    std::string m_name;
};

} // namespace Orvant
