#include "verbs/Verbs.h"

#include "CommandLine.h"

#include <memory>

namespace Orvant::Tool {

namespace {

using Names = std::vector<std::string>;

ExitCode types(SchemaFile& schema, const Output& output, const Names& types) {
    schema.checkTypes(types);
    const Names names = types.empty() ? schema.typeNames() : schema.typesUsedBy(types);
    if (output.isJson()) {
        output.print(nlohmann::ordered_json(names));
        return ExitCode::Clean;
    }
    for (const std::string& name : names)
        output.print(oneLine(name) + '\n');
    return ExitCode::Clean;
}

} // namespace

void addTypes(CommandLine& commandLine) {
    const auto names = std::make_shared<Names>();
    CLI::App& verb = commandLine.addVerb("types", "List the types, or those that types use",
                                         [names](SchemaFile& schema, const Output& output) {
                                             return types(schema, output, *names);
                                         });
    verb.add_option("TYPE", *names, "Only these types and what they use, directly or not");
}

} // namespace Orvant::Tool
