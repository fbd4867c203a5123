#include <ConfigurationFramework/files/FileSaving.h>

#include <ReaderSupport.h>
#include <SchemaTestSupport.h>
#include <files/SystemCalls.h>

#include <gmock/gmock.h>

#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

/// A save over bytes of another length, and what of it fails.
struct FailedSave : TestCase {
    std::size_t former; ///< how many bytes
    std::size_t bytes;
    const char* function;
    int times;
    int before;
};

class FileSavingTest : public testing::Test {
protected:
    TemporaryDirectory directory;
    FileName file = directory.file("settings.xml");
};

class FailedSavingInPlace : public FileSavingTest,
                            public testing::WithParamInterface<FailedSave> {};

TEST_P(FailedSavingInPlace, LeavesTheFormerBytes) {
    const FailedSave& save = GetParam();
    const std::string former(save.former, 'f');
    for (const int error : {EIO, ENOSPC, EDQUOT}) {
        writeFile(file, former);
        std::error_code answer;
        {
            SystemCalls calls;
            calls.fail(save.function, error, save.times, save.before).doOnly(100);
            answer = saveInPlace(file, std::string(save.bytes, 'n'));
        }
        EXPECT_EQ(std::error_code(error, std::generic_category()), answer);
        EXPECT_EQ(former, readFile(file));
    }
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

constexpr int always = SystemCalls::always;

INSTANTIATE_TEST_SUITE_P(
    , FailedSavingInPlace,
    testing::Values(FailedSave{"LongerNoWrite", 250, 500, "write", always, 0},
                    FailedSave{"ShorterNoWrite", 500, 250, "write", always, 0},
                    FailedSave{"EquallyLong", 250, 250, "write", always, 0},
                    FailedSave{"EmptyNoWrite", 0, 250, "write", always, 0},
                    FailedSave{"LongerFullDisk", 250, 500, "write", always, 1},
                    FailedSave{"EmptyFullDisk", 0, 250, "write", always, 2},
                    FailedSave{"LongerFrontOnce", 250, 500, "write", 1, 4},
                    FailedSave{"ShorterFrontOnce", 500, 250, "write", 1, 2},
                    FailedSave{"ShorterNotCut", 500, 250, "ftruncate", 1, 0},
                    FailedSave{"ShorterNeverCut", 500, 250, "ftruncate", always, 0},
                    FailedSave{"LongerNotClosed", 250, 500, "close", 1, 1},
                    FailedSave{"ShorterNeverClosed", 500, 250, "close", always, 1}),
    nameOf<FailedSave>);

TEST_F(FileSavingTest, WritesOverAFileOfAnyLength) {
    const auto number = [&] {
        struct stat status{};
        EXPECT_EQ(0, stat(file.toNativeString().c_str(), &status));
        return status.st_ino;
    };
    writeFile(file, "former");
    const ino_t former = number();
    for (const std::size_t size : {100U, 1'000'000U, 99U, 0U, 1U}) {
        std::string bytes(size, 'n');
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i % 251);
        EXPECT_FALSE(saveInPlace(file, bytes));
        EXPECT_EQ(bytes, readFile(file));
        EXPECT_EQ(former, number());
    }
    EXPECT_THAT(filesIn(directory), ElementsAre("settings.xml"));
}

TEST_F(FileSavingTest, GoesOnWhenItIsInterruptedOrDoesOnlyAPart) {
    for (const std::string former : {"", "former bytes that are long"})
        for (const std::string function : {"open", "read", "write", "ftruncate", "close"}) {
            writeFile(file, former);
            SystemCalls calls;
            calls.fail(function, EINTR, 3, 1).doOnly(2);
            EXPECT_FALSE(saveInPlace(file, "new bytes")) << function;
            EXPECT_EQ("new bytes", readFile(file));
        }
}

TEST_F(FileSavingTest, EndsWhenItIsInterruptedAllTheTime) {
    writeFile(file, "former");
    {
        SystemCalls calls;
        calls.fail("write", EINTR);
        EXPECT_EQ(std::errc::interrupted, saveInPlace(file, "new bytes"));
    }
    EXPECT_EQ("former", readFile(file));
}

TEST_F(FileSavingTest, EndsWhenNothingIsWritten) {
    SystemCalls calls;
    calls.doOnly(0);
    EXPECT_EQ(std::errc::io_error, saveInPlace(file, "new bytes"));
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST_F(FileSavingTest, DoesNotWaitForTheDisk) {
    SystemCalls calls;
    EXPECT_FALSE(saveInPlace(file, "new file"));
    EXPECT_FALSE(saveInPlace(file, "new bytes"));
    EXPECT_THAT(calls.made(), Contains("write"));
    EXPECT_THAT(calls.made(), Not(Contains("fsync")));
}

TEST_F(FileSavingTest, WritesWhatItCannotRead) {
    writeFile(file, "former");
    SystemCalls calls;
    calls.fail("read", EIO);
    EXPECT_FALSE(saveInPlace(file, "new"));
    EXPECT_EQ(3u, fs::file_size(file.toPath()));
}

TEST_F(FileSavingTest, WritesToATerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_LE(0, terminal);
    ASSERT_EQ(0, grantpt(terminal));
    ASSERT_EQ(0, unlockpt(terminal));
    EXPECT_FALSE(saveInPlace(FileName(ptsname(terminal)), "settings"));
    std::string shown(8, ' ');
    EXPECT_EQ(8, read(terminal, shown.data(), shown.size()));
    EXPECT_EQ("settings", shown);
    close(terminal);
}

TEST_F(FileSavingTest, TellsWhyAFileCannotBeMade) {
    EXPECT_EQ(std::errc::no_such_file_or_directory,
              saveInPlace(directory.file("nowhere/settings.xml"), "new"));
    fs::permissions(directory.path(), geteuid() == 0 ? fs::perms(0755) : fs::perms(0555));
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  return saveInPlace(file, "new") == std::errc::permission_denied ? 0 : 1;
              }));
}

} // namespace
} // namespace Orvant
