#pragma once

#include <ConfigurationFramework/ComparingWriter.h>
#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <memory>
#include <optional>
#include <span>

namespace Orvant {

/// Writes objects as saves do, but each into an element that is in no document.
class ObjectWriter {
public:
    ObjectWriter();

    /// @return an object as a save in full writes it
    WrittenElement writeInFull(const ConfigurationRegistration& registration,
                               const ConfigurationObject& object);
    /// @return an object as a save in full writes it; nothing when that is the former one
    std::optional<WrittenElement> writeIfChanged(const ConfigurationRegistration& registration,
                                                 const ConfigurationObject& object,
                                                 const WrittenElement& former);
    /// @return what a save in full writes of an object and a load takes; nothing when it loads
    ///         nothing
    std::optional<WrittenElement> writeLoaded(const ConfigurationRegistration& registration,
                                              const ConfigurationObject& object);
    /// @return what differs from a reference, as a save writes it; nothing when that is nothing
    std::optional<WrittenElement> writeDifferences(const ConfigurationRegistration& registration,
                                                   const ConfigurationObject& object,
                                                   ConfigReader& reference);

private:
    template <typename Write>
    std::optional<WrittenElement> take(Write write, std::span<const WrittenElement> former = {});

    std::unique_ptr<ConfigWriter> m_writer;
    ComparingWriter& m_elements; ///< what it writes to
};

} // namespace Orvant
