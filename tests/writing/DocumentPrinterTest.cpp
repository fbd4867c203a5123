#include <ConfigurationFramework/ConfigWriter.h>

#include <EntitySupport.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

// Which documents are too deep to be written, or have too many comments in a row.

namespace Orvant {
namespace {

using Support::configuration;
using Support::document;
using Support::filesIn;
using Support::LogCapture;
using Support::nested;
using Support::readFile;
using Support::TemporaryDirectory;
using Support::withoutFormatting;
using testing::HasSubstr;

constexpr auto success = ConfigurationAccessResult::Success;

std::string entityOfDepth(std::size_t depth) {
    return configuration("&deep;", "<!ENTITY deep \"" + nested(depth, "<A>1</A>") + "\">");
}

TEST(DeepDocument, IsEditedAndWrittenWithItsDepthInAnEntity) {
    ConfigWriter writer(FileName(), entityOfDepth(3'998));
    auto reader = Support::openString(writer.getAsString());
    EXPECT_EQ(success, reader.tagExists("A"));
    EXPECT_EQ("", ConfigWriter(FileName(), entityOfDepth(3'999)).getAsString());
}

TEST(DeepDocument, IsWrittenToFourThousandElements) {
    ConfigWriter writer(FileName(), configuration(nested(3'998, "<A>1</A>")));
    auto reader = Support::openString(writer.getAsString());
    EXPECT_EQ(success, reader.tagExists("A"));
}

class TooDeepDocument : public testing::TestWithParam<std::size_t> {};

TEST_P(TooDeepDocument, IsNotWritten) {
    const TemporaryDirectory directory;
    const LogCapture log("ConfigWriter");
    const std::string document = configuration(nested(GetParam(), "<A>1</A>"));
    const FileName deep = directory.file("deep.xml", document);
    const FileName fresh = directory.file("fresh.xml");
    ConfigWriter writer(deep, "");
    writer.putInt("B", 2, "");
    EXPECT_EQ("", writer.getAsString());
    EXPECT_FALSE(writer.saveToFile(deep));
    EXPECT_FALSE(writer.saveToFile(fresh));
    EXPECT_TRUE(document == readFile(deep)) << "the file is as it was";
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "fresh.xml"));
    EXPECT_THAT(log.text(), HasSubstr("nested too deeply"));
}

INSTANTIATE_TEST_SUITE_P(Depths, TooDeepDocument, testing::Values(3'999, 100'000));

TEST(DeepDocument, IsNotWrittenWhereItWasBuiltSo) {
    const TemporaryDirectory directory;
    const LogCapture log("ConfigWriter");
    ConfigWriter writer("1.0");
    for (int i = 0; i < 3'900; ++i)
        writer.createNodeAndMakeCurrent("n", "");
    EXPECT_TRUE(writer.saveToFile(directory.file("settings.xml")));
    const std::string saved = readFile(directory.file("settings.xml"));
    for (int i = 0; i < 100; ++i)
        writer.createNodeAndMakeCurrent("n", "");
    EXPECT_FALSE(writer.saveToFile(directory.file("settings.xml")));
    EXPECT_TRUE(saved == readFile(directory.file("settings.xml")));
}

/// @return the document after it was loaded and written again
std::string rewritten(const std::string& text) {
    return ConfigWriter(FileName(), text).getAsString();
}

TEST(ConfigWriterOutput, MayBeNestedFourThousandElementsDeep) {
    const std::string text = rewritten(document(nested(3999, "t")));
    EXPECT_TRUE(text.find("<n>t</n>") != std::string::npos);
    EXPECT_TRUE(text == rewritten(text));
}

TEST(ConfigWriterOutput, LeavesTheFileAloneForADocumentNestedDeeper) {
    const TemporaryDirectory directory;
    const LogCapture log("ConfigWriter");
    const FileName file = directory.file("settings.xml", "former");

    ConfigWriter built("1.0");
    for (int level = 0; level < 4000; ++level)
        built.createNodeAndMakeCurrent("a", "");
    ConfigWriter loaded(FileName(), document(nested(4000, "t")));
    ConfigWriter loadedVeryDeep(FileName(), document(nested(20'000, "t")));
    std::string siblings;
    for (int i = 0; i < 20'000; ++i)
        siblings += "<b/>";
    // Not that deep, but so much of it deep that the indentation would take gigabytes.
    std::string deepAndWide = document(nested(3000, "t"));
    deepAndWide.insert(deepAndWide.find('t', deepAndWide.find("<n>")), siblings);
    ConfigWriter loadedWide(FileName(), deepAndWide);
    for (ConfigWriter* writer : {&built, &loaded, &loadedVeryDeep, &loadedWide}) {
        EXPECT_EQ("", writer->getAsString());
        EXPECT_FALSE(writer->saveToFile(file));
        EXPECT_FALSE(writer->saveToFile(directory.file("new.xml")));
    }
    EXPECT_EQ("former", readFile(file));
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("settings.xml"));
    EXPECT_THAT(log.text(), HasSubstr("too deep"));
}

std::string comments(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += "<!--" + std::to_string(i) + "-->";
    return text;
}

std::string instructions(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += "<?p?>";
    return text;
}

TEST(ConfigWriterOutput, MayHaveTenThousandCommentsInARow) {
    for (const std::string& content : {comments(10'000) + "<a/>", "<a/>" + comments(10'000),
                                       comments(7'000) + "<a/>" + comments(7'000)})
        EXPECT_EQ(document(content), withoutFormatting(rewritten(document(content))));
}

TEST(ConfigWriterOutput, LeavesTheFileAloneForMoreCommentsInARow) {
    const TemporaryDirectory directory;
    const LogCapture log("ConfigWriter");
    const FileName file = directory.file("settings.xml", "former");
    for (const std::string& content :
         {comments(10'001), "<a/>" + comments(10'001) + "<b/>", "<a>" + comments(50'000) + "</a>",
          comments(5'000) + "text<?pi?>" + comments(5'001) + "<a/>",
          // As many steps for the printer, made in other ways.
          comments(8'000) + "<a/>" + comments(8'000), comments(2'000) + instructions(50'000),
          "<a>" + comments(8'000) + "</a><a>" + comments(8'000) + "</a>"}) {
        ConfigWriter writer(FileName(), document(content));
        EXPECT_EQ("", writer.getAsString());
        EXPECT_FALSE(writer.saveToFile(file));
    }
    EXPECT_EQ("former", readFile(file));
    EXPECT_THAT(log.text(), HasSubstr("too many comments"));
}

} // namespace
} // namespace Orvant
