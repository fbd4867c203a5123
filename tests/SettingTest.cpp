#include <ConfigurationFramework/Settings.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManager.h>

#include <ManagerFixture.h>
#include <SettingSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using Strings = std::vector<std::string>;
using testing::AllOf;
using testing::HasSubstr;

/// A default, another value, and how files hold that.
template <typename T>
struct Sample;
template <>
struct Sample<bool> {
    static inline const bool builtIn = true;
    static inline const bool other = false;
    static constexpr const char* text = "false";
};
template <>
struct Sample<int> {
    static inline const int builtIn = 3;
    static inline const int other = -7;
    static constexpr const char* text = "-7";
};
template <>
struct Sample<unsigned int> {
    static inline const unsigned int builtIn = 3;
    static inline const unsigned int other = 4000000000U;
    static constexpr const char* text = "-294967296";
};
template <>
struct Sample<float> {
    static inline const float builtIn = 0.5F;
    static inline const float other = -1.25F;
    static constexpr const char* text = "-1.25";
};
template <>
struct Sample<double> {
    static inline const double builtIn = 45.0;
    static inline const double other = 0.125;
    static constexpr const char* text = "0.125";
};
template <>
struct Sample<std::string> {
    static inline const std::string builtIn = "A4";
    static inline const std::string other = "a < b";
    static constexpr const char* text = "a &lt; b";
};
template <>
struct Sample<Strings> {
    static inline const Strings builtIn = {"north"};
    static inline const Strings other = {"east", "", "west"};
    static constexpr const char* text = "<item>east</item><item></item><item>west</item>";
};
template <>
struct Sample<Unit> {
    static inline const Unit builtIn = Unit::Millimetre;
    static inline const Unit other = Unit::Inch;
    static constexpr const char* text = "inch";
};

template <typename T>
struct Leaf : Settings<Leaf<T>> {
    Leaf() : Settings<Leaf<T>>("Leaf") {}
    Setting<T> value{this, "Edge", "", Sample<T>::builtIn};
};

/// Stored inline.
template <typename T>
struct Nameless : Settings<Nameless<T>> {
    Nameless() : Settings<Nameless<T>>("") {}
    Setting<T> value{this, "Inline", "", Sample<T>::builtIn};
};

template <typename T>
struct Tree : Settings<Tree<T>> {
    Tree() : Settings<Tree<T>>("Tree") {}
    Setting<T> value{this, "Value", "What it is", Sample<T>::builtIn};
    Child<Leaf<T>> leaf{this};
    Child<Nameless<T>> nameless{this};
};

std::string element(const std::string& name, const std::string& text) {
    return "<" + name + ">" + text + "</" + name + ">";
}

template <typename T>
class SettingOf : public ManagerFixture {
protected:
    const T builtIn = Sample<T>::builtIn;
    const T other = Sample<T>::other;
    const std::string otherEverywhere =
        element("Tree", element("Value", Sample<T>::text) +
                            element("Leaf", element("Edge", Sample<T>::text)) +
                            element("Inline", Sample<T>::text));
};

using Types = testing::Types<bool, int, unsigned int, float, double, std::string, Strings, Unit>;
TYPED_TEST_SUITE(SettingOf, Types);

TYPED_TEST(SettingOf, IsItsDefaultAtFirst) {
    const Tree<TypeParam> tree;
    EXPECT_EQ(this->builtIn, tree.value.get());
    EXPECT_EQ(this->builtIn, tree.value.defaultValue());
    EXPECT_TRUE(tree.value.isDefault());
}

TYPED_TEST(SettingOf, ConvertsToItsType) {
    Tree<TypeParam> tree;
    tree.value = this->other;
    const TypeParam read = tree.value;
    EXPECT_EQ(this->other, read);
    EXPECT_TRUE(tree.value == this->other);
    EXPECT_TRUE(this->builtIn != tree.value);
    EXPECT_TRUE(tree.leaf->value != tree.value);
    tree.leaf->value = tree.value.get();
    EXPECT_TRUE(tree.leaf->value == tree.value);
}

