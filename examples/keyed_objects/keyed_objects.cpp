// Several objects of one kind: the printers that the files name, and one that the user adds.

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

using namespace Orvant;

namespace {

class Printer : public ConfigurationObject {
public:
    Printer() : ConfigurationObject("Printer", "A printer", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<std::string>(
            "Paper", "Paper size", "A4", Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<unsigned int>(
            "Copies", "Copies of each sheet", 1, Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Printer; }

    ConfigurationValue<std::string>& paper() const {
        return dynamic_cast<ConfigurationValue<std::string>&>(*getConfigurationValue("Paper"));
    }
    ConfigurationValue<unsigned int>& copies() const {
        return dynamic_cast<ConfigurationValue<unsigned int>&>(*getConfigurationValue("Copies"));
    }
};

//! [keys]
/// The keys of the printers in both files; "" for a default entry, which is no printer itself.
std::set<std::string> findPrinters(const std::list<std::string>& versions) {
    AdvancedConfigReader reader;
    reader.addFileSource("system.xml", {}, AdvancedConfigReader::System, versions);
    reader.addFileSource("user.xml", {}, AdvancedConfigReader::User, versions);
    std::set<std::string> keys;
    reader.getKeys("Printer", keys);
    keys.erase("");
    return keys;
}
//! [keys]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    //! [register]
    std::set<std::string> keys = findPrinters(manager.getValidVersions());
    keys.insert("Basement"); // a new one: the default entry tells what it starts with

    std::map<std::string, std::shared_ptr<Printer>> printers;
    std::vector<ConfigurationRegistration> registrations;
    for (const std::string& key : keys) {
        printers[key] = std::make_shared<Printer>();
        registrations.push_back({printers[key], "Printer", key});
    }
    manager.addConfigurationObjects(registrations);
    //! [register]

    for (const auto& [key, printer] : printers)
        std::cout << key << ": " << printer->paper().getValue() << ", copies "
                  << printer->copies().getValue() << '\n';

    printers["Basement"]->copies().setValue(3);
    //! [remove]
    manager.removeConfigurationObject("Printer", "At home"); // the next save drops its element
    //! [remove]
    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
