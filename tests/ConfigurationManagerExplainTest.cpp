#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ViewFixture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace Orvant {

namespace {

using namespace Support;
using Lines = std::vector<std::string>;
using Strings = std::vector<std::string>;

/// Everything in an origin; of the file, only the name.
std::string show(const ConfigurationOrigin& origin) {
    static const std::map<ConfigurationOrigin::Layer, std::string> s_layers{
        {ConfigurationOrigin::Default, "default"},
        {ConfigurationOrigin::System, "system"},
        {ConfigurationOrigin::User, "user"}};
    const auto text = [](const std::optional<std::string>& value) {
        return value ? "'" + *value + "'" : "-";
    };
    return origin.path + " = '" + origin.value + "' " + s_layers.at(origin.layer) +
           (origin.locked ? " locked" : "") +
           (origin.lockedBy.empty() ? "" : " by " + origin.lockedBy) + " | " +
           text(origin.systemValue) + " | " + text(origin.userValue) + " | " +
           withoutFolder(origin.file) + ":" + std::to_string(origin.line);
}

class ConfigurationManagerExplain : public ViewFixture {
protected:
    Lines explained() const {
        Lines lines;
        for (const ConfigurationOrigin& origin : m_manager.explain())
            lines.push_back(show(origin));
        return lines;
    }
    /// Where the elements of each value stand: system file, user's file, and what locks it.
    Lines placed() const {
        Lines lines;
        for (const ConfigurationOrigin& origin : m_manager.explain())
            lines.push_back(origin.path + " " + std::to_string(origin.systemLine) + " " +
                            std::to_string(origin.userLine) + " | " + origin.lockedBy + " " +
                            withoutFolder(origin.lockFile) + ":" + std::to_string(origin.lockLine));
        return lines;
    }
};

TEST_F(ConfigurationManagerExplain, SaysNothingWithoutObjects) {
    EXPECT_EQ(Lines(), explained());
    writeOne("<View><Zoom>5</Zoom></View>");
    EXPECT_EQ(Lines(), explained());
}

TEST_F(ConfigurationManagerExplain, KnowsNoLayersWithoutFiles) {
    const auto view = addView();
    EXPECT_EQ(Lines{"View/Zoom = '1' default | - | - | :0"}, explained());
    view->value<int>("Zoom").setValue(2);
    EXPECT_EQ(Lines{"View/Zoom = '2' user | - | - | :0"}, explained());
}

TEST_F(ConfigurationManagerExplain, NamesTheOnlyFileAsTheUsers) {
    writeOne("\n<View>\n<Zoom>5</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '5' user | - | '5' | settings.xml:3"}, explained());
}

TEST_F(ConfigurationManagerExplain, NamesTheHighestLayerThatHoldsAValue) {
    writeTwo("<View>\n<a>2</a><b>3</b></View>", "<View>\n\n<b>4</b><c>5</c></View>");
    add(TestObject::make("View",
                         [](TestObject& o) { o.add("a", 1).add("b", 1).add("c", 1).add("d", 1); }));
    EXPECT_EQ(
        (Lines{"View/a = '2' system | '2' | - | system.xml:2",
               "View/b = '4' user | '3' | '4' | user.xml:3",
               "View/c = '5' user | - | '5' | user.xml:3", "View/d = '1' default | - | - | :0"}),
        explained());
}

