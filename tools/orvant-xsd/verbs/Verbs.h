#pragma once

namespace Orvant::Tool {

class CommandLine;

// Each adds a verb to the command line.

void addList(CommandLine& commandLine);
void addTypes(CommandLine& commandLine);
void addLosses(CommandLine& commandLine);
void addPrune(CommandLine& commandLine);

} // namespace Orvant::Tool
