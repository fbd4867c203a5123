#include <ConfigurationFramework/ConfigurationObject.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/ConstrainedValue.h>
#include <ConfigurationFramework/ReaderBelow.h>
#include <ConfigurationFramework/SharedReference.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/model/ItemPairs.h>
#include <ConfigurationFramework/model/ValueCopy.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ranges>
#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

/// Room for this many is reserved with the first one.
constexpr std::size_t fewItems = 8;

/// @throws std::invalid_argument for null
template <typename Item>
std::unique_ptr<Item> own(Item* item) {
    if (item == nullptr)
        throw std::invalid_argument("a configuration object cannot hold a null item");
    return std::unique_ptr<Item>(item);
}

template <typename Item>
void append(std::vector<Item*>& items, Item* item) {
    auto owner = own(item);
    if (items.empty())
        items.reserve(fewItems);
    items.push_back(item);
    (void)owner.release();
}

template <typename Item>
void replace(Item*& place, Item* item) {
    delete std::exchange(place, own(item).release());
}

template <typename Item>
void deleteAll(std::vector<Item*>& items) {
    for (Item* item : items)
        delete item;
    items.clear();
}

template <typename Item>
Item* findByName(const std::vector<Item*>& items, const std::string& name) {
    const auto found =
        std::ranges::find_if(items, [&](const Item* item) { return item->getName() == name; });
    return found == items.end() ? nullptr : *found;
}

template <typename T>
bool becomeCopyAs(const ConfigurationValueBase& original, ConfigurationValueBase& item) {
    return copyAs<ConfigurationValue<T>>(original, item) ||
           copyAs<ConstrainedValue<T>>(original, item);
}

/// Makes an item a copy of another, if the other's clone would be no more than that.
bool becomeCopy(const ConfigurationValueBase& original, ConfigurationValueBase& item) {
    switch (original.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        return becomeCopyAs<bool>(original, item);
    case ConfigurationValueBase::IntValue:
        return becomeCopyAs<int>(original, item);
    case ConfigurationValueBase::UnsignedIntValue:
        return becomeCopyAs<unsigned int>(original, item);
    case ConfigurationValueBase::DoubleValue:
        return becomeCopyAs<double>(original, item);
    case ConfigurationValueBase::FloatValue:
        return becomeCopyAs<float>(original, item);
    case ConfigurationValueBase::StringValue:
        return becomeCopyAs<std::string>(original, item);
    case ConfigurationValueBase::StringVectorValue:
        return becomeCopyAs<std::vector<std::string>>(original, item);
    }
    return false;
}
bool becomeCopy(const ConfigurationObject&, const ConfigurationObject&) {
    return false;
}

/// Makes the items of a fresh object copies of others. They are assigned to where possible, since
/// making an item takes longer; the rest are replaced by clones.
template <typename Item>
void copyItems(const std::vector<Item*>& originals, std::vector<Item*>& items) {
    for (std::size_t i = 0; i < originals.size(); ++i) {
        if (i == items.size())
            append(items, originals[i]->clone());
        else if (!becomeCopy(*originals[i], *items[i]))
            replace(items[i], originals[i]->clone());
    }
    for (; items.size() > originals.size(); items.pop_back())
        delete items.back();
}

void appendLine(std::string& text, const std::string& line) {
    if (!text.empty() && !line.empty())
        text += '\n';
    text += line;
}

/// What a reader holds for an object; null: nothing is known.
std::shared_ptr<const ConfigurationObject> referenceOf(const ConfigurationObject& object,
                                                       ConfigReader& reader) {
    // A child's was loaded with its parent's, which owns it.
    if (const ReaderBelow* const below = ReaderBelow::madeFor(object, reader))
        return {std::shared_ptr<void>(), below->reference()};
    return SharedReference::of(object, reader);
}

} // namespace

