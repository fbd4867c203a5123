// What the schema service answers and writes must be what a literal, slow oracle makes of the same
// file and the same filters.

#include "SchemaGenerator.h"
#include "SchemaOracle.h"

#include <SchemaTestSupport.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace Orvant {
namespace {

using Support::SchemaFilter;
using Support::SchemaGenerator;
using Support::SchemaOracle;
using Support::Strings;

/// Writes down all that a reader answers about its types and root elements.
std::string answersOf(XsdConfigReader& reader) {
    std::string answers;
    const auto types = reader.getXsdTree();
    for (const auto& [key, type] : types) {
        answers += "type " + key + " named " + type->name + '\n';
        EXPECT_EQ(key, type->type);
        EXPECT_EQ(0, type->minOccurs);
        EXPECT_EQ("Unbounded", type->maxOccurs);
        Support::Pairs children;
        for (const auto& child : type->children) {
            answers += "  child " + child->name + ": " + child->type + ' ' +
                       std::to_string(child->minOccurs) + ".." + child->maxOccurs + '\n';
            children.emplace_back(child->name, child->type);
        }
        for (const std::string& attribute : type->attributes)
            answers += "  attribute " + attribute + '\n';
        EXPECT_EQ(children, reader.getSubTypes(key));
        EXPECT_EQ(type->attributes, reader.getAttributes(key));
    }
    Support::Pairs roots;
    for (const auto& root : reader.getXsdRootelements()) {
        answers += "root " + root->name + ": " + root->type + '\n';
        roots.emplace_back(root->name, root->type);
        EXPECT_EQ(types.at(root->type), root);
    }
    EXPECT_EQ(roots, reader.getRootelements());
    return answers;
}

void apply(const SchemaFilter& filter, XsdConfigReader& reader) {
    if (filter.kind == SchemaFilter::Elements)
        reader.keepXSDElement(filter.names);
    else if (filter.kind == SchemaFilter::ChildElement)
        reader.keepXSDChildElement(filter.type, filter.names);
    else
        reader.keepXSDChildAttributes(filter.type, filter.names);
}

void apply(const SchemaFilter& filter, SchemaOracle& oracle) {
    const SchemaOracle::Names names(filter.names.begin(), filter.names.end());
    if (filter.kind == SchemaFilter::Elements)
        oracle.keepElements(names);
    else if (filter.kind == SchemaFilter::ChildElement)
        oracle.keepChildElement(filter.type, names);
    else
        oracle.keepChildAttributes(filter.type, names);
}

std::string describe(const SchemaFilter& filter) {
    static const Strings names = {"keepXSDElement(", "keepXSDChildElement(",
                                  "keepXSDChildAttributes("};
    std::string description = names[filter.kind];
    if (filter.kind != SchemaFilter::Elements)
        description += '"' + filter.type + "\", ";
    description += '{';
    for (const std::string& name : filter.names)
        description += '"' + name + "\", ";
    return description + "})\n";
}

/// Reader and oracle of one file, which get the same questions.
class Comparison {
public:
    /// @param trace what to tell when they differ
    Comparison(const Support::TemporaryDirectory& directory, SchemaGenerator::Kind kind,
               const std::string& trace)
        : m_directory(directory), m_kind(kind), m_trace(trace) {}

