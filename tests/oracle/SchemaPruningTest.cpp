// A pruned schema must be what its file was, without what the filters removed.

#include "SchemaGenerator.h"
#include "ValidSchema.h"

#include <PruningTestSupport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {
namespace {

using Support::SchemaFilter;
using Support::SchemaGenerator;
using Support::Strings;

void apply(const SchemaFilter& filter, XsdConfigReader& reader) {
    if (filter.kind == SchemaFilter::Elements)
        reader.keepXSDElement(filter.names);
    else if (filter.kind == SchemaFilter::ChildElement)
        reader.keepXSDChildElement(filter.type, filter.names);
    else
        reader.keepXSDChildAttributes(filter.type, filter.names);
}

/// Expects that each character of a text is in another, in this order.
void expectOnlyCut(const std::string& pruned, const std::string& whole) {
    auto next = pruned.begin();
    for (const char c : whole)
        if (next != pruned.end() && *next == c)
            ++next;
    EXPECT_TRUE(next == pruned.end()) << "made up: " << std::string(next, pruned.end());
}

using Parts = std::multiset<std::string>;

/// @return what a schema holds, except in these types
Parts partsOf(XsdConfigReader& reader, const std::set<std::string>& otherTypes) {
    Parts parts;
    for (const auto& [name, type] : reader.getXsdTree()) {
        if (otherTypes.contains(name))
            continue;
        parts.insert(name);
        for (const auto& child : type->children)
            parts.insert(name + '/' + child->name);
        for (const std::string& attribute : type->attributes)
            parts.insert(name + "/@" + attribute);
    }
    return parts;
}

/// Expects that what is read of a pruned schema is what the reader has and what stayed. A type that
/// stayed may hide another one of its name.
void expectReadBack(XsdConfigReader& reader, const Support::Pruned& pruned,
                    const Support::TemporaryDirectory& directory) {
    XsdConfigReader again(directory.file("pruned.xsd", pruned.text));
    again.readXSD(true);
    const std::set<std::string> stayed(pruned.stayed.begin(), pruned.stayed.end());
    const Parts read = partsOf(again, stayed);
    const Parts expected = partsOf(reader, stayed);
    EXPECT_TRUE(std::ranges::includes(read, expected)) << testing::PrintToString(expected);
    Parts more;
    std::ranges::set_difference(read, expected, std::inserter(more, more.end()));
    for (const std::string& part : more)
        EXPECT_TRUE(stayed.contains(part)) << "not removed: " << part;
    if (stayed.empty()) {
        EXPECT_EQ(Support::answersOf(reader), Support::answersOf(again));
    }
}

void expectPruned(SchemaGenerator::Kind kind, std::uint32_t firstSeed, std::uint32_t count) {
    const Support::TemporaryDirectory directory;
    std::uint32_t cut = 0;
    for (std::uint32_t seed = firstSeed; seed < firstSeed + count; ++seed) {
        SchemaGenerator generator(seed, kind);
        const std::string schema = generator.schema();
        const ::testing::ScopedTrace trace(__FILE__, __LINE__,
                                           "seed " + std::to_string(seed) + '\n' + schema);
        XsdConfigReader reader(directory.file("schema.xsd", schema));
        if (Support::failureOf([&] { reader.readXSD(true); }))
            continue;
        EXPECT_EQ(schema, Support::prunedBy(reader).text);
        for (std::uint32_t filters = seed % 4; filters > 0; --filters)
            apply(generator.filter(), reader);
        Support::Pruned pruned;
        const auto failure = Support::failureOf([&] { pruned = Support::prunedBy(reader); });
        if (failure) {
            EXPECT_EQ(ConfigException::ParserReportedErrors, failure);
            EXPECT_EQ(SchemaGenerator::Odd, kind);
            continue;
        }
        cut += pruned.text != schema;
        expectOnlyCut(pruned.text, schema);
        expectReadBack(reader, pruned, directory);
        if (::testing::Test::HasFailure())
            return;
    }
    EXPECT_GT(cut, count / 4);
}

TEST(SchemaPruning, LosesWhatFiltersRemoveFromOddSchemas) {
    expectPruned(SchemaGenerator::Odd, 1, 500);
}

TEST(SchemaPruning, LosesWhatFiltersRemoveFromValidSchemas) {
    expectPruned(SchemaGenerator::Valid, 100'001, 250);
}

/// What Xerces says of schemas.
class SchemaCheck : private xercesc::HandlerBase {
public:
    SchemaCheck() { xercesc::XMLPlatformUtils::Initialize(); }
    SchemaCheck(const SchemaCheck&) = delete;
    SchemaCheck& operator=(const SchemaCheck&) = delete;
    ~SchemaCheck() override { xercesc::XMLPlatformUtils::Terminate(); }

    /// @return what is wrong with a schema
    std::string errorsOf(const std::string& schema) {
        m_errors.clear();
        xercesc::XercesDOMParser parser;
        parser.setErrorHandler(this);
        parser.setDoNamespaces(true);
        parser.setDoSchema(true);
        parser.setValidationSchemaFullChecking(true);
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(schema.data()),
                                                schema.size(), "schema");
        parser.loadGrammar(source, xercesc::Grammar::SchemaGrammarType);
        return m_errors;
    }

private:
    void error(const xercesc::SAXParseException& e) override {
        char* message = xercesc::XMLString::transcode(e.getMessage());
        m_errors += std::to_string(e.getLineNumber()) + ": " + message + '\n';
        xercesc::XMLString::release(&message);
    }
    void fatalError(const xercesc::SAXParseException& e) override { error(e); }

    std::string m_errors;
};

void filter(XsdConfigReader& reader, Support::ValidSchema& schema, unsigned int kind) {
    if (kind == 0)
        reader.keepXSDElement(schema.someOf(schema.types()));
    else if (kind == 1)
        reader.keepXSDChildElement(schema.anyOf(schema.types()), schema.someOf(schema.parts()));
    else if (kind == 2)
        reader.keepXSDElement(reader.getTypesUsedBy(schema.anyOf(schema.types())));
    else
        for (const std::string& type : schema.types())
            reader.keepXSDChildAttributes(type, schema.someOf(schema.parts()));
}

TEST(SchemaPruning, LeavesAValidSchema) {
    const Support::TemporaryDirectory directory;
    SchemaCheck check;
    EXPECT_NE("", check.errorsOf("<schema xmlns='http://www.w3.org/2001/XMLSchema'>"
                                 "<element name='a' type='missing'/></schema>"));
    std::size_t cut = 0;
    std::size_t stayed = 0;
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        Support::ValidSchema schema(seed);
        std::string trace = "seed " + std::to_string(seed) + '\n' + schema.text();
        ASSERT_EQ("", check.errorsOf(schema.text())) << trace;
        XsdConfigReader reader(directory.file("schema.xsd", schema.text()));
        reader.readAnyXSD();
        for (unsigned int i = 0; i < 2; ++i) {
            filter(reader, schema, seed / (i == 0 ? 1 : 4) % 4);
            const Support::Pruned pruned = Support::prunedBy(reader);
            cut += pruned.text != schema.text();
            stayed += pruned.stayed.size();
            trace += "\npruned:\n" + pruned.text;
            ASSERT_EQ("", check.errorsOf(pruned.text)) << trace;
            expectOnlyCut(pruned.text, schema.text());
        }
    }
    EXPECT_GT(cut, 100U);
    EXPECT_GT(stayed, 100U);
}

TEST(SchemaPruning, LosesNothingOfWhatAKeptTypeUses) {
    const Support::TemporaryDirectory directory;
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        Support::ValidSchema schema(seed);
        const ::testing::ScopedTrace trace(__FILE__, __LINE__,
                                           "seed " + std::to_string(seed) + '\n' + schema.text());
        XsdConfigReader reader(directory.file("schema.xsd", schema.text()));
        reader.readAnyXSD();
        const Strings used = reader.getTypesUsedBy(schema.anyOf(schema.types()));
        const auto whole = reader.getXsdTree();
        reader.keepXSDElement(used);
        XsdConfigReader pruned(directory.file("pruned.xsd", Support::prunedBy(reader).text));
        pruned.readAnyXSD();
        for (const std::string& type : used) {
            const auto left = pruned.getXsdTree().at(type);
            EXPECT_EQ(whole.at(type)->children.size(), left->children.size()) << type;
            EXPECT_EQ(whole.at(type)->attributes, left->attributes) << type;
        }
    }
}

} // namespace
} // namespace Orvant
