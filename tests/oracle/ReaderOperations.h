#pragma once

#include "RandomDocuments.h"

#include <ConfigurationFramework/ConfigReader.h>

#include <ostream>

namespace Orvant::Support {

/// Runs a random operation of those that all readers have and writes the answers down.
void askAtRandom(ConfigReader& reader, Random& random, std::ostream& record);

} // namespace Orvant::Support
