#pragma once

#include <string>
#include <string_view>

/// The text of schema files: their start tags and what is replaced in a line of them.
namespace Orvant::LineRewriting {

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

/// As replaceFirst(), but leaves the two tags of an element that holds nothing but text with the
/// same name, which is what the first occurrence alone is not enough for:
///   - where it is in the start tag of an element that ends on the line, alone on it, the one in
///   its
///     end tag is replaced, too;
///   - where it is in text before an end tag that is alone on the line, the one in the end tag is
///     replaced in its place.
/// Comments, instructions and CDATA sections count as text.
/// @return the line, changed or as it was
std::string replacePrefix(const std::string& line, std::string_view from, std::string_view to);

/// Ends the line behind the end tag of a documentation, where the schema document model leaves it
/// open when the documentation's text is just a line break or the like.
/// @return the line, or two
std::string endLineOfDocumentation(const std::string& line);

} // namespace Orvant::LineRewriting
