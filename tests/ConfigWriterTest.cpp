#include <ConfigurationFramework/ConfigWriter.h>

#include <ConfigurationFramework/ConfigException.h>

#include <GlobalLocale.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <optional>
#include <type_traits>

#include <xercesc/dom/DOMException.hpp>

namespace Orvant {
namespace {

using Support::document;
using Support::LogCapture;
using Support::TemporaryDirectory;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::ValuesIn;

constexpr auto Success = ConfigurationAccessResult::Success;
constexpr auto Failure = ConfigurationAccessResult::Failure;
const std::string replacement = "\xEF\xBF\xBD"; // U+FFFD

std::string textOf(ConfigWriter& writer) {
    return Support::withoutFormatting(writer.getAsString());
}

/// A writer over a document that holds the contents.
class LoadedWriter : public ConfigWriter {
public:
    explicit LoadedWriter(const std::string& contents)
        : ConfigWriter(FileName(), document(contents)) {}
};

/// @return the type of the exception that opening the document throws; none when it succeeds
std::optional<ConfigException::ExceptionType> failureOf(const FileName& file,
                                                        const std::string& content) {
    try {
        ConfigWriter writer(file, content);
    } catch (ConfigException& e) {
        EXPECT_THAT(e.getLocation().file_name(), HasSubstr("ConfigWriterImpl"));
        return e.getType();
    }
    return std::nullopt;
}

// Construction

TEST(ConfigWriter, StartsADocumentWithNothingButARoot) {
    ConfigWriter writer("1.0");
    EXPECT_EQ("<Configuration version=\"1.0\"/>", textOf(writer));
}

TEST(ConfigWriter, TakesTheVersionAsItStands) {
    ConfigWriter empty("");
    EXPECT_EQ("<Configuration version=\"\"/>", textOf(empty));
    ConfigWriter odd(" not <a> number & \"so\" on ");
    EXPECT_EQ("<Configuration version=\" not &lt;a> number &amp; &quot;so&quot; on \"/>",
              textOf(odd));
}

TEST(ConfigWriter, CannotBeCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<ConfigWriter>);
    EXPECT_FALSE(std::is_copy_assignable_v<ConfigWriter>);
}

TEST(ConfigWriter, NeedsAFileOrAContent) {
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf(FileName(), ""));
}

TEST(ConfigWriter, ParsesTheContentWhereThereIsNoFile) {
    EXPECT_EQ(std::nullopt, failureOf(FileName(), document("")));
    LoadedWriter writer("<a>1</a>");
    EXPECT_EQ(document("<a>1</a>"), textOf(writer));
}

TEST(ConfigWriter, PrefersTheFileToTheContent) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", document("<fromFile/>"));
    for (const std::string& content : {document("<fromContent/>"), std::string("not a document")}) {
        ConfigWriter writer(file, content);
        EXPECT_EQ(document("<fromFile/>"), textOf(writer));
    }
    EXPECT_EQ(ConfigException::InvalidDocument,
              failureOf(directory.file("missing.xml"), document("")));
}

TEST(ConfigWriter, ParsesTheContentUpToItsFirstNul) {
    ConfigWriter writer(FileName(), document("<a/>") + '\0' + "<rest>");
    EXPECT_EQ(document("<a/>"), textOf(writer));
    EXPECT_EQ(ConfigException::InvalidDocument,
              failureOf(FileName(), "<Configuration>" + std::string(1, '\0') + "</Configuration>"));
}

TEST(ConfigWriter, NeitherChecksNorChangesTheVersionOfALoadedDocument) {
    for (const std::string root :
         {"<Configuration version=\"no such version\"/>", "<Configuration/>"}) {
        ConfigWriter writer(FileName(), root);
        EXPECT_EQ(root, textOf(writer));
    }
}

TEST(ConfigWriter, OpensFilesWhateverTheyAreCalled) {
    const TemporaryDirectory directory;
    for (const std::string name : {"with blank", "50%25.xml", "a#b?c.xml",
                                   "Gr\xC3\xB6\xC3\x9F"
                                   "e \xF0\x9F\x99\x82.xml"}) {
        const FileName file = directory.file(name, document("<a/>"));
        EXPECT_EQ(std::nullopt, failureOf(file, "")) << name;
        ConfigWriter writer(file, "");
        EXPECT_TRUE(writer.saveToFile(file)) << name;
    }
}

TEST(ConfigWriter, ReadsNothingButTheDocument) {
    const TemporaryDirectory directory;
    const std::string secret = directory.file("secret", "top secret").toString();
    ConfigWriter writer(FileName(), "<!DOCTYPE Configuration [<!ENTITY e SYSTEM \"" + secret +
                                        "\">]>" + document("<a>x&e;y</a>"));
    EXPECT_THAT(textOf(writer), Not(HasSubstr("secret")));
}

struct BrokenDocument {
    std::string name;
    std::string text;
};

