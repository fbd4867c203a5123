#include <ConfigurationFramework/ConfigurationManagerSettings.h>

#include <ConfigurationFramework/ElementAddress.h>
#include <ConfigurationFramework/ObjectWriter.h>
#include <ConfigurationFramework/ValueText.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <map>
#include <ranges>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Orvant {

namespace {

using Element = DocumentTree::Element;

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

std::string pathOf(const std::string& tag, const std::optional<std::string>& key) {
    return key ? tag + '[' + *key + ']' : tag;
}

std::optional<std::string> keyOf(const WrittenElement* written) {
    return written != nullptr && written->id.key ? std::optional(toUtf8(*written->id.key))
                                                 : std::nullopt;
}

/// The element that an object is loaded from.
Element findGroup(DocumentTree& tree, Element parent, const std::string& tag,
                  const std::optional<std::string>& key) {
    if (!key)
        return tree.findChild(parent, tag);
    const Element keyed = tree.findChild(parent, tag, throughDocument(*key));
    return keyed != DocumentTree::none ? keyed : tree.findChildWithoutKey(parent, tag);
}

/// The element that a value is loaded from.
Element findValue(DocumentTree& tree, Element parent, const std::string& tag, bool isList) {
    return isList ? tree.findBelow(parent, tag) : tree.findChild(parent, tag);
}

/// The child of a tag and key at a position among those; nothing else counts.
Element findOccurrence(DocumentTree& tree, Element parent, const PlacedSetting& setting,
                       std::size_t occurrence) {
    Element found = DocumentTree::none;
    tree.forEachChild(parent, setting.tag, [&](Element child) {
        const bool isMeant = !setting.key || tree.key(child) == *setting.key;
        if (isMeant && occurrence-- == 0)
            found = child;
    });
    return found;
}

std::string textOf(const WrittenElement& written) {
    if (!written.isList())
        return toUtf8(written.text);
    std::vector<std::string> items;
    items.reserve(written.children.size());
    for (const WrittenElement& item : written.children)
        items.push_back(toUtf8(item.text));
    return joined(items);
}

} // namespace

LocatedLayers::LocatedLayers(const ConfigurationManagerLayers& layers) : m_layers(layers) {
    for (const FileLayer layer : {SystemLayer, UserLayer}) {
        if (!file(layer).isAccepted())
            continue;
        auto document = std::make_unique<LocatedDocument>(file(layer).bytes());
        if (!document->error())
            m_documents[layer] = std::move(document);
    }
}

unsigned int LocatedLayers::line(FileLayer layer, Element element) const {
    return element == DocumentTree::none ? 0 : document(layer)->items()[element].place.line;
}

bool PlacedSetting::isReadFrom(FileLayer layer, const LocatedLayers& layers) const {
    LocatedDocument* const document = layers.document(layer);
    if (!isLoaded || document == nullptr || elements[layer] == DocumentTree::none)
        return false;
    return value == nullptr || convert(*document, elements[layer], *value).succeeded();
}

std::optional<FileLayer> PlacedSetting::decidingLayer(const LocatedLayers& layers) const {
    const bool isLockedBySystem = isOfSystem && !lockedBy.empty();
    if (!isLockedBySystem && isReadFrom(UserLayer, layers))
        return UserLayer;
    return isReadFrom(SystemLayer, layers) ? std::optional(SystemLayer) : std::nullopt;
}

std::optional<std::string> PlacedSetting::textIn(FileLayer layer,
                                                 const LocatedLayers& layers) const {
    LocatedDocument* const document = layers.document(layer);
    if (document == nullptr || elements[layer] == DocumentTree::none)
        return std::nullopt;
    return Orvant::textIn(document->tree(), elements[layer], isList);
}

std::string PlacedSetting::obstacleToLock(FileLayer layer, const LocatedLayers& layers) const {
    if (!isLoaded)
        return "the element is not loaded";
    if (layer == UserLayer && isOfSystem)
        return "only the system file locks";
    const bool needsText =
        value != nullptr && !isList && value->getValueType() != ConfigurationValueBase::StringValue;
    return needsText && !layers.document(layer)->tree().text(elements[layer])
               ? "the element has no text"
               : "";
}

struct ConfigurationManagerSettings::Group {
    const WrittenElement* written; ///< null: it was not written
    LayerElements elements;
    std::unordered_map<XmlString, std::vector<const WrittenElement*>> untaken = {};
    std::unordered_set<const WrittenElement*> taken = {};

    Group(const WrittenElement* group, const LayerElements& places)
        : written(group), elements(places) {
        if (written != nullptr)
            for (const WrittenElement& child : written->children | std::views::reverse)
                untaken[child.id.tag].push_back(&child);
    }

