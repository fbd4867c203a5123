#pragma once

#include <ConfigurationFramework/Export.h>

#include <optional>
#include <string>

namespace Orvant {

class ConfigurationObject;
class ConfigurationValueBase;

/// Goes through what is declared in an object, whatever the types: for dialogues, and for lists of
/// all settings. ConfigurationValueBase::getConstraint() tells labels, ranges and choices.
///
/// @code
/// class Printer : public SettingVisitor {
///     void visitValue(ConfigurationValueBase& value) override {
///         const ConfigurationConstraint constraint = value.getConstraint();
///         std::cout << value.getName() << ": " << constraint.label << ' ' <<
///         constraint.describe();
///     }
/// };
/// @endcode
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT SettingVisitor {
public:
    SettingVisitor() = default;
    SettingVisitor(const SettingVisitor&) = delete;
    SettingVisitor& operator=(const SettingVisitor&) = delete;
    virtual ~SettingVisitor();

    /// Is called for each value.
    virtual void visitValue(ConfigurationValueBase& value) = 0;
    /// Is called before what is in a child with an element of its own.
    /// @param child the child
    /// @param key   its key, if it has one
    /// @return whether to visit what is in it; by default it is
    virtual bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key);
    /// Is called after what is in a child that was entered.
    virtual void leaveObject(ConfigurationObject& child);
    /// Is called before what each child of a kind has that is told apart by keys, before those that
    /// there are.
    /// @param prototype what a new child starts as
    /// @return whether to visit what is in it; by default it is not
    virtual bool enterKind(ConfigurationObject& prototype);
    /// Is called after a kind that was entered.
    virtual void leaveKind(ConfigurationObject& prototype);
    /// Is called before what is in a child that is stored inline, in the element of its parent: it
    /// may be locked by itself, and watched by others than its parent.
    /// @return whether to visit what is in it; by default it is
    virtual bool enterInline(ConfigurationObject& child);
    /// Is called after what is in a child that is stored inline and was entered.
    virtual void leaveInline(ConfigurationObject& child);
};

/// Has a visitor visit what is declared in an object, in order: values, then children.
/// @throws what the visitor throws
ORVANT_CONFIGURATIONFRAMEWORK_EXPORT void visitSettings(ConfigurationObject& object,
                                                        SettingVisitor& visitor);

} // namespace Orvant
