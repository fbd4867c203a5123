// What an application tells its user after start-up: values that it corrected, files that it cannot
// read.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

//! [check]
class View : public ConfigurationObject {
public:
    View() : ConfigurationObject("View", "The 3D view", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<double>("Zoom", "Zoom factor at start", 1.0,
                                                             Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new View; }

    ConfigurationValue<double>& zoom() const {
        return dynamic_cast<ConfigurationValue<double>&>(*getConfigurationValue("Zoom"));
    }

    /// Called once when both files are read.
    void emitSignalsAfterConfigLoading() override {
        if (zoom().getValue() < 0.1 || zoom().getValue() > 100.0) {
            addUserWarningMessage("The zoom factor must be from 0.1 to 100; it is now 1.");
            zoom().setValue(1.0);
        }
        ConfigurationObject::emitSignalsAfterConfigLoading();
    }
};
//! [check]

void start(const std::string& userFile) {
    std::cout << "Starting with " << userFile << '\n';
    //! [tell]
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", userFile);
    const auto view = std::make_shared<View>();
    manager.addConfigurationObjects({{view, "View"}});

    if (manager.hasSystemConfigFileErrors())
        std::cout << "The administrator's settings cannot be read.\n";
    if (manager.hasUserConfigFileErrors())
        std::cout << "Your settings cannot be read.\n";
    if (const std::string warnings = view->getUserWarningMessages(); !warnings.empty())
        std::cout << warnings << '\n'; // a line each
    //! [tell]

    std::cout << "Zoom factor: " << view->zoom().getValue() << '\n';
    std::cout << (manager.saveConfiguration("1.0") ? "Saved" : manager.getSaveReport().text)
              << '\n';
}

} // namespace

int main() {
    start("user.xml");
    start("damaged.xml");
}
