#pragma once

#include <ConfigurationFramework/reading/DocumentTree.h>

#include <memory>
#include <string>

namespace Orvant {

/// A configuration document that was parsed.
struct ParsedDocument {
    DocumentTree tree;
    std::string version; ///< attribute of the root, empty when there is none
};

/// Parses a document as readers do, whatever its root.
/// @return null when readers would not open it
/// @throws xercesc::DOMException for a version of XML that a DOM does not take
std::shared_ptr<ParsedDocument> parseDocument(const std::string& bytes);

} // namespace Orvant
