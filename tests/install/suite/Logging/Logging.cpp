#include <Logging/Logging.h>

namespace Orvant {

std::vector<std::string> Logging::s_messages;

void Logging::logERROR(const std::string& message, std::string_view file, std::string_view function,
                       unsigned long line) const {
    if (!file.empty() && !function.empty() && line > 0)
        s_messages.push_back(m_name + ": " + message);
}

} // namespace Orvant
