#include <ConfigurationFramework/ConfigurationObject.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <ManagerFixture.h>
#include <ModelTestSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

// A list is read from the first element of its name at any depth. What the library writes must
// still be read back as it was.

namespace Orvant {
namespace {

using testing::ElementsAre;

using List = std::vector<std::string>;
using Support::document;
using Support::TestObject;

const List systemList = {"system"};
const List ownList = {"own"};

std::string elementOf(const List& list, const std::string& attributes = "") {
    return "<L" + attributes + "><item>" + list.front() + "</item></L>";
}

/// The objects that have a list L: some of the root, its child, the grandchild, and nameless
/// children of the root before and after the child.
struct Holders {
    bool root = false;
    bool child = false;
    bool grandchild = false;
    bool inlineBefore = false;
    bool inlineBehind = false;
};

class Nested : public TestObject {
public:
    explicit Nested(const Holders& holders) : TestObject("Test"), m_holders(holders) {
        addList(*this, holders.root);
        const auto add = [](TestObject& parent, const std::string& name, bool hasList) {
            auto* const child = new TestObject(name);
            parent.addChild(child);
            addList(*child, hasList);
            return child;
        };
        m_objects.push_back(this);
        m_objects.push_back(add(*this, "", holders.inlineBefore));
        auto* const child = add(*this, "Child", holders.child);
        m_objects.push_back(child);
        m_objects.push_back(add(*child, "Grandchild", holders.grandchild));
        m_objects.push_back(add(*this, "", holders.inlineBehind));
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new Nested(m_holders);
    }

    /// @return the lists of those that have one, outer ones first
    std::vector<ConfigurationValue<List>*> lists() const {
        std::vector<ConfigurationValue<List>*> found;
        for (const TestObject* object : m_objects)
            if (object->getConfigurationValue("L") != nullptr)
                found.push_back(&object->value<List>("L"));
        return found;
    }
    std::vector<List> texts() const {
        std::vector<List> all;
        for (const auto* list : lists())
            all.push_back(list->getValue());
        return all;
    }

private:
    static void addList(TestObject& object, bool hasList) {
        if (hasList)
            object.add("L", List{"default"});
    }

