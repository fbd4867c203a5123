#include <ConfigurationFramework/ConfigurationItemBase.h>

namespace Orvant {

const std::map<BuildInformation::ProductType, ConfigurationItemBase::ProductType>
    ConfigurationItemBase::s_buildProductTypesMap = {
        {0, Product0}, {1, Product1}, {2, Product2}, {3, Product3}, {4, Product4}, {5, Product5},
};

ConfigurationItemBase::ConfigurationItemBase(const std::string& name,
                                             const std::string& description, ItemType itemType,
                                             Persistence persistence, ProductType productType)
    : m_name(name),
      m_description(description),
      m_productType(productType),
      m_persistence(persistence),
      m_itemType(itemType) {}

ConfigurationItemBase::~ConfigurationItemBase() = default;

bool ConfigurationItemBase::isLoadable() const {
    return m_persistence == LoadAndSave || m_persistence == LoadOnly;
}

bool ConfigurationItemBase::isSavable() const {
    return m_persistence == LoadAndSave || m_persistence == SaveOnly;
}

bool ConfigurationItemBase::belongsToProduct(ProductType product) const {
    return (static_cast<std::uint32_t>(m_productType) & static_cast<std::uint32_t>(product)) != 0;
}

bool ConfigurationItemBase::belongsToBuildProduct(
    BuildInformation::ProductType buildProduct) const {
    const auto row = s_buildProductTypesMap.find(buildProduct);
    return row != s_buildProductTypesMap.end() && belongsToProduct(row->second);
}

bool ConfigurationItemBase::belongsToCurrentProduct() const {
    return belongsToBuildProduct(BuildInformation::getProductType());
}

bool ConfigurationItemBase::isWrittenByCurrentProduct() const {
    return m_persistence != NotPersistent && belongsToCurrentProduct();
}

} // namespace Orvant
