#pragma once

#include "RandomDocuments.h"

#include <TestSupport.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// Mostly loaded and saved.
ConfigurationItemBase::Persistence randomPersistence(Random& random);

/// Mostly all products; the rest is not written by product 0.
ConfigurationItemBase::ProductType randomProducts(Random& random);

/// @return an object of random values and nested children with the names of random documents; its
///         factory makes objects like it with their defaults
/// @param depth how deep children are nested
std::shared_ptr<TestObject> randomObject(const std::string& name, Random& random, int depth = 3);

/// As randomObject(), but everything is loaded and saved, what stands in one element has different
/// names, and there are no lists, which are looked for at every depth.
std::shared_ptr<TestObject> randomPlainObject(const std::string& name, Random& random);

/// Sets some of the values of an object and its children.
void setRandomValues(ConfigurationObject& object, Random& random);

/// As setRandomValues(), but what is locked stays.
void setRandomUnlockedValues(ConfigurationObject& object, Random& random);

/// Texts that a document holds as they are.
inline const std::vector<std::string> fewTexts = {
    "",    " ",     "text",    "true", "12",         "-1", "1.5",          "ä", "<&>\"'", "\n",
    "]]>", "\r\n ", "a\tb  c", "--",   "\U0001F600", "1",  "a longer text"};

/// @return one of these texts
const std::string& randomText(Random& random);

} // namespace Orvant::Support
