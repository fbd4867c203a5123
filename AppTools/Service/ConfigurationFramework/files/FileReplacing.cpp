#include <ConfigurationFramework/files/FileReplacing.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/FileRights.h>
#include <ConfigurationFramework/files/FileSaving.h>
#include <ConfigurationFramework/files/NewFile.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <random>
#include <string_view>

#ifndef _WIN32
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Orvant {

namespace {

namespace fs = std::filesystem;

/// Longer than any save pauses between two writes. A save that is stopped for longer may fail.
constexpr auto ageOfLeftovers = std::chrono::minutes(10);

/// The names of new files for a target: ".TARGET.0123456789abcdef.new".
class NewNames {
public:
    explicit NewNames(const fs::path& target)
        : m_start(u8"." + beginning(target.filename().u8string()) + u8".") {}

    std::u8string make() const {
        std::random_device random;
        std::uniform_int_distribution<std::size_t> anyDigit(0, digits.size() - 1);
        std::u8string name = m_start;
        for (std::size_t i = 0; i < randomDigits; ++i)
            name += digits[anyDigit(random)];
        return name += end;
    }

    bool contain(std::u8string_view name) const {
        if (name.size() != m_start.size() + randomDigits + end.size() ||
            !name.starts_with(m_start) || !name.ends_with(end))
            return false;
        const auto random = name.substr(m_start.size(), randomDigits);
        return random.find_first_not_of(digits) == random.npos;
    }

private:
    static constexpr std::u8string_view digits = u8"0123456789abcdef";
    static constexpr std::u8string_view end = u8".new";
    static constexpr std::size_t randomDigits = 16;
    static constexpr std::size_t longest = 255; ///< that most file systems allow for a name

    /// @return as much of a name as leaves room for the rest, without cutting a character
    static std::u8string beginning(std::u8string name) {
        const std::size_t most = longest - randomDigits - end.size() - 2;
        if (name.size() <= most)
            return name;
        std::size_t size = most;
        while (size > 0 && (name[size] & 0xC0U) == 0x80U)
            --size;
        name.resize(size);
        return name;
    }

    std::u8string m_start;
};

fs::path directoryOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// Removes what processes left beside a target when they ended in the middle of a save.
/// @param made the new file of this save: its time comes from the same clock as those of the others
void removeLeftovers(const fs::path& made, const NewNames& names) {
    std::error_code error;
    const auto now = fs::last_write_time(made, error);
    if (error)
        return;
    for (fs::directory_iterator entry(directoryOf(made), error), end; !error && entry != end;
         entry.increment(error)) {
        if (!names.contain(entry->path().filename().u8string()))
            continue;
        std::error_code ignored;
        const auto written = fs::last_write_time(entry->path(), ignored);
        if (!ignored && now - written > ageOfLeftovers)
            fs::remove(entry->path(), ignored);
    }
}

/// Whether the file may still be written in place, though a new one is not allowed. A full disk
/// does not count: writing in place could then lose the old bytes.
bool isRefusal(const std::error_code& error) {
    constexpr std::errc refusals[] = {
        std::errc::permission_denied,       std::errc::operation_not_permitted,
        std::errc::read_only_file_system,   std::errc::cross_device_link,
        std::errc::device_or_resource_busy, std::errc::filename_too_long};
    return std::ranges::any_of(refusals, [&](std::errc refusal) { return error == refusal; });
}

#ifdef _WIN32

std::error_code checkWritable(const fs::path&) {
    return {};
}

void flushDirectory(const fs::path&) {}

#else

std::error_code checkWritable(const fs::path& file) {
    if (faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0)
        return {};
    return {errno, std::generic_category()};
}

/// A failure does not matter: the new file has its name, only perhaps not on the disk yet.
void flushDirectory(const fs::path& directory) {
    OpenFile opened(directory, OpenFile::Purpose::Read);
    [[maybe_unused]] const std::error_code ignored =
        opened.isOpen() ? opened.flush() : opened.error();
}

#endif

/// @param former rights of the old file; nothing when there is none
/// @return what the system reported; nothing where the target has to be written in place
std::optional<std::error_code> putNewFile(const fs::path& target, const std::string& bytes,
                                          const std::optional<FileRights>& former) {
    const NewNames names(target);
    NewFile made(target.parent_path() / names.make(), former ? former->firstMode() : 0666U);
    if (made.isMade()) {
        removeLeftovers(made.path(), names);
        if (!made.write(bytes))
            return made.error();
        if (former && !former->giveTo(made.descriptor()))
            return std::nullopt;
        if (!made.flush())
            return made.error();
    }
    if (made.finishAs(target))
        flushDirectory(directoryOf(target));
    else if (isRefusal(made.error()))
        return std::nullopt;
    return made.error();
}

/// @copydoc putNewFile
std::optional<std::error_code> putNewFile(const fs::path& target, const std::string& bytes) {
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (status.type() == fs::file_type::not_found)
        return putNewFile(target, bytes, std::nullopt);
    if (error)
        return error;
    if (!fs::is_regular_file(status) || fs::hard_link_count(target, error) != 1)
        return std::nullopt;
    if (const std::error_code refusal = checkWritable(target))
        return refusal;
    return putNewFile(target, bytes, FileRights(target));
}

} // namespace

FileSave replaceFile(const FileName& file, const std::string& bytes) {
    const fs::path target = followLinks(toPath(file)).back();
    if (const auto error = putNewFile(target, bytes))
        return {.error = *error, .inPlace = false};
    const std::error_code error = saveInPlace(file, bytes);
    return {.error = error, .inPlace = !error};
}

} // namespace Orvant
