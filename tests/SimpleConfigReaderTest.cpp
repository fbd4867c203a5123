#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <sstream>

#include <fstream>

#include <unistd.h>

namespace Orvant {
namespace {

using Support::configuration;
using Support::openBody;
using Support::openFile;
using Support::openString;
using Support::readInt;
using Support::readString;
using Support::refusal;
using Support::TemporaryDirectory;
using testing::EndsWith;
using testing::HasSubstr;

const std::string answer = configuration("<Answer>42</Answer>");

// What is refused, and the place that reports it.

struct RefusalCase : Support::TestCase {
    std::function<SimpleConfigReader(const TemporaryDirectory&)> open;
    ConfigException::ExceptionType type;
    unsigned line;
    unsigned column;
};

std::function<SimpleConfigReader(const TemporaryDirectory&)> string(const std::string& content) {
    return [content](const TemporaryDirectory&) { return openString(content); };
}

std::function<SimpleConfigReader(const TemporaryDirectory&)> file(const std::string& bytes) {
    return [bytes](const TemporaryDirectory& directory) {
        return openFile(directory.file("settings.xml", bytes));
    };
}

SimpleConfigReader openMissing(const TemporaryDirectory& directory) {
    return SimpleConfigReader(directory.file("missing.xml"), answer, {"1.0"});
}

SimpleConfigReader openDanglingLink(const TemporaryDirectory& directory) {
    std::filesystem::create_symlink("missing.xml", directory.path() / "link.xml");
    return openFile(directory.file("link.xml"));
}

SimpleConfigReader openDirectory(const TemporaryDirectory& directory) {
    return openFile(directory.path().string());
}

SimpleConfigReader openNameWithNul(const TemporaryDirectory&) {
    return openFile(FileName(std::string("a\0b", 3)));
}

class RefusedDocument : public testing::TestWithParam<RefusalCase> {};

TEST_P(RefusedDocument, IsReportedWithTypeAndPlace) {
    const TemporaryDirectory directory;
    auto exception = refusal([&] { GetParam().open(directory); });
    ASSERT_TRUE(exception);
    EXPECT_EQ(GetParam().type, exception->getType());
    const std::source_location& place = exception->getLocation();
    EXPECT_EQ(GetParam().line, place.line());
#if defined(__GNUC__) && !defined(__clang__)
    EXPECT_EQ(GetParam().column, place.column());
#endif
    EXPECT_THAT(place.file_name(), EndsWith("SimpleConfigReaderImpl.cpp"));
    EXPECT_THAT(place.function_name(), HasSubstr("SimpleConfigReaderImpl::init"));
}

constexpr auto invalid = ConfigException::InvalidDocument;
constexpr auto missing = ConfigException::SourceNotFound;
constexpr auto broken = ConfigException::ParserReportedErrors;
constexpr auto wrongVersion = ConfigException::InvalidVersion;

INSTANTIATE_TEST_SUITE_P(
    Sources, RefusedDocument,
    testing::Values(RefusalCase{"MissingFileWithContent", openMissing, missing, 88, 38},
                    RefusalCase{"DanglingLink", openDanglingLink, missing, 88, 38},
                    RefusalCase{"Directory", openDirectory, invalid, 95, 34},
                    RefusalCase{"FileNameWithNul", openNameWithNul, invalid, 107, 34},
                    RefusalCase{"NeitherFileNorContent", string(""), missing, 146, 30}),
    Support::nameOf<RefusalCase>);

INSTANTIATE_TEST_SUITE_P(
    Documents, RefusedDocument,
    testing::Values(
        RefusalCase{"TruncatedString", string("<Configuration version=\"1.0\">"), broken, 153, 30},
        RefusalCase{"TruncatedFile", file("<Configuration version=\"1.0\">"), broken, 153, 30},
        RefusalCase{"EmptyFile", file(""), broken, 153, 30},
        RefusalCase{"NothingBeforeTheFirstNul", string(std::string("\0", 1) + answer), broken, 153,
                    30},
        RefusalCase{"Utf16InAString", string(std::string("\xFF\xFE<\0C\0", 6)), broken, 153, 30},
        RefusalCase{"NoXml", string("Answer=42"), broken, 153, 30},
        RefusalCase{"UndeclaredEntity", string(configuration("&unknown;")), broken, 153, 30},
        RefusalCase{"BytesThatAreNotUtf8", file(configuration("<A>\xC3\x28</A>")), broken, 153, 30},
        RefusalCase{"UnknownEncoding",
                    string("<?xml version=\"1.0\" encoding=\"x-none\"?>" + answer), broken, 153,
                    30},
        RefusalCase{"TwoAttributesOfOneName",
                    string("<Configuration version='1.0' version='1.0'/>"), broken, 153, 30},
        RefusalCase{"BrokenBelowAWrongRoot", string("<Settings><A></Settings>"), broken, 153, 30},
        RefusalCase{"UnknownVersionOfXmlInAString", string("<?xml version='1.2'?>" + answer),
                    invalid, 138, 34},
        RefusalCase{"UnknownVersionOfXmlInAFile", file("<?xml version='1.2'?>" + answer), invalid,
                    101, 34},
        RefusalCase{"DocumentTypeWithTwoColons", string("<!DOCTYPE a:b:c>" + answer), invalid, 138,
                    34},
        RefusalCase{"DocumentTypeWithTwoColonsInAFile", file("<!DOCTYPE a:b:c>" + answer), invalid,
                    101, 34},
        RefusalCase{"RootInLowerCase", string("<configuration version=\"1.0\"/>"), invalid, 176,
                    30},
        RefusalCase{"RootInAFile", file("<Settings version=\"1.0\"/>"), invalid, 176, 30},
        RefusalCase{"RootWithPrefix",
                    string("<c:Configuration xmlns:c=\"urn:c\" version=\"1.0\"/>"), invalid, 176,
                    30},
        RefusalCase{"WrongRootAndVersion", string("<Settings version=\"9\"/>"), invalid, 176, 30},
        RefusalCase{"Version", string("<Configuration version=\"1.1\"/>"), wrongVersion, 185, 30},
        RefusalCase{"VersionInAFile", file("<Configuration version=\"2\"/>"), wrongVersion, 185,
                    30},
        RefusalCase{"VersionWithBlank", string("<Configuration version=\" 1.0\"/>"), wrongVersion,
                    185, 30},
        RefusalCase{"NoVersion", string("<Configuration/>"), wrongVersion, 185, 30}),
    Support::nameOf<RefusalCase>);

TEST(SimpleConfigReader, RefusesAFileThatMayNotBeRead) {
    const TemporaryDirectory directory;
    const FileName settings = directory.file("settings.xml", answer);
    std::filesystem::permissions(directory.path(), std::filesystem::perms::all);
    std::filesystem::permissions(directory.path() / "settings.xml", std::filesystem::perms::none);
    const auto openAsNobody = [&] {
        // Permissions do not bind the superuser. Anyone else cannot, and need not, change.
        [[maybe_unused]] const int changed = seteuid(65534);
        auto exception = refusal([&] { openFile(settings); });
        _exit(exception && exception->getLocation().line() == 95 ? 0 : 1);
    };
    EXPECT_EXIT(openAsNobody(), testing::ExitedWithCode(0), "");
}

TEST(SimpleConfigReader, OpensADocumentAfterARefusal) {
    ASSERT_TRUE(refusal([] { openString("<Configuration"); }));
    auto reader = openString(answer);
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

// What is opened.

TEST(SimpleConfigReader, StartsAtTheRoot) {
    auto reader = openBody("<Test><A>2</A></Test><A>1</A>");
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(SimpleConfigReader, ReadsTheFileAndNotTheContent) {
    const TemporaryDirectory directory;
    SimpleConfigReader reader(directory.file("settings.xml", answer),
                              configuration("<Answer>7</Answer>"), {"1.0"});
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

TEST(SimpleConfigReader, IgnoresBrokenContentNextToAFile) {
    const TemporaryDirectory directory;
    SimpleConfigReader reader(directory.file("settings.xml", answer), "<Configuration", {"1.0"});
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

TEST(SimpleConfigReader, ReadsContentUpToItsFirstNul) {
    auto reader = openString(answer + std::string("\0<no xml", 8));
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

TEST(SimpleConfigReader, LeavesTheFileAsItIs) {
    const TemporaryDirectory directory;
    const FileName settings = directory.file("settings.xml", answer);
    {
        openFile(settings);
    }
    EXPECT_EQ(answer, Support::readFile(settings));
}

TEST(SimpleConfigReader, HoldsTheDocumentWhenTheFileGoes) {
    const TemporaryDirectory directory;
    auto reader = openFile(directory.file("settings.xml", answer));
    std::filesystem::remove(directory.path() / "settings.xml");
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

TEST(SimpleConfigReader, AcceptsWhatMayStandAroundTheRoot) {
    auto reader = openString("<?xml version=\"1.0\"?>\n<!-- Configuration -->\n<?tool data?>\n" +
                             answer + "\n<!-- end -->\n");
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

struct VersionCase : Support::TestCase {
    std::string root;
    std::list<std::string> validVersions;
    bool accepted;
};

class DocumentVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(DocumentVersion, IsLookedUpInTheList) {
    auto exception =
        refusal([] { SimpleConfigReader(FileName(), GetParam().root, GetParam().validVersions); });
    EXPECT_EQ(GetParam().accepted, !exception);
    if (exception) {
        EXPECT_EQ(wrongVersion, exception->getType());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Versions, DocumentVersion,
    testing::Values(
        VersionCase{"First", "<Configuration version='1.0'/>", {"1.0", "2.0"}, true},
        VersionCase{"Last", "<Configuration version='2.0'/>", {"1.0", "1.5", "2.0"}, true},
        VersionCase{"EmptyList", "<Configuration version='1.0'/>", {}, false},
        VersionCase{"EmptyListAndNoVersion", "<Configuration/>", {}, false},
        VersionCase{"AbsentIsTheEmptyOne", "<Configuration/>", {"1.0", ""}, true},
        VersionCase{"EmptyIsTheEmptyOne", "<Configuration version=''/>", {""}, true},
        VersionCase{"AbsentIsNoOther", "<Configuration/>", {"1.0"}, false},
        VersionCase{"CaseMatters", "<Configuration version='1.0a'/>", {"1.0A"}, false},
        VersionCase{"PartIsNotEnough", "<Configuration version='1.0'/>", {"1.0.1", "1"}, false},
        VersionCase{"NumberMeansNothing", "<Configuration version='1.0'/>", {"1.00"}, false},
        VersionCase{"NonAscii", "<Configuration version='größer'/>", {"größer"}, true}),
    Support::nameOf<VersionCase>);

// Encodings.

/// The bytes of a text in UTF-16.
std::string utf16(const std::u16string& text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

const std::u16string wideDocument =
    u"\uFEFF<Configuration version=\"1.0\"><A>Gr\u00F6\u00DFe \u20AC \U0001F600</A>"
    u"</Configuration>";

struct EncodingCase : Support::TestCase {
    std::string bytes;
    std::string text;
};

class DocumentEncoding : public testing::TestWithParam<EncodingCase> {};

TEST_P(DocumentEncoding, IsFoundOutFromTheFile) {
    const TemporaryDirectory directory;
    auto reader = openFile(directory.file("settings.xml", GetParam().bytes));
    EXPECT_EQ(GetParam().text, readString(reader, "A"));
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, DocumentEncoding,
    testing::Values(EncodingCase{"Utf8", configuration("<A>Größe € 😀</A>"), "Größe € 😀"},
                    EncodingCase{"Utf8WithByteOrderMark",
                                 "\xEF\xBB\xBF" + configuration("<A>Größe</A>"), "Größe"},
                    EncodingCase{"Utf16LittleEndian", utf16(wideDocument, false), "Größe € 😀"},
                    EncodingCase{"Utf16BigEndian", utf16(wideDocument, true), "Größe € 😀"},
                    EncodingCase{"Latin1",
                                 "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" +
                                     configuration("<A>Gr\xF6\xDF"
                                                   "e</A>"),
                                 "Größe"},
                    EncodingCase{"CharacterReferences",
                                 configuration("<A>Gr&#246;&#xDF;e &#x1F600;</A>"), "Größe 😀"}),
    Support::nameOf<EncodingCase>);

TEST(SimpleConfigReader, FindsOutTheEncodingOfAString) {
    auto reader = openString("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" +
                             configuration("<A>\xFC</A>"));
    EXPECT_EQ("ü", readString(reader, "A"));
}

TEST(SimpleConfigReader, FindsNamesAndKeysOutsideAscii) {
    auto reader = openBody("<Größe key=\"😀\"><Höhe>3</Höhe></Größe>");
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.setCurrentKeyedNode("Größe", "😀"));
    EXPECT_EQ(3, readInt(reader, "Höhe"));
}

// File names.

class DocumentName : public testing::TestWithParam<std::string> {};

TEST_P(DocumentName, IsTakenAsItStands) {
    const TemporaryDirectory directory;
    auto reader = openFile(directory.file(GetParam(), answer));
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

INSTANTIATE_TEST_SUITE_P(Names, DocumentName,
                         testing::Values("my settings.xml", " ", "a#b.xml", "%41.xml", "100%.xml",
                                         "a&b;c.xml", "a?b=c.xml", "<a>'\".xml", "a\\b.xml",
                                         "http:", "file:x.xml", "Größe.xml", "设置.xml", "😀.xml",
                                         "example"));

TEST(SimpleConfigReader, DoesNotDecodeAFileName) {
    const TemporaryDirectory directory;
    directory.file("A.xml", configuration("<Answer>7</Answer>"));
    auto reader = openFile(directory.file("%41.xml", answer));
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

TEST(SimpleConfigReader, FollowsALink) {
    const TemporaryDirectory directory;
    directory.file("settings.xml", answer);
    std::filesystem::create_symlink("settings.xml", directory.path() / "link.xml");
    auto reader = openFile(directory.file("link.xml"));
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

/// Makes another directory the current one for the scope.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::filesystem::path& path)
        : m_former(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    ~CurrentDirectory() {
        std::error_code error;
        std::filesystem::current_path(m_former, error);
    }

private:
    std::filesystem::path m_former;
};

TEST(SimpleConfigReader, TakesRelativeNamesFromTheCurrentDirectory) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.path() / "sub");
    directory.file("settings.xml", answer);
    const CurrentDirectory current(directory.path() / "sub");
    for (const std::string name : {"../settings.xml", "./../sub/.././settings.xml"}) {
        auto reader = openFile(name);
        EXPECT_EQ(42, readInt(reader, "Answer")) << name;
    }
    const CurrentDirectory other(directory.path());
    auto reader = openFile("settings.xml");
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

/// Refusals that no document brings about keep their lines and columns too.
TEST(SimpleConfigReader, HasEveryRefusalAtItsLineAndColumn) {
    std::istringstream source(Support::readFile(TEST_DATA_DIR
                                                "/../../AppTools/Service/ConfigurationFramework/"
                                                "SimpleConfigReaderImpl.cpp"));
    std::map<int, std::size_t> columns;
    int line = 0;
    for (std::string text; std::getline(source, text); ++line) {
        if (text.starts_with("#line "))
            line = std::stoi(text.substr(6)) - 1;
        else if (text.find("throw refusedDocument(") != std::string::npos)
            columns[line] = text.find('(') + 1;
    }
    const std::map<int, std::size_t> expected = {{88, 38},  {95, 34},  {101, 34}, {107, 34},
                                                 {131, 34}, {138, 34}, {146, 30}, {153, 30},
                                                 {161, 30}, {170, 30}, {176, 30}, {185, 30}};
    EXPECT_EQ(expected, columns)
        << "Support looks refusals up by these numbers. The line of a throw is set by its #line; "
           "its column is the indentation, by blocks around it, and the length of "
           "\"throw refusedDocument(\". See the comment at SimpleConfigReaderImpl::init().";
}

TEST(SimpleConfigReader, OpensADocumentThatBreaksItsOwnDtd) {
    const std::string document = "<!DOCTYPE Configuration [<!ELEMENT Configuration EMPTY>]>"
                                 "<Configuration version='1.0'><undeclared:A>5</undeclared:A>"
                                 "</Configuration>";
    SimpleConfigReader reader(FileName(), document, {"1.0"});
    int value = 0;
    bool editable = true;
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.getInt("undeclared:A", value, editable));
    EXPECT_EQ(5, value);
}

TEST(SimpleConfigReader, RefusesAFileThatIsLargerThanAnySettings) {
    const Support::TemporaryDirectory directory;
    const FileName file = directory.file("huge.xml", "<Configuration/>");
    std::error_code error;
    std::filesystem::resize_file(directory.path() / "huge.xml", std::uintmax_t{1} << 42U, error);
    if (error)
        return; // A file system without sparse files cannot hold it either.
    try {
        const SimpleConfigReader reader(file, "", {"1.0"});
        ADD_FAILURE() << "was opened";
    } catch (ConfigException& refused) {
        EXPECT_EQ(ConfigException::InvalidDocument, refused.getType());
    }
}

} // namespace
} // namespace Orvant
