// What compares a schema with what was cut out of it sees what else differs.

#include "SchemaText.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvant {
namespace {

using Support::SchemaCut;
using Support::WrittenDocument;

const std::string schema = R"(<?xml version="1.0"?>
<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"> <!-- all -->
  <!-- far -->

  <!-- first -->
  <xs:simpleType name="A"> <!-- inside -->
    <xs:restriction base="xs:string"/>
  </xs:simpleType> <!-- behind -->
  <!-- second -->
  <xs:simpleType name="B"><xs:restriction base="xs:string"/></xs:simpleType>
  <xs:group name="g"/>
</xs:schema>
)";

std::string without(const std::string& part) {
    std::string rest = schema;
    return rest.erase(rest.find(part), part.size());
}

const std::string typeA = R"(  <!-- first -->
  <xs:simpleType name="A"> <!-- inside -->
    <xs:restriction base="xs:string"/>
  </xs:simpleType> <!-- behind -->
)";

/// @return nothing when the text is the schema without some elements and their comments
std::string differenceOf(const std::string& text) {
    const WrittenDocument original(schema);
    const WrittenDocument result(text);
    return SchemaCut(original, result).difference();
}

TEST(SchemaCut, FindsWhatIsCutOut) {
    const std::string text = without(typeA);
    const WrittenDocument original(schema);
    const WrittenDocument result(text);
    const SchemaCut cut(original, result);
    ASSERT_EQ(1u, cut.elements().size());
    EXPECT_EQ("A", cut.elements().front().element->attribute("name"));
    EXPECT_EQ("", cut.difference());
    EXPECT_EQ("", differenceOf(schema));
}

TEST(SchemaCut, SeesACommentThatIsLostOrLeftBehind) {
    EXPECT_NE("", differenceOf(without("  <!-- far -->\n")));
    EXPECT_NE("", differenceOf(without(typeA.substr(typeA.find('\n') + 1))));
    EXPECT_NE("", differenceOf(without(typeA.substr(0, typeA.find(" <!-- behind")))));
}

TEST(SchemaCut, SeesALostElementThatNoFilterRemoves) {
    EXPECT_NE("", differenceOf(without("  <xs:group name=\"g\"/>\n")));
    EXPECT_NE("", differenceOf(without("    <xs:restriction base=\"xs:string\"/>\n")));
}

TEST(SchemaCut, SeesAChangedTagAndAChangedLine) {
    EXPECT_NE("", differenceOf(without(" base=\"xs:string\"")));
    std::string indented = without(typeA);
    indented.insert(indented.find("<xs:group"), " ");
    EXPECT_NE("", differenceOf(indented));
}

TEST(WrittenDocument, SkipsWhatIsNoElement) {
    const std::string text = "<!DOCTYPE s [<!-- ]> --><!ENTITY e \"]><b/>\"><?p ]> ?>]>"
                             "<s a='>'><![CDATA[<c/>]]><!-- <d/> --><e b = \"1\" /></s>";
    const WrittenDocument document(text);
    ASSERT_EQ(1u, document.element().children.size());
    EXPECT_EQ(">", document.element().attribute("a"));
    EXPECT_EQ("e", document.element().children.front().name);
    EXPECT_EQ("1", document.element().children.front().attribute("b"));
}

} // namespace
} // namespace Orvant
