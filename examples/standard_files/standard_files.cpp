// Where the files of an application belong: settings in the standard places, what the application
// notes for itself in a file beside them.

#include <ConfigurationFramework/Settings.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace Orvant;

namespace {

struct View : Settings<View> {
    View() : Settings("View", "The 3D view") {}
    Setting<std::string> background{this, "Background", "Colour of the background", "white"};
};

//! [state]
struct Window : Settings<Window> {
    Window() : Settings("Window", "The main window") {}
    Setting<int> width{this, "Width", "Width in pixels", 1024, Range{200, 20000}, hidden};
    Setting<int> height{this, "Height", "Height in pixels", 768, Range{150, 20000}, hidden};
    Setting<std::vector<std::string>> recentFiles{
        this, "RecentFiles", "Files opened last", {}, hidden};
};

/// Puts a file in front of those that were opened before.
void remember(Window& window, const std::string& file) {
    std::vector<std::string> files = window.recentFiles;
    std::erase(files, file);
    files.insert(files.begin(), file);
    files.resize(std::min<std::size_t>(files.size(), 10));
    window.recentFiles = files;
}
//! [state]

void save(const ConfigurationManager& manager) {
    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}

std::string fromHere(const FileName& file) {
    return std::filesystem::proximate(file.toPath()).string();
}

} // namespace

int main() {
    //! [files]
    auto& settings = ConfigurationManager::getInstance();
    settings.setValidVersionList({"1.0"});
    settings.setSaveMode(ConfigurationManager::Merge);
    const StandardConfigurationFiles files = standardConfigurationFiles("planner");
    settings.setSystemAndUserConfigurationFile(files.system, files.user);

    ConfigurationManager state = settings; // with its versions and save mode
    state.reset();                         // without its files and objects
    FileName stateFile = files.user.getLocation();
    stateFile /= "state.xml";
    state.setConfigurationFile(stateFile);
    //! [files]
    std::cout << "System " << fromHere(files.system) << "\nUser   " << fromHere(files.user)
              << "\nState  " << fromHere(stateFile) << '\n';

    const auto view = std::make_shared<View>();
    settings.addConfigurationObjects({{view, "View"}});
    const auto window = std::make_shared<Window>();
    state.addConfigurationObjects({{window, "Window"}});
    std::cout << "Background " << view->background.get() << ", width " << window->width
              << ", recent files: " << window->recentFiles.get().size() << '\n';

    view->background = "black";
    window->width = 1280;
    remember(*window, "engine.plan");
    save(settings); // when the dialogue is closed
    save(state);    // when the window is closed
}
