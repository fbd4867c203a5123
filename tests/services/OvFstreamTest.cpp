#include <FileHandling/OvFstream.h>

#include <TestSupport.h>
#include <services/FileNames.h>

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace Orvant {
namespace {

using Support::readFile;

constexpr auto writeAnew = std::ios::out | std::ios::trunc;

class OvFstreamTest : public testing::Test {
protected:
    Support::TemporaryDirectory directory;
};

std::string contentOf(OvIfstream& in) {
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST_F(OvFstreamTest, NumbersItsByteOrderMarks) {
    EXPECT_EQ(0u, OvOfstream::NoByteOrderMark);
    EXPECT_EQ(1u, OvOfstream::Utf8ByteOrderMark);
    EXPECT_EQ(4u, sizeof(OvOfstream::ByteOrderMark));
}

TEST_F(OvFstreamTest, WritesAndReadsBytesUnchanged) {
    const std::string bytes("Größe\r\n\t\0\xFF end", 16);
    const FileName file = directory.file("file");
    OvOfstream out(file, writeAnew | std::ios::binary);
    ASSERT_TRUE(out.is_open());
    out << bytes;
    out.close();
    EXPECT_EQ(bytes, readFile(file));

    OvIfstream in(file, std::ios::in | std::ios::binary);
    ASSERT_TRUE(in.is_open());
    EXPECT_EQ(bytes, contentOf(in));
}

TEST_F(OvFstreamTest, TruncatesOrAppendsAsTheModeSays) {
    const FileName file = directory.file("file", "a long old text");
    OvOfstream(file, writeAnew) << "new";
    EXPECT_EQ("new", readFile(file));
    OvOfstream(file, std::ios::out | std::ios::app) << "er";
    EXPECT_EQ("newer", readFile(file));
    OvOfstream{file};
    EXPECT_EQ("", readFile(file));
}

TEST_F(OvFstreamTest, WritesAByteOrderMarkOnlyWhenAsked) {
    const FileName file = directory.file("file");
    OvOfstream(file, writeAnew, OvOfstream::Utf8ByteOrderMark) << "text";
    EXPECT_EQ("\xEF\xBB\xBFtext", readFile(file));
    OvOfstream(file, writeAnew, OvOfstream::NoByteOrderMark) << "text";
    EXPECT_EQ("text", readFile(file));
    OvOfstream(file, writeAnew) << "text";
    EXPECT_EQ("text", readFile(file));
}

TEST_F(OvFstreamTest, IsNotOpenWhereThereIsNothingToOpen) {
    EXPECT_FALSE(OvIfstream(directory.file("missing")).is_open());
    EXPECT_FALSE(OvIfstream(FileName()).is_open());
    const FileName unreachable = directory.file("missing directory/file");
    for (const auto mark : {OvOfstream::NoByteOrderMark, OvOfstream::Utf8ByteOrderMark})
        EXPECT_FALSE(OvOfstream(unreachable, writeAnew, mark).is_open());
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(OvFstreamTest, OpensFilesOfEveryName) {
    for (const std::string& name : Support::awkwardFileNames()) {
        SCOPED_TRACE(name);
        const FileName file = directory.file(name);
        OvOfstream(file, writeAnew) << name;
        EXPECT_TRUE(std::filesystem::exists(directory.path() / name));
        OvIfstream in(file);
        EXPECT_EQ(name, contentOf(in));
    }
}

TEST_F(OvFstreamTest, RefusesANameWithANul) {
    const FileName bad = directory.file(Support::nameWithNul());
    EXPECT_THROW(OvIfstream{bad}, FileNameException);
    EXPECT_THROW(OvOfstream{bad}, FileNameException);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

} // namespace
} // namespace Orvant
