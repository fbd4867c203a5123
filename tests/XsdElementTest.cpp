#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <thread>
#include <type_traits>

namespace Orvant::Support {

struct DeleteComplexType {
    using type = void (XsdElement::*)(const std::vector<std::string>&, bool);
    friend type memberOf(DeleteComplexType);
};
struct DeleteSimpleType {
    using type = void (XsdElement::*)(const std::vector<std::string>&, bool);
    friend type memberOf(DeleteSimpleType);
};
struct FindChildElements {
    using type = Strings (XsdElement::*)(const std::vector<std::string>&);
    friend type memberOf(FindChildElements);
};
template struct PrivateMember<FindChildElements, &XsdElement::findChildElements>;
template struct PrivateMember<DeleteComplexType, &XsdElement::deleteComplexType>;
template struct PrivateMember<DeleteSimpleType, &XsdElement::deleteSimpleType>;

} // namespace Orvant::Support

namespace Orvant {

namespace {

using namespace Support;
using testing::ElementsAre;
using testing::IsEmpty;

std::string complexType(const std::string& name, const std::string& content) {
    return "<complexType name=\"" + name + "\">" + content + "</complexType>";
}

std::string sequenceType(const std::string& name, const std::string& elements) {
    return complexType(name, "<sequence>" + elements + "</sequence>");
}

std::string simpleType(const std::string& name, const std::string& base = "string") {
    return "<simpleType name=\"" + name + "\"><restriction base=\"" + base +
           "\"><enumeration value=\"v\"/></restriction></simpleType>";
}

std::string required(const std::string& name, const std::string& type) {
    return "<element name=\"" + name + "\" type=\"" + type + "\"/>";
}

std::string optional(const std::string& name, const std::string& type) {
    return "<element name=\"" + name + "\" type=\"" + type + "\" minOccurs=\"0\"/>";
}

std::string extension(const std::string& base, const std::string& content) {
    return "<complexContent><extension base=\"" + base + "\">" + content +
           "</extension></complexContent>";
}

// Records.

TEST(XsdElementProperty, IsEmptyWhenNew) {
    const XsdElementProperty type;
    EXPECT_EQ("", type.name);
    EXPECT_EQ("", type.type);
    EXPECT_TRUE(type.children.empty());
    EXPECT_EQ(0, type.minOccurs);
    EXPECT_EQ("Unbounded", type.maxOccurs);
    EXPECT_TRUE(type.attributes.empty());
}

TEST(XsdElementProperty, HasItsFieldsInOrder) {
    const auto child =
        std::make_shared<XsdChildElementProperty>(XsdChildElementProperty{"n", "t", 2, "3"});
    const XsdElementProperty type{"name", "type", {child}, 4, "5", {"attribute"}};
    EXPECT_EQ("n", type.children[0]->name);
    EXPECT_EQ("t", type.children[0]->type);
    EXPECT_EQ(2, type.children[0]->minOccurs);
    EXPECT_EQ("3", type.children[0]->maxOccurs);
    EXPECT_EQ(4, type.minOccurs);
    EXPECT_EQ("5", type.maxOccurs);
    EXPECT_EQ("attribute", type.attributes[0]);
}

TEST(XsdChildElementProperty, IsEmptyWhenNew) {
    const XsdChildElementProperty child;
    EXPECT_EQ("", child.name);
    EXPECT_EQ("", child.type);
    EXPECT_EQ(0, child.minOccurs);
    EXPECT_EQ("Unbounded", child.maxOccurs);
}

// The description of a document.

TEST(XsdElement, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<XsdElement>);
}

TEST(XsdElement, DescribesNothingWithoutADocument) {
    XsdElement tree;
    EXPECT_EQ(nullptr, tree.getSchema());
    EXPECT_TRUE(tree.getXsdTree().empty());
    EXPECT_TRUE(tree.getRootElements().empty());
    EXPECT_EQ(nullptr, tree.findType("A"));
    tree.keepElements({"A"});
    tree.keepChildElement("A", {}, false, true);
    tree.keepChildAttributes("A", {});
    EXPECT_EQ(nullptr, tree.getSchema());
}

TEST(XsdElement, IsMadeOfADocumentWithoutSayingSo) {
    const auto names = [](XsdElement tree) { return typeNames(tree); };
    EXPECT_THAT(names(*parseSchema(complexType("A", ""))), ElementsAre("A"));
}

TEST(XsdElement, CopiesTheDocument) {
    const auto schema = parseSchema(complexType("A", ""));
    XsdElement tree(*schema);
    schema->complexType()[0].name("Changed");
    EXPECT_EQ("A", *tree.getSchema()->complexType()[0].name());
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(XsdElement, DescribesTheDocumentOfAFilterThoughItIsChangedAfterwards) {
    XsdElement tree = treeOf(complexType("A", ""));
    OV_XsdReader::ov_schema& document = *tree.getSchema();
    tree.keepChildAttributes("A", {});
    document.complexType().clear();
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(XsdElement, DescribesTheChildrenOfASequence) {
    XsdElement tree = treeOf(sequenceType(
        "A", "<element name=\"a\" type=\"xs:string\"/><element name=\"b\" type=\"int\" "
             "minOccurs=\"0\" maxOccurs=\"unbounded\"/><element name=\"c\" type=\"string\" "
             "minOccurs=\"2\" maxOccurs=\"5\"/><element/>"));
    const auto type = tree.getXsdTree().at("A");
    EXPECT_EQ("", type->name);
    EXPECT_EQ("A", type->type);
    EXPECT_EQ(0, type->minOccurs);
    EXPECT_EQ("Unbounded", type->maxOccurs);
    ASSERT_EQ(4u, type->children.size());
    EXPECT_EQ("a", type->children[0]->name);
    EXPECT_EQ("xs:string", type->children[0]->type);
    EXPECT_EQ(1, type->children[0]->minOccurs);
    EXPECT_EQ("Unbounded", type->children[0]->maxOccurs);
    EXPECT_EQ("b", type->children[1]->name);
    EXPECT_EQ("int", type->children[1]->type);
    EXPECT_EQ(0, type->children[1]->minOccurs);
    EXPECT_EQ("unbounded", type->children[1]->maxOccurs);
    EXPECT_EQ("string", type->children[2]->type);
    EXPECT_EQ(2, type->children[2]->minOccurs);
    EXPECT_EQ("5", type->children[2]->maxOccurs);
    EXPECT_EQ("", type->children[3]->name);
    EXPECT_EQ("", type->children[3]->type);
}

TEST(XsdElement, DescribesAnExtensionBehindTheSequenceAndItsAttributesFirst) {
    XsdElement tree =
        treeOf(complexType("A", "<sequence><element name=\"own\"/></sequence>"
                                "<attribute name=\"ownAttribute\"/>" +
                                    extension("B", "<sequence><element name=\"e1\"/>"
                                                   "<element name=\"e2\" minOccurs=\"0\"/>"
                                                   "</sequence><attribute name=\"x1\"/>"
                                                   "<attribute name=\"x2\"/>")));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("own", "e1", "e2"));
    EXPECT_THAT(tree.getXsdTree().at("A")->attributes, ElementsAre("x1", "x2", "ownAttribute"));
    EXPECT_EQ(1, tree.getXsdTree().at("A")->children[1]->minOccurs);
    EXPECT_EQ("Unbounded", tree.getXsdTree().at("A")->children[1]->maxOccurs);
    EXPECT_EQ(0, tree.getXsdTree().at("A")->children[2]->minOccurs);
}

TEST(XsdElement, LooksNeitherAtChoicesNorAtRestrictionsNorAtInlineTypes) {
    XsdElement tree =
        treeOf(complexType("A", "<choice><element name=\"c\"/></choice>") +
               complexType("B", "<complexContent><restriction base=\"A\"><attribute name=\"r\"/>"
                                "</restriction></complexContent>") +
               sequenceType("C", "<element name=\"i\">" + sequenceType("D", required("d", "A")) +
                                     "</element>"));
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C"));
    EXPECT_THAT(childNames(tree, "A"), IsEmpty());
    EXPECT_THAT(tree.getXsdTree().at("B")->attributes, IsEmpty());
    EXPECT_THAT(childNames(tree, "C"), ElementsAre("i"));
}

TEST(XsdElement, KeepsTheFirstOfTwoTypesWithOneName) {
    XsdElement tree =
        treeOf(simpleType("A") + sequenceType("A", required("first", "x")) +
               sequenceType("A", required("second", "x")) + simpleType("B") + simpleType("B"));
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("first"));
    EXPECT_EQ("", tree.getXsdTree().at("A")->name);
}

TEST(XsdElement, DescribesASimpleTypeByItsNameAlone) {
    XsdElement tree = treeOf(simpleType("Colour"));
    const auto type = tree.getXsdTree().at("Colour");
    EXPECT_EQ("Colour", type->name);
    EXPECT_EQ("Colour", type->type);
    EXPECT_TRUE(type->children.empty());
    EXPECT_TRUE(type->attributes.empty());
}

TEST(XsdElement, SharesTheRecordsOfRootElementsWithTheTypes) {
    XsdElement tree = treeOf(required("second", "B") + required("first", "A") +
                             complexType("A", "") + simpleType("B"));
    const auto roots = tree.getRootElements();
    ASSERT_EQ(2u, roots.size());
    EXPECT_EQ(tree.getXsdTree().at("B"), roots[0]);
    EXPECT_EQ("second", roots[0]->name);
    EXPECT_EQ("B", roots[0]->type);
    EXPECT_EQ(tree.getXsdTree().at("A"), roots[1]);
    EXPECT_EQ("first", roots[1]->name);
    EXPECT_EQ(roots[1], tree.findType("A"));
    EXPECT_EQ(nullptr, tree.findType("a"));
}

TEST(XsdElement, LeavesOutRootElementsOfTypesThatAreNotDeclared) {
    XsdElement tree = treeOf(required("a", "Nowhere") + "<element name=\"inline\"/>" +
                             "<complexType/>" + required("b", "xs:int"));
    EXPECT_TRUE(tree.getRootElements().empty());
}

TEST(XsdElement, AnswersATypeOnceForEachOfItsRootElements) {
    XsdElement tree =
        treeOf(complexType("A", "") + required("first", "A") + required("later", "A"));
    const auto roots = tree.getRootElements();
    ASSERT_EQ(2u, roots.size());
    EXPECT_EQ(roots[0], roots[1]);
    EXPECT_EQ("later", roots[0]->name);
}

TEST(XsdElement, AnswersCopiesOfItsLists) {
    XsdElement tree = treeOf(complexType("A", "") + required("a", "A"));
    auto roots = tree.getRootElements();
    auto types = tree.getXsdTree();
    roots.clear();
    types.clear();
    EXPECT_EQ(1u, tree.getRootElements().size());
    EXPECT_EQ(1u, tree.getXsdTree().size());
}

TEST(XsdElement, CopiesShareDocumentAndRecords) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    XsdElement copy(tree);
    XsdElement assigned;
    assigned = tree;
    EXPECT_EQ(tree.getSchema(), copy.getSchema());
    EXPECT_EQ(tree.getSchema(), assigned.getSchema());
    EXPECT_EQ(tree.findType("A"), copy.findType("A"));
    copy.keepElements({"A"});
    EXPECT_EQ(1u, tree.getSchema()->complexType().size());
    EXPECT_THAT(typeNames(copy), ElementsAre("A"));
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
}