/// Copies of an object's values and children, deleted with the scope unless an object takes them.
class ConfigurationObject::OwnedItems {
public:
    OwnedItems() = default;
    explicit OwnedItems(const ConfigurationObject& original) : OwnedItems() {
        // Delegated, so that the destructor deletes the copies made so far when one fails.
        m_values.reserve(original.m_values.size());
        m_objects.reserve(original.m_objects.size());
        for (const ConfigurationValueBase* value : original.m_values)
            append(m_values, value->clone());
        for (const ConfigurationObject* child : original.m_objects)
            append(m_objects, child->clone());
    }
    OwnedItems(const OwnedItems&) = delete;
    OwnedItems& operator=(const OwnedItems&) = delete;
    ~OwnedItems() {
        deleteAll(m_values);
        deleteAll(m_objects);
    }

    void swapWith(ConfigurationObject& object) {
        m_values.swap(object.m_values);
        m_objects.swap(object.m_objects);
        object.adoptChildren();
    }

private:
    std::vector<ConfigurationValueBase*> m_values;
    std::vector<ConfigurationObject*> m_objects;
};

/// The traversal of overwriteInvalidConfigValues() and restoreLocks(). The table at the former
/// shows what is taken.
class ConfigurationObject::LockTransfer {
public:
    /// Values of the other object that come with its locks.
    enum class Values { Locked, LockedOrMissing, All };

    static void run(ConfigurationObject& object, const ConfigurationObject& other, Values values) {
        object.setEditable(other.isEditable());
        ItemPairs pairs(object.m_values, &other.m_values);
        for (std::size_t i = 0; i < object.m_values.size(); ++i)
            if (const auto* counterpart = pairs.counterpartOf(i))
                run(*object.m_values[i], *counterpart, values);
        object.onLocksTransferred(other);
        // overwriteInvalidConfigValues() is called on each child, since classes override it.
        if (values == Values::LockedOrMissing)
            return;
        for (std::size_t i = 0; i < object.m_objects.size(); ++i)
            if (const auto* counterpart = object.counterpartOf(i, &other))
                run(*object.m_objects[i], *counterpart,
                    counterpart->isEditable() ? values : Values::All);
        const auto* const prototype = other.getChildPrototype();
        if (auto* const own = object.getChildPrototype(); own != nullptr && prototype != nullptr)
            run(*own, *prototype, prototype->isEditable() ? values : Values::All);
    }

private:
    static void run(ConfigurationValueBase& value, const ConfigurationValueBase& other,
                    Values values) {
        if (values == Values::All || !other.isEditable() ||
            (values == Values::LockedOrMissing && !value.hasValue()))
            adoptState(value, other);
        value.setEditable(other.isEditable());
    }
};

ConfigurationObject::ConfigurationObject(const std::string& name, const std::string& description,
                                         Persistence persistence, ProductType productType)
    : ConfigurationItemBase(name, description, ObjectItem, persistence, productType) {}

ConfigurationObject::ConfigurationObject(const ConfigurationObject& other)
    : ConfigurationItemBase(other), m_userWarningMessages(other.m_userWarningMessages) {
    OwnedItems copies(other);
    copies.swapWith(*this);
}

ConfigurationObject& ConfigurationObject::operator=(const ConfigurationObject& other) {
    // The copies are complete before anything is deleted: one of the two may be inside the other.
    OwnedItems items(other);
    items.swapWith(*this);
    try {
        onItemsReplaced();
    } catch (...) {
        items.swapWith(*this); // pointers to the former items stay right
        onItemsReplaced();
        throw;
    }
    m_userWarningMessages = other.m_userWarningMessages;
    ConfigurationItemBase::operator=(other);
    return *this;
}

ConfigurationObject::~ConfigurationObject() {
    clearConfigurationItems();
}

void ConfigurationObject::loadContent(ConfigReader& reader) {
    if (!isLoadable() || !isEditable())
        return;
    bool editable = isEditable();
    reader.getEditable(editable);
    setEditable(editable);
    for (ConfigurationValueBase* value : m_values)
        value->loadContent(reader);
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        ConfigurationObject& child = *m_objects[i];
        if (child.getName().empty())
            child.loadContent(reader);
        else if (const auto key = getChildKey(i))
            reader.getClassContents(child.getName(), *key, child);
        else
            reader.getClassContents(child.getName(), child);
    }
}

