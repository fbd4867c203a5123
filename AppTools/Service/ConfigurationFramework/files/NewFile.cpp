#include <ConfigurationFramework/files/NewFile.h>

#include <ConfigurationFramework/files/RegularFile.h>

#include <cerrno>
#include <utility>

namespace Orvant {

namespace {

/// Creates a file and opens it for writing. The mode fails for a name that is taken, even by a link
/// (x), and keeps programs that the application starts from inheriting the stream (e, N).
std::FILE* makeFile(const std::filesystem::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"wbxN");
#else
    return std::fopen(path.c_str(), "wbxe");
#endif
}

} // namespace

NewFile::NewFile(const FileName& file) : NewFile(toPath(file)) {}

NewFile::NewFile(std::filesystem::path path) : m_path(std::move(path)), m_stream(makeFile(m_path)) {
    if (!m_stream)
        keepError();
}

NewFile::~NewFile() {
    if (!m_stream)
        return;
    m_stream.reset();
    remove();
}

bool NewFile::write(std::string_view bytes) {
    if (m_stream && !m_error &&
        std::fwrite(bytes.data(), 1, bytes.size(), m_stream.get()) != bytes.size())
        keepError();
    return m_stream && !m_error;
}

bool NewFile::finish() {
    if (!m_stream)
        return false;
    // Closing writes what the stream still holds.
    if (std::fclose(m_stream.release()) != 0)
        keepError();
    if (m_error)
        remove();
    return !m_error;
}

void NewFile::keepError() {
    if (!m_error)
        m_error.assign(errno, std::generic_category());
}

void NewFile::remove() {
    std::error_code error;
    std::filesystem::remove(m_path, error);
}

} // namespace Orvant
