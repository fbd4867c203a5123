// Features that the administrator has turned off.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <iostream>

using namespace Orvant;

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    //! [ask]
    const auto* features = DisableFeaturesConfiguration::getRegisteredInstance();
    if (features->getPlannerFixturesDisable())
        std::cout << "The planner hides its fixtures.\n";
    if (!features->getPlannerUnitPriceDisable())
        std::cout << "The planner shows unit prices.\n";
    //! [ask]

    std::cout << "All switches:\n";
    for (auto value = features->beginValueIterator(); value != features->endValueIterator();
         ++value)
        std::cout << "  " << (*value)->getName() << '\n';

    // The switches are for the administrator: no save writes them.
    if (!manager.saveConfiguration("1.0")) {
        std::cerr << manager.getSaveReport().text << '\n';
        return 1;
    }
}
