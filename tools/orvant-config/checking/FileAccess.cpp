#include "checking/FileAccess.h"

#include "checking/Users.h"
#include "common/ExitCode.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvant::Tool {

namespace {

struct stat statusOf(const std::filesystem::path& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) != 0)
        throw std::system_error(errno, std::generic_category(), path.string());
    return status;
}

Who whoMay(const struct stat& status, mode_t forGroup, mode_t forOthers) {
    if ((status.st_mode & forOthers) != 0)
        return Who::Users;
    return status.st_gid != 0 && (status.st_mode & forGroup) != 0 ? Who::Group : Who::Nobody;
}

/// In a folder with the sticky bit, everybody removes only what is theirs.
bool isSticky(const struct stat& status) {
    return S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
}

FileAccess accessByMode(const struct stat& status) {
    const bool isFolder = S_ISDIR(status.st_mode);
    FileAccess access;
    access.reads = isFolder ? whoMay(status, S_IXGRP, S_IXOTH) : whoMay(status, S_IRGRP, S_IROTH);
    if (!isSticky(status))
        access.writes = whoMay(status, S_IWGRP, S_IWOTH);
    return access;
}

/// What this process may do.
FileAccess ownAccess(const std::filesystem::path& path) {
    struct stat status{};
    const bool isKnown = stat(path.c_str(), &status) == 0; // not if a folder above is closed
    const bool isFolder = isKnown && S_ISDIR(status.st_mode);
    const auto may = [&](int mode) {
        return isKnown && faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0 ? Who::Users
                                                                                   : Who::Nobody;
    };
    FileAccess access;
    access.reads = may(isFolder ? X_OK : R_OK);
    if (!isSticky(status) || status.st_uid == geteuid())
        access.writes = may(W_OK);
    return access;
}

/// Has this process have the rights of a user and no others.
bool become(const User& user) {
    return initgroups(user.name.c_str(), user.group) == 0 && setgid(user.group) == 0 &&
           setuid(user.id) == 0;
}

/// What a user may do with the paths, two bytes for each; fewer if it cannot be found out.
void answer(const User& user, const std::vector<std::filesystem::path>& paths, int pipe) {
    if (!become(user))
        return;
    for (const std::filesystem::path& path : paths) {
        const FileAccess access = ownAccess(path);
        const std::array<char, 2> bytes{static_cast<char>(access.reads),
                                        static_cast<char>(access.writes)};
        if (write(pipe, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            return;
    }
}

/// Asks a process with the rights of the user.
std::vector<FileAccess> accessOfOther(const User& user,
                                      const std::vector<std::filesystem::path>& paths) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    const pid_t child = fork();
    if (child == 0) {
        answer(user, paths, ends[1]);
        _exit(0);
    }
    close(ends[1]);
    std::vector<FileAccess> found;
    std::array<char, 2> bytes{};
    while (child > 0 && read(ends[0], bytes.data(), bytes.size()) == 2)
        found.push_back({static_cast<Who>(bytes[0]), static_cast<Who>(bytes[1])});
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    if (found.size() != paths.size())
        throw Failure(ExitCode::FileError,
                      "the rights of \"" + user.name + "\" cannot be found out");
    return found;
}

} // namespace

std::vector<FileAccess> accessByMode(const std::vector<std::filesystem::path>& paths) {
    std::vector<FileAccess> found;
    found.reserve(paths.size());
    for (const std::filesystem::path& path : paths)
        found.push_back(accessByMode(statusOf(path)));
    return found;
}

std::vector<FileAccess> accessOf(const std::string& user,
                                 const std::vector<std::filesystem::path>& paths) {
    const User found = findUser(user);
    if (geteuid() == 0)
        return accessOfOther(found, paths);
    if (geteuid() != found.id)
        throw Failure(ExitCode::FileError,
                      "only root can find out what \"" + user + "\" may read and write");
    std::vector<FileAccess> own;
    own.reserve(paths.size());
    for (const std::filesystem::path& path : paths)
        own.push_back(ownAccess(path));
    return own;
}

} // namespace Orvant::Tool
