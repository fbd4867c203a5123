#include <ConfigurationFramework/files/FileReplacing.h>

#include <SchemaTestSupport.h>
#include <files/SystemCalls.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace fs = std::filesystem;

struct stat statusOf(const FileName& file) {
    struct stat status{};
    EXPECT_EQ(0, lstat(file.toNativeString().c_str(), &status)) << file.toString();
    return status;
}

/// Lets a user read and write, and keeps the group out.
const std::string accessList("\2\0\0\0"
                             "\1\0\6\0\xFF\xFF\xFF\xFF"
                             "\2\0\6\0\x39\x30\0\0"
                             "\4\0\0\0\xFF\xFF\xFF\xFF"
                             "\x10\0\6\0\xFF\xFF\xFF\xFF"
                             "\x20\0\0\0\xFF\xFF\xFF\xFF",
                             44);

/// @return false where the file system has no access lists
bool setAccessList(const FileName& file, const std::string& list,
                   const char* kind = "system.posix_acl_access") {
    return setxattr(file.toNativeString().c_str(), kind, list.data(), list.size(), 0) == 0;
}

/// @return nothing where the mode is all there is
std::string accessListOf(const FileName& file) {
    std::string list(1000, ' ');
    const ssize_t size = getxattr(file.toNativeString().c_str(), "system.posix_acl_access",
                                  list.data(), list.size());
    list.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return list;
}

class FileReplacingTest : public testing::Test {
protected:
    static void expectReplaced(const FileName& target, const std::string& bytes) {
        // While this one is open, its number is not given to another file.
        const int former = open(target.toNativeString().c_str(), O_PATH);
        const ino_t number = statusOf(target).st_ino;
        const FileSave save = replaceFile(target, bytes);
        EXPECT_FALSE(save.error) << save.error.message();
        EXPECT_FALSE(save.inPlace);
        EXPECT_EQ(bytes, readFile(target));
        EXPECT_NE(number, statusOf(target).st_ino);
        close(former);
    }
    static void expectWrittenInPlace(const FileName& target, const std::string& bytes) {
        const ino_t number = statusOf(target).st_ino;
        const FileSave save = replaceFile(target, bytes);
        EXPECT_FALSE(save.error) << save.error.message();
        EXPECT_TRUE(save.inPlace);
        EXPECT_EQ(bytes, readFile(target));
        EXPECT_EQ(number, statusOf(target).st_ino);
    }
    static void expectFailure(const FileName& target, std::errc reason) {
        const FileSave save = replaceFile(target, "new");
        EXPECT_EQ(reason, save.error) << save.error.message();
        EXPECT_FALSE(save.inPlace);
    }