void ConfigurationObject::saveContent(ConfigWriter& writer) const {
    if (!writesContent())
        return;
    for (const ConfigurationValueBase* value : m_values)
        value->saveContent(writer);
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        const ConfigurationObject& child = *m_objects[i];
        if (child.getName().empty())
            writer.putClassContents(child);
        else if (!child.writesContent())
            continue;
        else if (const auto key = getChildKey(i))
            writer.putClassContents(child.getName(), *key, child, child.getDescription());
        else
            writer.putClassContents(child.getName(), child, child.getDescription());
    }
    keepListsReadable(writer);
}

ConfigurationObject* ConfigurationObject::clone() const {
    auto copy = makeFresh(*this);
    copyItems(m_values, copy->m_values);
    copyItems(m_objects, copy->m_objects);
    copy->adoptChildren();
    copy->onItemsReplaced();
    copy->setEditable(isEditable());
    copy->m_userWarningMessages = m_userWarningMessages;
    return copy.release();
}

void ConfigurationObject::saveContent(ConfigWriter& writer, ConfigReader& reader,
                                      bool onlyDifferent) const {
    const auto reference = referenceOf(*this, reader);
    if (!onlyDifferent) {
        saveContent(writer);
        return;
    }
    const ReaderBelow* const ownReader = ReaderBelow::madeFor(*this, reader);
    const bool isInline = ownReader != nullptr && getName().empty();
    saveDifferences(writer, reference.get(), [&](const auto& child, const auto* counterpart) {
        ReaderBelow below = isInline ? ReaderBelow(*ownReader, child, counterpart)
                                     : ReaderBelow(reader, getName(), child, counterpart);
        child.saveContent(writer, below, true);
    });
}

bool ConfigurationObject::canBeSavedToUserConfig(ConfigReader& reader) const {
    return atLeastOneSavedValueIsDifferent(referenceOf(*this, reader).get());
}

void ConfigurationObject::setDefaultValues() {
    if (!isEditable())
        return;
    for (ConfigurationValueBase* value : m_values)
        if (value->isEditable())
            value->resetValue();
    for (ConfigurationObject* child : m_objects)
        child->setDefaultValues();
}

bool ConfigurationObject::hasNonEditableEntries() const {
    return !isEditable() ||
           std::ranges::any_of(m_values, [](const auto* value) { return !value->isEditable(); }) ||
           std::ranges::any_of(m_objects,
                               [](const auto* child) { return child->hasNonEditableEntries(); });
}

void ConfigurationObject::overwriteInvalidConfigValues(const ConfigurationObject* other) {
    if (other == nullptr)
        return;
    takeFromSystem(*other, !other->isEditable());
    for (std::size_t i = 0; i < m_objects.size(); ++i)
        m_objects[i]->overwriteInvalidConfigValues(counterpartOf(i, other));
    if (ConfigurationObject* const prototype = getChildPrototype())
        prototype->overwriteInvalidConfigValues(other->getChildPrototype());
}

void ConfigurationObject::takeFromSystem(const ConfigurationObject& system, bool locked) {
    using enum LockTransfer::Values;
    LockTransfer::run(*this, system, locked ? All : LockedOrMissing);
}

void ConfigurationObject::restoreLocks(const ConfigurationObject& former) {
    restoreLocks(former, !former.isEditable());
}

void ConfigurationObject::restoreLocks(const ConfigurationObject& former, bool locked) {
    using enum LockTransfer::Values;
    LockTransfer::run(*this, former, locked ? All : Locked);
}

void ConfigurationObject::emitSignalsAfterConfigLoading() {
    for (ConfigurationObject* child : m_objects)
        child->emitSignalsAfterConfigLoading();
}

std::string ConfigurationObject::getUserWarningMessages() const {
    std::string messages = m_userWarningMessages;
    for (const ConfigurationObject* child : m_objects)
        appendLine(messages, child->getUserWarningMessages());
    return messages;
}

