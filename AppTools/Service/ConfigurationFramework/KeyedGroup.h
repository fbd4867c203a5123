#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Orvant {

/// The children of a kind, one for each key, inline in the element of their parent. See
/// KeyedChildren, which is a handle to one of these.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT KeyedGroup final : public ConfigurationObject {
public:
    /// @param prototype what a child of the kind is at first; its name is that of the elements
    /// @throws std::logic_error when it has no name
    explicit KeyedGroup(std::unique_ptr<ConfigurationObject> prototype);
    KeyedGroup(const KeyedGroup&) = delete;
    KeyedGroup& operator=(const KeyedGroup&) = delete;
    ~KeyedGroup() override;

    /// @return whether a text can be a key: not empty, and XML can hold it
    static bool isKey(const std::string& text);
    /// @return the child of a key; a copy of the prototype if there is none
    /// @throws std::invalid_argument for an empty key or one that XML cannot hold;
    ///         std::logic_error for a new one when the group or an object that it is in is locked
    ConfigurationObject& add(const std::string& key);
    /// Removes the child of a key. One that has locks, or is in something locked, stays.
    void remove(const std::string& key);
    /// @return the child of a key; null when there is none
    ConfigurationObject* find(const std::string& key) const;
    /// @return the keys, in order
    const std::vector<std::string>& keys() const { return m_keys; }
    /// @param position that of its key
    ConfigurationObject& child(std::size_t position) const;

    /// Loads the default entry and a child for each key that the reader's element has. Children
    /// that the reader does not have stay.
    void loadContent(ConfigReader& reader) override;
    void saveContent(ConfigWriter& writer) const override;
    void saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const override;
    ConfigurationObject* createConfigurationObject() const override;
    ConfigurationObject* clone() const override;
    /// Resets the children. Those that the next load does not find go then, unless they have locks.
    void setDefaultValues() override;
    /// Tells the children, which callbacks may add and remove meanwhile.
    /// @throws the first exception of a callback, when all have been called
    void emitSignalsAfterConfigLoading() override;
    /// @return the child of the same key or, without one, what it would start as there
    const ConfigurationObject* getCounterpart(const ConfigurationObject& child,
                                              std::size_t position,
                                              const ConfigurationObject& other) const override;
    std::optional<std::string> getChildKey(std::size_t position) const override;
    ConfigurationObject* getChildPrototype() const override { return m_prototype.get(); }

    /// Takes over which children the system file has, and whose locks count.
    void takeOrigins(const KeyedGroup& other);
    /// @return whether both were loaded from files with the same keys and default entries
    bool hasSameOrigins(const KeyedGroup& other) const;
    /// @return tag of the elements that name what the user removed of the system file's
    std::string removedTag() const;

protected:
    void onLocksTransferred(const ConfigurationObject& other) override;

private:
    using Children = std::map<std::string, std::unique_ptr<ConfigurationObject>>;

    bool mayGo(const std::string& key) const;
    std::size_t positionOf(const std::string& key) const;
    std::unique_ptr<ConfigurationObject> take(const std::string& key);
    void park(const std::string& key);
    void startAnew();
    ConfigurationObject& insert(const std::string& key, std::unique_ptr<ConfigurationObject> child);
    ConfigurationObject& findOrMake(const std::string& key);
    static void startAs(ConfigurationObject& object, const ConfigurationObject& start);
    void startAs(const KeyedGroup& start);
    void loadRemoved(ConfigReader& reader, const std::set<std::string>& found);
    void saveDifferentDefaultEntry(ConfigWriter& writer, ConfigReader& reader) const;
    void saveRemoved(ConfigWriter& writer) const;

    std::unique_ptr<ConfigurationObject> m_prototype;
    std::vector<std::string> m_keys;       ///< of the children, in the same order
    std::set<std::string> m_keysOfSystem;  ///< that the system file has
    std::set<std::string> m_keysWithLocks; ///< of children whose locks count: from the first file
    std::set<std::string> m_removed;       ///< keys of the system file that the user removed
    /// Not found yet by the load that goes on: another file may have them. The child of a key stays
    /// the same object, so that references and subscriptions survive a reload.
    Children m_parked;
    bool m_hasSystemEntry = false; ///< whether the system file has a default entry
    bool m_hasUserEntry = false;   ///< whether the user's or the only file has one
    bool m_isReset = false;        ///< a load has to find the children again
    bool m_isSystemLoaded = false; ///< by the load that goes on
};

} // namespace Orvant
