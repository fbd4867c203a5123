#include <ConfigurationFramework/schema/SchemaFiles.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/NewFile.h>
#include <ConfigurationFramework/files/RegularFile.h>
#include <ConfigurationFramework/schema/SchemaFileFailure.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <FileHandling/FileName.h>
#include <FileHandling/FileUtilities.h>
#include <FileHandling/OvFstream.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <source_location>
#include <sstream>
#include <system_error>
#include <utility>

namespace Orvant::SchemaFiles {

namespace {

constexpr const char* rewritingName =
    ".aVeryLongPathNameForAtemporaryFileInPlaceSoWeCouldParseOurXsd.xsd";
constexpr const char* sanitisingName = ".tempFileForSanitazingTheInputOfTheXsdFile.xml";

const Logging s_log("SchemaFile");

FileName beside(const FileName& file, const std::string& name) {
    FileName neighbour = file.getLocation();
    return neighbour /= name;
}

/// Whether XML can hold every text of a schema. The model's serialiser would silently cut a text at
/// its first NUL, and lets a Xerces exception through for most others.
bool fitsIntoXml(const OV_XsdReader::ov_schema& schema) {
    std::ostringstream texts;
    texts << schema;
    return !toXmlText(texts.str()).changed;
}

} // namespace

bool isScratchFile(const FileName& file) {
    return std::ranges::any_of(followLinks(toPath(file)), [](const std::filesystem::path& path) {
        return path.filename() == rewritingName || path.filename() == sanitisingName;
    });
}

std::string read(const FileName& file) {
    FileBytes found = readBytes(file);
    if (!found.bytes) // what is neither a file nor a directory is not supported
        throw SchemaFileFailure(found.error == std::errc::not_supported ? "it is not a regular file"
                                                                        : found.error.message());
    return std::move(*found.bytes);
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

void makePlaceForScratch(const FileName& file) {
    if (!makePlace(file))
        throw SchemaFileFailure("the scratch file " + file.toString() +
                                " cannot be made: something has that name and cannot be removed");
}

void make(const FileName& file, std::string_view bytes) {
    NewFile made(file);
    if (!made.write(bytes) || !made.finish())
        throw SchemaFileFailure(file.toString() + " cannot be written: " + made.error().message());
}

void rewriteLines(const FileName& file,
                  const std::function<std::string(const std::string&)>& rewrite) {
    const FileName scratch = beside(file, rewritingName);
    makePlaceForScratch(scratch);
    OvIfstream in(file, std::ios::in);
    std::string rewritten;
    for (std::string line; std::getline(in, line);)
        rewritten += rewrite(line) + '\n';
    if (in.bad())
        throw SchemaFileFailure(file.toString() + " cannot be read");
    in.close();
    // A full disk must not cost what is there.
    make(scratch, rewritten);
    if (FileUtilities::replaceFile(scratch, file))
        return;
    FileUtilities::remove(scratch);
    throw SchemaFileFailure(file.toString() + " cannot be replaced by " + scratch.toString());
}

void write(const OV_XsdReader::ov_schema& schema, const FileName& file) {
    if (!fitsIntoXml(schema))
        throw xml_schema::serialization();
    // Instead of the runtime's own initialisation, which takes no lock.
    const XercesSession session(s_log, std::source_location::current());
    std::ostringstream document;
    OV_XsdReader::schema_(document, schema, xml_schema::namespace_infomap(), "UTF-8",
                          xml_schema::flags::dont_initialize);
    make(file, document.view());
}

} // namespace Orvant::SchemaFiles
