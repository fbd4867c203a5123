#pragma once

#include <optional>
#include <string>

namespace Orvant {

class ConfinedParser;
class ParserConfinement;

/// A place in the text of a document, both numbers from 1; 0: unknown.
struct DocumentPlace {
    unsigned int line = 0;
    unsigned int column = 0; ///< in UTF-16 code units
};

/// What is wrong with a document.
struct DocumentError {
    DocumentPlace place;
    std::string message;
};

/// Parses a document for its first error. The parser has no error handler afterwards.
/// @return the first error or, if there was none, what made the parser give up; nothing for a
///         document that the parser accepts
std::optional<DocumentError> findFirstError(ParserConfinement& confinement, ConfinedParser& parser,
                                            const std::string& bytes);

} // namespace Orvant
