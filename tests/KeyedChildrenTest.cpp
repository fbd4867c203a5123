#include <ConfigurationFramework/Settings.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>

#include <KeyedSupport.h>
#include <ModelTestSupport.h>

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

namespace Orvant {
namespace {

using Support::compact;
using Support::document;
using Support::Keys;
using Support::keysOf;
using Support::Plotter;
using Support::readerOf;
using Support::TestObject;
using Support::View3D;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

struct Nameless : Settings<Nameless> {
    Nameless() : Settings("") {}
};

struct HasNameless : Settings<HasNameless> {
    HasNameless() : Settings("HasNameless") {}
    KeyedChildren<Nameless> children{this};
};

struct HasTwice : Settings<HasTwice> {
    HasTwice() : Settings("HasTwice") {}
    KeyedChildren<Plotter> plotters{this};
    KeyedChildren<Plotter> others{this};
};

struct TakesTag : Settings<TakesTag> {
    TakesTag() : Settings("TakesTag") {}
    KeyedChildren<Plotter> plotters{this};
    Setting<int> removed{this, "RemovedPlotter", "", 0};
};

TEST(KeyedChildrenInMemory, AreAddedFoundAndRemovedByKey) {
    View3D view;
    EXPECT_TRUE(view.plotters.empty());
    EXPECT_EQ(nullptr, view.plotters.find("Hall 1"));
    Plotter& hall = view.plotters.add("Hall 1");
    view.plotters.add("Basement").copies = 3;
    view.plotters.add("Office");
    EXPECT_EQ(3U, view.plotters.size());
    EXPECT_FALSE(view.plotters.empty());
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("Basement", "Hall 1", "Office"));
    EXPECT_EQ(&hall, view.plotters.find("Hall 1"));
    EXPECT_EQ(3, view.plotters.find("Basement")->copies);
    EXPECT_EQ("A4", hall.paper.get());
    view.plotters.remove("Basement");
    view.plotters.remove("Basement");
    view.plotters.remove("never there");
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("Hall 1", "Office"));
    EXPECT_EQ(nullptr, view.plotters.find("Basement"));
    EXPECT_EQ(&hall, view.plotters.find("Hall 1"));
}

TEST(KeyedChildrenInMemory, AddReturnsTheChildThatIsThere) {
    View3D view;
    Plotter& hall = view.plotters.add("Hall 1");
    hall.paper = "A0";
    EXPECT_EQ(&hall, &view.plotters.add("Hall 1"));
    EXPECT_EQ("A0", hall.paper.get());
    EXPECT_EQ(1U, view.plotters.size());
}

TEST(KeyedChildrenInMemory, IterationGivesKeyAndChild) {
    View3D view;
    view.plotters.add("b").copies = 2;
    view.plotters.add("a").copies = 1;
    for (auto&& [key, plotter] : view.plotters)
        plotter.paper = key;
    EXPECT_EQ("a", view.plotters.find("a")->paper.get());
    EXPECT_EQ("b", view.plotters.find("b")->paper.get());
    auto place = view.plotters.begin();
    const auto first = place++;
    EXPECT_EQ(1, (*first).second.copies);
    EXPECT_EQ(2, (*place).second.copies);
    EXPECT_EQ(view.plotters.end(), ++place);
}

TEST(KeyedChildrenInMemory, RefuseKeysThatNoFileHolds) {
    View3D view;
    for (const std::string key : {"", "\x01", "a\xff", "\xef\xbf\xbe"})
        EXPECT_THAT([&] { view.plotters.add(key); },
                    ThrowsMessage<std::invalid_argument>(HasSubstr("\"Plotter\"")));
    EXPECT_TRUE(view.plotters.empty());
}

TEST(KeyedChildrenInMemory, NeedANameOfTheirOwn) {
    EXPECT_THROW(HasNameless(), std::logic_error);
    EXPECT_THAT([] { HasTwice(); },
                ThrowsMessage<std::logic_error>(HasSubstr("\"Plotter\" of the object")));
    EXPECT_THAT([] { TakesTag(); },
                ThrowsMessage<std::logic_error>(HasSubstr("\"RemovedPlotter\"")));
}

