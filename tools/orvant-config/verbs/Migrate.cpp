#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "common/Messages.h"
#include "editing/FileEdit.h"
#include "editing/Migration.h"

#include <algorithm>
#include <filesystem>
#include <memory>

namespace Orvant::Tool {

namespace {

struct MigrateOptions {
    std::string file;
    std::string version;
    std::string output;
};

std::string versionOf(Session& session, const MigrateOptions& options) {
    const ConfigurationCatalogue& catalogue = session.catalogue();
    const auto& accepted = catalogue.getAcceptedVersions();
    const std::string version =
        options.version.empty() ? catalogue.getWrittenVersion() : options.version;
    if (std::ranges::find(accepted, version) != accepted.end())
        return version;
    std::string versions;
    for (const std::string& other : accepted)
        versions += (versions.empty() ? "" : ", ") + other;
    throw Failure(ExitCode::Usage, '"' + catalogue.getApplication() +
                                       "\" does not load files of the version \"" + version +
                                       "\", only of " + (versions.empty() ? "none" : versions));
}

FileName outputOf(const MigrateOptions& options, const std::string& version) {
    if (!options.output.empty())
        return options.output;
    const std::filesystem::path file = options.file;
    return (file.parent_path() / (file.stem().string() + '-' + version + file.extension().string()))
        .string();
}

ConfigurationFileEditor openExisting(const std::string& file) {
    ConfigurationFileEditor editor = openToEdit(file, "");
    if (editor.isNew())
        throw Failure(ExitCode::FileError, file + ": there is no such file");
    return editor;
}

/// Paths are made for all elements, each as long as those around it: nobody would wait for that.
void refuseDeepNesting(const ConfigurationFileEditor& editor) {
    constexpr std::size_t maxDepth = 100;
    editor.visitElements({}, [&](const ConfigurationElementPath& path) {
        if (path.size() > maxDepth)
            throw Failure(
                ExitCode::FileError,
                messageAt(editor.file(), 0, "error",
                          "its elements are nested deeper than " + std::to_string(maxDepth)),
                true);
    });
}

std::string kindText(MigrationStep::Kind kind) {
    switch (kind) {
    case MigrationStep::Renamed:
        return "renamed";
    case MigrationStep::Replaced:
        return "replaced";
    case MigrationStep::Dropped:
        return "dropped";
    case MigrationStep::Kept:
        return "kept";
    }
    return "";
}

void print(const Output& output, const MigrateOptions& options,
           const std::vector<MigrationStep>& steps, const FileName& target,
           const std::string& version) {
    auto json = nlohmann::ordered_json::array();
    for (const auto& [kind, path, line, text] : steps)
        if (output.isJson())
            json.push_back(
                {{"line", line}, {"kind", kindText(kind)}, {"path", textOf(path)}, {"text", text}});
        else
            output.print(
                oneLine(messageAt(options.file, line, kindText(kind), textOf(path) + ": " + text)) +
                '\n');
    if (output.isJson())
        output.print(nlohmann::ordered_json{{"file", options.file},
                                            {"output", target.toString()},
                                            {"version", version},
                                            {"steps", json}});
    else
        output.print(oneLine(target.toString() + ": version " + version) + '\n');
}

ExitCode migrate(Session& session, const MigrateOptions& options) {
    const std::string version = versionOf(session, options);
    const FileName target = outputOf(options, version);
    ConfigurationFileEditor editor = openExisting(options.file);
    refuseDeepNesting(editor);
    const ElementLines lines(options.file);
    const auto steps = Migration(session.catalogue(), session.settings(), editor, lines).run();
    editor.setVersion(version);
    const ConfigurationSaveReport report = editor.saveAs(target);
    if (report.reason != ConfigurationSaveReport::Saved)
        throw Failure(ExitCode::FileError, report.text);
    print(session.output(), options, steps, target, version);
    const bool hasDropped =
        std::ranges::count(steps, MigrationStep::Dropped, &MigrationStep::kind) != 0;
    return hasDropped ? ExitCode::Findings : ExitCode::Clean;
}

} // namespace

void addMigrate(CommandLine& commandLine) {
    const auto options = std::make_shared<MigrateOptions>();
    CLI::App& verb = commandLine.addVerb(
        "migrate", "Write a file of an earlier version anew, with the names and texts of today",
        [options](Session& session) { return migrate(session, *options); });
    verb.add_option("FILE", options->file, "The file, which stays as it is")->required();
    verb.add_option("--to", options->version,
                    "Version of the new file; the latest one if not given")
        ->type_name("VERSION");
    verb.add_option("-o,--output", options->output,
                    "The new file; FILE's name with the version if not given")
        ->type_name("OUT");
}

} // namespace Orvant::Tool
