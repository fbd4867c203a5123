// Several objects of one kind: the printers that the files name, and one that the user adds.

#include <ConfigurationFramework/Settings.h>

#include <iostream>
#include <string>

using namespace Orvant;

namespace {

//! [printer]
struct Printer : Settings<Printer> {
    Printer() : Settings("Printer", "A printer") {}
    Setting<std::string> paper{this, "Paper", "Paper size", "A4"};
    Setting<unsigned int> copies{this, "Copies", "Copies of each sheet", 1};
};
//! [printer]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    //! [register]
    KeyedSettings<Printer> printers(manager); // registers one for each key in the files
    printers.add("Basement");                 // a new one: starts as the default entry says

    for (const auto& [key, printer] : printers)
        std::cout << key << ": " << printer.paper.get() << ", copies " << printer.copies << '\n';
    //! [register]

    //! [remove]
    printers.find("Basement")->copies = 3;
    printers.remove("At home"); // the next save drops its element
    //! [remove]
    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
