#pragma once

#include "Options.h"

#include <FileHandling/FileName.h>

namespace Orvant::Tool {

/// Finds the catalogue that options name; without a name, the only one that is installed.
///
/// Catalogues are looked for in "orvant/catalogues" in the XDG data folders (XDG_DATA_HOME,
/// XDG_DATA_DIRS) and in "share" beside the folder of this program.
/// @throws Failure(NoCatalogue) when there is none, or nothing tells which is meant
FileName findCatalogue(const Options& options);

} // namespace Orvant::Tool