    /// @return false when neither can read the file
    bool read(const std::string& bytes) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, m_trace);
        m_oracle.reset();
        const auto expected = Support::failureOf([&] { m_oracle = SchemaOracle(bytes, true); });
        const FileName file = m_directory.file("schema.xsd", bytes);
        m_reader = std::make_unique<XsdConfigReader>(file);
        EXPECT_EQ(expected, Support::failureOf([&] { m_reader->readXSD(true); }));
        EXPECT_EQ(bytes, Support::readFile(file));
        if (!m_oracle || ::testing::Test::HasFailure())
            return false;
        m_declared = m_oracle->declared();
        EXPECT_EQ(m_oracle->tree(), answersOf(*m_reader));
        return true;
    }

    void filter(const SchemaFilter& filter) {
        m_trace += describe(filter);
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, m_trace);
        apply(filter, *m_oracle);
        apply(filter, *m_reader);
        EXPECT_EQ(m_oracle->tree(), answersOf(*m_reader));
    }

    /// @param bothForms whether to write one without output fix, too
    void write(bool bothForms) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, m_trace);
        const FileName file = m_directory.file("written.xsd");
        const std::string expected = m_oracle->written(true);
        m_reader->writeXSD(file, true);
        const std::string written = Support::readFile(file);
        ASSERT_EQ(Support::describeDocument(expected), Support::describeDocument(written));
        expectSameReadBack(file, expected, true);

        if (!bothForms)
            return;
        m_reader->writeXSD(file, false);
        ASSERT_EQ(Support::describeDocument(m_oracle->written(false)),
                  Support::describeDocument(Support::readFile(file)));
        expectSameReadBack(file, m_oracle->written(false), false);
    }

private:
    /// @param written what the oracle makes of the file
    void expectSameReadBack(const FileName& file, const std::string& written, bool sanitise) {
        XsdConfigReader back(file);
        std::optional<SchemaOracle> expected;
        const auto failure =
            Support::failureOf([&] { expected = SchemaOracle(written, sanitise); });
        ASSERT_EQ(failure, Support::failureOf([&] { back.readXSD(sanitise); }));
        if (!expected)
            return;
        EXPECT_EQ(expected->tree(), answersOf(back));
        if (m_kind == SchemaGenerator::Valid || !sanitise) {
            EXPECT_EQ(m_oracle->tree(), answersOf(back));
        }
        if (m_oracle->tookFirstTypes())
            return;
        const SchemaOracle::Names declared = expected->declared();
        for (const std::string& name : expected->namedOf(m_declared))
            EXPECT_TRUE(declared.contains(name)) << name << " is missing in what is written";
    }

    const Support::TemporaryDirectory& m_directory;
    SchemaGenerator::Kind m_kind;
    std::string m_trace;
    std::optional<SchemaOracle> m_oracle;
    std::unique_ptr<XsdConfigReader> m_reader;
    SchemaOracle::Names m_declared;
};

/// Puts temporary files into memory if there is a place for them: each rewriting of a file ends in
/// a rename, which is slow on disks.
class FilesInMemory : public ::testing::Environment {
public:
    void SetUp() override {
        if (std::filesystem::is_directory("/dev/shm"))
            ::setenv("TMPDIR", "/dev/shm", 1);
    }
};

const ::testing::Environment* const filesInMemory =
    ::testing::AddGlobalTestEnvironment(new FilesInMemory);

/// A seed that fails is enough to repeat it: what it makes does not depend on those before it.
void expectSame(SchemaGenerator::Kind kind, std::uint32_t firstSeed, std::uint32_t count) {
    const Support::TemporaryDirectory directory;
    std::uint32_t readable = 0;
    for (std::uint32_t seed = firstSeed; seed < firstSeed + count; ++seed) {
        SchemaGenerator generator(seed, kind);
        const std::string schema = generator.schema();
        Comparison comparison(directory, kind, "seed " + std::to_string(seed) + '\n' + schema);
        if (comparison.read(schema)) {
            ++readable;
            for (std::uint32_t filters = seed % 4; filters > 0; --filters)
                comparison.filter(generator.filter());
            comparison.write(seed % 5 == 0);
        }
        if (::testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(readable, count / 2);
}

TEST(SchemaEquivalence, HoldsOnOddSchemas) {
    expectSame(SchemaGenerator::Odd, 1, 1500);
}

TEST(SchemaEquivalence, HoldsOnValidSchemas) {
    expectSame(SchemaGenerator::Valid, 100'001, 500);
}

} // namespace
} // namespace Orvant
