#include <ConfigurationFramework/ConfigurationObject.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ModelTestSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Base = ConfigurationItemBase;
using Names = std::vector<std::string>;
using Support::compact;
using Support::document;
using Support::readerOf;
using Support::TestObject;

using Build = std::function<void(TestObject&)>;

TestObject* newObject(const std::string& name, const Build& build = {}) {
    auto object = std::make_unique<TestObject>(name);
    if (build)
        build(*object);
    return object.release();
}

/// Three levels, with an inline child on the second and on the third.
void buildTree(TestObject& root) {
    root.add("A", 1).add("B", 2);
    root.addChild(newObject("Child", [](TestObject& child) {
        child.add("C", 3);
        child.addChild(newObject(
            "Grandchild", [](TestObject& grandchild) { grandchild.add("D", 4).add("E", 5); }));
        child.addChild(newObject("", [](TestObject& inlineChild) { inlineChild.add("F", 6); }));
    }));
    root.addChild(newObject("", [](TestObject& inlineChild) { inlineChild.add("G", 7); }));
}

std::shared_ptr<TestObject> makeTree() {
    return TestObject::make("Test", buildTree);
}

/// The tree's objects by depth.
std::vector<TestObject*> objectsOf(TestObject& tree) {
    return {&tree, &tree.child("Child"), &tree.child("Child").child("Grandchild"),
            &tree.child("Child").child(""), &tree.child("")};
}

/// The tree's values, A to G.
std::vector<ConfigurationValue<int>*> valuesOf(TestObject& tree) {
    TestObject& child = tree.child("Child");
    return {&tree.value<int>("A"),
            &tree.value<int>("B"),
            &child.value<int>("C"),
            &child.child("Grandchild").value<int>("D"),
            &child.child("Grandchild").value<int>("E"),
            &child.child("").value<int>("F"),
            &tree.child("").value<int>("G")};
}

std::vector<int> numbersOf(TestObject& tree) {
    std::vector<int> numbers;
    for (const auto* value : valuesOf(tree))
        numbers.push_back(value->getValue());
    return numbers;
}

/// The tree's values and objects.
std::vector<Base*> itemsOf(TestObject& tree) {
    std::vector<Base*> items;
    for (auto* object : objectsOf(tree))
        items.push_back(object);
    for (auto* value : valuesOf(tree))
        items.push_back(value);
    return items;
}

std::vector<bool> locksOf(TestObject& tree) {
    std::vector<bool> locks;
    for (const auto* item : itemsOf(tree))
        locks.push_back(!item->isEditable());
    return locks;
}

/// Sets A to G to 11, 12, ...
void setAll(TestObject& tree) {
    int number = 11;
    for (auto* value : valuesOf(tree))
        value->setValue(number++);
}

const std::vector<int> treeDefaults = {1, 2, 3, 4, 5, 6, 7};
const std::vector<int> treeSet = {11, 12, 13, 14, 15, 16, 17};
const std::string treeDocument = "<A>11</A><B>12</B>"
                                 "<Child><C>13</C><Grandchild><D>14</D><E>15</E></Grandchild>"
                                 "<F>16</F></Child><G>17</G>";

Names namesOf(const std::vector<const ConfigurationValueBase*>& values) {
    Names names;
    for (const auto* value : values)
        names.push_back(value->getName());
    return names;
}

void load(ConfigurationObject& object, const std::string& elements) {
    SimpleConfigReader reader = readerOf(elements);
    object.loadContent(reader);
}

std::string save(const ConfigurationObject& object) {
    ConfigWriter writer("1.0");
    object.saveContent(writer);
    return compact(writer);
}

std::string saveDifferent(const ConfigurationObject& object, const ConfigurationObject* other) {
    ConfigWriter writer("1.0");
    object.saveDifferentConfigurationValues(writer, other);
    return compact(writer);
}

template <typename T>
ConfigurationValueBase* newValue(const std::string& name, const T& defaultValue) {
    return new ConfigurationValue<T>(name, "", defaultValue, Base::Visible, Base::LoadAndSave,
                                     Base::AllProducts);
}

/// As applications write their settings: the default constructor makes everything, and the factory
/// returns a default-constructed object.
class Settings : public ConfigurationObject {
public:
    Settings() : ConfigurationObject("Settings", "All of it", LoadAndSave, AllProducts) {
        ++instances;
        addConfigurationValue(newValue("Count", 1));
        addConfigurationObject(makeTree()->clone());
    }
    Settings(const Settings& other) : ConfigurationObject(other) { ++instances; }
    Settings& operator=(const Settings&) = default;
    ~Settings() override { --instances; }

    ConfigurationObject* createConfigurationObject() const override { return new Settings; }

    ConfigurationValue<int>& count() const {
        return dynamic_cast<ConfigurationValue<int>&>(*getConfigurationValue("Count"));
    }
    TestObject& tree() const { return dynamic_cast<TestObject&>(*getConfigurationObject("Test")); }

    static int instances; ///< that are alive
};

int Settings::instances = 0;

/// Records the order in which it is loaded, saved and deleted.
template <typename Item>
class Recorded : public Item {
public:
    template <typename... Arguments>
    explicit Recorded(Names& record, Arguments... arguments)
        : Item(arguments...), m_record(record) {}
    Recorded(const Recorded&) = delete;
    Recorded& operator=(const Recorded&) = delete;
    ~Recorded() override { note("delete"); }

    void loadContent(ConfigReader& reader) override {
        note("load");
        Item::loadContent(reader);
    }
    using Item::saveContent;
    void saveContent(ConfigWriter& writer) const override {
        note("save");
        Item::saveContent(writer);
    }

private:
    void note(const std::string& event) const { m_record.push_back(event + ' ' + this->getName()); }

    Names& m_record;
};

Recorded<ConfigurationValue<int>>* newRecordedValue(Names& record, const std::string& name) {
    return new Recorded<ConfigurationValue<int>>(record, name, "", 0, Base::Visible,
                                                 Base::LoadAndSave, Base::AllProducts);
}

/// Lets the tests add their own items.
class OpenObject : public TestObject {
public:
    using ConfigurationObject::addConfigurationObject;
    using ConfigurationObject::addConfigurationValue;
    using ConfigurationObject::clearConfigurationItems;
    using TestObject::TestObject;
};

void addRecordedItems(OpenObject& object, Names& record) {
    object.addConfigurationObject(new Recorded<TestObject>(record, "Child"));
    object.addConfigurationValue(newRecordedValue(record, "First"));
    object.addConfigurationObject(new Recorded<TestObject>(record, ""));
    object.addConfigurationValue(newRecordedValue(record, "Second"));
}

// --- making, holding, finding -------------------------------------------------------------------

TEST(ConfigurationObject, KeepsWhatItIsMadeOf) {
    class Plain : public ConfigurationObject {
    public:
        Plain() : ConfigurationObject("Name", "Text", SaveOnly, Product3) {}
        ConfigurationObject* createConfigurationObject() const override { return new Plain; }
    };
    Plain object;
    EXPECT_EQ("Name", object.getName());
    EXPECT_EQ("Text", object.getDescription());
    EXPECT_EQ(Base::SaveOnly, object.getPersistenceType());
    EXPECT_EQ(Base::Product3, object.getProductType());
    EXPECT_EQ(Base::ObjectItem, object.getConfigItemType());
    EXPECT_TRUE(object.isEditable());
}

