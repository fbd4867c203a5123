#include <ConfigurationFramework/ConfigurationManager.h>

#include <FileSizeLimit.h>
#include <ManagerFixture.h>
#include <OwnProcess.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <system_error>

#include <sys/stat.h>

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

ino_t inodeOf(const FileName& file) {
    struct stat status{};
    EXPECT_EQ(0, stat(file.toString().c_str(), &status));
    return status.st_ino;
}

class ConfigurationManagerSaveReport : public Support::ManagerFixture,
                                       public testing::WithParamInterface<Support::SaveMode> {
protected:
    ConfigurationManagerSaveReport() { m_manager.setSaveMode(GetParam()); }

    bool save() const { return m_manager.saveConfiguration("1.0"); }
    const Report& report() const { return m_manager.getSaveReport(); }
    bool isMerge() const { return GetParam() == ConfigurationManager::Merge; }
    std::shared_ptr<TestObject> addChanged() {
        const auto object = add(makeObject());
        object->value<int>("a").setValue(5);
        return object;
    }
};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerSaveReport, Support::anySaveMode,
                         Support::nameOfMode);

TEST_P(ConfigurationManagerSaveReport, KeepsTheModeOverAReset) {
    m_manager.setSystemFileRequired(true);
    m_manager.setLockTimeout(std::chrono::milliseconds(7));
    m_manager.reset();
    EXPECT_EQ(GetParam(), m_manager.getSaveMode());
    EXPECT_TRUE(m_manager.isSystemFileRequired());
    EXPECT_EQ(std::chrono::milliseconds(7), m_manager.getLockTimeout());
}

TEST_P(ConfigurationManagerSaveReport, WaitsFiveSecondsForOthersAtFirst) {
    EXPECT_EQ(std::chrono::seconds(5), m_manager.getLockTimeout());
}

TEST_P(ConfigurationManagerSaveReport, TellsThatThereIsNoFile) {
    addChanged();
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, report().reason);
}

TEST_P(ConfigurationManagerSaveReport, TellsOfASave) {
    useOneFile();
    addChanged();
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::Saved, report().reason);
    EXPECT_FALSE(report().error);
    EXPECT_EQ("", report().text);
    EXPECT_EQ(GetParam() == ConfigurationManager::InPlace, report().writtenInPlace);
}

TEST_P(ConfigurationManagerSaveReport, ReplacesTheFileByANewOne) {
    useOneFile();
    writeFile(m_file, document(""));
    const FileName alias = m_directory.file("alias.xml");
    std::filesystem::create_symlink("settings.xml", alias.toString());
    m_manager.setConfigurationFile(alias);
    addChanged();
    const ino_t former = inodeOf(m_file);
    EXPECT_TRUE(save());
    EXPECT_EQ(GetParam() == ConfigurationManager::InPlace, inodeOf(m_file) == former);
    EXPECT_TRUE(std::filesystem::is_symlink(alias.toString()));
    EXPECT_THAT(readFile(m_file), HasSubstr("<a>5</a>"));
}

TEST_P(ConfigurationManagerSaveReport, WritesAFileWithAnotherHardLinkInPlaceAndSaysSo) {
    useOneFile();
    writeFile(m_file, document(""));
    const FileName link = m_directory.file("link");
    std::filesystem::create_hard_link(m_file.toString(), link.toString());
    addChanged();
    EXPECT_TRUE(save());
    EXPECT_TRUE(report().writtenInPlace);
    EXPECT_EQ(readFile(m_file), readFile(link));
    const bool isIntended = GetParam() == ConfigurationManager::InPlace;
    EXPECT_THAT(report().text, HasSubstr(isIntended ? "" : "settings.xml\" was written in place"));
}

TEST_P(ConfigurationManagerSaveReport, TellsOfAMissingFolder) {
    m_manager.setConfigurationFile(m_directory.file("missing/settings.xml"));
    addChanged();
    EXPECT_EQ(isMerge(), save());
    EXPECT_EQ(isMerge() ? Report::Saved : Report::NoFolder, report().reason);
    if (!isMerge()) {
        EXPECT_EQ(std::errc::no_such_file_or_directory, report().error);
        EXPECT_THAT(report().text, HasSubstr("missing/settings.xml\" was not saved: "));
    }
}

