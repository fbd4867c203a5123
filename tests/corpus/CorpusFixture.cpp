#include "CorpusFixture.h"

#include "SchemaText.h"

namespace Orvant::Support {

namespace {

using std::filesystem::path;

constexpr std::size_t documentsToChange = 6;

bool declares(const path& schema, const UsedNames& names) {
    const std::string text = readFile(schema.string());
    const WrittenDocument document(text);
    if (document.element().attribute("targetNamespace") != names.rootNamespace)
        return false;
    const auto& declarations = document.element().children;
    return std::any_of(declarations.begin(), declarations.end(), [&](const WrittenElement& one) {
        return one.name == "element" && one.attribute("name") == names.root;
    });
}

/// Documents beside a schema that declares their root element are only for that one.
bool isFor(const path& document, const UsedNames& names, const path& schema,
           const std::vector<path>& schemas) {
    if (!declares(schema, names))
        return false;
    return schema.parent_path() == document.parent_path() ||
           std::none_of(schemas.begin(), schemas.end(), [&](const path& other) {
               return other.parent_path() == document.parent_path() && declares(other, names);
           });
}

} // namespace

std::vector<CorpusDocument> CorpusTest::documentsFor(const path& schema) const {
    std::vector<CorpusDocument> documents;
    const auto add = [&](const std::string& name, const std::string& text) {
        if (const auto names = namesUsedBy(text))
            documents.push_back({name, text, *names});
    };
    std::size_t count = 0;
    for (const path& file : documentsOf(GetParam())) {
        const std::string text = readFile(file.string());
        const auto names = namesUsedBy(text);
        if (!names || !isFor(file, *names, schema, m_schemas))
            continue;
        add(file, text);
        if (++count > documentsToChange)
            continue;
        int number = 0;
        for (const std::string& mutant : mutantsOf(text))
            add(file.string() + ", change " + std::to_string(++number), mutant);
    }
    return documents;
}

} // namespace Orvant::Support
