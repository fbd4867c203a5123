#include <ConfigurationFramework/XsdElement.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Orvant {

using namespace OV_XsdReader;

namespace {

using Names = std::unordered_set<std::string>;

template <typename Optional>
std::string textOf(const Optional& text) {
    return text.present() ? std::string(text.get()) : std::string();
}

bool isOptional(const ov_element& child) {
    return child.minOccurs().present() && child.minOccurs().get() == 0;
}

template <typename Item>
bool isListed(const Item& name, const Names& names) {
    return name.present() && names.contains(name.get());
}

/// @return the sequence of a complex type and that of its extension, if any
template <typename ComplexType>
auto sequencesOf(ComplexType& type) {
    std::vector<decltype(&type.sequence().get())> sequences;
    if (type.sequence().present())
        sequences.push_back(&type.sequence().get());
    if (type.complexContent().present()) {
        auto& extension = type.complexContent()->extension();
        if (extension.present() && extension->sequence().present())
            sequences.push_back(&extension->sequence().get());
    }
    return sequences;
}

/// Applies an action to a complex type, then to the types that are declared within it.
template <typename Action>
void forTypeAndInlineTypes(ov_complexType& type, const Action& action) {
    const auto descend = [&action](auto& children) {
        for (ov_element& child : children.element())
            if (child.complexType().present())
                forTypeAndInlineTypes(child.complexType().get(), action);
    };
    action(type);
    for (ov_sequence* sequence : sequencesOf(type))
        descend(*sequence);
    if (type.choice().present())
        descend(type.choice().get());
}

/// Removes items from a sequence of the model in one pass: erasing them one by one would move the
/// rest each time.
template <typename Sequence, typename Predicate>
void removeIf(Sequence& sequence, const Predicate& goes) {
    if (std::none_of(sequence.begin(), sequence.end(), goes))
        return;
    std::vector<std::unique_ptr<typename Sequence::value_type>> staying;
    staying.reserve(sequence.size());
    for (auto item = sequence.begin(); item != sequence.end(); ++item)
        if (!goes(*item))
            sequence.detach(item, staying.emplace_back(), false);
    sequence.clear();
    for (auto& item : staying)
        sequence.push_back(std::move(item));
}

template <typename Predicate>
void removeOptionalChildren(ov_complexType& type, const Predicate& goes) {
    for (ov_sequence* sequence : sequencesOf(type))
        removeIf(sequence->element(),
                 [&goes](const ov_element& child) { return isOptional(child) && goes(child); });
}

template <typename Sequence>
void removeOptionalAttributes(Sequence& attributes, const Names& kept) {
    removeIf(attributes, [&kept](const ov_attribute& attribute) {
        return !isListed(attribute.name(), kept) && textOf(attribute.use()) == "optional";
    });
}

template <typename Sequence>
void deleteTypes(Sequence& types, const std::vector<std::string>& names, bool keep) {
    if (names.empty()) {
        // An empty list ends the walk after the first type.
        if (keep && !types.empty())
            types.erase(types.begin());
        return;
    }
    const Names listed(names.begin(), names.end());
    removeIf(types,
             [&listed, keep](const auto& type) { return isListed(type.name(), listed) != keep; });
}

/// The complex type that a name refers to: the first one.
template <typename Schema>
auto findComplexType(Schema& schema, const std::string& name) {
    auto& types = schema.complexType();
    const auto found = std::find_if(types.begin(), types.end(), [&name](const auto& type) {
        return type.name().present() && type.name().get() == name;
    });
    return found == types.end() ? nullptr : &*found;
}

/// @return the name without the prefix of the suite's own namespace, which is not part of a type's
///         name
std::string withoutPrefix(const std::string& typeName) {
    constexpr std::string_view prefix = "ov:";
    return typeName.starts_with(prefix) ? typeName.substr(prefix.size()) : typeName;
}

/// The names of all types. Those without a name cannot be referred to.
Names declaredTypes(const ov_schema& schema) {
    Names names;
    const auto addNames = [&names](const auto& types) {
        for (const auto& type : types)
            if (type.name().present())
                names.insert(type.name().get());
    };
    addNames(schema.complexType());
    addNames(schema.simpleType());
    return names;
}

/// @return the names of types, empty for those that have none
template <typename Types>
std::vector<std::string> namesOf(const Types& types) {
    std::vector<std::string> names;
    for (const auto& type : types)
        names.push_back(textOf(type.name()));
    return names;
}

/// Removes the optional children and the root elements whose types are written this way.
void removeUsersOf(const Names& typesAsWritten, ov_schema& schema) {
    const auto isUser = [&typesAsWritten](const auto& element) {
        return isListed(element.type(), typesAsWritten);
    };
    for (ov_complexType& type : schema.complexType())
        forTypeAndInlineTypes(type, [&isUser](ov_complexType& typeOrInlineType) {
            removeOptionalChildren(typeOrInlineType, isUser);
        });
    removeIf(schema.element(), isUser);
}

/// Names in order of discovery, each once.
class DiscoveredNames {
public:
    void add(const std::string& name) {
        if (m_known.insert(name).second)
            m_names.push_back(name);
    }
    const std::vector<std::string>& inOrder() const { return m_names; }

private:
    Names m_known;
    std::vector<std::string> m_names;
};

/// Adds the types of the children of a type and of the types that are declared within it.
void addChildTypes(const ov_complexType& type, DiscoveredNames& found) {
    const auto addTypesOf = [&found](const auto& children) {
        for (const ov_element& child : children.element()) {
            if (child.type().present())
                found.add(child.type().get());
            if (child.complexType().present())
                addChildTypes(child.complexType().get(), found);
        }
    };
    for (const ov_sequence* sequence : sequencesOf(type))
        addTypesOf(*sequence);
    if (type.choice().present())
        addTypesOf(type.choice().get());
}

enum class Follow { RequiredChildren, AllChildren };

/// Gathers the names of the types that parts of a schema need.
class NeededTypes {
public:
    explicit NeededTypes(Follow follow) : m_follow(follow) {}

