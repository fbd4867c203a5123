#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/SettingText.h"
#include "editing/FileEdit.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace Orvant::Tool {

namespace {

using Texts = std::vector<std::string>;

struct SetOptions {
    std::string path;
    Texts values;
    bool empty = false;
};

/// Adds what is allowed, as far as a text does not say so.
std::string withAllowed(const std::string& text, const ConfigurationValueDescription& value) {
    const std::string rule = value.constraint.describe();
    const bool isSaid = rule.empty() || text.find(rule) != std::string::npos;
    return text + " (" + typeText(value.type) + (isSaid ? "" : ", " + rule) + ')';
}

void checkCount(const ConfigurationValueDescription& value, const SetOptions& options) {
    if (!value.isList() && (options.empty || options.values.size() != 1))
        throw Failure(ExitCode::Usage, withAllowed(options.path + " takes one value", value));
    if (value.isList() && options.values.empty() && !options.empty)
        throw Failure(ExitCode::Usage,
                      options.path + " takes the items of the list, or --empty for none");
}

/// @return what a file holds for what a user wrote
/// @throws Failure(Usage) for what is not allowed
Texts textsOf(const ConfigurationValueDescription& value, const SetOptions& options) {
    const auto refuse = [&](const std::string& problem) {
        throw Failure(ExitCode::Usage, withAllowed(options.path + ": " + problem, value));
    };
    Texts texts = options.values;
    if (value.type == ConfigurationValueBase::UnsignedIntValue) {
        // In files, a sign is part of large numbers. Nobody means these by it.
        if (texts.front().find('-') != std::string::npos)
            refuse('"' + texts.front() + "\" is less than 0");
        texts.front() = value.fileTextOf(texts.front());
    }
    if (const std::string problem = value.problemOf(texts); !problem.empty())
        refuse(problem);
    return texts;
}

nlohmann::ordered_json jsonOf(const ConfigurationValueDescription& value,
                              const std::optional<Texts>& texts) {
    if (!texts)
        return nullptr;
    return value.isList() ? nlohmann::ordered_json(*texts)
                          : nlohmann::ordered_json(readableTexts(value, *texts).front());
}

ExitCode set(FileEdit& edit, const Texts& texts) {
    const ConfigurationValueDescription& value = *edit.item().value;
    const auto former = textsAt(edit.editor(), edit.place(), value);
    edit.setTexts(texts);
    if (!value.constraint.condition.empty())
        edit.note("only the application can tell whether it is " + value.constraint.condition);
    edit.finish("is " + valueText(value, texts) +
                    (former == texts ? " already"
                     : former        ? " (was " + valueText(value, *former) + ')'
                                     : " (was not set)"),
                {{"value", jsonOf(value, texts)}, {"was", jsonOf(value, former)}});
    return ExitCode::Clean;
}

ExitCode set(Session& session, const SetOptions& options) {
    const FoundItem found = session.find(options.path);
    checkTakenFromFiles(*found.item, options.path);
    if (found.item->value == nullptr)
        throw Failure(ExitCode::Usage,
                      options.path + " is an object: only the values in it can be set");
    const ConfigurationValueDescription& value = *found.item->value;
    checkCount(value, options);
    const Texts texts = textsOf(value, options);
    return editFile(session, found, [&](FileEdit& edit) { return set(edit, texts); });
}

ExitCode unset(FileEdit& edit) {
    const CatalogueItem& item = edit.item();
    const auto former =
        item.value == nullptr ? std::nullopt : textsAt(edit.editor(), edit.place(), *item.value);
    const bool wasLocked = isLocked(edit.editor(), edit.place());
    const bool isRemoved = edit.editor().remove(
        edit.place(), item.value != nullptr ? item.value->description : item.object->description);
    if (wasLocked)
        edit.note("its lock is gone, too");
    edit.finish(!isRemoved ? "was not set"
                : former   ? "is not set any more (was " + valueText(*item.value, *former) + ')'
                           : "is not set any more",
                {{"was", former ? jsonOf(*item.value, former) : nullptr}});
    return ExitCode::Clean;
}

void addUnset(CommandLine& commandLine) {
    const auto path = std::make_shared<std::string>();
    CLI::App& verb = commandLine.addVerb(
        "unset", "Remove a setting or object from the system file",
        [path](Session& session) { return editFile(session, session.find(*path), unset); });
    verb.add_option("PATH", *path, "The setting, or an object with all that is in it")->required();
}

} // namespace

void addSet(CommandLine& commandLine) {
    const auto options = std::make_shared<SetOptions>();
    CLI::App& verb =
        commandLine.addVerb("set", "Set a value in the system file",
                            [options](Session& session) { return set(session, *options); });
    verb.add_option("PATH", options->path, "The setting")->required();
    auto* const values = verb.add_option(
        "VALUE", options->values,
        "Its value, or the items of a list; \"--\" before one that begins with '-'");
    verb.add_flag("--empty", options->empty, "A list without items")->excludes(values);
    addUnset(commandLine);
}

} // namespace Orvant::Tool
