#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/ExplainedSettings.h"
#include "generating/ExplanationPage.h"
#include "generating/NewFile.h"

#include <memory>
#include <utility>

namespace Orvant::Tool {

namespace {

ExitCode makePageOf(Session& session, const std::string& file) {
    std::vector<ConfigurationOrigin> origins;
    for (ExplainedSetting& setting : explainAll(session.catalogue(), session.loadUsable()))
        origins.push_back(std::move(setting.origin));
    const std::string page = makePage(session.catalogue().getApplication(), session.settings(),
                                      session.files(), origins);
    if (file.empty())
        session.output().print(page);
    else
        writeFile(file, page);
    return ExitCode::Clean;
}

} // namespace

void addPage(CommandLine& commandLine) {
    const auto file = std::make_shared<std::string>();
    CLI::App& verb = commandLine.addVerb(
        "page", "Make an HTML page of what applies, where it comes from and what is locked",
        [file](Session& session) { return makePageOf(session, *file); });
    verb.add_option("-o,--output", *file, "File to write, if not standard output")
        ->type_name("FILE");
}

} // namespace Orvant::Tool
