#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant {

/// A schema file as it stands: its elements, comments and instructions with their places in the
/// bytes, so that parts can be cut out.
///
/// The nodes are in document order. Those within a node follow it, up to its `next`:
///
/// @code
/// for (const SourceDocument::Index child : document.children(node))
///     if (document.isElement(child, "complexType"))
///         ...
/// @endcode
class SourceDocument {
public:
    /// Position of a node in nodes().
    using Index = std::uint32_t;
    static constexpr Index none = std::numeric_limits<Index>::max();

    enum class Kind : std::uint8_t { Element, Comment, Instruction };
    enum class Namespace : std::uint8_t { XmlSchema, Reader, None, Other };

    struct Attribute {
        std::string name; ///< as it is written
        std::string value;
        bool isQualified = false;   ///< whether it is in a namespace
        bool isDeclaration = false; ///< of a namespace
    };

    struct Node {
        Kind kind = Kind::Element;
        Namespace nameSpace = Namespace::Other; ///< of an element
        bool inEntity = false;                  ///< it is not in the text, but in an entity's
        bool followsText =
            false; ///< there is more than white space between it and what is before it
        unsigned int breaksBefore = 0; ///< lines that end between it and what is before it
        unsigned int line = 0;         ///< of its begin, from 1
        unsigned int column = 0;       ///< there, in UTF-16 code units, from 1
        std::size_t begin = 0;         ///< first byte; in an entity, that of the reference
        std::size_t end = 0;           ///< byte after the last
        std::size_t gap = 0; ///< byte after what is before it: from there on, it is white space
        Index parent = none;
        Index next = none; ///< first node that is not within it
        std::string name;  ///< local name of an element
        std::uint32_t firstAttribute = 0;
        std::uint32_t attributeCount = 0;
        Index scope = none; ///< the innermost element, from this one up, that declares namespaces
    };

    /// An end tag's white space belongs to no node.
    /// @param bytes the file
    /// @return nothing when it is not well-formed or is refused. Xerces must be initialised.
    static std::optional<SourceDocument> parse(const std::string& bytes);

    const std::vector<Node>& nodes() const { return m_nodes; }
    const Node& operator[](Index node) const { return m_nodes[node]; }
    /// @return the document element
    Index root() const { return m_root; }

    /// A document type declaration, which is no node.
    struct Doctype {
        Index next = none;     ///< first node after it
        unsigned int line = 0; ///< of its begin, from 1
    };
    /// @return nothing when there is none
    const std::optional<Doctype>& doctype() const { return m_doctype; }

    bool isElement(Index node) const { return m_nodes[node].kind == Kind::Element; }
    /// @return whether a node is within another or is that one
    bool contains(Index outer, Index inner) const {
        return outer <= inner && inner < m_nodes[outer].next;
    }

    /// The attributes of an element, those that a DTD adds included.
    struct Attributes {
        const Attribute* first;
        const Attribute* last;
        const Attribute* begin() const { return first; }
        const Attribute* end() const { return last; }
    };
    Attributes attributes(Index element) const;
    /// @return value of an attribute without namespace; null when there is none
    const std::string* attribute(Index element, std::string_view name) const;

    /// The nodes directly in an element.
    class Children;
    Children children(Index element) const;

    /// @return the namespace that a prefix stands for in an element, empty for none; nothing when
    ///         it is not declared
    std::optional<std::string_view> nameSpaceOf(std::string_view prefix, Index element) const;

private:
    friend class SourceParser;

    std::vector<Node> m_nodes;
    std::vector<Attribute> m_attributes;
    Index m_root = none;
    std::optional<Doctype> m_doctype;
};

/// See SourceDocument::children().
class SourceDocument::Children {
public:
    class Iterator {
    public:
        Iterator(const std::vector<Node>& nodes, Index node) : m_nodes(&nodes), m_node(node) {}
        Index operator*() const { return m_node; }
        Iterator& operator++() {
            m_node = (*m_nodes)[m_node].next;
            return *this;
        }
        bool operator==(const Iterator& other) const { return m_node == other.m_node; }

    private:
        const std::vector<Node>* m_nodes;
        Index m_node;
    };

    Children(const std::vector<Node>& nodes, Index parent)
        : m_begin(nodes, parent + 1), m_end(nodes, nodes[parent].next) {}
    Iterator begin() const { return m_begin; }
    Iterator end() const { return m_end; }

private:
    Iterator m_begin;
    Iterator m_end;
};

inline SourceDocument::Children SourceDocument::children(Index element) const {
    return {m_nodes, element};
}

} // namespace Orvant
