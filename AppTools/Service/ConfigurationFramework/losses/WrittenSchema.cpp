#include <ConfigurationFramework/losses/WrittenSchema.h>

#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/schema/TypeNames.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Kind = WrittenSchema::Name::Kind;

long occurrences(const std::string& text) {
    if (text.empty())
        return 1;
    long number = WrittenSchema::unbounded;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

bool isParticle(std::string_view name) {
    static constexpr std::array s_particles{"element", "any", "group", "choice", "sequence", "all"};
    return std::ranges::find(s_particles, name) != s_particles.end();
}

} // namespace

WrittenSchema::WrittenSchema(const SchemaSource& source, const std::vector<Index>& removed)
    : m_source(source),
      m_targetNamespace(text(document().root(), "targetNamespace")),
      m_written(document().nodes().size()),
      m_removed(m_written.size()) {
    for (Index node = 0; node < m_written.size(); ++node) {
        const Index parent = document()[node].parent;
        const bool isOutermost = parent == SourceDocument::none;
        m_removed[node] =
            (!isOutermost && m_removed[parent]) || std::ranges::binary_search(removed, node);
        m_written[node] = !m_removed[node] && (isOutermost || m_written[parent]) &&
                          source.modelClass(node) != ModelClass::None;
    }
    for (const Index type : document().children(document().root()))
        if (document().isElement(type) &&
            (document()[type].name == "complexType" || document()[type].name == "simpleType"))
            m_types.try_emplace(text(type, "name"), type);
    orderTypes();
}

bool WrittenSchema::isType(Index node) const {
    return modelClass(node) == ModelClass::ComplexType ||
           modelClass(node) == ModelClass::SimpleType;
}

void WrittenSchema::orderTypes() {
    m_bases.assign(m_written.size(), SourceDocument::none);
    m_origins = m_bases;
    std::unordered_map<Index, std::vector<Index>> derived;
    for (Index type = 0; type < m_written.size(); ++type) {
        if (!isType(type))
            continue;
        const Index restriction = derivation(type);
        const auto name = restriction == SourceDocument::none ? std::nullopt
                                                              : writtenMeaning(restriction, "base");
        m_bases[type] = name ? writtenType(*name) : SourceDocument::none;
        derived[m_bases[type]].push_back(type);
    }
    const auto addWithDerived = [&](Index outermost) {
        std::vector<Index> open{outermost};
        while (!open.empty()) {
            const Index type = open.back();
            open.pop_back();
            if (m_origins[type] != SourceDocument::none)
                continue;
            m_origins[type] = outermost;
            m_typesAfterBases.push_back(type);
            if (const auto further = derived.find(type); further != derived.end())
                open.insert(open.end(), further->second.begin(), further->second.end());
        }
    };
    for (const Index type : derived[SourceDocument::none])
        addWithDerived(type);
    for (Index type = 0; type < m_written.size(); ++type)
        if (isType(type) && m_origins[type] == SourceDocument::none) {
            m_bases[type] = SourceDocument::none;
            addWithDerived(type);
        }
}

bool WrittenSchema::isLost(Index node) const {
    const Index parent = document()[node].parent;
    return !m_written[node] && !m_removed[node] &&
           (parent == SourceDocument::none || m_written[parent]);
}

bool WrittenSchema::isReaders() const {
    return document()[document().root()].nameSpace == SourceDocument::Namespace::Reader;
}

bool WrittenSchema::isOfSchemas(Index element) const {
    const auto nameSpace = document()[element].nameSpace;
    return nameSpace == SourceDocument::Namespace::XmlSchema ||
           nameSpace == SourceDocument::Namespace::Reader;
}

ModelClass WrittenSchema::modelClass(Index node) const {
    return m_written[node] ? m_source.modelClass(node) : ModelClass::None;
}

ModelClass WrittenSchema::parentClass(Index node) const {
    const Index parent = document()[node].parent;
    return parent == SourceDocument::none ? ModelClass::None : modelClass(parent);
}

Index WrittenSchema::child(Index element, ModelClass modelClass) const {
    for (const Index child : document().children(element))
        if (this->modelClass(child) == modelClass)
            return child;
    return SourceDocument::none;
}

std::string WrittenSchema::text(Index element, std::string_view attribute) const {
    const std::string* const value = document().attribute(element, attribute);
    return value == nullptr ? std::string() : TypeNames::collapsed(*value);
}

