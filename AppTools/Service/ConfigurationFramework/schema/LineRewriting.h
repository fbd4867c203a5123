#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The text of schema files: their start tags, and what is replaced in their lines.
namespace Orvant::LineRewriting {

using Attributes = std::vector<std::pair<std::string, std::string>>;

/// @return a start tag as suite schemas have it: one blank before each attribute
std::string startTag(std::string_view element, const Attributes& attributes);

/// Attributes of the start tag of a suite schema.
/// @param withPrefix whether they declare the prefix ov:
Attributes suiteAttributes(bool withPrefix);

/// Start tag of a suite schema.
/// @param withPrefix whether it declares the prefix ov:
std::string suiteHeader(bool withPrefix);

/// Start tag of a schema in the reader's namespace that was a suite schema.
std::string readerHeader();

/// Start tag that the schema document model writes.
std::string modelHeader();

/// Tag that the schema document model writes for an empty schema.
std::string emptyModelHeader();

/// What is removed from a file of the suite besides prefixes.
inline constexpr std::string_view removedImport = "<xs:import/>";

/// @return a line of a file of the suite as the schema document model reads it
std::string rewriteForReader(const std::string& line);
/// @return the same of all lines of a file, each of which ends with a line feed afterwards
std::string rewrittenForReader(std::string_view file);

/// @return the line with the first occurrence of `from` replaced
std::string replaceFirst(const std::string& line, std::string_view from, std::string_view to);

/// Replaces a prefix so that both tags of an element that holds nothing but text keep the same
/// name:
///   - a line with such an element and no other tag: in both tags, where the start tag holds the
///     first occurrence;
///   - a line with an end tag and no other: in the end tag, even if the text before holds the
///     prefix;
///   - other lines: as replaceFirst().
/// Comments, instructions and CDATA sections count as text.
/// @return the line, changed or as it was
std::string replacePrefix(const std::string& line, std::string_view from, std::string_view to);

/// An attribute as the schema document model writes it, whose value has lost its prefix, and the
/// same with the prefix.
using Restored = std::pair<std::string_view, std::string_view>;
/// The names of built-in types that get xs: back, in the order in which this is done.
inline constexpr std::array restoredNames{
    Restored{"type=\"int\"", "type=\"xs:int\""},
    Restored{"type=\"double\"", "type=\"xs:double\""},
    Restored{"type=\"string\"", "type=\"xs:string\""},
    Restored{"base=\"anyType\"", "base=\"xs:anyType\""},
    Restored{"base=\"string\"", "base=\"xs:string\""},
};
/// @return whether the value of an attribute is one of them
bool isRestored(std::string_view attribute, std::string_view value);

/// Ends the line after the end tag of a documentation. The schema document model leaves it open
/// when the documentation's text is just a line break or the like.
/// @return the line, or two
std::string endLineOfDocumentation(const std::string& line);

} // namespace Orvant::LineRewriting