TEST(ConfigurationObject, IsAbstractWithAVirtualDestructor) {
    EXPECT_TRUE(std::is_abstract_v<ConfigurationObject>);
    EXPECT_TRUE(std::has_virtual_destructor_v<ConfigurationObject>);
}

TEST(ConfigurationObject, IsEmptyAtFirst) {
    const TestObject object;
    EXPECT_EQ(0u, object.getConfigurationValuesSize());
    EXPECT_EQ(0u, object.getConfigurationObjectsSize());
    EXPECT_THAT(object.getConfigurationValues(), IsEmpty());
    EXPECT_EQ(object.beginValueIterator(), object.endValueIterator());
    EXPECT_EQ(object.beginObjectIterator(), object.endObjectIterator());
    EXPECT_EQ("", object.getUserWarningMessages());
}

TEST(ConfigurationObject, HoldsItemsInTheOrderInWhichTheyWereAdded) {
    TestObject object;
    object.add("Z", 1).add("A", 0.5).add("M", true);
    auto* const second = newObject("Second");
    auto* const first = newObject("First");
    object.addChild(second).addChild(first);

    EXPECT_EQ(3u, object.getConfigurationValuesSize());
    EXPECT_THAT(namesOf(object.getConfigurationValues()), ElementsAre("Z", "A", "M"));
    const std::vector<const ConfigurationValueBase*> values(object.beginValueIterator(),
                                                            object.endValueIterator());
    EXPECT_EQ(object.getConfigurationValues(), values);
    EXPECT_EQ(2u, object.getConfigurationObjectsSize());
    const std::vector<ConfigurationObject*> objects(object.beginObjectIterator(),
                                                    object.endObjectIterator());
    EXPECT_THAT(objects, ElementsAre(second, first));
}

TEST(ConfigurationObject, FindsTheFirstItemOfExactlyTheName) {
    TestObject object;
    object.add("Same", 1).add("Same", 2).add("Other", 3);
    auto* const firstChild = newObject("Same");
    auto* const inlineChild = newObject("");
    object.addChild(firstChild).addChild(newObject("Same")).addChild(inlineChild);
    firstChild->add("Inside", 4).addChild(newObject("Deeper"));

    EXPECT_EQ(*object.beginValueIterator(), object.getConfigurationValue("Same"));
    EXPECT_EQ(1, object.value<int>("Same").getValue());
    EXPECT_EQ(3, object.value<int>("Other").getValue());
    EXPECT_EQ(firstChild, object.getConfigurationObject("Same"));
    EXPECT_EQ(inlineChild, object.getConfigurationObject(""));
    for (const std::string name : {"same", "Sam", "Same ", "Inside", "Deeper", "Test"}) {
        EXPECT_EQ(nullptr, object.getConfigurationValue(name)) << name;
        EXPECT_EQ(nullptr, object.getConfigurationObject(name)) << name;
    }
    EXPECT_EQ(nullptr, object.getConfigurationValue(""));
    EXPECT_EQ(nullptr, object.getConfigurationObject("Other"));
}

TEST(ConfigurationObject, DeletesItsItemsWithItself) {
    Names record;
    {
        OpenObject object;
        addRecordedItems(object, record);
        EXPECT_THAT(record, IsEmpty());
    }
    EXPECT_THAT(record, testing::UnorderedElementsAre("delete First", "delete Second",
                                                      "delete Child", "delete "));
}

TEST(ConfigurationObject, DeletesItsItemsWhenTheyAreCleared) {
    Names record;
    OpenObject object;
    addRecordedItems(object, record);
    object.clearConfigurationItems();
    EXPECT_EQ(4u, record.size());
    EXPECT_EQ(0u, object.getConfigurationValuesSize());
    EXPECT_EQ(0u, object.getConfigurationObjectsSize());
    object.clearConfigurationItems();
    EXPECT_EQ(4u, record.size());
    object.add("New", 1);
    EXPECT_NE(nullptr, object.getConfigurationValue("New"));
}

// --- loading ------------------------------------------------------------------------------------

TEST(ConfigurationObject, LoadsValuesAndChildrenAtEveryDepth) {
    const auto tree = makeTree();
    load(*tree, treeDocument);
    EXPECT_EQ(treeSet, numbersOf(*tree));
}

TEST(ConfigurationObject, LoadsValuesFirstAndAllInOrder) {
    Names record;
    OpenObject object;
    addRecordedItems(object, record);
    load(object, "<Child/>");
    EXPECT_THAT(record, ElementsAre("load First", "load Second", "load Child", "load "));
}

TEST(ConfigurationObject, LoadsInlineChildrenFromItsOwnElement) {
    const auto tree = makeTree();
    load(*tree, "<G>70</G><Child><G>71</G><F>60</F><Grandchild><F>61</F></Grandchild></Child>"
                "<F>62</F>");
    EXPECT_THAT(numbersOf(*tree), ElementsAre(1, 2, 3, 4, 5, 60, 70));
}

TEST(ConfigurationObject, ResetsWhatItsElementDoesNotHoldAndKeepsChildrenWithoutElement) {
    const auto tree = makeTree();
    setAll(*tree);
    load(*tree, "<A>21</A><B>many</B>");
    EXPECT_THAT(numbersOf(*tree), ElementsAre(21, 2, 13, 14, 15, 16, 7));
}

TEST(ConfigurationObject, LeavesTheReaderWhereItWas) {
    const auto tree = makeTree();
    SimpleConfigReader reader = readerOf(treeDocument);
    for (int i = 0; i < 2; ++i) {
        tree->setDefaultValues();
        tree->loadContent(reader);
        EXPECT_EQ(treeSet, numbersOf(*tree));
    }
}

TEST(ConfigurationObject, TakesLocksFromTheElements) {
    const auto tree = makeTree();
    const auto loadLocked = [&](const std::string& elements) {
        SimpleConfigReader reader = readerOf(elements);
        reader.getClassContents("Test", *tree);
    };
    loadLocked("<Test editable='false'><A editable='false'>11</A><Child>"
               "<Grandchild editable='false'><D>14</D></Grandchild></Child></Test>");
    // A locked element is still read the first time.
    EXPECT_THAT(numbersOf(*tree), ElementsAre(11, 2, 3, 14, 5, 6, 7));
    for (auto* item : itemsOf(*tree)) {
        // The inline child has the element of the root, and so its lock.
        const bool locked = item == tree.get() || item == &tree->child("") ||
                            item == &tree->value<int>("A") || item->getName() == "Grandchild";
        EXPECT_EQ(!locked, item->isEditable()) << item->getName();
    }

    loadLocked("<Test editable='true'><A>21</A><B>22</B></Test>");
    EXPECT_THAT(numbersOf(*tree), ElementsAre(11, 2, 3, 14, 5, 6, 7));
    EXPECT_FALSE(tree->isEditable());
}

TEST(ConfigurationObject, KeepsEverythingWhileItIsLocked) {
    const auto tree = makeTree();
    tree->setEditable(false);
    load(*tree, treeDocument);
    EXPECT_EQ(treeDefaults, numbersOf(*tree));
    EXPECT_FALSE(tree->value<int>("A").hasValue());

    tree->setEditable(true);
    tree->child("Child").setEditable(false);
    tree->child("").setEditable(false);
    load(*tree, treeDocument);
    EXPECT_THAT(numbersOf(*tree), ElementsAre(11, 12, 3, 4, 5, 6, 7));
}