const BrokenDocument brokenDocuments[] = {
    {"NoXml", "settings"},
    {"Blank", " \n"},
    {"HalfWritten", "<Configuration version=\"1.0\"><a>1</a><b>"},
    {"HalfWrittenTag", "<Configuration version=\"1.0\"><a>1</a><b"},
    {"HalfWrittenEndTag", "<Configuration version=\"1.0\"><a>1</a></Configura"},
    {"WrongNesting", "<Configuration><a><b></a></b></Configuration>"},
    {"TwoRoots", "<Configuration/><Configuration/>"},
    {"TrailingText", "<Configuration/>x"},
    {"TwiceTheAttribute", "<Configuration version=\"1\" version=\"2\"/>"},
    {"UndeclaredEntity", "<Configuration>&unknown;</Configuration>"},
    {"InvalidUtf8", "<Configuration>\xFF\xFE</Configuration>"},
    {"ControlCharacter", "<Configuration>\x01</Configuration>"},
    {"OtherRoot", "<Settings version=\"1.0\"/>"},
    {"LowerCaseRoot", "<configuration version=\"1.0\"/>"},
    {"PrefixedRoot", "<c:Configuration xmlns:c=\"urn:c\" version=\"1.0\"/>"},
    {"RootBelowAnother", "<Settings><Configuration version=\"1.0\"/></Settings>"},
    {"UnknownVersionOfXml", "<?xml version='1.2'?><Configuration/>"},
    {"DocumentTypeWithTwoColons", "<!DOCTYPE a:b:c><Configuration/>"},
    {"EntityBomb",
     "<!DOCTYPE Configuration [<!ENTITY a \"x\">"
     "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
     "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
     "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
     "<Configuration>&d;</Configuration>"},
};

class ConfigWriterBrokenDocument : public testing::TestWithParam<BrokenDocument> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterBrokenDocument, ValuesIn(brokenDocuments),
                         Support::nameOf<BrokenDocument>);

TEST_P(ConfigWriterBrokenDocument, IsRefusedAsContentAndAsFile) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("settings.xml", GetParam().text);
    EXPECT_EQ(ConfigException::InvalidDocument, failureOf(FileName(), GetParam().text));
    EXPECT_EQ(ConfigException::InvalidDocument, failureOf(file, ""));
    EXPECT_EQ(GetParam().text, Support::readFile(file));
}

struct UnreadableFile {
    std::string name;
    std::function<FileName(const TemporaryDirectory&)> make;
};

const UnreadableFile unreadableFiles[] = {
    {"Missing", [](const auto& directory) { return directory.file("settings.xml"); }},
    {"InMissingDirectory", [](const auto& directory) { return directory.file("no/settings.xml"); }},
    {"BelowAFile",
     [](const auto& directory) {
         directory.file("file", "");
         return directory.file("file/settings.xml");
     }},
    {"Empty", [](const auto& directory) { return directory.file("settings.xml", ""); }},
    {"Directory", [](const auto& directory) { return FileName(directory.path().string()); }},
    {"Device", [](const auto&) { return FileName("/dev/zero"); }},
    {"DanglingLink",
     [](const auto& directory) {
         std::filesystem::create_symlink("nowhere", directory.path() / "link");
         return directory.file("link");
     }},
    {"LinkToItself",
     [](const auto& directory) {
         std::filesystem::create_symlink("link", directory.path() / "link");
         return directory.file("link");
     }},
    {"NulInName",
     [](const auto& directory) {
         directory.file("settings.xml", document(""));
         return directory.file(std::string("settings.xml\0.xml", 17));
     }},
    {"NameTooLong", [](const auto& directory) { return directory.file(std::string(5000, 'x')); }},
};

class ConfigWriterUnreadableFile : public testing::TestWithParam<UnreadableFile> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterUnreadableFile, ValuesIn(unreadableFiles),
                         Support::nameOf<UnreadableFile>);

TEST_P(ConfigWriterUnreadableFile, IsRefusedAsInvalidDocument) {
    const TemporaryDirectory directory;
    EXPECT_EQ(ConfigException::InvalidDocument, failureOf(GetParam().make(directory), ""));
}

// Structure

TEST(ConfigWriter, CreatesAnEmptyElementAsLastChildWithoutMovingToIt) {
    LoadedWriter writer("<x/>");
    writer.createNode("a", "");
    writer.createNode("b", "about b");
    EXPECT_EQ(document("<x/><a/><!--about b--><b/>"), textOf(writer));
}

TEST(ConfigWriter, ReplacesAllElementsOfTheNameByACreatedOne) {
    LoadedWriter writer("<a>1</a><a key=\"k\">2</a><!--third--><a>3</a><b/>");
    writer.createNode("a", "");
    EXPECT_EQ(document("<b/><a/>"), textOf(writer));
}

TEST(ConfigWriter, KeepsElementsOfSeveralKeysSideBySide) {
    ConfigWriter writer("1.0");
    for (const std::string key : {"k1", "k2", "k1"})
        writer.createKeyedNode("a", key, "");
    EXPECT_EQ(document("<a key=\"k2\"/><a key=\"k1\"/>"), textOf(writer));
}

TEST(ConfigWriter, ReplacesOnlyTheElementOfTheSameKey) {
    LoadedWriter writer("<a key=\"k1\">1</a><!--second--><a key=\"k2\">2</a><a>3</a>");
    writer.createKeyedNode("a", "k1", "new");
    EXPECT_EQ(document("<!--second--><a key=\"k2\">2</a><a>3</a><!--new--><a key=\"k1\"/>"),
              textOf(writer));
    writer.createKeyedNode("a", "k2", "");
    EXPECT_EQ(document("<a>3</a><!--new--><a key=\"k1\"/><a key=\"k2\"/>"), textOf(writer));
}

