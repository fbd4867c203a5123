#include "checking/Users.h"

#include "common/ExitCode.h"

#include <array>

#include <grp.h>
#include <pwd.h>

namespace Orvant::Tool {

namespace {

using Texts = std::array<char, 16384>;

} // namespace

User findUser(const std::string& name) {
    passwd entry{};
    passwd* found = nullptr;
    Texts texts{};
    if (getpwnam_r(name.c_str(), &entry, texts.data(), texts.size(), &found) != 0 ||
        found == nullptr)
        throw Failure(ExitCode::Usage, "there is no user \"" + name + '"');
    return {name, found->pw_uid, found->pw_gid, found->pw_dir};
}

std::string groupName(gid_t group) {
    struct group entry{};
    struct group* found = nullptr;
    Texts texts{};
    const bool isKnown =
        getgrgid_r(group, &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr;
    return isKnown ? found->gr_name : std::to_string(group);
}

} // namespace Orvant::Tool
