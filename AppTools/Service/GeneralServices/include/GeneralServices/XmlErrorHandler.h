#pragma once

#include <GeneralServices/Export.h>

#include <xercesc/sax/ErrorHandler.hpp>

namespace Orvant {

/// Remembers whether a Xerces-C++ parser reported errors. Warnings do not count.
///
/// @code
/// XmlErrorHandler errors;
/// parser.setErrorHandler(&errors);
/// parser.parse(source);
/// if (errors.getSawErrors())
///     refuse();
/// @endcode
class ORVANT_GENERALSERVICES_EXPORT XmlErrorHandler : public xercesc::ErrorHandler {
public:
    /// @return true when an error or a fatal error was reported since the last reset
    bool getSawErrors() const { return m_sawErrors; }

    /// Ignores the warning.
    void warning(const xercesc::SAXParseException& exception) override;
    /// Remembers that there was an error.
    /// @{
    void error(const xercesc::SAXParseException& exception) override;
    void fatalError(const xercesc::SAXParseException& exception) override;
    /// @}
    /// Forgets the errors.
    void resetErrors() override;

private:
    bool m_sawErrors = false;
};

} // namespace Orvant
