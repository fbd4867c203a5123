// The ways back: to the saved settings, to the administrator's, to the built-in defaults.

#include <ConfigurationFramework/Settings.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

struct Editor : Settings<Editor> {
    Editor() : Settings("Editor", "The drawing editor") {}

    Setting<int> undoSteps{this, "UndoSteps", "Steps that can be taken back", 10};
    Setting<int> gridSpacing{this, "GridSpacing", "Grid spacing in mm", 10};
    Setting<int> maxDrawings{this, "MaxDrawings", "Drawings open at a time", 10};
};

/// A setting, and whether resets leave it alone.
std::string text(const Setting<int>& setting) {
    return setting.name() + ' ' + std::to_string(setting) + (setting.isLocked() ? " (locked)" : "");
}

void print(const std::string& when, const Editor& editor) {
    std::cout << when << ": " << text(editor.undoSteps) << ", " << text(editor.gridSpacing) << ", "
              << text(editor.maxDrawings) << '\n';
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

    editor->undoSteps = 30;
    editor->gridSpacing = 30;
    print("Changed", *editor);

    //! [reset]
    manager.resetConfigurationObject("Editor", true); // what the user's file holds
    print("From the user's file", *editor);

    manager.resetConfigurationObject("Editor", false); // what the administrator set
    print("From the system file", *editor);

    editor->setDefaultValues(); // what the application was built with
    print("Built-in", *editor);

    editor->gridSpacing.reset(); // one setting to its built-in default
    //! [reset]

    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
