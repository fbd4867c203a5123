#pragma once

#include <ConfigurationFramework/XsdReadProblem.h>
#include <ConfigurationFramework/schema/SchemaDialect.h>

#include <exception>
#include <string>

namespace Orvant {

/// Finds out why a schema file could not be read. The file is parsed again, apart from the reading,
/// so that what can be read does not pay for it.
/// @param bytes  what the file holds; not needed if it could not be read
/// @param caught what the reading threw
/// @return the reason; one without a place if even finding it fails, say for lack of memory.
/// Nothing
///         is thrown.
XsdReadProblem describeReadProblem(const std::string& bytes, SchemaDialect dialect,
                                   const std::exception_ptr& caught);

} // namespace Orvant
