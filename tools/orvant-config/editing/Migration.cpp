#include "editing/Migration.h"

#include "Ordering.h"

#include "catalogue/SettingText.h"
#include "editing/FileEdit.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace Orvant::Tool {

Migration::Migration(const ConfigurationCatalogue& catalogue, const SettingIndex& settings,
                     ConfigurationFileEditor& editor, const ElementLines& lines)
    : m_catalogue(catalogue), m_names(catalogue, settings), m_editor(editor), m_lines(lines) {}

std::vector<MigrationStep> Migration::run() {
    collect();
    move();
    drop();
    checkTexts();
    return orderedBy(std::move(m_steps), [](const MigrationStep& step) { return step.line; });
}

void Migration::collect() {
    std::vector<std::size_t> open;
    const auto close = [&](std::size_t depth) {
        for (; open.size() > depth; open.pop_back())
            m_elements[open.back()].end = m_elements.size();
    };
    m_editor.visitElements({}, [&](const ConfigurationElementPath& path) {
        close(path.size() - 1);
        open.push_back(m_elements.size());
        const auto today = m_names.placeToday(path);
        m_elements.push_back({.path = path,
                              .current = path,
                              .item = today ? m_names.itemAt(*today) : nullptr,
                              .today = today.value_or(ConfigurationElementPath())});
    });
    close(0);
}

/// Moves each element after those around it: with them, or out of them.
void Migration::move() {
    std::vector<const Element*> around;
    for (Element& element : m_elements) {
        around.resize(element.path.size() - 1);
        if (!around.empty()) {
            element.current = around.back()->current;
            element.current.push_back(element.path.back());
        }
        around.push_back(&element);
        if (element.item != nullptr && element.today != element.current)
            moveOne(element);
    }
}

void Migration::moveOne(Element& element) {
    if (!m_editor.exists(element.current))
        return; // it went with a value
    if (!m_editor.exists(element.today)) {
        moveFreely(element);
    } else if (element.item->value == nullptr) {
        element.isLeft = true; // what is in it is moved one by one
        tell(MigrationStep::Renamed, element,
             "what is in it is in " + textOf(element.today) + " now");
    } else {
        m_editor.remove(element.current);
        tell(MigrationStep::Dropped, element,
             "it is " + textOf(element.today) + " today, which the file has, too");
    }
}

void Migration::moveFreely(Element& element) {
    const bool wasLockedAround = lockAround(m_editor, element.current).has_value();
    m_editor.move(element.current, element.today);
    element.current = element.today;
    const bool losesLock = wasLockedAround && !lockAround(m_editor, element.today) &&
                           !isLocked(m_editor, element.today);
    if (losesLock)
        m_editor.setLocked(element.today, true);
    tell(MigrationStep::Renamed, element,
         "it is " + textOf(element.today) + " now" + (losesLock ? ", locked by itself" : ""));
}

/// Drops what has no place, and what is left of objects whose contents were moved.
void Migration::drop() {
    for (std::size_t i = 0; i < m_elements.size();) {
        const Element& element = m_elements[i];
        const bool isDropped = element.item == nullptr && !hadSettings(i);
        if (isDropped)
            tell(MigrationStep::Dropped, element, "the application has no such setting");
        else if (element.isLeft && isLocked(m_editor, element.current) &&
                 !isLocked(m_editor, element.today))
            tell(MigrationStep::Dropped, element,
                 "its lock, as the file has " + textOf(element.today) +
                     ", too, without one; what was in it is locked by itself");
        i = isDropped ? element.end : i + 1;
    }
    for (const Element& element : m_elements)
        if (element.item == nullptr || element.isLeft)
            m_editor.remove(element.current);
}

/// Whether something in an element has a place today.
bool Migration::hadSettings(std::size_t position) const {
    const auto begin = m_elements.begin();
    return std::any_of(begin + static_cast<std::ptrdiff_t>(position) + 1,
                       begin + static_cast<std::ptrdiff_t>(m_elements[position].end),
                       [](const Element& inner) { return inner.item != nullptr; });
}

void Migration::checkTexts() {
    std::unordered_map<std::string, unsigned int> lines;
    for (const Element& element : m_elements)
        lines.try_emplace(textOf(element.current), m_lines.of(element.path));
    std::vector<ConfigurationElementPath> places;
    m_editor.visitElements({},
                           [&](const ConfigurationElementPath& place) { places.push_back(place); });
    for (const ConfigurationElementPath& place : places)
        if (const CatalogueItem* const item = m_names.itemAt(place);
            item != nullptr && item->value != nullptr)
            checkText(place, *item, lines[textOf(place)]);
}

/// Replaces former texts, and tells of what no load takes.
void Migration::checkText(const ConfigurationElementPath& place, const CatalogueItem& item,
                          unsigned int line) {
    const ConfigurationValueDescription& value = *item.value;
    const auto former = textsAt(m_editor, place, value);
    if (!former) {
        m_steps.push_back({MigrationStep::Kept, place, line, "it has no text at its front"});
        return;
    }
    std::vector<std::string> texts = *former;
    for (std::string& text : texts)
        for (const auto& [path, formerText, today] : m_catalogue.getFormerTexts())
            if (text == formerText && path == namesOf(place)) {
                m_steps.push_back({MigrationStep::Replaced, place, line,
                                   fmt::format("\"{}\" is \"{}\" now", text, today)});
                text = today;
                break;
            }
    if (texts != *former)
        writeTexts(m_editor, place, value, texts);
    if (const std::string problem = value.problemOf(texts); !problem.empty())
        m_steps.push_back({MigrationStep::Kept, place, line, problem});
}

void Migration::tell(MigrationStep::Kind kind, const Element& element, const std::string& text) {
    m_steps.push_back({kind, element.path, m_lines.of(element.path), text});
}

} // namespace Orvant::Tool