    /// @return the next written child of a name; null when there is none
    const WrittenElement* take(const std::string& name) {
        return takeFirst(name, [](const WrittenElement*) { return true; });
    }
    /// @return the next written child of a name and key, or without a key; null when there is none
    const WrittenElement* take(const std::string& name, const std::optional<std::string>& key) {
        return takeFirst(name, [&](const WrittenElement* child) { return keyOf(child) == key; });
    }

private:
    template <typename IsMeant>
    const WrittenElement* takeFirst(const std::string& name, IsMeant isMeant) {
        const auto found = untaken.find(XercesHelperFunctions::stringToXmlCh(name));
        if (found == untaken.end())
            return nullptr;
        auto& children = found->second; // in reverse order
        const auto next = std::ranges::find_if(children | std::views::reverse, isMeant);
        if (next == children.rend())
            return nullptr;
        const WrittenElement* const child = *next;
        children.erase(std::next(next).base());
        taken.insert(child);
        return child;
    }
};

template <typename Find>
LayerElements ConfigurationManagerSettings::findAll(const LayerElements& parents, Find find) const {
    LayerElements found{DocumentTree::none, DocumentTree::none};
    for (const FileLayer layer : {SystemLayer, UserLayer})
        if (parents[layer] != DocumentTree::none)
            found[layer] = find(m_layers.document(layer)->tree(), parents[layer]);
    return found;
}

void ConfigurationManagerSettings::add(const ConfigurationRegistration& registration,
                                       const ConfigurationObject& object) {
    PlacedSetting setting;
    setting.tag = registration.name;
    setting.key = registration.key;
    setting.path = pathOf(registration.name, registration.key);
    for (const FileLayer layer : {SystemLayer, UserLayer})
        if (m_layers.document(layer) != nullptr)
            setting.parents[layer] = DocumentTree::root;
    setting.elements = findAll(setting.parents, [&](DocumentTree& tree, Element root) {
        return findGroup(tree, root, registration.name, registration.key);
    });
    setting.isOfSystem = setting.elements[SystemLayer] != DocumentTree::none;
    const WrittenElement written = ObjectWriter().writeInFull(registration, object);
    addGroup(object, &written, std::move(setting));
}

void ConfigurationManagerSettings::addFresh(const ConfigurationRegistration& registration,
                                            bool isLoaded) {
    ConfigurationObject& object = *m_objects.emplace_back(makeFresh(*registration.object));
    // What its class locks is never loaded. After the load, locks may come from the files.
    const ConfigurationManagerLayers noFiles;
    const LocatedLayers nowhere(noFiles);
    ConfigurationManagerSettings unloaded(nowhere);
    if (object.ConfigurationObject::hasNonEditableEntries()) // whatever the class itself answers
        unloaded.add(registration, object);
    if (isLoaded) {
        AdvancedConfigReader reader;
        m_layers.layers().addTo(reader);
        ElementAddress(registration).load(reader, object);
    }
    const std::size_t first = m_settings.size();
    add(registration, object);
    SettingPairs pairs(unloaded.m_settings);
    for (PlacedSetting& setting : m_settings | std::views::drop(first)) {
        const PlacedSetting* const before = pairs.take(setting);
        setting.isLoaded = setting.isLoaded && (before == nullptr || before->lockedBy.empty());
    }
}

/// Adds an object with an element of its own.
void ConfigurationManagerSettings::addGroup(const ConfigurationObject& object,
                                            const WrittenElement* written, PlacedSetting setting) {
    restrictBy(object, setting);
    setting.isGroup = true;
    setting.isOpaque = object.getConfigurationValuesSize() == 0 &&
                       object.getConfigurationObjectsSize() == 0 &&
                       (written == nullptr || written->children.empty());
    m_settings.push_back(setting);
    Group group{written, setting.elements};
    setting.parents = setting.elements;
    addObject(object, group, setting);
    addOthers(group, setting);
}

/// Adds what is in an object.
/// @param inherited what its settings have in common; its path is that of the object
void ConfigurationManagerSettings::addObject(const ConfigurationObject& object, Group& group,
                                             PlacedSetting inherited) {
    inherited.isGroup = false;
    inherited.isOpaque = false;
    restrictBy(object, inherited);
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        addValue(**value, group, inherited);
    if (const ConfigurationObject* const prototype = object.getChildPrototype())
        addDefaultEntry(*prototype, group, inherited);
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i) {
        const ConfigurationObject& child =
            *object.beginObjectIterator()[static_cast<std::ptrdiff_t>(i)];
        if (child.getName().empty())
            addObject(child, group, inherited);
        else
            addChild(child, object.getChildKey(i), group, inherited);
    }
}

/// Adds what children that have no element of their own are loaded from, if there is such a thing.
void ConfigurationManagerSettings::addDefaultEntry(const ConfigurationObject& prototype,
                                                   Group& group, PlacedSetting inherited) {
    PlacedSetting setting = std::move(inherited);
    setting.tag = prototype.getName();
    setting.key.reset();
    setting.path += '/' + setting.tag;
    setting.elements = findAll(setting.parents, [&](DocumentTree& tree, Element parent) {
        return tree.findChildWithoutKey(parent, setting.tag);
    });
    if (std::ranges::all_of(setting.elements,
                            [](Element element) { return element == DocumentTree::none; }))
        return;
    const WrittenElement* const written = group.take(setting.tag, std::nullopt);
    addGroup(prototype, written, std::move(setting));
}

