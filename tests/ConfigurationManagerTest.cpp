#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <FileHandling/FileUtilities.h>

#include <ManagerFixture.h>

#include <gmock/gmock.h>

#include <stdexcept>
#include <type_traits>

namespace Orvant {
namespace {

using Support::document;
using Support::TestObject;
using Support::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

/// An object with the int values "a" (default 1) and "b" (default 2).
std::shared_ptr<TestObject> makeObject(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) { object.add("a", 1).add("b", 2); });
}

int get(const TestObject& object, const std::string& value) {
    return object.value<int>(value).getValue();
}

class ConfigurationManagerTest : public Support::ManagerFixture {
protected:
    void writeSystemAndUser(const std::string& system, const std::string& user) {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
        useTwoFiles();
    }
};

TEST_F(ConfigurationManagerTest, IsOneForTheProcess) {
    EXPECT_EQ(&ConfigurationManager::getInstance(), &ConfigurationManager::getInstance());
    EXPECT_FALSE(std::is_default_constructible_v<ConfigurationManager>);
    EXPECT_TRUE(std::has_virtual_destructor_v<ConfigurationManager>);
}

TEST_F(ConfigurationManagerTest, KeepsTheVersionsItWasGivenLast) {
    m_manager.setValidVersionList({"2", "1", "2"});
    EXPECT_THAT(m_manager.getValidVersions(), ElementsAre("2", "1", "2"));
    m_manager.setValidVersionList({});
    EXPECT_THAT(m_manager.getValidVersions(), IsEmpty());
}

// Registering

TEST_F(ConfigurationManagerTest, FindsObjectsByTheNameTheyAreRegisteredUnder) {
    const auto first = makeObject();
    const auto second = makeObject("Other");
    m_manager.addConfigurationObject(first, "First");
    add(second, "Second", "k");
    EXPECT_EQ(first.get(), m_manager.getConfigurationObject("First"));
    EXPECT_EQ(second.get(), m_manager.getConfigurationObject("Second"));
    for (const std::string name : {"Test", "Other", "first", "Firs", "First ", ""})
        EXPECT_EQ(nullptr, m_manager.getConfigurationObject(name)) << name;
}

template <typename Manager>
concept TakesLiterals = requires(Manager& manager, std::shared_ptr<TestObject> object) {
    manager.addConfigurationObject(object, "Test");
    manager.addConfigurationObject(object, "Test", "key");
};

TEST_F(ConfigurationManagerTest, TakesLiteralsForNameAndKey) {
    EXPECT_TRUE(TakesLiterals<ConfigurationManager>);
}

TEST_F(ConfigurationManagerTest, SharesTheObjectsWithItsCallers) {
    const std::weak_ptr<TestObject> object = add(makeObject());
    EXPECT_FALSE(object.expired());
    m_manager.reset();
    EXPECT_TRUE(object.expired());
}

TEST_F(ConfigurationManagerTest, KeepsTheFirstObjectOfANameAndLoadsTheSecondAllTheSame) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    const auto first = add(makeObject());
    const auto second = add(makeObject());
    EXPECT_EQ(first.get(), m_manager.getConfigurationObject("Test"));
    EXPECT_EQ(5, get(*second, "a"));
    EXPECT_EQ(1, second.use_count());
}

TEST_F(ConfigurationManagerTest, FindsTheFirstOfTheObjectsWithSeveralKeys) {
    const auto first = makeObject();
    for (const auto& [object, key] :
         {std::pair(first, "z"), std::pair(makeObject(), "a"), std::pair(makeObject(), "z")})
        add(object, "Test", key);
    EXPECT_EQ(first.get(), m_manager.getConfigurationObject("Test"));
}

// Loading

TEST_F(ConfigurationManagerTest, LoadsNothingWithoutFiles) {
    const auto object = makeObject();
    object->value<int>("a").setValue(7);
    add(object);
    EXPECT_EQ(7, get(*object, "a"));
    EXPECT_EQ(0, object->signals);
    EXPECT_EQ(object.get(), m_manager.getConfigurationObject("Test"));
}

