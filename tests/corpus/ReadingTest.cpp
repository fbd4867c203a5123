// Schemas of others are read, whatever they hold.

#include "CorpusFixture.h"
#include "Prunings.h"

#include <SchemaTestSupport.h>

namespace Orvant {
namespace {

using std::filesystem::path;
using Support::SchemaAnswers;

class CorpusReading : public CorpusTest {};

TEST(Corpus, HasManySchemas) {
    std::size_t schemas = 0;
    std::string missing;
    for (const Support::SchemaPackage& package : Support::schemaPackages()) {
        const std::size_t count = Support::schemasOf(package).size();
        schemas += count;
        if (count == 0)
            missing += ' ' + package.name;
    }
    if (!missing.empty())
        GTEST_SKIP() << "packages are missing:" << missing;
    EXPECT_LE(150u, schemas);
}

TEST_P(CorpusReading, ReadsEachSchema) {
    forEachSchema([](const path& schema) {
        const auto names = Support::namesUsedBy(Support::readFile(schema.string()));
        const bool isSchema = names && names->root == "schema" &&
                              names->rootNamespace == "http://www.w3.org/2001/XMLSchema";
        XsdConfigReader reader(FileName(schema.string()));
        const auto failure = Support::failureOf([&] { reader.readAnyXSD(); });
        EXPECT_EQ(isSchema, !failure.has_value());
        EXPECT_EQ(isSchema, !reader.getReadProblem().has_value());
        if (isSchema && reader.getReadProblem())
            ADD_FAILURE() << reader.getReadProblem()->line << ": "
                          << reader.getReadProblem()->message;
    });
}

TEST_P(CorpusReading, FindsWhatTheSuitesReaderFinds) {
    const Support::TemporaryDirectory directory;
    forEachReadSchema([&](const path& schema, XsdConfigReader& reader) {
        const FileName file = directory.file(
            "schema.xsd", Support::inSuiteDialect(Support::readFile(schema.string())));
        XsdConfigReader suite(file);
        suite.readXSD(true);
        const SchemaAnswers expected(suite);
        const SchemaAnswers answers(reader);
        EXPECT_EQ(expected.roots, answers.roots);
        for (const auto& [name, type] : expected.types) {
            ASSERT_TRUE(answers.types.contains(name)) << name;
            EXPECT_EQ(type.children, answers.types.at(name).children) << name;
            EXPECT_EQ(type.attributes, answers.types.at(name).attributes) << name;
        }
        EXPECT_EQ(expected.types.size(), answers.types.size());
    });
}

TEST_P(CorpusReading, NamesAllThatATypeUses) {
    forEachReadSchema([](const path& schema, XsdConfigReader& unfiltered) {
        const SchemaAnswers before(unfiltered);
        for (const std::string& type : Support::someTypesOf(before)) {
            SCOPED_TRACE(type);
            XsdConfigReader reader(FileName(schema.string()));
            reader.readAnyXSD();
            const auto used = reader.getTypesUsedBy(type);
            EXPECT_NE(used.end(), std::find(used.begin(), used.end(), type));
            reader.keepXSDElement(used);
            const SchemaAnswers after(reader);
            for (const std::string& name : used) {
                ASSERT_TRUE(before.types.contains(name)) << name;
                ASSERT_TRUE(after.types.contains(name)) << name;
                EXPECT_EQ(before.types.at(name).children, after.types.at(name).children) << name;
                EXPECT_EQ(before.types.at(name).attributes, after.types.at(name).attributes)
                    << name;
            }
        }
    });
}

FOR_EACH_PACKAGE(CorpusReading);

} // namespace
} // namespace Orvant
