// Reading schemas whatever they are written like.

#include <PruningTestSupport.h>

#include <ReaderSupport.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

const std::string machine = R"(<xs:element name="machine" type="Machine"/>
<xs:element name="part" type="Part"/>
<xs:complexType name="Machine">
<xs:annotation>
<xs:documentation>text</xs:documentation>
</xs:annotation>
<xs:sequence>
<xs:element name="part" type="Part" maxOccurs="unbounded"/>
<xs:element name="label" type="xs:string" minOccurs="0"/>
<xs:element name="note" type="Note" minOccurs="0"/>
<xs:element name="inner">
<xs:complexType>
<xs:sequence>
<xs:element name="colour" type="Colour" minOccurs="0"/>
</xs:sequence>
</xs:complexType>
</xs:element>
</xs:sequence>
<xs:attribute name="serial" type="xs:string" use="required"/>
<xs:attribute name="comment" type="xs:string" use="optional"/>
</xs:complexType>
<xs:complexType name="Part">
<xs:choice>
<xs:element name="bolt" type="Bolt"/>
</xs:choice>
</xs:complexType>
<xs:complexType name="Bolt">
<xs:complexContent>
<xs:extension base="Part">
<xs:sequence>
<xs:element name="size" type="xs:int" minOccurs="0"/>
</xs:sequence>
<xs:attribute name="thread" type="xs:string" use="optional"/>
</xs:extension>
</xs:complexContent>
</xs:complexType>
<xs:complexType name="Note">
<xs:complexContent>
<xs:restriction base="Part">
</xs:restriction>
</xs:complexContent>
</xs:complexType>
<xs:simpleType name="Colour">
<xs:restriction base="xs:string">
<xs:enumeration value="red"/>
</xs:restriction>
</xs:simpleType>)";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::string utf16(const std::string& ascii) {
    std::string bytes = "\xFE\xFF";
    for (const char c : ascii)
        bytes.append(1, '\0').append(1, c);
    return bytes;
}

/// The schema above, written otherwise.
struct Dialect : TestCase {
    std::string schema;
};

const std::string xmlSchema = "http://www.w3.org/2001/XMLSchema";

std::string withPrefixOfOwnNames(std::string text, const std::string& prefix) {
    for (const std::string type : {"Machine", "Part", "Note", "Colour", "Bolt"})
        for (const std::string attribute : {"type=\"", "base=\""})
            text = replaced(text, attribute + type, attribute + prefix + type);
    return text;
}

class AnyDialect : public testing::TestWithParam<Dialect> {
protected:
    void expectSame(const std::function<void(XsdConfigReader&)>& filter) {
        ReaderOfSchema suite(m_directory, machine);
        XsdConfigReader any(m_directory.file("any.xsd", GetParam().schema));
        any.readAnyXSD();
        filter(suite);
        filter(any);
        EXPECT_EQ(answersOf(suite), answersOf(any));
        suite.writeXSD(m_directory.file("suite-written.xsd"), false);
        any.writeXSD(m_directory.file("any-written.xsd"), false);
        EXPECT_EQ(readFile(m_directory.file("suite-written.xsd")),
                  readFile(m_directory.file("any-written.xsd")));
        EXPECT_EQ(prunedBy(suite).stayed, prunedBy(any).stayed);
        expectSameReadBack(any, prunedBy(any).text);
    }

private:
    /// Expects that what is written has lost what the reader has lost.
    void expectSameReadBack(XsdConfigReader& reader, const std::string& text) {
        XsdConfigReader again(m_directory.file("again.xsd", text));
        again.readAnyXSD();
        EXPECT_EQ(answersOf(reader), answersOf(again));
    }

    TemporaryDirectory m_directory;
};

TEST_P(AnyDialect, IsReadAsTheSuites) {
    expectSame([](XsdConfigReader&) {});
}

TEST_P(AnyDialect, IsFilteredAsTheSuites) {
    expectSame([](XsdConfigReader& reader) { reader.keepXSDElement({"Machine"}); });
    expectSame([](XsdConfigReader& reader) { reader.keepXSDElement({"Note", "ov:Colour"}); });
    expectSame([](XsdConfigReader& reader) { reader.keepXSDElement({}); });
    expectSame([](XsdConfigReader& reader) {
        reader.keepXSDChildElement("Machine", {"label"});
        reader.keepXSDChildElement("Bolt", {});
        reader.keepXSDChildAttributes("Machine", {});
        reader.keepXSDChildAttributes("Bolt", {});
    });
}

