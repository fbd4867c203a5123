#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <type_traits>

namespace Orvant::Support {

struct ReplaceInFile {
    using type = void (XsdConfigReader::*)(const FileName&, const std::string&, const std::string&);
    friend type memberOf(ReplaceInFile);
};
template struct PrivateMember<ReplaceInFile, &XsdConfigReader::replaceInFile>;

} // namespace Orvant::Support

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

const std::string lines = R"(  <xs:element name="machine" type="Machine"/>
  <xs:element name="part" type="Part"/>
  <xs:element name="nowhere" type="Nowhere"/>
  <xs:complexType name="Machine">
    <xs:sequence>
      <xs:element name="part" type="Part" maxOccurs="unbounded"/>
      <xs:element name="label" type="xs:string" minOccurs="0"/>
      <xs:element name="note" type="Note" minOccurs="0"/>
    </xs:sequence>
    <xs:attribute name="serial" type="xs:string" use="required"/>
    <xs:attribute name="comment" type="xs:string" use="optional"/>
  </xs:complexType>
  <xs:complexType name="Part"/>
  <xs:complexType name="Note">
    <xs:sequence>
      <xs:element name="text" type="xs:string"/>
    </xs:sequence>
  </xs:complexType>
  <xs:simpleType name="Colour">
    <xs:restriction base="xs:string">
      <xs:enumeration value="red"/>
    </xs:restriction>
  </xs:simpleType>)";

TEST(XsdConfigReader, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<XsdConfigReader>);
}

TEST(XsdConfigReader, IsMadeOfAFileNameWithoutSayingSo) {
    EXPECT_TRUE((std::is_convertible_v<const FileName&, XsdConfigReader>));
}

TEST(XsdConfigReader, DoesNotLookAtTheFileBeforeReading) {
    const TemporaryDirectory directory;
    const XsdConfigReader reader(directory.file("missing.xsd"));
    EXPECT_THAT(filesIn(directory), IsEmpty());
}

TEST(XsdConfigReader, KeepsACopyOfTheFileName) {
    const TemporaryDirectory directory;
    FileName name = directory.file("schema.xsd", suiteSchema(lines));
    XsdConfigReader reader(name);
    name = directory.file("other.xsd");
    reader.readXSD(true);
    EXPECT_EQ(4u, reader.getXsdTree().size());
}

TEST(XsdConfigReader, AnswersRootElementsInOrder) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    EXPECT_THAT(reader.getRootelements(),
                ElementsAre(Pair("machine", "Machine"), Pair("part", "Part")));
    const auto roots = reader.getXsdRootelements();
    ASSERT_EQ(2u, roots.size());
    EXPECT_EQ("machine", roots[0]->name);
    EXPECT_EQ(reader.getXsdTree().at("Machine"), roots[0]);
}

TEST(XsdConfigReader, AnswersTheTypes) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    Strings names;
    for (const auto& [name, type] : reader.getXsdTree())
        names.push_back(name);
    EXPECT_THAT(names, ElementsAre("Colour", "Machine", "Note", "Part"));
}

TEST(XsdConfigReader, AnswersSubTypes) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    EXPECT_THAT(
        reader.getSubTypes("Machine"),
        ElementsAre(Pair("part", "Part"), Pair("label", "xs:string"), Pair("note", "Note")));
    EXPECT_THAT(reader.getSubTypes("Part"), IsEmpty());
    EXPECT_THAT(reader.getSubTypes("Colour"), IsEmpty());
    EXPECT_THAT(reader.getSubTypes("machine"), IsEmpty());
    EXPECT_THAT(reader.getSubTypes(""), IsEmpty());
}

TEST(XsdConfigReader, AnswersAttributes) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    EXPECT_THAT(reader.getAttributes("Machine"), ElementsAre("serial", "comment"));
    EXPECT_THAT(reader.getAttributes("Part"), IsEmpty());
    EXPECT_THAT(reader.getAttributes("Nowhere"), IsEmpty());
}

TEST(XsdConfigReader, KeepsElements) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    reader.keepXSDElement({"Machine"});
    EXPECT_EQ(2u, reader.getXsdTree().size());
    EXPECT_THAT(reader.getSubTypes("Machine"),
                ElementsAre(Pair("part", "Part"), Pair("label", "xs:string")));
}

TEST(XsdConfigReader, KeepsChildElementsByNameAndPrunes) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    reader.keepXSDChildElement("Machine", {"label", "Note"});
    EXPECT_THAT(reader.getSubTypes("Machine"),
                ElementsAre(Pair("part", "Part"), Pair("label", "xs:string")));
    EXPECT_EQ(2u, reader.getXsdTree().size());
}

TEST(XsdConfigReader, KeepsChildAttributes) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    reader.keepXSDChildAttributes("Machine", {});
    EXPECT_THAT(reader.getAttributes("Machine"), ElementsAre("serial"));
}

