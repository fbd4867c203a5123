#pragma once

#include <ConfigurationFramework/XsdConfigReader.h>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Orvant::Support {

/// What a reader answers about its schema.
struct SchemaAnswers {
    struct Type {
        std::vector<std::string> children;
        std::vector<std::string> attributes;
        bool operator==(const Type&) const = default;
    };

    explicit SchemaAnswers(XsdConfigReader& reader);

    std::map<std::string, Type> types;
    std::vector<std::pair<std::string, std::string>> roots;
};

/// A schema that was read, filtered and written.
struct Pruning {
    std::string filter; ///< to tell which one it was
    SchemaAnswers before;
    SchemaAnswers after;
    std::vector<std::string> stayed; ///< what the writing call answers
    std::string written;
};

/// Reads the file once for each of some filters, which depend on what it declares.
std::vector<Pruning> pruningsOf(const std::filesystem::path& schema);

/// @return some types, those of root elements if there are any
std::vector<std::string> someTypesOf(const SchemaAnswers& answers);

} // namespace Orvant::Support
