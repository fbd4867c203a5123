#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "generating/FileTemplate.h"

namespace Orvant::Tool {

void addTemplate(CommandLine& commandLine) {
    commandLine.addVerb("template", "Print a system file with every setting commented out",
                        [](Session& session) {
                            session.output().print(makeTemplate(session.catalogue()));
                            return ExitCode::Clean;
                        });
}

} // namespace Orvant::Tool
