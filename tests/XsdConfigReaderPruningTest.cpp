// What is cut out of a schema file, and that the rest stays as it is.

#include <PruningTestSupport.h>

#include <fstream>

namespace Orvant::Support {

struct TreeOfReader {
    using type = std::shared_ptr<XsdElement> XsdConfigReader::*;
    friend type memberOf(TreeOfReader);
};
template struct PrivateMember<TreeOfReader, &XsdConfigReader::m_tree>;

} // namespace Orvant::Support

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string machine = R"(  <xs:element name="machine" type="Machine"/>
  <xs:element name="note" type="Note"/>
  <xs:complexType name="Machine">
    <xs:sequence>
      <xs:element name="axis" type="Axis" maxOccurs="unbounded"/>
      <xs:element name="label" type="xs:string" minOccurs="0"/>
      <xs:element name="note" type="Note" minOccurs="0"/>
    </xs:sequence>
    <xs:attribute name="serial" type="xs:string" use="required"/>
    <xs:attribute name="comment" type="xs:string" use="optional"/>
  </xs:complexType>
  <xs:complexType name="Axis"/>
  <xs:complexType name="Note">
    <xs:sequence>
      <xs:element name="colour" type="Colour" minOccurs="0"/>
    </xs:sequence>
  </xs:complexType>
  <xs:simpleType name="Colour">
    <xs:restriction base="xs:string">
      <xs:enumeration value="red"/>
    </xs:restriction>
  </xs:simpleType>)";

/// @return the lines without those that hold one of these
std::string withoutLines(const std::string& lines, const Strings& parts) {
    std::istringstream in(lines);
    std::string rest;
    for (std::string line; std::getline(in, line);)
        if (std::ranges::none_of(
                parts, [&](const std::string& part) { return line.find(part) != line.npos; }))
            rest += (rest.empty() ? "" : "\n") + line;
    return rest;
}

/// @return the lines without type B
Pruned withoutB(const std::string& lines) {
    return pruned(lines, keeping({"A"}));
}

/// @return the lines without type B, where the reader sees each element of a line
std::string withoutBInAny(const std::string& lines) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", suiteSchema(lines)));
    reader.readAnyXSD();
    reader.keepXSDElement({"A"});
    return linesOf(prunedBy(reader).text);
}

std::string type(const std::string& name) {
    return "<xs:complexType name=\"" + name + "\"/>";
}

// Without a filter.

class UnfilteredFile : public testing::Test {
protected:
    void expectSameBytes(const std::string& bytes,
                         const std::function<void(XsdConfigReader&)>& read) {
        XsdConfigReader reader(m_directory.file("schema.xsd", bytes));
        read(reader);
        EXPECT_EQ(prunedBy(reader).text, bytes);
        EXPECT_THAT(prunedBy(reader).stayed, IsEmpty());
        const FileName written = m_directory.file("written.xsd");
        EXPECT_THAT(reader.writePrunedXSD(written), IsEmpty());
        EXPECT_EQ(readFile(written), bytes);
        EXPECT_THAT(filesIn(m_directory), ElementsAre("schema.xsd", "written.xsd"));
    }
    void expectSameBytes(const std::string& bytes) {
        expectSameBytes(bytes, [](XsdConfigReader& reader) { reader.readXSD(true); });
        expectSameBytes(bytes, [](XsdConfigReader& reader) { reader.readAnyXSD(); });
    }

    TemporaryDirectory m_directory;
};

TEST_F(UnfilteredFile, IsWrittenByteForByte) {
    expectSameBytes(suiteSchema(machine));
    expectSameBytes(suiteSchema(machine) + "\n\n <!-- after --><?and this?>");
    expectSameBytes("<?xml version='1.0'?>\n\n<!-- before -->" + suiteSchema(machine));
    expectSameBytes(suiteHeader + "</xs:schema>");
    expectSameBytes("\xEF\xBB\xBF" + suiteSchema(machine));
    expectSameBytes(suiteSchema("<!-- \t -->\r\n\r\n  <xs:complexType   name = 'A' />\r\n<?p i?>"));
}

TEST_F(UnfilteredFile, IsWrittenByteForByteInOtherEncodings) {
    expectSameBytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" +
                    suiteSchema("<!-- \xE4 -->\n<xs:complexType name=\"\xC4\"/>"));
    std::string utf16 = "\xFF\xFE";
    for (const char c : suiteSchema(machine))
        utf16.append(1, c).append(1, '\0');
    expectSameBytes(utf16, [](XsdConfigReader& reader) { reader.readAnyXSD(); });
}

