// The ways back: to the saved settings, to the administrator's, to the built-in defaults.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

class Editor : public ConfigurationObject {
public:
    Editor() : ConfigurationObject("Editor", "The drawing editor", LoadAndSave, AllProducts) {
        for (const std::string name : {"UndoSteps", "GridSpacing", "MaxDrawings"})
            addConfigurationValue(
                new ConfigurationValue<int>(name, "", 10, Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Editor; }

    ConfigurationValue<int>& value(const std::string& name) const {
        return dynamic_cast<ConfigurationValue<int>&>(*getConfigurationValue(name));
    }
};

void print(const std::string& when, const Editor& editor) {
    std::cout << when << ": UndoSteps " << editor.value("UndoSteps").getValue() << ", GridSpacing "
              << editor.value("GridSpacing").getValue() << ", MaxDrawings "
              << editor.value("MaxDrawings").getValue() << " (locked)\n";
}

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    print("At start", *editor);

    editor->value("UndoSteps").setValue(30);
    editor->value("GridSpacing").setValue(30);
    print("Changed", *editor);

    //! [reset]
    manager.resetConfigurationObject("Editor", true); // what the user's file holds
    print("From the user's file", *editor);

    manager.resetConfigurationObject("Editor", false); // what the administrator set
    print("From the system file", *editor);

    editor->setDefaultValues(); // what the application was built with
    print("Built-in", *editor);

    editor->value("GridSpacing").resetValue(); // one value to its built-in default
    //! [reset]

    if (!manager.saveConfiguration("1.0"))
        std::cerr << "The settings could not be saved\n";
}
