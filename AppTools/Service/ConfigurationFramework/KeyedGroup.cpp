#include <ConfigurationFramework/KeyedGroup.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/LoadedLayer.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Orvant {

KeyedGroup::KeyedGroup(std::unique_ptr<ConfigurationObject> prototype)
    : ConfigurationObject("", "", LoadAndSave, AllProducts), m_prototype(std::move(prototype)) {
    if (m_prototype->getName().empty())
        throw std::logic_error("children with keys need a class with a name");
}

KeyedGroup::~KeyedGroup() = default;

ConfigurationObject& KeyedGroup::add(const std::string& key) {
    if (ConfigurationObject* const child = find(key))
        return *child;
    if (key.empty() || throughDocument(key) != key)
        throw std::invalid_argument("\"" + key + "\" cannot be the key of \"" +
                                    m_prototype->getName() + '"');
    if (isInLockedObject())
        throw std::logic_error("\"" + m_prototype->getName() + '[' + key +
                               "]\" cannot be added to an object that is locked");
    m_removed.erase(key);
    return insert(key, std::unique_ptr<ConfigurationObject>(m_prototype->clone()));
}

void KeyedGroup::remove(const std::string& key) {
    if (find(key) == nullptr || isInLockedObject() || !mayGo(key))
        return;
    if (m_keysOfSystem.contains(key))
        m_removed.insert(key);
    take(key);
}

ConfigurationObject* KeyedGroup::find(const std::string& key) const {
    const std::size_t position = positionOf(key);
    return position < m_keys.size() && m_keys[position] == key ? &child(position) : nullptr;
}

ConfigurationObject& KeyedGroup::child(std::size_t position) const {
    return *beginObjectIterator()[static_cast<std::ptrdiff_t>(position)];
}

void KeyedGroup::loadContent(ConfigReader& reader) {
    if (!isLoadable() || !isEditable())
        return;
    if (std::exchange(m_isReset, false))
        parkAllThatMayGo();
    bool editable = true;
    reader.getEditable(editable);
    setEditable(editable);

    const std::string& kind = m_prototype->getName();
    std::set<std::string> found;
    reader.getKeys(kind, found);
    const bool hasDefaultEntry = found.erase("") != 0;
    for (const std::string& key : found)
        findOrMake(key);
    // A child that this source does not have gets what its default entry says.
    for (std::size_t i = 0; i < m_keys.size(); ++i)
        reader.getClassContents(kind, m_keys[i], child(i));
    if (hasDefaultEntry) // last: a new child above starts as the sources before say
        reader.getClassContents(kind, "", *m_prototype);

    const bool isSystem = LoadedLayer::isSystem();
    if (isSystem)
        m_keysOfSystem = found;
    if (isSystem || !m_isSystemLoaded) {
        std::erase_if(m_keysWithLocks, [&](const std::string& key) {
            const ConfigurationObject* const child = find(key);
            return child == nullptr || !child->hasNonEditableEntries();
        });
        m_keysWithLocks.insert(found.begin(), found.end());
    }
    m_isSystemLoaded = isSystem;

    m_removed.clear();
    reader.getKeys(removedTag(), m_removed);
    std::erase_if(m_removed, [&](const std::string& key) { return found.contains(key); });
    for (const std::string& key : m_removed)
        if (find(key) != nullptr && mayGo(key))
            park(key);
}

void KeyedGroup::saveContent(ConfigWriter& writer) const {
    ConfigurationObject::saveContent(writer);
    saveRemoved(writer);
}

void KeyedGroup::saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const {
    ConfigurationObject::saveContent(writer, reader, onlyDifferent);
    if (onlyDifferent)
        saveRemoved(writer);
}

ConfigurationObject* KeyedGroup::createConfigurationObject() const {
    return new KeyedGroup(makeFresh(*m_prototype));
}

ConfigurationObject* KeyedGroup::clone() const {
    std::unique_ptr<ConfigurationObject> copy(ConfigurationObject::clone());
    auto& group = static_cast<KeyedGroup&>(*copy);
    group.m_prototype.reset(m_prototype->clone());
    group.m_keys = m_keys;
    group.m_keysOfSystem = m_keysOfSystem;
    group.m_keysWithLocks = m_keysWithLocks;
    group.m_removed = m_removed;
    return copy.release();
}

void KeyedGroup::setDefaultValues() {
    ConfigurationObject::setDefaultValues();
    m_isReset = isEditable();
}

void KeyedGroup::emitSignalsAfterConfigLoading() {
    if (std::exchange(m_isReset, false))
        parkAllThatMayGo(); // the load found nothing for the object
    m_parked.clear();
    m_isSystemLoaded = false;
    ConfigurationObject::emitSignalsAfterConfigLoading();
}

const ConfigurationObject* KeyedGroup::getCounterpart(const ConfigurationObject& /*child*/,
                                                      std::size_t position,
                                                      const ConfigurationObject& other) const {
    const auto* const group = dynamic_cast<const KeyedGroup*>(&other);
    if (group == nullptr)
        return nullptr;
    const ConfigurationObject* const namesake = group->find(m_keys[position]);
    return namesake != nullptr ? namesake : group->m_prototype.get();
}

std::optional<std::string> KeyedGroup::getChildKey(std::size_t position) const {
    return m_keys[position];
}

std::string KeyedGroup::removedTag() const {
    return "Removed" + m_prototype->getName();
}

bool KeyedGroup::isInLockedObject() const {
    const ConfigurationObject* object = this;
    while (object != nullptr && object->isEditable())
        object = object->getParent();
    return object != nullptr;
}

/// Whether a child is not locked. What a new one inherits from the default entry does not keep it.
bool KeyedGroup::mayGo(const std::string& key) const {
    return !m_keysWithLocks.contains(key) || !find(key)->hasNonEditableEntries();
}

/// Where a key is, or has to be inserted.
std::size_t KeyedGroup::positionOf(const std::string& key) const {
    return static_cast<std::size_t>(std::ranges::lower_bound(m_keys, key) - m_keys.begin());
}

std::unique_ptr<ConfigurationObject> KeyedGroup::take(const std::string& key) {
    const std::size_t position = positionOf(key);
    m_keys.erase(m_keys.begin() + static_cast<std::ptrdiff_t>(position));
    return takeConfigurationObject(position);
}

void KeyedGroup::park(const std::string& key) {
    m_parked.insert_or_assign(key, take(key));
}

void KeyedGroup::parkAllThatMayGo() {
    const std::vector<std::string> keys = m_keys;
    for (const std::string& key : keys)
        if (mayGo(key))
            park(key);
}

ConfigurationObject& KeyedGroup::insert(const std::string& key,
                                        std::unique_ptr<ConfigurationObject> child) {
    const std::size_t position = positionOf(key);
    m_keys.insert(m_keys.begin() + static_cast<std::ptrdiff_t>(position), key);
    insertConfigurationObject(position, child.release());
    return this->child(position);
}

ConfigurationObject& KeyedGroup::findOrMake(const std::string& key) {
    if (ConfigurationObject* const child = find(key))
        return *child;
    const auto parked = m_parked.find(key);
    if (parked == m_parked.end())
        return insert(key, std::unique_ptr<ConfigurationObject>(m_prototype->clone()));
    ConfigurationObject& child = insert(key, std::move(parked->second));
    m_parked.erase(parked);
    child.restoreLocks(*m_prototype);
    return child;
}

void KeyedGroup::saveRemoved(ConfigWriter& writer) const {
    for (const std::string& key : m_removed)
        writer.createKeyedNode(removedTag(), key, "");
}

} // namespace Orvant
