#include <ConfigurationFramework/ComparingWriter.h>

#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace Orvant {

namespace {

/// Whether a text of a value is expected.
bool isText(const WrittenElement& expected, std::string_view text) {
    return expected.hasText && expected.children.empty() && isInDocument(text, expected.text);
}

bool hasContents(const WrittenElement& element) {
    return element.hasText || element.isStrings || !element.children.empty();
}

} // namespace

void ComparingWriter::start(std::span<const WrittenElement> expected) {
    ElementWriter::takeAll(); // what an exception left
    m_places.clear();
    m_levels.assign(1, {.expected = expected});
    m_isBuilding = false;
}

bool ComparingWriter::isAsExpected() const {
    return !m_isBuilding && m_levels.size() == 1 && isComplete(m_levels.front());
}

std::vector<WrittenElement> ComparingWriter::takeAll() {
    build();
    return ElementWriter::takeAll();
}

/// The child that is expected next; null: none is, or elements are made.
const WrittenElement* ComparingWriter::next() {
    if (m_isBuilding || !closeLast())
        return nullptr;
    const Level& level = m_levels.back();
    return level.written < level.expected.size() ? &level.expected[level.written] : nullptr;
}

/// Ends the creation of the last child.
/// @return whether it is as expected
bool ComparingWriter::closeLast() {
    Level& level = m_levels.back();
    if (level.isLastEmpty && hasContents(level.expected[level.written - 1]))
        build();
    else
        level.isLastEmpty = false;
    return !m_isBuilding;
}

bool ComparingWriter::createAsExpected(const std::string& name,
                                       const std::optional<std::string>& key) {
    const WrittenElement* const expected = next();
    if (expected == nullptr || !isInDocument(name, expected->id.tag) ||
        expected->id.key.has_value() != key.has_value() ||
        (key && !isInDocument(*key, *expected->id.key))) {
        build();
        return false;
    }
    Level& level = m_levels.back();
    ++level.written;
    level.isLastEmpty = true;
    return true;
}

void ComparingWriter::createNode(const std::string& name, const std::string& comment) {
    if (!createAsExpected(name, std::nullopt))
        ElementWriter::createNode(name, comment);
}

void ComparingWriter::createKeyedNode(const std::string& name, const std::string& key,
                                      const std::string& comment) {
    if (!createAsExpected(name, key))
        ElementWriter::createKeyedNode(name, key, comment);
}

void ComparingWriter::enterLastChild() {
    if (m_isBuilding || !m_levels.back().isLastEmpty) {
        build();
        ElementWriter::enterLastChild();
        return;
    }
    Level& level = m_levels.back();
    level.isLastEmpty = false;
    const WrittenElement& entered = level.expected[level.written - 1];
    m_levels.push_back({.expected = entered.isStrings ? std::span<const WrittenElement>()
                                                      : std::span(entered.children),
                        .isWithText = entered.hasText || entered.isStrings});
}

ConfigurationAccessResult ComparingWriter::makeCurrent(const ChildSelection& selection) {
    build();
    return ElementWriter::makeCurrent(selection);
}

void ComparingWriter::deleteChildren(const ChildSelection& selection) {
    build();
    ElementWriter::deleteChildren(selection);
}

void ComparingWriter::putText(const std::string& name, const std::string& text,
                              const std::string& comment) {
    const WrittenElement* const expected = next();
    if (expected != nullptr && !expected->id.key && isInDocument(name, expected->id.tag) &&
        isText(*expected, text)) {
        ++m_levels.back().written;
        return;
    }
    build();
    ElementWriter::putText(name, text, comment);
}

void ComparingWriter::putString(const std::string& value) {
    build();
    ElementWriter::putString(value);
}

void ComparingWriter::putStringVector(const std::string& name,
                                      const std::vector<std::string>& values,
                                      const std::string& comment) {
    const WrittenElement* const expected = next();
    if (expected != nullptr && !expected->id.key && isInDocument(name, expected->id.tag) &&
        expected->isStrings && std::ranges::equal(expected->children, values, isText)) {
        ++m_levels.back().written;
        return;
    }
    build();
    ElementWriter::putStringVector(name, values, comment);
}

void ComparingWriter::putElementUnlessEmpty(const std::string& name,
                                            const std::optional<std::string>& key,
                                            const std::string& comment,
                                            const std::function<void()>& writeContents) {
    build();
    ElementWriter::putElementUnlessEmpty(name, key, comment, writeContents);
}

void ComparingWriter::keepPlace(const std::function<void()>& action) {
    if (m_isBuilding) {
        ElementWriter::keepPlace(action);
        return;
    }
    const std::size_t depth = m_levels.size();
    try {
        action();
    } catch (...) {
        leaveTo(depth);
        throw;
    }
    leaveTo(depth);
}

/// Makes an element around the current one the current one.
void ComparingWriter::leaveTo(std::size_t depth) {
    while (!m_isBuilding && m_levels.size() > depth) {
        if (isComplete(m_levels.back()))
            m_levels.pop_back();
        else
            build();
    }
    if (m_isBuilding)
        setPlace(m_places[depth - 1]);
}

bool ComparingWriter::isComplete(const Level& level) const {
    return level.written == level.expected.size() && !level.isWithText &&
           !(level.isLastEmpty && hasContents(level.expected.back()));
}

std::set<std::string>
ComparingWriter::namesHiddenByDescendants(const std::vector<std::string>& names) {
    if (m_isBuilding || !closeLast())
        return ElementWriter::namesHiddenByDescendants(names);
    const Level& level = m_levels.back();
    return hiddenNames(level.expected.first(level.written), names);
}

ConfigurationAccessResult ComparingWriter::moveToFront(const std::string& name) {
    build();
    return ElementWriter::moveToFront(name);
}

PrintedDocument ComparingWriter::print() {
    build();
    return ElementWriter::print();
}

/// Makes what was as expected so far, and goes on by making elements.
void ComparingWriter::build() {
    if (std::exchange(m_isBuilding, true))
        return;
    for (std::size_t i = 0; i < m_levels.size(); ++i) {
        const Level& level = m_levels[i];
        std::vector<WrittenElement> children(level.expected.begin(),
                                             level.expected.begin() +
                                                 static_cast<std::ptrdiff_t>(level.written));
        // The last one was entered, or has nothing in it yet.
        if (i + 1 < m_levels.size() || level.isLastEmpty)
            children.back() = {.id = std::move(children.back().id),
                               .comment = std::move(children.back().comment)};
        setChildren(std::move(children));
        m_places.push_back(place());
        if (i + 1 < m_levels.size())
            ElementWriter::enterLastChild();
    }
}

} // namespace Orvant