TEST_F(ConfigurationManagerTest, LoadsFromTheOneFile) {
    writeFile(m_file, document("<Other><a>4</a></Other><Test><a>5</a></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(2, get(*object, "b"));
    EXPECT_EQ(1, object->signals);
}

TEST_F(ConfigurationManagerTest, LoadsTheElementOfTheNameThatTheObjectIsRegisteredUnder) {
    writeFile(m_file, document("<Test><a>4</a></Test><Alias><a>5</a></Alias>"));
    useOneFile();
    const auto object = makeObject();
    m_manager.addConfigurationObject(object, "Alias");
    EXPECT_EQ(5, get(*object, "a"));
}

TEST_F(ConfigurationManagerTest, LoadsTheElementOfTheKey) {
    writeFile(m_file, document("<Test key=\"x\"><a>4</a></Test><Test key=\"y\"><a>5</a></Test>"
                               "<Test><a>6</a></Test>"));
    useOneFile();
    for (const auto& [key, expected] : {std::pair("y", 5), std::pair("x", 4), std::pair("", 6),
                                        std::pair("without element of its own", 6)}) {
        const auto object = add(makeObject(), "Test", key);
        EXPECT_EQ(expected, get(*object, "a")) << key;
    }
}

TEST_F(ConfigurationManagerTest, LoadsTheUsersValuesOverTheSystems) {
    writeSystemAndUser("<Test><a>5</a><b>6</b></Test>", "<Test><b>7</b></Test>");
    const auto object = add(makeObject());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));
    EXPECT_EQ(1, object->signals);
}

TEST_F(ConfigurationManagerTest, LoadsTheKeyedElementsOfBothFiles) {
    writeSystemAndUser("<Test key=\"x\"><a>5</a><b>6</b></Test><Test><a>0</a></Test>",
                       "<Test><b>0</b></Test><Test key=\"x\"><b>7</b></Test>");
    const auto object = add(makeObject(), "Test", "x");
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));
}

TEST_F(ConfigurationManagerTest, LetsTheUserBreakNoLock) {
    writeSystemAndUser("<Test><a editable=\"false\">5</a><b>6</b></Test>"
                       "<Locked editable=\"false\"><a>5</a></Locked>",
                       "<Test><a editable=\"true\">8</a><b>7</b></Test>"
                       "<Locked editable=\"true\"><a>8</a><b>9</b></Locked>");
    const auto object = add(makeObject());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_FALSE(object->value<int>("a").isEditable());
    EXPECT_EQ(7, get(*object, "b"));
    const auto locked = add(makeObject("Locked"));
    EXPECT_EQ(5, get(*locked, "a"));
    EXPECT_EQ(2, get(*locked, "b"));
    EXPECT_FALSE(locked->isEditable());
}

TEST_F(ConfigurationManagerTest, LocksAtTheDefaultWhatIsLockedWithAnUnreadableText) {
    writeSystemAndUser("<Test><a editable=\"false\">many</a></Test>", "<Test><a>8</a></Test>");
    const auto object = add(makeObject());
    EXPECT_EQ(1, get(*object, "a"));
    EXPECT_FALSE(object->value<int>("a").isEditable());
}

TEST_F(ConfigurationManagerTest, LocksKeysWithoutAnElementAsTheDefaultEntryIs) {
    writeSystemAndUser("<Test><a editable=\"false\">5</a></Test><Test key=\"x\"><a>6</a></Test>",
                       "<Test key=\"x\"><a>8</a></Test><Test key=\"y\"><a>8</a></Test>");
    EXPECT_EQ(8, get(*add(makeObject(), "Test", "x"), "a"));
    EXPECT_EQ(5, get(*add(makeObject(), "Test", "y"), "a"));
}

TEST_F(ConfigurationManagerTest, LoadsFromEitherFileWhereTheOtherIsMissingOrBroken) {
    useTwoFiles();
    for (const std::string other : {"", "<broken"}) {
        writeFile(m_systemFile, document("<Test><a>5</a></Test>"));
        writeFile(m_userFile, other);
        EXPECT_EQ(5, get(*add(makeObject()), "a")) << other;

        writeFile(m_systemFile, other);
        writeFile(m_userFile, document("<Test><a>6</a></Test>"));
        EXPECT_EQ(6, get(*add(makeObject()), "a")) << other;
    }
    std::filesystem::remove(m_directory.path() / "system.xml");
    EXPECT_EQ(6, get(*add(makeObject()), "a"));
    std::filesystem::rename(m_directory.path() / "user.xml", m_directory.path() / "system.xml");
    EXPECT_EQ(6, get(*add(makeObject()), "a"));
}

