#pragma once

#include <filesystem>
#include <string>

namespace Orvant::Benchmarks {

/// Where files are put. Memory is where temporary files go, as the caller sets it.
enum class Place { Memory, Disk };

/// A directory that is removed at the end of the scope.
class TemporaryDirectory {
public:
    explicit TemporaryDirectory(Place place = Place::Memory);
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    std::string file(const char* name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

} // namespace Orvant::Benchmarks
