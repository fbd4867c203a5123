#pragma once

#include <ConfigurationFramework/xsd/ov_schema.h>

#include <cstddef>
#include <memory>

namespace Orvant {

class FileName;

/// The limits of a schema file. Real schemas are far below them. Without them, a file of a few
/// kilobytes could keep the application busy for hours or fill its memory.
struct SchemaLimits {
    static constexpr std::size_t attributes = 100; ///< of one element, or declared for one
    static constexpr std::size_t depth = 1'000;    ///< of elements
    /// Different tags, and attribute names: Xerces searches them one by one.
    static constexpr std::size_t names = 10'000;
    /// Characters of a document whose references are expanded. One without references may be
    /// longer.
    static constexpr std::size_t expandedSize = 10'000'000;
};

/// Parses a file into the schema document model. Nothing that the file refers to is opened. A file
/// beyond SchemaLimits or ParserConfinement::maxEntityReferences is refused.
/// @throws xml_schema::parsing when the file cannot be read, is not well-formed or is refused
/// @throws xsd::cxx::exception, one of the model's, when the document does not fit the model
/// @throws FileNameException for a name that no file system could hold
std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const FileName& file);

/// @return true when a file holds a well-formed document with namespaces, within the same limits
/// @throws FileNameException for a name that no file system could hold
bool isWellFormed(const FileName& file);

} // namespace Orvant
