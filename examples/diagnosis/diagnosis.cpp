// What support asks for: what in the files has no effect, and where each value comes from.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

//! [declare]
class Camera : public ConfigurationObject {
public:
    Camera() : ConfigurationObject("Camera", "The camera", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<float>(
            "FieldOfView", "Field of view in degrees", 45.0F, Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Camera; }
};

class View : public ConfigurationObject {
public:
    View() : ConfigurationObject("View", "The 3D view", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<int>("Zoom", "Zoom at start in percent", 100,
                                                          Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<std::string>(
            "Background", "Colour of the background", "white", Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<std::string>(
            "LengthUnit", "Unit of lengths", "inch", Visible, LoadAndSave, AllProducts));
        addConfigurationObject(new Camera);
    }
    ConfigurationObject* createConfigurationObject() const override { return new View; }
};
//! [declare]

//! [explain]
std::string describe(const ConfigurationOrigin& origin) {
    std::string text = origin.path + " = " + origin.value;
    if (origin.layer == ConfigurationOrigin::Default)
        text += ", built in";
    else if (!origin.file.empty()) // neither is a change that is not saved yet
        text += ", " + origin.file.toString() + " line " + std::to_string(origin.line);
    if (origin.locked)
        text += ", locked by " + origin.lockedBy;
    if (origin.userValue && origin.layer != ConfigurationOrigin::User)
        text += ", the user's file says in vain " + *origin.userValue;
    return text;
}
//! [explain]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    manager.addConfigurationObjects({{std::make_shared<View>(), "View"}});

    //! [problems]
    for (const ConfigurationProblem& problem : manager.getLoadProblems())
        std::cout << problem.file.toString() << ':' << problem.line << ':' << problem.column << ": "
                  << problem.path << ": " << problem.text << '\n';
    //! [problems]

    std::cout << '\n';
    for (const ConfigurationOrigin& origin : manager.explain())
        std::cout << describe(origin) << '\n';
}
