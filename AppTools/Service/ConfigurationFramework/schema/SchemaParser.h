#pragma once

#include <ConfigurationFramework/schema/SchemaDialect.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <cstddef>
#include <memory>
#include <string>

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

/// Parses a schema into the schema document model. Nothing that it refers to is opened. One beyond
/// SchemaLimits or ParserConfinement::maxEntityReferences is refused.
/// @param bytes   the file, rewritten if it is one of the suite
/// @param dialect whether the elements of XML Schema are those of the model, too
/// @throws xml_schema::parsing when it is not well-formed or is refused
/// @throws xsd::cxx::exception, one of the model's, when the document does not fit the model
std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const std::string& bytes,
                                                     SchemaDialect dialect);

/// @return true when a file holds a well-formed document with namespaces, within the same limits
/// @throws FileNameException for a name that no file system could hold
bool isWellFormed(const FileName& file);

} // namespace Orvant
