#include <ConfigurationFramework/ConfigurationManager.h>

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
using testing::Values;

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

class ConfigurationManagerReload
    : public Support::ManagerFixture,
      public testing::WithParamInterface<ConfigurationManager::SaveMode> {
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

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerReload,
                         Values(ConfigurationManager::InPlace, ConfigurationManager::Replace,
                                ConfigurationManager::Merge),
                         [](const auto& mode) {
                             return mode.param == ConfigurationManager::InPlace   ? "InPlace"
                                    : mode.param == ConfigurationManager::Replace ? "Replace"
                                                                                  : "Merge";
                         });

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

TEST_P(ConfigurationManagerReload, HasNoFilesToLookAtAtFirst) {
    m_manager.reset();
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

} // namespace
} // namespace Orvant
