// An application of an engineering suite: loads its settings from the administrator's and the
// user's file, changes some, saves, and starts over.

#include "SettingsTable.h"
#include "SuiteSettings.h"

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Suite;
using Orvant::ConfigurationManager;
using Orvant::ConfigurationProblem;
using Orvant::ConfigurationValue;
using Orvant::DisableFeaturesConfiguration;

/// What the application changes later on.
struct Settings {
    std::shared_ptr<ViewSettings> view = std::make_shared<ViewSettings>();
    std::shared_ptr<EditorSettings> editor = std::make_shared<EditorSettings>();
    std::shared_ptr<PlotterSettings> officePlotter = std::make_shared<PlotterSettings>();
};

/// Declares and registers everything; the manager fills each object as it is registered.
Settings start(const std::string& systemFile, const std::string& userFile) {
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    manager.setValidVersionList({"2.0", "2.1"});
    manager.setSaveMode(ConfigurationManager::Merge);
    // Without the administrator's file (a share that is not mounted), its locks would be gone.
    manager.setSystemFileRequired(true);
    manager.setSystemAndUserConfigurationFile(systemFile, userFile);

    Settings settings;
    manager.addConfigurationObjects({{settings.view, "ViewSettings"},
                                     {settings.editor, "EditorSettings"},
                                     {std::make_shared<PlotterSettings>(), "Plotter", "Hall 1"},
                                     {settings.officePlotter, "Plotter", "Office"},
                                     {std::make_shared<MachineLimits>(), "MachineLimits"},
                                     {std::make_shared<NetworkSettings>(), "NetworkSettings"}});
    DisableFeaturesConfiguration::getRegisteredInstance(); // registers itself
    return settings;
}

/// Tells the user of files that could not be loaded; what is wrong in the others is for support.
void reportFiles() {
    for (const ConfigurationProblem& problem :
         ConfigurationManager::getInstance().getLoadProblems())
        if (problem.kind == ConfigurationProblem::Damaged ||
            problem.kind == ConfigurationProblem::OtherVersion ||
            problem.kind == ConfigurationProblem::Unreadable)
            std::cout << problem.file.toString() << ": " << problem.text << "\n\n";
}

template <typename T>
void change(const ConfigurationObject& object, const std::string& name, const T& value) {
    dynamic_cast<ConfigurationValue<T>&>(*object.getConfigurationValue(name)).setValue(value);
}

void printFile(const std::string& title, const std::string& file) {
    std::cout << "\n== " << title << "\n\n" << std::ifstream(file).rdbuf() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: engineering_suite SYSTEM_FILE USER_FILE\n";
        return 2;
    }
    const std::string systemFile = argv[1];
    const std::string userFile = argv[2];

    const Settings settings = start(systemFile, userFile);
    reportFiles();
    std::cout << "== Settings at start\n\n" << settingsTable();
    printFile("User file before", userFile);

    change<double>(*settings.view, "Zoom", 2.5);
    change<std::vector<std::string>>(*settings.editor, "RecentFiles",
                                     {"gear box.dwg", "Gehäuse.dwg", "R&D <new>.dwg"});
    change<unsigned int>(*settings.officePlotter, "Copies", 3);

    const auto& manager = ConfigurationManager::getInstance();
    if (!manager.saveConfiguration("2.1")) {
        // The files are as they were. Once they are repaired, a new start finds everything.
        std::cout << '\n' << manager.getSaveReport().text << '\n';
        return 0;
    }
    printFile("User file after", userFile);

    const std::string saved = settingsTable();
    start(systemFile, userFile);
    const std::string reloaded = settingsTable();
    std::cout << "== Settings after a new start\n\n" << reloaded;
    std::cout << (reloaded == saved ? "\nEverything is there.\n" : "\nSomething was lost!\n");
    return reloaded == saved ? 0 : 1;
}
