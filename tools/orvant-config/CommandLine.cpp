#include "CommandLine.h"

#include <utility>

namespace Orvant::Tool {

CommandLine::CommandLine()
    : m_tool("orvant-config",
             "Shows, checks and edits the settings of an application for its administrator.",
             m_options) {
    CLI::App& app = m_tool.app();
    auto* const application =
        app.add_option("-a,--application", m_options.application, "Application")
            ->type_name("APPLICATION");
    app.add_option("-c,--catalogue", m_options.catalogue, "File with the application's catalogue")
        ->type_name("CATALOGUE")
        ->excludes(application);
    app.add_option("-s,--system", m_options.systemFile, "System file, if not the usual one")
        ->type_name("SYSTEM");
    app.add_option("-u,--user", m_options.userFile, "User's file, if not the usual one")
        ->type_name("USER");
    app.add_option("--as", m_options.user, "User whose files and rights count")->type_name("USER");
    app.get_option("--json")->description(
        "Print JSON for programs; not so template, schema and page");
    app.footer("Exit codes: 0 yes, equal, clean; 1 findings, differences, not writable; 2 a file "
               "cannot be read or written; 3 no or damaged catalogue; 64 wrong usage.");
}

CLI::App& CommandLine::addVerb(const std::string& name, const std::string& description, Run run) {
    return m_tool.addVerb(name, description, [this, run = std::move(run)] {
        Session session(m_options);
        return run(session);
    });
}

} // namespace Orvant::Tool
