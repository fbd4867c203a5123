// What a settings dialogue shows, whatever toolkit draws it: a row for each visible value.

#include <ConfigurationFramework/ConfigurationConstraint.h>
#include <ConfigurationFramework/Settings.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace Orvant;

//! [declare]
enum class Unit { Millimetre, Inch };
template <>
struct Orvant::EnumTexts<Unit> {
    static constexpr std::array texts = {EnumText{Unit::Millimetre, "mm", "Millimetres"},
                                         EnumText{Unit::Inch, "inch", "Inches"}};
};

struct Network : Settings<Network> {
    Network() : Settings("Network", "Servers") {}
    Setting<std::string> server{
        this, "Server", "Licence server", "localhost",
        Check{[](const std::string& name) { return !name.empty(); }, "the name of a computer"}};
};

struct Editor : Settings<Editor> {
    Editor() : Settings("Editor", "Editor") {}
    Setting<bool> showGrid{this, "ShowGrid", "Draw the grid", true};
    Setting<bool> snapToGrid{this, "SnapToGrid", "Snap to the grid", false};
    Setting<double> gridSpacing{this, "GridSpacing", "Grid spacing in mm", 10.0, Range{0.1, 1e3}};
    Setting<Unit> unit{this, "LengthUnit", "Unit of lengths", Unit::Millimetre, Label{"Unit"}};
    Setting<int> sheets{this, "Sheets", "Sheets of a drawing", 1, OneOf{1, 2, 4}};
    Setting<int> lastTab{this, "LastTab", "Tab shown last", 0, hidden};
    Child<Network> network{this};
};
//! [declare]

namespace {

//! [model]
struct Row {
    ConfigurationObject* object;
    ConfigurationValueBase* value;
    bool editable;
};

/// Collects the rows of an object and its children.
class Rows : public SettingVisitor {
public:
    explicit Rows(ConfigurationObject& object) : m_path{&object} { visitSettings(object, *this); }
    const std::vector<Row>& get() const { return m_rows; }

    void visitValue(ConfigurationValueBase& value) override {
        if (value.isGuiVisible() && value.belongsToCurrentProduct())
            m_rows.push_back({m_path.back(), &value, value.isEditable() && isPathEditable()});
    }
    bool enterObject(ConfigurationObject& child,
                     const std::optional<std::string>& /*key*/) override {
        m_path.push_back(&child);
        return true;
    }
    void leaveObject(ConfigurationObject& /*child*/) override { m_path.pop_back(); }

private:
    /// What stands in a locked object is locked.
    bool isPathEditable() const {
        return std::ranges::all_of(m_path, [](const auto* object) { return object->isEditable(); });
    }

    std::vector<ConfigurationObject*> m_path; ///< from the outermost object on
    std::vector<Row> m_rows;
};
//! [model]

//! [widget]
/// The widget for a value, by its type and the rule that it has.
std::string widgetFor(const ConfigurationValueBase& value) {
    const ConfigurationConstraint constraint = value.getConstraint();
    if (value.getValueType() == ConfigurationValueBase::BoolValue)
        return "check box";
    if (constraint.minimum && constraint.maximum)
        return "spin box from " + *constraint.minimum + " to " + *constraint.maximum;
    if (constraint.choices.empty())
        return "line edit";
    std::string box = "combo box of";
    for (const ConfigurationChoice& choice : constraint.choices)
        box += " \"" + choice.label + '"'; // the value's text in the file is choice.text
    return box;
}
//! [widget]

} // namespace

int main() {
    auto& manager = ConfigurationManager::getInstance();
    manager.setValidVersionList({"1.0"});
    manager.setSaveMode(ConfigurationManager::Merge);
    manager.setSystemAndUserConfigurationFile("system.xml", "user.xml");
    const auto editor = std::make_shared<Editor>();
    manager.addConfigurationObjects({{editor, "Editor"}});
    const Rows rows(*editor);
    for (const Row& row : rows.get())
        std::cout << row.object->getDescription() << " > " << row.value->getConstraint().label
                  << ": " << widgetFor(*row.value) << (row.editable ? "" : " (locked)") << '\n';

    const ChangeSubscription watch = editor->showGrid.onChange(
        [](bool shown) { std::cout << "The grid is " << (shown ? "drawn" : "gone") << '\n'; });
    //! [edit]
    for (const Row& row : rows.get()) {
        auto* const box = dynamic_cast<ConfigurationValue<bool>*>(row.value);
        if (box == nullptr || !row.editable)
            continue;
        box->setValue(!box->getValue()); // as a click on its check box does
        if (const auto* settings = dynamic_cast<const SettingsBase*>(row.object))
            settings->tellChanges();
    }
    if (!manager.saveConfiguration("1.0")) // the button OK
        std::cerr << manager.getSaveReport().text << '\n';
    //! [edit]
}
