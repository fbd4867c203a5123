#include <ConfigurationFramework/ConfigurationValueBase.h>

namespace Orvant {

ConfigurationValueBase::ConfigurationValueBase(const std::string& name,
                                               const std::string& description,
                                               GuiVisibility guiVisibility, ValueType valueType,
                                               Persistence persistence, ProductType productType)
    : ConfigurationItemBase(name, description, ValueItem, persistence, productType),
      m_guiVisibility(guiVisibility),
      m_valueType(valueType) {}

ConfigurationValueBase::~ConfigurationValueBase() = default;

ConfigurationConstraint ConfigurationValueBase::getConstraint() const {
    return {.label = getDescription()};
}

} // namespace Orvant
