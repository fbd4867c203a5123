// What is written of others' schemas is the file without what the filters removed, and as valid.

#include "CorpusFixture.h"
#include "Prunings.h"
#include "SchemaText.h"

#include <map>
#include <set>
#include <sstream>

namespace Orvant {
namespace {

using std::filesystem::path;
using Support::CompiledSchema;
using Support::CutElement;
using Support::namesIn;
using Support::Pruning;
using Support::SchemaCut;
using Support::withoutPrefix;
using Support::WrittenDocument;
using Support::WrittenElement;

using Names = std::multiset<std::string>;

class CorpusPruning : public CorpusTest {
protected:
    /// @param test gets the file, a filter with what is written after it, and what that cuts out
    template <typename Test>
    void forEachPruning(const Test& test) {
        forEachReadSchema([&](const path& schema, XsdConfigReader&) {
            const std::string text = Support::readFile(schema.string());
            const WrittenDocument original(text);
            for (const Pruning& pruning : Support::pruningsOf(schema)) {
                SCOPED_TRACE(pruning.filter);
                ASSERT_TRUE(Support::isWellFormed(pruning.written));
                const WrittenDocument written(pruning.written);
                test(schema, pruning, SchemaCut(original, written));
            }
        });
    }
};

std::string nameOf(const WrittenElement& element) {
    return element.attribute("name");
}

std::string typeOf(const WrittenElement& element) {
    return withoutPrefix(element.attribute("type"));
}

/// Names of what was cut.
struct CutNames {
    explicit CutNames(const SchemaCut& cut) {
        for (const auto& [element, owner, isInInlineType] : cut.elements()) {
            if (element == owner)
                (element->name == "element" ? roots : types).insert(nameOf(*element));
            else if (isInInlineType)
                typesOfInlineChildren.insert(typeOf(*element));
            else
                (element->name == "attribute" ? attributes : children)[nameOf(*owner)].insert(
                    nameOf(*element));
        }
    }

    Names types;
    Names roots;
    std::map<std::string, Names> children; ///< by type
    std::map<std::string, Names> attributes;
    Names typesOfInlineChildren; ///< which the tree does not have
};

Names lostOf(const std::vector<std::string>& before, const std::vector<std::string>& after) {
    Names lost(before.begin(), before.end());
    for (const std::string& name : after)
        lost.extract(name);
    return lost;
}

std::vector<std::string> firstWords(std::vector<std::string> lines) {
    for (std::string& line : lines)
        line.erase(line.find(' '));
    return lines;
}

/// What should have been cut: what the tree lost, except what the writing call says.
struct LostNames {
    explicit LostNames(const Pruning& pruning) {
        for (const auto& [name, type] : pruning.before.types) {
            const auto after = pruning.after.types.find(name);
            if (after == pruning.after.types.end()) {
                types.insert(name);
                continue;
            }
            children[name] = lostOf(firstWords(type.children), firstWords(after->second.children));
            attributes[name] = lostOf(type.attributes, after->second.attributes);
        }
        for (const std::string& stayed : pruning.stayed)
            take(stayed);
    }

    Names types;
    std::map<std::string, Names> children;
    std::map<std::string, Names> attributes;

private:
    void take(const std::string& stayed) {
        const std::size_t slash = stayed.find('/');
        const std::string type = stayed.substr(0, slash);
        const std::string part = slash == std::string::npos ? "" : stayed.substr(slash + 1);
        const bool known = part.empty()          ? !types.extract(type).empty()
                           : part.front() == '@' ? !attributes[type].extract(part.substr(1)).empty()
                                                 : takeChild(children[type], part);
        EXPECT_TRUE(known) << "was not removed: " << stayed;
    }

