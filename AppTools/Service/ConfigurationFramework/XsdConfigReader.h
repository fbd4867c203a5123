#pragma once

#include <ConfigurationFramework/Export.h>
#include <ConfigurationFramework/XsdElement.h>
#include <FileHandling/FileName.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

/// Reader of one XML Schema file of the suite, which answers what the schema declares, takes out of
/// it what is not wanted and writes the rest.
///
/// @code
/// XsdConfigReader reader("Machine.xsd");
/// reader.readXSD(true);
/// for (const auto& [name, type] : reader.getRootelements())
///     std::cout << name << ": " << type << '\n';
/// reader.keepXSDElement({"Machine", "Axis"});
/// reader.writeXSD("Reduced.xsd", true);
/// @endcode
///
/// A suite file has each element's tags on lines of their own (one element that holds just text may
/// stand on one line with both its tags, beside comments), the prefixes xs: and ov:, and this start
/// tag on one line, with or without xmlns:ov:
///
///     <xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"
///                xmlns:ov="http://www.orvant.com/OV_QLV100"
///                xmlns="http://www.orvant.com/OV_QLV100"
///                targetNamespace="http://www.orvant.com/OV_QLV100" elementFormDefault="qualified">
///
/// Files are rewritten line by line in scratch files beside them, so that two readers must not work
/// in one directory at a time. What has the name of a scratch file is taken away, a link itself and
/// not what it leads to; a directory of such a name is in the way. Every file that is written is a
/// new one: where something else has come to have its name, the call fails and writes nothing
/// there.
///
/// Nothing that a file refers to is opened: external entities and DTDs resolve to nothing, which
/// the error log tells. A file is refused that has more than 10,000 entity references, an element
/// with more than 100 attributes, given or declared, 10,000 different tags or names of attributes,
/// elements nested more than 1,000 deep, a
/// complex type more than 512 deep, or references that make more than 10 million characters of it,
/// where each in an attribute or a DTD counts as the longest entity; also one that takes more than
/// 64 MiB beside 64 times its size to parse, or its DTD more than 4 MiB beside 16 times.
///
/// Copies share the schema: what is filtered through one is gone from the other. Before the first
/// successful readXSD() there is no schema: queries answer nothing, and filters and writeXSD() do
/// nothing.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT XsdConfigReader {
public:
    /// @param file schema file; it is not looked at before readXSD()
    XsdConfigReader(const FileName& file);
    /// Shares file name and schema with the original.
    /// @{
    XsdConfigReader(const XsdConfigReader&);
    XsdConfigReader& operator=(const XsdConfigReader&);
    /// @}
    virtual ~XsdConfigReader();

    /// Reads the file, which is left as it is. Records that were answered before stay valid, but
    /// belong to the schema no more.
    /// @param sanitise true for a file of the suite, which is read through a rewritten copy beside
    ///                 it; false for one in the reader's own namespace, as writeXSD() writes it
    ///                 without output fix
    /// @throws ConfigException of type
    ///   - SourceNotFound: not a readable file of up to 1 GiB, not well-formed XML, beyond the
    ///   bounds
    ///     above, or a minOccurs that is not a whole number; with `sanitise`, also a scratch file
    ///     or a link to one, or no way to write scratch files;
    ///   - ParserReportedErrors: another document element than the reader's own;
    ///   - UnknownError: anything else.
    ///   The schema is then as it was before.
    void readXSD(bool sanitise);

    /// @return name and type of each root element in document order, without those of undeclared
    ///         types
    std::vector<std::pair<std::string, std::string>> getRootelements();

    /// @return the types of the root elements, see XsdElement::getRootElements()
    std::vector<std::shared_ptr<XsdElementProperty>> getXsdRootelements();

    /// @return all types under their names
    std::map<std::string, std::shared_ptr<XsdElementProperty>> getXsdTree();

    /// @return name and type of each child element of a type in document order; nothing when there
    ///         is no such type
    std::vector<std::pair<std::string, std::string>> getSubTypes(const std::string& typeName);

    /// @return names of the attributes of a type in document order; nothing when there is no such
    ///         type
    std::vector<std::string> getAttributes(const std::string& typeName);

    /// Takes away all types but the named ones and what they require, and the optional children and
    /// root elements of these types; see XsdElement::keepElements().
    void keepXSDElement(const std::vector<std::string>& names);

    /// Takes away the optional children of a type that are not named, then the types that are not
    /// reachable any more; see XsdElement::keepChildElement().
    void keepXSDChildElement(const std::string& typeName, const std::vector<std::string>& names);

    /// Takes away the optional attributes of a type that are not named; see
    /// XsdElement::keepChildAttributes().
    void keepXSDChildAttributes(const std::string& typeName, const std::vector<std::string>& names);

    /// Writes the schema, in place of what has that name: a link gives way, too, and what it leads
    /// to is left alone.
    /// @param file      file to write
    /// @param fixOutput true for a file of the suite; false for one in the reader's own namespace.
    ///                  In a file of the suite, what looks like a name of a built-in type is
    ///                  replaced in documentations as well, and in their middle lines a p1:.
    /// @throws ConfigException of type SourceNotFound when the file cannot be made and written
    ///         whole, has the name of a scratch file or is a link to one, or when what was written
    ///         is not well-formed or beyond what readXSD() reads
    /// @throws xml_schema::serialization when the schema holds what XML cannot: control
    ///         characters, bytes that are not UTF-8
    ///
    /// There is then no file, or the former one where that could not be removed.
    void writeXSD(const FileName& file, bool fixOutput);

private:
    void replaceInFile(const FileName& file, const std::string& from, const std::string& to);
    void fixXsdFormatInFile(const FileName& file);
    void fixXsdOutputFile(const FileName& file);

    std::shared_ptr<FileName> m_file;
    std::shared_ptr<XsdElement> m_tree;
};

} // namespace Orvant
