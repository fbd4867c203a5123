#pragma once

#include <ConfigurationFramework/source/SchemaSource.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvant {

/// A schema file as writeXSD() writes it, as validators see it: what stays of the file that was
/// read, and what the names in it mean then.
class WrittenSchema {
public:
    using Index = SourceDocument::Index;
    using Node = SourceDocument::Node;

    /// What the name of a type means.
    struct Name {
        enum class Kind : std::uint8_t {
            Own,     ///< a type of the schema's target namespace
            BuiltIn, ///< a type of XML Schema
            Other,
        };
        Kind kind = Kind::Other;
        std::string local;
        bool operator==(const Name&) const = default;
    };

    /// An element in the content of a type, or what was lost there.
    struct Particle {
        Index node = SourceDocument::none;
        std::string name; ///< empty for what was lost
        long minimum = 1;
        long maximum = 1;
    };
    /// Those of which one stands in a place.
    using Place = std::vector<Particle>;
    static constexpr long unbounded = std::numeric_limits<long>::max();

    /// @param source  a file that is parsed; it must outlive this
    /// @param removed nodes that filters removed, with all that is in them, in the order of the
    /// file
    WrittenSchema(const SchemaSource& source, const std::vector<Index>& removed);

    const SchemaSource& source() const { return m_source; }
    const SourceDocument& document() const { return m_source.document(); }
    const Node& operator[](Index node) const { return document()[node]; }

    /// @return whether the file is in the reader's own namespace
    bool isReaders() const;

    bool isWritten(Index node) const { return m_written[node]; }
    bool isRemoved(Index node) const { return m_removed[node]; }
    /// @return whether a node is not written although what it stands in is, if anything
    bool isLost(Index node) const;
    /// @return what a node is written as; None when it is not
    ModelClass modelClass(Index node) const;
    /// @return what the element around a node is written as; None for the document element
    ModelClass parentClass(Index node) const;
    /// @return the first child that is written as this, or SourceDocument::none
    Index child(Index element, ModelClass modelClass) const;

    /// @return an attribute of the file, without white space around it; empty when there is none
    std::string text(Index element, std::string_view attribute) const;
    const std::string& targetNamespace() const { return m_targetNamespace; }

    /// @return what the name in an attribute of the file means; nothing when there is none
    std::optional<Name> meaning(Index element, std::string_view attribute) const;
    /// @return what it means in the file that is written
    std::optional<Name> writtenMeaning(Index element, std::string_view attribute) const;
    /// @return the type of the schema's own that the file declares, whether it is written or not,
    ///         or SourceDocument::none
    Index declaredType(const Name& name) const;
    /// @return that type if it is written
    Index writtenType(const Name& name) const;

    /// @return the element with the base of a type: a restriction or extension that is written
    Index derivation(Index type) const;
    /// @return the type, its base, the base of that, ...: those that are written
    std::vector<Index> withBases(Index type) const;
    /// @return whether these are derived from a built-in type of this name
    bool derivesFrom(const std::vector<Index>& types, std::string_view builtIn) const;

    /// @return the content of a complex type after that of its bases
    std::vector<Place> content(Index type) const;
    static bool canBeEmpty(const Place& place);
    /// @return whether a complex type takes an element without content
    bool canBeEmpty(Index type) const;

private:
    Name resolved(std::string_view name, Index element) const;
    void addContent(std::vector<Place>& content, Index holder) const;
    Particle particle(Index node) const;

    const SchemaSource& m_source;
    std::string m_targetNamespace;
    std::vector<bool> m_written;
    std::vector<bool> m_removed;
    std::unordered_map<std::string, Index> m_types; ///< the first of each name
};

} // namespace Orvant
