#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/SettingsBase.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

/// The registered objects of a kind: one for each key that the manager's files have for its name.
///
/// @code
/// KeyedSettings<Plotter> plotters; // registers and loads all that the files have
/// plotters.add("Hall 1").paper = "A0";
/// for (const auto& [key, plotter] : plotters)
///     offer(key, plotter.paper);
/// @endcode
///
/// The objects stay registered when this is destroyed; another one for the same manager and class
/// has the same objects. With two files, an object that only the user has is in the user's file
/// even if nothing in it differs from a new one, provided that its class derives from Settings.
/// @tparam C class of the objects, made without arguments, with a name
template <std::derived_from<ConfigurationObject> C>
class KeyedSettings {
public:
    /// A key with its object.
    using Entry = std::pair<const std::string&, C&>;

    /// Goes through the objects in the order of their keys; removing one ends its validity there.
    class Iterator {
        using Place = typename std::map<std::string, std::shared_ptr<C>>::const_iterator;

    public:
        /// For the standard algorithms.
        /// @{
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;
        /// @}

        Iterator() = default;
        /// @param place where it stands
        explicit Iterator(Place place) : m_place(place) {}

        /// @return key and object
        Entry operator*() const { return {m_place->first, *m_place->second}; }
        /// Goes to the next object.
        /// @{
        Iterator& operator++() {
            ++m_place;
            return *this;
        }
        Iterator operator++(int) { return Iterator(m_place++); }
        /// @}
        /// @return whether both stand at the same object
        bool operator==(const Iterator& other) const = default;

    private:
        Place m_place = {};
    };

    /// Registers an object for each key in the files, and loads them.
    /// @param manager must outlive this; its files and accepted versions are set
    /// @throws std::logic_error for a class without a name, or when an object of another class is
    ///         registered under the name, and whatever an object throws while it is loaded
    explicit KeyedSettings(ConfigurationManager& manager = ConfigurationManager::getInstance())
        : m_manager(manager), m_name(C().getName()) {
        if (m_name.empty())
            throw std::logic_error("objects with keys need a class with a name");
        update();
    }
    KeyedSettings(const KeyedSettings&) = delete;
    KeyedSettings& operator=(const KeyedSettings&) = delete;
    ~KeyedSettings() = default;

    /// Registers objects for keys that are new in the files, after
    /// ConfigurationManager::reloadConfiguration(). Objects whose elements are gone stay: what was
    /// changed in them is not lost.
    /// @throws whatever an object throws while it is loaded; std::logic_error like the constructor
    void update() {
        adoptRegistered();
        const std::set<std::string> keysOfSystem = m_manager.getKeys(m_name, true);
        std::vector<ConfigurationRegistration> found;
        for (const std::string& key : m_manager.getKeys(m_name)) {
            if (key.empty() || m_objects.contains(key))
                continue;
            found.push_back({make(!keysOfSystem.contains(key)), m_name, key});
        }
        m_manager.addConfigurationObjects(found);
        for (const ConfigurationRegistration& registration : found)
            m_objects.emplace(*registration.key, std::static_pointer_cast<C>(registration.object));
    }
    /// @return the object of a key; a new one, registered and loaded from the element without a
    ///         key, if there is none
    /// @throws std::invalid_argument for an empty key or one that XML cannot hold, and whatever the
    ///         object throws while it is loaded; std::logic_error like the constructor
    C& add(const std::string& key) {
        if (!KeyedGroup::isKey(key))
            throw std::invalid_argument("\"" + key + "\" cannot be the key of \"" + m_name + '"');
        adoptRegistered();
        if (C* const object = find(key))
            return *object;
        auto object = make(!m_manager.getKeys(m_name, true).contains(key));
        m_manager.addConfigurationObject(object, m_name, key);
        return *m_objects.emplace(key, std::move(object)).first->second;
    }
    /// Unregisters an object, if there is one; the next save drops its element. One that the
    /// administrator locked stays, and any other that the system file has comes back at the next
    /// start.
    void remove(const std::string& key) {
        const C* const object = find(key);
        if (object == nullptr ||
            (object->hasNonEditableEntries() && m_manager.getKeys(m_name, true).contains(key)))
            return;
        m_manager.removeConfigurationObject(m_name, key);
        m_objects.erase(key);
    }
    /// @return the object of a key; null when there is none
    C* find(const std::string& key) const {
        const auto found = m_objects.find(key);
        return found == m_objects.end() ? nullptr : found->second.get();
    }
    /// @return number of objects
    std::size_t size() const { return m_objects.size(); }
    /// @return whether there are none
    bool empty() const { return m_objects.empty(); }
    /// @return the first object
    Iterator begin() const { return Iterator(m_objects.begin()); }
    /// @return the end of the objects
    Iterator end() const { return Iterator(m_objects.end()); }

private:
    static std::shared_ptr<C> make(bool isOfUser) {
        auto object = std::make_shared<C>();
        if constexpr (std::derived_from<C, SettingsBase>)
            if (isOfUser)
                object->keepElement();
        return object;
    }
    /// Takes over the objects that are registered: only these are saved.
    void adoptRegistered() {
        for (const auto& [object, name, key] : m_manager.getRegistrations()) {
            if (name != m_name)
                continue;
            auto own = std::dynamic_pointer_cast<C>(object);
            if (own == nullptr || !key)
                throw std::logic_error("another object is registered as \"" + m_name + '"');
            m_objects.try_emplace(*key, std::move(own));
        }
    }

    ConfigurationManager& m_manager;
    std::string m_name;
    std::map<std::string, std::shared_ptr<C>> m_objects;
};

} // namespace Orvant
