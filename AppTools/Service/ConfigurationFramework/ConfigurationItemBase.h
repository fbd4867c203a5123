#pragma once

#include <ConfigurationFramework/Export.h>
#include <VersionControl/BuildInformation.h>

#include <cstdint>
#include <map>
#include <string>

namespace Orvant {

class ConfigReader;
class ConfigWriter;

/// What every item of a configuration, value or object, has: its name, whether it is loaded and
/// saved, which products it belongs to and whether the user may edit it.
///
/// @code
/// if (item.isSavable() && item.belongsToCurrentProduct() && item.isEditable())
///     showInDialogue(item.getName(), item.getDescription());
/// @endcode
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationItemBase {
public:
    /// What an item is.
    enum ItemType : std::uint32_t {
        ObjectItem = 0, ///< a ConfigurationObject
        ValueItem = 1   ///< a ConfigurationValue
    };

    /// Whether an item is loaded and whether it is saved.
    enum Persistence : std::uint32_t {
        LoadAndSave = 0,   ///< loaded and saved
        NotPersistent = 1, ///< neither loaded nor saved
        SaveOnly = 2,      ///< saved, never loaded
        LoadOnly = 3 ///< loaded; also written by full saves, but no reason for a difference save
    };

    /// Set of the suite's products, one bit each; flags may be ORed.
    enum ProductType : std::uint32_t {
        Product0 = 1,    ///< product number 0 of BuildInformation
        Product1 = 2,    ///< product number 1
        Product2 = 4,    ///< product number 2
        Product3 = 8,    ///< product number 3
        Product4 = 16,   ///< product number 4
        Product5 = 32,   ///< product number 5
        AllProducts = 63 ///< every product
    };

    /// Whether a settings dialogue shows a value.
    enum GuiVisibility : std::uint32_t {
        Visible = 0, ///< shown
        Hidden = 1   ///< not shown; any number but 0 means this
    };

    /// @param name        XML tag of the item and its name in look-ups
    /// @param description text for documentation and dialogues
    /// @param itemType    object or value
    /// @param persistence whether the item is loaded and saved
    /// @param productType products that have the item
    ConfigurationItemBase(const std::string& name, const std::string& description,
                          ItemType itemType, Persistence persistence, ProductType productType);
    /// Copies everything, including the lock.
    /// @{
    ConfigurationItemBase(const ConfigurationItemBase&) = default;
    ConfigurationItemBase& operator=(const ConfigurationItemBase&) = default;
    /// @}
    virtual ~ConfigurationItemBase();

    /// Fills the item from the current node of a reader.
    virtual void loadContent(ConfigReader& reader) = 0;
    /// Writes the item below the current element of a writer.
    virtual void saveContent(ConfigWriter& writer) const = 0;

    /// @return XML tag of the item and its name in look-ups
    const std::string& getName() const { return m_name; }
    /// @return text for documentation and dialogues
    const std::string& getDescription() const { return m_description; }
    /// @return object or value
    ItemType getConfigItemType() { return m_itemType; }
    /// @return whether the item is loaded and saved
    Persistence getPersistenceType() { return m_persistence; }
    /// @return products that have the item
    ProductType getProductType() { return m_productType; }

    /// @return true for LoadAndSave and LoadOnly
    bool isLoadable() const;
    /// @return true for LoadAndSave and SaveOnly
    bool isSavable() const;

    /// @return false when the item is locked: the user may not change it. True at construction.
    bool isEditable() const { return m_editable; }
    /// Locks (false) or unlocks (true) the item.
    void setEditable(bool editable) { m_editable = editable; }

    /// @return true when the item belongs to at least one of the products
    bool belongsToProduct(ProductType product) const;
    /// @param buildProduct number of a product, 0 to 5
    /// @return true when the item belongs to that product; false for every other number
    bool belongsToBuildProduct(BuildInformation::ProductType buildProduct) const;
    /// @return true when the item belongs to the product that is running
    bool belongsToCurrentProduct() const;
    /// @return true when a save of the running product writes the item: it belongs to the product
    ///         and is not NotPersistent. Looser than isSavable(): LoadOnly items are written.
    bool isWrittenByCurrentProduct() const;

private:
    static const std::map<BuildInformation::ProductType, ProductType> s_buildProductTypesMap;

    std::string m_name;
    std::string m_description;
    ProductType m_productType;
    Persistence m_persistence;
    ItemType m_itemType;
    bool m_editable = true;
};

/// @return the union of both sets
constexpr ConfigurationItemBase::ProductType operator|(ConfigurationItemBase::ProductType left,
                                                       ConfigurationItemBase::ProductType right) {
    return static_cast<ConfigurationItemBase::ProductType>(static_cast<std::uint32_t>(left) |
                                                           static_cast<std::uint32_t>(right));
}

} // namespace Orvant