INSTANTIATE_TEST_SUITE_P(
    AnySchema, AnyDialect,
    testing::Values(
        Dialect{{"Suite"}, suiteSchema(machine)},
        Dialect{{"SuiteWithPrefix"}, suiteSchema(withPrefixOfOwnNames(machine, "ov:"))},
        Dialect{{"OtherPrefix"},
                "<xsd:schema xmlns:xsd='" + xmlSchema +
                    "' targetNamespace='urn:t'"
                    " xmlns='urn:t'>" +
                    replaced(machine, "xs:", "xsd:") + "</xsd:schema>"},
        Dialect{{"PrefixesInTurn"},
                "<ov:schema xmlns:ov='" + xmlSchema +
                    "' targetNamespace='urn:t' xmlns:xs='urn:t'>" +
                    withPrefixOfOwnNames(replaced(machine, "xs:", "ov:"), "xs:") + "</ov:schema>"},
        Dialect{{"DefaultNamespaceIsThatOfXmlSchema"},
                "<schema xmlns='" + xmlSchema + "' targetNamespace='urn:t' xmlns:t='urn:t'>" +
                    withPrefixOfOwnNames(replaced(machine, "xs:", ""), "t:") + "</schema>"},
        Dialect{{"NoTargetNamespace"},
                "<xs:schema xmlns:xs='" + xmlSchema + "'>" + machine + "</xs:schema>"},
        Dialect{{"SingleQuotes"}, replaced(suiteSchema(machine), "\"", "'")},
        Dialect{{"OneLine"}, replaced(suiteSchema(machine), "\n", "")},
        Dialect{{"ManyLines"}, replaced(suiteSchema(machine), " ", "\n\t")},
        Dialect{{"CarriageReturns"}, replaced(suiteSchema(machine), "\n", "\r")},
        Dialect{{"Utf16"}, utf16(suiteSchema(machine))},
        Dialect{{"Latin1"},
                "<?xml version='1.0' encoding='ISO-8859-1'?><!-- \xE4 -->" + suiteSchema(machine)},
        Dialect{{"SpaceAroundNames"},
                suiteSchema(replaced(replaced(replaced(machine, "=\"", "=\" \n"), "\"/>",
                                              "&#13;&#9;\"/>"),
                                     "\" \nred&#13;&#9;\"", "\"red\""))},
        Dialect{{"OtherAttributes"},
                replaced(suiteSchema(machine), "<xs:element ",
                         "<xs:element t:name='no' xmlns:t='urn:t' t:type='no' id='i' ")},
        Dialect{{"Comments"}, replaced(suiteSchema(machine), ">\n<", "><!-- c --><?p?>\n<?p?><")},
        Dialect{{"OtherElements"},
                replaced(suiteSchema(machine), "<xs:sequence>",
                         "<xs:sequence><x xmlns='urn:x'><xs:element name='no'/></x><xs:any/>")},
        Dialect{{"Entities"},
                "<!DOCTYPE s [<!ENTITY t 'xs:string'><!ENTITY e '<xs:element "
                "name=\"part\" type=\"Part\"/>'>]>" +
                    replaced(replaced(suiteSchema(machine), "\"xs:string\"", "\"&t;\""),
                             "<xs:element name=\"part\" type=\"Part\"/>", "&e;")},
        Dialect{{"DeclarationsInADtd"},
                "<!DOCTYPE s [<!ATTLIST schema xmlns CDATA '" + xmlSchema +
                    "'><!ATTLIST attribute type CDATA 'string'>]>"
                    "<schema targetNamespace='urn:t' xmlns:t='urn:t'>" +
                    replaced(withPrefixOfOwnNames(replaced(machine, "xs:", ""), "t:"),
                             " type=\"string\" use", " use") +
                    "</schema>"}),
    testing::PrintToStringParamName());

/// A reader of any schema.
class ReaderOfAny : public XsdConfigReader {
public:
    ReaderOfAny(const TemporaryDirectory& directory, const std::string& schema)
        : XsdConfigReader(directory.file("any.xsd", schema)) {
        readAnyXSD();
    }
};

/// @return the types of the children of a type in a schema with this start tag
Strings childTypes(const std::string& attributes, const Strings& types) {
    const TemporaryDirectory directory;
    std::string schema = "<xs:schema xmlns:xs='" + xmlSchema + "' " + attributes +
                         "><xs:complexType name='A'><xs:sequence>";
    for (const std::string& type : types)
        schema += "<xs:element name='e' type='" + type + "'/>";
    ReaderOfAny reader(directory, schema + "</xs:sequence></xs:complexType></xs:schema>");
    Strings found;
    for (const auto& [name, type] : reader.getSubTypes("A"))
        found.push_back(type);
    return found;
}

