#pragma once

#include <string>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// What the generated parsing functions of the schema document model ask about a node before they
/// read it. Failures are the runtime's own, xsd::cxx::tree::parsing<char>.
namespace OV_XsdReader {

/// Elements may stand this deep in a schema. Reading, copying and writing a document recurse as
/// deep as it is; beyond any real schema, that would end on an exhausted stack.
inline constexpr int maxDepth = 512;

/// @return the text that stands directly in the element, without what its child elements hold
std::string ownText(const xercesc::DOMElement& element);

/// Lets an attribute pass that holds a whole number of 32 bits, white space around it allowed.
/// @return the attribute
/// @throws xsd::cxx::tree::parsing<char> when it holds anything else
const xercesc::DOMAttr& wholeNumber(const xercesc::DOMAttr& attribute);

/// Lets an element pass that stands at most `maxDepth` deep.
/// @return the element
/// @throws xsd::cxx::tree::parsing<char> when it stands deeper
const xercesc::DOMElement& notTooDeep(const xercesc::DOMElement& element);

} // namespace OV_XsdReader