void ConfigurationManagerSettings::addValue(const ConfigurationValueBase& value, Group& group,
                                            PlacedSetting inherited) {
    PlacedSetting setting = std::move(inherited);
    setting.tag = value.getName();
    setting.key.reset();
    setting.path += '/' + setting.tag;
    setting.value = &value;
    setting.isList = value.getValueType() == ConfigurationValueBase::StringVectorValue;
    setting.text = Orvant::textOf(value);
    setting.elements = findAll(setting.parents, [&](DocumentTree& tree, Element parent) {
        return findValue(tree, parent, setting.tag, setting.isList);
    });
    restrictBy(value, setting);
    if (value.isWrittenByCurrentProduct())
        group.take(setting.tag);
    m_settings.push_back(std::move(setting));
}

/// @param key nothing: it has the key that it is written with
void ConfigurationManagerSettings::addChild(const ConfigurationObject& child,
                                            const std::optional<std::string>& key, Group& group,
                                            PlacedSetting inherited) {
    const WrittenElement* const written = !child.writesContent() ? nullptr
                                          : key ? group.take(child.getName(), throughDocument(*key))
                                                : group.take(child.getName());
    PlacedSetting setting = std::move(inherited);
    setting.tag = child.getName();
    setting.key = key ? key : keyOf(written);
    setting.path += '/' + pathOf(setting.tag, setting.key);
    setting.elements = findAll(setting.parents, [&](DocumentTree& tree, Element parent) {
        return findGroup(tree, parent, setting.tag, setting.key);
    });
    addGroup(child, written, std::move(setting));
}

/// Adds what was written besides values and children.
void ConfigurationManagerSettings::addOthers(Group& group, const PlacedSetting& inherited) {
    if (group.written == nullptr)
        return;
    std::map<ElementId, std::size_t> occurrences;
    for (const WrittenElement& child : group.written->children) {
        const std::size_t occurrence = occurrences[child.id]++;
        if (!group.taken.contains(&child))
            addOther(child, occurrence, group, inherited);
    }
}

void ConfigurationManagerSettings::addOther(const WrittenElement& written, std::size_t occurrence,
                                            const Group& group, PlacedSetting inherited) {
    PlacedSetting setting = std::move(inherited);
    setting.tag = toUtf8(written.id.tag);
    setting.key = keyOf(&written);
    setting.path += '/' + pathOf(setting.tag, setting.key);
    setting.isOpaque = false;
    setting.isList = written.isList() && !written.children.empty();
    setting.isGroup = !setting.isList && !written.children.empty();
    setting.parents = group.elements;
    setting.elements = findAll(group.elements, [&](DocumentTree& tree, Element parent) {
        const Element found = findOccurrence(tree, parent, setting, occurrence);
        if (found != DocumentTree::none || occurrence != 0)
            return found;
        return setting.key ? tree.findChildWithoutKey(parent, setting.tag)
                           : findValue(tree, parent, setting.tag, setting.isList);
    });
    // Without items it looks like an empty text, unless a file has some.
    setting.isList = written.isList() && (setting.isList || holdsItems(setting));
    if (setting.lockedBy.empty())
        takeLockOfFile(setting);
    if (!setting.isGroup)
        setting.text = textOf(written);
    m_settings.push_back(setting);
    if (!setting.isGroup)
        return;
    Group below{&written, setting.elements};
    addOthers(below, setting);
}

/// Whether a file has the setting with items of a list.
bool ConfigurationManagerSettings::holdsItems(const PlacedSetting& setting) const {
    const LayerElements items = findAll(setting.elements, [](DocumentTree& tree, Element element) {
        return tree.findChild(element, "item");
    });
    return std::ranges::any_of(items, [](Element item) { return item != DocumentTree::none; });
}

/// Takes over what an item says for itself and what is in it.
void ConfigurationManagerSettings::restrictBy(const ConfigurationItemBase& item,
                                              PlacedSetting& setting) const {
    setting.isLoaded = setting.isLoaded && item.isLoadable();
    if (!setting.lockedBy.empty() || item.isEditable())
        return;
    setting.lockedBy = setting.path;
    takeLockOfFile(setting);
}

/// Has a setting locked by its element in the file whose locks count, if it is locked there.
void ConfigurationManagerSettings::takeLockOfFile(PlacedSetting& setting) const {
    const FileLayer locking = setting.lockingLayer();
    const Element element = setting.elements[locking];
    if (element == DocumentTree::none || m_layers.document(locking)->tree().isEditable(element))
        return;
    setting.lock = element;
    setting.lockedBy = m_layers.document(locking)->path(element);
}

SettingPairs::SettingPairs(const std::vector<PlacedSetting>& settings) {
    for (const PlacedSetting& setting : settings | std::views::reverse)
        m_untaken[{setting.path, setting.isGroup}].push_back(&setting);
}

const PlacedSetting* SettingPairs::take(const PlacedSetting& setting) {
    const auto found = m_untaken.find({setting.path, setting.isGroup});
    if (found == m_untaken.end() || found->second.empty())
        return nullptr;
    const PlacedSetting* const next = found->second.back();
    found->second.pop_back();
    return next;
}

} // namespace Orvant
