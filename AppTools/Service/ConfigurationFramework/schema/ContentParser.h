#pragma once

#include <ConfigurationFramework/xml/ConfinedParsing.h>

namespace Orvant {

/// A DOM parser that keeps elements and their texts, which is all that the model looks at.
class ContentParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void docComment(const XMLCh*) override {}
    void docPI(const XMLCh*, const XMLCh*) override {}
};

} // namespace Orvant
