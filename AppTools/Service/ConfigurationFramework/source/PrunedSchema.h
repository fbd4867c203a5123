#pragma once

#include <ConfigurationFramework/xsd/ov_schema.h>

#include <string>
#include <vector>

namespace Orvant {

class SchemaSource;

/// A schema file without what the filters removed.
struct PrunedSchema {
    std::string text;                ///< the file's bytes without what is cut out
    std::vector<std::string> stayed; ///< as XsdConfigReader::writePrunedXSD() returns it

    /// @param source the file that was read
    /// @param schema what is left of it
    /// @throws ConfigException of type ParserReportedErrors when something is to be cut out of a
    ///         file that is well-formed only once it is rewritten
    PrunedSchema(const SchemaSource& source, const OV_XsdReader::ov_schema& schema);
};

} // namespace Orvant
