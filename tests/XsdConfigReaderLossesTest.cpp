#include <ReaderSupport.h>
#include <SchemaTestSupport.h>
#include <SchemaValidator.h>

#include <gmock/gmock.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

Strings lossesOf(XsdConfigReader& reader) {
    Strings lines;
    for (const XsdLoss& loss : reader.getLosses())
        lines.push_back(std::to_string(loss.line) + " " + loss.construct + " of " + loss.owner +
                        ": " + loss.effect);
    return lines;
}

/// What is read of a file, and what is written of it.
struct Reading {
    Reading(const std::string& file, bool isSuite) {
        XsdConfigReader reader(directory.file("schema.xsd", file));
        if (isSuite)
            reader.readXSD(true);
        else
            reader.readAnyXSD();
        losses = lossesOf(reader);
        reader.writeXSD(directory.file("written.xsd"), true);
        written = readFile(directory.file("written.xsd"));
    }

    TemporaryDirectory directory;
    Strings losses;
    std::string written;
};

/// @return the document with its namespace, and that of xsi:, if it begins without one
std::string withNamespaces(const std::string& document) {
    if (document.substr(0, document.find('>')).find("xmlns=") != std::string::npos ||
        document.empty())
        return document;
    std::string complete = document;
    return complete.insert(document.find_first_of(" />"),
                           " xmlns=\"http://www.orvant.com/OV_QLV100\" "
                           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"");
}

struct Loss : TestCase {
    std::string content; ///< of the schema, from line 2
    Strings losses;
    /// Whose verdict the schema that is written changes; valid with both where it changes none;
    /// empty where that is not a schema.
    std::string document;
};

std::string worstOf(const Strings& losses) {
    for (const std::string effect : {XsdLoss::notValid, XsdLoss::acceptsLess, XsdLoss::acceptsMore})
        for (const std::string& loss : losses)
            if (loss.ends_with(": " + effect))
                return effect;
    return XsdLoss::documentationOnly;
}

void expectEffect(const std::string& effect, const std::string& read, const std::string& written,
                  const std::string& document) {
    SchemaValidator before(read);
    SchemaValidator after(written);
    ASSERT_TRUE(before.isSchema()) << before.errors();
    EXPECT_EQ(effect != XsdLoss::notValid, after.isSchema()) << after.errors() << written;
    if (effect == XsdLoss::notValid)
        return;
    EXPECT_EQ(effect != XsdLoss::acceptsMore, before.accepts(document)) << before.errors();
    EXPECT_EQ(effect != XsdLoss::acceptsLess, after.accepts(document)) << after.errors() << written;
}

class LossOfSchema : public testing::TestWithParam<Loss> {};

TEST_P(LossOfSchema, IsListedWithWhatItMeansForDocuments) {
    const std::string file = suiteSchema(GetParam().content);
    const Reading reading(file, false);
    EXPECT_THAT(reading.losses, ElementsAreArray(GetParam().losses));
    expectEffect(worstOf(GetParam().losses), file, reading.written,
                 withNamespaces(GetParam().document));
}

/// A root element of a type.
std::string rootOf(const std::string& type) {
    return R"(<xs:element name="r" type="T"/>
)" + type;
}
/// ... with this in it
std::string typeOf(const std::string& content) {
    return rootOf("<xs:complexType name=\"T\">\n" + content + "\n</xs:complexType>");
}
/// ... and in its sequence
std::string sequenceOf(const std::string& content) {
    return typeOf("<xs:sequence>\n" + content + "\n</xs:sequence>");
}
/// A root element of a simple type.
std::string simpleOf(const std::string& content) {
    return rootOf("<xs:simpleType name=\"T\">\n" + content + "\n</xs:simpleType>");
}
std::string elementOf(const std::string& attributes) {
    return sequenceOf("<xs:element name=\"a\" " + attributes + "/>");
}
std::string attributeOf(const std::string& attributes) {
    return typeOf("<xs:attribute name=\"a\" " + attributes + "/>");
}

const char* const a = R"(<xs:element name="a" type="xs:int"/>)";
const char* const optionalA = R"(<xs:element name="a" type="xs:int" minOccurs="0"/>)";

