#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/reading/LocatedDocument.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvant {

/// A file that was read, in ascending priority. A single file is the user's.
enum FileLayer : std::size_t { SystemLayer = 0, UserLayer = 1 };

/// An element of each file; none: the file has none.
using LayerElements = std::array<DocumentTree::Element, 2>;

/// The files at one time, with the places of their elements.
class LocatedLayers {
public:
    explicit LocatedLayers(const ConfigurationManagerLayers& layers);

    const LayerDocument& file(FileLayer layer) const {
        return layer == SystemLayer ? m_layers.system : m_layers.user;
    }
    /// @return null when readers did not accept the file
    LocatedDocument* document(FileLayer layer) const { return m_documents[layer].get(); }
    const ConfigurationManagerLayers& layers() const { return m_layers; }
    /// @return where an element of a file begins, from 1; 0 for none
    unsigned int line(FileLayer layer, DocumentTree::Element element) const;

private:
    const ConfigurationManagerLayers& m_layers;
    std::array<std::unique_ptr<LocatedDocument>, 2> m_documents;
};

/// A value of a registered object, an object, or what the class of an object writes besides its
/// values and children.
struct PlacedSetting {
    std::string path;
    std::string tag;
    std::optional<std::string> key; ///< which the element has to have; nothing: any
    bool isGroup = false;           ///< has settings below it
    bool isOpaque = false;          ///< a group of which only its class knows what is in it
    bool isList = false;
    bool isLoaded = true; ///< a load reads it, as far as is known
    /// The system file has the registered object: locks in the user's file do not count.
    bool isOfSystem = false;
    const ConfigurationValueBase* value = nullptr; ///< null: a group, or only its class knows it
    std::string text;                              ///< of no group; as a save writes it
    /// Path of what is locked, in the file or else in the object; empty: nothing is.
    std::string lockedBy;
    /// What locks, in the file of lockingLayer(); none: nothing is locked, or no file does it.
    DocumentTree::Element lock = DocumentTree::none;
    LayerElements parents{DocumentTree::none, DocumentTree::none};
    LayerElements elements{DocumentTree::none, DocumentTree::none};

    /// @return true when a reader gets a value from a file
    bool isReadFrom(FileLayer layer, const LocatedLayers& layers) const;
    /// @return the file that a load takes the value from; nothing: neither
    std::optional<FileLayer> decidingLayer(const LocatedLayers& layers) const;
    /// @return what a file says; nothing: it does not have the element
    std::optional<std::string> textIn(FileLayer layer, const LocatedLayers& layers) const;
    /// @return the file whose locks count
    FileLayer lockingLayer() const { return isOfSystem ? SystemLayer : UserLayer; }
    /// @return why a lock on the element of a file has no effect; empty: it has one
    std::string obstacleToLock(FileLayer layer, const LocatedLayers& layers) const;
};

/// The settings of registered objects, in the order of saving, and where the files hold them.
class ConfigurationManagerSettings {
public:
    /// @param layers must outlive this
    explicit ConfigurationManagerSettings(const LocatedLayers& layers) : m_layers(layers) {}

    /// Adds the settings of an object.
    /// @param object its state; must outlive this
    /// @throws what the object throws when it saves itself
    void add(const ConfigurationRegistration& registration, const ConfigurationObject& object);
    /// Adds the settings of a new object of the same class as the registered one.
    /// @param isLoaded whether it is loaded from the files
    /// @throws std::logic_error when the factory of the object returns null, and what the object
    ///         throws when it is loaded or saves itself
    void addFresh(const ConfigurationRegistration& registration, bool isLoaded);
    const std::vector<PlacedSetting>& settings() const { return m_settings; }

private:
    /// An element that objects share: one with a name, and the nameless ones in it.
    struct Group;

    void addObject(const ConfigurationObject& object, Group& group, PlacedSetting inherited);
    void addValue(const ConfigurationValueBase& value, Group& group, PlacedSetting inherited);
    void addDefaultEntry(const ConfigurationObject& prototype, Group& group,
                         PlacedSetting inherited);
    void addChild(const ConfigurationObject& child, const std::optional<std::string>& key,
                  Group& group, PlacedSetting inherited);
    void addOthers(Group& group, const PlacedSetting& inherited);
    void addOther(const WrittenElement& written, std::size_t occurrence, const Group& group,
                  PlacedSetting inherited);
    void addGroup(const ConfigurationObject& object, const WrittenElement* written,
                  PlacedSetting setting);
    template <typename Find>
    LayerElements findAll(const LayerElements& parents, Find find) const;
    bool holdsItems(const PlacedSetting& setting) const;
    void restrictBy(const ConfigurationItemBase& item, PlacedSetting& setting) const;
    void takeLockOfFile(PlacedSetting& setting) const;

    const LocatedLayers& m_layers;
    std::vector<PlacedSetting> m_settings;
    std::vector<std::unique_ptr<ConfigurationObject>> m_objects; ///< that were made here
};

/// Finds the settings of one state of an object for those of another: by path, and of several with
/// the same path (a value, and one of a nameless child) the first for the first, and so on.
class SettingPairs {
public:
    /// @param settings must outlive this
    explicit SettingPairs(const std::vector<PlacedSetting>& settings);

    /// @return the next setting of the path; null: there is none
    const PlacedSetting* take(const PlacedSetting& setting);

private:
    using Id = std::pair<std::string, bool>; ///< path, and whether it is a group

    std::map<Id, std::vector<const PlacedSetting*>> m_untaken; ///< the next one last
};

} // namespace Orvant
