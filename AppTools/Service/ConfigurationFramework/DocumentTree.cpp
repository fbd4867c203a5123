#include <ConfigurationFramework/DocumentTree.h>

#include <UnicodeTools/Transcode.h>

#include <algorithm>

namespace Orvant {

namespace {

/// Entity references have no tag that could be asked for.
constexpr DocumentTree::Name noName = std::numeric_limits<DocumentTree::Name>::max();

/// Up to here, comparing one child after the other is faster than an index.
constexpr std::uint32_t mostChildrenWithoutIndex = 32;

template <typename Key>
DocumentTree::Element lookUp(const std::unordered_map<Key, DocumentTree::Element>& map, Key key) {
    const auto found = map.find(key);
    return found == map.end() ? DocumentTree::none : found->second;
}

} // namespace

DocumentTree::Name DocumentTree::addName(const std::string& name) {
    const auto [entry, isNew] = m_names.try_emplace(name, static_cast<Name>(m_names.size()));
    if (isNew)
        m_elementsOfName.emplace_back();
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
    m_elementsOfName[name].push_back(static_cast<Element>(m_nodes.size()));
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
        findChildIf(parent, [&](const Node& node) {
            const auto child = static_cast<Element>(&node - m_nodes.data());
            index.first.try_emplace(node.name, child);
            index.firstWithKey.try_emplace(pair(node.name, node.key), child);
            if (node.key == 0)
                index.lastWithoutKey[node.name] = child;
            return false;
        });
    }
    return index;
}

DocumentTree::Element DocumentTree::findChild(Element parent, const std::string& name) {
    const auto wanted = findName(name);
    if (!wanted)
        return none;
    if (isWide(parent))
        return lookUp(index(parent).first, *wanted);
    return findChildIf(parent, [&](const Node& node) { return node.name == *wanted; });
}

DocumentTree::Element DocumentTree::findChild(Element parent, const std::string& name,
                                              const std::string& key) {
    const auto wanted = findName(name);
    const auto wantedKey = findKey(key);
    if (!wanted || !wantedKey)
        return none;
    if (isWide(parent))
        return lookUp(index(parent).firstWithKey, pair(*wanted, *wantedKey));
    return findChildIf(
        parent, [&](const Node& node) { return node.name == *wanted && node.key == *wantedKey; });
}

DocumentTree::Element DocumentTree::findChildWithoutKey(Element parent, const std::string& name) {
    const auto wanted = findName(name);
    if (!wanted)
        return none;
    if (isWide(parent))
        return lookUp(index(parent).lastWithoutKey, *wanted);
    Element last = none;
    findChildIf(parent, [&](const Node& node) {
        if (node.name == *wanted && node.key == 0)
            last = static_cast<Element>(&node - m_nodes.data());
        return false;
    });
    return last;
}

std::span<const DocumentTree::Element> DocumentTree::elementsBelow(Element ancestor,
                                                                   const std::string& name) const {
    const auto wanted = findName(name);
    if (!wanted)
        return {};
    const std::vector<Element>& elements = m_elementsOfName[*wanted];
    return {std::ranges::upper_bound(elements, ancestor),
            std::ranges::lower_bound(elements, m_nodes[ancestor].end)};
}

DocumentTree::Element DocumentTree::findInDocument(const std::string& name) const {
    const auto elements = elementsBelow(root, name);
    return elements.empty() ? none : elements.front();
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
    return lookUp(m_firstWithKey, pair(*wanted, *wantedKey));
}

} // namespace Orvant
