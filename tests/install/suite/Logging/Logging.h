#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvant {

/// The suite's own log: it keeps the messages in memory, with the name of the source file's log.
class Logging {
public:
    explicit Logging(std::string_view name) : m_name(name) {}

    void logERROR(const std::string& message, std::string_view file, std::string_view function,
                  unsigned long line) const;

    static std::vector<std::string> s_messages;

private:
    std::string m_name;
};

} // namespace Orvant
