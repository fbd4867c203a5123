#include <ConfigurationFramework/losses/LossEffects.h>

#include <ConfigurationFramework/XsdLoss.h>
#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/schema/TypeNames.h>

#include <algorithm>
#include <initializer_list>
#include <ranges>
#include <unordered_map>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Namespace = SourceDocument::Namespace;
using Name = WrittenSchema::Name;
using Kind = Name::Kind;

constexpr std::string_view xmlNamespace = "http://www.w3.org/XML/1998/namespace";

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

bool isTrue(std::string_view value) {
    return value == "true" || value == "1";
}

const char* unless(bool isHarmless, const char* effect) {
    return isHarmless ? XsdLoss::documentationOnly : effect;
}

/// Whether a value keeps elements from having a derived type. Substitution groups, which it may
/// close as well, are not written.
bool blocksTypes(const std::string& value) {
    return value.find("#all") != std::string::npos ||
           value.find("extension") != std::string::npos ||
           value.find("restriction") != std::string::npos;
}

/// Whether a lost part of a content model could be there in a document.
bool canOccur(const WrittenSchema& schema, Index lost) {
    if (schema.text(lost, "maxOccurs") == "0")
        return false;
    for (Index node = lost; node < schema[lost].next; ++node)
        if (schema.document().isElement(node) &&
            isOneOf(schema[node].name, {"element", "any", "group"}))
            return true;
    return false;
}

} // namespace

LossEffects::LossEffects(const WrittenSchema& schema)
    : m_schema(schema),
      m_references(schema.source().references()),
      m_takesRivals(schema.document().nodes().size()),
      m_lists(m_takesRivals.size()),
      m_losesAttributes(m_takesRivals.size()),
      m_refusesEmpty(m_takesRivals.size()),
      m_listed(m_takesRivals.size()) {
    const auto nothing = [](Index) { return false; };
    const Index root = schema.document().root();
    for (const Index child : schema.document().children(root))
        if (schema.modelClass(child) == ModelClass::RootElement)
            m_rootTypes.emplace(schema.text(child, "name"), schema.text(child, "type"));
    m_references.forEachElement(root, nothing, [this](Index element) {
        const std::string referred = m_schema.text(element, "ref");
        if (!referred.empty() && !m_schema.isRemoved(element))
            m_referring[{m_schema[element].name, std::string(TypeNames::parts(referred).local)}]
                .push_back(element);
        m_hasAnyType = m_hasAnyType || isAnyType(element);
    });
    for (Index node = 0; node < m_lists.size(); ++node)
        if (schema.modelClass(node) == ModelClass::Enumeration)
            m_lists[m_schema[node].parent] = true;
    findRivals();
    findInherited();
}

const char* LossEffects::ofElement(Index element) const {
    const std::string& name = m_schema[element].name;
    if (!m_schema.isOfSchemas(element) || name == "annotation")
        return XsdLoss::documentationOnly;
    switch (m_schema.parentClass(element)) {
    case ModelClass::Schema:
        return inSchema(element);
    case ModelClass::ComplexContent:
        return XsdLoss::notValid;
    case ModelClass::SimpleType:
        return unless(!isOneOf(name, {"restriction", "list", "union"}), XsdLoss::notValid);
    case ModelClass::ComplexType:
    case ModelClass::Extension:
    case ModelClass::Sequence:
    case ModelClass::Choice:
    case ModelClass::Restriction:
        break;
    case ModelClass::Element:
    case ModelClass::RootElement:
    case ModelClass::Attribute:
        return ofInlineType(element);
    default:
        return XsdLoss::documentationOnly;
    }
    if (isOneOf(name, {"element", "any", "group", "choice", "sequence", "all"}))
        return unless(!canOccur(m_schema, element), XsdLoss::acceptsLess);
    if (isOneOf(name, {"attribute", "attributeGroup", "anyAttribute"}))
        return ofAttributes(element);
    if (isOneOf(name, {"simpleContent", "complexContent", "openContent"}))
        return XsdLoss::acceptsLess;
    return ofFacet(element);
}

const char* LossEffects::inSchema(Index element) const {
    const std::string& name = m_schema[element].name;
    if (name == "import")
        return unless(m_schema.text(element, "schemaLocation").empty() ||
                          m_schema.text(element, "namespace") == xmlNamespace,
                      XsdLoss::acceptsLess);
    if (isOneOf(name, {"group", "attributeGroup"}))
        return ofDefinition(element, XsdLoss::documentationOnly);
    if (name == "attribute")
        return ofDefinition(element, unless(!m_hasAnyType, XsdLoss::acceptsMore));
    return unless(name == "notation", XsdLoss::acceptsLess);
}

