#pragma once

#include <string>
#include <string_view>

/// The text of schema files: their start tags and what is replaced in a line of them.
namespace Orvant::SchemaText {

/// Start tag of a suite schema.
/// @param withPrefix whether it declares the prefix ov:
std::string suiteHeader(bool withPrefix);

/// Start tag of a schema in the reader's namespace that was a suite schema.
std::string readerHeader();

/// Start tag that the schema document model writes.
std::string modelHeader();

/// Tag that the schema document model writes for an empty schema.
std::string emptyModelHeader();

/// @return the line with the first occurrence of `from` replaced
std::string replaceFirst(const std::string& line, std::string_view from, std::string_view to);

/// Where the line is one element that holds nothing but text, and its name begins with `from`,
/// replaces that in its end tag. Replacing the first occurrence alone would leave an element whose
/// tags have different names.
/// @return the line, changed or as it was
std::string replacePrefixOfEndTag(const std::string& line, std::string_view from,
                                  std::string_view to);

} // namespace Orvant::SchemaText
