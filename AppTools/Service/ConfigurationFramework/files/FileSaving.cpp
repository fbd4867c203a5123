#include <ConfigurationFramework/files/FileSaving.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/NewFile.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>
#include <FileHandling/OvFstream.h>

#include <cerrno>
#include <filesystem>

namespace Orvant {

namespace {

std::error_code overwrite(const FileName& file, const std::string& bytes,
                          std::ios::openmode extraMode = {}) {
    errno = 0;
    OvOfstream out(file, std::ios::out | std::ios::trunc | extraMode, OvOfstream::NoByteOrderMark);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out.fail())
        return {};
    // A suite's stream need not set errno.
    return {errno != 0 ? errno : EIO, std::generic_category()};
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
    const auto former = readRegularFile(file);
    const std::error_code error = overwrite(file, bytes);
    if (error && former) {
        // As far as the disk allows.
        [[maybe_unused]] const auto restored = overwrite(file, *former, std::ios::binary);
    }
    return error;
}

} // namespace Orvant
