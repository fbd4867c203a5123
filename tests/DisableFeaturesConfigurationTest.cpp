#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ModelTestSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {
namespace {

using testing::HasSubstr;
using testing::Not;

using Features = DisableFeaturesConfiguration;
using Support::document;
using Support::readerOf;

struct Switch {
    const std::string& key;
    std::string tag;
    bool (Features::*get)() const;
    const ConfigurationValue<bool>& (Features::*getConfig)() const;
};

const Switch switches[] = {
    {Features::s_editorSketchItemsDisable, "EditorSketchItemsDisable",
     &Features::getEditorSketchItemsDisable, &Features::getEditorSketchItemsDisableConfig},
    {Features::s_editorFoldItemsDisable, "EditorFoldItemsDisable",
     &Features::getEditorFoldItemsDisable, &Features::getEditorFoldItemsDisableConfig},
    {Features::s_plannerStageGaugingDisable, "PlannerStageGaugingDisable",
     &Features::getPlannerStageGaugingDisable, &Features::getPlannerStageGaugingDisableConfig},
    {Features::s_plannerFixturesDisable, "PlannerFixturesDisable",
     &Features::getPlannerFixturesDisable, &Features::getPlannerFixturesDisableConfig},
    {Features::s_plannerUnitPriceDisable, "PlannerUnitPriceDisable",
     &Features::getPlannerUnitPriceDisable, &Features::getPlannerUnitPriceDisableConfig},
    {Features::s_layoutPackInsetDisable, "LayoutPackInsetDisable",
     &Features::getLayoutPackInsetDisable, &Features::getLayoutPackInsetDisableConfig},
    {Features::s_layoutPackOptionsDisable, "LayoutPackOptionsDisable",
     &Features::getLayoutPackOptionsDisable, &Features::getLayoutPackOptionsDisableConfig},
    {Features::s_surfaceShapeAuditDisable, "SurfaceShapeAuditDisable",
     &Features::getSurfaceShapeAuditDisable, &Features::getSurfaceShapeAuditDisableConfig},
    {Features::s_setupEdgeLineDisable, "SetupEdgeLineDisable", &Features::getSetupEdgeLineDisable,
     &Features::getSetupEdgeLineDisableConfig},
    {Features::s_setupVarianceDisable, "SetupVarianceDisable", &Features::getSetupVarianceDisable,
     &Features::getSetupVarianceDisableConfig},
};

/// @return the element of the object, with a switch in it
std::string elementWith(const std::string& tag, const std::string& attributes = "") {
    return "<DisableFeaturesConfiguration><" + tag + attributes + ">true</" + tag +
           "></DisableFeaturesConfiguration>";
}

void load(Features& features, const std::string& elements) {
    SimpleConfigReader reader = readerOf(elements);
    reader.getClassContents(Features::s_tag, features);
}

ConfigurationValue<bool>& valueOf(const Features& features, const std::string& key) {
    return dynamic_cast<ConfigurationValue<bool>&>(*features.getConfigurationValue(key));
}

/// Expects one switch to be on (none, for null) and all others off.
void expectOnly(const Switch* on, const Features& features) {
    for (const Switch& each : switches)
        EXPECT_EQ(&each == on, (features.*each.get)()) << each.tag;
}

TEST(DisableFeaturesConfiguration, IsReadForAllProductsAndNeverSaved) {
    Features features;
    EXPECT_EQ("DisableFeaturesConfiguration", Features::s_tag);
    EXPECT_EQ(Features::s_tag, features.getName());
    EXPECT_EQ("", features.getDescription());
    EXPECT_EQ(Features::LoadOnly, features.getPersistenceType());
    EXPECT_EQ(Features::AllProducts, features.getProductType());
    EXPECT_TRUE(features.isEditable());
    EXPECT_EQ(0u, features.getConfigurationObjectsSize());
}

TEST(DisableFeaturesConfiguration, HasItsSwitchesInOrder) {
    const Features features;
    ASSERT_EQ(std::size(switches), features.getConfigurationValuesSize());
    auto value = features.beginValueIterator();
    for (const Switch& each : switches) {
        SCOPED_TRACE(each.tag);
        EXPECT_EQ(each.tag, each.key);
        EXPECT_EQ(each.tag, (*value)->getName());
        EXPECT_EQ("", (*value)->getDescription());
        EXPECT_EQ(ConfigurationValueBase::BoolValue, (*value)->getValueType());
        EXPECT_TRUE((*value)->isGuiVisible());
        EXPECT_EQ(Features::LoadOnly, (*value)->getPersistenceType());
        EXPECT_EQ(Features::AllProducts, (*value)->getProductType());
        EXPECT_EQ(*value, &(features.*each.getConfig)());
        EXPECT_FALSE((features.*each.getConfig)().getDefaultValue());
        EXPECT_FALSE((*value)->hasValue());
        ++value;
    }
    expectOnly(nullptr, features);
}

TEST(DisableFeaturesConfiguration, ReadsEachSwitch) {
    for (const Switch& each : switches) {
        Features features;
        load(features, elementWith(each.tag));
        expectOnly(&each, features);
        EXPECT_TRUE((features.*each.getConfig)().getValue());
    }
}

TEST(DisableFeaturesConfiguration, LeavesEverythingOnWithoutItsElement) {
    Features features;
    load(features, "<Other><EditorFoldItemsDisable>true</EditorFoldItemsDisable></Other>");
    expectOnly(nullptr, features);
}

TEST(DisableFeaturesConfiguration, MakesAndClonesItsOwnKind) {
    Features features;
    load(features, elementWith(switches[3].tag, " editable='false'"));
    const std::unique_ptr<ConfigurationObject> fresh(features.createConfigurationObject());
    const std::unique_ptr<ConfigurationObject> clone(features.clone());
    ASSERT_NE(nullptr, dynamic_cast<Features*>(fresh.get()));
    ASSERT_NE(nullptr, dynamic_cast<Features*>(clone.get()));
    expectOnly(nullptr, dynamic_cast<Features&>(*fresh));
    expectOnly(&switches[3], dynamic_cast<Features&>(*clone));
    EXPECT_FALSE(clone->getConfigurationValue(switches[3].key)->isEditable());
    EXPECT_EQ(std::size(switches), clone->getConfigurationValuesSize());
}

TEST(DisableFeaturesConfiguration, IsCopiedAndMovedWithSwitchesOfItsOwn) {
    auto original = std::make_unique<Features>();
    load(*original, elementWith(switches[5].tag));
    const Features copy(*original);
    Features assigned;
    assigned = *original;
    Features source(*original);
    const Features moved(std::move(source));
    Features otherSource(*original);
    Features moveAssigned;
    moveAssigned = std::move(otherSource);
    original.reset();
    const std::vector<const Features*> all = {&copy, &assigned, &moved, &moveAssigned};
    for (const Features* features : all)
        expectOnly(&switches[5], *features);
}

TEST(DisableFeaturesConfiguration, ResetsWhatIsNotLocked) {
    Features features;
    for (const Switch& each : switches)
        valueOf(features, each.key).setValue(true);
    valueOf(features, switches[7].key).setEditable(false);
    features.setDefaultValues();
    expectOnly(&switches[7], features);
    EXPECT_FALSE(valueOf(features, switches[7].key).isEditable());
}

TEST(DisableFeaturesConfiguration, IsUnlockedByAResetThatLeavesItsSwitches) {
    Features features;
    valueOf(features, switches[1].key).setValue(true);
    features.setEditable(false);
    features.setDefaultValues();
    expectOnly(&switches[1], features);
    EXPECT_TRUE(features.isEditable());
    features.setDefaultValues();
    expectOnly(nullptr, features);
}

TEST(DisableFeaturesConfiguration, OffersNothingToEditWhateverIsLocked) {
    Features features;
    EXPECT_FALSE(features.hasNonEditableEntries());
    valueOf(features, switches[0].key).setEditable(false);
    EXPECT_FALSE(features.hasNonEditableEntries());
    features.setEditable(false);
    EXPECT_FALSE(features.hasNonEditableEntries());
}

TEST(DisableFeaturesConfiguration, WritesNothingByItself) {
    Features features;
    for (const Switch& each : switches)
        valueOf(features, each.key).setValue(true);
    const ConfigurationObject& object = features;
    SimpleConfigReader reader = readerOf("<DisableFeaturesConfiguration/>");
    ConfigWriter untouched("1.0");
    ConfigWriter writer("1.0");
    object.saveContent(writer);
    object.saveContent(writer, reader, false);
    object.saveContent(writer, reader, true);
    object.saveDifferentConfigurationValues(writer, nullptr);
    writer.putOnlyDifferentClassContents(Features::s_tag, object, reader, "");
    EXPECT_EQ(Support::compact(untouched), Support::compact(writer));
    EXPECT_FALSE(object.writesContent());
    EXPECT_FALSE(object.canBeSavedToUserConfig(reader));
}

/// Leaves the process's manager and registered instance like new.
class RegisteredFeaturesTest : public testing::Test {
protected:
    RegisteredFeaturesTest() {
        manager.reset();
        manager.setValidVersionList({"1.0"});
    }
    ~RegisteredFeaturesTest() override {
        manager.reset();
        manager.setValidVersionList(m_formerVersions);
        Features& features = *Features::getRegisteredInstance();
        features.setEditable(true);
        for (const Switch& each : switches) {
            valueOf(features, each.key).setEditable(true);
            valueOf(features, each.key).resetValue();
        }
        manager.reset();
    }

