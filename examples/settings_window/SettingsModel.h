#pragma once

#include <ConfigurationFramework/ConfigurationConstraint.h>
#include <ConfigurationFramework/ConfigurationOrigin.h>

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// What a settings dialogue shows and does, whatever toolkit draws it.

namespace Orvant {
class ConfigurationManager;
class ConfigurationObject;
class ConfigurationValueBase;
} // namespace Orvant

namespace Ui {

/// A value of any type.
using SettingValue =
    std::variant<bool, int, unsigned int, double, float, std::string, std::vector<std::string>>;

/// A value of a registered object, with what the user entered for it and has not applied.
class SettingRow {
public:
    /// @param path  as ConfigurationOrigin has it
    /// @param owner object of the value
    /// @param value the value, shown as long as the model finds it
    SettingRow(std::string path, Orvant::ConfigurationObject& owner,
               Orvant::ConfigurationValueBase& value);

    const std::string& path() const { return m_path; }
    const std::string& name() const;
    const std::string& description() const;
    /// @return label, range and choices
    const Orvant::ConfigurationConstraint& constraint() const { return m_constraint; }
    /// @return whether the value, its object or one that this is in is locked
    bool isLocked() const { return m_isLocked; }
    /// @return where the value comes from
    Orvant::ConfigurationOrigin::Layer layer() const { return m_layer; }
    Orvant::ConfigurationObject& owner() const { return *m_owner; }
    /// @return the value's address, which is all that may be used when the value may be gone
    const Orvant::ConfigurationValueBase* address() const { return m_value; }

    /// @return what applies
    SettingValue value() const;
    SettingValue defaultValue() const;
    /// @return what the user entered or, if that is nothing, what applies
    SettingValue shown() const { return m_entered ? *m_entered : value(); }
    bool isEdited() const { return m_entered.has_value(); }
    /// Takes what the user entered, unless the value is locked.
    void enter(SettingValue entered);
    /// @return why what was entered is not allowed, a sentence; empty when it is
    std::string refusal() const;
    /// Puts what was entered, if it is allowed, into the value. Nobody is told.
    /// @return whether the value was set
    bool apply();

    /// Takes over what changed in the files. What was entered stays unless it is locked by now.
    void update(bool isLocked, Orvant::ConfigurationOrigin::Layer layer);

private:
    std::string m_path;
    Orvant::ConfigurationObject* m_owner;
    Orvant::ConfigurationValueBase* m_value;
    Orvant::ConfigurationConstraint m_constraint;
    bool m_isLocked = false;
    Orvant::ConfigurationOrigin::Layer m_layer = Orvant::ConfigurationOrigin::Default;
    std::optional<SettingValue> m_entered;
};

using SettingRows = std::vector<std::shared_ptr<SettingRow>>;

/// A registered object or a child, with a row for each value that is shown.
struct SettingsGroup {
    std::string path;
    std::string title;
    bool isLocked = false;
    SettingRows rows = {};
    std::vector<SettingsGroup> children = {};
};

/// Everything that a dialogue shows of a manager's registered objects: values that are visible and
/// of the running product, and the objects that have some.
class SettingsModel {
public:
    /// @param manager must outlive this
    /// @throws what ConfigurationManager::explain() throws
    explicit SettingsModel(Orvant::ConfigurationManager& manager);

    /// Looks at the objects anew. Rows of values that are still there stay the same, with what was
    /// entered.
    /// @throws what ConfigurationManager::explain() throws
    void update();
    const std::vector<SettingsGroup>& groups() const { return m_groups; }
    /// @return the rows of all groups
    const SettingRows& rows() const { return m_rows; }

    /// Enters what the values would be without the user's file.
    void reset(const SettingRows& rows) const;
    /// Puts what was entered into the objects, except what is not allowed, and tells those who
    /// watch them.
    /// @return the rows that are not allowed
    /// @throws the first exception of a callback, when all objects have been told
    SettingRows apply();

private:
    Orvant::ConfigurationManager& m_manager;
    std::vector<SettingsGroup> m_groups;
    SettingRows m_rows;
};

} // namespace Ui