TEST(XsdConfigReader, CopiesShareTheSchema) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    XsdConfigReader copy(reader);
    XsdConfigReader assigned(directory.file("other.xsd"));
    assigned = reader;
    copy.keepXSDElement({"Part"});
    EXPECT_THAT(reader.getRootelements(), ElementsAre(Pair("part", "Part")));
    EXPECT_THAT(assigned.getRootelements(), ElementsAre(Pair("part", "Part")));
    // What one of them reads again is its own.
    assigned.readXSD(true);
    EXPECT_EQ(2u, assigned.getRootelements().size());
    EXPECT_EQ(1u, copy.getRootelements().size());
}

TEST(XsdConfigReader, ReplacesTheTreeWhenItReadsAgain) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    const auto before = reader.getXsdRootelements();
    const auto typesBefore = reader.getXsdTree();
    writeFile(directory.file("schema.xsd"), suiteSchema("  <xs:complexType name=\"New\"/>"));
    reader.readXSD(true);
    EXPECT_THAT(reader.getRootelements(), IsEmpty());
    EXPECT_EQ(1u, reader.getXsdTree().count("New"));
    EXPECT_EQ("machine", before[0]->name);
    EXPECT_EQ(3u, typesBefore.at("Machine")->children.size());
}

TEST(XsdConfigReader, KeepsTheTreeWhenReadingFails) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    const auto tree = reader.getXsdTree();
    for (const std::string& bad : {std::string("<"), std::string("<a/>"), std::string()}) {
        writeFile(directory.file("schema.xsd"), bad);
        EXPECT_TRUE(failureOf([&] { reader.readXSD(true); }));
        EXPECT_EQ(tree, reader.getXsdTree());
    }
}

TEST(XsdConfigReader, DoesNothingBeforeItHasRead) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("missing.xsd"));
    EXPECT_TRUE(failureOf([&] { reader.readXSD(true); }));
    EXPECT_THAT(reader.getRootelements(), IsEmpty());
    EXPECT_THAT(reader.getXsdRootelements(), IsEmpty());
    EXPECT_THAT(reader.getXsdTree(), IsEmpty());
    EXPECT_THAT(reader.getSubTypes("A"), IsEmpty());
    EXPECT_THAT(reader.getAttributes("A"), IsEmpty());
    reader.keepXSDElement({"A"});
    reader.keepXSDChildElement("A", {});
    reader.keepXSDChildAttributes("A", {});
    const FileName target = directory.file("there.xsd", "stays");
    reader.writeXSD(target, true);
    reader.writeXSD(directory.file("new.xsd"), true);
    EXPECT_EQ("stays", readFile(target));
    EXPECT_THAT(filesIn(directory), ElementsAre("there.xsd"));
}

// Reading.

TEST(XsdConfigReader, LeavesTheFileAsItIsAndNothingBesideIt) {
    const TemporaryDirectory directory;
    const std::string bytes = suiteSchema(lines) + "<!-- no line feed -->";
    const FileName file = directory.file("schema.xsd", bytes);
    XsdConfigReader reader(file);
    reader.readXSD(true);
    EXPECT_EQ(bytes, readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST(XsdConfigReader, IsNotDisturbedByStaleScratchFiles) {
    const TemporaryDirectory directory;
    directory.file(sanitisingFile, suiteSchema("  <xs:complexType name=\"Stale\"/>"));
    directory.file(rewritingFile, "stale");
    ReaderOfSchema reader(directory, lines);
    EXPECT_EQ(4u, reader.getXsdTree().size());
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));

    directory.file(rewritingFile, "stale");
    reader.writeXSD(directory.file("written.xsd"), true);
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd", "written.xsd"));
    EXPECT_EQ(std::string::npos, readFile(directory.file("written.xsd")).find("stale"));
}

TEST(XsdConfigReader, LeavesTheCopyOfAFileThatItCannotReadAndTakesItNextTime) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("schema.xsd", "<xs:nothing");
    XsdConfigReader reader(file);
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
    EXPECT_THAT(filesIn(directory), ElementsAre(sanitisingFile, "schema.xsd"));
    writeFile(file, suiteSchema(lines));
    reader.readXSD(true);
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST(XsdConfigReader, ReadsAFileInTheReadersNamespaceWithoutACopy) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("model.xml", readerSchema("<complexType name=\"A\"/>"));
    // No copy can be made where a directory has its name.
    std::filesystem::create_directories(directory.path() / sanitisingFile / "full");
    XsdConfigReader reader(file);
    reader.readXSD(false);
    EXPECT_EQ(1u, reader.getXsdTree().count("A"));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
}

TEST(XsdConfigReader, ReadsBackWhatItWroteWithoutOutputFix) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    const FileName written = directory.file("model.xml");
    reader.writeXSD(written, false);
    XsdConfigReader other(written);
    other.readXSD(false);
    EXPECT_EQ(reader.getRootelements(), other.getRootelements());
    EXPECT_EQ(reader.getSubTypes("Machine"), other.getSubTypes("Machine"));
}