    /// In the tree, a child that refers to a root element has no name.
    static bool takeChild(Names& ofType, const std::string& name) {
        return !ofType.extract(name).empty() || !ofType.extract("").empty();
    }
};

void expectCutsOf(const Pruning& pruning, const SchemaCut& cut) {
    const WrittenElement& original = cut.original().element();
    const WrittenElement& result = cut.result().element();
    const CutNames names(cut);
    LostNames lost(pruning);
    EXPECT_EQ(lost.types, names.types);
    const auto used = namesIn(result, {"base", "itemType", "memberTypes", "type"});
    for (const std::string& stayed : pruning.stayed) {
        EXPECT_TRUE(stayed.find('/') != std::string::npos || used.contains(stayed))
            << "nothing names " << stayed;
    }
    std::erase_if(lost.children, [](const auto& type) { return type.second.empty(); });
    std::erase_if(lost.attributes, [](const auto& type) { return type.second.empty(); });
    EXPECT_EQ(lost.children, names.children);
    EXPECT_EQ(lost.attributes, names.attributes);
    for (const std::string& type : names.typesOfInlineChildren) {
        EXPECT_TRUE(pruning.before.types.contains(type) && !pruning.after.types.contains(type))
            << "child of " << type;
    }
    const auto referredTo = namesIn(result, {"ref", "substitutionGroup"});
    for (const WrittenElement& declaration : original.children) {
        if (declaration.name != "element" || !pruning.before.types.contains(typeOf(declaration)))
            continue;
        const std::string name = nameOf(declaration);
        const bool removed = !pruning.after.types.contains(typeOf(declaration));
        EXPECT_TRUE(removed || !names.roots.contains(name)) << "root element " << name;
        EXPECT_TRUE(!removed || names.roots.contains(name) || referredTo.contains(name))
            << "root element " << name;
    }
}

/// @return whether a document has an element, attribute or type of a name that was cut
bool usesAnyOf(const Support::UsedNames& used, const SchemaCut& cut) {
    return std::any_of(cut.elements().begin(), cut.elements().end(), [&](const CutElement& one) {
        const auto& element = *one.element;
        const std::string name =
            nameOf(element).empty() ? element.attribute("ref") : nameOf(element);
        const auto& names = element.name == "element"     ? used.elements
                            : element.name == "attribute" ? used.attributes
                                                          : used.types;
        return names.contains(withoutPrefix(name));
    });
}

/// @return whether a declaration was cut out that may be named by files that the schema uses, into
///         which nobody looks
bool needsAnyOf(const path& schema, const SchemaCut& cut) {
    const auto needed = Support::namesInSchemasUsedBy(schema);
    return std::any_of(cut.elements().begin(), cut.elements().end(), [&](const CutElement& one) {
        return one.element == one.owner && needed.contains(nameOf(*one.element));
    });
}

TEST_P(CorpusPruning, WritesTheVeryBytesWithoutAFilter) {
    const Support::TemporaryDirectory directory;
    const FileName file = directory.file("written.xsd");
    forEachReadSchema([&](const path& schema, XsdConfigReader& reader) {
        const std::string original = Support::readFile(schema.string());
        EXPECT_TRUE(reader.writePrunedXSD(file).empty());
        EXPECT_EQ(original, Support::readFile(file));
        std::ostringstream out;
        EXPECT_TRUE(reader.writePrunedXSD(out).empty());
        EXPECT_EQ(original, out.str());
    });
}

TEST_P(CorpusPruning, CutsOutWhatTheFiltersRemoved) {
    forEachPruning([](const path&, const Pruning& pruning, const SchemaCut& cut) {
        ASSERT_EQ("", cut.difference());
        expectCutsOf(pruning, cut);
    });
}

TEST_P(CorpusPruning, LeavesValidSchemasValid) {
    forEachPruning([](const path& schema, const Pruning& pruning, const SchemaCut& cut) {
        if (!needsAnyOf(schema, cut) && !CompiledSchema::compile(schema, pruning.written)) {
            EXPECT_FALSE(CompiledSchema::compile(schema, Support::readFile(schema.string())));
        }
    });
}

TEST_P(CorpusPruning, JudgesDocumentsAsBeforeThatUseNothingThatWasCut) {
    forEachReadSchema([this](const path& schema, XsdConfigReader&) {
        const std::string text = Support::readFile(schema.string());
        const auto compiled = CompiledSchema::compile(schema, text);
        const auto documents = documentsFor(schema);
        if (!compiled || documents.empty())
            return;
        const WrittenDocument original(text);
        for (const Pruning& pruning : Support::pruningsOf(schema)) {
            SCOPED_TRACE(pruning.filter);
            const WrittenDocument written(pruning.written);
            const SchemaCut cut(original, written);
            if (needsAnyOf(schema, cut))
                continue;
            const auto pruned = CompiledSchema::compile(schema, pruning.written);
            ASSERT_TRUE(pruned);
            for (const auto& document : documents) {
                if (!usesAnyOf(document.names, cut)) {
                    EXPECT_EQ(compiled->accepts(document.text), pruned->accepts(document.text))
                        << document.name;
                }
            }
        }
    });
}

FOR_EACH_PACKAGE(CorpusPruning);

} // namespace
} // namespace Orvant
