#include <ConfigurationFramework/XsdConfigReader.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaFiles.h>
#include <ConfigurationFramework/schema/SchemaParser.h>

#include <FileHandling/FileUtilities.h>

namespace Orvant {

namespace {

void replacePrefix(const FileName& file, const std::string& from, const std::string& to) {
    SchemaFiles::rewriteLines(file, [&from, &to](const std::string& line) {
        return LineRewriting::replacePrefix(line, from, to);
    });
}

/// @return the name of the copy to sanitise
/// @throws ConfigException of type SourceNotFound when it cannot be made
FileName makeCopy(const FileName& file) {
    // Whatever has the copy's name is removed, which must not be the file itself.
    const auto bytes = SchemaFiles::isScratchFile(file) ? std::nullopt : readRegularFile(file);
    const FileName copy = SchemaFiles::sanitisingCopy(file);
    if (!bytes || !SchemaFiles::makePlace(copy))
        throw ConfigException(ConfigException::SourceNotFound);
    SchemaFiles::make(copy, *bytes);
    return copy;
}

/// Whether a schema can be written to a file; whatever had its name is then removed.
bool isPlaceForSchema(const FileName& file) {
    try {
        return !SchemaFiles::isScratchFile(file) && SchemaFiles::makePlace(file);
    } catch (const FileNameException&) {
        return false;
    }
}

} // namespace

XsdConfigReader::XsdConfigReader(const FileName& file) : m_file(std::make_shared<FileName>(file)) {}

XsdConfigReader::XsdConfigReader(const XsdConfigReader&) = default;
XsdConfigReader& XsdConfigReader::operator=(const XsdConfigReader&) = default;
XsdConfigReader::~XsdConfigReader() = default;

void XsdConfigReader::readXSD(bool sanitise) {
    try {
        if (!sanitise) {
            m_tree = std::make_shared<XsdElement>(*parseSchema(*m_file));
            return;
        }
        const FileName copy = makeCopy(*m_file);
        fixXsdFormatInFile(copy);
        m_tree = std::make_shared<XsdElement>(*parseSchema(copy));
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
    if (!isPlaceForSchema(file))
        throw ConfigException(ConfigException::SourceNotFound);
    // If this fails, it has made no file; one that is there is somebody else's.
    SchemaFiles::write(*m_tree->getSchema(), file);
    if (!fixOutput)
        return;
    try {
        fixXsdOutputFile(file);
        if (!isWellFormed(file))
            throw ConfigException(ConfigException::SourceNotFound);
    } catch (...) {
        FileUtilities::remove(file);
        throw;
    }
}

std::vector<XsdLoss> XsdConfigReader::getLosses() {
    return {};
}

std::vector<std::string> XsdConfigReader::getTypesUsedBy(const std::string&) {
    return {};
}

std::vector<std::string> XsdConfigReader::writePrunedXSD(const FileName&) {
    return {};
}

std::vector<std::string> XsdConfigReader::writePrunedXSD(std::ostream&) {
    return {};
}

void XsdConfigReader::readAnyXSD() {
    readXSD(true);
}

void XsdConfigReader::replaceInFile(const FileName& file, const std::string& from,
                                    const std::string& to) {
    SchemaFiles::rewriteLines(file, [&from, &to](const std::string& line) {
        return LineRewriting::replaceFirst(line, from, to);
    });
}

void XsdConfigReader::fixXsdFormatInFile(const FileName& file) {
    SchemaFiles::rewriteLines(file, LineRewriting::rewriteForReader);
}

void XsdConfigReader::fixXsdOutputFile(const FileName& file) {
    const std::string header = LineRewriting::suiteHeader(true);
    replaceInFile(file, LineRewriting::emptyModelHeader(), header + "\n</xs:schema>");
    replaceInFile(file, LineRewriting::modelHeader(), header);
    SchemaFiles::rewriteLines(file, LineRewriting::endLineOfDocumentation);
    replacePrefix(file, "p1:", "xs:");
    // Restores the prefix where the name of a built-in type has lost it.
    replaceInFile(file, "type=\"int\"", "type=\"xs:int\"");
    replaceInFile(file, "type=\"double\"", "type=\"xs:double\"");
    replaceInFile(file, "type=\"string\"", "type=\"xs:string\"");
    replaceInFile(file, "base=\"anyType\"", "base=\"xs:anyType\"");
    replaceInFile(file, "base=\"string\"", "base=\"xs:string\"");
}

} // namespace Orvant
