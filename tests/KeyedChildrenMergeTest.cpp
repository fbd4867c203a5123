#include <ConfigurationFramework/Settings.h>

#include <KeyedSupport.h>

#include <gmock/gmock.h>

#include <algorithm>

namespace Orvant {
namespace {

using Support::document;
using Support::keysOf;
using Support::Plotter;
using Support::readFile;
using Support::SaveMode;
using Support::TestObject;
using Support::Tray;
using Support::View3D;
using Support::withoutFormatting;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// What holds in every mode.
class KeyedChildrenSaving : public Support::KeyedFixture,
                            public testing::WithParamInterface<SaveMode> {
protected:
    KeyedChildrenSaving() { m_manager.setSaveMode(GetParam()); }
    bool isMerge() const { return GetParam() == ConfigurationManager::Merge; }
};

INSTANTIATE_TEST_SUITE_P(, KeyedChildrenSaving, Support::anySaveMode, Support::nameOfMode);

TEST_P(KeyedChildrenSaving, FindsKeysOfBothFiles) {
    writeSystem("<View3D><Plotter key='both'><Copies>2</Copies><Paper>A0</Paper></Plotter>"
                "<Plotter key='system'><Copies>3</Copies></Plotter></View3D>");
    writeUser("<View3D><Plotter key='user'><Copies>4</Copies></Plotter>"
              "<Plotter key='both'><Copies>5</Copies></Plotter></View3D>");
    const auto view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("both", "system", "user"));
    EXPECT_EQ(5, view->plotters.find("both")->copies);
    EXPECT_EQ("A0", view->plotters.find("both")->paper.get());
    EXPECT_EQ(3, view->plotters.find("system")->copies);
    EXPECT_EQ(4, view->plotters.find("user")->copies);
}

TEST_P(KeyedChildrenSaving, FindsKeysOfOneOfTwoFiles) {
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    EXPECT_THAT(keysOf(start()->plotters), ElementsAre("a"));
    std::filesystem::remove(m_systemFile.toPath());
    writeUser("<View3D><Plotter key='b'/></View3D>");
    EXPECT_THAT(keysOf(start()->plotters), ElementsAre("b"));
}

TEST_P(KeyedChildrenSaving, EachLayerHasItsDefaultEntry) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper><Copies>2</Copies></Plotter>"
                "<Plotter key='system'><Copies>3</Copies></Plotter></View3D>");
    writeUser("<View3D><Plotter><Copies>9</Copies></Plotter>"
              "<Plotter key='user'><Pens><item>red</item></Pens></Plotter></View3D>");
    for (int round = 0; round < 2; ++round) {
        const auto view = start();
        EXPECT_EQ("A4", view->plotters.find("system")->paper.get());
        EXPECT_EQ(9, view->plotters.find("system")->copies) << "the user's file has no such key";
        EXPECT_EQ("A3", view->plotters.find("user")->paper.get());
        EXPECT_EQ(2, view->plotters.find("user")->copies);
        Plotter& added = view->plotters.add("new");
        EXPECT_EQ("A3", added.paper.get());
        EXPECT_EQ(9, added.copies);
        view->plotters.remove("new");
        save();
    }
}

TEST_P(KeyedChildrenSaving, KeepsAddedOnesWithoutAnyDifference) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter></View3D>");
    auto view = start();
    view->plotters.add("Hall 1");
    view->devices->scanners.add("Office");
    view->plotters.find("Hall 1")->trays.add("1");
    save();
    EXPECT_EQ(document("<View3D><!--A plotter--><Plotter key=\"Hall 1\"><!--A tray-->"
                       "<Tray key=\"1\"/></Plotter><!--A scanner--><Scanner key=\"Office\"/>"
                       "</View3D>"),
              userText());
    view = start();
    EXPECT_EQ("A3", view->plotters.find("Hall 1")->paper.get());
    EXPECT_THAT(keysOf(view->plotters.find("Hall 1")->trays), ElementsAre("1"));
    EXPECT_THAT(keysOf(view->devices->scanners), ElementsAre("Office"));
    const std::string text = readFile(m_userFile);
    save();
    EXPECT_EQ(text, readFile(m_userFile));
}

TEST_P(KeyedChildrenSaving, KeepsAddedOnesInOneFile) {
    useUserFileAlone();
    auto view = start();
    view->plotters.add("Hall 1").trays.add("1").sheets = 7;
    view->devices->scanners.add("Office");
    save();
    view = start();
    EXPECT_EQ(7, view->plotters.find("Hall 1")->trays.find("1")->sheets);
    EXPECT_THAT(keysOf(view->devices->scanners), ElementsAre("Office"));
    view->plotters.remove("Hall 1");
    save();
    view = start();
    EXPECT_TRUE(view->plotters.empty());
    EXPECT_THAT(userText(), Not(HasSubstr("Plotter")));
}

TEST_P(KeyedChildrenSaving, KeepsKeysOfAllKinds) {
    const Support::Keys keys = {" ",
                                " a ",
                                "\"'<>&",
                                "Gr\xc3\xb6\xc3\x9f"
                                "e",
                                "a  b",
                                "a\nb\t",
                                "[x]/y",
                                "\xf0\x9f\x96\xa8",
                                "with]]>end"};
    for (const bool isOneFile : {false, true}) {
        if (isOneFile)
            useUserFileAlone();
        auto view = start();
        int copies = 1;
        for (const std::string& key : keys)
            view->plotters.add(key).copies = ++copies;
        save();
        view = start();
        EXPECT_EQ(keys.size(), view->plotters.size());
        copies = 1;
        for (const std::string& key : keys) {
            ASSERT_NE(nullptr, view->plotters.find(key)) << key;
            EXPECT_EQ(++copies, view->plotters.find(key)->copies) << key;
        }
        for (const std::string& key : keys)
            view->plotters.remove(key);
        save();
        EXPECT_TRUE(start()->plotters.empty());
    }
}

