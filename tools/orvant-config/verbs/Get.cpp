#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/LoadedItem.h"
#include "catalogue/SettingText.h"

#include <memory>

namespace Orvant::Tool {

namespace {

ExitCode get(Session& session, const std::string& path) {
    const auto [value, isLocked] = findLoaded(session, path);
    if (value == nullptr)
        throw Failure(ExitCode::Usage, '"' + path + "\" is an object and has no value");
    const std::vector<std::string> texts = textsOf(*value);
    if (!session.output().isJson()) {
        for (const std::string& text : texts)
            session.output().print(text + '\n');
        return ExitCode::Clean;
    }
    nlohmann::ordered_json json{{"path", path}, {"type", typeText(value->getValueType())}};
    if (value->getValueType() == ConfigurationValueBase::StringVectorValue)
        json["value"] = texts;
    else
        json["value"] = texts.front();
    session.output().print(json);
    return ExitCode::Clean;
}

} // namespace

void addGet(CommandLine& commandLine) {
    const auto path = std::make_shared<std::string>();
    CLI::App& verb = commandLine.addVerb("get", "Print the value of a setting, of a list each item",
                                         [path](Session& session) { return get(session, *path); });
    verb.add_option("PATH", *path, "The setting")->required();
}

} // namespace Orvant::Tool
