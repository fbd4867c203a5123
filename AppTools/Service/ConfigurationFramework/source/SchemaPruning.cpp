#include <ConfigurationFramework/source/SchemaPruning.h>

#include <ConfigurationFramework/schema/TypeNames.h>
#include <ConfigurationFramework/source/SchemaReferences.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Nodes = std::vector<Index>;
using Kind = SchemaReferences::Kind;

bool isType(const SourceDocument::Node& node) {
    return node.name == "complexType" || node.name == "simpleType";
}

/// Takes back what was removed until nothing that stays needs anything of the rest.
class Pruning {
public:
    Pruning(const SourceDocument& document, const Nodes& removed)
        : m_document(document),
          m_references(document),
          m_removed(removed),
          m_isCut(document.nodes().size(), false) {
        for (const Index node : removed)
            m_isCut[node] = true;
        m_toVisit.push_back(document.root());
    }

    SchemaPruning decide() {
        for (const Index node : m_removed)
            if (m_document[node].inEntity)
                takeBack(node); // its text is not in the schema
        do
            visitAll();
        while (takeBackWhatRestrictionsRepeat() || takeBackKeys());
        return result();
    }

private:
    bool isGlobal(Index node) const { return m_document[node].parent == m_document.root(); }
    auto isLeftOut() const {
        return [this](Index node) -> bool { return m_isCut[node]; };
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
            m_references.forEachElement(next, isLeftOut(), [this](Index element) {
                for (const auto& [kind, name] : m_references.of(element)) {
                    if (kind == Kind::Key)
                        m_referredKeys.emplace(name);
                    for (const Index declaration : m_references.declarations(kind, name))
                        takeBack(declaration);
                }
            });
        }
    }

    /// A restriction may only repeat what its base has. So a base keeps what is repeated.
    bool takeBackWhatRestrictionsRepeat() {
        if (std::ranges::all_of(m_removed, [this](Index node) { return isGlobal(node); }))
            return false;
        bool isChanged = false;
        m_references.forEachElement(m_document.root(), isLeftOut(), [&](Index element) {
            if (m_document[element].name == "restriction" &&
                m_document.attribute(element, "base") != nullptr && restrictsContent(element))
                isChanged = takeBackFromBases(element) || isChanged;
        });
        return isChanged;
    }

    bool restrictsContent(Index restriction) const {
        const std::string& parent = m_document[m_document[restriction].parent].name;
        return parent == "complexContent" || parent == "simpleContent";
    }

    bool takeBackFromBases(Index restriction) {
        const Nodes cut = removedFromBases(restriction);
        if (cut.empty())
            return false;
        std::unordered_set<std::string> repeated;
        gatherNames(restriction, repeated);
        bool isChanged = false;
        for (const Index node : cut)
            if (repeated.contains(nameOf(node)))
                isChanged = takeBack(node) || isChanged;
        return isChanged;
    }

    /// @return what is cut out of the types that a restriction is derived from
    Nodes removedFromBases(Index restriction) {
        Nodes cut;
        std::unordered_set<Index> known;
        for (Index type = nearestReduced(baseOf(restriction));
             type != SourceDocument::none && known.insert(type).second;
             type = nearestReduced(baseOf(type)))
            std::ranges::copy(removedFrom(type), std::back_inserter(cut));
        return cut;
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
            if (isReduced(type)) {
                nearest = type;
                break;
            }
        }
        for (const Index other : passed)
            m_nearestReduced[other] = nearest;
        return nearest;
    }

    bool isReduced(Index type) const {
        const auto next = std::ranges::upper_bound(m_removed, type);
        return next != m_removed.end() && *next < m_document[type].next;
    }

    /// Gathers the names of elements and attributes, in groups too.
    void gatherNames(Index from, std::unordered_set<std::string>& names) const {
        Nodes toGather{from};
        std::unordered_set<Index> known;
        while (!toGather.empty()) {
            const Index next = toGather.back();
            toGather.pop_back();
            m_references.forEachElement(next, isLeftOut(), [&](Index element) {
                names.insert(nameOf(element));
                for (const auto& [kind, name] : m_references.of(element))
                    if (kind == Kind::Group || kind == Kind::AttributeGroup)
                        for (const Index group : m_references.declarations(kind, name))
                            if (known.insert(group).second)
                                toGather.push_back(group);
            });
        }
    }

    /// @return the type that a type or restriction is derived from, or none
    Index baseOf(Index element) const {
        Index base = SourceDocument::none;
        m_references.forEachElement(element, isLeftOut(), [&](Index part) {
            if (base != SourceDocument::none || m_document.attribute(part, "base") == nullptr)
                return;
            for (const auto& [kind, name] : m_references.of(part))
                for (const Index type : m_references.declarations(kind, name))
                    base = type;
        });
        return base;
    }

    /// @return what is cut out of a type
    Nodes removedFrom(Index type) const {
        const auto first = std::ranges::upper_bound(m_removed, type);
        const auto last = std::lower_bound(first, m_removed.end(), m_document[type].next);
        Nodes cut;
        std::copy_if(first, last, std::back_inserter(cut), isLeftOut());
        return cut;
    }

    /// A key that a reference needs may be within what was removed.
    bool takeBackKeys() {
        bool isChanged = false;
        for (const std::string& name : m_referredKeys)
            for (const Index key : m_references.declarations(Kind::Key, name))
                for (Index node = key; node != SourceDocument::none; node = m_document[node].parent)
                    isChanged = takeBack(node) || isChanged;
        return isChanged;
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
            else if (isType(m_document[node]))
                result.stayed.push_back(nameOf(node));
        }
        result.stayed.insert(result.stayed.end(), parts.begin(), parts.end());
        return result;
    }

    Index globalOf(Index node) const {
        while (!isGlobal(node))
            node = m_document[node].parent;
        return node;
    }

    const SourceDocument& m_document;
    SchemaReferences m_references;
    const Nodes& m_removed;
    std::vector<bool> m_isCut;
    Nodes m_toVisit;
    std::unordered_set<std::string> m_referredKeys;
    std::unordered_map<Index, Index> m_nearestReduced; ///< of types
};

} // namespace

SchemaPruning prune(const SourceDocument& document, const Nodes& removed) {
    return Pruning(document, removed).decide();
}

} // namespace Orvant
