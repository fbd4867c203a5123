#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <GlobalLocale.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <cmath>

#include <stdexcept>

namespace Orvant {
namespace {

using Support::openBody;
using Support::readInt;
using Support::readString;
using Support::TestObject;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

std::string element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

/// An object of one int value A, -1 by default.
std::shared_ptr<TestObject> objectWithA(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) { object.add("A", -1); });
}

int valueOfA(const TestObject& object) {
    return object.value<int>("A").getValue();
}

/// Moves a reader and then gives up.
class FailingObject : public TestObject {
public:
    void loadContent(ConfigReader& reader) override {
        reader.tagExists("Elsewhere");
        throw std::runtime_error("cannot load");
    }
};

// Moving the current node.

TEST(SetCurrentNode, GoesDownToTheFirstChildOfTheName) {
    auto reader = openBody("<Other><A>0</A></Other><Test><A>1</A></Test><Test><A>2</A></Test>");
    EXPECT_EQ(success, reader.setCurrentNode("Test"));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(SetCurrentNode, StaysWhereThereIsNoChildOfTheName) {
    auto reader = openBody("<Test><Inner/><A>1</A></Test><A>2</A>");
    for (const std::string name : {"Missing", "Inner", "test", "Configuration", ""}) {
        EXPECT_EQ(failure, reader.setCurrentNode(name)) << name;
        EXPECT_EQ(2, readInt(reader, "A")) << name;
    }
}

TEST(SetCurrentNode, PrefersTheChildToAnEarlierGrandchild) {
    auto reader = openBody("<Other><Test><A>1</A></Test></Other><Test><A>2</A></Test>");
    EXPECT_EQ(success, reader.setCurrentNode("Test"));
    EXPECT_EQ(2, readInt(reader, "A"));
}

TEST(SetCurrentNode, GoesDownStepByStep) {
    auto reader = openBody("<A>0</A><L><A>1</A><L><A>2</A><L><A>3</A></L></L></L>");
    for (int depth = 0; depth < 3; ++depth) {
        EXPECT_EQ(depth, readInt(reader, "A"));
        EXPECT_EQ(success, reader.setCurrentNode("L"));
    }
    EXPECT_EQ(3, readInt(reader, "A"));
    EXPECT_EQ(failure, reader.setCurrentNode("L"));
}

struct KeyedCase : Support::TestCase {
    std::string body;
    std::string key;
    std::optional<int> found; ///< A of the element that becomes current; nothing on failure
};

class KeyedNode : public testing::TestWithParam<KeyedCase> {};

TEST_P(KeyedNode, BecomesCurrent) {
    auto reader = openBody(GetParam().body + "<A>-2</A>");
    EXPECT_EQ(GetParam().found ? success : failure,
              reader.setCurrentKeyedNode("P", GetParam().key));
    EXPECT_EQ(GetParam().found.value_or(-2), readInt(reader, "A"));
}

TEST_P(KeyedNode, LoadsAnObject) {
    auto reader = openBody(GetParam().body + "<A>-2</A>");
    const auto object = objectWithA();
    EXPECT_EQ(GetParam().found ? success : failure,
              reader.getClassContents("P", GetParam().key, *object));
    EXPECT_EQ(GetParam().found.value_or(-1), valueOfA(*object));
    EXPECT_EQ(-2, readInt(reader, "A")) << "the reader is where it was";
}

INSTANTIATE_TEST_SUITE_P(
    Keys, KeyedNode,
    testing::Values(
        KeyedCase{"Key", "<P key='A'><A>1</A></P><P key='B'><A>2</A></P>", "B", 2},
        KeyedCase{"FirstOfTwo", "<P key='A'><A>1</A></P><P key='A'><A>2</A></P>", "A", 1},
        KeyedCase{"KeyBehindTheDefault", "<P><A>1</A></P><P key='A'><A>2</A></P>", "A", 2},
        KeyedCase{"DefaultBetween", "<P key='A'><A>1</A></P><P><A>2</A></P><P key='B'><A>3</A></P>",
                  "C", 2},
        KeyedCase{"LastDefault", "<P><A>1</A></P><P><A>2</A></P>", "C", 2},
        KeyedCase{"EmptyKeyIsDefault", "<P key=''><A>1</A></P><P key='A'/>", "C", 1},
        KeyedCase{"NoDefault", "<P key='A'><A>1</A></P>", "C", std::nullopt},
        KeyedCase{"NoSuchName", "<Q key='A'><A>1</A></Q><Q><A>2</A></Q>", "A", std::nullopt},
        KeyedCase{"CaseOfKey", "<P key='a'><A>1</A></P>", "A", std::nullopt},
        KeyedCase{"BlankInKey", "<P key='A '><A>1</A></P>", "A", std::nullopt},
        KeyedCase{"Grandchild", "<Q><P key='A'><A>1</A></P></Q>", "A", std::nullopt},
        KeyedCase{"DefaultGrandchild", "<Q><P><A>1</A></P></Q>", "A", std::nullopt},
        KeyedCase{"ChildAndGrandchild", "<Q><P key='A'><A>1</A></P></Q><P key='A'><A>2</A></P>",
                  "A", 2},
        KeyedCase{"EntitiesInKey", "<P key='a&amp;&lt;&#65;'><A>1</A></P>", "a&<A", 1}),
    Support::nameOf<KeyedCase>);

TEST(SetCurrentKeyedNode, TakesTheLastChildWithoutAKeyOfManyToo) {
    for (const int count : {2, 20, 40, 200}) {
        std::string body;
        for (int i = 0; i < count; ++i)
            body += "<P>" + std::to_string(i) + "</P>";
        auto reader = openBody(body + "<P key='k'>keyed</P>");
        ASSERT_EQ(success, reader.setCurrentKeyedNode("P", "none"));
        std::string text;
        bool editable = false;
        reader.getString(text, editable);
        EXPECT_EQ(std::to_string(count - 1), text);
    }
}

TEST(TagExists, FindsAnElementHoweverManyStandBeforeIt) {
    std::string before;
    for (int count = 1; count < 140; ++count) {
        before += "<B/>";
        auto reader = openBody(before + "<Wanted><A>1</A></Wanted><Other/>");
        const auto object = objectWithA("Wanted");
        EXPECT_EQ(success, reader.findAndGetClassContents("Wanted", *object)) << count;
        EXPECT_EQ(1, valueOfA(*object)) << count;
        EXPECT_EQ(success, reader.tagExists("Wanted")) << count;
        EXPECT_EQ(1, readInt(reader, "A")) << count;
        auto last = openBody(before + "<Wanted/>");
        EXPECT_EQ(success, last.tagExists("Wanted")) << count;
        auto other = openBody("<S>" + before + "</S><Wanted/>");
        ASSERT_EQ(success, other.setCurrentNode("S"));
        std::vector<std::string> values;
        bool editable = false;
        std::map<std::string, bool> itemEditable;
        EXPECT_EQ(failure, other.getStringVector("Wanted", values, editable, itemEditable));
    }
}

TEST(TagExists, SearchesTheWholeDocumentAndMovesThere) {
    auto reader = openBody("<A>0</A><X><Y><Deep><A>1</A></Deep></Y></X><Deep><A>2</A></Deep>");
    EXPECT_EQ(success, reader.tagExists("Deep"));
    EXPECT_EQ(1, readInt(reader, "A")) << "the first in document order";
}

TEST(TagExists, SearchesFromTheRootWhereverTheReaderIs) {
    auto reader = openBody("<First><A>1</A></First><Second><A>2</A></Second>");
    ASSERT_EQ(success, reader.setCurrentNode("Second"));
    EXPECT_EQ(success, reader.tagExists("First"));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(TagExists, StaysWhereThereIsNone) {
    auto reader = openBody("<X><A>1</A></X>");
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    for (const std::string name : {"Missing", "x", "Configuration", ""}) {
        EXPECT_EQ(failure, reader.tagExists(name)) << name;
        EXPECT_EQ(1, readInt(reader, "A")) << name;
    }
}

TEST(TagExists, FindsAnElementNamedAsTheRootBelowIt) {
    auto reader = openBody("<A>0</A><X><Configuration><A>1</A></Configuration></X>");
    EXPECT_EQ(success, reader.tagExists("Configuration"));
    EXPECT_EQ(1, readInt(reader, "A"));
}

// Typed getters: which text they read.

struct TextCase : Support::TestCase {
    std::string content;             ///< of the element
    std::optional<std::string> text; ///< what getString() reads
    std::optional<int> number;       ///< what getInt() reads
};

class ElementText : public testing::TestWithParam<TextCase> {};

TEST_P(ElementText, IsThatOfTheFirstChild) {
    auto reader = openBody(element("E", GetParam().content),
                           "<!ENTITY seven '7'><!ENTITY around '&seven;8<b>9</b>'>");
    EXPECT_EQ(GetParam().text, readString(reader, "E"));
    EXPECT_EQ(GetParam().number, readInt(reader, "E"));

    std::string current = "before";
    bool editable = false;
    ASSERT_EQ(success, reader.setCurrentNode("E"));
    EXPECT_EQ(GetParam().text ? success : failure, reader.getString(current, editable));
    EXPECT_EQ(GetParam().text.value_or("before"), current);
    EXPECT_TRUE(editable) << "written whether there is a text or not";
}

INSTANTIATE_TEST_SUITE_P(
    Contents, ElementText,
    testing::Values(TextCase{"Text", "7", "7", 7}, TextCase{"Nothing", "", "", std::nullopt},
                    TextCase{"Blanks", " \t", " \t", std::nullopt},
                    TextCase{"NotTrimmed", "  7 ", "  7 ", 7},
                    TextCase{"LineBreaks", "\n  7\n", "\n  7\n", 7},
                    TextCase{"CharacterReference", "&#55;", "7", 7},
                    TextCase{"PredefinedEntity", "7&amp;8", "7&8", 7},
                    TextCase{"Comment", "<!-- c -->", std::nullopt, std::nullopt},
                    TextCase{"CommentBeforeText", "<!-- c -->7", std::nullopt, std::nullopt},
                    TextCase{"Cdata", "<![CDATA[7]]>", std::nullopt, std::nullopt},
                    TextCase{"EntityReference", "&seven;", std::nullopt, std::nullopt},
                    TextCase{"EntityReferenceBeforeText", "&seven;8", std::nullopt, std::nullopt},
                    TextCase{"NestedReferences", "&around;", std::nullopt, std::nullopt},
                    TextCase{"ElementInAnEntityBeforeText", "&around;7", std::nullopt,
                             std::nullopt},
                    TextCase{"ProcessingInstruction", "<?pi?>7", std::nullopt, std::nullopt},
                    TextCase{"ElementBeforeText", "<b/>7", std::nullopt, std::nullopt},
                    TextCase{"TextBeforeComment", "7<!-- c -->8", "7", 7},
                    TextCase{"TextBeforeCdata", "7<![CDATA[8]]>", "7", 7},
                    TextCase{"TextBeforeEntity", "7&seven;", "7", 7},
                    TextCase{"TextBetweenReferences", "7&around;8&seven;", "7", 7},
                    TextCase{"TextBeforeElement", "7<b>8</b>9", "7", 7}),
    Support::nameOf<TextCase>);

// Typed getters: how they convert.

/// What a getter reads from an element's text, nothing when it fails.
template <typename Value, typename Get>
std::optional<Value> read(const std::string& text, Get get) {
    auto reader = openBody(element("E", text));
    Value value{};
    bool editable = true;
    if (get(reader, value, editable) != success)
        return std::nullopt;
    return value;
}

std::optional<bool> boolOf(const std::string& text) {
    return read<bool>(text, [](auto& reader, bool& value, bool& editable) {
        return reader.getBool("E", value, editable);
    });
}

std::optional<int> intOf(const std::string& text) {
    return read<int>(text, [](auto& reader, int& value, bool& editable) {
        return reader.getInt("E", value, editable);
    });
}

std::optional<unsigned> unsignedOf(const std::string& text) {
    return read<unsigned>(text, [](auto& reader, unsigned& value, bool& editable) {
        return reader.getUnsignedInt("E", value, editable);
    });
}

std::optional<double> doubleOf(const std::string& text) {
    return read<double>(text, [](auto& reader, double& value, bool& editable) {
        return reader.getDouble("E", value, editable);
    });
}

std::optional<double> scientificOf(const std::string& text, int precision) {
    return read<double>(text, [precision](auto& reader, double& value, bool& editable) {
        return reader.getDoubleScientific("E", precision, value, editable);
    });
}

std::optional<float> floatOf(const std::string& text) {
    return read<float>(text, [](auto& reader, float& value, bool& editable) {
        return reader.getFloat("E", value, editable);
    });
}

TEST(GetBool, KnowsTwoTexts) {
    EXPECT_EQ(true, boolOf("true"));
    EXPECT_EQ(false, boolOf("false"));
    for (const std::string text :
         {" true", "true ", "True", "FALSE", "1", "0", "yes", "\nfalse", ""})
        EXPECT_EQ(std::nullopt, boolOf(text)) << text;
}

TEST(GetInt, ReadsTheNumberAtTheStart) {
    const std::map<std::string, int> numbers = {{"42", 42},
                                                {"-7", -7},
                                                {"+7", 7},
                                                {" \t\n 8", 8},
                                                {"42 apples", 42},
                                                {"12abc", 12},
                                                {"1.9", 1},
                                                {"1,000", 1},
                                                {"010", 10},
                                                {"0x10", 0},
                                                {"1e3", 1},
                                                {"-0", 0},
                                                {"2147483647", 2147483647},
                                                {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, number] : numbers) {
        EXPECT_EQ(number, intOf(text)) << text;
        EXPECT_EQ(static_cast<unsigned>(number), unsignedOf(text)) << text;
    }
}

TEST(GetInt, FailsWithoutANumberOfItsRange) {
    for (const std::string text : {"", "  ", "abc", "x1", "-", "--1", ".5", "2147483648",
                                   "-2147483649", "4294967295", "99999999999999999999"}) {
        EXPECT_EQ(std::nullopt, intOf(text)) << text;
        EXPECT_EQ(std::nullopt, unsignedOf(text)) << text;
    }
}

TEST(GetUnsignedInt, TakesTheBitsOfASignedNumber) {
    EXPECT_EQ(4294967295u, unsignedOf("-1"));
    EXPECT_EQ(2147483648u, unsignedOf("-2147483648"));
}

TEST(GetDouble, ReadsDecimalAndExponentNotation) {
    const std::map<std::string, double> numbers = {
        {"1.5", 1.5}, {"-2", -2.0},   {"1e3", 1000.0}, {"-1.5E-2", -0.015},
        {".5", 0.5},  {"5.", 5.0},    {" \n2.5", 2.5}, {"2.5mm", 2.5},
        {"1,5", 1.0}, {"1.5.5", 1.5}, {"0.1", 0.1},    {"1.7e308", 1.7e308}};
    for (const auto& [text, number] : numbers) {
        EXPECT_EQ(number, doubleOf(text)) << text;
        EXPECT_EQ(number, scientificOf(text, 10)) << text;
    }
}

TEST(GetDouble, FailsWithoutANumberOfItsRange) {
    for (const std::string text : {"", "  ", "abc", "-", ".", "e5", "1e400", "-1e400"}) {
        EXPECT_EQ(std::nullopt, doubleOf(text)) << text;
        EXPECT_EQ(std::nullopt, scientificOf(text, 10)) << text;
        EXPECT_EQ(std::nullopt, floatOf(text)) << text;
    }
}

TEST(GetDoubleScientific, IgnoresThePrecision) {
    for (const int precision : {-1, 0, 2, 1000})
        EXPECT_EQ(1.23456789, scientificOf("1.23456789", precision)) << precision;
}

TEST(GetFloat, NarrowsTheDouble) {
    EXPECT_EQ(0.1f, floatOf("0.1"));
    EXPECT_EQ(static_cast<float>(1.00000017881393432617), floatOf("1.00000017881393432617"));
    EXPECT_EQ(-2500.0f, floatOf(" -2.5e3 mm"));
}

TEST(TypedGetters, ReadTheSameInEveryLocale) {
    const Support::GlobalLocale locale;
    EXPECT_EQ(1234567, intOf("1234567"));
    EXPECT_EQ(1, intOf("1.234"));
    EXPECT_EQ(1234u, unsignedOf("1234"));
    EXPECT_EQ(1234.5, doubleOf("1234.5"));
    EXPECT_EQ(1.0, doubleOf("1,5"));
    EXPECT_EQ(1234.5, scientificOf("1.2345e3", 10));
    EXPECT_EQ(1.25f, floatOf("1.25"));
    EXPECT_EQ(true, boolOf("true"));
    EXPECT_EQ(std::nullopt, boolOf("wahr"));
}

// Typed getters: what they leave on failure, and the editable flag.

/// Calls every typed getter for an element. An output that a call does not write keeps its old
/// value.
struct AllGetters {
    static constexpr int getters = 8;

    explicit AllGetters(SimpleConfigReader& reader, const std::string& name, bool editableBefore) {
        const auto call = [&](auto get) {
            bool editable = editableBefore;
            if (get(editable) == success)
                ++successes;
            editables.push_back(editable);
        };
        call([&](bool& editable) { return reader.getBool(name, boolean, editable); });
        call([&](bool& editable) { return reader.getInt(name, integer, editable); });
        call(
            [&](bool& editable) { return reader.getUnsignedInt(name, unsignedInteger, editable); });
        call([&](bool& editable) { return reader.getDouble(name, number, editable); });
        call([&](bool& editable) {
            return reader.getDoubleScientific(name, 10, scientific, editable);
        });
        call([&](bool& editable) { return reader.getFloat(name, single, editable); });
        call([&](bool& editable) { return reader.getString(name, text, editable); });
        call([&](bool& editable) {
            return reader.getStringVector(name, list, editable, itemEditable);
        });
    }

    void expectTextsUnchanged() const {
        EXPECT_TRUE(boolean);
        EXPECT_EQ(-17, integer);
        EXPECT_EQ(0.25, number);
        EXPECT_EQ(0.5, scientific);
        EXPECT_EQ("before", text);
    }

    bool boolean = true;
    int integer = -17;
    unsigned unsignedInteger = 17;
    double number = 0.25;
    double scientific = 0.5;
    float single = 0.75f;
    std::string text = "before";
    std::vector<std::string> list = {"before"};
    std::map<std::string, bool> itemEditable = {{"before", false}};

    int successes = 0;
    std::vector<bool> editables; ///< in the order of the calls
};

TEST(TypedGetters, FailWithoutAChildOfTheName) {
    auto reader = openBody("<X><Nested>true</Nested></X><e>true</e>");
    for (const std::string name : {"E", "Configuration", ""}) {
        const AllGetters got(reader, name, false);
        EXPECT_EQ(0, got.successes) << name;
        got.expectTextsUnchanged();
        EXPECT_THAT(got.list, IsEmpty()) << name;
        EXPECT_THAT(got.itemEditable, IsEmpty()) << name;
        EXPECT_EQ(std::vector(AllGetters::getters, false), got.editables) << name;
    }
}

TEST(TypedGetters, LookAmongTheChildrenOnly) {
    auto reader = openBody("<X><E>5</E></X><E>7</E><X><E>9</E></X>");
    EXPECT_EQ(7, readInt(reader, "E"));
    EXPECT_EQ("7", readString(reader, "E"));

    auto withoutChild = openBody("<X><E>5</E></X>");
    const AllGetters got(withoutChild, "E", false);
    EXPECT_EQ(1, got.successes) << "lists are looked up at any depth";
    got.expectTextsUnchanged();
}

TEST(TypedGetters, ReadTheFirstOfTwo) {
    auto reader = openBody("<E>1</E><E>2</E>");
    EXPECT_EQ(1, readInt(reader, "E"));
    auto unreadable = openBody("<E>x</E><E>2</E>");
    EXPECT_EQ(std::nullopt, readInt(unreadable, "E"));
}

TEST(TypedGetters, ReadBelowTheCurrentNode) {
    auto reader = openBody("<E>1</E><X><E>2</E></X>");
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    EXPECT_EQ(2, readInt(reader, "E"));
}

TEST(TypedGetters, LeaveTheCurrentNodeWhereItIs) {
    auto reader = openBody("<E><F>1</F></E><F>2</F>");
    const AllGetters got(reader, "E", true);
    EXPECT_EQ(2, readInt(reader, "F"));
}

TEST(TypedGetters, WriteTheFlagOnceThereIsAText) {
    auto reader = openBody("<E editable='false'>neither bool nor number</E>");
    const AllGetters got(reader, "E", true);
    EXPECT_EQ(2, got.successes) << "string and list";
    EXPECT_EQ("neither bool nor number", got.text);
    EXPECT_EQ(std::vector(AllGetters::getters, false), got.editables);
}

TEST(TypedGetters, KeepTheFlagWithoutAText) {
    auto reader = openBody("<E editable='false'><!-- c -->true</E>");
    const AllGetters got(reader, "E", true);
    EXPECT_EQ(1, got.successes) << "the list";
    got.expectTextsUnchanged();
    EXPECT_THAT(got.editables, ElementsAre(true, true, true, true, true, true, false, false))
        << "string and list write it first";
}

TEST(EditableFlag, IsFalseForOneTextOnly) {
    const std::map<std::string, bool> attributes = {{"", true},
                                                    {"editable='false'", false},
                                                    {"editable='true'", true},
                                                    {"editable=''", true},
                                                    {"editable='False'", true},
                                                    {"editable='FALSE'", true},
                                                    {"editable=' false'", true},
                                                    {"editable='0'", true},
                                                    {"editable='no'", true},
                                                    {"Editable='false'", true}};
    for (const auto& [attribute, expected] : attributes) {
        auto reader = openBody("<E " + attribute + ">1</E>");
        const AllGetters got(reader, "E", !expected);
        EXPECT_EQ(std::vector(AllGetters::getters, expected), got.editables) << attribute;

        ASSERT_EQ(success, reader.setCurrentNode("E"));
        bool editable = !expected;
        EXPECT_EQ(success, reader.getEditable(editable));
        EXPECT_EQ(expected, editable) << attribute;
    }
}

TEST(EditableFlag, OfTheCurrentNodeIsNotThatOfAnother) {
    auto reader = openBody("<X editable='false'><E>1</E></X>");
    bool editable = false;
    EXPECT_EQ(success, reader.getEditable(editable));
    EXPECT_TRUE(editable) << "the root";
    ASSERT_EQ(success, reader.tagExists("E"));
    EXPECT_EQ(success, reader.getEditable(editable));
    EXPECT_TRUE(editable) << "a parent's flag is not inherited";
}

// Lists of strings.

struct List {
    explicit List(SimpleConfigReader& reader, const std::string& name = "L")
        : result(reader.getStringVector(name, values, editable, itemEditable)) {}
    explicit List(SimpleConfigReader&& reader, const std::string& name = "L")
        : List(reader, name) {}

    std::vector<std::string> values = {"before"};
    std::map<std::string, bool> itemEditable = {{"before", false}};
    bool editable = true;
    ConfigurationAccessResult result;
};

TEST(GetStringVector, ReadsTheItemsInOrder) {
    const List list(openBody("<L>\n <item>b</item>\n <item> a </item><!-- c -->\n <item/></L>"));
    EXPECT_EQ(success, list.result);
    EXPECT_THAT(list.values, ElementsAre("b", " a ", ""));
    EXPECT_THAT(list.itemEditable,
                UnorderedElementsAre(Pair(" a ", true), Pair("b", true), Pair("", true)))
        << "the texts as they stand";
}

TEST(GetStringVector, IsEmptyWithoutItems) {
    for (const std::string content : {"", "text", "<Item>a</Item>", "<!-- c -->"}) {
        const List list(openBody(element("L", content)));
        EXPECT_EQ(success, list.result) << content;
        EXPECT_THAT(list.values, IsEmpty()) << content;
        EXPECT_THAT(list.itemEditable, IsEmpty()) << content;
    }
}

TEST(GetStringVector, ClearsItsOutputsWithoutTheList) {
    const List list(openBody("<M><item>a</item></M>"));
    EXPECT_EQ(failure, list.result);
    EXPECT_THAT(list.values, IsEmpty());
    EXPECT_THAT(list.itemEditable, IsEmpty());
}

TEST(GetStringVector, TellsTheFlagsOfListAndItems) {
    const List list(openBody("<L editable='false'><item>a</item>"
                             "<item editable='false'>b</item></L>"));
    EXPECT_FALSE(list.editable);
    EXPECT_THAT(list.itemEditable, UnorderedElementsAre(Pair("a", true), Pair("b", false)));
}

TEST(GetStringVector, KeepsTheFlagOfTheLastItemOfAText) {
    const List list(openBody("<L><item editable='false'>a</item><item>a</item>"
                             "<item>b</item><item editable='false'>b</item></L>"));
    EXPECT_THAT(list.values, ElementsAre("a", "a", "b", "b"));
    EXPECT_THAT(list.itemEditable, UnorderedElementsAre(Pair("a", true), Pair("b", false)));
}

TEST(GetStringVector, FindsListAndItemsAtAnyDepth) {
    auto reader = openBody("<X><Y><L><g><item>a</item></g><item>b<item>c</item></item></L></Y></X>"
                           "<L><item>d</item></L>");
    EXPECT_THAT(List(reader).values, ElementsAre("a", "b", "c")) << "the first in document order";
}

TEST(GetStringVector, SearchesBelowTheCurrentNodeOnly) {
    auto reader = openBody("<L><item>a</item></L><X><L><item>b</item></L></X><Y/>");
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    EXPECT_THAT(List(reader).values, ElementsAre("b"));
    EXPECT_EQ(failure, List(reader, "X").result) << "the current node is not below itself";
    ASSERT_EQ(success, reader.tagExists("Y"));
    EXPECT_EQ(failure, List(reader).result);
}

TEST(GetStringVector, StopsAtAnItemWithoutText) {
    for (const std::string content :
         {"<!-- c -->x", "<![CDATA[x]]>", "<b>x</b>", "<?pi?>", "&x;"}) {
        const List list(openBody("<L editable='false'><item>a</item>" + element("item", content) +
                                     "<item>b</item></L>",
                                 "<!ENTITY x 'x'>"));
        EXPECT_EQ(failure, list.result) << content;
        EXPECT_THAT(list.values, ElementsAre("a")) << content;
        EXPECT_THAT(list.itemEditable, ElementsAre(Pair("a", true))) << content;
        EXPECT_FALSE(list.editable) << content;
    }
}

TEST(GetStrings, AnswersAsGetStringVector) {
    for (const std::string body :
         {"<L>\n <item>b</item>\n <item> a </item><!-- c -->\n <item/></L>", "<L/>", "<L>text</L>",
          "<L editable='false'><item>a</item><item editable='false'>b</item></L>",
          "<L><item>a</item><item>a</item></L>", "<M><item>a</item></M>",
          "<X><L><g><item>a</item></g></L></X>",
          "<L editable='false'><item>a</item><item><b>x</b></item><item>b</item></L>"}) {
        auto reader = openBody(body);
        const List list(reader);
        std::vector<std::string> texts = {"before"};
        bool editable = true;
        EXPECT_EQ(list.result, reader.getStrings("L", texts, editable)) << body;
        EXPECT_EQ(list.values, texts) << body;
        EXPECT_EQ(list.editable, editable) << body;
    }
}

/// Has lists of its own.
class ReaderOfOtherLists : public SimpleConfigReader {
public:
    using SimpleConfigReader::SimpleConfigReader;

    ConfigurationAccessResult getStringVector(const std::string& name,
                                              std::vector<std::string>& values, bool& editable,
                                              std::map<std::string, bool>&) override {
        values = {"other " + name};
        editable = false;
        return success;
    }
};

TEST(GetStrings, AsksAnOverrideOfGetStringVector) {
    ReaderOfOtherLists reader(FileName(), Support::configuration("<T><L><item>a</item></L></T>"),
                              {"1.0"});
    std::vector<std::string> texts;
    bool editable = true;
    EXPECT_EQ(success, reader.getStrings("L", texts, editable));
    EXPECT_THAT(texts, ElementsAre("other L"));
    EXPECT_FALSE(editable);
    const auto object = TestObject::make(
        "T", [](TestObject& fresh) { fresh.add("L", std::vector<std::string>{"default"}); });
    EXPECT_EQ(success, reader.getClassContents("T", *object));
    EXPECT_THAT(object->value<std::vector<std::string>>("L").getValue(), ElementsAre("other L"));
    EXPECT_FALSE(object->value<std::vector<std::string>>("L").isEditable());
}

// Keys.

TEST(GetKeys, AddsThoseOfTheChildren) {
    auto reader = openBody("<P key='b'/><P key='a'/><P/><P key='a'/><Q key='q'/>"
                           "<X><P key='nested'/></X>");
    std::set<std::string> keys = {"kept"};
    EXPECT_EQ(success, reader.getKeys("P", keys));
    EXPECT_THAT(keys, ElementsAre("", "a", "b", "kept"));
}

TEST(GetKeys, SucceedsWithoutAny) {
    auto reader = openBody("<X><P key='nested'/></X>");
    std::set<std::string> keys = {"kept"};
    EXPECT_EQ(success, reader.getKeys("P", keys));
    EXPECT_THAT(keys, ElementsAre("kept"));
}

// Loading objects.

TEST(GetClassContents, LoadsFromTheCurrentNode) {
    auto reader = openBody("<A>1</A><X><A>2</A></X>");
    const auto object = objectWithA();
    EXPECT_EQ(success, reader.getClassContents(*object));
    EXPECT_EQ(1, valueOfA(*object));
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    EXPECT_EQ(success, reader.getClassContents(*object));
    EXPECT_EQ(2, valueOfA(*object));
}

TEST(GetClassContents, SucceedsAlthoughNothingIsThere) {
    auto reader = openBody("");
    const auto object = objectWithA();
    EXPECT_EQ(success, reader.getClassContents(*object));
    EXPECT_EQ(-1, valueOfA(*object));
}

TEST(GetClassContents, LoadsFromTheFirstChildOfTheName) {
    auto reader = openBody("<A>0</A><X><T><A>1</A></T></X><T><A>2</A></T><T><A>3</A></T>");
    const auto object = objectWithA("AnyName");
    EXPECT_EQ(success, reader.getClassContents("T", *object));
    EXPECT_EQ(2, valueOfA(*object));
    EXPECT_EQ(0, readInt(reader, "A")) << "the reader is where it was";
}

TEST(GetClassContents, LeavesTheObjectWhereThereIsNoChild) {
    auto reader = openBody("<A>0</A><X><T><A>1</A></T></X>");
    const auto object = objectWithA("T");
    object->value<int>("A").setValue(5);
    EXPECT_EQ(failure, reader.getClassContents("T", *object));
    EXPECT_EQ(5, valueOfA(*object));
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(GetClassContents, LoadsChildrenFromNestedElements) {
    auto reader = openBody("<A>0</A><T><A>1</A><C><A>2</A><D><A>3</A></D></C></T>");
    const auto object = objectWithA("T");
    object->addChild(new TestObject(*objectWithA("C")));
    object->child("C").addChild(new TestObject(*objectWithA("D")));
    object->addChild(new TestObject(*objectWithA("")));
    EXPECT_EQ(success, reader.getClassContents("T", *object));
    EXPECT_EQ(1, valueOfA(*object));
    EXPECT_EQ(2, valueOfA(object->child("C")));
    EXPECT_EQ(3, valueOfA(object->child("C").child("D")));
    EXPECT_EQ(1, valueOfA(object->child(""))) << "a child without a name has its parent's element";
    EXPECT_EQ(0, readInt(reader, "A"));
}

struct KeyedObjects {
    explicit KeyedObjects(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            owners.push_back(objectWithA());
            objects.push_back(owners.back().get());
        }
    }
    std::vector<int> values() const {
        std::vector<int> result;
        for (const auto& object : owners)
            result.push_back(valueOfA(*object));
        return result;
    }

    std::vector<std::shared_ptr<TestObject>> owners;
    std::vector<ConfigurationObject*> objects;
};

const std::string keyedBody =
    "<A>0</A><P key='a'><A>1</A></P><P><A>2</A></P><P key='b'><A>3</A></P>"
    "<X><P key='c'><A>4</A></P></X>";

TEST(GetClassContentsOfKeys, LoadsEachObjectFromItsKey) {
    auto reader = openBody(keyedBody);
    KeyedObjects loaded(2);
    EXPECT_EQ(success, reader.getClassContents("P", {"b", "a"}, loaded.objects));
    EXPECT_THAT(loaded.values(), ElementsAre(3, 1));
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(GetClassContentsOfKeys, LoadsTheOthersWhereOneIsMissing) {
    auto reader = openBody(keyedBody);
    KeyedObjects loaded(3);
    EXPECT_EQ(failure, reader.getClassContents("P", {"a", "c", "b"}, loaded.objects));
    EXPECT_THAT(loaded.values(), ElementsAre(1, -1, 3))
        << "neither the default entry nor a grandchild stands in";
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(GetClassContentsOfKeys, CountsKeysWithoutObjectsAsMissing) {
    auto reader = openBody(keyedBody);
    KeyedObjects loaded(1);
    EXPECT_EQ(failure, reader.getClassContents("P", {"a", "b"}, loaded.objects));
    EXPECT_THAT(loaded.values(), ElementsAre(1));
}

TEST(GetClassContentsOfKeys, LeavesObjectsWithoutKeys) {
    auto reader = openBody(keyedBody);
    KeyedObjects loaded(2);
    EXPECT_EQ(success, reader.getClassContents("P", {"a"}, loaded.objects));
    EXPECT_THAT(loaded.values(), ElementsAre(1, -1));
    EXPECT_EQ(success, reader.getClassContents("P", std::vector<std::string>(), loaded.objects));
}

TEST(KeyedNodes, AreFoundByAKeyThatADocumentCannotHoldAsItWasWritten) {
    const std::string key = "a\x01";
    auto reader = openBody("<P><A>0</A></P><P key='a\xEF\xBF\xBD'><A>1</A></P>");
    KeyedObjects loaded(1);
    EXPECT_EQ(success, reader.getClassContents("P", {key}, loaded.objects));
    EXPECT_THAT(loaded.values(), ElementsAre(1));
    const auto byKey = objectWithA();
    EXPECT_EQ(success, reader.getClassContents("P", key, *byKey));
    EXPECT_EQ(1, valueOfA(*byKey));
    const auto found = objectWithA();
    EXPECT_EQ(success, reader.findAndGetClassContents("P", key, *found));
    EXPECT_EQ(1, valueOfA(*found));
    EXPECT_EQ(success, reader.setCurrentKeyedNode("P", key));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(FindAndGetClassContents, SearchesTheWholeDocument) {
    auto reader = openBody("<X><A>0</A></X><Y><Z><T><A>1</A></T></Z></Y><T><A>2</A></T>");
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    const auto object = objectWithA();
    EXPECT_EQ(success, reader.findAndGetClassContents("T", *object));
    EXPECT_EQ(1, valueOfA(*object)) << "the first in document order";
    EXPECT_EQ(0, readInt(reader, "A")) << "the reader is where it was";
}

TEST(FindAndGetClassContents, SearchesTheWholeDocumentForAKey) {
    auto reader = openBody("<A>0</A><T><A>1</A></T><Y><T key='a'><A>2</A></T></Y>"
                           "<T key='b'><A>3</A></T><T key='a'><A>4</A></T>");
    const auto object = objectWithA();
    EXPECT_EQ(success, reader.findAndGetClassContents("T", "a", *object));
    EXPECT_EQ(2, valueOfA(*object));
    EXPECT_EQ(success, reader.findAndGetClassContents("T", "b", *object));
    EXPECT_EQ(3, valueOfA(*object));
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(FindAndGetClassContents, LeavesTheObjectWhereThereIsNone) {
    auto reader = openBody("<A>0</A><T><A>1</A></T><T key='a'><A>2</A></T>");
    const auto object = objectWithA();
    EXPECT_EQ(failure, reader.findAndGetClassContents("Missing", *object));
    EXPECT_EQ(failure, reader.findAndGetClassContents("Configuration", *object));
    EXPECT_EQ(failure, reader.findAndGetClassContents("T", "b", *object)) << "no default entry";
    EXPECT_EQ(-1, valueOfA(*object));
    EXPECT_EQ(0, readInt(reader, "A"));
}

struct LoadCase : Support::TestCase {
    std::function<void(SimpleConfigReader&, ConfigurationObject&)> load;
};

class FailingLoad : public testing::TestWithParam<LoadCase> {};

TEST_P(FailingLoad, LeavesTheReaderWhereItWas) {
    auto reader = openBody("<X><A>1</A><T key='a'><A>2</A></T></X><Elsewhere><A>3</A></Elsewhere>");
    ASSERT_EQ(success, reader.setCurrentNode("X"));
    FailingObject object;
    EXPECT_THROW(GetParam().load(reader, object), std::runtime_error);
    EXPECT_EQ(1, readInt(reader, "A"));
}

INSTANTIATE_TEST_SUITE_P(
    Operations, FailingLoad,
    testing::Values(
        LoadCase{"Current", [](auto& reader, auto& object) { reader.getClassContents(object); }},
        LoadCase{"Name", [](auto& reader, auto& object) { reader.getClassContents("T", object); }},
        LoadCase{"Key",
                 [](auto& reader, auto& object) { reader.getClassContents("T", "a", object); }},
        LoadCase{"Keys",
                 [](auto& reader, auto& object) {
                     std::vector<ConfigurationObject*> objects = {&object};
                     reader.getClassContents("T", std::vector<std::string>{"a"}, objects);
                 }},
        LoadCase{"Find",
                 [](auto& reader, auto& object) { reader.findAndGetClassContents("T", object); }},
        LoadCase{
            "FindKey",
            [](auto& reader, auto& object) { reader.findAndGetClassContents("T", "a", object); }}),
    Support::nameOf<LoadCase>);

// Creating an object for each key.

const std::string namedBody = "<A>0</A><P key='b'><A>1</A></P><Q key='q'/><P><A>2</A></P>"
                              "<X><P key='nested'/></X><P key='a'><A>3</A></P><P key='b'/>";

TEST(CreateConfigurationObjects, CallsBackForEachKeyInDocumentOrder) {
    auto reader = openBody(namedBody);
    std::vector<std::string> keys;
    EXPECT_EQ(success, reader.createConfigurationObjects(
                           "P", [&](std::string key) { keys.push_back(std::move(key)); }));
    EXPECT_THAT(keys, ElementsAre("b", "", "a", "b"));
}

TEST(CreateConfigurationObjects, IsAtTheElementDuringTheCall) {
    auto reader = openBody(namedBody);
    std::vector<std::optional<int>> values;
    reader.createConfigurationObjects(
        "P", [&](const std::string&) { values.push_back(readInt(reader, "A")); });
    EXPECT_THAT(values, ElementsAre(1, 2, 3, std::nullopt));
    EXPECT_EQ(0, readInt(reader, "A")) << "the reader is where it was";
}

TEST(CreateConfigurationObjects, GoesOnWhereverACallMovesTheReader) {
    auto reader = openBody(namedBody);
    int calls = 0;
    const auto move = [&](const std::string&) {
        ++calls;
        reader.tagExists("X");
    };
    EXPECT_EQ(success, reader.createConfigurationObjects("P", move));
    EXPECT_EQ(4, calls);
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(CreateConfigurationObjects, FailsWithoutACall) {
    auto reader = openBody(namedBody);
    const auto call = [](const std::string&) { FAIL(); };
    for (const std::string name : {"Missing", "nested", "Configuration"})
        EXPECT_EQ(failure, reader.createConfigurationObjects(name, call)) << name;
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(CreateConfigurationObjects, IsWhereItWasAfterACallThatThrows) {
    auto reader = openBody(namedBody);
    const auto call = [](const std::string&) { throw std::runtime_error("cannot create"); };
    EXPECT_THROW(reader.createConfigurationObjects("P", call), std::runtime_error);
    EXPECT_EQ(0, readInt(reader, "A"));
}

TEST(CreateConfigurationObjects, ReleasesTheCallbackAtItsEnd) {
    auto reader = openBody(namedBody);
    const auto token = std::make_shared<int>();
    std::function<void(std::string)> callback = [token](const std::string&) {};
    reader.createConfigurationObjects("P", std::move(callback));
    EXPECT_EQ(1, token.use_count());
}

TEST(SimpleConfigReader, OverwritesUnsignedAndFloatEvenWhereNothingIsRead) {
    SimpleConfigReader reader(FileName(), "<Configuration/>", {""});
    bool editable = true;
    unsigned int first = 7;
    unsigned int second = 8;
    EXPECT_EQ(ConfigurationAccessResult::Failure, reader.getUnsignedInt("A", first, editable));
    EXPECT_EQ(ConfigurationAccessResult::Failure, reader.getUnsignedInt("A", second, editable));
    EXPECT_EQ(first, second);
    float firstFloat = 7.0F;
    float secondFloat = 8.0F;
    EXPECT_EQ(ConfigurationAccessResult::Failure, reader.getFloat("A", firstFloat, editable));
    EXPECT_EQ(ConfigurationAccessResult::Failure, reader.getFloat("A", secondFloat, editable));
    EXPECT_EQ(firstFloat, secondFloat);
}

TEST(SimpleConfigReader, NarrowsADoubleBeyondTheRangeOfAFloat) {
    SimpleConfigReader reader(FileName(), "<Configuration><A>1e300</A></Configuration>", {""});
    bool editable = true;
    float value = 0.0F;
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.getFloat("A", value, editable));
    EXPECT_TRUE(std::isinf(value));
}

TEST(SimpleConfigReader, TakesTheFirstElementWithoutAKeyForTheEmptyKey) {
    SimpleConfigReader reader(FileName(),
                              "<Configuration><A key='k'>1</A><A key=''>2</A><A>3</A>"
                              "</Configuration>",
                              {""});
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.setCurrentKeyedNode("A", ""));
    std::string value;
    bool editable = true;
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.getString(value, editable));
    EXPECT_EQ("2", value);
}

} // namespace
} // namespace Orvant
