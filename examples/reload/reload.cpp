// Two windows of one application: what the other saves is taken over, what is changed here stays.

#include <ConfigurationFramework/Settings.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

struct View : Settings<View> {
    View() : Settings("View", "The 3D view") {}

    Setting<double> zoom{this, "Zoom", "Zoom factor at start", 1.0};
    Setting<std::string> background{this, "Background", "Colour of the background", "white"};
};

//! [watch]
/// Called by the application's file watcher, in the thread that uses the manager.
void filesHaveChanged() {
    auto& manager = ConfigurationManager::getInstance();
    if (manager.haveFilesChanged() && !manager.reloadConfiguration())
        std::cout << "The files are of no use at the moment: everything stays as it is.\n";
}
//! [watch]

/// What the other window does.
void saveElsewhere() {
    std::ofstream("user.xml") << "<Configuration version=\"1.0\">\n"
                                 "  <View>\n"
                                 "    <Zoom>2</Zoom>\n"
                                 "    <!--easier on the eyes-->\n"
                                 "    <Background>black</Background>\n"
                                 "  </View>\n"
                                 "</Configuration>\n";
}

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto view = std::make_shared<View>();
    manager.addConfigurationObjects({{view, "View"}});
    std::cout << "Zoom " << view->zoom << ", background " << view->background.get() << '\n';

    //! [observe]
    const ChangeSubscription zoomed =
        view->zoom.onChange([](double zoom) { std::cout << "Now zoom " << zoom << '\n'; });
    const ChangeSubscription painted = view->background.onChange(
        [](const std::string& colour) { std::cout << "Now background " << colour << '\n'; });
    //! [observe]

    view->zoom = 3.0; // by the user, not saved yet
    saveElsewhere();
    filesHaveChanged();
    filesHaveChanged(); // nothing is new

    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
