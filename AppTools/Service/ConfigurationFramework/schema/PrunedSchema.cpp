#include <ConfigurationFramework/schema/PrunedSchema.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/RemovedNodes.h>
#include <ConfigurationFramework/schema/SchemaParser.h>
#include <ConfigurationFramework/schema/SchemaPruning.h>
#include <ConfigurationFramework/schema/SchemaSource.h>
#include <ConfigurationFramework/schema/TextCuts.h>

#include <sstream>
#include <utility>

namespace Orvant {

namespace {

std::string textOf(const OV_XsdReader::ov_schema& schema) {
    std::ostringstream text;
    text << schema;
    return text.str();
}

/// Whether nothing was removed, for files whose elements cannot be told.
bool isWhole(const SchemaSource& source, const OV_XsdReader::ov_schema& schema) {
    const auto whole =
        parseSchema(LineRewriting::rewrittenForReader(source.bytes()), SchemaDialect::Suite);
    return textOf(*whole) == textOf(schema);
}

} // namespace

PrunedSchema::PrunedSchema(const SchemaSource& source, const OV_XsdReader::ov_schema& schema) {
    if (source.parse()) {
        SchemaPruning pruning = prune(source.document(), findRemovedNodes(source, schema));
        text = withoutNodes(source.bytes(), source.document(), pruning.cut);
        stayed = std::move(pruning.stayed);
        return;
    }
    if (!isWhole(source, schema))
        throw ConfigException(ConfigException::ParserReportedErrors);
    text = source.bytes();
}

} // namespace Orvant