TEST_P(KeyedChildrenSaving, SavesValuesOfChildren) {
    writeSystem("<View3D><Plotter key='a'><Copies>2</Copies></Plotter></View3D>");
    auto view = start();
    view->plotters.find("a")->paper = "A0";
    view->plotters.find("a")->pens = {"red", "blue"};
    save();
    EXPECT_EQ(document("<View3D><!--A plotter--><Plotter key=\"a\"><!--Paper size--><Paper>A0"
                       "</Paper><!--Colours of the pens--><Pens><item>red</item><item>blue</item>"
                       "</Pens></Plotter></View3D>"),
              userText());
    view = start();
    view->plotters.find("a")->paper = "A4";
    view->plotters.find("a")->pens.reset();
    save();
    EXPECT_EQ(isMerge() ? "<Configuration version=\"1.0\"/>" : document("<View3D/>"), userText());
}

TEST_P(KeyedChildrenSaving, RemovedOnesAreGone) {
    writeSystem("<View3D/>");
    writeUser("<View3D><Plotter key='a'><Copies>2</Copies></Plotter><Plotter key='b'/></View3D>");
    auto view = start();
    view->plotters.remove("a");
    save();
    EXPECT_THAT(userText(), Not(HasSubstr("Removed"))) << "the system file does not have it";
    view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("b"));
}

TEST_P(KeyedChildrenSaving, RemovedOnesOfTheSystemFileAreRemembered) {
    writeSystem("<View3D><Plotter key='a'><Copies>2</Copies></Plotter><Plotter key='b'/></View3D>");
    writeUser("<View3D><Plotter key='a'><Copies>5</Copies></Plotter></View3D>");
    auto view = start();
    view->plotters.remove("a");
    save();
    EXPECT_EQ(document("<View3D><RemovedPlotter key=\"a\"/></View3D>"), userText());
    for (int round = 0; round < 2; ++round) {
        view = start();
        EXPECT_THAT(keysOf(view->plotters), ElementsAre("b"));
        view->showGrid = round == 0;
        save();
    }
    view->plotters.add("a");
    save();
    EXPECT_THAT(userText(), Not(HasSubstr("Removed")));
    view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b"));
}

TEST_P(KeyedChildrenSaving, ARemovedOneThatIsAddedAgainIsAsItWasThen) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter>"
                "<Plotter key='a'><Copies>2</Copies><Tray key='1'/></Plotter></View3D>");
    auto view = start();
    view->plotters.remove("a");
    view->plotters.add("a");
    save();
    view = start();
    EXPECT_EQ("A3", view->plotters.find("a")->paper.get());
    EXPECT_EQ(1, view->plotters.find("a")->copies);
}

TEST_P(KeyedChildrenSaving, WhatTheAdministratorRemovesTooStaysRemoved) {
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    start()->plotters.remove("a");
    save();
    writeSystem("<View3D/>");
    start()->showGrid = false;
    save();
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    EXPECT_TRUE(start()->plotters.empty());
}

TEST_P(KeyedChildrenSaving, WhatTheAdministratorLocksLaterIsBack) {
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    start()->plotters.remove("a");
    save();
    for (const std::string lock : {"<Plotter key='a' editable='false'/>",
                                   "<Plotter key='a'><Paper editable='false'>A0</Paper></Plotter>",
                                   "<Plotter key='a'><Tray key='1' editable='false'/></Plotter>"}) {
        writeSystem("<View3D>" + lock + "</View3D>");
        const auto view = start();
        EXPECT_THAT(keysOf(view->plotters), ElementsAre("a")) << lock;
        save();
    }
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    EXPECT_TRUE(start()->plotters.empty()) << "without a lock, the user's wish counts again";
}

TEST_P(KeyedChildrenSaving, OnesThatTheUserSetAndTheAdministratorTookStay) {
    writeSystem("<View3D><Plotter key='a'><Paper>A0</Paper></Plotter></View3D>");
    start()->plotters.find("a")->copies = 5;
    save();
    writeSystem("<View3D/>");
    const auto view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a"));
    EXPECT_EQ(5, view->plotters.find("a")->copies);
    EXPECT_EQ("A4", view->plotters.find("a")->paper.get());
}

TEST_P(KeyedChildrenSaving, LockedOnesCanBeNeitherChangedNorRemoved) {
    writeSystem("<View3D><Plotter key='whole' editable='false'><Copies>2</Copies></Plotter>"
                "<Plotter key='value'><Paper editable='false'>A0</Paper></Plotter></View3D>");
    writeUser(
        "<View3D><Plotter key='whole' editable='true'><Copies>9</Copies>"
        "<Tray key='mine'/></Plotter><RemovedPlotter key='whole'/><RemovedPlotter key='value'/>"
        "<Plotter key='value'><Paper editable='true'>A1</Paper></Plotter></View3D>");
    auto view = start();
    const auto expectLocked = [&] {
        EXPECT_THAT(keysOf(view->plotters), ElementsAre("value", "whole"));
        EXPECT_EQ(2, view->plotters.find("whole")->copies);
        EXPECT_TRUE(view->plotters.find("whole")->trays.empty());
        EXPECT_EQ("A0", view->plotters.find("value")->paper.get());
    };
    expectLocked();
    view->plotters.remove("whole");
    view->plotters.remove("value");
    EXPECT_FALSE(view->plotters.find("whole")->copies.set(3));
    EXPECT_FALSE(view->plotters.find("value")->paper.set("A2"));
    EXPECT_TRUE(view->plotters.find("value")->copies.set(4));
    expectLocked();
    save();
    view = start();
    expectLocked();
    EXPECT_EQ(4, view->plotters.find("value")->copies);
}

TEST_P(KeyedChildrenSaving, SavesWriteNoLockedValue) {
    writeSystem("<View3D><Plotter key='whole' editable='false'><Copies>2</Copies></Plotter>"
                "<Plotter key='value'><Paper editable='false'>A0</Paper></Plotter></View3D>");
    const auto view = start();
    view->showGrid = false;
    view->plotters.find("value")->copies = 4;
    save();
    EXPECT_THAT(userText(), AllOf(HasSubstr("<Copies>4</Copies>"), Not(HasSubstr("Paper>")),
                                  Not(HasSubstr("whole"))));
}

