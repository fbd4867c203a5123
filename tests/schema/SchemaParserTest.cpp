#include <EntitySupport.h>
#include <ReaderSupport.h>
#include <SchemaReferences.h>
#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <fstream>

#include <sys/resource.h>
#include <sys/stat.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

using SchemaConfinement = EarlierSchema;
using SchemaBadInput = EarlierSchema;

/// A schema in the reader's namespace with a DTD that holds these declarations.
std::string schemaWithDtd(const std::string& declarations, const std::string& content) {
    return "<!DOCTYPE schema [" + declarations + "]>" + readerSchema(content);
}

// What is external.

class ExternalSchemaReference : public testing::TestWithParam<SchemaReference> {};

TEST_P(ExternalSchemaReference, IsNotRead) {
    const TemporaryDirectory directory;
    directory.file(
        "external",
        "<!ENTITY e '<complexType name=\"Leaked\"/>'><!ATTLIST complexType b CDATA 'c'>");
    directory.file("content", "<complexType xmlns=\"" + readerNamespace + "\" name=\"Leaked\"/>");
    for (const std::string name : {"external", "content"})
        for (const std::string& url : {std::string(name), directory.file(name).toString(),
                                       "file://" + directory.file(name).toString()})
            expectOwnContentOnly(directory.file("schema.xsd"), filesReferringTo(url, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(References, ExternalSchemaReference, testing::ValuesIn(schemaReferences),
                         nameOf<SchemaReference>);

TEST_F(SchemaConfinement, TellsTheLogWhatItDidNotOpen) {
    const LogCapture log("DocumentParsing");
    writeFile(file, schemaWithDtd("<!ENTITY e SYSTEM 'file:///elsewhere.xml'>", "&e;"));
    reader.readXSD(false);
    EXPECT_THAT(log.text(), HasSubstr("Not opened: file:///elsewhere.xml"));
}

// What is inside the document.

TEST_F(SchemaConfinement, ExpandsEntitiesOfTheDocument) {
    writeFile(file, schemaWithDtd("<!ENTITY name 'Whole'><!ENTITY part '<sequence><element "
                                  "name=\"a\" type=\"&name;\"/></sequence>'>"
                                  "<!ENTITY % declaration '<!ENTITY text \"of it\">'>%declaration;"
                                  "<!ATTLIST element minOccurs CDATA '0'>",
                                  "<complexType name=\"&name;\"><annotation><documentation>all "
                                  "&text;!</documentation></annotation>&part;</complexType>"));
    reader.readXSD(false);
    const auto type = reader.getXsdTree().at("Whole");
    ASSERT_EQ(1u, type->children.size());
    EXPECT_EQ("Whole", type->children[0]->type);
    EXPECT_EQ(0, type->children[0]->minOccurs);
    reader.writeXSD(file, true);
    EXPECT_THAT(readFile(file), HasSubstr("<xs:documentation>all of it!</xs:documentation>"));
}

TEST_F(SchemaConfinement, SkipsCommentsAndInstructionsWhereverTheyStand) {
    writeFile(file, schemaWithDtd("<!-- c --><?p i?><!ENTITY e '<!-- c --><?p i?>'>",
                                  "<!-- c --><?p i?>&e;<complexType name=\"A\"><annotation>"
                                  "<documentation>o<!-- c -->n<?p i?>e&e;</documentation>"
                                  "</annotation></complexType>") +
                        "<!-- c --><?p i?>");
    reader.readXSD(false);
    reader.writeXSD(file, true);
    EXPECT_THAT(readFile(file), HasSubstr("<xs:documentation>one</xs:documentation>"));
}

// Bounds.

struct Bound : Support::TestCase {
    std::size_t most;
    std::function<std::string(std::size_t)> schema; ///< with that number of what is bounded
};

class SchemaBound : public EarlierSchema, public testing::WithParamInterface<Bound> {};

TEST_P(SchemaBound, IsTheMostThatIsRead) {
    expectFailure(GetParam().schema(GetParam().most + 1), false, ConfigException::SourceNotFound);
    writeFile(file, GetParam().schema(GetParam().most));
    EXPECT_FALSE(failureOf([&] { reader.readXSD(false); }));
    EXPECT_EQ(1u, reader.getXsdTree().count("A"));
}

const std::string typeA = "<complexType name=\"A\"/>";

std::string declaredAttributes(std::size_t count) {
    std::string declarations = "<!ATTLIST u";
    for (std::size_t i = 0; i < count; ++i)
        declarations += " a" + std::to_string(i) + " CDATA #IMPLIED";
    return declarations + ">";
}

std::string attributes(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "=''";
    return text;
}

constexpr std::size_t mostExpanded = 10'000'000;

/// A schema that expands to so many characters, nearly all of them from references to one entity.
std::string expandedTo(std::size_t size) {
    // The tags and what belongs to them.
    const std::size_t own =
        std::string("schema</>complexType</> =''nameA =''xmlns").size() + readerNamespace.size();
    return schemaWithDtd("<!ENTITY e '" + std::string(10'000, 'x') + "'>",
                         typeA + repeated("&e;", (size - own) / 10'000) +
                             std::string((size - own) % 10'000, 'x'));
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, SchemaBound,
    testing::Values(Bound{"References", 10'000,
                          [](std::size_t count) {
                              return schemaWithDtd("<!ENTITY e 'x'>",
                                                   typeA + repeated("&e;", count));
                          }},
                    Bound{"ReferencesInAttributes", 10'000,
                          [](std::size_t count) {
                              return schemaWithDtd("<!ENTITY e 'x'>", typeA + "<u a='" +
                                                                          repeated("&e;", count) +
                                                                          "'/>");
                          }},
                    Bound{"Attributes", 100,
                          [](std::size_t count) {
                              return readerSchema(typeA + "<u" + attributes(count) + "/>");
                          }},
                    Bound{"DeclaredAttributes", 100,
                          [](std::size_t count) {
                              return schemaWithDtd(declaredAttributes(count), typeA + "<u/>");
                          }},
                    Bound{"Tags", 10'000,
                          [](std::size_t count) {
                              std::string tags; // besides schema and complexType
                              for (std::size_t i = 2; i < count; ++i)
                                  tags += "<u" + std::to_string(i) + "/>";
                              return readerSchema(typeA + tags);
                          }},
                    Bound{"NamesOfAttributes", 10'000,
                          [](std::size_t count) {
                              std::string tags; // besides name and xmlns
                              for (std::size_t i = 2; i < count; ++i)
                                  tags += "<u a" + std::to_string(i) + "=''/>";
                              return readerSchema(typeA + tags);
                          }},
                    Bound{"Depth", 1'000,
                          [](std::size_t depth) {
                              // One of them is the schema.
                              return readerSchema(typeA + repeated("<u>", depth - 1) +
                                                  repeated("</u>", depth - 1) + "<u/>");
                          }},
                    Bound{"DepthOfAnEmptyElement", 1'000,
                          [](std::size_t depth) {
                              return readerSchema(typeA + repeated("<u>", depth - 2) + "<u/><u/>" +
                                                  repeated("</u>", depth - 2));
                          }},
                    Bound{"ExpandedText", mostExpanded, expandedTo}),
    Support::nameOf<Bound>);

TEST_F(SchemaConfinement, RefusesWhateverReferencesMakeTooLarge) {
    const std::string long300(300, 'x');
    for (const std::string& unit :
         {std::string("<u/>"), '<' + long300 + "/>", "<u a='" + long300 + "'/>",
          "<u " + long300 + "=''/>", "<!--" + long300 + "-->", "<?u " + long300 + "?>",
          "<u>" + std::string(300, ' ') + "</u>", "<![CDATA[" + long300 + "]]>"}) {
        // 3 million characters at most, four times.
        const std::string entity = repeated(unit, 2'999'000 / unit.size());
        expectFailure(schemaWithDtd("<!ELEMENT u (v)><!ENTITY e \"" + entity + "\">",
                                    typeA + "<u>" + repeated("&e;", 4) + "</u>"),
                      false, ConfigException::SourceNotFound);
    }
}

/// A schema with references to one parameter entity of that length, and to thousands of others.
std::string withParameterEntities(std::size_t references, std::size_t length) {
    return schemaWithDtd("<!ENTITY e 'x'><!ENTITY % c '<!--" + std::string(length - 7, 'x') +
                             "-->'>" + repeated("%c;", references),
                         typeA + repeated("&e;", 9'000 - references));
}

TEST_F(SchemaConfinement, BoundsWhatParameterEntitiesMakeOfADtd) {
    using LengthAndMost = std::pair<std::size_t, std::size_t>;
    for (const auto& [length, most] :
         {LengthAndMost{50'000, 200}, {100'000, 100}, {2'000'000, 5}}) {
        expectFailure(withParameterEntities(most + 1, length), false,
                      ConfigException::SourceNotFound);
        writeFile(file, withParameterEntities(most, length));
        EXPECT_FALSE(failureOf([&] { XsdConfigReader(file).readXSD(false); })) << length;
    }
}

TEST_F(SchemaConfinement, ReadsADocumentOfAnySizeWithoutReferences) {
    writeFile(file, schemaWithDtd("", typeA + std::string(mostExpanded + 1, 'x')));
    reader.readXSD(false);
    EXPECT_EQ(1u, reader.getXsdTree().count("A"));
}

TEST_F(SchemaConfinement, BoundsWhatADtdTakes) {
    const auto declaring = [](std::size_t elements) {
        std::string declarations;
        for (std::size_t i = 0; i < elements; ++i)
            declarations += "<!ATTLIST u" + std::to_string(i) + " a CDATA #IMPLIED>";
        return schemaWithDtd(declarations, typeA);
    };
    expectFailure(declaring(50'000), false, ConfigException::SourceNotFound);
    writeFile(file, declaring(4'000));
    EXPECT_FALSE(failureOf([&] { XsdConfigReader(file).readXSD(false); }));
}

TEST_F(SchemaConfinement, RefusesNestedEntities) {
    const std::string nested = nestedEntities("", "&", "lol");
    for (const std::string& bomb :
         {schemaWithDtd(nested, "&e6;"), schemaWithDtd(nested, "<u a='&e6;'/>"),
          schemaWithDtd(nested + "<!ATTLIST u a CDATA '&e6;'>", "<u/>"),
          schemaWithDtd(nestedEntities("% ", "&#37;", " ") + "%e6;", ""),
          schemaWithDtd("<!ENTITY a '&b;'><!ENTITY b '&a;'>", "&a;")})
        expectFailure(bomb, false, ConfigException::SourceNotFound);
}

TEST_F(SchemaConfinement, RefusesThemInAFileOfTheSuiteToo) {
    expectFailure("<!DOCTYPE schema [" + nestedEntities("", "&", "lol") + "]>\n" +
                      suiteSchema("&e6;"),
                  true, ConfigException::SourceNotFound);
}

TEST_F(SchemaConfinement, DoesNotFillTheMemoryWithWhatALargeEntityInAnAttributeComesTo) {
    const std::string value = repeated("&e;", 5'000);
    const std::string entity = "<!ENTITY e '" + std::string(200'000, 'x') + "'>";
    for (const std::string& bomb :
         {schemaWithDtd(entity, "<u a='" + value + "'/>"),
          schemaWithDtd(entity + "<!ATTLIST u a CDATA '" + value + "'>", "<u/>")})
        EXPECT_EQ(0, inOwnProcess([&] {
                      expectFailure(bomb, false, ConfigException::SourceNotFound);
                      rusage usage{};
                      getrusage(RUSAGE_SELF, &usage);
                      constexpr long kibibytesOfAGibibyte = 1 << 20;
                      if (usage.ru_maxrss > kibibytesOfAGibibyte)
                          return 1;
                      return HasFailure() ? 2 : 0;
                  }));
}

TEST_F(SchemaConfinement, RefusesQuicklyWhatNamespacesWouldMakeSlow) {
    std::string declarations;
    std::string uses;
    for (int i = 0; i < 200'000; ++i) {
        declarations += " xmlns:a" + std::to_string(i) + "='u" + std::to_string(i) + "'";
        uses += " a" + std::to_string(i) + ":x=''";
    }
    // If the prefixes are resolved, it takes minutes and the tests' time limit ends it.
    expectFailure(readerSchema("<u" + declarations + uses + "/>"), false,
                  ConfigException::SourceNotFound);
}

TEST_F(SchemaConfinement, RefusesAPrefixThatIsNotDeclared) {
    expectFailure(readerSchema("<u:v/>"), ConfigException::SourceNotFound);
}

// What is not a schema, or a difficult one.

TEST_F(SchemaBadInput, NotWellFormed) {
    for (const std::string bytes :
         {"<", "text", "<a><b></a></b>", "<a b=c/>", "<a>&nowhere;</a>", "<a/><b/>", "\xff\xfe<",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xc3</a>"})
        expectFailure(bytes, ConfigException::SourceNotFound);
    expectFailure(std::string("<a>\0</a>", 8), ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, Empty) {
    expectFailure("", ConfigException::SourceNotFound);
    expectFailure(" \n", ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, AnotherDocumentElement) {
    expectFailure("<a/>", ConfigException::ParserReportedErrors);
    expectFailure("<Configuration version=\"1\"/>", ConfigException::ParserReportedErrors);
    expectFailure("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"/>",
                  ConfigException::ParserReportedErrors);
}

TEST_F(SchemaBadInput, TruncatedAtEveryByte) {
    const std::string suiteFile = readFile(file);
    // Without the last line feed it is whole.
    for (std::size_t size = 0; size + 1 < suiteFile.size(); ++size)
        expectFailure(suiteFile.substr(0, size), true, ConfigException::SourceNotFound);
    reader.writeXSD(file, false);
    const std::string readersOwn = readFile(file);
    for (std::size_t size = 0; size + 1 < readersOwn.size(); ++size)
        expectFailure(readersOwn.substr(0, size), false, ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, AnyByteReplaced) {
    const std::string whole = readFile(file);
    const std::string replacements("<\"\0\xff ", 5);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = replacements[at % replacements.size()];
        writeFile(file, bytes);
        const auto failure = failureOf([&] { reader.readXSD(true); });
        EXPECT_TRUE(!failure || failure == ConfigException::SourceNotFound ||
                    failure == ConfigException::ParserReportedErrors)
            << at;
        ASSERT_EQ(bytes, readFile(file));
    }
}

TEST_F(SchemaBadInput, Utf16) {
    std::string wide = "\xff\xfe";
    for (const char byte : readFile(file))
        wide += {byte, '\0'};
    // It is XML, but nothing in it is rewritten.
    expectFailure(wide, ConfigException::ParserReportedErrors);
}

TEST_F(SchemaBadInput, ADirectory) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    std::filesystem::create_directory(directory.path() / "schema.xsd");
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, AMissingFile) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_TRUE(filesIn(directory).empty());
}

TEST_F(SchemaBadInput, AFileWithoutReadPermission) {
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0777));
    ASSERT_EQ(0, chmod((directory.path() / "schema.xsd").c_str(), 0));
    for (const bool sanitise : {true, false})
        EXPECT_EQ(0, asOrdinaryUser([&] {
                      const auto failure = failureOf([&] { reader.readXSD(sanitise); });
                      if (failure != ConfigException::SourceNotFound)
                          return 1;
                      return earlierTree == reader.getXsdTree() ? 0 : 2;
                  }));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, ADirectoryWithoutWritePermission) {
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0555));
    const std::string before = readFile(file);
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  if (failureOf([&] { reader.readXSD(true); }) != ConfigException::SourceNotFound)
                      return 1;
                  const auto written = [&](const FileName& target) {
                      return failureOf([&] { reader.writeXSD(target, true); });
                  };
                  if (written(file) != ConfigException::SourceNotFound)
                      return 2;
                  return written(directory.file("new")) == ConfigException::SourceNotFound ? 0 : 3;
              }));
    EXPECT_EQ(before, readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0700));
}

TEST_F(SchemaBadInput, AMinOccursThatIsNoNumber) {
    const std::string content = "<complexType name=\"A\"><sequence><element name=\"a\" "
                                "minOccurs=\"many\"/></sequence></complexType>";
    expectFailure(readerSchema(content), ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, TextWhereElementsBelong) {
    writeFile(file, suiteSchema("text\n<xs:complexType name=\"A\">\ntext &amp; text\n<xs:sequence>"
                                "\ntext\n<xs:element name=\"a\">text</xs:element>\n</xs:sequence>\n"
                                "text\n</xs:complexType>\n<![CDATA[text]]>\n"));
    reader.readXSD(true);
    EXPECT_EQ((Pairs{{"a", ""}}), reader.getSubTypes("A"));
}

TEST_F(SchemaBadInput, TenMegabytesOnOneLine) {
    std::string types;
    for (int i = 0; types.size() < 10'000'000; ++i)
        types += "<xs:complexType name=\"T" + std::to_string(i) + "\"/>";
    const std::string bytes = suiteHeader + types + "</xs:schema>";
    writeFile(file, bytes);
    // One replacement per line: the end tag keeps its prefix.
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
    EXPECT_EQ(bytes, readFile(file));

    writeFile(file, suiteHeader +
                        "\n<xs:complexType name=\"A\">\n<xs:annotation>\n"
                        "<xs:documentation>" +
                        std::string(10'000'000, 'x') +
                        "</xs:documentation>\n</xs:annotation>\n</xs:complexType>\n</xs:schema>");
    reader.readXSD(true);
    EXPECT_EQ(1u, reader.getXsdTree().size());
    reader.writeXSD(directory.file("written.xsd"), true);
    EXPECT_GT(readFile(directory.file("written.xsd")).size(), 10'000'000u);
}

TEST_F(SchemaBadInput, TwoThousandTypesOfTwentyElementsEach) {
    std::string lines;
    for (int type = 0; type < 2000; ++type) {
        lines += "<xs:complexType name=\"T" + std::to_string(type) + "\">\n<xs:sequence>\n";
        for (int child = 0; child < 20; ++child)
            lines += "<xs:element name=\"c" + std::to_string(child) + "\" type=\"T" +
                     std::to_string((type + child + 1) % 2000) +
                     (child == 0 ? "\"/>\n" : "\" minOccurs=\"0\"/>\n");
        lines += "</xs:sequence>\n</xs:complexType>\n";
    }
    writeFile(file, suiteSchema(lines));
    reader.readXSD(true);
    EXPECT_EQ(2000u, reader.getXsdTree().size());
    EXPECT_EQ(20u, reader.getSubTypes("T1999").size());
    // All of them through one chain of required children.
    reader.keepXSDElement({"T1000"});
    EXPECT_EQ(2000u, reader.getXsdTree().size());
    reader.keepXSDChildElement("T0", {"c19"});
    EXPECT_EQ(2u, reader.getSubTypes("T0").size());
    reader.writeXSD(directory.file("written.xsd"), true);
    XsdConfigReader other(directory.file("written.xsd"));
    other.readXSD(true);
    EXPECT_EQ(reader.getXsdTree().size(), other.getXsdTree().size());
}

TEST_F(SchemaBadInput, TypesThatContainThemselvesAndEachOther) {
    writeFile(file,
              suiteSchema("<xs:complexType name=\"A\">\n<xs:sequence>\n"
                          "<xs:element name=\"a\" type=\"A\"/>\n"
                          "<xs:element name=\"b\" type=\"B\"/>\n</xs:sequence>\n"
                          "</xs:complexType>\n<xs:complexType name=\"B\">\n<xs:sequence>\n"
                          "<xs:element name=\"a\" type=\"A\" minOccurs=\"0\"/>\n</xs:sequence>\n"
                          "</xs:complexType>\n<xs:element name=\"a\" type=\"A\"/>\n"));
    reader.readXSD(true);
    reader.keepXSDElement({"B"});
    EXPECT_EQ(2u, reader.getXsdTree().size());
    reader.keepXSDChildElement("B", {});
    EXPECT_EQ(2u, reader.getXsdTree().size());
    EXPECT_TRUE(reader.getSubTypes("B").empty());
}

TEST_F(SchemaBadInput, AFileTooLargeToBeASchema) {
    std::filesystem::resize_file(directory.path() / "schema.xsd", (std::uintmax_t{1} << 30U) + 1);
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, ElementsNestedWithoutEnd) {
    std::string content;
    for (int i = 0; i < 3'000; ++i)
        content += "<complexType><sequence><element>";
    for (int i = 0; i < 3'000; ++i)
        content += "</element></sequence></complexType>";
    expectFailure(readerSchema(content), ConfigException::SourceNotFound);
}

} // namespace
} // namespace Orvant