TEST(ConfigurationObject, LoadsOnlyWhenItIsLoadable) {
    for (const auto persistence :
         {Base::LoadAndSave, Base::LoadOnly, Base::SaveOnly, Base::NotPersistent}) {
        TestObject object("Test", persistence);
        buildTree(object);
        load(object, treeDocument);
        EXPECT_EQ(object.isLoadable() ? treeSet : treeDefaults, numbersOf(object)) << persistence;
    }
}

TEST(ConfigurationObject, LoadsInOtherProductsToo) {
    const Support::RunningProduct product(1);
    TestObject object("Test", Base::LoadAndSave, Base::Product0);
    object.add("A", 1);
    load(object, "<A>11</A>");
    EXPECT_EQ(11, object.value<int>("A").getValue());
}

// --- saving in full -----------------------------------------------------------------------------

TEST(ConfigurationObject, SavesValuesAndChildrenAtEveryDepth) {
    const auto tree = makeTree();
    setAll(*tree);
    EXPECT_EQ(document(treeDocument), save(*tree));
}

TEST(ConfigurationObject, SavesDefaultsAndLockedValuesToo) {
    const auto tree = makeTree();
    for (auto* item : itemsOf(*tree))
        item->setEditable(false);
    EXPECT_EQ(document("<A>1</A><B>2</B><Child><C>3</C><Grandchild><D>4</D><E>5</E></Grandchild>"
                       "<F>6</F></Child><G>7</G>"),
              save(*tree));
}

TEST(ConfigurationObject, SavesValuesFirstAndAllInOrder) {
    Names record;
    OpenObject object;
    addRecordedItems(object, record);
    save(object);
    EXPECT_THAT(record, ElementsAre("save First", "save Second", "save Child", "save "));
}

TEST(ConfigurationObject, SavesDescriptionsOfChildrenAndValuesAsComments) {
    TestObject object;
    object.add("A", 1, Base::LoadAndSave, Base::AllProducts, "about A");
    object.addChild(new Settings);
    EXPECT_THAT(save(object),
                testing::StartsWith("<Configuration version=\"1.0\"><!--about A--><A>1</A>"
                                    "<!--All of it--><Settings><Count>1</Count>"));
}

TEST(ConfigurationObject, SavesInPlaceOfWhatWasThere) {
    const auto tree = makeTree();
    setAll(*tree);
    ConfigWriter writer(FileName(), document("<Child><Old/></Child><Other/><A>0</A>"));
    tree->saveContent(writer);
    EXPECT_EQ(document("<Other/>" + treeDocument), compact(writer));
}

TEST(ConfigurationObject, WritesNothingWhenItIsNotPersistentOrOfAnotherProduct) {
    const Support::RunningProduct product(2);
    const TestObject nothing("Test");
    const auto reference = TestObject::make("Test", [](TestObject& o) { o.add("A", 0); });
    for (const auto persistence :
         {Base::LoadAndSave, Base::SaveOnly, Base::LoadOnly, Base::NotPersistent}) {
        for (const auto products :
             {Base::Product2, Base::AllProducts, Base::Product1 | Base::Product3}) {
            SCOPED_TRACE(testing::Message() << persistence << ", " << products);
            TestObject object("Test", persistence, products);
            object.add("A", 1);
            const bool writes =
                persistence != Base::NotPersistent && (products & Base::Product2) != 0;
            const std::string expected = writes ? document("<A>1</A>") : save(nothing);
            EXPECT_EQ(writes, object.writesContent());
            EXPECT_EQ(expected, save(object));
            EXPECT_EQ(expected, saveDifferent(object, nullptr));
            EXPECT_EQ(expected, saveDifferent(object, reference.get()));
        }
    }
}

TEST(ConfigurationObject, LeavesOutInlineChildrenAndValuesThatWriteNothing) {
    const Support::RunningProduct product(2);
    TestObject object;
    object.add("A", 1, Base::NotPersistent).add("B", 2, Base::LoadOnly);
    object.add("C", 3, Base::LoadAndSave, Base::Product1);
    object.addChild(new TestObject("", Base::NotPersistent));
    object.child("").add("D", 4);
    EXPECT_EQ(document("<B>2</B>"), save(object));
}

// --- comparing ----------------------------------------------------------------------------------

TEST(ConfigurationObject, ComparesValuesOfOneName) {
    TestObject object;
    object.add("Equal", 1).add("Different", 1).add("OtherType", 1).add("Mine", 1);
    object.addChild(newObject("Child", [](TestObject& child) { child.add("Inside", 1); }));
    TestObject other;
    other.add("Theirs", 1).add("OtherType", 1.0).add("Different", 2).add("Equal", 1);
    other.addChild(newObject("Child", [](TestObject& child) { child.add("Inside", 1); }));

    EXPECT_TRUE(object.compareWithOtherConfigValue(&other, "Equal"));
    EXPECT_TRUE(object.compareWithOtherConfigValue(&object, "Mine"));
    for (const std::string name :
         {"Different", "OtherType", "Mine", "Theirs", "Inside", "Nowhere", ""})
        EXPECT_FALSE(object.compareWithOtherConfigValue(&other, name)) << name;
    EXPECT_FALSE(object.compareWithOtherConfigValue(nullptr, "Equal"));
}

/// Whether two objects differ, for all values and for the saved ones only.
struct Differences {
    bool any;
    bool saved;

    bool operator==(const Differences&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Differences& differences) {
        return out << "any " << differences.any << ", saved " << differences.saved;
    }
};

Differences differencesOf(const ConfigurationObject& left, const ConfigurationObject* right) {
    return {left.atLeastOneValueIsDifferent(right), left.atLeastOneSavedValueIsDifferent(right)};
}

/// Compares two objects that are built separately, in both directions.
Differences differencesOf(const Build& buildLeft, const Build& buildRight) {
    TestObject left("Left");
    TestObject right("Right");
    buildLeft(left);
    buildRight(right);
    const Differences differences = differencesOf(left, &right);
    EXPECT_EQ(differences, differencesOf(right, &left));
    return differences;
}

Build value(int number, Base::Persistence persistence = Base::LoadAndSave) {
    return [=](TestObject& object) { object.add("A", number, persistence); };
}

constexpr Differences none{false, false};
constexpr Differences both{true, true};
constexpr Differences notSaved{true, false};

TEST(ConfigurationObject, DiffersByEffectiveValues) {
    const Build nothing = [](TestObject&) {};
    EXPECT_EQ(none, differencesOf(nothing, nothing));
    EXPECT_EQ(none, differencesOf(value(1), value(1)));
    EXPECT_EQ(both, differencesOf(value(1), value(2)));
    EXPECT_EQ(none, differencesOf(value(1), [](TestObject& object) {
                  value(2)(object);
                  object.value<int>("A").setValue(1);
              }));
    EXPECT_EQ(both, differencesOf(value(1), [](TestObject& object) { object.add("A", 1.0); }));
}

