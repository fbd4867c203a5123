// The smallest application with settings: it counts how often it was started.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

//! [declare]
using Orvant::ConfigurationManager;
using Orvant::ConfigurationObject;
using Orvant::ConfigurationValue;

class Welcome : public ConfigurationObject {
public:
    Welcome() : ConfigurationObject("Welcome", "What is shown at start", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<std::string>(
            "Greeting", "First words", "Hello", Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<int>("Starts", "Number of starts so far", 0,
                                                          Hidden, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Welcome; }

    ConfigurationValue<std::string>& greeting() const {
        return dynamic_cast<ConfigurationValue<std::string>&>(*getConfigurationValue("Greeting"));
    }
    ConfigurationValue<int>& starts() const {
        return dynamic_cast<ConfigurationValue<int>&>(*getConfigurationValue("Starts"));
    }
};
//! [declare]

//! [use]
int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setConfigurationFile("settings.xml");

    const auto welcome = std::make_shared<Welcome>();
    manager.addConfigurationObjects({{welcome, "Welcome"}}); // loads it, too

    welcome->starts().setValue(welcome->starts().getValue() + 1);
    std::cout << welcome->greeting().getValue() << ", this is start number "
              << welcome->starts().getValue() << '\n';

    if (!manager.saveConfiguration("1.0")) {
        std::cerr << manager.getSaveReport().text << '\n';
        return 1;
    }
}
//! [use]
