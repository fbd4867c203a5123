#pragma once

#include <ConfigurationFramework/ConfigException.h>

#include <source_location>
#include <string>
#include <utility>

namespace Orvant {

/// A schema file that cannot be read, or a file that cannot be written for it, and why.
class SchemaFileFailure : public ConfigException {
public:
    explicit SchemaFileFailure(std::string reason,
                               std::source_location location = std::source_location::current())
        : ConfigException(SourceNotFound, location), m_reason(std::move(reason)) {}

    const std::string& reason() const { return m_reason; }

private:
    std::string m_reason;
};

} // namespace Orvant
