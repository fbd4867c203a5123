#include <FileHandling/FileName.h>

namespace Orvant {

namespace {

std::string toUtf8(const std::u8string& text) {
    return {text.begin(), text.end()};
}

} // namespace

FileNameException::FileNameException(std::source_location location)
    : OvException("FileNameException", location) {}

FileNameException::~FileNameException() = default;

FileName::FileName(const std::string& path) : m_path(std::u8string(path.begin(), path.end())) {}

FileName::FileName(const char* path) : FileName(std::string(path)) {}

std::string FileName::toString() const {
    return toUtf8(m_path.generic_u8string());
}

std::string FileName::toNativeString() const {
    std::filesystem::path native = toPath();
    return toUtf8(native.make_preferred().u8string());
}

const std::filesystem::path& FileName::toPath() const {
    if (m_path.native().find(std::filesystem::path::value_type{}) != std::string::npos)
        throw FileNameException();
    return m_path;
}

FileName FileName::getLocation() const {
    FileName location;
    location.m_path = m_path.parent_path();
    return location;
}

FileName& FileName::operator/=(const FileName& part) {
    m_path /= part.m_path;
    return *this;
}

} // namespace Orvant
