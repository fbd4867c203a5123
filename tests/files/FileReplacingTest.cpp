#include <ConfigurationFramework/files/FileReplacing.h>

#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/socket.h>
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
                  return replaceFile(FileName("new"), "a").error ||
                         replaceFile(FileName("new"), "bytes").error;
              }));
    EXPECT_EQ("bytes", readFile(directory.file("new")));
    EXPECT_THAT(filesIn(directory), ElementsAre("new"));
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
        umask(077);
        EXPECT_FALSE(replaceFile(file, "new").error);
        umask(022);
        const struct stat after = statusOf(file);
        EXPECT_EQ(before.st_uid, after.st_uid);
        EXPECT_EQ(before.st_gid, after.st_gid);
        EXPECT_EQ(before.st_mode, after.st_mode);
    }
}

// Failures

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

} // namespace
} // namespace Orvant