TEST(ConfigWriter, TakesAnEmptyKeyForTheElementsWithoutOne) {
    LoadedWriter writer("<a key=\"k\">1</a><a>2</a><a key=\"\">3</a>");
    writer.createKeyedNode("a", "", "");
    EXPECT_EQ(document("<a key=\"k\">1</a><a key=\"\"/>"), textOf(writer));
}

TEST(ConfigWriter, MovesToACreatedElementWhenAsked) {
    ConfigWriter writer("1.0");
    writer.createNodeAndMakeCurrent("a", "1st");
    writer.createKeyedNodeAndMakeCurrent("b", "k", "2nd");
    writer.putInt("c", 1, "");
    EXPECT_EQ(document("<!--1st--><a><!--2nd--><b key=\"k\"><c>1</c></b></a>"), textOf(writer));
}

TEST(ConfigWriter, MovesToTheCreatedOneAmongKeyedSiblings) {
    LoadedWriter writer("<a key=\"k1\"/><a key=\"k2\"/><a/>");
    writer.createKeyedNodeAndMakeCurrent("a", "k3", "");
    writer.putInt("c", 1, "");
    EXPECT_EQ(document("<a key=\"k1\"/><a key=\"k2\"/><a/><a key=\"k3\"><c>1</c></a>"),
              textOf(writer));
}

TEST(ConfigWriter, MovesToTheFirstChildOfAName) {
    LoadedWriter writer("<outer><a/></outer><a key=\"k\"/><a/>");
    EXPECT_EQ(Success, writer.setCurrentNode("a"));
    writer.putString("here");
    EXPECT_EQ(document("<outer><a/></outer><a key=\"k\">here</a><a/>"), textOf(writer));
}

TEST(ConfigWriter, StaysWhereNoChildHasTheName) {
    LoadedWriter writer("<outer><a/></outer>");
    for (const std::string name : {"a", "Outer", "Configuration", "", "*", "no name"})
        EXPECT_EQ(Failure, writer.setCurrentNode(name)) << name;
    writer.createNode("here", "");
    EXPECT_EQ(document("<outer><a/></outer><here/>"), textOf(writer));
}

TEST(ConfigWriter, MovesToTheFirstChildOfANameAndKey) {
    LoadedWriter writer("<outer><a key=\"k\"/></outer><a/><b key=\"k\"/><a key=\"k\"/>"
                        "<a key=\"k\">2</a>");
    EXPECT_EQ(Success, writer.setCurrentKeyedNode("a", "k"));
    writer.putString("here");
    EXPECT_EQ(document("<outer><a key=\"k\"/></outer><a/><b key=\"k\"/><a key=\"k\">here</a>"
                       "<a key=\"k\">2</a>"),
              textOf(writer));
}

TEST(ConfigWriter, MovesToAnElementWithoutKeyForAnEmptyKey) {
    LoadedWriter writer("<a key=\"k\"/><a/>");
    EXPECT_EQ(Success, writer.setCurrentKeyedNode("a", ""));
    writer.putString("here");
    EXPECT_EQ(document("<a key=\"k\"/><a>here</a>"), textOf(writer));
}

TEST(ConfigWriter, StaysWhereNoChildHasTheKey) {
    LoadedWriter writer("<a/><a key=\"\"/><a key=\"k\"/>");
    for (const std::string key : {"K", "k ", "other"})
        EXPECT_EQ(Failure, writer.setCurrentKeyedNode("a", key)) << key;
    EXPECT_EQ(Failure, writer.setCurrentKeyedNode("b", "k"));
    EXPECT_EQ(Failure, writer.setCurrentKeyedNode("b", ""));
    writer.createNode("here", "");
    EXPECT_EQ(document("<a/><a key=\"\"/><a key=\"k\"/><here/>"), textOf(writer));
}

struct Deletion {
    std::string name;
    std::string before;
    std::string element;
    std::string key;
    std::string after;
};

