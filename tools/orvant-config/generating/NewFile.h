#pragma once

#include <string>

namespace Orvant::Tool {

/// Writes a file: a new one that takes the place of an old one once it is complete, so that nobody
/// finds half of it. What is not a regular file, such as a pipe, is written to.
/// @throws Failure(FileError) when it cannot be written; an old one is kept then
void writeFile(const std::string& file, const std::string& bytes);

} // namespace Orvant::Tool
