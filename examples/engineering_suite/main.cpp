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
#include <vector>

namespace {

using namespace Suite;
using Orvant::ConfigurationManager;
using Orvant::ConfigurationValue;
using Orvant::DisableFeaturesConfiguration;

/// Declares and registers everything; the manager fills each object as it is registered.
std::vector<Registered> start(const Layers& layers) {
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    manager.setValidVersionList(layers.versions);
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

    const auto settings = start(layers);
    std::cout << "== Settings at start\n\n" << settingsTable(settings, layers);
    printFile("User file before", layers.userFile);

    change<double>(settings[0], "Zoom", 2.5);
    change<std::vector<std::string>>(settings[1], "RecentFiles",
                                     {"gear box.dwg", "Gehäuse.dwg", "R&D <new>.dwg"});
    change<unsigned int>(settings[3], "Copies", 3);
    if (!ConfigurationManager::getInstance().saveConfiguration("2.1")) {
        std::cerr << "The settings could not be saved\n";
        return 1;
    }
    printFile("User file after", layers.userFile);

    const std::string saved = settingsTable(settings, layers);
    const std::string reloaded = settingsTable(start(layers), layers);
    std::cout << "== Settings after a new start\n\n" << reloaded;
    std::cout << (reloaded == saved ? "\nEverything is there.\n" : "\nSomething was lost!\n");
    return reloaded == saved ? 0 : 1;
}
