#pragma once

#include <ConfigurationFramework/ConfigurationConstraint.h>
#include <ConfigurationFramework/ConfigurationItemBase.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/Export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Orvant {

class ConfigurationObject;

/// What a class declares of a value, without the class.
struct ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationValueDescription {
    std::string name;        ///< tag of its element
    std::string description; ///< text for documentation and dialogues
    ConfigurationValueBase::ValueType type = ConfigurationValueBase::StringValue; ///< its type
    /// The default: the items of a list, of others one text. Numbers have all their digits,
    /// unsigned ones no sign.
    std::vector<std::string> defaultTexts = {};
    ConfigurationConstraint constraint = {}; ///< label and rule
    /// Whether a dialogue shows it.
    ConfigurationItemBase::GuiVisibility visibility = ConfigurationItemBase::Visible;
    /// Whether it is loaded and saved.
    ConfigurationItemBase::Persistence persistence = ConfigurationItemBase::LoadAndSave;
    /// Products that have it.
    ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;
    bool isEditable = true; ///< false: its class locks it when it is constructed

    /// @return whether it is a list
    bool isList() const { return type == ConfigurationValueBase::StringVectorValue; }
    /// @return whether a load takes it from a file
    bool isLoadable() const;
    /// @return a number as a file holds it, where it differs: unsigned ones are signed there
    std::string fileTextOf(const std::string& text) const;
    /// Says what a load makes of texts.
    /// @param texts the items of a list, of others one text, as a file holds them
    /// @return why it does not take them, or not all of them, as in ConfigurationProblem::text;
    ///         empty when it does
    std::string problemOf(const std::vector<std::string>& texts) const;
    /// @return a value with that description
    /// @throws std::invalid_argument when the default or a rule is not of the type, when XML does
    ///         not allow the name, or when the rule does not allow the default
    std::unique_ptr<ConfigurationValueBase> makeValue() const;
};

/// What a class declares of an object, without the class.
///
/// @code
/// const ConfigurationObjectDescription description = describeConfiguration(view);
/// for (const ConfigurationValueDescription& value : description.values)
///     std::cout << value.name << ": " << value.constraint.label << '\n';
/// @endcode
struct ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationObjectDescription {
    /// An object in an object.
    struct Child;

    std::string name;        ///< tag of its element; empty: stored inline, in that of its parent
    std::string description; ///< text for documentation and dialogues
    /// Whether it is loaded and saved.
    ConfigurationItemBase::Persistence persistence = ConfigurationItemBase::LoadAndSave;
    /// Products that have it.
    ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;
    bool isEditable = true; ///< false: its class locks it when it is constructed
    std::vector<ConfigurationValueDescription> values = {}; ///< in the order of saving
    // Without an initialiser: Clang would need the class below for it.
    std::vector<Child> children; ///< in the order of saving

    /// @return whether a load takes it from a file
    bool isLoadable() const;
    /// @return an object with that description, which loads, merges and saves like the one that was
    ///         described. It keeps a copy of the description.
    /// @throws std::invalid_argument like ConfigurationValueDescription::makeValue()
    std::unique_ptr<ConfigurationObject> makeObject() const;
};

/// An object in an object, in one of three ways.
struct ConfigurationObjectDescription::Child {
    ConfigurationObjectDescription object; ///< what it declares; inline if it has no name
    bool isKind = false;                   ///< there are any number, one for each key
    std::optional<std::string> key = {};   ///< of a single child; nothing: it has none
};

/// Describes a new object of the class of an object. What the class writes besides its values and
/// children counts as texts, lists and children, except for a second element of a name and key;
/// what stands in an element with a key and a text is not described.
/// @throws std::logic_error when createConfigurationObject() of the object returns null, and what
///         the object throws when it is written
ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationObjectDescription
describeConfiguration(const ConfigurationObject& object);

/// @return what applies, as a save writes it: the items of a list, of others one text; nothing for
/// a
///         type that the library does not have
ORVANT_CONFIGURATIONFRAMEWORK_EXPORT std::vector<std::string>
textsOf(const ConfigurationValueBase& value);

} // namespace Orvant
