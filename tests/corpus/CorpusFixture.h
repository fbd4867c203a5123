#pragma once

#include "Packages.h"
#include "Validation.h"

#include <TestSupport.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/XsdConfigReader.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A document, and the names in it.
struct CorpusDocument {
    std::string name; ///< to tell which one it is
    std::string text;
    UsedNames names;
};

/// Does a test for each schema of a package.
class CorpusTest : public testing::TestWithParam<SchemaPackage> {
protected:
    void SetUp() override {
        m_schemas = schemasOf(GetParam());
        if (m_schemas.empty())
            GTEST_SKIP() << "the package " << GetParam().name
                         << " has no files here: scripts/bootstrap.sh test installs it";
    }

    /// Ends after a few schemas that fail.
    /// @param test gets the file
    template <typename Test>
    void forEachSchema(const Test& test) {
        for (const std::filesystem::path& schema : m_schemas) {
            SCOPED_TRACE(schema);
            test(schema);
            if (testing::UnitTest::GetInstance()
                    ->current_test_info()
                    ->result()
                    ->total_part_count() > mostFailures)
                return;
        }
    }

    /// The same for those that readAnyXSD() reads.
    /// @param test gets the file and its reader
    template <typename Test>
    void forEachReadSchema(const Test& test) {
        forEachSchema([&](const std::filesystem::path& schema) {
            XsdConfigReader reader(FileName(schema.string()));
            try {
                reader.readAnyXSD();
            } catch (ConfigException&) {
                return; // another test tells
            }
            test(schema, reader);
        });
    }

    /// @return documents of the package that the schema is for, and changed ones
    std::vector<CorpusDocument> documentsFor(const std::filesystem::path& schema) const;

private:
    static constexpr int mostFailures = 12;

    std::vector<std::filesystem::path> m_schemas;
};

inline std::string packageName(const testing::TestParamInfo<SchemaPackage>& package) {
    std::string name = package.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

} // namespace Orvant::Support

namespace Orvant {
using Support::CorpusTest;
} // namespace Orvant

/// Runs the tests of a file for each package.
#define FOR_EACH_PACKAGE(TEST_SUITE)                                                               \
    INSTANTIATE_TEST_SUITE_P(Package, TEST_SUITE, testing::ValuesIn(Support::schemaPackages()),    \
                             Support::packageName)
