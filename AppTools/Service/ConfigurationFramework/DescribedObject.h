#pragma once

#include <ConfigurationFramework/ConfigurationDescription.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace Orvant {

/// An object whose class is only described.
class DescribedObject final : public ConfigurationObject {
public:
    /// Values that are ready to be copied: a load makes many objects of one description.
    struct Blueprint;

    explicit DescribedObject(std::shared_ptr<const Blueprint> blueprint);

    ConfigurationObject* createConfigurationObject() const override;
    std::optional<std::string> getChildKey(std::size_t position) const override;

    /// @throws std::invalid_argument like ConfigurationValueDescription::makeValue()
    static std::shared_ptr<const Blueprint>
    makeBlueprint(const ConfigurationObjectDescription& description);

private:
    std::shared_ptr<const Blueprint> m_blueprint;
};

} // namespace Orvant
