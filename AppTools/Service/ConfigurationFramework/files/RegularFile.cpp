#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>
#include <FileHandling/OvFstream.h>

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

} // namespace Orvant
