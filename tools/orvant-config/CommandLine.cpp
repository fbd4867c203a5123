#include "CommandLine.h"

#include "Progress.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <system_error>
#include <utility>

namespace Orvant::Tool {

CommandLine::CommandLine()
    : m_app("Shows, checks and edits the settings of an application for its administrator.",
            "orvant-config") {
    m_app.set_version_flag("--version", std::string("orvant-config ") + ORVANT_VERSION);
    auto* const application =
        m_app.add_option("-a,--application", m_options.application, "Application")
            ->type_name("APPLICATION");
    m_app
        .add_option("-c,--catalogue", m_options.catalogue, "File with the application's catalogue")
        ->type_name("CATALOGUE")
        ->excludes(application);
    m_app.add_option("-s,--system", m_options.systemFile, "System file, if not the usual one")
        ->type_name("SYSTEM");
    m_app.add_option("-u,--user", m_options.userFile, "User's file, if not the usual one")
        ->type_name("USER");
    m_app.add_option("--as", m_options.user, "User whose files and rights count")
        ->type_name("USER");
    m_app.add_flag("--json", m_options.json,
                   "Print JSON for programs; not so template, schema and page");
    m_app.add_flag("-q,--quiet", m_options.quiet,
                   "Print nothing of what was found: the exit code tells");
    m_app.add_option("--color", m_options.color, "Whether to print colours: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN");
    m_app.require_subcommand(1);
    m_app.footer("Exit codes: 0 yes, equal, clean; 1 findings, differences, not writable; 2 a file "
                 "cannot be read or written; 3 no or damaged catalogue; 64 wrong usage.");
}

CLI::App& CommandLine::addVerb(const std::string& name, const std::string& description, Run run) {
    CLI::App& verb = *m_app.add_subcommand(name, description);
    verb.fallthrough(); // options for all verbs may come after it
    verb.callback([this, run = std::move(run)] { m_verb = run; });
    return verb;
}

int CommandLine::run(int argc, const char* const* argv) {
    try {
        m_app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const bool isHelp = m_app.exit(e) == 0;
        return static_cast<int>(isHelp ? ExitCode::Clean : ExitCode::Usage);
    }
    return static_cast<int>(runVerb());
}

ExitCode CommandLine::runVerb() {
    try {
        Session session(m_options);
        const Progress progress(!m_options.quiet);
        const ExitCode code = m_verb(session);
        if (std::fflush(stdout) != 0)
            throw std::system_error(errno, std::generic_category(), "standard output");
        return code;
    } catch (const Failure& e) {
        if (!m_options.quiet)
            std::cerr << (e.isPlaced() ? "" : "orvant-config: ") << oneLine(e.what()) << '\n';
        return e.code();
    } catch (const std::exception& e) {
        std::cerr << "orvant-config: " << oneLine(e.what()) << '\n';
        return ExitCode::FileError;
    }
}

} // namespace Orvant::Tool
