#include <FileHandling/FileName.h>

#include <services/FileNames.h>

#include <gmock/gmock.h>

#include <type_traits>

namespace Orvant {
namespace {

using testing::StartsWith;

TEST(FileName, IsEmptyByDefault) {
    const FileName none;
    EXPECT_TRUE(none.empty());
    EXPECT_EQ("", none.toString());
    EXPECT_EQ("", none.toNativeString());
    EXPECT_EQ(none, FileName(""));
    EXPECT_FALSE(FileName("a").empty());
}

TEST(FileName, IsMadeFromTextOfEitherKind) {
    EXPECT_EQ(FileName("dir/file.xml"), FileName(std::string("dir/file.xml")));
    EXPECT_TRUE((std::is_convertible_v<const char*, FileName>));
    EXPECT_TRUE((std::is_convertible_v<std::string, FileName>));
}

TEST(FileName, GivesBackEveryNameAsItWas) {
    for (const std::string& name : Support::awkwardFileNames()) {
        const FileName file("dir/" + name);
        EXPECT_EQ("dir/" + name, file.toString());
        EXPECT_EQ(std::filesystem::path("dir/" + name).make_preferred().string(),
                  file.toNativeString());
        EXPECT_EQ(std::filesystem::path("dir/" + name), file.toPath());
    }
}

TEST(FileName, KnowsTheDirectoryOfAFile) {
    EXPECT_EQ("/home/anna", FileName("/home/anna/settings.xml").getLocation().toString());
    EXPECT_EQ("home", FileName("home/settings.xml").getLocation().toString());
    EXPECT_EQ("/", FileName("/settings.xml").getLocation().toString());
    EXPECT_TRUE(FileName("settings.xml").getLocation().empty());
    EXPECT_TRUE(FileName().getLocation().empty());
}

TEST(FileName, AppendsParts) {
    for (const std::string& name : Support::awkwardFileNames()) {
        FileName file("/home/anna");
        EXPECT_EQ(&file, &(file /= name));
        EXPECT_EQ("/home/anna/" + name, file.toString());
        EXPECT_EQ(FileName("/home/anna"), file.getLocation());
    }
}

TEST(FileName, PutsOneSeparatorBetweenParts) {
    FileName file("/home/");
    file /= "anna";
    file /= "settings.xml";
    EXPECT_EQ("/home/anna/settings.xml", file.toString());

    FileName startingEmpty;
    startingEmpty /= "settings.xml";
    EXPECT_EQ("settings.xml", startingEmpty.toString());
}

TEST(FileName, LeavesTheOriginalOfACopyAlone) {
    const FileName original("dir");
    FileName copy = original;
    copy /= "file";
    EXPECT_EQ("dir", original.toString());
    EXPECT_EQ("dir/file", copy.toString());
    EXPECT_NE(original, copy);
}

TEST(FileName, RefusesANulWhenUsedNotWhenMade) {
    FileName appended("dir");
    appended /= Support::nameWithNul();
    for (const FileName& file : {FileName(Support::nameWithNul()), appended}) {
        EXPECT_FALSE(file.empty());
        EXPECT_THAT(file.toString(), testing::EndsWith(Support::nameWithNul()));
        EXPECT_THROW(file.toNativeString(), FileNameException);
        EXPECT_THROW(file.toPath(), FileNameException);
    }
}

TEST(FileNameException, IsAnOvExceptionOfItsName) {
    const auto place = std::source_location::current();
    const FileNameException exception(place);
    const OvException& base = exception;
    EXPECT_THAT(base.what(), StartsWith("FileNameException thrown at"));
    EXPECT_EQ(place.line(), base.getLocation().line());
}

} // namespace
} // namespace Orvant
