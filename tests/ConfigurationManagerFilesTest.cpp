#include <ConfigurationFramework/ConfigurationManager.h>

#include <ManagerFixture.h>

#include <gmock/gmock.h>

#include <filesystem>

namespace Orvant {
namespace {

using Support::document;
using Support::readFile;
using Support::TestObject;
using Support::withoutFormatting;
using Support::writeFile;
using testing::HasSubstr;

using Report = ConfigurationSaveReport;

/// An object with "a" (1) and "b" (2).
std::shared_ptr<TestObject> makeObject(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) { object.add("a", 1).add("b", 2); });
}

int get(const TestObject& object, const std::string& value) {
    return object.value<int>(value).getValue();
}

void set(const TestObject& object, const std::string& value, int number) {
    object.value<int>(value).setValue(number);
}

/// Several files one after the other, or by several names.
class ConfigurationManagerFiles : public Support::ManagerFixture,
                                  public testing::WithParamInterface<Support::SaveMode> {
protected:
    ConfigurationManagerFiles() { m_manager.setSaveMode(GetParam()); }

    bool save() const { return m_manager.saveConfiguration("1.0"); }
    Report::Reason reason() const { return m_manager.getSaveReport().reason; }
    void useOther(bool twoFiles) {
        twoFiles ? m_manager.setSystemAndUserConfigurationFile(m_systemFile, m_other)
                 : m_manager.setConfigurationFile(m_other);
    }
    void useUser(const FileName& file) {
        m_manager.setSystemAndUserConfigurationFile(m_systemFile, file);
    }
    bool saveToUsersFile() const {
        return m_manager.saveConfigurationToFile(m_userFile.toString(), "1.0");
    }
    void expectInFiles(int a, int b) const {
        auto other = anotherProcess();
        const auto object = makeObject();
        other.addConfigurationObject(object, "Test");
        EXPECT_EQ(a, get(*object, "a"));
        EXPECT_EQ(b, get(*object, "b"));
    }

    const FileName m_other = m_directory.file("other.xml");
};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerFiles, Support::anySaveMode, Support::nameOfMode);

TEST_P(ConfigurationManagerFiles, TakeAllOfAnObjectThatWasRegisteredBeforeThem) {
    for (const bool twoFiles : {false, true}) {
        m_manager.reset();
        const auto object = add(makeObject());
        set(*object, "b", 9);
        writeFile(m_other, document("<Test><a>5</a></Test><Other/>"));
        useOther(twoFiles);
        EXPECT_TRUE(save());
        expectInFiles(1, 9);
        EXPECT_THAT(readFile(m_other), HasSubstr("<Other/>"));
    }
}

TEST_P(ConfigurationManagerFiles, TakeAllOfAnObjectThatWasLoadedFromAnotherFile) {
    for (const bool twoFiles : {false, true}) {
        m_manager.reset();
        for (const FileName& file : {m_file, m_userFile})
            writeFile(file, document("<Test><b>6</b></Test>"));
        writeFile(m_other, document("<Test><a>5</a><b>7</b></Test><Other/>"));
        twoFiles ? useTwoFiles() : useOneFile();
        add(makeObject());
        useOther(twoFiles);
        EXPECT_TRUE(save());
        expectInFiles(1, 6);
        EXPECT_THAT(readFile(m_other), HasSubstr("<Other/>"));
        EXPECT_EQ(document("<Test><b>6</b></Test>"), readFile(twoFiles ? m_userFile : m_file));
    }
}

TEST_P(ConfigurationManagerFiles, GiveTheirValuesWhenTheyAreReloadedAfterASwitch) {
    writeFile(m_file, document("<Test><a>5</a><b>6</b></Test>"));
    writeFile(m_other, document("<Test><a>50</a><b>60</b></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    set(*object, "b", 7);
    useOther(false);
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(50, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));
    EXPECT_TRUE(save());
    expectInFiles(50, 7);
}

TEST_P(ConfigurationManagerFiles, AreTheSameByAnotherName) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    const FileName alias = m_directory.file("./settings.xml");
    set(*object, "a", 6);
    EXPECT_TRUE(m_manager.saveConfigurationToFile(alias.toString(), "1.0"));
    set(*object, "a", 1);
    EXPECT_TRUE(save());
    expectInFiles(1, 2);
    m_manager.setConfigurationFile(alias);
    set(*object, "a", 7);
    EXPECT_TRUE(save());
    set(*object, "a", 1);
    EXPECT_TRUE(save());
    expectInFiles(1, 2);
}

TEST_P(ConfigurationManagerFiles, AreNotWrittenByAnyNameWhenTheyWereNotLoaded) {
    useTwoFiles();
    writeFile(m_userFile, "<broken");
    set(*add(makeObject()), "a", 5);
    const std::string theirs = document("<Test><b>6</b></Test>");
    writeFile(m_userFile, theirs);
    const FileName link = m_directory.file("link.xml");
    std::filesystem::create_symlink("user.xml", link.toString());
    for (const FileName& name : {m_directory.file("./user.xml"), link}) {
        useUser(name);
        EXPECT_FALSE(save());
        EXPECT_EQ(Report::NotLoaded, reason());
        EXPECT_EQ(theirs, readFile(m_userFile));
    }
    useUser(m_other);
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_other), HasSubstr("<a>5</a>"));
}