// When filters are seen.

TEST(FilteredTree, ShowsEveryFilterAtTheNextQuery) {
    const std::string content = required("root", "A") + required("gone", "B") +
                                sequenceType("A", optional("b", "B") + optional("c", "C")) +
                                complexType("B", "") + complexType("C", "");
    XsdElement byRoots = treeOf(content);
    byRoots.keepElements({"A", "C"});
    EXPECT_THAT(rootNames(byRoots), ElementsAre("root"));
    XsdElement byTypes = treeOf(content);
    byTypes.keepElements({"A", "C"});
    EXPECT_THAT(typeNames(byTypes), ElementsAre("A", "C"));
    XsdElement byName = treeOf(content);
    byName.keepElements({"A", "C"});
    EXPECT_EQ(nullptr, byName.findType("B"));
    ASSERT_NE(nullptr, byName.findType("A"));
    EXPECT_EQ(1u, byName.findType("A")->children.size());
    byName.keepChildElement("A", {}, false, false);
    EXPECT_TRUE(byName.findType("A")->children.empty());
    EXPECT_EQ(byName.findType("A"), byName.getRootElements().at(0));
}

TEST(FilteredTree, ShowsSeveralFiltersAtOnce) {
    XsdElement tree =
        treeOf(sequenceType("A", optional("b", "B")) +
               complexType("B", "<attribute name=\"x\" use=\"optional\"/>") + complexType("C", ""));
    tree.keepChildElement("A", {}, false, false);
    tree.keepChildAttributes("B", {});
    tree.keepElements({"A", "B"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
    EXPECT_THAT(childNames(tree, "A"), IsEmpty());
    EXPECT_THAT(tree.findType("B")->attributes, IsEmpty());
}

TEST(FilteredTree, MakesNewRecordsOfAllTypes) {
    XsdElement tree = treeOf(required("root", "A") + sequenceType("A", optional("b", "B")) +
                             complexType("B", ""));
    const auto roots = tree.getRootElements();
    const auto types = tree.getXsdTree();
    const auto untouched = tree.findType("B");
    untouched->attributes = {"the caller's"};
    EXPECT_EQ(untouched, tree.findType("B"));
    tree.keepChildElement("A", {}, false, false);
    // What was fetched before stays as it was.
    EXPECT_EQ(1u, types.at("A")->children.size());
    EXPECT_EQ(types.at("A"), roots.at(0));
    EXPECT_EQ("root", roots.at(0)->name);
    EXPECT_NE(types.at("A"), tree.findType("A"));
    EXPECT_NE(untouched, tree.findType("B"));
    EXPECT_THAT(tree.findType("B")->attributes, IsEmpty());
    EXPECT_EQ(tree.findType("A"), tree.getRootElements().at(0));
}

TEST(FilteredTree, KeepsItsRecordsWhereAFilterHasNoTypeToWorkOn) {
    XsdElement tree = treeOf(complexType("A", ""));
    const auto type = tree.findType("A");
    tree.keepChildElement("Nowhere", {}, false, true);
    tree.keepChildAttributes("Nowhere", {});
    EXPECT_EQ(type, tree.findType("A"));
}

TEST(FilteredTree, IsCopiedWithItsFilters) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    tree.keepElements({"A"});
    XsdElement copy(tree);
    tree.keepElements({"Nowhere"});
    EXPECT_THAT(typeNames(copy), ElementsAre("A"));
    EXPECT_THAT(typeNames(tree), IsEmpty());

    XsdElement other = treeOf(complexType("C", "") + complexType("D", ""));
    other.keepElements({"C"});
    copy.keepElements({"Nowhere"});
    copy = other;
    other.keepElements({"Nowhere"});
    EXPECT_THAT(typeNames(copy), ElementsAre("C"));
    EXPECT_THAT(typeNames(other), IsEmpty());
}

TEST(FilteredTree, SharesTheRecordsThatAFilterMakesWithCopies) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    tree.keepElements({"A"});
    XsdElement copy(tree);
    XsdElement assigned;
    assigned = tree;
    EXPECT_EQ(tree.findType("A"), copy.findType("A"));
    EXPECT_EQ(tree.findType("A"), assigned.findType("A"));
}

