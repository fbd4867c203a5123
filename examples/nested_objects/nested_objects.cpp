// Settings in settings: a camera with an element of its own, units that several objects share, and
// lights that come and go.

#include <ConfigurationFramework/Settings.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

//! [children]
/// With a name: an element of its own in that of the parent.
struct Camera : Settings<Camera> {
    Camera() : Settings("Camera", "The camera") {}
    Setting<double> fieldOfView{this, "FieldOfView", "Field of view in degrees", 45.0};
};

/// Without a name: its settings stand in the element of the parent.
struct Units : Settings<Units> {
    Units() : Settings("") {}
    Setting<std::string> length{this, "LengthUnit", "Unit of lengths", "mm"};
};

/// One for each key.
struct Light : Settings<Light> {
    Light() : Settings("Light", "A lamp in the scene") {}
    Setting<int> brightness{this, "Brightness", "Brightness in per cent", 100};
};

struct View : Settings<View> {
    View() : Settings("View", "The 3D view") {}
    Setting<double> zoom{this, "Zoom", "Zoom factor at start", 1.0};
    Child<Camera> camera{this};
    Child<Units> units{this};
    KeyedChildren<Light> lights{this};
};
//! [children]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto view = std::make_shared<View>();
    manager.addConfigurationObjects({{view, "View"}});

    //! [use]
    std::cout << "Field of view: " << view->camera->fieldOfView << ", lengths in "
              << view->units->length.get() << '\n';
    for (const auto& [key, light] : view->lights)
        std::cout << key << ": " << light.brightness << " %\n";
    //! [use]

    view->zoom = 2.5;
    //! [lights]
    view->lights.add("Lamp").brightness = 80; // starts as the default entry says: 60
    view->lights.remove("Left");
    //! [lights]
    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
