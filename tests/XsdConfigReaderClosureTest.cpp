// The types that a type uses.

#include <PruningTestSupport.h>

#include <ReaderSupport.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

/// @return the types that a type of a schema uses, of which each is declared in one line
Strings typesUsedBy(const std::string& type, const std::string& lines) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", suiteSchema(lines)));
    reader.readAnyXSD();
    return reader.getTypesUsedBy(type);
}

const std::string used = "<xs:complexType name='Used'/>\n<xs:simpleType name='Unused'/>\n";

// A type or its part that names the type Used.
struct Use : TestCase {
    std::string lines;
};

class UsedType : public testing::TestWithParam<Use> {};

TEST_P(UsedType, IsFound) {
    EXPECT_THAT(typesUsedBy("User", used + GetParam().lines), UnorderedElementsAre("User", "Used"));
    EXPECT_THAT(typesUsedBy("ov:User", GetParam().lines + used),
                UnorderedElementsAre("User", "Used"));
}

std::string user(const std::string& content) {
    return "<xs:complexType name='User'>" + content + "</xs:complexType>\n";
}
std::string simpleUser(const std::string& content) {
    return "<xs:simpleType name='User'>" + content + "</xs:simpleType>\n";
}

INSTANTIATE_TEST_SUITE_P(
    SchemaClosure, UsedType,
    testing::Values(
        Use{{"RequiredChild"}, user("<xs:sequence><xs:element type='Used'/></xs:sequence>")},
        Use{{"OptionalChild"},
            user("<xs:sequence><xs:element type='ov:Used' minOccurs='0'/></xs:sequence>")},
        Use{{"ChildOfAChoice"}, user("<xs:choice><xs:element type='Used'/></xs:choice>")},
        Use{{"ChildOfAll"}, user("<xs:all><xs:element type='Used' minOccurs='0'/></xs:all>")},
        Use{{"ChildOfNestedGroups"},
            user("<xs:choice><xs:sequence><xs:element type='Used'/></xs:sequence></xs:choice>")},
        Use{{"ChildOfAnInlineType"},
            user("<xs:choice><xs:element><xs:complexType><xs:all><xs:element type='Used'/>"
                 "</xs:all></xs:complexType></xs:element></xs:choice>")},
        Use{{"Attribute"}, user("<xs:attribute type='Used' use='optional'/>")},
        Use{{"AttributeWithAnInlineType"},
            user("<xs:attribute><xs:simpleType><xs:list itemType='Used'/></xs:simpleType>"
                 "</xs:attribute>")},
        Use{{"Extension"},
            user("<xs:complexContent><xs:extension base='Used'/></xs:complexContent>")},
        Use{{"Restriction"},
            user("<xs:complexContent><xs:restriction base='Used'/></xs:complexContent>")},
        Use{{"ChildOfARestriction"},
            user("<xs:complexContent><xs:restriction base='xs:anyType'><xs:sequence>"
                 "<xs:element type='Used'/></xs:sequence></xs:restriction></xs:complexContent>")},
        Use{{"ExtensionOfSimpleContent"},
            user("<xs:simpleContent><xs:extension base='Used'/></xs:simpleContent>")},
        Use{{"SimpleRestriction"}, simpleUser("<xs:restriction base='Used'/>")},
        Use{{"Union"}, simpleUser("<xs:union memberTypes='xs:int ov:Used'/>")},
        Use{{"UnionOfInlineTypes"},
            simpleUser("<xs:union><xs:simpleType><xs:restriction base='Used'/></xs:simpleType>"
                       "</xs:union>")},
        Use{{"List"}, simpleUser("<xs:list itemType='Used'/>")},
        Use{{"Group"},
            user("<xs:group ref='g'/>") +
                "<xs:group name='g'><xs:all><xs:element type='Used'/></xs:all>"
                "</xs:group>"},
        Use{{"GroupInAGroup"},
            user("<xs:sequence><xs:group ref='ov:g'/></xs:sequence>") +
                "<xs:group name='g'><xs:choice><xs:group ref='h'/><xs:group ref='g'/></xs:choice>"
                "</xs:group><xs:group name='h'><xs:choice><xs:element type='Used'/></xs:choice>"
                "</xs:group>"},
        Use{{"AttributeGroup"},
            user("<xs:attributeGroup ref='g'/>") +
                "<xs:attributeGroup name='g'><xs:attribute type='Used'/>"
                "</xs:attributeGroup>"},
        Use{{"GlobalAttribute"},
            user("<xs:attribute ref='a'/>") + "<xs:attribute name='a' type='Used'/>"},
        Use{{"GlobalElement"},
            user("<xs:sequence><xs:element ref='e'/></xs:sequence>") +
                "<xs:element name='e' type='Used'/>"},
        Use{{"GlobalElementWithAnInlineType"},
            user("<xs:sequence><xs:element ref='e'/></xs:sequence>") +
                "<xs:element name='e'><xs:complexType><xs:attribute type='Used'/></xs:complexType>"
                "</xs:element>"},
        Use{{"Substitute"},
            user("<xs:sequence><xs:element ref='e'/></xs:sequence>") +
                "<xs:element name='e' type='xs:int'/>"
                "<xs:element name='f' substitutionGroup='ov:e' type='Used'/>"},
        Use{{"SubstituteOfASubstitute"},
            user("<xs:sequence><xs:element ref='e'/></xs:sequence>") +
                "<xs:element name='g' substitutionGroup='f' type='Used'/>"
                "<xs:element name='f' substitutionGroup='e'/><xs:element name='e'/>"},
        Use{{"HeadOfASubstitute"},
            user("<xs:sequence><xs:element ref='e'/></xs:sequence>") +
                "<xs:element name='e' substitutionGroup='f'/><xs:element name='f' type='Used'/>"},
        Use{{"Alternative"},
            user("<xs:choice><xs:element><xs:alternative type='Used'/></xs:element></xs:choice>")},
        Use{{"Redefinition"},
            "<xs:redefine><xs:complexType name='User'><xs:complexContent>"
            "<xs:extension base='User'><xs:attribute type='Used'/></xs:extension>"
            "</xs:complexContent></xs:complexType></xs:redefine>" +
                user("")}),
    testing::PrintToStringParamName());