TEST_P(KeyedChildrenSaving, OfALockedObjectAreTheSystemFiles) {
    writeSystem("<View3D editable='false'><Plotter key='a'/></View3D>");
    writeUser("<View3D><Plotter key='mine'/><RemovedPlotter key='a'/></View3D>");
    const auto view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a"));
    EXPECT_THROW(view->plotters.add("b"), std::logic_error);
    view->plotters.remove("a");
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a"));
    save();
    if (isMerge()) {
        writeSystem("<View3D><Plotter key='a'/></View3D>");
        EXPECT_THAT(keysOf(start()->plotters), ElementsAre("mine")) << "nothing was lost meanwhile";
    }
}

TEST_P(KeyedChildrenSaving, TheUsersFileDoesNotLock) {
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    writeUser("<View3D><Plotter key='a' editable='false'/><Plotter key='b' editable='false'>"
              "<Tray key='1' editable='false'/></Plotter></View3D>");
    const auto view = start();
    EXPECT_FALSE(view->plotters.find("a")->isLocked());
    EXPECT_FALSE(view->plotters.find("b")->trays.find("1")->isLocked());
    view->plotters.find("b")->trays.remove("1");
    EXPECT_TRUE(view->plotters.find("b")->trays.empty());
    view->plotters.remove("a");
    view->plotters.remove("b");
    EXPECT_TRUE(view->plotters.empty());
}

TEST_P(KeyedChildrenSaving, TheUsersDefaultEntryKeepsNothingThatWasRemoved) {
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    writeUser("<View3D><Plotter><Paper editable='false'>A1</Paper></Plotter>"
              "<RemovedPlotter key='a'/></View3D>");
    EXPECT_TRUE(start()->plotters.empty());
}

TEST_P(KeyedChildrenSaving, OwnOnesThatInheritALockCanBeAddedSavedAndRemoved) {
    for (const std::string entry :
         {"<Plotter><Paper editable='false'>A0</Paper></Plotter>",
          "<Plotter editable='false'><Paper>A0</Paper></Plotter>",
          "<Plotter><Paper>A0</Paper><Tray editable='false'><Sheets>5</Sheets></Tray></Plotter>"}) {
        writeSystem("<View3D>" + entry + "</View3D>");
        auto view = start();
        view->plotters.add("mine");
        save();
        ASSERT_TRUE(m_manager.reloadConfiguration());
        ASSERT_NE(nullptr, view->plotters.find("mine")) << entry;
        EXPECT_EQ("A0", view->plotters.find("mine")->paper.get());
        view = start();
        ASSERT_NE(nullptr, view->plotters.find("mine")) << entry;
        EXPECT_EQ("A0", view->plotters.find("mine")->paper.get());
        EXPECT_THAT(userText(), Not(HasSubstr("Paper>")));
        view->plotters.remove("mine");
        EXPECT_TRUE(view->plotters.empty()) << entry;
        save();
        EXPECT_TRUE(start()->plotters.empty()) << entry;
    }
}

TEST_P(KeyedChildrenSaving, RemovedAgainBeforeTheNextStart) {
    writeSystem("<View3D><Plotter editable='false'/></View3D>");
    const auto view = start();
    view->plotters.add("mine");
    save();
    view->plotters.remove("mine");
    save();
    EXPECT_TRUE(start()->plotters.empty());
}

TEST_P(KeyedChildrenSaving, OwnOnesOfOwnOnesThatInheritALockCanBeRemoved) {
    writeSystem("<View3D><Plotter><Tray><Sheets editable='false'>5</Sheets></Tray></Plotter>"
                "</View3D>");
    writeUser("<View3D><Plotter key='mine'><Tray key='1'/></Plotter></View3D>");
    const auto view = start();
    Plotter& mine = *view->plotters.find("mine");
    EXPECT_EQ(5, mine.trays.find("1")->sheets);
    EXPECT_TRUE(mine.trays.find("1")->sheets.isLocked());
    mine.trays.remove("1");
    EXPECT_TRUE(mine.trays.empty());
}

TEST_P(KeyedChildrenSaving, ChildrenOfTheDefaultEntryCanBeRemoved) {
    writeSystem("<View3D><Plotter><Tray key='1'/><Tray key='2'/></Plotter></View3D>");
    auto view = start();
    view->plotters.add("mine").trays.remove("1");
    save();
    view = start();
    EXPECT_THAT(keysOf(view->plotters.find("mine")->trays), ElementsAre("2"));
}

TEST_P(KeyedChildrenSaving, OneFileLocks) {
    writeUser("<View3D><Plotter key='locked' editable='false'><Copies>2</Copies></Plotter>"
              "<Plotter key='free'/></View3D>");
    useUserFileAlone();
    auto view = start();
    view->plotters.remove("locked");
    view->plotters.remove("free");
    EXPECT_FALSE(view->plotters.find("locked")->copies.set(3));
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("locked"));
    save();
    view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("locked"));
    EXPECT_EQ(2, view->plotters.find("locked")->copies);
    EXPECT_EQ(isMerge(), view->plotters.find("locked")->isLocked());
}

TEST_P(KeyedChildrenSaving, OneFileKeepsItsDefaultEntry) {
    writeUser("<View3D><Plotter><Paper>A3</Paper><Tray key='1'/></Plotter></View3D>");
    useUserFileAlone();
    for (int round = 0; round < 3; ++round) {
        auto view = start();
        Plotter& added = view->plotters.add("new " + std::to_string(round));
        EXPECT_EQ("A3", added.paper.get());
        EXPECT_THAT(keysOf(added.trays), ElementsAre("1"));
        save();
        view = start();
        EXPECT_EQ("A3", view->plotters.find("new " + std::to_string(round))->paper.get());
        save();
    }
    EXPECT_EQ(3U, start()->plotters.size());
}

