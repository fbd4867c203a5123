// Prints every setting of an application whose settings administrators look after.

#include "WorkshopSettings.h"

#include <iostream>
#include <memory>

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::cerr << "usage: workshop SYSTEM_FILE USER_FILE\n";
        return 2;
    }
    auto& manager = Orvant::ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0", "2.0"});
    manager.setSystemAndUserConfigurationFile(argv[1], argv[2]);
    manager.addConfigurationObjects({{std::make_shared<Workshop::View3D>(), "View3D"},
                                     {std::make_shared<Workshop::Network>(), "Network"}});
    const Orvant::KeyedSettings<Workshop::Machine> machines;

    for (const Orvant::ConfigurationOrigin& origin : manager.explain())
        std::cout << origin.path << " = " << origin.value << (origin.locked ? ", locked" : "")
                  << '\n';
}
