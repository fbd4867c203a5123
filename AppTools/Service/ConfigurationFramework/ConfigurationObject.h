#pragma once

#include <ConfigurationFramework/ConfigurationItemBase.h>
#include <ConfigurationFramework/ConfigurationValue.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Orvant {

class ConfigurationValueBase;

/// A named group of values and of child objects: one element of the configuration file.
///
/// @code
/// class ViewSettings : public ConfigurationObject {
/// public:
///     ViewSettings()
///         : ConfigurationObject("ViewSettings", "The 3D view", LoadAndSave, AllProducts) {
///         addConfigurationValue(new ConfigurationValue<double>(
///             "Zoom", "Zoom factor at start", 1.0, Visible, LoadAndSave, AllProducts));
///     }
///     ConfigurationObject* createConfigurationObject() const override { return new ViewSettings; }
/// };
/// @endcode
///
/// A child with a name has an element of its own below the object's; a child without a name is
/// stored inline, in the element of its parent.
///
/// The object owns its values and children. Copies are deep: they have values and children of their
/// own and outlive their originals, so a derived class finds its values by name and keeps no
/// pointers to them.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationObject : public ConfigurationItemBase {
public:
    /// @param name        tag of the object's element; empty for a child that is stored inline
    /// @param description comment before the element of a child
    /// @param persistence whether the object is loaded and saved
    /// @param productType products that have the object
    ConfigurationObject(const std::string& name, const std::string& description,
                        Persistence persistence, ProductType productType);
    /// Copies deeply: values, children, locks and warnings.
    /// @{
    ConfigurationObject(const ConfigurationObject& other);
    ConfigurationObject& operator=(const ConfigurationObject& other);
    /// @}
    ~ConfigurationObject() override;

    /// Loads lock, values and children from the current node of a reader. Does nothing when the
    /// object is not loadable or is locked.
    void loadContent(ConfigReader& reader) override;
    /// Writes all values and children below the current element of a writer, unless writesContent()
    /// returns false. A list whose name also occurs in a child's element is written before
    /// everything else, because lists are searched for at every depth.
    void saveContent(ConfigWriter& writer) const override;
    /// @return a new instance of the concrete class with its defaults, never null; the caller owns
    ///         it. Where the library needs one and gets null, it throws std::logic_error.
    virtual ConfigurationObject* createConfigurationObject() const = 0;
    /// @return a deep copy of the concrete class with values, locks and warnings; the caller owns
    ///         it
    /// @throws std::logic_error when createConfigurationObject() returns null
    virtual ConfigurationObject* clone() const;
    /// Writes the object, compared with what a reader holds for it: a fresh instance that is loaded
    /// from the reader, the same that canBeSavedToUserConfig() was answered by if a writer asks
    /// both (ConfigWriter::putOnlyDifferentClassContents()). When only differences are written,
    /// this is also called on the children, each with a reader whose current node is the parent's
    /// element; the element of a named child is written when anything is written into it.
    /// @param writer        the object is written below its current element
    /// @param reader        holds the reference, normally the system configuration
    /// @param onlyDifferent true: only what differs from the reference; false: everything
    /// @throws std::logic_error when createConfigurationObject() returns null
    virtual void saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const;
    /// @return true when the object has something for the user's file:
    ///         atLeastOneSavedValueIsDifferent() compared with what the reader holds
    /// @throws std::logic_error when createConfigurationObject() returns null
    virtual bool canBeSavedToUserConfig(ConfigReader& reader) const;
    /// Resets every value that may be edited, in children too. What is locked keeps its value (in a
    /// locked object, everything does): a reset does not get around locks.
    virtual void setDefaultValues();
    /// @return true when the object, a value or something in a child is locked
    virtual bool hasNonEditableEntries() const;
    /// Repairs the object after a user's document was loaded over the system's.
    ///
    /// What the system locks gets the system's value; so does a value that is missing or unreadable
    /// in the user's document. Locks become exactly those of the system: a user's document neither
    /// locks nor unlocks. Children, named and nameless, are repaired in the same way. Values and
    /// children that `other` does not have are left alone. Values are paired by name, children by
    /// getCounterpart(). What is taken, here and by restoreLocks():
    ///
    /// | There, the value is           | Here, it has | Repair takes   | restoreLocks() takes |
    /// |-------------------------------|--------------|----------------|----------------------|
    /// | locked, or in a locked object | anything     | value and lock | value and lock       |
    /// | editable                      | no value     | value and lock | lock                 |
    /// | editable                      | a value      | lock           | lock                 |
    /// | not there                     | anything     | nothing        | nothing              |
    ///
    /// @param other the object as the system's document left it; null does nothing
    virtual void overwriteInvalidConfigValues(const ConfigurationObject* other);
    /// Restores the locks of an earlier state of the object and the values that they lock, for
    /// loads that must not change locks. The table at overwriteInvalidConfigValues() shows what is
    /// taken.
    void restoreLocks(const ConfigurationObject& former);
    /// Tells observers that loading is complete. By default it calls each child's; derived classes
    /// add their signals.
    virtual void emitSignalsAfterConfigLoading();
    /// @return own warnings and those of the children, one per line; empty when there are none
    virtual std::string getUserWarningMessages() const;
    /// Adds a line to the object's own warnings; an empty message adds none.
    virtual void addUserWarningMessage(const std::string& message);
    /// @return false when the object, by its definition, writes nothing in this run: it is
    ///         NotPersistent or does not belong to the running product. Saves then leave any
    ///         element of its name in the file. Override it together with saveContent() in a class
    ///         that never writes.
    virtual bool writesContent() const;
    /// Finds the child of another object of the same class that corresponds to a child of this one.
    /// The locks and values of the system's document are taken from it, those of an earlier state
    /// are restored from it, and a difference save compares with it. By default it is the one at
    /// the same position if that has the same name and key, else the first of that name and key. A
    /// class whose children share a name and are told apart in another way overrides this.
    /// @param child    a child of this object
    /// @param position of the child among those of this object
    /// @param other    the object to look in
    /// @return a child of `other`; null when it has none for the child
    virtual const ConfigurationObject* getCounterpart(const ConfigurationObject& child,
                                                      std::size_t position,
                                                      const ConfigurationObject& other) const;
    /// Tells children of one name apart. The library loads a child that has a key from the element
    /// with that key, or else the one without a key, and saves it to the one with the key.
    /// @param position of the child among those of this object
    /// @return the key; nothing, by default: the only child of its name
    virtual std::optional<std::string> getChildKey(std::size_t position) const;
    /// @return what new children of this object start as, where it makes them while it is loaded;
    ///         owned by this object. Locks are restored in it as in children. Null by default.
    virtual ConfigurationObject* getChildPrototype() const;

    /// @return the object that this is a child of; null when there is none
    const ConfigurationObject* getParent() const { return m_parent; }
    /// @return first value of that name, without searching children; null when there is none
    ConfigurationValueBase* getConfigurationValue(const std::string& name) const;
    /// @return first child of that name; null when there is none
    ConfigurationObject* getConfigurationObject(const std::string& name) const;
    /// @return the values in the order in which they were added
    std::vector<const ConfigurationValueBase*> getConfigurationValues() const;
    /// @return number of values
    std::size_t getConfigurationValuesSize() const { return m_values.size(); }
    /// @return number of children
    std::size_t getConfigurationObjectsSize() const { return m_objects.size(); }

    /// Iterator over the values.
    using ValueIterator = std::vector<ConfigurationValueBase*>::const_iterator;
    /// Iterator over the children.
    using ObjectIterator = std::vector<ConfigurationObject*>::const_iterator;
    /// @return first value, in the order in which they were added
    ValueIterator beginValueIterator() const { return m_values.begin(); }
    /// @return end of the values
    ValueIterator endValueIterator() const { return m_values.end(); }
    /// @return first child, in the order in which they were added
    ObjectIterator beginObjectIterator() const { return m_objects.begin(); }
    /// @return end of the children
    ObjectIterator endObjectIterator() const { return m_objects.end(); }

    /// @return true when both objects have a value of that name and the two are equal
    bool compareWithOtherConfigValue(const ConfigurationObject* other,
                                     const std::string& name) const;
    /// @return true when the numbers of values or children differ, or two values at the same
    ///         position do. Differences inside children do not count. A null `other` counts as
    ///         different.
    bool atLeastOneValueIsDifferent(const ConfigurationObject* other) const;
    /// Like atLeastOneValueIsDifferent(), but a pair counts only when both values are savable, and
    /// an object with children always differs.
    /// @return true when there is something to save
    bool atLeastOneSavedValueIsDifferent(const ConfigurationObject* other) const;
    /// @return values that differ from the value of the same name in `other`, or have none there,
    ///         in order. A null `other` has no values.
    std::vector<const ConfigurationValueBase*>
    getDifferentConfigurationValues(const ConfigurationObject* other) const;
    /// Writes what differs from `other`: values (including LoadOnly ones, as in a full save) and,
    /// for each named child with a difference somewhere below it, its element with only what
    /// differs. Nameless children are written inline. A list whose name occurs in the element of a
    /// child with differences is written even if it does not differ. A child's override of
    /// saveContent() is not called: there is no reader for it.
    /// @param writer the differences are written below its current element
    /// @param other  the reference; null: everything differs
    void saveDifferentConfigurationValues(ConfigWriter& writer,
                                          const ConfigurationObject* other) const;

