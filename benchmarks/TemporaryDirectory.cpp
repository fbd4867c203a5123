#include "TemporaryDirectory.h"

#include <stdexcept>
#include <system_error>

#include <stdlib.h>

namespace Orvant::Benchmarks {

namespace {

std::filesystem::path make(Place place) {
    const std::filesystem::path parent =
        place == Place::Disk ? DISK_DIRECTORY : std::filesystem::temp_directory_path();
    std::string name = (parent / "benchmark-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("No directory for the files");
    return name;
}

} // namespace

TemporaryDirectory::TemporaryDirectory(Place place) : m_path(make(place)) {}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Orvant::Benchmarks
