#include <ConfigurationFramework/files/FileLock.h>

#include <SchemaTestSupport.h>
#include <files/SystemCalls.h>

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <thread>

#include <grp.h>
#include <sys/stat.h>

namespace Orvant {
namespace {

using namespace Support;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

using State = FileLock::State;

/// A process that takes a lock and keeps it until it is told to let go of it.
class Holder {
public:
    explicit Holder(const FileName& target) {
        EXPECT_EQ(0, pipe(m_toHolder.data()));
        EXPECT_EQ(0, pipe(m_fromHolder.data()));
        m_process = fork();
        if (m_process == 0)
            hold(target);
        close(m_toHolder[0]);
        close(m_fromHolder[1]);
        char isHeld = 0;
        EXPECT_EQ(1, read(m_fromHolder[0], &isHeld, 1));
        EXPECT_EQ('y', isHeld);
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() {
        letGo();
        close(m_fromHolder[0]);
    }

    /// Ends the process, and returns when the lock is free.
    void letGo() {
        if (m_process == 0)
            return;
        close(m_toHolder[1]);
        waitpid(std::exchange(m_process, 0), nullptr, 0);
    }
    /// Ends the process without a chance to release anything.
    void kill() {
        ::kill(m_process, SIGKILL);
        letGo();
    }

private:
    [[noreturn]] void hold(const FileName& target) {
        close(m_toHolder[1]);
        const FileLock lock(target, 0ms);
        const char isHeld = lock.state() == State::Held ? 'y' : 'n';
        char end = 0;
        const bool isTold =
            write(m_fromHolder[1], &isHeld, 1) == 1 && read(m_toHolder[0], &end, 1) == 0;
        _exit(isTold ? 0 : 1);
    }

    std::array<int, 2> m_toHolder{};
    std::array<int, 2> m_fromHolder{};
    pid_t m_process = 0;
};

class FileLockTest : public testing::Test {
protected:
    void expectNotMade(std::errc reason) const {
        const FileLock lock(target, 0ms);
        EXPECT_EQ(State::NotMade, lock.state());
        EXPECT_EQ(reason, lock.error());
    }
    State tryIt() const { return FileLock(target, 0ms).state(); }

