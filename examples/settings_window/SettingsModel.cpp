#include "SettingsModel.h"

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/SettingVisitor.h>
#include <ConfigurationFramework/SettingsBase.h>

#include <algorithm>
#include <exception>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace Ui {

using namespace Orvant;

namespace {

/// Calls back with the value as what it is.
template <typename Use>
auto withType(ConfigurationValueBase& value, Use use) {
    switch (value.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        return use(dynamic_cast<ConfigurationValue<bool>&>(value));
    case ConfigurationValueBase::IntValue:
        return use(dynamic_cast<ConfigurationValue<int>&>(value));
    case ConfigurationValueBase::UnsignedIntValue:
        return use(dynamic_cast<ConfigurationValue<unsigned int>&>(value));
    case ConfigurationValueBase::DoubleValue:
        return use(dynamic_cast<ConfigurationValue<double>&>(value));
    case ConfigurationValueBase::FloatValue:
        return use(dynamic_cast<ConfigurationValue<float>&>(value));
    case ConfigurationValueBase::StringValue:
        return use(dynamic_cast<ConfigurationValue<std::string>&>(value));
    case ConfigurationValueBase::StringVectorValue:
        return use(dynamic_cast<ConfigurationValue<std::vector<std::string>>&>(value));
    }
    throw std::logic_error(value.getName() + " has a type that no dialogue knows");
}

/// The entered value as the type of the value that it is for.
template <typename T>
const T& entered(const std::optional<SettingValue>& value, const ConfigurationValue<T>& /*type*/) {
    return std::get<T>(*value);
}

std::string pathPart(const std::string& name, const std::optional<std::string>& key) {
    return key ? name + '[' + *key + ']' : name;
}

std::string titleOf(const ConfigurationObject& object, const std::string& name,
                    const std::optional<std::string>& key) {
    const std::string& title = object.getDescription().empty() ? name : object.getDescription();
    return key ? title + ": " + *key : title;
}

/// The rows that there were: values may be gone, and others may be at their addresses.
using FormerRows =
    std::map<std::pair<std::string, const ConfigurationValueBase*>, std::shared_ptr<SettingRow>>;
/// By path, which several may share; those are in the order of the values.
using Origins = std::multimap<std::string, ConfigurationOrigin::Layer>;

/// Makes the group of a registered object.
class GroupBuilder : public SettingVisitor {
public:
    GroupBuilder(const FormerRows& former, Origins& origins)
        : m_former(former), m_origins(origins) {}

    SettingsGroup build(const ConfigurationRegistration& registration) {
        SettingsGroup root{.path = pathPart(registration.name, registration.key),
                           .title =
                               titleOf(*registration.object, registration.name, registration.key)};
        open(*registration.object, root);
        visitSettings(*registration.object, *this);
        m_open.pop_back();
        return root;
    }

    void visitValue(ConfigurationValueBase& value) override {
        const Open& parent = m_open.back();
        const std::string path = parent.group.path + '/' + value.getName();
        const auto layer = takeLayer(path);
        if (!value.isGuiVisible() || !value.belongsToCurrentProduct())
            return;
        const auto former = m_former.find({path, &value});
        auto row = former != m_former.end()
                       ? former->second
                       : std::make_shared<SettingRow>(path, parent.object, value);
        row->update(parent.isLocked || !value.isEditable(), layer);
        parent.group.rows.push_back(std::move(row));
    }

    bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key) override {
        if (!child.belongsToCurrentProduct())
            return false;
        SettingsGroup& parent = m_open.back().group;
        parent.children.push_back({.path = parent.path + '/' + pathPart(child.getName(), key),
                                   .title = titleOf(child, child.getName(), key)});
        open(child, parent.children.back());
        return true;
    }
    void leaveObject(ConfigurationObject& /*child*/) override {
        m_open.pop_back();
        auto& siblings = m_open.back().group.children;
        if (siblings.back().rows.empty() && siblings.back().children.empty())
            siblings.pop_back();
    }

    bool enterInline(ConfigurationObject& child) override {
        if (!child.belongsToCurrentProduct())
            return false;
        m_open.push_back(
            {m_open.back().group, child, m_open.back().isLocked || !child.isEditable()});
        return true;
    }
    void leaveInline(ConfigurationObject& /*child*/) override { m_open.pop_back(); }

private:
    struct Open {
        SettingsGroup& group;
        ConfigurationObject& object;
        bool isLocked;
    };

    void open(ConfigurationObject& object, SettingsGroup& group) {
        group.isLocked = !object.isEditable() || (!m_open.empty() && m_open.back().isLocked);
        m_open.push_back({group, object, group.isLocked});
    }

    ConfigurationOrigin::Layer takeLayer(const std::string& path) {
        const auto found = m_origins.find(path);
        if (found == m_origins.end())
            return ConfigurationOrigin::Default;
        return m_origins.extract(found).mapped();
    }

    const FormerRows& m_former;
    Origins& m_origins;
    std::vector<Open> m_open;
};

