#include "checking/RightsCheck.h"

#include "checking/FileAccess.h"
#include "checking/Users.h"

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

namespace Orvant::Tool {

namespace {

namespace fs = std::filesystem;

/// The file first, then the folders that it, and a link to it, are in, from the root on.
std::vector<fs::path> pathsTo(const fs::path& file) {
    std::vector<fs::path> folders;
    for (const fs::path& name : {fs::absolute(file).lexically_normal(), fs::canonical(file)})
        for (fs::path folder = name.parent_path();; folder = folder.parent_path()) {
            folders.push_back(folder);
            if (!folder.has_relative_path())
                break;
        }
    std::ranges::sort(folders);
    folders.erase(std::ranges::unique(folders).begin(), folders.end());
    folders.insert(folders.begin(), file);
    return folders;
}

/// Says who: "every user", "members of the group \"staff\"".
std::string subject(Who who, const fs::path& path, const std::optional<std::string>& user) {
    if (user)
        return "the user \"" + *user + '"';
    struct stat status{};
    if (who != Who::Group || stat(path.c_str(), &status) != 0)
        return "every user";
    return "members of the group \"" + groupName(status.st_gid) + '"';
}

class RightsCheck {
public:
    RightsCheck(const FileName& file, const std::optional<std::string>& user)
        : m_file(file), m_user(user) {}

    void checkFile(const fs::path& path, const FileAccess& access) {
        addUnlessRead(path, access, "can read the file");
        addIfWritten(path, access, "can write the file and remove its locks");
    }
    void checkFolder(const fs::path& path, const FileAccess& access) {
        const std::string folder = "the folder \"" + path.string() + '"';
        addUnlessRead(path, access, "can go into " + folder + " to read the file");
        addIfWritten(path, access, "can write " + folder + " and replace what is there");
    }
    std::vector<Finding> takeFindings() { return std::move(m_findings); }
    bool isClosed() const { return m_isClosed; }

private:
    void add(Finding::Severity severity, const std::string& kind, const std::string& text) {
        m_findings.push_back({severity, kind, m_file, 0, 0, "", text, ""});
    }
    void addUnlessRead(const fs::path& path, const FileAccess& access, const std::string& can) {
        if (access.reads == Who::Group)
            add(Finding::Warning, "NotReadable",
                "only " + subject(Who::Group, path, m_user) + ' ' + can);
        if (access.reads == Who::Nobody) {
            add(Finding::Error, "NotReadable",
                (m_user ? "the user \"" + *m_user + "\" cannot" : std::string("users cannot")) +
                    can.substr(std::string("can").size()));
            m_isClosed = true;
        }
    }
    void addIfWritten(const fs::path& path, const FileAccess& access, const std::string& can) {
        if (access.writes != Who::Nobody)
            add(access.writes == Who::Users ? Finding::Error : Finding::Warning, "Writable",
                subject(access.writes, path, m_user) + ' ' + can);
    }

    FileName m_file;
    std::optional<std::string> m_user;
    std::vector<Finding> m_findings;
    bool m_isClosed = false;
};

} // namespace

std::vector<Finding> checkRights(const FileName& file, const std::optional<std::string>& user) {
    const std::vector<fs::path> paths = pathsTo(file.toString());
    const std::vector<FileAccess> accesses = user ? accessOf(*user, paths) : accessByMode(paths);
    RightsCheck check(file, user);
    for (std::size_t i = 1; i < paths.size() && !check.isClosed(); ++i)
        check.checkFolder(paths[i], accesses[i]);
    if (!check.isClosed()) // what is in a closed folder is closed, too
        check.checkFile(paths.front(), accesses.front());
    return check.takeFindings();
}

} // namespace Orvant::Tool