    Holders m_holders;
    std::vector<TestObject*> m_objects;
};

const Holders combinations[] = {
    {.root = true, .child = true},
    {.root = true, .grandchild = true},
    {.child = true, .inlineBehind = true},
    {.child = true, .inlineBefore = true},
    {.grandchild = true, .inlineBehind = true},
    {.child = true, .grandchild = true},
    {.root = true, .child = true, .grandchild = true},
};

class ListsOfOneName : public Support::ManagerFixture {
protected:
    /// Saves an object with some of its lists changed and expects another to be loaded with the
    /// same lists.
    void expectBroughtBack(const Holders& holders, unsigned int changed) {
        const auto object = add(std::make_shared<Nested>(holders));
        const auto lists = object->lists();
        for (std::size_t i = 0; i < lists.size(); ++i)
            lists[i]->setValue((changed >> i & 1U) != 0 ? List{"changed " + std::to_string(i)}
                                                        : lists[i]->getValue());
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        const auto loaded = add(std::make_shared<Nested>(holders));
        EXPECT_EQ(object->texts(), loaded->texts());
    }
};

TEST_F(ListsOfOneName, AreBroughtBackFromAFullSave) {
    for (const Holders& holders : combinations)
        for (unsigned int changed = 0; changed < 8; ++changed) {
            SCOPED_TRACE(testing::Message() << &holders - combinations << ", " << changed);
            m_manager.reset();
            Support::writeFile(m_file, document(""));
            useOneFile();
            expectBroughtBack(holders, changed);
        }
}

TEST_F(ListsOfOneName, AreBroughtBackFromASaveOfDifferences) {
    for (const Holders& holders : combinations)
        for (unsigned int changed = 0; changed < 8; ++changed) {
            SCOPED_TRACE(testing::Message() << &holders - combinations << ", " << changed);
            m_manager.reset();
            const Nested system(holders);
            for (auto* list : system.lists())
                list->setValue({"system"});
            ConfigWriter writer("1.0");
            writer.putClassContents("Test", system, "");
            EXPECT_TRUE(writer.saveToFile(m_systemFile));
            Support::writeFile(m_userFile, document(""));
            useTwoFiles();
            expectBroughtBack(holders, changed);
        }
}

TEST_F(ListsOfOneName, KeepTheLocksOfTheSystem) {
    Support::writeFile(m_systemFile,
                       document("<Test>" + elementOf(systemList, " editable='false'") + "<Child>" +
                                elementOf(systemList) + "</Child></Test>"));
    useTwoFiles();
    const Holders holders = {.root = true, .child = true};
    const auto object = add(std::make_shared<Nested>(holders));
    object->lists()[1]->setValue(ownList);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    const auto loaded = add(std::make_shared<Nested>(holders));
    EXPECT_THAT(loaded->texts(), ElementsAre(systemList, ownList));
    EXPECT_FALSE(loaded->lists()[0]->isEditable());
    EXPECT_TRUE(loaded->lists()[1]->isEditable());
    // Once the lock is gone, the list is what was written for it.
    Support::writeFile(m_systemFile, document("<Test>" + elementOf({"later"}) + "</Test>"));
    EXPECT_THAT(add(std::make_shared<Nested>(holders))->texts(), ElementsAre(systemList, ownList));
}

// --- what is written ----------------------------------------------------------------------------

std::string save(const ConfigurationObject& object) {
    ConfigWriter writer("1.0");
    object.saveContent(writer);
    return Support::compact(writer);
}

std::string saveDifferent(const ConfigurationObject& object, const ConfigurationObject& other) {
    ConfigWriter writer("1.0");
    object.saveDifferentConfigurationValues(writer, &other);
    return Support::compact(writer);
}

TEST(ConfigurationObjectLists, StandInFrontOnlyWhereAChildsWouldBeTakenForThem) {
    const Holders holders = {.root = true, .child = true};
    const Nested reference(holders);
    Nested object(holders);
    object.add("a", 1);
    const auto lists = object.lists();
    lists[0]->setValue(ownList);
    EXPECT_EQ(document(elementOf(ownList) + "<a>1</a>"), saveDifferent(object, reference));
    lists[1]->setValue(ownList);
    EXPECT_EQ(document(elementOf(ownList) + "<a>1</a><Child>" + elementOf(ownList) + "</Child>"),
              saveDifferent(object, reference));
    lists[0]->resetValue();
    EXPECT_EQ(
        document(elementOf({"default"}) + "<a>1</a><Child>" + elementOf(ownList) + "</Child>"),
        saveDifferent(object, reference));
    EXPECT_EQ(document(elementOf({"default"}) + "<a>1</a><Child>" + elementOf(ownList) +
                       "<Grandchild/></Child>"),
              save(object));
}

TEST(ConfigurationObjectLists, StandInFrontWithTheirCommentsAndInTheirOrder) {
    TestObject object;
    object.add("a", 1, TestObject::LoadAndSave, TestObject::AllProducts, "about a");
    auto child = std::make_unique<TestObject>("Child");
    child->add("K", List{"k"}).add("L", 5);
    object.addChild(child.release());
    auto inlined = std::make_unique<TestObject>("");
    for (const std::string name : {"K", "L", "M"})
        inlined->add(name, List{"x"}, TestObject::LoadAndSave, TestObject::AllProducts,
                     "about " + name);
    object.addChild(inlined.release());
    const std::string item = "<item>x</item>";
    EXPECT_EQ(document("<!--about K--><K>" + item + "</K><!--about L--><L>" + item +
                       "</L><!--about a--><a>1</a><Child><K><item>k</item></K><L>5</L></Child>"
                       "<!--about M--><M>" +
                       item + "</M>"),
              save(object));
}

/// Writes more than its items: an element with a list of the same name.
class Keeper : public TestObject {
public:
    explicit Keeper(const std::string& name) : TestObject(name) {
        add("L", List());
        add("a", 0);
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new Keeper(getName());
    }
    void saveContent(ConfigWriter& writer) const override {
        TestObject::saveContent(writer);
        writeMore(writer);
    }
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        TestObject::saveContent(writer, reader, onlyDifferent);
        writeMore(writer);
    }

private:
    static void writeMore(ConfigWriter& writer) {
        writer.putElement("More", "", [&] { writer.putStringVector("L", {"other"}, ""); });
    }
};

class ListsBesideAnOverride : public Support::ManagerFixture {
protected:
    /// @return the list of an object after a save and a new start
    List broughtBack(const std::function<std::shared_ptr<TestObject>()>& make,
                     const std::function<TestObject&(TestObject&)>& keeper) {
        const auto object = make();
        m_manager.addConfigurationObject(object, object->getName());
        keeper(*object).value<int>("a").setValue(5);
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        const auto reloaded = make();
        m_manager.addConfigurationObject(reloaded, reloaded->getName());
        EXPECT_EQ(5, keeper(*reloaded).value<int>("a").getValue());
        return keeper(*reloaded).value<List>("L").getValue();
    }
};

TEST_F(ListsBesideAnOverride, AreBroughtBackOfTheObject) {
    Support::writeFile(m_systemFile, document("<Test>" + elementOf(systemList) + "</Test>"));
    useTwoFiles();
    EXPECT_EQ(systemList, broughtBack([] { return std::make_shared<Keeper>("Test"); },
                                      [](TestObject& object) -> TestObject& { return object; }));
}

TEST_F(ListsBesideAnOverride, AreBroughtBackOfAChild) {
    Support::writeFile(m_systemFile,
                       document("<Test><Kid>" + elementOf(systemList) + "</Kid></Test>"));
    useTwoFiles();
    const auto make = [] {
        return TestObject::make("Test",
                                [](TestObject& object) { object.addChild(new Keeper("Kid")); });
    };
    EXPECT_EQ(systemList, broughtBack(make, [](TestObject& object) -> TestObject& {
                  return object.child("Kid");
              }));
}

TEST(ConfigurationObjectLists, MayBeCalledItem) {
    const auto object = TestObject::make("Test", [](TestObject& made) {
        made.add("item", List()).add("L", List());
        made.addChild(&(new TestObject("Kid"))->add("L", List()).add("item", List()));
    });
    object->value<List>("item").setValue({"a"});
    object->value<List>("L").setValue({"b"});
    object->child("Kid").value<List>("L").setValue({"c"});
    ConfigWriter writer("1.0");
    writer.putClassContents("Test", *object, "");
    SimpleConfigReader reader(FileName(), writer.getAsString(), {"1.0"});
    const std::unique_ptr<ConfigurationObject> reloaded(object->createConfigurationObject());
    ASSERT_EQ(ConfigurationAccessResult::Success, reader.getClassContents("Test", *reloaded));
    EXPECT_TRUE(object->compareWithOtherConfigValue(reloaded.get(), "item"));
    EXPECT_TRUE(object->compareWithOtherConfigValue(reloaded.get(), "L"));
}

TEST(ConfigurationObjectLists, AreNotWrittenWhereTheObjectOrTheListWritesNothing) {
    const auto saved = [](TestObject::Persistence ofObject, TestObject::Persistence ofList) {
        TestObject object;
        auto child = std::make_unique<TestObject>("Child");
        child->add("L", List{"x"});
        object.addChild(child.release());
        auto inlined = std::make_unique<TestObject>("", ofObject);
        inlined->add("L", List{"y"}, ofList);
        object.addChild(inlined.release());
        return save(object);
    };
    const std::string child = "<Child>" + elementOf({"x"}) + "</Child>";
    EXPECT_EQ(document(elementOf({"y"}) + child),
              saved(TestObject::LoadAndSave, TestObject::LoadAndSave));
    EXPECT_EQ(document(elementOf({"y"}) + child),
              saved(TestObject::LoadAndSave, TestObject::LoadOnly));
    EXPECT_EQ(document(child), saved(TestObject::NotPersistent, TestObject::LoadAndSave));
    EXPECT_EQ(document(child), saved(TestObject::LoadAndSave, TestObject::NotPersistent));
}

TEST(ConfigurationObjectLists, AreFoundAmongMany) {
    TestObject object;
    for (int i = 0; i < 100; ++i)
        object.add("v" + std::to_string(i), i);
    auto child = std::make_unique<TestObject>("Child");
    child->add("L", List{"x"});
    object.addChild(child.release());
    auto inlined = std::make_unique<TestObject>("");
    inlined->add("L", List{"y"});
    object.addChild(inlined.release());
    ConfigWriter writer("1.0");
    for (int time = 0; time < 2; ++time)
        object.saveContent(writer);
    const std::string text = Support::compact(writer);
    EXPECT_THAT(text, testing::StartsWith("<Configuration version=\"1.0\">" + elementOf({"y"}) +
                                          "<v0>0</v0>"));
    EXPECT_THAT(text, testing::EndsWith("<v99>99</v99><Child>" + elementOf({"x"}) +
                                        "</Child></Configuration>"));
}

// --- the operations of the writer ---------------------------------------------------------------

TEST(ConfigWriterNames, AreHiddenWhereTheyStandDeeperFirst) {
    ConfigWriter writer(FileName(), document("<!--c--><A><B><C/></B></A><B/><D><E/><F/></D>"
                                             "<E><E/></E>text<Deep><G/></Deep>"));
    using Names = std::set<std::string>;
    EXPECT_EQ(Names({"B", "C", "E", "G"}),
              writer.getNamesHiddenByDescendants({"A", "B", "C", "E", "G", "Nowhere", "B"}));
    EXPECT_EQ(Names(), writer.getNamesHiddenByDescendants({}));
    writer.setCurrentNode("A");
    EXPECT_EQ(Names({"C"}), writer.getNamesHiddenByDescendants({"A", "B", "C", "E"}));
}

TEST(ConfigWriterNames, ArePutInFrontWithTheirComments) {
    ConfigWriter writer(FileName(), document("<!--a--><A/><!--b--><B key=\"1\"/><C/><B/>"));
    const auto neverCalled = [] { ADD_FAILURE(); };
    const std::string b = "<!--b--><B key=\"1\"/>";
    for (int time = 0; time < 2; ++time) {
        writer.putInFront("B", neverCalled);
        EXPECT_EQ(document(b + "<!--a--><A/><C/><B/>"), Support::compact(writer));
    }
    for (int time = 0; time < 2; ++time) {
        writer.putInFront("C", neverCalled);
        EXPECT_EQ(document("<C/>" + b + "<!--a--><A/><B/>"), Support::compact(writer));
    }
    writer.putInFront("D", [&] {
        writer.putInt("D", 1, "d");
        writer.setCurrentNode("D");
    });
    writer.putInFront("E", [] {});
    writer.putInt("F", 2, "");
    EXPECT_EQ(document("<!--d--><D>1</D><C/>" + b + "<!--a--><A/><B/><F>2</F>"),
              Support::compact(writer));
}

} // namespace
} // namespace Orvant