TEST(KeyedChildrenInMemory, AreFoundInAnElement) {
    auto reader = readerOf("<View3D><Plotter key='b'><Copies>2</Copies></Plotter><Other/>"
                           "<Plotter key='a'><Tray key='1'><Sheets>7</Sheets></Tray></Plotter>"
                           "<Scanner key='s'><Resolution>600</Resolution></Scanner></View3D>"
                           "<Plotter key='elsewhere'/>");
    View3D view;
    reader.getClassContents("View3D", view);
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a", "b"));
    EXPECT_EQ(2, view.plotters.find("b")->copies);
    EXPECT_EQ(7, view.plotters.find("a")->trays.find("1")->sheets);
    EXPECT_THAT(keysOf(view.devices->scanners), ElementsAre("s"));
    EXPECT_EQ(600, view.devices->scanners.find("s")->resolution);
}

TEST(KeyedChildrenInMemory, NewOnesStartAsTheDefaultEntrySays) {
    auto reader = readerOf("<View3D><Plotter><Paper>A3</Paper><Tray key='1'/></Plotter>"
                           "<Plotter key='a'><Copies>2</Copies></Plotter></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a"));
    EXPECT_EQ("A4", view.plotters.find("a")->paper.get()) << "it has an element of its own";
    EXPECT_EQ("A3", view.plotters.add("new").paper.get());
    EXPECT_THAT(keysOf(view.plotters.add("new").trays), ElementsAre("1"));
}

