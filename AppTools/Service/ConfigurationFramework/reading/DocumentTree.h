#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvant {

/// What a reader can see of a configuration document, and no more: its elements in document order
/// with their tags, keys and locks, and the first child of each: text, something else, or none.
///
/// The elements are in one array, each before its descendants, so that a traversal of a subtree is
/// a walk along the array. Where there are many to search, an index is built when first needed. Not
/// thread-safe.
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
    /// Records that the open element has a child that is neither an element nor its first text.
    void addOtherChild();
    /// Gives the open element its first child, a text.
    void addFirstText(std::u16string_view text);
    /// @}

    bool empty() const { return m_nodes.empty(); }
    bool hasName(Element element, const std::string& name) const;
    /// @return key attribute, empty when there is none
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
    /// @return first element of that tag below another, at any depth, or `none`
    Element findBelow(Element ancestor, const std::string& name);
    /// @return first element of that tag and key below the root, or `none`
    Element findInDocument(const std::string& name, const std::string& key);

    /// Calls back with each element of that tag below another, in order, until false is returned.
    /// @return false when the callback returned false
    template <typename Callback>
    bool forEachBelow(Element ancestor, const std::string& name, Callback callback) {
        const auto wanted = findName(name);
        if (!wanted)
            return true;
        for (Element element = nextBelow(ancestor, ancestor, *wanted); element != none;
             element = nextBelow(ancestor, element, *wanted))
            if (!callback(element))
                return false;
        return true;
    }

    /// Calls back with each child of that tag, in order.
    template <typename Callback>
    void forEachChild(Element parent, const std::string& name, Callback callback) {
        const auto wanted = findName(name);
        if (!wanted)
            return;
        if (isWide(parent)) {
            const std::vector<Entry>& entries = index(parent).byName;
            for (auto entry = std::ranges::lower_bound(entries, Entry(*wanted, 0, 0));
                 entry != entries.end() && std::get<0>(*entry) == *wanted; ++entry)
                callback(std::get<2>(*entry));
            return;
        }
        for (Element child = parent + 1; child < m_nodes[parent].end; child = m_nodes[child].end)
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
        Element end = 0; ///< after the last descendant; 0 while it is open
        std::uint32_t children = 0;
        FirstChild firstChild = FirstChild::None;
        bool editable = true;
        bool isFirstOfName = false; ///< certainly the first of its name among its siblings
    };

    /// Stands on the child that is likely to be asked for next: the one after the child that was
    /// found last, since most are asked for in document order.
    ///
    ///     <View> <Width>5</Width> <Zoom>2</Zoom> <Width>7</Width> </View>
    ///
    /// After the first Width, the cursor stands on Zoom. If that is asked for now, one comparison
    /// finds it, and the cursor goes on to the second Width. There it does not help: a request for
    /// Width gets the first one, by a search. So a child is taken from the cursor only if it is the
    /// first of its name (Node::isFirstOfName).
    class Cursor {
    public:
        void moveTo(Element parent, Element child) {
            m_parent = parent;
            m_child = child;
        }
        /// @return the child of the parent that it stands on; the end of the parent after the last
        ///         child; `none` when it stands below another parent
        Element below(Element parent) const { return m_parent == parent ? m_child : none; }

    private:
        Element m_parent = none;
        Element m_child = none;
    };

    /// Tracks the elements of one tag as they are opened, to tell which is certainly the first of
    /// the tag among its siblings. If that would take a search, the answer is no.
    class Openings {
    public:
        /// @param parent      of the element that is opened
        /// @param isStillOpen tells whether a former parent is open
        /// @return true when the element is certainly the first of the tag below its parent
        template <typename IsStillOpen>
        bool add(Element parent, IsStillOpen isStillOpen) {
            // Only the last parent is known, not those before it. If it is still open, it will get
            // further children, which must not be taken for the first.
            if (m_lastParent != none && m_lastParent != parent && isStillOpen(m_lastParent))
                m_isNested = true;
            return std::exchange(m_lastParent, parent) != parent && !m_isNested;
        }

    private:
        Element m_lastParent = none;
        bool m_isNested = false; ///< the tag stood at several levels of open elements at once
    };

    /// One tag.
    struct NameEntry {
        const std::string* text;
        Openings openings = {};
        std::size_t occurrences = 0;
    };

    /// An element by its tag and, where it matters, its key.
    using Entry = std::tuple<Name, Key, Element>;
    /// The children of one element, sorted.
    struct ChildIndex {
        std::vector<Entry> byName; ///< all with key 0
        std::vector<Entry> byNameAndKey;
    };

    static std::uint64_t pair(Name name, Key key) { return std::uint64_t{name} << 32U | key; }

    void start(const Node& node);
    bool isWide(Element parent) const;
    bool isAtCursor(Element parent, const std::string& name) const;
    Element search(Element parent, const std::string& name);
    Element nextBelow(Element ancestor, Element element, Name name);
    void sortByName();
    const ChildIndex& index(Element parent);
    std::optional<Name> findName(const std::string& name) const;
    std::optional<Key> findKey(const std::string& key) const;
    template <typename Predicate>
    Element findChildIf(Element parent, Predicate predicate) const;

    std::vector<Node> m_nodes;
    std::string m_texts;
    std::unordered_map<std::string, Name> m_names;
    std::vector<NameEntry> m_nameEntries; ///< by name
    std::unordered_map<std::string, Key> m_keys;
    std::vector<const std::string*> m_keyTexts; ///< by key
    std::vector<Element> m_open;
    Cursor m_cursor;
    std::unordered_map<Element, ChildIndex> m_indexes;
    std::unordered_map<std::uint64_t, Element> m_firstWithKey; ///< below the root, made when needed
    std::vector<Element> m_byName;     ///< all elements, by name and in document order
    std::vector<std::size_t> m_groups; ///< by name, where its elements begin in m_byName
};

} // namespace Orvant
