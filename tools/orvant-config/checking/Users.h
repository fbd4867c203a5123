#pragma once

#include <string>

#include <sys/types.h>

namespace Orvant::Tool {

/// An entry of the user database.
struct User {
    std::string name;
    uid_t id;
    gid_t group; ///< the primary one
    std::string home;
};

/// @throws Failure(Usage) when there is none of the name
User findUser(const std::string& name);

/// @return name of a group, or its number where it has none
std::string groupName(gid_t group);

} // namespace Orvant::Tool
