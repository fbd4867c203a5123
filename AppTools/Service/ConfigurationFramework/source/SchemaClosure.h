#pragma once

#include <ConfigurationFramework/source/SchemaReferences.h>

#include <string>
#include <vector>

namespace Orvant {

/// Finds the types of a schema file that types name, directly or through others: in optional
/// children, groups, unions and lists, too, and in elements that may stand for a named one.
/// @param references what names what in the file
/// @param removed    nodes that do not count, in the order of the file
/// @param types      names of types
/// @return these, and the names of the others
std::vector<std::string> withNamedTypes(const SchemaReferences& references,
                                        const std::vector<SourceDocument::Index>& removed,
                                        const std::vector<std::string>& types);

} // namespace Orvant
