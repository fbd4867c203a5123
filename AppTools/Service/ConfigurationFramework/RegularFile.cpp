#include <ConfigurationFramework/RegularFile.h>

#include <FileHandling/FileName.h>
#include <FileHandling/OvFstream.h>

#include <cstdint>
#include <filesystem>

namespace Orvant {

namespace {

constexpr std::uintmax_t maxFileSize = std::uintmax_t{1} << 30U;

} // namespace

std::optional<std::string> readRegularFile(const FileName& file) {
    const std::string native = file.toNativeString();
    const std::filesystem::path path(std::u8string(native.begin(), native.end()));
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    OvIfstream in(file, std::ios::in | std::ios::binary);
    if (error || size > maxFileSize || !in.is_open())
        return std::nullopt;
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (in.bad())
        return std::nullopt;
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

} // namespace Orvant
