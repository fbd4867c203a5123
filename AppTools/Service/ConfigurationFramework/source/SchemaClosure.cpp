#include <ConfigurationFramework/source/SchemaClosure.h>

#include <ConfigurationFramework/source/SchemaReferences.h>

#include <string_view>
#include <unordered_set>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Nodes = std::vector<Index>;
using Kind = SchemaReferences::Kind;

class Closure {
public:
    Closure(const SchemaReferences& references, const Nodes& removed,
            const std::vector<std::string>& types)
        : m_references(references),
          m_leftOut(removed.begin(), removed.end()),
          m_types(types),
          m_known(types.begin(), types.end()) {
        for (const std::string& type : types)
            follow(Kind::Type, type);
    }

    std::vector<std::string> names() {
        const auto isLeftOut = [this](Index node) { return m_leftOut.contains(node); };
        while (!m_toVisit.empty()) {
            const Index next = m_toVisit.back();
            m_toVisit.pop_back();
            m_references.forEachElement(next, isLeftOut, [this](Index element) {
                for (const auto& [kind, name] : m_references.of(element)) {
                    if (kind == Kind::Type && m_known.insert(std::string(name)).second)
                        m_types.emplace_back(name);
                    follow(kind, name);
                }
            });
        }
        return m_types;
    }

private:
    void follow(Kind kind, std::string_view name) {
        if (kind == Kind::Key)
            return; // names no type
        visit(m_references.declarations(kind, name));
        if (kind == Kind::Element)
            visitSubstitutes(name);
    }

    void visit(const Nodes& declarations) {
        for (const Index declaration : declarations)
            if (m_visited.insert(declaration).second)
                m_toVisit.push_back(declaration);
    }

    void visitSubstitutes(std::string_view element) {
        std::vector<std::string_view> heads{element};
        while (!heads.empty()) {
            const std::string_view head = heads.back();
            heads.pop_back();
            if (!m_heads.insert(head).second)
                continue;
            visit(m_references.substitutes(head));
            for (const Index substitute : m_references.substitutes(head))
                if (const auto* const name = m_references.document().attribute(substitute, "name"))
                    heads.push_back(*name);
        }
    }

    const SchemaReferences& m_references;
    std::unordered_set<Index> m_leftOut;
    std::vector<std::string> m_types;
    std::unordered_set<std::string> m_known;
    std::unordered_set<Index> m_visited;
    std::unordered_set<std::string_view> m_heads; ///< of which the substitutes are visited
    Nodes m_toVisit;
};

} // namespace

std::vector<std::string> withNamedTypes(const SchemaReferences& references, const Nodes& removed,
                                        const std::vector<std::string>& types) {
    return Closure(references, removed, types).names();
}

} // namespace Orvant
