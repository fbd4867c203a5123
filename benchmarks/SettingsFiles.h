#pragma once

#include "Settings.h"

#include <filesystem>
#include <string>

namespace Orvant::Benchmarks {

inline constexpr const char* documentVersion = "1.0";

/// Both layers of the settings on disk, as XML and as INI, in a directory that goes with the scope.
class SettingsFiles {
public:
    explicit SettingsFiles(Shape shape);
    SettingsFiles(const SettingsFiles&) = delete;
    SettingsFiles& operator=(const SettingsFiles&) = delete;
    ~SettingsFiles();

    Shape shape() const { return m_shape; }
    std::string systemXml() const { return inDirectory("system.xml"); }
    std::string userXml() const { return inDirectory("user.xml"); }
    std::string newXml() const { return inDirectory("new.xml"); }
    /// @name The INI files have one name in two directories, as cascading settings want them
    /// @{
    static constexpr const char* iniName = "suiterc";
    std::string systemDirectory() const { return inDirectory("system"); }
    std::string userDirectory() const { return inDirectory("user"); }
    std::string systemIni() const { return systemDirectory() + '/' + iniName; }
    std::string userIni() const { return userDirectory() + '/' + iniName; }
    /// @}

private:
    std::string inDirectory(const char* name) const { return (m_directory / name).string(); }

    Shape m_shape;
    std::filesystem::path m_directory;
};

/// @return files of that shape that every benchmark may read and none may change
const SettingsFiles& sharedFiles(Shape shape);

} // namespace Orvant::Benchmarks