TYPED_TEST(SettingOf, IsSetAndReset) {
    Tree<TypeParam> tree;
    EXPECT_TRUE(tree.value.set(this->other));
    EXPECT_EQ(this->other, tree.value.get());
    EXPECT_EQ(this->builtIn, tree.value.defaultValue());
    EXPECT_FALSE(tree.value.isDefault());
    EXPECT_TRUE(tree.value.reset());
    EXPECT_EQ(this->builtIn, tree.value.get());
    EXPECT_TRUE(tree.value.isDefault());
    EXPECT_FALSE(tree.value.item().hasValue());
    EXPECT_EQ(&tree.value, &(tree.value = this->builtIn));
    EXPECT_TRUE(tree.value.item().hasValue());
    EXPECT_TRUE(tree.value.isDefault());
}

TYPED_TEST(SettingOf, HasTheValueUnderneath) {
    Tree<TypeParam> tree;
    EXPECT_EQ(tree.getConfigurationValue("Value"), &tree.value.item());
    EXPECT_EQ("Value", tree.value.name());
    EXPECT_EQ("What it is", tree.value.label());
    EXPECT_EQ("What it is", tree.value.item().getDescription());
    tree.leaf->value = this->other;
    tree.value.item().adoptValue(&tree.leaf->value.item());
    EXPECT_EQ(this->other, tree.value.get());
}

TYPED_TEST(SettingOf, StaysAsItIsWhileTheValueIsLocked) {
    Tree<TypeParam> tree;
    tree.value.item().setEditable(false);
    EXPECT_TRUE(tree.value.isLocked());
    EXPECT_FALSE(tree.leaf->value.isLocked());
    EXPECT_FALSE(tree.value.set(this->other));
    EXPECT_FALSE(tree.value.item().hasValue());
    tree.value = this->other;
    EXPECT_EQ(this->builtIn, tree.value.get());

    tree.value.item().setEditable(true);
    EXPECT_FALSE(tree.value.isLocked());
    EXPECT_TRUE(tree.value.set(this->other));
    tree.value.item().setEditable(false);
    EXPECT_FALSE(tree.value.reset());
    EXPECT_EQ(this->other, tree.value.get());
}

TYPED_TEST(SettingOf, IsLoadedFromOneFile) {
    writeFile(this->m_file, document(this->otherEverywhere));
    this->useOneFile();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    EXPECT_EQ(this->other, tree->value.get());
    EXPECT_EQ(this->other, tree->leaf->value.get());
    EXPECT_EQ(this->other, tree->nameless->value.get());
}

TYPED_TEST(SettingOf, IsLoadedFromTheSystemFile) {
    writeFile(this->m_systemFile, document(this->otherEverywhere));
    this->useTwoFiles();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    EXPECT_EQ(this->other, tree->value.get());
    EXPECT_EQ(this->other, tree->leaf->value.get());
    EXPECT_EQ(this->other, tree->nameless->value.get());
}

TYPED_TEST(SettingOf, IsLoadedFromTheUsersFile) {
    writeFile(this->m_systemFile, document("<Tree/>"));
    writeFile(this->m_userFile, document(this->otherEverywhere));
    this->useTwoFiles();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    EXPECT_EQ(this->other, tree->value.get());
    EXPECT_EQ(this->other, tree->leaf->value.get());
    EXPECT_EQ(this->other, tree->nameless->value.get());
}

TYPED_TEST(SettingOf, IsSavedInOneFile) {
    this->useOneFile();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    tree->value = this->other;
    tree->leaf->value = this->other;
    tree->nameless->value = this->other;
    EXPECT_TRUE(this->m_manager.saveConfiguration("1.0"));
    std::string expected = document(this->otherEverywhere);
    expected.insert(expected.find("<Value>"), "<!--What it is-->");
    EXPECT_EQ(expected, withoutFormatting(readFile(this->m_file)));
}

TYPED_TEST(SettingOf, IsSavedInTheUsersFileWhereItDiffers) {
    writeFile(this->m_systemFile,
              document(element("Tree", element("Value", Sample<TypeParam>::text))));
    this->useTwoFiles();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    EXPECT_EQ(this->other, tree->value.get());
    tree->leaf->value = this->other;
    EXPECT_TRUE(this->m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document(element("Tree", element("Leaf", element("Edge", Sample<TypeParam>::text)))),
              withoutFormatting(readFile(this->m_userFile)));
}

