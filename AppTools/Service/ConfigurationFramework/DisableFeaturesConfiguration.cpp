#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ConfigurationFramework/ConfigurationManager.h>

#include <memory>
#include <mutex>
#include <optional>

namespace Orvant {

const std::string DisableFeaturesConfiguration::s_tag = "DisableFeaturesConfiguration";
const std::string DisableFeaturesConfiguration::s_editorSketchItemsDisable =
    "EditorSketchItemsDisable";
const std::string DisableFeaturesConfiguration::s_editorFoldItemsDisable = "EditorFoldItemsDisable";
const std::string DisableFeaturesConfiguration::s_plannerStageGaugingDisable =
    "PlannerStageGaugingDisable";
const std::string DisableFeaturesConfiguration::s_plannerFixturesDisable = "PlannerFixturesDisable";
const std::string DisableFeaturesConfiguration::s_plannerUnitPriceDisable =
    "PlannerUnitPriceDisable";
const std::string DisableFeaturesConfiguration::s_layoutPackInsetDisable = "LayoutPackInsetDisable";
const std::string DisableFeaturesConfiguration::s_layoutPackOptionsDisable =
    "LayoutPackOptionsDisable";
const std::string DisableFeaturesConfiguration::s_surfaceShapeAuditDisable =
    "SurfaceShapeAuditDisable";
const std::string DisableFeaturesConfiguration::s_setupEdgeLineDisable = "SetupEdgeLineDisable";
const std::string DisableFeaturesConfiguration::s_setupVarianceDisable = "SetupVarianceDisable";

DisableFeaturesConfiguration::DisableFeaturesConfiguration()
    : ConfigurationObject(s_tag, "", LoadOnly, AllProducts) {
    for (const std::string& key :
         {s_editorSketchItemsDisable, s_editorFoldItemsDisable, s_plannerStageGaugingDisable,
          s_plannerFixturesDisable, s_plannerUnitPriceDisable, s_layoutPackInsetDisable,
          s_layoutPackOptionsDisable, s_surfaceShapeAuditDisable, s_setupEdgeLineDisable,
          s_setupVarianceDisable})
        addConfigurationValue(
            new ConfigurationValue<bool>(key, "", false, Visible, LoadOnly, AllProducts));
}

DisableFeaturesConfiguration::~DisableFeaturesConfiguration() = default;

DisableFeaturesConfiguration* DisableFeaturesConfiguration::getRegisteredInstance() {
    static std::mutex s_mutex;
    static const auto s_instance = std::make_shared<DisableFeaturesConfiguration>();
    static std::optional<unsigned int> s_registeredAt; ///< number of resets at registration

    const std::lock_guard lock(s_mutex);
    auto& manager = ConfigurationManager::getInstance();
    // Nothing else is read from the manager, which another thread may be using. Whether it took the
    // instance does not matter either: loading it again would change switches that threads read.
    const unsigned int resets = manager.m_resets.number();
    if (s_registeredAt != resets) {
        s_instance->forgetFiles();
        manager.addConfigurationObject(s_instance, s_instance->getName());
        s_registeredAt = resets;
    }
    return s_instance.get();
}

/// Goes back to the state of a new object, locks included.
void DisableFeaturesConfiguration::forgetFiles() {
    setEditable(true);
    for (auto value = beginValueIterator(); value != endValueIterator(); ++value)
        (*value)->setEditable(true);
    setDefaultValues();
}

ConfigurationObject* DisableFeaturesConfiguration::createConfigurationObject() const {
    return new DisableFeaturesConfiguration;
}

void DisableFeaturesConfiguration::setDefaultValues() {
    ConfigurationObject::setDefaultValues();
    setEditable(true);
}

bool DisableFeaturesConfiguration::hasNonEditableEntries() const {
    return false;
}

void DisableFeaturesConfiguration::saveContent(ConfigWriter&) const {}

bool DisableFeaturesConfiguration::writesContent() const {
    return false;
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getSwitch(const std::string& key) const {
    return static_cast<const ConfigurationValue<bool>&>(*getConfigurationValue(key));
}

bool DisableFeaturesConfiguration::getEditorSketchItemsDisable() const {
    return getEditorSketchItemsDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getEditorFoldItemsDisable() const {
    return getEditorFoldItemsDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getPlannerStageGaugingDisable() const {
    return getPlannerStageGaugingDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getPlannerFixturesDisable() const {
    return getPlannerFixturesDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getPlannerUnitPriceDisable() const {
    return getPlannerUnitPriceDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getLayoutPackInsetDisable() const {
    return getLayoutPackInsetDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getLayoutPackOptionsDisable() const {
    return getLayoutPackOptionsDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getSurfaceShapeAuditDisable() const {
    return getSurfaceShapeAuditDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getSetupEdgeLineDisable() const {
    return getSetupEdgeLineDisableConfig().getValue();
}

bool DisableFeaturesConfiguration::getSetupVarianceDisable() const {
    return getSetupVarianceDisableConfig().getValue();
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getEditorSketchItemsDisableConfig() const {
    return getSwitch(s_editorSketchItemsDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getEditorFoldItemsDisableConfig() const {
    return getSwitch(s_editorFoldItemsDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getPlannerStageGaugingDisableConfig() const {
    return getSwitch(s_plannerStageGaugingDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getPlannerFixturesDisableConfig() const {
    return getSwitch(s_plannerFixturesDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getPlannerUnitPriceDisableConfig() const {
    return getSwitch(s_plannerUnitPriceDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getLayoutPackInsetDisableConfig() const {
    return getSwitch(s_layoutPackInsetDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getLayoutPackOptionsDisableConfig() const {
    return getSwitch(s_layoutPackOptionsDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getSurfaceShapeAuditDisableConfig() const {
    return getSwitch(s_surfaceShapeAuditDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getSetupEdgeLineDisableConfig() const {
    return getSwitch(s_setupEdgeLineDisable);
}

const ConfigurationValue<bool>&
DisableFeaturesConfiguration::getSetupVarianceDisableConfig() const {
    return getSwitch(s_setupVarianceDisable);
}

} // namespace Orvant