INSTANTIATE_TEST_SUITE_P(
    Contents, LossOfSchema,
    testing::Values(
        Loss{"Any",
             sequenceOf("<xs:any processContents='skip'/>"),
             {"5 xs:any of T: accepts less"},
             "<r><b xmlns='x'/></r>"},
        Loss{"AnyThatCannotBe",
             sequenceOf("<xs:any minOccurs='0' maxOccurs='0'/>"),
             {"5 xs:any of T: documentation only"},
             "<r/>"},
        Loss{"GroupReference",
             typeOf("<xs:group ref='G'/>") + "\n<xs:group name='G'><xs:sequence>" + a +
                 "</xs:sequence></xs:group>",
             {"4 xs:group of T: accepts less", "6 xs:group of G: accepts less"},
             "<r><a>1</a></r>"},
        Loss{"GroupWithoutReference",
             typeOf("") + "\n<xs:group name='G'><xs:sequence/></xs:group>",
             {"6 xs:group of G: documentation only"},
             "<r/>"},
        Loss{"NestedChoice",
             sequenceOf(std::string("<xs:choice>") + a + "</xs:choice>"),
             {"5 xs:choice of T: accepts less"},
             "<r><a>1</a></r>"},
        Loss{"NestedSequenceWithoutElements",
             sequenceOf("<xs:sequence/>"),
             {"5 xs:sequence of T: documentation only"},
             "<r/>"},
        Loss{"All",
             typeOf(std::string("<xs:all>") + a + "</xs:all>"),
             {"4 xs:all of T: accepts less"},
             "<r><a>1</a></r>"},
        Loss{"ChoiceInExtension",
             rootOf(std::string("<xs:complexType name='B'/><xs:complexType name='T'>"
                                "<xs:complexContent><xs:extension base='B'>\n<xs:choice>") +
                    a + "</xs:choice></xs:extension></xs:complexContent></xs:complexType>"),
             {"4 xs:choice of T: accepts less"},
             "<r><a>1</a></r>"},
        Loss{"SimpleContent",
             typeOf("<xs:simpleContent><xs:extension base='xs:int'/></xs:simpleContent>"),
             {"4 xs:simpleContent of T: accepts less"},
             "<r>1</r>"},
        Loss{"Mixed",
             rootOf("<xs:complexType name='T' mixed='true'/>"),
             {"3 mixed of T: accepts less"},
             "<r>text</r>"},
        Loss{"NotMixed",
             rootOf("<xs:complexType name='T' mixed='false'/>"),
             {"3 mixed of T: documentation only"},
             "<r/>"},
        Loss{"OptionalSequence",
             typeOf(std::string("<xs:sequence minOccurs='0'>") + a + "</xs:sequence>"),
             {"4 minOccurs of T: accepts less"},
             "<r/>"},
        Loss{"OptionalSequenceOfOptionalElements",
             typeOf(std::string("<xs:sequence minOccurs='0'>") + optionalA + "</xs:sequence>"),
             {"4 minOccurs of T: documentation only"},
             "<r/>"},
        Loss{"RepeatedChoice",
             typeOf(std::string("<xs:choice\n maxOccurs='unbounded'>") + a + "</xs:choice>"),
             {"5 maxOccurs of T: accepts less"},
             "<r><a>1</a><a>2</a></r>"},
        Loss{"TwiceAtLeast",
             typeOf(std::string("<xs:choice minOccurs='2' maxOccurs='2'>") + a + "</xs:choice>"),
             {"4 minOccurs of T: accepts more", "4 maxOccurs of T: accepts less"},
             "<r><a>1</a><a>2</a></r>"},
        Loss{"OnceAsByDefault",
             typeOf(std::string("<xs:choice minOccurs='1' maxOccurs='1'>") + a + "</xs:choice>"),
             {"4 minOccurs of T: documentation only", "4 maxOccurs of T: documentation only"},
             "<r><a>1</a></r>"},
        Loss{
            "GroupThatNeverIs",
            typeOf(std::string("<xs:sequence minOccurs='0' maxOccurs='0'>") + a + "</xs:sequence>"),
            {"4 minOccurs of T: accepts less", "4 maxOccurs of T: accepts less"},
            "<r/>"}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    Attributes, LossOfSchema,
    testing::Values(
        Loss{"AttributeGroup",
             typeOf("<xs:attributeGroup ref='G'/>") +
                 "\n<xs:attributeGroup name='G'><xs:attribute name='a'/></xs:attributeGroup>",
             {"4 xs:attributeGroup of T: accepts less", "6 xs:attributeGroup of G: accepts less"},
             "<r a=''/>"},
        Loss{"AnyAttribute",
             typeOf("<xs:anyAttribute processContents='skip'/>"),
             {"4 xs:anyAttribute of T: accepts less"},
             "<r x:a='' xmlns:x='x'/>"},
        Loss{"AttributeReference",
             typeOf("<xs:attribute ref='a'/>") + "<xs:attribute name='a'/>",
             {"4 ref of T: not a valid schema", "5 xs:attribute of a: accepts less"},
             ""},
        Loss{"AttributeOfSchema",
             "<xs:element name='r' type='xs:anyType'/>\n<xs:attribute name='a' type='xs:int'/>",
             {"3 xs:attribute of a: accepts more"},
             "<r xmlns='http://www.orvant.com/OV_QLV100' "
             "xmlns:o='http://www.orvant.com/OV_QLV100' o:a='x'/>"},
        Loss{"AttributeOfSchemaThatNothingTakes",
             typeOf("") + "\n<xs:attribute name='a'/>",
             {"6 xs:attribute of a: documentation only"},
             "<r/>"},
        Loss{"InlineType",
             typeOf("<xs:attribute name='a'>\n<xs:simpleType><xs:restriction base='xs:int'/>"
                    "</xs:simpleType></xs:attribute>"),
             {"5 xs:simpleType of T: accepts more"},
             "<r a='x'/>"},
        Loss{"Fixed", attributeOf("fixed='x'"), {"4 fixed of T: accepts more"}, "<r a='y'/>"},
        Loss{"Default", attributeOf("default='x'"), {"4 default of T: documentation only"}, "<r/>"},
        Loss{"Qualified",
             attributeOf("form='qualified'"),
             {"4 form of T: accepts less"},
             "<r o:a='' xmlns:o='http://www.orvant.com/OV_QLV100'/>"},
        Loss{"Unqualified",
             attributeOf("form='unqualified'"),
             {"4 form of T: documentation only"},
             "<r a=''/>"},
        Loss{"Foreign",
             attributeOf("id='i' x:b='1' xmlns:x='x'"),
             {"4 id of T: documentation only", "4 x:b of T: documentation only"},
             "<r a=''/>"}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    Elements, LossOfSchema,
    testing::Values(
        Loss{"ElementReference",
             sequenceOf("<xs:element ref='r' minOccurs='0'/>"),
             {"5 ref of T: not a valid schema"},
             ""},
        Loss{"Default",
             elementOf("type='xs:int' default='1'"),
             {"5 default of T: accepts less"},
             "<r><a/></r>"},
        Loss{"DefaultOfText",
             elementOf("type='xs:string' default='1'"),
             {"5 default of T: documentation only"},
             "<r><a/></r>"},
        Loss{"DefaultOfOwnType",
             elementOf("type='E' default='x'") +
                 "<xs:simpleType name='E'><xs:restriction base='xs:string'>"
                 "<xs:enumeration value='x'/></xs:restriction></xs:simpleType>",
             {"5 default of T: accepts less"},
             "<r><a/></r>"},
        Loss{"DefaultOfOwnTypeThatCanBeEmpty",
             elementOf("type='E' default='x'") +
                 "<xs:simpleType name='E'><xs:restriction base='xs:string'/></xs:simpleType>",
             {"5 default of T: documentation only"},
             "<r><a/></r>"},
        Loss{"Fixed",
             elementOf("type='xs:string' fixed='x'"),
             {"5 fixed of T: accepts more"},
             "<r><a>y</a></r>"},
        Loss{"FixedNumber",
             elementOf("type='xs:int' fixed='1'"),
             {"5 fixed of T: accepts less"},
             "<r><a/></r>"},
        Loss{"Nillable",
             elementOf("type='xs:int' nillable='true'"),
             {"5 nillable of T: accepts less"},
             "<r><a xsi:nil='true'/></r>"},
        Loss{"NotNillable",
             elementOf("type='xs:int' nillable='0'"),
             {"5 nillable of T: documentation only"},
             "<r><a>1</a></r>"},
        Loss{"Unqualified",
             elementOf("type='xs:int' form='unqualified'"),
             {"5 form of T: accepts less"},
             "<r><a xmlns=''>1</a></r>"},
        Loss{"Block",
             elementOf("type='B' block='extension'") +
                 "<xs:complexType name='B'/>\n<xs:complexType name='D'><xs:complexContent>"
                 "<xs:extension base='B'/></xs:complexContent></xs:complexType>",
             {"5 block of T: accepts more"},
             "<r><a xsi:type='D'/></r>"},
        Loss{"InlineSimpleType",
             sequenceOf("<xs:element name='a'><xs:simpleType><xs:restriction base='xs:int'/>"
                        "</xs:simpleType></xs:element>"),
             {"5 xs:simpleType of T: accepts more"},
             "<r><a>x</a></r>"},
        Loss{"InlineIdentifier",
             sequenceOf("<xs:element name='a'><xs:simpleType><xs:restriction base='xs:ID'/>"
                        "</xs:simpleType></xs:element><xs:element name='b' type='xs:IDREF'/>"),
             {"5 xs:simpleType of T: accepts less"},
             "<r><a>x</a><b>x</b></r>"},
        Loss{"Unique",
             sequenceOf("<xs:element name='a' type='T' minOccurs='0' maxOccurs='2'>\n<xs:unique "
                        "name='u'><xs:selector xpath='ov:a'/><xs:field xpath='ov:b'/></xs:unique>"
                        "</xs:element><xs:element name='b' type='xs:int' minOccurs='0'/>"),
             {"6 xs:unique of T: accepts more"},
             "<r><a><a><b>1</b></a><a><b>1</b></a></a></r>"}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    RootElements, LossOfSchema,
    testing::Values(
        Loss{"InlineType",
             "<xs:element name='r'>\n<xs:complexType/></xs:element>",
             {"3 xs:complexType of r: accepts more"},
             "<r>text</r>"},
        Loss{"InlineTypeWithElementsThatAreRoots",
             "<xs:element name='a' type='xs:int'/>\n<xs:element name='r'><xs:complexType>"
             "<xs:sequence><xs:element name='a' type='xs:string'/></xs:sequence>"
             "</xs:complexType></xs:element>",
             {"3 xs:complexType of r: accepts less"},
             "<r><a>x</a></r>"},
        Loss{"Abstract",
             "<xs:element name='r' type='xs:int' abstract='true'/>",
             {"2 abstract of r: accepts more"},
             "<r>1</r>"},
        Loss{"AbstractType",
             rootOf("<xs:complexType name='T' abstract='1'/>"),
             {"3 abstract of T: accepts more"},
             "<r/>"},
        Loss{"Final",
             "<xs:element name='r' type='xs:int' final='#all'/>",
             {"2 final of r: documentation only"},
             "<r>1</r>"},
        Loss{"Nillable",
             "<xs:element name='r' type='xs:int' nillable='true'/>",
             {"2 nillable of r: accepts less"},
             "<r xsi:nil='true'/>"},
        Loss{"Key",
             "<xs:element name='r' type='xs:anyType'>\n<xs:key name='k'>"
             "<xs:selector xpath='.'/><xs:field xpath='@x'/></xs:key></xs:element>",
             {"3 xs:key of r: accepts more"},
             "<r/>"},
        Loss{"Substitution",
             "<xs:element name='h' type='xs:int'/>\n<xs:element name='s' type='xs:int' "
             "substitutionGroup='h'/>\n<xs:complexType name='T'><xs:sequence><xs:choice>"
             "<xs:element ref='h'/></xs:choice></xs:sequence></xs:complexType>"
             "<xs:element name='r' type='T'/>",
             {"3 substitutionGroup of s: accepts less", "4 xs:choice of T: accepts less"},
             "<r><s>1</s></r>"},
        Loss{"SubstitutionWithoutType",
             "<xs:element name='h' type='xs:int'/>\n<xs:element name='s' substitutionGroup='h'/>",
             {"3 substitutionGroup of s: accepts more"},
             "<s>x</s>"},
        Loss{"SubstitutionOfNothing",
             "<xs:element name='h' type='xs:int'/>\n"
             "<xs:element name='s' type='xs:int' substitutionGroup='h'/>",
             {"3 substitutionGroup of s: documentation only"},
             "<s>1</s>"}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    SimpleTypes, LossOfSchema,
    testing::Values(
        Loss{"Pattern",
             simpleOf("<xs:restriction base='xs:string'>\n<xs:pattern value='a'/>"
                      "</xs:restriction>"),
             {"5 xs:pattern of T: accepts more"},
             "<r>b</r>"},
        Loss{"NoLeastLength",
             simpleOf("<xs:restriction base='xs:string'><xs:minLength value='0'/>"
                      "</xs:restriction>"),
             {"4 xs:minLength of T: documentation only"},
             "<r/>"},
        Loss{"WhiteSpaceAroundListedValues",
             simpleOf("<xs:restriction base='xs:string'><xs:whiteSpace value='collapse'/>"
                      "<xs:enumeration value='a'/></xs:restriction>"),
             {"4 xs:whiteSpace of T: accepts less"},
             "<r> a </r>"},
        Loss{"WhiteSpaceAroundValuesListedInAnotherType",
             simpleOf("<xs:restriction base='B'><xs:enumeration value='a'/></xs:restriction>") +
                 "\n<xs:simpleType name='B'><xs:restriction base='xs:string'>"
                 "<xs:whiteSpace value='collapse'/></xs:restriction></xs:simpleType>",
             {"6 xs:whiteSpace of B: accepts less"},
             "<r> a </r>"},
        Loss{"WhiteSpace",
             simpleOf("<xs:restriction base='xs:string'><xs:whiteSpace value='collapse'/>"
                      "</xs:restriction>"),
             {"4 xs:whiteSpace of T: documentation only"},
             "<r> a </r>"},
        Loss{"List",
             simpleOf("<xs:list itemType='xs:int'/>"),
             {"4 xs:list of T: not a valid schema"},
             ""},
        Loss{"Union",
             simpleOf("<xs:union memberTypes='xs:int'/>"),
             {"4 xs:union of T: not a valid schema"},
             ""},
        Loss{"InlineBase",
             simpleOf("<xs:restriction>\n<xs:simpleType><xs:restriction base='xs:int'/>"
                      "</xs:simpleType></xs:restriction>"),
             {"5 xs:simpleType of T: not a valid schema"},
             ""},
        Loss{"Final",
             rootOf("<xs:simpleType name='T' final='#all'><xs:restriction base='xs:int'/>"
                    "</xs:simpleType>"),
             {"3 final of T: documentation only"},
             "<r>1</r>"},
        Loss{"EnumeratedName",
             "<xs:element name='r' type='T' xmlns:x='x'/>\n<xs:simpleType name='T' xmlns:x='x'>\n"
             "<xs:restriction base='xs:QName'><xs:enumeration value='x:a'/></xs:restriction>"
             "</xs:simpleType>",
             {"3 xmlns:x of T: not a valid schema"},
             ""},
        Loss{"Notation",
             rootOf("<xs:complexType name='T'><xs:attribute name='n' type='N'/></xs:complexType>\n"
                    "<xs:notation name='n' public='n'/><xs:notation name='m' public='m'/>"
                    "<xs:simpleType name='N'><xs:restriction base='xs:NOTATION'>"
                    "<xs:enumeration value='n'/></xs:restriction></xs:simpleType>"),
             {"4 xs:notation of n: not a valid schema", "4 xs:notation of m: documentation only"},
             ""}),
    nameOf<Loss>);

/// A type that restricts or extends one named B.
std::string derived(const std::string& base, const std::string& derivation,
                    const std::string& attributes = "") {
    return rootOf("<xs:complexType name='B'>" + base +
                  "</xs:complexType>\n<xs:complexType name='T'" + attributes +
                  ">\n<xs:complexContent>" + derivation + "</xs:complexContent></xs:complexType>");
}
const std::string required = std::string("<xs:sequence>") + a + "</xs:sequence>";
const std::string optional = std::string("<xs:sequence>") + optionalA + "</xs:sequence>";
std::string restriction(const std::string& content) {
    return "<xs:restriction base='B'>\n" + content + "</xs:restriction>";
}

INSTANTIATE_TEST_SUITE_P(
    DerivedTypes, LossOfSchema,
    testing::Values(
        Loss{"RestrictionOfRequiredElements",
             derived(required, restriction(required)),
             {"6 xs:sequence of T: not a valid schema"},
             ""},
        Loss{"RestrictionOfOptionalElements",
             derived(optional, restriction(optional)),
             {"6 xs:sequence of T: accepts less"},
             "<r><a>1</a></r>"},
        Loss{"RestrictionOfAnOptionalSequence",
             derived("\n<xs:sequence minOccurs='0'>" + std::string(a) + "</xs:sequence>",
                     "<xs:restriction base='B'/>"),
             {"4 minOccurs of B: not a valid schema"},
             ""},
        Loss{"RestrictionOfAChoiceThatCouldBeEmpty",
             derived("<xs:choice>" + std::string(a) +
                         "\n<xs:any minOccurs='0' namespace='##other'/>"
                         "</xs:choice>",
                     "<xs:restriction base='B'/>"),
             {"4 xs:any of B: not a valid schema"},
             ""},
        Loss{"RestrictedAttributeWithInlineType",
             derived("<xs:attribute name='x' type='xs:int'/>",
                     restriction("<xs:attribute name='x'><xs:simpleType>"
                                 "<xs:restriction base='xs:int'/></xs:simpleType></xs:attribute>")),
             {"6 xs:simpleType of T: not a valid schema"},
             ""},
        Loss{"RestrictedAttributeOfAGroup",
             derived("<xs:attributeGroup ref='G'/>",
                     restriction("<xs:attribute name='x' type='xs:int'/>")) +
                 "<xs:attributeGroup name='G'><xs:attribute name='x' type='xs:int'/>"
                 "</xs:attributeGroup>",
             {"3 xs:attributeGroup of B: not a valid schema",
              "6 xs:attributeGroup of G: accepts less"},
             ""},
        Loss{"AttributeGroupOfARestriction",
             derived("<xs:attribute name='x' type='xs:string'/>",
                     restriction("<xs:attributeGroup ref='G'/>")) +
                 "\n<xs:attributeGroup name='H'/><xs:attributeGroup name='G'>"
                 "<xs:attribute name='x' type='xs:string' fixed='1'/></xs:attributeGroup>",
             {"6 xs:attributeGroup of T: accepts more",
              "7 xs:attributeGroup of H: documentation only",
              "7 xs:attributeGroup of G: accepts more"},
             "<r x='2'/>"}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    OrdersAndAmbiguities, LossOfSchema,
    testing::Values(
        Loss{"AttributesBeforeTheChoice",
             typeOf(std::string("<xs:choice>") + a +
                    "</xs:choice>\n<xs:attribute name='x' type='xs:int'/>"),
             {"4 xs:choice of T: not a valid schema"},
             ""},
        Loss{"InlineTypeBeforeTheAnnotation",
             sequenceOf("<xs:element name='a'>\n<xs:annotation/><xs:complexType/></xs:element>"),
             {"6 xs:annotation of T: not a valid schema"},
             ""},
        Loss{"WhatStoodBetweenElementsOfOneName",
             sequenceOf(std::string(optionalA) +
                        "\n<xs:choice><xs:element name='b' type='xs:int'/></xs:choice>" + a),
             {"6 xs:choice of T: not a valid schema"},
             ""},
        Loss{"WhatStoodBetweenElementsWithoutAmbiguity",
             sequenceOf(std::string(a) +
                        "\n<xs:choice><xs:element name='b' type='xs:int'/></xs:choice>" + a),
             {"6 xs:choice of T: accepts less"},
             "<r><a>1</a><b>1</b><a>1</a></r>"},
        Loss{"WhatStoodBetweenBaseAndExtension",
             derived(optional, "<xs:extension base='B'><xs:sequence><xs:any namespace='##other'/>" +
                                   std::string(a) + "</xs:sequence></xs:extension>"),
             {"5 xs:any of T: not a valid schema"},
             ""},
        Loss{"AChoiceBeforeALoss",
             rootOf(std::string("<xs:complexType name='B'><xs:choice>") + a +
                    "<xs:element name='b' type='xs:int' minOccurs='0'/></xs:choice>"
                    "</xs:complexType><xs:complexType name='T'><xs:complexContent>"
                    "<xs:extension base='B'><xs:sequence>\n<xs:sequence>"
                    "<xs:element name='c' type='xs:int'/></xs:sequence>" +
                    a + "</xs:sequence></xs:extension></xs:complexContent></xs:complexType>"),
             {"4 xs:sequence of T: not a valid schema"},
             ""}),
    nameOf<Loss>);

INSTANTIATE_TEST_SUITE_P(
    Documentation, LossOfSchema,
    testing::Values(
        Loss{"Everywhere",
             "<!-- c --><?i?>\n<xs:annotation><xs:documentation>d</xs:documentation>"
             "</xs:annotation>\n" +
                 sequenceOf("<xs:annotation/>") + "<!-- e -->",
             {"2 comment of : documentation only",
              "2 processing instruction of : documentation only",
              "3 xs:annotation of : documentation only", "7 xs:annotation of T: documentation only",
              "9 comment of : documentation only"},
             "<r/>"},
        Loss{"Annotation",
             typeOf("<xs:annotation id='i'>\n<xs:documentation xml:lang='en' source='s'>a <b>b</b>"
                    "<!-- c --></xs:documentation>\n<xs:documentation/><xs:appinfo><c/>"
                    "</xs:appinfo></xs:annotation>"),
             {"4 id of T: documentation only", "5 xml:lang of T: documentation only",
              "5 source of T: documentation only", "5 b of T: documentation only",
              "5 comment of T: documentation only", "6 xs:documentation of T: documentation only",
              "6 xs:appinfo of T: documentation only"},
             "<r/>"}),
    nameOf<Loss>);

/// Xerces does not see all that XML Schema says, as other validators do.
TEST(XsdConfigReaderLosses, AreAsXmlSchemaHasIt) {
    const auto lossesIn = [](const std::string& content) {
        return Reading(suiteSchema(content), false).losses;
    };
    EXPECT_THAT(
        lossesIn(typeOf(std::string("<xs:sequence minOccurs='0' maxOccurs='0'>") + optionalA +
                        "</xs:sequence>")),
        ElementsAre("4 minOccurs of T: documentation only", "4 maxOccurs of T: accepts more"));
    // In an element that is not declared, too, elements that are declared are validated.
    EXPECT_THAT(lossesIn("<xs:element name='a' type='xs:int'/>\n<xs:element name='r'>"
                         "<xs:complexType><xs:sequence><xs:element name='b' type='B'/>"
                         "</xs:sequence></xs:complexType></xs:element><xs:complexType name='B'>"
                         "<xs:sequence><xs:element name='a' type='xs:string'/></xs:sequence>"
                         "</xs:complexType>"),
                ElementsAre("3 xs:complexType of r: accepts less"));
    // An extension of xs:anyType can have elements, but must be mixed.
    EXPECT_THAT(lossesIn("<xs:complexType name='T' mixed='true'><xs:complexContent>"
                         "<xs:extension base='xs:anyType'><xs:sequence>" +
                         std::string(a) +
                         "</xs:sequence></xs:extension></xs:complexContent></xs:complexType>"),
                ElementsAre("2 mixed of T: not a valid schema"));
}

/// Expects that a file in another form than the suite's becomes one that refuses its documents.
void expectLossesOfFile(const std::string& file, const Strings& losses,
                        const std::string& document = "") {
    const Reading reading(file, false);
    EXPECT_THAT(reading.losses, ElementsAreArray(losses));
    if (!document.empty())
        expectEffect(worstOf(losses), file, reading.written, document);
}

TEST(XsdConfigReaderLosses, AreAttributesOfTheSchema) {
    expectLossesOfFile(R"(<s:schema xmlns:s="http://www.w3.org/2001/XMLSchema" xmlns="t"
    targetNamespace="t" elementFormDefault="qualified"
    version="1" id='i' finalDefault=
    "#all"><s:element name="r" type="s:int"/></s:schema>)",
                       {"2 targetNamespace of : accepts less", "3 version of : documentation only",
                        "3 id of : documentation only", "3 finalDefault of : documentation only"},
                       "<r xmlns='t'>1</r>");
    expectLossesOfFile(R"(<schema xmlns="http://www.w3.org/2001/XMLSchema">
    <element name="r" type="int"/></schema>)",
                       {"1 targetNamespace of : accepts less"}, "<r>1</r>");
    const std::string inSuite = R"(<schema xmlns="http://www.w3.org/2001/XMLSchema"
    xmlns:t="http://www.orvant.com/OV_QLV100" targetNamespace="http://www.orvant.com/OV_QLV100" )";
    const std::string content = R"(><element name="r" type="t:T"/><complexType name="T"><sequence>
    <element name="a" type="int"/></sequence><attribute name="b"/></complexType></schema>)";
    const std::string begin = "<o:r xmlns:o='http://www.orvant.com/OV_QLV100'";
    expectLossesOfFile(inSuite + content, {"1 elementFormDefault of : accepts less"},
                       begin + "><a>1</a></o:r>");
    expectLossesOfFile(inSuite + "elementFormDefault='unqualified'" + content,
                       {"2 elementFormDefault of : accepts less"}, begin + "><a>1</a></o:r>");
    const std::string qualified = inSuite + "elementFormDefault='qualified' ";
    expectLossesOfFile(qualified + "attributeFormDefault='qualified'" + content,
                       {"2 attributeFormDefault of : accepts less"},
                       begin + " o:b=''><o:a>1</o:a></o:r>");
    expectLossesOfFile(qualified + "attributeFormDefault='unqualified'" + content,
                       {"2 attributeFormDefault of : documentation only"},
                       begin + " b=''><o:a>1</o:a></o:r>");
    expectLossesOfFile(qualified + "blockDefault='extension'" +
                           "><element name='r' type='t:B'/><complexType name='B'/><complexType "
                           "name='D'><complexContent><extension base='t:B'/></complexContent>"
                           "</complexType></schema>",
                       {"2 blockDefault of : accepts more"},
                       begin + " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                               "xsi:type='o:D'/>");
    expectLossesOfFile(inSuite + "elementFormDefault='unqualified'/>",
                       {"2 elementFormDefault of : documentation only"});
}

TEST(XsdConfigReaderLosses, AreOtherFilesAndTheirNames) {
    const std::string otherFiles = "<xs:include schemaLocation='a.xsd'/>\n"
                                   "<xs:import namespace='u' schemaLocation='u.xsd'/>\n"
                                   "<xs:import namespace='v'/>\n";
    const auto lossesOf = [&](const std::string& content) {
        return Reading(suiteSchema(otherFiles + content), false).losses;
    };
    EXPECT_THAT(lossesOf("<xs:element name='r' type='xs:int' xmlns:u='u'/>"),
                ElementsAre("2 xs:include of : accepts less", "3 xs:import of : accepts less",
                            "4 xs:import of : documentation only"));
    EXPECT_THAT(lossesOf("<xs:element name='r' type='u:T' xmlns:u='u'/>"),
                ElementsAre("2 xs:include of : accepts less", "3 xs:import of : not a valid schema",
                            "4 xs:import of : documentation only",
                            "5 xmlns:u of r: not a valid schema"));
    EXPECT_THAT(lossesOf("<xs:element name='r' type='ov:T'/>"),
                ElementsAre("2 xs:include of : not a valid schema", "3 xs:import of : accepts less",
                            "4 xs:import of : documentation only"));
}

class LossOfSuiteFile : public testing::TestWithParam<Loss> {};

TEST_P(LossOfSuiteFile, IsListedWithWhatItMeansForDocuments) {
    const std::string file = suiteSchema(GetParam().content);
    const Reading reading(file, true);
    EXPECT_THAT(reading.losses, ElementsAreArray(GetParam().losses));
    expectEffect(worstOf(GetParam().losses), file, reading.written,
                 withNamespaces(GetParam().document));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, LossOfSuiteFile,
    testing::Values(
        Loss{"SecondRootOnALine",
             "<xs:element name='r' type='xs:int'/> <xs:element name='s' type='xs:int'/>",
             {"2 xs:element of s: accepts less"},
             "<s>1</s>"},
        Loss{"SecondTypeOnALine",
             "<xs:complexType name='S'/> <xs:complexType name='T'/>\n"
             "<xs:element name='r' type='T'/>",
             {"2 xs:complexType of T: not a valid schema"},
             ""},
        Loss{"SecondTypeOnALineThatNothingNames",
             "<xs:complexType name='S'/> <xs:complexType name='T'/>\n"
             "<xs:element name='r' type='xs:anyType'/>",
             {"2 xs:complexType of T: accepts less"},
             "<r xsi:type='T'/>"},
        Loss{"SecondValueOnALine",
             "<xs:element name='r' type='T'/>\n<xs:simpleType name='T'>\n"
             "<xs:restriction base='xs:string'>\n<xs:enumeration value='a'/> "
             "<xs:enumeration value='b'/>\n</xs:restriction>\n</xs:simpleType>",
             {"5 xs:enumeration of T: accepts less"},
             "<r>b</r>"},
        Loss{"EmptyImport",
             "<xs:import/>\n<xs:element name='r' type='xs:int'/>",
             {"2 xs:import of : documentation only"},
             "<r>1</r>"},
        Loss{"BuiltInTypeWithoutPrefix",
             "<xs:element name='r'\n type='xs:date'/>",
             {"3 type of r: not a valid schema"},
             ""},
        Loss{"OwnTypeWithTheNameOfABuiltInOne",
             "<xs:element name='r' type='string'/>\n<xs:simpleType name='string'>\n"
             "<xs:restriction base='xs:int'/>\n</xs:simpleType>",
             {"2 type of r: accepts more"},
             "<r>x</r>"},
        Loss{"PrefixInAValue",
             "<xs:element name='r' type='T'/>\n<xs:simpleType name='T'>\n"
             "<xs:restriction base='xs:string'>\n<xs:enumeration value='ov:a'/>\n"
             "</xs:restriction>\n</xs:simpleType>",
             {"5 value of T: accepts less"},
             "<r>ov:a</r>"}),
    nameOf<Loss>);

TEST(XsdConfigReaderLosses, AreNotWhatTheFiltersRemoved) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, R"(<xs:element name="r" type="T"/>
<xs:complexType name="T" mixed="true">
<xs:sequence minOccurs="0">
<xs:element name="u" type="U" minOccurs="0" nillable="true"/>
</xs:sequence>
<xs:attribute name="b" use="optional" fixed="1"/>
</xs:complexType>
<xs:complexType name="U" mixed="true"/>)");
    EXPECT_THAT(lossesOf(reader),
                ElementsAre("3 mixed of T: accepts less", "4 minOccurs of T: documentation only",
                            "5 nillable of T: accepts less", "7 fixed of T: accepts more",
                            "9 mixed of U: accepts less"));
    reader.keepXSDElement({"T"});
    reader.keepXSDChildAttributes("T", {});
    EXPECT_THAT(lossesOf(reader),
                ElementsAre("3 mixed of T: accepts less", "4 minOccurs of T: documentation only"));
}

