// What stays in a pruned schema because something that stays names it.

#include <PruningTestSupport.h>

#include <ReaderSupport.h>

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string typeA = "<xs:complexType name=\"A\"/>\n";
const std::string named = "<xs:complexType name=\"Named\">\n</xs:complexType>";
const std::string gone = "\n<!-- on Gone -->\n<xs:simpleType name=\"Gone\">\n</xs:simpleType>";

/// @return an element over several lines
std::string element(const std::string& name, const std::string& attributes,
                    const std::string& content) {
    return "<xs:" + name + ' ' + attributes + ">\n" + content + "\n</xs:" + name + '>';
}

const std::string childOfNamed = "<xs:element name=\"c\" type=\"Named\"/>";
const std::string attributeOfNamed = "<xs:attribute name=\"a\" type=\"Named\"/>";

std::string sequence(const std::string& content) {
    return element("sequence", "", content);
}
/// @return a type that the reader does not hold, as it is in an element
std::string typeInRoot(const std::string& content) {
    return element("element", "name=\"root\"", element("complexType", "", content));
}
std::string simpleTypeInRoot(const std::string& content) {
    return element("element", "name=\"root\"", element("simpleType", "", content));
}
const std::string rootOfNamed = "<xs:element name=\"head\" type=\"Named\"/>";

// Ways to name a type.

struct Naming : TestCase {
    std::string lines; ///< that stay, and name the type Named
};

class NamedType : public testing::TestWithParam<Naming> {};

