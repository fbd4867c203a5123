#include "editing/FileEdit.h"

#include "common/Messages.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Orvant::Tool {

namespace {

ConfigurationFileEditor open(Session& session) {
    const FileName file = session.administeredFile();
    if (file.empty())
        throw Failure(ExitCode::FileError, "the application has no file: there is no home folder");
    const ConfigurationCatalogue& catalogue = session.catalogue();
    ConfigurationFileEditor editor = openToEdit(file, catalogue.getWrittenVersion());
    const auto& accepted = catalogue.getAcceptedVersions();
    if (!editor.isNew() && std::ranges::find(accepted, editor.version()) == accepted.end())
        throw Failure(
            ExitCode::FileError,
            messageAt(file, 0, "error", "the version \"" + editor.version() + "\" is not accepted"),
            true);
    return editor;
}

/// An element below another.
ConfigurationElementPath below(ConfigurationElementPath parent, ConfigurationElementStep step) {
    parent.push_back(std::move(step));
    return parent;
}

/// Without the last element.
ConfigurationElementPath parentOf(const ConfigurationElementPath& place) {
    return {place.begin(), std::prev(place.end())};
}

/// The elements of a name that are right in another.
std::vector<ConfigurationElementStep> childrenOf(const ConfigurationFileEditor& editor,
                                                 const ConfigurationElementPath& parent,
                                                 const std::string& name) {
    std::vector<ConfigurationElementStep> children;
    editor.visitElements(parent, [&](const ConfigurationElementPath& path) {
        if (path.size() == parent.size() + 1 && path.back().name == name)
            children.push_back(path.back());
    });
    return children;
}

/// The element that is read for a name. Where one without a key is meant, readers take the first
/// one, even if it has a key.
ConfigurationElementStep readStep(const ConfigurationFileEditor& editor,
                                  const ConfigurationElementPath& parent, const PathStep& step) {
    if (!step.isKind && !step.key)
        if (const auto children = childrenOf(editor, parent, step.name); !children.empty())
            return children.front();
    return {step.name, step.key};
}

ConfigurationElementPath placeOf(const ConfigurationFileEditor& editor,
                                 const std::vector<PathStep>& steps) {
    ConfigurationElementPath place;
    for (const PathStep& step : steps)
        place.push_back(readStep(editor, place, step));
    return place;
}

/// The element that counts for a path: a key that is not there has what its default entry says.
ConfigurationElementPath countingPlaceOf(const ConfigurationFileEditor& editor,
                                         const std::vector<PathStep>& steps) {
    ConfigurationElementPath place;
    for (const PathStep& step : steps) {
        place.push_back(readStep(editor, place, step));
        if (step.isKind && !editor.exists(place))
            place.back().key.reset();
    }
    return place;
}

bool isSameName(const PathStep& first, const PathStep& second) {
    return first.name == second.name && first.isKind == second.isKind &&
           (first.isKind || first.key == second.key);
}

std::string join(const std::vector<std::string>& texts, const std::string& separator) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : separator) + text;
    return joined;
}

/// A file is not what it was when it was opened.
class ChangedMeanwhile : public Failure {
public:
    explicit ChangedMeanwhile(const std::string& message) : Failure(ExitCode::FileError, message) {}
};

} // namespace

FileEdit::FileEdit(Session& session, FoundItem found)
    : m_session(session), m_found(std::move(found)), m_editor(open(session)) {
    try {
        m_place = placeOf(m_editor, m_found.steps);
        m_countingPlace = countingPlaceOf(m_editor, m_found.steps);
        m_editor.exists(m_place);
    } catch (const std::invalid_argument& e) {
        throw Failure(ExitCode::Usage, e.what());
    }
}

std::string FileEdit::path() const {
    ConfigurationElementPath meant;
    for (const PathStep& step : m_found.steps)
        meant.push_back({step.name, step.key});
    return textOf(meant);
}

void FileEdit::makeObjectsAround() {
    makeObjects(m_place.size() - 1);
}

void FileEdit::makeObject() {
    makeObjects(m_place.size());
}

/// Makes the first elements of the place as far as they are missing.
void FileEdit::makeObjects(std::size_t depth) {
    noteOwnElements();
    for (const CatalogueItem& around : m_session.settings().items()) {
        const std::size_t size = around.steps.size();
        if (around.object == nullptr || size > depth ||
            !std::ranges::equal(around.steps.begin(), around.steps.end(), item().steps.begin(),
                                item().steps.begin() + static_cast<std::ptrdiff_t>(size),
                                isSameName))
            continue;
        const ConfigurationElementPath object(m_place.begin(),
                                              m_place.begin() + static_cast<std::ptrdiff_t>(size));
        if (m_editor.exists(object))
            continue;
        noteDefaultEntry(object);
        m_editor.setText(object, "", around.object->description);
    }
}

/// Tells that a new element ends what was so for its key.
void FileEdit::noteDefaultEntry(const ConfigurationElementPath& place) {
    if (place.back().key.value_or("").empty())
        return;
    const auto entry = below(parentOf(place), {place.back().name});
    if (m_editor.exists(entry))
        note("what " + textOf(entry) + " says does not count for " + textOf(place) + " any more");
}

