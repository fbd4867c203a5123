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

/// Reader of one of the suite's XML Schema files: it reports what the schema declares, removes what
/// is not wanted and writes the rest.
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
/// A suite file has each element's tags on lines of their own (one element that holds only text may
/// have both tags on one line, with comments beside it), the prefixes xs: and ov:, and this start
/// tag on one line, with or without xmlns:ov:
///
///     <xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"
///                xmlns:ov="http://www.orvant.com/OV_QLV100"
///                xmlns="http://www.orvant.com/OV_QLV100"
///                targetNamespace="http://www.orvant.com/OV_QLV100" elementFormDefault="qualified">
///
/// Files are rewritten line by line in scratch files beside them, so two readers must not work in
/// the same directory at the same time. Whatever has the name of a scratch file is removed (a link
/// itself, not its target); a directory of such a name makes the call fail. Every file that is
/// written is a new one: if something else has taken its name meanwhile, the call fails and writes
/// nothing there.
///
/// Nothing that a file refers to is opened: external entities and DTDs resolve to nothing, which
/// the error log reports. A file is refused if it has more than 10,000 entity references, an
/// element with more than 100 attributes (given or declared), more than 10,000 different tags or
/// attribute names, elements nested more than 1,000 deep, a complex type more than 512 deep, or
/// references that expand it to more than 10 million characters, where each in an attribute or a
/// DTD counts as the longest entity; also if parsing takes more than 64 MiB plus 64 times its size,
/// or its DTD more than 4 MiB plus 16 times its size.
///
/// Copies share the schema: what is filtered out through one is gone from the other. Before the
/// first successful readXSD() there is no schema: queries return nothing, and filters and
/// writeXSD() do nothing.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT XsdConfigReader {
public:
    /// @param file schema file; it is not opened before readXSD()
    XsdConfigReader(const FileName& file);
    /// Shares file name and schema with the original.
    /// @{
    XsdConfigReader(const XsdConfigReader&);
    XsdConfigReader& operator=(const XsdConfigReader&);
    /// @}
    virtual ~XsdConfigReader();

    /// Reads the file without changing it. Records returned before stay valid, but no longer belong
    /// to the schema.
    /// @param sanitise true for a file of the suite, which is read through a rewritten copy beside
    ///                 it; false for one in the reader's own namespace, as writeXSD() writes it
    ///                 without `fixOutput`
    /// @throws ConfigException of type
    ///   - SourceNotFound: not a readable file of up to 1 GiB, not well-formed XML, beyond the
    ///     limits above, or a minOccurs that is not a whole number; with `sanitise`, also a scratch
    ///     file or a link to one, or scratch files cannot be written;
    ///   - ParserReportedErrors: a document element other than the reader's own;
    ///   - UnknownError: anything else.
    ///   The schema is then unchanged.
    void readXSD(bool sanitise);

    /// @return name and type of each root element in document order, without those of undeclared
    ///         types
    std::vector<std::pair<std::string, std::string>> getRootelements();

    /// @return the types of the root elements, see XsdElement::getRootElements()
    std::vector<std::shared_ptr<XsdElementProperty>> getXsdRootelements();

    /// @return all types by name
    std::map<std::string, std::shared_ptr<XsdElementProperty>> getXsdTree();

    /// @return name and type of each child element of a type in document order; nothing when there
    ///         is no such type
    std::vector<std::pair<std::string, std::string>> getSubTypes(const std::string& typeName);

    /// @return names of the attributes of a type in document order; nothing when there is no such
    ///         type
    std::vector<std::string> getAttributes(const std::string& typeName);

    /// Removes all types except the named ones and what they require, and the optional children and
    /// root elements of the removed types; see XsdElement::keepElements().
    void keepXSDElement(const std::vector<std::string>& names);

    /// Removes the optional children of a type that are not named, then the types that are no
    /// longer reachable; see XsdElement::keepChildElement().
    void keepXSDChildElement(const std::string& typeName, const std::vector<std::string>& names);

    /// Removes the optional attributes of a type that are not named; see
    /// XsdElement::keepChildAttributes().
    void keepXSDChildAttributes(const std::string& typeName, const std::vector<std::string>& names);

    /// Writes the schema, replacing whatever has that name; a link is replaced, too, and its target
    /// left alone.
    /// @param file      file to write
    /// @param fixOutput true for a file of the suite; false for one in the reader's own namespace.
    ///                  In a file of the suite, what looks like the name of a built-in type is also
    ///                  replaced in documentation elements, and so is a p1: in their middle lines.
    /// @throws ConfigException of type SourceNotFound when the file cannot be created and written
    ///         completely, has the name of a scratch file or is a link to one, or when the result
    ///         is not well-formed or exceeds the limits of readXSD()
    /// @throws xml_schema::serialization when the schema holds what XML cannot: control
    ///         characters, bytes that are not UTF-8
    ///
    /// There is then no file, or the former one if it could not be removed.
    void writeXSD(const FileName& file, bool fixOutput);

private:
    void replaceInFile(const FileName& file, const std::string& from, const std::string& to);
    void fixXsdFormatInFile(const FileName& file);
    void fixXsdOutputFile(const FileName& file);

    std::shared_ptr<FileName> m_file;
    std::shared_ptr<XsdElement> m_tree;
};

} // namespace Orvant
