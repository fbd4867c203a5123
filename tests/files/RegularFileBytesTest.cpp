#include <ConfigurationFramework/files/OpenFile.h>
#include <ConfigurationFramework/files/RegularFile.h>

#include <SchemaTestSupport.h>
#include <files/SystemCalls.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Orvant {
namespace {

using namespace Support;

namespace fs = std::filesystem;

class RegularFileBytesTest : public testing::Test {
protected:
    static void expectFailure(const FileName& name, std::errc reason) {
        const FileBytes read = readBytes(name);
        EXPECT_FALSE(read.bytes);
        EXPECT_EQ(reason, read.error) << read.error.message();
        EXPECT_FALSE(readRegularFile(name));
        EXPECT_EQ(reason, checkRegularFile(name));
    }
    static void expectBytes(const FileName& name, const std::string& bytes) {
        const FileBytes read = readBytes(name);
        EXPECT_FALSE(read.error);
        EXPECT_EQ(bytes, read.bytes);
    }

    TemporaryDirectory directory;
    FileName file = directory.file("file");
};

TEST_F(RegularFileBytesTest, AreAllBytes) {
    for (const std::string& bytes :
         {std::string(), std::string("a\0\r\n\xFF", 5), std::string(1'000'000, 'x')}) {
        writeFile(file, bytes);
        expectBytes(file, bytes);
        EXPECT_EQ(bytes, readRegularFile(file));
        EXPECT_FALSE(checkRegularFile(file));
    }
}

TEST_F(RegularFileBytesTest, AreNoneOfWhatIsNoRegularFile) {
    expectFailure(file, std::errc::no_such_file_or_directory);
    expectFailure(FileName(), std::errc::no_such_file_or_directory);
    expectFailure(directory.file(std::string(300, 'x')), std::errc::filename_too_long);
    expectFailure(FileName(directory.path().string()), std::errc::is_a_directory);
    expectFailure(FileName("/dev/zero"), std::errc::not_supported);
    ASSERT_EQ(0, mkfifo(file.toNativeString().c_str(), 0600));
    expectFailure(file, std::errc::not_supported);
    EXPECT_THROW(readBytes(FileName(std::string("a\0b", 3))), FileNameException);
}

TEST_F(RegularFileBytesTest, AreNotMoreThanMemoryCanHold) {
    writeFile(file, "");
    fs::resize_file(file.toPath(), (std::uintmax_t{1} << 30U) + 1);
    expectFailure(file, std::errc::file_too_large);
}

TEST_F(RegularFileBytesTest, AreNotMoreThanAllowedWhenTheFileGrows) {
    writeFile(file, "12345");
    for (const std::size_t most : {4U, 5U, 9U, 10U}) {
        fs::resize_file(file.toPath(), 5);
        SystemCalls calls;
        calls.watch([&](const std::string& function) {
            if (function == "read")
                writeFile(file, "1234567890");
        });
        OpenFile in(file.toPath(), OpenFile::Purpose::Read);
        std::string bytes;
        const std::error_code error = in.readAll(bytes, most);
        if (most < 10)
            EXPECT_EQ(std::errc::file_too_large, error) << most;
        else
            EXPECT_EQ("1234567890", bytes);
    }
}

TEST_F(RegularFileBytesTest, AreThoseUntilTheEndWhateverTheSizeWas) {
    for (const std::string& later : {std::string(10'000, 'l'), std::string(), std::string("later")})
        for (const std::string& former : {std::string(), std::string(1000, 'f')}) {
            writeFile(file, former);
            SystemCalls calls;
            calls.watch([&](const std::string& function) {
                if (function == "read")
                    writeFile(file, later);
            });
            expectBytes(file, later);
        }
}

TEST_F(RegularFileBytesTest, ComeInPartsAndAfterInterruptions) {
    writeFile(file, "some bytes");
    SystemCalls calls;
    calls.doOnly(3).fail("read", EINTR, 2, 1).fail("open", EINTR, 2);
    expectBytes(file, "some bytes");
}

TEST_F(RegularFileBytesTest, AreNoneWhenTheyCannotAllBeRead) {
    writeFile(file, "some bytes");
    for (const int before : {0, 1, 4}) {
        SystemCalls calls;
        calls.doOnly(3).fail("read", EIO, SystemCalls::always, before);
        EXPECT_FALSE(readBytes(file).bytes);
    }
    SystemCalls calls;
    calls.fail("read", EIO);
    expectFailure(file, std::errc::io_error);
}

TEST_F(RegularFileBytesTest, ComeWithTheReasonOfTheCallThatFailed) {
    writeFile(file, "some bytes");
    SystemCalls calls;
    calls.fail("open", EMFILE, 1);
    const FileBytes read = readBytes(file);
    EXPECT_FALSE(read.bytes);
    EXPECT_EQ(std::errc::too_many_files_open, read.error);
    expectBytes(file, "some bytes");
}

TEST_F(RegularFileBytesTest, AreHeldWhenTheyAreTheSame) {
    constexpr std::size_t part = std::size_t{1} << 16U; // is compared at once
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, part - 1, part, part + 1,
                                   2 * part - 1, 2 * part, 3 * part + 7}) {
        std::string bytes;
        while (bytes.size() < size)
            bytes += static_cast<char>(bytes.size() % 251); // differs from part to part
        writeFile(file, bytes);
        EXPECT_TRUE(fileHolds(file, bytes)) << size;
        EXPECT_FALSE(fileHolds(file, bytes + 'x')) << size;
        for (const std::size_t position : {std::size_t{0}, part - 1, part, 2 * part, size - 1})
            if (position < size) {
                EXPECT_FALSE(fileHolds(file, bytes.substr(0, position))) << size << ' ' << position;
                std::string others = bytes;
                ++others[position];
                EXPECT_FALSE(fileHolds(file, others)) << size << ' ' << position;
            }
    }
}

TEST_F(RegularFileBytesTest, AreHeldWhenTheyComeInPartsAndAfterInterruptions) {
    writeFile(file, "some bytes");
    SystemCalls calls;
    calls.doOnly(3).fail("read", EINTR, 2, 1).fail("open", EINTR, 2);
    EXPECT_TRUE(fileHolds(file, "some bytes"));
    EXPECT_FALSE(fileHolds(file, "some byte"));
    EXPECT_FALSE(fileHolds(file, "some bytes more"));
}

TEST_F(RegularFileBytesTest, AreNotHeldByWhatIsNoRegularFile) {
    for (const std::string& bytes : {std::string(), std::string("x")}) {
        EXPECT_FALSE(fileHolds(file, bytes));
        EXPECT_FALSE(fileHolds(FileName(), bytes));
        EXPECT_FALSE(fileHolds(FileName(directory.path().string()), bytes));
        ASSERT_FALSE(fileHolds(FileName("/dev/null"), bytes));
    }
    ASSERT_EQ(0, mkfifo(file.toNativeString().c_str(), 0600));
    EXPECT_FALSE(fileHolds(file, ""));
    EXPECT_THROW(fileHolds(FileName(std::string("a\0b", 3)), ""), FileNameException);
}

TEST_F(RegularFileBytesTest, AreNotHeldWhenTheyCannotAllBeRead) {
    writeFile(file, "some bytes");
    for (const int before : {0, 1, 4}) { // the last to learn that no more follow
        SystemCalls calls;
        calls.doOnly(3).fail("read", EIO, SystemCalls::always, before);
        EXPECT_FALSE(fileHolds(file, "some bytes")) << before;
    }
    writeFile(file, "");
    for (const char* const function : {"open", "read"}) {
        SystemCalls calls;
        calls.fail(function, EACCES);
        EXPECT_FALSE(fileHolds(file, "")) << function;
    }
    EXPECT_TRUE(fileHolds(file, ""));
}

TEST_F(RegularFileBytesTest, AreNotHeldByAFileThatWasNotOpened) {
    OpenFile missing(file.toPath(), OpenFile::Purpose::Read);
    EXPECT_FALSE(missing.isOpen());
    EXPECT_FALSE(missing.holds(""));
}

} // namespace
} // namespace Orvant