TEST_F(UnfilteredFile, IsWrittenByteForByteWithEntitiesAndCData) {
    expectSameBytes("<!DOCTYPE xs:schema [\n<!ENTITY t \"text\">\n<!-- ]> -->\n"
                    "<!ATTLIST xs:complexType mixed CDATA 'false'>\n]>\n" +
                    suiteSchema("<xs:complexType name=\"A\">\n<xs:annotation>\n"
                                "<xs:documentation>&t; &#65; <![CDATA[<a>]]></xs:documentation>\n"
                                "</xs:annotation>\n</xs:complexType>"));
}

TEST_F(UnfilteredFile, IsWrittenByteForByteInTheReadersNamespace) {
    const std::string bytes = readerSchema("<complexType name='A'/><!-- c --><any/>") + "\n<?p?>";
    expectSameBytes(bytes, [](XsdConfigReader& reader) { reader.readXSD(false); });
    expectSameBytes(bytes, [](XsdConfigReader& reader) { reader.readAnyXSD(); });
}

TEST_F(UnfilteredFile, IsWrittenByteForByteEvenIfItIsWellFormedOnlyOnceRewritten) {
    expectSameBytes(suiteSchema("<choice>\n</xs:choice>"),
                    [](XsdConfigReader& reader) { reader.readXSD(true); });
}

TEST(FileThatIsWellFormedOnlyOnceRewritten, CannotBeCut) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"A\">\n</complexType>\n" + type("B"));
    reader.keepXSDElement({"A"});
    const FileName target = directory.file("target.xsd", "earlier");
    EXPECT_EQ(ConfigException::ParserReportedErrors,
              failureOf([&] { reader.writePrunedXSD(target); }));
    std::ostringstream out;
    EXPECT_EQ(ConfigException::ParserReportedErrors,
              failureOf([&] { reader.writePrunedXSD(out); }));
    EXPECT_EQ("", out.str());
    EXPECT_EQ("earlier", readFile(target));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd", "target.xsd"));
}

TEST(FileThatIsWellFormedOnlyOnceRewritten, IsWrittenAfterFiltersThatRemoveNothing) {
    const std::string lines = "<xs:complexType name=\"A\">\n</complexType>\n" + type("B");
    const Pruned all = pruned(lines, [](XsdConfigReader& reader) {
        reader.keepXSDElement({"A", "B"});
        reader.keepXSDChildElement("C", {});
        reader.keepXSDChildAttributes("B", {});
    });
    EXPECT_EQ(lines, all.text);
    EXPECT_THAT(all.stayed, IsEmpty());
}

// What a filter cuts.

TEST(PrunedSchema, IsWithoutTheTypesChildrenAndRootElementsThatAFilterRemoves) {
    const Pruned result = pruned(machine, keeping({"Machine"}));
    EXPECT_EQ(result.text, R"(  <xs:element name="machine" type="Machine"/>
  <xs:complexType name="Machine">
    <xs:sequence>
      <xs:element name="axis" type="Axis" maxOccurs="unbounded"/>
      <xs:element name="label" type="xs:string" minOccurs="0"/>
    </xs:sequence>
    <xs:attribute name="serial" type="xs:string" use="required"/>
    <xs:attribute name="comment" type="xs:string" use="optional"/>
  </xs:complexType>
  <xs:complexType name="Axis"/>)");
    EXPECT_THAT(result.stayed, IsEmpty());
}

TEST(PrunedSchema, IsWithoutTheChildrenOfASequenceThatAFilterRemoves) {
    const std::string lines = withoutLines(machine, {"name=\"note\" type=\"Note\"/>"});
    EXPECT_EQ(pruned(lines, keepingChildren("Machine", {"note"})).text,
              withoutLines(lines, {"label"}));
    EXPECT_EQ(pruned(machine, keepingChildren("Machine", {})).text,
              withoutLines(machine, {"label", "\"note\" type=\"Note\" minOccurs=\"0\""}));
}

TEST(PrunedSchema, IsWithoutTheAttributesThatAFilterRemoves) {
    EXPECT_EQ(pruned(machine, keepingAttributes("Machine", {})).text,
              withoutLines(machine, {"\"comment\""}));
    EXPECT_EQ(pruned(machine, keepingAttributes("Machine", {"comment"})).text, machine);
}

const std::string extended = R"(  <xs:complexType name="Base"/>
  <xs:complexType name="Extended">
    <xs:complexContent>
      <xs:extension base="Base">
        <xs:sequence>
          <xs:element name="a" type="xs:int" minOccurs="0"/>
          <xs:element name="b" type="xs:int"/>
          <xs:element name="c" type="Gone" minOccurs="0">
            <xs:annotation>
              <xs:documentation>text</xs:documentation>
            </xs:annotation>
          </xs:element>
        </xs:sequence>
        <xs:attribute name="d" type="xs:int" use="optional"/>
        <xs:attribute name="e" type="xs:int"/>
        <xs:attribute name="f" type="xs:int" use="optional">
          <xs:annotation/>
        </xs:attribute>
      </xs:extension>
    </xs:complexContent>
  </xs:complexType>)";
