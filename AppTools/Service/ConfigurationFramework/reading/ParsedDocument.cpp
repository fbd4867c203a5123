#include <ConfigurationFramework/reading/ParsedDocument.h>

#include <ConfigurationFramework/reading/TreeBuildingParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>

#include <GeneralServices/XmlErrorHandler.h>

#include <utility>

namespace Orvant {

std::shared_ptr<ParsedDocument> parseDocument(const std::string& bytes) {
    XmlErrorHandler errors;
    ParserConfinement confinement(ParserConfinement::configurations);
    const auto parser = confinement.makeParser<TreeBuildingParser>();
    parser->setErrorHandler(&errors);
    confinement.parseBytes(*parser, bytes);
    if (errors.getSawErrors() || parser->getTree() == nullptr)
        return nullptr;
    return std::make_shared<ParsedDocument>(std::move(*parser->getTree()), parser->getVersion());
}

} // namespace Orvant