protected:
    /// Appends a value and takes ownership of it.
    /// @throws std::invalid_argument for null
    void addConfigurationValue(ConfigurationValueBase* value);
    /// Appends a child and takes ownership of it.
    /// @throws std::invalid_argument for null
    void addConfigurationObject(ConfigurationObject* object);
    /// Inserts a child before the one at a position, or at the end, and takes ownership of it.
    /// @throws std::invalid_argument for null
    void insertConfigurationObject(std::size_t position, ConfigurationObject* object);
    /// @return the child at a position, which is no longer one; null when there is none
    std::unique_ptr<ConfigurationObject> takeConfigurationObject(std::size_t position);
    /// Deletes all values and children.
    void clearConfigurationItems();
    /// Is called when the object got other values or children in place of its own, by clone() or an
    /// assignment: pointers to them are to be renewed. Does nothing by default.
    virtual void onItemsReplaced();
    /// Is called when the object and its values got the locks of another, by
    /// overwriteInvalidConfigValues() or restoreLocks(): what a class knows of locks besides is to
    /// be taken over. Does nothing by default.
    /// @param other where the locks came from, normally of the same class
    virtual void onLocksTransferred(const ConfigurationObject& other);

private:
    friend class ConfigWriter; // calls keepListsReadable() when an object has written itself
    class OwnedItems;
    class LockTransfer;

    bool differs(const ConfigurationObject* other, bool savedOnly) const;
    template <typename SaveChild>
    void saveDifferences(ConfigWriter& writer, const ConfigurationObject* other,
                         SaveChild saveChild) const;
    void collectLists(std::vector<const ConfigurationValueBase*>& lists) const;
    void keepListsReadable(ConfigWriter& writer) const;
    const ConfigurationObject* counterpartOf(std::size_t position,
                                             const ConfigurationObject* other) const;
    void takeFromSystem(const ConfigurationObject& system, bool locked);
    void restoreLocks(const ConfigurationObject& former, bool locked);
    void adoptChildren();

    std::vector<ConfigurationValueBase*> m_values;
    std::vector<ConfigurationObject*> m_objects;
    std::string m_userWarningMessages;
    const ConfigurationObject* m_parent = nullptr;
};

} // namespace Orvant
