#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <type_traits>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

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
    // What one of them reads anew is its own.
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
    // A copy could not be made where a directory has its name.
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
        // Another order, another quote, a blank more, another namespace, prefix and ending.
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

} // namespace
} // namespace Orvant
