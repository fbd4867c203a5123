#include <ConfigurationFramework/files/OpenFile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace Orvant {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

#ifdef _WIN32

constexpr int always = _O_BINARY | _O_NOINHERIT;

int openFile(const std::filesystem::path& path, int flags, unsigned int mode) {
    return _wopen(path.c_str(), flags | always, mode & (_S_IREAD | _S_IWRITE));
}

int resizeFile(int descriptor, std::uintmax_t size) {
    return _chsize_s(descriptor, static_cast<__int64>(size)) == 0 ? 0 : -1;
}

int flushFile(int descriptor) {
    return _commit(descriptor);
}

std::int64_t seekFile(int descriptor, std::uintmax_t position) {
    return _lseeki64(descriptor, static_cast<__int64>(position), SEEK_SET);
}

#else

int openFile(const std::filesystem::path& path, int flags, unsigned int mode) {
    return ::open(path.c_str(), flags | O_CLOEXEC, static_cast<mode_t>(mode));
}

int resizeFile(int descriptor, std::uintmax_t size) {
    return ::ftruncate(descriptor, static_cast<off_t>(size));
}

int flushFile(int descriptor) {
    return ::fsync(descriptor);
}

std::int64_t seekFile(int descriptor, std::uintmax_t position) {
    return ::lseek(descriptor, static_cast<off_t>(position), SEEK_SET);
}

#endif

int flagsFor(OpenFile::Purpose purpose) {
    switch (purpose) {
    case OpenFile::Purpose::Read:
        return O_RDONLY;
    case OpenFile::Purpose::Overwrite:
        return O_WRONLY;
    case OpenFile::Purpose::Make:
        break;
    }
    return O_WRONLY | O_CREAT | O_EXCL;
}

/// Repeats a call that a signal interrupted; not for ever, since a file system that is gone may
/// have every call interrupted.
template <typename Call>
auto repeated(Call call) {
    auto result = call();
    for (int times = 0; result < 0 && errno == EINTR && times < 1000; ++times)
        result = call();
    return result;
}

/// @param result what such a call returned
template <typename Result>
std::error_code errorOf(Result result) {
    return result < 0 ? lastError() : std::error_code();
}

/// Some systems refuse more at once.
unsigned int atOnce(std::size_t size) {
    return static_cast<unsigned int>(std::min(size, std::size_t{1} << 30U));
}

} // namespace

OpenFile::OpenFile(const std::filesystem::path& path, Purpose purpose, unsigned int mode)
    : m_descriptor(repeated([&] { return openFile(path, flagsFor(purpose), mode); })),
      m_error(errorOf(m_descriptor)) {}

OpenFile::~OpenFile() {
    // Callers that need to know whether closing succeeds call close() themselves.
    [[maybe_unused]] const std::error_code ignored = close();
}

std::error_code OpenFile::getSize(std::uintmax_t& bytes) const {
    struct stat status{};
    if (::fstat(m_descriptor, &status) != 0)
        return lastError();
    bytes = static_cast<std::uintmax_t>(status.st_size);
    return {};
}

std::error_code OpenFile::readAll(std::string& bytes, std::size_t most) {
    std::uintmax_t expected = 0;
    if (const std::error_code error = getSize(expected))
        return error;
    if (expected > most)
        return std::make_error_code(std::errc::file_too_large);
    // The size may change meanwhile: the end is where no byte follows, so one more is asked for.
    bytes.resize(static_cast<std::size_t>(expected) + 1);
    std::size_t read = 0;
    while (true) {
        const auto count = repeated(
            [&] { return ::read(m_descriptor, bytes.data() + read, atOnce(bytes.size() - read)); });
        if (count <= 0) {
            bytes.resize(read);
            return errorOf(count);
        }
        read += static_cast<std::size_t>(count);
        if (read > most)
            return std::make_error_code(std::errc::file_too_large);
        if (read == bytes.size())
            bytes.resize(2 * read);
    }
}

bool OpenFile::holds(std::string_view bytes) {
    std::array<char, std::size_t{1} << 16U> part{};
    while (true) {
        const auto count = repeated([&] { return ::read(m_descriptor, part.data(), part.size()); });
        if (count <= 0)
            return count == 0 && bytes.empty();
        const std::string_view next(part.data(), static_cast<std::size_t>(count));
        if (!bytes.starts_with(next))
            return false;
        bytes.remove_prefix(next.size());
    }
}

std::error_code OpenFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count =
            repeated([&] { return ::write(m_descriptor, bytes.data(), atOnce(bytes.size())); });
        if (count < 0)
            return lastError();
        if (count == 0)
            return std::make_error_code(std::errc::io_error);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

std::error_code OpenFile::writeAt(std::uintmax_t position, std::string_view bytes) {
    // A terminal, say, has no positions.
    if (seekFile(m_descriptor, position) < 0 && errno != ESPIPE)
        return lastError();
    return write(bytes);
}

std::error_code OpenFile::resize(std::uintmax_t size) {
    return errorOf(repeated([&] { return resizeFile(m_descriptor, size); }));
}

std::error_code OpenFile::flush() {
    return errorOf(repeated([&] { return flushFile(m_descriptor); }));
}

std::error_code OpenFile::close() {
    if (!isOpen())
        return {};
    // Whatever the result, the descriptor is no longer ours: the call must not be repeated.
    const int result = ::close(std::exchange(m_descriptor, -1));
    return result < 0 && errno != EINTR ? lastError() : std::error_code();
}

} // namespace Orvant
