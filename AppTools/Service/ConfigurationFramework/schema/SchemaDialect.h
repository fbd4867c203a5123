#pragma once

#include <cstdint>

namespace Orvant {

/// How the elements of a schema file become those of the schema document model.
enum class SchemaDialect : std::uint8_t {
    Suite,  ///< those that have lost their prefix once the file is rewritten line by line
    Reader, ///< those in the reader's own namespace
    Any,    ///< those in the namespace of XML Schema, and those in the reader's own
};

} // namespace Orvant
