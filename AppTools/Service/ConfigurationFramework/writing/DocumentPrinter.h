#pragma once

#include <cstddef>
#include <string>

#include <xercesc/dom/DOMDocument.hpp>

namespace Orvant {

/// A document as text, or the reason why there is none.
struct PrintedDocument {
    std::string text = {};    ///< UTF-8, from the root's start tag on
    std::string problem = {}; ///< in words; empty when there is a text
    std::size_t nodes = 0;
};

/// Prints a document, each element on a line of its own, indented by its depth. A document whose
/// layout would take the printer minutes or fill the disk is not printed, nor is what XML cannot
/// express.
PrintedDocument printDocument(const xercesc::DOMDocument& document);

/// What stands before and after the root, which printDocument() leaves out: comments and processing
/// instructions, each on a line of its own, in UTF-8.
struct DocumentSurroundings {
    std::string before = {};
    std::string after = {};
};

DocumentSurroundings surroundingsOf(const xercesc::DOMDocument& document);

} // namespace Orvant
