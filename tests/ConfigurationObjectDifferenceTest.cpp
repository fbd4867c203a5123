#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <ManagerFixture.h>
#include <ModelTestSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// Difference saves of children whose classes write themselves in their own way.

namespace Orvant {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Support::compact;
using Support::document;
using Support::readerOf;
using Support::TestObject;
using Support::writeFile;

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

using Save = std::function<void(const TestObject&, ConfigWriter&, ConfigReader&)>;

/// Writes itself as a test says.
class SelfWriting : public TestObject {
public:
    explicit SelfWriting(const std::string& name, Save save, Persistence persistence = LoadAndSave)
        : TestObject(name, persistence), m_save(std::move(save)) {}

    using TestObject::saveContent;
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        EXPECT_TRUE(onlyDifferent);
        m_save(*this, writer, reader);
    }

private:
    Save m_save;
};

/// Writes what the library writes by default.
void saveAsUsual(const TestObject& object, ConfigWriter& writer, ConfigReader& reader) {
    object.ConfigurationObject::saveContent(writer, reader, true);
}

/// A "Test" whose one child writes itself; it has the value "a", and so has the child.
std::shared_ptr<TestObject> makeParent(const std::string& childName, const Save& save) {
    return TestObject::make("Test", [=](TestObject& parent) {
        auto child = std::make_unique<SelfWriting>(childName, save);
        child->add("c", 1);
        parent.add("a", 1).addChild(child.release());
    });
}

std::string saveDifferent(const ConfigurationObject& object, ConfigReader& reader) {
    ConfigWriter writer("1.0");
    writer.putOnlyDifferentClassContents(object.getName(), object, reader, "");
    return compact(writer);
}

std::string saveDifferent(const ConfigurationObject& object, const std::string& reference) {
    SimpleConfigReader reader = readerOf(reference);
    return saveDifferent(object, reader);
}

TEST(ConfigurationObjectDifference, HoldsWhatAChildWritesByItself) {
    const Save putExtra = [](const auto&, ConfigWriter& writer, ConfigReader&) {
        writer.putInt("extra", 5, "");
    };
    EXPECT_EQ(document("<Test><Child><extra>5</extra></Child></Test>"),
              saveDifferent(*makeParent("Child", putExtra), "<Test/>"));
    EXPECT_EQ(document("<Test><extra>5</extra></Test>"),
              saveDifferent(*makeParent("", putExtra), "<Test/>"));

    TestObject root("Root");
    for (const std::string middle : {"Middle", ""}) {
        auto child = std::make_unique<TestObject>(middle);
        child->addChild(new SelfWriting("Child", putExtra));
        root.addChild(child.release());
    }
    EXPECT_EQ(document("<Root><Middle><Child><extra>5</extra></Child></Middle>"
                       "<Child><extra>5</extra></Child></Root>"),
              saveDifferent(root, "<Root/>"));
}

TEST(ConfigurationObjectDifference, HoldsAnElementOnlyForAChildThatWritesAnything) {
    const auto parent = makeParent("Child", [](const auto&, auto&, auto&) {});
    parent->child("Child").value<int>("c").setValue(2);
    EXPECT_EQ(document("<Test/>"), saveDifferent(*parent, "<Test/>"));
}

TEST(ConfigurationObjectDifference, AsksNoNamedChildThatWritesNothing) {
    TestObject parent;
    parent.addChild(new SelfWriting(
        "Child",
        [](const auto&, ConfigWriter& writer, ConfigReader&) { writer.putInt("extra", 5, ""); },
        TestObject::NotPersistent));
    EXPECT_EQ(document("<Test/>"), saveDifferent(parent, "<Test/>"));
}

TEST(ConfigurationObjectDifference, IsThatOfEveryObjectForAChildThatCallsTheLibrary) {
    for (const std::string name : {"Child", ""}) {
        const auto parent = makeParent(name, saveAsUsual);
        const std::string reference = name.empty() ? "<Test><a>3</a><c>4</c></Test>"
                                                   : "<Test><a>3</a><Child><c>4</c></Child></Test>";
        parent->value<int>("a").setValue(3);
        parent->child(name).value<int>("c").setValue(4);
        EXPECT_EQ(document("<Test/>"), saveDifferent(*parent, reference));
        parent->child(name).value<int>("c").setValue(1);
        EXPECT_EQ(document(name.empty() ? "<Test><c>1</c></Test>"
                                        : "<Test><Child><c>1</c></Child></Test>"),
                  saveDifferent(*parent, reference));
    }
}

