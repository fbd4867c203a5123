#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvant {

/// What a reader can see of a configuration document, and no more: its elements in document order
/// with their tags, keys and locks, and of each the first child: text, or something else, or none.
///
/// The elements stand in one row, each before its descendants, so that a walk through a subtree is
/// a walk along the row. Children of elements that have many are found through an index that is
/// made when it is first needed. Not for use from several threads.
class DocumentTree {
public:
    /// Position of an element in document order.
    using Element = std::uint32_t;
    static constexpr Element none = std::numeric_limits<Element>::max();
    static constexpr Element root = 0;

    /// @name Building, in document order
    /// @{
    using Name = std::uint32_t;
    Name addName(const std::string& name);
    /// Opens an element below the one that is open.
    void startElement(Name name, const std::string& key, bool editable);
    /// Opens an entity reference: what it stands for is below the open element, but not a child.
    void startEntityReference();
    /// Closes what was last opened.
    void end();
    bool isOpen() const { return !m_open.empty(); }
    /// @return true when the open element has no child yet
    bool awaitsFirstChild() const;
    /// Tells that the open element has a child that is neither element nor first text.
    void addOtherChild();
    /// Gives the open element its first child, a text.
    void addFirstText(std::u16string_view text);
    /// @}

    bool empty() const { return m_nodes.empty(); }
    bool hasName(Element element, const std::string& name) const;
    /// @return attribute key, empty when there is none
    const std::string& key(Element element) const { return *m_keyTexts[m_nodes[element].key]; }
    /// @return false when the attribute editable is "false"
    bool isEditable(Element element) const { return m_nodes[element].editable; }
    bool hasChildren(Element element) const {
        return m_nodes[element].firstChild != FirstChild::None;
    }
    /// @return the first child if it is a text
    std::optional<std::string_view> text(Element element) const;

    /// @return first child of that tag, or `none`
    Element findChild(Element parent, const std::string& name);
    /// @return first child of that tag and key, or `none`
    Element findChild(Element parent, const std::string& name, const std::string& key);
    /// @return last child of that tag without a key, or `none`
    Element findChildWithoutKey(Element parent, const std::string& name);
    /// @return all elements of that tag below another, in order; valid as long as the tree
    std::span<const Element> elementsBelow(Element ancestor, const std::string& name) const;
    /// @return first element of that tag below the root, or `none`
    Element findInDocument(const std::string& name) const;
    /// @return first element of that tag and key below the root, or `none`
    Element findInDocument(const std::string& name, const std::string& key);

    /// Calls back with each child of that tag, in order.
    template <typename Callback>
    void forEachChild(Element parent, const std::string& name, Callback callback) const {
        const auto wanted = findName(name);
        for (Element child = parent + 1; wanted && child < m_nodes[parent].end;
             child = m_nodes[child].end)
            if (m_nodes[child].name == *wanted)
                callback(child);
    }

private:
    using Key = std::uint32_t;
    enum class FirstChild : std::uint8_t { None, Text, Other };

    struct Node {
        std::size_t text = 0;       ///< position of the first text in m_texts
        std::size_t textLength = 0; ///< length of the first text
        Name name = 0;
        Key key = 0;
        Element end = 0; ///< behind the last descendant
        std::uint32_t children = 0;
        FirstChild firstChild = FirstChild::None;
        bool editable = true;
    };

    /// The children of one element by tag, and by tag and key.
    struct ChildIndex {
        std::unordered_map<Name, Element> first;
        std::unordered_map<Name, Element> lastWithoutKey;
        std::unordered_map<std::uint64_t, Element> firstWithKey;
    };

    static std::uint64_t pair(Name name, Key key) { return std::uint64_t{name} << 32U | key; }

    void start(const Node& node);
    bool isWide(Element parent) const;
    const ChildIndex& index(Element parent);
    std::optional<Name> findName(const std::string& name) const;
    std::optional<Key> findKey(const std::string& key) const;
    template <typename Predicate>
    Element findChildIf(Element parent, Predicate predicate) const;

    std::vector<Node> m_nodes;
    std::string m_texts;
    std::unordered_map<std::string, Name> m_names;
    std::vector<std::vector<Element>> m_elementsOfName; ///< by name, in document order
    std::unordered_map<std::string, Key> m_keys;
    std::vector<const std::string*> m_keyTexts; ///< by key
    std::vector<Element> m_open;
    std::unordered_map<Element, ChildIndex> m_indexes;
    std::unordered_map<std::uint64_t, Element> m_firstWithKey; ///< below the root, made when needed
};

} // namespace Orvant
