#pragma once

#include "common/ExitCode.h"
#include "common/OutputOptions.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace Orvant::Tool {

/// The command line of a tool: what all tools can be told, and the tool's verbs. It runs a verb,
/// and tells what went wrong.
class ToolCommandLine {
public:
    using Run = std::function<ExitCode()>;

    /// @param name        of the program
    /// @param description what it does
    /// @param options     where what all tools can be told is stored; must outlive this
    ToolCommandLine(const std::string& name, const std::string& description,
                    OutputOptions& options);
    ToolCommandLine(const ToolCommandLine&) = delete;
    ToolCommandLine& operator=(const ToolCommandLine&) = delete;
    ~ToolCommandLine() = default;

    /// @return the program, for options for all its verbs and what else its help tells
    CLI::App& app() { return m_app; }
    /// Adds a verb.
    /// @param run what it does
    /// @return the verb, for options and arguments of its own; what they are stored in lives as
    ///         long as this if `run` shares it
    CLI::App& addVerb(const std::string& name, const std::string& description, Run run);

    /// Does what the arguments ask for.
    /// @return the exit code of the process
    int run(int argc, const char* const* argv);

private:
    ExitCode runVerb() const;

    CLI::App m_app;
    const OutputOptions& m_options;
    Run m_verb;
};

} // namespace Orvant::Tool
