#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "checking/FileCheck.h"
#include "checking/RightsCheck.h"
#include "common/Messages.h"
#include "common/NearestName.h"

#include <FileHandling/FileUtilities.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace Orvant::Tool {

namespace {

struct CheckOptions {
    std::vector<std::string> files;
    bool warningsAsErrors = false;
};

/// Whether two names lead to one file.
bool isSame(const FileName& first, const FileName& second) {
    std::error_code error;
    return first == second ||
           std::filesystem::equivalent(first.toString(), second.toString(), error);
}

Finding missing(const FileName& file) {
    return {Finding::FileError, "Missing", file, 0, 0, "", "there is no such file", ""};
}

/// Checks the files of a session, or drafts of such.
class Check {
public:
    explicit Check(Session& session) : m_session(session), m_files(session.files()) {}

    /// Checks the files that the application reads.
    void checkFiles() {
        const Options& options = m_session.options();
        if (options.systemFile)
            checkExists(m_files.system);
        if (options.userFile)
            checkExists(m_files.user);
        add(Tool::checkFiles(m_session, m_files));
        checkRights();
    }
    /// Checks one file: as the user's if it is that, else as the administrator's.
    void checkFile(const FileName& file) {
        if (!checkExists(file))
            return;
        if (m_files.system.empty()) {
            add(Tool::checkFiles(m_session, {.system = FileName(), .user = file}));
        } else if (isSame(file, m_files.user)) {
            std::vector<Finding> found =
                Tool::checkFiles(m_session, {.system = m_files.system, .user = file});
            std::erase_if(found, [&](const Finding& finding) { return finding.file != file; });
            add(std::move(found));
        } else {
            add(Tool::checkFiles(m_session, {.system = file, .user = FileName()}));
            if (isSame(file, m_files.system))
                checkRights();
        }
    }
    const std::vector<Finding>& findings() const { return m_findings; }

private:
    bool checkExists(const FileName& file) {
        const bool exists =
            file.empty() || FileUtilities::exists(file) || FileUtilities::exists(file, true);
        if (!exists)
            m_findings.push_back(missing(file));
        return exists;
    }
    /// Drafts may have any rights: only the file that is read is meant.
    void checkRights() {
        if (FileUtilities::exists(m_files.system))
            add(Tool::checkRights(m_files.system, m_session.options().user));
    }
    void add(std::vector<Finding> findings) {
        std::ranges::move(findings, std::back_inserter(m_findings));
    }

    Session& m_session;
    StandardConfigurationFiles m_files;
    std::vector<Finding> m_findings;
};

const char* nameOf(Finding::Severity severity) {
    return severity == Finding::Warning ? "warning" : "error";
}

std::string lineOf(const Finding& finding) {
    const std::string path = finding.path.empty() ? "" : finding.path + ": ";
    // Of a setting, the line is enough.
    const unsigned int column = finding.severity == Finding::FileError ? finding.column : 0;
    return messageAt(finding.file, finding.line, nameOf(finding.severity),
                     oneLine(path + finding.text + didYouMean(finding.suggestion)), column) +
           '\n';
}

nlohmann::ordered_json jsonOf(const Finding& finding) {
    nlohmann::ordered_json json{{"severity", nameOf(finding.severity)},
                                {"kind", finding.kind},
                                {"file", finding.file.toString()},
                                {"line", finding.line},
                                {"column", finding.column},
                                {"path", finding.path},
                                {"text", finding.text}};
    if (!finding.suggestion.empty())
        json["suggestion"] = finding.suggestion;
    return json;
}

void print(const std::vector<Finding>& findings, const Output& output) {
    auto json = nlohmann::ordered_json::array();
    for (const Finding& finding : findings)
        if (output.isJson())
            json.push_back(jsonOf(finding));
        else
            output.print(lineOf(finding));
    if (output.isJson())
        output.print(json);
}

ExitCode codeOf(const std::vector<Finding>& findings, bool warningsAsErrors) {
    if (findings.empty())
        return ExitCode::Clean;
    switch (std::ranges::max(findings, {}, &Finding::severity).severity) {
    case Finding::FileError:
        return ExitCode::FileError;
    case Finding::Error:
        return ExitCode::Findings;
    case Finding::Warning:
        break;
    }
    return warningsAsErrors ? ExitCode::Findings : ExitCode::Clean;
}

ExitCode check(Session& session, const CheckOptions& options) {
    Check check(session);
    for (const std::string& file : options.files) {
        if (file.empty()) // a variable of a script that is not set
            throw Failure(ExitCode::Usage, "the name of a file is empty");
        check.checkFile(file);
    }
    if (options.files.empty())
        check.checkFiles();
    print(check.findings(), session.output());
    return codeOf(check.findings(), options.warningsAsErrors);
}

} // namespace

void addCheck(CommandLine& commandLine) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& verb =
        commandLine.addVerb("check", "Find what files say in vain, and locks that do not hold",
                            [options](Session& session) { return check(session, *options); });
    verb.add_option("FILE", options->files, "System files; without one, the application's files");
    verb.add_flag("--warnings-as-errors", options->warningsAsErrors,
                  "Have warnings count for the exit code");
}

} // namespace Orvant::Tool