TEST(FilteredTree, IsWhatItIsAssignedEvenToItself) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    tree.keepElements({"A"});
    const XsdElement& itself = tree;
    tree = itself;
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(FilteredTree, DoesNotShowFiltersOfCopies) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", "") + complexType("C", ""));
    XsdElement copy(tree);
    tree.keepElements({"A", "B"});
    copy.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
    EXPECT_THAT(typeNames(copy), ElementsAre("A"));
    tree.keepElements({"A", "B", "C"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(FilteredTree, DoesNotShowWhatTheCallerChangesInTheDocument) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    const auto rename = [](OV_XsdReader::ov_schema& schema, const char* name) {
        schema.complexType()[0].name(name);
    };
    rename(*tree.getSchema(), "Changed");
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
    tree.keepElements({"Changed", "B"});
    rename(*tree.getSchema(), "ChangedAgain");
    EXPECT_THAT(typeNames(tree), ElementsAre("B", "Changed"));
    const auto held = tree.getSchema();
    tree.keepElements({"ChangedAgain", "B"});
    rename(*held, "ChangedAfterTheFilter");
    EXPECT_THAT(typeNames(tree), ElementsAre("B", "ChangedAgain"));
}

TEST(FilteredTree, AnswersSeveralThreadsThatOnlyAsk) {
    std::string content;
    for (int i = 0; i < 200; ++i)
        content += complexType("A" + std::to_string(i), "");
    XsdElement tree = treeOf(content + complexType("B", ""));
    tree.keepChildAttributes("B", {});
    const XsdElement& asked = tree;
    std::vector<std::shared_ptr<XsdElementProperty>> found(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < found.size(); ++i)
        threads.emplace_back([&asked, &found, i] {
            found[i] = i % 2 == 0 ? asked.findType("B") : XsdElement(asked).findType("B");
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_NE(nullptr, found[0]);
    EXPECT_THAT(found, testing::Each(tree.findType("B")));
}

// Deleting types from the document alone.

/// Applies both operations to a schema of the complex types A, B, C and the simple types a, b, c.
/// @return the names of the types that stay in the document
Strings afterDeleting(const Strings& names, bool keep) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", "") + complexType("C", "") +
                             simpleType("a") + simpleType("b") + simpleType("c"));
    (tree.*memberOf(DeleteComplexType()))(names, keep);
    (tree.*memberOf(DeleteSimpleType()))(names, keep);
    EXPECT_EQ(6u, tree.getXsdTree().size());
    Strings staying;
    for (const auto& type : tree.getSchema()->complexType())
        staying.push_back(*type.name());
    for (const auto& type : tree.getSchema()->simpleType())
        staying.push_back(*type.name());
    return staying;
}

TEST(DeleteTypes, KeepsWhatIsListedOrTakesIt) {
    EXPECT_THAT(afterDeleting({"B", "C", "a"}, true), ElementsAre("B", "C", "a"));
    EXPECT_THAT(afterDeleting({"B", "C", "a"}, false), ElementsAre("A", "b", "c"));
    EXPECT_THAT(afterDeleting({"x"}, true), IsEmpty());
    EXPECT_THAT(afterDeleting({"x"}, false), ElementsAre("A", "B", "C", "a", "b", "c"));
}

TEST(DeleteTypes, EndsAfterTheFirstTypeForAnEmptyList) {
    EXPECT_THAT(afterDeleting({}, true), ElementsAre("B", "C", "b", "c"));
    EXPECT_THAT(afterDeleting({}, false), ElementsAre("A", "B", "C", "a", "b", "c"));
}

// The types of children.

Strings childTypes(const std::string& content, const Strings& names) {
    XsdElement tree = treeOf(content);
    return (tree.*memberOf(FindChildElements()))(names);
}

TEST(FindChildElements, AnswersTheTypesOfListedTypesInDocumentOrderEachOnce) {
    const std::string content =
        sequenceType("A", required("b", "B") + optional("x", "xs:int") + optional("b2", "B")) +
        sequenceType("a", required("d", "D")) +
        sequenceType("B", required("c", "ov:C") + required("x", "xs:int")) +
        sequenceType("C", required("e", "E")) + sequenceType("A", required("f", "F"));
    EXPECT_THAT(childTypes(content, {"B", "A", "Nowhere"}),
                ElementsAre("B", "xs:int", "ov:C", "F"));
    EXPECT_THAT(childTypes(content, {"Nowhere"}), IsEmpty());
    EXPECT_THAT(childTypes(content, {}), IsEmpty());
}

TEST(FindChildElements, LooksAtASequenceThenAtAChoice) {
    EXPECT_THAT(
        childTypes(complexType("A", "<choice>" + required("b", "B") + "</choice>") +
                       complexType("C", "<sequence>" + required("d", "D") + "</sequence><choice>" +
                                            required("e", "E") + optional("f", "F") + "</choice>"),
                   {"A", "C"}),
        ElementsAre("B", "D", "E", "F"));
}

TEST(FindChildElements, DescendsIntoInlineTypesWhereTheyStand) {
    const std::string inlineType =
        "<element name=\"i\">" +
        complexType("", "<sequence>" + required("b", "B") + "</sequence><choice>" +
                            required("c", "C") + "</choice>") +
        "</element>";
    EXPECT_THAT(childTypes(sequenceType("A", inlineType + required("d", "D")), {"A"}),
                ElementsAre("B", "C", "D"));
    EXPECT_THAT(childTypes(complexType("A", "<choice>" + inlineType + "</choice>"), {"A"}),
                ElementsAre("B", "C"));
}

TEST(FindChildElements, LooksAtChildrenThatAnExtensionAddsButNotAtItsBaseOrAtAttributes) {
    EXPECT_THAT(childTypes(complexType("A", extension("Base", "<sequence>" + optional("b", "B") +
                                                                  "</sequence><attribute "
                                                                  "name=\"c\" type=\"C\"/>")),
                           {"A"}),
                ElementsAre("B"));
}

TEST(FindChildElements, LeavesOutChildrenWithoutAType) {
    EXPECT_THAT(childTypes(sequenceType("A", "<element name=\"a\"/>"), {"A"}), IsEmpty());
}

// keepElements: which types stay.

TEST(KeepElements, KeepsListedTypesAndNoOthers) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", "") + simpleType("C") +
                             simpleType("D") + complexType("a", ""));
    tree.keepElements({"A", "D"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "D"));
    EXPECT_EQ(1u, tree.getSchema()->complexType().size());
    EXPECT_EQ(1u, tree.getSchema()->simpleType().size());
}