TEST_F(ConfigurationManagerExplain, PassesOverATextThatDoesNotConvert) {
    writeTwo("<View><a>2</a><b>x</b><c>2</c><d>2</d></View>",
             "<View><a>yes</a><b/><c>3x</c><d>99999999999</d></View>");
    add(TestObject::make("View",
                         [](TestObject& o) { o.add("a", 1).add("b", 1).add("c", 1).add("d", 1); }));
    EXPECT_EQ((Lines{"View/a = '2' system | '2' | 'yes' | system.xml:1",
                     "View/b = '1' default | 'x' | '' | :0",
                     "View/c = '3' user | '2' | '3x' | user.xml:1",
                     "View/d = '2' system | '2' | '99999999999' | system.xml:1"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, GivesTextsAsFilesHoldThem) {
    writeOne("<All><b>true</b><u>-1</u><d>1e-7</d><f>2.50</f><s> a </s>"
             "<l><item>x, y</item><item/></l></All>");
    add(TestObject::make("All", [](TestObject& o) {
        o.add("b", false).add("i", -7).add("u", 1U).add("d", 0.0).add("f", 0.0F);
        o.add<std::string>("s", "").add<Strings>("l", {}).add<Strings>("m", {"z"});
    }));
    EXPECT_EQ(
        (Lines{"All/b = 'true' user | - | 'true' | settings.xml:1",
               "All/i = '-7' default | - | - | :0", "All/u = '-1' user | - | '-1' | settings.xml:1",
               "All/d = '1e-07' user | - | '1e-7' | settings.xml:1",
               "All/f = '2.5' user | - | '2.50' | settings.xml:1",
               "All/s = ' a ' user | - | ' a ' | settings.xml:1",
               R"(All/l = '"x, y", ""' user | - | '"x, y", ""' | settings.xml:1)",
               R"(All/m = '"z"' default | - | - | :0)"}),
        explained());
}

TEST_F(ConfigurationManagerExplain, TakesAListFromWhereItIsRead) {
    writeTwo("<View><l><item>s</item></l></View>",
             "<View><Below>\n<l><item>u</item></l></Below><m><item><x/></item></m></View>");
    add(TestObject::make("View",
                         [](TestObject& o) { o.add<Strings>("l", {}).add<Strings>("m", {"d"}); }));
    EXPECT_EQ((Lines{R"(View/l = '"u"' user | '"s"' | '"u"' | user.xml:2)",
                     R"(View/m = '"d"' default | - | '""' | :0)"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, CallsAValueThatWasChangedTheUsers) {
    writeTwo("<View><Zoom>2</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    const auto view = addView();
    view->value<int>("Zoom").setValue(2);
    EXPECT_EQ(Lines{"View/Zoom = '2' user | '2' | '3' | :0"}, explained());
    view->value<int>("Zoom").setValue(3);
    EXPECT_EQ(Lines{"View/Zoom = '3' user | '2' | '3' | user.xml:1"}, explained());
}

TEST_F(ConfigurationManagerExplain, IsAboutTheFilesAtTheLastLoadOfTheObject) {
    writeTwo("<View><Zoom>5</Zoom></View>", "");
    addView();
    const Lines asLoaded{"View/Zoom = '5' system | '5' | - | system.xml:1"};
    writeTwo("\n\n<View><Zoom>6</Zoom></View>", "");
    EXPECT_EQ(asLoaded, explained());
    add(std::make_shared<TestObject>("Other"));
    EXPECT_EQ(asLoaded, explained());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(Lines{"View/Zoom = '6' system | '6' | - | system.xml:3"}, explained());
}

TEST_F(ConfigurationManagerExplain, KnowsWhereAValueIsFromThatOthersChangedMeanwhile) {
    writeTwo("<View><Zoom>5</Zoom></View>", "");
    const auto view = addView();
    m_manager.setSaveMode(ConfigurationManager::Merge);
    writeFile(m_userFile, document("<View><Zoom>7</Zoom></View>"));
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(Lines{"View/Zoom = '5' system | '5' | '7' | system.xml:1"}, explained());
    view->value<int>("Zoom").setValue(6);
    EXPECT_EQ(Lines{"View/Zoom = '6' user | '5' | '7' | :0"}, explained());
}

TEST_F(ConfigurationManagerExplain, IsAboutTheFilesAfterASave) {
    for (const auto mode : {ConfigurationManager::InPlace, ConfigurationManager::Replace,
                            ConfigurationManager::Merge}) {
        m_manager.reset();
        m_manager.setSaveMode(mode);
        writeTwo("<View><Zoom>2</Zoom></View>", "");
        const auto view = addView();
        view->value<int>("Zoom").setValue(7);
        EXPECT_EQ(Lines{"View/Zoom = '7' user | '2' | - | :0"}, explained());
        ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_EQ(Lines{"View/Zoom = '7' user | '2' | '7' | user.xml:4"}, explained());
        view->value<int>("Zoom").setValue(2);
        ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_EQ(Lines{"View/Zoom = '2' system | '2' | - | system.xml:1"}, explained());
    }
    m_manager.setSaveMode(ConfigurationManager::InPlace);
}

TEST_F(ConfigurationManagerExplain, KnowsWhatAMergeWroteBesideOthersChanges) {
    m_manager.setSaveMode(ConfigurationManager::Merge);
    writeTwo("", "<View><Zoom>3</Zoom></View>");
    const auto view = addView();
    writeFile(m_userFile, document("<Other/><View><Zoom>3</Zoom></View>"));
    view->value<int>("Zoom").setValue(7);
    ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(Lines{"View/Zoom = '7' user | - | '7' | user.xml:6"}, explained());
}

TEST_F(ConfigurationManagerExplain, KnowsWhatAResetRead) {
    writeOne("<View><Zoom>3</Zoom></View>");
    addView();
    writeOne("<View><Zoom>5</Zoom></View>");
    m_manager.resetConfigurationObject("View", true);
    EXPECT_EQ(Lines{"View/Zoom = '5' user | - | '5' | settings.xml:1"}, explained());
}

TEST_F(ConfigurationManagerExplain, LeavesOutWhatXmlCannotName) {
    writeOne("<View><Zoom>5</Zoom></View>");
    addView();
    add(TestObject::make("Bad Name", [](TestObject& o) { o.add("Zoom", 1); }));
    EXPECT_EQ(Lines{"View/Zoom = '5' user | - | '5' | settings.xml:1"}, explained());
    EXPECT_TRUE(m_manager.getLoadProblems().empty());
}

TEST_F(ConfigurationManagerExplain, IsAboutTheFilesOfTheLastLoadUntilOthersAreLoaded) {
    writeOne("<View><Zoom>5</Zoom></View>");
    addView();
    writeTwo("<View><Zoom>6</Zoom></View>", "");
    EXPECT_EQ(Lines{"View/Zoom = '5' user | - | '5' | settings.xml:1"}, explained());
    add(std::make_shared<TestObject>("Other"));
    EXPECT_EQ(Lines{"View/Zoom = '5' user | '6' | - | :0"}, explained());
}

TEST_F(ConfigurationManagerExplain, CallsAResetThatIsNotSavedTheUsers) {
    writeTwo("<View><Zoom>2</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    addView();
    m_manager.resetConfigurationObject("View", false);
    EXPECT_EQ(Lines{"View/Zoom = '2' user | '2' | '3' | :0"}, explained());
    ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(Lines{"View/Zoom = '2' system | '2' | - | system.xml:1"}, explained());
}

TEST_F(ConfigurationManagerExplain, FollowsAReload) {
    writeTwo("<View><Zoom>2</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    addView();
    writeTwo("<View>\n<Zoom editable='false'>4</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(Lines{"View/Zoom = '4' system locked by View/Zoom | '4' | '3' | system.xml:2"},
              explained());
}

TEST_F(ConfigurationManagerExplain, DoesNotTakeFilesForTheSourceOfWhatWasNotLoadedFromThem) {
    addView();
    writeOne("<View><Zoom>5</Zoom></View>");
    add(std::make_shared<TestObject>("Other"));
    EXPECT_EQ(Lines{"View/Zoom = '1' default | - | '5' | :0"}, explained());
}

TEST_F(ConfigurationManagerExplain, KnowsThatNothingIsLoadedWithoutARequiredSystemFile) {
    writeFile(m_userFile, document("<View><Zoom>5</Zoom></View>"));
    useTwoFiles();
    m_manager.setSystemFileRequired(true);
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '1' default | - | '5' | :0"}, explained());
    m_manager.setSystemFileRequired(false);
}

TEST_F(ConfigurationManagerExplain, SaysNothingOfWhatAFileThatIsNotAcceptedHolds) {
    writeTwo("<View><Zoom>2</Zoom></View>", "");
    writeFile(m_userFile, "<Configuration version='9'><View><Zoom>5</Zoom></View></Configuration>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '2' system | '2' | - | system.xml:1"}, explained());
}

TEST_F(ConfigurationManagerExplain, NamesTheElementThatLocks) {
    writeTwo("<View editable='false'><a>2</a><Camera><f>3</f></Camera></View>"
             "<Other><a editable='false'>4</a><b>5</b>"
             "<Camera editable='false'><f>6</f></Camera></Other>",
             "<View><a>20</a><b>21</b><Camera><f>30</f></Camera></View>"
             "<Other><a>40</a><b>50</b><Camera><f>60</f></Camera></Other>");
    for (const char* name : {"View", "Other"})
        add(TestObject::make(name, [](TestObject& o) {
            o.add("a", 1).add("b", 1).addChild(&(new TestObject("Camera"))->add("f", 1));
        }));
    EXPECT_EQ(
        (Lines{"Other/a = '4' system locked by Other/a | '4' | '40' | system.xml:1",
               "Other/b = '50' user | '5' | '50' | user.xml:1",
               "Other/Camera/f = '6' system locked by Other/Camera | '6' | '60' | system.xml:1",
               "View/a = '2' system locked by View | '2' | '20' | system.xml:1",
               "View/b = '1' default locked by View | - | '21' | :0",
               "View/Camera/f = '3' system locked by View | '3' | '30' | system.xml:1"}),
        explained());
}

TEST_F(ConfigurationManagerExplain, GivesTheDefaultWhereTheTextOfALockedValueDoesNotConvert) {
    writeTwo("<View><Zoom editable='false'>x</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '1' default locked by View/Zoom | 'x' | '3' | :0"}, explained());
}

TEST_F(ConfigurationManagerExplain, TakesLocksOfASingleFileAsReadersDo) {
    writeOne("<View><Zoom editable='false'>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '3' user locked by View/Zoom | - | '3' | settings.xml:1"},
              explained());
}

TEST_F(ConfigurationManagerExplain, IgnoresLocksOfTheUsersFileWhereTheSystemHasTheObject) {
    writeTwo("<View/>", "<View editable='false'><Zoom editable='false'>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '3' user | - | '3' | user.xml:1"}, explained());
    m_manager.reset();
    writeTwo("<Other/>", "<View><Zoom editable='false'>3</Zoom></View>");
    const auto view = addView();
    EXPECT_FALSE(view->value<int>("Zoom").isEditable());
    EXPECT_EQ(Lines{"View/Zoom = '3' user locked by View/Zoom | - | '3' | user.xml:1"},
              explained());
}

TEST_F(ConfigurationManagerExplain, TellsALockOfTheApplication) {
    writeTwo("<View><Zoom>2</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    addView()->value<int>("Zoom").setEditable(false);
    EXPECT_EQ(Lines{"View/Zoom = '3' user locked by View/Zoom | '2' | '3' | user.xml:1"},
              explained());
}

TEST_F(ConfigurationManagerExplain, KnowsThatWhatAClassLocksIsNotLoaded) {
    writeTwo("<View><a>2</a><b>2</b><c editable='false'>2</c><Camera><f>2</f></Camera></View>"
             "<Whole><a editable='false'>2</a></Whole>",
             "<View><a>3</a><b>3</b><c>3</c><Camera><f>3</f></Camera></View><Whole/>");
    const auto view = addView([](TestObject& o) {
        o.add("a", 1).add("b", 1).add("c", 1);
        o.value<int>("a").setEditable(false);
        o.value<int>("c").setEditable(false);
        auto* const camera = new TestObject("Camera");
        o.addChild(&camera->add("f", 1));
        camera->setEditable(false);
    });
    add(TestObject::make("Whole", [](TestObject& o) { o.add("a", 1).setEditable(false); }));
    EXPECT_EQ(1, view->value<int>("a").getValue());
    EXPECT_EQ((Lines{"View/a = '1' default locked by View/a | '2' | '3' | :0",
                     "View/b = '3' user | '2' | '3' | user.xml:1",
                     "View/c = '1' default locked by View/c | '2' | '3' | :0",
                     "View/Camera/f = '1' default locked by View/Camera | '2' | '3' | :0",
                     "Whole/a = '1' default locked by Whole | '2' | - | :0"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, NamesALockOfTheElementWithoutAKey) {
    writeTwo("<Machine><MaxFeed editable='false'>3</MaxFeed></Machine>"
             "<Machine key='2' editable='false'/>",
             "<Machine key='1'><MaxFeed>4</MaxFeed></Machine>");
    for (const char* key : {"1", "2"})
        add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
            key);
    EXPECT_EQ(
        (Lines{
            "Machine[1]/MaxFeed = '3' system locked by Machine/MaxFeed | '3' | '4' | system.xml:1",
            "Machine[2]/MaxFeed = '1' default locked by Machine[2] | - | - | :0"}),
        explained());
    m_manager.reset();
    writeOne("<Machine editable='false'><MaxFeed>3</MaxFeed></Machine>");
    add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine", "1");
    EXPECT_EQ(Lines{"Machine[1]/MaxFeed = '3' user locked by Machine | - | '3' | settings.xml:1"},
              explained());
}

TEST_F(ConfigurationManagerExplain, NamesALockOfTheApplicationByTheKeyOfTheObject) {
    writeOne("<Machine><MaxFeed>3</MaxFeed></Machine>");
    add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine", "1")
        ->setEditable(false);
    EXPECT_EQ(
        Lines{"Machine[1]/MaxFeed = '3' user locked by Machine[1] | - | '3' | settings.xml:1"},
        explained());
}

TEST_F(ConfigurationManagerExplain, TellsLocksOfListsInEntities) {
    writeFile(m_file, "<!DOCTYPE Configuration [<!ENTITY e '<l editable=\"false\"/>'>]>\n"
                      "<Configuration version='1.0'><View>&e;</View></Configuration>");
    useOneFile();
    addView([](TestObject& o) { o.add<Strings>("l", {}); });
    EXPECT_EQ(Lines{"View/l = '' user locked by View/l | - | '' | settings.xml:2"}, explained());
}

TEST_F(ConfigurationManagerExplain, TellsApartValuesOfOnePath) {
    writeOne("<View><b>3</b></View>");
    addView([](TestObject& o) {
        auto* const inline_ = new TestObject("");
        inline_->add<std::string>("a", "x").add<std::string>("b", "x");
        o.add("a", 1).add("b", 1).addChild(inline_);
    });
    EXPECT_EQ(
        (Lines{"View/a = '1' default | - | - | :0", "View/b = '3' user | - | '3' | settings.xml:1",
               "View/a = 'x' default | - | - | :0",
               "View/b = '3' user | - | '3' | settings.xml:1"}),
        explained());
}

TEST_F(ConfigurationManagerExplain, FollowsKeysAndTheElementWithoutAKey) {
    writeTwo("<Machine key='Hall 1'><MaxFeed>2</MaxFeed></Machine>\n"
             "<Machine><MaxFeed>3</MaxFeed></Machine>\n<Machine><MaxFeed>4</MaxFeed></Machine>",
             "<Machine key='Hall 2'><MaxFeed>5</MaxFeed></Machine>");
    for (const char* key : {"Hall 2", "Hall 1", "Hall 3"})
        add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
            key);
    EXPECT_EQ((Lines{"Machine[Hall 2]/MaxFeed = '5' user | '4' | '5' | user.xml:1",
                     "Machine[Hall 1]/MaxFeed = '2' system | '2' | - | system.xml:1",
                     "Machine[Hall 3]/MaxFeed = '4' system | '4' | - | system.xml:3"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, ReadsTheFirstElementOfAName) {
    writeOne("<View key='x'><Zoom>2</Zoom><Zoom>3</Zoom></View><View><Zoom>4</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom = '2' user | - | '2' | settings.xml:1"}, explained());
}

TEST_F(ConfigurationManagerExplain, PutsNamelessChildrenIntoTheElementOfTheirParent) {
    writeTwo("<View editable='false'><Unit>cm</Unit><Camera><f>3</f></Camera></View>", "");
    add(TestObject::make("View", [](TestObject& o) {
        auto* const inline_ = new TestObject("");
        inline_->add<std::string>("Unit", "mm").addChild(&(new TestObject("Camera"))->add("f", 1));
        o.addChild(inline_).addChild(&(new TestObject("Last"))->add("z", 1));
    }));
    EXPECT_EQ((Lines{"View/Unit = 'cm' system locked by View | 'cm' | - | system.xml:1",
                     "View/Camera/f = '3' system locked by View | '3' | - | system.xml:1",
                     "View/Last/z = '1' default locked by View | - | - | :0"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, ExplainsWhatIsNeverWrittenOrNeverLoaded) {
    const RunningProduct product(BuildInformation::ProductType{0});
    writeOne("<View><a>2</a><b>2</b><c>2</c><d>2</d></View><Never><z>3</z></Never>");
    add(TestObject::make("View", [](TestObject& o) {
        o.add("a", 1, ConfigurationItemBase::NotPersistent)
            .add("b", 1, ConfigurationItemBase::SaveOnly)
            .add("c", 1, ConfigurationItemBase::LoadOnly)
            .add("d", 1, ConfigurationItemBase::LoadAndSave, ConfigurationItemBase::Product1);
    }));
    add(TestObject::make(
        "Never", [](TestObject& o) { o.add("z", 1); }, ConfigurationItemBase::NotPersistent));
    EXPECT_EQ((Lines{"Never/z = '1' default | - | '3' | :0", "View/a = '1' default | - | '2' | :0",
                     "View/b = '1' default | - | '2' | :0",
                     "View/c = '2' user | - | '2' | settings.xml:1",
                     "View/d = '2' user | - | '2' | settings.xml:1"}),
              explained());
}

TEST_F(ConfigurationManagerExplain, ExplainsFeatureSwitches) {
    writeOne("<DisableFeaturesConfiguration><EditorFoldItemsDisable>true</EditorFoldItemsDisable>"
             "</DisableFeaturesConfiguration>");
    add(std::make_shared<DisableFeaturesConfiguration>());
    const Lines lines = explained();
    ASSERT_EQ(10U, lines.size());
    EXPECT_EQ(
        "DisableFeaturesConfiguration/EditorSketchItemsDisable = 'false' default | - | - | :0",
        lines[0]);
    EXPECT_EQ("DisableFeaturesConfiguration/EditorFoldItemsDisable = 'true' user | - | 'true' | "
              "settings.xml:1",
              lines[1]);
}

/// Has a child for each key that the files hold, and saves it under its key.
class Plotters : public TestObject {
public:
    Plotters() : TestObject("Plotters") {}
    void loadContent(ConfigReader& reader) override {
        reader.createConfigurationObjects("Plotter", [&](const std::string& key) {
            if (std::ranges::find(m_keys, key) != m_keys.end())
                return;
            m_keys.push_back(key);
            addChild(&(new TestObject("Plotter"))->add("Copies", 1));
        });
        std::size_t i = 0;
        for (auto child = beginObjectIterator(); child != endObjectIterator(); ++child)
            reader.getClassContents("Plotter", m_keys[i++], **child);
    }
    void saveContent(ConfigWriter& writer) const override {
        std::size_t i = 0;
        for (auto child = beginObjectIterator(); child != endObjectIterator(); ++child)
            writer.putClassContents("Plotter", m_keys[i++], **child, "");
    }
    ConfigurationObject* createConfigurationObject() const override { return new Plotters; }

private:
    std::vector<std::string> m_keys;
};

TEST_F(ConfigurationManagerExplain, FollowsTheKeysThatAClassWrites) {
    writeTwo("<Plotters><Plotter key='A'><Copies>2</Copies></Plotter>"
             "<Plotter key='B'><Copies editable='false'>3</Copies></Plotter></Plotters>",
             "<Plotters>\n<Plotter key='B'><Copies>4</Copies></Plotter></Plotters>");
    add(std::make_shared<Plotters>());
    EXPECT_EQ((Lines{"Plotters/Plotter[A]/Copies = '2' system | '2' | - | system.xml:1",
                     "Plotters/Plotter[B]/Copies = '3' system locked by Plotters/Plotter[B]/Copies "
                     "| '3' | '4' | system.xml:1"}),
              explained());
}

/// Loads and saves a number, a list, points of one name and a group besides its values.
class Besides : public TestObject {
public:
    Besides() : TestObject("Besides") { add("a", 1); }
    void loadContent(ConfigReader& reader) override {
        TestObject::loadContent(reader);
        bool editable = true;
        reader.getInt("Number", number, editable);
    }
    void saveContent(ConfigWriter& writer) const override {
        TestObject::saveContent(writer);
        writer.putInt("Number", number, "");
        writer.putStringVector("List", {"x", "y"}, "");
        TestObject group("Group");
        group.add("g", 5);
        writer.putClassContents("Group", "k", group, "");
    }
    ConfigurationObject* createConfigurationObject() const override { return new Besides; }

    int number = 7;
};

TEST_F(ConfigurationManagerExplain, ExplainsWhatAClassWritesBesidesItsValues) {
    writeTwo("<Besides><Number>8</Number></Besides>",
             "<Besides><List><item>x</item><item>y</item></List>"
             "<Group key='k'>\n<g>5</g></Group></Besides>");
    const auto object = add(std::make_shared<Besides>());
    EXPECT_EQ((Lines{"Besides/a = '1' default | - | - | :0",
                     "Besides/Number = '8' system | '8' | - | system.xml:1",
                     R"(Besides/List = '"x", "y"' user | - | '"x", "y"' | user.xml:1)",
                     "Besides/Group[k]/g = '5' user | - | '5' | user.xml:2"}),
              explained());
    object->number = 9;
    EXPECT_EQ("Besides/Number = '9' user | '8' | - | :0", explained()[1]);
}

/// Saves an empty list and an empty text besides its values.
class EmptyBesides : public TestObject {
public:
    EmptyBesides() : TestObject("EmptyBesides") { add("a", 1); }
    void saveContent(ConfigWriter& writer) const override {
        TestObject::saveContent(writer);
        writer.putStringVector("List", {}, "");
        writer.putString("Text", "", "");
    }
    ConfigurationObject* createConfigurationObject() const override { return new EmptyBesides; }
};

TEST_F(ConfigurationManagerExplain, GivesAnEmptyListThatOnlyAClassWritesTheEmptyText) {
    writeTwo("<EmptyBesides>\n<List>\n<item>x</item>\n</List><Text> t</Text></EmptyBesides>",
             "<EmptyBesides><List/></EmptyBesides>");
    add(std::make_shared<EmptyBesides>());
    EXPECT_EQ((Lines{"EmptyBesides/a = '1' default | - | - | :0",
                     R"(EmptyBesides/List = '' user | '"x"' | '' | user.xml:1)",
                     "EmptyBesides/Text = '' system | ' t' | - | system.xml:4"}),
              explained());
    EXPECT_TRUE(m_manager.getLoadProblems().empty());
}

TEST_F(ConfigurationManagerExplain, TellsLocksOfWhatAClassWritesBesidesItsValues) {
    writeTwo("<Besides><Number editable='false'>8</Number></Besides>", "");
    add(std::make_shared<Besides>());
    EXPECT_EQ("Besides/Number = '8' system locked by Besides/Number | '8' | - | system.xml:1",
              explained()[1]);
}

TEST_F(ConfigurationManagerExplain, LocatesWhatEachFileSaysAlsoInVain) {
    writeTwo("<View>\n<a>2</a>\n<b>x</b></View>",
             "<View>\n\n<b>4</b><c/>\n<d>x</d><l><item/></l></View>");
    addView([](TestObject& o) {
        o.add("a", 1).add("b", 1).add("c", 1).add("d", 1).add("e", 1).add<Strings>("l", {});
    });
    EXPECT_EQ((Lines{"View/a 2 0 |  :0", "View/b 3 3 |  :0", "View/c 0 3 |  :0", "View/d 0 4 |  :0",
                     "View/e 0 0 |  :0", "View/l 0 4 |  :0"}),
              placed());
}

TEST_F(ConfigurationManagerExplain, LocatesNothingWithoutFiles) {
    addView()->setEditable(false);
    EXPECT_EQ(Lines{"View/Zoom 0 0 | View :0"}, placed());
}

TEST_F(ConfigurationManagerExplain, LocatesTheLockOfAValueAndOfTheObjectsAroundIt) {
    writeTwo("<View>\n<a\n editable='false'>2</a>\n<Camera editable='false'>\n<f>3</f>"
             "<Lens><z editable='false'>4</z></Lens></Camera></View>",
             "<View>\n\n<a>20</a>\n<Camera>\n<f>30</f></Camera></View>");
    addView([](TestObject& o) {
        auto* const camera = new TestObject("Camera");
        camera->add("f", 1).add("g", 1).addChild(&(new TestObject("Lens"))->add("z", 1));
        o.add("a", 1).add("b", 1).addChild(camera);
    });
    EXPECT_EQ((Lines{"View/a 2 3 | View/a system.xml:2", "View/b 0 0 |  :0",
                     "View/Camera/f 5 5 | View/Camera system.xml:4",
                     "View/Camera/g 0 0 | View/Camera system.xml:4",
                     "View/Camera/Lens/z 5 0 | View/Camera system.xml:4"}),
              placed());
}

TEST_F(ConfigurationManagerExplain, LocatesALockThatAKeyInheritsFromTheElementWithoutAKey) {
    writeTwo("\n<Machine editable='false'><MaxFeed>3</MaxFeed></Machine>"
             "\n<Machine key='2'>\n<MaxFeed editable='false'>4</MaxFeed></Machine>",
             "<Machine key='1'><MaxFeed>4</MaxFeed></Machine>");
    for (const char* key : {"1", "2"})
        add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
            key);
    EXPECT_EQ((Lines{"Machine[1]/MaxFeed 2 1 | Machine system.xml:2",
                     "Machine[2]/MaxFeed 4 0 | Machine[2]/MaxFeed system.xml:4"}),
              placed());
}

TEST_F(ConfigurationManagerExplain, LocatesLocksInTheOnlyFileAndInTheUsersWhereTheyCount) {
    writeOne("<View>\n<Zoom editable='false'>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom 0 2 | View/Zoom settings.xml:2"}, placed());
    m_manager.reset();
    writeTwo("<Other/>", "<View>\n\n<Zoom editable='false'>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom 0 3 | View/Zoom user.xml:3"}, placed());
    m_manager.reset();
    writeTwo("<View/>", "<View>\n\n<Zoom editable='false'>3</Zoom></View>");
    addView();
    EXPECT_EQ(Lines{"View/Zoom 0 3 |  :0"}, placed());
}

TEST_F(ConfigurationManagerExplain, LocatesALockInAnEntityAtTheReference) {
    writeFile(m_file, "<!DOCTYPE Configuration [<!ENTITY e '<l editable=\"false\"/>'>]>\n"
                      "<Configuration version='1.0'><View>\n&e;</View></Configuration>");
    useOneFile();
    addView([](TestObject& o) { o.add<Strings>("l", {}); });
    EXPECT_EQ(Lines{"View/l 0 3 | View/l settings.xml:3"}, placed());
}

TEST_F(ConfigurationManagerExplain, LocatesLocksOfWhatAClassWritesBesidesItsValues) {
    writeTwo("<Besides>\n<Number editable='false'>8</Number>"
             "\n<Group key='k' editable='false'/></Besides>",
             "");
    add(std::make_shared<Besides>());
    EXPECT_EQ(
        (Lines{"Besides/a 0 0 |  :0", "Besides/Number 2 0 | Besides/Number system.xml:2",
               "Besides/List 0 0 |  :0", "Besides/Group[k]/g 0 0 | Besides/Group[k] system.xml:3"}),
        placed());
}

TEST_F(ConfigurationManagerExplain, LocatesNoLockThatAClassOrTheApplicationMade) {
    writeTwo("<View><a>2</a>\n<b editable='false'>2</b><c editable='false'/>"
             "<d editable='false'>2</d></View>"
             "<Whole editable='false'><a editable='false'>2</a></Whole>"
             "\n\n<Mixed editable='false'><a editable='false'>2</a></Mixed>",
             "<View><a>3</a></View>");
    const auto view = addView([](TestObject& o) {
        o.add("a", 1).add("b", 1).add("c", 1).add("d", 1, ConfigurationItemBase::NotPersistent);
        o.value<int>("b").setEditable(false);
    });
    for (const char* name : {"a", "c", "d"})
        view->value<int>(name).setEditable(false);
    add(TestObject::make("Whole", [](TestObject& o) { o.add("a", 1).setEditable(false); }));
    add(TestObject::make("Mixed",
                         [](TestObject& o) { o.add("a", 1).value<int>("a").setEditable(false); }));
    EXPECT_EQ((Lines{"Mixed/a 4 0 | Mixed system.xml:4", "View/a 1 1 | View/a :0",
                     "View/b 2 0 | View/b :0", "View/c 2 0 | View/c :0", "View/d 2 0 | View/d :0",
                     "Whole/a 2 0 | Whole :0"}),
              placed());
}

TEST_F(ConfigurationManagerExplain, LocatesNoLockOfAFileThatTheObjectWasNotLoadedFrom) {
    addView()->setEditable(false);
    writeOne("<View editable='false'><Zoom>5</Zoom></View>");
    add(std::make_shared<TestObject>("Other"));
    EXPECT_EQ(Lines{"View/Zoom 0 1 | View :0"}, placed());
}

TEST_F(ConfigurationManagerExplain, LeavesObjectsAndFilesAsTheyAre) {
    writeTwo("<View><Zoom>2</Zoom></View>", "<View><Zoom>3</Zoom></View>");
    const auto view = addView();
    view->value<int>("Zoom").setValue(4);
    view->signals = 0;
    const std::string before = readFile(m_userFile);
    explained();
    EXPECT_EQ(4, view->value<int>("Zoom").getValue());
    EXPECT_EQ(0, view->signals);
    EXPECT_EQ(before, readFile(m_userFile));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_F(ConfigurationManagerExplain, KnowsWhatWasSavedToTheUsersFileByItsName) {
    writeTwo("<View><Zoom>2</Zoom></View>", "");
    addView();
    const FileName link = m_directory.file("link.xml");
    std::filesystem::create_symlink(m_userFile.toPath(), link.toPath());
    for (const auto mode : {ConfigurationManager::InPlace, ConfigurationManager::Merge})
        for (const FileName& file : {m_userFile, link, m_directory.file("./user.xml")}) {
            writeTwo("<View><Zoom>2</Zoom></View>", "");
            m_manager.setSaveMode(mode);
            EXPECT_TRUE(m_manager.saveConfigurationToFile(file.toString(), "1.0"));
            EXPECT_EQ(Lines{"View/Zoom = '2' user | '2' | '2' | user.xml:4"}, explained());
        }
}

/// An element, which may be missing, be locked or hold nothing that converts.
std::string randomElement(const std::string& tag, const std::string& content,
                          std::mt19937& random) {
    static const Strings s_attributes{"", "", "", " editable='false'", " editable='true'"};
    if (random() % 4 == 0)
        return {};
    return '<' + tag + s_attributes[random() % s_attributes.size()] + '>' +
           (random() % 5 == 0 && !content.starts_with('<') ? "x" : content) + "</" +
           tag.substr(0, tag.find(' ')) + '>';
}

/// @param first  smallest of the numbers in the elements
std::string randomView(int first, std::mt19937& random) {
    const auto number = [&](const std::string& tag) {
        return randomElement(tag, std::to_string(first + static_cast<int>(random() % 100)), random);
    };
    const auto machine = [&](const std::string& tag) {
        return randomElement(tag, "<a/>" + number("MaxFeed"), random);
    };
    return randomElement(
               "View",
               "<z/>" + number("a") + number("b") + number("Inline") +
                   randomElement("Camera", "<z/>" + number("c"), random) +
                   randomElement("l", "<item>" + std::to_string(first) + "</item>", random),
               random) +
           machine("Machine") + machine("Machine key='1'");
}

TEST_F(ConfigurationManagerExplain, NeverDisagreesWithALoad) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        m_manager.reset();
        const std::string system = randomView(1000, random);
        const std::string user = randomView(2000, random);
        if (round % 3 == 0)
            writeOne(user);
        else
            writeTwo(system, user);
        add(TestObject::make("View", [](TestObject& o) {
            o.add("a", 1).add("b", 1).add<Strings>("l", {"1"});
            o.addChild(&(new TestObject(""))->add("Inline", 1));
            o.addChild(&(new TestObject("Camera"))->add("c", 1));
        }));
        for (const char* key : {"1", "2"})
            add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
                key);
        for (const ConfigurationOrigin& origin : m_manager.explain()) {
            // The first digit tells the layer; an empty list comes from an element without items.
            const auto digit = origin.value.find_first_of("12");
            if (digit == std::string::npos)
                continue;
            const auto expected = origin.value.size() < 4      ? ConfigurationOrigin::Default
                                  : origin.value[digit] == '1' ? ConfigurationOrigin::System
                                                               : ConfigurationOrigin::User;
            ASSERT_EQ(expected, origin.layer) << show(origin) << '\n' << system << '\n' << user;
            ASSERT_EQ(origin.layer != ConfigurationOrigin::Default, origin.line == 1);
        }
    }
}

} // namespace
} // namespace Orvant
