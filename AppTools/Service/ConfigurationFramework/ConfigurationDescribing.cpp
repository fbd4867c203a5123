#include <ConfigurationFramework/ConfigurationDescription.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ObjectWriter.h>
#include <ConfigurationFramework/ValueText.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/writing/WrittenElement.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <map>
#include <set>
#include <utility>

namespace Orvant {

namespace {

using Object = ConfigurationObjectDescription;

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

XmlString toXml(const std::string& text) {
    return XercesHelperFunctions::stringToXmlCh(text);
}

std::optional<ConfigurationValueDescription> describe(ConfigurationValueBase& value) {
    std::vector<std::string> texts = exactDefaultTextsOf(value);
    const auto type = value.getValueType();
    if (texts.empty() && type != ConfigurationValueBase::StringVectorValue)
        return std::nullopt; // of a class that the library does not have
    return ConfigurationValueDescription{.name = value.getName(),
                                         .description = value.getDescription(),
                                         .type = type,
                                         .defaultTexts = std::move(texts),
                                         .constraint = value.getConstraint(),
                                         .visibility = value.isGuiVisible()
                                                           ? ConfigurationItemBase::Visible
                                                           : ConfigurationItemBase::Hidden,
                                         .persistence = value.getPersistenceType(),
                                         .products = value.getProductType(),
                                         .isEditable = value.isEditable()};
}

ConfigurationValueDescription describeText(const WrittenElement& written) {
    ConfigurationValueDescription value{.name = toUtf8(written.id.tag),
                                        .description = toUtf8(written.comment)};
    if (!written.isStrings) {
        value.defaultTexts = {toUtf8(written.text)};
        return value;
    }
    value.type = ConfigurationValueBase::StringVectorValue;
    for (const WrittenElement& item : written.children)
        value.defaultTexts.push_back(toUtf8(item.text));
    return value;
}

/// What is in one element: an object with a name, and the nameless ones in it.
class ElementDescribing {
public:
    /// @param written what a save writes of it; null: nothing
    explicit ElementDescribing(const WrittenElement* written) : m_written(written) {}

    Object describeAll(ConfigurationObject& object) {
        count(object);
        Object description = describe(object);
        addOthers(description);
        return description;
    }

private:
    void count(const ConfigurationObject& object);
    Object describe(ConfigurationObject& object);
    void addChild(ConfigurationObject& child, const std::optional<std::string>& key,
                  Object& description);
    void addOthers(Object& description) const;
    static void addOther(const WrittenElement& written, Object& description);
    const WrittenElement* find(const XmlString& tag, const std::optional<XmlString>& key) const;

    const WrittenElement* m_written;
    std::set<XmlString> m_values; ///< tags
    std::set<XmlString> m_kinds;  ///< tags
    std::set<ElementId> m_children;
    std::map<XmlString, std::size_t> m_namesakes; ///< number of items with a tag, whatever key
};

void ElementDescribing::count(const ConfigurationObject& object) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        ++m_namesakes[toXml((*value)->getName())];
    if (const ConfigurationObject* const prototype = object.getChildPrototype())
        ++m_namesakes[toXml(prototype->getName())];
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        if ((*child)->getName().empty())
            count(**child);
        else
            ++m_namesakes[toXml((*child)->getName())];
    }
}

Object ElementDescribing::describe(ConfigurationObject& object) {
    Object description{.name = object.getName(),
                       .description = object.getDescription(),
                       .persistence = object.getPersistenceType(),
                       .products = object.getProductType(),
                       .isEditable = object.isEditable(),
                       .children = {}};
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value) {
        auto described = Orvant::describe(**value);
        if (!described)
            continue;
        m_values.insert(toXml(described->name));
        description.values.push_back(std::move(*described));
    }
    ConfigurationObject* const prototype = object.getChildPrototype();
    if (prototype != nullptr) {
        m_kinds.insert(toXml(prototype->getName()));
        ElementDescribing below(nullptr);
        description.children.push_back({.object = below.describeAll(*prototype), .isKind = true});
    }
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i) {
        ConfigurationObject& child = *object.beginObjectIterator()[static_cast<std::ptrdiff_t>(i)];
        if (prototype == nullptr || child.getName() != prototype->getName()) // not one of the kind
            addChild(child, object.getChildKey(i), description);
    }
    return description;
}

void ElementDescribing::addChild(ConfigurationObject& child, const std::optional<std::string>& key,
                                 Object& description) {
    const XmlString tag = toXml(child.getName());
    if (tag.empty()) {
        Object inlined = describe(child);
        const bool isOnlyKind = child.getChildPrototype() != nullptr && inlined.values.empty() &&
                                inlined.children.size() == 1;
        if (isOnlyKind)
            description.children.push_back(std::move(inlined.children.front()));
        else
            description.children.push_back({.object = std::move(inlined)});
        return;
    }
    const WrittenElement* const written =
        find(tag, key ? std::optional(toXml(throughDocument(*key))) : std::nullopt);
    // A class may write the key itself.
    const std::optional<XmlString> writtenKey = written == nullptr ? std::nullopt : written->id.key;
    m_children.insert({tag, writtenKey});
    ElementDescribing below(written);
    description.children.push_back({.object = below.describeAll(child),
                                    .key = key          ? key
                                           : writtenKey ? std::optional(toUtf8(*writtenKey))
                                                        : std::nullopt});
}

/// @param key nothing: any that no other child has
const WrittenElement* ElementDescribing::find(const XmlString& tag,
                                              const std::optional<XmlString>& key) const {
    if (m_written != nullptr)
        for (const WrittenElement& child : m_written->children)
            if (child.id.tag == tag && (key ? child.id.key == key : !m_children.contains(child.id)))
                return &child;
    return nullptr;
}

/// Adds what the class writes besides values and children.
void ElementDescribing::addOthers(Object& description) const {
    if (m_written == nullptr)
        return;
    std::set<ElementId> known = m_children;
    for (const WrittenElement& child : m_written->children)
        if (!m_values.contains(child.id.tag) && !m_kinds.contains(child.id.tag) &&
            known.insert(child.id).second)
            addOther(child, description);
}

void ElementDescribing::addOther(const WrittenElement& written, Object& description) {
    const bool isValue = written.isStrings || written.children.empty();
    if (isValue && !written.id.key) {
        description.values.push_back(describeText(written));
        return;
    }
    Object group{
        .name = toUtf8(written.id.tag), .description = toUtf8(written.comment), .children = {}};
    if (written.isGroup())
        ElementDescribing(&written).addOthers(group);
    description.children.push_back(
        {.object = std::move(group),
         .key = written.id.key ? std::optional(toUtf8(*written.id.key)) : std::nullopt});
}

} // namespace

Object describeConfiguration(const ConfigurationObject& object) {
    const std::shared_ptr<ConfigurationObject> fresh = makeFresh(object);
    const WrittenElement written = ObjectWriter().writeInFull({fresh, "Object"}, *fresh);
    return ElementDescribing(&written).describeAll(*fresh);
}

} // namespace Orvant