TEST(KeepElements, FollowsRequiredChildrenThroughAllLevels) {
    XsdElement tree = treeOf(sequenceType("A", required("b", "B")) +
                             sequenceType("B", required("c", "C") + required("d", "D")) +
                             sequenceType("C", required("e", "E")) + simpleType("D") +
                             complexType("E", "") + complexType("F", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C", "D", "E"));
}

TEST(KeepElements, TakesAnyMinOccursButZeroForRequired) {
    XsdElement tree =
        treeOf(sequenceType("A", "<element name=\"b\" type=\"B\" minOccurs=\"1\"/>"
                                 "<element name=\"c\" type=\"C\" minOccurs=\"-1\"/>"
                                 "<element name=\"d\" type=\"D\" minOccurs=\"00\"/>") +
               complexType("B", "") + complexType("C", "") + complexType("D", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b", "c"));
}

TEST(KeepElements, TakesOptionalChildrenOfTypesThatGo) {
    XsdElement tree =
        treeOf(sequenceType("A", optional("b", "B") + required("c", "C") + optional("c2", "C")) +
               complexType("B", "") + complexType("C", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "C"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("c", "c2"));
}

TEST(KeepElements, KeepsOptionalChildrenOfBuiltInAndUndeclaredTypes) {
    XsdElement tree = treeOf(sequenceType("A", optional("a", "xs:string") + optional("b", "int") +
                                                   optional("c", "Nowhere") +
                                                   "<element name=\"d\" minOccurs=\"0\"/>"));
    tree.keepElements({"A"});
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("a", "b", "c", "d"));
}

TEST(KeepElements, FollowsTheBaseAndTheSequenceOfAnExtension) {
    XsdElement tree =
        treeOf(complexType("A", extension("Base", "<sequence>" + required("b", "B") +
                                                      optional("c", "C") + "</sequence>")) +
               sequenceType("Base", required("d", "D")) + complexType("B", "") +
               complexType("C", "") + complexType("D", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "Base", "D"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b"));
}

TEST(KeepElements, FollowsAllMembersOfAChoice) {
    XsdElement tree = treeOf(
        complexType("A", "<choice>" + required("b", "B") + optional("c", "C") + "</choice>") +
        complexType("B", "") + complexType("C", "") + complexType("D", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C"));
    EXPECT_EQ(2u, tree.getSchema()->complexType()[0].choice()->element().size());
}

TEST(KeepElements, FollowsTheTypesOfAttributesAndRestrictions) {
    XsdElement tree =
        treeOf(complexType("A", "<attribute name=\"b\" type=\"B\"/>" +
                                    extension("Base", "<attribute name=\"c\" type=\"C\"/>")) +
               complexType("Base", "<complexContent><restriction base=\"D\"><attribute name=\"e\" "
                                   "type=\"E\" use=\"optional\"/></restriction></complexContent>") +
               complexType("D", "") + simpleType("B", "F") + simpleType("C") + simpleType("E") +
               simpleType("F") + simpleType("G"));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "Base", "C", "D", "E", "F"));
    EXPECT_THAT(tree.getXsdTree().at("A")->attributes, ElementsAre("c", "b"));
}

TEST(KeepElements, FollowsInlineTypesAndTakesTheirOptionalChildren) {
    const auto inlineType = [](const std::string& attributes, const std::string& elements) {
        return "<element name=\"i\"" + attributes + "><complexType><sequence>" + elements +
               "</sequence></complexType></element>";
    };
    XsdElement tree = treeOf(
        sequenceType("A",
                     inlineType("", required("b", "B") +
                                        inlineType("", optional("c", "C") + required("d", "D"))) +
                         inlineType(" minOccurs=\"0\"", required("e", "E"))) +
        complexType("F", "<choice>" + inlineType("", optional("c", "C") + required("g", "G")) +
                             "</choice>") +
        complexType("B", "") + complexType("C", "") + complexType("D", "") + complexType("E", "") +
        complexType("G", ""));
    tree.keepElements({"A", "F"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "D", "E", "F", "G"));
    EXPECT_EQ(std::string::npos, serialise(*tree.getSchema()).find("type=\"C\""));
    EXPECT_EQ(2u, tree.getSchema()->complexType()[0].sequence()->element().size());
}

TEST(KeepElements, KeepsTheTypesOfRequiredChildrenOfRootElements) {
    XsdElement tree = treeOf(
        required("root", "Root") +
        complexType("Root",
                    "<sequence>" + required("b", "B") + optional("c", "C") + "</sequence>" +
                        extension("Base", "<sequence>" + required("d", "D") + "</sequence>")) +
        sequenceType("B", required("e", "E")) + complexType("C", "") + complexType("D", "") +
        complexType("E", "") + complexType("Base", "") + complexType("Listed", ""));
    tree.keepElements({"Listed"});
    EXPECT_THAT(typeNames(tree), ElementsAre("B", "D", "E", "Listed"));
}

TEST(KeepElements, KeepsWhatTheInlineTypeOfARequiredChildOfARootElementNeeds) {
    XsdElement tree =
        treeOf(required("root", "Root") +
               sequenceType("Root", "<element name=\"i\">" + sequenceType("", required("b", "B")) +
                                        "</element>") +
               complexType("B", "") + complexType("C", ""));
    tree.keepElements({});
    EXPECT_THAT(typeNames(tree), ElementsAre("B"));
}

TEST(KeepElements, TakesARequiredChildWithoutATypeForAName) {
    // So the list is not empty, and all types that it does not name go.
    XsdElement tree =
        treeOf(required("root", "Root") + sequenceType("Root", "<element name=\"b\"/>") +
               complexType("B", "") + simpleType("C") + simpleType("D"));
    tree.keepElements({});
    EXPECT_THAT(typeNames(tree), IsEmpty());
}

TEST(KeepElements, TakesOptionalChildrenAlsoOfTypesWithoutAName) {
    // Such a type stays only when just the first ones go.
    XsdElement tree =
        treeOf(complexType("A", "") + "<complexType><sequence>" + optional("a", "A") +
               optional("b", "ov:A") + optional("c", "B") + "</sequence></complexType>");
    tree.keepElements({});
    EXPECT_THAT(childNames(tree, ""), ElementsAre("c"));
}

TEST(KeepElements, FindsNoTypeForARootElementWithoutOne) {
    XsdElement tree = treeOf(sequenceType("", required("b", "B")) + complexType("A", "") +
                             complexType("B", "") + "<element name=\"root\"/>");
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(KeepElements, DoesNotKeepTheTypeOfARootElementForBeingOne) {
    XsdElement tree = treeOf(required("root", "Root") + required("other", "Other") +
                             required("number", "xs:int") + required("nowhere", "Nowhere") +
                             complexType("Root", "") + complexType("Other", ""));
    tree.keepElements({"Other"});
    EXPECT_THAT(typeNames(tree), ElementsAre("Other"));
    EXPECT_THAT(rootNames(tree), ElementsAre("other"));
    // Root elements go with declared types only.
    ASSERT_EQ(3u, tree.getSchema()->element().size());
    EXPECT_EQ("other", *tree.getSchema()->element()[0].name());
    EXPECT_EQ("number", *tree.getSchema()->element()[1].name());
    EXPECT_EQ("nowhere", *tree.getSchema()->element()[2].name());
}

TEST(KeepElements, EndsOnTypesThatContainThemselvesAndEachOther) {
    XsdElement tree =
        treeOf(sequenceType("A", required("a", "A") + required("b", "B") + optional("o", "A")) +
               sequenceType("B", required("c", "C")) + complexType("C", extension("A", "")) +
               complexType("D", extension("D", "<sequence>" + required("d", "D") + "</sequence>")));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("a", "b", "o"));
}

TEST(KeepElements, KeepsBothOfTwoTypesWithOneNameAndWhatTheyNeed) {
    XsdElement tree =
        treeOf(sequenceType("A", required("b", "B")) + sequenceType("A", required("c", "C")) +
               complexType("B", "") + complexType("C", "") + complexType("D", ""));
    tree.keepElements({"A"});
    EXPECT_EQ(4u, tree.getSchema()->complexType().size());
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "C"));
}

TEST(KeepElements, LeavesNoMissingTypeBehindWhateverIsListed) {
    const std::string content =
        required("r1", "A") + required("r2", "E") +
        sequenceType("A", required("b", "B") + optional("c", "C")) +
        complexType("B", "<choice>" + optional("d", "D") +
                             "</choice><attribute name=\"s\" "
                             "type=\"S\"/>") +
        complexType("C", extension("A", "<sequence>" + optional("e", "E") + "</sequence>")) +
        sequenceType("D", optional("a", "A") + optional("c", "C")) +
        sequenceType("E", optional("d", "D") + optional("t", "T")) + simpleType("S", "T") +
        simpleType("T");
    const Strings names = {"A", "B", "C", "D", "E", "S", "T"};
    for (unsigned int subset = 1; subset < 1u << names.size(); ++subset) {
        Strings listed;
        for (std::size_t i = 0; i < names.size(); ++i)
            if ((subset >> i & 1u) != 0)
                listed.push_back(names[i]);
        XsdElement tree = treeOf(content);
        tree.keepElements(listed);
        const std::string written = serialise(*tree.getSchema());
        for (const std::string& name : names) {
            if (tree.findType(name))
                continue;
            EXPECT_EQ(std::string::npos, written.find("type=\"" + name + "\"")) << written;
            EXPECT_EQ(std::string::npos, written.find("base=\"" + name + "\"")) << written;
        }
        for (const std::string& name : listed)
            EXPECT_TRUE(tree.findType(name)) << name;
    }
}

TEST(KeepElements, TakesJustTheFirstTypesForAnEmptyList) {
    XsdElement tree = treeOf(required("root", "A") + complexType("A", "") +
                             sequenceType("B", optional("a", "A") + required("a2", "A")) +
                             complexType("C", "") + simpleType("D") + simpleType("E"));
    tree.keepElements({});
    EXPECT_THAT(typeNames(tree), ElementsAre("B", "C", "E"));
    EXPECT_THAT(childNames(tree, "B"), ElementsAre("a2"));
    EXPECT_TRUE(tree.getSchema()->element().empty());
}

TEST(KeepElements, TakesEveryTypeForNamesOfNone) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", "") + simpleType("C") +
                             "<complexType/><simpleType/>");
    tree.keepElements({"Nowhere"});
    EXPECT_TRUE(tree.getSchema()->complexType().empty());
    EXPECT_TRUE(tree.getSchema()->simpleType().empty());
}

TEST(KeepElements, TakesNothingFromASchemaWithoutTypes) {
    XsdElement tree = treeOf("");
    tree.keepElements({});
    tree.keepElements({"A"});
    EXPECT_TRUE(tree.getXsdTree().empty());
}

// Type names that kept the prefix of the suite's namespace.

TEST(PrefixedTypeNames, StayInTheDescription) {
    XsdElement tree = treeOf(required("root", "ov:A") + sequenceType("A", required("b", "ov:B")) +
                             complexType("B", ""));
    EXPECT_EQ("ov:B", tree.getXsdTree().at("A")->children[0]->type);
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
    EXPECT_THAT(rootNames(tree), IsEmpty());
}

TEST(PrefixedTypeNames, MeanTheTypesThatFiltersKeep) {
    XsdElement tree = treeOf(
        complexType("A", "<sequence>" + required("b", "ov:B") +
                             "</sequence><attribute name=\"s\" type=\"ov:S\"/><choice>" +
                             required("c", "ov:C") + "</choice>" + extension("ov:Base", "")) +
        complexType("B", "") + complexType("C", "") + complexType("Base", "") +
        simpleType("S", "ov:T") + simpleType("T") + complexType("Other", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "Base", "C", "S", "T"));
}

TEST(PrefixedTypeNames, MeanTheTypesThatTakeTheirUsersWithThem) {
    XsdElement tree = treeOf(required("root", "ov:B") + required("number", "ov:Nowhere") +
                             sequenceType("A", optional("b", "ov:B") + optional("c", "xs:B") +
                                                   optional("d", "ov:Nowhere")) +
                             complexType("B", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("c", "d"));
    ASSERT_EQ(1u, tree.getSchema()->element().size());
    EXPECT_EQ("number", *tree.getSchema()->element()[0].name());
}

TEST(PrefixedTypeNames, MayBeListed) {
    XsdElement tree = treeOf(complexType("A", "") + complexType("B", ""));
    tree.keepElements({"ov:A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A"));
}

TEST(PrefixedTypeNames, MeanTheTypesOfRootElements) {
    const std::string content = required("root", "ov:Root") +
                                sequenceType("Root", required("a", "A") + optional("b", "B")) +
                                complexType("A", "") + complexType("B", "") +
                                complexType("Listed", "");
    XsdElement kept = treeOf(content);
    kept.keepElements({"Listed"});
    EXPECT_THAT(typeNames(kept), ElementsAre("A", "Listed"));
    XsdElement pruned = treeOf(content);
    pruned.keepChildElement("Listed", {}, false, true);
    EXPECT_THAT(typeNames(pruned), ElementsAre("A", "B", "Listed", "Root"));
}

TEST(PrefixedTypeNames, AreFirstOfAllNames) {
    XsdElement tree = treeOf(sequenceType("A", required("b", "ov:B") + optional("c", "ov:C")) +
                             complexType("ov:B", "") + complexType("ov:C", ""));
    tree.keepElements({"A"});
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "ov:B"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b"));
}

TEST(PrefixedTypeNames, AreComparedAsTheyAreWrittenWhenChildrenAreListedByType) {
    XsdElement tree = treeOf(sequenceType("A", optional("b", "ov:B") + optional("c", "ov:C")) +
                             complexType("B", "") + complexType("C", ""));
    tree.keepChildElement("A", {"ov:B", "C"}, true, false);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b"));
}

TEST(KeepElements, KeepsAnnotationsAndOrder) {
    XsdElement tree =
        treeOf(complexType("C", "<annotation><documentation>c</documentation></annotation>") +
               complexType("B", "") +
               complexType("A", "<annotation><documentation>a</documentation>"
                                "</annotation>"));
    tree.keepElements({"A", "C"});
    ASSERT_EQ(2u, tree.getSchema()->complexType().size());
    EXPECT_EQ("c", *tree.getSchema()->complexType()[0].annotation()->documentation());
    EXPECT_EQ("a", *tree.getSchema()->complexType()[1].annotation()->documentation());
}

// keepChildElement.

std::string filterableTypes() {
    return required("root", "A") +
           complexType("A", "<sequence>" + optional("b", "B") + optional("c", "C") +
                                required("d", "D") +
                                "<element name=\"e\" type=\"E\" minOccurs=\"2\"/></sequence>" +
                                extension("Base", "<sequence>" + optional("f", "F") +
                                                      optional("b2", "B") + "</sequence>")) +
           complexType("B", "") + complexType("C", "") + complexType("D", "") +
           complexType("E", "") + complexType("F", "") + complexType("Base", "") +
           complexType("Unused", "") + simpleType("UnusedToo");
}

TEST(KeepChildElement, TakesOptionalChildrenThatAreNotNamed) {
    XsdElement tree = treeOf(filterableTypes());
    tree.keepChildElement("A", {"c", "b2"}, false, false);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("c", "d", "e", "b2"));
    EXPECT_EQ(9u, tree.getXsdTree().size());
}

TEST(KeepChildElement, ComparesTypesInPlaceOfNames) {
    XsdElement tree = treeOf(filterableTypes());
    tree.keepChildElement("A", {"B", "c"}, true, false);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b", "d", "e", "b2"));
}

TEST(KeepChildElement, NeverTakesChildrenThatAreRequired) {
    XsdElement tree = treeOf(filterableTypes());
    tree.keepChildElement("A", {}, false, false);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("d", "e"));
    tree.keepChildElement("A", {}, true, false);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("d", "e"));
}

