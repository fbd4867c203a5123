// An application of an engineering suite: loads its settings from the administrator's and the
// user's file, changes some, saves, and starts over.

#include "SettingsTable.h"
#include "SuiteSettings.h"

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Suite;
using Orvant::ConfigException;
using Orvant::ConfigurationManager;
using Orvant::ConfigurationValue;
using Orvant::DisableFeaturesConfiguration;
using Orvant::SimpleConfigReader;

/// Declares and registers everything; the manager fills each object as it is registered.
std::vector<Registered> start(const Layers& layers) {
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    manager.setValidVersionList(layers.versions);
    manager.setSaveMode(ConfigurationManager::Merge);
    // Without the administrator's file (a share that is not mounted), its locks would be gone.
    manager.setSystemFileRequired(true);
    manager.setSystemAndUserConfigurationFile(layers.systemFile, layers.userFile);

    std::vector<Registered> settings;
    const auto add = [&](const std::shared_ptr<ConfigurationObject>& object) {
        manager.addConfigurationObject(object, object->getName());
        settings.push_back({object.get(), std::nullopt});
    };
    const auto addKeyed = [&](const std::shared_ptr<ConfigurationObject>& object,
                              const std::string& key) {
        manager.addConfigurationObject(object, object->getName(), key);
        settings.push_back({object.get(), key});
    };
    add(std::make_shared<ViewSettings>());
    add(std::make_shared<EditorSettings>());
    addKeyed(std::make_shared<PlotterSettings>(), "Hall 1");
    addKeyed(std::make_shared<PlotterSettings>(), "Office");
    add(std::make_shared<MachineLimits>());
    add(std::make_shared<NetworkSettings>());
    settings.push_back({DisableFeaturesConfiguration::getRegisteredInstance(), std::nullopt});
    return settings;
}

/// What is wrong with a file, in words for the user.
std::string fault(const std::string& file, const Layers& layers) {
    try {
        const SimpleConfigReader reader(file, "", layers.versions);
        return "can be read by now";
    } catch (ConfigException& error) {
        switch (error.getType()) {
        case ConfigException::ParserReportedErrors:
            return "is damaged";
        case ConfigException::InvalidVersion:
            return "is of a version that this application does not know";
        default:
            return "holds no settings, or may not be read";
        }
    }
}

/// Tells the user of files that could not be loaded.
void reportFiles(const Layers& layers) {
    auto& manager = ConfigurationManager::getInstance();
    if (manager.hasSystemConfigFileErrors())
        std::cout << "No settings are loaded without your administrator's: " << layers.systemFile
                  << ' ' << fault(layers.systemFile, layers) << ".\n\n";
    if (manager.hasUserConfigFileErrors())
        std::cout << "Your settings could not be loaded: " << layers.userFile << ' '
                  << fault(layers.userFile, layers) << ".\n\n";
}

template <typename T>
void change(const Registered& setting, const std::string& name, const T& value) {
    dynamic_cast<ConfigurationValue<T>&>(*setting.object->getConfigurationValue(name))
        .setValue(value);
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
    const Layers layers{argv[1], argv[2], {"2.0", "2.1"}};

    auto& manager = ConfigurationManager::getInstance();

    const auto settings = start(layers);
    reportFiles(layers);
    std::cout << "== Settings at start\n\n" << settingsTable(settings, layers);
    printFile("User file before", layers.userFile);

    change<double>(settings[0], "Zoom", 2.5);
    change<std::vector<std::string>>(settings[1], "RecentFiles",
                                     {"gear box.dwg", "Gehäuse.dwg", "R&D <new>.dwg"});
    change<unsigned int>(settings[3], "Copies", 3);

    if (!manager.saveConfiguration("2.1")) {
        // The files are as they were. Once they are repaired, a new start finds everything.
        std::cout << '\n' << manager.getSaveReport().text << '\n';
        return 0;
    }
    printFile("User file after", layers.userFile);

    const std::string saved = settingsTable(settings, layers);
    const std::string reloaded = settingsTable(start(layers), layers);
    std::cout << "== Settings after a new start\n\n" << reloaded;
    std::cout << (reloaded == saved ? "\nEverything is there.\n" : "\nSomething was lost!\n");
    return reloaded == saved ? 0 : 1;
}
