#pragma once

#include <string>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// What the generated parsing functions of the schema document model ask about a node before they
/// read it. Failures are the runtime's own, xsd::cxx::tree::parsing<char>.
namespace OV_XsdReader {

/// Maximum depth of elements in a schema. Reading, copying and writing a document recurse as deep
/// as it is nested; far beyond any real schema, that would exhaust the stack.
inline constexpr int maxDepth = 512;

/// @return the text directly in the element, without that of its child elements
std::string ownText(const xercesc::DOMElement& element);

/// Checks that an attribute holds a 32-bit whole number; white space around it is allowed.
/// @return the attribute
/// @throws xsd::cxx::tree::parsing<char> when it holds anything else
const xercesc::DOMAttr& wholeNumber(const xercesc::DOMAttr& attribute);

/// Checks that an element is at most `maxDepth` deep.
/// @return the element
/// @throws xsd::cxx::tree::parsing<char> when it is deeper
const xercesc::DOMElement& notTooDeep(const xercesc::DOMElement& element);

} // namespace OV_XsdReader