TEST(ConfigurationObject, DiffersBySavedValuesOnlyWhereBothAreSavable) {
    EXPECT_EQ(both, differencesOf(value(1, Base::SaveOnly), value(2, Base::SaveOnly)));
    EXPECT_EQ(both, differencesOf(value(1, Base::SaveOnly), value(2, Base::LoadAndSave)));
    for (const auto persistence : {Base::LoadOnly, Base::NotPersistent}) {
        EXPECT_EQ(notSaved, differencesOf(value(1, persistence), value(2, persistence)));
        EXPECT_EQ(notSaved, differencesOf(value(1, persistence), value(2)));
        EXPECT_EQ(none, differencesOf(value(1, persistence), value(1)));
    }
}

TEST(ConfigurationObject, LooksAtValuesBehindOnesThatAreEqualOrNotSaved) {
    const auto build = [](int notSavable, int last) -> Build {
        return [=](TestObject& object) {
            object.add("A", notSavable, Base::LoadOnly).add("B", 0).add("C", last);
        };
    };
    EXPECT_EQ(both, differencesOf(build(1, 1), build(2, 2)));
    EXPECT_EQ(both, differencesOf(build(1, 1), build(1, 2)));
    EXPECT_EQ(notSaved, differencesOf(build(1, 1), build(2, 1)));
}

TEST(ConfigurationObject, PairsValuesByPosition) {
    EXPECT_EQ(none,
              differencesOf(value(1), [](TestObject& object) { object.add("OtherName", 1); }));
    EXPECT_EQ(both, differencesOf([](TestObject& object) { object.add("A", 1).add("B", 2); },
                                  [](TestObject& object) { object.add("B", 2).add("A", 1); }));
}

TEST(ConfigurationObject, DiffersByNumbersOfValuesAndChildren) {
    const Build twoValues = [](TestObject& object) {
        object.add("A", 1).add("B", 1, Base::NotPersistent);
    };
    const Build withChild = [](TestObject& object) {
        value(1)(object);
        object.addChild(newObject("Child"));
    };
    EXPECT_EQ(both, differencesOf(value(1), twoValues));
    EXPECT_EQ(both, differencesOf(value(1), withChild));
}

TEST(ConfigurationObject, DiffersFromNull) {
    EXPECT_EQ(both, differencesOf(TestObject(), nullptr));
}

TEST(ConfigurationObject, WithChildrenAlwaysHasSavedDifferencesAndNoneInsideThem) {
    const auto withChild = [](int number) -> Build {
        return [=](TestObject& object) {
            value(1)(object);
            object.addChild(newObject("Child", value(number)));
        };
    };
    const Differences savedOnly{false, true};
    EXPECT_EQ(savedOnly, differencesOf(withChild(1), withChild(1)));
    EXPECT_EQ(savedOnly, differencesOf(withChild(1), withChild(2)));

    const auto withLoadOnlyValue = [](int number) -> Build {
        return [=](TestObject& object) {
            value(number, Base::LoadOnly)(object);
            object.addChild(newObject("Child"));
        };
    };
    EXPECT_EQ(both, differencesOf(withLoadOnlyValue(1), withLoadOnlyValue(2)));
}

TEST(ConfigurationObject, ListsDifferentValuesByName) {
    TestObject object;
    object.add("Equal", 1).add("Different", 1).add("OtherType", 1).add("Mine", 1);
    object.add("NotPersistent", 1, Base::NotPersistent);
    object.addChild(newObject("Child", value(1)));
    TestObject other;
    other.add("Different", 2).add("NotPersistent", 2).add("OtherType", 1.0).add("Theirs", 1);
    other.add("Equal", 1);
    other.addChild(newObject("Child", value(2)));

    EXPECT_THAT(namesOf(object.getDifferentConfigurationValues(&other)),
                ElementsAre("Different", "OtherType", "Mine", "NotPersistent"));
    EXPECT_EQ(object.getConfigurationValue("Different"),
              object.getDifferentConfigurationValues(&other).front());
    EXPECT_THAT(object.getDifferentConfigurationValues(&object), IsEmpty());
    EXPECT_EQ(object.getConfigurationValues(), object.getDifferentConfigurationValues(nullptr));
}

TEST(ConfigurationObject, PairsValuesOfOneNameInOrder) {
    TestObject object;
    object.add("Same", 1).add("Same", 2);
    const std::unique_ptr<ConfigurationObject> other(object.clone());
    EXPECT_THAT(object.getDifferentConfigurationValues(other.get()), IsEmpty());
}

// --- saving differences -------------------------------------------------------------------------

TEST(ConfigurationObject, SavesTheValuesThatDiffer) {
    const Support::RunningProduct product(2);
    const auto build = [](int number) {
        return TestObject::make("Test", [=](TestObject& object) {
            object.add("Equal", 0).add("A", number).add("LoadOnly", number, Base::LoadOnly);
            object.add("SaveOnly", number, Base::SaveOnly);
            object.add("NotPersistent", number, Base::NotPersistent);
            object.add("OtherProduct", number, Base::LoadAndSave, Base::Product1);
        });
    };
    EXPECT_EQ(document("<A>1</A><LoadOnly>1</LoadOnly><SaveOnly>1</SaveOnly>"),
              saveDifferent(*build(1), build(2).get()));
    EXPECT_EQ(save(TestObject()), saveDifferent(*build(1), build(1).get()));
    EXPECT_EQ(document("<Equal>0</Equal><A>1</A><LoadOnly>1</LoadOnly><SaveOnly>1</SaveOnly>"),
              saveDifferent(*build(1), nullptr));
}

TEST(ConfigurationObject, SavesADifferenceWhereverItIs) {
    const struct {
        std::size_t value;
        std::string elements;
    } rows[] = {
        {0, "<A>100</A>"},
        {2, "<Child><C>100</C></Child>"},
        {4, "<Child><Grandchild><E>100</E></Grandchild></Child>"},
        {5, "<Child><F>100</F></Child>"},
        {6, "<G>100</G>"},
    };
    for (const auto& [index, elements] : rows) {
        const auto reference = makeTree();
        const auto tree = makeTree();
        valuesOf(*tree)[index]->setValue(100);
        EXPECT_EQ(document(elements), saveDifferent(*tree, reference.get()));
    }
    const auto tree = makeTree();
    EXPECT_EQ(save(TestObject()), saveDifferent(*tree, makeTree().get()));
}

TEST(ConfigurationObject, PairsChildrenByName) {
    const auto reference = TestObject::make("Test", [](TestObject& object) {
        object.addChild(newObject("X", value(1))).addChild(newObject("Y", value(2)));
    });
    const auto object = TestObject::make("Test", [](TestObject& changed) {
        changed.addChild(newObject("Y", value(2))).addChild(newObject("X", value(3)));
        changed.addChild(newObject("New", value(4))).addChild(newObject("Empty"));
    });
    EXPECT_EQ(document("<X><A>3</A></X><New><A>4</A></New>"),
              saveDifferent(*object, reference.get()));
}

TEST(ConfigurationObject, PairsChildrenOfOneNameInOrder) {
    const auto build = [](int last) {
        return TestObject::make("Test", [=](TestObject& object) {
            object.addChild(newObject("", value(1)));
            object.addChild(newObject("", [=](TestObject& child) { child.add("B", last); }));
        });
    };
    EXPECT_EQ(document("<B>3</B>"), saveDifferent(*build(3), build(2).get()));
}

