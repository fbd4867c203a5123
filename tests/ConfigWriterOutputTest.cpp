#include <ConfigurationFramework/ConfigWriter.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <FileSizeLimit.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Orvant {
namespace {

using Support::document;
using Support::filesIn;
using Support::FileSizeLimit;
using Support::LogCapture;
using Support::readFile;
using Support::TemporaryDirectory;
using Support::TestObject;
using Support::ThrowingObject;
using Support::withoutFormatting;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ValuesIn;

constexpr auto Success = ConfigurationAccessResult::Success;

std::string textOf(ConfigWriter& writer) {
    return withoutFormatting(writer.getAsString());
}

/// @return the document after it was loaded and written so many times
std::string reloaded(std::string text, int times = 1) {
    for (int time = 0; time < times; ++time)
        text = ConfigWriter(FileName(), text).getAsString();
    return text;
}

// Text

TEST(ConfigWriterOutput, BeginsWithTheStartTagOfTheRoot) {
    const std::string startTag = "<Configuration version=\"1.0\">";
    ConfigWriter fresh("1.0");
    fresh.createNode("a", "");
    EXPECT_THAT(fresh.getAsString(), StartsWith(startTag));
    for (const std::string prolog :
         {"", "\xEF\xBB\xBF", "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n",
          "<!DOCTYPE Configuration [<!ENTITY e \"x\">]>\n", "<!-- header -->\n<?pi?>\n"})
        EXPECT_THAT(reloaded(prolog + document("<a/>")), StartsWith(startTag)) << prolog;
}

TEST(ConfigWriterOutput, IsIndented) {
    ConfigWriter writer("1.0");
    writer.createNodeAndMakeCurrent("a", "");
    writer.putInt("b", 1, "");
    EXPECT_THAT(writer.getAsString(), HasSubstr("\n  <a>\n    <b>1</b>\n  </a>\n"));
}

TEST(ConfigWriterOutput, IsTheSameAgainUntilSomethingIsPut) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml");
    ConfigWriter writer("1.0");
    writer.putInt("a", 1, "");
    const std::string text = writer.getAsString();
    EXPECT_EQ(text, writer.getAsString());
    EXPECT_TRUE(writer.saveToFile(file));
    EXPECT_EQ(text, readFile(file));
    writer.putInt("a", 2, "");
    EXPECT_TRUE(writer.saveToFile(file));
    EXPECT_EQ(document("<a>2</a>"), withoutFormatting(readFile(file)));
}

TEST(ConfigWriterOutput, IsUtf8WhateverTheEncodingOfTheLoadedDocumentWas) {
    const std::string expected = document("<a>\xC3\xA4</a>");
    EXPECT_EQ(expected, withoutFormatting(reloaded("<?xml version=\"1.0\" "
                                                   "encoding=\"ISO-8859-1\"?>" +
                                                   document("<a>\xE4</a>"))));

    std::string utf16 = "\xFE\xFF";
    for (const char16_t unit : u"<Configuration version=\"1.0\"><a>\u00E4</a></Configuration>") {
        if (unit != 0)
            utf16 += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    }
    const TemporaryDirectory directory;
    ConfigWriter writer(directory.file("settings.xml", utf16), "");
    EXPECT_EQ(expected, textOf(writer));
}

struct Contents {
    std::string name;
    std::string contents;
};

void PrintTo(const Contents& contents, std::ostream* out) {
    *out << contents.contents;
}

