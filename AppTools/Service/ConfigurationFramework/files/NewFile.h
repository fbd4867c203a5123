#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace Orvant {

class FileName;

/// A file that this object makes. What has its name already stays as it is, be it a link that leads
/// nowhere: links are never followed. A file that is not finished is taken away again.
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
    explicit NewFile(std::filesystem::path path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    /// Removes the file unless it is finished.
    ~NewFile();

    /// @return true when the file was made and is not finished yet
    bool isMade() const { return m_stream != nullptr; }

    /// Appends bytes.
    /// @return false when these or earlier ones could not be written, or there is no such file
    bool write(std::string_view bytes);

    /// Closes the file, which then stays.
    /// @return false when it does not hold all bytes, or there is no such file; it does not stay
    /// then
    bool finish();

    /// @return the first failure, as the system reported it; none when all went well
    const std::error_code& error() const { return m_error; }

private:
    struct Closing {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void keepError();
    void remove();

    std::filesystem::path m_path;
    std::unique_ptr<std::FILE, Closing>
        m_stream; ///< null before the file is made and when finished
    std::error_code m_error;
};

} // namespace Orvant