TEST(ConfigurationObject, LeavesNoElementForAChildThatHasNothingToWrite) {
    const Support::RunningProduct product(2);
    const auto build = [](int number) {
        return TestObject::make("Test", [=](TestObject& object) {
            for (const auto& [persistence, products] :
                 {std::pair{Base::NotPersistent, Base::AllProducts},
                  std::pair{Base::LoadAndSave, Base::Product1}}) {
                for (const std::string name : {"Child", ""}) {
                    auto* const unwritten = new TestObject(name, persistence, products);
                    unwritten->addChild(newObject("Inside", value(number)));
                    object.addChild(&unwritten->add("A", number));
                }
                object.addChild(newObject("Values", [&](TestObject& child) {
                    child.add("A", number, persistence, products);
                }));
            }
        });
    };
    EXPECT_EQ(save(TestObject()), saveDifferent(*build(1), build(2).get()));
    EXPECT_EQ(save(TestObject()), saveDifferent(*build(1), nullptr));
}

TEST(ConfigurationObject, SavesTheDescriptionOfAChildThatDiffers) {
    TestObject object;
    auto* const settings = new Settings;
    object.addChild(settings);
    const std::unique_ptr<ConfigurationObject> reference(object.clone());
    settings->count().setValue(2);
    EXPECT_EQ(document("<!--All of it--><Settings><Count>2</Count></Settings>"),
              saveDifferent(object, reference.get()));
}

/// Writes an object's differences from the system's document.
std::string saveForUser(const ConfigurationObject& object, const std::string& systemElements) {
    SimpleConfigReader system = readerOf(systemElements);
    ConfigWriter writer("1.0");
    writer.putOnlyDifferentClassContents(object.getName(), object, system, "");
    return compact(writer);
}

/// Loads an object from the system's document and then from the user's.
void loadLayered(ConfigurationObject& object, const std::string& systemElements,
                 const std::string& userDocument) {
    AdvancedConfigReader reader;
    reader.addStringSource(document(systemElements), {}, AdvancedConfigReader::Priority::System,
                           {"1.0"});
    reader.addStringSource(userDocument, {}, AdvancedConfigReader::Priority::User, {"1.0"});
    reader.getClassContents(object.getName(), object);
}

TEST(ConfigurationObject, BringsBackAChangeAtAnyDepthFromTheUsersDocument) {
    const std::string system = "<Test>" + treeDocument + "</Test>";
    for (std::size_t i = 0; i < treeSet.size(); ++i) {
        const auto changed = makeTree();
        loadLayered(*changed, system, "");
        valuesOf(*changed)[i]->setValue(100);
        const std::string user = saveForUser(*changed, system);

        const auto loaded = makeTree();
        loadLayered(*loaded, system, user);
        auto expected = treeSet;
        expected[i] = 100;
        EXPECT_EQ(expected, numbersOf(*loaded)) << user;
    }
}

TEST(ConfigurationObject, IsComparedWithWhatTheReaderHolds) {
    const auto object = TestObject::make("Test", [](TestObject& o) { o.add("A", 1).add("B", 2); });
    object->value<int>("A").setValue(10);
    const struct {
        std::string system;
        std::string different;
    } rows[] = {
        {"<Test><A>10</A></Test>", ""},
        {"<Test><A>10</A><B>2</B></Test>", ""},
        {"<Test><A>10</A><B>3</B></Test>", "<B>2</B>"},
        {"<Test><A>1</A></Test>", "<A>10</A>"},
        {"<Test/>", "<A>10</A>"},
        {"<Other/>", "<A>10</A>"},
    };
    for (const auto& [system, different] : rows) {
        SCOPED_TRACE(system);
        SimpleConfigReader reader = readerOf(system);
        EXPECT_EQ(!different.empty(), object->canBeSavedToUserConfig(reader));
        ConfigWriter differences("1.0");
        object->saveContent(differences, reader, true);
        EXPECT_EQ(different.empty() ? save(TestObject()) : document(different),
                  compact(differences));
        ConfigWriter everything("1.0");
        object->saveContent(everything, reader, false);
        EXPECT_EQ(document("<A>10</A><B>2</B>"), compact(everything));
    }
    EXPECT_EQ(10, object->value<int>("A").getValue());
}

TEST(ConfigurationObject, HasSomethingForTheUserWhenASavedValueDiffersOrThereAreChildren) {
    SimpleConfigReader reader = readerOf("<Test><A>1</A></Test>");
    const auto loadOnly =
        TestObject::make("Test", [](TestObject& object) { object.add("A", 1, Base::LoadOnly); });
    loadOnly->value<int>("A").setValue(2);
    EXPECT_FALSE(loadOnly->canBeSavedToUserConfig(reader));
    const auto withChild = TestObject::make(
        "Test", [](TestObject& object) { object.add("A", 1).addChild(newObject("Child")); });
    EXPECT_TRUE(withChild->canBeSavedToUserConfig(reader));
}

TEST(ConfigurationObject, DeletesWhatItComparesWith) {
    Settings settings;
    SimpleConfigReader reader = readerOf("<Settings/>");
    ConfigWriter writer("1.0");
    const int before = Settings::instances;
    settings.canBeSavedToUserConfig(reader);
    settings.saveContent(writer, reader, true);
    settings.saveContent(writer, reader, false);
    EXPECT_EQ(before, Settings::instances);
}

TEST(ConfigurationObject, DeletesWhatItComparesWithWhenAnExceptionPasses) {
    class Unwritable : public Settings {
    public:
        using Settings::saveContent;
        void saveContent(ConfigWriter&) const override { throw std::runtime_error("full"); }
    };
    class Unreadable : public SimpleConfigReader {
    public:
        Unreadable() : SimpleConfigReader(FileName(), document(""), {"1.0"}) {}
        ConfigurationAccessResult getClassContents(const std::string&,
                                                   ConfigurationObject&) override {
            throw std::runtime_error("gone");
        }
    };
    const Unwritable settings;
    SimpleConfigReader reader = readerOf("<Settings/>");
    Unreadable unreadable;
    ConfigWriter writer("1.0");
    const int before = Settings::instances;
    EXPECT_THROW(settings.saveContent(writer, reader, false), std::runtime_error);
    EXPECT_THROW(settings.saveContent(writer, unreadable, true), std::runtime_error);
    EXPECT_THROW(settings.canBeSavedToUserConfig(unreadable), std::runtime_error);
    EXPECT_EQ(before, Settings::instances);
}

// --- defaults and locks -------------------------------------------------------------------------

TEST(ConfigurationObject, ResetsEverythingThatMayBeEdited) {
    const auto tree = makeTree();
    setAll(*tree);
    tree->setDefaultValues();
    EXPECT_EQ(treeDefaults, numbersOf(*tree));
    for (const auto* value : valuesOf(*tree))
        EXPECT_FALSE(value->hasValue()) << value->getName();
}

TEST(ConfigurationObject, KeepsLockedValuesWhenItIsReset) {
    for (std::size_t i = 0; i < treeSet.size(); ++i) {
        const auto tree = makeTree();
        setAll(*tree);
        valuesOf(*tree)[i]->setEditable(false);
        tree->setDefaultValues();
        auto expected = treeDefaults;
        expected[i] = treeSet[i];
        EXPECT_EQ(expected, numbersOf(*tree));
        EXPECT_FALSE(valuesOf(*tree)[i]->isEditable());
    }
}