TEST(KeepChildElement, FiltersTheFirstTypeOfANameAlone) {
    XsdElement tree =
        treeOf(sequenceType("A", optional("x", "X")) + sequenceType("A", optional("y", "Y")) +
               sequenceType("B", optional("z", "Z")));
    tree.keepChildElement("A", {}, false, false);
    EXPECT_THAT(childNames(tree, "A"), IsEmpty());
    EXPECT_EQ(1u, tree.getSchema()->complexType()[1].sequence()->element().size());
    EXPECT_THAT(childNames(tree, "B"), ElementsAre("z"));
}

TEST(KeepChildElement, LooksNeitherAtChoicesNorAtInlineTypes) {
    XsdElement tree = treeOf(
        complexType("A", "<sequence><element name=\"i\">" + sequenceType("", optional("x", "X")) +
                             "</element></sequence><choice>" + optional("y", "Y") + "</choice>"));
    tree.keepChildElement("A", {}, false, true);
    const auto& type = tree.getSchema()->complexType()[0];
    EXPECT_EQ(1u, type.sequence()->element()[0].complexType()->sequence()->element().size());
    EXPECT_EQ(1u, type.choice()->element().size());
}

TEST(KeepChildElement, HasNoEffectForATypeThatIsNotDeclared) {
    XsdElement tree = treeOf(filterableTypes());
    tree.keepChildElement("Nowhere", {}, false, true);
    tree.keepChildElement("UnusedToo", {}, false, true);
    EXPECT_EQ(serialise(*parseSchema(filterableTypes())), serialise(*tree.getSchema()));
}

