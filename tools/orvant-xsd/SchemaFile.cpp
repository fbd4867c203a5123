#include "SchemaFile.h"

#include "common/ExitCode.h"
#include "common/Messages.h"
#include "common/NearestName.h"

#include <ConfigurationFramework/ConfigException.h>

#include <fmt/core.h>

#include <algorithm>
#include <unordered_set>

namespace Orvant::Tool {

namespace {

void checkOneOf(const std::vector<std::string>& known, const std::string& name,
                const std::string& message) {
    if (std::ranges::find(known, name) == known.end())
        throw Failure(ExitCode::Usage,
                      message + " \"" + name + '"' + didYouMean(nearestName(name, known)));
}

std::string whyUnreadable(const std::string& file, const std::optional<XsdReadProblem>& problem,
                          const std::exception& failure) {
    return problem ? messageAt(file, problem->line, "error", problem->message, problem->column)
                   : messageAt(file, 0, "error", failure.what());
}

} // namespace

void checkFileName(const std::string& name) {
    if (name.empty())
        throw Failure(ExitCode::Usage, "the name of a file is empty");
}

SchemaFile::SchemaFile(const std::string& name) : m_name(name), m_reader(name) {
    checkFileName(name);
    try {
        m_reader.readAnyXSD();
    } catch (const ConfigException& e) {
        throw Failure(ExitCode::FileError, whyUnreadable(name, m_reader.getReadProblem(), e), true);
    }
}

std::vector<std::string> SchemaFile::typeNames() {
    std::vector<std::string> names;
    for (const auto& [name, type] : m_reader.getXsdTree())
        names.push_back(name);
    return names;
}

std::vector<std::string> SchemaFile::typesUsedBy(const std::vector<std::string>& types) {
    std::vector<std::string> used;
    std::unordered_set<std::string> known;
    for (const std::string& type : types) {
        if (known.contains(type))
            continue; // what it uses is there, too
        for (const std::string& name : m_reader.getTypesUsedBy(type))
            if (known.insert(name).second)
                used.push_back(name);
    }
    return used;
}

void SchemaFile::checkTypes(const std::vector<std::string>& types) {
    const std::vector<std::string> known = typeNames();
    for (const std::string& type : types)
        checkOneOf(known, type, m_name + " has no type");
}

void SchemaFile::checkNames(const std::string& type, const std::string& what,
                            const std::vector<std::string>& names,
                            const std::vector<std::string>& known) const {
    const std::string problem = fmt::format("the type \"{}\" in {} has no {}", type, m_name, what);
    for (const std::string& name : names)
        checkOneOf(known, name, problem);
}

} // namespace Orvant::Tool