TEST(XsdConfigReader, ReadsAFileInTheWorkingDirectory) {
    const TemporaryDirectory directory;
    directory.file("schema.xsd", suiteSchema(lines));
    const auto former = std::filesystem::current_path();
    std::filesystem::current_path(directory.path());
    XsdConfigReader reader("schema.xsd");
    const auto failure = failureOf([&] { reader.readXSD(true); });
    std::filesystem::current_path(former);
    EXPECT_FALSE(failure);
    EXPECT_EQ(4u, reader.getXsdTree().size());
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST(XsdConfigReader, ReadsAndWritesFilesWithNamesInOtherScripts) {
    const TemporaryDirectory directory;
    const std::string name = "gr\xC3\xB6\xC3\x9F"
                             "e \xE6\xA9\x9F\xE6\xA2\xB0.xsd";
    XsdConfigReader reader(directory.file(name, suiteSchema(lines)));
    reader.readXSD(true);
    reader.writeXSD(directory.file("\xC3\xBC.xsd"), true);
    EXPECT_EQ(0u, readFile(directory.file("\xC3\xBC.xsd")).find("<?xml"));
}

// Failures.

TEST(XsdConfigReader, ReportsWhatKindOfFailureItWasAndWhere) {
    const TemporaryDirectory directory;
    XsdConfigReader wrongHeader(directory.file("header.xsd", "<xs:schema xmlns:xs=\"a\"/>"));
    EXPECT_EQ(ConfigException::ParserReportedErrors, failureOf([&] { wrongHeader.readXSD(true); }));
    EXPECT_EQ(ConfigException::ParserReportedErrors,
              failureOf([&] { wrongHeader.readXSD(false); }));

    XsdConfigReader illFormed(directory.file("ill.xsd", suiteHeader));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { illFormed.readXSD(true); }));

    XsdConfigReader missing(directory.file("missing.xsd"));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { missing.readXSD(true); }));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { missing.readXSD(false); }));

    XsdConfigReader noFileName(FileName(std::string("a\0b", 3)));
    EXPECT_EQ(ConfigException::UnknownError, failureOf([&] { noFileName.readXSD(true); }));
    EXPECT_EQ(ConfigException::UnknownError, failureOf([&] { noFileName.readXSD(false); }));

    try {
        missing.readXSD(true);
        FAIL() << "read";
    } catch (const ConfigException& e) {
        EXPECT_THAT(e.getLocation().file_name(), testing::HasSubstr("XsdConfigReader.cpp"));
    }
}

TEST(XsdConfigReader, ReportsASchemaTagThatDiffersFromBothSuiteHeaders) {
    const TemporaryDirectory directory;
    const Strings changed = {
        // Another order, another quote, one more blank, another namespace, prefix and ending.
        "<xs:schema xmlns:ov=\"http://www.orvant.com/OV_QLV100\" "
        "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" xmlns=\"http://www.orvant.com/OV_QLV100\" "
        "targetNamespace=\"http://www.orvant.com/OV_QLV100\" elementFormDefault=\"qualified\">",
        suiteHeader.substr(0, suiteHeader.size() - 1) + " >",
        suiteHeader.substr(0, suiteHeader.rfind(" elementFormDefault")) + ">",
        "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">",
    };
    for (const std::string& header : changed) {
        XsdConfigReader reader(directory.file("schema.xsd", header + "\n</xs:schema>\n"));
        EXPECT_EQ(ConfigException::ParserReportedErrors, failureOf([&] { reader.readXSD(true); }))
            << header;
    }
}

TEST(XsdConfigReader, ReportsAMinOccursThatIsNoNumberAsAParsingFailure) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(
        directory.file("schema.xsd", suiteSchema("<xs:complexType name=\"A\">\n<xs:sequence>\n"
                                                 "<xs:element name=\"a\" minOccurs=\"none\"/>\n"
                                                 "</xs:sequence>\n</xs:complexType>")));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
}

// Reasons.

/// @return LINE:COLUMN MESSAGE of the problem; nothing if there is none
std::optional<std::string> problemOf(const XsdConfigReader& reader) {
    const auto& problem = reader.getReadProblem();
    if (!problem)
        return std::nullopt;
    return std::to_string(problem->line) + ':' + std::to_string(problem->column) + ' ' +
           problem->message;
}

/// @return that of a file that cannot be read
std::optional<std::string> problemOf(const FileName& file, bool sanitise) {
    XsdConfigReader reader(file);
    EXPECT_TRUE(failureOf([&] { reader.readXSD(sanitise); }));
    return problemOf(reader);
}

TEST(SchemaReadProblem, IsThatOfTheLastReading) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("schema.xsd", "<a>\n</b>");
    XsdConfigReader reader(file);
    EXPECT_EQ(std::nullopt, problemOf(reader));
    EXPECT_TRUE(failureOf([&] { reader.readXSD(true); }));
    EXPECT_EQ("2:3 expected end of tag 'a'", problemOf(reader));
    EXPECT_TRUE(failureOf([&] { reader.readXSD(false); }));
    EXPECT_EQ("2:3 expected end of tag 'a'", problemOf(reader));
    writeFile(file, suiteSchema(lines));
    reader.readXSD(true);
    EXPECT_EQ(std::nullopt, problemOf(reader));
    EXPECT_TRUE(failureOf([&] { reader.readXSD(false); }));
    EXPECT_THAT(problemOf(reader).value_or(""), StartsWith("1:1 the root element is"));
}