const Deletion deletions[] = {
    {"AllOfTheName", "<a/><b/><a key=\"k\"/><a/>", "a", "", "<b/>"},
    {"SeveralInARow", "<a/><a/><a/><a/>", "a", "", ""},
    {"OnlyTheKeyed", "<a/><a key=\"k\"/><a key=\"l\"/><a key=\"k\"/>", "a", "k",
     "<a/><a key=\"l\"/>"},
    {"KeyOfAnotherName", "<a key=\"k\"/><b key=\"k\"/>", "b", "k", "<a key=\"k\"/>"},
    {"NothingOfTheName", "<b/>", "a", "", "<b/>"},
    {"NothingOfTheKey", "<a/><a key=\"l\"/>", "a", "k", "<a/><a key=\"l\"/>"},
    {"NothingOfAnInvalidName", "<b/>", "no name", "", "<b/>"},
    {"CommentOfTheElement", "<!--a--><a/><!--b--><b/>", "a", "", "<!--b--><b/>"},
    {"CommentOfEachElement", "<!--1--><a/><!--2--><a/>", "a", "", ""},
    {"CommentOnALineOfItsOwn", "\n  <!--a-->\n  <a/>\n  <!--b-->\n  <b/>\n", "a", "",
     "<!--b--><b/>"},
    {"NotACommentBeforeAnotherElement", "<!--b--><b/><a/>", "a", "", "<!--b--><b/>"},
    {"NotACommentBehind", "<a/><!--b-->", "a", "", "<!--b-->"},
    {"OnlyTheLastOfTwoComments", "<!--1--><!--2--><a/>", "a", "", "<!--1-->"},
    {"NotACommentBeforeAnInstruction", "<!--1--><?p i?><a/>", "a", "", "<!--1--><?p i?>"},
    {"NotTheCommentOfAnotherKey", "<!--l--><a key=\"l\"/><!--k--><a key=\"k\"/>", "a", "k",
     "<!--l--><a key=\"l\"/>"},
    {"TextWhateverTheName", "1<b/>2<c>kept</c>3", "a", "", "<b/><c>kept</c>"},
    {"TextAroundTheElement", "1<a/>2", "a", "", ""},
    {"NoOtherKindOfNode", "<!--c--><?p i?><![CDATA[d]]><b/>", "a", "",
     "<!--c--><?p i?><![CDATA[d]]><b/>"},
    {"NotBelowTheChildren", "<b><!--c--><a/>text</b>", "a", "", "<b><!--c--><a/>text</b>"},
};

void PrintTo(const Deletion& deletion, std::ostream* out) {
    *out << deletion.before;
}

class ConfigWriterDeletion : public testing::TestWithParam<Deletion> {};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterDeletion, ValuesIn(deletions), Support::nameOf<Deletion>);

TEST_P(ConfigWriterDeletion, TakesTheElementsWithTheirCommentsAndTheText) {
    LoadedWriter writer("<here>" + GetParam().before + "</here>");
    writer.setCurrentNode("here");
    writer.deleteNodes(GetParam().element, GetParam().key);
    // A last element without its own line gives the result the same shape, empty or not.
    writer.createNode("last", "");
    EXPECT_EQ(document("<here>" + GetParam().after + "<last/></here>"), textOf(writer));
}

TEST(ConfigWriter, DeletesBelowTheCurrentElementOnly) {
    LoadedWriter writer("<a/><b><a/></b>");
    writer.setCurrentNode("b");
    writer.deleteNodes("a", "");
    writer.putInt("c", 1, "");
    EXPECT_EQ(document("<a/><b><c>1</c></b>"), textOf(writer));
}

// Puts

struct Put {
    std::string name;
    std::function<void(ConfigWriter&, const std::string& comment)> put; ///< under the name "a"
    std::string written;                                                ///< content of the element
};

void PrintTo(const Put& put, std::ostream* out) {
    *out << put.name;
}

template <typename T>
Put putOf(const std::string& name,
          void (ConfigWriter::*operation)(const std::string&, const T&, const std::string&),
          const T& value, const std::string& written) {
    return {name,
            [=](ConfigWriter& writer, const std::string& comment) {
                (writer.*operation)("a", value, comment);
            },
            written};
}

template <typename T>
Put putValueOf(const std::string& name, const T& value, int format, const std::string& written) {
    return {name,
            [=](ConfigWriter& writer, const std::string& comment) {
                writer.putValue("a", value, format, comment);
            },
            written};
}

using Strings = std::vector<std::string>;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int smallestInt = std::numeric_limits<int>::min();