    const std::vector<std::string>& names() const { return m_names.inOrder(); }

    /// Adds a name as it is written and the name of the type that it means.
    void add(const std::string& name) {
        m_names.add(name);
        m_names.add(withoutPrefix(name));
    }

    void addNeedsOf(const ov_complexType& type) {
        for (const ov_sequence* sequence : sequencesOf(type))
            for (const ov_element& child : sequence->element())
                addNeedsOf(child);
        if (type.choice().present())
            for (const ov_element& member : type.choice()->element())
                addNeedsOfMember(member);
        addTypesOf(type.attribute());
        if (type.complexContent().present())
            addNeedsOf(type.complexContent().get());
    }

    void addNeedsOf(const ov_simpleType& type) {
        if (type.restriction().present())
            addNeedsOf(type.restriction().get());
    }

    void addNeedsOf(const ov_element& child) {
        if (m_follow == Follow::AllChildren || !isOptional(child))
            addNeedsOfMember(child);
        else if (child.complexType().present())
            // Even an optional child stays, whatever its inline type names.
            addNeedsOf(child.complexType().get());
    }

private:
    template <typename Optional>
    void addPresent(const Optional& name) {
        if (name.present())
            add(name.get());
    }

    void addNeedsOfMember(const ov_element& element) {
        addPresent(element.type());
        if (element.complexType().present())
            addNeedsOf(element.complexType().get());
    }

    void addNeedsOf(const ov_complexContent& content) {
        if (content.extension().present()) {
            addPresent(content.extension()->base());
            addTypesOf(content.extension()->attribute());
        }
        if (content.restriction().present())
            addNeedsOf(content.restriction().get());
    }

    void addNeedsOf(const ov_restriction& restriction) {
        addPresent(restriction.base());
        addTypesOf(restriction.attribute());
    }

    template <typename Attributes>
    void addTypesOf(const Attributes& attributes) {
        for (const ov_attribute& attribute : attributes)
            addPresent(attribute.type());
    }

