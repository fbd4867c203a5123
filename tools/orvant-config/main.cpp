#include "CommandLine.h"
#include "verbs/Verbs.h"

#include <spdlog/spdlog.h>

int main(int argc, char* argv[]) {
    using namespace Orvant::Tool;
    spdlog::set_level(spdlog::level::off); // the verbs say what is wrong
    CommandLine commandLine;
    addList(commandLine);
    addCheck(commandLine);
    addDescribe(commandLine);
    addDiff(commandLine);
    addExplain(commandLine);
    addGet(commandLine);
    addWritable(commandLine);
    addSet(commandLine);
    addLock(commandLine);
    addMigrate(commandLine);
    addTemplate(commandLine);
    addSchema(commandLine);
    addPage(commandLine);
    return commandLine.run(argc, argv);
}