const std::string gone = "  <xs:complexType name=\"Gone\">\n  </xs:complexType>";

TEST(PrunedSchema, IsWithoutWhatAFilterRemovesOfAnExtension) {
    const Strings partsOfC = {"\"c\"", "<xs:annotation>", "documentation", "</xs:annotation>",
                              "</xs:element>"};
    EXPECT_EQ(pruned(extended + '\n' + gone, keeping({"Extended"})).text,
              withoutLines(extended, partsOfC));
    Strings partsOfAAndC = partsOfC;
    partsOfAAndC.emplace_back("\"a\"");
    EXPECT_EQ(pruned(extended, keepingChildren("Extended", {})).text,
              withoutLines(extended, partsOfAAndC));
    EXPECT_EQ(pruned(extended, keepingAttributes("Extended", {"f"})).text,
              withoutLines(extended, {"\"d\""}));
    EXPECT_EQ(pruned(extended, keepingAttributes("Extended", {})).text,
              withoutLines(extended, {"\"d\"", "\"f\"", "<xs:annotation/>", "</xs:attribute>"}));
}

TEST(PrunedSchema, IsWithoutWhatAFilterRemovesOfTypesWithinTypes) {
    const std::string lines = R"(<xs:complexType name="A">
<xs:sequence>
<xs:element name="a">
<xs:complexType>
<xs:sequence>
<xs:element name="b" type="Gone" minOccurs="0"/>
<xs:element name="c" type="xs:int" minOccurs="0"/>
</xs:sequence>
</xs:complexType>
</xs:element>
</xs:sequence>
</xs:complexType>
<xs:complexType name="C">
<xs:choice>
<xs:element name="d">
<xs:complexType>
<xs:complexContent>
<xs:extension base="A">
<xs:sequence>
<xs:element name="e" type="Gone" minOccurs="0"/>
</xs:sequence>
</xs:extension>
</xs:complexContent>
</xs:complexType>
</xs:element>
</xs:choice>
</xs:complexType>
<xs:simpleType name="Gone">
</xs:simpleType>)";
    EXPECT_EQ(pruned(lines, keeping({"A", "C"})).text,
              withoutLines(lines, {"\"Gone\"", "simpleType"}));
}

TEST(PrunedSchema, MayLoseAllThatItHolds) {
    const Pruned result = pruned("  <xs:complexType name=\"A\"/>\n\n  <xs:simpleType name=\"B\">\n"
                                 "  </xs:simpleType>",
                                 keeping({"Nothing"}));
    EXPECT_EQ(result.text, "");
    EXPECT_THAT(result.stayed, IsEmpty());
}

TEST(PrunedSchema, LosesOnlyTheFirstTypesWithAnEmptyList) {
    EXPECT_EQ(pruned(type("A") + '\n' + type("B"), keeping({})).text, type("B"));
}

TEST(PrunedSchema, KeepsAllThatTheReaderDoesNotHold) {
    const std::string kept = R"(  <xs:import namespace="urn:a" schemaLocation="a.xsd"/>
  <xs:include schemaLocation='b.xsd'></xs:include>
  <xs:notation name="n" public="p"/>

  <?instruction for="somebody"?>
  <xs:group name="G">
    <xs:sequence>
      <xs:element name="g" type="xs:int" minOccurs="0"/>
    </xs:sequence>
  </xs:group>
  <xs:attributeGroup name="H">
    <xs:attribute name="h" type="xs:int" use="optional"/>
    <xs:anyAttribute processContents="lax"/>
  </xs:attributeGroup>
  <xs:attribute name="i" type="xs:int"/>
  <xs:complexType name="A"   mixed = "true" ov:extra='x'
      abstract="true">	<!-- a tab -->
    <xs:annotation>
      <xs:documentation xml:lang="de">J&#228;<b xmlns="urn:b">x</b>
      </xs:documentation>
      <xs:appinfo>&lt;</xs:appinfo>
    </xs:annotation>
    <xs:all>
      <xs:element name="j" type="xs:int" minOccurs="0"/>
    </xs:all>
    <xs:attributeGroup ref="H"/>
  </xs:complexType>
  <xs:complexType name="B">
    <xs:simpleContent>
      <xs:extension base="xs:string">
        <xs:attribute name="k" type="xs:int" use="optional"/>
      </xs:extension>
    </xs:simpleContent>
  </xs:complexType>
  <xs:complexType name="C">
    <xs:sequence>
      <xs:group ref="G"/>
      <xs:any namespace="##other" minOccurs="0"/>
      <xs:sequence>
        <xs:element name="l" type="xs:int" minOccurs="0"/>
      </xs:sequence>
    </xs:sequence>
  </xs:complexType>
  <xs:simpleType name="U">
    <xs:union memberTypes="xs:int xs:string"/>
  </xs:simpleType>
  <xs:simpleType name="R">
    <xs:restriction base="xs:int">
      <xs:minInclusive value="1"/>
      <xs:pattern value="[0-9]{1,2}"/>
    </xs:restriction>
  </xs:simpleType>
  <xs:element name="root">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="m" type="xs:int" minOccurs="0"/>
      </xs:sequence>
    </xs:complexType>
    <xs:key name="K">
      <xs:selector xpath="m"/>
      <xs:field xpath="."/>
    </xs:key>
  </xs:element>)";
    const Pruned result = pruned(kept + '\n' + gone, [](XsdConfigReader& reader) {
        reader.keepXSDElement({"A", "B", "C", "U", "R"});
        for (const std::string type : {"A", "B", "C"})
            reader.keepXSDChildAttributes(type, {});
    });
    EXPECT_EQ(result.text, kept);
    EXPECT_THAT(result.stayed, IsEmpty());
}