    Follow m_follow;
    DiscoveredNames m_names;
};

/// Types of one kind by name; of those with the same name, a std::unordered_map has the first.
template <template <typename...> typename Map, typename Types>
auto byName(const Types& types) {
    Map<std::string, const typename Types::value_type*> index;
    for (const auto& type : types)
        if (type.name().present())
            index.emplace(type.name().get(), &type);
    return index;
}

template <typename Index>
void addNeedsOfTypes(NeededTypes& needed, const Index& index, const std::string& name) {
    const auto [first, last] = index.equal_range(name);
    std::for_each(first, last, [&needed](const auto& type) { needed.addNeedsOf(*type.second); });
}

/// @return the names, with those of all types that they need, directly or through others
std::vector<std::string> withNeededTypes(const std::vector<std::string>& names, Follow follow,
                                         const ov_schema& schema) {
    const auto complexTypes = byName<std::unordered_multimap>(schema.complexType());
    const auto simpleTypes = byName<std::unordered_multimap>(schema.simpleType());
    NeededTypes needed(follow);
    for (const std::string& name : names)
        needed.add(name);
    for (std::size_t next = 0; next < needed.names().size(); ++next) {
        const std::string name = needed.names()[next];
        addNeedsOfTypes(needed, complexTypes, name);
        addNeedsOfTypes(needed, simpleTypes, name);
    }
    return needed.names();
}

void addChildren(XsdElementProperty& type, const ov_sequence& sequence) {
    for (const ov_element& element : sequence.element()) {
        auto child = std::make_shared<XsdChildElementProperty>();
        child->name = textOf(element.name());
        child->type = textOf(element.type());
        child->minOccurs = element.minOccurs().present() ? element.minOccurs().get() : 1;
        if (element.maxOccurs().present())
            child->maxOccurs = element.maxOccurs().get();
        type.children.push_back(std::move(child));
    }
}

template <typename Attributes>
void addAttributes(XsdElementProperty& type, const Attributes& attributes) {
    for (const ov_attribute& attribute : attributes)
        type.attributes.push_back(textOf(attribute.name()));
}

std::shared_ptr<XsdElementProperty> recordOf(const ov_complexType& complexType) {
    auto type = std::make_shared<XsdElementProperty>();
    type->type = textOf(complexType.name());
    for (const ov_sequence* sequence : sequencesOf(complexType))
        addChildren(*type, *sequence);
    if (complexType.complexContent().present() &&
        complexType.complexContent()->extension().present())
        addAttributes(*type, complexType.complexContent()->extension()->attribute());
    addAttributes(*type, complexType.attribute());
    return type;
}

std::shared_ptr<XsdElementProperty> recordOf(const ov_simpleType& simpleType) {
    auto type = std::make_shared<XsdElementProperty>();
    type->name = type->type = textOf(simpleType.name());
    return type;
}

} // namespace

XsdElement::XsdElement() = default;

XsdElement::XsdElement(const ov_schema& schema) : m_schema(std::make_shared<ov_schema>(schema)) {
    update();
    describe(); // now: where a schema is read, a lack of memory is reported
}

// getSchema(), which comes first, has the records described that are then copied.
XsdElement::XsdElement(const XsdElement& other)
    : m_schema(other.getSchema()), m_types(other.m_types), m_rootElements(other.m_rootElements) {}

XsdElement& XsdElement::operator=(const XsdElement& other) {
    m_schema = other.getSchema();
    m_types = other.m_types;
    m_rootElements = other.m_rootElements;
    m_isOutdated = false;
    return *this;
}

XsdElement::~XsdElement() = default;

std::vector<std::shared_ptr<XsdElementProperty>> XsdElement::getRootElements() {
    describe();
    return m_rootElements;
}

std::map<std::string, std::shared_ptr<XsdElementProperty>> XsdElement::getXsdTree() {
    describe();
    return m_types;
}

std::shared_ptr<XsdElementProperty> XsdElement::findType(const std::string& name) const {
    describe();
    const auto found = m_types.find(name);
    return found == m_types.end() ? nullptr : found->second;
}

std::shared_ptr<ov_schema> XsdElement::getSchema() const {
    describe(); // before the caller can change the document
    m_isHandedOut = true;
    return m_schema;
}

std::vector<std::string> XsdElement::getNeededTypes(const std::vector<std::string>& names) const {
    if (!m_schema)
        return {};
    std::vector<std::string> needed = withNeededTypes(names, Follow::AllChildren, *m_schema);
    const Names declared = declaredTypes(*m_schema);
    std::erase_if(needed, [&](const std::string& name) { return !declared.contains(name); });
    return needed;
}

void XsdElement::keepElements(const std::vector<std::string>& names) {
    if (!m_schema)
        return;
    std::vector<std::string> needed = requiredTypesOfRoots();
    needed.insert(needed.end(), names.begin(), names.end());

    Names gone = declaredTypes(*m_schema);
    keepOnly(withNeededTypes(needed, Follow::RequiredChildren, *m_schema));
    for (const std::string& name : declaredTypes(*m_schema))
        gone.erase(name);

    Names goneAsWritten;
    for (const auto& written :
         {typesOfRoots(), findChildElements(namesOf(m_schema->complexType()))})
        for (const std::string& name : written)
            if (gone.contains(name) || gone.contains(withoutPrefix(name)))
                goneAsWritten.insert(name);
    removeUsersOf(goneAsWritten, *m_schema);
    update();
}