TEST(ConfigurationObjectDifference, PairsAChildThatCallsTheLibraryWithItsCounterpart) {
    // Two nameless children, told apart by their positions.
    const auto parent = TestObject::make("Test", [](TestObject& object) {
        for (const std::string value : {"b", "c"}) {
            auto child = std::make_unique<SelfWriting>("", saveAsUsual);
            child->add(value, 1);
            object.addChild(child.release());
        }
    });
    for (auto child = parent->beginObjectIterator(); child != parent->endObjectIterator(); ++child)
        dynamic_cast<TestObject&>(**child).add("late", 1);
    EXPECT_EQ(document("<Test><late>1</late></Test>"),
              saveDifferent(*parent, "<Test><b>1</b><c>1</c></Test>"));
    SimpleConfigReader reader = readerOf("<Test/>");
    bool asked = false;
    const auto asking = makeParent("Child", [&](const TestObject& child, auto&, ConfigReader& r) {
        EXPECT_FALSE(child.canBeSavedToUserConfig(r));
        asked = true;
    });
    saveDifferent(*asking, reader);
    EXPECT_TRUE(asked);
}

TEST(ConfigurationObjectDifference, MakesAndLoadsNoMoreThanTheObjectItself) {
    static int made;
    static int loaded;
    class Counted : public TestObject {
    public:
        using TestObject::TestObject;
        ConfigurationObject* createConfigurationObject() const override {
            ++made;
            return TestObject::createConfigurationObject();
        }
        void loadContent(ConfigReader& reader) override {
            ++loaded;
            TestObject::loadContent(reader);
        }
    };
    const auto parent = TestObject::make("Test", [](TestObject& object) {
        for (const std::string name : {"Child", ""}) {
            auto child = std::make_unique<Counted>(name);
            child->add("c", 1).addChild(new Counted("Grandchild"));
            object.addChild(child.release());
        }
    });
    SimpleConfigReader reader = readerOf("<Test><Child><Grandchild/></Child><Grandchild/></Test>");
    ConfigWriter writer("1.0");
    made = 0;
    const std::unique_ptr<ConfigurationObject> fresh(parent->createConfigurationObject());
    const int madeWithTheParent = std::exchange(made, 0);
    loaded = 0;
    parent->saveContent(writer, reader, true);
    EXPECT_EQ(madeWithTheParent, made);
    EXPECT_EQ(4, loaded);
}

TEST(ConfigurationObjectDifference, LeavesTheWriterWhereItWasWhenAChildThrows) {
    const auto parent = makeParent("Child", [](const auto&, ConfigWriter& writer, ConfigReader&) {
        writer.createNodeAndMakeCurrent("begun", "");
        throw std::runtime_error("full");
    });
    SimpleConfigReader reader = readerOf("<Test/>");
    ConfigWriter writer("1.0");
    EXPECT_THROW(parent->saveContent(writer, reader, true), std::runtime_error);
    writer.putInt("next", 1, "");
    EXPECT_EQ(document("<next>1</next>"), compact(writer));
}

TEST(ConfigurationObjectDifference, TakesForOtherObjectsOfAChildWhatStandsBesideIt) {
    // The child has a second object, which it writes with the writer's own operation.
    const auto makeExtra = [](int d, int e) {
        return TestObject::make("Extra", [=](TestObject& object) {
            object.add("d", 1).addChild(&(new TestObject("Inside"))->add("e", 1));
            object.value<int>("d").setValue(d);
            object.child("Inside").value<int>("e").setValue(e);
        });
    };
    const auto differentOf = [&](int d, int e) {
        const auto extra = makeExtra(d, e);
        const auto parent =
            makeParent("Child", [=](const auto&, ConfigWriter& writer, ConfigReader& reader) {
                writer.putOnlyDifferentClassContents("Extra", *extra, reader, "");
            });
        return saveDifferent(*parent, "<Extra><d>8</d></Extra><Test><Extra><d>2</d><Inside><e>3</e>"
                                      "</Inside></Extra><Child/></Test>");
    };
    EXPECT_EQ(document("<Test><Child><Extra/></Child></Test>"), differentOf(2, 3));
    EXPECT_EQ(document("<Test><Child><Extra><d>8</d><Inside><e>4</e></Inside></Extra></Child>"
                       "</Test>"),
              differentOf(8, 4));
}

// --- the reference of one save ------------------------------------------------------------------

/// What was done with objects of a class.
struct Counts {
    int made = 0;
    int loaded = 0;
    int signalled = 0;

    bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out) {
    *out << counts.made << " made, " << counts.loaded << " loaded, " << counts.signalled
         << " signalled";
}

