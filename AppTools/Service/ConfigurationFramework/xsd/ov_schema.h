#pragma once

#include <ConfigurationFramework/xsd/ov_schema.generated.h>

/// The schema document model: an XSD file as an XML document, one class for each construct that the
/// schema service understands.
///
/// @code
/// std::ifstream in("model.xml");
/// const auto schema = OV_XsdReader::schema_(in, xml_schema::flags::dont_validate);
/// for (const auto& type : schema->complexType())
///     if (type.name())
///         std::cout << *type.name() << '\n';
/// OV_XsdReader::schema_(std::cout, *schema, {}, "UTF-8");
/// @endcode
///
/// It binds documents whose elements are in the reader's own namespace, as XsdConfigReader makes
/// them of the suite's XSD files. What the model does not name is skipped, and everything around it
/// is kept: other elements wherever they stand, other attributes, a second element where one may
/// stand, markup in a documentation.
///
/// The functions schema_ parse a document and write one. Those that parse a stream or a file open
/// whatever it refers to and expand entities without bound; XsdConfigReader does neither. They
/// throw classes derived from xsd::cxx::exception: xsd::cxx::tree::parsing<char> for a document
/// that is not well-formed, a minOccurs that is not a whole number and a type that stands more than
/// 512 elements deep; xsd::cxx::tree::unexpected_element<char> for another document element. What
/// XML cannot hold is not checked here, but by XsdConfigReader::writeXSD().
namespace OV_XsdReader {}
