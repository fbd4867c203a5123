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

    /// @return whether an element is one of XML Schema, in its namespace or the reader's
    bool isOfSchemas(Index element) const;

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
    /// @return the element in which a type holds sequences and attributes: that or itself
    Index holder(Index type) const;
    /// @return all types that are written, each one after its base: what is derived from a type
    ///         follows it before all others
    const std::vector<Index>& typesAfterBases() const { return m_typesAfterBases; }
    /// @return the base of a type if it is written, or SourceDocument::none; where types are
    ///         derived from each other in a circle, one of them has none
    Index base(Index type) const { return m_bases[type]; }
    /// @return whether a type is, by way of its bases, derived from a built-in type of this name
    bool derivesFrom(Index type, std::string_view builtIn) const;

    /// @return the content of a complex type without that of its base
    std::vector<Place> ownContent(Index type) const;
    static bool canBeEmpty(const Place& place);

private:
    Name resolved(std::string_view name, Index element) const;
    bool isType(Index node) const;
    void orderTypes();
    void addContent(std::vector<Place>& content, Index holder) const;
    Particle particle(Index node) const;

    const SchemaSource& m_source;
    std::string m_targetNamespace;
    std::vector<bool> m_written;
    std::vector<bool> m_removed;
    std::unordered_map<std::string, Index> m_types; ///< the first of each name
    std::vector<Index> m_typesAfterBases;
    std::vector<Index> m_bases;   ///< of the types
    std::vector<Index> m_origins; ///< the base of the base of ... each type
};

} // namespace Orvant
