#pragma once

#include "Settings.h"
#include "TemporaryDirectory.h"

#include <string>

namespace Orvant::Benchmarks {

inline constexpr const char* documentVersion = "1.0";

/// Both layers of the settings on disk, as XML and as INI, until the end of the scope.
class SettingsFiles {
public:
    explicit SettingsFiles(Shape shape, Place place = Place::Memory,
                           Override override = Override::TenthOfEachObject);

    Shape shape() const { return m_shape; }
    std::string systemXml() const { return m_directory.file("system.xml"); }
    std::string userXml() const { return m_directory.file("user.xml"); }
    std::string newXml() const { return m_directory.file("new.xml"); }
    /// @name The INI files have one name in two directories, as cascading settings need them
    /// @{
    static constexpr const char* iniName = "suiterc";
    std::string systemDirectory() const { return m_directory.file("system"); }
    std::string userDirectory() const { return m_directory.file("user"); }
    std::string systemIni() const { return systemDirectory() + '/' + iniName; }
    std::string userIni() const { return userDirectory() + '/' + iniName; }
    /// @}

private:
    Shape m_shape;
    TemporaryDirectory m_directory;
};

/// @return files of that shape, which every benchmark may read and none may change
const SettingsFiles& sharedFiles(Shape shape, Override override = Override::TenthOfEachObject);

} // namespace Orvant::Benchmarks