TEST(XsdConfigReaderLosses, AreNoneWhereEverythingIsWritten) {
    const std::string content = R"(<xs:element name="r" type="T"/>
<xs:complexType name="B">
<xs:annotation>
<xs:documentation>text</xs:documentation>
</xs:annotation>
<xs:choice>
<xs:element name="a" type="xs:int" minOccurs="0" maxOccurs="unbounded"/>
<xs:element name="b">
<xs:complexType>
<xs:attribute name="c" type="ov:S" use="required"/>
</xs:complexType>
</xs:element>
</xs:choice>
</xs:complexType>
<xs:complexType name="T">
<xs:complexContent>
<xs:extension base="B">
<xs:sequence>
<xs:element name="d" type="xs:double"/>
</xs:sequence>
</xs:extension>
</xs:complexContent>
</xs:complexType>
<xs:simpleType name="S">
<xs:restriction base="xs:string">
<xs:enumeration value="x"/>
</xs:restriction>
</xs:simpleType>)";
    const Reading suite(suiteSchema(content), true);
    EXPECT_THAT(suite.losses, IsEmpty());
    const Reading any(suiteSchema(content), false);
    EXPECT_THAT(any.losses, IsEmpty());
    EXPECT_EQ(suite.written, any.written);
    // Nor in what is then written, which is read back as the same.
    const Reading again(suite.written, true);
    EXPECT_THAT(again.losses, IsEmpty());
    EXPECT_EQ(suite.written, again.written);
}

