#pragma once

#include <ConfigurationFramework/source/SourceDocument.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvant {

/// What the parts of a schema file name, and where that is declared: also what the schema document
/// model does not hold, such as groups, unions and lists.
///
/// A name counts as the schema's own if it is in its namespace, in the reader's, in none, or has a
/// prefix that is not declared: rather one too many is found than one too few.
class SchemaReferences {
public:
    using Index = SourceDocument::Index;
    using Nodes = std::vector<Index>;

    enum class Kind : std::uint8_t { Type, Element, Attribute, Group, AttributeGroup, Key };
    static constexpr std::size_t kinds = 6;
    struct Reference {
        Kind kind;
        std::string_view name; ///< without prefix
    };

    /// @param document must outlive this
    explicit SchemaReferences(const SourceDocument& document);

    const SourceDocument& document() const { return m_document; }

    /// @return what an element itself names of the schema's own, without the elements in it
    std::vector<Reference> of(Index element) const;
    /// @return the declarations that a reference means: those directly in the schema, or in what is
    ///         redefined there; of keys, all
    const Nodes& declarations(Kind kind, std::string_view name) const;
    /// @return the elements that say that they may stand for that one
    const Nodes& substitutes(std::string_view element) const;

    /// Applies an action to each element of XML Schema in an element, itself first; not to what
    /// only looks like one, in documentation and the like.
    /// @param isLeftOut whether to skip an element with all that is in it
    template <typename IsLeftOut, typename Action>
    void forEachElement(Index element, IsLeftOut isLeftOut, Action action) const {
        const auto& nodes = m_document.nodes();
        for (Index node = element; node < nodes[element].next;) {
            const bool skips =
                !m_document.isElement(node) || !isPartOfSchema(node) || isLeftOut(node);
            if (!skips)
                action(node);
            node = skips ? nodes[node].next : node + 1;
        }
    }

private:
    using ByName = std::unordered_map<std::string_view, Nodes>;

    bool isPartOfSchema(Index element) const;
    bool isOwn(std::string_view name, Index element) const;
    void declare(Index element);

    const SourceDocument& m_document;
    std::string_view m_target;
    std::string_view m_defaultAttributes; ///< an attribute group that each complex type refers to
    std::array<ByName, kinds> m_declarations;
    ByName m_substitutes;
};

} // namespace Orvant