    FileName fileWith(const std::string& name, const Switch& on) const {
        return directory.file(name, document(elementWith(on.tag)));
    }
    /// The instance; the first call of a test registers it with the manager's files.
    Features& registered() { return *Features::getRegisteredInstance(); }

    Support::TemporaryDirectory directory;
    ConfigurationManager& manager = ConfigurationManager::getInstance();

private:
    std::list<std::string> m_formerVersions = manager.getValidVersions();
};

TEST_F(RegisteredFeaturesTest, AreRegisteredOnceUnderTheirName) {
    EXPECT_EQ(nullptr, manager.getConfigurationObject(Features::s_tag));
    Features* const features = Features::getRegisteredInstance();
    ASSERT_NE(nullptr, features);
    EXPECT_EQ(features, manager.getConfigurationObject(Features::s_tag));
    EXPECT_EQ(features, Features::getRegisteredInstance());
    EXPECT_EQ(features, manager.getConfigurationObject(Features::s_tag));
}

TEST_F(RegisteredFeaturesTest, AreLoadedWhenTheyAreRegistered) {
    manager.setConfigurationFile(fileWith("settings.xml", switches[2]));
    expectOnly(&switches[2], registered());
}

TEST_F(RegisteredFeaturesTest, AreNotLoadedAgainByLaterCalls) {
    manager.setConfigurationFile(fileWith("settings.xml", switches[2]));
    valueOf(registered(), switches[4].key).setValue(true);
    EXPECT_TRUE(registered().getPlannerUnitPriceDisable());
}

TEST_F(RegisteredFeaturesTest, AreTheSameForAllThreads) {
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<Features*>> threads;
    for (int i = 0; i < 8; ++i)
        threads.push_back(std::async(std::launch::async, [started] {
            started.wait();
            return Features::getRegisteredInstance();
        }));
    start.set_value();
    for (auto& thread : threads) {
        const Features* const features = thread.get();
        EXPECT_EQ(manager.getConfigurationObject(Features::s_tag), features);
    }
}

TEST_F(RegisteredFeaturesTest, OutliveAResetOfTheManagerAndAreRegisteredAgain) {
    manager.setConfigurationFile(fileWith("first.xml", switches[8]));
    Features* const features = Features::getRegisteredInstance();
    manager.reset();
    EXPECT_EQ(nullptr, manager.getConfigurationObject(Features::s_tag));
    expectOnly(&switches[8], *features);

    manager.setConfigurationFile(fileWith("second.xml", switches[9]));
    EXPECT_EQ(features, Features::getRegisteredInstance());
    EXPECT_EQ(features, manager.getConfigurationObject(Features::s_tag));
    expectOnly(&switches[9], *features);
}

TEST_F(RegisteredFeaturesTest, ForgetAtAResetWhatTheNextFilesDoNotMention) {
    manager.setConfigurationFile(fileWith("first.xml", switches[8]));
    expectOnly(&switches[8], registered());
    manager.reset();
    manager.setConfigurationFile(directory.file("second.xml", document("<Other/>")));
    expectOnly(nullptr, registered());
}

TEST_F(RegisteredFeaturesTest, AreRegisteredAgainAfterAResetThoughACopyOfTheManagerSharesThem) {
    manager.setConfigurationFile(fileWith("first.xml", switches[8]));
    expectOnly(&switches[8], registered());
    ConfigurationManager copy = manager;
    manager.reset();
    manager.setConfigurationFile(fileWith("second.xml", switches[9]));
    expectOnly(&switches[9], registered());
    EXPECT_EQ(&registered(), manager.getConfigurationObject(Features::s_tag));
    copy.reset();
    valueOf(registered(), switches[4].key).setValue(true);
    EXPECT_TRUE(registered().getPlannerUnitPriceDisable());
}

TEST_F(RegisteredFeaturesTest, AreRegisteredAgainAfterAnAssignmentToTheManager) {
    const ConfigurationManager empty = manager;
    manager.setConfigurationFile(fileWith("first.xml", switches[8]));
    expectOnly(&switches[8], registered());
    manager = empty;
    manager.setConfigurationFile(fileWith("second.xml", switches[9]));
    expectOnly(&switches[9], registered());
    EXPECT_EQ(&registered(), manager.getConfigurationObject(Features::s_tag));
}

/// Registers another object under the name of the switches.
class TakenNameTest : public RegisteredFeaturesTest {
protected:
    TakenNameTest() { takeName(); }