TEST(XsdConfigReaderLosses, AreFoundInTheReadersOwnFiles) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file(
        "model.xml",
        readerSchema("\n<complexType name='T'><sequence><any/><element name='a' type='xs:int'/>"
                     "<element name='b' type='string'/><element name='c' type='date'/></sequence>"
                     "</complexType>")));
    reader.readXSD(false);
    EXPECT_THAT(lossesOf(reader),
                ElementsAre("2 xs:any of T: accepts less", "2 type of T: not a valid schema"));
}

TEST(XsdConfigReaderLosses, AreFoundInAFileThatIsWellFormedOnlyOnceItIsRewritten) {
    const Reading reading(suiteSchema("<xs:complexType name='T' mixed='true'>\n</complexType>"),
                          true);
    EXPECT_THAT(reading.losses, ElementsAre("2 mixed of T: accepts less"));
}

TEST(XsdConfigReaderLosses, OfAnEntityAreWhereItIsNamed) {
    const Reading reading("<!DOCTYPE a [<!ENTITY e '<xs:any/>\n\n<xs:any/>'>]>\n\n" +
                              suiteSchema("<xs:complexType name='T'><xs:sequence>\n&e;\n"
                                          "</xs:sequence></xs:complexType>"),
                          false);
    EXPECT_THAT(reading.losses,
                ElementsAre("1 document type declaration of : documentation only",
                            "7 xs:any of T: accepts less", "7 xs:any of T: accepts less"));
}

