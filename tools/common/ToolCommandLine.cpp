#include "common/ToolCommandLine.h"

#include "common/Output.h"
#include "common/Progress.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <system_error>
#include <utility>

namespace Orvant::Tool {

ToolCommandLine::ToolCommandLine(const std::string& name, const std::string& description,
                                 OutputOptions& options)
    : m_app(description, name), m_options(options) {
    m_app.set_version_flag("--version", name + ' ' + ORVANT_VERSION);
    m_app.add_flag("--json", options.json, "Print JSON for programs");
    m_app.add_flag("-q,--quiet", options.quiet,
                   "Print nothing of what was found: the exit code tells");
    m_app.add_option("--color", options.color, "Whether to print colours: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN");
    m_app.require_subcommand(1);
}

CLI::App& ToolCommandLine::addVerb(const std::string& name, const std::string& description,
                                   Run run) {
    CLI::App& verb = *m_app.add_subcommand(name, description);
    verb.fallthrough(); // options for all verbs may come after it
    verb.callback([this, run = std::move(run)] { m_verb = run; });
    return verb;
}

int ToolCommandLine::run(int argc, const char* const* argv) {
    try {
        m_app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const bool isHelp = m_app.exit(e) == 0;
        return static_cast<int>(isHelp ? ExitCode::Clean : ExitCode::Usage);
    }
    return static_cast<int>(runVerb());
}

ExitCode ToolCommandLine::runVerb() const {
    const std::string program = m_app.get_name() + ": ";
    try {
        const Progress progress(m_app.get_name(), !m_options.quiet);
        const ExitCode code = m_verb();
        if (std::fflush(stdout) != 0)
            throw std::system_error(errno, std::generic_category(), "standard output");
        return code;
    } catch (const Failure& e) {
        if (!m_options.quiet)
            std::cerr << (e.isPlaced() ? "" : program) << oneLine(e.what()) << '\n';
        return e.code();
    } catch (const std::exception& e) {
        std::cerr << program << oneLine(e.what()) << '\n';
        return ExitCode::FileError;
    }
}

} // namespace Orvant::Tool
