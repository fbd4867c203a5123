#include <FileHandling/FileUtilities.h>

#include <TestSupport.h>
#include <services/FileNames.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvant {
namespace {

using Support::readFile;

class FileUtilitiesTest : public testing::Test {
protected:
    /// A file in a directory that does not exist.
    FileName unreachable() const { return directory.file("missing directory/file"); }

    Support::TemporaryDirectory directory;
    const std::string bytes = std::string("\xEF\xBB\xBFline\r\n\0end", 14);
};

TEST_F(FileUtilitiesTest, SeesFilesAndDirectories) {
    const FileName file = directory.file("file", bytes);
    const FileName folder = directory.path().string();
    EXPECT_TRUE(FileUtilities::exists(file));
    EXPECT_TRUE(FileUtilities::exists(file, false));
    EXPECT_FALSE(FileUtilities::exists(file, true));
    EXPECT_TRUE(FileUtilities::exists(folder));
    EXPECT_TRUE(FileUtilities::exists(folder, true));
    for (const bool asDirectory : {false, true}) {
        EXPECT_FALSE(FileUtilities::exists(directory.file("missing"), asDirectory));
        EXPECT_FALSE(FileUtilities::exists(unreachable(), asDirectory));
        EXPECT_FALSE(FileUtilities::exists(FileName(), asDirectory));
    }
}

TEST_F(FileUtilitiesTest, FollowsLinks) {
    directory.file("file", bytes);
    std::filesystem::create_symlink("file", directory.path() / "link");
    std::filesystem::create_symlink(directory.path(), directory.path() / "folder link");
    std::filesystem::create_symlink("nowhere", directory.path() / "dangling");
    EXPECT_TRUE(FileUtilities::exists(directory.file("link")));
    EXPECT_TRUE(FileUtilities::exists(directory.file("folder link"), true));
    EXPECT_FALSE(FileUtilities::exists(directory.file("dangling")));
}

TEST_F(FileUtilitiesTest, RemovesAFileOnce) {
    const FileName file = directory.file("file", bytes);
    EXPECT_TRUE(FileUtilities::remove(file));
    EXPECT_FALSE(FileUtilities::exists(file));
    EXPECT_FALSE(FileUtilities::remove(file));
}

TEST_F(FileUtilitiesTest, DoesNotRemoveADirectoryThatIsInUse) {
    std::filesystem::create_directory(directory.path() / "folder");
    const FileName inside = directory.file("folder/file", bytes);
    EXPECT_FALSE(FileUtilities::remove(inside.getLocation()));
    EXPECT_EQ(bytes, readFile(inside));
}

TEST_F(FileUtilitiesTest, CopiesBytesToANewFileAndOverAnOldOne) {
    const FileName source = directory.file("source", bytes);
    for (const FileName& target :
         {directory.file("new"), directory.file("old", std::string(100, 'x'))}) {
        EXPECT_TRUE(FileUtilities::copyFile(source, target));
        EXPECT_EQ(bytes, readFile(target));
        EXPECT_EQ(bytes, readFile(source));
    }
}

TEST_F(FileUtilitiesTest, ReportsACopyThatCannotBe) {
    const FileName source = directory.file("source", bytes);
    const FileName target = directory.file("target", "old");
    EXPECT_FALSE(FileUtilities::copyFile(directory.file("missing"), target));
    EXPECT_EQ("old", readFile(target));
    EXPECT_FALSE(FileUtilities::copyFile(directory.path().string(), target));
    EXPECT_EQ("old", readFile(target));
    EXPECT_FALSE(FileUtilities::copyFile(source, unreachable()));
    EXPECT_FALSE(FileUtilities::exists(unreachable()));
}

TEST_F(FileUtilitiesTest, KeepsAFileThatIsCopiedOntoItself) {
    const FileName file = directory.file("file", bytes);
    FileUtilities::copyFile(file, file);
    EXPECT_EQ(bytes, readFile(file));
}

TEST_F(FileUtilitiesTest, ReplacesANewAndAnOldFile) {
    for (const FileName& target :
         {directory.file("new"), directory.file("old", std::string(100, 'x'))}) {
        const FileName source = directory.file("source", bytes);
        EXPECT_TRUE(FileUtilities::replaceFile(source, target));
        EXPECT_EQ(bytes, readFile(target));
        EXPECT_FALSE(FileUtilities::exists(source));
    }
}

TEST_F(FileUtilitiesTest, ReportsAReplacementThatCannotBe) {
    const FileName source = directory.file("source", bytes);
    const FileName target = directory.file("target", "old");
    EXPECT_FALSE(FileUtilities::replaceFile(directory.file("missing"), target));
    EXPECT_EQ("old", readFile(target));
    EXPECT_FALSE(FileUtilities::replaceFile(source, unreachable()));
    EXPECT_EQ(bytes, readFile(source));
}

TEST_F(FileUtilitiesTest, WorksWithEveryName) {
    for (const std::string& name : Support::awkwardFileNames()) {
        SCOPED_TRACE(name);
        const FileName file = directory.file(name, bytes);
        // The file system has the name letter by letter, not in some escaped form.
        EXPECT_TRUE(std::filesystem::exists(directory.path() / name));
        EXPECT_TRUE(FileUtilities::exists(file));

        const FileName copy = directory.file("copy of " + name);
        EXPECT_TRUE(FileUtilities::copyFile(file, copy));
        EXPECT_TRUE(std::filesystem::exists(directory.path() / ("copy of " + name)));
        EXPECT_EQ(bytes, readFile(copy));

        Support::writeFile(copy, "newer");
        EXPECT_TRUE(FileUtilities::replaceFile(copy, file));
        EXPECT_FALSE(FileUtilities::exists(copy));
        EXPECT_EQ("newer", readFile(file));

        EXPECT_TRUE(FileUtilities::remove(file));
        EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
    }
}

TEST_F(FileUtilitiesTest, RefusesANameWithANul) {
    const FileName file = directory.file("file", bytes);
    const FileName bad = directory.file(Support::nameWithNul());
    EXPECT_THROW(FileUtilities::exists(bad), FileNameException);
    EXPECT_THROW(FileUtilities::exists(bad, true), FileNameException);
    EXPECT_THROW(FileUtilities::remove(bad), FileNameException);
    for (const auto operation : {&FileUtilities::copyFile, &FileUtilities::replaceFile}) {
        EXPECT_THROW(operation(bad, file), FileNameException);
        EXPECT_THROW(operation(file, bad), FileNameException);
    }
    EXPECT_EQ(bytes, readFile(file));
    // Nothing was cut off at the NUL and taken for another file.
    EXPECT_FALSE(FileUtilities::exists(directory.file("before")));
}

} // namespace
} // namespace Orvant