/// Tells which keys have elements, for which a default entry does not count.
void FileEdit::noteOwnElements() {
    ConfigurationElementPath parent;
    for (std::size_t i = 0; i < m_place.size(); ++i) {
        const auto& [name, key] = m_place[i];
        if (m_found.steps[i].isKind && key.value_or("").empty()) {
            std::vector<std::string> others;
            for (const ConfigurationElementStep& child : childrenOf(m_editor, parent, name))
                if (child.key)
                    others.push_back(textOf(below(parent, child)));
            if (!others.empty())
                note("it does not count for " + join(others, ", "));
        }
        parent.push_back(m_place[i]);
    }
}

void FileEdit::setTexts(const std::vector<std::string>& texts) {
    makeObjectsAround();
    noteOtherReaders();
    writeTexts(m_editor, m_place, *item().value, texts);
}

/// Tells which lists of objects around are read from this one: lists are looked for at every depth.
void FileEdit::noteOtherReaders() {
    for (const CatalogueItem& other : m_session.settings().items()) {
        const std::size_t depth = other.steps.size() - 1;
        if (other.value == nullptr || !other.value->isList() || !item().value->isList() ||
            depth + 1 >= m_place.size() || other.steps.back().name != m_place.back().name ||
            !std::ranges::equal(other.steps | std::views::take(depth),
                                item().steps | std::views::take(depth), isSameName))
            continue;
        ConfigurationElementPath list(m_place.begin(),
                                      m_place.begin() + static_cast<std::ptrdiff_t>(depth));
        list.push_back(m_place.back());
        if (!m_editor.exists(list))
            note(textOf(list) + ", which the file does not say, is read from it, too");
    }
}

void FileEdit::finish(const std::string& sentence, const nlohmann::ordered_json& details) {
    const bool isChanged = m_editor.isChanged();
    const bool isNewFile = isChanged && m_editor.isNew();
    if (isChanged) {
        const ConfigurationSaveReport report = m_editor.save();
        if (report.error == std::errc::resource_unavailable_try_again)
            throw ChangedMeanwhile(report.text);
        if (report.reason != ConfigurationSaveReport::Saved)
            throw Failure(ExitCode::FileError, report.text);
        if (!report.text.empty())
            note(report.text);
    }
    const Output& output = m_session.output();
    const std::string file = m_editor.file().toString();
    if (output.isJson()) {
        nlohmann::ordered_json json{{"file", file}, {"path", path()}};
        json.update(details);
        json["changed"] = isChanged;
        json["notes"] = m_notes;
        output.print(json);
        return;
    }
    std::string line = file + (isNewFile ? " (new file)" : "") + ": " + path() + ' ' + sentence;
    for (const std::string& text : m_notes)
        line += "; " + text;
    output.print(oneLine(line) + '\n');
}

ExitCode editFile(Session& session, const FoundItem& found,
                  const std::function<ExitCode(FileEdit&)>& edit) {
    constexpr int maxAttempts = 20;
    for (int attempt = 1;; ++attempt) {
        try {
            FileEdit opened(session, found);
            return edit(opened);
        } catch (const ChangedMeanwhile&) {
            if (attempt == maxAttempts)
                throw;
        }
    }
}

ConfigurationFileEditor openToEdit(const FileName& file, const std::string& versionOfNew) {
    try {
        return {file, versionOfNew};
    } catch (const ConfigurationFileError& e) {
        const ConfigurationProblem& problem = e.problem();
        throw Failure(ExitCode::FileError,
                      messageAt(problem.file, problem.line, "error", problem.text, problem.column),
                      true);
    }
}

std::optional<std::vector<std::string>> textsAt(const ConfigurationFileEditor& editor,
                                                const ConfigurationElementPath& place,
                                                const ConfigurationValueDescription& value) {
    if (value.isList())
        return editor.items(place);
    const auto text = editor.text(place);
    return text ? std::optional(std::vector{*text}) : std::nullopt;
}

void writeTexts(ConfigurationFileEditor& editor, const ConfigurationElementPath& place,
                const ConfigurationValueDescription& value, const std::vector<std::string>& texts) {
    if (value.isList())
        editor.setItems(place, texts, value.description);
    else
        editor.setText(place, texts.front(), value.description);
}

bool isLocked(const ConfigurationFileEditor& editor, const ConfigurationElementPath& place) {
    return editor.editable(place) == "false";
}

std::optional<ConfigurationElementPath> lockAround(const ConfigurationFileEditor& editor,
                                                   const ConfigurationElementPath& place) {
    for (std::size_t depth = 1; depth < place.size(); ++depth) {
        ConfigurationElementPath object(place.begin(),
                                        place.begin() + static_cast<std::ptrdiff_t>(depth));
        if (isLocked(editor, object))
            return object;
    }
    return std::nullopt;
}

void checkTakenFromFiles(const CatalogueItem& item, const std::string& path) {
    if (!item.isLoaded)
        throw Failure(ExitCode::Usage, path + " is not read from files");
    if (item.isLockedByClass)
        throw Failure(ExitCode::Usage,
                      path + " is locked by the application, whatever the file says");
}

std::string textOf(const ConfigurationElementPath& place) {
    std::string text;
    for (const auto& [name, key] : place)
        text +=
            (text.empty() ? "" : "/") + name + (key.value_or("").empty() ? "" : '[' + *key + ']');
    return text;
}

} // namespace Orvant::Tool
