#include <ConfigurationFramework/files/FileSaving.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/NewFile.h>
#include <ConfigurationFramework/files/OpenFile.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>

#include <filesystem>

namespace Orvant {

namespace {

/// What a file held before it was overwritten.
struct Former {
    std::uintmax_t size;
    std::optional<std::string> bytes; ///< nothing where they cannot be read
};

/// Restores the former bytes as far as the disk allows.
void putBack(OpenFile& out, const Former& former) {
    // First what needs no room on the disk.
    [[maybe_unused]] std::error_code ignored = out.resize(former.size);
    if (former.bytes)
        ignored = out.writeAt(0, *former.bytes);
}

/// Writes what goes beyond the former bytes first: if the disk is full, that fails while they are
/// still there.
std::error_code overwrite(OpenFile& out, std::string_view bytes, const Former& former) {
    const std::string_view front = bytes.substr(0, former.size);
    std::error_code error = out.writeAt(former.size, bytes.substr(front.size()));
    if (error) {
        [[maybe_unused]] const std::error_code ignored = out.resize(former.size);
        return error;
    }
    error = out.writeAt(0, front);
    if (!error && bytes.size() < former.size)
        error = out.resize(bytes.size());
    if (error)
        putBack(out, former);
    return error;
}

std::error_code overwriteFile(const std::filesystem::path& target, std::string_view bytes,
                              std::optional<std::string> formerBytes) {
    OpenFile out(target, OpenFile::Purpose::Overwrite);
    if (!out.isOpen())
        return out.error();
    Former former{.size = 0, .bytes = std::move(formerBytes)};
    // With 0 for a size that the system does not tell, the end of a longer document would stay.
    if (const std::error_code error = out.getSize(former.size))
        return error;
    if (const std::error_code error = overwrite(out, bytes, former))
        return error;
    const std::error_code error = out.close();
    if (!error)
        return {};
    // Some file systems report only on closing that there is no room.
    OpenFile again(target, OpenFile::Purpose::Overwrite);
    if (again.isOpen())
        putBack(again, former);
    return error;
}

} // namespace

std::error_code saveInPlace(const FileName& file, const std::string& bytes) {
    const std::filesystem::path target = followLinks(toPath(file)).back();
    NewFile made(target);
    if (made.isMade()) {
        made.write(bytes);
        made.finish();
        return made.error();
    }
    std::error_code ignored;
    if (std::filesystem::is_fifo(target, ignored))
        return std::make_error_code(std::errc::no_such_device_or_address);
    const std::error_code error = overwriteFile(target, bytes, readRegularFile(file));
    // If there is no such file, the reason is why it could not be made.
    return error == std::errc::no_such_file_or_directory ? made.error() : error;
}

} // namespace Orvant