TEST(SchemaClosure, IsThatOfAllTypesFound) {
    EXPECT_THAT(typesUsedBy("A", "<xs:simpleType name='D'/>\n"
                                 "<xs:simpleType name='C'><xs:list itemType='D'/></xs:simpleType>"
                                 "<xs:complexType name='A'><xs:sequence>"
                                 "<xs:element type='B' minOccurs='0'/></xs:sequence>"
                                 "</xs:complexType><xs:complexType name='B'>"
                                 "<xs:group ref='g'/></xs:complexType><xs:group name='g'><xs:all>"
                                 "<xs:element type='C'/><xs:element type='A'/></xs:all></xs:group>"
                                 "<xs:simpleType name='E'><xs:list itemType='A'/></xs:simpleType>"),
                UnorderedElementsAre("A", "B", "C", "D"));
}

TEST(SchemaClosure, HasEachDeclaredTypeOnce) {
    EXPECT_THAT(typesUsedBy("User", user("<xs:attribute type='User'/><xs:attribute type='ov:Used'/>"
                                         "<xs:attribute type='Used'/><xs:attribute type='None'/>"
                                         "<xs:attribute type='xs:int'/>") +
                                        used + used),
                ElementsAre("User", "Used"));
}

TEST(SchemaClosure, DoesNotHaveWhatOnlyLooksLikeAName) {
    EXPECT_THAT(
        typesUsedBy("User",
                    used + user("<xs:annotation><xs:appinfo><xs:element type='Used'/>"
                                "</xs:appinfo></xs:annotation><xs:attribute name='Used'/>"
                                "<!-- type='Used' --><t:e xmlns:t='urn:t' type='Used'/>"
                                "<xs:attribute xmlns:t='urn:t' t:type='Used' type='t:Used'/>"
                                "<xs:attribute ref='Used'/><xs:group ref='Used'/>"
                                "<xs:attribute type='used'/>")),
        ElementsAre("User"));
}

TEST(SchemaClosure, IsEmptyForTypesThatAreNotDeclared) {
    for (const std::string type : {"", "user", "Unknown", "xs:int", "ov:", "xs:User", "t:User"})
        EXPECT_THAT(typesUsedBy(type, user("") + used), IsEmpty()) << type;
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", "no schema"));
    EXPECT_THAT(reader.getTypesUsedBy("User"), IsEmpty());
}

