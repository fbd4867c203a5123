#pragma once

#include <xercesc/dom/DOMDocument.hpp>

namespace Orvant {

/// Turns the document of any schema into one that the schema document model reads: what is in the
/// namespace of XML Schema comes into the reader's, and the names of types are written as in a file
/// of the suite. Elements that the model does not hold are left alone as far as possible.
void translateForReader(xercesc::DOMDocument& document);

} // namespace Orvant
