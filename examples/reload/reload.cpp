// Two windows of one application: what the other saves is taken over, what is changed here stays.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

using namespace Orvant;

namespace {

//! [observe]
class View : public ConfigurationObject {
public:
    View() : ConfigurationObject("View", "The 3D view", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<double>("Zoom", "Zoom factor at start", 1.0,
                                                             Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<std::string>(
            "Background", "Colour of the background", "white", Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new View; }

    ConfigurationValue<double>& zoom() const {
        return dynamic_cast<ConfigurationValue<double>&>(*getConfigurationValue("Zoom"));
    }
    const std::string& background() const {
        return dynamic_cast<ConfigurationValue<std::string>&>(*getConfigurationValue("Background"))
            .getValue();
    }

    /// Sets what is called when the settings have changed. Only the registered object has it, not
    /// those that the library makes to compare with.
    void setObserver(std::function<void()> observer) { m_observer = std::move(observer); }
    void emitSignalsAfterConfigLoading() override {
        if (m_observer)
            m_observer();
        ConfigurationObject::emitSignalsAfterConfigLoading();
    }

private:
    std::function<void()> m_observer;
};
//! [observe]

//! [watch]
/// Called by the application's file watcher, in the thread that uses the manager.
void filesHaveChanged() {
    auto& manager = ConfigurationManager::getInstance();
    if (manager.haveFilesChanged() && !manager.reloadConfiguration())
        std::cout << "The files are of no use at the moment: everything stays as it is.\n";
}
//! [watch]

/// What the other window does.
void saveElsewhere() {
    std::ofstream("user.xml") << "<Configuration version=\"1.0\">\n"
                                 "  <View>\n"
                                 "    <Zoom>2</Zoom>\n"
                                 "    <!--easier on the eyes-->\n"
                                 "    <Background>black</Background>\n"
                                 "  </View>\n"
                                 "</Configuration>\n";
}

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto view = std::make_shared<View>();
    manager.addConfigurationObjects({{view, "View"}});
    const auto print = [&] {
        std::cout << "Zoom " << view->zoom().getValue() << ", background " << view->background()
                  << '\n';
    };
    print();
    view->setObserver(print);

    view->zoom().setValue(3.0); // by the user, not saved yet
    saveElsewhere();
    filesHaveChanged();
    filesHaveChanged(); // nothing is new

    if (!manager.saveConfiguration("1.0"))
        std::cerr << manager.getSaveReport().text << '\n';
}
