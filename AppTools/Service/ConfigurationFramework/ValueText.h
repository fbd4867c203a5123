#pragma once

#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/reading/LocatedDocument.h>

#include <string>
#include <vector>

namespace Orvant {

// The texts that files hold for values.

/// @return the items in double quotes, joined by ", "
std::string joined(const std::vector<std::string>& items);

/// @return what applies, as a save writes it; empty for a type that the library does not have
std::string textOf(const ConfigurationValueBase& value);
/// @return the built-in default, as a save writes it
std::string defaultTextOf(const ConfigurationValueBase& value);

/// @return a value with all its digits
/// @{
std::string exactText(bool value);
std::string exactText(int value);
std::string exactText(unsigned int value);
std::string exactText(float value);
std::string exactText(double value);
std::string exactText(const std::string& value);
/// @}
/// @return the items of a list, of others one text, with all digits; nothing for a type that the
///         library does not have
std::vector<std::string> exactDefaultTextsOf(const ConfigurationValueBase& value);
/// @return what applies, with all its digits, as it stands in a sentence
std::string exactTextOf(const ConfigurationValueBase& value);

/// What an element holds for a value.
/// @param isList whether it is a list
std::string textIn(DocumentTree& tree, DocumentTree::Element element, bool isList);

/// How much of what an element holds becomes a value.
struct Conversion {
    enum Kind {
        NoText,     ///< none: there is no text where one is needed
        None,       ///< none
        OutOfRange, ///< none, or infinity: the type cannot hold the number
        NotAllowed, ///< none: the rule of the value does not allow it
        Partly,     ///< the beginning; markup may cut off the rest
        Whole       ///< all of it
    };

    Kind kind;
    std::string result = {}; ///< as a save writes it

    /// @return true when there is a value
    bool succeeded() const { return kind == Whole || kind == Partly || !result.empty(); }
};

/// @return what a value makes of an element
Conversion convert(LocatedDocument& document, DocumentTree::Element element,
                   const ConfigurationValueBase& value);

// How a sentence says that.

/// @param text what a save writes of a value
std::string shownText(const std::string& text, const ConfigurationValueBase& value);
/// @return everything that an element holds for a value
std::string saidIn(LocatedDocument& document, DocumentTree::Element element, bool isList);
/// @param conversion one that gives nothing
/// @param said       saidIn()
/// @return why
std::string refusalOf(const Conversion& conversion, const std::string& said,
                      const ConfigurationValueBase& value);
/// @return what is wrong with what an element holds for a value; empty when nothing is
std::string problemIn(LocatedDocument& document, DocumentTree::Element element,
                      const ConfigurationValueBase& value);

} // namespace Orvant
