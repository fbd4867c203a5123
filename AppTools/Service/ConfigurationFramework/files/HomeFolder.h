#pragma once

#include <string>
#include <string_view>

namespace Orvant {

/// @return whether a path begins at the root
bool isAbsolute(std::string_view path);

/// @return the text of an environment variable; empty: there is none
std::string environment(const char* name);

/// @return absolute path of the user's home folder, UTF-8: HOME, or what the user database says;
///         empty: there is none
std::string homeFolder();

} // namespace Orvant