TEST(ConfigurationObject, KeepsEverythingInALockedObjectWhenItIsReset) {
    const std::vector<int> expected[] = {
        treeSet,                   // the root
        {1, 2, 13, 14, 15, 16, 7}, // Child
        {1, 2, 3, 14, 15, 6, 7},   // Grandchild
        {1, 2, 3, 4, 5, 16, 7},    // the inline child of Child
        {1, 2, 3, 4, 5, 6, 17},    // the inline child of the root
    };
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const auto tree = makeTree();
        setAll(*tree);
        objectsOf(*tree)[i]->setEditable(false);
        tree->setDefaultValues();
        EXPECT_EQ(expected[i], numbersOf(*tree));
        EXPECT_FALSE(objectsOf(*tree)[i]->isEditable());
    }
}

TEST(ConfigurationObject, FindsALockAtAnyDepth) {
    const auto tree = makeTree();
    EXPECT_FALSE(tree->hasNonEditableEntries());
    for (auto* item : itemsOf(*tree)) {
        item->setEditable(false);
        EXPECT_TRUE(tree->hasNonEditableEntries()) << item->getName();
        item->setEditable(true);
    }
    EXPECT_FALSE(tree->hasNonEditableEntries());
    tree->child("Child").setEditable(false);
    EXPECT_FALSE(tree->child("").hasNonEditableEntries());
}

// --- repair after a user's document -------------------------------------------------------------

/// Changes a copy of the tree as the system's document would, sets everything in the tree as a user
/// would, and repairs it.
std::shared_ptr<TestObject> repaired(const std::function<void(TestObject&)>& changeSystem,
                                     const std::function<void(TestObject&)>& changeUser = {}) {
    const auto system = makeTree();
    for (auto* value : valuesOf(*system))
        value->setValue(-value->getDefaultValue());
    changeSystem(*system);
    auto tree = makeTree();
    setAll(*tree);
    if (changeUser)
        changeUser(*tree);
    tree->overwriteInvalidConfigValues(system.get());
    EXPECT_EQ(locksOf(*system), locksOf(*tree));
    return tree;
}

TEST(ConfigurationObject, KeepsTheUsersValuesWhereNothingIsLocked) {
    EXPECT_EQ(treeSet, numbersOf(*repaired([](TestObject&) {})));
}

TEST(ConfigurationObject, TakesALockedValueFromTheSystem) {
    for (std::size_t i = 0; i < treeSet.size(); ++i) {
        const auto tree =
            repaired([&](TestObject& system) { valuesOf(system)[i]->setEditable(false); });
        auto expected = treeSet;
        expected[i] = -treeDefaults[i];
        EXPECT_EQ(expected, numbersOf(*tree));
    }
}

TEST(ConfigurationObject, TakesEverythingInALockedObjectFromTheSystem) {
    const std::vector<int> expected[] = {
        {-1, -2, -3, -4, -5, -6, -7}, // the root
        {11, 12, -3, -4, -5, -6, 17}, // Child
        {11, 12, 13, -4, -5, 16, 17}, // Grandchild
        {11, 12, 13, 14, 15, -6, 17}, // the inline child of Child
        {11, 12, 13, 14, 15, 16, -7}, // the inline child of the root
    };
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(expected[i], numbersOf(*repaired([&](TestObject& system) {
                      objectsOf(system)[i]->setEditable(false);
                  })));
}

TEST(ConfigurationObject, TakesALockedDefaultFromTheSystemAsADefault) {
    const auto tree = repaired([](TestObject& system) {
        for (auto* value : valuesOf(system)) {
            value->resetValue();
            value->setEditable(false);
        }
    });
    EXPECT_EQ(treeDefaults, numbersOf(*tree));
    for (const auto* value : valuesOf(*tree))
        EXPECT_FALSE(value->hasValue()) << value->getName();
}

TEST(ConfigurationObject, TakesFromTheSystemWhatTheUserDoesNotHold) {
    for (std::size_t i = 0; i < treeSet.size(); ++i) {
        const auto tree = repaired([](TestObject&) {},
                                   [&](TestObject& user) { valuesOf(user)[i]->resetValue(); });
        auto expected = treeSet;
        expected[i] = -treeDefaults[i];
        EXPECT_EQ(expected, numbersOf(*tree));
    }
}

TEST(ConfigurationObject, KeepsTheDefaultThatNeitherHolds) {
    const auto reset = [](TestObject& tree) {
        for (auto* value : valuesOf(tree))
            value->resetValue();
    };
    const auto tree = repaired(reset, reset);
    EXPECT_EQ(treeDefaults, numbersOf(*tree));
    EXPECT_FALSE(tree->value<int>("A").hasValue());
}

TEST(ConfigurationObject, HasExactlyTheLocksOfTheSystem) {
    const std::size_t count = itemsOf(*makeTree()).size();
    for (std::size_t i = 0; i < count; ++i) {
        // One item is locked by the system and all others by the user; repaired() compares.
        repaired([&](TestObject& system) { itemsOf(system)[i]->setEditable(false); },
                 [&](TestObject& user) {
                     for (auto* item : itemsOf(user))
                         item->setEditable(false);
                     itemsOf(user)[i]->setEditable(true);
                 });
    }
}

TEST(ConfigurationObject, IsNotRepairedFromNull) {
    const auto tree = makeTree();
    setAll(*tree);
    tree->setEditable(false);
    tree->value<int>("B").setEditable(false);
    const auto locks = locksOf(*tree);
    tree->overwriteInvalidConfigValues(nullptr);
    EXPECT_EQ(treeSet, numbersOf(*tree));
    EXPECT_EQ(locks, locksOf(*tree));
}

TEST(ConfigurationObject, LeavesAloneWhatTheSystemDoesNotHave) {
    TestObject system;
    system.add("B", -2);
    system.setEditable(false);
    TestObject object;
    object.add("A", 1).add("B", 2);
    object.addChild(newObject("Child", value(3)));
    object.child("Child").value<int>("A").setEditable(false);
    object.overwriteInvalidConfigValues(&system);
    EXPECT_EQ(1, object.value<int>("A").getValue());
    EXPECT_EQ(3, object.child("Child").value<int>("A").getValue());
    EXPECT_FALSE(object.child("Child").value<int>("A").isEditable());
}

TEST(ConfigurationObject, RepairsChildrenThroughTheirOwnOverride) {
    class Repairing : public TestObject {
    public:
        using TestObject::TestObject;
        void overwriteInvalidConfigValues(const ConfigurationObject* other) override {
            ++repairs;
            TestObject::overwriteInvalidConfigValues(other);
        }
        int repairs = 0;
    };
    auto* const child = new Repairing("Child");
    child->add("A", 1);
    TestObject object;
    object.addChild(child);
    TestObject system;
    system.addChild(newObject("Child", value(2)));
    system.child("Child").setEditable(false);
    for (const bool locked : {false, true}) {
        SCOPED_TRACE(locked);
        system.setEditable(!locked);
        child->repairs = 0;
        object.overwriteInvalidConfigValues(&system);
        EXPECT_EQ(1, child->repairs);
    }
}

/// Notes whose locks it was told of.
class LockWatcher : public TestObject {
public:
    using TestObject::TestObject;
    std::vector<const ConfigurationObject*> sources;

protected:
    void onLocksTransferred(const ConfigurationObject& other) override {
        sources.push_back(&other);
    }
};

