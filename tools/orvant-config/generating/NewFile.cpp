#include "generating/NewFile.h"

#include "common/ExitCode.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <unistd.h>

namespace Orvant::Tool {

namespace {

namespace fs = std::filesystem;

struct Close {
    void operator()(std::FILE* stream) const { (void)std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, Close>;

[[noreturn]] void fail(int error, const std::string& file) {
    throw std::system_error(error, std::generic_category(), file);
}

void write(const fs::path& file, const char* mode, const std::string& bytes) {
    Stream stream(std::fopen(file.c_str(), mode));
    if (stream == nullptr)
        fail(errno, file.string());
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size())
        fail(errno, file.string());
    if (std::fclose(stream.release()) != 0)
        fail(errno, file.string());
}

/// Removes a file at the end of the scope unless it has got another name.
class Leftover {
public:
    explicit Leftover(fs::path file) : m_file(std::move(file)) {}
    Leftover(const Leftover&) = delete;
    Leftover& operator=(const Leftover&) = delete;
    ~Leftover() {
        std::error_code ignored;
        fs::remove(m_file, ignored);
    }

private:
    fs::path m_file;
};

void replace(const fs::path& file, const std::string& bytes) {
    const fs::path target = fs::is_symlink(file) ? fs::canonical(file) : file;
    fs::path fresh = target;
    fresh.replace_filename('.' + target.filename().string() + '.' + std::to_string(getpid()) +
                           ".new");
    write(fresh, "wx", ""); // never into a file that someone put there
    const Leftover leftover(fresh);
    if (fs::exists(target))
        fs::permissions(fresh, fs::status(target).permissions());
    write(fresh, "w", bytes);
    fs::rename(fresh, target);
}

} // namespace

void writeFile(const std::string& file, const std::string& bytes) {
    try {
        const fs::path path(file);
        if (fs::exists(path) && !fs::is_regular_file(path))
            write(path, "w", bytes);
        else
            replace(path, bytes);
    } catch (const std::system_error& e) {
        throw Failure(ExitCode::FileError, file + ": cannot be written: " + e.code().message());
    }
}

} // namespace Orvant::Tool