TEST(KeyedChildrenInMemory, TheDefaultEntryIsTheLastWithoutAKey) {
    auto reader = readerOf("<View3D><Plotter><Paper>A3</Paper></Plotter>"
                           "<Plotter key=''><Paper>A2</Paper></Plotter></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    EXPECT_TRUE(view.plotters.empty());
    EXPECT_EQ("A2", view.plotters.add("new").paper.get());
}

TEST(KeyedChildrenInMemory, OfALockedObjectAreNeitherAddedNorRemoved) {
    auto reader = readerOf("<View3D editable='false'><Plotter key='a'/></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    EXPECT_THROW(view.plotters.add("b"), std::logic_error);
    view.plotters.remove("a");
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a"));
    EXPECT_TRUE(view.plotters.find("a")->isLocked());
    EXPECT_NO_THROW(view.plotters.add("a"));
    view.plotters.find("a")->copies = 9;
    EXPECT_EQ(1, view.plotters.find("a")->copies);
    EXPECT_THROW(view.plotters.find("a")->trays.add("1"), std::logic_error);
}

TEST(KeyedChildrenInMemory, ThatAreLockedStay) {
    auto reader = readerOf("<View3D><Plotter key='whole' editable='false'/>"
                           "<Plotter key='value'><Paper editable='false'>A0</Paper></Plotter>"
                           "<Plotter key='child'><Tray key='1' editable='false'/></Plotter>"
                           "<Plotter key='free'/></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    for (const std::string& key : keysOf(view.plotters))
        view.plotters.remove(key);
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("child", "value", "whole"));
    view.plotters.find("child")->trays.remove("1");
    EXPECT_EQ(1U, view.plotters.find("child")->trays.size());
}

TEST(KeyedChildrenInMemory, ThatInheritALockMayGo) {
    auto reader =
        readerOf("<View3D><Plotter><Paper editable='false'>A0</Paper></Plotter></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    Plotter& added = view.plotters.add("mine");
    EXPECT_TRUE(added.paper.isLocked());
    added.paper = "A4";
    EXPECT_EQ("A0", added.paper.get());
    view.plotters.remove("mine");
    EXPECT_TRUE(view.plotters.empty());
}

TEST(KeyedChildrenInMemory, OneThatIsAddedAgainInheritsLocksButMayGo) {
    auto reader = readerOf("<View3D><Plotter><Paper editable='false'>A0</Paper></Plotter>"
                           "<Plotter key='a'/></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    view.plotters.remove("a");
    view.plotters.add("a");
    view.plotters.remove("a");
    EXPECT_TRUE(view.plotters.empty());
}

TEST(KeyedChildrenInMemory, AreClonedWithTheirKeys) {
    auto reader = readerOf("<View3D><Plotter><Paper>A3</Paper></Plotter>"
                           "<Plotter key='a' editable='false'><Copies>5</Copies></Plotter>"
                           "<Plotter key='b'/></View3D>");
    View3D view;
    reader.getClassContents("View3D", view);
    const std::unique_ptr<ConfigurationObject> clone(view.clone());
    auto& copy = dynamic_cast<View3D&>(*clone);
    view.plotters.remove("b");
    EXPECT_THAT(keysOf(copy.plotters), ElementsAre("a", "b"));
    EXPECT_EQ(5, copy.plotters.find("a")->copies);
    EXPECT_NE(view.plotters.find("a"), copy.plotters.find("a"));
    copy.plotters.remove("a");
    EXPECT_NE(nullptr, copy.plotters.find("a")) << "its locks are copied";
    EXPECT_EQ("A3", copy.plotters.add("c").paper.get());
    EXPECT_EQ(nullptr, view.plotters.find("c"));
    EXPECT_EQ(&copy, copy.plotters.find("a")->getParent()->getParent());
}

TEST(KeyedChildrenInMemory, CountInComparisons) {
    View3D view;
    view.plotters.add("a").copies = 2;
    const std::unique_ptr<ConfigurationObject> clone(view.clone());
    auto& copy = dynamic_cast<View3D&>(*clone);
    const auto groupOf = [](const View3D& object) {
        return object.plotters.find("a")->getParent();
    };
    EXPECT_FALSE(groupOf(view)->atLeastOneValueIsDifferent(groupOf(copy)));
    EXPECT_FALSE(view.plotters.find("a")->atLeastOneValueIsDifferent(copy.plotters.find("a")));
    copy.plotters.find("a")->copies = 3;
    EXPECT_TRUE(view.plotters.find("a")->atLeastOneValueIsDifferent(copy.plotters.find("a")));
    copy.plotters.add("b");
    EXPECT_TRUE(groupOf(view)->atLeastOneValueIsDifferent(groupOf(copy)));
}

TEST(KeyedChildrenInMemory, AreWrittenInTheOrderOfTheirKeys) {
    View3D view;
    view.plotters.add("b");
    view.plotters.add("a").trays.add("1");
    view.devices->scanners.add("s");
    ConfigWriter writer("1.0");
    writer.putClassContents("View3D", view, "");
    const std::string text = compact(writer);
    const auto a = text.find("<Plotter key=\"a\">");
    const auto b = text.find("<Plotter key=\"b\">");
    EXPECT_LT(a, b);
    EXPECT_NE(std::string::npos, b);
    EXPECT_THAT(text, HasSubstr("<!--A tray--><Tray key=\"1\"><!--Sheets of paper--><Sheets>100"));
    EXPECT_THAT(text, HasSubstr("<!--A scanner--><Scanner key=\"s\">"));
}

TEST(KeyedChildrenInMemory, DifferencesAreThoseOfTheSameKey) {
    View3D reference;
    reference.plotters.add("a").copies = 2;
    reference.plotters.add("same").copies = 3;
    reference.plotters.add("zz").copies = 4;
    View3D view;
    view.plotters.add("added");
    view.plotters.add("same").copies = 3;
    view.plotters.add("zz").copies = 5;
    ConfigWriter writer("1.0");
    view.saveDifferentConfigurationValues(writer, &reference);
    EXPECT_EQ(
        document("<!--A plotter--><Plotter key=\"added\"/><!--A plotter--><Plotter key=\"zz\">"
                 "<!--Number of copies--><Copies>5</Copies></Plotter>"),
        compact(writer));
}

TEST(KeyedChildrenInMemory, WithoutAReferenceAllIsDifferent) {
    View3D view;
    view.plotters.add("a");
    ConfigWriter writer("1.0");
    view.saveDifferentConfigurationValues(writer, nullptr);
    EXPECT_THAT(compact(writer),
                HasSubstr("<Plotter key=\"a\"><!--Paper size--><Paper>A4</Paper>"));
}

TEST(KeyedChildrenInMemory, DefaultValuesLeaveThemThere) {
    View3D view;
    view.plotters.add("a").copies = 5;
    view.setDefaultValues();
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a"));
    EXPECT_EQ(1, view.plotters.find("a")->copies);
}

TEST(KeyedChildrenInMemory, DefaultValuesAreToldWithoutALossOfChildren) {
    View3D view;
    view.plotters.add("a");
    view.setDefaultValues();
    view.emitSignalsAfterConfigLoading();
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a"));
}

TEST(KeyedChildrenInMemory, ALoadAfterDefaultValuesFindsThemAnew) {
    View3D view;
    Plotter& kept = view.plotters.add("kept");
    view.plotters.add("gone");
    view.setDefaultValues();
    auto reader = readerOf("<View3D><Plotter key='kept'/><Plotter key='new'/></View3D>");
    reader.getClassContents("View3D", view);
    view.emitSignalsAfterConfigLoading();
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("kept", "new"));
    EXPECT_EQ(&kept, view.plotters.find("kept"));
}

TEST(KeyedChildrenInMemory, ASecondLoadKeepsWhatItDoesNotHave) {
    View3D view;
    view.plotters.add("mine").copies = 4;
    auto reader = readerOf("<View3D><Plotter key='a'/></View3D>");
    reader.getClassContents("View3D", view);
    EXPECT_THAT(keysOf(view.plotters), ElementsAre("a", "mine"));
    EXPECT_EQ(4, view.plotters.find("mine")->copies);
}

TEST(KeyedChildrenInMemory, CallbacksMayAddAndRemove) {
    View3D view;
    for (int i = 0; i < 20; ++i)
        view.plotters.add("p" + std::to_string(i));
    const auto watch = view.plotters.find("p0")->copies.onChange([&](int) {
        for (int i = 0; i < 20; ++i)
            view.plotters.add("q" + std::to_string(i));
        for (int i = 1; i < 20; ++i)
            view.plotters.remove("p" + std::to_string(i));
    });
    const auto last = view.plotters.find("p0")->paper.onChange(
        [&](const std::string&) { view.plotters.remove("p0"); });
    auto reader =
        readerOf("<View3D><Plotter><Copies>2</Copies><Paper>A0</Paper></Plotter></View3D>");
    reader.getClassContents("View3D", view);
    view.emitSignalsAfterConfigLoading();
    EXPECT_EQ(20U, view.plotters.size());
    EXPECT_EQ(nullptr, view.plotters.find("p0"));
}

TEST(KeyedChildrenInMemory, AllAreToldThoughACallbackThrows) {
    View3D view;
    const auto throwing =
        view.plotters.add("a").copies.onChange([](int) { throw std::runtime_error("no"); });
    int told = 0;
    const auto watch = view.plotters.add("b").copies.onChange([&](int copies) { told = copies; });
    auto reader = readerOf("<View3D><Plotter><Copies>2</Copies></Plotter></View3D>");
    reader.getClassContents("View3D", view);
    EXPECT_THROW(view.emitSignalsAfterConfigLoading(), std::runtime_error);
    EXPECT_EQ(2, told);
}

TEST(KeyedChildrenInMemory, GetParentLeadsToTheOwner) {
    View3D view;
    EXPECT_EQ(nullptr, view.getParent());
    Plotter& plotter = view.plotters.add("a");
    EXPECT_EQ(&view, plotter.getParent()->getParent());
    EXPECT_EQ(&plotter, plotter.trays.add("1").getParent()->getParent());
    EXPECT_EQ(&view, view.devices->getParent());
}

/// Inserts and takes children.
class Shelf : public TestObject {
public:
    Shelf() : TestObject("Shelf") {}
    using TestObject::addConfigurationObject;
    using TestObject::insertConfigurationObject;
    using TestObject::takeConfigurationObject;

    Keys names() const {
        Keys names;
        for (auto child = beginObjectIterator(); child != endObjectIterator(); ++child)
            names.push_back((*child)->getName());
        return names;
    }
};

TEST(ConfigurationObject, InsertsAndTakesChildren) {
    Shelf shelf;
    shelf.insertConfigurationObject(7, new TestObject("b"));
    shelf.insertConfigurationObject(0, new TestObject("a"));
    shelf.insertConfigurationObject(2, new TestObject("d"));
    shelf.insertConfigurationObject(2, new TestObject("c"));
    EXPECT_THAT(shelf.names(), ElementsAre("a", "b", "c", "d"));
    EXPECT_THROW(shelf.insertConfigurationObject(0, nullptr), std::invalid_argument);
    EXPECT_EQ(&shelf, shelf.getConfigurationObject("c")->getParent());
    const auto taken = shelf.takeConfigurationObject(1);
    EXPECT_EQ("b", taken->getName());
    EXPECT_EQ(nullptr, taken->getParent());
    EXPECT_EQ(nullptr, shelf.takeConfigurationObject(3));
    EXPECT_THAT(shelf.names(), ElementsAre("a", "c", "d"));
}

TEST(ConfigurationObject, CopiesAreTheParentsOfTheirChildren) {
    TestObject original("Parent");
    original.addChild(new TestObject("Child"));
    const TestObject copy(original);
    EXPECT_EQ(&copy, copy.child("Child").getParent());
    TestObject assigned("Parent");
    assigned = original;
    EXPECT_EQ(&assigned, assigned.child("Child").getParent());
    const std::unique_ptr<ConfigurationObject> clone(original.clone());
    EXPECT_EQ(clone.get(), clone->getConfigurationObject("Child")->getParent());
    EXPECT_EQ(&original, original.child("Child").getParent());
}

TEST(ConfigurationObject, HasNoKeysAndNoPrototypeByDefault) {
    TestObject object("Parent");
    object.addChild(new TestObject("Child"));
    EXPECT_EQ(std::nullopt, object.getChildKey(0));
    EXPECT_EQ(nullptr, object.getChildPrototype());
}

/// A handwritten class whose children have keys of its own.
class Keyring : public TestObject {
public:
    Keyring() : TestObject("Keyring") {
        for (int i = 0; i < 2; ++i) {
            auto child = std::make_unique<TestObject>("Key");
            child->add("n", i);
            addChild(child.release());
        }
    }
    std::optional<std::string> getChildKey(std::size_t position) const override {
        return position == 0 ? "first" : "second";
    }
    ConfigurationObject* createConfigurationObject() const override { return new Keyring; }
    int n(std::size_t position) const {
        const auto& child = dynamic_cast<const TestObject&>(
            *beginObjectIterator()[static_cast<std::ptrdiff_t>(position)]);
        return child.value<int>("n").getValue();
    }
};

TEST(ConfigurationObject, LoadsAndSavesChildrenWithKeys) {
    auto reader = readerOf("<Keyring><Key key='second'><n>22</n></Key><Key><n>11</n></Key>"
                           "<Key key='third'><n>33</n></Key></Keyring>");
    Keyring keyring;
    reader.getClassContents("Keyring", keyring);
    EXPECT_EQ(11, keyring.n(0)) << "of the element without a key";
    EXPECT_EQ(22, keyring.n(1));
    ConfigWriter writer("1.0");
    writer.putClassContents("Keyring", keyring, "");
    EXPECT_EQ(document("<Keyring><Key key=\"first\"><n>11</n></Key><Key key=\"second\"><n>22</n>"
                       "</Key></Keyring>"),
              compact(writer));
}

} // namespace
} // namespace Orvant
