#pragma once

#include <ConfigurationFramework/xsd/ov_schema.h>

#include <cstddef>
#include <string>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMElement.hpp>

/// What the generated parsing functions of the schema document model ask about a node before they
/// read it. Failures are derived from the runtime's own, xsd::cxx::tree::parsing<char>.
namespace OV_XsdReader {

/// Maximum depth of elements in a schema. Reading, copying and writing a document recurse as deep
/// as it is nested; far beyond any real schema, that would exhaust the stack.
inline constexpr int maxDepth = 512;

/// A parsing failure that tells which element of the document it is about.
class MisfitElement : public xml_schema::parsing {
public:
    MisfitElement(const std::string& message, const xercesc::DOMElement& element);

    const std::string& message() const;
    /// @return position of the element among all of the document, from 0
    std::size_t position() const { return m_position; }

private:
    std::size_t m_position;
};

/// @return the text directly in the element, without that of its child elements
std::string ownText(const xercesc::DOMElement& element);

/// Checks that an attribute holds a 32-bit whole number; white space around it is allowed.
/// @return the attribute
/// @throws MisfitElement when it holds anything else
const xercesc::DOMAttr& wholeNumber(const xercesc::DOMAttr& attribute);

/// Checks that an element is at most `maxDepth` deep.
/// @return the element
/// @throws MisfitElement when it is deeper
const xercesc::DOMElement& notTooDeep(const xercesc::DOMElement& element);

} // namespace OV_XsdReader
