#pragma once

#include <ConfigurationFramework/XsdLoss.h>
#include <ConfigurationFramework/source/SchemaSource.h>

#include <vector>

namespace Orvant {

/// @param source  a schema file that is parsed
/// @param removed nodes that filters removed, in the order of the file
/// @return what writeXSD() would not write of it, as XsdConfigReader::getLosses()
std::vector<XsdLoss> findLosses(const SchemaSource& source,
                                const std::vector<SourceDocument::Index>& removed);

} // namespace Orvant
