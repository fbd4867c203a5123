#include "checking/FileCheck.h"

#include "Ordering.h"
#include "catalogue/KeyedEntries.h"
#include "catalogue/Suggestions.h"
#include "checking/AttributeCheck.h"
#include "checking/NestedLists.h"

#include <algorithm>

namespace Orvant::Tool {

namespace {

const char* nameOf(ConfigurationProblem::Kind kind) {
    switch (kind) {
    case ConfigurationProblem::Damaged:
        return "Damaged";
    case ConfigurationProblem::OtherVersion:
        return "OtherVersion";
    case ConfigurationProblem::Unreadable:
        return "Unreadable";
    case ConfigurationProblem::NotConverted:
        return "NotConverted";
    case ConfigurationProblem::PartlyConverted:
        return "PartlyConverted";
    case ConfigurationProblem::OutOfRange:
        return "OutOfRange";
    case ConfigurationProblem::OddLock:
        return "OddLock";
    case ConfigurationProblem::Unknown:
        return "Unknown";
    case ConfigurationProblem::Twice:
        return "Twice";
    }
    return "Other";
}

/// @param isOfUser whether it is in a user's file beside a system file: there, locks never count,
///                 and names of other versions are common
Finding::Severity severityOf(ConfigurationProblem::Kind kind, bool isOfUser) {
    switch (kind) {
    case ConfigurationProblem::Damaged:
    case ConfigurationProblem::OtherVersion:
    case ConfigurationProblem::Unreadable:
        return Finding::FileError;
    case ConfigurationProblem::OddLock:
    case ConfigurationProblem::Unknown:
        return isOfUser ? Finding::Warning : Finding::Error;
    default:
        return Finding::Error;
    }
}

/// The check of files that a manager has loaded.
class FileCheck {
public:
    FileCheck(Session& session, const StandardConfigurationFiles& files)
        : m_session(session),
          m_files(files),
          m_manager(session.load(files)),
          m_suggestions(session.settings()),
          m_defaultEntries(session.catalogue(), m_manager, true) {}

    std::vector<Finding> findings() {
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
            add(problem);
        for (Finding& finding : findNestedLists(m_session, m_files, m_manager.explain()))
            add(std::move(finding));
        for (const FileName& file : {m_files.system, m_files.user})
            for (Finding& finding : findMeaninglessAttributes(file))
                add(std::move(finding));
        return orderedBy(std::move(m_findings), [&](const Finding& finding) {
            return std::pair(finding.file != m_files.system, finding.line);
        });
    }

private:
    void add(const ConfigurationProblem& problem) {
        const bool isOfUser = !m_files.system.empty() && problem.file == m_files.user;
        Finding finding{severityOf(problem.kind, isOfUser),
                        nameOf(problem.kind),
                        problem.file,
                        problem.line,
                        problem.column,
                        problem.path,
                        problem.text};
        if (problem.kind == ConfigurationProblem::Unknown)
            finding.suggestion = m_suggestions.forUnknown(problem.path);
        add(std::move(finding));
    }

    void add(Finding finding) {
        finding.path = m_defaultEntries.pathOf(finding.path);
        m_findings.push_back(std::move(finding));
    }

    Session& m_session;
    StandardConfigurationFiles m_files;
    ConfigurationManager& m_manager;
    Suggestions m_suggestions;
    DefaultEntries m_defaultEntries; ///< otherwise, only what is registered is checked
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> checkFiles(Session& session, const StandardConfigurationFiles& files) {
    return FileCheck(session, files).findings();
}

} // namespace Orvant::Tool