TEST(XsdConfigReaderLosses, IncludeADocumentTypeDeclaration) {
    for (const std::string declaration :
         {"<!DOCTYPE\nxs:schema>", "<!DOCTYPE xs:schema SYSTEM 'missing.dtd'>",
          "<!DOCTYPE xs:schema [\n<!-- of the declaration -->\n<!ELEMENT x EMPTY>\n]>"}) {
        const Reading reading("<!-- a -->\n\n" + declaration + "<!-- b -->" + suiteSchema(""),
                              false);
        ASSERT_EQ(reading.losses.size(), 3U) << declaration;
        EXPECT_EQ(reading.losses[0], "1 comment of : documentation only");
        EXPECT_EQ(reading.losses[1], "3 document type declaration of : documentation only");
        EXPECT_THAT(reading.losses[2], testing::HasSubstr(" comment of : documentation only"));
    }
}

constexpr int many = 2000;

/// @return the text many times, with a number for each #, and the next number for each ##
std::string repeated(const std::string& text) {
    std::string all;
    for (int i = 0; i < many; ++i) {
        std::string one = text;
        for (auto at = one.find('#'); at != std::string::npos; at = one.find('#', at)) {
            const bool isNext = one.compare(at, 2, "##") == 0;
            one.replace(at, isNext ? 2 : 1, std::to_string(isNext ? i + 1 : i));
        }
        all += one + '\n';
    }
    return all;
}