/// What the losses of all references to a definition mean, which is never written.
const char* LossEffects::ofDefinition(Index definition, const char* effect) const {
    const auto referring =
        m_referring.find({m_schema[definition].name, m_schema.text(definition, "name")});
    if (referring == m_referring.end())
        return effect;
    for (const Index reference : referring->second)
        if (!m_schema.isLost(reference) || ofElement(reference) == XsdLoss::acceptsLess)
            return XsdLoss::acceptsLess;
        else if (ofElement(reference) == XsdLoss::acceptsMore)
            effect = XsdLoss::acceptsMore;
    return effect;
}

/// Attributes of a type that are not written: refused, except where the base has them, without what
/// a restriction says of them.
const char* LossEffects::ofAttributes(Index element) const {
    const bool isProhibited = m_schema.text(element, "use") == "prohibited";
    if (m_schema.parentClass(element) != ModelClass::Restriction)
        return unless(isProhibited, XsdLoss::acceptsLess);
    if (isProhibited)
        return XsdLoss::acceptsMore;
    if (m_schema[element].name == "anyAttribute")
        return XsdLoss::acceptsLess;
    const auto name = m_schema.writtenMeaning(m_schema[element].parent, "base");
    const Index base = name ? m_schema.writtenType(*name) : SourceDocument::none;
    if (base == SourceDocument::none)
        return XsdLoss::acceptsLess;
    return m_losesAttributes[base] ? XsdLoss::acceptsLess : XsdLoss::acceptsMore;
}

const char* LossEffects::ofFacet(Index facet) const {
    const std::string& name = m_schema[facet].name;
    const Index restriction = m_schema[facet].parent;
    if (name == "simpleType")
        return m_schema.text(restriction, "base").empty() ? XsdLoss::notValid
                                                          : XsdLoss::acceptsMore;
    if (name == "enumeration" && m_lists[restriction])
        return XsdLoss::acceptsLess;
    if (name == "whiteSpace")
        return unless(!normalisesListed(facet), XsdLoss::acceptsLess);
    return unless(name == "minLength" && m_schema.text(facet, "value") == "0",
                  XsdLoss::acceptsMore);
}

bool LossEffects::losesAttributes(Index type) const {
    for (const Index child : m_schema.document().children(m_schema.holder(type)))
        if (m_schema.isLost(child) &&
            isOneOf(m_schema[child].name, {"attribute", "attributeGroup", "anyAttribute"}))
            return true;
    return false;
}

/// Whether a simple type, apart from its bases, takes an element without content.
bool LossEffects::takesEmpty(Index type) const {
    const Index holder = m_schema.holder(type);
    if (!m_lists[holder])
        return true;
    for (const Index child : m_schema.document().children(holder))
        if (m_schema.modelClass(child) == ModelClass::Enumeration &&
            m_schema.text(child, "value").empty())
            return true;
    return false;
}

/// Finds what types have from their bases. The values of a text type are compared with those that
/// it, its bases, or types of the schema that are derived from it list.
void LossEffects::findInherited() {
    const auto& types = m_schema.typesAfterBases();
    const auto lists = [this](Index type) { return m_lists[m_schema.holder(type)]; };
    const auto isGlobal = [this](Index type) {
        return m_schema.modelClass(type) == ModelClass::SimpleType &&
               m_schema[type].parent == m_schema.document().root();
    };
    std::vector<bool> byDerived(m_listed.size());
    for (const Index type : types | std::views::reverse) {
        const Index base = m_schema.base(type);
        byDerived[type] = byDerived[type] || lists(type);
        if (byDerived[type] && base != SourceDocument::none && isGlobal(type))
            byDerived[base] = true;
    }
    std::vector<bool> byBase(m_listed.size());
    for (const Index type : types) {
        const Index base = m_schema.base(type);
        const bool isDerived = base != SourceDocument::none;
        m_losesAttributes[type] = (isDerived && m_losesAttributes[base]) || losesAttributes(type);
        m_refusesEmpty[type] = (isDerived && m_refusesEmpty[base]) || !takesEmpty(type);
        byBase[type] = (isDerived && byBase[base]) || lists(type);
        m_listed[type] = (byBase[type] || byDerived[type]) && isGlobal(type) &&
                         (m_schema.derivesFrom(type, "string") ||
                          m_schema.derivesFrom(type, "normalizedString"));
    }
}

/// Whether values with white space around them would no longer be among the ones that are listed.
bool LossEffects::normalisesListed(Index whiteSpace) const {
    return m_schema.text(whiteSpace, "value") != "preserve" &&
           m_listed[m_schema[m_schema[whiteSpace].parent].parent];
}

