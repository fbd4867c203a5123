#pragma once

#include <ConfigurationFramework/Export.h>
#include <ExceptionHandling/OvException.h>

#include <cstdint>
#include <source_location>

namespace Orvant {

/// The library's own exception: a document cannot be opened as a configuration or as a schema, or a
/// schema cannot be written.
///
/// @code
/// try {
///     load("settings.xml");
/// } catch (ConfigException& e) {
///     if (e.getType() == ConfigException::InvalidVersion)
///         offerMigration();
/// }
/// @endcode
///
/// Other failures in reading and writing configurations are reported by result values.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigException : public OvException {
public:
    /// The kind of failure.
    enum ExceptionType : std::uint32_t {
        InvalidDocument = 0, ///< the document cannot be used as a configuration
        SourceNotFound = 1,  ///< there is nothing to read; also: a schema is not well-formed,
                             ///< or cannot be written
        UnknownError = 2,    ///< an unexpected exception escaped while a schema was read
        InvalidVersion = 3,  ///< the document's version is not among the accepted ones
        ParserReportedErrors =
            4 ///< the parser reported errors; also: a schema does not fit the model
    };

    /// @param type     kind of failure
    /// @param location place of the throw statement
    explicit ConfigException(ExceptionType type,
                             std::source_location location = std::source_location::current());

    /// Copies kind and place.
    /// @{
    ConfigException(const ConfigException&) = default;
    ConfigException(ConfigException&&) = default;
    ConfigException& operator=(const ConfigException&) = default;
    ConfigException& operator=(ConfigException&&) = default;
    /// @}
    ~ConfigException() override;

    /// @return the kind of failure
    ExceptionType getType() { return m_type; }

    /// Has no effect.
    void doNothing() {}

private:
    ExceptionType m_type;
};

} // namespace Orvant