TEST_P(KeyedChildrenSaving, AnInheritedLockIsNoneInOneFile) {
    writeUser("<View3D><Plotter editable='false'><Paper>A0</Paper></Plotter></View3D>");
    useUserFileAlone();
    auto view = start();
    EXPECT_EQ("A0", view->plotters.add("mine").paper.get());
    save();
    view = start();
    ASSERT_NE(nullptr, view->plotters.find("mine"));
    EXPECT_EQ("A0", view->plotters.find("mine")->paper.get());
    view->plotters.remove("mine");
    save();
    EXPECT_TRUE(start()->plotters.empty());
}

TEST_P(KeyedChildrenSaving, TheUsersDefaultEntryStays) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter></View3D>");
    writeUser("<View3D><Plotter><Copies>9</Copies></Plotter></View3D>");
    for (int round = 0; round < 2; ++round) {
        const auto view = start();
        EXPECT_EQ(9, view->plotters.add("new").copies);
        EXPECT_EQ("A3", view->plotters.add("new").paper.get());
        save();
    }
}

TEST_P(KeyedChildrenSaving, SystemsDefaultEntryIsNotCopied) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter></View3D>");
    start()->showGrid = false;
    save();
    EXPECT_THAT(userText(), Not(HasSubstr("Plotter")));
}

TEST_P(KeyedChildrenSaving, KindsStandSideBySide) {
    writeSystem("<View3D><Plotter key='a'/><Scanner key='a'/></View3D>");
    auto view = start();
    view->plotters.remove("a");
    view->devices->scanners.find("a")->resolution = 600;
    view->devices->scanners.add("b");
    save();
    view = start();
    EXPECT_TRUE(view->plotters.empty());
    EXPECT_THAT(keysOf(view->devices->scanners), ElementsAre("a", "b"));
    EXPECT_EQ(600, view->devices->scanners.find("a")->resolution);
}

struct Draft : Settings<Draft> {
    Draft() : Settings("Draft") {}
    KeyedChildren<Plotter> plotters{this};
};

TEST_P(KeyedChildrenSaving, AKindMayBeInTwoObjects) {
    writeSystem("<View3D><Plotter key='a'/></View3D><Draft><Plotter key='a'/></Draft>");
    auto view = start();
    auto draft = add(std::make_shared<Draft>());
    draft->plotters.remove("a");
    draft->plotters.add("b").copies = 2;
    view->plotters.add("b").copies = 3;
    save();
    view = start();
    draft = add(std::make_shared<Draft>());
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b"));
    EXPECT_THAT(keysOf(draft->plotters), ElementsAre("b"));
    EXPECT_EQ(2, draft->plotters.find("b")->copies);
    EXPECT_EQ(3, view->plotters.find("b")->copies);
}

/// Handwritten, with Settings in it.
class Window : public TestObject {
public:
    Window() : TestObject("Window") {
        add("Width", 800);
        addChild(new View3D);
    }
    ConfigurationObject* createConfigurationObject() const override { return new Window; }
    View3D& view() const { return dynamic_cast<View3D&>(*getConfigurationObject("View3D")); }
};

/// Handwritten, as a kind.
class Printer : public TestObject {
public:
    Printer() : TestObject("Printer") { add("Copies", 1); }
    ConfigurationObject* createConfigurationObject() const override { return new Printer; }
};

struct Pool : Settings<Pool> {
    Pool() : Settings("Pool") {}
    KeyedChildren<Printer> printers{this};
    Child<Window> window{this};
};

TEST_P(KeyedChildrenSaving, HandwrittenClassesMixIn) {
    writeSystem("<Pool><Printer key='a'><Copies>2</Copies></Printer><Window><View3D>"
                "<Plotter key='s'/></View3D></Window></Pool>");
    auto pool = start<Pool>();
    EXPECT_EQ(2, pool->printers.find("a")->value<int>("Copies").getValue());
    pool->printers.remove("a");
    pool->printers.add("b").value<int>("Copies").setValue(7);
    pool->printers.add("c");
    pool->window->view().plotters.add("u");
    pool->window->view().plotters.remove("s");
    save();
    const std::string text = readFile(m_userFile);
    pool = start<Pool>();
    EXPECT_THAT(keysOf(pool->printers), ElementsAre("b", "c"));
    EXPECT_EQ(7, pool->printers.find("b")->value<int>("Copies").getValue());
    EXPECT_THAT(keysOf(pool->window->view().plotters), ElementsAre("u"));
    save();
    EXPECT_EQ(text, readFile(m_userFile));
}

TEST_P(KeyedChildrenSaving, AnObjectWithAKeyHasChildrenWithKeys) {
    writeSystem("<View3D><Plotter key='default'/></View3D>"
                "<View3D key='main'><Plotter key='a'/></View3D>");
    const auto startKeyed = [&] {
        m_manager.reset();
        useTwoFiles();
        return std::pair{add(std::make_shared<View3D>(), "View3D", "main"),
                         add(std::make_shared<View3D>(), "View3D", "other")};
    };
    auto [main, other] = startKeyed();
    EXPECT_THAT(keysOf(main->plotters), ElementsAre("a"));
    EXPECT_THAT(keysOf(other->plotters), ElementsAre("default"));
    main->plotters.remove("a");
    main->plotters.add("m");
    other->plotters.remove("default");
    other->plotters.add("o");
    save();
    std::tie(main, other) = startKeyed();
    EXPECT_THAT(keysOf(main->plotters), ElementsAre("m"));
    EXPECT_THAT(keysOf(other->plotters), ElementsAre("o"));
}

