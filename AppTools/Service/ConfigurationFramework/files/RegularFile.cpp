#include <ConfigurationFramework/files/RegularFile.h>

#include <ConfigurationFramework/files/OpenFile.h>

#include <FileHandling/FileName.h>

namespace Orvant {

namespace {

constexpr std::size_t maxFileSize = std::size_t{1} << 30U;

/// @return why a file must not be opened; no error for a regular file
std::error_code checkKind(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error)
        return error;
    if (std::filesystem::is_directory(status))
        return std::make_error_code(std::errc::is_a_directory);
    if (!std::filesystem::is_regular_file(status))
        return std::make_error_code(std::errc::not_supported);
    return {};
}

} // namespace

std::filesystem::path toPath(const FileName& file) {
    const std::string native = file.toNativeString();
    return std::u8string(native.begin(), native.end());
}

FileBytes readBytes(const FileName& file) {
    const std::filesystem::path path = toPath(file);
    if (const std::error_code error = checkKind(path))
        return {.bytes = std::nullopt, .error = error};
    OpenFile in(path, OpenFile::Purpose::Read);
    if (!in.isOpen())
        return {.bytes = std::nullopt, .error = in.error()};
    std::string bytes;
    if (const std::error_code error = in.readAll(bytes, maxFileSize))
        return {.bytes = std::nullopt, .error = error};
    return {.bytes = std::move(bytes), .error = {}};
}

bool fileHolds(const FileName& file, std::string_view bytes) {
    const std::filesystem::path path = toPath(file);
    if (checkKind(path))
        return false;
    OpenFile in(path, OpenFile::Purpose::Read);
    return in.isOpen() && in.holds(bytes);
}

std::optional<std::string> readRegularFile(const FileName& file) {
    return readBytes(file).bytes;
}

std::error_code checkRegularFile(const FileName& file) {
    return readBytes(file).error;
}

} // namespace Orvant