TYPED_TEST(SettingOf, IsLockedByTheSystemFile) {
    std::string locked = element("Value", Sample<TypeParam>::text);
    locked.insert(locked.find('>'), " editable=\"false\"");
    writeFile(this->m_systemFile, document(element("Tree", locked)));
    writeFile(this->m_userFile, document("<Tree><Value/></Tree>"));
    this->useTwoFiles();
    const auto tree = this->add(std::make_shared<Tree<TypeParam>>());
    EXPECT_TRUE(tree->value.isLocked());
    EXPECT_FALSE(tree->leaf->value.isLocked());
    EXPECT_EQ(this->other, tree->value.get());
    EXPECT_FALSE(tree->value.set(this->builtIn));
    EXPECT_EQ(this->other, tree->value.get());
}

TYPED_TEST(SettingOf, IsThatOfItsOwnObjectInAClone) {
    Tree<TypeParam> tree;
    tree.value = this->other;
    tree.leaf->value = this->other;
    const std::unique_ptr<ConfigurationObject> object(tree.clone());
    const std::unique_ptr<ConfigurationObject> second(object->clone());
    for (ConfigurationObject* clone : {object.get(), second.get()}) {
        auto& copy = dynamic_cast<Tree<TypeParam>&>(*clone);
        EXPECT_EQ(this->other, copy.value.get());
        EXPECT_EQ(this->other, copy.leaf->value.get());
        EXPECT_EQ(this->builtIn, copy.nameless->value.get());
        copy.value = this->builtIn;
        copy.leaf->value = this->builtIn;
        copy.nameless->value = this->other;
        EXPECT_EQ(this->builtIn, copy.value.get());
        EXPECT_EQ(this->builtIn, copy.leaf->value.get());
        EXPECT_EQ(this->other, tree.value.get());
        EXPECT_EQ(this->other, tree.leaf->value.get());
        EXPECT_EQ(this->builtIn, tree.nameless->value.get());
    }
}

// Handles that were copied would point to another object.
template <typename T>
constexpr bool isTiedToItsPlace =
    !std::is_copy_constructible_v<T> && !std::is_move_constructible_v<T> &&
    !std::is_assignable_v<T&, const T&> && !std::is_assignable_v<T&, T>;
static_assert(isTiedToItsPlace<Leaf<int>>);
static_assert(isTiedToItsPlace<Setting<int>>);
static_assert(isTiedToItsPlace<Setting<std::string>>);
static_assert(isTiedToItsPlace<Setting<Unit>>);
static_assert(isTiedToItsPlace<Child<Leaf<int>>>);
static_assert(isTiedToItsPlace<KeyedChildren<Leaf<int>>>);

TEST(Setting, StaysWhenAnObjectOfAnotherClassIsAssigned) {
    Leaf<int> leaf;
    leaf.value = 7;
    ConfigurationObject& object = leaf;
    EXPECT_THROW(object = Leaf<double>(), std::logic_error);
    EXPECT_EQ(7, leaf.value);
    leaf.value = 8;
    EXPECT_EQ(8, leaf.value);
}

struct Widths : Settings<Widths> {
    Widths() : Settings("Widths") {}
    Setting<double> line{this, "Line", "", 0.5};
    Setting<double> nothing{this, "Nothing", "", std::numeric_limits<double>::quiet_NaN()};
    Setting<std::string> name{this, "Name", "", "thin"};
    Setting<Strings> names{this, "Names", "", {"thin", "thick"}};
};

TEST(Setting, TakesWhatConvertsToItsType) {
    Widths widths;
    widths.line = 2;
    widths.name = "thick";
    widths.names = {"a", "b", "c", "d"};
    EXPECT_EQ(2.0, widths.line);
    EXPECT_EQ(4.0, widths.line * 2);
    EXPECT_TRUE(widths.name == "thick");
    EXPECT_FALSE("thin" == widths.name);
    EXPECT_EQ(Strings({"a", "b", "c", "d"}), widths.names.get());
    widths.names = {};
    EXPECT_EQ(Strings(), widths.names.get());
}