TEST(KeepChildElement, PrunesTypesThatNothingReachesAnyMore) {
    XsdElement tree = treeOf(filterableTypes());
    tree.keepChildElement("A", {"b"}, false, true);
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b", "d", "e"));
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "Base", "D", "E"));
    EXPECT_THAT(rootNames(tree), ElementsAre("root"));
}

TEST(KeepChildElement, PrunesNoTypeThatAnythingStillReaches) {
    XsdElement tree = treeOf(
        required("root", "R") + required("plain", "xs:int") +
        sequenceType("R", optional("a", "A") + optional("s", "S")) +
        sequenceType("A", optional("gone", "G") + optional("o", "O")) + complexType("G", "") +
        complexType("O", "<choice>" + optional("c", "C") +
                             "</choice><attribute name=\"t\" "
                             "type=\"T\" use=\"optional\"/>") +
        complexType("C", extension("Base", "<sequence>" + optional("g", "H") +
                                               "</sequence>"
                                               "<attribute name=\"u\" type=\"U\"/>")) +
        complexType("Base", "<complexContent><restriction base=\"Base2\"><attribute name=\"v\" "
                            "type=\"V\"/></restriction></complexContent>") +
        complexType("Base2", "") +
        sequenceType("H", "<element name=\"i\" minOccurs=\"0\">" +
                              sequenceType("", optional("j", "J")) + "</element>") +
        complexType("J", "") + simpleType("S", "S2") + simpleType("S2") + simpleType("T") +
        simpleType("U") + simpleType("V") + simpleType("W"));
    tree.keepChildElement("A", {"o"}, false, true);
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "Base", "Base2", "C", "H", "J", "O", "R", "S",
                                             "S2", "T", "U", "V"));
    // Only children of the edited type go.
    EXPECT_THAT(childNames(tree, "R"), ElementsAre("a", "s"));
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("o"));
    EXPECT_THAT(childNames(tree, "C"), ElementsAre("g"));
    EXPECT_EQ(2u, tree.getSchema()->element().size());
}

