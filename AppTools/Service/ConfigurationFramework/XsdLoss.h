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

    /// An element with all that is in it: one of XML Schema such as "xs:group", always with this
    /// prefix, another one, such as markup in a documentation, with its local name alone; the name
    /// of an attribute; "comment", "processing instruction" or "document type declaration".
    std::string construct;
    /// Name of the type, root element or other declaration of the schema that it is a part of;
    /// empty for what belongs to none.
    std::string owner;
    /// Where it begins in the file that was read, from 1; of an attribute in a file in UTF-16 or
    /// UTF-32, where its element begins.
    unsigned int line = 0;
    std::string effect; ///< one of the above
};

} // namespace Orvant
