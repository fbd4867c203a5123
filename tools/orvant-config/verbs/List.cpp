#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/SettingJson.h"
#include "catalogue/SettingText.h"

#include <memory>

namespace Orvant::Tool {

namespace {

struct ListOptions {
    std::string prefix;
    bool hidden = false;
    bool names = false;
};

bool isListed(const CatalogueItem& item, const ListOptions& options) {
    return item.value != nullptr && item.path.starts_with(options.prefix) &&
           (options.hidden || item.value->visibility == ConfigurationItemBase::Visible);
}

std::vector<std::string> rowOf(const CatalogueItem& item) {
    return {item.path, typeText(item.value->type), oneLine(defaultText(*item.value)),
            oneLine(item.value->constraint.describe()), oneLine(item.value->constraint.label)};
}

ExitCode list(Session& session, const ListOptions& options) {
    auto json = nlohmann::ordered_json::array();
    std::vector<std::vector<std::string>> rows;
    for (const CatalogueItem& item : session.settings().items()) {
        if (!isListed(item, options))
            continue;
        if (session.output().isJson())
            json.push_back(jsonOf(item));
        else
            rows.push_back(options.names ? std::vector{item.path} : rowOf(item));
    }
    if (session.output().isJson())
        session.output().print(json);
    else
        session.output().printTable(rows);
    return ExitCode::Clean;
}

} // namespace

void addList(CommandLine& commandLine) {
    const auto options = std::make_shared<ListOptions>();
    CLI::App& verb =
        commandLine.addVerb("list", "List the settings: path, type, default, rule and label",
                            [options](Session& session) { return list(session, *options); });
    verb.add_option("PREFIX", options->prefix, "Only settings whose paths begin with it");
    verb.add_flag("--hidden", options->hidden, "Also those that no dialogue shows");
    verb.add_flag("--names", options->names, "Only the paths");
}

} // namespace Orvant::Tool