TEST(KeepChildElement, KeepsTheEditedTypeAndWhatItReachesWithoutARootElement) {
    XsdElement tree = treeOf(sequenceType("A", optional("b", "B") + optional("c", "C")) +
                             complexType("B", "") + complexType("C", "") + complexType("D", ""));
    tree.keepChildElement("A", {"b"}, false, true);
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B"));
}

// keepChildAttributes.

std::string typeWithAttributes() {
    const std::string attributes = "<attribute name=\"optional%\" use=\"optional\"/>"
                                   "<attribute name=\"listed%\" use=\"optional\"/>"
                                   "<attribute name=\"required%\" use=\"required\"/>"
                                   "<attribute name=\"other%\" use=\"Optional\"/>"
                                   "<attribute name=\"bare%\"/>"
                                   "<attribute use=\"optional\"/>";
    const auto numbered = [&attributes](char number) {
        std::string text = attributes;
        std::replace(text.begin(), text.end(), '%', number);
        return text;
    };
    return complexType("A", numbered('1') + extension("B", numbered('2')));
}

TEST(KeepChildAttributes, TakesOptionalAttributesThatAreNotNamed) {
    XsdElement tree = treeOf(typeWithAttributes() + typeWithAttributes());
    tree.keepChildAttributes("A", {"listed1", "listed2"});
    EXPECT_THAT(tree.getXsdTree().at("A")->attributes,
                ElementsAre("listed2", "required2", "other2", "bare2", "listed1", "required1",
                            "other1", "bare1"));
    EXPECT_EQ(6u, tree.getSchema()->complexType()[1].attribute().size());
}

TEST(KeepChildAttributes, HasNoEffectForATypeThatIsNotDeclared) {
    XsdElement tree = treeOf(typeWithAttributes());
    tree.keepChildAttributes("B", {});
    EXPECT_EQ(serialise(*parseSchema(typeWithAttributes())), serialise(*tree.getSchema()));
}

TEST(KeepChildAttributes, LeavesChildrenAndTypesAlone) {
    XsdElement tree = treeOf(complexType("A", "<sequence>" + optional("b", "B") +
                                                  "</sequence><attribute name=\"s\" type=\"S\" "
                                                  "use=\"optional\"/>") +
                             complexType("B", "") + simpleType("S"));
    tree.keepChildAttributes("A", {});
    EXPECT_THAT(tree.getXsdTree().at("A")->attributes, IsEmpty());
    EXPECT_THAT(childNames(tree, "A"), ElementsAre("b"));
    EXPECT_THAT(typeNames(tree), ElementsAre("A", "B", "S"));
}

} // namespace
} // namespace Orvant