TEST(SchemaReadProblem, IsCopied) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("schema.xsd", "<a>");
    XsdConfigReader reader(file);
    EXPECT_TRUE(failureOf([&] { reader.readXSD(true); }));
    const XsdConfigReader copy(reader);
    writeFile(file, suiteSchema(lines));
    reader.readXSD(true);
    EXPECT_NE(std::nullopt, problemOf(copy));
    EXPECT_EQ(std::nullopt, problemOf(reader));
}

TEST(SchemaReadProblem, IsLogged) {
    const TemporaryDirectory directory;
    const LogCapture log("XsdConfigReader");
    ReaderOfSchema(directory, lines);
    EXPECT_EQ("", log.text());
    const FileName file = directory.file("ill.xsd", suiteSchema("<xs:a>\n</xs:b>"));
    problemOf(file, true);
    EXPECT_THAT(log.text(), StartsWith(file.toString() + ":3:3: expected end of tag 'xs:a' "));
    const LogCapture next("XsdConfigReader");
    problemOf(directory.file("missing.xsd"), true);
    EXPECT_THAT(next.text(), StartsWith(directory.file("missing.xsd").toString() +
                                        ": No such file or directory "));
}

TEST(SchemaReadProblem, IsWhatTheSystemSaysOfTheFile) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.path() / "directory.xsd");
    const FileName huge = directory.file("huge.xsd", "");
    std::filesystem::resize_file(huge.toPath(), (std::uintmax_t{1} << 30U) + 1);
    for (const bool sanitise : {true, false}) {
        EXPECT_EQ("0:0 No such file or directory",
                  problemOf(directory.file("missing.xsd"), sanitise));
        EXPECT_EQ("0:0 Is a directory", problemOf(directory.file("directory.xsd"), sanitise));
        EXPECT_EQ("0:0 File too large", problemOf(huge, sanitise));
        EXPECT_EQ("0:0 it is not a regular file", problemOf(FileName("/dev/null"), sanitise));
        EXPECT_EQ("1:1 the file is empty", problemOf(directory.file("empty.xsd", ""), sanitise));
        EXPECT_EQ("0:0 no file can have this name",
                  problemOf(FileName(std::string("a\0b", 3)), sanitise));
    }
}

TEST(SchemaReadProblem, IsWhatTheUserMayNotDo) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("schema.xsd", suiteSchema(lines));
    std::filesystem::permissions(file.toPath(), std::filesystem::perms(0));
    const ReadOnlyFolder folder(directory.path());
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  return problemOf(file, true) == "0:0 Permission denied" &&
                                 problemOf(file, false) == "0:0 Permission denied"
                             ? 0
                             : 1;
              }));
    std::filesystem::permissions(file.toPath(), std::filesystem::perms(0444));
    const std::string copy = directory.file(sanitisingFile).toString();
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  return problemOf(file, true) ==
                                 "0:0 " + copy + " cannot be written: Permission denied"
                             ? 0
                             : 1;
              }));
}

TEST(SchemaReadProblem, NamesTheScratchFileThatIsInTheWay) {
    for (const std::string& name : {sanitisingFile, rewritingFile}) {
        const TemporaryDirectory directory;
        const FileName file = directory.file("schema.xsd", suiteSchema(lines));
        std::filesystem::create_directories(directory.path() / name / "full");
        EXPECT_EQ("0:0 the scratch file " + directory.file(name).toString() +
                      " cannot be made: something has that name and cannot be removed",
                  problemOf(file, true));
    }
}

TEST(SchemaReadProblem, IsThatTheFileIsAScratchFile) {
    for (const std::string& name : {sanitisingFile, rewritingFile}) {
        const TemporaryDirectory directory;
        const FileName scratch = directory.file(name, suiteSchema(lines));
        std::filesystem::create_symlink(name, directory.path() / "link.xsd");
        for (const FileName& file : {scratch, directory.file("link.xsd")})
            EXPECT_EQ("0:0 it has the name of a scratch file, or is a link to one: readXSD(true) "
                      "removes those",
                      problemOf(file, true));
    }
}

// How a file is rewritten before it is parsed, and a model when it is written.

/// A file as it is rewritten before it is parsed. It must not be a schema: a copy that can be
/// parsed is removed.
std::string sanitised(const std::string& bytes) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", bytes));
    EXPECT_TRUE(failureOf([&] { reader.readXSD(true); })) << bytes;
    return readFile(directory.file(sanitisingFile));
}

