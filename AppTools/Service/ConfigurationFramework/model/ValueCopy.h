#pragma once

namespace Orvant {

class ConfigurationValueBase;

/// Makes a value a copy of another, where both are of one of the library's own classes and of the
/// same one; a class of the application's may be more than what it inherits.
/// @return false when they are not, and nothing was done
bool assignSameType(ConfigurationValueBase& value, const ConfigurationValueBase& original);

} // namespace Orvant
