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

/// A value, and whether resets leave it alone.
std::string text(const Editor& editor, const std::string& name) {
    const auto& value = editor.value(name);
    const bool editable = editor.isEditable() && value.isEditable();
    return name + ' ' + std::to_string(value.getValue()) + (editable ? "" : " (locked)");
}

void print(const std::string& when, const Editor& editor) {
    std::cout << when << ": " << text(editor, "UndoSteps") << ", " << text(editor, "GridSpacing")
              << ", " << text(editor, "MaxDrawings") << '\n';
}

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
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
        std::cerr << manager.getSaveReport().text << '\n';
}
