#include <ConfigurationFramework/files/NewFile.h>

#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <fcntl.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

class NewFileTest : public testing::Test {
protected:
    /// Expects that nothing can be made under a name.
    static void expectNotMade(const FileName& name, std::errc reason) {
        NewFile made(name);
        EXPECT_FALSE(made.isMade());
        EXPECT_EQ(reason, made.error());
        EXPECT_FALSE(made.write("bytes"));
        EXPECT_FALSE(made.finish());
        EXPECT_EQ(reason, made.error());
    }

    TemporaryDirectory directory;
    FileName file = directory.file("file");
};

TEST_F(NewFileTest, HoldsAllBytesWhenFinished) {
    const std::string large(1'000'000, 'x');
    NewFile made(file);
    EXPECT_TRUE(made.isMade());
    EXPECT_TRUE(made.write(""));
    EXPECT_TRUE(made.write(std::string("a\0\r\n", 4)));
    EXPECT_TRUE(made.write(large));
    EXPECT_TRUE(made.finish());
    EXPECT_FALSE(made.error());
    EXPECT_EQ(std::string("a\0\r\n", 4) + large, readFile(file));
}

TEST_F(NewFileTest, StaysWhenFinishedAndTakesNoMore) {
    {
        NewFile made(file);
        EXPECT_TRUE(made.finish());
        EXPECT_FALSE(made.isMade());
        EXPECT_FALSE(made.write("bytes"));
        EXPECT_FALSE(made.finish());
    }
    EXPECT_EQ("", readFile(file));
}

TEST_F(NewFileTest, GoesWhenNotFinished) {
    {
        NewFile made(file);
        made.write("bytes");
        EXPECT_THAT(filesIn(directory), ElementsAre("file"));
    }
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST_F(NewFileTest, IsNotMadeOverAnother) {
    writeFile(file, "stays");
    expectNotMade(file, std::errc::file_exists);
    EXPECT_EQ("stays", readFile(file));
    expectNotMade(FileName(directory.path().string()), std::errc::file_exists);
}

TEST_F(NewFileTest, IsNotMadeThroughALink) {
    const FileName pointedTo = directory.file("pointed to", "stays");
    fs::create_symlink("pointed to", directory.path() / "to file");
    fs::create_symlink("nothing", directory.path() / "to nothing");
    expectNotMade(directory.file("to file"), std::errc::file_exists);
    expectNotMade(directory.file("to nothing"), std::errc::file_exists);
    EXPECT_EQ("stays", readFile(pointedTo));
    EXPECT_THAT(filesIn(directory), ElementsAre("pointed to", "to file", "to nothing"));
}

TEST_F(NewFileTest, IsNotMadeWhereThereIsNoDirectory) {
    expectNotMade(directory.file("nowhere/file"), std::errc::no_such_file_or_directory);
}

TEST_F(NewFileTest, IsGoneWhenTheBytesDoNotFit) {
    for (const std::size_t size : {10U, 1'000'000U})
        EXPECT_EQ(0, inOwnProcess([&] {
                      bool isRight = true;
                      withLargestFile(size - 1, [&] {
                          NewFile made(file);
                          made.write(std::string(size, 'x'));
                          isRight = !made.finish() && made.error() == std::errc::file_too_large &&
                                    !fs::exists(file.toPath());
                      });
                      return isRight ? 0 : 1;
                  }));
}

TEST_F(NewFileTest, TellsTheFirstFailureAndWritesNoMoreAfterIt) {
    EXPECT_EQ(0, inOwnProcess([&] {
                  bool isRight = true;
                  NewFile made(file);
                  withLargestFile(9, [&] {
                      isRight = !made.write(std::string(1'000'000, 'x')) &&
                                made.error() == std::errc::file_too_large;
                  });
                  isRight = isRight && !made.write("y") && !made.finish() &&
                            made.error() == std::errc::file_too_large;
                  return isRight ? 0 : 1;
              }));
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST_F(NewFileTest, IsClosedInProgramsThatAreStarted) {
    const NewFile made(file);
    int found = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (fs::read_symlink(entry.path(), error) != file.toPath())
            continue;
        ++found;
        EXPECT_EQ(FD_CLOEXEC, fcntl(std::stoi(entry.path().filename().string()), F_GETFD));
    }
    EXPECT_EQ(1, found);
}

TEST_F(NewFileTest, HasANameThatAFileSystemCanHold) {
    EXPECT_THROW(NewFile(FileName(std::string("a\0b", 3))), FileNameException);
}

} // namespace
} // namespace Orvant
