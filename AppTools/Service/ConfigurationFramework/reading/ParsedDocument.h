#pragma once

#include <ConfigurationFramework/reading/DocumentTree.h>

#include <string>

namespace Orvant {

/// A configuration document: the bytes that were parsed and what they say.
struct ParsedDocument {
    std::string bytes; ///< empty: they were not kept
    DocumentTree tree;
};

} // namespace Orvant
