#pragma once

#include <ConfigurationFramework/source/SourceDocument.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <vector>

namespace Orvant {

class SchemaSource;

/// Compares a schema with the file that it was made of.
/// @param source parsed
/// @return the types, root elements, children and attributes of the file that the schema lost since
///         then, in the order of the file; not those in others of them
std::vector<SourceDocument::Index> findRemovedNodes(const SchemaSource& source,
                                                    const OV_XsdReader::ov_schema& schema);

} // namespace Orvant