/// Has a value "a" (1), counts what is done with its fresh ones, and may save itself otherwise.
class Counted : public TestObject {
public:
    explicit Counted(const std::string& name = "Test",
                     std::shared_ptr<Counts> counts = std::make_shared<Counts>())
        : TestObject(name), m_counts(std::move(counts)) {
        add("a", 1);
    }
    ConfigurationObject* createConfigurationObject() const override {
        ++m_counts->made;
        auto fresh = std::make_unique<Counted>(getName(), m_counts);
        fresh->onLoad = onLoad;
        return fresh.release();
    }
    void loadContent(ConfigReader& reader) override {
        ++m_counts->loaded;
        if (onLoad)
            onLoad();
        TestObject::loadContent(reader);
    }
    void emitSignalsAfterConfigLoading() override { ++m_counts->signalled; }
    using TestObject::saveContent;
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        if (onSave)
            onSave(writer, reader);
        if (!savesItself)
            TestObject::saveContent(writer, reader, onlyDifferent);
    }
    bool canBeSavedToUserConfig(ConfigReader& reader) const override {
        return isAlwaysSaved || TestObject::canBeSavedToUserConfig(reader);
    }
    Counted& set(int a) {
        value<int>("a").setValue(a);
        return *this;
    }
    /// @return what was counted since the last call
    Counts take() const { return std::exchange(*m_counts, {}); }

    std::function<void()> onLoad;
    std::function<void(ConfigWriter&, ConfigReader&)> onSave;
    bool savesItself = false;   ///< onSave writes everything
    bool isAlwaysSaved = false; ///< without a look at the reference

private:
    std::shared_ptr<Counts> m_counts;
};

const std::string nothing = "<Configuration version=\"1.0\"/>";

constexpr Counts once = {1, 1, 0}; // a reader of one document leaves signals to others

TEST(SharedReference, AnswersBothQuestionsOfASave) {
    Counted object;
    object.set(2);
    EXPECT_EQ(document("<Test><a>2</a></Test>"), saveDifferent(object, "<Test><a>3</a></Test>"));
    EXPECT_EQ(once, object.take());
    EXPECT_EQ(nothing, saveDifferent(object, "<Test><a>2</a></Test>"));
    EXPECT_EQ(once, object.take());
}

TEST(SharedReference, AnswersForAnObjectWithAKey) {
    SimpleConfigReader reader = readerOf("<Test><a>3</a></Test>");
    ConfigWriter writer("1.0");
    Counted object;
    writer.putOnlyDifferentClassContents("Test", "k", object, reader, "");
    EXPECT_EQ(once, object.take());
    EXPECT_EQ(document("<Test key=\"k\"><a>1</a></Test>"), compact(writer));
}

TEST(SharedReference, HoldsThoseOfTheChildren) {
    Counted object;
    auto child = std::make_unique<Counted>("Child");
    const Counted& counted = *child;
    object.addChild(child.release());
    EXPECT_EQ(document("<Test><a>1</a><Child><a>1</a></Child></Test>"),
              saveDifferent(object, "<Test><a>3</a></Test>"));
    EXPECT_EQ(once, object.take());
    EXPECT_EQ(Counts(), counted.take()) << "a fresh parent of this class has no child";
}

TEST(SharedReference, IsMadeOnceWhereAClassAnswersOneOfTheQuestions) {
    Counted saved;
    saved.isAlwaysSaved = true;
    EXPECT_EQ(document("<Test/>"), saveDifferent(saved, "<Test/>"));
    EXPECT_EQ(once, saved.take());

    Counted saving;
    saving.savesItself = true;
    saving.onSave = [](ConfigWriter& writer, ConfigReader&) { writer.putInt("extra", 5, ""); };
    EXPECT_EQ(document("<Test><extra>5</extra></Test>"),
              saveDifferent(saving, "<Test><a>3</a></Test>"));
    EXPECT_EQ(once, saving.take());

    saving.isAlwaysSaved = true;
    EXPECT_EQ(document("<Test><extra>5</extra></Test>"), saveDifferent(saving, "<Test/>"));
    EXPECT_EQ(Counts(), saving.take());
}

