// Writes what an application has for settings, and works on its files without its classes.

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/Settings.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <string>

using Orvant::ConfigurationCatalogue;
using Orvant::ConfigurationManager;
using Orvant::ConfigurationOrigin;

namespace {

struct View : Orvant::Settings<View> {
    View() : Settings("View", "The view") {}
    Orvant::Setting<double> zoom{
        this, "Zoom", "Zoom factor at start", 1.0, Orvant::Range{0.1, 8.0}, Orvant::Label{"Zoom"}};
};

struct Plotter : Orvant::Settings<Plotter> {
    Plotter() : Settings("Plotter", "A plotter") {}
    Orvant::Setting<std::string> paper{this, "Paper", "Size of the sheets", "A4",
                                       Orvant::OneOf{"A0", "A3", "A4"}};
};

/// What the application does when it is built.
void write() {
    //! [write]
    ConfigurationCatalogue catalogue("planner", {"1.0", "2.0"}, "2.0");
    catalogue.add(View(), "View");
    catalogue.add(Plotter(), "Plotter", true); // one for each key in the files
    catalogue.addFormerPath("Display", "View");
    std::ofstream file("planner.xml");
    catalogue.write(file);
    //! [write]
}

/// What a tool does that knows nothing of the classes.
void explain() {
    //! [read]
    const auto catalogue = ConfigurationCatalogue::read("planner.xml");
    auto& manager = ConfigurationManager::getInstance();
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    catalogue.registerObjects(manager);
    for (const ConfigurationOrigin& origin : manager.explain())
        std::cout << origin.path << " = " << origin.value << (origin.locked ? ", locked" : "")
                  << '\n';
    //! [read]
}

} // namespace

int main() {
    try {
        write();
        explain();
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}
