#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>
#include <FileHandling/OvFstream.h>

#include <cerrno>
#include <cstdint>

namespace Orvant {

namespace {

constexpr std::uintmax_t maxFileSize = std::uintmax_t{1} << 30U;

/// @return nothing for anything else and for a file that is too large
std::optional<std::uintmax_t> sizeOfRegularFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    return error || size > maxFileSize ? std::nullopt : std::optional(size);
}

} // namespace

std::filesystem::path toPath(const FileName& file) {
    const std::string native = file.toNativeString();
    return std::u8string(native.begin(), native.end());
}

std::optional<std::string> readRegularFile(const FileName& file) {
    const auto size = sizeOfRegularFile(toPath(file));
    if (!size)
        return std::nullopt;
    OvIfstream in(file, std::ios::in | std::ios::binary);
    if (!in.is_open())
        return std::nullopt;
    std::string bytes(*size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (in.bad())
        return std::nullopt;
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

std::error_code checkRegularFile(const FileName& file) {
    std::error_code error;
    const auto status = std::filesystem::status(toPath(file), error);
    if (error)
        return error;
    if (std::filesystem::is_directory(status))
        return std::make_error_code(std::errc::is_a_directory);
    if (!std::filesystem::is_regular_file(status))
        return std::make_error_code(std::errc::not_supported);
    if (!sizeOfRegularFile(toPath(file)))
        return std::make_error_code(std::errc::file_too_large);
    errno = 0;
    if (OvIfstream(file, std::ios::in | std::ios::binary).is_open())
        return {};
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

} // namespace Orvant