const Put allPuts[] = {
    putOf<std::string>("String", &ConfigWriter::putString, "some text", "some text"),
    putOf<std::string>("StringOfMarkup", &ConfigWriter::putString, "<b>&amp;",
                       "&lt;b&gt;&amp;amp;"),
    putOf("Int", &ConfigWriter::putInt, 5, "5"),
    putOf("IntOfManyDigits", &ConfigWriter::putInt, 1234567890, "1234567890"),
    putOf("IntZero", &ConfigWriter::putInt, 0, "0"),
    putOf("IntSmallest", &ConfigWriter::putInt, smallestInt, "-2147483648"),
    putOf("UnsignedInt", &ConfigWriter::putUnsignedInt, 7u, "7"),
    putOf("UnsignedIntLargestPositive", &ConfigWriter::putUnsignedInt, 2147483647u, "2147483647"),
    putOf("UnsignedIntFirstNegative", &ConfigWriter::putUnsignedInt, 2147483648u, "-2147483648"),
    putOf("UnsignedIntLargest", &ConfigWriter::putUnsignedInt, 4294967295u, "-1"),
    putOf("Double", &ConfigWriter::putDouble, 0.1, "0.1"),
    putOf("DoubleWhole", &ConfigWriter::putDouble, 2.0, "2"),
    putOf("DoubleNegativeZero", &ConfigWriter::putDouble, -0.0, "-0"),
    putOf("DoubleRounded", &ConfigWriter::putDouble, -3.14159265, "-3.14159"),
    putOf("DoubleOfSixDigits", &ConfigWriter::putDouble, 123456.0, "123456"),
    putOf("DoubleLarge", &ConfigWriter::putDouble, 1234567.0, "1.23457e+06"),
    putOf("DoubleSmall", &ConfigWriter::putDouble, 0.00001, "1e-05"),
    putOf("DoubleStillFixed", &ConfigWriter::putDouble, 0.0001, "0.0001"),
    putOf("DoubleHuge", &ConfigWriter::putDouble, 1e300, "1e+300"),
    putOf("DoubleInfinity", &ConfigWriter::putDouble, infinity, "inf"),
    putOf("DoubleNegativeInfinity", &ConfigWriter::putDouble, -infinity, "-inf"),
    putOf("DoubleNotANumber", &ConfigWriter::putDouble, nan, "nan"),
    putOf("Float", &ConfigWriter::putFloat, 0.1f, "0.1"),
    putOf("FloatLarge", &ConfigWriter::putFloat, 1234567.0f, "1.23457e+06"),
    putOf("FloatInfinity", &ConfigWriter::putFloat, -std::numeric_limits<float>::infinity(),
          "-inf"),
    putOf("BoolTrue", &ConfigWriter::putBool, true, "true"),
    putOf("BoolFalse", &ConfigWriter::putBool, false, "false"),
    putOf<Strings>("StringVector", &ConfigWriter::putStringVector, {"b", "a", "b"},
                   "<item>b</item><item>a</item><item>b</item>"),

    putValueOf<std::string>("ValueString", "text", 1, "text"),
    putValueOf("ValueLiteral", "text", 1, "text"),
    putValueOf<const char*>("ValueNull", nullptr, 0, ""),
    putValueOf("ValueInt", -5, 1, "-5"),
    putValueOf("ValueUnsignedInt", 4294967294u, 1, "-2"),
    putValueOf("ValueBool", true, 1, "true"),
    putValueOf<Strings>("ValueStringVector", {"a", "b"}, 1, "<item>a</item><item>b</item>"),
    putValueOf("ValueDouble", 1.5, 0, "1.5"),
    putValueOf("ValueDoubleLarge", 1234567.0, 0, "1.23457e+06"),
    putValueOf("ValueDoubleScientific", 1.5, 1, "1.5000000000e+00"),
    putValueOf("ValueDoubleScientificForAnyFormat", -0.000123456789012, -7, "-1.2345678901e-04"),
    putValueOf("ValueDoubleScientificInfinity", -infinity, 1, "-inf"),
    putValueOf("ValueDoubleScientificNotANumber", nan, 1, "nan"),
    putValueOf("ValueFloat", 1.5f, 0, "1.5000000000e+00"),
    putValueOf("ValueFloatWidened", 0.1f, 1, "1.0000000149e-01"),
};

class ConfigWriterPut : public testing::TestWithParam<Put> {
protected:
    const std::string m_element = "<a>" + GetParam().written + "</a>";
};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterPut, ValuesIn(allPuts), Support::nameOf<Put>);

TEST_P(ConfigWriterPut, AppendsTheText) {
    LoadedWriter writer("<b/>");
    GetParam().put(writer, "");
    EXPECT_EQ(document("<b/>" + m_element), textOf(writer));
}

TEST_P(ConfigWriterPut, PutsTheCommentFirst) {
    ConfigWriter writer("1.0");
    GetParam().put(writer, " what it is ");
    EXPECT_EQ(document("<!-- what it is -->" + m_element), textOf(writer));
}

TEST_P(ConfigWriterPut, ReplacesAllElementsOfTheName) {
    LoadedWriter writer("<a key=\"k\"/><!--old--><a>x</a><b/><a><c/></a>");
    for (int time = 0; time < 2; ++time)
        GetParam().put(writer, "new");
    EXPECT_EQ(document("<b/><!--new-->" + m_element), textOf(writer));
}

TEST_P(ConfigWriterPut, IsIndependentOfTheGlobalLocale) {
    const Support::GlobalLocale locale;
    ConfigWriter writer("1.0");
    GetParam().put(writer, "");
    EXPECT_EQ(document(m_element), textOf(writer));
}

TEST(ConfigWriter, WritesAnEmptyListAsAnEmptyElement) {
    LoadedWriter writer("<a><item>old</item></a>");
    writer.putStringVector("a", {}, "");
    EXPECT_EQ(document("<a/>"), textOf(writer));
}

TEST(ConfigWriter, WritesEmptyStringsAsEmptyElements) {
    ConfigWriter writer("1.0");
    writer.putString("a", "", "");
    writer.putStringVector("b", {"", "x", ""}, "");
    EXPECT_EQ(document("<a></a><b><item></item><item>x</item><item></item></b>"), textOf(writer));
}

TEST(ConfigWriter, ReplacesEverythingInTheCurrentElementByAText) {
    LoadedWriter writer("<a key=\"k\"><!--c--><b><c/></b>text<d/></a>");
    writer.setCurrentNode("a");
    writer.putString("a < b");
    EXPECT_EQ(document("<a key=\"k\">a &lt; b</a>"), textOf(writer));
    writer.putString("");
    writer.putInt("e", 1, "");
    EXPECT_EQ(document("<a key=\"k\"><e>1</e></a>"), textOf(writer));
}

