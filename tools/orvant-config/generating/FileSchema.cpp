#include "generating/FileSchema.h"

#include "catalogue/SettingText.h"
#include "generating/ElementContents.h"
#include "generating/Markup.h"
#include "generating/SchemaTypes.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

namespace Orvant::Tool {

namespace {

using Value = ConfigurationValueDescription;

/// What a schema cannot say.
constexpr std::array limits = {
    "Accepted, although it has no effect or is not read as it stands:",
    "- a value that breaks a condition that is told in words only;",
    "- a comment, CDATA section or entity in the text of a value: readers stop there;",
    "- text between elements, and attributes of other names: nothing reads them;",
    "- a lock in a user's file on what the system file has;",
    "- a Removed... element in a system file;",
    "- a second element with a key attribute beside elements that are told apart by keys;",
    "- anything in elements that have several meanings, or a name with a colon in them.",
    "Refused, although it is read:",
    "- a list that is not in the element of its object but in one below it;",
    "- whatever is wrong in a default entry that nothing uses, as each key has an element."};

/// The meaning of a name in an element.
struct Slot {
    std::string name;
    std::optional<ElementValue> value = {};
    std::vector<ElementChild> objects = {}; ///< with keys, if there are several
    bool isRemoved = false;                 ///< names children that the user removed
    bool isAmbiguous = false;               ///< it has several meanings

    bool mayRepeat() const {
        return isAmbiguous || isRemoved ||
               (!objects.empty() && (objects.front().isKind || objects.front().key));
    }
};

/// Whether the user's file says which children of the kind are removed.
bool isRemovableKind(const ElementChild& child) {
    return child.isKind && !child.isRegistered;
}

/// Whether objects that are told apart by keys have the same elements in them.
bool areAlike(const ElementChild& first, const ElementChild& second) {
    const auto textOf = [](const ElementChild& child) {
        ConfigurationCatalogue catalogue("alike", {}, "");
        catalogue.add({*child.object}, child.object->name);
        std::ostringstream text;
        catalogue.write(text);
        return text.str();
    };
    return first.key && second.key && first.isLoaded == second.isLoaded &&
           textOf(first) == textOf(second);
}

/// The names in an element, in the order of saving.
std::vector<Slot> slotsOf(const ElementContents& contents) {
    std::vector<Slot> slots;
    std::map<std::string, std::size_t> positions;
    const auto find = [&](const std::string& name) {
        const auto [position, isNew] = positions.try_emplace(name, slots.size());
        if (isNew)
            slots.push_back({.name = name});
        return std::pair(position->second, isNew);
    };
    for (const ElementValue& value : contents.values) {
        const auto [position, isNew] = find(value.value->name);
        slots[position].value = value;
        slots[position].isAmbiguous = !isNew;
    }
    for (const ElementChild& child : contents.children) {
        const auto [position, isNew] = find(child.object->name);
        Slot& slot = slots[position];
        const bool isOneMore = !slot.objects.empty() && areAlike(slot.objects.front(), child);
        slot.isAmbiguous = slot.isAmbiguous || !(isNew || isOneMore);
        slot.objects.push_back(child);
        if (isRemovableKind(child)) {
            const auto [removed, isNewName] = find("Removed" + child.object->name);
            slots[removed].isRemoved = true;
            slots[removed].isAmbiguous = !isNewName;
        }
    }
    return slots;
}

/// Whether any of an element's may stand there several times: then they all may, for XML Schema.
bool mayRepeat(const std::vector<Slot>& slots) {
    return std::ranges::any_of(slots, &Slot::mayRepeat);
}

bool hasColon(const Slot& slot) {
    return slot.name.find(':') != std::string::npos;
}

std::string documentationOf(const Value& value) {
    const std::string& label = value.constraint.label;
    std::string text;
    for (const std::string& part : {label, value.description == label ? "" : value.description})
        text += part.empty() ? "" : part + ". ";
    return text + declarationText(value);
}

class SchemaText {
public:
    explicit SchemaText(const ConfigurationCatalogue& catalogue);