TEST_P(KeyedChildrenSaving, SavesToAnotherFileInFull) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter><Plotter key='a'/><Plotter key='r'/>"
                "</View3D>");
    writeUser("<View3D><Plotter key='b'><Copies>4</Copies></Plotter></View3D>");
    auto view = start();
    view->plotters.add("c");
    view->plotters.remove("r");
    ASSERT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    m_manager.reset();
    m_manager.setConfigurationFile(m_file);
    view = add(std::make_shared<View3D>());
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b", "c"));
    EXPECT_EQ("A3", view->plotters.find("b")->paper.get());
    EXPECT_EQ(4, view->plotters.find("b")->copies);
    EXPECT_EQ("A3", view->plotters.add("d").paper.get()) << "the default entry goes along";
}

TEST_P(KeyedChildrenSaving, ASecondSaveWritesTheSame) {
    writeSystem("<View3D><Plotter key='a'/><Plotter key='b'/></View3D>");
    const auto view = start();
    view->plotters.add("c").pens = {"red"};
    view->plotters.add("0").trays.add("1").sheets = 3;
    view->plotters.remove("a");
    view->plotters.find("b")->copies = 4;
    save();
    const std::string text = readFile(m_userFile);
    save();
    EXPECT_EQ(text, readFile(m_userFile));
    start();
    save();
    EXPECT_EQ(text, readFile(m_userFile));
}

// Reloads and resets.

