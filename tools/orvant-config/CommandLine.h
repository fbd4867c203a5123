#pragma once

#include "ExitCode.h"
#include "Options.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace Orvant::Tool {

/// The options, and the verbs with theirs.
class CommandLine {
public:
    using Run = std::function<ExitCode(Session&)>;

    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine() = default;

    /// Adds a verb.
    /// @param run what it does
    /// @return the verb, for options and arguments of its own; what they are stored in lives as
    ///         long as this if `run` shares it
    CLI::App& addVerb(const std::string& name, const std::string& description, Run run);

    /// Does what the arguments ask for.
    /// @return the exit code of the process
    int run(int argc, const char* const* argv);

private:
    ExitCode runVerb();

    CLI::App m_app;
    Options m_options;
    Run m_verb;
};

} // namespace Orvant::Tool
