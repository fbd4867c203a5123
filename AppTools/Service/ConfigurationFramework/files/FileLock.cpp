#include <ConfigurationFramework/files/FileLock.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/OpenFile.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>

#include <boost/interprocess/sync/file_lock.hpp>
#include <boost/interprocess/sync/scoped_lock.hpp>

#include <algorithm>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

namespace Orvant {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

/// What a lock of this process has taken before it asks the system: at most one has each file.
class OwnLock {
public:
    explicit OwnLock(fs::path lockFile) : m_lockFile(std::move(lockFile)) {
        const std::lock_guard guard(s_mutex);
        m_isTaken = s_taken.insert(m_lockFile).second;
    }
    OwnLock(const OwnLock&) = delete;
    OwnLock& operator=(const OwnLock&) = delete;
    ~OwnLock() {
        const std::lock_guard guard(s_mutex);
        if (m_isTaken)
            s_taken.erase(m_lockFile);
    }

    bool isTaken() const { return m_isTaken; }

private:
    static inline std::mutex s_mutex;
    static inline std::set<fs::path> s_taken;

    fs::path m_lockFile;
    bool m_isTaken;
};

/// @return why there is no lock file, or none to be opened; it is never opened here, since closing
///         it would end another lock of this process
std::error_code makeLockFile(const fs::path& lockFile) {
    const OpenFile made(lockFile, OpenFile::Purpose::Make);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(lockFile, error);
    if (fs::is_regular_file(status))
        return {};
    if (fs::is_symlink(status))
        return std::make_error_code(std::errc::too_many_symbolic_link_levels);
    return fs::exists(status) ? std::make_error_code(std::errc::not_supported) : made.error();
}

} // namespace

class FileLock::Held {
public:
    explicit Held(const fs::path& lockFile) : m_own(lockFile) {
        if (!m_own.isTaken())
            return;
        m_file = boost::interprocess::file_lock(lockFile.string().c_str());
        m_lock = Lock(m_file, boost::interprocess::try_to_lock);
    }

    explicit operator bool() const { return m_lock.owns(); }

private:
    using Lock = boost::interprocess::scoped_lock<boost::interprocess::file_lock>;

    // The order matters: the lock goes first, and the file is closed before another may open it.
    OwnLock m_own;
    boost::interprocess::file_lock m_file;
    Lock m_lock;
};

FileLock::FileLock(const FileName& target, milliseconds patience) {
    fs::path lockFile = followLinks(toPath(target)).back();
    lockFile += ".lock";
    m_error = makeLockFile(lockFile);
    if (!m_error)
        // By whatever name another lock of this process knows the file.
        lockFile = fs::canonical(lockFile, m_error);
    if (m_error)
        m_state = State::NotMade;
    else
        waitFor(lockFile, patience);
}

FileLock::~FileLock() = default;

void FileLock::waitFor(const fs::path& lockFile, milliseconds patience) {
    const auto start = std::chrono::steady_clock::now();
    milliseconds pause(1);
    for (tryToTake(lockFile); m_state == State::Busy; tryToTake(lockFile)) {
        const auto waited =
            std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
        if (waited >= patience)
            return;
        std::this_thread::sleep_for(std::min(pause, patience - waited));
        pause = std::min(2 * pause, milliseconds(20));
    }
}

void FileLock::tryToTake(const fs::path& lockFile) {
    try {
        auto held = std::make_unique<Held>(lockFile);
        if (!*held)
            return;
        m_held = std::move(held);
        m_state = State::Held;
    } catch (const boost::interprocess::interprocess_exception& e) {
        m_error = std::error_code(e.get_native_error(), std::system_category());
        m_state = State::NotMade;
    }
}

} // namespace Orvant
