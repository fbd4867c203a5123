#pragma once

#include <ConfigurationFramework/files/OpenFile.h>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace Orvant {

class FileName;

/// A file that this object makes and, unless it is finished, removes. What already has its name
/// stays as it is, even a link that leads nowhere: links are never followed.
///
/// @code
/// NewFile made(file);
/// if (!made.write(bytes) || !made.finish())
///     report(made.error());
/// @endcode
class NewFile {
public:
    /// Makes the file; ask isMade() whether that went well.
    /// @throws FileNameException for a name that no file system could hold
    explicit NewFile(const FileName& file);
    /// Likewise.
    /// @param mode permissions of the file, of which the process's mask takes some away
    explicit NewFile(std::filesystem::path path, unsigned int mode = 0666);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    /// Removes the file unless it is finished.
    ~NewFile();

    /// @return true when the file was made and is not yet finished
    bool isMade() const { return m_file.isOpen(); }

    const std::filesystem::path& path() const { return m_path; }
    /// @return the open file while isMade()
    int descriptor() const { return m_file.descriptor(); }

    /// Appends bytes.
    /// @return false when these or earlier bytes could not be written, or no file was made
    bool write(std::string_view bytes);

    /// Closes the file, which then stays. One that does not hold all bytes is removed.
    /// @return false when the file was removed, or none was made
    bool finish();

    /// Waits until the disk has what was written.
    /// @return false when these or earlier bytes could not be written, or no file was made
    bool flush();

    /// Closes the file and renames it, replacing the file that has the new name. That is one step:
    /// whoever opens the name finds the former file or the new one, whole.
    /// @return false when the file was removed and the former one stays, or none was made
    bool finishAs(const std::filesystem::path& name);

    /// @return the first failure, as the system reported it; none when all went well
    const std::error_code& error() const { return m_error; }

private:
    void keep(const std::error_code& error);
    bool removeAfterFailure();

    std::filesystem::path m_path;
    OpenFile m_file;
    std::error_code m_error;
};

} // namespace Orvant