TEST_F(ConfigurationManagerTest, LeavesAnObjectAsItIsWhereNothingCanBeLoaded) {
    useOneFile();
    for (const std::string content : {"", "<broken", "<Other version=\"1.0\"/>",
                                      "<Configuration version=\"2.0\"><Test><a>5</a></Test>"
                                      "</Configuration>",
                                      "<Configuration version=\"1.0\"><Other><a>5</a></Other>"
                                      "</Configuration>"}) {
        writeFile(m_file, content);
        const auto object = makeObject();
        object->value<int>("a").setValue(7);
        add(object);
        EXPECT_EQ(7, get(*object, "a")) << content;
        EXPECT_EQ(0, object->signals) << content;
    }
}

TEST_F(ConfigurationManagerTest, AcceptsOnlyTheVersionsOfItsList) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    m_manager.setValidVersionList({"0.9", "1.0 "});
    EXPECT_EQ(1, get(*add(makeObject()), "a"));
    m_manager.setValidVersionList({"0.9", "1.0"});
    EXPECT_EQ(5, get(*add(makeObject()), "a"));
    m_manager.setValidVersionList({});
    EXPECT_EQ(1, get(*add(makeObject()), "a"));
}

TEST_F(ConfigurationManagerTest, ReadsTheFilesAnewForEachObject) {
    useOneFile();
    for (const int number : {5, 6}) {
        writeFile(m_file, document("<Test><a>" + std::to_string(number) + "</a></Test>"));
        EXPECT_EQ(number, get(*add(makeObject()), "a"));
    }
}

TEST_F(ConfigurationManagerTest, SwitchesBetweenOneAndTwoFilesAndRemembersNeitherWrongly) {
    writeFile(m_file, document("<Test><a>4</a></Test>"));
    writeSystemAndUser("<Test><a>5</a></Test>", "");
    useOneFile();
    EXPECT_EQ(4, get(*add(makeObject()), "a"));
    useTwoFiles();
    EXPECT_EQ(5, get(*add(makeObject()), "a"));
    m_manager.setConfigurationFile(FileName());
    EXPECT_EQ(1, get(*add(makeObject()), "a"));
}

TEST_F(ConfigurationManagerTest, PassesOnWhatAnObjectThrows) {
    class ThrowingObject : public TestObject {
    public:
        void loadContent(ConfigReader&) override { throw std::runtime_error("cannot be loaded"); }
    };
    writeFile(m_file, document("<Test/>"));
    useOneFile();
    EXPECT_THROW(add(std::make_shared<ThrowingObject>()), std::runtime_error);
}

// Errors of the files

TEST_F(ConfigurationManagerTest, ReportsTheFilesThatAreThereButCannotBeLoaded) {
    struct Case {
        std::string content;
        bool hasErrors;
    };
    useTwoFiles();
    for (const auto& [content, hasErrors] :
         {Case{document("<a/>"), false}, Case{"", true}, Case{"<broken", true},
          Case{"<Other version=\"1.0\"/>", true}, Case{"<Configuration version=\"2.0\"/>", true},
          Case{"<Configuration/>", true}}) {
        writeFile(m_systemFile, content);
        writeFile(m_userFile, document(""));
        EXPECT_EQ(hasErrors, m_manager.hasSystemConfigFileErrors()) << content;
        EXPECT_FALSE(m_manager.hasUserConfigFileErrors()) << content;

        writeFile(m_systemFile, document(""));
        writeFile(m_userFile, content);
        EXPECT_FALSE(m_manager.hasSystemConfigFileErrors()) << content;
        EXPECT_EQ(hasErrors, m_manager.hasUserConfigFileErrors()) << content;
    }
}

TEST_F(ConfigurationManagerTest, ReportsADirectoryInPlaceOfAFile) {
    std::filesystem::create_directory(m_directory.path() / "user.xml");
    useTwoFiles();
    EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
}

TEST_F(ConfigurationManagerTest, ReportsNoMissingFiles) {
    useTwoFiles();
    EXPECT_FALSE(m_manager.hasSystemConfigFileErrors());
    EXPECT_FALSE(m_manager.hasUserConfigFileErrors());
}

