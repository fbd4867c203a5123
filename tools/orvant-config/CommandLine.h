#pragma once

#include "Options.h"
#include "Session.h"
#include "common/ToolCommandLine.h"

#include <functional>
#include <string>

namespace Orvant::Tool {

/// The options, and the verbs with theirs.
class CommandLine {
public:
    using Run = std::function<ExitCode(Session&)>;

    CommandLine();

    /// Adds a verb.
    /// @param run what it does
    /// @return the verb, see ToolCommandLine::addVerb()
    CLI::App& addVerb(const std::string& name, const std::string& description, Run run);

    /// Does what the arguments ask for.
    /// @return the exit code of the process
    int run(int argc, const char* const* argv) { return m_tool.run(argc, argv); }

private:
    Options m_options;
    ToolCommandLine m_tool;
};

} // namespace Orvant::Tool
