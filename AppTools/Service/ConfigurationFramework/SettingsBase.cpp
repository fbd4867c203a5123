#include <ConfigurationFramework/SettingsBase.h>

#include <ConfigurationFramework/ChangeHold.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/model/Locks.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <ranges>
#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

std::string quoted(const std::string& name) {
    return '"' + name + '"';
}

/// Calls back with each name that an object uses in an element, with those of nameless children.
template <typename Visit>
void forEachName(const ConfigurationObject& object, Visit visit) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        visit((*value)->getName());
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        if ((*child)->getName().empty())
            forEachName(**child, visit);
        else
            visit((*child)->getName());
    }
    if (const auto* const group = dynamic_cast<const KeyedGroup*>(&object)) {
        visit(group->getChildPrototype()->getName());
        visit(group->removedTag());
    }
}

void checkName(const std::string& name, const std::string& objectName) {
    if (!isXmlName(name))
        throw std::logic_error("the setting " + quoted(name) + " of the object " +
                               quoted(objectName) + " cannot be the name of an XML element");
}

void checkIsNew(const std::string& name, const ConfigurationObject& object) {
    forEachName(object, [&](const std::string& taken) {
        if (taken == name)
            throw std::logic_error("the setting " + quoted(name) + " of the object " +
                                   quoted(object.getName()) + " is declared twice");
    });
}

} // namespace

SettingHandle::SettingHandle(SettingsBase& owner, std::unique_ptr<ConfigurationValueBase> value)
    : m_owner(&owner),
      m_position(owner.getConfigurationValuesSize()),
      m_value(value.get()),
      m_class(&typeid(*m_value)),
      m_next(owner.m_handles) {
    owner.declare(std::move(value));
    owner.m_handles = this;
}

SettingHandle::~SettingHandle() {
    SettingHandle** place = &m_owner->m_handles;
    while (*place != this)
        place = &(*place)->m_next;
    *place = m_next;
}

void SettingHandle::renew() {
    ConfigurationValueBase* const found =
        m_position < m_owner->getConfigurationValuesSize()
            ? m_owner->beginValueIterator()[static_cast<std::ptrdiff_t>(m_position)]
            : nullptr;
    if (found == nullptr || typeid(*found) != *m_class)
        throw std::logic_error("the settings of the object " + quoted(m_owner->getName()) +
                               " cannot be those of an object of another class");
    m_value = found;
}

SettingsBase::SettingsBase(const std::string& name, const std::string& description,
                           Persistence persistence, ProductType productType)
    : ConfigurationObject(name, description, persistence, productType) {
    if (!name.empty() && !isXmlName(name))
        throw std::logic_error("the object " + quoted(name) +
                               " cannot have the name of an XML element");
}

SettingsBase::~SettingsBase() {
    for (const auto& observer : m_observers)
        if (const auto active = observer.lock())
            active->end();
}

void SettingsBase::setDefaultValues() {
    tellAfter(*this, [this] { ConfigurationObject::setDefaultValues(); });
}

void SettingsBase::emitSignalsAfterConfigLoading() {
    tellAfter(*this, [this] { ConfigurationObject::emitSignalsAfterConfigLoading(); });
}

bool SettingsBase::canBeSavedToUserConfig(ConfigReader& reader) const {
    return m_isElementKept || ConfigurationObject::canBeSavedToUserConfig(reader);
}

bool SettingsBase::isLocked() const {
    return isInLockedObject(*this);
}

void SettingsBase::onItemsReplaced() {
    for (SettingHandle* handle = m_handles; handle != nullptr; handle = handle->m_next)
        handle->renew();
}

std::size_t SettingsBase::declare(std::unique_ptr<ConfigurationValueBase> value) {
    checkName(value->getName(), getName());
    checkIsNew(value->getName(), *this);
    addConfigurationValue(value.release());
    return getConfigurationValuesSize() - 1;
}

std::size_t SettingsBase::declare(std::unique_ptr<ConfigurationObject> child) {
    if (!child->getName().empty()) {
        checkName(child->getName(), getName());
        checkIsNew(child->getName(), *this);
    } else {
        forEachName(*child, [&](const std::string& name) {
            checkName(name, getName());
            checkIsNew(name, *this);
        });
    }
    addConfigurationObject(child.release());
    return getConfigurationObjectsSize() - 1;
}

void SettingsBase::observe(const std::shared_ptr<ChangeObserver>& observer) {
    std::erase_if(m_observers, [](const auto& former) { return former.expired(); });
    m_observers.push_back(observer);
}

void SettingsBase::tellChanges() const {
    ChangeObservers observers;
    collectObservers(observers);
    tellAll(observers);
}

void SettingsBase::collectObservers(ChangeObservers& observers) const {
    for (const auto& observer : m_observers)
        if (auto active = observer.lock())
            observers.push_back(std::move(active));
}

} // namespace Orvant
