// What writeXSD() would not write of others' schemas is told.

#include "CorpusFixture.h"
#include "SchemaText.h"

#include <functional>
#include <map>
#include <set>

namespace Orvant {
namespace {

using std::filesystem::path;
using Support::CompiledSchema;
using Support::WrittenDocument;
using Support::WrittenElement;

using Losses = std::vector<XsdLoss>;

class CorpusLosses : public CorpusTest {
protected:
    /// @param test gets the file, its losses and what writeXSD() writes of it
    template <typename Test>
    void forEachWritten(const Test& test) {
        const Support::TemporaryDirectory directory;
        const FileName file = directory.file("written.xsd");
        forEachReadSchema([&](const path& schema, XsdConfigReader& reader) {
            reader.writeXSD(file, true);
            test(schema, reader.getLosses(), Support::readFile(file));
        });
    }
};

bool hasAny(const Losses& losses, const std::set<std::string>& effects) {
    return std::any_of(losses.begin(), losses.end(),
                       [&](const XsdLoss& loss) { return effects.contains(loss.effect); });
}

std::string describe(const Losses& losses) {
    std::string description = "losses:\n";
    std::set<std::string> told;
    for (const XsdLoss& loss : losses) {
        if (told.insert(loss.construct + loss.effect).second)
            description += std::to_string(loss.line) + ": " + loss.construct + " of " + loss.owner +
                           ": " + loss.effect + '\n';
    }
    return description;
}

/// @return how many elements of each name there are
std::map<std::string, int> countOf(const std::string& schema) {
    std::map<std::string, int> counts;
    const std::function<void(const WrittenElement&)> count = [&](const WrittenElement& element) {
        ++counts[element.name];
        std::for_each(element.children.begin(), element.children.end(), count);
    };
    const WrittenDocument document(schema);
    count(document.element());
    return counts;
}

TEST_P(CorpusLosses, AreInTheOrderOfTheFileAndComplete) {
    static const std::set<std::string> effects = {XsdLoss::notValid, XsdLoss::acceptsLess,
                                                  XsdLoss::acceptsMore, XsdLoss::documentationOnly};
    forEachReadSchema([](const path& schema, XsdConfigReader& reader) {
        const std::string text = Support::readFile(schema.string());
        const auto lines =
            static_cast<unsigned int>(std::count(text.begin(), text.end(), '\n')) + 1;
        unsigned int line = 1;
        for (const XsdLoss& loss : reader.getLosses()) {
            EXPECT_LE(line, loss.line) << loss.construct;
            line = loss.line;
            EXPECT_FALSE(loss.construct.empty());
            EXPECT_TRUE(effects.contains(loss.effect)) << loss.effect;
        }
        EXPECT_LE(line, lines);
    });
}

TEST_P(CorpusLosses, TellWhetherWhatIsWrittenIsASchema) {
    forEachWritten([](const path& schema, const Losses& losses, const std::string& written) {
        if (!CompiledSchema::compile(schema, Support::readFile(schema.string())))
            return;
        EXPECT_EQ(hasAny(losses, {XsdLoss::notValid}),
                  !CompiledSchema::compile(schema, written).has_value())
            << describe(losses);
    });
}

TEST_P(CorpusLosses, AreNotEmptyWhereSomethingIsLost) {
    forEachWritten([](const path& schema, const Losses& losses, const std::string& written) {
        if (losses.empty()) {
            EXPECT_EQ(countOf(Support::readFile(schema.string())), countOf(written));
        }
    });
}

TEST_P(CorpusLosses, TellWhichDocumentsAreJudgedOtherwise) {
    forEachWritten([this](const path& schema, const Losses& losses, const std::string& text) {
        const auto original = CompiledSchema::compile(schema, Support::readFile(schema.string()));
        const auto documents = documentsFor(schema);
        if (!original || documents.empty())
            return;
        const auto written = CompiledSchema::compile(schema, text);
        for (const auto& document : documents) {
            const bool before = original->accepts(document.text);
            const bool after = written && written->accepts(document.text);
            EXPECT_TRUE(!before || after ||
                        hasAny(losses, {XsdLoss::notValid, XsdLoss::acceptsLess}))
                << document.name << " is refused\n"
                << describe(losses);
            EXPECT_TRUE(before || !after ||
                        hasAny(losses, {XsdLoss::acceptsLess, XsdLoss::acceptsMore}))
                << document.name << " is accepted\n"
                << describe(losses);
        }
    });
}

FOR_EACH_PACKAGE(CorpusLosses);

} // namespace
} // namespace Orvant
