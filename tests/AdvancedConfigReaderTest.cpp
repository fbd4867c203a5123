#include <ConfigurationFramework/AdvancedConfigReader.h>

#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

namespace Orvant {
namespace {

using Support::configuration;
using Support::readInt;
using Support::readString;
using Support::TemporaryDirectory;
using Support::TestObject;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

constexpr auto byDefault = AdvancedConfigReader::Default;
constexpr auto system = AdvancedConfigReader::System;
constexpr auto user = AdvancedConfigReader::User;

using Nodes = std::list<std::string>;

/// A reader over documents with these bodies.
class Layers : public AdvancedConfigReader {
public:
    explicit Layers(const std::map<Priority, std::string>& bodies) {
        for (const auto& [priority, body] : bodies)
            EXPECT_EQ(success, addBody(priority, body));
    }
    ConfigurationAccessResult addBody(Priority priority, const std::string& body,
                                      const Nodes& nodePath = {}) {
        return addStringSource(configuration(body), nodePath, priority, {"1.0"});
    }
};

TEST(AdvancedConfigReader, NumbersItsPriorities) {
    EXPECT_EQ(0, AdvancedConfigReader::Priority::Default);
    EXPECT_EQ(1, AdvancedConfigReader::Priority::System);
    EXPECT_EQ(2, AdvancedConfigReader::Priority::User);
    EXPECT_EQ(sizeof(int), sizeof(AdvancedConfigReader::Priority));
}

// Sources.

TEST(AddSource, ReadsAFile) {
    const TemporaryDirectory directory;
    AdvancedConfigReader reader;
    EXPECT_EQ(success, reader.addFileSource(directory.file("system.xml", configuration("<A>1</A>")),
                                            {}, system, {"0.9", "1.0"}));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(AddSource, FailsWithoutAReadableDocument) {
    const TemporaryDirectory directory;
    const std::vector<FileName> files = {
        directory.file("missing.xml"),
        directory.path().string(),
        FileName(std::string("a\0b", 3)),
        directory.file("broken.xml", "<Configuration"),
        directory.file("root.xml", "<Settings version='1.0'/>"),
        directory.file("version.xml", "<Configuration version='2.0'/>"),
        FileName()};
    Layers reader({{system, "<A>1</A>"}});
    for (const FileName& file : files) {
        EXPECT_EQ(failure, reader.addFileSource(file, {}, system, {"1.0"})) << file.toString();
        EXPECT_EQ(1, readInt(reader, "A")) << "the source that was there";
    }
    for (const std::string content : {"", "<Configuration", "<Settings version='1.0'/>"})
        EXPECT_EQ(failure, reader.addStringSource(content, {}, system, {"1.0"})) << content;
    EXPECT_EQ(failure, reader.addStringSource(configuration(""), {}, system, {}));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(AddSource, GoesDownTheNodePath) {
    AdvancedConfigReader reader;
    const std::string document = configuration("<A>0</A><X><A>1</A><Y><A>2</A></Y></X>");
    EXPECT_EQ(success, reader.addStringSource(document, {"X", "Y"}, system, {"1.0"}));
    EXPECT_EQ(2, readInt(reader, "A"));
    EXPECT_EQ(success, reader.addStringSource(document, {"X"}, user, {"1.0"}));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(AddSource, FailsWhereTheNodePathLeadsNowhere) {
    Layers reader({{system, "<A>1</A>"}, {user, "<A>2</A>"}});
    for (const Nodes& path : {Nodes{"Missing"}, Nodes{"X", "Missing"}, Nodes{"Y"}}) {
        EXPECT_EQ(failure, reader.addBody(user, "<X><Y><A>3</A></Y></X>", path));
        EXPECT_EQ(2, readInt(reader, "A")) << "the source that was there";
    }
}

TEST(AddSource, ReplacesTheSourceOfThePriority) {
    Layers reader({{system, "<A>1</A><B>1</B>"}});
    EXPECT_EQ(success, reader.addBody(system, "<A>2</A>"));
    EXPECT_EQ(2, readInt(reader, "A"));
    EXPECT_EQ(std::nullopt, readInt(reader, "B"));
}

TEST(AddSource, KeepsThePrioritiesWhateverTheOrderOfTheCalls) {
    AdvancedConfigReader reader;
    for (const auto priority : {user, byDefault, system})
        EXPECT_EQ(success,
                  reader.addStringSource(configuration("<A>" + std::to_string(priority) + "</A>"),
                                         {}, priority, {"1.0"}));
    EXPECT_EQ(static_cast<int>(user), readInt(reader, "A"));
}

TEST(AdvancedConfigReader, FailsWithoutSources) {
    AdvancedConfigReader reader;
    bool flag = true;
    bool boolean = true;
    double number = 0.5;
    float single = 0;
    unsigned unsignedInteger = 0;
    std::vector<std::string> list = {"before"};
    std::map<std::string, bool> itemEditable;
    std::set<std::string> keys;
    TestObject object;
    std::vector<ConfigurationObject*> objects = {&object};
    EXPECT_EQ(failure, reader.getBool("A", boolean, flag));
    EXPECT_EQ(std::nullopt, readInt(reader, "A"));
    EXPECT_EQ(failure, reader.getUnsignedInt("A", unsignedInteger, flag));
    EXPECT_EQ(failure, reader.getDouble("A", number, flag));
    EXPECT_EQ(failure, reader.getDoubleScientific("A", 3, number, flag));
    EXPECT_EQ(failure, reader.getFloat("A", single, flag));
    EXPECT_EQ(std::nullopt, readString(reader, "A"));
    EXPECT_EQ(failure, reader.getStringVector("A", list, flag, itemEditable));
    EXPECT_EQ(failure, reader.tagExists("A"));
    EXPECT_EQ(failure, reader.getEditable(flag));
    EXPECT_EQ(failure, reader.getKeys("A", keys));
    EXPECT_EQ(failure, reader.createConfigurationObjects("A", [](const std::string&) { FAIL(); }));
    EXPECT_EQ(failure, reader.getClassContents(object));
    EXPECT_EQ(failure, reader.getClassContents("A", object));
    EXPECT_EQ(failure, reader.getClassContents("A", "k", object));
    EXPECT_EQ(failure, reader.getClassContents("A", {"k"}, objects));
    EXPECT_EQ(failure, reader.findAndGetClassContents("A", object));
    EXPECT_EQ(failure, reader.findAndGetClassContents("A", "k", object));
    EXPECT_EQ(0, object.signals);
    EXPECT_THAT(list, ElementsAre("before")) << "no source, none that clears";
    EXPECT_TRUE(boolean);
    EXPECT_EQ(0.5, number);
}

// Values.

struct ValueCase : Support::TestCase {
    std::map<AdvancedConfigReader::Priority, std::string> bodies;
    std::optional<int> value;
};

class LayeredValue : public testing::TestWithParam<ValueCase> {};

TEST_P(LayeredValue, IsThatOfTheHighestSourceThatHoldsOne) {
    Layers reader(GetParam().bodies);
    EXPECT_EQ(GetParam().value, readInt(reader, "A"));
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, LayeredValue,
    testing::Values(
        ValueCase{"SystemOnly", {{system, "<A>1</A>"}, {user, ""}}, 1},
        ValueCase{"UserOnly", {{system, ""}, {user, "<A>2</A>"}}, 2},
        ValueCase{"Both", {{system, "<A>1</A>"}, {user, "<A>2</A>"}}, 2},
        ValueCase{"Neither", {{system, ""}, {user, ""}}, std::nullopt},
        ValueCase{"DefaultOnly", {{byDefault, "<A>0</A>"}, {system, ""}, {user, ""}}, 0},
        ValueCase{"SystemOverDefault", {{byDefault, "<A>0</A>"}, {system, "<A>1</A>"}}, 1},
        ValueCase{"UserOverDefault", {{byDefault, "<A>0</A>"}, {user, "<A>2</A>"}}, 2},
        ValueCase{"UserUnreadable", {{system, "<A>1</A>"}, {user, "<A>x</A>"}}, 1},
        ValueCase{"SystemUnreadable", {{system, "<A>x</A>"}, {user, "<A>2</A>"}}, 2}),
    Support::nameOf<ValueCase>);

TEST(AdvancedConfigReader, LayersEveryType) {
    Layers reader({{system, "<B>false</B><D>1.5</D><S>s</S><U>1</U><F>2.5</F>"
                            "<L><item>s</item></L>"},
                   {user, "<B>true</B><D>2.5</D><S>u</S><U>-1</U><F>0.1</F>"
                          "<L editable='false'><item editable='false'>u</item></L>"}});
    bool editable = true;
    bool boolean = false;
    EXPECT_EQ(success, reader.getBool("B", boolean, editable));
    EXPECT_TRUE(boolean);
    double number = 0;
    EXPECT_EQ(success, reader.getDouble("D", number, editable));
    EXPECT_EQ(2.5, number);
    number = 0;
    EXPECT_EQ(success, reader.getDoubleScientific("D", 3, number, editable));
    EXPECT_EQ(2.5, number);
    EXPECT_EQ("u", readString(reader, "S"));
    unsigned unsignedInteger = 0;
    EXPECT_EQ(success, reader.getUnsignedInt("U", unsignedInteger, editable));
    EXPECT_EQ(4294967295u, unsignedInteger);
    float single = 0;
    EXPECT_EQ(success, reader.getFloat("F", single, editable));
    EXPECT_EQ(0.1f, single);
    EXPECT_TRUE(editable);
    std::vector<std::string> list;
    std::map<std::string, bool> itemEditable;
    EXPECT_EQ(success, reader.getStringVector("L", list, editable, itemEditable));
    EXPECT_THAT(list, ElementsAre("u"));
    EXPECT_THAT(itemEditable, ElementsAre(Pair("u", false)));
    EXPECT_FALSE(editable);
}

TEST(AdvancedConfigReader, KeepsOutputsWhereNoSourceHasTheValue) {
    Layers reader({{system, "<A>x</A>"}, {user, ""}});
    int integer = 17;
    double number = 0.5;
    bool boolean = true;
    bool editable = true;
    EXPECT_EQ(failure, reader.getInt("A", integer, editable));
    EXPECT_EQ(failure, reader.getDouble("A", number, editable));
    EXPECT_EQ(failure, reader.getBool("A", boolean, editable));
    EXPECT_EQ(17, integer);
    EXPECT_EQ(0.5, number);
    EXPECT_TRUE(boolean);
}

TEST(AdvancedConfigReader, TellsTheFlagOfTheHighestSourceThatHoldsTheElement) {
    Layers reader(
        {{system, "<A editable='false'>1</A><B editable='false'>1</B>"}, {user, "<A>2</A>"}});
    int value = 0;
    bool editable = false;
    reader.getInt("A", value, editable);
    EXPECT_TRUE(editable);
    reader.getInt("B", value, editable);
    EXPECT_FALSE(editable);
}

TEST(AdvancedConfigReader, ReadsAListEmptyThatTheHighestSourceLacks) {
    Layers reader({{system, "<L><item>s</item></L>"}, {user, ""}});
    std::vector<std::string> list = {"before"};
    std::map<std::string, bool> itemEditable = {{"before", true}};
    bool editable = true;
    EXPECT_EQ(success, reader.getStringVector("L", list, editable, itemEditable));
    EXPECT_THAT(list, IsEmpty());
    EXPECT_THAT(itemEditable, IsEmpty());
}

TEST(AdvancedConfigReader, ReadsTheTextsOfAListAsItsItems) {
    for (const std::string body :
         {"<L><item>u</item></L>", "<L editable='false'><item>u</item><item><b/></item></L>",
          "<L/>", "<M><item>u</item></M>"}) {
        Layers reader({{system, "<L><item>s</item></L>"}, {user, body}});
        bool editable = true;
        std::vector<std::string> list = {"before"};
        std::map<std::string, bool> itemEditable;
        const auto expected = reader.getStringVector("L", list, editable, itemEditable);
        bool textsEditable = true;
        std::vector<std::string> texts = {"before"};
        EXPECT_EQ(expected, reader.getStrings("L", texts, textsEditable)) << body;
        EXPECT_EQ(list, texts) << body;
        EXPECT_EQ(editable, textsEditable) << body;
    }
}

TEST(AdvancedConfigReader, MovesEverySourceThatHasTheTag) {
    Layers reader({{system, "<B>1</B><A>1</A><X><T><A>3</A><B>3</B></T></X>"},
                   {user, "<A>2</A><T><A>4</A></T>"}});
    EXPECT_EQ(success, reader.tagExists("T"));
    EXPECT_EQ(4, readInt(reader, "A"));
    EXPECT_EQ(3, readInt(reader, "B"));
    EXPECT_EQ(failure, reader.tagExists("Missing"));
    EXPECT_EQ(4, readInt(reader, "A"));
    EXPECT_EQ(success, reader.tagExists("X")) << "the system document has it";
    EXPECT_EQ(std::nullopt, readInt(reader, "B"));
    EXPECT_EQ(4, readInt(reader, "A")) << "the user's document stays where it was";
}

TEST(AdvancedConfigReader, GathersTheKeysOfAllSources) {
    Layers reader({{system, "<P key='b'/><P key='a'/>"}, {user, "<P key='c'/><P key='a'/><P/>"}});
    std::set<std::string> keys = {"kept"};
    EXPECT_EQ(success, reader.getKeys("P", keys));
    EXPECT_THAT(keys, ElementsAre("", "a", "b", "c", "kept"));
    EXPECT_EQ(success, reader.getKeys("Missing", keys));
}

TEST(AdvancedConfigReader, CallsBackForTheKeysOfEverySource) {
    Layers reader({{system, "<P key='b'/><P key='a'/>"}, {user, "<P key='a'/>"}});
    std::vector<std::string> keys;
    const auto collect = [&](const std::string& key) { keys.push_back(key); };
    EXPECT_EQ(success, reader.createConfigurationObjects("P", collect));
    EXPECT_THAT(keys, ElementsAre("b", "a", "a"));
    EXPECT_EQ(failure, reader.createConfigurationObjects("Missing", collect));
    EXPECT_EQ(3u, keys.size());
}

TEST(AdvancedConfigReader, AsksTheUsersDocumentForNoLock) {
    bool editable = true;
    const std::string locked = "<T editable='false'/>";
    Layers userOnly(std::map<AdvancedConfigReader::Priority, std::string>{{user, locked}});
    ASSERT_EQ(success, userOnly.tagExists("T"));
    EXPECT_EQ(failure, userOnly.getEditable(editable));
    EXPECT_TRUE(editable);

    Layers both({{system, "<T/>"}, {user, locked}});
    ASSERT_EQ(success, both.tagExists("T"));
    EXPECT_EQ(success, both.getEditable(editable));
    EXPECT_TRUE(editable);

    for (const auto priority : {byDefault, system}) {
        Layers reader({{priority, locked}, {user, "<T/>"}});
        ASSERT_EQ(success, reader.tagExists("T"));
        editable = true;
        EXPECT_EQ(success, reader.getEditable(editable)) << priority;
        EXPECT_FALSE(editable) << priority;
    }

    Layers systemOverDefault({{byDefault, locked}, {system, "<T/>"}});
    ASSERT_EQ(success, systemOverDefault.tagExists("T"));
    EXPECT_EQ(success, systemOverDefault.getEditable(editable));
    EXPECT_TRUE(editable);
}

// Objects.

/// An object of the ints A and B and, three levels down, children of the same kind: Child with a
/// name and one without, which holds the values C and D in the element of its parent.
std::shared_ptr<TestObject> makeObject() {
    return TestObject::make("T", [](TestObject& object) {
        object.add("A", -1).add("B", -1);
        TestObject* parent = &object;
        for (int depth = 0; depth < 3; ++depth) {
            auto* const child = new TestObject("Child");
            child->add("A", -1).add("B", -1);
            auto* const nameless = new TestObject("");
            nameless->add("C", -1).add("D", -1);
            parent->addChild(child).addChild(nameless);
            parent = child;
        }
    });
}

const std::vector<std::string> valueNames = {"A", "B", "C", "D"};

/// Finds a value `depth` named children down; C and D are in the nameless child there.
ConfigurationValue<int>& valueAt(const TestObject& object, int depth, const std::string& name) {
    const TestObject* place = &object;
    for (int i = 0; i < depth; ++i)
        place = &place->child("Child");
    return (name == "C" || name == "D" ? place->child("") : *place).value<int>(name);
}

std::vector<int> valuesAt(const TestObject& object, int depth) {
    std::vector<int> values;
    for (const std::string& name : valueNames)
        values.push_back(valueAt(object, depth, name).getValue());
    return values;
}

std::string elementOf(const std::string& name, const std::string& attributes,
                      const std::string& content) {
    return "<" + name + " " + attributes + ">" + content + "</" + name + ">";
}

/// An element T with `content` in it, a number of children down.
std::string atDepth(int depth, std::string content, const std::string& attributes = "") {
    for (int i = 0; i <= depth; ++i)
        content = elementOf(i == depth ? "T" : "Child", i == 0 ? attributes : "", content);
    return content;
}

class LayeredObject : public testing::TestWithParam<int> {
protected:
    /// The object's values at the test's depth, loaded from an element with this content.
    std::vector<int> load(const std::string& systemContent, const std::string& userContent,
                          const std::string& systemAttributes = "",
                          const std::string& userAttributes = "") {
        Layers reader({{system, atDepth(GetParam(), systemContent, systemAttributes)},
                       {user, atDepth(GetParam(), userContent, userAttributes)}});
        m_object = makeObject();
        EXPECT_EQ(success, reader.getClassContents("T", *m_object));
        return valuesAt(*m_object, GetParam());
    }
    bool isEditable(const std::string& name) const {
        return valueAt(*m_object, GetParam(), name).isEditable();
    }
    const TestObject& place() const {
        const TestObject* result = m_object.get();
        for (int i = 0; i < GetParam(); ++i)
            result = &result->child("Child");
        return *result;
    }

private:
    std::shared_ptr<TestObject> m_object;
};

INSTANTIATE_TEST_SUITE_P(Depths, LayeredObject, testing::Values(0, 1, 2));

TEST_P(LayeredObject, TakesTheUsersValuesOverTheSystems) {
    EXPECT_THAT(load("<A>1</A><B>2</B><C>3</C><D>4</D>", "<A>5</A><B>6</B><C>7</C><D>8</D>"),
                ElementsAre(5, 6, 7, 8));
}

TEST_P(LayeredObject, TakesTheSystemsValueWhereTheUserHasNone) {
    EXPECT_THAT(load("<A>1</A><B>2</B><C>3</C><D>4</D>", "<B>6</B>"), ElementsAre(1, 6, 3, 4));
}

TEST_P(LayeredObject, TakesTheSystemsValueWhereTheUsersIsUnreadable) {
    EXPECT_THAT(load("<A>1</A><B>2</B><C>3</C><D>4</D>",
                     "<A>x</A><B/><C><!-- c -->7</C><D>99999999999</D>"),
                ElementsAre(1, 2, 3, 4));
}

TEST_P(LayeredObject, TakesTheUsersValueWhereTheSystemHasNone) {
    EXPECT_THAT(load("", "<A>5</A><C>7</C>"), ElementsAre(5, -1, 7, -1));
}

TEST_P(LayeredObject, KeepsLockedValues) {
    EXPECT_THAT(load("<A editable='false'>1</A><B>2</B><C editable='false'>3</C><D>4</D>",
                     "<A editable='true'>5</A><B>6</B><C>7</C><D>8</D>"),
                ElementsAre(1, 6, 3, 8));
    EXPECT_FALSE(isEditable("A"));
    EXPECT_TRUE(isEditable("B"));
    EXPECT_FALSE(isEditable("C"));
    EXPECT_TRUE(isEditable("D"));
}

TEST_P(LayeredObject, KeepsTheDefaultOfALockedValueThatIsUnreadable) {
    EXPECT_THAT(load("<A editable='false'>x</A><C editable='false'>x</C>", "<A>5</A><C>7</C>"),
                ElementsAre(-1, -1, -1, -1));
    EXPECT_FALSE(isEditable("A"));
    EXPECT_FALSE(isEditable("C"));
}

TEST_P(LayeredObject, KeepsAllOfALockedObject) {
    EXPECT_THAT(load("<A>1</A><C>3</C><Child><A>9</A></Child>",
                     "<A>5</A><B>6</B><C>7</C><D>8</D><Child editable='true'><A>10</A></Child>",
                     "editable='false'", "editable='true'"),
                ElementsAre(1, -1, 3, -1));
    EXPECT_FALSE(place().isEditable());
    EXPECT_EQ(9, place().child("Child").value<int>("A").getValue()) << "a child of what is locked";
}

TEST_P(LayeredObject, IsNotLockedByTheUser) {
    EXPECT_THAT(load("<A>1</A><B>2</B><C>3</C><D>4</D>",
                     "<A editable='false'>5</A><B editable='false'>x</B><C editable='false'>7</C>",
                     "", "editable='false'"),
                ElementsAre(5, 2, 7, 4));
    EXPECT_TRUE(place().isEditable());
    EXPECT_TRUE(place().child("").isEditable());
    for (const std::string& name : valueNames)
        EXPECT_TRUE(isEditable(name)) << name;
}

TEST_P(LayeredObject, IsNotLockedByTheUserWhereTheSystemHoldsNoSuchPart) {
    EXPECT_THAT(load("", "<A editable='false'>5</A><C editable='false'>7</C>"),
                ElementsAre(5, -1, 7, -1));
    EXPECT_TRUE(isEditable("A"));
    EXPECT_TRUE(isEditable("C"));
}

/// Counts how often it is cloned, or cannot be.
class CloneCounting : public TestObject {
public:
    explicit CloneCounting(bool isCloneable = true) : TestObject("T"), m_isCloneable(isCloneable) {
        add("A", -1).add("B", -1);
    }
    ConfigurationObject* clone() const override {
        ++clones;
        if (!m_isCloneable)
            throw std::logic_error("not cloneable");
        return TestObject::clone();
    }
    int valueOf(const std::string& name) const { return value<int>(name).getValue(); }

    mutable int clones = 0;

private:
    bool m_isCloneable;
};

/// One of the ways to load an object through all layers.
struct LoadCase : Support::TestCase {
    std::function<ConfigurationAccessResult(AdvancedConfigReader&, TestObject&)> load;
};

class LayeredLoad : public testing::TestWithParam<LoadCase> {
protected:
    ConfigurationAccessResult load(AdvancedConfigReader& reader) {
        return GetParam().load(reader, *m_object);
    }
    int valueOf(const std::string& name) const { return valueAt(*m_object, 0, name).getValue(); }

    std::shared_ptr<TestObject> m_object = makeObject();
};

const std::string systemT = "<T key='k'><A editable='false'>1</A><B>2</B></T>";
const std::string userT = "<T key='k'><A>3</A><B>4</B></T>";

TEST_P(LayeredLoad, MergesBothDocuments) {
    Layers reader({{system, systemT}, {user, userT}});
    EXPECT_EQ(success, load(reader));
    EXPECT_EQ(1, valueOf("A"));
    EXPECT_EQ(4, valueOf("B"));
    EXPECT_EQ(1, m_object->signals);
}

TEST_P(LayeredLoad, TakesWhatOneDocumentHolds) {
    Layers systemOnly({{system, systemT}, {user, ""}});
    EXPECT_EQ(success, load(systemOnly));
    EXPECT_EQ(2, valueOf("B"));
    EXPECT_EQ(1, m_object->signals);

    m_object = makeObject();
    Layers userOnly({{system, ""}, {user, userT}});
    EXPECT_EQ(success, load(userOnly));
    EXPECT_EQ(3, valueOf("A"));
    EXPECT_EQ(4, valueOf("B"));
    EXPECT_EQ(1, m_object->signals);
}

TEST_P(LayeredLoad, RepairsNothingWhereTheSystemHasNoSuchObject) {
    Layers reader({{system, ""}, {user, "<T key='k'><A editable='false'>3</A></T>"}});
    EXPECT_EQ(success, load(reader));
    EXPECT_EQ(3, valueOf("A"));
    EXPECT_FALSE(valueAt(*m_object, 0, "A").isEditable()) << "there is nothing to unlock it by";
}

TEST_P(LayeredLoad, FailsWhereNoDocumentHoldsIt) {
    Layers reader({{system, "<A>1</A>"}, {user, ""}});
    EXPECT_EQ(failure, load(reader));
    EXPECT_EQ(-1, valueOf("A"));
    EXPECT_EQ(0, m_object->signals);
}

TEST_P(LayeredLoad, LeavesTheDocumentsWhereTheyWere) {
    Layers reader({{system, "<A>7</A>" + systemT}, {user, "<B>8</B>" + userT}});
    load(reader);
    EXPECT_EQ(7, readInt(reader, "A"));
    EXPECT_EQ(8, readInt(reader, "B"));
}

TEST_P(LayeredLoad, LetsTheDefaultDocumentGoFirst) {
    Layers reader({{byDefault, "<T key='k'><A>5</A><B>6</B></T>"},
                   {system, "<T key='k'><A editable='false'>1</A></T>"},
                   {user, "<T key='k'><A>3</A></T>"}});
    EXPECT_EQ(success, load(reader));
    EXPECT_EQ(1, valueOf("A"));
    EXPECT_FALSE(valueAt(*m_object, 0, "A").isEditable());
    EXPECT_EQ(1, m_object->signals);
}

TEST_P(LayeredLoad, ClonesAnObjectOnlyForAnElementOfTheUsers) {
    for (const bool isCloneable : {true, false})
        for (const std::string body : {"", "<U key='k'><A>3</A></U>", "<A>3</A>"}) {
            CloneCounting object(isCloneable);
            Layers reader({{byDefault, "<T key='k'><B>5</B></T>"}, {system, systemT}});
            if (!body.empty())
                reader.addBody(user, body);
            EXPECT_EQ(success, GetParam().load(reader, object));
            EXPECT_EQ(0, object.clones) << body;
            EXPECT_EQ(1, object.valueOf("A"));
            EXPECT_FALSE(object.value<int>("A").isEditable());
            EXPECT_EQ(2, object.valueOf("B"));
            EXPECT_TRUE(object.value<int>("B").isEditable());
        }
    CloneCounting object;
    Layers reader({{byDefault, userT}, {system, systemT}, {user, userT}});
    EXPECT_EQ(success, GetParam().load(reader, object));
    EXPECT_EQ(1, object.clones);
    EXPECT_EQ(1, object.valueOf("A"));
    EXPECT_FALSE(object.value<int>("A").isEditable());
    EXPECT_EQ(4, object.valueOf("B"));

    CloneCounting withoutSystem(false);
    Layers userOnly({{byDefault, systemT}, {user, userT}});
    EXPECT_EQ(success, GetParam().load(userOnly, withoutSystem));
    EXPECT_EQ(0, withoutSystem.clones);
    EXPECT_THROW(
        {
            CloneCounting uncloneable(false);
            GetParam().load(reader, uncloneable);
        },
        std::logic_error);
}

TEST_P(LayeredLoad, RepairsByTheElementOfTheUsersThatItFinds) {
    // The user's document stands elsewhere than the system's.
    Layers reader({{system, systemT}});
    reader.addBody(user, "<X>" + userT + "</X>", {"X"});
    CloneCounting object;
    EXPECT_EQ(success, GetParam().load(reader, object));
    EXPECT_EQ(1, object.clones);
    EXPECT_EQ(1, object.valueOf("A"));
    EXPECT_FALSE(object.value<int>("A").isEditable());
    EXPECT_EQ(4, object.valueOf("B"));
}

INSTANTIATE_TEST_SUITE_P(
    Operations, LayeredLoad,
    testing::Values(
        LoadCase{"Name",
                 [](auto& reader, auto& object) { return reader.getClassContents("T", object); }},
        LoadCase{"Key", [](auto& reader,
                           auto& object) { return reader.getClassContents("T", "k", object); }},
        LoadCase{"Keys",
                 [](auto& reader, auto& object) {
                     std::vector<ConfigurationObject*> objects = {&object};
                     return reader.getClassContents("T", std::vector<std::string>{"k"}, objects);
                 }},
        LoadCase{"Find", [](auto& reader,
                            auto& object) { return reader.findAndGetClassContents("T", object); }},
        LoadCase{"FindKey",
                 [](auto& reader, auto& object) {
                     return reader.findAndGetClassContents("T", "k", object);
                 }}),
    Support::nameOf<LoadCase>);

TEST(AdvancedConfigReader, TakesTheDefaultEntryOfEachDocumentForAKey) {
    Layers reader({{system, "<T><A>1</A><B>2</B></T>"}, {user, "<T key='k'><A>3</A></T>"}});
    const auto object = makeObject();
    EXPECT_EQ(success, reader.getClassContents("T", "k", *object));
    EXPECT_EQ(3, valueAt(*object, 0, "A").getValue());
    EXPECT_EQ(2, valueAt(*object, 0, "B").getValue());
    EXPECT_EQ(failure, reader.findAndGetClassContents("T", "other", *makeObject()))
        << "a search of the whole document knows no default entry";
}

TEST(AdvancedConfigReader, ClonesAnObjectWithAKeyForTheDefaultEntryOfTheUsers) {
    const std::string locked = "<A editable='false'>1</A><B>2</B>";
    struct Case {
        std::string systemBody;
        std::string userBody;
        int clones;
        int b;
    };
    const std::string userContent = "<A>3</A><B>4</B>";
    for (const Case& c : {Case{"<T key='k'>" + locked + "</T>", "<T>" + userContent + "</T>", 1, 4},
                          Case{"<T>" + locked + "</T>", "<T key='k'>" + userContent + "</T>", 1, 4},
                          Case{"<T>" + locked + "</T>", "<T key='l'>" + userContent + "</T>", 0, 2},
                          Case{"<T>" + locked + "</T>", "<X><T>" + userContent + "</T></X>", 0, 2},
                          Case{"<T>" + locked + "</T>", "<T/>", 1, 2}}) {
        Layers reader({{system, c.systemBody}, {user, c.userBody}});
        CloneCounting object;
        EXPECT_EQ(success, reader.getClassContents("T", "k", object)) << c.userBody;
        EXPECT_EQ(c.clones, object.clones) << c.userBody;
        EXPECT_EQ(1, object.valueOf("A")) << c.userBody;
        EXPECT_FALSE(object.value<int>("A").isEditable()) << c.userBody;
        EXPECT_EQ(c.b, object.valueOf("B")) << c.userBody;
        EXPECT_EQ(1, object.signals) << c.userBody;
    }
}

TEST(AdvancedConfigReader, SearchesEachDocumentForAnObject) {
    Layers reader({{system, "<X><T><A>1</A><B>2</B></T></X>"}, {user, "<Y><T><A>3</A></T></Y>"}});
    const auto object = makeObject();
    EXPECT_EQ(failure, reader.getClassContents("T", *object));
    EXPECT_EQ(success, reader.findAndGetClassContents("T", *object));
    EXPECT_EQ(3, valueAt(*object, 0, "A").getValue());
    EXPECT_EQ(2, valueAt(*object, 0, "B").getValue());
}

TEST(AdvancedConfigReader, LoadsTheCurrentNodeOfTheHighestSourceAlone) {
    Layers reader({{system, "<A>1</A><B>2</B>"}, {user, "<A>3</A>"}});
    const auto object = makeObject();
    EXPECT_EQ(success, reader.getClassContents(*object));
    EXPECT_EQ(3, valueAt(*object, 0, "A").getValue());
    EXPECT_EQ(-1, valueAt(*object, 0, "B").getValue());
    EXPECT_EQ(1, object->signals);
}

TEST(AdvancedConfigReader, LoadsEachObjectOfItsKey) {
    Layers reader({{system, "<T key='a'><A>1</A></T><T key='b'><A>2</A></T>"},
                   {user, "<T key='b'><A>3</A></T>"}});
    const auto first = makeObject();
    const auto second = makeObject();
    const auto third = makeObject();
    std::vector<ConfigurationObject*> objects = {first.get(), second.get(), third.get()};
    EXPECT_EQ(failure, reader.getClassContents("T", {"a", "missing", "b"}, objects));
    EXPECT_EQ(1, valueAt(*first, 0, "A").getValue());
    EXPECT_EQ(-1, valueAt(*second, 0, "A").getValue());
    EXPECT_EQ(3, valueAt(*third, 0, "A").getValue()) << "loaded although another is missing";
    EXPECT_EQ(0, second->signals);
    EXPECT_EQ(1, third->signals);
}

TEST(AdvancedConfigReader, CountsKeysWithoutObjectsAsMissing) {
    Layers reader(std::map<AdvancedConfigReader::Priority, std::string>{
        {system, "<T key='a'><A>1</A></T><T key='b'><A>2</A></T>"}});
    const auto first = makeObject();
    const auto second = makeObject();
    std::vector<ConfigurationObject*> one = {first.get()};
    EXPECT_EQ(failure, reader.getClassContents("T", {"a", "b"}, one));
    EXPECT_EQ(1, valueAt(*first, 0, "A").getValue());
    std::vector<ConfigurationObject*> two = {first.get(), second.get()};
    EXPECT_EQ(success, reader.getClassContents("T", {"b"}, two));
    EXPECT_EQ(2, valueAt(*first, 0, "A").getValue());
    EXPECT_EQ(-1, valueAt(*second, 0, "A").getValue());
}

TEST(AdvancedConfigReader, TakesTheSystemsListWhereTheUsersObjectHasNone) {
    const auto object = TestObject::make(
        "T", [](TestObject& fresh) { fresh.add("L", std::vector<std::string>{"default"}); });
    Layers reader({{system, "<T><L><item>s</item></L></T>"}, {user, "<T/>"}});
    EXPECT_EQ(success, reader.getClassContents("T", *object));
    EXPECT_THAT(object->value<std::vector<std::string>>("L").getValue(), ElementsAre("s"));
}

} // namespace
} // namespace Orvant