void XsdElement::keepChildElement(const std::string& typeName,
                                  const std::vector<std::string>& names, bool byType,
                                  bool pruneTypes) {
    ov_complexType* const type = m_schema ? findComplexType(*m_schema, typeName) : nullptr;
    if (type == nullptr)
        return;
    const Names kept(names.begin(), names.end());
    removeOptionalChildren(*type, [&kept, byType](const ov_element& child) {
        return !kept.contains(textOf(byType ? child.type() : child.name()));
    });
    if (pruneTypes) {
        std::vector<std::string> needed = typesOfRoots();
        needed.push_back(typeName);
        keepOnly(withNeededTypes(needed, Follow::AllChildren, *m_schema));
    }
    update();
}

void XsdElement::keepChildAttributes(const std::string& typeName,
                                     const std::vector<std::string>& names) {
    ov_complexType* const type = m_schema ? findComplexType(*m_schema, typeName) : nullptr;
    if (type == nullptr)
        return;
    const Names kept(names.begin(), names.end());
    removeOptionalAttributes(type->attribute(), kept);
    if (type->complexContent().present() && type->complexContent()->extension().present())
        removeOptionalAttributes(type->complexContent()->extension()->attribute(), kept);
    update();
}

void XsdElement::update() {
    m_isOutdated = true;
    // Whoever has the document could change it before the next query.
    if (m_isHandedOut || m_schema.use_count() > 1)
        describe();
}

void XsdElement::describe() const {
    const std::lock_guard lock(m_describing);
    if (!m_isOutdated)
        return;
    m_types.clear();
    m_rootElements.clear();
    const auto enter = [this](std::shared_ptr<XsdElementProperty> type) {
        m_types.try_emplace(type->type, type);
    };
    for (const ov_complexType& type : m_schema->complexType())
        enter(recordOf(type));
    for (const ov_simpleType& type : m_schema->simpleType())
        enter(recordOf(type));
    for (const ov_rootElement& root : m_schema->element()) {
        const auto type = root.type().present() ? m_types.find(root.type().get()) : m_types.end();
        if (type == m_types.end())
            continue;
        type->second->name = textOf(root.name());
        m_rootElements.push_back(type->second);
    }
    m_isOutdated = false;
}

std::vector<std::string> XsdElement::requiredTypesOfRoots() const {
    const auto types = byName<std::unordered_map>(m_schema->complexType());
    NeededTypes needed(Follow::RequiredChildren);
    for (const ov_rootElement& root : m_schema->element()) {
        const auto type =
            root.type().present() ? types.find(withoutPrefix(root.type().get())) : types.end();
        if (type == types.end())
            continue;
        for (const ov_sequence* sequence : sequencesOf(*type->second))
            for (const ov_element& child : sequence->element())
                if (!isOptional(child)) {
                    // Even one without a type: it keeps the list from being empty.
                    needed.add(textOf(child.type()));
                    needed.addNeedsOf(child);
                }
    }
    return needed.names();
}

std::vector<std::string> XsdElement::typesOfRoots() const {
    std::vector<std::string> types;
    for (const ov_rootElement& root : m_schema->element())
        types.push_back(textOf(root.type()));
    return types;
}

std::vector<std::string> XsdElement::findChildElements(const std::vector<std::string>& names) {
    const Names listed(names.begin(), names.end());
    DiscoveredNames found;
    for (const ov_complexType& type : m_schema->complexType())
        if (listed.contains(textOf(type.name())))
            addChildTypes(type, found);
    return found.inOrder();
}

void XsdElement::keepOnly(const std::vector<std::string>& names) {
    deleteComplexType(names, true);
    deleteSimpleType(names, true);
}

void XsdElement::deleteComplexType(const std::vector<std::string>& names, bool keep) {
    deleteTypes(m_schema->complexType(), names, keep);
}

void XsdElement::deleteSimpleType(const std::vector<std::string>& names, bool keep) {
    deleteTypes(m_schema->simpleType(), names, keep);
}

} // namespace Orvant
