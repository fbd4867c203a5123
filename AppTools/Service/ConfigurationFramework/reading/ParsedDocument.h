#pragma once

#include <ConfigurationFramework/reading/DocumentTree.h>

#include <memory>
#include <string>

namespace Orvant {

/// A configuration document: the bytes that were parsed and what they say.
struct ParsedDocument {
    std::string bytes; ///< empty: they were not kept
    DocumentTree tree;
};

/// Parses a document as readers do, whatever its root.
/// @return null when readers would not open it
/// @throws xercesc::DOMException for a version of XML that a DOM does not take
std::shared_ptr<ParsedDocument> parseDocument(const std::string& bytes);

} // namespace Orvant
