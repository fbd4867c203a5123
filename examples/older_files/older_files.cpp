// Settings of earlier versions: an element with another name and unit, and a file that was no XML.

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/Settings.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

using namespace Orvant;

namespace {

//! [name]
struct Editor : Settings<Editor> {
    Editor() : Settings("Editor", "The drawing editor") {}

    Setting<double> gridSpacing{this, "GridSpacing", "Grid spacing in mm", 10.0,
                                Range{0.1, 1000.0}};
    Setting<int> undoSteps{this, "UndoSteps", "Steps that can be taken back", 50, Range{0, 1000}};
    Setting<int> autosave{this, "AutosaveSeconds", "Seconds between saves", 600, Range{10, 3600}};
    /// What the grid's spacing was until version 1.1. Neither loaded by itself nor saved.
    Setting<double> grid{this, "Grid", "Grid spacing in cm", 1.0, hidden, NotPersistent};

    void loadContent(ConfigReader& reader) override {
        Settings::loadContent(reader);
        double centimetres = 0.0;
        bool editable = true;
        auto& spacing = gridSpacing.item();
        if (spacing.hasValue() || reader.getDouble(grid.name(), centimetres, editable) != Success ||
            !spacing.isAllowed(10.0 * centimetres))
            return;
        spacing.setValue(10.0 * centimetres);
        spacing.setEditable(editable);
    }
};
//! [name]

//! [format]
/// Takes over what the user had before the first version with this library.
void importOldFile(Editor& editor, const std::string& name) {
    std::ifstream file(name);
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        const std::string key = line.substr(0, equals);
        try {
            if (key == "undo")
                editor.undoSteps = std::stoi(line.substr(equals + 1));
            else if (key == "autosave")
                editor.autosave = std::stoi(line.substr(equals + 1));
        } catch (const std::logic_error& error) { // no number, or none that is allowed
            std::cout << name << ": " << error.what() << '\n';
        }
    }
}
//! [format]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0", "1.1"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    //! [once]
    const bool isFirstStart = !std::filesystem::exists("user.xml");
    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    if (isFirstStart)
        importOldFile(*editor, "editor.ini");
    if (!manager.saveConfiguration("1.1"))
        std::cerr << manager.getSaveReport().text << '\n';
    //! [once]

    std::cout << "Grid " << editor->gridSpacing << " mm"
              << (editor->gridSpacing.isLocked() ? ", locked" : "") << ", " << editor->undoSteps
              << " steps, saved every " << editor->autosave << " s\n";
    std::cout << manager.getLoadProblems().size() << " problems\n";
}