TEST(AnySchema, HasItsOwnNamesWithoutAPrefix) {
    EXPECT_THAT(
        childTypes("targetNamespace='urn:t' xmlns:t='urn:t' xmlns:u='urn:t'", {"t:A", "u:A", "A"}),
        ElementsAre("A", "A", "A"));
    EXPECT_THAT(childTypes("targetNamespace='urn:t' xmlns='urn:t'", {"A"}), ElementsAre("A"));
    EXPECT_THAT(childTypes("", {"A"}), ElementsAre("A"));
}

TEST(AnySchema, HasNamesOfXmlSchemaWithItsPrefix) {
    EXPECT_THAT(childTypes("xmlns:t='" + xmlSchema + "' xmlns='" + xmlSchema + "'",
                           {"xs:int", "t:int", "int"}),
                ElementsAre("xs:int", "xs:int", "xs:int"));
    EXPECT_THAT(childTypes("xmlns='" + xmlSchema + "'", {""}), ElementsAre(""));
}

TEST(AnySchema, HasOtherNamesAsTheyAreWritten) {
    EXPECT_THAT(childTypes("xmlns:t='urn:t'", {"t:A", "u:A", "t:A:B", "A:", ""}),
                ElementsAre("t:A", "u:A", "t:A:B", "A:", ""));
}

TEST(AnySchema, HasOtherNamesThatWouldLookLikeItsOwnWithTheirNamespace) {
    EXPECT_THAT(childTypes("targetNamespace='urn:t' xmlns='urn:o' xmlns:ov='urn:o' xmlns:p='urn:o'",
                           {"A", "ov:A", "p:A"}),
                ElementsAre("{urn:o}A", "{urn:o}A", "p:A"));
}

TEST(AnySchema, HasNamesOfItsOwnIfItDescribesXmlSchema) {
    const TemporaryDirectory directory;
    ReaderOfAny reader(directory, "<xs:schema xmlns:xs='" + xmlSchema + "' targetNamespace='" +
                                      xmlSchema +
                                      "'><xs:complexType name='A'><xs:sequence>"
                                      "<xs:element name='e' type='xs:B'/>"
                                      "</xs:sequence></xs:complexType><xs:simpleType name='B'/>"
                                      "<xs:simpleType name='C'/></xs:schema>");
    EXPECT_THAT(reader.getSubTypes("A"), ElementsAre(Pair("e", "B")));
    reader.keepXSDElement({"A"});
    EXPECT_THAT(prunedBy(reader).text, testing::EndsWith("<xs:simpleType name='B'/></xs:schema>"));
}

TEST(AnySchema, ResolvesPrefixesWhereTheyStand) {
    const TemporaryDirectory directory;
    ReaderOfAny reader(
        directory,
        "<schema xmlns='" + xmlSchema +
            "' targetNamespace='urn:t' xmlns:t='urn:u'>"
            "<complexType name='A' xmlns:t='urn:t'><sequence xmlns:x='" +
            xmlSchema +
            "'>"
            "<x:element name='a' type='t:A'/><element xmlns:t='urn:u' name='b' type='t:A'/>"
            "<p:element xmlns:p='" +
            xmlSchema +
            "' name='c' type='p:int'/>"
            "<element xmlns='urn:u' name='none'/><element name='d' type='x:int'/>"
            "</sequence></complexType><element name='t' type='t:A'/></schema>");
    EXPECT_THAT(reader.getSubTypes("A"), ElementsAre(Pair("a", "A"), Pair("b", "t:A"),
                                                     Pair("c", "xs:int"), Pair("d", "xs:int")));
    EXPECT_THAT(reader.getRootelements(), IsEmpty());
}