TEST(ConfigWriter, WritesNoEditableAttribute) {
    Support::TestObject object;
    object.add("a", 1);
    object.value<int>("a").setEditable(false);
    object.setEditable(false);
    ConfigWriter writer("1.0");
    writer.putClassContents("Test", object, "");
    EXPECT_EQ(document("<Test><a>1</a></Test>"), textOf(writer));
}

TEST(ConfigWriter, PutsWhatACallbackWritesAndComesBack) {
    LoadedWriter writer("<a>old</a>");
    writer.putElement("a", "comment", [&] {
        writer.putElement("b", "", [&] { writer.putInt("c", 1, ""); });
        writer.putInt("d", 2, "");
    });
    EXPECT_THROW(writer.putElement("e", "", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    writer.putInt("f", 3, "");
    EXPECT_EQ(document("<!--comment--><a><b><c>1</c></b><d>2</d></a><e/><f>3</f>"), textOf(writer));
}

TEST(ConfigWriter, PutsAnElementOnlyWhereACallbackWritesSomething) {
    LoadedWriter writer("<!--old--><a>old</a><!--kept--><b/><c/>");
    writer.putElementUnlessEmpty("a", "new", [&] {
        writer.putElementUnlessEmpty("d", "never seen", [&] {
            writer.putInt("e", 1, "");
            writer.deleteNodes("e", "");
        });
        writer.putElementUnlessEmpty("f", "", [&] { writer.putString("text"); });
    });
    writer.putElementUnlessEmpty("b", "never seen", [] {});
    writer.putInt("g", 2, "");
    EXPECT_EQ(document("<!--kept--><b/><c/><!--new--><a><f>text</f></a><g>2</g>"), textOf(writer));
}

TEST(ConfigWriter, PutsNoElementWhereACallbackThrows) {
    LoadedWriter writer("<a>old</a>");
    EXPECT_THROW(writer.putElementUnlessEmpty("a", "comment",
                                              [&] {
                                                  writer.createNodeAndMakeCurrent("b", "");
                                                  throw std::runtime_error("no");
                                              }),
                 std::runtime_error);
    writer.putInt("c", 3, "");
    EXPECT_EQ(document("<a>old</a><c>3</c>"), textOf(writer));
}

TEST(ConfigWriter, FindsAnElementThatACallbackFilledAmongMany) {
    ConfigWriter writer("1.0");
    for (int i = 0; i < 100; ++i)
        writer.putElementUnlessEmpty("e" + std::to_string(i), "",
                                     [&] { writer.putInt("n", i, ""); });
    writer.putElementUnlessEmpty("e50", "", [&] { writer.putInt("n", -1, ""); });
    EXPECT_EQ(Success, writer.setCurrentNode("e50"));
    writer.putInt("m", 1, "");
    EXPECT_THAT(textOf(writer), HasSubstr("<e99><n>99</n></e99><e50><n>-1</n><m>1</m></e50></C"));
}

TEST(ConfigWriter, PutsAnElementWithAKeyInPlaceOfTheOneWithThatKey) {
    LoadedWriter writer("<a/><!--old--><a key=\"k\">old</a><a key=\"l\"/>");
    writer.putKeyedElement("a", "k", "new", [&] { writer.putInt("b", 1, ""); });
    writer.putKeyedElement("a", "m", "", [] {});
    writer.putInt("c", 2, "");
    EXPECT_EQ(document("<a/><a key=\"l\"/><!--new--><a key=\"k\"><b>1</b></a><a key=\"m\"/>"
                       "<c>2</c>"),
              textOf(writer));
}

TEST(ConfigWriter, ComesBackFromAnElementWithAKeyThatThrows) {
    LoadedWriter writer("");
    EXPECT_THROW(writer.putKeyedElement("a", "k", "", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_THROW(writer.putKeyedElementUnlessEmpty("a", "k", "",
                                                   [&] {
                                                       writer.putInt("b", 1, "");
                                                       throw std::runtime_error("no");
                                                   }),
                 std::runtime_error);
    writer.putInt("c", 2, "");
    EXPECT_EQ(document("<a key=\"k\"/><c>2</c>"), textOf(writer));
}

TEST(ConfigWriter, PutsAnElementWithAKeyOnlyWhereACallbackWritesSomething) {
    LoadedWriter writer("<!--kept--><a key=\"k\">old</a><a key=\"l\">old</a><a/>");
    writer.putKeyedElementUnlessEmpty("a", "k", "never seen", [] {});
    writer.putKeyedElementUnlessEmpty("a", "l", "new", [&] {
        writer.putKeyedElementUnlessEmpty("b", "1", "never seen", [] {});
        writer.putKeyedElementUnlessEmpty("b", "2", "", [&] { writer.putString("text"); });
    });
    EXPECT_EQ(document("<!--kept--><a key=\"k\">old</a><a/><!--new--><a key=\"l\"><b key=\"2\">text"
                       "</b></a>"),
              textOf(writer));
}

TEST(ConfigWriter, PutsTextsHoweverTheyAreGiven) {
    ConfigWriter writer("1.0");
    char buffer[] = "buffer";
    writer.putValue("a", "literal", 0, "");
    writer.putValue("b", buffer, 0, "");
    writer.putValue("c", nullptr, 0, "");
    writer.putValue("d", std::string("string"), 0, "");
    writer.putValue("e", 0, 0, "");
    writer.putValue("f", false, 0, "");
    EXPECT_EQ(document("<a>literal</a><b>buffer</b><c></c><d>string</d><e>0</e><f>false</f>"),
              textOf(writer));
}

// Characters that XML cannot hold

struct Impossible {
    std::string name;
    std::string bytes;
    int characters; ///< how many replacement characters stand for the bytes
};

void PrintTo(const Impossible& impossible, std::ostream* out) {
    *out << impossible.name;
}

const Impossible impossibleBytes[] = {
    {"Nul", std::string(1, '\0'), 1},
    {"U0001", "\x01", 1},
    {"U001F", "\x1F", 1},
    {"UFFFE", "\xEF\xBF\xBE", 1},
    {"UFFFF", "\xEF\xBF\xBF", 1},
    {"HighSurrogate", "\xED\xA0\x80", 3},
    {"LowSurrogate", "\xED\xBF\xBF", 3},
    {"LoneContinuation", "\x80", 1},
    {"NoUtf8Byte", "\xFF", 1},
    {"CutSequence", "\xE2\x82", 2},
    {"OverlongNul", "\xC0\x80", 2},
    {"BeyondUnicode", "\xF4\x90\x80\x80", 4},
};

class ConfigWriterImpossibleCharacter : public testing::TestWithParam<Impossible> {
protected:
    ConfigWriterImpossibleCharacter() {
        for (int i = 0; i < GetParam().characters; ++i)
            m_written += replacement;
        m_written = "x" + m_written + "y";
    }
    void expectLogNames(const std::string& element) const {
        EXPECT_THAT(m_log.text(), HasSubstr('"' + element + '"'));
    }

    const LogCapture m_log{"ConfigWriter"};
    const std::string m_text = "x" + GetParam().bytes + "y";
    std::string m_written;
    ConfigWriter m_writer{"1.0"};
};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterImpossibleCharacter, ValuesIn(impossibleBytes),
                         Support::nameOf<Impossible>);

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInAValue) {
    m_writer.putString("before", "1", "");
    m_writer.putString("Value", m_text, "");
    m_writer.putString("after", "2", "");
    EXPECT_EQ(document("<before>1</before><Value>" + m_written + "</Value><after>2</after>"),
              textOf(m_writer));
    expectLogNames("Value");
}

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInTheTextOfTheCurrentElement) {
    m_writer.createNodeAndMakeCurrent("Current", "");
    m_writer.putString(m_text);
    EXPECT_EQ(document("<Current>" + m_written + "</Current>"), textOf(m_writer));
    expectLogNames("Current");
}

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInAnItem) {
    m_writer.putStringVector("List", {"first", m_text, "last"}, "");
    EXPECT_EQ(
        document("<List><item>first</item><item>" + m_written + "</item><item>last</item></List>"),
        textOf(m_writer));
    expectLogNames("List");
}

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInAComment) {
    m_writer.putInt("Commented", 1, m_text);
    EXPECT_EQ(document("<!--" + m_written + "--><Commented>1</Commented>"), textOf(m_writer));
    expectLogNames("Commented");
}

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInTheVersion) {
    ConfigWriter writer(m_text);
    writer.putInt("a", 1, "");
    EXPECT_EQ("<Configuration version=\"" + m_written + "\"><a>1</a></Configuration>",
              textOf(writer));
    expectLogNames("Configuration");
}

