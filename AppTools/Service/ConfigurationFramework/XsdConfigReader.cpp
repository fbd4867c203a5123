#include <ConfigurationFramework/XsdConfigReader.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/files/FileReplacing.h>
#include <ConfigurationFramework/losses/SchemaLosses.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/ReadProblem.h>
#include <ConfigurationFramework/schema/SchemaFileFailure.h>
#include <ConfigurationFramework/schema/SchemaFiles.h>
#include <ConfigurationFramework/schema/SchemaParser.h>
#include <ConfigurationFramework/source/PrunedSchema.h>
#include <ConfigurationFramework/source/RemovedNodes.h>
#include <ConfigurationFramework/source/SchemaClosure.h>
#include <ConfigurationFramework/source/SchemaSource.h>

#include <FileHandling/FileUtilities.h>
#include <Logging/Logging.h>

#include <exception>
#include <ios>
#include <ostream>
#include <utility>

namespace Orvant {

namespace {

const Logging s_log("XsdConfigReader");

void replacePrefix(const FileName& file, const std::string& from, const std::string& to) {
    SchemaFiles::rewriteLines(file, [&from, &to](const std::string& line) {
        return LineRewriting::replacePrefix(line, from, to);
    });
}

/// @return the name of the copy to sanitise
/// @throws SchemaFileFailure when it cannot be made
FileName makeCopy(const FileName& file, const std::string& bytes) {
    const FileName copy = SchemaFiles::sanitisingCopy(file);
    SchemaFiles::makePlaceForScratch(copy);
    SchemaFiles::make(copy, bytes);
    return copy;
}

void log(const FileName& file, const XsdReadProblem& problem) {
    std::string place = file.toString() + ':';
    if (problem.line != 0)
        place += std::to_string(problem.line) + ':' + std::to_string(problem.column) + ':';
    s_log.logERROR(place + ' ' + problem.message, __FILE__, __func__, __LINE__);
}

/// @return the type of the exception that a reading throws for what it caught
ConfigException::ExceptionType typeOf(const std::exception_ptr& caught) {
    try {
        std::rethrow_exception(caught);
    } catch (const SchemaFileFailure&) {
        return ConfigException::SourceNotFound;
    } catch (const xml_schema::parsing&) {
        return ConfigException::SourceNotFound;
    } catch (const xsd::cxx::exception&) {
        return ConfigException::ParserReportedErrors;
    } catch (...) {
        return ConfigException::UnknownError;
    }
}

/// Whether a schema can be written to a file; whatever had its name is then removed.
bool isPlaceForSchema(const FileName& file) {
    try {
        return !SchemaFiles::isScratchFile(file) && SchemaFiles::makePlace(file);
    } catch (const FileNameException&) {
        return false;
    }
}

/// Replaces a file in one step.
/// @return false when that fails, or it would be a scratch file
bool save(const FileName& file, const std::string& text) {
    try {
        return !SchemaFiles::isScratchFile(file) && !replaceFile(file, text).error;
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
    read(sanitise ? SchemaDialect::Suite : SchemaDialect::Reader);
}

void XsdConfigReader::readAnyXSD() {
    read(SchemaDialect::Any);
}

void XsdConfigReader::read(SchemaDialect dialect) {
    m_problem.reset();
    std::string bytes;
    try {
        // Whatever has the name of a scratch file is removed, which must not be the file itself.
        if (dialect == SchemaDialect::Suite && SchemaFiles::isScratchFile(*m_file))
            throw SchemaFileFailure("it has the name of a scratch file, or is a link to one: "
                                    "readXSD(true) removes those");
        bytes = SchemaFiles::read(*m_file);
        const auto schema =
            dialect == SchemaDialect::Suite ? parseRewritten(bytes) : parseSchema(bytes, dialect);
        auto tree = std::make_shared<XsdElement>(*schema);
        m_source = std::make_shared<const SchemaSource>(std::move(bytes), dialect);
        m_tree = std::move(tree);
    } catch (...) {
        const std::exception_ptr caught = std::current_exception();
        m_problem = describeReadProblem(bytes, dialect, caught);
        log(*m_file, *m_problem);
        throw ConfigException(typeOf(caught));
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
    if (!m_tree)
        return {};
    if (m_source->parse())
        return findLosses(*m_source, findRemovedNodes(*m_source, *m_tree->getSchema()));
    // What is well-formed only once it is rewritten is what the rewritten file holds.
    const SchemaSource rewritten(LineRewriting::rewrittenForReader(m_source->bytes()),
                                 SchemaDialect::Reader);
    if (!rewritten.parse())
        return {};
    return findLosses(rewritten, findRemovedNodes(rewritten, *m_tree->getSchema()));
}

std::vector<std::string> XsdConfigReader::getTypesUsedBy(const std::string& typeName) {
    if (!m_tree)
        return {};
    std::vector<std::string> types = m_tree->getNeededTypes({typeName});
    if (!m_source->parse())
        return types;
    const auto removed = findRemovedNodes(*m_source, *m_tree->getSchema());
    // Tree and file each show what the other does not, until there is nothing new.
    while (true) {
        auto more = m_tree->getNeededTypes(withNamedTypes(m_source->references(), removed, types));
        if (more.size() == types.size())
            return types;
        types = std::move(more);
    }
}

std::vector<std::string> XsdConfigReader::writePrunedXSD(const FileName& file) {
    if (!m_tree)
        return {};
    const PrunedSchema pruned(*m_source, *m_tree->getSchema());
    if (!save(file, pruned.text))
        throw ConfigException(ConfigException::SourceNotFound);
    return pruned.stayed;
}

std::vector<std::string> XsdConfigReader::writePrunedXSD(std::ostream& stream) {
    if (!m_tree)
        return {};
    const PrunedSchema pruned(*m_source, *m_tree->getSchema());
    if (!(stream << pruned.text).flush())
        throw std::ios_base::failure("the schema cannot be written");
    return pruned.stayed;
}

void XsdConfigReader::replaceInFile(const FileName& file, const std::string& from,
                                    const std::string& to) {
    SchemaFiles::rewriteLines(file, [&from, &to](const std::string& line) {
        return LineRewriting::replaceFirst(line, from, to);
    });
}

/// Parses a file of the suite in a copy beside it.
std::unique_ptr<OV_XsdReader::ov_schema> XsdConfigReader::parseRewritten(const std::string& bytes) {
    const FileName copy = makeCopy(*m_file, bytes);
    fixXsdFormatInFile(copy);
    auto schema = parseSchema(SchemaFiles::read(copy), SchemaDialect::Suite);
    FileUtilities::remove(copy);
    return schema;
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
    for (const auto& [lost, restored] : LineRewriting::restoredNames)
        replaceInFile(file, std::string(lost), std::string(restored));
}

} // namespace Orvant
