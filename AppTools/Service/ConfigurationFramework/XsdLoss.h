#pragma once

#include <string>

namespace Orvant {

/// Something of a schema that XsdConfigReader::writeXSD() would not write.
///
/// @code
/// for (const XsdLoss& loss : reader.getLosses())
///     std::cerr << "Machine.xsd:" << loss.line << ": " << loss.construct << " of " << loss.owner
///               << " is lost: " << loss.effect << '\n';
/// @endcode
struct XsdLoss {
    /// What the loss means for the documents that are validated with the written schema; the worst
    /// of these, in this order.
    /// @{
    static constexpr const char* notValid = "not a valid schema"; ///< none can be validated
    static constexpr const char* acceptsLess = "accepts less";    ///< valid ones are refused
    static constexpr const char* acceptsMore = "accepts more";    ///< invalid ones are accepted
    static constexpr const char* documentationOnly = "documentation only"; ///< nothing
    /// @}

    /// An element such as "xs:group", always with this prefix, and with all that is in it; the name
    /// of an attribute; "comment" or "processing instruction".
    std::string construct;
    /// Name of the type, root element or other declaration of the schema that it is a part of;
    /// empty for what belongs to none.
    std::string owner;
    unsigned int line = 0; ///< where it begins in the file that was read, from 1
    std::string effect;    ///< one of the above
};

} // namespace Orvant
