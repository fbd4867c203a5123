#pragma once

#include "SchemaFile.h"
#include "common/Output.h"
#include "common/ToolCommandLine.h"

#include <functional>
#include <string>

namespace Orvant::Tool {

/// The verbs, each for a schema file.
class CommandLine {
public:
    using Run = std::function<ExitCode(SchemaFile&, const Output&)>;

    CommandLine();

    /// Adds a verb, whose first argument is the file.
    /// @param run what it does with the file, which has been read
    /// @return the verb, see ToolCommandLine::addVerb()
    CLI::App& addVerb(const std::string& name, const std::string& description, Run run);

    /// Does what the arguments ask for.
    /// @return the exit code of the process
    int run(int argc, const char* const* argv) { return m_tool.run(argc, argv); }

private:
    OutputOptions m_options;
    ToolCommandLine m_tool;
};

} // namespace Orvant::Tool
