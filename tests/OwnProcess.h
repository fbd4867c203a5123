#pragma once

#include <filesystem>
#include <functional>
#include <utility>

#include <sys/wait.h>
#include <unistd.h>

namespace Orvant::Support {

/// Runs an action in its own process, which can limit itself.
/// @return what the action returns
inline int inOwnProcess(const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0)
        _exit(action());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}

/// Runs an action in a process that permissions bind, unlike one of root.
/// @return what the action returns
inline int asOrdinaryUser(const std::function<int()>& action) {
    return inOwnProcess([&action] {
        const bool ordinary = geteuid() != 0 || setuid(65534) == 0;
        return ordinary ? action() : 99;
    });
}

/// Lets an ordinary user read a folder, but put no files into it, while it is in scope.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {
        std::filesystem::permissions(m_folder, std::filesystem::perms(0555));
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
    ~ReadOnlyFolder() { std::filesystem::permissions(m_folder, std::filesystem::perms(0755)); }

private:
    std::filesystem::path m_folder;
};

} // namespace Orvant::Support