TEST_P(ConfigurationManagerSaveReport, TellsOfMissingRights) {
    useOneFile();
    addChanged();
    const auto isRefused = [&] {
        return !save() && report().reason == Report::NoPermission &&
                       report().error == std::errc::permission_denied
                   ? 0
                   : 1;
    };
    const Support::ReadOnlyFolder folder(m_directory.path());
    EXPECT_EQ(0, Support::asOrdinaryUser(isRefused)) << "to make the file";
    EXPECT_FALSE(std::filesystem::exists(m_file.toString()));
}

TEST_P(ConfigurationManagerSaveReport, TellsOfMissingRightsToWriteTheFile) {
    useOneFile();
    writeFile(m_file, document(""));
    addChanged();
    std::filesystem::permissions(m_file.toString(), std::filesystem::perms(0444));
    for (const int rightsOfFolder : {0777, 0755}) {
        std::filesystem::permissions(m_directory.path(), std::filesystem::perms(rightsOfFolder));
        EXPECT_EQ(0, Support::asOrdinaryUser([&] {
                      return !save() && report().reason == Report::NoPermission ? 0 : 1;
                  }));
        EXPECT_EQ(document(""), readFile(m_file));
    }
}

TEST_P(ConfigurationManagerSaveReport, TellsOfMissingRightsToReadTheFile) {
    useOneFile();
    writeFile(m_file, document(""));
    addChanged();
    std::filesystem::permissions(m_file.toString(), std::filesystem::perms(0));
    std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0777));
    EXPECT_EQ(0, Support::asOrdinaryUser([&] {
                  return !save() && report().reason == Report::NoPermission &&
                                 report().error == std::errc::permission_denied
                             ? 0
                             : 1;
              }));
    std::filesystem::permissions(m_file.toString(), std::filesystem::perms(0644));
    EXPECT_EQ(document(""), readFile(m_file));
}

TEST_P(ConfigurationManagerSaveReport, TellsOfAFullDisk) {
    useOneFile();
    for (const std::string& before : {std::string(), document("<Other/>")}) {
        if (!before.empty())
            writeFile(m_file, before);
        m_manager.removeConfigurationObject("Test");
        addChanged();
        bool isSaved = true;
        {
            const Support::FileSizeLimit limit(before.size());
            isSaved = save();
        }
        EXPECT_FALSE(isSaved);
        EXPECT_EQ(Report::NoSpace, report().reason);
        EXPECT_EQ(std::errc::file_too_large, report().error);
        EXPECT_THAT(report().text, HasSubstr("settings.xml\" was not saved: "));
        if (before.empty())
            EXPECT_FALSE(std::filesystem::exists(m_file.toString()));
        else
            EXPECT_EQ(before, readFile(m_file));
    }
}

TEST_P(ConfigurationManagerSaveReport, IsThatOfTheOuterOfTwoSaves) {
    useOneFile();
    const auto object = add(std::make_shared<Support::ActingObject>("Test"));
    object->value<int>("a").setValue(5);
    object->onSave = [&] {
        EXPECT_FALSE(m_manager.saveConfigurationToFile(m_directory.path().string(), "1.0"));
    };
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::Saved, report().reason);
    EXPECT_FALSE(report().error);
    EXPECT_EQ("", report().text);
    EXPECT_THAT(readFile(m_file), HasSubstr("<a>5</a>"));
}

TEST_P(ConfigurationManagerSaveReport, TellsOfADamagedFile) {
    useOneFile();
    writeFile(m_file, "<broken");
    addChanged();
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, report().reason);
    EXPECT_EQ("<broken", readFile(m_file));
}

TEST_P(ConfigurationManagerSaveReport, TellsOfWhatXmlCannotExpress) {
    useOneFile();
    add(TestObject::make("Test", [](TestObject& object) { object.add("not a name", 1); }));
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::InvalidContent, report().reason);
    EXPECT_THAT(report().text, HasSubstr("Test"));
}

