// What a settings dialogue shows, whatever toolkit draws it: a row for each visible value.

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace Orvant;

namespace {

class Network : public ConfigurationObject {
public:
    Network() : ConfigurationObject("Network", "Servers", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<std::string>(
            "Server", "Licence server", "localhost", Visible, LoadAndSave, AllProducts));
    }
    ConfigurationObject* createConfigurationObject() const override { return new Network; }
};

class Editor : public ConfigurationObject {
public:
    Editor() : ConfigurationObject("Editor", "Editor", LoadAndSave, AllProducts) {
        addConfigurationValue(new ConfigurationValue<bool>("ShowGrid", "Draw the grid", true,
                                                           Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<bool>("SnapToGrid", "Snap to the grid", false,
                                                           Visible, LoadAndSave, AllProducts));
        addConfigurationValue(new ConfigurationValue<int>("LastTab", "Tab shown last", 0, Hidden,
                                                          LoadAndSave, AllProducts));
        addConfigurationObject(new Network);
    }
    ConfigurationObject* createConfigurationObject() const override { return new Editor; }
};

//! [model]
struct Row {
    std::string group;
    ConfigurationValueBase* value; ///< getDescription() is its label, getValueType() its widget
    bool editable;
};

/// Adds the rows of an object and its children. What stands in a locked object is locked.
void addRows(const ConfigurationObject& object, bool parentEditable, std::vector<Row>& rows) {
    const bool editable = parentEditable && object.isEditable();
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if ((*value)->isGuiVisible() && (*value)->belongsToCurrentProduct())
            rows.push_back({object.getDescription(), *value, editable && (*value)->isEditable()});
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        addRows(**child, editable, rows);
}
//! [model]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    std::vector<Row> rows;
    addRows(*editor, true, rows);
    for (const Row& row : rows)
        std::cout << row.group << " > " << row.value->getDescription()
                  << (row.editable ? "" : " (locked)") << '\n';

    //! [edit]
    for (const Row& row : rows)
        if (auto* box = dynamic_cast<ConfigurationValue<bool>*>(row.value); box && row.editable)
            box->setValue(!box->getValue()); // as a click on its check box does
    if (!manager.saveConfiguration("1.0"))   // the button OK
        std::cerr << manager.getSaveReport().text << '\n';
    //! [edit]
}