/// What is written for a schema in the reader's namespace that holds this.
std::string written(const std::string& content, bool fixOutput = true) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("model.xml", readerSchema(content)));
    reader.readXSD(false);
    reader.writeXSD(directory.file("written.xsd"), fixOutput);
    return readFile(directory.file("written.xsd"));
}

// One replacement.

/// What a file of these bytes becomes; without bytes, there is no file at first.
std::string replacedIn(const std::optional<std::string>& bytes, const std::string& from,
                       const std::string& to) {
    const TemporaryDirectory directory;
    const FileName file = directory.file("file.txt");
    if (bytes)
        writeFile(file, *bytes);
    directory.file(rewritingFile, "stale");
    XsdConfigReader reader(file);
    (reader.*memberOf(ReplaceInFile()))(file, from, to);
    EXPECT_THAT(filesIn(directory), ElementsAre("file.txt"));
    return readFile(file);
}

TEST(ReplaceInFile, ReplacesTheFirstOccurrenceInEachLine) {
    EXPECT_EQ("[bab\nb\n[\n", replacedIn("abab\nb\na\n", "a", "["));
    EXPECT_EQ("bab\n", replacedIn("abab", "a", ""));
}

TEST(ReplaceInFile, InsertsAtTheStartOfEachLineForNothing) {
    EXPECT_EQ("[a\n[\n[b\n", replacedIn("a\n\nb", "", "["));
}

TEST(ReplaceInFile, TakesAFileThatCannotBeOpenedForEmpty) {
    EXPECT_EQ("", replacedIn(std::nullopt, "a", "b"));
}

// Input.

TEST(SchemaInput, ReplacesBothSuiteHeaders) {
    EXPECT_EQ(readerHeader + '\n', sanitised(suiteHeader + '\n'));
    EXPECT_EQ(readerHeader + '\n', sanitised(suiteHeaderWithoutPrefix + '\n'));
    EXPECT_EQ("<?xml version=\"1.0\"?>" + readerHeader + "\n",
              sanitised("<?xml version=\"1.0\"?>" + suiteHeader + "\n"));
}

TEST(SchemaInput, ReadsSchemasUnderBothSuiteHeaders) {
    for (const std::string& header : {suiteHeader, suiteHeaderWithoutPrefix}) {
        const TemporaryDirectory directory;
        XsdConfigReader reader(directory.file(
            "schema.xsd", header + "\n<xs:complexType name=\"A\"/>\n</xs:schema>\n"));
        reader.readXSD(true);
        EXPECT_EQ(1u, reader.getXsdTree().count("A"));
    }
}

TEST(SchemaInput, LeavesOtherSchemaTagsButForTheirPrefix) {
    EXPECT_EQ("<schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">\n",
              sanitised("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">\n"));
}

TEST(SchemaInput, DropsAnEmptyImport) {
    EXPECT_EQ("  \n<import namespace=\"n\"/>\n",
              sanitised("  <xs:import/>\n<xs:import namespace=\"n\"/>\n"));
}

TEST(SchemaInput, RemovesTheFirstPrefixOfEachKindInALine) {
    EXPECT_EQ("<element name=\"a\" type=\"xs:int\"/>\n",
              sanitised("<xs:element name=\"a\" type=\"xs:int\"/>"));
    EXPECT_EQ("<element type=\"A\"/>\n</sequence>\n",
              sanitised("<xs:element type=\"ov:A\"/>\n</xs:sequence>\n"));
    EXPECT_EQ("<a b=\"ov:c\"/>\n", sanitised("<ov:a b=\"ov:c\"/>\n"));
    EXPECT_EQ("name=\"a\"\ntype=\"int\"/>\n", sanitised("name=\"a\"\ntype=\"xs:int\"/>\n"));
}

TEST(SchemaInput, LeavesThePrefixOfASecondElementInALine) {
    EXPECT_EQ("<element name=\"a\"/><xs:element name=\"b\"/>\n",
              sanitised("<xs:element name=\"a\"/><xs:element name=\"b\"/>\n"));
}

TEST(SchemaInput, ReadsTheFirstOfTwoElementsInALine) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\"/><xs:complexType name=\"B\"/>\n"
                                     "<xs:complexType name=\"C\"/>");
    EXPECT_EQ(2u, reader.getXsdTree().size());
    EXPECT_EQ(0u, reader.getXsdTree().count("B"));
}

TEST(SchemaInput, KeepsAPrefixedTypeNameInTheTree) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\">\n<xs:sequence>\n"
                                     "<xs:element name=\"a\" type=\"xs:int\"/>\n"
                                     "</xs:sequence>\n</xs:complexType>");
    EXPECT_EQ((Pairs{{"a", "xs:int"}}), reader.getSubTypes("A"));
}

TEST(SchemaInput, KeepsThePrefixOfASecondTypeNameForFiltersToUnderstand) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\">\n<xs:sequence>\n"
                                     "<!-- ov: --><xs:element name=\"b\" type=\"ov:B\"/>\n"
                                     "</xs:sequence>\n</xs:complexType>\n"
                                     "<xs:complexType name=\"B\"/>\n");
    EXPECT_EQ((Pairs{{"b", "ov:B"}}), reader.getSubTypes("A"));
    reader.keepXSDElement({"A"});
    EXPECT_EQ(1u, reader.getXsdTree().count("B"));
    reader.writeXSD(directory.file("written.xsd"), true);
    EXPECT_THAT(readFile(directory.file("written.xsd")), HasSubstr("type=\"ov:B\""));
}