TEST_P(ConfigWriterImpossibleCharacter, IsReplacedInAKey) {
    m_writer.createKeyedNode("Keyed", m_text, "");
    m_writer.putInt("a", 1, "");
    EXPECT_EQ(document("<Keyed key=\"" + m_written + "\"/><a>1</a>"), textOf(m_writer));
    expectLogNames("Keyed");
}

TEST_P(ConfigWriterImpossibleCharacter, DoesNotKeepAKeyFromBeingFoundAgain) {
    m_writer.createKeyedNode("Keyed", m_text, "old");
    m_writer.createKeyedNodeAndMakeCurrent("Keyed", m_text, "new");
    m_writer.putInt("a", 1, "");
    EXPECT_EQ(document("<!--new--><Keyed key=\"" + m_written + "\"><a>1</a></Keyed>"),
              textOf(m_writer));
}

TEST(ConfigWriter, KeepsUnusualCharactersThatXmlCanHold) {
    const LogCapture log("ConfigWriter");
    const std::string text = "\x7F\xC2\x85\xC2\xA0\xE2\x80\xA8\xED\x9F\xBF\xEE\x80\x80" +
                             replacement + "\xF0\x9F\x99\x82\xF4\x8F\xBF\xBF";
    ConfigWriter writer("1.0");
    writer.putString("a", text, text);
    EXPECT_EQ(document("<!--" + text + "--><a>" + text + "</a>"), textOf(writer));
    EXPECT_THAT(log.text(), IsEmpty());
}

// Comments

