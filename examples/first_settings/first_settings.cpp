// The smallest application with settings: it counts how often it was started.

#include <ConfigurationFramework/Settings.h>

#include <iostream>
#include <memory>
#include <string>

//! [declare]
struct Welcome : Orvant::Settings<Welcome> {
    Welcome() : Settings("Welcome", "What is shown at start") {}

    Orvant::Setting<std::string> greeting{this, "Greeting", "First words", "Hello"};
    Orvant::Setting<int> starts{this, "Starts", "Number of starts so far", 0, Orvant::hidden};
};
//! [declare]

//! [use]
int main() {
    auto& manager = Orvant::ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(Orvant::ConfigurationManager::Merge);
    manager.setConfigurationFile("settings.xml");

    const auto welcome = std::make_shared<Welcome>();
    manager.addConfigurationObjects({{welcome, "Welcome"}}); // loads it, too

    welcome->starts = welcome->starts + 1;
    std::cout << welcome->greeting.get() << ", this is start number " << welcome->starts << '\n';

    if (!manager.saveConfiguration("1.0")) {
        std::cerr << manager.getSaveReport().text << '\n';
        return 1;
    }
}
//! [use]