TEST(SharedReference, IsThatOfOneSave) {
    AdvancedConfigReader reader;
    const auto setReference = [&](const std::string& elements) {
        reader.addStringSource(document(elements), {}, AdvancedConfigReader::System, {"1.0"});
    };
    setReference("<Test><a>2</a></Test>");
    Counted object;
    object.set(2);
    EXPECT_EQ(nothing, saveDifferent(object, reader));
    setReference("<Test><a>3</a></Test>");
    EXPECT_EQ(document("<Test><a>2</a></Test>"), saveDifferent(object, reader));
    EXPECT_EQ((Counts{2, 2, 2}), object.take());
    // Each question by itself is answered by one of its own.
    EXPECT_TRUE(object.canBeSavedToUserConfig(reader));
    setReference("<Test><a>2</a></Test>");
    EXPECT_FALSE(object.canBeSavedToUserConfig(reader));
    EXPECT_EQ((Counts{2, 2, 2}), object.take());
}

TEST(SharedReference, IsMadeAnewAfterASaveThatThrew) {
    AdvancedConfigReader reader;
    const auto setReference = [&](const std::string& elements) {
        reader.addStringSource(document(elements), {}, AdvancedConfigReader::System, {"1.0"});
    };
    const auto fail = [] { throw std::runtime_error("full"); };
    setReference("<Test><a>2</a></Test>");
    Counted object;
    object.onSave = [&](ConfigWriter&, ConfigReader&) { fail(); };
    EXPECT_THROW(saveDifferent(object, reader), std::runtime_error);
    object.onSave = nullptr;
    setReference("<Test><a>1</a></Test>");
    EXPECT_FALSE(object.canBeSavedToUserConfig(reader));
    EXPECT_EQ(nothing, saveDifferent(object, reader));
    EXPECT_EQ((Counts{3, 3, 3}), object.take());

    object.onLoad = fail;
    EXPECT_THROW(saveDifferent(object, reader), std::runtime_error);
    object.onLoad = nullptr;
    setReference("<Test><a>2</a></Test>");
    EXPECT_EQ(document("<Test><a>1</a></Test>"), saveDifferent(object, reader));
    EXPECT_EQ((Counts{2, 2, 1}), object.take());
}

TEST(SharedReference, IsThatOfEachObject) {
    SimpleConfigReader reader = readerOf("<Test><a>2</a></Test><Other><a>3</a></Other>");
    ConfigWriter writer("1.0");
    Counted first;
    Counted same;
    Counted other("Other");
    for (Counted* object : {&first, &same, &other})
        writer.putOnlyDifferentClassContents(object == &same ? "Same" : object->getName(),
                                             object->set(2), reader, "");
    EXPECT_EQ(document("<Other><a>2</a></Other>"), compact(writer));
    for (const Counted* object : {&first, &same, &other})
        EXPECT_EQ(once, object->take());
}

TEST(SharedReference, IsKeptWhileAnObjectSavesAnotherWithTheSameReader) {
    SimpleConfigReader reader = readerOf("<Test><a>2</a></Test><Inner><a>3</a></Inner>");
    Counted inner("Inner");
    Counted outer;
    outer.onSave = [&](ConfigWriter& writer, ConfigReader& sameReader) {
        writer.putOnlyDifferentClassContents("Inner", inner, sameReader, "");
    };
    EXPECT_EQ(document("<Test><Inner><a>1</a></Inner><a>1</a></Test>"),
              saveDifferent(outer, reader));
    EXPECT_EQ(once, inner.take());
    EXPECT_EQ(once, outer.take());
    inner.onSave = [](ConfigWriter&, ConfigReader&) { throw std::runtime_error("full"); };
    outer.onSave = [save = outer.onSave](ConfigWriter& writer, ConfigReader& sameReader) {
        EXPECT_THROW(save(writer, sameReader), std::runtime_error);
    };
    saveDifferent(outer, reader);
    EXPECT_EQ(once, outer.take());
}

TEST(SharedReference, IsNotThatOfAnotherReader) {
    SimpleConfigReader other = readerOf("<Test><a>1</a></Test>");
    Counted object;
    object.onSave = [&](ConfigWriter&, ConfigReader& reader) {
        EXPECT_FALSE(object.canBeSavedToUserConfig(other));
        EXPECT_TRUE(object.canBeSavedToUserConfig(reader));
    };
    EXPECT_EQ(document("<Test><a>1</a></Test>"), saveDifferent(object, "<Test><a>2</a></Test>"));
    EXPECT_EQ((Counts{2, 2, 0}), object.take());
}

TEST(SharedReference, IsMadeAnewWhereTheReaderWasMoved) {
    Counted object;
    object.set(5).onSave = [](ConfigWriter&, ConfigReader& reader) { reader.tagExists("Deep"); };
    EXPECT_EQ(document("<Test/>"),
              saveDifferent(object, "<Test><a>1</a></Test><Deep><Test><a>5</a></Test></Deep>"));
    EXPECT_EQ((Counts{2, 2, 0}), object.take());
}

