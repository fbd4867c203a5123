#include <Logging/Logging.h>

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <utility>

namespace Orvant {

namespace {

std::shared_ptr<spdlog::logger> loggerNamed(const std::string& name) {
    if (auto registered = spdlog::get(name))
        return registered;
    try {
        return spdlog::stderr_color_mt(name);
    } catch (const spdlog::spdlog_ex&) {
        // Another thread registered the name between the two calls.
        return spdlog::get(name);
    }
}

} // namespace

Logging::Logging(std::string name) : m_name(std::move(name)) {}

void Logging::logERROR(const std::string& message, const char* file, const char* function,
                       unsigned line) const {
    if (const auto logger = loggerNamed(m_name))
        logger->error("{} ({}:{}, {})", message, file, line, function);
}

} // namespace Orvant
