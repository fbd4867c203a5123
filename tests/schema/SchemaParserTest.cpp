#include <EntitySupport.h>
#include <ReaderSupport.h>
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

/// A schema in the reader's namespace with a DTD that holds these declarations.
std::string schemaWithDtd(const std::string& declarations, const std::string& content) {
    return "<!DOCTYPE schema [" + declarations + "]>" + readerSchema(content);
}

// What is external.

struct Reference : Support::TestCase {
    const char* doctype; ///< URL stands for what it refers to
    const char* content;
};

class ExternalSchemaReference : public testing::TestWithParam<Reference> {};

/// A suite file with the reference, and a reader's own.
Strings filesReferringTo(const std::string& url, const Reference& reference) {
    std::string doctype = reference.doctype;
    for (auto at = doctype.find("URL"); at != std::string::npos; at = doctype.find("URL"))
        doctype.replace(at, 3, url);
    const std::string content = reference.content;
    return {doctype + '\n' +
                suiteSchema("<xs:complexType name=\"A\"/>\n" + content +
                            "\n<xs:element name=\"a\" type=\"A\"/>"),
            doctype + readerSchema("<complexType name=\"A\"/>" + content +
                                   "<element name=\"a\" type=\"A\"/>")};
}

/// Reads both files, and expects what they hold themselves.
void expectOwnContentOnly(const FileName& file, const Strings& contents) {
    for (const bool sanitise : {true, false}) {
        writeFile(file, contents[sanitise ? 0 : 1]);
        XsdConfigReader reader(file);
        reader.readXSD(sanitise);
        EXPECT_THAT(reader.getXsdTree(), ElementsAre(Pair("A", testing::_)));
        EXPECT_THAT(reader.getRootelements(), ElementsAre(Pair("a", "A")));
        EXPECT_THAT(reader.getAttributes("A"), IsEmpty());
    }
}

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

TEST_P(ExternalSchemaReference, IsNotWaitedFor) {
    const TemporaryDirectory directory;
    ASSERT_EQ(0, mkfifo((directory.path() / "pipe").c_str(), 0600));
    expectOwnContentOnly(directory.file("schema.xsd"),
                         filesReferringTo(directory.file("pipe").toString(), GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    References, ExternalSchemaReference,
    testing::Values(
        Reference{"Entity", "<!DOCTYPE a [<!ENTITY e SYSTEM 'URL'>]>", "&e;"},
        Reference{"PublicEntity", "<!DOCTYPE a [<!ENTITY e PUBLIC 'p' 'URL'>]>", "&e;"},
        Reference{"ParameterEntity", "<!DOCTYPE a [<!ENTITY % e SYSTEM 'URL'> %e;]>", ""},
        Reference{"Dtd", "<!DOCTYPE a SYSTEM 'URL'>", ""},
        Reference{"PublicDtd", "<!DOCTYPE a PUBLIC 'p' 'URL'>", ""},
        Reference{"Import", "<!DOCTYPE a [<!ENTITY i 'i'>]>",
                  "<xs:import xmlns:xs='http://www.w3.org/2001/XMLSchema' schemaLocation='URL'/>"},
        Reference{"Include", "", "<include schemaLocation='content'/>"},
        Reference{"SchemaLocation", "",
                  "<u xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                  "xsi:schemaLocation='http://www.orvant.com/OV_XsdReader content'/>"}),
    Support::nameOf<Reference>);

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
    std::function<std::string(std::size_t)> schema; ///< with a number of what is bound
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

/// A schema that comes to so many characters, nearly all of them in references of one entity.
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

/// A schema with references of one parameter entity of that length, and thousands of others.
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
    // With the prefixes resolved it takes minutes, which the time limit of tests ends.
    expectFailure(readerSchema("<u" + declarations + uses + "/>"), false,
                  ConfigException::SourceNotFound);
}

TEST_F(SchemaConfinement, RefusesAPrefixThatIsNotDeclared) {
    expectFailure(readerSchema("<u:v/>"), ConfigException::SourceNotFound);
}

} // namespace
} // namespace Orvant