TEST(SchemaInput, EndsEveryLineWithALineFeed) {
    EXPECT_EQ("a\n", sanitised("a"));
    EXPECT_EQ("a\n", sanitised("a\n"));
    EXPECT_EQ("a\n\nb\n", sanitised("a\n\nb"));
    EXPECT_EQ("\n", sanitised("\n"));
    EXPECT_EQ("", sanitised(""));
    EXPECT_EQ("a\r\nb\r\n", sanitised("a\r\nb\r\n"));
}

TEST(SchemaInput, RemovesBothPrefixesOfAnElementThatHoldsJustText) {
    EXPECT_EQ("<documentation>text</documentation>\n",
              sanitised("<xs:documentation>text</xs:documentation>\n"));
    EXPECT_EQ(
        "\t<documentation xml:lang=\"en\">a > b xs: c</documentation >  \r\n",
        sanitised("\t<xs:documentation xml:lang=\"en\">a > b xs: c</xs:documentation >  \r\n"));
    EXPECT_EQ("<unit>mm</unit>\n", sanitised("<ov:unit>mm</ov:unit>\n"));
    EXPECT_EQ("<sequence></sequence>\n", sanitised("<xs:sequence></xs:sequence>\n"));
}

TEST(SchemaInput, RemovesBothPrefixesOfAnElementBesideWhatIsNoElement) {
    EXPECT_EQ("<documentation>a</documentation> <!-- xs: -->\n",
              sanitised("<xs:documentation>a</xs:documentation> <!-- xs: -->\n"));
    EXPECT_EQ("<!-- c --><?p i?> <documentation>a<![CDATA[</b>]]></documentation><?p i?> text\n",
              sanitised("<!-- c --><?p i?> <xs:documentation>a<![CDATA[</b>]]></xs:documentation>"
                        "<?p i?> text\n"));
}

TEST(SchemaInput, RemovesNeitherPrefixOfAnElementBehindTheFirstOccurrence) {
    EXPECT_EQ("<!--  --> <xs:documentation>a</xs:documentation>\n",
              sanitised("<!-- xs: --> <xs:documentation>a</xs:documentation>\n"));
}

TEST(SchemaInput, RemovesThePrefixOfAnEndTagBehindText) {
    EXPECT_EQ("<documentation>one\n xs: two</documentation>\n",
              sanitised("<xs:documentation>one\n xs: two</xs:documentation>\n"));
    EXPECT_EQ("xs: two</documentation> <!-- c -->\n",
              sanitised("xs: two</xs:documentation> <!-- c -->\n"));
}

TEST(SchemaInput, ReadsDocumentationBesideComments) {
    const TemporaryDirectory directory;
    const Strings documentations = {
        "<xs:documentation>text</xs:documentation> <!-- xs:c -->",
        "<!-- c --> <xs:documentation>text</xs:documentation>",
        "<?p i?><xs:documentation>te<![CDATA[xt]]></xs:documentation><?p i?>",
        "<![CDATA[<]]><xs:documentation><!-- c -->text</xs:documentation><![CDATA[>]]>",
        "<xs:documentation><![CDATA[te\nxt]]></xs:documentation> <!-- c -->",
        "<xs:documentation>text\nxs: </xs:documentation> <?p i?>"};
    for (const std::string& documentation : documentations) {
        ReaderOfSchema reader(directory, "<xs:complexType name=\"A\">\n<xs:annotation>\n" +
                                             documentation +
                                             "\n</xs:annotation>\n</xs:complexType>\n");
        reader.writeXSD(directory.file("written.xsd"), true);
        EXPECT_THAT(readFile(directory.file("written.xsd")),
                    testing::ContainsRegex("<xs:documentation>te\n?xt"))
            << documentation;
    }
}

TEST(SchemaInput, LeavesLinesOfTwoElementsUnderTheRuleOfTheFirstOccurrence) {
    EXPECT_EQ(
        "<annotation><xs:documentation>text</xs:documentation></xs:annotation>\n",
        sanitised("<xs:annotation><xs:documentation>text</xs:documentation></xs:annotation>"));
    EXPECT_EQ("<documentation>a</xs:documentation><xs:documentation>b</xs:documentation>\n",
              sanitised("<xs:documentation>a</xs:documentation>"
                        "<xs:documentation>b</xs:documentation>"));
}

