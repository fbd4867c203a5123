// The administrator's system file under the user's file: whose value counts, and what is locked.

#include <ConfigurationFramework/Settings.h>

#include <iostream>
#include <memory>

using namespace Orvant;

namespace {

struct Editor : Settings<Editor> {
    Editor() : Settings("Editor", "The drawing editor") {}

    Setting<int> undoSteps{this, "UndoSteps", "Steps that can be taken back", 50};
    Setting<int> autosaveSeconds{this, "AutosaveSeconds", "Seconds between saves", 600};
    Setting<int> gridSpacing{this, "GridSpacing", "Grid spacing in mm", 10};
    Setting<int> maxDrawings{this, "MaxDrawings", "Drawings open at a time", 8};
};

} // namespace

int main() {
    //! [load]
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0", "1.1"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    //! [load]

    for (const Setting<int>* setting :
         {&editor->undoSteps, &editor->autosaveSeconds, &editor->gridSpacing, &editor->maxDrawings})
        std::cout << setting->name() << " = " << setting->get()
                  << (setting->isLocked() ? ", locked" : "") << '\n';

    //! [save]
    editor->undoSteps = 200;
    if (!manager.saveConfiguration("1.1"))
        std::cerr << manager.getSaveReport().text << '\n';
    //! [save]
}
