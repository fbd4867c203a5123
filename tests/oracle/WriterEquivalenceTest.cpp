// Whatever is done with a writer, it must write what a literal one on a plain DOM does.

#include "DomConfigWriter.h"
#include "LayeredDomReader.h"
#include "RandomDocuments.h"
#include "WriterOperations.h"

#include <ConfigurationFramework/ConfigWriter.h>

#include <gtest/gtest.h>

#include <sstream>

namespace Orvant {
namespace {

using Support::DomConfigWriter;
using Support::oneIn;
using Support::operateAtRandom;
using Support::Random;
using Support::randomDocument;
using Support::Words;

/// The writer and the literal one, each with a reader of the documents that objects are compared
/// with; they get the same operations.
struct Pair {
    ConfigWriter& writer;
    DomConfigWriter& oracle;
    AdvancedConfigReader reader = {};
    Support::LayeredDomReader oracleReader = {};
    std::string trace = {};
    Words words = {};

    /// @return false when they do not do the same
    bool operate(Random& random, const std::function<std::string(const std::string&)>& shown) {
        random.discard(1);
        Random sameRandom = random;
        const int expected = operateAtRandom(oracle, oracleReader, words, sameRandom);
        EXPECT_EQ(expected, operateAtRandom(writer, reader, words, random)) << trace;
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
