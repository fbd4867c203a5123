#include <ConfigurationFramework/XsdConfigReader.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/RegularFile.h>
#include <ConfigurationFramework/SchemaText.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <FileHandling/FileName.h>
#include <FileHandling/FileUtilities.h>
#include <FileHandling/OvFstream.h>

#include <functional>
#include <ios>
#include <sstream>

namespace Orvant {

namespace {

constexpr const char* rewritingFile =
    ".aVeryLongPathNameForAtemporaryFileInPlaceSoWeCouldParseOurXsd.xsd";
constexpr const char* sanitisingFile = ".tempFileForSanitazingTheInputOfTheXsdFile.xml";

FileName beside(const FileName& file, const std::string& name) {
    FileName neighbour = file.getLocation();
    return neighbour /= name;
}

void removeIfThere(const FileName& file) {
    if (FileUtilities::exists(file, false))
        FileUtilities::remove(file);
}

/// Rewrites a file through a scratch file beside it. Every line ends with a line feed afterwards.
void rewriteLines(const FileName& file,
                  const std::function<std::string(const std::string&)>& rewrite) {
    const FileName scratch = beside(file, rewritingFile);
    removeIfThere(scratch);
    OvIfstream in(file, std::ios::in);
    OvOfstream out(scratch, std::ios::out);
    std::string line;
    while (std::getline(in, line))
        out << rewrite(line) << '\n';
    in.close();
    out.close();
    if (out)
        FileUtilities::replaceFile(scratch, file);
    else // A full disk must not cost what is there.
        FileUtilities::remove(scratch);
}

void replacePrefixOfEndTags(const FileName& file, const std::string& from, const std::string& to) {
    rewriteLines(file, [&from, &to](const std::string& line) {
        return SchemaText::replacePrefixOfEndTag(line, from, to);
    });
}

/// @throws ConfigException when the file cannot be read, and whatever the model throws
std::unique_ptr<OV_XsdReader::ov_schema> parse(const FileName& file) {
    auto bytes = readRegularFile(file);
    if (!bytes)
        throw ConfigException(ConfigException::SourceNotFound);
    std::istringstream in(std::move(*bytes));
    return OV_XsdReader::schema_(in, xml_schema::flags::dont_validate);
}

/// @return false when there is no place for a file: one is there that cannot be removed, or there
///         cannot be one of that name
bool makePlace(const FileName& file) {
    try {
        if (!FileUtilities::exists(file, false))
            return true;
        return !FileUtilities::exists(file, true) && FileUtilities::remove(file);
    } catch (const FileNameException&) {
        return false;
    }
}

/// Writes a schema as the model has it.
/// @throws ConfigException when there is then no such file, and whatever the model throws
void write(const OV_XsdReader::ov_schema& schema, const FileName& file) {
    if (!makePlace(file))
        throw ConfigException(ConfigException::SourceNotFound);
    OvOfstream out(file, std::ios::out | std::ios::binary, OvOfstream::NoByteOrderMark);
    if (!out.is_open())
        throw ConfigException(ConfigException::SourceNotFound);
    OV_XsdReader::schema_(out, schema, xml_schema::namespace_infomap(), "UTF-8");
    out.close();
    if (!out) {
        FileUtilities::remove(file);
        throw ConfigException(ConfigException::SourceNotFound);
    }
}

bool holds(const FileName& file, const std::string& text) {
    const auto bytes = readRegularFile(file);
    return bytes && bytes->find(text) != std::string::npos;
}

} // namespace

XsdConfigReader::XsdConfigReader(const FileName& file) : m_file(std::make_shared<FileName>(file)) {}

XsdConfigReader::XsdConfigReader(const XsdConfigReader&) = default;
XsdConfigReader& XsdConfigReader::operator=(const XsdConfigReader&) = default;
XsdConfigReader::~XsdConfigReader() = default;

void XsdConfigReader::readXSD(bool sanitise) {
    try {
        const FileName copy = beside(*m_file, sanitisingFile);
        if (sanitise) {
            removeIfThere(copy);
            if (!FileUtilities::copyFile(*m_file, copy))
                throw ConfigException(ConfigException::SourceNotFound);
            fixXsdFormatInFile(copy);
        }
        const auto schema = parse(sanitise ? copy : *m_file);
        m_tree = std::make_shared<XsdElement>(*schema);
        if (sanitise)
            FileUtilities::remove(copy);
    } catch (const ConfigException&) {
        throw;
    } catch (const xml_schema::parsing&) {
        throw ConfigException(ConfigException::SourceNotFound);
    } catch (const xsd::cxx::exception&) {
        throw ConfigException(ConfigException::ParserReportedErrors);
    } catch (const std::exception&) {
        throw ConfigException(ConfigException::UnknownError);
    } catch (...) {
        throw ConfigException(ConfigException::UnknownError);
    }
}

std::vector<std::pair<std::string, std::string>> XsdConfigReader::getRootelements() {
    std::vector<std::pair<std::string, std::string>> elements;
    for (const auto& root : getXsdRootelements())
        elements.emplace_back(root->name, root->type);
    return elements;
}

std::vector<std::shared_ptr<XsdElementProperty>> XsdConfigReader::getXsdRootelements() {
    if (!m_tree)
        return {};
    return m_tree->getRootElements();
}

std::map<std::string, std::shared_ptr<XsdElementProperty>> XsdConfigReader::getXsdTree() {
    if (!m_tree)
        return {};
    return m_tree->getXsdTree();
}

std::vector<std::pair<std::string, std::string>>
XsdConfigReader::getSubTypes(const std::string& typeName) {
    std::vector<std::pair<std::string, std::string>> subTypes;
    if (const auto type = m_tree ? m_tree->findType(typeName) : nullptr)
        for (const auto& child : type->children)
            subTypes.emplace_back(child->name, child->type);
    return subTypes;
}

std::vector<std::string> XsdConfigReader::getAttributes(const std::string& typeName) {
    const auto type = m_tree ? m_tree->findType(typeName) : nullptr;
    return type ? type->attributes : std::vector<std::string>();
}

void XsdConfigReader::keepXSDElement(const std::vector<std::string>& names) {
    if (m_tree)
        m_tree->keepElements(names);
}

void XsdConfigReader::keepXSDChildElement(const std::string& typeName,
                                          const std::vector<std::string>& names) {
    if (m_tree)
        m_tree->keepChildElement(typeName, names, false, true);
}

void XsdConfigReader::keepXSDChildAttributes(const std::string& typeName,
                                             const std::vector<std::string>& names) {
    if (m_tree)
        m_tree->keepChildAttributes(typeName, names);
}

void XsdConfigReader::writeXSD(const FileName& file, bool fixOutput) {
    if (!m_tree)
        return;
    write(*m_tree->getSchema(), file);
    if (!fixOutput)
        return;
    fixXsdOutputFile(file);
    // The rewriting tells nothing: it leaves the file as it is when it cannot make its own.
    if (!holds(file, SchemaText::suiteHeader(true))) {
        FileUtilities::remove(file);
        throw ConfigException(ConfigException::SourceNotFound);
    }
}

void XsdConfigReader::replaceInFile(const FileName& file, const std::string& from,
                                    const std::string& to) {
    rewriteLines(file, [&from, &to](const std::string& line) {
        return SchemaText::replaceFirst(line, from, to);
    });
}

void XsdConfigReader::fixXsdFormatInFile(const FileName& file) {
    replaceInFile(file, SchemaText::suiteHeader(true), SchemaText::readerHeader());
    replaceInFile(file, SchemaText::suiteHeader(false), SchemaText::readerHeader());
    replaceInFile(file, "<xs:import/>", "");
    for (const std::string prefix : {"xs:", "ov:"}) {
        replacePrefixOfEndTags(file, prefix, "");
        replaceInFile(file, prefix, "");
    }
}

void XsdConfigReader::fixXsdOutputFile(const FileName& file) {
    const std::string header = SchemaText::suiteHeader(true);
    replaceInFile(file, SchemaText::emptyModelHeader(), header + "\n</xs:schema>");
    replaceInFile(file, SchemaText::modelHeader(), header);
    replacePrefixOfEndTags(file, "p1:", "xs:");
    replaceInFile(file, "p1:", "xs:");
    // Where a name of a built-in type has lost its prefix.
    replaceInFile(file, "type=\"int\"", "type=\"xs:int\"");
    replaceInFile(file, "type=\"double\"", "type=\"xs:double\"");
    replaceInFile(file, "type=\"string\"", "type=\"xs:string\"");
    replaceInFile(file, "base=\"anyType\"", "base=\"xs:anyType\"");
    replaceInFile(file, "base=\"string\"", "base=\"xs:string\"");
}

} // namespace Orvant
