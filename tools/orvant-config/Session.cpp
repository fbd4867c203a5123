#include "Session.h"

#include "catalogue/CatalogueSearch.h"
#include "checking/Users.h"
#include "common/ExitCode.h"
#include "common/Messages.h"
#include "common/NearestName.h"

#include <FileHandling/FileUtilities.h>

#include <cstdlib>

namespace Orvant::Tool {

namespace {

/// Has this process find files as a user does who logs in.
void actAs(const std::string& user) {
    // NOLINTBEGIN(concurrency-mt-unsafe)
    setenv("HOME", findUser(user).home.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DATA_HOME");
    // NOLINTEND(concurrency-mt-unsafe)
}

bool isOfWholeFile(ConfigurationProblem::Kind kind) {
    return kind == ConfigurationProblem::Damaged || kind == ConfigurationProblem::OtherVersion ||
           kind == ConfigurationProblem::Unreadable;
}

void checkNamed(const std::optional<std::string>& file) {
    if (file && !file->empty() && !FileUtilities::exists(FileName(*file)))
        throw Failure(ExitCode::FileError, *file + ": there is no such file");
}

} // namespace

Session::Session(const Options& options) : m_options(options), m_output(options) {
    if (options.user)
        actAs(*options.user);
}

const ConfigurationCatalogue& Session::catalogue() {
    if (!m_catalogue) {
        try {
            m_catalogue = ConfigurationCatalogue::read(findCatalogue(m_options));
        } catch (const ConfigurationCatalogueError& e) {
            throw Failure(ExitCode::NoCatalogue, e.what(), true);
        }
    }
    return *m_catalogue;
}

const SettingIndex& Session::settings() {
    if (m_settings == nullptr)
        m_settings = std::make_unique<const SettingIndex>(catalogue());
    return *m_settings;
}

FoundItem Session::find(const std::string& path) {
    if (auto found = settings().find(path))
        return *found;
    throw Failure(ExitCode::Usage, '"' + catalogue().getApplication() + "\" has no setting \"" +
                                       path + '"' + didYouMean(settings().nearest(path)));
}

StandardConfigurationFiles Session::files() {
    StandardConfigurationFiles files = catalogue().findFiles();
    if (m_options.systemFile)
        files.system = *m_options.systemFile;
    if (m_options.userFile)
        files.user = *m_options.userFile;
    return files;
}

FileName Session::administeredFile() {
    if (m_options.systemFile && m_options.systemFile->empty()) // else it would be the user's
        throw Failure(ExitCode::Usage,
                      "the system file that is to be edited has no name: -s needs one");
    const StandardConfigurationFiles found = files();
    return found.system.empty() ? found.user : found.system;
}

ConfigurationManager& Session::load(const StandardConfigurationFiles& files) {
    auto& manager = ConfigurationManager::getInstance();
    manager.reset();
    if (files.system.empty())
        manager.setConfigurationFile(files.user);
    else
        manager.setSystemAndUserConfigurationFile(files.system, files.user);
    catalogue().registerObjects(manager);
    return manager;
}

ConfigurationManager& Session::loadUsable() {
    checkNamed(m_options.systemFile);
    checkNamed(m_options.userFile);
    return loadUsable(files());
}

ConfigurationManager& Session::loadUsable(const StandardConfigurationFiles& files) {
    ConfigurationManager& manager = load(files);
    // Problems of all settings take longer to find out.
    if (!files.system.empty() && !manager.hasSystemConfigFileErrors() &&
        !manager.hasUserConfigFileErrors())
        return manager;
    for (const ConfigurationProblem& problem : manager.getLoadProblems())
        if (isOfWholeFile(problem.kind))
            throw Failure(
                ExitCode::FileError,
                messageAt(problem.file, problem.line, "error", problem.text, problem.column), true);
    return manager;
}

} // namespace Orvant::Tool