void appendRows(const SettingsGroup& group, SettingRows& rows) {
    rows.insert(rows.end(), group.rows.begin(), group.rows.end());
    for (const SettingsGroup& child : group.children)
        appendRows(child, rows);
}

/// The values that the system file has, by path.
std::map<std::string, SettingValue> systemValues(const ConfigurationManager& manager) {
    ConfigurationManager copy(manager);
    for (const auto& [object, name, key] : manager.getRegistrations()) {
        const std::shared_ptr<ConfigurationObject> clone(object->clone());
        if (key) {
            copy.removeConfigurationObject(name, *key);
            copy.addConfigurationObject(clone, name, *key);
            copy.resetConfigurationObject(name, *key, false);
        } else {
            copy.removeConfigurationObject(name);
            copy.addConfigurationObject(clone, name);
            copy.resetConfigurationObject(name, false);
        }
    }
    std::set<std::string> inSystemFile;
    for (const ConfigurationOrigin& origin : manager.explain())
        if (origin.systemValue)
            inSystemFile.insert(origin.path);
    std::map<std::string, SettingValue> values;
    const SettingsModel model(copy);
    for (const auto& row : model.rows())
        if (inSystemFile.contains(row->path()))
            values.emplace(row->path(), row->value());
    return values;
}

} // namespace

SettingRow::SettingRow(std::string path, ConfigurationObject& owner, ConfigurationValueBase& value)
    : m_path(std::move(path)),
      m_owner(&owner),
      m_value(&value),
      m_constraint(value.getConstraint()) {
    if (m_constraint.label.empty())
        m_constraint.label = value.getName();
}

const std::string& SettingRow::name() const {
    return m_value->getName();
}

const std::string& SettingRow::description() const {
    return m_value->getDescription();
}

SettingValue SettingRow::value() const {
    return withType(*m_value, [](const auto& typed) -> SettingValue { return typed.getValue(); });
}

SettingValue SettingRow::defaultValue() const {
    return withType(*m_value,
                    [](const auto& typed) -> SettingValue { return typed.getDefaultValue(); });
}

void SettingRow::enter(SettingValue entered) {
    if (m_isLocked || entered == value())
        m_entered.reset();
    else
        m_entered = std::move(entered);
}

std::string SettingRow::refusal() const {
    if (!m_entered)
        return "";
    try {
        const bool isAllowed = withType(*m_value, [&](const auto& typed) {
            return typed.isAllowed(entered(m_entered, typed));
        });
        if (isAllowed)
            return "";
    } catch (const std::exception& error) { // of the rule's condition
        return error.what();
    }
    const std::string rule = m_constraint.describe();
    return rule.empty() ? "It must be something else." : "It must be " + rule + '.';
}

bool SettingRow::apply() {
    if (!m_entered || !refusal().empty())
        return false;
    withType(*m_value, [&](auto& typed) { typed.setValue(entered(m_entered, typed)); });
    m_entered.reset();
    return true;
}

void SettingRow::update(bool isLocked, ConfigurationOrigin::Layer layer) {
    m_isLocked = isLocked;
    m_layer = layer;
    if (m_entered)
        enter(*m_entered); // which may be what applies by now
}

SettingsModel::SettingsModel(ConfigurationManager& manager) : m_manager(manager) {
    update();
}

void SettingsModel::update() {
    FormerRows former;
    for (const auto& row : m_rows)
        former.emplace(std::pair(row->path(), row->address()), row);
    Origins origins;
    for (const ConfigurationOrigin& origin : m_manager.explain())
        origins.emplace(origin.path, origin.layer);

    GroupBuilder builder(former, origins);
    m_groups.clear();
    m_rows.clear();
    for (const ConfigurationRegistration& registration : m_manager.getRegistrations()) {
        if (!registration.object->belongsToCurrentProduct())
            continue;
        SettingsGroup group = builder.build(registration);
        if (!group.rows.empty() || !group.children.empty())
            m_groups.push_back(std::move(group));
    }
    for (const SettingsGroup& group : m_groups)
        appendRows(group, m_rows);
}

void SettingsModel::reset(const SettingRows& rows) const {
    const auto values = systemValues(m_manager);
    for (const auto& row : rows) {
        const auto found = values.find(row->path());
        row->enter(found == values.end() ? row->defaultValue() : found->second);
    }
}

SettingRows SettingsModel::apply() {
    SettingRows refused;
    std::vector<const SettingsBase*> changed;
    for (const auto& row : m_rows) {
        if (row->apply()) {
            const auto* const owner = dynamic_cast<const SettingsBase*>(&row->owner());
            if (owner != nullptr && std::ranges::find(changed, owner) == changed.end())
                changed.push_back(owner);
        } else if (row->isEdited()) {
            refused.push_back(row);
        }
    }
    std::exception_ptr first;
    for (const SettingsBase* const owner : changed) {
        try {
            owner->tellChanges();
        } catch (...) {
            first = first == nullptr ? std::current_exception() : first;
        }
    }
    update(); // origins, and what those who were told did
    if (first != nullptr)
        std::rethrow_exception(first);
    return refused;
}

} // namespace Ui