// What goes with it.

TEST(PrunedSchema, LosesTheCommentsAboveWhatIsCut) {
    EXPECT_EQ(withoutB(type("A") + "\n<!-- on B -->\n" + type("B") + '\n' + type("A")).text,
              type("A") + '\n' + type("A"));
    EXPECT_EQ(
        withoutB(type("A") + "\n\n  <!-- on B -->\n  <!-- more\n  lines -->\n  " + type("B")).text,
        type("A"));
    EXPECT_EQ(withoutB("<!-- on B --><!-- too -->" + type("B") + '\n' + type("A")).text, type("A"));
}

TEST(PrunedSchema, LosesTheCommentsBehindWhatIsCutOnItsLine) {
    EXPECT_EQ(
        withoutB(type("A") + '\n' + type("B") + " <!-- that was B --> <!-- yes -->\n" + type("A"))
            .text,
        type("A") + '\n' + type("A"));
    EXPECT_EQ(
        withoutB(type("A") + "\n<xs:complexType name=\"B\">\n</xs:complexType> <!-- B -->").text,
        type("A"));
}

TEST(PrunedSchema, KeepsTheCommentsOfOthers) {
    const Strings stay = {
        // a section
        "<!-- section -->\n\n",
        // one above a section
        "<!-- title -->\n<!-- of two lines -->\n\n\n",
        // of what is before
        type("A") + " <!-- on A -->\n",
        type("A") + " <!-- on A --> <!-- and\n on -->\n",
        // what is no comment
        "<!-- on that: -->\n<?instruction?>\n",
        "<!-- on that: -->\n<xs:import namespace=\"urn:a\"/>\n",
    };
    for (const std::string& before : stay)
        EXPECT_EQ(withoutB(before + type("B") + '\n' + type("A")).text,
                  before.substr(0, before.find_last_not_of('\n') + 1) + '\n' + type("A"))
            << before;
    EXPECT_EQ(withoutB(type("B") + "\n<!-- on A -->\n" + type("A")).text,
              "<!-- on A -->\n" + type("A"));
    EXPECT_EQ(withoutB(type("B") + "\n<!-- the end -->").text, "<!-- the end -->");
}

TEST(PrunedSchema, KeepsACommentOnTheLineOfTheStartTagAround) {
    const std::string lines = "<xs:complexType name=\"A\">\n<xs:sequence> <!-- the parts -->\n"
                              "<xs:element name=\"a\" minOccurs=\"0\"/> <!-- a part -->\n"
                              "</xs:sequence> <!-- no more -->\n</xs:complexType>";
    EXPECT_EQ(pruned(lines, keepingChildren("A", {})).text, withoutLines(lines, {"a part"}));
}

TEST(PrunedSchema, KeepsACommentBetweenTwoElementsOnALine) {
    const std::string import = "<xs:import namespace=\"a\"/>";
    EXPECT_EQ(withoutB(type("B") + " <!-- which? -->" + import + '\n' + type("A")).text,
              "<!-- which? -->" + import + '\n' + type("A"));
    EXPECT_EQ(withoutB(type("A") + '\n' + type("B") + " <!-- which? -->" + import).text,
              type("A") + "\n<!-- which? -->" + import);
    const std::string line = type("A") + " <!-- which? --> " + type("B");
    EXPECT_EQ(withoutBInAny(line), type("A") + " <!-- which? -->");
    EXPECT_EQ(withoutBInAny(line + type("A")), type("A") + " <!-- which? -->" + type("A"));
}