TEST(SchemaInput, ReadsDocumentationOnOneLineAndOnSeveral) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\">\n<xs:annotation>\n"
                                     "<xs:documentation>one line</xs:documentation>\n"
                                     "</xs:annotation>\n</xs:complexType>\n"
                                     "<xs:complexType name=\"B\">\n<xs:annotation>\n"
                                     "<xs:documentation>first line\nlast line</xs:documentation>\n"
                                     "</xs:annotation>\n</xs:complexType>\n");
    reader.writeXSD(directory.file("written.xsd"), true);
    const std::string text = readFile(directory.file("written.xsd"));
    EXPECT_THAT(text, HasSubstr("<xs:documentation>one line</xs:documentation>\n"));
    EXPECT_THAT(text, HasSubstr("<xs:documentation>first line\nlast line</xs:documentation>\n"));
}

// Output.

TEST(SchemaOutput, IsTheModelsOwnWithoutOutputFix) {
    const std::string text = written("<complexType name=\"A\"><attribute name=\"a\" type=\"int\"/>"
                                     "</complexType>",
                                     false);
    EXPECT_EQ(serialise(*parseSchema("<complexType name=\"A\"><attribute name=\"a\" type=\"int\"/>"
                                     "</complexType>")),
              text);
    EXPECT_EQ(0u, text.find("<?xml "));
    const auto body = text.find(modelHeader);
    ASSERT_NE(std::string::npos, body);
    for (auto tag = text.find('<', body); tag != std::string::npos; tag = text.find('<', tag + 1))
        EXPECT_THAT(text.substr(tag, 5),
                    testing::AnyOf(testing::StartsWith("<p1:"), testing::StartsWith("</p1:")));
}

TEST(SchemaOutput, HasNoByteOrderMark) {
    EXPECT_EQ('<', written("", true).front());
    EXPECT_EQ('<', written("", false).front());
}

TEST(SchemaOutput, StandsUnderTheSuiteHeader) {
    const std::string text = written("<complexType name=\"A\"/>");
    EXPECT_THAT(text, HasSubstr("\n" + suiteHeader + "\n"));
    EXPECT_THAT(text, HasSubstr("<xs:complexType name=\"A\"/>"));
    EXPECT_THAT(text, testing::EndsWith("</xs:schema>\n"));
    EXPECT_THAT(text, Not(HasSubstr("p1")));
}

TEST(SchemaOutput, OfAnEmptySchemaStandsUnderTheSuiteHeaderToo) {
    EXPECT_THAT(written(""), testing::EndsWith(suiteHeader + "\n</xs:schema>\n"));
    const TemporaryDirectory directory;
    const FileName file = directory.file("empty.xsd", written(""));
    XsdConfigReader reader(file);
    reader.readXSD(true);
    EXPECT_TRUE(reader.getXsdTree().empty());
}

TEST(SchemaOutput, RestoresThePrefixOfFiveBuiltInTypes) {
    const auto attribute = [](const std::string& type) {
        return "<attribute name=\"a\" type=\"" + type + "\"/>";
    };
    const auto extension = [](const std::string& base) {
        return "<complexType name=\"E\"><complexContent><extension base=\"" + base +
               "\"/></complexContent></complexType>";
    };
    std::string content = "<complexType name=\"A\">";
    for (const std::string type : {"int", "double", "string", "boolean", "anyType", "xs:int", "A"})
        content += attribute(type);
    content += "</complexType>";
    for (const std::string base : {"anyType", "string", "int", "xs:string", "A"})
        content += extension(base);
    const std::string text = written(content);
    for (const std::string type :
         {"xs:int", "xs:double", "xs:string", "boolean", "anyType", "xs:int", "A"})
        EXPECT_THAT(text, HasSubstr("<xs:attribute name=\"a\" type=\"" + type + "\"/>"));
    for (const std::string base : {"xs:anyType", "xs:string", "int", "xs:string", "A"})
        EXPECT_THAT(text, HasSubstr("<xs:extension base=\"" + base + "\"/>"));
    for (const std::string lost : {"type=\"int\"", "type=\"double\"", "type=\"string\"",
                                   "base=\"anyType\"", "base=\"string\"", "xs:xs:"})
        EXPECT_THAT(text, Not(HasSubstr(lost)));
}

std::string typeWithDocumentation(const std::string& text) {
    return "<complexType name=\"A\"><annotation><documentation>" + text +
           "</documentation></annotation></complexType>";
}

TEST(SchemaOutput, RestoresBothPrefixesOfADocumentation) {
    EXPECT_THAT(written(typeWithDocumentation("p1: p1:text")),
                HasSubstr("<xs:documentation>p1: p1:text</xs:documentation>\n"));
    // On each line between its tags, the first occurrence is replaced, as on all others.
    EXPECT_THAT(written(typeWithDocumentation("p1: a\np1: p1: b\np1: c")),
                HasSubstr("<xs:documentation>p1: a\nxs: p1: b\np1: c</xs:documentation>\n"));
}

TEST(SchemaOutput, ReplacesNamesOfTypesInADocumentationToo) {
    EXPECT_THAT(
        written(typeWithDocumentation("type=\"int\" type=\"int\" base=\"string\"\n"
                                      "type=\"double\" type=\"string\" base=\"anyType\"")),
        HasSubstr("<xs:documentation>type=\"xs:int\" type=\"int\" base=\"xs:string\"\n"
                  "type=\"xs:double\" type=\"xs:string\" base=\"xs:anyType\"</xs:documentation>"));
}

