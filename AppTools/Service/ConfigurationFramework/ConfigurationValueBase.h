#pragma once

#include <ConfigurationFramework/ConfigurationConstraint.h>
#include <ConfigurationFramework/ConfigurationItemBase.h>

namespace Orvant {

/// Type-independent interface of a configuration value, as a configuration object stores it.
///
/// @code
/// if (value.isGuiVisible())
///     addRow(value.getName(), value.getValueType());
/// @endcode
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValueBase : public ConfigurationItemBase {
public:
    /// Type of a value. The number 4 is not used.
    enum ValueType : std::uint32_t {
        BoolValue = 0,        ///< bool
        IntValue = 1,         ///< int
        UnsignedIntValue = 2, ///< unsigned int
        DoubleValue = 3,      ///< double
        FloatValue = 5,       ///< float
        StringValue = 6,      ///< std::string
        StringVectorValue = 7 ///< std::vector<std::string>
    };

    /// @param name          XML tag of the value and its name in look-ups
    /// @param description   label in dialogues and comment before the element
    /// @param guiVisibility whether a dialogue shows the value
    /// @param valueType     type of the value
    /// @param persistence   whether the value is loaded and saved
    /// @param productType   products that have the value
    ConfigurationValueBase(const std::string& name, const std::string& description,
                           GuiVisibility guiVisibility, ValueType valueType,
                           Persistence persistence, ProductType productType);
    /// Copies everything, including the lock.
    /// @{
    ConfigurationValueBase(const ConfigurationValueBase&) = default;
    ConfigurationValueBase& operator=(const ConfigurationValueBase&) = default;
    /// @}
    ~ConfigurationValueBase() override;

    /// Reads the value from the child element of its name. Does nothing when the value is not
    /// loadable or is locked; falls back to the default when the element is missing or unreadable.
    void loadContent(ConfigReader& reader) override = 0;
    /// Writes the value, with its description as comment, unless it is NotPersistent or of another
    /// product.
    void saveContent(ConfigWriter& writer) const override = 0;
    /// @return true when `other` has the same type and exactly the same effective value
    virtual bool comapreValue(const ConfigurationValueBase* other) const = 0;
    /// @return a copy that the caller owns
    virtual ConfigurationValueBase* clone() const = 0;
    /// @return true when there is a value besides the default: it was set or loaded
    virtual bool hasValue() const = 0;
    /// Goes back to the default, locked or not.
    virtual void resetValue() = 0;
    /// Takes the effective value of `other` as its own. Ignores null and values of another type.
    virtual void adoptValue(const ConfigurationValueBase* other) = 0;
    /// @return what a dialogue calls the value, and which values it may have; by default its
    ///         description, and any
    virtual ConfigurationConstraint getConstraint() const;

    /// @return true when a dialogue shows the value
    bool isGuiVisible() const { return m_guiVisibility == Visible; }
    /// @return type of the value
    ValueType getValueType() const { return m_valueType; }

private:
    GuiVisibility m_guiVisibility;
    ValueType m_valueType;
};

} // namespace Orvant
