#include <FileHandling/FileUtilities.h>

namespace Orvant {

namespace fs = std::filesystem;

bool FileUtilities::exists(const FileName& file, bool asDirectory) {
    std::error_code error;
    const fs::file_status status = fs::status(file.toPath(), error);
    if (asDirectory)
        return fs::is_directory(status);
    // A file on a disk that does not answer may well be there.
    return fs::status_known(status) ? fs::exists(status) : error != std::errc::filename_too_long;
}

bool FileUtilities::remove(const FileName& file) {
    std::error_code error;
    return fs::remove(file.toPath(), error);
}

bool FileUtilities::copyFile(const FileName& source, const FileName& target) {
    std::error_code error;
    return fs::copy_file(source.toPath(), target.toPath(), fs::copy_options::overwrite_existing,
                         error);
}

bool FileUtilities::replaceFile(const FileName& source, const FileName& target) {
    std::error_code error;
    fs::rename(source.toPath(), target.toPath(), error);
    return !error;
}

} // namespace Orvant