TEST(Setting, MayBeSetToPartsOfItself) {
    Widths widths;
    widths.name = "a text that is longer than the room in the string";
    widths.name = widths.name.get();
    EXPECT_EQ("a text that is longer than the room in the string", widths.name.get());
    widths.name = widths.name.defaultValue();
    EXPECT_EQ("thin", widths.name.get());
}

TEST(Setting, WithoutANumberIsItsDefaultUntilItIsANumber) {
    Widths widths;
    EXPECT_TRUE(widths.nothing.isDefault());
    widths.nothing = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(widths.nothing.isDefault());
    widths.nothing = 1.0;
    EXPECT_FALSE(widths.nothing.isDefault());
}

TEST(Setting, OfAnEnumerationIsTheDefaultWhenItsTextWasChangedToAnother) {
    Tree<Unit> tree;
    tree.value = Unit::Inch;
    tree.value.item().setValue("furlong");
    EXPECT_EQ(Unit::Millimetre, tree.value.get());
    EXPECT_TRUE(tree.value.isDefault());
}

/// Leaves out the unit that the enumeration lists first.
struct Ruler : Settings<Ruler> {
    Ruler() : Settings("Ruler") {}
    Setting<Unit> unit{this, "Unit", "", Unit::Inch, OneOf(Unit::Inch)};
};

TEST(Setting, OfAnEnumerationIsTheDefaultWhenItsTextWasChangedToNoneOfItsChoices) {
    Ruler ruler;
    for (const char* text : {"mm", "furlong", ""}) {
        ruler.unit.item().setValue(text);
        EXPECT_EQ(Unit::Inch, ruler.unit.get());
        EXPECT_TRUE(ruler.unit.isDefault());
        const std::unique_ptr<ConfigurationObject> copy(ruler.clone());
        EXPECT_EQ(Unit::Inch, dynamic_cast<Ruler&>(*copy).unit.get());
        EXPECT_TRUE(ruler.unit.set(Unit::Inch));
        EXPECT_EQ("inch", ruler.unit.item().getValue());
    }
}

/// Something written by hand around settings that are declared in one line.
struct Room : ConfigurationObject {
    Room() : ConfigurationObject("Room", "", LoadAndSave, AllProducts) {
        addConfigurationObject(new Tree<int>);
    }
    ConfigurationObject* createConfigurationObject() const override { return new Room; }
    Tree<int>& tree() const { return dynamic_cast<Tree<int>&>(*getConfigurationObject("Tree")); }
};

/// Settings around something written by hand.
struct House : Settings<House> {
    House() : Settings("House") {}
    Setting<int> floors{this, "Floors", "", 2};
    Child<Room> room{this};
};

TEST(Setting, IsLockedWithEachObjectThatItIsIn) {
    House house;
    Tree<int>& tree = house.room->tree();
    for (ConfigurationObject* outer : {static_cast<ConfigurationObject*>(&house),
                                       static_cast<ConfigurationObject*>(&*house.room),
                                       static_cast<ConfigurationObject*>(&tree)}) {
        EXPECT_FALSE(tree.value.isLocked());
        EXPECT_FALSE(tree.leaf->value.isLocked());
        outer->setEditable(false);
        EXPECT_TRUE(tree.value.isLocked());
        EXPECT_TRUE(tree.leaf->value.isLocked());
        EXPECT_TRUE(tree.nameless->value.isLocked());
        EXPECT_FALSE(tree.leaf->value.set(1));
        EXPECT_FALSE(tree.leaf->value.reset());
        EXPECT_EQ(outer != static_cast<ConfigurationObject*>(&house), !house.floors.isLocked());
        outer->setEditable(true);
    }
    tree.leaf->setEditable(false);
    EXPECT_FALSE(tree.value.isLocked());
    EXPECT_TRUE(tree.leaf->value.isLocked());
    EXPECT_FALSE(tree.nameless->value.isLocked());
}