const Contents contentsOfRoot[] = {
    {"Nothing", ""},
    {"Blanks", "\n\n  \n"},
    {"PrettyPrinted", "\n\n  <a>\n    <b>1</b>\n\n    <c>2</c>\n  </a>\n\n"},
    {"Comments", "\n  <!-- 1 -->\n  <a/>\n\n  <!-- 2 -->\n  <!-- 3 -->\n"},
    {"CommentsOfSeveralLines", "<!--\n  one\n    two\n--><a/>"},
    {"NothingButAComment", "\n  <!-- nothing set yet -->\n"},
    {"NothingButAnInstruction", "\n  <?pi data?>\n"},
    {"CommentAndInstruction", "\n  <!-- c -->\n  <?pi data?>\n"},
    {"CommentInAnEmptyElement", "<a>\n  <!-- c -->\n</a>"},
    {"InstructionInAnEmptyElement", "<a>\n  <?pi data?>\n</a>"},
    {"CommentInAValue", "<a>one<!-- c -->two</a><b>\n  <!-- c -->\n  three\n</b>"},
    {"MixedContent", "text\n  <a>x <b>y</b> z<c/>\n</a> t\n <d/>\n\n tail \n"},
    {"DeeplyNested", "<a>\n<b>\n<c>\n<d>\n<e>1</e>\n</d>\n</c>\n</b>\n</a>"},
    {"WhitespaceValues", "<a> </a><b>\n</b><c>\t\n  </c><d>  x  </d><e>\n  x\n</e>"},
    {"WhitespaceItems", "<a>\n  <item> </item>\n  <item>\n</item>\n</a>"},
    {"Instructions", "\n  <?one 1?>\n  <a>\n    <?two 2?>\n    <b/>\n  </a>\n"},
    {"InstructionBehindAText", "<a>text\n     <?pi data?>\n  </a>"},
    {"CData", "\n  <a><![CDATA[ <x> ]]></a>\n  <b>1<![CDATA[2]]>3</b>\n  <![CDATA[ 4 ]]>\n"},
    {"PreservedSpace", "<a xml:space=\"preserve\">\n  <b/>\n  </a>"},
};

class ConfigWriterRounds : public testing::TestWithParam<Contents> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterRounds, ValuesIn(contentsOfRoot), Support::nameOf<Contents>);

TEST_P(ConfigWriterRounds, DoNotMakeTheDocumentGrow) {
    // The second time, the printer's additions are there to be cleaned up.
    const std::string twice = reloaded(document(GetParam().contents), 2);
    EXPECT_EQ(twice, reloaded(twice, 48));
}

TEST_P(ConfigWriterRounds, DoNotMakeTheFileGrowWhileItIsEdited) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", document(GetParam().contents));
    std::string afterTwo;
    for (int time = 1; time <= 50; ++time) {
        ConfigWriter writer(file, "");
        writer.createNodeAndMakeCurrent("own", "comment");
        writer.putInt("value", 1, "another");
        ASSERT_TRUE(writer.saveToFile(file));
        if (time == 2)
            afterTwo = readFile(file);
    }
    EXPECT_EQ(afterTwo, readFile(file));
}

// What survives

const Contents survivingContents[] = {
    {"NestedElements", "<a><b><c x=\"1\"><d>2</d></c></b></a>"},
    {"Attributes", "<a editable=\"false\" key=\"k\" other=\"1 &lt; 2 &amp; &quot;\"/>"},
    {"Comments", "<!-- 1 --><a/><!-- 2 -->"},
    {"Instructions", "<?pi some data?><a/>"},
    {"CData", "<a><![CDATA[<b> & ]] >]]></a>"},
    {"MixedContent", "one<a>two<b>three</b>four</a>five"},
    {"Namespaces", "<p:a p:q=\"1\" xmlns:p=\"urn:p\"><b xmlns=\"urn:b\">x</b></p:a>"},
    {"UndeclaredPrefix", "<p:a p:q=\"1\">x</p:a>"},
    {"WhitespaceValue", "<a> </a><b>  x  </b>"},
    {"Unicode", "<Gr\xC3\xB6\xC3\x9F"
                "e>\xE2\x82\xAC \xF0\x9F\x99\x82</Gr\xC3\xB6\xC3\x9F"
                "e>"},
};

class ConfigWriterSurvival : public testing::TestWithParam<Contents> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterSurvival, ValuesIn(survivingContents),
                         Support::nameOf<Contents>);

TEST_P(ConfigWriterSurvival, OfWhatTheApplicationDoesNotOwn) {
    const TemporaryDirectory directory;
    const FileName file =
        directory.file("settings.xml", document("<foreign>" + GetParam().contents + "</foreign>"));
    for (int time = 0; time < 3; ++time) {
        ConfigWriter writer(file, "");
        writer.putInt("own", 1, "");
        ASSERT_TRUE(writer.saveToFile(file));
    }
    EXPECT_EQ(document("<foreign>" + GetParam().contents + "</foreign><own>1</own>"),
              withoutFormatting(readFile(file)));
}

