#pragma once

#include <ExceptionHandling/OvException.h>
#include <FileHandling/Export.h>

#include <filesystem>
#include <string>

namespace Orvant {

/// Thrown for a name that no file system could hold: one with an embedded NUL.
class ORVANT_FILEHANDLING_EXPORT FileNameException : public OvException {
public:
    /// @param location place of the throw statement
    explicit FileNameException(std::source_location location = std::source_location::current());

    /// Copies name and place.
    /// @{
    FileNameException(const FileNameException&) = default;
    FileNameException(FileNameException&&) = default;
    FileNameException& operator=(const FileNameException&) = default;
    FileNameException& operator=(FileNameException&&) = default;
    /// @}
    ~FileNameException() override;
};

/// Path of a file or directory, as every file argument of the suite is given.
///
/// @code
/// FileName file("/home/anna/Größen");
/// file /= "settings.xml";
/// @endcode
class ORVANT_FILEHANDLING_EXPORT FileName {
public:
    /// An empty name: no file.
    FileName() = default;
    /// @param path path in UTF-8, with the platform's separators or '/'
    FileName(const std::string& path);
    /// @copydoc FileName(const std::string&)
    FileName(const char* path);

    /// @return the path in UTF-8, with '/' between its parts
    std::string toString() const;

    /// @return the path in UTF-8, with the platform's separators
    /// @throws FileNameException for a name that no file system could hold
    std::string toNativeString() const;

    /// @return the path for the standard library
    /// @throws FileNameException for a name that no file system could hold
    const std::filesystem::path& toPath() const;

    /// @return true for the empty name
    bool empty() const { return m_path.empty(); }

    /// @return the directory that holds the file: the path without its last part, empty when it has
    ///         only one
    FileName getLocation() const;

    /// Appends a part to the path.
    FileName& operator/=(const FileName& part);

    /// @return true when both names have the same parts, read as text
    bool operator==(const FileName& other) const = default;

private:
    std::filesystem::path m_path;
};

} // namespace Orvant
