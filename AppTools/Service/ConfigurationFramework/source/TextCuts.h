#pragma once

#include <ConfigurationFramework/source/SourceDocument.h>

#include <string>
#include <vector>

namespace Orvant {

/// Cuts nodes out of a file, each with the white space before it and the comments that belong to
/// it: those above it without a blank line between, and those after it on its last line. What is on
/// a line with another element, too, stays.
/// @param cut nodes with a parent, in the order of the file, none within another
std::string withoutNodes(const std::string& bytes, const SourceDocument& document,
                         const std::vector<SourceDocument::Index>& cut);

} // namespace Orvant