struct ManyLosses : TestCase {
    std::string content;
    std::size_t losses = 0;
    std::string last;
};

class LossesOfManyParts : public testing::TestWithParam<ManyLosses> {};

TEST_P(LossesOfManyParts, AreFoundInTime) {
    const Reading reading(suiteSchema(GetParam().content), false);
    ASSERT_EQ(reading.losses.size(), GetParam().losses);
    const std::string& last = reading.losses.back();
    EXPECT_EQ(last.substr(last.find(' ') + 1), GetParam().last);
}

/// @return a type, and many that are each derived from the one before, with this in them
std::string chainOf(const std::string& derivation, const std::string& content) {
    return "<xs:complexType name='T0'/>\n" +
           repeated("<xs:complexType name='T##'><xs:complexContent><xs:" + derivation +
                    " base='T#'>" + content + "</xs:" + derivation +
                    "></xs:complexContent></xs:complexType>");
}

// What is looked for anew along the bases of each type would take minutes.
INSTANTIATE_TEST_SUITE_P(
    Schemas, LossesOfManyParts,
    testing::Values(
        ManyLosses{{"SimpleTypes"},
                   "<xs:simpleType name='S0'><xs:restriction base='xs:string'/></xs:simpleType>\n" +
                       repeated("<xs:simpleType name='S##'><xs:restriction base='S#'>"
                                "<xs:enumeration value='a'/><xs:whiteSpace value='collapse'/>"
                                "</xs:restriction></xs:simpleType>"),
                   many,
                   "xs:whiteSpace of S2000: accepts less"},
        ManyLosses{{"Extensions"},
                   chainOf("extension", "<xs:sequence><xs:any/><xs:element name='a' type='xs:int' "
                                        "minOccurs='0'/></xs:sequence>"),
                   many,
                   "xs:any of T2000: not a valid schema"},
        ManyLosses{{"Restrictions"},
                   chainOf("restriction", "<xs:attribute name='a#'><xs:simpleType><xs:list "
                                          "itemType='xs:int'/></xs:simpleType></xs:attribute>"
                                          "<xs:attributeGroup ref='g'/>"),
                   2 * std::size_t{many},
                   "xs:attributeGroup of T2000: accepts less"},
        ManyLosses{{"InlineTypes"},
                   repeated("<xs:complexType name='T#'><xs:sequence><xs:element name='a' "
                            "type='T##'/></xs:sequence></xs:complexType>") +
                       "<xs:complexType name='T2000'><xs:sequence><xs:element name='r' "
                       "type='xs:string'/></xs:sequence></xs:complexType>\n"
                       "<xs:element name='r' type='xs:int'/>\n" +
                       repeated("<xs:element name='r#'><xs:complexType><xs:sequence><xs:element "
                                "name='a' type='T0'/></xs:sequence></xs:complexType></xs:element>"),
                   many,
                   "xs:complexType of r1999: accepts less"},
        ManyLosses{{"Defaults"},
                   "<xs:simpleType name='S'><xs:restriction base='xs:string'>\n" +
                       repeated("<xs:enumeration value='#'/>") +
                       "</xs:restriction></xs:simpleType>\n" +
                       repeated("<xs:element name='r#' type='S' default='1'/>"),
                   many,
                   "default of r1999: accepts less"},
        ManyLosses{{"AttributesOfABase"},
                   "<xs:complexType name='B'>\n" + repeated("<xs:attribute name='a#'/>") +
                       "</xs:complexType>\n" +
                       repeated("<xs:complexType name='T#'><xs:complexContent><xs:restriction "
                                "base='B'><xs:attribute name='a#'/><xs:attributeGroup ref='g'/>"
                                "</xs:restriction></xs:complexContent></xs:complexType>"),
                   many,
                   "xs:attributeGroup of T1999: accepts more"}),
    nameOf<ManyLosses>);

TEST(XsdConfigReaderLosses, AreNoneBeforeReading) {
    XsdConfigReader reader("missing.xsd");
    EXPECT_THAT(reader.getLosses(), IsEmpty());
}

} // namespace
} // namespace Orvant
