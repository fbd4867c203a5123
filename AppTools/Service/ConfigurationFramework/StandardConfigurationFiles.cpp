#include <ConfigurationFramework/StandardConfigurationFiles.h>

#include <ConfigurationFramework/files/HomeFolder.h>

#include <FileHandling/FileUtilities.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace Orvant {

namespace {

/// Folder of the user's files; empty: there is none.
std::string userFolder() {
    std::string folder = environment("XDG_CONFIG_HOME");
    if (isAbsolute(folder))
        return folder;
    const std::string home = homeFolder();
    return home.empty() ? "" : home + "/.config";
}

/// Folders of the administrator's files, the most important one first.
std::vector<std::string> systemFolders() {
    const std::string variable = environment("XDG_CONFIG_DIRS");
    std::vector<std::string> folders;
    for (std::size_t start = 0; start <= variable.size();) {
        const std::size_t end = std::min(variable.find(':', start), variable.size());
        if (const std::string folder = variable.substr(start, end - start); isAbsolute(folder))
            folders.push_back(folder);
        start = end + 1;
    }
    if (folders.empty())
        folders.emplace_back("/etc/xdg");
    return folders;
}

} // namespace

StandardConfigurationFiles standardConfigurationFiles(const std::string& application) {
    if (application.empty() || application == "." || application == ".." ||
        application.find('/') != std::string::npos || application.find('\0') != std::string::npos)
        throw std::invalid_argument("\"" + application.substr(0, application.find('\0')) +
                                    "\" cannot be the name of a folder");
    const auto fileIn = [&](const std::string& folder) {
        return FileName(folder + '/' + application + '/' + application + ".xml");
    };
    const std::vector<std::string> folders = systemFolders();
    StandardConfigurationFiles files{.system = fileIn(folders.front()), .user = {}};
    for (const std::string& folder : folders) {
        if (!FileUtilities::exists(fileIn(folder)))
            continue;
        files.system = fileIn(folder);
        break;
    }
    if (const std::string folder = userFolder(); !folder.empty())
        files.user = fileIn(folder);
    return files;
}

} // namespace Orvant
