#include <ConfigurationFramework/source/PrunedSchema.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/schema/LineRewriting.h>
#include <ConfigurationFramework/schema/SchemaParser.h>
#include <ConfigurationFramework/source/RemovedNodes.h>
#include <ConfigurationFramework/source/SchemaPruning.h>
#include <ConfigurationFramework/source/SchemaSource.h>
#include <ConfigurationFramework/source/TextCuts.h>

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
        SchemaPruning pruning = prune(source.references(), findRemovedNodes(source, schema));
        text = withoutNodes(source.bytes(), source.document(), pruning.cut);
        stayed = std::move(pruning.stayed);
        return;
    }
    if (!isWhole(source, schema))
        throw ConfigException(ConfigException::ParserReportedErrors);
    text = source.bytes();
}

} // namespace Orvant
