#include <ConfigurationFramework/SchemaFile.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/DocumentText.h>
#include <ConfigurationFramework/RegularFile.h>
#include <ConfigurationFramework/XercesSession.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <FileHandling/FileName.h>
#include <FileHandling/FileUtilities.h>
#include <FileHandling/OvFstream.h>
#include <Logging/Logging.h>

#include <source_location>
#include <sstream>

namespace Orvant::SchemaFile {

namespace {

constexpr const char* rewritingName =
    ".aVeryLongPathNameForAtemporaryFileInPlaceSoWeCouldParseOurXsd.xsd";
constexpr const char* sanitisingName = ".tempFileForSanitazingTheInputOfTheXsdFile.xml";

/// Longer chains are opened by no system.
constexpr int mostLinks = 40;

const Logging s_log("SchemaFile");

FileName beside(const FileName& file, const std::string& name) {
    FileName neighbour = file.getLocation();
    return neighbour /= name;
}

/// Whether XML can hold every text of a schema. The model's serialiser would cut a text at its
/// first NUL without a word, and lets an exception of Xerces through for most others.
bool fitsIntoXml(const OV_XsdReader::ov_schema& schema) {
    std::ostringstream texts;
    texts << schema;
    return !toDocumentText(texts.str()).changed;
}

} // namespace

bool isScratchFile(const FileName& file) {
    const auto hasScratchName = [](const std::filesystem::path& path) {
        return path.filename() == rewritingName || path.filename() == sanitisingName;
    };
    std::filesystem::path path = toPath(file);
    for (int links = 0; links <= mostLinks; ++links) {
        if (hasScratchName(path))
            return true;
        std::error_code error;
        const auto target = std::filesystem::read_symlink(path, error);
        if (error)
            return false;
        path = path.parent_path() / target;
    }
    return false;
}

FileName sanitisingCopy(const FileName& file) {
    return beside(file, sanitisingName);
}

bool makePlace(const FileName& file) {
    std::error_code error;
    const auto status = std::filesystem::symlink_status(toPath(file), error);
    if (status.type() == std::filesystem::file_type::not_found)
        return true;
    return !std::filesystem::is_directory(status) && FileUtilities::remove(file);
}

void rewriteLines(const FileName& file,
                  const std::function<std::string(const std::string&)>& rewrite) {
    const FileName scratch = beside(file, rewritingName);
    if (!makePlace(scratch))
        throw ConfigException(ConfigException::SourceNotFound);
    OvIfstream in(file, std::ios::in);
    OvOfstream out(scratch, std::ios::out);
    std::string line;
    while (std::getline(in, line))
        out << rewrite(line) << '\n';
    const bool isRead = !in.bad();
    in.close();
    out.close();
    // A full disk must not cost what is there.
    if (isRead && out && FileUtilities::replaceFile(scratch, file))
        return;
    FileUtilities::remove(scratch);
    throw ConfigException(ConfigException::SourceNotFound);
}

void write(const OV_XsdReader::ov_schema& schema, const FileName& file) {
    if (!fitsIntoXml(schema))
        throw xml_schema::serialization();
    // Instead of the runtime's own initialisation, which takes no lock.
    const XercesSession session(s_log, std::source_location::current());
    OvOfstream out(file, std::ios::out | std::ios::binary, OvOfstream::NoByteOrderMark);
    OV_XsdReader::schema_(out, schema, xml_schema::namespace_infomap(), "UTF-8",
                          xml_schema::flags::dont_initialize);
    out.close();
    if (!out)
        throw ConfigException(ConfigException::SourceNotFound);
}

} // namespace Orvant::SchemaFile