TEST(ConfigWriterOutput, HoldsWhatTheEntitiesOfTheLoadedDocumentStoodFor) {
    const std::string text = "<!DOCTYPE Configuration [<!ENTITY name \"Anna\">"
                             "<!ENTITY greeting \"Hello <b>&name;</b>!\">]>" +
                             document("<a>&name;</a><c>1 &name; 2</c><d>&greeting;</d>"
                                      "<e f=\"&name;\"/>");
    const std::string written = document("<a>Anna</a><c>1 Anna 2</c><d>Hello<b>Anna</b>!</d>"
                                         "<e f=\"Anna\"/>");
    EXPECT_EQ(written, withoutFormatting(reloaded(text)));
    EXPECT_EQ(written, withoutFormatting(reloaded(text, 3)));
    const std::string onlyText =
        "<!DOCTYPE Configuration [<!ENTITY e \"x\">]>" + document("<a>1&e;2&e;&e;3</a>");
    std::string value;
    bool editable = true;
    SimpleConfigReader reader(FileName(), reloaded(onlyText, 2), {"1.0"});
    EXPECT_EQ(Success, reader.getString("a", value, editable));
    EXPECT_EQ("1x2xx3", value);
}

TEST(ConfigWriterOutput, HoldsTheAttributesThatTheDtdOfTheLoadedDocumentGave) {
    const std::string dtd = "<!DOCTYPE Configuration [<!ATTLIST Configuration version CDATA "
                            "\"1.0\"><!ATTLIST a editable CDATA \"false\">]>";
    const std::string written = document("<a editable=\"false\">1</a><a editable=\"true\">2</a>");
    for (const int times : {1, 3})
        EXPECT_EQ(written, withoutFormatting(reloaded(dtd + "<Configuration><a>1</a>"
                                                            "<a editable=\"true\">2</a>"
                                                            "</Configuration>",
                                                      times)));
}

TEST(ConfigWriterOutput, GivesNewElementsNoAttributesOfTheDtd) {
    const std::string dtd = "<!DOCTYPE Configuration [<!ATTLIST A editable CDATA 'false' key CDATA "
                            "'k' other CDATA 'o'><!ATTLIST item editable CDATA 'false'>]>";
    ConfigWriter writer(FileName(), dtd + document("<A/>"));
    writer.createKeyedNode("A", "k2", "");
    writer.createNode("B", "");
    writer.putStringVector("C", {"c"}, "");
    writer.putElement("A", "", [] {});
    EXPECT_EQ(document("<B/><C><item>c</item></C><A/>"), withoutFormatting(writer.getAsString()));
}

TEST(ConfigWriterOutput, FindsKeysOfTheDtdAmongManyElements) {
    const std::string dtd = "<!DOCTYPE Configuration [<!ATTLIST A key CDATA 'k'>]>";
    for (const std::size_t siblings :
         {std::size_t{1}, std::size_t{100}}) { // more than are searched one by one
        std::string others;
        for (std::size_t i = 0; i < siblings; ++i)
            others += "<B/>";
        ConfigWriter writer(FileName(), dtd + document("<A/>" + others));
        writer.deleteNodes("B", "");
        writer.createKeyedNode("A", "other", "");
        EXPECT_EQ(Success, writer.setCurrentKeyedNode("A", "k"));
        writer.putString("old");
        EXPECT_EQ(document("<A key=\"k\">old</A><A key=\"other\"/>"),
                  withoutFormatting(writer.getAsString()));
    }
}

TEST(ConfigWriterOutput, KeepsBlanksBetweenTextsAndReferences) {
    const std::string dtd = "<!DOCTYPE Configuration [<!ENTITY e \"E\"><!ENTITY b \" \">]>";
    for (const auto& [loaded, written] : std::initializer_list<std::pair<std::string, std::string>>{
             {"<a>&e; &e;</a>", "<a>E E</a>"},
             {"<a>x &e; y<c/></a>", "<a>x E y<c/></a>"},
             {"<a><c/>&e; &e;</a>", "<a><c/>E E</a>"},
             {"<a>&e; &e; <c/></a>", "<a>E E <c/></a>"},
             {"<a>&e;&b;&e;<c/></a>", "<a>E E<c/></a>"},
             {"<a> &e;<c/></a>", "<a> E<c/></a>"}}) {
        ConfigWriter writer(FileName(), dtd + document(loaded));
        writer.putInt("other", 1, "");
        const std::string text = writer.getAsString();
        std::string onOneLine;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') // with the indentation after it
                i = std::min(text.find_first_not_of(" \n", i), text.size()) - 1;
            else
                onOneLine += text[i];
        }
        EXPECT_THAT(onOneLine, HasSubstr(written)) << loaded;
    }
}