TEST(PrunedSchema, KeepsTheLinesOfTheOtherElements) {
    const std::string a = type("A");
    const std::string b = type("B");
    EXPECT_EQ(withoutBInAny(a + "\n  " + b + ' ' + a + "\n" + a), a + "\n  " + a + "\n" + a);
    EXPECT_EQ(withoutBInAny(a + "\n  " + b + ' ' + b + " <!-- B --> " + a + '\n' + a),
              a + "\n  <!-- B --> " + a + '\n' + a);
    EXPECT_EQ(withoutBInAny(a + "\n  " + b + b + "\n" + b + a), a + "\n  " + a);
    EXPECT_EQ(withoutBInAny(a + "\n  " + a + ' ' + b + ' ' + a + " <!-- A -->\n" + a),
              a + "\n  " + a + ' ' + a + " <!-- A -->\n" + a);
    EXPECT_EQ(withoutBInAny("<!-- B -->\n\n<!-- B -->\n" + b + ' ' + a), "<!-- B -->\n\n" + a);
}

TEST(PrunedSchema, KeepsTextAroundWhatIsCut) {
    EXPECT_EQ(withoutB("one " + type("B") + " two\n" + type("A")).text, "one  two\n" + type("A"));
    EXPECT_EQ(withoutB("<![CDATA[ ]]>\n" + type("B") + "\n&#32;\n" + type("A")).text,
              "<![CDATA[ ]]>\n\n&#32;\n" + type("A"));
    // What is text belongs to no element, and neither do the comments before it.
    EXPECT_EQ(withoutB("<!-- a -->\ntext\n" + type("B") + " text <!-- b -->\n" + type("A")).text,
              "<!-- a -->\ntext\n text <!-- b -->\n" + type("A"));
}

TEST(PrunedSchema, KeepsTheLineEndsOfTheRest) {
    EXPECT_EQ(withoutB(type("A") + "\r\n\r\n<!-- B -->\r\n" + type("B") + "<!-- B -->\r\n\r\n" +
                       type("A"))
                  .text,
              type("A") + "\r\n\r\n" + type("A"));
    EXPECT_EQ(withoutB(type("A") + "\r\n\r\n" + type("B") + "\n" + type("A")).text,
              type("A") + "\r\n" + type("A"));
    EXPECT_EQ(withoutB(type("A") + " \n" + type("B") + " \t\r\n" + type("A")).text,
              type("A") + " \n" + type("A"));
}

// Which of the elements it is.

TEST(PrunedSchema, KeepsElementsThatTheReaderDoesNotSee) {
    // The second tag of a line keeps its prefix, and so do the tags of another namespace.
    const std::string unseen =
        "<xs:import namespace=\"a\"/><xs:complexType name=\"B\"></xs:complexType>\n"
        "<x:complexType xmlns:x=\"urn:x\" name=\"B\">\n</x:complexType>\n"
        "<!-- xs: --><xs:complexType name=\"B\"/>\n";
    EXPECT_EQ(withoutB(unseen + type("A") + '\n' + type("B")).text, unseen + type("A"));
}

TEST(PrunedSchema, KeepsAGroupThatTheReaderDoesNotHold) {
    // Of two sequences, the reader holds the first.
    const std::string lines = R"(<xs:complexType name="A">
<xs:sequence>
<xs:element name="a" minOccurs="0"/>
</xs:sequence>
<xs:sequence>
<xs:element name="b" minOccurs="0"/>
</xs:sequence>
</xs:complexType>)";
    EXPECT_EQ(pruned(lines, keepingChildren("A", {})).text, withoutLines(lines, {"\"a\""}));
}

TEST(PrunedSchema, IsRightWhereTheReaderRemovesImports) {
    const Strings imports = {
        "<xs:import/>",
        "<xs:import/> <xs:import/>",
        "<!-- <xs:import/> --> <xs:import/>",
        "<!-- <xs:import/>\n --> <xs:import/>",
        "<xs:import />",
        "<xs:import\n/>\n<xs:import/><!-- <xs:import/> -->",
        "<xs:appinfo>&lt;xs:import/> <![CDATA[<xs:import/>]]></xs:appinfo>",
        "<xs:import/><xs:notation/>",
    };
    for (const std::string& line : imports)
        EXPECT_EQ(withoutB(line + '\n' + type("B") + '\n' + line + '\n' + type("A")).text,
                  line + '\n' + line + '\n' + type("A"))
            << line;
}

TEST(PrunedSchema, IsRightForTagsOverSeveralLines) {
    const std::string a = "<xs:complexType\n  name=\"A\"\n  mixed=\"true\">\n<xs:sequence>\n";
    const std::string end = "</xs:sequence>\n</xs:complexType\n>";
    EXPECT_EQ(
        pruned(a + "<xs:element\n  name=\"a\"\n  type=\"xs:int\"\n  minOccurs=\"0\"/>\n" + end,
               keepingChildren("A", {}))
            .text,
        a + end);
}

TEST(PrunedSchema, IsRightWhereThePrefixIsTheSuites) {
    EXPECT_EQ(withoutB("<ov:complexType name=\"A\"/>\n<ov:complexType name=\"B\"/>").text,
              "<ov:complexType name=\"A\"/>");
}

