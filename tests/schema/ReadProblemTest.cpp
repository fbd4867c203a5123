#include <EntitySupport.h>
#include <ReaderSupport.h>
#include <SchemaTestSupport.h>

#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/ReadProblem.h>
#include <ConfigurationFramework/schema/SchemaFileFailure.h>
#include <ConfigurationFramework/schema/SchemaParser.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <new>
#include <utility>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>

namespace Orvant {
namespace {

using namespace Support;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ReadProblem : public testing::Test {
protected:
    ReadProblem() { xercesc::XMLPlatformUtils::Initialize(); }
    ~ReadProblem() override { xercesc::XMLPlatformUtils::Terminate(); }
};

/// @return LINE:COLUMN MESSAGE of what keeps the bytes from being read
std::string problemOf(const std::string& bytes, SchemaDialect dialect) {
    const bool isRewritten = dialect == SchemaDialect::Suite;
    try {
        Orvant::parseSchema(isRewritten ? LineRewriting::rewrittenForReader(bytes) : bytes,
                            dialect);
    } catch (...) {
        const XsdReadProblem problem =
            describeReadProblem(bytes, dialect, std::current_exception());
        return std::to_string(problem.line) + ':' + std::to_string(problem.column) + ' ' +
               problem.message;
    }
    return "none";
}

std::string problemOfSuite(const std::string& bytes) {
    return problemOf(bytes, SchemaDialect::Suite);
}

std::string problemOfReader(const std::string& bytes) {
    return problemOf(bytes, SchemaDialect::Reader);
}

std::string problemOfAny(const std::string& bytes) {
    return problemOf(bytes, SchemaDialect::Any);
}

/// Expects the same problem for all ways of reading.
void expectForAll(const std::string& bytes, const std::string& expected) {
    EXPECT_EQ(expected, problemOfReader(bytes));
    EXPECT_EQ(expected, problemOfSuite(bytes));
    EXPECT_EQ(expected, problemOfAny(bytes));
}

/// The bytes in UTF-16, with a byte order mark.
std::string inUtf16(const std::string& bytes) {
    std::string wide = "\xFF\xFE";
    for (const char byte : bytes)
        wide += {byte, '\0'};
    return wide;
}

/// The bytes in UTF-32, with a byte order mark.
std::string inUtf32(const std::string& bytes) {
    std::string wide("\xFF\xFE\0\0", 4);
    for (const char byte : bytes)
        wide += {byte, '\0', '\0', '\0'};
    return wide;
}

/// A document in EBCDIC.
std::string inEbcdic(const std::string& content) {
    const std::string text = "<?xml version='1.0' encoding='IBM037'?>" + content;
    const xercesc::TranscodeToStr bytes(std::u16string(text.begin(), text.end()).c_str(), "IBM037");
    return {reinterpret_cast<const char*>(bytes.str()), bytes.length()};
}

const std::string mark = "\xEF\xBB\xBF";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

// What is not well-formed.

TEST_F(ReadProblem, IsTheFirstErrorOfTheParser) {
    expectForAll("<a>\n <b>\n </a>", "3:4 expected end of tag 'b'");
    expectForAll("", "1:1 the file is empty");
    expectForAll("<a b=''\n b=''/>", "2:4 attribute 'b' is already specified for element 'a'");
    expectForAll("<a>\n&e;</a>", "2:4 entity 'e' not found");
    expectForAll("<?xml version='2.0'?><a/>", "1:20 unsupported XML version '2.0'");
    EXPECT_EQ("4:4 expected end of tag 'xs:b'",
              problemOfSuite(suiteSchema("<xs:a>\n<xs:b>\n </xs:c>\n</xs:a>")));
}

TEST_F(ReadProblem, IsTheFirstByteThatIsNotUtf8) {
    const std::string said = " is not UTF-8: save the file in UTF-8, or let its XML declaration "
                             "tell its encoding";
    expectForAll("<a>\n \u00E4\U0001F600\xE4</a>", "2:5 the byte 0xE4" + said);
    expectForAll(mark + "<a>\uFFFD\xFF\xFE</a>", "1:5 the byte 0xFF" + said);
    expectForAll("<a>\r\n\r\r\xC0\x80</a>", "4:1 the byte 0xC0" + said);
    expectForAll("<a>\n\xED\xA0\x80</a>", "2:1 the byte 0xED" + said);
    // The parser decodes far ahead of what it has scanned.
    expectForAll("<a>\n" + repeated("<b>some text</b>\n", 5'000) + "<c d='\x80'/></a>",
                 "5002:7 the byte 0x80" + said);
    // What comes before what the parser decodes ahead of is told first.
    expectForAll("<a>\n</b>" + repeated("\n<b>some text</b>", 50'000) + "\x80</a>",
                 "2:3 expected end of tag 'a'");
    // In other encodings, the byte is none that UTF-8 says anything of.
    expectForAll("<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE4</b>",
                 "2:7 expected end of tag 'a'");
}

TEST_F(ReadProblem, HasNoPlaceWhereTheParserHasNone) {
    EXPECT_THAT(problemOfAny("<!DOCTYPE a:b:c><a/>"),
                AllOf(StartsWith("0:0 "), Not(EndsWith(" "))));
}

TEST_F(ReadProblem, NamesAPrefixThatIsNotDeclared) {
    const std::string said = " prefix 'p' can not be resolved to namespace URI";
    for (const char* content : {"\n<p:a/>", "\n<a p:b=''/>"}) {
        EXPECT_THAT(problemOfReader(readerSchema(content)),
                    AllOf(StartsWith("2:"), EndsWith(said)));
        EXPECT_THAT(problemOfAny(readerSchema(content)), AllOf(StartsWith("2:"), EndsWith(said)));
        EXPECT_THAT(problemOfSuite(suiteSchema(content)), AllOf(StartsWith("3:"), EndsWith(said)));
    }
    EXPECT_EQ("1:13 prefix 'xs' can not be resolved to namespace URI",
              problemOfAny("<xs:schema/>"));
}

// Limits.

struct Limit : Support::TestCase {
    std::string bytes;
    unsigned int line;
    std::string message;
};

class SchemaLimit : public ReadProblem, public testing::WithParamInterface<Limit> {};

TEST_P(SchemaLimit, IsNamed) {
    const auto matcher = AllOf(StartsWith(std::to_string(GetParam().line) + ':'),
                               EndsWith(' ' + GetParam().message));
    EXPECT_THAT(problemOfReader(GetParam().bytes), matcher);
    EXPECT_THAT(problemOfSuite(GetParam().bytes), matcher);
    EXPECT_THAT(problemOfAny(GetParam().bytes), matcher);
}

/// As many tags, each in a line of its own, with a number in it.
std::string numbered(const std::string& begin, const std::string& end, int count) {
    std::string tags;
    for (int i = 0; i < count; ++i)
        tags += begin + std::to_string(i) + end;
    return tags;
}

/// A document in two lines.
std::string withDtd(const std::string& declarations, const std::string& content) {
    return "<!DOCTYPE a [" + declarations + "]>\n<a>" + content + "</a>";
}

std::string longEntity() {
    return "<!ENTITY e '" + std::string(10'000, 'x') + "'>";
}

INSTANTIATE_TEST_SUITE_P(
    Limits, SchemaLimit,
    testing::Values(
        Limit{"Attributes", "<a>\n<b" + numbered(" a", "=''", 101) + "/></a>", 2,
              "an element has more than 100 attributes"},
        Limit{"Depth", "<a>\n" + repeated("<b>\n", 1'000), 1'001,
              "elements nest more than 1,000 deep"},
        Limit{"Tags", "<a>\n" + numbered("<b", "/>\n", 10'000) + "</a>", 10'001,
              "there are more than 10,000 tags"},
        Limit{"NamesOfAttributes", "<a>\n" + numbered("<b a", "=''/>\n", 10'001) + "</a>", 10'002,
              "there are more than 10,000 names of attributes"},
        Limit{"References", withDtd("<!ENTITY e 'x'>", repeated("\n&e;", 10'001)), 10'003,
              "a limit is exceeded: the number of entity references"},
        Limit{"NestedReferences",
              withDtd(
                  "<!ENTITY e0 'x'>" +
                      [] {
                          std::string entities;
                          for (int i = 1; i < 40; ++i)
                              entities += "<!ENTITY e" + std::to_string(i) + " '&e" +
                                          std::to_string(i - 1) + ";'>";
                          return entities;
                      }(),
                  "\n&e39;"),
              3, "a limit is exceeded: the depth of entity references"},
        Limit{"ExpandedDocument", withDtd(longEntity(), repeated("\n&e;", 1'001)), 1'002,
              "references expand the document to more than 10 million characters"},
        Limit{"ExpandedAttributes",
              withDtd(longEntity(), "\n<b c='" + repeated("&e;", 1'002) + "'/>"), 3,
              "a limit is exceeded: the text that entity references expand to"},
        Limit{"MemoryOfADtd", withDtd(numbered("<!ATTLIST u", " a CDATA #IMPLIED>", 50'000), ""), 1,
              "a limit is exceeded: the memory for its DTD"}),
    Support::nameOf<Limit>);

TEST_F(ReadProblem, NamesTheMemoryThatOnlyReadingTakes) {
    // Default attributes take none while the document is measured.
    EXPECT_THAT(
        problemOfReader("<!DOCTYPE a [<!ATTLIST b" + numbered(" a", " CDATA ''", 100) +
                        ">]>\n<a>\n" + repeated("<b/>", 11'000) + "</a>"),
        AllOf(StartsWith("3:"), EndsWith(" a limit is exceeded: the memory for all of it")));
}

// What does not fit the model.

TEST_F(ReadProblem, NamesAMinOccursThatIsNoWholeNumberAndPlacesItsElement) {
    const std::string said = " minOccurs is not a whole number: many";
    EXPECT_EQ("4:12" + said, problemOfSuite(suiteSchema(
                                 "<xs:complexType name='A'>\n<xs:sequence>\n"
                                 "<!-- \u00E4 --> <xs:element name='b'\n"
                                 " minOccurs='many'/>\n</xs:sequence>\n</xs:complexType>")));
    EXPECT_EQ("3:2" + said,
              problemOfAny("<schema xmlns='http://www.w3.org/2001/XMLSchema'>\n<complexType>"
                           "<sequence>\n <element minOccurs='many'/></sequence></complexType>"
                           "</schema>"));
    // That of a root element is not read.
    EXPECT_EQ("2:31" + said,
              problemOfReader(readerSchema("<element minOccurs='no'/>\n<complexType><sequence>"
                                           "<!----><element minOccurs='many'/></sequence>"
                                           "</complexType>")));
}

TEST_F(ReadProblem, PlacesATypeThatIsNestedTooDeep) {
    const auto nested = [](const std::string& prefix) {
        std::string tags;
        for (const std::string name : {"<sequence>", "<element>", "<complexType>"})
            tags += '<' + prefix + name.substr(1) + '\n';
        return repeated(tags, 171) + repeated("</" + prefix + "complexType>\n</" + prefix +
                                                  "element>\n</" + prefix + "sequence>\n",
                                              171);
    };
    const std::string said = " a complex type stands more than 512 elements deep";
    EXPECT_EQ("515:1" + said, problemOfSuite(suiteSchema("<xs:complexType>\n" + nested("xs:") +
                                                         "</xs:complexType>")));
    EXPECT_EQ("515:1" + said,
              problemOfReader(readerSchema("\n<complexType>\n" + nested("") + "</complexType>")));
    EXPECT_EQ("515:1" + said, problemOfAny("<x:schema xmlns:x='http://www.w3.org/2001/XMLSchema'>\n"
                                           "<x:complexType>\n" +
                                           nested("x:") + "</x:complexType></x:schema>"));
}

// Two tags on a line.

TEST_F(ReadProblem, NamesATagThatKeepsItsPrefix) {
    using PlaceAndLines = std::pair<std::string, std::string>;
    for (const auto& [place, lines] : {
             PlaceAndLines{"2:7 the tag <xs:b> keeps its prefix, since xs:",
                           "<xs:a><xs:b>\n</xs:b>\n</xs:a>"},
             {"4:8 the tag </xs:a> keeps its prefix, since xs:", "<xs:a>\n<xs:b>\n</xs:b></xs:a>"},
             {"3:9 the tag </xs:a> keeps its prefix, since xs:", "<xs:a>\n <xs:b/></xs:a>"},
             {"2:13 the tag <xs:a> keeps its prefix, since xs:",
              "<!-- xs: --><xs:a b='c'>\n</xs:a>"},
             {"2:8 the tag <ov:b> keeps its prefix, since ov:", "<ov:a/><ov:b>\n</ov:b>"},
             {"3:20 the tag <xs:a> keeps its prefix, since xs:",
              "<xs:import/>\n<xs:import/><xs:b/><xs:a>\n</xs:a>"},
         })
        EXPECT_THAT(problemOfSuite(suiteSchema(lines)),
                    AllOf(StartsWith(place),
                          HasSubstr("each element's tags must stand on lines of their own"),
                          HasSubstr("readAnyXSD() reads the file as it is")));
    EXPECT_THAT(problemOfSuite(suiteHeader + "<xs:a/></xs:schema>"),
                StartsWith("1:" + std::to_string(suiteHeader.size() + 8) +
                           " the tag </xs:schema> keeps its prefix"));
}

TEST_F(ReadProblem, PlacesATagBehindAByteOrderMark) {
    EXPECT_THAT(problemOfSuite(mark + suiteHeader + "<xs:a/></xs:schema>"),
                StartsWith("1:" + std::to_string(suiteHeader.size() + 8) +
                           " the tag </xs:schema> keeps its prefix"));
}

TEST_F(ReadProblem, IsThatLinesEndWithACarriageReturnOnly) {
    std::string bytes = suiteSchema("<xs:a>\n<xs:b>\n</xs:b>\n</xs:a>");
    std::ranges::replace(bytes, '\n', '\r');
    for (const std::string& start : {std::string(), mark})
        EXPECT_EQ("1:" + std::to_string(suiteHeader.size() + 1) +
                      " the lines end with a carriage return only, which readXSD(true) does not "
                      "take for the end of a line: let them end with a line feed. readAnyXSD() "
                      "reads the file as it is",
                  problemOfSuite(start + bytes));
    EXPECT_EQ("none", problemOfAny(bytes));
    EXPECT_THAT(problemOfSuite(suiteSchema("\r<xs:a><xs:b>\n</xs:b>\n</xs:a>")),
                HasSubstr("the tag <xs:b> keeps its prefix"));
}

TEST_F(ReadProblem, TellsWhatElseRewritingBroke) {
    EXPECT_EQ("2:14 attribute 'b' is already specified for element 'a'",
              problemOfSuite(suiteSchema("<a xs:b='' b=''/>")));
}

// Another start tag.

/// A file of the suite whose start tag has this instead.
std::string suiteWith(const std::string& from, const std::string& to) {
    return "<?xml version='1.0'?>\n " + replaced(suiteHeader, from, to) + "\n</xs:schema>\n";
}

struct Difference : Support::TestCase {
    std::string from;
    std::string to;
    std::string message;
};

class SchemaStartTag : public ReadProblem, public testing::WithParamInterface<Difference> {};

TEST_P(SchemaStartTag, IsToldWhatDiffers) {
    const std::string said = problemOfSuite(suiteWith(GetParam().from, GetParam().to));
    EXPECT_THAT(said, AllOf(StartsWith("2:2 the start tag is not that of a file of the suite: " +
                                       GetParam().message + ". readXSD(true) wants " + suiteHeader),
                            HasSubstr("or without ov: " + suiteHeaderWithoutPrefix)));
}

INSTANTIATE_TEST_SUITE_P(
    Differences, SchemaStartTag,
    testing::Values(
        Difference{"PrefixXs", "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" ", "",
                   "xmlns:xs is missing"},
        Difference{"NamespaceXs", "2001/XMLSchema", "other",
                   "xmlns:xs is \"http://www.w3.org/other\", not "
                   "\"http://www.w3.org/2001/XMLSchema\""},
        Difference{"NamespaceOv", "OV_QLV100", "other",
                   "xmlns:ov is \"http://www.orvant.com/other\", not "
                   "\"http://www.orvant.com/OV_QLV100\""},
        Difference{"DefaultNamespace", "xmlns=\"http://www.orvant.com/OV_QLV100\" ", "",
                   "xmlns is missing"},
        Difference{"TargetNamespace", "targetNamespace=\"http://www.orvant.com/OV_QLV100\"",
                   "targetNamespace=\"\"",
                   "targetNamespace is \"\", not \"http://www.orvant.com/OV_QLV100\""},
        Difference{"ElementForm", " elementFormDefault=\"qualified\"", "",
                   "elementFormDefault is missing"},
        Difference{"TwoDifferences",
                   "targetNamespace=\"http://www.orvant.com/OV_QLV100\" "
                   "elementFormDefault",
                   "attributeFormDefault",
                   "targetNamespace is missing; elementFormDefault is missing; "
                   "attributeFormDefault must not be there"},
        Difference{"Surplus", "qualified\"", "qualified\" version=\"1\"",
                   "version must not be there"},
        Difference{"Order",
                   "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
                   "xmlns:ov=\"http://www.orvant.com/OV_QLV100\"",
                   "xmlns:ov=\"http://www.orvant.com/OV_QLV100\" "
                   "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"",
                   "the attributes are in another order"},
        Difference{"Lines", " elementForm", "\n elementForm", "it is not on one line"},
        Difference{"Blanks", " elementForm", "  elementForm",
                   "blanks are not just one before each attribute"},
        Difference{"BlankAtTheEnd", "qualified\">", "qualified\" >",
                   "blanks are not just one before each attribute"},
        Difference{"Quotes", "\"qualified\"", "'qualified'", "values are not in double quotes"},
        Difference{"References", "qualified", "q&#117;alified", "values are given by references"}),
    Support::nameOf<Difference>);

TEST_F(ReadProblem, FindsNoFaultWithBlanksThatAreInOrder) {
    const std::string said = "1:1 the start tag is not that of a file of the suite: ";
    const std::string missing = "xmlns:xs is missing";
    const std::string tag =
        replaced(suiteHeader, "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" ", "");
    for (const std::string& start : {std::string(), mark})
        for (const char* next : {"</xs:schema>", "\n</xs:schema>", "<a/></xs:schema>"})
            EXPECT_THAT(problemOfSuite(start + tag + next),
                        StartsWith(said + missing + ". readXSD(true)"));
    for (const std::string& start : {std::string(), mark})
        EXPECT_THAT(
            problemOfSuite(start + replaced(suiteHeader, " elem", "  elem") + "</xs:schema>"),
            StartsWith(said + "blanks are not just one before each attribute. "));
    // In another encoding, the tag differs from its values.
    EXPECT_THAT(problemOfSuite("<?xml version='1.0' encoding='ISO-8859-1'?>" +
                               replaced(suiteHeader, "qualified", "\xE4") + "</xs:schema>"),
                HasSubstr("suite: elementFormDefault is \"\u00E4\", not \"qualified\". readXSD"));
}

TEST_F(ReadProblem, TellsThatOnlyTheFirstStartTagOfALineIsReplaced) {
    EXPECT_THAT(problemOfSuite("<!-- " + suiteHeader + " -->" + suiteSchema("")),
                AllOf(StartsWith("1:" + std::to_string(suiteHeader.size() + 10)),
                      HasSubstr(": the same text stands before it on its line. ")));
}

TEST_F(ReadProblem, NamesTheOtherPrefixOfASchema) {
    EXPECT_THAT(problemOfSuite("<xsd:schema xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"/>"),
                AllOf(StartsWith("1:1 "),
                      HasSubstr(": it is <xsd:schema>, not <xs:schema>; xmlns:xs "
                                "is missing; "),
                      HasSubstr("xmlns:xsd must not be there; it ends with \"/>\", not with \">\""),
                      EndsWith(". readAnyXSD() reads a schema whatever its start tag is")));
    EXPECT_THAT(problemOfSuite("<schema/>"),
                AllOf(HasSubstr(": it is <schema>, not <xs:schema>; xmlns:xs is missing; "),
                      Not(HasSubstr("readAnyXSD"))));
}

TEST_F(ReadProblem, IsTheStartTagBeforeWhatFollows) {
    EXPECT_THAT(problemOfSuite("<xs:schema xmlns:xs=\"a\">\n<xs:a><xs:b>\n</xs:b>\n</xs:a>\n"
                               "</xs:schema>"),
                StartsWith("1:1 the start tag"));
}

TEST_F(ReadProblem, IsAnEncodingThatIsNotRewritten) {
    EXPECT_THAT(problemOfSuite(inUtf16(suiteSchema(""))),
                AllOf(StartsWith("1:1 the file is in UTF-16"), HasSubstr("readAnyXSD()")));
    EXPECT_THAT(problemOfSuite(inUtf32(suiteSchema(""))),
                AllOf(StartsWith("1:1 the file is in UTF-32"), HasSubstr("readAnyXSD()")));
    EXPECT_THAT(problemOfSuite(inEbcdic(suiteSchema(""))),
                AllOf(StartsWith("1:1 the file is in an encoding that ASCII is no part of"),
                      HasSubstr("readAnyXSD()")));
    EXPECT_EQ("none", problemOfAny(inEbcdic(suiteSchema(""))));
    EXPECT_THAT(problemOfSuite(inUtf16("<a>\n</b>")), StartsWith("2:3 expected end of tag 'a'"));
}

TEST_F(ReadProblem, NamesARootThatIsNoSchema) {
    const std::string bytes = "<!-- c -->\n <Configuration/>";
    const std::string said = "2:2 the root element is \"Configuration\" of no namespace";
    const std::string wanted = ", which is no schema; wanted is \"schema\" of the namespace "
                               "\"http://www.w3.org/2001/XMLSchema\"";
    EXPECT_EQ(said + wanted, problemOfSuite(bytes));
    EXPECT_EQ(said + wanted, problemOfAny(bytes));
    EXPECT_EQ(said + "; readXSD(false) wants \"schema\" of the namespace "
                     "\"http://www.orvant.com/OV_XsdReader\"",
              problemOfReader(bytes));
    EXPECT_EQ("1:1 the root element is \"a:b\" of the namespace \"c\"" + wanted,
              problemOfAny("<a:b xmlns='d' xmlns:a='c'/>"));
}

TEST_F(ReadProblem, NamesAnEarlierDraft) {
    for (const std::string uri :
         {"http://www.w3.org/1999/XMLSchema", "http://www.w3.org/2000/10/XMLSchema"})
        expectForAll("<xsd:schema xmlns:xsd='" + uri + "'/>",
                     "1:1 the root element is \"xsd:schema\" of the namespace \"" + uri +
                         "\", an earlier draft of XML Schema, which is not read; wanted is "
                         "\"http://www.w3.org/2001/XMLSchema\"");
}

TEST_F(ReadProblem, TellsWhoReadsASchemaThatIsNotTheReaders) {
    EXPECT_EQ("1:1 the root element is \"xs:schema\" of the namespace "
              "\"http://www.w3.org/2001/XMLSchema\"; readXSD(false) wants \"schema\" of the "
              "namespace \"http://www.orvant.com/OV_XsdReader\". readXSD(true) reads a file of the "
              "suite, readAnyXSD() any schema",
              problemOfReader(suiteSchema("")));
}

// What was thrown for other reasons.

/// @return the problem of a reading that throws this before it has any bytes
template <typename Exception>
std::string problemOfThrown(const Exception& exception) {
    const auto problem =
        describeReadProblem("", SchemaDialect::Any, std::make_exception_ptr(exception));
    EXPECT_EQ(0u, problem.line);
    EXPECT_EQ(0u, problem.column);
    return problem.message;
}

TEST_F(ReadProblem, IsTheReasonWhereThereIsNoFile) {
    EXPECT_EQ("no place", problemOfThrown(SchemaFileFailure("no place")));
    EXPECT_EQ("no file can have this name", problemOfThrown(FileNameException()));
    EXPECT_EQ("std::bad_alloc", problemOfThrown(std::bad_alloc()));
}

// Finding the reason fails, too.

/// Is the memory of Xerces while it is in scope, and all used up.
class UsedUpMemory : public xercesc::MemoryManager {
public:
    UsedUpMemory() : m_before(std::exchange(xercesc::XMLPlatformUtils::fgMemoryManager, this)) {}
    UsedUpMemory(const UsedUpMemory&) = delete;
    UsedUpMemory& operator=(const UsedUpMemory&) = delete;
    ~UsedUpMemory() override { xercesc::XMLPlatformUtils::fgMemoryManager = m_before; }

    xercesc::MemoryManager* getExceptionMemoryManager() override { return m_before; }
    void* allocate(XMLSize_t) override { throw xercesc::OutOfMemoryException(); }
    void deallocate(void*) override {}

private:
    xercesc::MemoryManager* m_before;
};

TEST_F(ReadProblem, HasNoPlaceWithoutMemoryToFindIt) {
    const auto caught = std::make_exception_ptr(xml_schema::parsing());
    const UsedUpMemory memory;
    const XsdReadProblem problem = describeReadProblem("<a>", SchemaDialect::Any, caught);
    EXPECT_EQ(0u, problem.line);
    EXPECT_EQ(0u, problem.column);
    EXPECT_EQ("cannot be read", problem.message);
}

} // namespace
} // namespace Orvant
