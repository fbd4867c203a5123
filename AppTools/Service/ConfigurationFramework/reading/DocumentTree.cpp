#include <ConfigurationFramework/reading/DocumentTree.h>

#include <ConfigurationFramework/xml/IndexThreshold.h>

#include <Transcoding/Transcode.h>

#include <algorithm>
#include <cstddef>

namespace Orvant {

namespace {

/// Entity references have no tag that could be asked for.
constexpr DocumentTree::Name noName = std::numeric_limits<DocumentTree::Name>::max();

/// Up to this many, comparing tags as text is faster than looking up the number of one.
constexpr std::uint32_t mostChildrenToCompareByText = 4;

/// Like mostChildrenWithoutIndex, for a walk along all elements: its steps are shorter.
constexpr DocumentTree::Element mostElementsWithoutIndex = 2 * mostChildrenWithoutIndex;

/// @return first element of a name and key among sorted ones, or `none`
template <typename Entries>
DocumentTree::Element firstOf(const Entries& entries, std::uint32_t name, std::uint32_t key) {
    const auto found = std::ranges::lower_bound(entries, std::tuple(name, key, DocumentTree::root));
    return found != entries.end() && std::get<0>(*found) == name && std::get<1>(*found) == key
               ? std::get<2>(*found)
               : DocumentTree::none;
}

/// @return last element of a name and key among sorted ones, or `none`
template <typename Entries>
DocumentTree::Element lastOf(const Entries& entries, std::uint32_t name, std::uint32_t key) {
    const auto behind =
        std::ranges::upper_bound(entries, std::tuple(name, key, DocumentTree::none));
    return behind != entries.begin() && std::get<0>(behind[-1]) == name &&
                   std::get<1>(behind[-1]) == key
               ? std::get<2>(behind[-1])
               : DocumentTree::none;
}

} // namespace

DocumentTree::Name DocumentTree::addName(const std::string& name) {
    const auto [entry, isNew] = m_names.try_emplace(name, static_cast<Name>(m_names.size()));
    if (isNew)
        m_nameEntries.push_back({&entry->first});
    return entry->second;
}

void DocumentTree::startElement(Name name, const std::string& key, bool editable) {
    if (m_keyTexts.empty())
        m_keyTexts.push_back(&m_keys.try_emplace("", 0).first->first);
    Node node;
    node.name = name;
    node.editable = editable;
    if (!key.empty()) {
        const auto [entry, isNew] = m_keys.try_emplace(key, static_cast<Key>(m_keys.size()));
        if (isNew)
            m_keyTexts.push_back(&entry->first);
        node.key = entry->second;
    }
    NameEntry& entry = m_nameEntries[name];
    ++entry.occurrences;
    node.isFirstOfName = entry.openings.add(isOpen() ? m_open.back() : none, [&](Element element) {
        return m_nodes[element].end == 0;
    });
    start(node);
}

void DocumentTree::startEntityReference() {
    Node node;
    node.name = noName;
    node.firstChild = FirstChild::Other; // Nobody can ask for its text.
    start(node);
}

void DocumentTree::start(const Node& node) {
    if (isOpen()) {
        addOtherChild();
        ++m_nodes[m_open.back()].children;
    }
    m_open.push_back(static_cast<Element>(m_nodes.size()));
    m_nodes.push_back(node);
}

void DocumentTree::end() {
    m_nodes[m_open.back()].end = static_cast<Element>(m_nodes.size());
    m_open.pop_back();
}

bool DocumentTree::awaitsFirstChild() const {
    return !hasChildren(m_open.back());
}

void DocumentTree::addOtherChild() {
    if (awaitsFirstChild())
        m_nodes[m_open.back()].firstChild = FirstChild::Other;
}

void DocumentTree::addFirstText(std::u16string_view text) {
    Node& node = m_nodes[m_open.back()];
    node.firstChild = FirstChild::Text;
    node.text = m_texts.size();
    appendTranscoded(m_texts, text);
    node.textLength = m_texts.size() - node.text;
}

bool DocumentTree::hasName(Element element, const std::string& name) const {
    const auto wanted = findName(name);
    return wanted && m_nodes[element].name == *wanted;
}

std::optional<std::string_view> DocumentTree::text(Element element) const {
    const Node& node = m_nodes[element];
    if (node.firstChild != FirstChild::Text)
        return std::nullopt;
    return std::string_view(m_texts).substr(node.text, node.textLength);
}

std::optional<DocumentTree::Name> DocumentTree::findName(const std::string& name) const {
    const auto found = m_names.find(name);
    return found == m_names.end() ? std::nullopt : std::optional(found->second);
}

std::optional<DocumentTree::Key> DocumentTree::findKey(const std::string& key) const {
    const auto found = m_keys.find(key);
    return found == m_keys.end() ? std::nullopt : std::optional(found->second);
}

template <typename Predicate>
DocumentTree::Element DocumentTree::findChildIf(Element parent, Predicate predicate) const {
    for (Element child = parent + 1; child < m_nodes[parent].end; child = m_nodes[child].end)
        if (predicate(m_nodes[child]))
            return child;
    return none;
}

bool DocumentTree::isWide(Element parent) const {
    return m_nodes[parent].children > mostChildrenWithoutIndex;
}

const DocumentTree::ChildIndex& DocumentTree::index(Element parent) {
    const auto [entry, isNew] = m_indexes.try_emplace(parent);
    ChildIndex& index = entry->second;
    if (isNew) {
        index.byName.reserve(m_nodes[parent].children);
        index.byNameAndKey.reserve(m_nodes[parent].children);
        findChildIf(parent, [&](const Node& node) {
            const auto child = static_cast<Element>(&node - m_nodes.data());
            index.byName.emplace_back(node.name, Key{0}, child);
            index.byNameAndKey.emplace_back(node.name, node.key, child);
            return false;
        });
        std::ranges::sort(index.byName);
        std::ranges::sort(index.byNameAndKey);
    }
    return index;
}

DocumentTree::Element DocumentTree::findChild(Element parent, const std::string& name) {
    const Element found = isAtCursor(parent, name) ? m_cursor.below(parent) : search(parent, name);
    if (found != none)
        m_cursor.moveTo(parent, m_nodes[found].end);
    return found;
}

/// Whether the child that the cursor stands on is the one that a search would find.
bool DocumentTree::isAtCursor(Element parent, const std::string& name) const {
    const Element child = m_cursor.below(parent);
    if (child >= m_nodes[parent].end)
        return false;
    const Node& node = m_nodes[child];
    return node.isFirstOfName && *m_nameEntries[node.name].text == name;
}

DocumentTree::Element DocumentTree::search(Element parent, const std::string& name) {
    if (m_nodes[parent].children <= mostChildrenToCompareByText)
        return findChildIf(parent, [&](const Node& node) {
            return node.name != noName && *m_nameEntries[node.name].text == name;
        });
    const auto wanted = findName(name);
    if (!wanted)
        return none;
    if (isWide(parent))
        return firstOf(index(parent).byName, *wanted, 0);
    return findChildIf(parent, [&](const Node& node) { return node.name == *wanted; });
}

DocumentTree::Element DocumentTree::findChild(Element parent, const std::string& name,
                                              const std::string& key) {
    const auto wanted = findName(name);
    const auto wantedKey = findKey(key);
    if (!wanted || !wantedKey)
        return none;
    if (isWide(parent))
        return firstOf(index(parent).byNameAndKey, *wanted, *wantedKey);
    return findChildIf(
        parent, [&](const Node& node) { return node.name == *wanted && node.key == *wantedKey; });
}

DocumentTree::Element DocumentTree::findChildWithoutKey(Element parent, const std::string& name) {
    const auto wanted = findName(name);
    if (!wanted)
        return none;
    if (isWide(parent))
        return lastOf(index(parent).byNameAndKey, *wanted, 0);
    Element last = none;
    findChildIf(parent, [&](const Node& node) {
        if (node.name == *wanted && node.key == 0)
            last = static_cast<Element>(&node - m_nodes.data());
        return false;
    });
    return last;
}

DocumentTree::Element DocumentTree::findBelow(Element ancestor, const std::string& name) {
    const auto wanted = findName(name);
    return wanted ? nextBelow(ancestor, ancestor, *wanted) : none;
}

/// The next element of a name after another and below an ancestor, or `none`.
DocumentTree::Element DocumentTree::nextBelow(Element ancestor, Element element, Name name) {
    const Element end = m_nodes[ancestor].end;
    const Element stop = std::min(end, element + mostElementsWithoutIndex);
    for (++element; element < stop; ++element)
        if (m_nodes[element].name == name)
            return element;
    if (element == end)
        return none;
    if (m_byName.empty())
        sortByName();
    const auto groupEnd = m_byName.begin() + static_cast<std::ptrdiff_t>(m_groups[name + 1]);
    const auto next = std::lower_bound(
        m_byName.begin() + static_cast<std::ptrdiff_t>(m_groups[name]), groupEnd, element);
    return next != groupEnd && *next < end ? *next : none;
}

void DocumentTree::sortByName() {
    m_groups.assign(m_nameEntries.size() + 1, 0);
    for (std::size_t name = 0; name < m_nameEntries.size(); ++name)
        m_groups[name + 1] = m_groups[name] + m_nameEntries[name].occurrences;
    m_byName.resize(m_groups.back());
    std::vector<std::size_t> next = m_groups;
    for (Element element = 0; element < m_nodes.size(); ++element)
        if (m_nodes[element].name != noName)
            m_byName[next[m_nodes[element].name]++] = element;
}

DocumentTree::Element DocumentTree::findInDocument(const std::string& name,
                                                   const std::string& key) {
    const auto wanted = findName(name);
    const auto wantedKey = findKey(key);
    if (!wanted || !wantedKey)
        return none;
    if (m_firstWithKey.empty())
        for (Element element = root + 1; element < m_nodes.size(); ++element)
            m_firstWithKey.try_emplace(pair(m_nodes[element].name, m_nodes[element].key), element);
    const auto found = m_firstWithKey.find(pair(*wanted, *wantedKey));
    return found == m_firstWithKey.end() ? none : found->second;
}

} // namespace Orvant