TEST_P(ConfigurationManagerFiles, AreNotWrittenWhenTheSystemFileWasNotLoadedThoughTheUsersIsOther) {
    useTwoFiles();
    writeFile(m_systemFile, "<broken");
    set(*add(makeObject()), "a", 5);
    writeFile(m_systemFile, document("<Test><a editable=\"false\">6</a></Test>"));
    for (const FileName& name : {m_directory.file("./user.xml"), m_other}) {
        useUser(name);
        EXPECT_FALSE(save());
        EXPECT_EQ(Report::NotLoaded, reason());
        EXPECT_FALSE(std::filesystem::exists(name.toString()));
    }
}

TEST_P(ConfigurationManagerFiles, AreNotWrittenWhenTheSystemFileIsUnreadableThoughTheUsersIsOther) {
    useTwoFiles();
    writeFile(m_systemFile, document("<Test><b>6</b></Test>"));
    set(*add(makeObject()), "a", 5);
    writeFile(m_systemFile, "<broken");
    for (const FileName& name : {m_directory.file("./user.xml"), m_other}) {
        useUser(name);
        EXPECT_FALSE(save());
        EXPECT_EQ(Report::Damaged, reason());
        EXPECT_FALSE(std::filesystem::exists(name.toString()));
    }
    m_manager.setSystemAndUserConfigurationFile(m_directory.file("./system.xml"), m_userFile);
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, reason());
}

TEST_P(ConfigurationManagerFiles, KeepAnElementThatWasRemovedFromAnother) {
    writeFile(m_file, document("<P key=\"1\"/><Test/>"));
    writeFile(m_other, document("<P key=\"1\"><a>5</a></P><Test/>"));
    useOneFile();
    add(makeObject("P"), "P", "1");
    set(*add(makeObject()), "b", 6);
    m_manager.removeConfigurationObject("P", "1");
    useOther(false);
    EXPECT_TRUE(save());
    EXPECT_THAT(withoutFormatting(readFile(m_other)), HasSubstr("<P key=\"1\"><a>5</a></P>"));
}

TEST_P(ConfigurationManagerFiles, KeepAnElementThatWasRemovedBeforeAnotherWasSet) {
    writeFile(m_file, document("<P key=\"1\"><a>5</a></P>"));
    useOneFile();
    add(makeObject("P"), "P", "1");
    set(*add(makeObject()), "b", 6);
    m_manager.removeConfigurationObject("P", "1");
    useOther(false);
    useOneFile();
    EXPECT_TRUE(save());
    EXPECT_THAT(withoutFormatting(readFile(m_file)), HasSubstr("<P key=\"1\"><a>5</a></P>"));
}

TEST_P(ConfigurationManagerFiles, LoseAnElementThatWasRemovedFromThemByAnotherName) {
    writeFile(m_userFile, document("<P key=\"1\"><a>5</a></P>"));
    useTwoFiles();
    add(makeObject("P"), "P", "1");
    set(*add(makeObject()), "b", 6);
    m_manager.removeConfigurationObject("P", "1");
    useUser(m_directory.file("./user.xml"));
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_userFile), Not(HasSubstr("<P")));
}

TEST_P(ConfigurationManagerFiles, LoseAllElementsOfANameThatWasRemovedWithoutAKey) {
    writeFile(m_file, document("<P key=\"1\"><a>5</a></P><P key=\"2\"><a>6</a></P>"));
    useOneFile();
    add(makeObject("P"));
    set(*add(makeObject()), "b", 6);
    m_manager.removeConfigurationObject("P");
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_file), Not(HasSubstr("<P")));
}

TEST_P(ConfigurationManagerFiles, TakeAChangeThatIsUndoneAfterASaveByName) {
    for (const int former : {1, 5}) { // the default, and another
        m_manager.reset();
        m_manager.setSaveMode(GetParam());
        writeFile(m_userFile, document("<Test><a>" + std::to_string(former) + "</a></Test>"));
        useTwoFiles();
        const auto object = add(makeObject());
        set(*object, "a", 6);
        EXPECT_TRUE(saveToUsersFile());
        expectInFiles(6, 2);
        set(*object, "a", former);
        m_manager.setSaveMode(ConfigurationManager::Merge);
        EXPECT_TRUE(save());
        expectInFiles(former, 2);
    }
}