void ConfigurationObject::addUserWarningMessage(const std::string& message) {
    appendLine(m_userWarningMessages, message);
}

bool ConfigurationObject::writesContent() const {
    return isWrittenByCurrentProduct();
}

const ConfigurationObject*
ConfigurationObject::getCounterpart(const ConfigurationObject& child, std::size_t position,
                                    const ConfigurationObject& other) const {
    const auto key = getChildKey(position);
    const auto isMeant = [&](std::size_t i) {
        return other.m_objects[i]->getName() == child.getName() && other.getChildKey(i) == key;
    };
    if (position < other.m_objects.size() && isMeant(position))
        return other.m_objects[position];
    for (std::size_t i = 0; i < other.m_objects.size(); ++i)
        if (isMeant(i))
            return other.m_objects[i];
    return nullptr;
}

std::optional<std::string> ConfigurationObject::getChildKey(std::size_t /*position*/) const {
    return std::nullopt;
}

ConfigurationObject* ConfigurationObject::getChildPrototype() const {
    return nullptr;
}

/// The counterpart in another object (null: none) of the child at a position.
const ConfigurationObject*
ConfigurationObject::counterpartOf(std::size_t position, const ConfigurationObject* other) const {
    return other == nullptr ? nullptr : getCounterpart(*m_objects[position], position, *other);
}

ConfigurationValueBase* ConfigurationObject::getConfigurationValue(const std::string& name) const {
    return findByName(m_values, name);
}

ConfigurationObject* ConfigurationObject::getConfigurationObject(const std::string& name) const {
    return findByName(m_objects, name);
}

std::vector<const ConfigurationValueBase*> ConfigurationObject::getConfigurationValues() const {
    return {m_values.begin(), m_values.end()};
}

bool ConfigurationObject::compareWithOtherConfigValue(const ConfigurationObject* other,
                                                      const std::string& name) const {
    const ConfigurationValueBase* const mine = getConfigurationValue(name);
    const ConfigurationValueBase* const others =
        other == nullptr ? nullptr : other->getConfigurationValue(name);
    return mine != nullptr && others != nullptr && mine->comapreValue(others);
}

bool ConfigurationObject::atLeastOneValueIsDifferent(const ConfigurationObject* other) const {
    return differs(other, false);
}

bool ConfigurationObject::atLeastOneSavedValueIsDifferent(const ConfigurationObject* other) const {
    return differs(other, true);
}

bool ConfigurationObject::differs(const ConfigurationObject* other, bool savedOnly) const {
    if (other == nullptr || m_values.size() != other->m_values.size() ||
        m_objects.size() != other->m_objects.size())
        return true;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const ConfigurationValueBase& mine = *m_values[i];
        const ConfigurationValueBase& others = *other->m_values[i];
        if (!mine.comapreValue(&others) && (!savedOnly || (mine.isSavable() && others.isSavable())))
            return true;
    }
    // What the children hold never decides: with children an object is always worth saving, and
    // their differences are their own.
    return savedOnly && !m_objects.empty();
}

std::vector<const ConfigurationValueBase*>
ConfigurationObject::getDifferentConfigurationValues(const ConfigurationObject* other) const {
    ItemPairs pairs(m_values, other == nullptr ? nullptr : &other->m_values);
    std::vector<const ConfigurationValueBase*> different;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const auto* counterpart = pairs.counterpartOf(i);
        if (counterpart == nullptr || !m_values[i]->comapreValue(counterpart))
            different.push_back(m_values[i]);
    }
    return different;
}

void ConfigurationObject::saveDifferentConfigurationValues(ConfigWriter& writer,
                                                           const ConfigurationObject* other) const {
    saveDifferences(writer, other, [&](const auto& child, const auto* counterpart) {
        child.saveDifferentConfigurationValues(writer, counterpart);
    });
}