TEST(DifferenceSave, LeavesTheWriterWhereItWasWhenThereIsNothingToSave) {
    for (const bool isKeyed : {false, true}) {
        SimpleConfigReader reader = readerOf("<Test><a>1</a></Test>");
        ConfigWriter writer("1.0");
        Counted object;
        object.onLoad = [&] { writer.createNodeAndMakeCurrent("Log", ""); };
        isKeyed ? writer.putOnlyDifferentClassContents("Test", "k", object, reader, "")
                : writer.putOnlyDifferentClassContents("Test", object, reader, "");
        writer.putInt("after", 1, "");
        EXPECT_EQ(document("<Log/><after>1</after>"), compact(writer));
    }
}

TEST(SharedReference, IsNotThatOfAnotherObject) {
    SimpleConfigReader reader = readerOf("<Test><a>2</a></Test><Other><a>3</a></Other>");
    Counted other("Other");
    Counted object;
    object.onSave = [&](ConfigWriter&, ConfigReader& sameReader) {
        EXPECT_FALSE(other.set(3).canBeSavedToUserConfig(sameReader));
        EXPECT_TRUE(other.set(2).canBeSavedToUserConfig(sameReader));
    };
    EXPECT_EQ(document("<Test><a>1</a></Test>"), saveDifferent(object, reader));
    EXPECT_EQ(once, object.take());
    EXPECT_EQ((Counts{2, 2, 0}), other.take());
}

class SharedReferenceOfSaves : public Support::ManagerFixture,
                               public testing::WithParamInterface<Support::SaveMode> {};

INSTANTIATE_TEST_SUITE_P(, SharedReferenceOfSaves, Support::anySaveMode, Support::nameOfMode);

TEST_P(SharedReferenceOfSaves, IsMadeOnceForEachObject) {
    m_manager.setSaveMode(GetParam());
    writeFile(m_systemFile, document("<Test><a>2</a></Test><Keyed><a>3</a></Keyed>"));
    useTwoFiles();
    const auto object = add(std::make_shared<Counted>());
    const auto keyed = add(std::make_shared<Counted>("Keyed"), "Keyed", "k");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0")); // a merge compares with what was loaded, too
    for (const int a : {4, 5}) {
        for (const auto& counted : {object, keyed}) {
            counted->set(a);
            counted->take();
        }
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        for (const auto& counted : {object, keyed})
            EXPECT_EQ((Counts{1, 1, 1}), counted->take());
    }
    EXPECT_EQ(document("<Keyed key=\"k\"><a>5</a></Keyed><Test><a>5</a></Test>"),
              Support::withoutFormatting(Support::readFile(m_userFile)));
}

// --- what the reader of a child answers ---------------------------------------------------------

/// Calls back with the reader that the named child gets while its parent is saved.
template <typename Call>
void withReaderOfChild(ConfigReader& outer, const std::string& childName, Call call) {
    int calls = 0;
    const auto parent = makeParent(childName, [&](const auto&, auto&, ConfigReader& reader) {
        ++calls;
        call(reader);
    });
    ConfigWriter writer("1.0");
    parent->saveContent(writer, outer, true);
    EXPECT_EQ(1, calls);
}

/// What an operation of a reader returns: its result and its outputs as one text.
using Question = std::function<std::string(ConfigReader&)>;

std::string told(ConfigurationAccessResult result, const std::string& outputs) {
    return (result == success ? "Success " : "Failure ") + outputs;
}

template <typename T>
Question getter(ConfigurationAccessResult (ConfigReader::*get)(const std::string&, T&, bool&),
                const std::string& name) {
    return [=](ConfigReader& reader) {
        T value{};
        bool editable = true;
        const auto result = (reader.*get)(name, value, editable);
        return told(result, testing::PrintToString(value) + (editable ? "" : " locked"));
    };
}

/// Loads an object with the value "v".
Question
loading(const std::function<ConfigurationAccessResult(ConfigReader&, ConfigurationObject&)>& load) {
    return [=](ConfigReader& reader) {
        TestObject object;
        object.add("v", 0);
        const auto result = load(reader, object);
        return told(result, std::to_string(object.value<int>("v").getValue()) +
                                (object.hasNonEditableEntries() ? " locked" : ""));
    };
}

