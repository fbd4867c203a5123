#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Orvant {

class FileName;

/// The lock that all processes of the library take while they change a file. It is on a file beside
/// the target, "TARGET.lock" (links to the target are followed), which gets the rights of the
/// target if that is there, so that whoever may write it can lock it. It is never deleted: a
/// process could otherwise lock a file that has no name any more.
///
/// The system's locks belong to a process: they do not exclude a second lock of the same process,
/// and end as soon as it closes the lock file anywhere. So the locks of a process also exclude each
/// other, and nothing else may open the lock file.
class FileLock {
public:
    enum class State {
        Held,
        Busy,   ///< another lock was held all the time
        NotMade ///< the lock file could not be made, opened or locked
    };

    /// Takes the lock, if necessary after a wait.
    /// @param patience longest time to wait for it
    /// @throws FileNameException for a name that no file system could hold
    FileLock(const FileName& target, std::chrono::milliseconds patience);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    /// Releases the lock.
    ~FileLock();

    State state() const { return m_state; }
    /// @return why the lock is not made, as the system reports it; none otherwise
    const std::error_code& error() const { return m_error; }

private:
    class Held;

    void waitFor(const std::filesystem::path& lockFile, std::chrono::milliseconds patience);
    void tryToTake(const std::filesystem::path& lockFile);

    std::unique_ptr<Held> m_held;
    State m_state = State::Busy;
    std::error_code m_error;
};

} // namespace Orvant
