#include <ConfigurationFramework/files/FileLock.h>

#include <ConfigurationFramework/files/FileLinks.h>
#include <ConfigurationFramework/files/FileRights.h>
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

/// A lock within this process, taken before the system is asked: at most one has each file.
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

/// @return the file that is locked, under one name, whatever names lead to the target
fs::path lockFileOf(const FileName& target, std::error_code& error) {
    const fs::path last = followLinks(toPath(target)).back();
    const fs::path directory = last.has_parent_path() ? last.parent_path() : fs::path(".");
    fs::path lockFile = fs::canonical(directory, error) / last.filename();
    return lockFile += ".lock";
}

/// Makes the lock file unless it is there.
/// @return why there is no lock file, or why it must not be opened
std::error_code makeLockFile(const fs::path& lockFile) {
    const OpenFile made(lockFile, OpenFile::Purpose::Make);
    std::error_code error;
    // Whoever may write the target has to be able to lock it. As far as the system allows.
    const fs::path target = fs::path(lockFile).replace_extension();
    if (made.isOpen() && fs::is_regular_file(target, error))
        FileRights(target).giveWhatIsPossibleTo(made.descriptor());
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
        // Nothing may open the file while another lock of this process has it.
        if (!m_own.isTaken())
            return;
        if (m_error = makeLockFile(lockFile); m_error)
            return;
        m_file = boost::interprocess::file_lock(lockFile.string().c_str());
        m_lock = Lock(m_file, boost::interprocess::try_to_lock);
    }

    bool isHeld() const { return m_lock.owns(); }
    const std::error_code& error() const { return m_error; }

private:
    using Lock = boost::interprocess::scoped_lock<boost::interprocess::file_lock>;

    // The order matters: the lock is released first, and the file is closed before another lock of
    // this process may open it.
    OwnLock m_own;
    std::error_code m_error;
    boost::interprocess::file_lock m_file;
    Lock m_lock;
};

FileLock::FileLock(const FileName& target, milliseconds patience) {
    const fs::path lockFile = lockFileOf(target, m_error);
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
        m_error = held->error();
        if (held->isHeld()) {
            m_held = std::move(held);
            m_state = State::Held;
        }
    } catch (const boost::interprocess::interprocess_exception& e) {
        m_error = std::error_code(e.get_native_error(), std::system_category());
    }
    if (m_error)
        m_state = State::NotMade;
}

} // namespace Orvant
