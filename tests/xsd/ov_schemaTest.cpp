#include <SchemaTestSupport.h>

#include <type_traits>

namespace Orvant {
namespace {

using namespace OV_XsdReader;
using namespace Support;

// The members of the classes: names, multiplicity and type.

template <typename Member, typename Item>
constexpr bool isSequenceOf = std::is_same_v<Member, xsd::cxx::tree::sequence<Item>>;

template <typename Member, typename Item>
constexpr bool isOptionalOf = std::is_same_v<Member, xsd::cxx::tree::optional<Item>>;

template <typename Class>
constexpr bool isModelClass =
    std::is_base_of_v<xml_schema::type, Class> && std::has_virtual_destructor_v<Class> &&
    std::is_copy_constructible_v<Class> && std::is_copy_assignable_v<Class>;

static_assert(isModelClass<ov_schema> && isModelClass<ov_complexType> &&
              isModelClass<ov_sequence> && isModelClass<ov_choice> && isModelClass<ov_element> &&
              isModelClass<ov_attribute> && isModelClass<ov_complexContent> &&
              isModelClass<ov_extension> && isModelClass<ov_restriction> &&
              isModelClass<ov_enumeration> && isModelClass<ov_annotation> &&
              isModelClass<ov_rootElement> && isModelClass<ov_simpleType>);

static_assert(isSequenceOf<ov_schema::complexType_sequence, ov_complexType>);
static_assert(isSequenceOf<ov_schema::simpleType_sequence, ov_simpleType>);
static_assert(isSequenceOf<ov_schema::element_sequence, ov_rootElement>);
static_assert(isOptionalOf<ov_complexType::annotation_optional, ov_annotation>);
static_assert(isOptionalOf<ov_complexType::sequence_optional, ov_sequence>);
static_assert(isSequenceOf<ov_complexType::attribute_sequence, ov_attribute>);
static_assert(isOptionalOf<ov_complexType::choice_optional, ov_choice>);
static_assert(isOptionalOf<ov_complexType::complexContent_optional, ov_complexContent>);
static_assert(isOptionalOf<ov_complexType::name_optional, xml_schema::string>);
static_assert(isSequenceOf<ov_sequence::element_sequence, ov_element>);
static_assert(isSequenceOf<ov_choice::element_sequence, ov_element>);
static_assert(isOptionalOf<ov_element::complexType_optional, ov_complexType>);
static_assert(isOptionalOf<ov_element::annotation_optional, ov_annotation>);
static_assert(isOptionalOf<ov_element::name_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_element::type_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_element::minOccurs_optional, int>);
static_assert(isOptionalOf<ov_element::maxOccurs_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_attribute::annotation_optional, ov_annotation>);
static_assert(isOptionalOf<ov_attribute::name_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_attribute::use_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_attribute::type_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_complexContent::extension_optional, ov_extension>);
static_assert(isOptionalOf<ov_complexContent::restriction_optional, ov_restriction>);
static_assert(isOptionalOf<ov_extension::sequence_optional, ov_sequence>);
static_assert(isSequenceOf<ov_extension::attribute_sequence, ov_attribute>);
static_assert(isOptionalOf<ov_extension::base_optional, xml_schema::string>);
static_assert(isSequenceOf<ov_restriction::enumeration_sequence, ov_enumeration>);
static_assert(isSequenceOf<ov_restriction::attribute_sequence, ov_attribute>);
static_assert(isOptionalOf<ov_restriction::base_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_enumeration::value_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_annotation::documentation_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_rootElement::name_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_rootElement::type_optional, xml_schema::string>);
static_assert(isOptionalOf<ov_simpleType::annotation_optional, ov_annotation>);
static_assert(isOptionalOf<ov_simpleType::restriction_optional, ov_restriction>);
static_assert(isOptionalOf<ov_simpleType::name_optional, xml_schema::string>);
static_assert(std::is_base_of_v<std::string, xml_schema::string>);
static_assert(xml_schema::flags::dont_validate == 0x400);

std::string everyConstruct() {
    return readFile(FileName(TEST_DATA_DIR "/every_construct.xml"));
}

TEST(SchemaDocumentModel, ReadsEveryMemberOfEveryClass) {
    const auto schema = parseDocument(everyConstruct());

    ASSERT_EQ(2u, schema->complexType().size());
    ASSERT_EQ(1u, schema->simpleType().size());
    ASSERT_EQ(1u, schema->element().size());
    EXPECT_EQ("whole", *schema->element()[0].name());
    EXPECT_EQ("Whole", *schema->element()[0].type());

    const ov_complexType& whole = schema->complexType()[0];
    EXPECT_EQ("Whole", *whole.name());
    EXPECT_EQ("Of the type", *whole.annotation()->documentation());
    ASSERT_EQ(2u, whole.sequence()->element().size());
    const ov_element& part = whole.sequence()->element()[0];
    EXPECT_EQ("part", *part.name());
    EXPECT_EQ("Part", *part.type());
    EXPECT_EQ(0, *part.minOccurs());
    EXPECT_EQ("unbounded", *part.maxOccurs());
    EXPECT_EQ("Of the element", *part.annotation()->documentation());
    EXPECT_EQ("inline", *part.complexType()->sequence()->element()[0].name());
    const ov_element& bare = whole.sequence()->element()[1];
    EXPECT_EQ(-7, *bare.minOccurs());
    EXPECT_EQ("3", *bare.maxOccurs());

    ASSERT_EQ(2u, whole.attribute().size());
    EXPECT_EQ("first", *whole.attribute()[0].name());
    EXPECT_EQ("required", *whole.attribute()[0].use());
    EXPECT_EQ("int", *whole.attribute()[0].type());
    EXPECT_EQ("Of the attribute", *whole.attribute()[0].annotation()->documentation());
    ASSERT_EQ(2u, whole.choice()->element().size());
    EXPECT_EQ("either", *whole.choice()->element()[0].name());
    EXPECT_EQ("or", *whole.choice()->element()[1].name());

    const ov_extension& extension = *whole.complexContent()->extension();
    EXPECT_EQ("Base", *extension.base());
    EXPECT_EQ("more", *extension.sequence()->element()[0].name());
    EXPECT_EQ("extra", *extension.attribute()[0].name());
    const ov_restriction& restriction = *whole.complexContent()->restriction();
    EXPECT_EQ("Derived", *restriction.base());
    EXPECT_EQ("restricted", *restriction.attribute()[0].name());

    const ov_simpleType& colour = schema->simpleType()[0];
    EXPECT_EQ("Colour", *colour.name());
    EXPECT_EQ("What it looks like", *colour.annotation()->documentation());
    EXPECT_EQ("string", *colour.restriction()->base());
    ASSERT_EQ(2u, colour.restriction()->enumeration().size());
    EXPECT_EQ("red", *colour.restriction()->enumeration()[0].value());
    EXPECT_EQ("gr\xC3\xBCn", *colour.restriction()->enumeration()[1].value());
    EXPECT_EQ("kept", *colour.restriction()->attribute()[0].name());
}

TEST(SchemaDocumentModel, WritesMembersInTheirOrderWhateverTheOrderInWhichTheyWereRead) {
    EXPECT_EQ(readFile(FileName(TEST_DATA_DIR "/every_construct_written.xml")),
              serialise(*parseDocument(everyConstruct())));
}

TEST(SchemaDocumentModel, ReadsWhatItWritesAndWritesTheSameAgain) {
    const std::string written = serialise(*parseDocument(everyConstruct()));
    EXPECT_EQ(written, serialise(*parseDocument(written)));
}

TEST(SchemaDocumentModel, HasNothingInPlaceOfWhatIsMissing) {
    const auto schema = parseSchema("<complexType/><simpleType/><element/>");
    const ov_complexType& complexType = schema->complexType()[0];
    EXPECT_FALSE(complexType.name().present());
    EXPECT_FALSE(complexType.annotation().present());
    EXPECT_FALSE(complexType.sequence().present());
    EXPECT_TRUE(complexType.attribute().empty());
    EXPECT_FALSE(complexType.choice().present());
    EXPECT_FALSE(complexType.complexContent().present());
    EXPECT_FALSE(schema->simpleType()[0].name().present());
    EXPECT_FALSE(schema->simpleType()[0].restriction().present());
    EXPECT_FALSE(schema->element()[0].name().present());
    EXPECT_FALSE(schema->element()[0].type().present());
    const ov_element element;
    EXPECT_FALSE(element.minOccurs().present());
    EXPECT_FALSE(element.maxOccurs().present());
}

TEST(SchemaDocumentModel, ClonesAndCopiesDeeply) {
    const auto schema = parseDocument(everyConstruct());
    const std::unique_ptr<ov_schema> clone(schema->_clone());
    ov_schema assigned;
    assigned = *schema;
    schema->complexType()[0].name("Changed");
    EXPECT_EQ("Whole", *clone->complexType()[0].name());
    EXPECT_EQ("Whole", *assigned.complexType()[0].name());
    EXPECT_EQ(serialise(*clone), serialise(assigned));
}

TEST(SchemaDocumentModel, ModifiersSetAndTakeAway) {
    ov_element element;
    element.name("a");
    element.minOccurs(3);
    EXPECT_EQ("a", *element.name());
    EXPECT_EQ(3, *element.minOccurs());
    element.minOccurs().reset();
    EXPECT_FALSE(element.minOccurs().present());
}

TEST(SchemaDocumentModel, InventsThePrefixOfItsNamespaceAndWritesADeclaration) {
    const std::string written = serialise(*parseSchema("<complexType name=\"A\"/>"));
    const auto declaration = written.find("<?xml version=\"1.0\" encoding=\"UTF-8\"");
    const auto header = written.find(modelHeader);
    EXPECT_EQ(0u, declaration);
    ASSERT_NE(std::string::npos, header);
    EXPECT_EQ(std::string::npos, written.substr(0, header).find("<p1:"));
    EXPECT_NE(std::string::npos, written.find("<p1:complexType name=\"A\"/>"));
}

// Failures.

TEST(SchemaDocumentModel, RefusesASchemaThatWasNotRewritten) {
    EXPECT_THROW(parseDocument(suiteSchema("")), xml_schema::unexpected_element);
    EXPECT_THROW(parseDocument("<schema/>"), xml_schema::unexpected_element);
    EXPECT_THROW(parseDocument("<element xmlns=\"" + readerNamespace + "\"/>"),
                 xml_schema::unexpected_element);
}

TEST(SchemaDocumentModel, TellsWhereADocumentIsNotWellFormed) {
    try {
        parseDocument("<schema>\n<</schema>");
        FAIL() << "parsed";
    } catch (const xml_schema::parsing& e) {
        EXPECT_STREQ("instance document parsing failed", e.what());
        ASSERT_FALSE(e.diagnostics().empty());
        EXPECT_EQ(2u, e.diagnostics()[0].line());
        std::ostringstream text;
        text << e;
        EXPECT_NE(std::string::npos, text.str().find(" error: "));
    }
    EXPECT_TRUE((std::is_base_of_v<xsd::cxx::exception, xml_schema::parsing>));
    EXPECT_TRUE((std::is_base_of_v<xsd::cxx::exception, xml_schema::unexpected_element>));
}

std::string elementWithMinOccurs(const std::string& minOccurs) {
    return "<complexType name=\"A\"><sequence><element name=\"a\" minOccurs=\"" + minOccurs +
           "\"/></sequence></complexType>";
}

class MinOccursThatIsNoNumber : public testing::TestWithParam<const char*> {};

TEST_P(MinOccursThatIsNoNumber, IsAParsingFailure) {
    EXPECT_THROW(parseSchema(elementWithMinOccurs(GetParam())), xml_schema::parsing);
}

INSTANTIATE_TEST_SUITE_P(SchemaDocumentModel, MinOccursThatIsNoNumber,
                         testing::Values("", " ", "many", "unbounded", "1x", "x1", "1 2", "1.0",
                                         "+-1", "--1", "+", "-", "0x10", "2147483648",
                                         "-2147483649", "99999999999999999999"));

TEST(SchemaDocumentModel, TakesEveryWholeNumberOf32BitsAsMinOccurs) {
    const std::vector<std::pair<std::string, int>> numbers = {
        {"0", 0},         {"1", 1},
        {"+7", 7},        {"-1", -1},
        {" \n 12\t", 12}, {"2147483647", 2147483647},
        {"007", 7},       {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, number] : numbers) {
        const auto schema = parseSchema(elementWithMinOccurs(text));
        EXPECT_EQ(number, *schema->complexType()[0].sequence()->element()[0].minOccurs()) << text;
    }
}

TEST(SchemaDocumentModel, KeepsAnyTextAsMaxOccurs) {
    const auto schema = parseSchema("<complexType><sequence><element maxOccurs=\"many of them\"/>"
                                    "</sequence></complexType>");
    EXPECT_EQ("many of them", *schema->complexType()[0].sequence()->element()[0].maxOccurs());
}

// What the model does not name.

const std::string unknown = "<unknown name=\"u\"><element name=\"x\"/>text</unknown>"
                            "<w:import xmlns:w=\"http://www.w3.org/2001/XMLSchema\"/>";

/// Puts unknown content before the first, between all and after the last child of every element.
std::string withUnknownContentEverywhere(const std::string& document) {
    std::string result;
    std::size_t at = document.find("<schema");
    result = document.substr(0, at);
    bool inText = false;
    while (at < document.size()) {
        const auto end = document.find('>', at) + 1;
        const std::string tag = document.substr(at, end - at);
        const bool closing = tag.starts_with("</");
        if (closing && !inText)
            result += unknown;
        result += tag;
        inText = tag == "<documentation>";
        if (!inText && tag != "</schema>")
            result += unknown;
        const auto next = document.find('<', end);
        if (next == std::string::npos)
            break;
        result += document.substr(end, next - end);
        at = next;
    }
    return result;
}

TEST(SchemaDocumentModel, SkipsUnknownElementsWhereverTheyStand) {
    const std::string disturbed = withUnknownContentEverywhere(everyConstruct());
    ASSERT_GT(disturbed.size(), 5 * everyConstruct().size());
    EXPECT_EQ(serialise(*parseDocument(everyConstruct())), serialise(*parseDocument(disturbed)));
}

TEST(SchemaDocumentModel, SkipsAnImportAtTheTop) {
    const auto schema =
        parseSchema("<xs:import xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" namespace=\"n\"/>"
                    "<complexType name=\"A\"/>");
    ASSERT_EQ(1u, schema->complexType().size());
    EXPECT_EQ("A", *schema->complexType()[0].name());
}

TEST(SchemaDocumentModel, KeepsTheFirstOfWhatMayStandOnce) {
    const auto schema = parseSchema(
        "<complexType><annotation><documentation>1</documentation><documentation>2</documentation>"
        "</annotation><annotation><documentation>3</documentation></annotation>"
        "<sequence><element name=\"a\"/></sequence><sequence/><attribute name=\"b\"/>"
        "</complexType>");
    const ov_complexType& type = schema->complexType()[0];
    EXPECT_EQ("1", *type.annotation()->documentation());
    EXPECT_EQ(1u, type.sequence()->element().size());
    EXPECT_EQ(1u, type.attribute().size());
}

TEST(SchemaDocumentModel, KeepsTheTextAroundMarkupInADocumentation) {
    const auto schema = parseSchema(
        "<complexType name=\"A\"><annotation><documentation>one <b>two</b><![CDATA[<3>]]> four"
        "</documentation></annotation></complexType><complexType name=\"B\"/>");
    EXPECT_EQ("one <3> four", *schema->complexType()[0].annotation()->documentation());
    EXPECT_EQ(2u, schema->complexType().size());
}

TEST(SchemaDocumentModel, DoesNotKeepUnknownAttributes) {
    const std::string known = "<element minOccurs=\"2\" name=\"a\" type=\"T\"";
    const std::string head = "<complexType name=\"C\"><sequence>";
    const std::string tail = "/></sequence></complexType>";
    EXPECT_EQ(
        serialise(*parseSchema(head + known + tail)),
        serialise(*parseSchema(
            "<complexType name=\"C\" abstract=\"true\" mixed=\"true\" final=\"all\"><sequence "
            "minOccurs=\"0\">" +
            known + " default=\"1\" fixed=\"2\" ref=\"r\" nillable=\"true\" form=\"qualified\"" +
            tail)));
}

TEST(SchemaDocumentModel, DoesNotKeepUnknownConstructs) {
    const std::string written = serialise(*parseSchema(
        "<group name=\"g\"/><attributeGroup name=\"g\"/>"
        "<complexType name=\"A\"><all><element name=\"x\"/></all></complexType>"
        "<complexType name=\"B\"><simpleContent><extension base=\"string\"/></simpleContent>"
        "</complexType>"
        "<complexType name=\"C\"><sequence><choice><element name=\"x\"/></choice><any/>"
        "<element name=\"y\"/></sequence></complexType>"
        "<simpleType name=\"D\"><list itemType=\"int\"/></simpleType>"
        "<simpleType name=\"E\"><union memberTypes=\"D\"/></simpleType>"
        "<simpleType name=\"F\"><restriction base=\"string\"><pattern value=\"x\"/>"
        "<maxLength value=\"3\"/><enumeration value=\"e\"/></restriction></simpleType>"));
    EXPECT_EQ(written, serialise(*parseSchema(
                           "<complexType name=\"A\"/><complexType name=\"B\"/>"
                           "<complexType name=\"C\"><sequence><element name=\"y\"/></sequence>"
                           "</complexType><simpleType name=\"D\"/><simpleType name=\"E\"/>"
                           "<simpleType name=\"F\"><restriction base=\"string\">"
                           "<enumeration value=\"e\"/></restriction></simpleType>")));
}

TEST(SchemaDocumentModel, DropsTheInlineTypeOfARootElement) {
    const auto schema = parseSchema(
        "<element name=\"a\" type=\"A\" minOccurs=\"x\"><complexType><sequence/></complexType>"
        "</element>");
    EXPECT_EQ(serialise(*parseSchema("<element name=\"a\" type=\"A\"/>")), serialise(*schema));
}

TEST(SchemaDocumentModel, SkipsTextWhereElementsBelong) {
    const auto schema =
        parseSchema("text<complexType name=\"A\">more<sequence>and"
                    "<element name=\"a\">more</element>&amp;</sequence></complexType>"
                    "<![CDATA[text]]><element name=\"r\" type=\"A\">text</element>");
    EXPECT_EQ(
        serialise(*parseSchema("<complexType name=\"A\"><sequence><element name=\"a\"/></sequence>"
                               "</complexType><element name=\"r\" type=\"A\"/>")),
        serialise(*schema));
}

// Depth.

std::string nestedInlineTypes(int number) {
    std::string start = "<complexType name=\"A\"><sequence>";
    std::string end = "</sequence></complexType>";
    std::string middle;
    for (int i = 0; i < number; ++i)
        middle += "<element name=\"e\"><complexType><sequence>";
    for (int i = 0; i < number; ++i)
        middle += "</sequence></complexType></element>";
    return start + middle + end;
}

TEST(SchemaDocumentModel, ReadsInlineTypesNestedAHundredFold) {
    const auto schema = parseSchema(nestedInlineTypes(100));
    int depth = 0;
    for (const ov_complexType* type = &schema->complexType()[0];
         !type->sequence()->element().empty();
         type = &*type->sequence()->element()[0].complexType())
        ++depth;
    EXPECT_EQ(100, depth);
    EXPECT_EQ(serialise(*schema), serialise(*parseDocument(serialise(*schema))));
}

TEST(SchemaDocumentModel, RefusesInlineTypesNestedWithoutEnd) {
    EXPECT_THROW(parseSchema(nestedInlineTypes(3'000)), xml_schema::parsing);
}

TEST(SchemaDocumentModel, SkipsUnknownElementsHoweverDeep) {
    std::string deep;
    for (int i = 0; i < 3'000; ++i)
        deep += "<u>";
    for (int i = 0; i < 3'000; ++i)
        deep += "</u>";
    EXPECT_EQ(1u, parseSchema(deep + "<complexType name=\"A\"/>")->complexType().size());
}

} // namespace
} // namespace Orvant