TEST_P(ConfigurationManagerFiles, DoNotTakeBackAChangeThatIsUndoneAfterASaveByName) {
    for (const int former : {1, 5}) {
        m_manager.reset();
        writeFile(m_userFile, document("<Test><a>" + std::to_string(former) + "</a></Test>"));
        useTwoFiles();
        const auto object = add(makeObject());
        set(*object, "a", 6);
        EXPECT_TRUE(saveToUsersFile());
        set(*object, "a", former);
        EXPECT_TRUE(m_manager.reloadConfiguration());
        EXPECT_EQ(former, get(*object, "a"));
    }
}

TEST_P(ConfigurationManagerFiles, KeepWhatOthersWriteAfterASaveByName) {
    writeFile(m_userFile, document("<Test><a>5</a></Test>"));
    useTwoFiles();
    const auto object = add(makeObject());
    set(*object, "a", 6);
    EXPECT_TRUE(saveToUsersFile());
    writeFile(m_userFile, document("<Test><a>7</a></Test>"));
    set(*object, "b", 9);
    m_manager.setSaveMode(ConfigurationManager::Merge);
    EXPECT_TRUE(save());
    expectInFiles(7, 9);
}

TEST_P(ConfigurationManagerFiles, TakeAllOfAnObjectInASaveByName) {
    for (const bool isLoadedByReset : {false, true}) {
        m_manager.reset();
        writeFile(m_userFile, document("<Test><b>6</b></Test>"));
        if (isLoadedByReset)
            add(makeObject());
        useTwoFiles();
        if (isLoadedByReset)
            m_manager.resetConfigurationObject("Test", true);
        else
            add(makeObject());
        EXPECT_TRUE(saveToUsersFile());
        EXPECT_THAT(readFile(m_userFile), HasSubstr("<a>1</a>"));
        expectInFiles(1, 6);
    }
}

TEST_P(ConfigurationManagerFiles, LoseARemovedElementInASaveByName) {
    writeFile(m_userFile, document("<P key=\"1\"><a>5</a></P><Test><a>5</a></Test>"));
    useTwoFiles();
    add(makeObject("P"), "P", "1");
    add(makeObject());
    m_manager.removeConfigurationObject("P", "1");
    EXPECT_TRUE(saveToUsersFile());
    EXPECT_THAT(readFile(m_userFile), Not(HasSubstr("<P")));
    expectInFiles(5, 2);
    // That was it: what another program adds stays.
    writeFile(m_userFile, document("<P key=\"1\"><a>7</a></P>"));
    EXPECT_TRUE(save());
    EXPECT_THAT(withoutFormatting(readFile(m_userFile)), HasSubstr("<P key=\"1\"><a>7</a></P>"));
}

TEST_P(ConfigurationManagerFiles, TakeTheSystemsValuesWhenTheUsersBecomesTheOnlyOne) {
    writeFile(m_systemFile, document("<Test><a>20</a></Test>"));
    writeFile(m_userFile, document("<Test><b>6</b></Test>"));
    useTwoFiles();
    add(makeObject());
    m_manager.setConfigurationFile(m_userFile);
    EXPECT_TRUE(save());
    expectInFiles(20, 6);
}

TEST_P(ConfigurationManagerFiles, TakeTheValuesOfAFormerSystemFile) {
    writeFile(m_systemFile, document("<Test><a>20</a></Test>"));
    writeFile(m_userFile, document("<Test><b>6</b></Test>"));
    useTwoFiles();
    add(makeObject());
    writeFile(m_other, document("<Test><a>22</a></Test>"));
    m_manager.setSystemAndUserConfigurationFile(m_other, m_userFile);
    EXPECT_TRUE(save());
    expectInFiles(20, 6);
}

TEST_P(ConfigurationManagerFiles, AreThoseOfACopyAlone) {
    writeFile(m_file, document("<P key=\"1\"><a>5</a></P>"));
    useOneFile();
    add(makeObject("P"), "P", "1");
    set(*add(makeObject()), "b", 6);
    ConfigurationManager copy = m_manager;
    copy.setConfigurationFile(m_other);
    copy.removeConfigurationObject("P", "1");
    EXPECT_TRUE(copy.saveConfiguration("1.0"));
    EXPECT_THAT(readFile(m_other), Not(HasSubstr("<P")));
    EXPECT_EQ(Report::Saved, copy.getSaveReport().reason);

    // What the copy saved to its file is not saved to this one's.
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::Saved, reason());
    expectInFiles(1, 6);
    EXPECT_THAT(readFile(m_file), HasSubstr("<P key=\"1\">"));
}

TEST_P(ConfigurationManagerFiles, RefuseACopyLikeTheOriginal) {
    useOneFile();
    writeFile(m_file, "<broken");
    set(*add(makeObject()), "a", 5);
    writeFile(m_file, document("<Test><b>6</b></Test>"));
    const ConfigurationManager copy = m_manager;
    EXPECT_FALSE(copy.saveConfiguration("1.0"));
    EXPECT_EQ(Report::NotLoaded, copy.getSaveReport().reason);
    EXPECT_EQ(document("<Test><b>6</b></Test>"), readFile(m_file));
}

} // namespace
} // namespace Orvant
