#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

namespace Orvant {

/// The switches that turn off features of the suite's applications. They are read from the
/// configuration files and never written; users cannot edit them.
///
/// @code
/// if (DisableFeaturesConfiguration::getRegisteredInstance()->getPlannerFixturesDisable())
///     hideFixtures();
/// @endcode
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT DisableFeaturesConfiguration
    : public ConfigurationObject {
public:
    static const std::string s_tag; ///< XML tag and object name: "DisableFeaturesConfiguration"
    static const std::string s_editorSketchItemsDisable;   ///< "EditorSketchItemsDisable"
    static const std::string s_editorFoldItemsDisable;     ///< "EditorFoldItemsDisable"
    static const std::string s_plannerStageGaugingDisable; ///< "PlannerStageGaugingDisable"
    static const std::string s_plannerFixturesDisable;     ///< "PlannerFixturesDisable"
    static const std::string s_plannerUnitPriceDisable;    ///< "PlannerUnitPriceDisable"
    static const std::string s_layoutPackInsetDisable;     ///< "LayoutPackInsetDisable"
    static const std::string s_layoutPackOptionsDisable;   ///< "LayoutPackOptionsDisable"
    static const std::string s_surfaceShapeAuditDisable;   ///< "SurfaceShapeAuditDisable"
    static const std::string s_setupEdgeLineDisable;       ///< "SetupEdgeLineDisable"
    static const std::string s_setupVarianceDisable;       ///< "SetupVarianceDisable"

    /// Makes the object with all switches at false.
    DisableFeaturesConfiguration();
    /// Copies; so does a move, since an object without its values could not answer.
    /// @{
    DisableFeaturesConfiguration(const DisableFeaturesConfiguration&) = default;
    DisableFeaturesConfiguration(DisableFeaturesConfiguration&&) = default;
    DisableFeaturesConfiguration& operator=(const DisableFeaturesConfiguration&) = default;
    DisableFeaturesConfiguration& operator=(DisableFeaturesConfiguration&&) = default;
    /// @}
    ~DisableFeaturesConfiguration() override;

    /// The instance that is registered with the configuration manager. The first call makes,
    /// registers and thereby loads it; the first call after each ConfigurationManager::reset()
    /// registers it again as if it were new. If another object has taken its name, these calls only
    /// load it. May be called from several threads.
    /// @return always the same pointer, valid for the life of the process
    static DisableFeaturesConfiguration* getRegisteredInstance();

    ConfigurationObject* createConfigurationObject() const override;
    /// Resets the switches that may be edited and unlocks the object.
    void setDefaultValues() override;
    /// @return false: nothing here is for the user to edit
    bool hasNonEditableEntries() const override;
    using ConfigurationObject::saveContent;
    /// Does nothing.
    void saveContent(ConfigWriter& writer) const override;
    /// @return false
    bool writesContent() const override;

    /// State of a switch.
    /// @return true when the feature is off
    /// @{
    bool getEditorSketchItemsDisable() const;
    bool getEditorFoldItemsDisable() const;
    bool getPlannerStageGaugingDisable() const;
    bool getPlannerFixturesDisable() const;
    bool getPlannerUnitPriceDisable() const;
    bool getLayoutPackInsetDisable() const;
    bool getLayoutPackOptionsDisable() const;
    bool getSurfaceShapeAuditDisable() const;
    bool getSetupEdgeLineDisable() const;
    bool getSetupVarianceDisable() const;
    /// @}

    /// Value of a switch.
    /// @return the value, with its lock, owned by the object
    /// @{
    const ConfigurationValue<bool>& getEditorSketchItemsDisableConfig() const;
    const ConfigurationValue<bool>& getEditorFoldItemsDisableConfig() const;
    const ConfigurationValue<bool>& getPlannerStageGaugingDisableConfig() const;
    const ConfigurationValue<bool>& getPlannerFixturesDisableConfig() const;
    const ConfigurationValue<bool>& getPlannerUnitPriceDisableConfig() const;
    const ConfigurationValue<bool>& getLayoutPackInsetDisableConfig() const;
    const ConfigurationValue<bool>& getLayoutPackOptionsDisableConfig() const;
    const ConfigurationValue<bool>& getSurfaceShapeAuditDisableConfig() const;
    const ConfigurationValue<bool>& getSetupEdgeLineDisableConfig() const;
    const ConfigurationValue<bool>& getSetupVarianceDisableConfig() const;
    /// @}

private:
    void forgetFiles();
    const ConfigurationValue<bool>& getSwitch(const std::string& key) const;
};

} // namespace Orvant
