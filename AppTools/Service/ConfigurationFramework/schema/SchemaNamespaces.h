#pragma once

#include <string_view>

/// The namespaces of schema files.
namespace Orvant::SchemaNamespaces {

/// That of XML Schema itself.
inline constexpr std::string_view xmlSchema = "http://www.w3.org/2001/XMLSchema";
/// That which the suite's schemas describe.
inline constexpr std::string_view suite = "http://www.orvant.com/OV_QLV100";
/// That of the schema document model.
inline constexpr std::string_view reader = ORVANT_READER_NAMESPACE;

} // namespace Orvant::SchemaNamespaces