TEST(PrunedSchema, KeepsWhatAnEntityHolds) {
    const TemporaryDirectory directory;
    const std::string bytes = "<!DOCTYPE schema [\n<!ENTITY b '<complexType name=\"B\"/>'>\n]>\n" +
                              suiteSchema("&b;\n" + type("A") + '\n' + type("C"));
    XsdConfigReader reader(directory.file("schema.xsd", bytes));
    reader.readXSD(true);
    reader.keepXSDElement({"A"});
    const Pruned result = prunedBy(reader);
    EXPECT_EQ(result.text, withoutLines(bytes, {type("C")}) + '\n');
    EXPECT_THAT(result.stayed, ElementsAre("B"));
}

TEST(PrunedSchema, KeepsReferencesBetweenWhatIsCutAndComments) {
    const TemporaryDirectory directory;
    const std::string start =
        "<!DOCTYPE s [<!ENTITY none ''><!ENTITY text 'text'>]>\n" + suiteHeader;
    const std::string end = "&none;&text;\n<!-- b -->&none; <!-- c -->\n</xs:schema>";
    for (const std::string between : {" <!-- a -->\n&none;", " <!-- a -->&text;", "\n&text;"}) {
        XsdConfigReader reader(
            directory.file("schema.xsd", start + between + "\n" + type("B") + end));
        reader.readAnyXSD();
        reader.keepXSDElement({"A"});
        EXPECT_EQ(prunedBy(reader).text, start + between + end);
    }
}

TEST(PrunedSchema, IsCutInEveryEncoding) {
    const TemporaryDirectory directory;
    const auto expectCut = [&](const std::string& before, const std::string& cut,
                               const std::string& after) {
        XsdConfigReader reader(directory.file("schema.xsd", before + cut + after));
        reader.readAnyXSD();
        reader.keepXSDElement({"A"});
        EXPECT_EQ(prunedBy(reader).text, before + after);
    };
    const std::string before =
        suiteHeader + "<!-- \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80 -->" + type("A");
    expectCut(before, "\r\n<!-- B -->\r\n" + type("B"), "\r\n</xs:schema>");
    expectCut("\xEF\xBB\xBF" + before, '\r' + type("\xC3\xA4"), "\r</xs:schema>");
    expectCut("<?xml version='1.0' encoding='ISO-8859-1'?>" + suiteHeader + "<!-- \xE4 -->",
              '\n' + type("\xE4"), "</xs:schema>");
    const auto wide = [](const std::string& ascii) {
        std::string units;
        for (const char c : ascii)
            units.append(1, '\0').append(1, c);
        return units;
    };
    expectCut("\xFE\xFF" + wide(suiteHeader + type("A")), wide("\n" + type("B")),
              wide("\n</xs:schema>"));
}

TEST(PrunedSchema, IsRightForManyImportsOnALine) {
    std::string imports;
    for (int i = 0; i < 50'000; ++i)
        imports += "<xs:import/>";
    EXPECT_EQ(withoutB(imports + '\n' + type("B")).text, imports);
}

// When.

TEST(PrunedSchema, LosesWhatAllFiltersTogetherRemove) {
    const Pruned result = pruned(machine, [](XsdConfigReader& reader) {
        reader.keepXSDChildAttributes("Machine", {});
        XsdConfigReader copy(reader);
        copy.keepXSDChildElement("Machine", {"note"});
        prunedBy(reader);
        XsdConfigReader assigned("other.xsd");
        assigned = copy;
        assigned.keepXSDElement({"Machine"});
    });
    EXPECT_EQ(result.text, R"(  <xs:element name="machine" type="Machine"/>
  <xs:complexType name="Machine">
    <xs:sequence>
      <xs:element name="axis" type="Axis" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:attribute name="serial" type="xs:string" use="required"/>
  </xs:complexType>
  <xs:complexType name="Axis"/>)");
}

TEST(PrunedSchema, IsTheSameEachTime) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    reader.keepXSDElement({"Note"});
    const std::string first = prunedBy(reader).text;
    EXPECT_EQ(prunedBy(reader).text, first);
    XsdConfigReader copy(reader);
    EXPECT_EQ(prunedBy(copy).text, first);
    EXPECT_NE(first, suiteSchema(machine));
}

TEST(PrunedSchema, MayTakeThePlaceOfTheFile) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    const FileName file = directory.file("schema.xsd");
    reader.keepXSDElement({"Machine", "Note", "Colour"});
    reader.writePrunedXSD(file);
    EXPECT_EQ(readFile(file), suiteSchema(machine));
    reader.keepXSDElement({"Machine"});
    reader.writePrunedXSD(file);
    reader.keepXSDChildAttributes("Machine", {});
    reader.writePrunedXSD(file);
    EXPECT_EQ(readFile(file), suiteSchema(pruned(machine, [](XsdConfigReader& other) {
                                              other.keepXSDElement({"Machine"});
                                              other.keepXSDChildAttributes("Machine", {});
                                          }).text));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd"));
}