TEST(ConfigurationObject, IsToldOfLocksThatItGotWithThoseOfItsValues) {
    LockWatcher object("Test");
    auto* const child = new LockWatcher("Child");
    object.addChild(child);
    const TestObject system("Test");
    TestObject withChild("Test");
    withChild.addChild(new TestObject("Child"));
    object.overwriteInvalidConfigValues(&system);
    EXPECT_THAT(object.sources, ElementsAre(&system));
    EXPECT_THAT(child->sources, IsEmpty());
    object.restoreLocks(withChild);
    EXPECT_THAT(object.sources, ElementsAre(&system, &withChild));
    EXPECT_THAT(child->sources, ElementsAre(&withChild.child("Child")));
    object.overwriteInvalidConfigValues(nullptr);
    EXPECT_EQ(2U, object.sources.size());
}

TEST(ConfigurationObject, LetsAUsersDocumentNeitherLockNorUnlockNorChangeWhatIsLocked) {
    const auto tree = makeTree();
    loadLayered(*tree,
                "<Test><A editable='false'>-1</A><B>-2</B>"
                "<Child><C>-3</C><Grandchild editable='false'><D>-4</D></Grandchild>"
                "<F>-6</F></Child><G editable='false'/></Test>",
                document("<Test editable='false'><A editable='true'>11</A>"
                         "<B editable='false'>12</B><Child editable='false'><C>many</C>"
                         "<Grandchild editable='true'><D>14</D><E>15</E></Grandchild></Child>"
                         "<G>17</G></Test>"));
    EXPECT_THAT(numbersOf(*tree), ElementsAre(-1, 12, -3, -4, 5, -6, 17));
    for (auto* item : itemsOf(*tree)) {
        const bool locked = item == &tree->value<int>("A") || item->getName() == "Grandchild";
        EXPECT_EQ(!locked, item->isEditable()) << item->getName();
    }
}

// --- signals and warnings -----------------------------------------------------------------------

TEST(ConfigurationObject, TellsEachObjectOnceThatLoadingIsComplete) {
    const auto tree = makeTree();
    tree->emitSignalsAfterConfigLoading();
    for (const auto* object : objectsOf(*tree))
        EXPECT_EQ(1, object->signals) << object->getName();
}

TEST(ConfigurationObject, TellsOnceThatALayeredLoadIsComplete) {
    const auto tree = makeTree();
    loadLayered(*tree, "<Test>" + treeDocument + "</Test>", document("<Test/>"));
    for (const auto* object : objectsOf(*tree))
        EXPECT_EQ(1, object->signals) << object->getName();
}

TEST(ConfigurationObject, JoinsWarningsWithLineBreaks) {
    const auto tree = makeTree();
    EXPECT_EQ("", tree->getUserWarningMessages());
    tree->child("").addUserWarningMessage("from inline");
    EXPECT_EQ("from inline", tree->getUserWarningMessages());
    tree->child("Child").child("Grandchild").addUserWarningMessage("from grandchild");
    EXPECT_EQ("from grandchild\nfrom inline", tree->getUserWarningMessages());
    tree->addUserWarningMessage("one");
    tree->addUserWarningMessage("");
    tree->addUserWarningMessage("two");
    EXPECT_EQ("one\ntwo\nfrom grandchild\nfrom inline", tree->getUserWarningMessages());
    EXPECT_EQ("from grandchild", tree->child("Child").getUserWarningMessages());
}

// --- copying ------------------------------------------------------------------------------------

/// Gives every item of settings a state that it has not by default.
void changeAll(Settings& settings) {
    settings.count().setValue(10);
    setAll(settings.tree());
    settings.setEditable(false);
    settings.count().setEditable(false);
    for (auto* item : itemsOf(settings.tree()))
        item->setEditable(false);
    settings.addUserWarningMessage("own");
    settings.tree().child("Child").addUserWarningMessage("child's");
}

void expectAllChanged(const Settings& settings) {
    EXPECT_EQ(1u, settings.getConfigurationValuesSize());
    EXPECT_EQ(1u, settings.getConfigurationObjectsSize());
    EXPECT_EQ(10, settings.count().getValue());
    EXPECT_EQ(treeSet, numbersOf(settings.tree()));
    EXPECT_FALSE(settings.isEditable());
    EXPECT_FALSE(settings.count().isEditable());
    EXPECT_THAT(locksOf(settings.tree()), testing::Each(true));
    EXPECT_EQ("own\nchild's", settings.getUserWarningMessages());
}

TEST(ConfigurationObject, ClonesTheConcreteClassWithValuesLocksAndWarnings) {
    auto settings = std::make_unique<Settings>();
    changeAll(*settings);
    const std::unique_ptr<ConfigurationObject> clone(settings->clone());
    settings.reset();
    const auto* const typed = dynamic_cast<Settings*>(clone.get());
    ASSERT_NE(nullptr, typed);
    expectAllChanged(*typed);
}

TEST(ConfigurationObject, ClonesValuesThatAreAtTheirDefaultsAsSuch) {
    const Settings settings;
    const std::unique_ptr<ConfigurationObject> clone(settings.clone());
    EXPECT_FALSE(clone->getConfigurationValue("Count")->hasValue());
    EXPECT_TRUE(clone->isEditable());
    EXPECT_FALSE(clone->hasNonEditableEntries());
    EXPECT_EQ("", clone->getUserWarningMessages());
}

TEST(ConfigurationObject, ClonesTheItemsThatItHasNotThoseOfTheConstructor) {
    class Changed : public Settings {
    public:
        Changed() {
            clearConfigurationItems();
            addConfigurationValue(newValue("Other", 5));
        }
    };
    const std::unique_ptr<ConfigurationObject> clone(Changed().clone());
    EXPECT_THAT(namesOf(clone->getConfigurationValues()), ElementsAre("Other"));
    EXPECT_EQ(0u, clone->getConfigurationObjectsSize());
}

TEST(ConfigurationObject, PairsItemsByNameWhereTheirPositionsDiffer) {
    const auto object = TestObject::make("Test", [](TestObject& o) {
        o.add("New", 0).add("A", 1).add("B", 2).add("Twice", 3).addChild(newObject("Child"));
    });
    const auto other = TestObject::make("Test", [](TestObject& o) {
        o.add("A", 1).add("Twice", 3).add("Twice", 4).add("B", 5);
        o.addChild(newObject("Other")).addChild(newObject("Child"));
    });
    EXPECT_THAT(namesOf(object->getDifferentConfigurationValues(other.get())),
                ElementsAre("New", "B"));
    EXPECT_THAT(namesOf(object->getDifferentConfigurationValues(nullptr)),
                ElementsAre("New", "A", "B", "Twice"));
    other->value<int>("B").setValue(6);
    other->value<int>("B").setEditable(false);
    other->child("Child").setEditable(false);
    object->overwriteInvalidConfigValues(other.get());
    EXPECT_EQ(6, object->value<int>("B").getValue());
    EXPECT_FALSE(object->value<int>("B").isEditable());
    EXPECT_TRUE(object->value<int>("New").isEditable());
    EXPECT_FALSE(object->child("Child").isEditable());
}