TEST(Setting, IsLockedInACloneAsInTheOriginal) {
    House house;
    house.room->setEditable(false);
    const std::unique_ptr<ConfigurationObject> clone(house.clone());
    auto& copy = dynamic_cast<House&>(*clone);
    EXPECT_TRUE(copy.room->tree().leaf->value.isLocked());
    copy.room->setEditable(true);
    EXPECT_FALSE(copy.room->tree().leaf->value.isLocked());
    EXPECT_TRUE(house.room->tree().leaf->value.isLocked());
}

TEST(Setting, IsRightInClonesOfObjectsOfBothKinds) {
    House house;
    house.floors = 3;
    house.room->tree().value = 4;
    house.room->tree().leaf->value = 5;
    const std::unique_ptr<ConfigurationObject> clone(house.clone());
    auto& copy = dynamic_cast<House&>(*clone);
    const Room room(*house.room);
    EXPECT_EQ(3, copy.floors);
    EXPECT_EQ(4, copy.room->tree().value);
    EXPECT_EQ(5, copy.room->tree().leaf->value);
    EXPECT_EQ(5, room.tree().leaf->value);
    copy.room->tree().leaf->value = 6;
    room.tree().leaf->value = 7;
    EXPECT_EQ(5, house.room->tree().leaf->value);
    EXPECT_EQ(6, copy.room->tree().leaf->value);
    EXPECT_EQ(7, room.tree().leaf->value);
}

class MixedSettings : public ManagerFixture {};

TEST_F(MixedSettings, AreLoadedAndSaved) {
    writeFile(m_file, document("<House><Floors>3</Floors><Room><Tree><Value>4</Value><Leaf><Edge>5"
                               "</Edge></Leaf></Tree></Room></House>"));
    useOneFile();
    const auto house = add(std::make_shared<House>());
    EXPECT_EQ(3, house->floors);
    EXPECT_EQ(4, house->room->tree().value);
    EXPECT_EQ(5, house->room->tree().leaf->value);
    house->room->tree().leaf->value = 6;
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_THAT(withoutFormatting(readFile(m_file)),
                HasSubstr("<Leaf><Edge>6</Edge></Leaf><Inline>3</Inline></Tree>"));
}

struct Page : Settings<Page> {
    Page() : Settings("Page") {}
    Setting<int> width{this, "Width", "", 210};
};

struct Book : Settings<Book> {
    Book() : Settings("Book") {}
    Setting<int> limited{this, "Limited", "", 5, Range{1, 10}};
    KeyedChildren<Page> pages{this};
};

TEST(Setting, OfAChildWithAKeyIsRightInAClone) {
    Book book;
    book.pages.add("one").width = 100;
    book.limited = 7;
    const std::unique_ptr<ConfigurationObject> clone(book.clone());
    const std::unique_ptr<ConfigurationObject> second(clone->clone());
    auto& copy = dynamic_cast<Book&>(*second);
    EXPECT_EQ(100, copy.pages.find("one")->width);
    EXPECT_EQ(7, copy.limited);
    copy.pages.find("one")->width = 200;
    copy.pages.add("two");
    copy.limited = 8;
    EXPECT_THROW(copy.limited = 11, std::out_of_range);
    EXPECT_EQ(100, book.pages.find("one")->width);
    EXPECT_EQ(nullptr, book.pages.find("two"));
    EXPECT_EQ(7, book.limited);
    EXPECT_EQ(8, copy.limited);
}

struct Atlas : Book {};

TEST(Setting, IsInNoCloneOfAClassThatDerivesFurther) {
    const Atlas atlas;
    EXPECT_THAT(messageOf<std::logic_error>([&] { (void)atlas.clone(); }), HasSubstr("\"Book\""));
}

struct Options : Settings<Options> {
    Options() : Settings("Options", "The options", LoadAndSave, Product0 | Product2) {}
    Setting<int> plain{this, "Plain", "", 1};
    Setting<int> shy{this, "Shy", "Shy one", 1, hidden};
    Setting<int> first{this, "First", "", 1, Product1, SaveOnly, hidden, Label{"The first"}};
    Setting<int> second{this,     "Second",    "",      1, Label{"The second"},
                        LoadOnly, Range{0, 2}, Product3};
    Setting<Unit> third{this, "Third", "", Unit::Inch, NotPersistent, Label{"The third"}, hidden};
};