TEST_P(NamedType, StaysAndIsReported) {
    const std::string lines = typeA + GetParam().lines + '\n' + named;
    for (const std::string& both : {lines + gone, typeA + named + '\n' + GetParam().lines + gone}) {
        const Pruned result = pruned(both, keeping({"A"}));
        EXPECT_EQ(result.text + gone, both);
        EXPECT_THAT(result.stayed, ElementsAre("Named"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    PrunedSchema, NamedType,
    testing::Values(
        Naming{{"ChildOfAGroup"}, element("group", "name=\"g\"", sequence(childOfNamed))},
        Naming{{"AttributeOfAGroup"}, element("attributeGroup", "name=\"g\"", attributeOfNamed)},
        Naming{{"GlobalAttribute"}, attributeOfNamed},
        Naming{{"MemberOfAUnion"},
               element("attribute", "name=\"a\"",
                       element("simpleType", "",
                               "<xs:union memberTypes=\"xs:int\n Named\txs:string\"/>"))},
        Naming{{"ItemOfAList"}, simpleTypeInRoot("<xs:list itemType=\"Named\"/>")},
        Naming{{"BaseOfASimpleType"}, simpleTypeInRoot("<xs:restriction base=\" Named \"/>")},
        Naming{{"BaseOfAnExtensionOfSimpleContent"},
               typeInRoot(element("simpleContent", "", "<xs:extension base=\"Named\"/>"))},
        Naming{{"BaseOfARestrictionOfSimpleContent"},
               typeInRoot(element("simpleContent", "", "<xs:restriction base=\"Named\"/>"))},
        Naming{{"BaseOfAnExtension"},
               typeInRoot(element("complexContent", "", "<xs:extension base=\"Named\"/>"))},
        Naming{{"BaseOfARestriction"},
               typeInRoot(element("complexContent", "", "<xs:restriction base=\"Named\"/>"))},
        Naming{{"ChildOfAGlobalElement"}, typeInRoot(sequence(childOfNamed))},
        Naming{{"ChildOfAll"}, typeInRoot(element("all", "", childOfNamed))},
        Naming{{"ChildOfNestedGroups"},
               typeInRoot(sequence(element("choice", "", sequence(childOfNamed))))},
        Naming{{"TypeInARedefinition"},
               element("redefine", "schemaLocation=\"a.xsd\"",
                       element("complexType", "name=\"R\"", attributeOfNamed))},
        Naming{{"GroupInARedefinition"},
               element("redefine", "schemaLocation=\"a.xsd\"",
                       element("group", "name=\"g\"", sequence(childOfNamed)))},
        Naming{{"TypeInAnOverride"},
               element("override", "schemaLocation=\"a.xsd\"",
                       element("complexType", "name=\"R\"", attributeOfNamed))},
        Naming{{"Alternative"},
               element("element", "name=\"root\"",
                       "<xs:alternative test=\"true()\" type=\"Named\"/>")},
        Naming{{"HeadOfASubstitutionGroup"},
               "<xs:element name=\"root\" substitutionGroup=\"head\"/>\n" + rootOfNamed},
        Naming{{"SecondHeadOfASubstitutionGroup"},
               "<xs:element name=\"root\" substitutionGroup=\"other ov:head\"/>\n" + rootOfNamed},
        Naming{{"ReferenceToAnElement"},
               typeInRoot(sequence("<xs:element ref=\"head\"/>")) + '\n' + rootOfNamed},
        Naming{{"KeyOfAnotherElement"},
               element("element", "name=\"root\"", "<xs:keyref name=\"r\" refer=\"ov:key\"/>") +
                   '\n' +
                   element("element", "name=\"keys\" type=\"Named\"", "<xs:key name=\"key\"/>")},
        Naming{{"UniqueOfAnotherElement"},
               element("element", "name=\"root\"", "<xs:keyref name=\"r\" refer=\"key\"/>") + '\n' +
                   element("element", "name=\"keys\" type=\"Named\"", "<xs:unique name=\"key\"/>")},
        Naming{{"PrefixOfTheSuite"}, "<xs:attribute name=\"a\" type=\"ov:Named\"/>"},
        Naming{{"PrefixThatIsDeclaredThere"},
               "<xs:attribute xmlns:t=\"http://www.orvant.com/OV_QLV100\" name=\"a\" "
               "type=\"t:Named\"/>"},
        Naming{{"PrefixThatIsDeclaredNowhere"}, "<xs:attribute name=\"a\" type=\"t:Named\"/>"},
        Naming{{"NoNamespace"}, "<xs:attribute xmlns=\"\" name=\"a\" type=\"Named\"/>"}),
    testing::PrintToStringParamName());

/// What does not name the type Named.
class UnnamedType : public testing::TestWithParam<Naming> {};

TEST_P(UnnamedType, IsCut) {
    const Pruned result = pruned(typeA + GetParam().lines + '\n' + named + gone, keeping({"A"}));
    EXPECT_EQ(result.text, typeA + GetParam().lines);
    EXPECT_THAT(result.stayed, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    PrunedSchema, UnnamedType,
    testing::Values(
        Naming{{"NameInADocumentation"},
               element("annotation", "",
                       element("documentation", "source=\"Named\"", attributeOfNamed + "\nNamed"))},
        Naming{{"NameInAppInfo"},
               element("annotation", "", element("appinfo", "", attributeOfNamed))},
        Naming{{"NameInAComment"}, "<xs:attribute name=\"a\"/> <!-- " + childOfNamed + " -->"},
        Naming{{"NameOfXmlSchema"}, "<xs:attribute name=\"a\" type=\"xs:Named\"/>"},
        Naming{{"NameInAnotherNamespace"},
               "<xs:attribute xmlns:t=\"urn:t\" name=\"a\" type=\"t:Named\"/>"},
        Naming{{"NameInAnotherDefaultNamespace"},
               "<xs:attribute xmlns=\"urn:t\" name=\"a\" type=\"Named\"/>"},
        Naming{{"NameInAnElementOfAnotherNamespace"},
               "<t:attribute xmlns:t=\"urn:t\" name=\"a\" type=\"Named\"/>"},
        Naming{{"NameInAnAttributeOfAnotherNamespace"},
               "<xs:attribute name=\"a\" xmlns:t=\"urn:t\" t:type=\"Named\"/>"},
        Naming{{"OtherCase"}, "<xs:attribute name=\"a\" type=\"named\"/>"},
        Naming{{"OtherAttribute"}, "<xs:attribute name=\"Named\" default=\"Named\"/>"},
        Naming{{"NameOfANamespace"}, "<xs:import namespace=\"Named\" schemaLocation=\"Named\"/>"}),
    testing::PrintToStringParamName());

TEST(StayingTypes, AreInTheOrderOfTheFile) {
    const std::string lines = "<xs:simpleType name=\"Third\">\n</xs:simpleType>\n" + named +
                              "\n<xs:complexType name=\"First\">\n</xs:complexType>\n" +
                              "<xs:attribute name=\"a\" type=\"First\"/>\n" + attributeOfNamed +
                              "\n<xs:attribute name=\"b\" type=\"Third\"/>\n" + typeA +
                              "<xs:simpleType name=\"Kept\">\n</xs:simpleType>";
    const Pruned result = pruned(lines, keeping({"A", "Kept"}));
    EXPECT_EQ(result.text, lines);
    EXPECT_THAT(result.stayed, ElementsAre("Third", "Named", "First"));
}

TEST(StayingTypes, StayWithAllThatTheyName) {
    const std::string lines =
        typeA + attributeOfNamed + '\n' +
        element("complexType", "name=\"Named\"",
                sequence("<xs:element name=\"a\" type=\"ov:Second\" minOccurs=\"0\"/>")) +
        '\n' +
        element("complexType", "name=\"Second\"", "<xs:attribute name=\"a\" type=\"Third\"/>") +
        '\n' + element("simpleType", "name=\"Third\"", "<xs:union memberTypes=\"Fourth Third\"/>") +
        "\n<xs:simpleType name=\"Fourth\">\n</xs:simpleType>";
    const Pruned result = pruned(lines + gone, keeping({"A"}));
    EXPECT_EQ(result.text, lines);
    EXPECT_THAT(result.stayed, ElementsAre("Named", "Second", "Third", "Fourth"));
}

TEST(StayingTypes, DoNotStayForEachOther) {
    EXPECT_EQ(pruned(typeA +
                         element("complexType", "name=\"Named\"",
                                 element("all", "", "<xs:element name=\"a\" type=\"Other\"/>")) +
                         '\n' +
                         element("simpleType", "name=\"Other\"", "<xs:list itemType=\"Named\"/>"),
                     keeping({"A"}))
                      .text +
                  '\n',
              typeA);
}

TEST(StayingTypes, StayWithAllOfTheSameName) {
    const std::string lines = typeA + attributeOfNamed + '\n' + named + '\n' + named +
                              "\n<xs:simpleType name=\"Named\">\n</xs:simpleType>";
    const Pruned result = pruned(lines, keeping({"A"}));
    EXPECT_EQ(result.text, lines);
    EXPECT_THAT(result.stayed, ElementsAre("Named", "Named", "Named"));
}

TEST(StayingTypes, AreThoseOfASchemaWithoutNamespace) {
    const TemporaryDirectory directory;
    const std::string schema =
        "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'>\n<s:complexType name='A'/>\n"
        "<s:attribute name='a' type='Named'/><s:simpleType name='Named'/>";
    XsdConfigReader reader(
        directory.file("schema.xsd", schema + "<s:simpleType name='Gone'/></s:schema>"));
    reader.readAnyXSD();
    reader.keepXSDElement({"A"});
    const Pruned result = prunedBy(reader);
    EXPECT_EQ(result.text, schema + "</s:schema>");
    EXPECT_THAT(result.stayed, ElementsAre("Named"));
}

TEST(StayingTypes, AreThoseOfASchemaInTheReadersNamespace) {
    const TemporaryDirectory directory;
    const std::string content =
        "<complexType name='A'/><group><element type='Named'/></group><simpleType name='Named'/>";
    XsdConfigReader reader(
        directory.file("schema.xsd", readerSchema(content + "<simpleType name='Gone'/>")));
    reader.readXSD(false);
    reader.keepXSDElement({"A"});
    const Pruned result = prunedBy(reader);
    EXPECT_EQ(result.text, readerSchema(content));
    EXPECT_THAT(result.stayed, ElementsAre("Named"));
}

// Root elements.

TEST(StayingRootElements, AreNotReported) {
    const std::string lines = typeA + "<xs:element name=\"root\" substitutionGroup=\"head\"/>\n" +
                              "<xs:element name=\"head\" type=\"B\"/>\n" +
                              "<xs:complexType name=\"B\">\n</xs:complexType>";
    const Pruned result =
        pruned("<xs:element name=\"other\" type=\"B\"/>\n" + lines, keeping({"A"}));
    EXPECT_EQ(result.text, lines);
    EXPECT_THAT(result.stayed, ElementsAre("B"));
}

TEST(StayingRootElements, DoNotStayForTheirSubstitutes) {
    const std::string lines = typeA + "<xs:element name=\"head\" type=\"A\"/>";
    EXPECT_EQ(pruned(lines + "\n<xs:element name=\"b\" substitutionGroup=\"head\" type=\"B\"/>\n"
                             "<xs:complexType name=\"B\">\n</xs:complexType>",
                     keeping({"A"}))
                  .text,
              lines);
}

// What restrictions repeat.

const std::string base = R"(<xs:complexType name="Base">
<xs:sequence>
<xs:element name="a" type="xs:int" minOccurs="0"/>
<xs:element name="b" type="xs:int" minOccurs="0"/>
<xs:element ref="head" minOccurs="0"/>
</xs:sequence>
<xs:attribute name="a" type="xs:int" use="optional"/>
<xs:attribute name="c" type="xs:int" use="optional"/>
</xs:complexType>
)";
const std::string root = "<xs:element name=\"root\" type=\"Derived\"/>\n";

/// @return the lines without all that is optional in the type Base
Pruned withoutOptionalParts(const std::string& lines) {
    return pruned(lines, [](XsdConfigReader& reader) {
        reader.keepXSDChildElement("Base", {});
        reader.keepXSDChildAttributes("Base", {});
    });
}

std::string derived(const std::string& kind, const std::string& baseName,
                    const std::string& content) {
    return element(
        "complexType", "name=\"Derived\"",
        element("complexContent", "", element(kind, "base=\"" + baseName + "\"", content)));
}

TEST(StayingParts, AreThoseThatARestrictionRepeats) {
    const std::string restriction =
        derived("restriction", "Base",
                sequence("<xs:element name=\"a\" type=\"xs:int\"/>") +
                    "\n<xs:attribute name=\"c\" type=\"xs:int\" use=\"required\"/>");
    const Pruned result = withoutOptionalParts(base + root + restriction);
    EXPECT_EQ(result.text, R"(<xs:complexType name="Base">
<xs:sequence>
<xs:element name="a" type="xs:int" minOccurs="0"/>
</xs:sequence>
<xs:attribute name="c" type="xs:int" use="optional"/>
</xs:complexType>
)" + root + restriction);
    EXPECT_THAT(result.stayed, ElementsAre("Base/a", "Base/@c"));
}

TEST(StayingParts, AreThoseThatARestrictionRepeatsFromAnyOfItsBases) {
    const std::string between =
        element("complexType", "name=\"Between\"",
                element("complexContent", "", "<xs:extension base=\"ov:Base\"/>")) +
        '\n';
    const std::string restriction =
        derived("restriction", "Between",
                sequence("<xs:element ref=\"ov:head\"/>") + "\n<xs:attribute name=\"a\"/>");
    EXPECT_THAT(withoutOptionalParts(base + root + between + restriction).stayed,
                ElementsAre("Base/head", "Base/@a"));
}

TEST(StayingParts, AreThoseThatARestrictionRepeatsInGroups) {
    const std::string groups =
        element("group", "name=\"g\"", sequence("<xs:group ref=\"h\"/>")) + '\n' +
        element("group", "name=\"h\"",
                sequence("<xs:element name=\"b\"/>\n<xs:group ref=\"g\"/>")) +
        '\n' + element("attributeGroup", "name=\"g\"", "<xs:attribute name=\"c\"/>") + '\n';
    const std::string restriction =
        derived("restriction", "Base", "<xs:group ref=\"g\"/>\n<xs:attributeGroup ref=\"g\"/>");
    EXPECT_THAT(withoutOptionalParts(groups + base + root + restriction).stayed,
                ElementsAre("Base/b", "Base/@c"));
}

TEST(StayingParts, AreThoseThatARestrictionOfSimpleContentRepeats) {
    const std::string simple = R"(<xs:complexType name="Base">
<xs:simpleContent>
<xs:extension base="xs:int"/>
</xs:simpleContent>
<xs:attribute name="a" use="optional"/>
</xs:complexType>
)";
    const std::string restriction =
        element("complexType", "name=\"Derived\"",
                element("simpleContent", "",
                        element("restriction", "base=\"Base\"", "<xs:attribute name=\"a\"/>")));
    EXPECT_THAT(withoutOptionalParts(simple + root + restriction).stayed, ElementsAre("Base/@a"));
}

TEST(StayingParts, AreFoundAtOnceInManyDerivedTypes) {
    std::string lines = base;
    std::string former = "Base";
    for (int i = 0; i < 3'000; ++i) {
        const std::string name = i == 2'999 ? "Derived" : 'T' + std::to_string(i);
        lines += element("complexType", "name=\"" + name + '"',
                         element("complexContent", "",
                                 element("restriction", "base=\"" + former + '"',
                                         "<xs:attribute name=\"c\"/>"))) +
                 '\n';
        former = name;
    }
    EXPECT_THAT(withoutOptionalParts(lines + root + gone).stayed, ElementsAre("Base/@c"));
}

TEST(StayingParts, MayBeInACircleOfTypes) {
    const std::string circle =
        element("complexType", "name=\"Base\"",
                element("complexContent", "",
                        element("restriction", "base=\"Derived\"", "<xs:attribute name=\"c\"/>")) +
                    "\n<xs:attribute name=\"c\" use=\"optional\"/>");
    EXPECT_THAT(withoutOptionalParts(circle + '\n' + root +
                                     derived("restriction", "Base", "<xs:attribute name=\"c\"/>"))
                    .stayed,
                ElementsAre("Base/@c"));
}

TEST(StayingParts, DoNotStayForOtherTypes) {
    const std::string repeated =
        sequence("<xs:element name=\"a\"/>") + "\n<xs:attribute name=\"a\"/>";
    EXPECT_THAT(withoutOptionalParts(base + root + derived("extension", "Base", repeated)).stayed,
                IsEmpty());
    EXPECT_THAT(withoutOptionalParts(base + root + derived("restriction", "xs:Base", repeated) +
                                     '\n' + element("simpleType", "name=\"Base\"", ""))
                    .stayed,
                IsEmpty());
    // This one goes itself.
    EXPECT_THAT(withoutOptionalParts(base + derived("restriction", "Base", repeated)).stayed,
                IsEmpty());
}

TEST(StayingParts, KeepTheirTypes) {
    const std::string lines = R"(<xs:complexType name="Base">
<xs:sequence>
<xs:element name="a" type="Named" minOccurs="0"/>
<xs:element name="b" type="Gone" minOccurs="0"/>
</xs:sequence>
</xs:complexType>
)" + root + named + '\n' + derived("restriction", "Base", sequence("<xs:element name=\"a\"/>"));
    const Pruned result = withoutOptionalParts(lines + gone);
    EXPECT_THAT(result.stayed, ElementsAre("Named", "Base/a"));
    EXPECT_EQ(result.text.find("Gone"), std::string::npos);
}

