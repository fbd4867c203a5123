#include <ConfigurationFramework/KeyedGroup.h>

#include <ConfigurationFramework/ChangeHold.h>
#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/LoadedLayer.h>
#include <ConfigurationFramework/ReaderBelow.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/model/Locks.h>
#include <ConfigurationFramework/model/ValueCopy.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

/// A key that no element has: asked for it, a reader finds the default entry.
std::string keyOfNone(const std::set<std::string>& keys) {
    std::string key = "-";
    for (const std::string& taken : keys)
        key.resize(std::max(key.size(), taken.size() + 1), '-');
    return key;
}

} // namespace

bool KeyedGroup::isKey(const std::string& text) {
    return !text.empty() && throughDocument(text) == text;
}

KeyedGroup::KeyedGroup(std::unique_ptr<ConfigurationObject> prototype)
    : ConfigurationObject("", "", LoadAndSave, AllProducts), m_prototype(std::move(prototype)) {
    if (m_prototype->getName().empty())
        throw std::logic_error("children with keys need a class with a name");
}

KeyedGroup::~KeyedGroup() = default;

ConfigurationObject& KeyedGroup::add(const std::string& key) {
    if (ConfigurationObject* const child = find(key))
        return *child;
    if (!isKey(key))
        throw std::invalid_argument("\"" + key + "\" cannot be the key of \"" +
                                    m_prototype->getName() + '"');
    if (isInLockedObject(*this))
        throw std::logic_error("\"" + m_prototype->getName() + '[' + key +
                               "]\" cannot be added to an object that is locked");
    m_removed.erase(key);
    ConfigurationObject& child =
        insert(key, std::unique_ptr<ConfigurationObject>(m_prototype->clone()));
    if (m_keysOfSystem.contains(key)) // its element there inherits no locks
        child.restoreLocks(*makeFresh(*m_prototype));
    return child;
}

void KeyedGroup::remove(const std::string& key) {
    if (find(key) == nullptr || isInLockedObject(*this) || !mayGo(key))
        return;
    if (m_keysOfSystem.contains(key))
        m_removed.insert(key);
    m_keysWithLocks.erase(key);
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
        startAnew();
    bool editable = true;
    reader.getEditable(editable);
    setEditable(editable);

    const std::string& kind = m_prototype->getName();
    const bool isSystem = LoadedLayer::isSystem();
    std::set<std::string> found;
    reader.getKeys(kind, found);
    const bool hasDefaultEntry = found.erase("") != 0;
    if (!isSystem)
        loadRemoved(reader, found);
    for (const std::string& key : found)
        findOrMake(key);
    // A child that this source does not have gets what its default entry says.
    for (std::size_t i = 0; i < m_keys.size(); ++i)
        reader.getClassContents(kind, m_keys[i], child(i));
    if (hasDefaultEntry) { // last: a new child above starts as the sources before say
        reader.getClassContents(kind, keyOfNone(found), *m_prototype);
        (isSystem ? m_hasSystemEntry : m_hasUserEntry) = true;
    }

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
}

/// Removes what the user removed, before a lock in the user's file could keep it.
void KeyedGroup::loadRemoved(ConfigReader& reader, const std::set<std::string>& found) {
    m_removed.clear();
    reader.getKeys(removedTag(), m_removed);
    std::erase_if(m_removed,
                  [&](const std::string& key) { return key.empty() || found.contains(key); });
    for (const std::string& key : m_removed)
        if (find(key) != nullptr && mayGo(key))
            park(key);
}

void KeyedGroup::saveContent(ConfigWriter& writer) const {
    if ((m_hasSystemEntry || m_hasUserEntry) &&
        m_prototype->writesContent()) // first: it replaces all of the name
        writer.putClassContents(m_prototype->getName(), *m_prototype,
                                m_prototype->getDescription());
    ConfigurationObject::saveContent(writer);
    saveRemoved(writer);
}

void KeyedGroup::saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const {
    if (onlyDifferent && m_hasUserEntry)
        saveDifferentDefaultEntry(writer, reader);
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
    group.m_hasSystemEntry = m_hasSystemEntry;
    group.m_hasUserEntry = m_hasUserEntry;
    return copy.release();
}

void KeyedGroup::setDefaultValues() {
    ConfigurationObject::setDefaultValues();
    m_isReset = isEditable();
}

