#include <ConfigurationFramework/source/SchemaPruning.h>

#include <ConfigurationFramework/schema/TypeNames.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Nodes = std::vector<Index>;
using Kind = SchemaReferences::Kind;

/// Takes back what was removed until nothing that stays needs anything of the rest.
class Pruning {
public:
    Pruning(const SchemaReferences& references, const Nodes& removed)
        : m_document(references.document()),
          m_references(references),
          m_removed(removed),
          m_isCut(m_document.nodes().size(), false) {
        for (const Index node : removed) {
            m_isCut[node] = true;
            if (!isGlobal(node))
                m_removedFrom[typeAround(node)][nameOf(node)].push_back(node);
        }
        m_toVisit.push_back(m_document.root());
    }

    SchemaPruning decide() {
        for (const Index node : m_removed)
            if (m_document[node].inEntity)
                takeBack(node); // its text is not in the schema
        do
            visitAll();
        while (takeBackWhatRestrictionsRepeat());
        return result();
    }

private:
    /// What a group or a restriction has, without what is in a type within it.
    struct Members {
        std::vector<std::string> names; ///< as of nameOf()
        Nodes groups;                   ///< that are referred to
    };

    bool isType(Index node) const {
        return m_document[node].name == "complexType" || m_document[node].name == "simpleType";
    }
    bool isGlobal(Index node) const { return m_document[node].parent == m_document.root(); }
    auto isCut() const {
        return [this](Index node) -> bool { return m_isCut[node]; };
    }
    /// Leaves out the types within a node, too.
    auto isCutOrTypeIn(Index outer) const {
        return
            [this, outer](Index node) { return m_isCut[node] || (node != outer && isType(node)); };
    }

    /// @return whether that changes anything
    bool takeBack(Index node) {
        if (!m_isCut[node])
            return false;
        m_isCut[node] = false;
        m_toVisit.push_back(node);
        return true;
    }

    /// Takes back what is named by that which stays.
    void visitAll() {
        while (!m_toVisit.empty()) {
            const Index next = m_toVisit.back();
            m_toVisit.pop_back();
            m_references.forEachElement(next, isCut(), [this](Index element) {
                for (const auto& [kind, name] : m_references.of(element))
                    if (m_named.at(static_cast<std::size_t>(kind)).insert(name).second)
                        takeBackDeclarations(kind, name);
            });
        }
    }

    void takeBackDeclarations(Kind kind, std::string_view name) {
        for (Index node : m_references.declarations(kind, name)) {
            takeBack(node);
            if (kind != Kind::Key)
                continue;
            while ((node = m_document[node].parent) != SourceDocument::none)
                takeBack(node); // a key may be within what was removed
        }
    }

    /// A restriction may only repeat what its base has. So a base keeps what is repeated.
    bool takeBackWhatRestrictionsRepeat() {
        if (m_removedFrom.empty())
            return false;
        bool isChanged = false;
        m_references.forEachElement(m_document.root(), isCut(), [&](Index element) {
            if (m_document[element].name == "restriction" && restrictsContent(element))
                isChanged = takeBackFromBases(element) || isChanged;
        });
        return isChanged;
    }

    bool restrictsContent(Index restriction) const {
        const std::string& parent = m_document[m_document[restriction].parent].name;
        return parent == "complexContent" || parent == "simpleContent";
    }

    bool takeBackFromBases(Index restriction) {
        const Nodes bases = reducedBases(restriction);
        if (bases.empty())
            return false;
        bool isChanged = false;
        forEachName(restriction, [&](const std::string& name) {
            for (const Index base : bases) {
                const auto& removed = m_removedFrom.at(base);
                const auto found = removed.find(name);
                if (found != removed.end())
                    for (const Index node : found->second)
                        isChanged = takeBack(node) || isChanged;
            }
        });
        return isChanged;
    }

    /// @return the types that a restriction is derived from and that something was removed from
    Nodes reducedBases(Index restriction) {
        Nodes bases;
        std::unordered_set<Index> known;
        for (Index type = nearestReduced(baseOf(restriction));
             type != SourceDocument::none && known.insert(type).second;
             type = nearestReduced(baseOf(type)))
            bases.push_back(type);
        return bases;
    }

    /// @return the first of a type and its bases of which something was removed, or none. Found
    ///         once for each type: there may be many types in a row.
    Index nearestReduced(Index type) {
        Nodes passed;
        Index nearest = SourceDocument::none;
        for (; type != SourceDocument::none; type = baseOf(type)) {
            const auto [known, isNew] =
                m_nearestReduced.try_emplace(type, SourceDocument::none); // none: a circle
            if (!isNew) {
                nearest = known->second;
                break;
            }
            passed.push_back(type);
            if (m_removedFrom.contains(type)) {
                nearest = type;
                break;
            }
        }
        for (const Index other : passed)
            m_nearestReduced[other] = nearest;
        return nearest;
    }