TEST(StayingParts, AreThoseThatAnEntityHolds) {
    const TemporaryDirectory directory;
    const std::string bytes =
        "<!DOCTYPE schema [<!ENTITY c '<element name=\"a\" minOccurs=\"0\"/>'>"
        "<!ENTITY a '<attribute name=\"b\" use=\"optional\"/>'>]>\n" +
        suiteSchema(element("complexType", "name=\"Base\"", sequence("&c;") + "\n&a;"));
    XsdConfigReader reader(directory.file("schema.xsd", bytes));
    reader.readXSD(true);
    reader.keepXSDChildElement("Base", {});
    reader.keepXSDChildAttributes("Base", {});
    const Pruned result = prunedBy(reader);
    EXPECT_EQ(result.text, bytes);
    EXPECT_THAT(result.stayed, ElementsAre("Base/a", "Base/@b"));
}

TEST(StayingParts, AreThoseWithAKeyThatIsReferredTo) {
    const auto lines = [](const std::string& content) {
        return element("complexType", "name=\"Base\"",
                       sequence(element("element", "name=\"a\" minOccurs=\"0\"",
                                        "<xs:key name=\"key\"/>") +
                                content)) +
               "\n<xs:element name=\"root\">\n<xs:keyref name=\"r\" refer=\"key\"/>\n</xs:element>";
    };
    const Pruned result = withoutOptionalParts(lines("\n<xs:element name=\"b\" minOccurs=\"0\"/>"));
    EXPECT_EQ(result.text, lines(""));
    EXPECT_THAT(result.stayed, ElementsAre("Base/a"));
}