class Documentation : public testing::TestWithParam<const char*> {};

TEST_P(Documentation, IsReadBackAsItWasWritten) {
    const TemporaryDirectory directory;
    const std::string model = serialise(*parseSchema(typeWithDocumentation(GetParam())));
    XsdConfigReader reader(directory.file("model.xml", model));
    reader.readXSD(false);
    reader.writeXSD(directory.file("suite.xsd"), true);
    XsdConfigReader again(directory.file("suite.xsd"));
    again.readXSD(true);
    again.writeXSD(directory.file("again.xml"), false);
    EXPECT_EQ(model, readFile(directory.file("again.xml")));
}

INSTANTIATE_TEST_SUITE_P(
    SchemaOutput, Documentation,
    testing::Values("", " ", "\n", "\n \n", " \t\n\t ", "&#13;", "&#13;\n", "text", " text ",
                    "\ntext", "text\n", "text\n\n  ", "one\ntwo\n\nthree",
                    "p1: p1:", "one p1:\ntwo p1:", "xs: ", "one xs: two\nxs:three", "]]&gt;",
                    "&lt;/p1:documentation> &lt;p1:documentation>", "&lt;!-- \n -->",
                    "'\"type='int' &amp;amp;", "&lt;xs:schema>\n&lt;/xs:schema>"));

TEST(SchemaOutput, LeavesTheSchemaAsItIs) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\"/>");
    reader.writeXSD(directory.file("1.xsd"), true);
    reader.writeXSD(directory.file("2.xsd"), true);
    EXPECT_EQ(readFile(directory.file("1.xsd")), readFile(directory.file("2.xsd")));
    EXPECT_THAT(filesIn(directory), ElementsAre("1.xsd", "2.xsd", "schema.xsd"));
}

TEST(SchemaOutput, TakesThePlaceOfAFile) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\"/>");
    const FileName target = directory.file("target.xsd", std::string(100'000, 'x'));
    reader.writeXSD(target, true);
    EXPECT_THAT(readFile(target), Not(HasSubstr("x>x")));
    EXPECT_LT(readFile(target).size(), 1000u);
}

TEST(SchemaOutput, IsReadBackAsTheSameSchema) {
    const std::string content = R"(<xs:complexType name="A">
<xs:annotation>
<xs:documentation>text &amp; &lt;text&gt;</xs:documentation>
</xs:annotation>
<xs:sequence>
<xs:element name="a" type="xs:int" minOccurs="0" maxOccurs="unbounded"/>
<xs:element name="b" type="B"/>
</xs:sequence>
<xs:attribute name="c" type="xs:string" use="optional"/>
</xs:complexType>
<xs:simpleType name="B">
<xs:restriction base="xs:string">
<xs:enumeration value="x"/>
</xs:restriction>
</xs:simpleType>
<xs:element name="r" type="A"/>)";
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, content);
    const FileName first = directory.file("first.xsd");
    reader.writeXSD(first, true);
    XsdConfigReader again(first);
    again.readXSD(true);
    EXPECT_EQ(reader.getSubTypes("A"), again.getSubTypes("A"));
    EXPECT_EQ(reader.getRootelements(), again.getRootelements());
    again.writeXSD(directory.file("second.xsd"), true);
    EXPECT_EQ(readFile(first), readFile(directory.file("second.xsd")));
}

// Places that cannot be written.

TEST(SchemaOutput, ReportsAPlaceThatCannotBeWritten) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\"/>");
    std::filesystem::create_directory(directory.path() / "directory");
    for (const std::string place : {"nowhere/file.xsd", "directory", "schema.xsd/file.xsd"}) {
        EXPECT_EQ(ConfigException::SourceNotFound,
                  failureOf([&] { reader.writeXSD(directory.file(place), true); }))
            << place;
        EXPECT_EQ(ConfigException::SourceNotFound,
                  failureOf([&] { reader.writeXSD(directory.file(place), false); }))
            << place;
    }
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.writeXSD("", true); }));
    EXPECT_EQ(ConfigException::SourceNotFound,
              failureOf([&] { reader.writeXSD(FileName(std::string("a\0b", 3)), true); }));
    EXPECT_THAT(filesIn(directory), ElementsAre("directory", "schema.xsd"));
    EXPECT_TRUE(std::filesystem::is_directory(directory.path() / "directory"));
}

TEST(SchemaOutput, ReportsThatTheOutputFixCouldNotBeMade) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\"/>");
    std::filesystem::create_directories(directory.path() / rewritingFile / "full");
    const FileName target = directory.file("target.xsd");
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.writeXSD(target, true); }));
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "target.xsd"));
    reader.writeXSD(target, false);
    EXPECT_THAT(readFile(target), HasSubstr(modelHeader));
}

} // namespace
} // namespace Orvant
