#pragma once

#include <random>
#include <string>
#include <vector>

namespace Orvant::Support {

/// What is made at random is the same for the same seed.
using Random = std::mt19937;

template <typename Container>
const auto& anyOf(const Container& container, Random& random) {
    return container[random() % container.size()];
}

inline bool oneIn(unsigned int n, Random& random) {
    return random() % n == 0;
}

/// Documents, objects and questions use few names and keys, so that they often match.
inline const std::vector<std::string> fewNames = {"A",     "B",  "Value", "item", "Configuration",
                                                  "Größe", "nil"};
inline const std::vector<std::string> fewKeys = {"", "1", "k", "ä", "none"};

/// Declares the entities and default attributes that random documents use.
extern const std::string prolog;

/// @param root    start tag of the document element
/// @param breadth the greater, the more there is in it
/// @return a document of nested elements with texts of all kinds, and whatever else may be between
///         them
std::string randomDocument(const std::string& root, Random& random, int breadth = 1);

} // namespace Orvant::Support