TEST(PrunedSchema, IsOfTheFileAsItWasRead) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    writeFile(directory.file("schema.xsd"), "another");
    EXPECT_EQ(prunedBy(reader).text, suiteSchema(machine));
    std::filesystem::remove(directory.path() / "schema.xsd");
    reader.writePrunedXSD(directory.file("schema.xsd"));
    EXPECT_EQ(readFile(directory.file("schema.xsd")), suiteSchema(machine));
}

TEST(PrunedSchema, IsThatOfTheLastReading) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    XsdConfigReader copy(reader);
    reader.keepXSDElement({"Machine"});
    writeFile(directory.file("schema.xsd"), suiteSchema(extended));
    reader.readXSD(true);
    EXPECT_EQ(prunedBy(reader).text, suiteSchema(extended));
    EXPECT_EQ(linesOf(prunedBy(copy).text), pruned(machine, keeping({"Machine"})).text);
    // One that fails changes nothing.
    reader.keepXSDChildAttributes("Extended", {"f"});
    writeFile(directory.file("schema.xsd"), "no schema");
    EXPECT_TRUE(failureOf([&] { reader.readXSD(true); }));
    EXPECT_EQ(linesOf(prunedBy(reader).text), withoutLines(extended, {"\"d\""}));
}

TEST(PrunedSchema, IsNotThereBeforeTheFirstReading) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", "no schema"));
    const FileName there = directory.file("there.xsd", "stays");
    for (const std::string name : {"there.xsd", "new.xsd"})
        EXPECT_THAT(reader.writePrunedXSD(directory.file(name)), IsEmpty());
    EXPECT_TRUE(failureOf([&] { reader.readAnyXSD(); }));
    EXPECT_THAT(reader.writePrunedXSD(there), IsEmpty());
    EXPECT_EQ("", prunedBy(reader).text);
    EXPECT_THAT(prunedBy(reader).stayed, IsEmpty());
    EXPECT_EQ("stays", readFile(there));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd", "there.xsd"));
}

// Changes that the application makes itself.

/// What is written of a schema once the application has changed its document.
template <typename Change>
Pruned changed(const std::string& lines, Change change) {
    return pruned(lines, [&](XsdConfigReader& reader) {
        change(*(reader.*memberOf(TreeOfReader()))->getSchema());
    });
}

TEST(PrunedSchema, LosesWhatTheApplicationRemoves) {
    const Pruned result = changed(machine, [](OV_XsdReader::ov_schema& schema) {
        schema.element().erase(schema.element().begin());
        auto& type = schema.complexType().front();
        type.sequence()->element().erase(type.sequence()->element().begin());
        type.attribute().clear();
    });
    EXPECT_EQ(result.text, withoutLines(machine, {"\"machine\"", "\"axis\"", "<xs:attribute"}));
}

TEST(PrunedSchema, LosesNothingButWhatTheApplicationRemoves) {
    EXPECT_EQ(changed(machine,
                      [](OV_XsdReader::ov_schema& schema) {
                          auto& types = schema.complexType();
                          types.push_back(types.front()); // to another place
                          types.erase(types.begin());
                          auto& children = types.back().sequence()->element();
                          children.insert(children.begin(), OV_XsdReader::ov_element());
                          children.push_back(children.at(1));
                          children.erase(children.begin() + 1);
                          schema.simpleType().push_back(OV_XsdReader::ov_simpleType());
                      })
                  .text,
              machine);
}

TEST(PrunedSchema, LosesWhatTheApplicationRenames) {
    // What has another name is another type: the former one is gone, where nothing names it.
    EXPECT_EQ(
        changed(type("A") + '\n' + type("B"),
                [](OV_XsdReader::ov_schema& schema) { schema.complexType().front().name("C"); })
            .text,
        type("B"));
}

TEST(PrunedSchema, LosesTheFirstOfTypesWithTheSameName) {
    const std::string first = "<xs:complexType name=\"A\">\n<xs:sequence>\n"
                              "<xs:element name=\"a\"/>\n</xs:sequence>\n</xs:complexType>\n";
    EXPECT_EQ(pruned(first + type("A"), keeping({})).text, type("A"));
    EXPECT_EQ(pruned(type("A") + '\n' + first + type("B"), keeping({})).text, first + type("B"));
}

