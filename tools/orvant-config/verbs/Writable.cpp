#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/LoadedItem.h"

#include <memory>

namespace Orvant::Tool {

namespace {

ExitCode writable(Session& session, const std::string& path) {
    const bool isWritable = !findLoaded(session, path).isLocked;
    if (session.output().isJson())
        session.output().print(nlohmann::ordered_json{{"path", path}, {"writable", isWritable}});
    else
        session.output().print(std::string(isWritable ? "yes\n" : "no\n"));
    return isWritable ? ExitCode::Clean : ExitCode::Findings;
}

} // namespace

void addWritable(CommandLine& commandLine) {
    const auto path = std::make_shared<std::string>();
    CLI::App& verb = commandLine.addVerb(
        "writable", "Tell whether users can change a setting: no when it is locked",
        [path](Session& session) { return writable(session, *path); });
    verb.add_option("PATH", *path, "The setting, or an object")->required();
}

} // namespace Orvant::Tool