    /// @return the type that a type or restriction is derived from, or none
    Index baseOf(Index element) {
        const auto [known, isNew] = m_bases.try_emplace(element, SourceDocument::none);
        if (isNew)
            m_references.forEachElement(element, isCutOrTypeIn(element), [&](Index part) {
                if (m_document.attribute(part, "base") == nullptr)
                    return;
                for (const auto& [kind, name] : m_references.of(part))
                    for (const Index type : m_references.declarations(kind, name))
                        known->second = type;
            });
        return known->second;
    }

    /// Applies an action to the names of the elements and attributes of a restriction, in groups
    /// too.
    template <typename Action>
    void forEachName(Index restriction, Action action) {
        const Members own = membersOf(restriction);
        std::ranges::for_each(own.names, action);
        Nodes groups = own.groups;
        std::unordered_set<Index> known(groups.begin(), groups.end());
        while (!groups.empty()) {
            const Index group = groups.back();
            groups.pop_back();
            const auto [members, isNew] = m_groups.try_emplace(group);
            if (isNew)
                members->second = membersOf(group);
            std::ranges::for_each(members->second.names, action);
            for (const Index other : members->second.groups)
                if (known.insert(other).second)
                    groups.push_back(other);
        }
    }

    Members membersOf(Index outer) const {
        Members members;
        m_references.forEachElement(outer, isCutOrTypeIn(outer), [&](Index element) {
            members.names.push_back(nameOf(element));
            for (const auto& [kind, name] : m_references.of(element)) {
                if (kind == Kind::Group || kind == Kind::AttributeGroup)
                    std::ranges::copy(m_references.declarations(kind, name),
                                      std::back_inserter(members.groups));
                else if (kind == Kind::Element)
                    addHeads(name, members.names);
            }
        });
        return members;
    }

    /// Adds the names of the elements that one may stand for: a base may have these instead.
    void addHeads(std::string_view element, std::vector<std::string>& names) const {
        std::vector<std::string_view> toFollow{element};
        std::unordered_set<std::string_view> known{element};
        while (!toFollow.empty()) {
            const std::string_view next = toFollow.back();
            toFollow.pop_back();
            for (const Index declaration : m_references.declarations(Kind::Element, next))
                for (const auto& [kind, head] : m_references.of(declaration))
                    if (kind == Kind::Element && known.insert(head).second) {
                        names.emplace_back(head);
                        toFollow.push_back(head);
                    }
        }
    }

    /// @return the name of what is declared or referred to, with @ for an attribute
    std::string nameOf(Index node) const {
        std::string name = m_document[node].name == "attribute" ? "@" : "";
        if (const std::string* const declared = m_document.attribute(node, "name"))
            name += *declared;
        else if (const std::string* const reference = m_document.attribute(node, "ref"))
            name += TypeNames::parts(*reference).local;
        return name;
    }

    SchemaPruning result() const {
        SchemaPruning result;
        std::vector<std::string> parts;
        for (const Index node : m_removed) {
            if (m_isCut[node])
                result.cut.push_back(node);
            else if (!isGlobal(node))
                parts.push_back(nameOf(globalOf(node)) + '/' + nameOf(node));
            else if (isType(node))
                result.stayed.push_back(nameOf(node));
        }
        result.stayed.insert(result.stayed.end(), parts.begin(), parts.end());
        return result;
    }

    /// @return the innermost type that a node is in
    Index typeAround(Index node) const {
        do
            node = m_document[node].parent;
        while (!isGlobal(node) && !isType(node));
        return node;
    }
    Index globalOf(Index node) const {
        while (!isGlobal(node))
            node = m_document[node].parent;
        return node;
    }

    const SourceDocument& m_document;
    const SchemaReferences& m_references;
    const Nodes& m_removed;
    std::vector<bool> m_isCut;
    Nodes m_toVisit;
    std::array<std::unordered_set<std::string_view>, SchemaReferences::kinds> m_named;
    /// What was removed from types, by its name.
    std::unordered_map<Index, std::unordered_map<std::string, Nodes>> m_removedFrom;
    std::unordered_map<Index, Index> m_nearestReduced; ///< of types
    std::unordered_map<Index, Index> m_bases;          ///< of types and restrictions
    std::unordered_map<Index, Members> m_groups;
};

} // namespace

SchemaPruning prune(const SchemaReferences& references, const Nodes& removed) {
    return Pruning(references, removed).decide();
}

} // namespace Orvant