TEST(ConfigWriter, KeepsTheDocumentWellFormedWhateverACommentSays) {
    for (const std::string comment : {"--", "a--b", "a-", "-", "---", "-->", "--><x/>", "->",
                                      "<!-- nested -->", "]]>", "&amp; <a>", "\n \t"}) {
        ConfigWriter writer("1.0");
        writer.putInt("a", 1, comment);
        writer.putInt("b", 2, "");
        // Without the commented element, nothing may remain of the comment.
        ConfigWriter reloaded(FileName(), writer.getAsString());
        reloaded.deleteNodes("a", "");
        EXPECT_EQ(document("<b>2</b>"), textOf(reloaded)) << comment;
    }
}

TEST(ConfigWriter, ChangesNothingButDoubledAndFinalHyphensOfAComment) {
    const LogCapture log("ConfigWriter");
    ConfigWriter writer("1.0");
    writer.createNode("a", "-1 to-day");
    writer.createNode("b", "x--y-");
    EXPECT_EQ(document("<!---1 to-day--><a/><!--x- -y- --><b/>"), textOf(writer));
    EXPECT_THAT(log.text(), IsEmpty());
}

// Invalid names

struct Naming {
    std::string name;
    std::function<void(ConfigWriter&, const std::string& elementName)> operation;
};

void PrintTo(const Naming& naming, std::ostream* out) {
    *out << naming.name;
}

template <typename T>
Naming puttingValue(const std::string& name, const T& value) {
    return {name, [=](ConfigWriter& writer, const std::string& elementName) {
                writer.putValue(elementName, value, 0, "comment");
            }};
}

const Naming namings[] = {
    {"CreateNode", [](auto& writer, auto& name) { writer.createNode(name, "comment"); }},
    {"CreateKeyedNode",
     [](auto& writer, auto& name) { writer.createKeyedNode(name, "k", "comment"); }},
    {"CreateNodeAndMakeCurrent",
     [](auto& writer, auto& name) { writer.createNodeAndMakeCurrent(name, ""); }},
    {"CreateKeyedNodeAndMakeCurrent",
     [](auto& writer, auto& name) { writer.createKeyedNodeAndMakeCurrent(name, "k", ""); }},
    puttingValue<std::string>("PutString", "x"),
    puttingValue("PutInt", 1),
    puttingValue("PutUnsignedInt", 1u),
    puttingValue("PutFloat", 1.0f),
    puttingValue("PutDouble", 1.0),
    puttingValue("PutBool", true),
    puttingValue<Strings>("PutStringVector", {"x"}),
    {"PutElementUnlessEmpty",
     [](auto& writer, auto& name) {
         writer.putElementUnlessEmpty(name, "comment", [&] { writer.putInt("x", 1, ""); });
     }},
    {"PutKeyedElement",
     [](auto& writer, auto& name) { writer.putKeyedElement(name, "k", "comment", [] {}); }},
    {"PutKeyedElementUnlessEmpty",
     [](auto& writer, auto& name) {
         writer.putKeyedElementUnlessEmpty(name, "k", "comment",
                                           [&] { writer.putInt("x", 1, ""); });
     }},
    {"PutClassContents",
     [](auto& writer, auto& name) { writer.putClassContents(name, Support::TestObject(), ""); }},
    {"PutKeyedClassContents",
     [](auto& writer, auto& name) {
         writer.putClassContents(name, "k", Support::TestObject(), "");
     }},
};

class ConfigWriterNaming : public testing::TestWithParam<Naming> {
protected:
    static void expectRefused(const std::string& name) {
        const LogCapture log("ConfigWriter");
        LoadedWriter writer("<!--c--><a>1</a><a key=\"k\"/>text<b/>");
        const std::string before = writer.getAsString();
        EXPECT_THROW(GetParam().operation(writer, name), xercesc::DOMException)
            << testing::PrintToString(name);
        EXPECT_EQ(before, writer.getAsString()) << testing::PrintToString(name);
        writer.createNode("here", "");
        EXPECT_THAT(textOf(writer), HasSubstr("<b/><here/></Configuration>"));
    }
};
INSTANTIATE_TEST_SUITE_P(, ConfigWriterNaming, ValuesIn(namings), Support::nameOf<Naming>);

TEST_P(ConfigWriterNaming, RefusesAnInvalidNameAndLeavesTheDocumentAsItWas) {
    for (const std::string name : {"", "1a", "-a", "a b", "a<b", "a&b", "a\n", "<a/>"})
        expectRefused(name);
}

TEST_P(ConfigWriterNaming, RefusesANameWithACharacterThatXmlCannotHold) {
    for (const std::string& name :
         {std::string("a\x01"), std::string("a\0b", 3), std::string("a\xEF\xBF\xBE"),
          std::string("a\xFF"), std::string("\xED\xA0\x80")})
        expectRefused(name);
}

TEST_P(ConfigWriterNaming, TakesEveryNameThatXmlAllows) {
    for (const std::string name : {"_", "a-b.c_1", "p:a",
                                   "Gr\xC3\xB6\xC3\x9F"
                                   "e",
                                   "item", "Configuration"}) {
        ConfigWriter writer("1.0");
        GetParam().operation(writer, name);
        EXPECT_THAT(textOf(writer), HasSubstr('<' + name)) << name;
    }
}

} // namespace
} // namespace Orvant
