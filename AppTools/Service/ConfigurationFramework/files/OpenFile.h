#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace Orvant {

/// A file that is open, but not in programs that the application starts, and closed at the end of
/// the scope. Calls that a signal interrupts are repeated, and so are those that do only a part.
///
/// All operations return what the system reported, and nothing when they did all that was asked.
class OpenFile {
public:
    enum class Purpose {
        Read,
        Overwrite, ///< writes over the bytes of what there is
        Make       ///< fails for a name that is taken, even by a link
    };

    /// Opens the file; ask isOpen() whether that went well.
    /// @param mode permissions of a file that is made, of which the process's mask takes some away
    OpenFile(const std::filesystem::path& path, Purpose purpose, unsigned int mode = 0666);
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }
    /// @return why the file could not be opened
    const std::error_code& error() const { return m_error; }

    /// @param bytes number of bytes; 0 for what has none of its own, as devices
    std::error_code getSize(std::uintmax_t& bytes) const;

    /// Reads what there is until the end.
    /// @param most file_too_large is returned for more bytes
    std::error_code readAll(std::string& bytes, std::size_t most);
    /// Compares what there is until the end, without keeping it.
    /// @return false also where it cannot be read
    bool holds(std::string_view bytes);
    /// Writes where the last operation ended.
    std::error_code write(std::string_view bytes);
    /// Writes from a position.
    std::error_code writeAt(std::uintmax_t position, std::string_view bytes);
    /// Cuts the file, or appends zeros.
    std::error_code resize(std::uintmax_t size);
    /// Waits until the disk has the bytes.
    std::error_code flush();
    std::error_code close();

private:
    int m_descriptor;
    std::error_code m_error;
};

} // namespace Orvant
