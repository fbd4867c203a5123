#pragma once

#include <cstddef>

#include <xercesc/dom/DOMDocument.hpp>

namespace Orvant {

/// Deepest nesting of elements that is written. The indentation of deeper documents, whose size
/// grows with the square of the depth, would fill the disk.
constexpr std::size_t maxWrittenDepth = 1'000;

/// What line breaks and indentation are made of.
constexpr const XMLCh* formattingSpace = u" \t\r\n";

/// @return how deeply the nodes below a node are nested; 0 for a node without children
std::size_t nestingDepth(const xercesc::DOMNode& root);

/// Most comments without an element between them that are written. The printer looks for an element
/// beside each comment and walks over all the others on its way, which would take minutes.
constexpr std::size_t maxCommentsInARow = 1'000;

/// @return largest number of comments below a node that stand side by side without an element
///         between them
std::size_t longestRunOfComments(const xercesc::DOMNode& root);

/// Makes a parsed document fit for being written as its root element alone, any number of times.
///
/// Entity references give way to what they stand for, since their declarations are not written; the
/// document becomes one of XML 1.0, since no XML declaration is written; line breaks and
/// indentation between elements go, since the printer adds its own.
void prepareForWriting(xercesc::DOMDocument& document);

} // namespace Orvant