    std::string text() const;

private:
    void addRoot(const ConfigurationCatalogue& catalogue);
    void addSlots(const std::vector<Slot>& slots);
    void addSlot(const Slot& slot, bool isInChoice);
    void addObject(const Slot& slot, bool hasKey);
    void addValue(const ElementValue& value, bool hasKey);
    void addList(const ElementValue& value, bool hasKey);
    void addRemoved();
    void addTextType(const std::string& type, const std::string& editable, bool hasKey);
    void addAnything();
    void addKey(const Slot& slot);
    void addAttributes(const std::string& editable, bool hasKey);
    void addUniques(const std::vector<Slot>& slots);
    void addUnique(const std::string& selector);

    MarkupText m_textTypes;
    MarkupText m_markup;
    SchemaTypes m_types;
    std::size_t m_uniques = 0;
};

SchemaText::SchemaText(const ConfigurationCatalogue& catalogue) : m_types(m_textTypes) {
    addRoot(catalogue);
}

std::string SchemaText::text() const {
    MarkupText schema;
    schema.addLine("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    schema.open("xs:schema", {{"xmlns:xs", "http://www.w3.org/2001/XMLSchema"}});
    schema.open("xs:annotation");
    for (const char* const line : limits)
        schema.addElement("xs:documentation", line);
    schema.close();
    schema.addLines(m_textTypes.text());
    schema.addLines(m_markup.text());
    schema.close();
    return schema.text();
}

void SchemaText::addRoot(const ConfigurationCatalogue& catalogue) {
    const std::vector<Slot> slots = slotsOf(contentsOfRoot(catalogue));
    const auto& versions = catalogue.getAcceptedVersions();
    m_markup.open("xs:element", {{"name", "Configuration"}});
    m_markup.addDocumentation("Settings of " + catalogue.getApplication());
    m_markup.open("xs:complexType", {{"mixed", "true"}});
    addSlots(slots);
    const bool isOptional = std::ranges::find(versions, "") != versions.end();
    m_markup.open("xs:attribute",
                  {{"name", "version"}, {"use", isOptional ? "optional" : "required"}});
    m_markup.open("xs:simpleType");
    m_markup.open("xs:restriction", {{"base", "xs:string"}});
    for (const std::string& version : versions)
        m_markup.addEmpty("xs:enumeration", {{"value", version}});
    m_markup.close();
    m_markup.close();
    m_markup.close();
    addAttributes(SchemaTypes::noLock, false);
    m_markup.close();
    addUniques(slots);
    m_markup.close();
}

/// Adds what an element may have in it.
void SchemaText::addSlots(const std::vector<Slot>& slots) {
    if (slots.empty() || std::ranges::any_of(slots, hasColon)) {
        addAnything();
        return;
    }
    const bool isChoice = mayRepeat(slots);
    if (isChoice)
        m_markup.open("xs:choice", {{"minOccurs", "0"}, {"maxOccurs", "unbounded"}});
    else
        m_markup.open("xs:all");
    for (const Slot& slot : slots)
        addSlot(slot, isChoice);
    m_markup.close();
}

/// @param isInChoice whether others of the element repeat, so that it needs a key that tells it
///                   from a second one
void SchemaText::addSlot(const Slot& slot, bool isInChoice) {
    MarkupText::Attributes attributes{{"name", slot.name}};
    if (!isInChoice)
        attributes.emplace_back("minOccurs", "0");
    m_markup.open("xs:element", attributes);
    if (slot.isAmbiguous) {
        m_markup.open("xs:complexType", {{"mixed", "true"}});
        addAnything();
        m_markup.addEmpty("xs:anyAttribute", {{"processContents", "skip"}});
        m_markup.close();
    } else if (slot.isRemoved) {
        addRemoved();
    } else if (slot.value) {
        addValue(*slot.value, isInChoice);
    } else {
        addObject(slot, isInChoice);
    }
    m_markup.close();
}

void SchemaText::addObject(const Slot& slot, bool hasKey) {
    const ElementChild& child = slot.objects.front();
    const std::vector<Slot> slots = slotsOf(contentsOf(child));
    if (!child.object->description.empty())
        m_markup.addDocumentation(child.object->description);
    m_markup.open("xs:complexType", {{"mixed", "true"}});
    addSlots(slots);
    if (child.key)
        addKey(slot);
    addAttributes(child.isLoaded ? SchemaTypes::lock : SchemaTypes::noLock, hasKey && !child.key);
    m_markup.close();
    addUniques(slots);
}

void SchemaText::addValue(const ElementValue& value, bool hasKey) {
    m_markup.addDocumentation(documentationOf(*value.value));
    if (value.value->isList())
        addList(value, hasKey);
    else
        addTextType(value.isLoaded ? m_types.add(*value.value) : "xs:string",
                    value.isLoaded ? SchemaTypes::lock : SchemaTypes::noLock, hasKey);
}

void SchemaText::addList(const ElementValue& value, bool hasKey) {
    m_markup.open("xs:complexType", {{"mixed", "true"}});
    m_markup.open("xs:sequence");
    m_markup.open("xs:element", {{"name", "item"}, {"minOccurs", "0"}, {"maxOccurs", "unbounded"}});
    addTextType(value.isLoaded ? m_types.add(*value.value) : "xs:string", SchemaTypes::noLock,
                false);
    m_markup.close();
    m_markup.close();
    addAttributes(value.isLoaded ? SchemaTypes::lock : SchemaTypes::noLock, hasKey);
    m_markup.close();
}

void SchemaText::addRemoved() {
    m_markup.addDocumentation("In a user's file: the system file's element of the key is removed");
    m_markup.open("xs:complexType");
    m_markup.open("xs:attribute", {{"name", "key"}, {"use", "required"}});
    m_markup.open("xs:simpleType");
    m_markup.open("xs:restriction", {{"base", "xs:string"}});
    m_markup.addEmpty("xs:minLength", {{"value", "1"}});
    m_markup.close();
    m_markup.close();
    m_markup.close();
    addAttributes(SchemaTypes::lock, false);
    m_markup.close();
}

void SchemaText::addTextType(const std::string& type, const std::string& editable, bool hasKey) {
    m_markup.open("xs:complexType");
    m_markup.open("xs:simpleContent");
    m_markup.open("xs:extension", {{"base", type}});
    addAttributes(editable, hasKey);
    m_markup.close();
    m_markup.close();
    m_markup.close();
}

void SchemaText::addAnything() {
    m_markup.open("xs:sequence");
    m_markup.addEmpty(
        "xs:any", {{"minOccurs", "0"}, {"maxOccurs", "unbounded"}, {"processContents", "skip"}});
    m_markup.close();
}

/// Adds the keys that single objects have. Without one, the element is for all of them.
void SchemaText::addKey(const Slot& slot) {
    m_markup.open("xs:attribute", {{"name", "key"}, {"default", ""}});
    m_markup.open("xs:simpleType");
    m_markup.open("xs:restriction", {{"base", "xs:string"}});
    m_markup.addEmpty("xs:enumeration", {{"value", ""}});
    for (const ElementChild& object : slot.objects)
        if (!object.key->empty())
            m_markup.addEmpty("xs:enumeration", {{"value", *object.key}});
    m_markup.close();
    m_markup.close();
    m_markup.close();
}

/// @param hasKey whether elements of the name are told apart by keys; one that is missing is empty
void SchemaText::addAttributes(const std::string& editable, bool hasKey) {
    if (hasKey)
        m_markup.addEmpty("xs:attribute",
                          {{"name", "key"}, {"type", "xs:string"}, {"default", ""}});
    m_markup.addEmpty("xs:attribute", {{"name", "editable"}, {"type", editable}});
    m_markup.addEmpty("xs:anyAttribute", {{"processContents", "skip"}});
}

/// Refuses second elements where they may repeat.
void SchemaText::addUniques(const std::vector<Slot>& slots) {
    if (!mayRepeat(slots) || std::ranges::any_of(slots, hasColon))
        return;
    for (const Slot& slot : slots) {
        if (slot.isAmbiguous || slot.isRemoved)
            continue;
        const bool isRemovable = !slot.objects.empty() && isRemovableKind(slot.objects.front());
        addUnique(isRemovable ? slot.name + "|Removed" + slot.name : slot.name);
    }
}

void SchemaText::addUnique(const std::string& selector) {
    m_markup.open("xs:unique", {{"name", "Once-" + std::to_string(++m_uniques)}});
    m_markup.addEmpty("xs:selector", {{"xpath", selector}});
    m_markup.addEmpty("xs:field", {{"xpath", "@key"}});
    m_markup.close();
}

} // namespace

std::string makeSchema(const ConfigurationCatalogue& catalogue) {
    return SchemaText(catalogue).text();
}

} // namespace Orvant::Tool