TEST(ConfigWriterOutput, CanBeReadWhenADocumentOfXml11WasLoaded) {
    const std::string text =
        "<?xml version=\"1.1\"?>" +
        document("<a>x&#x85;&#x7F;y</a><\xF0\x90\x80\x80>z</\xF0\x90\x80\x80>");
    EXPECT_EQ(document("<a>x\xC2\x85\x7Fy</a><\xF0\x90\x80\x80>z</\xF0\x90\x80\x80>"),
              withoutFormatting(reloaded(text, 3)));
}

TEST(ConfigWriterOutput, IsNoneWhereXml10CannotHoldWhatXml11Could) {
    const TemporaryDirectory directory;
    const LogCapture log("ConfigWriter");
    const std::string text = "<?xml version=\"1.1\"?>" + document("<a>x&#1;y</a>");
    const FileName file = directory.file("settings.xml", text);
    ConfigWriter writer(file, "");
    EXPECT_EQ("", writer.getAsString());
    EXPECT_FALSE(writer.saveToFile(file));
    EXPECT_EQ(text, readFile(file));
    EXPECT_THAT(log.text(), HasSubstr("cannot express"));
}

struct Text {
    std::string name;
    std::string text;
};

void PrintTo(const Text& text, std::ostream* out) {
    *out << testing::PrintToString(text.text);
}

const Text texts[] = {
    {"Empty", ""},
    {"Cr", "\r"},
    {"Lf", "\n"},
    {"CrLf", "\r\n"},
    {"Tab", "\t"},
    {"Blank", " "},
    {"Whitespace", " \t \r\n \n\r "},
    {"LeadingBlanks", "  text"},
    {"TrailingBlanks", "text  "},
    {"LeadingLineEnd", "\ntext"},
    {"TrailingLineEnds", "text\r\n\n"},
    {"Lines", "one\ntwo\rthree\r\nfour\tfive"},
    {"Indented", "\n    text\n  "},
    {"Umlauts", "\xC3\x84\xC3\xB6\xC3\xBC\xC3\x9F"},
    {"Emoji", "\xF0\x9F\x99\x82 \xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9"},
    {"Markup", "<a b=\"c\" d='e'>&amp;</a><!-- f --><?g?>"},
    {"EndOfCData", "]]>"},
    {"CData", "<![CDATA[x]]>"},
    {"Ampersands", "&&lt;&#10;&"},
    {"OtherLineEnds", "a\xC2\x85"
                      "b\xE2\x80\xA8"
                      "c\xE2\x80\xA9"
                      "d"},
    {"OtherBlanks", "\xC2\xA0\xE2\x80\x83\xEF\xBB\xBF"},
    {"Del", "\x7F"},
    {"Long", std::string(100'000, 'x') + "\r\n" + std::string(100'000, ' ')},
};

class ConfigWriterText : public testing::TestWithParam<Text> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterText, ValuesIn(texts), Support::nameOf<Text>);

