#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/ExplainedSettings.h"
#include "catalogue/SettingText.h"

#include <FileHandling/FileUtilities.h>

#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

namespace Orvant::Tool {

namespace {

struct DiffOptions {
    std::string first;
    std::string second;
    bool effective = false;
};

/// What a file says of a setting.
struct Said {
    std::optional<std::string> text = {}; ///< as files hold it; nothing: the file does not say
    std::string value = {};               ///< what it means: another text may mean the same
    std::string shown = {};               ///< as people read it
    bool isLocked = false;
    unsigned int line = 0;

    bool isSame(const Said& other) const {
        return text.has_value() == other.text.has_value() && value == other.value &&
               isLocked == other.isLocked;
    }
};

/// What a file says, by path.
struct SaidByFile {
    std::vector<std::string> paths = {}; ///< in the order of saving
    std::map<std::string, Said> settings = {};
};

/// A setting that differs.
struct Difference {
    std::string kind; ///< "added", "removed", "value" or "lock"
    std::string path;
    Said first;
    Said second;
};

void add(SaidByFile& all, const std::string& path, const Said& said) {
    if (all.settings.try_emplace(path, said).second)
        all.paths.push_back(path);
}

/// @return the file by itself, as the administrator's
/// @throws Failure(FileError) when there is none
StandardConfigurationFiles alone(const FileName& file) {
    if (!FileUtilities::exists(file))
        throw Failure(ExitCode::FileError, file.toString() + ": there is no such file");
    return {.system = file, .user = {}};
}

/// What a number means, however it is written.
std::string meaningOf(const ConfigurationValueDescription& value, const std::string& text) {
    const bool isNumber = value.type != ConfigurationValueBase::StringValue &&
                          value.type != ConfigurationValueBase::BoolValue;
    if (!isNumber || !value.problemOf({text}).empty())
        return text;
    double number = 0;
    std::istringstream(text) >> number;
    return fmt::format("{}", number);
}

/// What a setting says, apart from its lock.
/// @param text what a file holds, or what applies
/// @param isApplied whether the text applies as it is
Said describe(Session& session, const ExplainedSetting& setting, const std::string& text,
              bool isApplied) {
    const auto found = session.settings().find(setting.origin.path);
    const ConfigurationValueDescription* const value = found ? found->item->value : nullptr;
    if (value == nullptr)
        return {.text = text, .value = text, .shown = shownText(value, text)};
    const std::string meaning =
        !value->isList() ? meaningOf(*value, text)
        : isApplied      ? nlohmann::json(setting.items)
                          .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                    : text;
    return {.text = text, .value = meaning, .shown = valueText(*value, text)};
}

/// Adds the objects with keys that a setting is in: even one without settings is a difference.
void addObjects(Session& session, const std::string& path, SaidByFile& all) {
    const auto found = session.settings().find(path);
    std::string object;
    for (const PathStep& step : found ? found->steps : std::vector<PathStep>()) {
        object += (object.empty() ? "" : "/") + step.name + (step.key ? '[' + *step.key + ']' : "");
        if (step.isKind && step.key)
            add(all, object, {.text = "", .shown = "(an object)"});
    }
}

SaidByFile readFile(Session& session, const FileName& file) {
    SaidByFile all;
    for (const ExplainedSetting& setting :
         explainAll(session.catalogue(), session.loadUsable(alone(file)))) {
        const ConfigurationOrigin& origin = setting.origin;
        addObjects(session, origin.path, all);
        Said said;
        if (origin.systemValue)
            said = describe(session, setting, *origin.systemValue,
                            origin.layer == ConfigurationOrigin::System);
        said.isLocked = origin.locked && origin.lockLine != 0;
        said.line = origin.systemValue ? origin.systemLine : origin.lockLine;
        if (said.text || said.isLocked)
            add(all, origin.path, said);
    }
    return all;
}

/// What applies to the user of the session with a file.
SaidByFile readEffective(Session& session, const FileName& file) {
    SaidByFile all;
    StandardConfigurationFiles files = alone(file);
    files.user = session.files().user;
    for (const ExplainedSetting& setting :
         explainAll(session.catalogue(), session.loadUsable(files))) {
        const ConfigurationOrigin& origin = setting.origin;
        addObjects(session, origin.path, all);
        Said said = describe(session, setting, origin.value, true);
        // Which has all its digits.
        const auto& text =
            origin.layer == ConfigurationOrigin::System ? origin.systemValue : origin.userValue;
        if (origin.layer != ConfigurationOrigin::Default && text)
            said.value = describe(session, setting, *text, true).value;
        said.isLocked = origin.locked;
        said.line = origin.line;
        add(all, origin.path, said);
    }
    return all;
}

Difference differenceOf(const std::string& path, const Said& first, const Said& second) {
    const char* const kind = !first.text && second.text    ? "added"
                             : first.text && !second.text  ? "removed"
                             : first.value != second.value ? "value"
                                                           : "lock";
    return {kind, path, first, second};
}

std::vector<Difference> compare(const SaidByFile& first, const SaidByFile& second) {
    std::vector<Difference> differences;
    const auto saidIn = [](const SaidByFile& all, const std::string& path) {
        const auto found = all.settings.find(path);
        return found == all.settings.end() ? Said() : found->second;
    };
    std::vector<std::string> paths = first.paths;
    for (const std::string& path : second.paths)
        if (!first.settings.contains(path))
            paths.push_back(path);
    for (const std::string& path : paths) {
        const Said before = saidIn(first, path);
        const Said after = saidIn(second, path);
        if (!before.isSame(after))
            differences.push_back(differenceOf(path, before, after));
    }
    return differences;
}

std::string sideText(const Said& said) {
    return (said.text ? oneLine(said.shown) : "(not set)") + (said.isLocked ? ", locked" : "");
}

void print(const Output& output, const std::vector<Difference>& differences) {
    std::vector<std::vector<std::string>> rows;
    for (const Difference& difference : differences) {
        const auto style = difference.kind == "added"     ? fg(fmt::terminal_color::green)
                           : difference.kind == "removed" ? fg(fmt::terminal_color::red)
                                                          : fg(fmt::terminal_color::yellow);
        rows.push_back({output.styled(difference.kind, style), difference.path,
                        sideText(difference.first) + " -> " + sideText(difference.second)});
    }
    output.printTable(rows);
}

nlohmann::ordered_json jsonOf(const Said& said) {
    return {{"value", said.text ? nlohmann::ordered_json(*said.text) : nlohmann::ordered_json()},
            {"locked", said.isLocked},
            {"line", said.line}};
}

nlohmann::ordered_json jsonOf(const std::vector<Difference>& differences) {
    auto json = nlohmann::ordered_json::array();
    for (const auto& [kind, path, first, second] : differences)
        json.push_back({{"difference", kind},
                        {"path", path},
                        {"first", jsonOf(first)},
                        {"second", jsonOf(second)}});
    return json;
}

ExitCode diff(Session& session, const DiffOptions& options) {
    const auto read = options.effective ? readEffective : readFile;
    const SaidByFile first = read(session, options.first);
    const std::vector<Difference> differences = compare(first, read(session, options.second));
    const Output& output = session.output();
    if (output.isJson())
        output.print(jsonOf(differences));
    else
        print(output, differences);
    return differences.empty() ? ExitCode::Clean : ExitCode::Findings;
}

} // namespace

void addDiff(CommandLine& commandLine) {
    const auto options = std::make_shared<DiffOptions>();
    CLI::App& verb = commandLine.addVerb(
        "diff", "Compare two system files by setting: values, locks, added and removed",
        [options](Session& session) { return diff(session, *options); });
    verb.add_option("A", options->first, "The first file")->required();
    verb.add_option("B", options->second, "The second file")->required();
    verb.add_flag("--effective", options->effective,
                  "What applies with each of them and the user's file");
}

} // namespace Orvant::Tool
