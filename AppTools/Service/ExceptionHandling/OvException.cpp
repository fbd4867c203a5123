#include <ExceptionHandling/OvException.h>

#include <Logging/Logging.h>

namespace Orvant {

OvException::OvException(const std::string& name, std::source_location location)
    : m_what(name + " thrown at " + location.file_name() + ':' + std::to_string(location.line()) +
             ':' + std::to_string(location.column()) + " in " + location.function_name()),
      m_location(location) {}

OvException::~OvException() = default;

const char* OvException::what() const noexcept {
    return m_what.c_str();
}

void OvException::log() const {
    Logging("OvException")
        .logERROR(m_what, m_location.file_name(), m_location.function_name(), m_location.line());
}

} // namespace Orvant
