#pragma once

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <optional>
#include <string>

namespace Orvant {

/// The element that an object is loaded from and saved to.
struct ElementAddress {
    const std::string& name;
    const std::optional<std::string>& key; ///< tells elements of one name apart

    explicit ElementAddress(const ConfigurationRegistration& registration)
        : name(registration.name), key(registration.key) {}

    ConfigurationAccessResult load(AdvancedConfigReader& reader,
                                   ConfigurationObject& object) const {
        // Bypasses SystemReader's override, which calls this.
        return key ? reader.AdvancedConfigReader::getClassContents(name, *key, object)
                   : reader.AdvancedConfigReader::getClassContents(name, object);
    }
    void put(ConfigWriter& writer, const ConfigurationObject& object) const {
        if (key)
            writer.putClassContents(name, *key, object, "");
        else
            writer.putClassContents(name, object, "");
    }
    void putDifferences(ConfigWriter& writer, const ConfigurationObject& object,
                        ConfigReader& reference) const {
        if (key)
            writer.putOnlyDifferentClassContents(name, *key, object, reference, "");
        else
            writer.putOnlyDifferentClassContents(name, object, reference, "");
    }
};

/// The system file as objects that are compared with it see it: each asks for itself by its own
/// name, but the file has it at its registered address.
class SystemReader : public AdvancedConfigReader {
public:
    using AdvancedConfigReader::getClassContents;

    /// Sets the object that is compared from now on.
    void setCompared(const ConfigurationRegistration& registration) { m_compared = &registration; }

    ConfigurationAccessResult getClassContents(const std::string& name,
                                               ConfigurationObject& object) override {
        return name == m_compared->object->getName()
                   ? ElementAddress(*m_compared).load(*this, object)
                   : AdvancedConfigReader::getClassContents(name, object);
    }

private:
    const ConfigurationRegistration* m_compared = nullptr;
};

} // namespace Orvant