std::vector<Question> questions() {
    std::vector<Question> all = {
        getter(&ConfigReader::getUnsignedInt, "minus"),
        getter(&ConfigReader::getFloat, "half"),
        [](ConfigReader& reader) {
            double value = 0;
            bool editable = true;
            const auto result = reader.getDoubleScientific("half", 10, value, editable);
            return told(result, std::to_string(value) + (editable ? "" : " locked"));
        },
        [](ConfigReader& reader) {
            bool editable = true;
            const auto result = reader.getEditable(editable);
            return told(result, editable ? "" : "locked");
        },
        [](ConfigReader& reader) {
            std::set<std::string> keys;
            const auto result = reader.getKeys("Keyed", keys);
            return told(result, testing::PrintToString(keys));
        },
        [](ConfigReader& reader) {
            std::string entries;
            const auto result = reader.createConfigurationObjects("Keyed", [&](std::string key) {
                entries += key + '=' + getter(&ConfigReader::getInt, "v")(reader) + ';';
            });
            return told(result, entries);
        },
        [](ConfigReader& reader) {
            std::string answers = told(reader.tagExists("Nowhere"), "");
            answers += getter(&ConfigReader::getInt, "v")(reader);
            answers += told(reader.tagExists("Far"), "");
            return answers + getter(&ConfigReader::getInt, "v")(reader);
        },
        [](ConfigReader& reader) {
            std::vector<TestObject> found(2);
            for (TestObject& object : found)
                object.add("v", 0);
            std::vector<ConfigurationObject*> objects = {&found[0], &found[1]};
            std::string answers;
            for (const std::vector<std::string>& keys :
                 {std::vector<std::string>{"1", "2"}, {"3", "1"}, {"1", "2", "1"}}) {
                answers += told(reader.getClassContents("Keyed", keys, objects), "");
                for (const TestObject& object : found)
                    answers += std::to_string(object.value<int>("v").getValue()) + ' ';
            }
            return answers;
        },
        loading([](auto& reader, auto& object) { return reader.getClassContents(object); }),
        loading([](auto& reader, auto& object) {
            return reader.findAndGetClassContents("Far", object);
        }),
        loading([](auto& reader, auto& object) {
            return reader.findAndGetClassContents("Keyed", "2", object);
        }),
    };
    for (const std::string name : {"v", "locked", "text", "nowhere"}) {
        all.push_back(getter(&ConfigReader::getInt, name));
        all.push_back(getter(&ConfigReader::getString, name));
    }
    for (const std::string name : {"yes", "nowhere"})
        all.push_back(getter(&ConfigReader::getBool, name));
    for (const std::string name : {"half", "nowhere"})
        all.push_back(getter(&ConfigReader::getDouble, name));
    for (const std::string name : {"list", "nowhere"})
        all.push_back([=](ConfigReader& reader) {
            std::vector<std::string> values = {"former"};
            bool editable = true;
            std::map<std::string, bool> items = {{"former", true}};
            const auto result = reader.getStringVector(name, values, editable, items);
            return told(result, testing::PrintToString(values) + testing::PrintToString(items) +
                                    (editable ? "" : " locked"));
        });
    for (const std::string name : {"list", "Keyed", "nowhere"})
        all.push_back([=](ConfigReader& reader) {
            std::vector<std::string> values = {"former"};
            bool editable = true;
            const auto result = reader.getStrings(name, values, editable);
            return told(result, testing::PrintToString(values) + (editable ? "" : " locked"));
        });
    for (const std::string name : {"Child", "Far", "Nowhere"})
        all.push_back(loading(
            [=](auto& reader, auto& object) { return reader.getClassContents(name, object); }));
    for (const std::string key : {"1", "2", "3"})
        all.push_back(loading([=](auto& reader, auto& object) {
            return reader.getClassContents("Keyed", key, object);
        }));
    return all;
}

const std::string asked =
    "<v>1</v><Keyed key='2'><v>2</v></Keyed><Child><v>3</v></Child>"
    "<Test editable='false'><v>4</v><locked editable='false'>5</locked><text>six</text>"
    "<yes>true</yes><half editable='false'>0.5</half><minus>-1</minus>"
    "<list editable='false'><item>one</item><item editable='false'>two</item></list>"
    "<Keyed key='1'><v>11</v></Keyed><Keyed key='2' editable='false'><v>12</v></Keyed>"
    "<Keyed><v>10</v></Keyed><Child><v editable='false'>13</v></Child></Test>"
    "<Far><v>7</v></Far>";