    void makeOldLeftover() const {
        const FileName name = directory.file(".settings.xml.0123456789abcdef.new", "left");
        fs::last_write_time(name.toPath(),
                            fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    /// @return the names of the files that are about to take a place
    std::vector<std::string> newFiles() const {
        std::vector<std::string> names;
        for (const std::string& name : filesIn(directory))
            if (name.starts_with('.'))
                names.push_back(name);
        return names;
    }
    /// Saves a file some times.
    /// @return the different names of the new files
    std::set<std::string> namesOfNewFiles(const std::string& name, int times) const {
        std::set<std::string> names;
        SystemCalls calls;
        calls.watch([&](const std::string&) {
            for (const std::string& made : newFiles())
                names.insert(made);
        });
        for (int time = 0; time < times; ++time)
            EXPECT_FALSE(replaceFile(directory.file(name), "new").error);
        EXPECT_LE(1u, names.size());
        return names;
    }

    TemporaryDirectory directory;
    FileName file = directory.file("settings.xml");
};

TEST_F(FileReplacingTest, MakesAFile) {
    const std::string bytes = std::string("a\0\r\n", 4) + std::string(1'000'000, 'x');
    EXPECT_FALSE(replaceFile(file, bytes).error);
    EXPECT_EQ(bytes, readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, PutsANewFileInThePlaceOfTheOldOne) {
    writeFile(file, "old bytes");
    const int former = open(file.toNativeString().c_str(), O_RDONLY);
    for (const std::string bytes : {"new", "", "new and longer bytes"})
        expectReplaced(file, bytes);
    std::string bytes(100, 'x');
    bytes.resize(static_cast<std::size_t>(read(former, bytes.data(), bytes.size())));
    EXPECT_EQ("old bytes", bytes) << "who has the old file open";
    close(former);
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, MakesAFileInTheCurrentDirectory) {
    EXPECT_EQ(0, inOwnProcess([&] {
                  fs::current_path(directory.path());
                  makeOldLeftover();
                  SystemCalls calls;
                  if (replaceFile(FileName("settings.xml"), "bytes").error)
                      return 1;
                  return std::ranges::count(calls.made(), "fsync") == 2 ? 0 : 2;
              }));
    EXPECT_EQ("bytes", readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, MakesAFileAsTheMaskSays) {
    EXPECT_EQ(0, inOwnProcess([&] {
                  umask(027);
                  return replaceFile(file, "bytes").error ? 1 : 0;
              }));
    EXPECT_EQ(0100640u, statusOf(file).st_mode);
}

TEST_F(FileReplacingTest, ReplacesWhatALinkLeadsTo) {
    fs::create_directory(directory.path() / "links");
    fs::create_symlink("../second", directory.path() / "links" / "first");
    fs::create_symlink("settings.xml", directory.path() / "second");
    const FileName link = directory.file("links/first");
    EXPECT_FALSE(replaceFile(link, "dangling").error);
    EXPECT_EQ("dangling", readFile(file));
    const ino_t number = statusOf(file).st_ino;
    const int former = open(file.toNativeString().c_str(), O_PATH);
    EXPECT_FALSE(replaceFile(link, "new").error);
    EXPECT_EQ("new", readFile(file));
    EXPECT_NE(number, statusOf(file).st_ino);
    close(former);
    EXPECT_TRUE(fs::is_symlink(link.toPath()));
    EXPECT_TRUE(fs::is_symlink(directory.path() / "second"));
    EXPECT_THAT(filesIn(directory), ElementsAre("links", "second", "settings.xml"));
}

// Rights

TEST_F(FileReplacingTest, KeepsOwnerGroupAndMode) {
    writeFile(file, "old");
    const bool maySetOwner = geteuid() == 0;
    ASSERT_EQ(0, chown(file.toNativeString().c_str(), maySetOwner ? 12U : geteuid(),
                       maySetOwner ? 34U : getegid()));
    for (const mode_t mode : {0600U, 0644U, 0666U, 0200U, 0640U, 06755U, 01777U}) {
        ASSERT_EQ(0, chmod(file.toNativeString().c_str(), mode));
        const struct stat before = statusOf(file);
        const mode_t mask = umask(077);
        const FileSave save = replaceFile(file, "new");
        EXPECT_FALSE(save.error);
        EXPECT_FALSE(save.inPlace);
        umask(mask);
        const struct stat after = statusOf(file);
        EXPECT_EQ(before.st_uid, after.st_uid);
        EXPECT_EQ(before.st_gid, after.st_gid);
        EXPECT_EQ(before.st_mode, after.st_mode);
    }
}

TEST_F(FileReplacingTest, KeepsTheAccessList) {
    writeFile(file, "old");
    fs::permissions(file.toPath(), fs::perms(0660));
    const bool hasList = setAccessList(file, accessList);
    const struct stat before = statusOf(file);
    EXPECT_FALSE(replaceFile(file, "new").inPlace);
    EXPECT_EQ("new", readFile(file));
    EXPECT_EQ(before.st_mode, statusOf(file).st_mode);
    EXPECT_EQ(hasList ? accessList : "", accessListOf(file));
}

TEST_F(FileReplacingTest, TakesNoAccessListFromTheDirectory) {
    writeFile(file, "old");
    fs::permissions(file.toPath(), fs::perms(0640));
    const FileName place(directory.path().string());
    const bool hasList = setAccessList(place, accessList, "system.posix_acl_default");
    expectReplaced(file, "new");
    EXPECT_EQ("", accessListOf(file));
    EXPECT_EQ(0100640u, statusOf(file).st_mode);
    EXPECT_FALSE(replaceFile(directory.file("other"), "new").error);
    EXPECT_EQ(hasList, !accessListOf(directory.file("other")).empty()) << "as any new file";
}

TEST_F(FileReplacingTest, IsNeverMoreReadableThanTheOldFile) {
    writeFile(file, "old");
    const auto isOpener = [&](const struct stat& before, const FileName& made) {
        const mode_t bits = statusOf(made).st_mode & 07777U;
        // The bits of a group are those of the access list once there is one.
        const bool isList = accessListOf(made) == accessListOf(file);
        return (bits & ~before.st_mode) != 0 || (!isList && (bits & 0070U) != 0);
    };
    for (const bool withList : {false, true})
        for (const mode_t mode : {0000U, 0200U, 0400U, 0600U, 0640U, 0664U}) {
            ASSERT_EQ(0, chmod(file.toNativeString().c_str(), mode));
            if (withList)
                setAccessList(file, accessList);
            const struct stat before = statusOf(file);
            std::size_t seen = 0;
            SystemCalls calls;
            calls.watch([&](const std::string& function) {
                for (const std::string& name : newFiles()) {
                    ++seen;
                    EXPECT_FALSE(isOpener(before, directory.file(name)))
                        << function << ' ' << mode << ' ' << withList;
                }
            });
            // Only root may write whatever the mode is.
            const FileSave save = replaceFile(file, "new");
            EXPECT_EQ(!save.error, seen > 4);
        }
}

TEST_F(FileReplacingTest, WritesInPlaceWhereTheOwnerCannotBeKept) {
    fs::permissions(directory.path(), fs::perms(0777));
    writeFile(file, "old");
    fs::permissions(file.toPath(), fs::perms(0666));
    const bool isOfRoot = geteuid() == 0;
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  const FileSave save = replaceFile(file, "new");
                  return !save.error && save.inPlace == isOfRoot ? 0 : 1;
              }));
    EXPECT_EQ("new", readFile(file));
    EXPECT_EQ(geteuid(), statusOf(file).st_uid);
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, WritesInPlaceWhereTheRightsCannotBeGiven) {
    writeFile(file, "old");
    ASSERT_EQ(0, chmod(file.toNativeString().c_str(), 0640));
    for (const std::string function : {"fchmod", "fremovexattr"}) {
        SystemCalls calls;
        calls.fail(function, EPERM);
        expectWrittenInPlace(file, "new " + function);
    }
    {
        SystemCalls calls;
        calls.fail("fchmod", 0);
        expectWrittenInPlace(file, "new in vain");
    }
    if (setAccessList(file, accessList)) {
        SystemCalls calls;
        calls.fail("fsetxattr", EOPNOTSUPP);
        expectWrittenInPlace(file, "new");
    }
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, NeedsNoAccessLists) {
    writeFile(file, "old");
    SystemCalls calls;
    calls.fail("fremovexattr", EOPNOTSUPP);
    expectReplaced(file, "new");
}

// In place

TEST_F(FileReplacingTest, WritesAFileOfSeveralNamesInPlace) {
    writeFile(file, "old");
    fs::create_hard_link(file.toPath(), directory.path() / "other name");
    expectWrittenInPlace(file, "new");
    EXPECT_EQ("new", readFile(directory.file("other name")));
    EXPECT_THAT(filesIn(directory), ElementsAre("other name", "settings.xml"));
}

TEST_F(FileReplacingTest, WritesInPlaceWhereTheDirectoryTakesNoFiles) {
    writeFile(file, "old");
    fs::permissions(file.toPath(), fs::perms(0666));
    fs::permissions(directory.path(), geteuid() == 0 ? fs::perms(0755) : fs::perms(0555));
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  const FileSave save = replaceFile(file, "new");
                  return !save.error && save.inPlace ? 0 : 1;
              }));
    EXPECT_EQ("new", readFile(file));
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  const FileSave save = replaceFile(directory.file("other"), "new");
                  return save.error == std::errc::permission_denied && !save.inPlace ? 0 : 1;
              }));
    fs::permissions(directory.path(), fs::perms(0755));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, WritesInPlaceWhereTheSystemRefusesANewFile) {
    writeFile(file, "old");
    for (const int error : {EACCES, EPERM, EROFS, ENAMETOOLONG}) {
        SystemCalls calls;
        calls.fail("open", error, 1);
        expectWrittenInPlace(file, "not made " + std::to_string(error));
    }
    for (const int error : {EACCES, EPERM, EBUSY, EXDEV}) {
        SystemCalls calls;
        calls.fail("rename", error);
        expectWrittenInPlace(file, "not renamed " + std::to_string(error));
    }
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, DoesNotSayInPlaceWhenThatFailsToo) {
    writeFile(file, "old");
    {
        SystemCalls calls;
        calls.fail("rename", EBUSY).fail("write", EIO, SystemCalls::always, 1);
        expectFailure(file, std::errc::io_error);
    }
    EXPECT_EQ("old", readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

// Failures

TEST_F(FileReplacingTest, LeavesAFileThatThisProcessMayNotWrite) {
    fs::permissions(directory.path(), fs::perms(0777));
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  // One of its own, which it could replace.
                  writeFile(file, "old");
                  fs::permissions(file.toPath(), fs::perms(0444));
                  const FileSave save = replaceFile(file, "new");
                  return save.error == std::errc::permission_denied && !save.inPlace ? 0 : 1;
              }));
    EXPECT_EQ("old", readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, LeavesWhatIsNoRegularFile) {
    fs::create_directory(directory.path() / "directory");
    fs::create_symlink("loop", directory.path() / "loop");
    ASSERT_EQ(0, mkfifo((directory.path() / "pipe").c_str(), 0600));
    expectFailure(directory.file("directory"), std::errc::is_a_directory);
    expectFailure(directory.file("loop"), std::errc::too_many_symbolic_link_levels);
    expectFailure(directory.file("pipe"), std::errc::no_such_device_or_address);
    expectFailure(FileName("/dev/full"), std::errc::no_space_on_device);
    EXPECT_TRUE(fs::exists("/dev/full"));
    EXPECT_THAT(filesIn(directory), ElementsAre("directory", "loop", "pipe"));
}