TEST_P(ConfigWriterText, SurvivesSaveAndLoadExactly) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml");
    const std::string& text = GetParam().text;
    {
        ConfigWriter writer("1.0");
        writer.putString("value", text, "");
        writer.putStringVector("list", {text, "-", text}, "");
        writer.createKeyedNodeAndMakeCurrent("keyed", "k" + text, "");
        writer.putString("inner", text, "");
        writer.createNodeAndMakeCurrent("current", "");
        writer.putString(text);
        ASSERT_TRUE(writer.saveToFile(file));
    }
    for (int time = 0; time < 3; ++time) {
        SimpleConfigReader reader(file, "", {"1.0"});
        std::string value = "not read";
        std::vector<std::string> list;
        bool editable = true;
        std::map<std::string, bool> itemEditable;
        EXPECT_EQ(Success, reader.getString("value", value, editable));
        EXPECT_EQ(text, value);
        EXPECT_EQ(Success, reader.getStringVector("list", list, editable, itemEditable));
        EXPECT_EQ((std::vector<std::string>{text, "-", text}), list);
        ASSERT_EQ(Success, reader.setCurrentKeyedNode("keyed", "k" + text));
        for (const std::string name : {"inner", "current"}) {
            value = "not read";
            EXPECT_EQ(Success, reader.getString(name, value, editable));
            EXPECT_EQ(text, value);
        }
        ConfigWriter editor(file, "");
        editor.putInt("other", time, "");
        ASSERT_TRUE(editor.saveToFile(file));
    }
}

// File

TEST(ConfigWriterOutput, ReplacesTheFileAltogether) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", std::string(100'000, 'x'));
    ConfigWriter writer("1.0");
    EXPECT_TRUE(writer.saveToFile(file));
    EXPECT_EQ(writer.getAsString(), readFile(file));
}

TEST(ConfigWriterOutput, GoesThroughALinkToItsFile) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", "old");
    std::filesystem::create_symlink("settings.xml", directory.path() / "link");
    ConfigWriter writer("1.0");
    EXPECT_TRUE(writer.saveToFile(directory.file("link")));
    EXPECT_EQ(writer.getAsString(), readFile(file));
    EXPECT_TRUE(std::filesystem::is_symlink(directory.path() / "link"));
}

TEST(ConfigWriterOutput, CannotGoIntoADirectoryThatDoesNotExist) {
    const TemporaryDirectory directory;
    EXPECT_FALSE(ConfigWriter("1.0").saveToFile(directory.file("no/settings.xml")));
    EXPECT_THAT(filesIn(directory), testing::IsEmpty());
}

TEST(ConfigWriterOutput, CannotGoIntoADirectoryItself) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.path() / "sub");
    EXPECT_FALSE(ConfigWriter("1.0").saveToFile(directory.file("sub")));
    EXPECT_TRUE(std::filesystem::is_directory(directory.path() / "sub"));
}

TEST(ConfigWriterOutput, LeavesWhateverItCannotBeWrittenTo) {
    const TemporaryDirectory directory;
    const auto path = [&](const std::string& name) { return directory.path() / name; };
    std::filesystem::create_directory(path("directory"));
    std::filesystem::create_symlink("directory", path("link to directory"));
    std::filesystem::create_symlink("away/settings.xml", path("link to nowhere"));
    std::filesystem::create_symlink("link to nowhere", path("link to link"));
    std::filesystem::create_symlink("loop", path("loop"));
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path("socket").native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(0, bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    close(server);

    const auto before = filesIn(directory);
    ConfigWriter writer("1.0");
    for (const std::string& name : before) {
        EXPECT_FALSE(writer.saveToFile(directory.file(name))) << name;
        EXPECT_NE("", writer.getSaveProblem()) << name;
    }
    EXPECT_EQ(before, filesIn(directory));
    EXPECT_TRUE(writer.saveToFile(directory.file("settings.xml")));
    EXPECT_EQ("", writer.getSaveProblem());
}

TEST(ConfigWriterOutput, MakesTheFileThatALinkLeadsTo) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.path() / "sub");
    std::filesystem::create_symlink("sub/second", directory.path() / "first");
    std::filesystem::create_symlink("settings.xml", directory.path() / "sub" / "second");
    EXPECT_TRUE(ConfigWriter("1.0").saveToFile(directory.file("first")));
    EXPECT_TRUE(std::filesystem::is_regular_file(directory.path() / "sub" / "settings.xml"));
    EXPECT_TRUE(std::filesystem::is_symlink(directory.path() / "first"));
}

TEST(ConfigWriterOutput, CannotGoIntoAFileWithoutAUsableName) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", "old");
    ConfigWriter writer("1.0");
    EXPECT_FALSE(writer.saveToFile(FileName()));
    EXPECT_FALSE(writer.saveToFile(directory.file(std::string("settings.xml\0.xml", 17))));
    EXPECT_FALSE(writer.saveToFile(directory.file(std::string(5000, 'x'))));
    EXPECT_EQ("old", readFile(file));
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("settings.xml"));
}

