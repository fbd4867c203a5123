#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>

namespace Orvant {

class AdvancedConfigReader;

/// Whether a registered object is what a reader would load it as, locks included. What the object
/// does not load does not count.
/// @throws std::logic_error when the factory of the object returns null
bool isUpToDate(const ConfigurationRegistration& registration, AdvancedConfigReader& reader);

/// Loads a registered object as if it were new, so that locks and values that are gone do not stay,
/// and signals its observers. Values that are not loaded stay.
/// @throws std::logic_error when the factory of the object returns null
void loadAnew(const ConfigurationRegistration& registration, AdvancedConfigReader& reader);

} // namespace Orvant