    void takeName() {
        manager.addConfigurationObject(std::make_shared<Features>(), Features::s_tag);
    }
};

TEST_F(TakenNameTest, LeavesThemLoadedOnce) {
    manager.setConfigurationFile(fileWith("settings.xml", switches[2]));
    expectOnly(&switches[2], registered());
    manager.setConfigurationFile(fileWith("other.xml", switches[3]));
    expectOnly(&switches[2], registered());
}

TEST_F(TakenNameTest, LeavesThemLoadedAgainAfterAReset) {
    manager.setConfigurationFile(fileWith("settings.xml", switches[2]));
    expectOnly(&switches[2], registered());
    manager.reset();
    takeName();
    manager.setConfigurationFile(fileWith("other.xml", switches[3]));
    expectOnly(&switches[3], registered());
    manager.reset();
    manager.setConfigurationFile(fileWith("third.xml", switches[4]));
    expectOnly(&switches[4], registered());
    EXPECT_EQ(&registered(), manager.getConfigurationObject(Features::s_tag));
}

TEST_F(TakenNameTest, LeavesALockedSwitchAsItIsForAllThreads) {
    manager.setConfigurationFile(directory.file(
        "settings.xml", document(elementWith(switches[3].tag, " editable='false'"))));
    const Features& features = registered();
    std::atomic<bool> done = false;
    auto alwaysOff = std::async(std::launch::async, [&] {
        bool off = true;
        while (!done)
            off = features.getPlannerFixturesDisable() && off;
        return off;
    });
    for (int call = 0; call < 1000; ++call)
        registered();
    done = true;
    EXPECT_TRUE(alwaysOff.get());
}

TEST_F(RegisteredFeaturesTest, CannotBeTurnedBackOnByTheUserWhereTheSystemLocksThem) {
    const std::string& tag = switches[6].tag;
    manager.setSystemAndUserConfigurationFile(
        directory.file("system.xml", document(elementWith(tag, " editable='false'"))),
        directory.file("user.xml", document("<DisableFeaturesConfiguration><" + tag + ">false</" +
                                            tag + "></DisableFeaturesConfiguration>")));
    expectOnly(&switches[6], registered());
    EXPECT_FALSE(registered().hasNonEditableEntries());
}

TEST_F(RegisteredFeaturesTest, AreWrittenToNoFile) {
    manager.setSystemAndUserConfigurationFile(fileWith("system.xml", switches[0]),
                                              directory.file("user.xml"));
    valueOf(registered(), switches[1].key).setValue(true);
    EXPECT_TRUE(manager.saveConfiguration("1.0"));
    const FileName copy = directory.file("copy.xml");
    EXPECT_TRUE(manager.saveConfigurationToFile(copy.toString(), "1.0"));
    for (const FileName& file : {directory.file("user.xml"), copy})
        EXPECT_THAT(Support::readFile(file), Not(HasSubstr("DisableFeatures")));
    EXPECT_EQ(document(elementWith(switches[0].tag)),
              Support::readFile(directory.file("system.xml")));
}

/// @return whether the registered instance was loaded even though another object had its name
bool isLoadedAfterAnotherTookTheName() {
    const Support::TemporaryDirectory directory;
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setConfigurationFile(
        directory.file("settings.xml", document(elementWith(switches[1].tag))));
    manager.addConfigurationObject(std::make_shared<Features>(), Features::s_tag);
    return Features::getRegisteredInstance()->getEditorFoldItemsDisable();
}

TEST(DisableFeaturesConfiguration, IsLoadedByTheFirstCallEvenWhenItsNameIsTaken) {
    // The first call of a process needs a process of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(isLoadedAfterAnotherTookTheName() ? 0 : 1), testing::ExitedWithCode(0),
                "");
}

} // namespace
} // namespace Orvant
