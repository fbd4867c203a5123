#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "common/Messages.h"

#include <ConfigurationFramework/ConfigException.h>

#include <fmt/core.h>

#include <algorithm>
#include <ios>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace Orvant::Tool {

namespace {

using Names = std::vector<std::string>;
using NamesByType = std::vector<std::pair<std::string, Names>>; ///< each type once

struct PruneOptions {
    Names types;
    bool withUsed = false;
    Names children;
    Names attributes;
    std::optional<std::string> output;
};

Names splitAtCommas(const std::string& text) {
    Names names;
    for (std::size_t start = 0; !text.empty() && start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        names.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

/// @param option that each text is of
/// @param texts  "TYPE=NAME,..."
NamesByType namesByType(const std::string& option, const Names& texts) {
    NamesByType byType;
    for (const std::string& text : texts) {
        const std::size_t sign = text.find('=');
        if (sign == std::string::npos)
            throw Failure(ExitCode::Usage,
                          fmt::format("{} needs TYPE=NAME,... instead of \"{}\"", option, text));
        const std::string type = text.substr(0, sign);
        auto found = std::ranges::find(byType, type, &NamesByType::value_type::first);
        if (found == byType.end())
            found = byType.insert(found, {type, {}});
        std::ranges::move(splitAtCommas(text.substr(sign + 1)), std::back_inserter(found->second));
    }
    return byType;
}

Names childrenOf(XsdConfigReader& reader, const std::string& type) {
    Names names;
    for (const auto& [name, childType] : reader.getSubTypes(type))
        names.push_back(name);
    return names;
}

/// What is to be kept of a schema.
class Filters {
public:
    /// @throws Failure(Usage) for what the schema does not have
    Filters(SchemaFile& schema, const PruneOptions& options)
        : m_types(options.types),
          m_children(namesByType("--keep-children", options.children)),
          m_attributes(namesByType("--keep-attributes", options.attributes)) {
        schema.checkTypes(m_types);
        for (const auto& [type, names] : m_children) {
            schema.checkTypes({type});
            schema.checkNames(type, "child", names, childrenOf(schema.reader(), type));
        }
        for (const auto& [type, names] : m_attributes) {
            schema.checkTypes({type});
            schema.checkNames(type, "attribute", names, schema.reader().getAttributes(type));
        }
        if (options.withUsed)
            m_types = schema.typesUsedBy(m_types);
    }

    void apply(XsdConfigReader& reader) const {
        if (!m_types.empty())
            reader.keepXSDElement(m_types);
        for (const auto& [type, names] : m_children)
            reader.keepXSDChildElement(type, names);
        for (const auto& [type, names] : m_attributes)
            reader.keepXSDChildAttributes(type, names);
    }

private:
    Names m_types;
    NamesByType m_children;
    NamesByType m_attributes;
};

Names write(XsdConfigReader& reader, const std::optional<std::string>& file) {
    const auto failure = [&file] {
        return Failure(ExitCode::FileError,
                       file.value_or("standard output") + ": cannot be written");
    };
    try {
        return file ? reader.writePrunedXSD(FileName(*file)) : reader.writePrunedXSD(std::cout);
    } catch (const ConfigException&) {
        throw failure();
    } catch (const std::ios_base::failure&) {
        throw failure();
    }
}

/// @param item that stays: "TYPE", "TYPE/CHILD" or "TYPE/@ATTRIBUTE"
std::string sentenceOf(const std::string& item) {
    const auto quoted = [](const std::string& name) { return '"' + name + '"'; };
    const std::size_t slash = item.find('/');
    const std::string type = "the type " + quoted(item.substr(0, slash));
    if (slash == std::string::npos)
        return type + " stays: what is kept names it";
    const std::string name = item.substr(slash + 1);
    const std::string part =
        name.starts_with('@') ? "attribute " + quoted(name.substr(1)) : "child " + quoted(name);
    return "the " + part + " of " + type + " stays: what is kept needs it";
}

ExitCode prune(SchemaFile& schema, const Output& output, const PruneOptions& options) {
    if (options.output)
        checkFileName(*options.output);
    else if (output.isJson())
        throw Failure(ExitCode::Usage, "--json needs -o: the schema goes to standard output");
    Filters(schema, options).apply(schema.reader());
    const Names stayed = write(schema.reader(), options.output);
    if (output.isJson())
        output.print(nlohmann::ordered_json{{"file", *options.output},
                                            {"source", schema.name()},
                                            {"types", schema.typeNames()},
                                            {"stayed", stayed}});
    else if (!output.isQuiet())
        for (const std::string& item : stayed)
            std::cerr << oneLine(messageAt(schema.name(), 0, "note", sentenceOf(item))) << '\n';
    return ExitCode::Clean;
}

} // namespace

void addPrune(CommandLine& commandLine) {
    const auto options = std::make_shared<PruneOptions>();
    CLI::App& verb =
        commandLine.addVerb("prune", "Write the file as it stands, without what is not kept",
                            [options](SchemaFile& schema, const Output& output) {
                                return prune(schema, output, *options);
                            });
    const auto addList = [&verb](const std::string& name, Names& values, const std::string& type,
                                 const std::string& description) {
        return verb.add_option(name, values, description)->type_name(type)->allow_extra_args(false);
    };
    auto* const keep = addList("--keep", options->types, "TYPE",
                               "A type to keep, with what it requires; again for each one");
    verb.add_flag("--with-used", options->withUsed,
                  "Keep all that the --keep types use, optional children included")
        ->needs(keep);
    addList("--keep-children", options->children, "TYPE=NAME,...",
            "Of a type's optional children, keep only these, or none");
    addList("--keep-attributes", options->attributes, "TYPE=NAME,...",
            "Of a type's optional attributes, keep only these, or none");
    verb.add_option("-o,--output", options->output, "File to write, if not standard output")
        ->type_name("OUT");
}

} // namespace Orvant::Tool