/// A value with a unit, which an assignment of the base class would not copy.
class Length : public ConfigurationValue<double> {
public:
    explicit Length(const std::string& unit)
        : ConfigurationValue("Length", "", 0.0, Base::Visible, Base::LoadAndSave,
                             Base::AllProducts),
          m_unit(unit) {}
    ConfigurationValueBase* clone() const override { return new Length(*this); }
    const std::string& unit() const { return m_unit; }

private:
    std::string m_unit;
};

/// Its constructor makes the values that it starts with; it may get others later.
class Assorted : public ConfigurationObject {
public:
    using Build = std::function<std::vector<ConfigurationValueBase*>()>;

    explicit Assorted(Build build)
        : ConfigurationObject("Assorted", "", LoadAndSave, AllProducts), m_build(std::move(build)) {
        addAll(m_build());
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new Assorted(m_build);
    }
    void replaceBy(const std::vector<ConfigurationValueBase*>& values) {
        clearConfigurationItems();
        addAll(values);
    }

private:
    void addAll(const std::vector<ConfigurationValueBase*>& values) {
        for (ConfigurationValueBase* value : values)
            addConfigurationValue(value);
    }

    Build m_build;
};

TEST(ConfigurationObject, ClonesValuesOfApplicationsWhateverTheConstructorMakes) {
    Assorted object([] {
        return std::vector<ConfigurationValueBase*>{newValue("A", 1.5), newValue("B", 2.5),
                                                    new Length("inch"), new Length("inch")};
    });
    object.replaceBy({new Length("mm"), newValue("B", 3.5), newValue("C", 4.5), new Length("m")});
    const std::unique_ptr<ConfigurationObject> clone(object.clone());
    const auto values = clone->getConfigurationValues();
    ASSERT_EQ(4U, values.size());
    const auto unitOf = [&](std::size_t i) {
        const auto* const length = dynamic_cast<const Length*>(values[i]);
        return length == nullptr ? "none" : length->unit();
    };
    EXPECT_EQ("mm", unitOf(0));
    EXPECT_EQ("none", unitOf(1));
    EXPECT_EQ("none", unitOf(2));
    EXPECT_EQ("m", unitOf(3));
    EXPECT_THAT(namesOf(values), ElementsAre("Length", "B", "C", "Length"));
}

TEST(ConfigurationObject, ClonesEverythingOfAValueOverThatOfTheConstructor) {
    using Items = std::vector<ConfigurationValueBase*>;
    Assorted object([] {
        return Items{newValue("Former", false),       newValue("Former", 0),
                     newValue("Former", 0U),          newValue("Former", 0.0),
                     newValue("Former", 0.0F),        newValue("Former", std::string()),
                     newValue("Former", Names{"one"})};
    });
    const auto make = []<typename T>(const T& defaultValue, const T& value) {
        auto made = std::make_unique<ConfigurationValue<T>>(
            "Name", "Description", defaultValue, Base::Hidden, Base::SaveOnly, Base::Product2);
        made->setValue(value);
        made->setEditable(false);
        return made.release();
    };
    object.replaceBy({make(false, true), make(1, 2), make(1U, 2U), make(1.0, 2.0), make(1.0F, 2.0F),
                      make(std::string("a"), std::string("b")), make(Names{"a"}, Names{"b", "c"})});
    const std::unique_ptr<ConfigurationObject> clone(object.clone());
    ASSERT_EQ(7U, clone->getConfigurationValuesSize());
    auto original = object.beginValueIterator();
    for (auto i = clone->beginValueIterator(); i != clone->endValueIterator(); ++i, ++original) {
        ConfigurationValueBase& value = **i;
        EXPECT_NE(*original, &value);
        EXPECT_EQ("Name", value.getName());
        EXPECT_EQ("Description", value.getDescription());
        EXPECT_FALSE(value.isGuiVisible());
        EXPECT_FALSE(value.isLoadable());
        EXPECT_EQ(Base::Product2, value.getProductType());
        EXPECT_FALSE(value.isEditable());
        EXPECT_TRUE(value.hasValue());
        EXPECT_TRUE(value.comapreValue(*original));
        value.resetValue();
        (*original)->resetValue();
        EXPECT_TRUE(value.comapreValue(*original)) << "the defaults";
    }
}

TEST(ConfigurationObject, OutlivesTheOriginalOfACopy) {
    auto original = std::make_unique<Settings>();
    changeAll(*original);
    const Settings copy(*original);
    Settings assigned;
    EXPECT_EQ(&assigned, &(assigned = *original));
    original->count().setValue(0);
    original->tree().child("Child").clear();
    original.reset();
    expectAllChanged(copy);
    expectAllChanged(assigned);
}

TEST(ConfigurationObject, DeletesItsFormerItemsWhenItIsAssigned) {
    Names record;
    OpenObject object("Former");
    addRecordedItems(object, record);
    static_cast<ConfigurationObject&>(object) = *makeTree();
    EXPECT_THAT(record, testing::UnorderedElementsAre("delete First", "delete Second",
                                                      "delete Child", "delete "));
    EXPECT_EQ("Test", object.getName());
    EXPECT_EQ(treeDefaults, numbersOf(object));
}

TEST(ConfigurationObject, SurvivesItsAssignmentToItself) {
    Settings settings;
    changeAll(settings);
    const Settings& same = settings;
    settings = same;
    expectAllChanged(settings);
}

TEST(ConfigurationObject, CanBeReplacedByItsChild) {
    const auto tree = makeTree();
    setAll(*tree);
    const std::string expected = save(tree->child("Child"));
    static_cast<ConfigurationObject&>(*tree) = tree->child("Child");
    EXPECT_EQ("Child", tree->getName());
    EXPECT_EQ(expected, save(*tree));
}

TEST(ConfigurationObject, CanReplaceItsChild) {
    const auto tree = makeTree();
    setAll(*tree);
    const std::string expected = save(*tree);
    ConfigurationObject& child = tree->child("Child");
    child = *tree;
    EXPECT_EQ("Test", child.getName());
    EXPECT_EQ(expected, save(child));
}

TEST(ConfigurationObject, NamesItselfWhereItsFactoryMakesNothing) {
    class Unmakeable : public TestObject {
    public:
        Unmakeable() : TestObject("Unmakeable") {}
        ConfigurationObject* createConfigurationObject() const override { return nullptr; }
    };
    SimpleConfigReader reader = readerOf("<Unmakeable/>");
    ConfigWriter writer("1.0");
    const std::vector<std::function<void(const ConfigurationObject&)>> uses = {
        [](const auto& object) { std::unique_ptr<ConfigurationObject>(object.clone()); },
        [&](const auto& object) { object.canBeSavedToUserConfig(reader); },
        [&](const auto& object) { object.saveContent(writer, reader, true); },
        [&](const auto& object) { object.saveContent(writer, reader, false); },
    };
    TestObject parent;
    parent.addChild(new Unmakeable);
    for (const auto& use : uses) {
        try {
            use(Unmakeable());
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::logic_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr("Unmakeable"));
        }
    }
    EXPECT_THROW(uses[0](parent), std::logic_error);
}

TEST(ConfigurationObject, RefusesNullItems) {
    TestObject object;
    EXPECT_THROW(object.addChild(nullptr), std::invalid_argument);
    EXPECT_EQ(0U, object.getConfigurationObjectsSize());
}

} // namespace
} // namespace Orvant