TEST(StayingParts, AreThoseThatARestrictionReplacesByASubstitute) {
    const auto lines = [](const std::string& content) {
        return root +
               "<xs:element name=\"head\" type=\"xs:string\"/>\n"
               "<xs:element name=\"middle\" substitutionGroup=\"head\" type=\"xs:string\"/>\n"
               "<xs:element name=\"sub\" substitutionGroup=\"middle\" type=\"xs:string\"/>\n" +
               element("complexType", "name=\"Base\"",
                       sequence("<xs:element ref=\"head\" minOccurs=\"0\"/>" + content)) +
               '\n' + derived("restriction", "Base", sequence("<xs:element ref=\"sub\"/>"));
    };
    const Pruned result = withoutOptionalParts(lines("\n<xs:element name=\"b\" minOccurs=\"0\"/>"));
    EXPECT_EQ(result.text, lines(""));
    EXPECT_THAT(result.stayed, ElementsAre("Base/head"));
}

TEST(StayingParts, AreNotWhatOnlyATypeWithinARestrictionHas) {
    const Pruned result = withoutOptionalParts(
        root +
        element("complexType", "name=\"Base\"",
                sequence("<xs:element name=\"a\" minOccurs=\"0\"/>\n<xs:element name=\"b\"/>")) +
        '\n' +
        derived(
            "restriction", "Base",
            sequence(element("element", "name=\"b\"",
                             element("complexType", "", sequence("<xs:element name=\"a\"/>"))))));
    EXPECT_THAT(result.stayed, testing::IsEmpty());
}

TEST(StayingParts, AreFoundAtOnceWhereKeysReferToOthers) {
    constexpr int parts = 3'000;
    std::string children;
    for (int i = 0; i < parts; ++i)
        children +=
            element("element", "name=\"e" + std::to_string(i) + "\" minOccurs=\"0\"",
                    "<xs:key name=\"k" + std::to_string(i) + "\"/>\n<xs:keyref name=\"r" +
                        std::to_string(i) + "\" refer=\"k" + std::to_string(i + 1) + "\"/>") +
            '\n';
    const Pruned result = withoutOptionalParts(
        element("complexType", "name=\"Base\"", sequence(children)) +
        "\n<xs:element name=\"root\">\n<xs:keyref name=\"r\" refer=\"k0\"/>\n</xs:element>");
    EXPECT_EQ(result.stayed.size(), static_cast<std::size_t>(parts));
}

} // namespace
} // namespace Orvant
