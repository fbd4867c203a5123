#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "generating/FileSchema.h"

namespace Orvant::Tool {

void addSchema(CommandLine& commandLine) {
    commandLine.addVerb("schema", "Print an XML Schema of the application's files, for editors",
                        [](Session& session) {
                            session.output().print(makeSchema(session.catalogue()));
                            return ExitCode::Clean;
                        });
}

} // namespace Orvant::Tool