TEST(PrunedSchema, TellsWhatHasTheSameNameByItsOrder) {
    const std::string twice = "<xs:element name=\"a\" minOccurs=\"0\"/> <!-- 1 -->\n"
                              "<xs:element name=\"b\" minOccurs=\"0\"/>\n"
                              "<xs:element name=\"a\" minOccurs=\"0\"/> <!-- 2 -->\n";
    const std::string lines = "<xs:complexType name=\"A\">\n<xs:sequence>\n" + twice +
                              "</xs:sequence>\n</xs:complexType>\n";
    EXPECT_EQ(pruned(lines + lines, keepingChildren("A", {"a"})).text,
              withoutLines(lines, {"\"b\""}) + '\n' + lines);
    EXPECT_EQ(pruned(lines + type("B") + '\n' + lines + type("B"), keeping({"A"})).text + '\n',
              lines + lines);
    EXPECT_EQ(pruned(lines + type("B") + '\n' + lines + type("B"), keeping({"B"})).text,
              type("B") + '\n' + type("B"));
}

// Where it cannot be written.

TEST(PrunedSchema, ReportsAPlaceThatCannotBeWritten) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    reader.keepXSDElement({"Machine"});
    std::filesystem::create_directory(directory.path() / "directory");
    for (const FileName& place :
         {directory.file("nowhere/file.xsd"), directory.file("directory"),
          directory.file("schema.xsd/file.xsd"), FileName(""), FileName(std::string("a\0b", 3))})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.writePrunedXSD(place); }))
            << place.toString();
    EXPECT_THAT(filesIn(directory), ElementsAre("directory", "schema.xsd"));
    EXPECT_EQ(suiteSchema(machine), readFile(directory.file("schema.xsd")));
}

TEST(PrunedSchema, NeverHasTheNameOfAScratchFile) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    std::filesystem::create_symlink(sanitisingFile, directory.path() / "link.xsd");
    for (const std::string& name : {sanitisingFile, rewritingFile, std::string("link.xsd")})
        EXPECT_EQ(ConfigException::SourceNotFound,
                  failureOf([&] { reader.writePrunedXSD(directory.file(name)); }))
            << name;
    EXPECT_THAT(filesIn(directory), ElementsAre("link.xsd", "schema.xsd"));
}

TEST(PrunedSchema, LeavesTheFileWhereTheDiskIsFull) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    const FileName target = directory.file("target.xsd", "earlier");
    for (const FileName& file : {target, directory.file("new.xsd")})
        withLargestFile(100, [&] {
            EXPECT_EQ(ConfigException::SourceNotFound,
                      failureOf([&] { reader.writePrunedXSD(file); }));
        });
    EXPECT_EQ("earlier", readFile(target));
    EXPECT_THAT(filesIn(directory), ElementsAre("schema.xsd", "target.xsd"));
}

TEST(PrunedSchema, LeavesAFileThatMayNotBeWritten) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    const FileName target = directory.file("target.xsd", "earlier");
    const ReadOnlyFolder folder(directory.path());
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  return failureOf([&] { reader.writePrunedXSD(target); }) ==
                                 ConfigException::SourceNotFound
                             ? 0
                             : 1;
              }));
    EXPECT_EQ("earlier", readFile(target));
}

TEST(PrunedSchema, ReportsAStreamThatDoesNotTakeIt) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    std::ostringstream out;
    out.setstate(std::ios::failbit);
    EXPECT_THROW(reader.writePrunedXSD(out), std::ios_base::failure);
    const FileName file = directory.file("target.xsd");
    withLargestFile(100, [&] {
        std::ofstream full(file.toNativeString());
        EXPECT_THROW(reader.writePrunedXSD(full), std::ios_base::failure);
    });
}

TEST(PrunedSchema, IsWrittenThroughALink) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, machine);
    const FileName target = directory.file("target.xsd", "earlier");
    std::filesystem::create_symlink("target.xsd", directory.path() / "link.xsd");
    reader.writePrunedXSD(directory.file("link.xsd"));
    EXPECT_TRUE(std::filesystem::is_symlink(directory.path() / "link.xsd"));
    EXPECT_EQ(suiteSchema(machine), readFile(target));
}

TEST(PrunedSchema, KeepsWhatStandsBetweenTwoPartsThatAreCutOut) {
    const TemporaryDirectory directory;
    const std::string start = "<!DOCTYPE s:schema [<!ENTITY more SYSTEM \"more.ent\">]>\n"
                              "<s:schema xmlns:s=\"http://www.w3.org/2001/XMLSchema\">";
    XsdConfigReader reader(directory.file(
        "schema.xsd", start + "\n<s:complexType name=\"A\"/>\n<s:complexType name=\"B\"/>\n"
                              "&more;\n<s:complexType name=\"C\"/>\n</s:schema>\n"));
    reader.readAnyXSD();
    reader.keepXSDElement({"A"});
    EXPECT_EQ(prunedBy(reader).text,
              start + "\n<s:complexType name=\"A\"/>\n&more;\n</s:schema>\n");
}

} // namespace
} // namespace Orvant