/// What an element or attribute holds besides annotations: types, and constraints on its content.
/// Without its type, it takes anything.
const char* LossEffects::ofInlineType(Index type) const {
    const std::string& name = m_schema[type].name;
    if (name == "complexType")
        return m_takesRivals[type] ? XsdLoss::acceptsLess : XsdLoss::acceptsMore;
    if (name != "simpleType")
        return XsdLoss::acceptsMore;
    // Without xs:ID, references to it lead nowhere.
    for (Index node = type; node < m_schema[type].next; ++node)
        if (const auto base = m_schema.meaning(node, "base"))
            if (*base == Name{Kind::BuiltIn, "ID"})
                return XsdLoss::acceptsLess;
    return XsdLoss::acceptsMore;
}

/// Finds what has elements, at any depth, that are root elements of another type: where anything is
/// taken, they are validated as these.
void LossEffects::findRivals() {
    const auto nothing = [](Index) { return false; };
    std::vector<Index> open; // what is in such, or refers to it
    std::map<std::pair<SchemaReferences::Kind, std::string_view>, std::vector<Index>> referring;
    m_references.forEachElement(m_schema.document().root(), nothing, [&](Index element) {
        if (isRivalOfRoot(element))
            open.push_back(element);
        for (const auto& [kind, name] : m_references.of(element))
            referring[{kind, name}].push_back(element);
    });
    std::unordered_map<Index, std::vector<Index>*> ofDeclarations;
    for (auto& [declared, elements] : referring)
        for (const Index declaration : m_references.declarations(declared.first, declared.second))
            ofDeclarations.emplace(declaration, &elements);
    while (!open.empty()) {
        Index node = open.back();
        open.pop_back();
        for (; node != SourceDocument::none && !m_takesRivals[node]; node = m_schema[node].parent) {
            m_takesRivals[node] = true;
            if (const auto found = ofDeclarations.find(node); found != ofDeclarations.end()) {
                open.insert(open.end(), found->second->begin(), found->second->end());
                found->second->clear();
            }
        }
    }
}

bool LossEffects::isRivalOfRoot(Index element) const {
    const auto root = m_rootTypes.find(m_schema.text(element, "name"));
    return root != m_rootTypes.end() && !root->second.empty() &&
           m_schema[element].name == "element" &&
           m_schema[element].parent != m_schema.document().root() &&
           root->second != m_schema.text(element, "type");
}

/// Whether an element takes anything, and validates what it knows of it.
bool LossEffects::isAnyType(Index element) const {
    const ModelClass written = m_schema.modelClass(element);
    const Name anyType{Kind::BuiltIn, "anyType"};
    const auto names = [&](std::string_view attribute) {
        return m_schema.writtenMeaning(element, attribute) == anyType;
    };
    if (written == ModelClass::Extension || written == ModelClass::Restriction)
        return names("base");
    if (written != ModelClass::Element && written != ModelClass::RootElement)
        return false;
    return names("type") ||
           (m_schema.text(element, "type").empty() &&
            m_schema.child(element, ModelClass::ComplexType) == SourceDocument::none);
}

const char* LossEffects::ofAttribute(Index element, std::string_view attribute) const {
    const std::string value = m_schema.text(element, attribute);
    switch (m_schema.modelClass(element)) {
    case ModelClass::Schema:
        return ofSchemaAttribute(attribute, value);
    case ModelClass::Sequence:
    case ModelClass::Choice:
        return ofOccurrence(element, attribute, value);
    case ModelClass::ComplexType:
    case ModelClass::ComplexContent:
        if (attribute == "mixed")
            return unless(!isTrue(value), XsdLoss::acceptsLess);
        if (attribute == "abstract")
            return unless(!isTrue(value), XsdLoss::acceptsMore);
        return unless(attribute != "block" || !blocksTypes(value), XsdLoss::acceptsMore);
    case ModelClass::Element:
    case ModelClass::RootElement:
    case ModelClass::Attribute:
        return ofElementAttribute(element, attribute, value);
    default:
        return XsdLoss::documentationOnly;
    }
}

const char* LossEffects::ofAbsence(std::string_view attribute) const {
    const Index root = m_schema.document().root();
    if (m_schema[root].nameSpace != Namespace::XmlSchema ||
        m_schema.document().attribute(root, attribute) != nullptr)
        return nullptr;
    if (attribute == "targetNamespace")
        return XsdLoss::acceptsLess;
    return attribute == "elementFormDefault" &&
                   ofSchemaAttribute(attribute, {}) == XsdLoss::acceptsLess
               ? XsdLoss::acceptsLess
               : nullptr;
}

const char* LossEffects::ofSchemaAttribute(std::string_view attribute,
                                           const std::string& value) const {
    if (attribute == "targetNamespace" || attribute == "defaultAttributes")
        return XsdLoss::acceptsLess;
    if (attribute == "elementFormDefault") // without a namespace, it means nothing
        return unless(m_schema.targetNamespace().empty() || !hasNamed(ModelClass::Element),
                      XsdLoss::acceptsLess);
    if (attribute == "attributeFormDefault")
        return unless(value != "qualified" || !hasNamed(ModelClass::Attribute),
                      XsdLoss::acceptsLess);
    return unless(attribute != "blockDefault" || !blocksTypes(value), XsdLoss::acceptsMore);
}