TEST_F(FileReplacingTest, LeavesWhatItCannotLookAt) {
    writeFile(file, "old");
    {
        SystemCalls calls;
        calls.fail("stat", EIO);
        expectFailure(file, std::errc::io_error);
    }
    EXPECT_EQ("old", readFile(file));
}

TEST_F(FileReplacingTest, NeedsAUsableName) {
    expectFailure(FileName(), std::errc::no_such_file_or_directory);
    expectFailure(directory.file("nowhere/settings.xml"), std::errc::no_such_file_or_directory);
    expectFailure(directory.file(std::string(256, 'x')), std::errc::filename_too_long);
    EXPECT_THROW(replaceFile(FileName(std::string("a\0b", 3)), ""), FileNameException);
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST_F(FileReplacingTest, LeavesTheOldFileWhenTheDiskIsFull) {
    for (const bool exists : {false, true}) {
        if (exists)
            writeFile(file, "old");
        EXPECT_EQ(0, inOwnProcess([&] {
                      bool isRight = false;
                      withLargestFile(8192, [&] {
                          const FileSave save = replaceFile(file, std::string(20'000, 'x'));
                          isRight = save.error == std::errc::file_too_large && !save.inPlace;
                      });
                      return isRight ? 0 : 1;
                  }));
        EXPECT_THAT(filesIn(directory), testing::SizeIs(exists ? 1 : 0));
    }
    EXPECT_EQ("old", readFile(file));
}

TEST_F(FileReplacingTest, LeavesTheOldFileWhateverFails) {
    for (const bool exists : {false, true})
        for (const std::string function : {"open", "write", "fsync", "close", "rename"})
            for (const int error : {EIO, ENOSPC, EDQUOT, EMFILE}) {
                if (exists)
                    writeFile(file, "old");
                {
                    SystemCalls calls;
                    calls.fail(function, error, 1).doOnly(2);
                    const FileSave save = replaceFile(file, "new bytes");
                    EXPECT_EQ(std::error_code(error, std::generic_category()), save.error)
                        << function;
                    EXPECT_FALSE(save.inPlace);
                }
                EXPECT_THAT(filesIn(directory), testing::SizeIs(exists ? 1 : 0)) << function;
            }
    EXPECT_EQ("old", readFile(file));
}

TEST_F(FileReplacingTest, DoesNotWriteInPlaceWhatTheDiskDoesNotTake) {
    writeFile(file, "old");
    for (const std::string function : {"write", "fsync"})
        for (const int error : {EACCES, EPERM}) {
            SystemCalls calls;
            calls.fail(function, error, 1);
            expectFailure(file, static_cast<std::errc>(error));
        }
    EXPECT_EQ("old", readFile(file));
}

TEST_F(FileReplacingTest, GoesOnWhenItIsInterruptedOrDoesOnlyAPart) {
    for (const std::string function : {"open", "write", "fsync", "close"}) {
        SystemCalls calls;
        calls.fail(function, EINTR, 3).doOnly(2);
        EXPECT_FALSE(replaceFile(file, "bytes of " + function).error);
        EXPECT_EQ("bytes of " + function, readFile(file));
    }
}

TEST_F(FileReplacingTest, EndsWhenItIsInterruptedAllTheTime) {
    writeFile(file, "old");
    for (const std::string function : {"open", "write", "fsync"}) {
        SystemCalls calls;
        calls.fail(function, EINTR);
        expectFailure(file, std::errc::interrupted);
    }
    EXPECT_EQ("old", readFile(file));
}

// Crashes

TEST_F(FileReplacingTest, IsOnTheDiskBeforeItTakesThePlaceOfTheOldFile) {
    SystemCalls calls;
    EXPECT_FALSE(replaceFile(file, "new").error);
    auto made = calls.made();
    std::erase(made, "stat");
    EXPECT_THAT(made,
                ElementsAre("open", "write", "fsync", "close", "rename", "open", "fsync", "close"));
}

TEST_F(FileReplacingTest, IsTheNewFileEvenIfItsDirectoryIsNotOnTheDisk) {
    for (const std::string function : {"open", "fsync", "close"}) {
        writeFile(file, "old");
        SystemCalls calls;
        calls.fail(function, EIO, SystemCalls::always, 1);
        const FileSave save = replaceFile(file, "new");
        EXPECT_FALSE(save.error) << save.error.message();
        EXPECT_FALSE(save.inPlace);
        EXPECT_EQ("new", readFile(file));
    }
}

TEST_F(FileReplacingTest, LeavesAWholeFileWheneverItIsKilled) {
    const std::string former(10'000, 'f');
    const std::string bytes(20'000, 'n');
    std::size_t callsBefore = 0;
    for (int killed = 1; killed == 1; ++callsBefore) {
        // Each that is left would be looked at.
        for (const std::string& name : newFiles())
            fs::remove(directory.path() / name);
        writeFile(file, former);
        killed = inOwnProcess([&] {
            SystemCalls calls;
            calls.doOnly(5000).watch([&](const std::string&) {
                if (calls.made().size() == callsBefore)
                    _exit(1);
            });
            return replaceFile(file, bytes).error ? 2 : 0;
        });
        const std::string found = readFile(file);
        EXPECT_TRUE(found == bytes || (found == former && killed == 1)) << callsBefore;
    }
    EXPECT_LT(10u, callsBefore);
    EXPECT_FALSE(replaceFile(file, "later").error);
    EXPECT_EQ("later", readFile(file));
}

// The new file's name

TEST_F(FileReplacingTest, IsMadeUnderAHiddenNameThatNobodyCanForesee) {
    EXPECT_EQ(10u, namesOfNewFiles("settings.xml", 10).size());
    for (const std::string& name : namesOfNewFiles("settings.xml", 1))
        EXPECT_THAT(name, MatchesRegex("\\.settings\\.xml\\.[0-9a-f]{16}\\.new"));
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileReplacingTest, IsMadeUnderANameThatIsNotTooLong) {
    const auto expectStart = [&](const std::string& name, const std::string& start) {
        for (const std::string& made : namesOfNewFiles(name, 1)) {
            EXPECT_GE(255u, made.size());
            EXPECT_EQ('.' + start + '.', made.substr(0, start.size() + 2));
            EXPECT_EQ(start.size() + 22, made.size());
        }
        EXPECT_EQ("new", readFile(directory.file(name)));
    };
    expectStart(std::string(233, 'x'), std::string(233, 'x'));
    expectStart(std::string(234, 'x'), std::string(233, 'x'));
    expectStart(std::string(255, 'x'), std::string(233, 'x'));
    // No part of a character is left.
    const std::string wide = "\u20AC";
    expectStart(std::string(231, 'x') + wide, std::string(231, 'x'));
    expectStart(std::string(232, 'x') + wide + wide, std::string(232, 'x'));
    expectStart(std::string(230, 'x') + wide + wide, std::string(230, 'x') + wide);
}

TEST_F(FileReplacingTest, RemovesWhatOthersLeftOfTheSameTarget) {
    const std::string leftover = ".settings.xml.0123456789abcdef.new";
    const std::vector<std::string> others = {
        ".other.xml.0123456789abcdef.new",    ".settings.xml.0123456789abcdeF.new",
        ".settings.xml.0123456789abcde.new",  ".settings.xml.0123456789abcdef.old",
        "xsettings.xml.0123456789abcdef.new", ".settings.xml.0123456789abcdef0.new"};
    const auto makeOld = [&](const std::string& name, std::chrono::seconds age) {
        fs::last_write_time(directory.file(name, "").toPath(),
                            fs::file_time_type::clock::now() - age);
    };
    for (const std::string& name : others)
        makeOld(name, std::chrono::hours(1000));
    makeOld(leftover, std::chrono::minutes(9));
    EXPECT_FALSE(replaceFile(file, "new").error);
    EXPECT_THAT(filesIn(directory), testing::Contains(leftover)) << "it may be in use";
    makeOld(leftover, std::chrono::minutes(11));
    EXPECT_FALSE(replaceFile(file, "newer").error);
    EXPECT_THAT(filesIn(directory), testing::Not(testing::Contains(leftover)));
    EXPECT_EQ(others.size() + 1, filesIn(directory).size());
}

TEST_F(FileReplacingTest, RemovesLeftoversBeforeItNeedsTheirRoom) {
    makeOldLeftover();
    SystemCalls calls;
    calls.fail("write", ENOSPC);
    expectFailure(file, std::errc::no_space_on_device);
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

} // namespace
} // namespace Orvant
