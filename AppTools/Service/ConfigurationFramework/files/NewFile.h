#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace Orvant {

class FileName;

/// A file that this object creates, and removes unless it is finished. Whatever already has its
/// name stays as it is, even a link that leads nowhere: links are never followed.
///
/// @code
/// NewFile made(file);
/// if (!made.write(bytes) || !made.finish())
///     report(made.error());
/// @endcode
class NewFile {
public:
    /// Creates the file; isMade() tells whether that succeeded.
    /// @throws FileNameException for a name that no file system could hold
    explicit NewFile(const FileName& file);
    explicit NewFile(std::filesystem::path path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    /// Removes the file unless it is finished.
    ~NewFile();

    /// @return true when the file was made and is not yet finished
    bool isMade() const { return m_stream != nullptr; }

    /// Appends bytes.
    /// @return false when these or earlier bytes could not be written, or no file was made
    bool write(std::string_view bytes);

    /// Closes the file and keeps it. One that does not hold all bytes is removed.
    /// @return false when the file was removed, or none was made
    bool finish();

    /// @return the first failure, as the system reported it; no error when all went well
    const std::error_code& error() const { return m_error; }

private:
    struct Closing {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void keepError();
    void remove();

    std::filesystem::path m_path;
    std::unique_ptr<std::FILE, Closing> m_stream; ///< null unless isMade()
    std::error_code m_error;
};

} // namespace Orvant
