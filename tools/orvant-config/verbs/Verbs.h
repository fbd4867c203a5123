#pragma once

namespace Orvant::Tool {

class CommandLine;

// Each adds a verb to the command line, or several that share their work.

void addList(CommandLine& commandLine);
void addDescribe(CommandLine& commandLine);
void addExplain(CommandLine& commandLine);
void addGet(CommandLine& commandLine);
void addWritable(CommandLine& commandLine);
void addCheck(CommandLine& commandLine);
void addSet(CommandLine& commandLine);
void addLock(CommandLine& commandLine);
void addTemplate(CommandLine& commandLine);
void addDiff(CommandLine& commandLine);
void addMigrate(CommandLine& commandLine);
void addSchema(CommandLine& commandLine);
void addPage(CommandLine& commandLine);

} // namespace Orvant::Tool
