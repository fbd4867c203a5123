#pragma once

#include <cstddef>

#include <xercesc/dom/DOMDocument.hpp>

namespace Orvant {

/// How a document is laid out when it is printed.
struct PrintedLayout {
    std::size_t nodes = 0;
    std::size_t depth = 0;          ///< of elements, 1 for a root without children
    std::size_t indentation = 0;    ///< at most so many blanks
    std::size_t commentsInARow = 0; ///< most comments side by side without an element between them
};

/// Deepest nesting of elements that is written: the printer walks them by recursion.
constexpr std::size_t maxWrittenDepth = 4'000;
/// Most indentation that is written, that of one chain of so many elements. It grows with the depth
/// of every element and would fill the disk.
constexpr std::size_t maxWrittenIndentation = 2 * maxWrittenDepth * maxWrittenDepth;
/// Most comments without an element between them that are written. The printer looks for an element
/// beside each comment and walks over all the others on its way, which would take minutes.
constexpr std::size_t maxCommentsInARow = 10'000;

PrintedLayout layoutOf(const xercesc::DOMElement& root);

/// Makes a parsed document fit for being written as its root element alone, any number of times.
///
/// The document becomes one of XML 1.0, since no XML declaration is written; line breaks and
/// indentation between elements go, since the printer adds its own.
void prepareForWriting(xercesc::DOMDocument& document);

} // namespace Orvant
