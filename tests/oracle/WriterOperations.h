#pragma once

#include "RandomObjects.h"

#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// What is written at random, and what it is written into.
struct Words {
    std::vector<std::string> names = fewNames;
    std::vector<std::string> keys = fewKeys;
    std::vector<std::string> texts = fewTexts;
    std::vector<std::string> comments = {"", "", "comment", "a--b-", "<ä>", "-"};
};

/// @return an object with values that were loaded, set or are defaults
std::shared_ptr<TestObject> randomLoadedObject(Random& random);

/// Puts a value of a random type.
template <typename Writer>
void putAtRandom(Writer& writer, const std::string& name, const Words& words, Random& random) {
    const std::string& comment = anyOf(words.comments, random);
    const auto bits = static_cast<unsigned int>(random());
    const double number = bits / 1024.0;
    switch (random() % 10) {
    case 0:
        return writer.putString(name, anyOf(words.texts, random), comment);
    case 1:
        return writer.putString(anyOf(words.texts, random));
    case 2:
        return writer.putInt(name, static_cast<int>(bits), comment);
    case 3:
        return writer.putUnsignedInt(name, bits, comment);
    case 4:
        return writer.putFloat(name, static_cast<float>(number), comment);
    case 5:
        return writer.putDouble(name, oneIn(2, random) ? number : number * 1e-12, comment);
    case 6:
        return writer.putBool(name, oneIn(2, random), comment);
    case 7:
        return writer.putStringVector(name, {bits % 3, anyOf(words.texts, random)}, comment);
    case 8:
        return writer.putValue(name, static_cast<float>(number), static_cast<int>(bits % 2),
                               comment);
    default:
        return writer.putValue(name, number, static_cast<int>(bits % 2), comment);
    }
}

/// Puts an object, in full or what differs from what a reader holds.
template <typename Writer, typename Reader>
void putObjectAtRandom(Writer& writer, Reader& reader, const std::string& name,
                       const std::string& key, const Words& words, Random& random) {
    const std::string& comment = anyOf(words.comments, random);
    const auto object = randomLoadedObject(random);
    switch (random() % 6) {
    case 0:
        return writer.putClassContents(*object);
    case 1:
        return writer.putClassContents(name, *object, comment);
    case 2:
        return writer.putClassContents(name, key, *object, comment);
    case 3:
        return writer.putOnlyDifferentClassContents(name, key, *object, reader, comment);
    default:
        return writer.putOnlyDifferentClassContents(name, *object, reader, comment);
    }
}

/// Runs a random operation.
/// @return its result
template <typename Writer, typename Reader>
int operateAtRandom(Writer& writer, Reader& reader, const Words& words, Random& random) {
    const std::string& name = anyOf(words.names, random);
    const std::string& key = anyOf(words.keys, random);
    const std::string& comment = anyOf(words.comments, random);
    switch (random() % 14) {
    case 0:
        writer.createNode(name, comment);
        return 0;
    case 1:
        writer.createKeyedNode(name, key, comment);
        return 0;
    case 2:
        writer.createNodeAndMakeCurrent(name, comment);
        return 0;
    case 3:
        writer.createKeyedNodeAndMakeCurrent(name, key, comment);
        return 0;
    case 4:
        return static_cast<int>(writer.setCurrentNode(name));
    case 5:
        return static_cast<int>(writer.setCurrentKeyedNode(name, key));
    case 6:
        writer.deleteNodes(name, key);
        return 0;
    case 7:
    case 8:
    case 9:
        putObjectAtRandom(writer, reader, name, key, words, random);
        return 0;
    default:
        putAtRandom(writer, name, words, random);
        return 0;
    }
}

} // namespace Orvant::Support