TEST(SchemaClosure, IsThatOfTheFileThatIsWellFormedOnceRewritten) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, "<xs:complexType name=\"User\">\n<xs:attribute type=\"Used\"/>"
                                     "\n</complexType>\n<xs:simpleType name=\"Used\"/>\n"
                                     "<xs:simpleType name=\"Unused\"/>");
    EXPECT_THAT(reader.getTypesUsedBy("User"), ElementsAre("User", "Used"));
}

TEST(SchemaClosure, LeavesOutWhatFiltersRemoved) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, R"(<xs:complexType name="A">
<xs:sequence>
<xs:element name="b" type="B" minOccurs="0"/>
<xs:element name="c" type="C" minOccurs="0"/>
<xs:element name="d" minOccurs="0">
<xs:simpleType>
<xs:list itemType="D"/>
</xs:simpleType>
</xs:element>
</xs:sequence>
</xs:complexType>
<xs:element name="b" type="B"/>
<xs:element name="d" type="D"/>
<xs:simpleType name="B">
</xs:simpleType>
<xs:simpleType name="C">
</xs:simpleType>
<xs:simpleType name="D">
</xs:simpleType>)");
    EXPECT_THAT(reader.getTypesUsedBy("A"), UnorderedElementsAre("A", "B", "C", "D"));
    reader.keepXSDChildElement("A", {"c"});
    EXPECT_THAT(reader.getTypesUsedBy("A"), UnorderedElementsAre("A", "C"));
    reader.keepXSDElement({"A"});
    EXPECT_THAT(reader.getTypesUsedBy("A"), ElementsAre("A"));
    EXPECT_THAT(reader.getTypesUsedBy("B"), IsEmpty());
    reader.readXSD(true);
    EXPECT_THAT(reader.getTypesUsedBy("A"), UnorderedElementsAre("A", "B", "C", "D"));
}

TEST(SchemaClosure, LosesNothingWhenItIsKept) {
    const std::string lines = R"(<xs:complexType name="A">
<xs:sequence>
<xs:element name="b" type="B" minOccurs="0"/>
<xs:group ref="g"/>
</xs:sequence>
<xs:attribute name="a" type="S" use="optional"/>
</xs:complexType>
<xs:complexType name="B">
<xs:complexContent>
<xs:extension base="C">
<xs:sequence>
<xs:element name="d" type="D" minOccurs="0"/>
</xs:sequence>
</xs:extension>
</xs:complexContent>
</xs:complexType>
<xs:complexType name="C">
</xs:complexType>
<xs:complexType name="D">
</xs:complexType>
<xs:group name="g">
<xs:all>
<xs:element name="e" type="E"/>
</xs:all>
</xs:group>
<xs:complexType name="E">
</xs:complexType>
<xs:simpleType name="S">
<xs:union memberTypes="T"/>
</xs:simpleType>
<xs:simpleType name="T">
</xs:simpleType>)";
    const std::string others = "\n<xs:complexType name=\"F\">\n</xs:complexType>";
    const Pruned result = pruned(lines + others, [](XsdConfigReader& reader) {
        reader.keepXSDElement(reader.getTypesUsedBy("A"));
        EXPECT_THAT(reader.getSubTypes("A"), ElementsAre(Pair("b", "B")));
        EXPECT_THAT(reader.getSubTypes("B"), ElementsAre(Pair("d", "D")));
    });
    EXPECT_EQ(result.text, lines);
    EXPECT_THAT(result.stayed, IsEmpty());
}

TEST(SchemaClosure, FollowsTheAttributesThatEachTypeHasByDefault) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file(
        "schema.xsd",
        "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" defaultAttributes=\"All\">"
        "<xs:complexType name=\"A\"/><xs:simpleType name=\"B\"/><xs:attributeGroup name=\"All\">"
        "<xs:attribute name=\"b\" type=\"B\"/></xs:attributeGroup></xs:schema>"));
    reader.readAnyXSD();
    EXPECT_THAT(reader.getTypesUsedBy("A"), ElementsAre("A", "B"));
}

} // namespace
} // namespace Orvant
