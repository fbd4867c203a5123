#pragma once

#include <ConfigurationFramework/source/SchemaReferences.h>

#include <string>
#include <vector>

namespace Orvant {

/// What can be cut out of a schema file, and what cannot.
struct SchemaPruning {
    std::vector<SourceDocument::Index> cut; ///< nodes, in the order of the file
    /// Names of the types that stay because something that stays names them, or because they are in
    /// an entity; then, as TYPE/CHILD and TYPE/@ATTRIBUTE, what else stays.
    std::vector<std::string> stayed;
};

/// Decides what of a schema can go so that what stays is still a schema.
/// @param references what names what in it
/// @param removed    what is not wanted, in the order of the file
SchemaPruning prune(const SchemaReferences& references,
                    const std::vector<SourceDocument::Index>& removed);

} // namespace Orvant
