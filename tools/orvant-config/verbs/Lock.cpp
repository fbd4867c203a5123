#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/SettingText.h"
#include "editing/FileEdit.h"

#include <memory>
#include <optional>

namespace Orvant::Tool {

namespace {

using Texts = std::vector<std::string>;

Texts defaultTextsOf(const ConfigurationValueDescription& value) {
    Texts texts = value.defaultTexts;
    if (!value.isList())
        texts.front() = value.fileTextOf(texts.front());
    return texts;
}

/// What a load takes from an element.
/// @return nothing when it takes nothing
std::optional<Texts> validTextsAt(const FileEdit& edit, const ConfigurationElementPath& place) {
    auto texts = textsAt(edit.editor(), place, *edit.item().value);
    if (texts && !edit.item().value->problemOf(*texts).empty())
        texts.reset();
    return texts;
}

/// Has the value's element say something: without a text, its lock would not hold.
/// @return what the value is locked at, as part of a sentence
std::string provideText(FileEdit& edit) {
    const ConfigurationValueDescription& value = *edit.item().value;
    if (const auto texts = validTextsAt(edit, edit.place()))
        return valueText(value, *texts);
    const auto unusable = textsAt(edit.editor(), edit.place(), value);
    if (unusable && !unusable->empty() && !unusable->front().empty()) {
        edit.note("what the file says is not used: " + value.problemOf(*unusable));
        return defaultText(value);
    }
    if (edit.countingPlace() != edit.place())
        if (const auto texts = validTextsAt(edit, edit.countingPlace())) {
            edit.setTexts(*texts);
            return valueText(value, *texts) + ", which " + textOf(edit.countingPlace()) + " says";
        }
    edit.setTexts(defaultTextsOf(value));
    if (const std::string problem = value.problemOf(defaultTextsOf(value)); !problem.empty())
        edit.note("no file can say it: " + problem);
    return defaultText(value) + ", its default, which the file did not say";
}

nlohmann::ordered_json jsonOf(const std::optional<ConfigurationElementPath>& lockAround,
                              bool isLocked) {
    return {{"locked", isLocked || lockAround},
            {"lockedBy", lockAround ? nlohmann::ordered_json(textOf(*lockAround)) : nullptr}};
}

ExitCode lock(FileEdit& edit) {
    std::string locked = "locked";
    if (edit.item().value != nullptr)
        locked += " at " + provideText(edit);
    else
        edit.makeObject();
    const bool wasLocked = isLocked(edit.editor(), edit.place());
    edit.editor().setLocked(edit.place(), true);
    const auto around = lockAround(edit.editor(), edit.place());
    if (around)
        edit.note(textOf(*around) + ", which it is in, is locked, too");
    edit.finish((wasLocked ? "was " : "is ") + locked + (wasLocked ? " already" : ""),
                jsonOf(around, true));
    return ExitCode::Clean;
}

ExitCode lock(Session& session, const std::string& path) {
    const FoundItem found = session.find(path);
    checkTakenFromFiles(*found.item, path);
    return editFile(session, found, [](FileEdit& edit) { return lock(edit); });
}

/// The locks in an object.
std::vector<std::string> locksIn(const FileEdit& edit) {
    std::vector<std::string> locks;
    edit.editor().visitElements(edit.place(), [&](const ConfigurationElementPath& place) {
        if (isLocked(edit.editor(), place))
            locks.push_back(textOf(place));
    });
    return locks;
}

/// What keeps a setting locked when its element is not.
std::optional<ConfigurationElementPath> lockBesides(const FileEdit& edit) {
    if (auto around = lockAround(edit.editor(), edit.countingPlace()))
        return around;
    if (edit.countingPlace() != edit.place() && isLocked(edit.editor(), edit.countingPlace()))
        return edit.countingPlace();
    return std::nullopt;
}

ExitCode unlock(FileEdit& edit) {
    const bool wasLocked = isLocked(edit.editor(), edit.place());
    edit.editor().setLocked(edit.place(), false);
    for (const std::string& lock : locksIn(edit))
        edit.note(lock + ", which is in it, stays locked");
    const auto other = lockBesides(edit);
    std::string sentence = wasLocked ? "is not locked any more" : "was not locked";
    if (other)
        sentence = (wasLocked ? "is not locked by itself any more, but by " : "is locked by ") +
                   textOf(*other);
    edit.finish(sentence, jsonOf(other, false));
    return other ? ExitCode::Findings : ExitCode::Clean;
}

ExitCode unlock(Session& session, const std::string& path) {
    const FoundItem found = session.find(path);
    if (found.item->isLockedByClass)
        throw Failure(ExitCode::Findings,
                      path + " is locked by the application, whatever the file says");
    return editFile(session, found, [](FileEdit& edit) { return unlock(edit); });
}

void addVerb(CommandLine& commandLine, const std::string& name, const std::string& description,
             ExitCode (*run)(Session&, const std::string&)) {
    const auto path = std::make_shared<std::string>();
    commandLine
        .addVerb(name, description, [path, run](Session& session) { return run(session, *path); })
        .add_option("PATH", *path, "The setting, or an object with all that is in it")
        ->required();
}

} // namespace

void addLock(CommandLine& commandLine) {
    addVerb(commandLine, "lock",
            "Lock a value or object in the system file, so that no user's file "
            "changes it",
            lock);
    addVerb(commandLine, "unlock", "Unlock a value or object in the system file", unlock);
}

} // namespace Orvant::Tool
