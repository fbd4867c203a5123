#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ManagerFixture.h>

#include <filesystem>

namespace Orvant {
namespace {

using Support::document;
using Support::readFile;
using Support::TestObject;
using Support::withoutFormatting;
using Support::writeFile;

/// An object with "a" (1), "b" (2), "state" (0), which is not loaded, and a child "Child" with "c"
/// (3).
std::shared_ptr<TestObject> makeObject(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) {
        object.add("a", 1).add("b", 2).add("state", 0, TestObject::NotPersistent);
        object.addChild(new TestObject("Child"));
        object.child("Child").add("c", 3);
    });
}

int get(const TestObject& object, const std::string& value) {
    return object.value<int>(value).getValue();
}

class ConfigurationManagerReload : public Support::ManagerFixture,
                                   public testing::WithParamInterface<Support::SaveMode> {
protected:
    ConfigurationManagerReload() {
        m_manager.setSaveMode(GetParam());
        useTwoFiles();
    }
    void writeFiles(const std::string& system, const std::string& user) const {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
    }
};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerReload, Support::anySaveMode, Support::nameOfMode);

TEST_P(ConfigurationManagerReload, TakesOverWhatOthersSaved) {
    writeFiles("<Test><a>5</a></Test>", "<Test><b>6</b></Test>");
    const auto object = add(makeObject());
    const auto untouched = add(makeObject("Untouched"));
    object->value<int>("state").setValue(9);
    object->signals = 0;
    untouched->signals = 0;
    writeFiles("<Test><a>50</a></Test>", "<Test><Child><c>30</c></Child></Test>");
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_EQ(50, get(*object, "a"));
    EXPECT_EQ(2, get(*object, "b"));
    EXPECT_EQ(9, get(*object, "state"));
    EXPECT_EQ(30, get(object->child("Child"), "c"));
    EXPECT_EQ(1, object->signals);
    EXPECT_EQ(0, untouched->signals);
}

TEST_P(ConfigurationManagerReload, KeepsWhatIsNotSavedYet) {
    writeFiles("<Test><a>5</a></Test>", "<Test><b>6</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(60);
    writeFiles("<Test><a>5</a></Test>", "<Test><b>7</b><Child><c>30</c></Child></Test>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(60, get(*object, "b"));
    EXPECT_EQ(30, get(object->child("Child"), "c"));
    // It still counts as a change.
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Test><b>60</b><Child><c>30</c></Child></Test>"),
              withoutFormatting(readFile(m_userFile)));
}

TEST_P(ConfigurationManagerReload, KeepsWhatIsNotSavedYetAfterASave) {
    writeFiles("", "<Test><b>6</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(60);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    object->value<int>("a").setValue(10);
    writeFiles("", "<Test><b>61</b></Test>");
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(10, get(*object, "a"));
    EXPECT_EQ(61, get(*object, "b"));
}

TEST_P(ConfigurationManagerReload, TakesOverLocks) {
    writeFiles("<Test><a editable=\"false\">5</a></Test>", "");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(60);
    writeFiles("<Test><a>7</a><b editable=\"false\">8</b></Test>", "");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(7, get(*object, "a"));
    EXPECT_TRUE(object->value<int>("a").isEditable());
    EXPECT_EQ(8, get(*object, "b"));
    EXPECT_FALSE(object->value<int>("b").isEditable());
}

TEST_P(ConfigurationManagerReload, GoesBackToTheDefaultsWhereAnElementIsGone) {
    writeFiles("", "<Test><a>5</a><Child><c>30</c></Child></Test>");
    const auto object = add(makeObject());
    object->signals = 0;
    writeFiles("", "");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(1, get(*object, "a"));
    EXPECT_EQ(3, get(object->child("Child"), "c"));
    EXPECT_EQ(1, object->signals);
}

TEST_P(ConfigurationManagerReload, TakesNothingFromFilesThatAreOfNoUse) {
    writeFiles("<Test><a>5</a></Test>", "");
    const auto object = add(makeObject());
    writeFiles("<Test><a>50</a></Test>", "");
    writeFile(m_userFile, "<broken");
    EXPECT_FALSE(m_manager.reloadConfiguration());
    writeFiles("", "<Test><a>50</a></Test>");
    writeFile(m_systemFile, "<broken");
    EXPECT_FALSE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, get(*object, "a"));
}

TEST_P(ConfigurationManagerReload, TakesNothingWithoutARequiredSystemFile) {
    writeFiles("<Test><a>5</a></Test>", "");
    const auto object = add(makeObject());
    m_manager.setSystemFileRequired(true);
    EXPECT_TRUE(m_manager.isSystemFileRequired());
    std::filesystem::remove(m_systemFile.toString());
    EXPECT_FALSE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, get(*object, "a"));
}

