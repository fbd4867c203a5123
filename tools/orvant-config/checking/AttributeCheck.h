#pragma once

#include "checking/Finding.h"

#include <FileHandling/FileName.h>

#include <vector>

namespace Orvant::Tool {

/// Finds attributes that mean nothing, as "Editable" does: locks and keys that are none. Those of
/// other namespaces are for other programs.
/// @return errors for what looks like a known attribute, else warnings; nothing for a damaged file
std::vector<Finding> findMeaninglessAttributes(const FileName& file);

} // namespace Orvant::Tool