TEST(ConfigWriterOutput, FailsOnAFullDevice) {
    EXPECT_FALSE(ConfigWriter("1.0").saveToFile(FileName("/dev/full")));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

class ConfigWriterInterrupted : public testing::Test {
protected:
    ConfigWriterInterrupted() { m_writer.putString("long", std::string(20'000, 'x'), ""); }

    /// @return the result of a save that fails after 8192 bytes
    bool save(const FileName& file) {
        const FileSizeLimit limit(8192);
        return m_writer.saveToFile(file);
    }

    const TemporaryDirectory m_directory;
    ConfigWriter m_writer{"1.0"};
};

TEST_F(ConfigWriterInterrupted, PutsTheFormerContentBack) {
    const std::string former =
        document("<a>\r\n</a>") + std::string("\0\xFF\r\n", 4) + std::string(5000, 'y');
    const FileName file = m_directory.file("settings.xml", former);
    EXPECT_FALSE(save(file));
    EXPECT_EQ(former, readFile(file));
    EXPECT_TRUE(m_writer.saveToFile(file));
    EXPECT_EQ(m_writer.getAsString(), readFile(file));
}

TEST_F(ConfigWriterInterrupted, KeepsAnEmptyFileEmpty) {
    const FileName file = m_directory.file("settings.xml", "");
    EXPECT_FALSE(save(file));
    EXPECT_EQ("", readFile(file));
}

TEST_F(ConfigWriterInterrupted, RemovesANewFile) {
    EXPECT_FALSE(save(m_directory.file("settings.xml")));
    EXPECT_THAT(filesIn(m_directory), testing::IsEmpty());
}

TEST_F(ConfigWriterInterrupted, RemovesANewFileAndNotTheLinkToIt) {
    std::filesystem::create_symlink("settings.xml", m_directory.path() / "link");
    EXPECT_FALSE(save(m_directory.file("link")));
    EXPECT_EQ(std::make_error_code(std::errc::file_too_large).message(), m_writer.getSaveProblem());
    EXPECT_THAT(filesIn(m_directory), testing::ElementsAre("link"));
}

// Objects

/// An object with a value of each kind of persistence and a child.
std::shared_ptr<TestObject> makeSettings() {
    return TestObject::make("Settings", [](TestObject& object) {
        object.add("a", 1).add("b", std::string("x"));
        object.addChild(
            TestObject::make("Child", [](TestObject& child) { child.add("c", 1.5); })->clone());
    });
}

const std::string settingsContents = "<a>1</a><b>x</b><Child><c>1.5</c></Child>";

TEST(ConfigWriterObjects, AreWrittenDirectlyBelowTheCurrentElement) {
    ConfigWriter writer("1.0");
    writer.createNodeAndMakeCurrent("here", "");
    writer.putClassContents(*makeSettings());
    EXPECT_EQ(document("<here>" + settingsContents + "</here>"), textOf(writer));
}

TEST(ConfigWriterObjects, ReplaceAllElementsOfTheirName) {
    ConfigWriter writer(FileName(), document("<!--old--><Name><old/></Name><x/>"
                                             "<Name key=\"k\"><old/></Name>"));
    writer.putClassContents("Name", *makeSettings(), "new");
    writer.putInt("after", 1, "");
    EXPECT_EQ(document("<x/><!--new--><Name>" + settingsContents + "</Name><after>1</after>"),
              textOf(writer));
}

TEST(ConfigWriterObjects, ReplaceTheElementOfTheirKey) {
    ConfigWriter writer(FileName(), document("<!--old--><Name key=\"k\"><old/></Name>"
                                             "<Name/><Name key=\"l\"/>"));
    writer.putClassContents("Name", "k", *makeSettings(), "new");
    writer.putInt("after", 1, "");
    EXPECT_EQ(document("<Name/><Name key=\"l\"/><!--new--><Name key=\"k\">" + settingsContents +
                       "</Name><after>1</after>"),
              textOf(writer));
}

TEST(ConfigWriterObjects, WriteNothingButTheirElementWhereTheyAreNotPersistent) {
    TestObject object("Name", TestObject::NotPersistent);
    object.add("a", 1);
    ConfigWriter writer("1.0");
    writer.putClassContents(object);
    writer.putClassContents("Name", object, "");
    EXPECT_EQ(document("<Name/>"), textOf(writer));
}

/// Writes the differences of settings with a changed "a" from a system configuration.
class ConfigWriterDifference : public testing::Test {
protected:
    ConfigWriterDifference() { setReference("<Settings>" + settingsContents + "</Settings>"); }
    void setReference(const std::string& contents) {
        ASSERT_EQ(Success,
                  m_reference.addStringSource(document(contents), {},
                                              AdvancedConfigReader::Priority::System, {"1.0"}));
    }
    static std::shared_ptr<TestObject> makeFlat() {
        return TestObject::make(
            "Settings", [](TestObject& object) { object.add("a", 1).add("b", std::string("x")); });
    }

    AdvancedConfigReader m_reference;
    const std::shared_ptr<TestObject> m_object = makeFlat();
    ConfigWriter m_writer{FileName(),
                          document("<!--1--><Name><a>5</a></Name><x/><!--2--><Name key=\"k\"><a>6"
                                   "</a></Name><!--3--><Name key=\"l\"/>")};
};

TEST_F(ConfigWriterDifference, HoldsOnlyWhatDiffers) {
    m_object->value<int>("a").setValue(2);
    m_writer.putOnlyDifferentClassContents("Name", *m_object, m_reference, "new");
    m_writer.putInt("after", 1, "");
    EXPECT_EQ(document("<x/><!--new--><Name><a>2</a></Name><after>1</after>"), textOf(m_writer));
}

TEST_F(ConfigWriterDifference, HoldsADefaultWhereTheReferenceDiffersFromIt) {
    setReference("<Settings><a>3</a></Settings>");
    m_writer.putOnlyDifferentClassContents("Name", *m_object, m_reference, "");
    EXPECT_EQ(document("<x/><Name><a>1</a></Name>"), textOf(m_writer));
}

TEST_F(ConfigWriterDifference, IsNoElementWhereNothingDiffers) {
    m_writer.putOnlyDifferentClassContents("Name", *m_object, m_reference, "new");
    m_writer.putInt("after", 1, "");
    EXPECT_EQ(document("<x/><after>1</after>"), textOf(m_writer));
}

TEST_F(ConfigWriterDifference, OfAKeyedObjectLeavesItsSiblingsAlone) {
    m_object->value<int>("a").setValue(2);
    m_writer.putOnlyDifferentClassContents("Name", "k", *m_object, m_reference, "new");
    m_writer.putInt("after", 1, "");
    EXPECT_EQ(document("<!--1--><Name><a>5</a></Name><x/><!--3--><Name key=\"l\"/><!--new-->"
                       "<Name key=\"k\"><a>2</a></Name><after>1</after>"),
              textOf(m_writer));
}

TEST_F(ConfigWriterDifference, OfAKeyedObjectIsNoElementWhereNothingDiffers) {
    m_writer.putOnlyDifferentClassContents("Name", "k", *m_object, m_reference, "new");
    m_writer.putInt("after", 1, "");
    EXPECT_EQ(document("<!--1--><Name><a>5</a></Name><x/><!--3--><Name key=\"l\"/>"
                       "<after>1</after>"),
              textOf(m_writer));
}

TEST_F(ConfigWriterDifference, OfAnEmptyKeyConcernsTheElementsWithoutOne) {
    m_writer.putOnlyDifferentClassContents("Name", "", *m_object, m_reference, "");
    EXPECT_EQ(document("<x/><!--2--><Name key=\"k\"><a>6</a></Name><!--3--><Name key=\"l\"/>"),
              textOf(m_writer));
    m_object->value<int>("a").setValue(2);
    m_writer.putOnlyDifferentClassContents("Name", "", *m_object, m_reference, "");
    EXPECT_EQ(document("<x/><!--2--><Name key=\"k\"><a>6</a></Name><!--3--><Name key=\"l\"/>"
                       "<Name key=\"\"><a>2</a></Name>"),
              textOf(m_writer));
}

TEST_F(ConfigWriterDifference, IsAnElementForEveryObjectWithChildren) {
    m_writer.putOnlyDifferentClassContents("Name", *makeSettings(), m_reference, "");
    EXPECT_EQ(document("<x/><Name/>"), textOf(m_writer));
}

TEST_F(ConfigWriterDifference, HoldsOnlyTheChildrenInWhichSomethingDiffers) {
    const auto object = makeSettings();
    object->child("Child").value<double>("c").setValue(2.5);
    m_writer.putOnlyDifferentClassContents("Name", *object, m_reference, "");
    EXPECT_EQ(document("<x/><Name><Child><c>2.5</c></Child></Name>"), textOf(m_writer));
}

/// What an object decides about saving itself.
class DecidingObject : public TestObject {
public:
    explicit DecidingObject(bool saved) : m_saved(saved) {}

    bool canBeSavedToUserConfig(ConfigReader& reader) const override {
        askedReader = &reader;
        return m_saved;
    }
    using TestObject::saveContent;
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        EXPECT_EQ(askedReader, &reader);
        EXPECT_TRUE(onlyDifferent);
        writer.putString("own", "idea", "");
    }

    mutable const ConfigReader* askedReader = nullptr;

private:
    bool m_saved;
};

TEST_F(ConfigWriterDifference, IsTheDecisionOfTheObject) {
    for (const bool saved : {false, true}) {
        const DecidingObject object(saved);
        ConfigWriter writer("1.0");
        writer.putOnlyDifferentClassContents("a", object, m_reference, "");
        writer.putOnlyDifferentClassContents("a", "k", object, m_reference, "");
        EXPECT_EQ(&m_reference, object.askedReader);
        EXPECT_EQ(saved ? document("<a><own>idea</own></a><a key=\"k\"><own>idea</own></a>")
                        : "<Configuration version=\"1.0\"/>",
                  textOf(writer));
    }
}

struct ObjectOperation {
    std::string name;
    std::function<void(ConfigWriter&, const ConfigurationObject&, ConfigReader&)> put;
};

void PrintTo(const ObjectOperation& operation, std::ostream* out) {
    *out << operation.name;
}

const ObjectOperation objectOperations[] = {
    {"Full", [](auto& writer, auto& object, auto&) { writer.putClassContents("o", object, ""); }},
    {"FullKeyed",
     [](auto& writer, auto& object, auto&) { writer.putClassContents("o", "k", object, ""); }},
    {"Difference",
     [](auto& writer, auto& object, auto& reader) {
         writer.putOnlyDifferentClassContents("o", object, reader, "");
     }},
    {"DifferenceKeyed",
     [](auto& writer, auto& object, auto& reader) {
         writer.putOnlyDifferentClassContents("o", "k", object, reader, "");
     }},
};

class ConfigWriterObjectOperation : public testing::TestWithParam<ObjectOperation> {
protected:
    /// Expects that the writer is still on the element "here" of the root.
    void expectBackAfter(const std::function<void()>& operation) {
        m_writer.createNodeAndMakeCurrent("here", "");
        operation();
        m_writer.putInt("after", 1, "");
        EXPECT_THAT(textOf(m_writer), testing::EndsWith("</o><after>1</after></here>"
                                                        "</Configuration>"));
    }

    ConfigWriter m_writer{"1.0"};
    AdvancedConfigReader m_reader;
};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterObjectOperation, ValuesIn(objectOperations),
                         Support::nameOf<ObjectOperation>);

TEST_P(ConfigWriterObjectOperation, ComesBackToTheCurrentElement) {
    const auto object = makeSettings();
    object->value<int>("a").setValue(2);
    expectBackAfter([&] { GetParam().put(m_writer, *object, m_reader); });
}

TEST_P(ConfigWriterObjectOperation, ComesBackWhenTheObjectThrows) {
    expectBackAfter([&] {
        EXPECT_THROW(GetParam().put(m_writer, ThrowingObject(), m_reader), std::runtime_error);
    });
}

TEST(ConfigWriterObjects, PassOnWhatTheyThrowInPlace) {
    ConfigWriter writer("1.0");
    EXPECT_THROW(writer.putClassContents(ThrowingObject()), std::runtime_error);
}

} // namespace
} // namespace Orvant
