#pragma once

#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <optional>
#include <string>
#include <vector>

namespace Orvant::Tool {

/// A value in an element.
struct ElementValue {
    const ConfigurationValueDescription* value;
    bool isLoaded; ///< a load takes it, and its class does not lock it
};

/// An object in an element.
struct ElementChild {
    const ConfigurationObjectDescription* object;
    bool isKind = false;                 ///< there is one for each key
    bool isRegistered = false;           ///< it is in the root
    std::optional<std::string> key = {}; ///< of one that is not of a kind
    bool isLoaded = true;                ///< like that of a value
};

/// What the element of an object holds: what is stored inline is among its own.
struct ElementContents {
    std::vector<ElementValue> values;
    std::vector<ElementChild> children;

    /// @return whether a load takes a value that is in it, at any depth
    bool hasLoadedValues() const;
};

/// @param catalogue must outlive the contents
ElementContents contentsOfRoot(const ConfigurationCatalogue& catalogue);
/// @param child what it points to must outlive the contents
ElementContents contentsOf(const ElementChild& child);

} // namespace Orvant::Tool
