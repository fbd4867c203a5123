#pragma once

#include <GeneralServices/Export.h>

#include <xercesc/util/XercesDefs.hpp>

#include <string>

namespace Orvant {

/// Converts text for Xerces-C++ (UTF-16) and back (UTF-8). Works without an initialised Xerces.
///
/// @code
/// const auto tag = XercesHelperFunctions::stringToXmlCh("Größe");
/// element->setAttribute(tag.c_str(), value.c_str());
/// @endcode
class ORVANT_GENERALSERVICES_EXPORT XercesHelperFunctions {
public:
    /// @param text UTF-8
    /// @return the text in UTF-16, a copy that frees itself; bytes that are not UTF-8 become U+FFFD
    static std::basic_string<XMLCh> stringToXmlCh(const std::string& text);

    /// @param text UTF-16 up to its first NUL; null counts as empty
    /// @return the text in UTF-8; a lone surrogate becomes U+FFFD
    static std::string xmlChToString(const XMLCh* text);

    /// @return true when both texts, each up to its first NUL, are the same; null counts as empty
    static bool compareXmlCh(const XMLCh* left, const XMLCh* right);
};

} // namespace Orvant