TEST(ReaderOfAChild, AnswersAsAReaderThatStandsOnTheElementOfTheParent) {
    for (const std::string childName : {"Child", ""}) {
        for (std::size_t i = 0; i < questions().size(); ++i) {
            SCOPED_TRACE(childName + std::to_string(i));
            SimpleConfigReader standing = readerOf(asked);
            EXPECT_EQ(success, standing.setCurrentNode("Test"));
            SimpleConfigReader outer = readerOf(asked);
            withReaderOfChild(outer, childName, [&](ConfigReader& reader) {
                const std::string answer = questions()[i](reader);
                EXPECT_EQ(questions()[i](standing), answer);
            });
            EXPECT_EQ("Success 1", getter(&ConfigReader::getInt, "v")(outer));
        }
    }
}

TEST(ReaderOfAChild, AnswersNothingWhereTheParentHasNoElement) {
    for (std::size_t i = 0; i < questions().size(); ++i) {
        SCOPED_TRACE(i);
        SimpleConfigReader outer = readerOf("<v>1</v><Far><v>7</v></Far><Keyed key='1'/>");
        SimpleConfigReader empty = readerOf("");
        withReaderOfChild(outer, "Child", [&](ConfigReader& reader) {
            const std::string answer = questions()[i](reader);
            EXPECT_THAT(answer, testing::Not(testing::HasSubstr("Success")));
        });
    }
    SimpleConfigReader outer = readerOf("");
    withReaderOfChild(outer, "Child", [](ConfigReader& reader) {
        std::vector<std::string> values = {"former"};
        bool editable = true;
        std::map<std::string, bool> items = {{"former", true}};
        EXPECT_EQ(failure, reader.getStringVector("list", values, editable, items));
        std::vector<std::string> texts = {"former"};
        EXPECT_EQ(failure, reader.getStrings("list", texts, editable));
        EXPECT_THAT(texts, IsEmpty());
        EXPECT_THAT(values, IsEmpty());
        EXPECT_THAT(items, IsEmpty());
    });
}

TEST(ReaderOfAChild, IsMovedByItselfAlone) {
    TestObject parent;
    std::vector<std::string> answers;
    for (const std::string name : {"First", "", "Second"})
        parent.addChild(new SelfWriting(name, [&](const auto&, auto&, ConfigReader& reader) {
            answers.push_back(getter(&ConfigReader::getInt, "v")(reader));
            reader.tagExists("Far");
            answers.push_back(getter(&ConfigReader::getInt, "v")(reader));
        }));
    saveDifferent(parent, asked);
    EXPECT_THAT(answers, ElementsAre("Success 4", "Success 7", "Success 4", "Success 7",
                                     "Success 4", "Success 7"));
}

TEST(ReaderOfAChild, StandsOnTheElementOfTheNextNamedObjectAround) {
    // Test > Middle > nameless > Child
    std::vector<std::string> answers;
    TestObject parent;
    auto middle = std::make_unique<TestObject>("Middle");
    auto inlined = std::make_unique<TestObject>("");
    inlined->addChild(new SelfWriting("Child", [&](const auto&, auto&, ConfigReader& reader) {
        for (const std::string name : {"m", "v"})
            answers.push_back(getter(&ConfigReader::getInt, name)(reader));
        TestObject child("Child");
        child.add("c", 0);
        EXPECT_EQ(success, reader.getClassContents("Child", child));
        EXPECT_EQ(3, child.value<int>("c").getValue());
    }));
    middle->addChild(inlined.release());
    parent.addChild(middle.release());
    saveDifferent(parent, "<Test><v>1</v><Middle><m>2</m><Child><c>3</c></Child></Middle></Test>");
    EXPECT_THAT(answers, ElementsAre("Success 2", "Failure 0"));
}

TEST(ReaderOfAChild, LayersDocumentsAsEveryLoadDoes) {
    AdvancedConfigReader layered;
    const auto addSource = [&](const std::string& elements, AdvancedConfigReader::Priority rank) {
        layered.addStringSource(document(elements), {}, rank, {"1.0"});
    };
    addSource("<Test editable='false'><v>1</v><w>2</w><Child><v editable='false'>3</v><w>4</w>"
              "</Child></Test>",
              AdvancedConfigReader::System);
    addSource("<Test><v>5</v><Child editable='false'><v editable='true'>6</v><w>7</w></Child>"
              "</Test>",
              AdvancedConfigReader::User);
    withReaderOfChild(layered, "Child", [](ConfigReader& reader) {
        EXPECT_EQ("Success 5", getter(&ConfigReader::getInt, "v")(reader));
        EXPECT_EQ("Success 2", getter(&ConfigReader::getInt, "w")(reader));
        bool editable = true;
        EXPECT_EQ(success, reader.getEditable(editable));
        EXPECT_FALSE(editable);

        TestObject child("Child");
        child.add("v", 0).add("w", 0);
        EXPECT_EQ(success, reader.getClassContents("Child", child));
        EXPECT_EQ(3, child.value<int>("v").getValue());
        EXPECT_EQ(7, child.value<int>("w").getValue());
        EXPECT_TRUE(child.isEditable());
        EXPECT_FALSE(child.value<int>("v").isEditable());
        EXPECT_EQ(1, child.signals);
        EXPECT_EQ(failure, reader.getClassContents("Nowhere", child));
        EXPECT_EQ(1, child.signals);
    });
}

