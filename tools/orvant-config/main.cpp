#include "CommandLine.h"
#include "verbs/Verbs.h"

#include <spdlog/spdlog.h>

int main(int argc, char* argv[]) {
    using namespace Orvant::Tool;
    spdlog::set_level(spdlog::level::off); // the verbs say what is wrong
    CommandLine commandLine;
    addList(commandLine);
    addDescribe(commandLine);
    addExplain(commandLine);
    addGet(commandLine);
    addWritable(commandLine);
    addCheck(commandLine);
    addSet(commandLine);
    addLock(commandLine);
    addTemplate(commandLine);
    addDiff(commandLine);
    addMigrate(commandLine);
    addSchema(commandLine);
    addPage(commandLine);
    return commandLine.run(argc, argv);
}