std::optional<WrittenSchema::Name> WrittenSchema::meaning(Index element,
                                                          std::string_view attribute) const {
    if (document().attribute(element, attribute) == nullptr)
        return std::nullopt;
    return resolved(text(element, attribute), element);
}

WrittenSchema::Name WrittenSchema::resolved(std::string_view name, Index element) const {
    const auto [prefix, local] = TypeNames::parts(name);
    const auto nameSpace = document().nameSpaceOf(prefix, element);
    if (nameSpace == SchemaNamespaces::xmlSchema)
        return {Kind::BuiltIn, std::string(local)};
    if (nameSpace == targetNamespace())
        return {Kind::Own, std::string(local)};
    if (!isReaders())
        return {Kind::Other, std::string(name)};
    // Names are as in the suite, although the header need not declare xs: and ov:.
    Name own{Kind::Own, std::string(local)};
    if (prefix.empty())
        return declaredType(own) == SourceDocument::none && LineRewriting::isRestored("type", local)
                   ? Name{Kind::BuiltIn, own.local}
                   : own;
    if (prefix == "ov" || nameSpace == SchemaNamespaces::reader)
        return own;
    if (prefix == "xs" && !nameSpace)
        return {Kind::BuiltIn, std::string(local)};
    return {Kind::Other, std::string(name)};
}

std::optional<WrittenSchema::Name> WrittenSchema::writtenMeaning(Index element,
                                                                 std::string_view attribute) const {
    const auto value = m_source.attribute(element, attribute);
    if (!value)
        return std::nullopt;
    const std::string name = TypeNames::collapsed(*value);
    const auto [prefix, local] = TypeNames::parts(name);
    if (prefix == "xs" || LineRewriting::isRestored(attribute, *value))
        return Name{Kind::BuiltIn, std::string(local)};
    if (prefix.empty() || prefix == "ov")
        return Name{Kind::Own, std::string(local)};
    return Name{Kind::Other, name};
}

Index WrittenSchema::declaredType(const Name& name) const {
    const auto found = name.kind == Kind::Own ? m_types.find(name.local) : m_types.end();
    return found == m_types.end() ? SourceDocument::none : found->second;
}

Index WrittenSchema::writtenType(const Name& name) const {
    const Index type = declaredType(name);
    return type != SourceDocument::none && m_written[type] ? type : SourceDocument::none;
}

Index WrittenSchema::derivation(Index type) const {
    Index holder = type;
    if (modelClass(type) == ModelClass::ComplexType) {
        holder = child(type, ModelClass::ComplexContent);
        if (holder == SourceDocument::none)
            return holder;
        const Index extension = child(holder, ModelClass::Extension);
        if (extension != SourceDocument::none)
            return extension;
    }
    return child(holder, ModelClass::Restriction);
}

Index WrittenSchema::holder(Index type) const {
    const Index holder = derivation(type);
    return holder == SourceDocument::none ? type : holder;
}

bool WrittenSchema::derivesFrom(Index type, std::string_view builtIn) const {
    const Index holder = derivation(m_origins[type]);
    return holder != SourceDocument::none &&
           writtenMeaning(holder, "base") == Name{Kind::BuiltIn, std::string(builtIn)};
}

std::vector<WrittenSchema::Place> WrittenSchema::ownContent(Index type) const {
    std::vector<Place> content;
    addContent(content, holder(type));
    return content;
}

void WrittenSchema::addContent(std::vector<Place>& content, Index holder) const {
    for (const Index node : document().children(holder)) {
        const ModelClass held = modelClass(node);
        if (held == ModelClass::Sequence)
            addContent(content, node);
        else if (held == ModelClass::Element)
            content.push_back({particle(node)});
        else if (held == ModelClass::Choice) {
            Place place;
            for (const Index element : document().children(node))
                if (modelClass(element) == ModelClass::Element)
                    place.push_back(particle(element));
            content.push_back(std::move(place));
        } else if (isLost(node) && document().isElement(node) && isParticle(document()[node].name))
            content.push_back({{node, {}, 0, 0}});
    }
}

WrittenSchema::Particle WrittenSchema::particle(Index node) const {
    return {node, text(node, "name"), occurrences(text(node, "minOccurs")),
            occurrences(text(node, "maxOccurs"))};
}

bool WrittenSchema::canBeEmpty(const Place& place) {
    return place.empty() || std::ranges::any_of(place, [](const Particle& particle) {
               return particle.minimum == 0;
           });
}

} // namespace Orvant
