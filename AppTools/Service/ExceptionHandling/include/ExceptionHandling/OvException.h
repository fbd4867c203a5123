#pragma once

#include <ExceptionHandling/Export.h>

#include <exception>
#include <source_location>
#include <string>

namespace Orvant {

/// Base of the suite's exceptions: a name and the place that threw.
///
/// @code
/// throw OvException("PlotterJammed", std::source_location::current());
/// @endcode
class ORVANT_EXCEPTIONHANDLING_EXPORT OvException : public std::exception {
public:
    /// @param name     name of the exception, normally that of its class
    /// @param location place of the throw statement
    explicit OvException(const std::string& name,
                         std::source_location location = std::source_location::current());

    /// Copies name and place.
    /// @{
    OvException(const OvException&) = default;
    OvException(OvException&&) = default;
    OvException& operator=(const OvException&) = default;
    OvException& operator=(OvException&&) = default;
    /// @}
    ~OvException() override;

    /// @return "NAME thrown at FILE:LINE:COLUMN in FUNCTION"
    const char* what() const noexcept override;

    /// @return place of the throw statement
    const std::source_location& getLocation() const { return m_location; }

    /// Writes what() to the error log.
    void log() const;

private:
    std::string m_what;
    std::source_location m_location;
};

} // namespace Orvant
