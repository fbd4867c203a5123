// The administrator's system file under the user's file: whose value counts, and what is locked.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>

using namespace Orvant;

namespace {

class Editor : public ConfigurationObject {
public:
    Editor() : ConfigurationObject("Editor", "The drawing editor", LoadAndSave, AllProducts) {
        add("UndoSteps", "Steps that can be taken back", 50);
        add("AutosaveSeconds", "Seconds between saves", 600);
        add("GridSpacing", "Grid spacing in mm", 10);
        add("MaxDrawings", "Drawings open at a time", 8);
    }
    ConfigurationObject* createConfigurationObject() const override { return new Editor; }

    ConfigurationValue<int>& value(const std::string& name) const {
        return dynamic_cast<ConfigurationValue<int>&>(*getConfigurationValue(name));
    }

private:
    void add(const std::string& name, const std::string& description, int defaultValue) {
        addConfigurationValue(new ConfigurationValue<int>(name, description, defaultValue, Visible,
                                                          LoadAndSave, AllProducts));
    }
};

} // namespace

int main() {
    //! [load]
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0", "1.1"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");

    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    //! [load]

    for (const std::string name : {"UndoSteps", "AutosaveSeconds", "GridSpacing", "MaxDrawings"})
        std::cout << name << " = " << editor->value(name).getValue()
                  << (editor->value(name).isEditable() ? "" : ", locked") << '\n';

    //! [save]
    editor->value("UndoSteps").setValue(200);
    if (!manager.saveConfiguration("1.1"))
        std::cerr << manager.getSaveReport().text << '\n';
    //! [save]
}
