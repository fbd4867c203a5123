#include <ConfigurationFramework/source/SchemaReferences.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/schema/TypeNames.h>

#include <algorithm>
#include <optional>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Kind = SchemaReferences::Kind;

const SchemaReferences::Nodes s_none;

/// @return as what an element can be referred to; nothing if it cannot be
std::optional<Kind> declaredKind(std::string_view element) {
    if (element == "complexType" || element == "simpleType")
        return Kind::Type;
    if (element == "element")
        return Kind::Element;
    if (element == "attribute")
        return Kind::Attribute;
    if (element == "group")
        return Kind::Group;
    if (element == "attributeGroup")
        return Kind::AttributeGroup;
    if (element == "key" || element == "unique")
        return Kind::Key;
    return std::nullopt;
}

/// @return as what an attribute of an element refers to something; nothing if it does not
std::optional<Kind> referredKind(std::string_view attribute, std::string_view element) {
    if (attribute == "type" || attribute == "base" || attribute == "itemType" ||
        attribute == "memberTypes")
        return Kind::Type;
    if (attribute == "substitutionGroup")
        return Kind::Element;
    if (attribute == "refer")
        return Kind::Key;
    return attribute == "ref" ? declaredKind(element) : std::nullopt;
}

/// Applies an action to each of the names in a list.
template <typename Action>
void forEachName(std::string_view names, Action action) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    while (true) {
        names.remove_prefix(std::min(names.find_first_not_of(whiteSpace), names.size()));
        if (names.empty())
            return;
        const auto end = std::min(names.find_first_of(whiteSpace), names.size());
        action(names.substr(0, end));
        names.remove_prefix(end);
    }
}

template <typename ByName>
const SchemaReferences::Nodes& nodesOf(const ByName& byName, std::string_view name) {
    const auto found = byName.find(name);
    return found == byName.end() ? s_none : found->second;
}

} // namespace

SchemaReferences::SchemaReferences(const SourceDocument& document) : m_document(document) {
    if (const std::string* const target = document.attribute(document.root(), "targetNamespace"))
        m_target = *target;
    if (const std::string* const group = document.attribute(document.root(), "defaultAttributes"))
        m_defaultAttributes = TypeNames::parts(*group).local;
    const auto nothing = [](Index) { return false; };
    forEachElement(document.root(), nothing, [this](Index element) { declare(element); });
}

void SchemaReferences::declare(Index element) {
    const std::string* const name = m_document.attribute(element, "name");
    const auto kind = declaredKind(m_document[element].name);
    if (name == nullptr || !kind)
        return;
    // Others are in a type or a group: they are no declarations that can be referred to.
    const Index parent = m_document[element].parent;
    const bool isGlobal =
        parent == m_document.root() ||
        (parent != SourceDocument::none && m_document[parent].parent == m_document.root() &&
         (m_document[parent].name == "redefine" || m_document[parent].name == "override"));
    if (*kind == Kind::Key || isGlobal)
        m_declarations[static_cast<std::size_t>(*kind)][*name].push_back(element);
    if (const std::string* const heads = m_document.attribute(element, "substitutionGroup"))
        forEachName(*heads, [&](std::string_view head) {
            m_substitutes[TypeNames::parts(head).local].push_back(element);
        });
}

std::vector<SchemaReferences::Reference> SchemaReferences::of(Index element) const {
    std::vector<Reference> references;
    for (const SourceDocument::Attribute& attribute : m_document.attributes(element))
        if (const auto kind = referredKind(attribute.name, m_document[element].name))
            forEachName(attribute.value, [&](std::string_view name) {
                if (isOwn(name, element))
                    references.push_back({*kind, TypeNames::parts(name).local});
            });
    if (!m_defaultAttributes.empty() && m_document[element].name == "complexType")
        references.push_back({Kind::AttributeGroup, m_defaultAttributes});
    return references;
}

const SchemaReferences::Nodes& SchemaReferences::declarations(Kind kind,
                                                              std::string_view name) const {
    return nodesOf(m_declarations[static_cast<std::size_t>(kind)], name);
}

const SchemaReferences::Nodes& SchemaReferences::substitutes(std::string_view element) const {
    return nodesOf(m_substitutes, element);
}

bool SchemaReferences::isPartOfSchema(Index element) const {
    const SourceDocument::Node& node = m_document[element];
    return (node.nameSpace == SourceDocument::Namespace::XmlSchema ||
            node.nameSpace == SourceDocument::Namespace::Reader) &&
           node.name != "annotation";
}

bool SchemaReferences::isOwn(std::string_view name, Index element) const {
    const auto nameSpace = m_document.nameSpaceOf(TypeNames::parts(name).prefix, element);
    return !nameSpace || nameSpace->empty() || *nameSpace == m_target ||
           *nameSpace == SchemaNamespaces::reader;
}

} // namespace Orvant