TEST_P(KeyedChildrenSaving, AReloadFindsNewKeysAndLosesGoneOnes) {
    writeSystem("<View3D><Plotter key='s'/></View3D>");
    writeUser("<View3D><Plotter key='kept'/><Plotter key='gone'/></View3D>");
    const auto view = start();
    const Plotter* const kept = view->plotters.find("kept");
    writeSystem("<View3D><Plotter key='s2'/></View3D>");
    writeUser("<View3D><Plotter key='kept'/><Plotter key='new'><Copies>3</Copies></Plotter>"
              "</View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("kept", "new", "s2"));
    EXPECT_EQ(3, view->plotters.find("new")->copies);
    EXPECT_EQ(kept, view->plotters.find("kept"));
}

TEST_P(KeyedChildrenSaving, AReloadKeepsWhatIsNotSaved) {
    writeSystem("<View3D><Plotter key='s'/><Plotter key='t'/></View3D>");
    writeUser("<View3D><Plotter key='u'/><Plotter key='v'/></View3D>");
    const auto view = start();
    const Plotter* const added = &view->plotters.add("added");
    view->plotters.add("added").copies = 4;
    view->plotters.add("plain").trays.add("1");
    view->plotters.remove("s");
    view->plotters.remove("u");
    view->plotters.find("v")->paper = "A0";
    writeUser("<View3D><Plotter key='u'/><Plotter key='v'><Copies>2</Copies></Plotter>"
              "<Plotter key='w'/></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("added", "plain", "t", "v", "w"));
    EXPECT_EQ(added, view->plotters.find("added"));
    EXPECT_EQ(4, added->copies);
    EXPECT_THAT(keysOf(view->plotters.find("plain")->trays), ElementsAre("1"));
    EXPECT_EQ("A0", view->plotters.find("v")->paper.get());
    EXPECT_EQ(2, view->plotters.find("v")->copies);
    save();
    const auto next = start();
    EXPECT_THAT(keysOf(next->plotters), ElementsAre("added", "plain", "t", "v", "w"));
}

TEST_P(KeyedChildrenSaving, AReloadTellsOnceAndSubscriptionsStay) {
    writeSystem("<View3D><Plotter key='a'><Copies>2</Copies></Plotter></View3D>");
    writeUser("<View3D/>");
    const auto view = start();
    std::vector<int> told;
    const auto watch =
        view->plotters.find("a")->copies.onChange([&](int copies) { told.push_back(copies); });
    int others = 0;
    const auto other =
        view->plotters.find("a")->paper.onChange([&](const std::string&) { ++others; });
    writeUser("<View3D><Plotter key='a'><Copies>3</Copies></Plotter><Plotter key='b'/></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(told, ElementsAre(3));
    writeSystem("<View3D><Plotter key='a'><Copies>7</Copies></Plotter></View3D>");
    writeUser("<View3D/>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_THAT(told, ElementsAre(3, 7));
    EXPECT_EQ(0, others);
    writeSystem("<View3D/>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(view->plotters.empty());
    writeSystem("<View3D><Plotter key='a'><Copies>9</Copies></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(9, view->plotters.find("a")->copies);
    EXPECT_THAT(told, ElementsAre(3, 7)) << "it ended with its plotter";
}

TEST_P(KeyedChildrenSaving, AReloadTakesOverLocks) {
    writeSystem("<View3D><Plotter key='a'><Paper>A3</Paper></Plotter></View3D>");
    const auto view = start();
    view->plotters.find("a")->paper = "A0";
    writeSystem("<View3D><Plotter key='a' editable='false'><Paper>A3</Paper></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("A3", view->plotters.find("a")->paper.get());
    view->plotters.remove("a");
    EXPECT_EQ(1U, view->plotters.size());
    writeSystem("<View3D><Plotter key='a'><Paper>A3</Paper></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(view->plotters.find("a")->isLocked());
    view->plotters.remove("a");
    EXPECT_TRUE(view->plotters.empty());
}

TEST_P(KeyedChildrenSaving, ALockedOneThatTheAdministratorTakesGoes) {
    writeSystem("<View3D><Plotter key='a' editable='false'/></View3D>");
    const auto view = start();
    writeSystem("<View3D/>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(view->plotters.empty());
}

TEST_P(KeyedChildrenSaving, AReloadTakesOverTheDefaultEntry) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper><Copies>2</Copies></Plotter></View3D>");
    const auto view = start();
    writeSystem("<View3D><Plotter><Copies>5</Copies><Tray key='1'/></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("A4", view->plotters.add("a").paper.get());
    EXPECT_EQ(5, view->plotters.add("a").copies);
    EXPECT_THAT(keysOf(view->plotters.add("a").trays), ElementsAre("1"));
    writeSystem("<View3D/>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(1, view->plotters.add("b").copies);
    EXPECT_TRUE(view->plotters.add("b").trays.empty());
}

TEST_P(KeyedChildrenSaving, AReloadTakesOverTheLocksOfTheDefaultEntry) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter></View3D>");
    const auto view = start();
    writeSystem("<View3D><Plotter><Paper editable='false'>A3</Paper></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(view->plotters.add("a").paper.isLocked());
    writeSystem("<View3D><Plotter><Paper>A3</Paper></Plotter></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(view->plotters.add("a").paper.isLocked());
    EXPECT_FALSE(view->plotters.add("b").paper.isLocked());
}

TEST_P(KeyedChildrenSaving, AfterAReloadAllIsAsAfterAStart) {
    writeSystem("<View3D><Plotter><Paper>A3</Paper><Tray key='1'/></Plotter></View3D>");
    writeUser("<View3D><Plotter key='mine'><Copies>2</Copies></Plotter></View3D>");
    const auto view = start();
    Support::KeyedFixture::Process other(anotherProcess());
    writeSystem("<View3D><Plotter><Paper>A2</Paper><Tray key='2'><Sheets>8</Sheets></Tray>"
                "</Plotter></View3D>");
    ASSERT_TRUE(other.manager().reloadConfiguration());
    const auto expectNew = [](View3D& now) {
        const Plotter& mine = *now.plotters.find("mine");
        EXPECT_EQ("A2", mine.paper.get());
        EXPECT_EQ(2, mine.copies);
        EXPECT_THAT(keysOf(mine.trays), ElementsAre("2"));
        EXPECT_EQ(8, mine.trays.find("2")->sheets);
    };
    expectNew(*other.operator->());
    expectNew(*start());
}

TEST_P(KeyedChildrenSaving, WhatTheSystemFileGetsLaterIsRemembered) {
    writeSystem("<View3D/>");
    writeUser("<View3D><Plotter key='a'/></View3D>");
    const auto view = start();
    writeSystem("<View3D><Plotter key='a'/></View3D>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    view->plotters.remove("a");
    save();
    EXPECT_TRUE(start()->plotters.empty());
}

TEST_P(KeyedChildrenSaving, AResetToTheSystemFileBringsBackItsOwn) {
    writeSystem("<View3D><Plotter key='a'><Copies>2</Copies></Plotter><Plotter key='b'/></View3D>");
    writeUser("<View3D><Plotter key='a'><Copies>3</Copies></Plotter><RemovedPlotter key='b'/>"
              "<Plotter key='mine'/></View3D>");
    auto view = start();
    const Plotter* const a = view->plotters.find("a");
    m_manager.resetConfigurationObject("View3D", false);
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b"));
    EXPECT_EQ(2, a->copies);
    EXPECT_EQ(a, view->plotters.find("a"));
    save();
    view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b"));
    EXPECT_EQ(2, view->plotters.find("a")->copies);
}

TEST_P(KeyedChildrenSaving, AResetToTheUsersFileKeepsItsOwnAndWhatIsLocked) {
    writeSystem("<View3D><Plotter><Paper editable='false'>A0</Paper></Plotter>"
                "<Plotter key='locked' editable='false'><Copies>2</Copies></Plotter></View3D>");
    writeUser("<View3D><Plotter key='mine'><Copies>4</Copies></Plotter></View3D>");
    const auto view = start();
    view->plotters.find("mine")->copies = 5;
    view->plotters.add("unsaved");
    m_manager.resetConfigurationObject("View3D", true);
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("locked", "mine"));
    EXPECT_EQ(4, view->plotters.find("mine")->copies);
    EXPECT_EQ("A0", view->plotters.find("mine")->paper.get());
    EXPECT_EQ(2, view->plotters.find("locked")->copies);
    EXPECT_TRUE(view->plotters.find("mine")->paper.isLocked());
    view->plotters.remove("mine");
    view->plotters.remove("locked");
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("locked"));
}

TEST_P(KeyedChildrenSaving, AResetThatFindsNothingLeavesNone) {
    writeSystem("<Other/>");
    writeUser("<View3D><Plotter key='a'/></View3D>");
    const auto view = start();
    m_manager.resetConfigurationObject("View3D", false);
    EXPECT_TRUE(view->plotters.empty());
}

TEST_P(KeyedChildrenSaving, AReloadThatFindsNothingLeavesNone) {
    writeUser("<View3D><Plotter key='a'/></View3D>");
    const auto view = start();
    writeUser("<Other/>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(view->plotters.empty());
}

TEST_P(KeyedChildrenSaving, DefaultValuesAreSavedWithTheirChildren) {
    writeSystem("<View3D><Plotter key='a'><Copies>2</Copies></Plotter></View3D>");
    writeUser("<View3D><Plotter key='b'><Copies>3</Copies></Plotter></View3D>");
    auto view = start();
    view->setDefaultValues();
    save();
    view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a", "b"));
    EXPECT_EQ(1, view->plotters.find("a")->copies);
    EXPECT_EQ(1, view->plotters.find("b")->copies);
}

// What is told of files.

TEST_P(KeyedChildrenSaving, ExplainNamesTheKeys) {
    writeSystem("<View3D>\n<Plotter key='Hall 1'>\n<Copies editable='false'>2</Copies></Plotter>"
                "</View3D>");
    writeUser("<View3D>\n\n<Plotter key='Hall 1'><Paper>A0</Paper><Tray key='1'>\n<Sheets>5"
              "</Sheets></Tray></Plotter></View3D>");
    const auto view = start();
    view->plotters.add("added");
    const auto origins = m_manager.explain();
    const auto find = [&](const std::string& path) {
        const auto found = std::ranges::find(origins, path, &ConfigurationOrigin::path);
        EXPECT_NE(origins.end(), found) << path;
        return found == origins.end() ? ConfigurationOrigin{} : *found;
    };
    const auto copies = find("View3D/Plotter[Hall 1]/Copies");
    EXPECT_EQ("2", copies.value);
    EXPECT_EQ(ConfigurationOrigin::System, copies.layer);
    EXPECT_EQ(3U, copies.line);
    EXPECT_EQ("View3D/Plotter[Hall 1]/Copies", copies.lockedBy);
    const auto paper = find("View3D/Plotter[Hall 1]/Paper");
    EXPECT_EQ(ConfigurationOrigin::User, paper.layer);
    EXPECT_EQ(3U, paper.line);
    EXPECT_EQ(m_userFile, paper.file);
    const auto sheets = find("View3D/Plotter[Hall 1]/Tray[1]/Sheets");
    EXPECT_EQ("5", sheets.value);
    EXPECT_EQ(4U, sheets.line);
    const auto added = find("View3D/Plotter[added]/Copies");
    EXPECT_EQ(ConfigurationOrigin::User, added.layer) << "it was added and is not saved";
    EXPECT_EQ(0U, added.line);
}

TEST_P(KeyedChildrenSaving, ExplainTellsWhatComesFromTheDefaultEntry) {
    writeSystem("<View3D><Plotter>\n<Paper editable='false'>A3</Paper></Plotter></View3D>");
    writeUser("<View3D><Plotter key='a'><Copies>2</Copies></Plotter></View3D>");
    start();
    bool hasEntry = false;
    bool hasChild = false;
    for (const ConfigurationOrigin& origin : m_manager.explain()) {
        if (origin.path == "View3D/Plotter/Paper" || origin.path == "View3D/Plotter[a]/Paper") {
            (origin.path == "View3D/Plotter/Paper" ? hasEntry : hasChild) = true;
            EXPECT_EQ("A3", origin.value);
            EXPECT_EQ(ConfigurationOrigin::System, origin.layer);
            EXPECT_EQ("View3D/Plotter/Paper", origin.lockedBy);
        }
        if (origin.path == "View3D/Plotter[a]/Copies") {
            EXPECT_EQ("2", origin.value);
            EXPECT_EQ(ConfigurationOrigin::User, origin.layer);
        }
    }
    EXPECT_TRUE(hasEntry);
    EXPECT_TRUE(hasChild);
}

TEST_P(KeyedChildrenSaving, ProblemsNameTheKeys) {
    writeSystem("<View3D><Plotter>\n<Copies>many</Copies><Colour/></Plotter></View3D>");
    writeUser(
        "<View3D>\n<Plotter key='Hall 1'><Copies>100</Copies>\n<Coppies>3</Coppies></Plotter>\n"
        "<Plotter key='Hall 1'/>\n<RemovedPlotter key='gone'/>\n<Scanner key='s'>"
        "<Tray key='1'/></Scanner></View3D>");
    start();
    std::vector<std::string> problems;
    for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
        problems.push_back(std::to_string(problem.kind) + ' ' + std::to_string(problem.line) + ' ' +
                           problem.path);
    using Problem = ConfigurationProblem;
    const auto expected = [](Problem::Kind kind, const std::string& rest) {
        return std::to_string(kind) + ' ' + rest;
    };
    EXPECT_THAT(problems,
                ElementsAre(expected(Problem::NotConverted, "2 View3D/Plotter/Copies"),
                            expected(Problem::Unknown, "2 View3D/Plotter/Colour"),
                            expected(Problem::OutOfRange, "2 View3D/Plotter[Hall 1]/Copies"),
                            expected(Problem::Unknown, "3 View3D/Plotter[Hall 1]/Coppies"),
                            expected(Problem::Twice, "4 View3D/Plotter[Hall 1]"),
                            expected(Problem::Unknown, "6 View3D/Scanner[s]/Tray[1]")));
}

TEST_P(KeyedChildrenSaving, AChildOutOfRangeTakesTheNextLayer) {
    writeSystem("<View3D><Plotter key='a'><Copies>5</Copies></Plotter></View3D>");
    writeUser("<View3D><Plotter key='a'><Copies>100</Copies></Plotter></View3D>");
    EXPECT_EQ(5, start()->plotters.find("a")->copies);
}

// Two processes.

class KeyedChildrenMerge : public Support::KeyedFixture {
protected:
    KeyedChildrenMerge() { m_manager.setSaveMode(ConfigurationManager::Merge); }
    Process startOther() { return Process(anotherProcess()); }
};

TEST_F(KeyedChildrenMerge, EachAddsRemovesAndChangesOthers) {
    writeSystem("<View3D><Plotter key='s1'/><Plotter key='s2'/></View3D>");
    writeUser("<View3D><Plotter key='u1'/><Plotter key='u2'/><Plotter key='u3'/></View3D>");
    const auto view = start();
    Process other = startOther();
    view->plotters.add("mine");
    view->plotters.remove("u1");
    view->plotters.remove("s1");
    view->plotters.find("u3")->copies = 2;
    other->plotters.add("theirs");
    other->plotters.remove("u2");
    other->plotters.remove("s2");
    other->plotters.find("u3")->paper = "A0";
    save();
    other.save();
    ASSERT_TRUE(m_manager.reloadConfiguration());
    ASSERT_TRUE(other.manager().reloadConfiguration());
    for (const View3D* now : {view.get(), other.operator->(), start().get()}) {
        EXPECT_THAT(keysOf(now->plotters), ElementsAre("mine", "theirs", "u3"));
        EXPECT_EQ(2, now->plotters.find("u3")->copies);
        EXPECT_EQ("A0", now->plotters.find("u3")->paper.get());
    }
}

TEST_F(KeyedChildrenMerge, TheSameKeyIsMergedByValue) {
    writeSystem("<View3D/>");
    const auto view = start();
    Process other = startOther();
    view->plotters.add("a").copies = 2;
    view->plotters.find("a")->trays.add("1");
    other->plotters.add("a").paper = "A0";
    other->plotters.find("a")->trays.add("2");
    save();
    other.save();
    const auto now = start();
    EXPECT_EQ(2, now->plotters.find("a")->copies);
    EXPECT_EQ("A0", now->plotters.find("a")->paper.get());
    EXPECT_THAT(keysOf(now->plotters.find("a")->trays), ElementsAre("1", "2"));
}

TEST_F(KeyedChildrenMerge, AChangeWinsOverARemovalBefore) {
    writeSystem("<View3D><Plotter key='s'/></View3D>");
    writeUser("<View3D><Plotter key='u'><Paper>A0</Paper></Plotter></View3D>");
    const auto view = start();
    Process other = startOther();
    view->plotters.remove("s");
    view->plotters.remove("u");
    save();
    other->plotters.find("s")->copies = 2;
    other->plotters.find("u")->copies = 3;
    other.save();
    const auto now = start();
    EXPECT_EQ(2, now->plotters.find("s")->copies);
    EXPECT_EQ(3, now->plotters.find("u")->copies);
}

TEST_F(KeyedChildrenMerge, ARemovalWinsOverAChangeBefore) {
    writeSystem("<View3D><Plotter key='s'/></View3D>");
    writeUser("<View3D><Plotter key='u'/></View3D>");
    const auto view = start();
    Process other = startOther();
    other->plotters.find("s")->copies = 2;
    other->plotters.find("u")->copies = 3;
    other.save();
    view->plotters.remove("s");
    view->plotters.remove("u");
    save();
    const auto now = start();
    EXPECT_EQ(nullptr, now->plotters.find("u"));
    EXPECT_EQ(nullptr, now->plotters.find("s"));
}

TEST_F(KeyedChildrenMerge, BothRemoveTheSame) {
    writeSystem("<View3D><Plotter key='s'/></View3D>");
    const auto view = start();
    Process other = startOther();
    view->plotters.remove("s");
    other->plotters.remove("s");
    save();
    other.save();
    EXPECT_EQ(document("<View3D><RemovedPlotter key=\"s\"/></View3D>"), userText());
    other->plotters.add("s");
    other.save();
    EXPECT_THAT(keysOf(start()->plotters), ElementsAre("s"));
}

TEST_F(KeyedChildrenMerge, CommentsAndAttributesStay) {
    writeSystem("<View3D/>");
    writeUser("<View3D><!--one--><Plotter key='a' note='x'><!--two--><Copies>2</Copies></Plotter>"
              "<!--three--><Plotter key='b'/></View3D>");
    const auto view = start();
    view->plotters.find("a")->paper = "A0";
    view->plotters.add("c");
    view->plotters.remove("b");
    save();
    EXPECT_EQ(document("<View3D><!--one--><Plotter key=\"a\" note=\"x\"><!--two--><Copies>2"
                       "</Copies><!--Paper size--><Paper>A0</Paper></Plotter><!--A plotter-->"
                       "<Plotter key=\"c\"/></View3D>"),
              userText());
}

TEST_F(KeyedChildrenMerge, WithoutAChangeNothingIsWritten) {
    writeSystem("<View3D><Plotter><Paper editable='false'>A3</Paper></Plotter><Plotter key='s'/>"
                "<Plotter key='r'/></View3D>");
    const std::string text =
        document("<View3D><Plotter><Copies>3</Copies></Plotter><Plotter key='a'><Paper>A0</Paper>"
                 "<Copies>2</Copies></Plotter>  <Plotter key='b'/><RemovedPlotter key='r'/>"
                 "</View3D>");
    Support::writeFile(m_userFile, text);
    const auto view = start();
    save();
    EXPECT_EQ(ConfigurationSaveReport::NothingToSave, m_manager.getSaveReport().reason);
    EXPECT_EQ(text, readFile(m_userFile));
    view->plotters.add("new");
    view->plotters.remove("new");
    view->plotters.remove("s");
    view->plotters.add("s");
    view->plotters.find("b")->copies = 7;
    view->plotters.find("b")->copies.reset();
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
}

TEST_F(KeyedChildrenMerge, AddedUnderAWhollyLockedEntryByBoth) {
    writeSystem("<View3D><Plotter editable='false'/></View3D>");
    const auto view = start();
    Process other = startOther();
    view->plotters.add("mine");
    other->plotters.add("theirs");
    save();
    other.save();
    save();
    EXPECT_THAT(keysOf(start()->plotters), ElementsAre("mine", "theirs"));
}

TEST_F(KeyedChildrenMerge, AnUnlockedEntryShowsWhatTheFileStillHolds) {
    writeSystem("<View3D><Plotter editable='false'><Paper>A0</Paper></Plotter></View3D>");
    writeUser("<View3D><Plotter key='mine'><Copies>4</Copies></Plotter></View3D>");
    const auto view = start();
    EXPECT_EQ(1, view->plotters.find("mine")->copies);
    view->showGrid = false;
    view->plotters.add("other");
    save();
    writeSystem("<View3D><Plotter><Paper>A0</Paper></Plotter></View3D>");
    const auto now = start();
    EXPECT_EQ(4, now->plotters.find("mine")->copies);
    EXPECT_EQ("A0", now->plotters.find("other")->paper.get());
}

TEST_F(KeyedChildrenMerge, ALostFileIsWrittenAgain) {
    writeSystem("<View3D><Plotter key='s'/></View3D>");
    writeUser("<View3D><Plotter><Copies>2</Copies></Plotter><Plotter key='a'/>"
              "<RemovedPlotter key='s'/></View3D>");
    start();
    std::filesystem::remove(m_userFile.toPath());
    save();
    const auto view = start();
    EXPECT_THAT(keysOf(view->plotters), ElementsAre("a"));
    EXPECT_EQ(2, view->plotters.add("b").copies);
}

TEST_F(KeyedChildrenMerge, OneFileKeepsLocksAndWhatIsLocked) {
    writeUser("<View3D><Plotter key='a'><Copies editable='false'>2</Copies></Plotter></View3D>");
    useUserFileAlone();
    const auto view = start();
    view->plotters.find("a")->copies.item().setValue(9);
    view->plotters.find("a")->paper = "A0";
    save();
    EXPECT_THAT(userText(), AllOf(HasSubstr("<Copies editable=\"false\">2</Copies>"),
                                  HasSubstr("<Paper>A0</Paper>")));
}

} // namespace
} // namespace Orvant
