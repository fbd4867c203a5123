// Objects in objects: a camera with an element of its own, and units that several objects share.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

//! [children]
/// With a name: an element of its own in that of the parent.
class Camera : public ConfigurationObject {
public:
    Camera() : ConfigurationObject("Camera", "The camera", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<float>(
            "FieldOfView", "Field of view in degrees", 45.0F, Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Camera; }
};

/// Without a name: its values stand in the element of the parent.
class Units : public ConfigurationObject {
public:
    Units() : ConfigurationObject("", "", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<std::string>(
            "LengthUnit", "Unit of lengths", "mm", Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Units; }
};

class View : public ConfigurationObject {
public:
    View() : ConfigurationObject("View", "The 3D view", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<double>("Zoom", "Zoom factor at start", 1.0,
                                                             Visible, LoadAndSave, AllProducts));
        addConfigurationObject(new Camera);
        addConfigurationObject(new Units);
    }
    ConfigurationObject* createConfigurationObject() const override { return new View; }
};
//! [children]

/// A value of an object, which is known to have that type.
template <typename T>
ConfigurationValue<T>& value(const ConfigurationObject& object, const std::string& name) {
    return dynamic_cast<ConfigurationValue<T>&>(*object.getConfigurationValue(name));
}

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setConfigurationFile("settings.xml");
    const auto view = std::make_shared<View>();
    manager.addConfigurationObjects({{view, "View"}});

    //! [use]
    const ConfigurationObject& camera = *view->getConfigurationObject("Camera");
    const ConfigurationObject& units = *view->getConfigurationObject("");
    std::cout << "Field of view: " << value<float>(camera, "FieldOfView").getValue()
              << ", lengths in " << value<std::string>(units, "LengthUnit").getValue() << '\n';
    //! [use]

    value<double>(*view, "Zoom").setValue(2.5);
    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