TEST(AnySchema, IsReadAtOnceWithManyPrefixes) {
    const TemporaryDirectory directory;
    std::string start = "<xs:schema xmlns:xs='" + xmlSchema + "'><xs:complexType name='A'/>";
    std::string end = "</xs:schema>";
    for (int i = 0; i < 200; ++i) {
        start += "<a";
        for (int j = 0; j < 99; ++j)
            start += " xmlns:p" + std::to_string(j) + "='u'";
        start += '>';
        end.insert(0, "</a>");
    }
    for (int i = 0; i < 5'000; ++i)
        start += "<xs:element type='q:A'/>";
    ReaderOfAny reader(directory, start + end);
    EXPECT_EQ(1U, reader.getXsdTree().size());
}

TEST(AnySchema, MayBeInTheReadersNamespace) {
    const TemporaryDirectory directory;
    ReaderOfSchema suite(directory, machine);
    suite.writeXSD(directory.file("model.xml"), false);
    XsdConfigReader reader(directory.file("model.xml"));
    reader.readAnyXSD();
    EXPECT_EQ(answersOf(suite), answersOf(reader));
    ReaderOfAny mixed(directory, "<schema xmlns='" + readerNamespace +
                                     "'><complexType name='A'/>"
                                     "<x:complexType xmlns:x='" +
                                     xmlSchema + "' name='B'/></schema>");
    EXPECT_EQ(2U, mixed.getXsdTree().size());
}

TEST(AnySchema, MakesNoFile) {
    const TemporaryDirectory directory;
    std::filesystem::create_directories(directory.path() / sanitisingFile / "full");
    std::filesystem::create_directories(directory.path() / rewritingFile / "full");
    ReaderOfAny reader(directory, suiteSchema(machine));
    reader.keepXSDElement({"Machine"});
    reader.writePrunedXSD(directory.file("any.xsd"));
    EXPECT_THAT(filesIn(directory), ElementsAre(rewritingFile, sanitisingFile, "any.xsd"));
}

TEST(AnySchema, MayHaveTheNameOfAScratchFile) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file(sanitisingFile, suiteSchema(machine)));
    reader.readAnyXSD();
    EXPECT_EQ(5U, reader.getXsdTree().size());
    EXPECT_EQ(suiteSchema(machine), readFile(directory.file(sanitisingFile)));
}

class AnySchemaFailure : public EarlierSchema {
protected:
    void expectFailureOfAny(const std::string& bytes, ConfigException::ExceptionType type) {
        writeFile(file, bytes);
        EXPECT_EQ(type, failureOf([&] { reader.readAnyXSD(); })) << bytes.substr(0, 200);
        EXPECT_EQ(earlierTree, reader.getXsdTree());
        EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
    }
};

TEST_F(AnySchemaFailure, IsToldFromOneOfParsing) {
    for (const std::string other : {"<schema/>", "<schema xmlns='urn:t'/>",
                                    "<a xmlns='http://www.orvant.com/OV_XsdReader'/>"})
        expectFailureOfAny(other, ConfigException::ParserReportedErrors);
    expectFailureOfAny("<xs:element xmlns:xs='" + xmlSchema + "'/>",
                       ConfigException::ParserReportedErrors);
    expectFailureOfAny("<a><schema xmlns='" + xmlSchema + "'/></a>",
                       ConfigException::ParserReportedErrors);
}

TEST_F(AnySchemaFailure, IsOneOfParsing) {
    for (const std::string& bad :
         {std::string(), std::string("text"), std::string("<xs:schema/>"), suiteHeader,
          suiteSchema("<xs:complexType name=A/>"), suiteSchema("<x:y/>"), suiteSchema("&e;"),
          suiteSchema("\xFF"), suiteSchema(machine) + "<a/>",
          suiteSchema("<xs:complexType name='A'><xs:sequence><xs:element minOccurs='one'/>"
                      "</xs:sequence></xs:complexType>")})
        expectFailureOfAny(bad, ConfigException::SourceNotFound);
}

TEST_F(AnySchemaFailure, IsOneBeyondTheLimits) {
    std::string deep;
    for (int i = 0; i < 1'001; ++i)
        deep += "<a>";
    for (int i = 0; i < 1'001; ++i)
        deep += "</a>";
    expectFailureOfAny(suiteSchema(deep), ConfigException::SourceNotFound);
    std::string wide = "<a";
    for (int i = 0; i < 101; ++i)
        wide += " a" + std::to_string(i) + "=''";
    expectFailureOfAny(suiteSchema(wide + "/>"), ConfigException::SourceNotFound);
}

TEST_F(AnySchemaFailure, IsThatOfAFileThatIsNotThere) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readAnyXSD(); }));
    XsdConfigReader folder{FileName(directory.path().string())};
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { folder.readAnyXSD(); }));
    XsdConfigReader impossible(FileName(std::string("a\0b", 3)));
    EXPECT_EQ(ConfigException::UnknownError, failureOf([&] { impossible.readAnyXSD(); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
}

TEST(AnySchema, DocumentationOfBlanksCanBeWritten) {
    const TemporaryDirectory directory;
    for (const std::string blank : {" ", "\n", "\n    ", "\n\n", " \n \n"}) {
        XsdConfigReader reader(directory.file(
            "schema.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:complexType name=\"A\">"
            "<xs:annotation><xs:documentation>" +
                blank + "</xs:documentation></xs:annotation></xs:complexType></xs:schema>"));
        reader.readAnyXSD();
        const FileName written = directory.file("written.xsd");
        reader.writeXSD(written, true);
        XsdConfigReader again(written);
        again.readXSD(true);
        EXPECT_EQ(1U, again.getXsdTree().count("A"));
    }
}

} // namespace
} // namespace Orvant
