#include "SuiteSettings.h"

#include <ConfigurationFramework/ConfigurationValue.h>

#include <vector>

namespace Suite {

namespace {

template <typename T>
Orvant::ConfigurationValue<T>* value(const std::string& name, const std::string& description,
                                     const T& defaultValue) {
    return new Orvant::ConfigurationValue<T>(
        name, description, defaultValue, ConfigurationObject::Visible,
        ConfigurationObject::LoadAndSave, ConfigurationObject::AllProducts);
}

/// The camera of the view: an element of its own.
class CameraSettings : public ConfigurationObject {
public:
    CameraSettings() : ConfigurationObject("Camera", "The camera", LoadAndSave, AllProducts) {
        addConfigurationValue(value<float>("FieldOfView", "Field of view in degrees", 45.0F));
        addConfigurationValue(value<bool>("Perspective", "Perspective, not parallel", true));
    }
    ConfigurationObject* createConfigurationObject() const override { return new CameraSettings; }
};

/// Units, shared by several objects: without a name, stored in the element of its parent.
class UnitSettings : public ConfigurationObject {
public:
    UnitSettings() : ConfigurationObject("", "", LoadAndSave, AllProducts) {
        addConfigurationValue(value<std::string>("LengthUnit", "Unit of lengths", "mm"));
        addConfigurationValue(value<int>("Decimals", "Decimal places", 2));
    }
    ConfigurationObject* createConfigurationObject() const override { return new UnitSettings; }
};

} // namespace

ViewSettings::ViewSettings()
    : ConfigurationObject("ViewSettings", "The 3D view", LoadAndSave, AllProducts) {
    addConfigurationValue(value<double>("Zoom", "Zoom factor at start", 1.0));
    addConfigurationValue(value<bool>("ShowGrid", "Draw the grid", true));
    addConfigurationValue(value<std::string>("Background", "Colour of the background", "white"));
    addConfigurationObject(new CameraSettings);
    addConfigurationObject(new UnitSettings);
}

EditorSettings::EditorSettings()
    : ConfigurationObject("EditorSettings", "The drawing editor", LoadAndSave, AllProducts) {
    addConfigurationValue(value<int>("UndoSteps", "Steps that can be taken back", 50));
    addConfigurationValue(value<unsigned int>("AutosaveSeconds", "Seconds between saves", 600));
    addConfigurationValue(value<std::vector<std::string>>("RecentFiles", "Last drawings", {}));
}

PlotterSettings::PlotterSettings()
    : ConfigurationObject("Plotter", "A plotter", LoadAndSave, AllProducts) {
    addConfigurationValue(value<std::string>("Paper", "Paper size", "A4"));
    addConfigurationValue(value<unsigned int>("Copies", "Copies of each sheet", 1));
}

MachineLimits::MachineLimits()
    : ConfigurationObject("MachineLimits", "Limits of the machines", LoadAndSave, AllProducts) {
    addConfigurationValue(value<double>("MaxFeed", "Fastest feed in mm/min", 5000.0));
    addConfigurationValue(value<int>("MaxSpindle", "Fastest spindle in 1/min", 12000));
}

NetworkSettings::NetworkSettings()
    : ConfigurationObject("NetworkSettings", "Servers", LoadAndSave, AllProducts) {
    addConfigurationValue(value<std::string>("LicenceServer", "Host of the licences", "localhost"));
    addConfigurationValue(value<int>("TimeoutSeconds", "Seconds to wait for a server", 30));
}

} // namespace Suite