TEST_F(ConfigurationManagerTest, ReportsErrorsOnlyWhileThereAreTwoFiles) {
    writeFile(m_systemFile, "<broken");
    writeFile(m_userFile, "<broken");
    writeFile(m_file, "<broken");
    const auto expectErrors = [&](bool expected) {
        EXPECT_EQ(expected, m_manager.hasSystemConfigFileErrors());
        EXPECT_EQ(expected, m_manager.hasUserConfigFileErrors());
    };
    expectErrors(false);
    useTwoFiles();
    expectErrors(true);
    useOneFile();
    expectErrors(false);
    useTwoFiles();
    m_manager.reset();
    expectErrors(false);
}

// Reset of the manager

TEST_F(ConfigurationManagerTest, ForgetsObjectsAndFilesButNotVersions) {
    writeFile(m_file, document("<Test><a>4</a></Test>"));
    writeSystemAndUser("<Test><a>5</a></Test>", "");
    useOneFile();
    useTwoFiles();
    add(makeObject());
    add(makeObject(), "Keyed", "k");
    m_manager.reset();
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Test"));
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Keyed"));
    EXPECT_THAT(m_manager.getValidVersions(), ElementsAre("1.0"));
    EXPECT_EQ(1, get(*add(makeObject()), "a"));
}

// Reset of an object

TEST_F(ConfigurationManagerTest, ResetsAnObjectToItsDefaultsWithoutFiles) {
    const auto object = add(makeObject());
    object->value<int>("a").setValue(7);
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ(1, get(*object, "a"));
    EXPECT_FALSE(object->value<int>("a").hasValue());
    EXPECT_EQ(0, object->signals);
}

TEST_F(ConfigurationManagerTest, ResetsNothingOfAnUnknownName) {
    const auto object = add(makeObject());
    object->value<int>("a").setValue(7);
    for (const std::string name : {"Other", "Tes", "Tests", ""})
        m_manager.resetConfigurationObject(name, false);
    EXPECT_EQ(7, get(*object, "a"));
}