void KeyedGroup::emitSignalsAfterConfigLoading() {
    if (m_isReset && ChangeHold::coversForLoad(*this)) { // the load found nothing for the object
        m_isReset = false;
        startAnew();
    }
    m_parked.clear();
    m_isSystemLoaded = false;
    FirstException exception;
    exception.run([&] { m_prototype->emitSignalsAfterConfigLoading(); });
    const std::vector<std::string> keys = m_keys; // callbacks may add and remove children
    for (const std::string& key : keys)
        if (ConfigurationObject* const child = find(key))
            exception.run([&] { child->emitSignalsAfterConfigLoading(); });
    exception.rethrow();
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

void KeyedGroup::onLocksTransferred(const ConfigurationObject& other) {
    if (const auto* const group = dynamic_cast<const KeyedGroup*>(&other))
        takeOrigins(*group);
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

/// Forgets what earlier loads found.
void KeyedGroup::startAnew() {
    m_prototype = makeFresh(*m_prototype);
    m_hasSystemEntry = false;
    m_hasUserEntry = false;
    m_removed.clear();
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
    startAs(child, *m_prototype);
    return child;
}

/// Makes an object what a clone of another would be, except for what is not loaded.
void KeyedGroup::startAs(ConfigurationObject& object, const ConfigurationObject& start) {
    object.setEditable(start.isEditable());
    auto startValue = start.beginValueIterator();
    for (auto value = object.beginValueIterator();
         value != object.endValueIterator() && startValue != start.endValueIterator();
         ++value, ++startValue) {
        if ((*value)->isLoadable())
            adoptState(**value, **startValue);
        (*value)->setEditable((*startValue)->isEditable());
    }
    auto* const group = dynamic_cast<KeyedGroup*>(&object);
    if (group != nullptr) {
        group->startAs(static_cast<const KeyedGroup&>(start));
        return;
    }
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i) {
        ConfigurationObject& child = *object.beginObjectIterator()[static_cast<std::ptrdiff_t>(i)];
        if (const auto* const counterpart = object.getCounterpart(child, i, start))
            startAs(child, *counterpart);
    }
}

void KeyedGroup::startAs(const KeyedGroup& start) {
    m_isReset = false;
    m_keysWithLocks.clear();
    startAnew();
    m_prototype.reset(start.m_prototype->clone());
    for (std::size_t i = 0; i < start.m_keys.size(); ++i)
        startAs(findOrMake(start.m_keys[i]), start.child(i));
    takeOrigins(start);
    m_removed = start.m_removed;
    m_hasSystemEntry = start.m_hasSystemEntry;
    m_hasUserEntry = start.m_hasUserEntry;
}

void KeyedGroup::takeOrigins(const KeyedGroup& other) {
    m_keysOfSystem = other.m_keysOfSystem;
    m_keysWithLocks = other.m_keysWithLocks;
}

bool KeyedGroup::hasSameOrigins(const KeyedGroup& other) const {
    return m_keysOfSystem == other.m_keysOfSystem && m_hasSystemEntry == other.m_hasSystemEntry &&
           m_hasUserEntry == other.m_hasUserEntry &&
           std::ranges::all_of(m_keys, [&](const std::string& key) {
               return m_keysWithLocks.contains(key) == other.m_keysWithLocks.contains(key);
           });
}

/// Keeps a default entry of the user's file there.
void KeyedGroup::saveDifferentDefaultEntry(ConfigWriter& writer, ConfigReader& reader) const {
    const auto* const below = ReaderBelow::madeFor(*this, reader);
    const auto* const other =
        below == nullptr ? nullptr : dynamic_cast<const KeyedGroup*>(below->reference());
    const auto fresh = other == nullptr ? makeFresh(*m_prototype) : nullptr;
    if (m_prototype->writesContent())
        writer.putElementUnlessEmpty(m_prototype->getName(), m_prototype->getDescription(), [&] {
            m_prototype->saveDifferentConfigurationValues(
                writer, other == nullptr ? fresh.get() : other->m_prototype.get());
        });
}

void KeyedGroup::saveRemoved(ConfigWriter& writer) const {
    for (const std::string& key : m_removed)
        writer.createKeyedNode(removedTag(), key, "");
}

} // namespace Orvant
