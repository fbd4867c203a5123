// Whatever is done with a writer, it must write what a literal one on a plain DOM does.

#include "DomConfigWriter.h"
#include "LayeredDomReader.h"
#include "RandomDocuments.h"
#include "RandomObjects.h"

#include <ConfigurationFramework/ConfigWriter.h>

#include <gtest/gtest.h>

#include <sstream>

namespace Orvant {
namespace {

using Support::anyOf;
using Support::DomConfigWriter;
using Support::fewKeys;
using Support::fewNames;
using Support::oneIn;
using Support::Random;
using Support::randomDocument;
using Support::randomText;
using Support::TestObject;

std::string randomComment(Random& random) {
    static const std::vector<std::string> comments = {"", "", "comment", "a--b-", "<ä>", "-"};
    return anyOf(comments, random);
}

/// An object with values that were loaded, set or are defaults.
std::shared_ptr<TestObject> randomLoadedObject(Random& random) {
    auto object = Support::randomObject(anyOf(fewNames, random), random);
    if (oneIn(2, random)) {
        Support::DomConfigReader reader(randomDocument("<Configuration>", random, 3));
        reader.getClassContents(object->getName(), *object);
    }
    if (oneIn(2, random))
        Support::setRandomValues(*object, random);
    return object;
}

/// Puts a value of a random type.
template <typename Writer>
void putAtRandom(Writer& writer, const std::string& name, Random& random) {
    const std::string comment = randomComment(random);
    const auto bits = static_cast<unsigned int>(random());
    const double number = bits / 1024.0;
    switch (random() % 10) {
    case 0:
        return writer.putString(name, randomText(random), comment);
    case 1:
        return writer.putString(randomText(random));
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
        return writer.putStringVector(name, {bits % 3, randomText(random)}, comment);
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
                       const std::string& key, Random& random) {
    const std::string comment = randomComment(random);
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
int operate(Writer& writer, Reader& reader, Random& random) {
    const std::string& name = anyOf(fewNames, random);
    const std::string& key = anyOf(fewKeys, random);
    const std::string comment = randomComment(random);
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
        putObjectAtRandom(writer, reader, name, key, random);
        return 0;
    default:
        putAtRandom(writer, name, random);
        return 0;
    }
}

/// The writer and the literal one, each with a reader of the documents that objects are compared
/// with; they get the same operations.
struct Pair {
    ConfigWriter& writer;
    DomConfigWriter& oracle;
    AdvancedConfigReader reader = {};
    Support::LayeredDomReader oracleReader = {};
    std::string trace = {};

    /// @return false when they do not do the same
    bool operate(Random& random, const std::function<std::string(const std::string&)>& shown) {
        random.discard(1);
        Random sameRandom = random;
        const int expected = Orvant::operate(oracle, oracleReader, sameRandom);
        EXPECT_EQ(expected, Orvant::operate(writer, reader, random)) << trace;
        EXPECT_EQ(shown(oracle.getAsString()), shown(writer.getAsString())) << trace;
        return !testing::Test::HasFailure();
    }

    void addReference(const std::string& document, AdvancedConfigReader::Priority priority) {
        oracleReader.addSource(document, {}, priority);
        EXPECT_EQ(0, reader.addStringSource(document, {}, priority, {"1"}));
        trace += "\nreference " + std::to_string(priority) + ":\n" + document;
    }
};

TEST(WriterEquivalence, HoldsForNewDocuments) {
    for (unsigned int seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        ConfigWriter writer("1<\"ä");
        DomConfigWriter oracle(DomConfigWriter::From::Version, "1<\"ä");
        Pair pair{writer, oracle};
        pair.trace = "seed " + std::to_string(seed);
        pair.addReference(randomDocument("<Configuration>", random, 3),
                          AdvancedConfigReader::System);
        for (int i = 0; i < 15; ++i)
            if (!pair.operate(random, [](const std::string& text) { return text; }))
                return;
    }
}

TEST(WriterEquivalence, HoldsForDocumentsThatAreOpened) {
    for (unsigned int seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        std::string document = randomDocument("<Configuration>", random, 2);
        if (oneIn(2, random)) // as most files are: printed before
            document = DomConfigWriter(DomConfigWriter::From::Document, document).getAsString();
        ConfigWriter writer(FileName(), document);
        DomConfigWriter oracle(DomConfigWriter::From::Document, document);
        Pair pair{writer, oracle};
        pair.trace = "seed " + std::to_string(seed) + ", opened:\n" + document;
        for (const auto priority : {AdvancedConfigReader::System, AdvancedConfigReader::User})
            if (oneIn(2, random))
                pair.addReference(randomDocument("<Configuration>", random, 3), priority);
        for (int i = 0; i < 6; ++i)
            if (!pair.operate(random, Support::describeConfiguration))
                return;
    }
}

} // namespace
} // namespace Orvant