TEST_F(ConfigurationManagerTest, ResetsAnObjectFromTheOneFileWhateverTheFlag) {
    writeFile(m_file, document("<Test><a>5</a></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    for (const bool fromUserFile : {false, true}) {
        object->value<int>("a").setValue(7);
        object->value<int>("b").setValue(8);
        object->signals = 0;
        m_manager.resetConfigurationObject("Test", fromUserFile);
        EXPECT_EQ(5, get(*object, "a"));
        EXPECT_EQ(2, get(*object, "b"));
        EXPECT_EQ(1, object->signals);
    }
}

TEST_F(ConfigurationManagerTest, ResetsAnObjectFromOneOfTheTwoFiles) {
    writeSystemAndUser("<Test><a>5</a><b>6</b></Test>", "<Test><b>7</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(8);
    object->value<int>("b").setValue(9);

    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ(1, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));

    object->signals = 0;
    m_manager.resetConfigurationObject("Test", false);
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(6, get(*object, "b"));
    EXPECT_EQ(1, object->signals);
}

TEST_F(ConfigurationManagerTest, ResetsAnObjectFromTheElementOfItsNameAndKey) {
    writeFile(m_file, document("<Test><a>4</a></Test><Alias><a>5</a></Alias>"
                               "<Alias key=\"k\"><a>6</a></Alias>"));
    useOneFile();
    const auto object = add(makeObject(), "Alias", "k");
    object->value<int>("a").setValue(9);
    m_manager.resetConfigurationObject("Alias", false);
    EXPECT_EQ(6, get(*object, "a"));
}

TEST_F(ConfigurationManagerTest, TellsTheObserversOfTheDefaultsWhereTheFileLacksTheElement) {
    writeSystemAndUser("<Test><a>5</a></Test>", "");
    const auto object = add(makeObject());
    object->signals = 0;
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ(1, get(*object, "a"));
    EXPECT_EQ(1, object->signals);
}

TEST_F(ConfigurationManagerTest, TellsTheObserversNothingWhereTheFileCannotBeLoaded) {
    const auto object = makeObject();
    writeFile(m_file, "<broken");
    for (const FileName& file : {m_file, m_systemFile}) {
        m_manager.setConfigurationFile(file);
        add(object);
        object->value<int>("a").setValue(7);
        m_manager.resetConfigurationObject("Test", true);
        EXPECT_EQ(1, get(*object, "a"));
        EXPECT_EQ(0, object->signals);
    }
}

TEST_F(ConfigurationManagerTest, KeepsLockedValuesInAReset) {
    writeSystemAndUser("<Test><a editable=\"false\">5</a><b>6</b></Test>",
                       "<Test><a editable=\"true\">8</a><b>7</b></Test>");
    const auto object = add(makeObject());
    for (const bool fromUserFile : {true, false}) {
        m_manager.resetConfigurationObject("Test", fromUserFile);
        EXPECT_EQ(5, get(*object, "a"));
        EXPECT_FALSE(object->value<int>("a").isEditable());
        EXPECT_EQ(fromUserFile ? 7 : 6, get(*object, "b"));
    }
}

TEST_F(ConfigurationManagerTest, MakesTheFeatureSwitchesEditableInAReset) {
    const auto switches = add(std::make_shared<DisableFeaturesConfiguration>());
    switches->setEditable(false);
    m_manager.resetConfigurationObject(DisableFeaturesConfiguration::s_tag, false);
    EXPECT_TRUE(switches->isEditable());
}

// Copies

TEST_F(ConfigurationManagerTest, IsCopiedWithEverythingItHolds) {
    writeFile(m_file, document("<Test><a>4</a></Test>"));
    useOneFile();
    const auto object = add(makeObject());
    ConfigurationManager copy(m_manager);
    ConfigurationManager assigned(m_manager);
    m_manager.reset();
    m_manager.setValidVersionList({"2.0"});
    assigned = copy;
    for (ConfigurationManager* manager : {&copy, &assigned}) {
        EXPECT_EQ(object.get(), manager->getConfigurationObject("Test"));
        EXPECT_THAT(manager->getValidVersions(), ElementsAre("1.0"));
        const auto another = makeObject("Another");
        manager->addConfigurationObject(another, "Test");
        EXPECT_EQ(4, get(*another, "a"));
    }
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Test"));
    m_manager = copy;
    EXPECT_EQ(object.get(), m_manager.getConfigurationObject("Test"));
}

TEST_F(ConfigurationManagerTest, IsCopiedWithTheTwoFiles) {
    writeSystemAndUser("<Test><a>5</a></Test>", "<Test><b>6</b></Test>");
    ConfigurationManager copy(m_manager);
    m_manager.reset();
    const auto object = makeObject();
    copy.addConfigurationObject(object, "Test");
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(6, get(*object, "b"));
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Test"));
}

/// A value that cannot be copied.
class Uncopiable : public ConfigurationValue<int> {
public:
    Uncopiable() : ConfigurationValue("Uncopiable", "", 0, Visible, LoadAndSave, AllProducts) {}
    ConfigurationValueBase* clone() const override { throw std::runtime_error("no copy"); }
};

class WithUncopiable : public TestObject {
public:
    WithUncopiable() {
        add("First", 1);
        addChild(new TestObject("Child"));
        addConfigurationValue(new Uncopiable);
    }
};

TEST(ConfigurationObjectCopy, ThatFailsHalfWayIsDeletedOnce) {
    const WithUncopiable original;
    EXPECT_THROW(std::unique_ptr<ConfigurationObject>(original.clone()), std::runtime_error);
    EXPECT_THROW(TestObject{original}, std::runtime_error);
    TestObject assigned;
    assigned.add("Kept", 2);
    EXPECT_THROW(assigned = original, std::runtime_error);
    EXPECT_EQ(2, assigned.value<int>("Kept").getValue());
}

class ConfigurationManagerResets : public Support::ManagerFixture {
protected:
    void writeFiles(const std::string& system, const std::string& user) {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
        useTwoFiles();
    }
};

TEST_F(ConfigurationManagerResets, FromTheUsersFileNeitherLockNorUnlock) {
    writeFiles("<Test><a editable='false'>1</a><b>2</b><Child editable='false'><c>3</c></Child>"
               "</Test>",
               "<Test editable='false'><a editable='true'>7</a><b editable='false'>8</b>"
               "<Child editable='true'><c>9</c></Child></Test>");
    const auto object = add(TestObject::make("Test", [](TestObject& test) {
        auto* const child = new TestObject("Child");
        child->add("c", 0);
        test.add("a", 0).add("b", 0).addChild(child);
    }));
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_TRUE(object->isEditable());
    EXPECT_FALSE(object->value<int>("a").isEditable());
    EXPECT_TRUE(object->value<int>("b").isEditable());
    EXPECT_FALSE(object->child("Child").isEditable());
    EXPECT_EQ(1, object->value<int>("a").getValue());
    EXPECT_EQ(8, object->value<int>("b").getValue());
    EXPECT_EQ(3, object->child("Child").value<int>("c").getValue());
}

TEST_F(ConfigurationManagerResets, LeaveLockedFeatureSwitchesLocked) {
    writeFiles("<DisableFeaturesConfiguration editable='false'><PlannerFixturesDisable>true"
               "</PlannerFixturesDisable></DisableFeaturesConfiguration>",
               "<DisableFeaturesConfiguration><PlannerFixturesDisable>false"
               "</PlannerFixturesDisable></DisableFeaturesConfiguration>");
    const auto* const features = DisableFeaturesConfiguration::getRegisteredInstance();
    EXPECT_TRUE(features->getPlannerFixturesDisable());
    m_manager.resetConfigurationObject(DisableFeaturesConfiguration::s_tag, true);
    EXPECT_TRUE(features->getPlannerFixturesDisable());
    EXPECT_FALSE(features->isEditable());
}

TEST_F(ConfigurationManagerResets, LeaveLockedFeatureSwitchesLockedWithoutAUsersFile) {
    writeFiles("<DisableFeaturesConfiguration editable='false'><PlannerFixturesDisable>true"
               "</PlannerFixturesDisable></DisableFeaturesConfiguration>",
               "");
    for (const std::string& userFile : {std::string(), std::string("broken")}) {
        m_manager.reset();
        useTwoFiles();
        std::filesystem::remove(m_userFile.toPath());
        if (!userFile.empty())
            Support::writeFile(m_userFile, userFile);
        const auto* const features = DisableFeaturesConfiguration::getRegisteredInstance();
        for (int time = 0; time < 3; ++time) {
            m_manager.resetConfigurationObject(DisableFeaturesConfiguration::s_tag, true);
            EXPECT_TRUE(features->getPlannerFixturesDisable());
            EXPECT_FALSE(features->isEditable());
        }
    }
}

TEST_F(ConfigurationManagerResets, LetTheFeatureSwitchesForgetTheFormerFiles) {
    writeFiles("<DisableFeaturesConfiguration><SetupEdgeLineDisable>true</SetupEdgeLineDisable>"
               "<PlannerFixturesDisable editable='false'>true</PlannerFixturesDisable>"
               "</DisableFeaturesConfiguration>",
               "");
    const auto* const features = DisableFeaturesConfiguration::getRegisteredInstance();
    EXPECT_TRUE(features->getPlannerFixturesDisable());
    m_manager.reset();
    writeFiles("<DisableFeaturesConfiguration><PlannerFixturesDisable>false"
               "</PlannerFixturesDisable></DisableFeaturesConfiguration>",
               "");
    EXPECT_EQ(features, DisableFeaturesConfiguration::getRegisteredInstance());
    EXPECT_FALSE(features->getPlannerFixturesDisable());
    EXPECT_FALSE(features->getSetupEdgeLineDisable());
}

TEST_F(ConfigurationManagerResets, PutBackWhatAnObjectChangesOfWhatIsLocked) {
    // Sets defaults in its own way, which ignores locks.
    class Insistent : public TestObject {
    public:
        Insistent() : TestObject("Test") {
            add("a", 0).addChild(&(new TestObject("Child"))->add("c", 0));
        }
        void setDefaultValues() override {
            value<int>("a").setValue(9);
            child("Child").value<int>("c").setValue(9);
        }
        ConfigurationObject* createConfigurationObject() const override { return new Insistent; }
    };
    const auto valuesAfterReset = [this](const std::string& system) {
        m_manager.reset();
        writeFiles(system, "<Test><Child><c>7</c></Child></Test>");
        const auto object = add(std::make_shared<Insistent>());
        m_manager.resetConfigurationObject("Test", true);
        return std::pair(object->value<int>("a").getValue(),
                         object->child("Child").value<int>("c").getValue());
    };
    EXPECT_EQ(std::pair(1, 7), valuesAfterReset("<Test><a editable='false'>1</a></Test>"));
    EXPECT_EQ(std::pair(1, 3), valuesAfterReset("<Test editable='false'><a>1</a><Child><c>3</c>"
                                                "</Child></Test>"));
}

TEST_F(ConfigurationManagerResets, MayMeetAnObjectThatRebuildsItsChildren) {
    // Has a child for each key that the file holds.
    class Keyed : public TestObject {
    public:
        Keyed() : TestObject("Keyed") {}
        void loadContent(ConfigReader& reader) override {
            clear();
            reader.createConfigurationObjects("Entry", [&](const std::string&) {
                addChild(&(new TestObject("Entry"))->add("a", 0));
            });
        }
        ConfigurationObject* createConfigurationObject() const override { return new Keyed; }
    };
    writeFiles("<Keyed><Entry key='1'/></Keyed>",
               "<Keyed><Entry key='1'/><Entry key='2'/><Entry key='3'/></Keyed>");
    const auto object = add(std::make_shared<Keyed>());
    m_manager.resetConfigurationObject("Keyed", false);
    EXPECT_EQ(1U, object->getConfigurationObjectsSize());
    m_manager.resetConfigurationObject("Keyed", true);
    EXPECT_EQ(3U, object->getConfigurationObjectsSize());
}

TEST_F(ConfigurationManagerResets, CopyAnObjectOnlyWhereTheyPutItsLocksBack) {
    const auto object = add(std::make_shared<Support::Unmakeable>());
    const auto valueAfterReset = [&](bool fromUserFile) {
        object->value<int>("a").setValue(9);
        m_manager.resetConfigurationObject("Unmakeable", fromUserFile);
        return get(*object, "a");
    };
    for (const bool fromUserFile : {true, false})
        EXPECT_EQ(1, valueAfterReset(fromUserFile));
    writeFile(m_file, document("<Unmakeable><a>4</a></Unmakeable>"));
    useOneFile();
    for (const bool fromUserFile : {true, false})
        EXPECT_EQ(4, valueAfterReset(fromUserFile));
    writeFiles("<Unmakeable><a>5</a></Unmakeable>", "<Unmakeable><a>6</a></Unmakeable>");
    EXPECT_EQ(5, valueAfterReset(false));
    EXPECT_THROW(valueAfterReset(true), std::logic_error);
    EXPECT_EQ(9, get(*object, "a"));
}

class ConfigurationManagerBatch : public ConfigurationManagerResets {};

TEST_F(ConfigurationManagerBatch, HasTheEffectOfRegisteringOneAfterTheOther) {
    writeFiles("<A><v editable='false'>1</v></A><B><v>2</v></B><P key='x'><v>3</v></P><P><v>4</v>"
               "</P>",
               "<A><v>7</v></A><B><v>8</v></B><P key='y'><v>9</v></P>");
    const auto makeObjects = [] {
        std::vector<ConfigurationRegistration> objects;
        const auto addObject = [&](const std::string& name, std::optional<std::string> key = {}) {
            objects.push_back({TestObject::make(name, [](TestObject& o) { o.add("v", 0); }), name,
                               std::move(key)});
        };
        addObject("A");
        addObject("B");
        addObject("P", "x");
        addObject("P", "y");
        addObject("P", "z");
        addObject("P");      // has siblings with keys: only loaded
        addObject("B");      // the name is taken: only loaded
        addObject("P", "x"); // name and key are taken: only loaded
        addObject("Missing");
        return objects;
    };
    const auto describe = [&](const std::vector<ConfigurationRegistration>& objects) {
        std::string text;
        for (const auto& [object, name, key] : objects) {
            const auto& test = dynamic_cast<const TestObject&>(*object);
            auto& value = test.value<int>("v");
            text += name + key.value_or("-") + std::to_string(value.getValue()) +
                    (value.isEditable() ? "" : "!") + std::to_string(test.signals) + ' ';
            value.setValue(50 + static_cast<int>(text.size()));
        }
        EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
        text += Support::readFile(m_file);
        EXPECT_TRUE(FileUtilities::remove(m_file));
        return text;
    };
    const auto oneByOne = makeObjects();
    for (const auto& [object, name, key] : oneByOne) {
        if (key)
            m_manager.addConfigurationObject(object, name, *key);
        else
            m_manager.addConfigurationObject(object, name);
    }
    const std::string expected = describe(oneByOne);
    m_manager.reset();
    useTwoFiles();
    const auto batch = makeObjects();
    m_manager.addConfigurationObjects(batch);
    EXPECT_EQ(expected, describe(batch));
    EXPECT_EQ(batch[2].object.get(), m_manager.getConfigurationObject("P"));
    EXPECT_EQ(batch[1].object.get(), m_manager.getConfigurationObject("B"));
}

/// Does something to the manager once it is loaded.
class Meddler : public TestObject {
public:
    explicit Meddler(std::function<void()> meddle)
        : TestObject("Meddler"), m_meddle(std::move(meddle)) {}
    void emitSignalsAfterConfigLoading() override { m_meddle(); }

private:
    std::function<void()> m_meddle;
};

TEST_F(ConfigurationManagerBatch, HeedsWhatAnObjectDoesToTheManagerWhileItIsLoaded) {
    writeFiles("<Meddler/><A><v>1</v></A>", "");
    Support::writeFile(m_file, document("<A><v>2</v></A>"));
    const auto otherVersion = m_directory.file("other_version.xml");
    Support::writeFile(otherVersion,
                       "<Configuration version='2.0'><A><v>3</v></A></Configuration>");
    const auto valueBehind = [&](std::function<void()> meddle) {
        m_manager.reset();
        m_manager.setValidVersionList({"1.0"});
        useTwoFiles();
        const auto object = TestObject::make("A", [](TestObject& o) { o.add("v", 0); });
        m_manager.addConfigurationObjects(
            {{std::make_shared<Meddler>(std::move(meddle)), "Meddler"}, {object, "A"}});
        return object->value<int>("v").getValue();
    };
    EXPECT_EQ(1, valueBehind([] {}));
    EXPECT_EQ(2, valueBehind([&] { useOneFile(); }));
    EXPECT_EQ(
        2, valueBehind([&] { m_manager.setSystemAndUserConfigurationFile(m_file, m_userFile); }));
    EXPECT_EQ(0, valueBehind([&] { m_manager.setValidVersionList({"2.0"}); }));
    EXPECT_EQ(3, valueBehind([&] {
                  m_manager.setConfigurationFile(otherVersion);
                  m_manager.setValidVersionList({"2.0"});
              }));
    EXPECT_EQ(0, valueBehind([&] { m_manager.reset(); }));
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Meddler"));
    EXPECT_NE(nullptr, m_manager.getConfigurationObject("A"));
}

TEST_F(ConfigurationManagerBatch, SeesWhatAnObjectSavesWhileItIsLoaded) {
    useOneFile();
    Support::writeFile(m_file, document("<Meddler/><A><v>1</v></A>"));
    const auto make = [] { return TestObject::make("A", [](TestObject& o) { o.add("v", 0); }); };
    const auto first = make();
    const auto second = make();
    const auto third = make();
    const auto meddler = std::make_shared<Meddler>([&] {
        first->value<int>("v").setValue(99);
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    });
    const auto other = std::make_shared<Meddler>([&] {
        first->value<int>("v").setValue(100);
        EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    });
    m_manager.addConfigurationObjects(
        {{first, "A"}, {meddler, "Meddler"}, {second, "A"}, {other, "Meddler"}, {third, "A"}});
    EXPECT_EQ(99, second->value<int>("v").getValue());
    EXPECT_EQ(100, third->value<int>("v").getValue());
}

TEST_F(ConfigurationManagerBatch, SeesThatTheManagerIsAssignedTo) {
    const auto otherFile = m_directory.file("other.xml");
    Support::writeFile(m_file, document("<Meddler/><A><v>1</v></A>"));
    Support::writeFile(otherFile, document("<A><v>2</v></A>"));
    ConfigurationManager other = m_manager;
    useOneFile();
    other.setConfigurationFile(otherFile);
    const auto object = TestObject::make("A", [](TestObject& o) { o.add("v", 0); });
    m_manager.addConfigurationObjects(
        {{std::make_shared<Meddler>([&] { m_manager = other; }), "Meddler"}, {object, "A"}});
    EXPECT_EQ(2, object->value<int>("v").getValue());
}

TEST_F(ConfigurationManagerBatch, RefusesANullObject) {
    EXPECT_THROW(m_manager.addConfigurationObjects({{nullptr, "Null"}}), std::invalid_argument);
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject("Null"));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
}

TEST_F(ConfigurationManagerBatch, DoesNothingForNoObjects) {
    m_manager.addConfigurationObjects({});
    EXPECT_EQ(nullptr, m_manager.getConfigurationObject(""));
}

} // namespace
} // namespace Orvant