TEST_P(ConfigurationManagerSaveReport, RefusesToWriteTheSystemFile) {
    writeFile(m_systemFile, document("<Test><a editable=\"false\">5</a></Test>"));
    const std::string before = readFile(m_systemFile);
    const FileName link = m_directory.file("link.xml");
    std::filesystem::create_symlink(m_systemFile.toString(), link.toString());
    for (const FileName& user : {m_systemFile, link}) {
        m_manager.setSystemAndUserConfigurationFile(m_systemFile, user);
        addChanged();
        EXPECT_FALSE(save());
        EXPECT_EQ(Report::SameFile, report().reason);
        EXPECT_EQ(before, readFile(m_systemFile));
    }
}

TEST_P(ConfigurationManagerSaveReport, RefusesToMakeTheSystemFile) {
    std::filesystem::create_symlink("system.xml", m_userFile.toString());
    useTwoFiles();
    addChanged();
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::SameFile, report().reason);
    EXPECT_FALSE(std::filesystem::exists(m_systemFile.toString()));
}

TEST_P(ConfigurationManagerSaveReport, GoesOnWithASystemFileWhoseNameNoFileCanHave) {
    m_manager.setSystemAndUserConfigurationFile(FileName(std::string("system\0.xml", 11)),
                                                m_userFile);
    addChanged();
    EXPECT_TRUE(save()) << report().text;
    EXPECT_EQ(document("<Test><a>5</a></Test>"), withoutFormatting(readFile(m_userFile)));
}

TEST_P(ConfigurationManagerSaveReport, RefusesWhenTheUsersFileCouldNotBeReadAtTheLoad) {
    useTwoFiles();
    std::filesystem::create_directory(m_userFile.toString()); // cannot be read as a file
    const auto object = addChanged();
    std::filesystem::remove(m_userFile.toString());
    writeFile(m_userFile, document("<Test><b>6</b></Test>"));
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_THAT(report().text, HasSubstr("user.xml"));
    EXPECT_EQ(document("<Test><b>6</b></Test>"), readFile(m_userFile));

    // As soon as it is loaded, all is well.
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, object->value<int>("a").getValue());
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_userFile), HasSubstr("<b>6</b>"));
    EXPECT_THAT(readFile(m_userFile), HasSubstr("<a>5</a>"));
}

TEST_P(ConfigurationManagerSaveReport, RefusesWhenTheOnlyFileCouldNotBeReadAtTheLoad) {
    useOneFile();
    writeFile(m_file, "<broken");
    addChanged();
    writeFile(m_file, document("<Test><b>6</b></Test>"));
    for (const bool toNamedFile : {false, true}) {
        EXPECT_FALSE(toNamedFile ? m_manager.saveConfigurationToFile(m_file.toString(), "1.0")
                                 : save());
        EXPECT_EQ(Report::NotLoaded, report().reason);
        EXPECT_EQ(document("<Test><b>6</b></Test>"), readFile(m_file));
    }
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_directory.file("copy").toString(), "1.0"));
}

TEST_P(ConfigurationManagerSaveReport, RefusesWhenTheSystemFileCouldNotBeReadAtTheLoad) {
    useTwoFiles();
    writeFile(m_systemFile, "<broken");
    addChanged();
    writeFile(m_systemFile, document("<Test><a editable=\"false\">6</a></Test>"));
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_FALSE(std::filesystem::exists(m_userFile.toString()));
}

TEST_P(ConfigurationManagerSaveReport, RefusesToWriteASystemFileByNameThatWasNotLoaded) {
    useTwoFiles();
    writeFile(m_systemFile, "<broken");
    addChanged();
    const std::string theirs = document("<Test><b editable=\"false\">6</b></Test>");
    writeFile(m_systemFile, theirs);
    EXPECT_FALSE(m_manager.saveConfigurationToFile(m_systemFile.toString(), "1.0"));
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_EQ(theirs, readFile(m_systemFile));
}