// --- through the manager ------------------------------------------------------------------------

/// Counts its saves in a value that only its own way of saving writes.
class Diary : public TestObject {
public:
    Diary() : TestObject("Diary") { add("c", 1).add("pages", 0, NotPersistent); }

    ConfigurationObject* createConfigurationObject() const override { return new Diary; }
    void loadContent(ConfigReader& reader) override {
        TestObject::loadContent(reader);
        int pages = 0;
        bool editable = true;
        if (reader.getInt("Pages", pages, editable) == success)
            value<int>("pages").setValue(pages);
    }
    void saveContent(ConfigWriter& writer) const override {
        TestObject::saveContent(writer);
        putPages(writer);
    }
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        TestObject::saveContent(writer, reader, onlyDifferent);
        Diary reference;
        reader.getClassContents("Diary", reference);
        if (!value<int>("pages").comapreValue(&reference.value<int>("pages")))
            putPages(writer);
    }

private:
    void putPages(ConfigWriter& writer) const {
        writer.putInt("Pages", value<int>("pages").getValue(), "");
    }
};

class Desk : public TestObject {
public:
    Desk() : TestObject("Desk") { addChild(new Diary); }
    ConfigurationObject* createConfigurationObject() const override { return new Desk; }
    ConfigurationValue<int>& pages() const { return child("Diary").value<int>("pages"); }
};

class SelfWritingChildren : public Support::ManagerFixture {
protected:
    std::string userFile() const {
        return Support::withoutFormatting(Support::readFile(m_userFile));
    }
};

TEST_F(SelfWritingChildren, AreBroughtBackFromTheUsersFile) {
    writeFile(m_systemFile, document("<Desk><Diary><Pages>3</Pages></Diary></Desk>"));
    useTwoFiles();
    const auto desk = add(std::make_shared<Desk>());
    EXPECT_EQ(3, desk->pages().getValue());
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Desk/>"), userFile());
    desk->pages().setValue(4);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Desk><Diary><Pages>4</Pages></Diary></Desk>"), userFile());
    EXPECT_EQ(4, add(std::make_shared<Desk>())->pages().getValue());
}

TEST_F(SelfWritingChildren, AreComparedBelowTheElementThatTheirParentIsRegisteredUnder) {
    writeFile(m_systemFile, document("<Desk><Diary><Pages>1</Pages></Diary></Desk>"
                                     "<Alias><Diary><Pages>2</Pages></Diary></Alias>"
                                     "<Keyed key='k'><Diary><Pages>3</Pages></Diary></Keyed>"
                                     "<Keyed key='l'><Diary><Pages>4</Pages></Diary></Keyed>"));
    useTwoFiles();
    const auto alias = std::make_shared<Desk>();
    m_manager.addConfigurationObject(alias, "Alias");
    const auto k = add(std::make_shared<Desk>(), "Keyed", "k");
    const auto l = add(std::make_shared<Desk>(), "Keyed", "l");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Alias/><Keyed key=\"k\"/><Keyed key=\"l\"/>"), userFile());
    alias->pages().setValue(1);
    k->pages().setValue(4);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Alias><Diary><Pages>1</Pages></Diary></Alias>"
                       "<Keyed key=\"k\"><Diary><Pages>4</Pages></Diary></Keyed>"
                       "<Keyed key=\"l\"/>"),
              userFile());
}

TEST_F(SelfWritingChildren, AreComparedBelowTheElementOfANamelessRegisteredParent) {
    writeFile(m_systemFile, document("<Diary><Pages>9</Pages></Diary>"
                                     "<Alias><Diary><Pages>2</Pages></Diary></Alias>"));
    useTwoFiles();
    const auto parent =
        TestObject::make("", [](TestObject& object) { object.addChild(new Diary); });
    m_manager.addConfigurationObject(parent, "Alias");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Alias/>"), userFile());
}

} // namespace
} // namespace Orvant
