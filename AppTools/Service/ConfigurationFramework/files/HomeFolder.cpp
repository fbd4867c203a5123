#include <ConfigurationFramework/files/HomeFolder.h>

#include <array>
#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace Orvant {

namespace {

/// What the user database says, for a process without the variable HOME; empty: nothing.
std::string homeOfUser() {
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 16384> texts{};
    const int error = getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found);
    return error == 0 && found != nullptr ? found->pw_dir : "";
}

} // namespace

bool isAbsolute(std::string_view path) {
    return path.starts_with('/');
}

std::string environment(const char* name) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? "" : value;
}

std::string homeFolder() {
    std::string home = environment("HOME");
    if (!isAbsolute(home))
        home = homeOfUser();
    return isAbsolute(home) ? home : "";
}

} // namespace Orvant
