#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvant::Tool {

/// A name on the way to a setting.
struct PathStep {
    std::string name;
    bool isKind = false;                 ///< there is one for each key
    std::optional<std::string> key = {}; ///< of one that is not of a kind; or as a user gave it
};

/// An object or value of a catalogue.
struct CatalogueItem {
    std::string path;            ///< "View3D/Camera/FieldOfView", "Machine[*]/MaxFeed"
    std::vector<PathStep> steps; ///< from the registered object on
    const ConfigurationValueDescription* value = nullptr;   ///< null: an object
    const ConfigurationObjectDescription* object = nullptr; ///< null: a value
    bool isLoaded = true;         ///< by a load: not so what is only saved, or neither
    bool isLockedByClass = false; ///< it, or an object that it is in
};

/// What a user means by a path.
struct FoundItem {
    const CatalogueItem* item;
    std::vector<PathStep> steps; ///< with the user's keys; of a kind without one: the default entry
};

/// Everything in a catalogue, by path.
class SettingIndex {
public:
    /// @param catalogue must outlive this
    explicit SettingIndex(const ConfigurationCatalogue& catalogue);

    /// @return all objects and values: each object before what is in it
    const std::vector<CatalogueItem>& items() const { return m_items; }
    /// @param path as in a catalogue, or with keys: "Machine[Hall 1]/MaxFeed". Without a key,
    ///             "Machine/MaxFeed" is in the default entry.
    /// @return nothing when there is none
    std::optional<FoundItem> find(const std::string& path) const;
    /// @return the path that is most like a text; empty when none is
    std::string nearest(const std::string& path) const;

private:
    using Keys = std::vector<std::optional<std::string>>; ///< of the kinds on the way

    void add(CatalogueItem item);
    void addObject(const ConfigurationObjectDescription& object, CatalogueItem item);
    void addContents(const ConfigurationObjectDescription& object, const CatalogueItem& item);

    std::optional<FoundItem> find(std::string_view rest, const std::string& above,
                                  const Keys& keys) const;

    std::vector<CatalogueItem> m_items;
    std::unordered_map<std::string, std::size_t> m_positions; ///< by path: a value before objects
};

} // namespace Orvant::Tool
