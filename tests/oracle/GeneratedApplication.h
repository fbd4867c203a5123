#pragma once

#include "RandomDocuments.h"

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationObject.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// What an application registers.
struct Registered {
    std::string name;
    std::shared_ptr<ConfigurationObject> object;
    bool isKeyed;
};

/// @return objects of classes that declare anything that a catalogue can tell
std::vector<Registered> generateApplication(Random& random);

/// @return a file that fits the objects here and there, with mistakes of all kinds
std::string generateFile(const std::vector<Registered>& registered, Random& random);

/// Registers new objects as KeyedSettings and applications do.
void registerAll(const std::vector<Registered>& registered, ConfigurationManager& manager);

/// @return the catalogue of the objects
ConfigurationCatalogue catalogueOf(const std::vector<Registered>& registered);

} // namespace Orvant::Support
