#pragma once

#include <ConfigurationFramework/schema/SchemaDialect.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <memory>
#include <string>

namespace Orvant {

class FileName;

/// Parses a schema into the schema document model. Nothing that it refers to is opened. One beyond
/// SchemaLimits or ParserConfinement::maxEntityReferences is refused.
/// @param bytes   the file, rewritten if it is one of the suite
/// @param dialect whether the elements of XML Schema are those of the model, too
/// @throws xml_schema::parsing when it is not well-formed or is refused; MisfitElement, derived
///         from it, when an element does not fit the model
/// @throws xsd::cxx::exception, one of the model's, when the document does not fit the model
std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const std::string& bytes,
                                                     SchemaDialect dialect);

/// @return true when a file holds a well-formed document with namespaces, within the same limits
/// @throws FileNameException for a name that no file system could hold
bool isWellFormed(const FileName& file);

} // namespace Orvant
