#pragma once

#include <ConfigurationFramework/writing/WrittenElement.h>

#include <cstddef>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// What an application changed in an element: everything that differs between two states of it.
struct ElementChange {
    const WrittenElement* base;   ///< as it was known before; null: not at all
    const WrittenElement* now;    ///< as it is now; null: it is gone
    const WrittenElement* stored; ///< what of `now` belongs in the file; null: nothing
};

/// Makes changes in a document that others may have edited meanwhile.
///
/// Groups are merged child by child, at any depth; a value that was changed is replaced as a whole,
/// or removed when nothing of it belongs in the file. What was not changed stays as it is in the
/// document, with comments, attributes and order. For what both sides changed, the application
/// wins.
/// @param element the element in the document
/// @param change  what was changed in it
/// @return number of elements that were added, replaced or removed
std::size_t mergeChanges(xercesc::DOMElement& element, const ElementChange& change);

} // namespace Orvant