/// Whether there is an element or attribute of a type that does not say itself which form its name
/// has.
bool LossEffects::hasNamed(ModelClass modelClass) const {
    for (Index node = 0; node < m_schema.document().nodes().size(); ++node)
        if (m_schema.modelClass(node) == modelClass && !m_schema.text(node, "name").empty() &&
            m_schema.text(node, "form").empty())
            return true;
    return false;
}

const char* LossEffects::ofElementAttribute(Index element, std::string_view attribute,
                                            const std::string& value) const {
    const bool isAttribute = m_schema.modelClass(element) == ModelClass::Attribute;
    if (attribute == "ref")
        return XsdLoss::notValid;
    if (attribute == "targetNamespace")
        return XsdLoss::acceptsLess;
    if (attribute == "form") // the schema that is written qualifies elements, but not attributes
        return unless((value == "qualified") != isAttribute, XsdLoss::acceptsLess);
    if (attribute == "fixed")
        return isAttribute ? XsdLoss::acceptsMore : ofFixedOrDefault(element, XsdLoss::acceptsMore);
    if (isAttribute)
        return XsdLoss::documentationOnly;
    if (attribute == "default")
        return ofFixedOrDefault(element, XsdLoss::documentationOnly);
    if (attribute == "nillable")
        return unless(!isTrue(value), XsdLoss::acceptsLess);
    if (attribute == "abstract")
        return unless(!isTrue(value), XsdLoss::acceptsMore);
    if (attribute == "substitutionGroup")
        return ofSubstitution(element);
    return unless(attribute != "block" || !blocksTypes(value), XsdLoss::acceptsMore);
}

/// An element without content has such a value; its type may not take it empty.
const char* LossEffects::ofFixedOrDefault(Index element, const char* otherwise) const {
    const auto name = m_schema.writtenMeaning(element, "type");
    const Index type = name ? m_schema.writtenType(*name) : SourceDocument::none;
    if (!name || m_schema.modelClass(type == SourceDocument::none ? element : type) ==
                     ModelClass::ComplexType)
        return otherwise;
    if (name->kind == Kind::BuiltIn)
        return isOneOf(name->local, {"string", "normalizedString", "token", "anyURI", "anyType",
                                     "anySimpleType", "hexBinary", "base64Binary"})
                   ? otherwise
                   : XsdLoss::acceptsLess;
    if (type == SourceDocument::none)
        return otherwise;
    const bool isText = std::ranges::any_of(
        std::initializer_list<std::string_view>{"string", "normalizedString", "token", "anyURI"},
        [&](std::string_view text) { return m_schema.derivesFrom(type, text); });
    return isText && !m_refusesEmpty[type] ? otherwise : XsdLoss::acceptsLess;
}

/// Elements that stand for another one where that is referred to, and have its type if they have
/// none of their own.
const char* LossEffects::ofSubstitution(Index element) const {
    const std::string head = m_schema.text(element, "substitutionGroup");
    if (m_referring.contains({"element", std::string(TypeNames::parts(head).local)}))
        return XsdLoss::acceptsLess;
    bool hasType = !m_schema.text(element, "type").empty();
    for (const Index child : m_schema.document().children(element))
        hasType = hasType || isOneOf(m_schema[child].name, {"complexType", "simpleType"});
    return unless(hasType, XsdLoss::acceptsMore);
}

const char* LossEffects::ofOccurrence(Index group, std::string_view attribute,
                                      const std::string& value) const {
    bool canBeThere = false;
    bool canBeEmpty = m_schema.modelClass(group) == ModelClass::Sequence;
    for (const Index child : m_schema.document().children(group)) {
        if (m_schema.modelClass(child) != ModelClass::Element)
            continue;
        const bool isOptional = m_schema.text(child, "minOccurs") == "0";
        canBeThere = canBeThere || m_schema.text(child, "maxOccurs") != "0";
        canBeEmpty = m_schema.modelClass(group) == ModelClass::Sequence ? canBeEmpty && isOptional
                                                                        : canBeEmpty || isOptional;
    }
    if (attribute == "minOccurs")
        return unless(value == "1" || canBeEmpty,
                      value == "0" ? XsdLoss::acceptsLess : XsdLoss::acceptsMore);
    if (attribute == "maxOccurs" && value == "0")
        return canBeEmpty ? XsdLoss::acceptsMore : XsdLoss::acceptsLess;
    return unless(attribute != "maxOccurs" || value == "1" || !canBeThere, XsdLoss::acceptsLess);
}

} // namespace Orvant