TEST_P(ConfigurationManagerSaveReport, RefusesWhenTheSystemFileCannotBeReadAnyMore) {
    useTwoFiles();
    writeFile(m_systemFile, document("<Test><b>6</b></Test>"));
    addChanged();
    writeFile(m_systemFile, "<broken");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, report().reason);
    EXPECT_THAT(report().text, HasSubstr("system.xml"));
    writeFile(m_systemFile, "<Configuration version=\"7\"/>");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::OtherVersion, report().reason);
    std::filesystem::remove(m_systemFile.toString());
    std::filesystem::create_directory(m_systemFile.toString());
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_FALSE(std::filesystem::exists(m_userFile.toString()));
}

TEST_P(ConfigurationManagerSaveReport, RefusesWhenTheSystemFileWasEmptyAtTheLoad) {
    useTwoFiles();
    writeFile(m_systemFile, "");
    addChanged();
    writeFile(m_systemFile, document("<Test><a editable=\"false\">6</a></Test>"));
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_FALSE(std::filesystem::exists(m_userFile.toString()));
}

TEST_P(ConfigurationManagerSaveReport, KnowsTheSystemFileAfterAResetFromTheUsersFile) {
    useTwoFiles();
    writeFile(m_systemFile, document("<Test><b>6</b></Test>"));
    const auto object = addChanged();
    m_manager.resetConfigurationObject("Test", true);
    object->value<int>("a").setValue(5);
    writeFile(m_systemFile, "<broken");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, report().reason);
    EXPECT_FALSE(std::filesystem::exists(m_userFile.toString()));
}

TEST_P(ConfigurationManagerSaveReport, KnowsTheSystemFileAfterASaveWithoutIt) {
    useTwoFiles();
    writeFile(m_systemFile, document("<Test><b>6</b></Test>"));
    const auto object = addChanged();
    std::filesystem::remove(m_systemFile.toString());
    EXPECT_TRUE(save());
    const std::string before = readFile(m_userFile);
    object->value<int>("a").setValue(7);
    writeFile(m_systemFile, "<broken");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, report().reason);
    EXPECT_EQ(before, readFile(m_userFile));
}

TEST_P(ConfigurationManagerSaveReport, ResetsNothingWithoutARequiredSystemFile) {
    useTwoFiles();
    writeFile(m_systemFile, document("<Test><b editable=\"false\">6</b></Test>"));
    writeFile(m_userFile, document("<Test><a>7</a></Test>"));
    const auto object = addChanged();
    m_manager.setSystemFileRequired(true);
    std::filesystem::remove(m_systemFile.toString());
    for (const bool fromUserFile : {false, true}) {
        m_manager.resetConfigurationObject("Test", fromUserFile);
        EXPECT_EQ(5, object->value<int>("a").getValue());
        EXPECT_EQ(6, object->value<int>("b").getValue());
        EXPECT_FALSE(object->value<int>("b").isEditable());
    }
}

TEST_P(ConfigurationManagerSaveReport, GoesOnWhenTheVersionOfItsOwnFileIsAcceptedLater) {
    useOneFile();
    m_manager.setValidVersionList({});
    const auto object = addChanged();
    EXPECT_EQ(!isMerge(), save());
    EXPECT_EQ(isMerge() ? Report::OtherVersion : Report::Saved, report().reason);
    EXPECT_EQ(!isMerge(), std::filesystem::exists(m_file.toString()));
    m_manager.setValidVersionList({"1.0"});
    object->value<int>("a").setValue(6);
    EXPECT_TRUE(save()) << report().text;
    EXPECT_THAT(readFile(m_file), HasSubstr("<a>6</a>"));
}

TEST_P(ConfigurationManagerSaveReport, GoesOnWithoutASystemFileUnlessItIsRequired) {
    useTwoFiles();
    addChanged();
    EXPECT_TRUE(save());
    m_manager.setSystemFileRequired(true);
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_THAT(report().text, HasSubstr("system.xml"));
}