    TemporaryDirectory directory;
    FileName target = directory.file("settings.xml");
    FileName lockFile = directory.file("settings.xml.lock");
};

TEST_F(FileLockTest, IsOnAFileBesideTheTargetThatStays) {
    {
        const FileLock lock(target, 0ms);
        EXPECT_EQ(State::Held, lock.state());
        EXPECT_FALSE(lock.error());
        EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml.lock"));
    }
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml.lock"));
    EXPECT_EQ("", readFile(lockFile));
    EXPECT_EQ(State::Held, tryIt()) << "with the file that is there";
}

TEST_F(FileLockTest, ExcludesOtherProcesses) {
    Holder holder(target);
    const FileLock lock(target, 5ms);
    EXPECT_EQ(State::Busy, lock.state());
    EXPECT_FALSE(lock.error());
    holder.letGo();
    EXPECT_EQ(State::Busy, lock.state()) << "a lock does not try again";
    EXPECT_EQ(State::Held, tryIt());
}

TEST_F(FileLockTest, IsNotHeldByOneThatWasBusy) {
    Holder holder(target);
    const FileLock busy(target, 0ms);
    holder.letGo();
    const FileLock lock(target, 0ms);
    EXPECT_EQ(State::Held, lock.state());
}

TEST_F(FileLockTest, ExcludesOtherLocksOfTheProcess) {
    std::optional<FileLock> lock(std::in_place, target, 0ms);
    EXPECT_EQ(State::Busy, tryIt());
    EXPECT_EQ(State::Busy, FileLock(directory.file("./settings.xml"), 0ms).state());
    lock.reset();
    EXPECT_EQ(State::Held, tryIt());
}

TEST_F(FileLockTest, IsNotLostWhenAnotherOfTheProcessIsBusy) {
    const FileLock lock(target, 0ms);
    EXPECT_EQ(State::Busy, tryIt());
    // A program of its own: what this process holds is held in its forks, too.
    EXPECT_EQ(EAGAIN, inOwnProcess([&] {
                  struct flock all{};
                  all.l_type = F_WRLCK;
                  const int descriptor = open(lockFile.toNativeString().c_str(), O_RDWR);
                  return fcntl(descriptor, F_SETLK, &all) == 0 ? 0 : errno;
              }));
}

TEST_F(FileLockTest, IsNotLostWhileAnotherOfTheProcessMakesTheFile) {
    // Closing the new file would end a lock that is taken before.
    std::vector<State> others;
    SystemCalls calls;
    calls.watch([&](const std::string& function) {
        if (function == "close")
            std::thread([&] { others.push_back(tryIt()); }).join();
    });
    EXPECT_EQ(State::Held, tryIt());
    EXPECT_THAT(others, ElementsAre(State::Busy, State::Busy));
}

TEST_F(FileLockTest, LeavesOtherTargetsAlone) {
    const FileLock lock(target, 0ms);
    const FileLock other(directory.file("other.xml"), 0ms);
    EXPECT_EQ(State::Held, lock.state());
    EXPECT_EQ(State::Held, other.state());
}

TEST_F(FileLockTest, IsFreeWhenItsProcessIsKilled) {
    Holder holder(target);
    EXPECT_EQ(State::Busy, tryIt());
    holder.kill();
    EXPECT_EQ(State::Held, tryIt());
}

TEST_F(FileLockTest, WaitsForAnotherProcess) {
    Holder holder(target);
    std::thread ending([&] { holder.letGo(); });
    EXPECT_EQ(State::Held, FileLock(target, 1h).state());
    ending.join();
}

TEST_F(FileLockTest, WaitsForAnotherThread) {
    std::optional<FileLock> lock(std::in_place, target, 0ms);
    State other = State::Busy;
    std::thread waiting(
        [&] { other = FileLock(target, std::chrono::milliseconds::max()).state(); });
    lock.reset();
    waiting.join();
    EXPECT_EQ(State::Held, other);
}

TEST_F(FileLockTest, KeepsProcessesApart) {
    constexpr int processes = 4;
    constexpr int rounds = 25;
    writeFile(target, "0");
    const auto countUp = [&] {
        for (int round = 0; round < rounds; ++round) {
            const FileLock lock(target, 1h);
            if (lock.state() != State::Held)
                return 1;
            writeFile(target, std::to_string(std::stoi(readFile(target)) + 1));
        }
        return 0;
    };
    std::vector<std::thread> waiting;
    for (int i = 0; i < processes; ++i)
        waiting.emplace_back([&] { EXPECT_EQ(0, inOwnProcess(countUp)); });
    for (std::thread& thread : waiting)
        thread.join();
    EXPECT_EQ(std::to_string(processes * rounds), readFile(target));
}

TEST_F(FileLockTest, FollowsLinksToTheTarget) {
    fs::create_directory(directory.path() / "links");
    fs::create_symlink("../second", directory.path() / "links" / "first");
    fs::create_symlink("settings.xml", directory.path() / "second");
    const Holder holder(directory.file("links/first"));
    EXPECT_EQ(State::Busy, tryIt());
    EXPECT_THAT(filesIn(directory), ElementsAre("links", "second", "settings.xml.lock"));
}

TEST_F(FileLockTest, MakesItsFileAsTheMaskSays) {
    EXPECT_EQ(0, inOwnProcess([&] {
                  umask(027);
                  return tryIt() == State::Held ? 0 : 1;
              }));
    EXPECT_EQ(fs::perms(0640), fs::status(lockFile.toPath()).permissions());
}

TEST_F(FileLockTest, LetsAllLockWhoMayWriteTheTarget) {
    writeFile(directory.file("settings.xml"), "");
    fs::permissions(directory.path() / "settings.xml", fs::perms(0664));
    EXPECT_EQ(0, inOwnProcess([&] {
                  umask(077);
                  return tryIt() == State::Held ? 0 : 1;
              }));
    EXPECT_EQ(fs::perms(0664), fs::status(lockFile.toPath()).permissions());
}

TEST_F(FileLockTest, LetsTheTargetsGroupLockWhoeverMadeItsFile) {
    constexpr uid_t owner = 1000;
    constexpr uid_t maker = 1001;
    constexpr gid_t group = 2000;
    writeFile(target, "");
    const bool canBeOthers = geteuid() == 0;
    if (canBeOthers) {
        ASSERT_EQ(0, chown(target.toNativeString().c_str(), owner, group));
    }
    fs::permissions(target.toPath(), fs::perms(0664));
    fs::permissions(directory.path(), fs::perms(0777));
    EXPECT_EQ(0, inOwnProcess([&] {
                  umask(022);
                  const bool isOther = !canBeOthers || (setgroups(1, &group) == 0 &&
                                                        setgid(maker) == 0 && setuid(maker) == 0);
                  return isOther && tryIt() == State::Held ? 0 : 1;
              }));
    struct stat status{};
    struct stat ofTarget{};
    ASSERT_EQ(0, stat(lockFile.toNativeString().c_str(), &status));
    ASSERT_EQ(0, stat(target.toNativeString().c_str(), &ofTarget));
    EXPECT_EQ(ofTarget.st_gid, status.st_gid);
    EXPECT_EQ(fs::perms(0664), fs::status(lockFile.toPath()).permissions());
}

TEST_F(FileLockTest, IsHeldThoughItsFileCannotHaveAllRightsOfTheTarget) {
    writeFile(target, "");
    fs::permissions(target.toPath(), fs::perms(0666));
    fs::permissions(directory.path(), fs::perms(0777));
    EXPECT_EQ(0, asOrdinaryUser([&] { return tryIt() == State::Held ? 0 : 1; }));
    EXPECT_EQ("", readFile(lockFile));
    EXPECT_EQ(fs::perms(0666), fs::status(lockFile.toPath()).permissions());
}

TEST_F(FileLockTest, LeavesTheRightsOfItsFile) {
    writeFile(target, "");
    fs::permissions(target.toPath(), fs::perms(0664));
    writeFile(lockFile, "");
    fs::permissions(lockFile.toPath(), fs::perms(0600));
    EXPECT_EQ(State::Held, tryIt());
    EXPECT_EQ(fs::perms(0600), fs::status(lockFile.toPath()).permissions());
}

TEST_F(FileLockTest, LeavesTheBytesOfItsFile) {
    writeFile(lockFile, "a note");
    EXPECT_EQ(State::Held, tryIt());
    EXPECT_EQ("a note", readFile(lockFile));
}

TEST_F(FileLockTest, IsNotMadeThroughALink) {
    fs::create_symlink("elsewhere", lockFile.toPath());
    expectNotMade(std::errc::too_many_symbolic_link_levels);
    writeFile(directory.file("elsewhere"), "stays");
    expectNotMade(std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ("stays", readFile(directory.file("elsewhere")));
    EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "settings.xml.lock"));
}

TEST_F(FileLockTest, IsNotMadeOnAPipeOrADirectory) {
    ASSERT_EQ(0, mkfifo(lockFile.toNativeString().c_str(), 0600));
    expectNotMade(std::errc::not_supported);
    fs::remove(lockFile.toPath());
    fs::create_directory(lockFile.toPath());
    expectNotMade(std::errc::not_supported);
}

TEST_F(FileLockTest, IsNotMadeWhereThereIsNoDirectory) {
    target = directory.file("nowhere/settings.xml");
    expectNotMade(std::errc::no_such_file_or_directory);
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST_F(FileLockTest, IsNotMadeWhereThisProcessMayNotWrite) {
    fs::permissions(directory.path(), fs::perms(0755));
    const auto isRefused = [&] {
        const FileLock lock(target, 0ms);
        return lock.state() == State::NotMade && lock.error() == std::errc::permission_denied ? 0
                                                                                              : 1;
    };
    if (geteuid() != 0)
        fs::permissions(directory.path(), fs::perms(0555));
    EXPECT_EQ(0, asOrdinaryUser(isRefused)) << "into the directory";
    fs::permissions(directory.path(), fs::perms(0777));
    writeFile(lockFile, "");
    fs::permissions(lockFile.toPath(), fs::perms(0444));
    EXPECT_EQ(0, asOrdinaryUser(isRefused)) << "into the file";
}

TEST_F(FileLockTest, IsNotMadeWhereItsFileCannotBeOpened) {
    writeFile(lockFile, "");
    SystemCalls calls;
    calls.fail("open", EMFILE);
    expectNotMade(std::errc::too_many_files_open);
}

TEST_F(FileLockTest, IsInTheCurrentDirectory) {
    EXPECT_EQ(0, inOwnProcess([&] {
                  fs::current_path(directory.path());
                  const FileLock lock(FileName("settings.xml"), 0ms);
                  return lock.state() == State::Held && tryIt() == State::Busy ? 0 : 1;
              }));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml.lock"));
}

TEST_F(FileLockTest, HasANameThatAFileSystemCanHold) {
    EXPECT_THROW(FileLock(FileName(std::string("a\0b", 3)), 0ms), FileNameException);
}

} // namespace
} // namespace Orvant
