#include <ConfigurationFramework/KeyedSettings.h>
#include <ConfigurationFramework/Settings.h>

#include <KeyedSupport.h>

#include <gmock/gmock.h>

#include <optional>
#include <set>

namespace Orvant {
namespace {

using Support::document;
using Support::Plotter;
using Support::TestObject;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Plotters = KeyedSettings<Plotter>;

std::vector<std::string> keysOf(const Plotters& plotters) {
    std::vector<std::string> keys;
    for (const auto& [key, plotter] : plotters)
        keys.push_back(key);
    return keys;
}

class KeyedSettingsOfFiles : public Support::KeyedFixture,
                             public testing::WithParamInterface<Support::SaveMode> {
protected:
    KeyedSettingsOfFiles() { m_manager.setSaveMode(GetParam()); }
    /// Starts the application anew.
    Plotters& restart() {
        m_manager.reset();
        useTwoFiles();
        return m_plotters.emplace(m_manager);
    }

private:
    std::optional<Plotters> m_plotters;
};

INSTANTIATE_TEST_SUITE_P(, KeyedSettingsOfFiles, Support::anySaveMode, Support::nameOfMode);

TEST_P(KeyedSettingsOfFiles, RegistersAnObjectForEachKey) {
    writeSystem("<Plotter><Paper>A3</Paper></Plotter><Plotter key='s'><Copies>2</Copies></Plotter>"
                "<Plotter key='both'/>");
    writeUser("<Plotter key='u'><Copies>3</Copies><Tray key='1'/></Plotter>"
              "<Plotter key='both'><Copies>4</Copies></Plotter>");
    const Plotters& plotters = restart();
    EXPECT_THAT(keysOf(plotters), ElementsAre("both", "s", "u"));
    EXPECT_EQ(3U, plotters.size());
    EXPECT_FALSE(plotters.empty());
    EXPECT_EQ(2, plotters.find("s")->copies);
    EXPECT_EQ(3, plotters.find("u")->copies);
    EXPECT_EQ("A3", plotters.find("u")->paper.get()) << "the default entry of the system file";
    EXPECT_EQ("A4", plotters.find("s")->paper.get());
    EXPECT_EQ(4, plotters.find("both")->copies);
    EXPECT_EQ(1U, plotters.find("u")->trays.size());
    EXPECT_EQ(nullptr, plotters.find("other"));
    EXPECT_EQ(3U, m_manager.getRegistrations().size());
}

TEST_P(KeyedSettingsOfFiles, AddsAndSaves) {
    writeSystem("<Plotter><Paper>A3</Paper></Plotter>");
    Plotters& plotters = restart();
    EXPECT_TRUE(plotters.empty());
    Plotter& added = plotters.add("Hall 1");
    EXPECT_EQ("A3", added.paper.get());
    EXPECT_EQ(&added, &plotters.add("Hall 1"));
    added.copies = 5;
    added.trays.add("1");
    save();
    EXPECT_EQ(5, restart().find("Hall 1")->copies);
    EXPECT_EQ(1U, restart().find("Hall 1")->trays.size());
}

TEST_P(KeyedSettingsOfFiles, WhatTheUserAddedIsKeptThoughItDiffersInNothing) {
    using Support::Scanner;
    writeSystem("<Scanner><Resolution>600</Resolution></Scanner><Scanner key='s'/>");
    std::optional<KeyedSettings<Scanner>> scanners;
    const auto startAgain = [&]() -> KeyedSettings<Scanner>& {
        m_manager.reset();
        useTwoFiles();
        return scanners.emplace(m_manager);
    };
    startAgain().add("u");
    save();
    ASSERT_NE(nullptr, startAgain().find("u"));
    EXPECT_EQ(600, scanners->find("u")->resolution) << "from the default entry";
    save();
    ASSERT_NE(nullptr, startAgain().find("u")) << "after a save without a change";
    scanners->find("u")->resolution = 300;
    save();
    EXPECT_EQ(300, startAgain().find("u")->resolution);
    scanners->find("u")->resolution = 600;
    save();
    ASSERT_NE(nullptr, startAgain().find("u")) << "after the last difference is gone";
    EXPECT_THAT(userText(), Not(HasSubstr("key=\"s\""))) << "the system file has it";
    scanners->remove("u");
    save();
    EXPECT_EQ(nullptr, startAgain().find("u"));
    EXPECT_NE(nullptr, scanners->find("s"));
}

TEST_P(KeyedSettingsOfFiles, WhatTheUserAddedIsKeptInOneFile) {
    using Support::Scanner;
    std::optional<KeyedSettings<Scanner>> scanners;
    const auto startAgain = [&]() -> KeyedSettings<Scanner>& {
        m_manager.reset();
        m_manager.setConfigurationFile(m_userFile);
        return scanners.emplace(m_manager);
    };
    startAgain().add("u");
    save();
    EXPECT_NE(nullptr, startAgain().find("u"));
}

TEST_P(KeyedSettingsOfFiles, RefusesKeysThatNoFileHolds) {
    Plotters& plotters = restart();
    for (const std::string key : {"", "\x01", "\xff"})
        EXPECT_THROW(plotters.add(key), std::invalid_argument);
    EXPECT_TRUE(plotters.empty());
    EXPECT_THAT(m_manager.getRegistrations(), IsEmpty());
}

TEST_P(KeyedSettingsOfFiles, RemovesTheUsersOwn) {
    writeUser("<Plotter key='a'><Copies>2</Copies></Plotter><Plotter key='b'><Copies>3</Copies>"
              "</Plotter>");
    Plotters& plotters = restart();
    plotters.remove("a");
    plotters.remove("never there");
    EXPECT_THAT(keysOf(plotters), ElementsAre("b"));
    EXPECT_EQ(1U, m_manager.getRegistrations().size());
    save();
    EXPECT_THAT(keysOf(restart()), ElementsAre("b"));
}

TEST_P(KeyedSettingsOfFiles, LockedOnesStay) {
    writeSystem("<Plotter><Paper editable='false'>A0</Paper></Plotter>"
                "<Plotter key='locked'><Copies editable='false'>2</Copies></Plotter>"
                "<Plotter key='free'/>");
    writeUser("<Plotter key='mine'><Copies>3</Copies></Plotter>");
    Plotters& plotters = restart();
    EXPECT_TRUE(plotters.find("mine")->paper.isLocked()) << "by the default entry";
    for (const std::string& key : keysOf(plotters))
        plotters.remove(key);
    EXPECT_THAT(keysOf(plotters), ElementsAre("locked"));
    save();
    EXPECT_THAT(keysOf(restart()), ElementsAre("free", "locked")) << "the system file has both";
}

TEST_P(KeyedSettingsOfFiles, UpdateFindsNewKeysAfterAReload) {
    writeUser("<Plotter key='a'><Copies>2</Copies></Plotter>");
    Plotters& plotters = restart();
    Plotter* const a = plotters.find("a");
    a->paper = "A0";
    writeUser("<Plotter key='b'><Copies>3</Copies></Plotter>");
    ASSERT_TRUE(m_manager.reloadConfiguration());
    plotters.update();
    EXPECT_THAT(keysOf(plotters), ElementsAre("a", "b"));
    EXPECT_EQ(a, plotters.find("a"));
    EXPECT_EQ("A0", a->paper.get()) << "it was not saved";
    EXPECT_EQ(3, plotters.find("b")->copies);
}

TEST_P(KeyedSettingsOfFiles, TwoHaveTheSameObjects) {
    writeUser("<Plotter key='a'><Copies>2</Copies></Plotter>");
    Plotters& plotters = restart();
    Plotters others(m_manager);
    EXPECT_EQ(plotters.find("a"), others.find("a"));
    others.add("b").copies = 7;
    EXPECT_EQ(others.find("b"), &plotters.add("b"));
    others.find("a")->copies = 9;
    save();
    EXPECT_EQ(9, restart().find("a")->copies);
    EXPECT_EQ(7, restart().find("b")->copies);
}

TEST_P(KeyedSettingsOfFiles, TakesNoObjectsOfAnotherClass) {
    m_manager.addConfigurationObject(std::make_shared<TestObject>(), "Plotter", "a");
    EXPECT_THROW(Plotters plotters(m_manager), std::logic_error);
}

TEST_P(KeyedSettingsOfFiles, TakesNoObjectWithoutAKey) {
    m_manager.addConfigurationObject(std::make_shared<Plotter>(), "Plotter");
    EXPECT_THROW(Plotters plotters(m_manager), std::logic_error);
}

struct Nameless : Settings<Nameless> {
    Nameless() : Settings("") {}
};

TEST_P(KeyedSettingsOfFiles, NeedsAName) {
    EXPECT_THROW(KeyedSettings<Nameless> objects(m_manager), std::logic_error);
}

TEST_P(KeyedSettingsOfFiles, ObjectsStayRegistered) {
    writeUser("<Plotter key='a'><Copies>2</Copies></Plotter>");
    m_manager.reset();
    useTwoFiles();
    {
        Plotters(m_manager).find("a")->copies = 8;
    }
    save();
    EXPECT_EQ(8, restart().find("a")->copies);
}

TEST_P(KeyedSettingsOfFiles, TheInstanceIsTheManagerUnlessSaid) {
    writeUser("<Plotter key='a'><Copies>2</Copies></Plotter>");
    const Plotters plotters;
    EXPECT_EQ(2, plotters.find("a")->copies);
    EXPECT_EQ(plotters.find("a"), m_manager.getConfigurationObject("Plotter"));
}

class MergedKeyedSettings : public Support::KeyedFixture {};

TEST_F(MergedKeyedSettings, KeepWhatOthersAdded) {
    m_manager.setSaveMode(ConfigurationManager::Merge);
    writeUser("<!--mine--><Plotter key='a'><Copies>2</Copies></Plotter>");
    Plotters plotters(m_manager);
    ConfigurationManager other = anotherProcess();
    Plotters others(other);
    plotters.find("a")->copies = 3;
    plotters.add("mine").copies = 4;
    others.find("a")->paper = "A0";
    others.add("theirs").copies = 5;
    save();
    ASSERT_TRUE(other.saveConfiguration("1.0"));
    EXPECT_EQ(document("<!--mine--><Plotter key=\"a\"><Copies>3</Copies><!--Paper size--><Paper>A0"
                       "</Paper></Plotter><Plotter key=\"mine\"><!--Number of copies--><Copies>4"
                       "</Copies></Plotter><Plotter key=\"theirs\"><!--Number of copies--><Copies>5"
                       "</Copies></Plotter>"),
              userText());
    ASSERT_TRUE(m_manager.reloadConfiguration());
    plotters.update();
    EXPECT_THAT(keysOf(plotters), ElementsAre("a", "mine", "theirs"));
}

TEST_F(MergedKeyedSettings, DoNotBringBackWhatOthersRemoved) {
    using Support::Scanner;
    writeUser("<Scanner key='u'/>");
    m_manager.setSaveMode(ConfigurationManager::Merge);
    useTwoFiles();
    ConfigurationManager other = m_manager;
    KeyedSettings<Scanner> scanners(m_manager);
    KeyedSettings<Scanner> others(other);
    ASSERT_NE(nullptr, others.find("u"));
    others.remove("u");
    ASSERT_TRUE(other.saveConfiguration("1.0"));
    save();
    EXPECT_THAT(userText(), Not(HasSubstr("Scanner")));
}

class ConfigurationManagerKeys : public Support::KeyedFixture {};

TEST_F(ConfigurationManagerKeys, AreThoseOfBothFiles) {
    writeSystem("<P key='s'/><P key='both'/><Q key='q'/><Inner><P key='below'/></Inner>");
    writeUser("<P/><P key='u'/><P key='both'/>");
    EXPECT_THAT(m_manager.getKeys("P"), ElementsAre("", "both", "s", "u"));
    EXPECT_THAT(m_manager.getKeys("P", true), ElementsAre("both", "s"));
    EXPECT_THAT(m_manager.getKeys("Missing"), IsEmpty());
}

TEST_F(ConfigurationManagerKeys, AreThoseOfTheOnlyFile) {
    writeUser("<P key='u'/>");
    useUserFileAlone();
    EXPECT_THAT(m_manager.getKeys("P"), ElementsAre("u"));
    EXPECT_THAT(m_manager.getKeys("P", true), ElementsAre("u"));
}

TEST_F(ConfigurationManagerKeys, AreNoneWithoutFilesThatLoad) {
    EXPECT_THAT(m_manager.getKeys("P"), IsEmpty());
    writeUser("<P key='u'/>");
    EXPECT_THAT(m_manager.getKeys("P", true), IsEmpty());
    m_manager.setSystemFileRequired(true);
    EXPECT_THAT(m_manager.getKeys("P"), IsEmpty());
    m_manager.setSystemFileRequired(false);
    m_manager.setValidVersionList({"2.0"});
    EXPECT_THAT(m_manager.getKeys("P"), IsEmpty());
    m_manager.reset();
    EXPECT_THAT(m_manager.getKeys("P"), IsEmpty());
}

} // namespace
} // namespace Orvant
