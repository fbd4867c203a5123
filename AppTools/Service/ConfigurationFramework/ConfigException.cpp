#include <ConfigurationFramework/ConfigException.h>

namespace Orvant {

ConfigException::ConfigException(ExceptionType type, std::source_location location)
    : OvException("ConfigException", location), m_type(type) {}

ConfigException::~ConfigException() = default;

} // namespace Orvant
