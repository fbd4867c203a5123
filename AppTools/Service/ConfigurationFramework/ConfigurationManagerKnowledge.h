#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <memory>

namespace Orvant {

/// What is known of an object's state in the files.
struct ConfigurationManager::KnownState {
    /// The files as they were at the last load: what saves must neither lose nor ignore; never
    /// null.
    std::shared_ptr<const ConfigurationManagerLayers> loaded;
    /// The files that give the object as it was last loaded, reset or saved; never null.
    std::shared_ptr<const ConfigurationManagerLayers> layers;
    /// The object as it was then, if it is not what a load from these files gives; null: it is.
    std::shared_ptr<const WrittenElement> written = nullptr;
    /// The object before a reset from the user's file alone, whose locks stayed; null: there was
    /// none.
    std::shared_ptr<const ConfigurationObject> keptLocks = nullptr;
    /// The object was registered, but the files were not to be loaded.
    bool isLoadRefused = false;
};

} // namespace Orvant