TEST(Setting, TakesItsOptionsInAnyOrder) {
    using enum ConfigurationItemBase::Persistence;
    using enum ConfigurationItemBase::ProductType;
    Options options;
    EXPECT_EQ("The options", options.getDescription());
    EXPECT_EQ(Product0 | Product2, options.getProductType());

    EXPECT_TRUE(options.plain.item().isGuiVisible());
    EXPECT_EQ(LoadAndSave, options.plain.item().getPersistenceType());
    EXPECT_EQ(AllProducts, options.plain.item().getProductType());
    EXPECT_FALSE(options.shy.item().isGuiVisible());
    EXPECT_EQ("Shy one", options.shy.label());

    EXPECT_FALSE(options.first.item().isGuiVisible());
    EXPECT_EQ(SaveOnly, options.first.item().getPersistenceType());
    EXPECT_EQ(Product1, options.first.item().getProductType());
    EXPECT_EQ("The first", options.first.label());
    EXPECT_EQ("", options.first.item().getDescription());

    EXPECT_TRUE(options.second.item().isGuiVisible());
    EXPECT_EQ(LoadOnly, options.second.item().getPersistenceType());
    EXPECT_EQ(Product3, options.second.item().getProductType());
    EXPECT_EQ("The second", options.second.label());
    EXPECT_THROW(options.second = 3, std::out_of_range);

    EXPECT_FALSE(options.third.item().isGuiVisible());
    EXPECT_EQ(NotPersistent, options.third.item().getPersistenceType());
    EXPECT_EQ("The third", options.third.label());
}

/// What a class may do wrong, once for each kind of error.
template <int Fault>
struct Faulty : Settings<Faulty<Fault>> {
    Faulty() : Settings<Faulty<Fault>>("Faulty") {
        if constexpr (Fault == 0)
            Setting<int>(this, "Plain", "", 1);
        else if constexpr (Fault == 1)
            Child<Page>{this};
        else if constexpr (Fault == 2)
            Setting<int>(this, "Inline", "", 1);
        else if constexpr (Fault == 3)
            Setting<int>(this, "Width", "", 1);
        else if constexpr (Fault == 4)
            Child<Nameless<int>>{this};
        else if constexpr (Fault == 5)
            KeyedChildren<Page>{this};
        else if constexpr (Fault == 6)
            Setting<int>(this, "Leaf", "", 1);
        else if constexpr (Fault == 7)
            Setting<int>(this, "RemovedLeaf", "", 1);
        else if constexpr (Fault == 8)
            KeyedChildren<Leaf<int>>{this};
        else if constexpr (Fault == 9)
            Child<Leaf<int>>{this};
    }
    Setting<int> plain{this, "Plain", "", 1};
    Child<Page> page{this};
    Child<Nameless<int>> nameless{this};
    KeyedChildren<Leaf<int>> leaves{this};
};

template <int Fault>
std::string faultOf() {
    return messageOf<std::logic_error>([] { Faulty<Fault>(); });
}

TEST(Setting, HasANameOfItsOwnInItsElement) {
    const auto twice = [](const std::string& name) {
        return "the setting \"" + name + "\" of the object \"Faulty\" is declared twice";
    };
    EXPECT_EQ(twice("Plain"), faultOf<0>());
    EXPECT_EQ(twice("Page"), faultOf<1>());
    EXPECT_EQ(twice("Inline"), faultOf<2>());
    EXPECT_NO_THROW(Faulty<3>());
    EXPECT_EQ(twice("Inline"), faultOf<4>());
    EXPECT_EQ(twice("Page"), faultOf<5>());
    EXPECT_EQ(twice("Leaf"), faultOf<6>());
    EXPECT_EQ(twice("RemovedLeaf"), faultOf<7>());
    EXPECT_EQ(twice("Leaf"), faultOf<8>());
    EXPECT_EQ(twice("Leaf"), faultOf<9>());
}

