#pragma once

#include <filesystem>
#include <string>

namespace Orvant::Benchmarks {

/// A directory that is removed at the end of the scope.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    std::string file(const char* name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

} // namespace Orvant::Benchmarks