TEST_P(ConfigurationManagerReload, IsStillNeededAfterALaterRegistration) {
    writeFiles("<Test><a>5</a></Test>", "");
    add(makeObject());
    writeFiles("<Test><a editable=\"false\">6</a></Test>", "");
    add(makeObject("Late"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, TakesNothingFromAnEmptyFile) {
    writeFiles("", "<Test><a>5</a></Test>");
    const auto object = add(makeObject());
    writeFile(m_userFile, "");
    EXPECT_FALSE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, get(*object, "a"));
}

TEST_P(ConfigurationManagerReload, IsStillNeededAfterASaveThatMetOthersChanges) {
    writeFiles("", "<Test><a>5</a></Test>");
    const auto* const switches = DisableFeaturesConfiguration::getRegisteredInstance();
    const auto object = add(makeObject());
    writeFiles("", "<Test><a>5</a></Test><DisableFeaturesConfiguration><PlannerFixturesDisable>true"
                   "</PlannerFixturesDisable></DisableFeaturesConfiguration>");
    object->value<int>("b").setValue(7);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(switches->getPlannerFixturesDisable());
    EXPECT_EQ(7, get(*object, "b"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload,
       IsNotNeededAfterTheFirstSaveOfObjectsThatWereThereBeforeTheFiles) {
    m_manager.reset();
    add(makeObject())->value<int>("a").setValue(5);
    writeFiles("<Test><b>6</b></Test>", "");
    useTwoFiles();
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    writeFiles("<Test><b>7</b></Test>", "");
    EXPECT_TRUE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, IsNotNeededAfterASaveToTheUsersFileByItsName) {
    writeFiles("<Test><a>5</a></Test>", "<Test><b>6</b></Test>");
    add(makeObject())->value<int>("b").setValue(7);
    const FileName link = m_directory.file("link.xml");
    std::filesystem::create_symlink(m_userFile.toPath(), link.toPath());
    for (const FileName& file : {m_userFile, link, m_directory.file("./user.xml")})
        for (int saves = 0; saves < 2; ++saves) { // the second changes nothing
            EXPECT_TRUE(m_manager.saveConfigurationToFile(file.toString(), "1.0"));
            EXPECT_FALSE(m_manager.haveFilesChanged()) << file.toString();
            EXPECT_EQ(7, get(*add(makeObject()), "b"));
            EXPECT_FALSE(m_manager.haveFilesChanged());
        }
    writeFile(m_userFile, document("<Other/>"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_userFile.toString(), "1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged()) << "what others wrote was not loaded";
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
    writeFile(m_systemFile, document(""));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_userFile.toString(), "1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged()) << "nor was the system file";
}

TEST_P(ConfigurationManagerReload, IsNotNeededAfterASaveToTheOneFileByItsName) {
    writeFile(m_file, document("<Test><b>6</b></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    object->value<int>("b").setValue(7);
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    object->value<int>("b").setValue(8);
    const std::string alias = m_directory.file("./settings.xml").toString();
    EXPECT_TRUE(m_manager.saveConfigurationToFile(alias, "1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    writeFile(m_file, document("<Other/>"));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, IsNeededAsBeforeAfterASaveToAnotherFile) {
    writeFiles("<Test><a>5</a></Test>", "<Test><b>6</b></Test>");
    add(makeObject());
    const std::string other = m_directory.file("other.xml").toString();
    EXPECT_TRUE(m_manager.saveConfigurationToFile(other, "1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    writeFiles("<Test><a>5</a></Test>", "<Test><b>7</b></Test>");
    EXPECT_TRUE(m_manager.saveConfigurationToFile(other, "1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload,
       IsNotNeededAfterASaveByNameOfObjectsThatWereThereBeforeTheFiles) {
    for (const bool hasSystemFile : {false, true}) {
        m_manager.reset();
        add(makeObject());
        std::filesystem::remove(m_userFile.toPath());
        if (hasSystemFile)
            writeFile(m_systemFile, document("<Test><a>5</a></Test>"));
        useTwoFiles();
        EXPECT_FALSE(m_manager.haveFilesChanged());
        EXPECT_TRUE(m_manager.saveConfigurationToFile(m_userFile.toString(), "1.0"));
        EXPECT_FALSE(m_manager.haveFilesChanged());
        writeFile(m_userFile, document(""));
        EXPECT_TRUE(m_manager.haveFilesChanged());
    }
}

TEST_P(ConfigurationManagerReload, IsNeededWhenAFileChangesAfterAResetLoadedIt) {
    m_manager.reset();
    const auto object = add(makeObject());
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    m_manager.resetConfigurationObject("Test", true);
    ASSERT_EQ(5, get(*object, "a"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    writeFile(m_file, document("<Test><a>7</a></Test>"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(7, get(*object, "a"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, IsNotNeededAfterASaveToANewFile) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    add(makeObject());
    m_manager.setConfigurationFile(m_directory.file("new.xml"));
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, IsNeededAfterASaveToAFileThatHeldMoreThanWasLoaded) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    add(makeObject());
    m_manager.setConfigurationFile(m_directory.file("other.xml", document("<Other/>")));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, TakesOverFeatureSwitches) {
    const auto element = [](const std::string& value) {
        return "<DisableFeaturesConfiguration><PlannerFixturesDisable>" + value +
               "</PlannerFixturesDisable></DisableFeaturesConfiguration>";
    };
    writeFiles(element("false"), "");
    const auto* const switches = DisableFeaturesConfiguration::getRegisteredInstance();
    writeFiles(element("true"), "");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_TRUE(switches->getPlannerFixturesDisable());
}

TEST_P(ConfigurationManagerReload, TakesOverOneFile) {
    useOneFile();
    writeFile(m_file, document("<Test><a>5</a><b>6</b></Test>"));
    const auto object = add(makeObject());
    object->value<int>("b").setValue(60);
    writeFile(m_file, document("<Test><a>50</a><b>6</b></Test>"));
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(50, get(*object, "a"));
    EXPECT_EQ(60, get(*object, "b"));
}

TEST_P(ConfigurationManagerReload, IsStillOpenAfterASaveThatIgnoredAChangeOfTheSystemFile) {
    writeFiles("<Test><a>5</a></Test>", "");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(20);
    writeFile(m_systemFile, document("<Test><a>50</a></Test>"));
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_TRUE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_P(ConfigurationManagerReload, KeepsWhatIsNotSavedYetWhenTheUsersFileIsGone) {
    writeFiles("<Test><a>5</a></Test>", "<Test><a>50</a><b>6</b></Test>");
    const auto object = add(makeObject());
    object->child("Child").value<int>("c").setValue(30);
    std::filesystem::remove(m_userFile.toString());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(2, get(*object, "b"));
    EXPECT_EQ(30, get(object->child("Child"), "c"));
}

TEST_P(ConfigurationManagerReload, KeepsAllDigitsOfWhatIsNotSavedYet) {
    writeFiles("", "<Test><b>6</b><d>1.5</d></Test>");
    const double exact = 0.1 + 0.2;
    const auto object = add(TestObject::make(
        "Test", [](TestObject& test) { test.add("b", 2).add("d", 1.0).add("f", 1.0); }));
    object->value<double>("d").setValue(exact);
    object->value<double>("f").setValue(exact / 3);
    writeFiles("", "<Test><b>7</b><d>1.5</d></Test>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(7, get(*object, "b"));
    EXPECT_EQ(exact, object->value<double>("d").getValue());
    EXPECT_EQ(exact / 3, object->value<double>("f").getValue());
}

TEST_P(ConfigurationManagerReload, TakesOverWhatAClassReadsThatWritesNothing) {
    class Reading : public ConfigurationObject {
    public:
        Reading() : ConfigurationObject("Reading", "", LoadAndSave, AllProducts) {}
        ConfigurationObject* createConfigurationObject() const override { return new Reading; }
        void loadContent(ConfigReader& reader) override {
            bool editable = true;
            reader.getString("Text", text, editable);
        }
        bool writesContent() const override { return false; }
        void emitSignalsAfterConfigLoading() override { ++signals; }

        std::string text;
        int signals = 0;
    };
    writeFiles("", "<Reading><Text>old</Text></Reading>");
    const auto object = add(std::make_shared<Reading>());
    ASSERT_EQ("old", object->text);
    object->signals = 0;
    writeFiles("", "<Reading><Text>new</Text></Reading>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("new", object->text);
    EXPECT_EQ(1, object->signals);
}

TEST_P(ConfigurationManagerReload, GoesOnAfterAnObjectThatXmlCannotHold) {
    writeFiles("", "");
    const auto nameless = add(TestObject::make(
        "Nameless", [](TestObject& object) { object.add("not a name", 1).add("a", 1); }));
    const auto object = add(makeObject());
    nameless->value<int>("not a name").setValue(9);
    writeFiles("", "<Nameless><a>5</a></Nameless><Test><a>6</a></Test>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(9, get(*nameless, "not a name"));
    EXPECT_EQ(6, get(*object, "a"));
}

TEST_P(ConfigurationManagerReload, GoesOnAfterAnObjectThatCannotBeMadeAnew) {
    writeFiles("", "<Unmakeable><a>4</a></Unmakeable>");
    const auto unmakeable = add(std::make_shared<Support::Unmakeable>());
    const auto object = add(makeObject("Z"));
    const auto before = add(makeObject("A"));
    writeFiles("", "<Unmakeable><a>5</a></Unmakeable><A><a>6</a></A><Z><a>7</a></Z>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(6, get(*before, "a"));
    EXPECT_EQ(7, get(*object, "a"));
}

TEST_P(ConfigurationManagerReload, HasNoFilesToLookAtAtFirst) {
    m_manager.reset();
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

class ConfigurationManagerReloadMerge : public ConfigurationManagerReload {};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerReloadMerge,
                         testing::Values(ConfigurationManager::Merge), Support::nameOfMode);

TEST_P(ConfigurationManagerReloadMerge, IsStillOpenAfterASaveThatKeptWhatOthersWrote) {
    writeFiles("", "<Test><b>6</b></Test>");
    const auto object = add(makeObject());
    writeFiles("", "<Test><b>61</b></Test>");
    object->value<int>("a").setValue(10);
    for (int saves = 0; saves < 2; ++saves) { // the second has nothing to write
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_TRUE(m_manager.haveFilesChanged());
    }
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(61, get(*object, "b"));
    EXPECT_EQ(10, get(*object, "a"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

} // namespace
} // namespace Orvant
