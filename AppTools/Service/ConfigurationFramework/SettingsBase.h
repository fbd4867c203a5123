#pragma once

#include <ConfigurationFramework/ChangeSubscription.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>

#include <cstddef>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

namespace Orvant {

class SettingsBase;

/// What Setting, of any type, has: the object that owns its value, and the position there.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT SettingHandle {
public:
    SettingHandle(const SettingHandle&) = delete;
    SettingHandle& operator=(const SettingHandle&) = delete;

protected:
    /// Has the owner declare the value.
    /// @throws std::logic_error like SettingsBase::declare()
    SettingHandle(SettingsBase& owner, std::unique_ptr<ConfigurationValueBase> value);
    ~SettingHandle();

    /// @return the owner
    SettingsBase& owner() const { return *m_owner; }
    /// @return the value, always of the class that was declared
    ConfigurationValueBase& value() const { return *m_value; }

private:
    friend class SettingsBase;

    void renew();

    SettingsBase* m_owner;
    std::size_t m_position;
    /// What is at the position, so that it is read as fast as a member.
    ConfigurationValueBase* m_value;
    const std::type_info* m_class; ///< of the value
    SettingHandle* m_next;         ///< of the same owner
};

/// What all Settings have in common: they know what is declared in them, and who watches it.
///
/// Not to be copied as other objects are: their handles would point to the original. clone() makes
/// copies whose handles are right.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT SettingsBase : public ConfigurationObject {
public:
    SettingsBase(const SettingsBase&) = delete;
    SettingsBase& operator=(const SettingsBase&) = delete;
    ~SettingsBase() override;

    /// Resets like any object, and tells those who watch.
    /// @throws the first exception of a callback, when all have been called
    void setDefaultValues() override;
    /// Tells those who watch what the load changed, here and in the children.
    /// @throws the first exception of a callback, when all have been called
    void emitSignalsAfterConfigLoading() override;

    /// Has the object an element of its own in the user's file even if nothing in it differs: one
    /// of several that the user added is there at the next start, too.
    void keepElement() { m_isElementKept = true; }
    /// @return whether keepElement() was called
    bool isElementKept() const { return m_isElementKept; }
    /// @return true also when keepElement() was called
    bool canBeSavedToUserConfig(ConfigReader& reader) const override;

    /// @return true when the object or one that it is in is locked
    bool isLocked() const;

    // For the handles in Settings.

    /// Appends a value and takes ownership of it.
    /// @return its position
    /// @throws std::logic_error, with the names of object and value, for a name that XML does not
    ///         allow or that something in the object's element has already
    std::size_t declare(std::unique_ptr<ConfigurationValueBase> value);
    /// Appends a child and takes ownership of it.
    /// @return its position
    /// @throws std::logic_error like declare() of a value; for a child that is stored inline, with
    ///         any name in it
    std::size_t declare(std::unique_ptr<ConfigurationObject> child);
    /// Adds somebody who is told of changes as long as it lives.
    void observe(const std::shared_ptr<ChangeObserver>& observer);
    /// Tells of changes to the object's own values.
    /// @throws the first exception of a callback, when all have been called
    void tellChanges() const;
    /// Appends all who are told.
    void collectObservers(std::vector<std::shared_ptr<ChangeObserver>>& observers) const;

protected:
    /// @param name        tag of the object's element; empty for a child that is stored inline
    /// @param description comment before the element of a child
    /// @param persistence whether the object is loaded and saved
    /// @param productType products that have the object
    /// @throws std::logic_error for a name that XML does not allow
    SettingsBase(const std::string& name, const std::string& description, Persistence persistence,
                 ProductType productType);

    /// @throws std::logic_error when the values are of other classes: an object of another class
    ///         was assigned
    void onItemsReplaced() override;

private:
    friend class SettingHandle;

    std::vector<std::weak_ptr<ChangeObserver>> m_observers; ///< their subscriptions own them
    bool m_isElementKept = false;
    SettingHandle* m_handles = nullptr; ///< the last one made, which knows the others
};

} // namespace Orvant
