#include "CommandLine.h"
#include "verbs/Verbs.h"

#include <spdlog/spdlog.h>

int main(int argc, char* argv[]) {
    using namespace Orvant::Tool;
    spdlog::set_level(spdlog::level::off); // the verbs say what is wrong
    CommandLine commandLine;
    addList(commandLine);
    addTypes(commandLine);
    addLosses(commandLine);
    addPrune(commandLine);
    return commandLine.run(argc, argv);
}