template <typename Declared>
struct InOrder : Settings<InOrder<Declared>> {
    InOrder() : Settings<InOrder<Declared>>("InOrder") {}
    Setting<int> page{this, "Page", "", 1};
    Setting<int> removed{this, "RemovedLeaf", "", 1};
    Declared declared{this};
};

TEST(Setting, KeepsChildrenFromItsName) {
    EXPECT_THAT(messageOf<std::logic_error>([] { InOrder<Child<Page>>(); }),
                AllOf(HasSubstr("\"Page\""), HasSubstr("\"InOrder\"")));
    EXPECT_THAT(messageOf<std::logic_error>([] { InOrder<KeyedChildren<Page>>(); }),
                AllOf(HasSubstr("\"Page\""), HasSubstr("\"InOrder\"")));
    EXPECT_THAT(messageOf<std::logic_error>([] { InOrder<KeyedChildren<Leaf<int>>>(); }),
                AllOf(HasSubstr("\"RemovedLeaf\""), HasSubstr("\"InOrder\"")));
    EXPECT_NO_THROW(InOrder<Child<Leaf<int>>>());
}

struct Renamed : Settings<Renamed> {
    Renamed() : Settings("Renamed") {}
    explicit Renamed(const char* name) : Settings("Renamed"), setting(this, name, "", 1) {}
    Setting<int> setting{this, "Name", "", 1};
};

struct RenamedObject : Settings<RenamedObject> {
    RenamedObject() : RenamedObject("Name") {}
    explicit RenamedObject(const std::string& name) : Settings(name) {}
};

/// Written by hand, which does not check the name.
struct Unspeakable : TestObject {
    Unspeakable() : TestObject("not one") {}
};

/// The same inline.
struct UnspeakableInside : TestObject {
    UnspeakableInside() : TestObject("") { add("7th", 7); }
};

template <typename C>
struct ParentOf : Settings<ParentOf<C>> {
    ParentOf() : Settings<ParentOf<C>>("Parent") {}
    Child<C> child{this};
};

TEST(Setting, HasANameThatXmlAllows) {
    for (const char* name : {"Width", "_", "Breite-2.ä", "ns"})
        EXPECT_NO_THROW(Renamed{name}) << name;
    for (const char* name : {"", "two words", "2nd", "-x", ".x", "a<b", "a/b", "\xff", "a\n"})
        EXPECT_THAT(messageOf<std::logic_error>([&] { Renamed{name}; }),
                    AllOf(HasSubstr("\"Renamed\""), HasSubstr('"' + std::string(name) + '"')));
    EXPECT_NO_THROW(RenamedObject(""));
    EXPECT_THAT(messageOf<std::logic_error>([] { RenamedObject("two words"); }),
                HasSubstr("\"two words\""));
    EXPECT_THAT(messageOf<std::logic_error>([] { ParentOf<Unspeakable>(); }),
                AllOf(HasSubstr("\"not one\""), HasSubstr("\"Parent\"")));
    EXPECT_THAT(messageOf<std::logic_error>([] { ParentOf<UnspeakableInside>(); }),
                AllOf(HasSubstr("\"7th\""), HasSubstr("\"Parent\"")));
}

/// Writes a note to the user's file only.
struct Noted : Settings<Noted> {
    Noted() : Settings("Noted") {}
    using Settings::saveContent;
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        Settings::saveContent(writer, reader, onlyDifferent);
        if (onlyDifferent && !note.empty())
            writer.putString("Note", note, "");
    }
    Setting<int> size{this, "Size", "", 1};
    std::string note;
};

class MergeOfNotes : public ManagerFixture {};

TEST_F(MergeOfNotes, SavesANoteThatIsAllThatChanged) {
    writeFile(m_systemFile, document(""));
    writeFile(m_userFile, document("<Noted><Size>2</Size></Noted>"));
    useTwoFiles();
    m_manager.setSaveMode(ConfigurationManager::Merge);
    const auto noted = std::make_shared<Noted>();
    m_manager.addConfigurationObject(noted, "Noted");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    noted->note = "mine";
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_THAT(readFile(m_userFile), HasSubstr("<Note>mine</Note>"));
}

} // namespace
} // namespace Orvant
