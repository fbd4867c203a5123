#include <GeneralServices/XercesHelperFunctions.h>

#include <Transcoding/Transcode.h>

#include <xercesc/util/XMLString.hpp>

namespace Orvant {

std::basic_string<XMLCh> XercesHelperFunctions::stringToXmlCh(const std::string& text) {
    return transcode<XMLCh>(std::string_view(text));
}

std::string XercesHelperFunctions::xmlChToString(const XMLCh* text) {
    if (text == nullptr)
        return {};
    return transcode<char>(std::basic_string_view<XMLCh>(text));
}

bool XercesHelperFunctions::compareXmlCh(const XMLCh* left, const XMLCh* right) {
    return xercesc::XMLString::equals(left, right);
}

} // namespace Orvant
