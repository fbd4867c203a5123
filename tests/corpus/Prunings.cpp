#include "Prunings.h"

#include <FileHandling/FileName.h>

#include <algorithm>
#include <functional>
#include <sstream>

namespace Orvant::Support {

namespace {

using Filter = std::pair<std::string, std::function<void(XsdConfigReader&)>>;

constexpr std::size_t fewTypes = 2;

/// @return up to `fewTypes` of them, from the first to the last
std::vector<std::string> someOf(const std::vector<std::string>& names) {
    std::vector<std::string> some;
    const std::size_t step = (names.size() + fewTypes - 1) / fewTypes;
    for (std::size_t i = 0; i < names.size(); i += step)
        some.push_back(names[i]);
    return some;
}

/// @return types that have what `count` counts
template <typename Count>
std::vector<std::string> someTypesWith(const SchemaAnswers& answers, Count count) {
    std::vector<std::string> names;
    for (const auto& [name, type] : answers.types) {
        if (count(type) > 0)
            names.push_back(name);
    }
    return someOf(names);
}

std::vector<Filter> filtersOf(const SchemaAnswers& answers) {
    std::vector<Filter> filters = {
        {"keepXSDElement({})", [](XsdConfigReader& reader) { reader.keepXSDElement({}); }}};
    for (const std::string& type : someTypesOf(answers)) {
        filters.emplace_back("keepXSDElement({" + type + "})",
                             [=](XsdConfigReader& reader) { reader.keepXSDElement({type}); });
        filters.emplace_back(
            "keepXSDElement(getTypesUsedBy(" + type + "))",
            [=](XsdConfigReader& reader) { reader.keepXSDElement(reader.getTypesUsedBy(type)); });
    }
    const auto children = [](const SchemaAnswers::Type& type) { return type.children.size(); };
    for (const std::string& type : someTypesWith(answers, children))
        filters.emplace_back("keepXSDChildElement(" + type + ", {})", [=](XsdConfigReader& reader) {
            reader.keepXSDChildElement(type, {});
        });
    const auto attributes = [](const SchemaAnswers::Type& type) { return type.attributes.size(); };
    for (const std::string& type : someTypesWith(answers, attributes))
        filters.emplace_back(
            "keepXSDChildAttributes(" + type + ", {})",
            [=](XsdConfigReader& reader) { reader.keepXSDChildAttributes(type, {}); });
    return filters;
}

} // namespace

SchemaAnswers::SchemaAnswers(XsdConfigReader& reader) : roots(reader.getRootelements()) {
    for (const auto& [name, type] : reader.getXsdTree()) {
        Type& answer = types[name];
        answer.attributes = type->attributes;
        for (const auto& child : type->children)
            answer.children.push_back(child->name + ' ' + child->type + ' ' +
                                      std::to_string(child->minOccurs) + ".." + child->maxOccurs);
    }
}

std::vector<std::string> someTypesOf(const SchemaAnswers& answers) {
    std::vector<std::string> names;
    for (const auto& [root, type] : answers.roots) {
        if (std::find(names.begin(), names.end(), type) == names.end())
            names.push_back(type);
    }
    if (names.empty()) {
        for (const auto& [name, type] : answers.types)
            names.push_back(name);
    }
    return someOf(names);
}

std::vector<Pruning> pruningsOf(const std::filesystem::path& schema) {
    XsdConfigReader unfiltered(FileName(schema.string()));
    unfiltered.readAnyXSD();
    const SchemaAnswers before(unfiltered);
    std::vector<Pruning> prunings;
    for (const auto& [name, apply] : filtersOf(before)) {
        XsdConfigReader reader(FileName(schema.string()));
        reader.readAnyXSD();
        apply(reader);
        std::ostringstream out;
        auto stayed = reader.writePrunedXSD(out);
        prunings.push_back({name, before, SchemaAnswers(reader), std::move(stayed), out.str()});
    }
    return prunings;
}

} // namespace Orvant::Support