/// Writes the values that differ and calls saveChild(child, its counterpart) for each child.
template <typename SaveChild>
void ConfigurationObject::saveDifferences(ConfigWriter& writer, const ConfigurationObject* other,
                                          SaveChild saveChild) const {
    if (!writesContent())
        return;
    for (const ConfigurationValueBase* value : getDifferentConfigurationValues(other))
        value->saveContent(writer);
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        const ConfigurationObject& child = *m_objects[i];
        const ConfigurationObject* const counterpart = counterpartOf(i, other);
        const auto save = [&] { saveChild(child, counterpart); };
        const auto saveElement = [&] {
            save();
            child.keepListsReadable(writer); // also in what an override wrote
        };
        if (child.getName().empty())
            save();
        else if (!child.writesContent())
            continue;
        else if (const auto key = getChildKey(i); !key)
            writer.putElementUnlessEmpty(child.getName(), child.getDescription(), saveElement);
        else if (counterpart != nullptr && counterpart != other->getChildPrototype())
            writer.putKeyedElementUnlessEmpty(child.getName(), *key, child.getDescription(),
                                              saveElement);
        else // even without a difference: it tells that there is a child of that key
            writer.putKeyedElement(child.getName(), *key, child.getDescription(), saveElement);
    }
    keepListsReadable(writer);
}

/// Adds the lists in the element of the object: its own and those of nameless children.
void ConfigurationObject::collectLists(std::vector<const ConfigurationValueBase*>& lists) const {
    if (!writesContent())
        return;
    for (const ConfigurationValueBase* value : m_values)
        if (value->getValueType() == ConfigurationValueBase::StringVectorValue &&
            value->isWrittenByCurrentProduct())
            lists.push_back(value);
    for (const ConfigurationObject* child : m_objects)
        if (child->getName().empty())
            child->collectLists(lists);
}

/// A list is read from the first element of its name at any depth. If a child's would be taken for
/// it, because it is written after that child or does not differ, it goes to the front.
void ConfigurationObject::keepListsReadable(ConfigWriter& writer) const {
    std::vector<const ConfigurationValueBase*> lists;
    collectLists(lists);
    if (lists.empty())
        return;
    std::vector<std::string> names;
    names.reserve(lists.size());
    for (const ConfigurationValueBase* list : lists)
        names.push_back(list->getName());
    // One that goes to the front can hide another: the items of a list hide a list of that name.
    for (std::size_t round = 0; round < lists.size(); ++round) {
        auto hidden = writer.getNamesHiddenByDescendants(names);
        if (hidden.empty())
            return;
        for (const ConfigurationValueBase* list : lists | std::views::reverse)
            if (hidden.erase(list->getName()) != 0)
                writer.putInFront(list->getName(), [&] { list->saveContent(writer); });
    }
}

void ConfigurationObject::addConfigurationValue(ConfigurationValueBase* value) {
    append(m_values, value);
}

void ConfigurationObject::addConfigurationObject(ConfigurationObject* object) {
    append(m_objects, object);
    object->m_parent = this;
}

void ConfigurationObject::insertConfigurationObject(std::size_t position,
                                                    ConfigurationObject* object) {
    addConfigurationObject(object);
    const auto place =
        m_objects.begin() + static_cast<std::ptrdiff_t>(std::min(position, m_objects.size() - 1));
    std::rotate(place, m_objects.end() - 1, m_objects.end());
}

std::unique_ptr<ConfigurationObject>
ConfigurationObject::takeConfigurationObject(std::size_t position) {
    if (position >= m_objects.size())
        return nullptr;
    const auto place = m_objects.begin() + static_cast<std::ptrdiff_t>(position);
    std::unique_ptr<ConfigurationObject> taken(*place);
    m_objects.erase(place);
    taken->m_parent = nullptr;
    return taken;
}

void ConfigurationObject::adoptChildren() {
    for (ConfigurationObject* child : m_objects)
        child->m_parent = this;
}

void ConfigurationObject::onItemsReplaced() {}

void ConfigurationObject::onLocksTransferred(const ConfigurationObject& /*other*/) {}

void ConfigurationObject::clearConfigurationItems() {
    deleteAll(m_values);
    deleteAll(m_objects);
}

} // namespace Orvant
