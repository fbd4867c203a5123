#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/KeyedSettings.h>
#include <ConfigurationFramework/Setting.h>
#include <ConfigurationFramework/SettingRules.h>
#include <ConfigurationFramework/SettingVisitor.h>
#include <ConfigurationFramework/SettingsBase.h>
#include <ConfigurationFramework/StandardConfigurationFiles.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

namespace Orvant {

/// A named group of settings that are declared in one line each and read without a cast. It is a
/// ConfigurationObject, and may be mixed with others.
///
/// @code
/// struct Camera : Orvant::Settings<Camera> {
///     Camera() : Settings("Camera", "The camera of the view") {}
///     Orvant::Setting<double> fieldOfView{this, "FieldOfView", "Field of view in degrees", 45.0,
///                                         Orvant::Range{1.0, 170.0}};
/// };
/// struct View3D : Orvant::Settings<View3D> {
///     View3D() : Settings("View3D", "The 3D view") {}
///     Orvant::Setting<bool> showGrid{this, "ShowGrid", "Whether the grid is drawn", true};
///     Orvant::Setting<int> starts{this, "Starts", "Number of starts", 0, Orvant::hidden};
///     Orvant::Child<Camera> camera{this};
/// };
/// auto view = std::make_shared<View3D>();
/// view->showGrid = false;
/// view->camera->fieldOfView = 60.0;
/// @endcode
///
/// Settings are not copied or assigned: clone() makes copies.
///
/// @tparam Derived the class itself; it can be made without arguments
template <typename Derived>
class Settings : public SettingsBase {
public:
    /// @throws std::logic_error for an object of a class that derives from Derived: it would be
    ///         made an object of another class
    ConfigurationObject* createConfigurationObject() const override {
        if (typeid(*this) != typeid(Derived))
            throw std::logic_error(
                "the class of \"" + getName() +
                "\" derives from one that derives from Settings; derive it from Settings itself");
        return new Derived;
    }

private:
    friend Derived; // nobody else makes one: Settings of another class would be a mistake

    /// For the constructor of Derived.
    /// @param name        tag of the object's element; empty for a child that is stored inline
    /// @param description comment before the element of a child
    /// @param persistence whether the object is loaded and saved
    /// @param productType products that have the object
    /// @throws std::logic_error for a name that XML does not allow
    explicit Settings(const std::string& name, const std::string& description = "",
                      Persistence persistence = LoadAndSave, ProductType productType = AllProducts)
        : SettingsBase(name, description, persistence, productType) {}
};

/// A handle to a child of Settings, which is made with its owner.
/// @tparam C class of the child, made without arguments
template <std::derived_from<ConfigurationObject> C>
class Child {
public:
    /// Declares the child.
    /// @param owner the Settings that it is a member of
    /// @throws std::logic_error, with the names of object and child, for a name that is declared
    ///         twice
    explicit Child(SettingsBase* owner)
        : m_owner(owner), m_position(owner->declare(std::make_unique<C>())) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() = default;

    /// @return the child
    /// @{
    C& get() const {
        return static_cast<C&>(
            *m_owner->beginObjectIterator()[static_cast<std::ptrdiff_t>(m_position)]);
    }
    C& operator*() const { return get(); }
    C* operator->() const { return &get(); }
    /// @}

private:
    SettingsBase* m_owner;
    std::size_t m_position;
};

/// A handle to the children of a kind: one for each key that the files have when they are loaded,
/// and those that are added. Each has an element with the class's own name and its key.
///
/// @code
/// for (const auto& [key, plotter] : view->plotters)
///     offer(key, plotter.paper);
/// view->plotters.add("Hall 1").paper = "A0";
/// @endcode
///
/// A new child starts as the element without a key says, the default entry; saves leave that in its
/// file. What the system file has and the user removes is remembered in the user's file, in
/// elements named "Removed" and the class's name: it stays removed unless the administrator locks
/// something in it, or the user adds or changes it again. After a reset to the user's file alone,
/// what only the system file has is back with the next load. Of two processes that add the same
/// key, both keep in two files what they set. References stay valid until the child is removed or
/// no longer found by a load.
/// @tparam C class of the children, made without arguments, with a name
template <std::derived_from<ConfigurationObject> C>
class KeyedChildren {
public:
    /// A key with its child.
    using Entry = std::pair<const std::string&, C&>;

    /// Goes through the children in the order of their keys; adding and removing ends its validity.
    class Iterator {
    public:
        /// For the standard algorithms.
        /// @{
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;
        /// @}

        Iterator() = default;
        /// @param group what holds the children
        /// @param position where it stands
        Iterator(const KeyedGroup& group, std::size_t position)
            : m_group(&group), m_position(position) {}

        /// @return key and child
        Entry operator*() const {
            return {m_group->keys()[m_position], static_cast<C&>(m_group->child(m_position))};
        }
        /// Goes to the next child.
        /// @{
        Iterator& operator++() {
            ++m_position;
            return *this;
        }
        Iterator operator++(int) {
            Iterator former = *this;
            ++*this;
            return former;
        }
        /// @}
        /// @return whether both stand at the same child
        bool operator==(const Iterator& other) const = default;

    private:
        const KeyedGroup* m_group = nullptr;
        std::size_t m_position = 0;
    };

    /// Declares the children.
    /// @param owner the Settings that it is a member of
    /// @throws std::logic_error, with the names of object and child, for a name that is declared
    ///         twice; for a class without a name
    explicit KeyedChildren(SettingsBase* owner)
        : m_owner(owner),
          m_position(owner->declare(std::make_unique<KeyedGroup>(std::make_unique<C>()))) {}
    KeyedChildren(const KeyedChildren&) = delete;
    KeyedChildren& operator=(const KeyedChildren&) = delete;
    ~KeyedChildren() = default;

    /// @return the child of a key; a new one if there is none
    /// @throws std::invalid_argument for an empty key or one that XML cannot hold;
    ///         std::logic_error for a new one when the object is locked
    C& add(const std::string& key) { return static_cast<C&>(group().add(key)); }
    /// Removes a child, if there is one. One that has locks, or is in an object that is locked,
    /// stays.
    void remove(const std::string& key) { group().remove(key); }
    /// @return the child of a key; null when there is none
    C* find(const std::string& key) const { return static_cast<C*>(group().find(key)); }
    /// @return number of children
    std::size_t size() const { return group().keys().size(); }
    /// @return whether there are none
    bool empty() const { return size() == 0; }
    /// @return the first child
    Iterator begin() const { return {group(), 0}; }
    /// @return the end of the children
    Iterator end() const { return {group(), size()}; }

private:
    KeyedGroup& group() const {
        return static_cast<KeyedGroup&>(
            *m_owner->beginObjectIterator()[static_cast<std::ptrdiff_t>(m_position)]);
    }

    SettingsBase* m_owner;
    std::size_t m_position;
};

} // namespace Orvant
