#include "TemporaryDirectory.h"

#include <stdexcept>
#include <system_error>

#include <stdlib.h>

namespace Orvant::Benchmarks {

namespace {

std::filesystem::path make() {
    std::string name = (std::filesystem::temp_directory_path() / "benchmark-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("No directory for the files");
    return name;
}

} // namespace

TemporaryDirectory::TemporaryDirectory() : m_path(make()) {}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Orvant::Benchmarks
