#include <ConfigurationFramework/files/NewFile.h>

#include <ConfigurationFramework/files/RegularFile.h>

#include <utility>

namespace Orvant {

NewFile::NewFile(const FileName& file) : NewFile(toPath(file)) {}

NewFile::NewFile(std::filesystem::path path, unsigned int mode)
    : m_path(std::move(path)),
      m_file(m_path, OpenFile::Purpose::Make, mode),
      m_error(m_file.error()) {}

NewFile::~NewFile() {
    if (!isMade())
        return;
    keep(std::make_error_code(std::errc::operation_canceled));
    finish();
}

bool NewFile::write(std::string_view bytes) {
    if (isMade() && !m_error)
        keep(m_file.write(bytes));
    return isMade() && !m_error;
}

bool NewFile::flush() {
    if (isMade() && !m_error)
        keep(m_file.flush());
    return isMade() && !m_error;
}

bool NewFile::finish() {
    if (!isMade())
        return false;
    keep(m_file.close());
    return removeAfterFailure();
}

bool NewFile::finishAs(const std::filesystem::path& name) {
    if (!isMade())
        return false;
    keep(m_file.close());
    if (!m_error) {
        std::error_code error;
        std::filesystem::rename(m_path, name, error);
        keep(error);
    }
    return removeAfterFailure();
}

void NewFile::keep(const std::error_code& error) {
    if (!m_error)
        m_error = error;
}

bool NewFile::removeAfterFailure() {
    if (!m_error)
        return true;
    std::error_code error;
    std::filesystem::remove(m_path, error);
    return false;
}

} // namespace Orvant
