#pragma once

#include <ConfigurationFramework/schema/DocumentTags.h>
#include <ConfigurationFramework/schema/SchemaDialect.h>

#include <string>

namespace Orvant {

/// @return whether a schema document may begin with the tag
/// @param tag what is parsed; of a file of the suite, after it was rewritten
bool isSchemaTag(const RootTag& tag, SchemaDialect dialect);

/// @return why a schema file must not begin with the tag, how it differs from what is wanted, and
///         which function reads the file
/// @param tag as the file has it; none that isSchemaTag() accepts
std::string describeStartTag(const RootTag& tag, SchemaDialect dialect);

} // namespace Orvant