TEST_P(ConfigurationManagerSaveReport, LoadsAndSavesNothingWithoutARequiredSystemFile) {
    useTwoFiles();
    m_manager.setSystemFileRequired(true);
    writeFile(m_userFile, document("<Test><a>7</a></Test>"));
    const auto object = add(makeObject());
    EXPECT_EQ(1, object->value<int>("a").getValue());
    writeFile(m_systemFile, document(""));
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::NotLoaded, report().reason);
    EXPECT_EQ(document("<Test><a>7</a></Test>"), readFile(m_userFile));
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(7, object->value<int>("a").getValue());
    object->value<int>("a").setValue(8);
    EXPECT_TRUE(save());
}

TEST_P(ConfigurationManagerSaveReport, GoesOnWithObjectsThatWereRegisteredBeforeTheFiles) {
    addChanged();
    useTwoFiles();
    writeFile(m_userFile, document("<Other/>"));
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Other/><Test><a>5</a></Test>"), withoutFormatting(readFile(m_userFile)));
}

TEST_P(ConfigurationManagerSaveReport, GoesOnWithFilesThatWereMissing) {
    useTwoFiles();
    addChanged();
    writeFile(m_systemFile, document("<Test><b>6</b></Test>"));
    writeFile(m_userFile, document("<Other/>"));
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_userFile), HasSubstr("<a>5</a>"));
    EXPECT_THAT(readFile(m_userFile), HasSubstr("<Other/>"));
}

TEST_P(ConfigurationManagerSaveReport, ListsRegistrationsInTheOrderOfSaving) {
    add(makeObject("P"), "P", "2");
    add(makeObject("P"), "P", "1");
    const auto first = add(makeObject("A"));
    const auto registrations = m_manager.getRegistrations();
    ASSERT_EQ(3U, registrations.size());
    EXPECT_EQ(first, registrations[0].object);
    EXPECT_EQ("A", registrations[0].name);
    EXPECT_EQ(std::nullopt, registrations[0].key);
    EXPECT_EQ("2", registrations[1].key);
    EXPECT_EQ("1", registrations[2].key);
}

TEST_P(ConfigurationManagerSaveReport, DropsRemovedObjectsOnce) {
    useOneFile();
    writeFile(m_file, document("<P key=\"1\"><a>3</a></P><P key=\"2\"><a>4</a></P>"));
    add(makeObject("P"), "P", "1");
    add(makeObject("P"), "P", "2");
    // Without a key the first is meant, as in look-ups.
    EXPECT_TRUE(m_manager.removeConfigurationObject("P"));
    EXPECT_FALSE(m_manager.removeConfigurationObject("Q"));
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_file), Not(HasSubstr("key=\"1\"")));
    EXPECT_THAT(readFile(m_file), HasSubstr("key=\"2\""));

    writeFile(m_file, document("<P key=\"1\"><a>3</a></P>"));
    addChanged();
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_file), HasSubstr("key=\"1\""));
}

TEST_P(ConfigurationManagerSaveReport, LeavesTheElementOfARemovedObjectThatWritesNothing) {
    useTwoFiles();
    writeFile(m_userFile, document("<Switches><a>3</a></Switches>"));
    const auto switches =
        std::make_shared<TestObject>("Switches", ConfigurationItemBase::NotPersistent);
    add(switches);
    EXPECT_TRUE(m_manager.removeConfigurationObject("Switches"));
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Switches"));
    addChanged();
    EXPECT_TRUE(save());
    EXPECT_THAT(withoutFormatting(readFile(m_userFile)),
                HasSubstr("<Switches><a>3</a></Switches>"));
}

TEST_P(ConfigurationManagerSaveReport, KeepsAnObjectThatIsRegisteredAgain) {
    useOneFile();
    writeFile(m_file, document("<Test><a>3</a></Test>"));
    add(makeObject());
    EXPECT_TRUE(m_manager.removeConfigurationObject("Test"));
    EXPECT_EQ(3, add(makeObject())->value<int>("a").getValue());
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(m_file), HasSubstr("<a>3</a>"));
}

} // namespace
} // namespace Orvant
