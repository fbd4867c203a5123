#pragma once

#include <ConfigurationFramework/Export.h>
#include <ConfigurationFramework/XsdElement.h>
#include <ConfigurationFramework/XsdLoss.h>
#include <ConfigurationFramework/XsdReadProblem.h>
#include <FileHandling/FileName.h>

#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

enum class SchemaDialect : std::uint8_t;
class SchemaSource;

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
/// first successful reading there is no schema: queries return nothing, and filters and what writes
/// do nothing.
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

    /// Reads any schema: whatever its prefixes, target namespace, encoding and layout are; also one
    /// in the reader's own namespace. The same is read of it as of a file of the suite, into the
    /// same tree. Names of its own types are returned without a prefix, those of XML Schema's with
    /// xs:, others as they are written, but as {NAMESPACE}NAME if they are without prefix or have
    /// the prefix ov: or xs:. No file beside it is made.
    /// @throws as readXSD(); ParserReportedErrors: the document element is no schema
    void readAnyXSD();

    /// @return why the last call of readXSD() or readAnyXSD() failed, which the error log tells,
    ///         too; nothing if it did not
    const std::optional<XsdReadProblem>& getReadProblem() const { return m_problem; }

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

    /// @return what writeXSD() would not write of the file that was read, in the order of the file,
    ///         without what the filters removed; nothing before the first successful reading
    std::vector<XsdLoss> getLosses();

    /// @param typeName name of a type, with or without the prefix ov:
    /// @return the type and all declared types that it names, directly or through others, also in
    ///         optional children and in what the tree does not show: passed to keepXSDElement(),
    ///         they lose nothing. Nothing when there is no such type.
    std::vector<std::string> getTypesUsedBy(const std::string& typeName);

    /// Writes the file that was read, byte for byte, without what the filters removed: types, root
    /// elements, children and attributes, each with what is in it and the comments that belong to
    /// it. These are the ones that stand before it without a blank line between, or after it on its
    /// last line.
    ///
    /// What is removed but named by something that stays, stays as well: types; also root elements
    /// that are referred to, attributes and children that a restriction repeats, and what comes
    /// from an entity. Other files are not looked at: what only they name is cut out. The file on
    /// disk is not read again.
    /// @param file file to write; it may be the one that was read. A new file takes its place in
    ///             one step, and its rights. Links are followed. Where no new file can be made, and
    ///             for one with several hard links, the bytes are written in place.
    /// @return names of the types that stay although they are removed, in the order of the file;
    ///         after them "TYPE/CHILD" and "TYPE/@ATTRIBUTE" for what stays of a type. Nothing
    ///         before the first successful reading, when nothing is written.
    /// @throws ConfigException of type SourceNotFound when the file cannot be written, and is then
    ///         as it was, or when it has the name of a scratch file; ParserReportedErrors when
    ///         something is to be cut out of a file that is well-formed only as readXSD() sees it
    std::vector<std::string> writePrunedXSD(const FileName& file);

    /// Likewise, to a stream.
    /// @throws std::ios_base::failure when the stream does not take it
    std::vector<std::string> writePrunedXSD(std::ostream& stream);

private:
    ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT void read(SchemaDialect dialect);
    ORVANT_CONFIGURATIONFRAMEWORK_NO_EXPORT std::unique_ptr<OV_XsdReader::ov_schema>
    parseRewritten(const std::string& bytes);
    void replaceInFile(const FileName& file, const std::string& from, const std::string& to);
    void fixXsdFormatInFile(const FileName& file);
    void fixXsdOutputFile(const FileName& file);

    std::shared_ptr<FileName> m_file;
    std::shared_ptr<XsdElement> m_tree;
    std::shared_ptr<const SchemaSource> m_source; ///< what the tree was made of
    std::optional<XsdReadProblem> m_problem;
};

} // namespace Orvant
