#include "CommandLine.h"

#include <memory>
#include <utility>

namespace Orvant::Tool {

CommandLine::CommandLine()
    : m_tool("orvant-xsd",
             "Shows what is in an XML Schema file, and writes it without what is not wanted.",
             m_options) {
    m_tool.app().footer("Exit codes: 0 done, nothing is lost; 1 losses; 2 a file cannot be read or "
                        "written; 64 wrong usage.");
}

CLI::App& CommandLine::addVerb(const std::string& name, const std::string& description, Run run) {
    const auto file = std::make_shared<std::string>();
    CLI::App& verb = m_tool.addVerb(name, description, [this, file, run = std::move(run)] {
        SchemaFile schema(*file);
        return run(schema, Output(m_options));
    });
    verb.add_option("FILE", *file, "The schema file")->required();
    return verb;
}

} // namespace Orvant::Tool
