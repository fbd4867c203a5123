#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/ExplainedSettings.h"
#include "catalogue/SettingText.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace Orvant::Tool {

namespace {

using Rows = std::vector<std::vector<std::string>>;

struct ExplainOptions {
    std::string prefix;
    bool allLayers = false;
};

/// A setting of the files.
struct Explained {
    const ConfigurationOrigin& origin;
    const std::vector<std::string>& items;      ///< of a list
    const ConfigurationValueDescription* value; ///< null: its class writes it, undeclared
};

/// What one layer says of a setting.
struct LayerText {
    ConfigurationOrigin::Layer layer;
    std::string text;
    std::string place; ///< "FILE:LINE"; of the default: "default"
};

std::string placeOf(const FileName& file, unsigned int line) {
    return file.toString() + ':' + std::to_string(line);
}

std::string shown(const Explained& setting, const std::string& text) {
    return oneLine(shownText(setting.value, text));
}

fmt::text_style styleOf(ConfigurationOrigin::Layer layer) {
    switch (layer) {
    case ConfigurationOrigin::System:
        return fmt::fg(fmt::terminal_color::blue);
    case ConfigurationOrigin::User:
        return fmt::fg(fmt::terminal_color::green);
    case ConfigurationOrigin::Default:
        break;
    }
    return fmt::emphasis::faint;
}

/// What the files say, those that decide last.
std::vector<LayerText> fileTexts(const Explained& setting,
                                 const StandardConfigurationFiles& files) {
    const ConfigurationOrigin& origin = setting.origin;
    std::vector<LayerText> texts;
    if (origin.systemValue)
        texts.push_back({ConfigurationOrigin::System, shown(setting, *origin.systemValue),
                         placeOf(files.system, origin.systemLine)});
    if (origin.userValue)
        texts.push_back({ConfigurationOrigin::User, shown(setting, *origin.userValue),
                         placeOf(files.user, origin.userLine)});
    return texts;
}

std::string lockText(const ConfigurationOrigin& origin) {
    if (!origin.locked)
        return "";
    if (origin.lockLine == 0)
        return "locked by the application";
    if (origin.lockedBy == origin.path)
        return "locked";
    return "locked by " + oneLine(origin.lockedBy) + " (" +
           placeOf(origin.lockFile, origin.lockLine) + ')';
}

std::string placeOf(const ConfigurationOrigin& origin) {
    return origin.file.empty() ? layerText(origin.layer) : placeOf(origin.file, origin.line);
}

/// Adds what applies, and why.
void addSetting(const Explained& setting, const std::vector<LayerText>& vain, const Output& output,
                Rows& rows) {
    const ConfigurationOrigin& origin = setting.origin;
    std::string notes = output.styled(lockText(origin), fmt::fg(fmt::terminal_color::red));
    for (const auto& [layer, text, place] : vain)
        notes += fmt::format("{}({} says {}, in vain)", notes.empty() ? "" : "  ", place, text);
    rows.push_back({oneLine(origin.path), shown(setting, origin.value),
                    output.styled(placeOf(origin), styleOf(origin.layer)), notes});
}

void addLayers(const Explained& setting, const std::vector<LayerText>& texts, const Output& output,
               Rows& rows) {
    const auto add = [&](const LayerText& said) {
        rows.push_back({std::string("  ") + layerText(said.layer), said.text,
                        output.styled(said.place, styleOf(said.layer)),
                        said.layer == setting.origin.layer ? "applies" : ""});
    };
    if (setting.value != nullptr)
        add({ConfigurationOrigin::Default, oneLine(defaultText(*setting.value)), "default"});
    for (const LayerText& said : texts)
        add(said);
}

nlohmann::ordered_json jsonOf(const Explained& setting) {
    const ConfigurationOrigin& origin = setting.origin;
    const auto orNull = [](const auto& text) {
        return text ? nlohmann::ordered_json(*text) : nlohmann::ordered_json();
    };
    nlohmann::ordered_json json{
        {"path", origin.path},
        {"type", setting.value == nullptr ? "string" : typeText(setting.value->type)},
        {"value", origin.value},
        {"layer", layerText(origin.layer)},
        {"file", origin.file.toString()},
        {"line", origin.line},
        {"locked", origin.locked},
        {"lockedBy", origin.lockedBy},
        {"lockFile", origin.lockFile.toString()},
        {"lockLine", origin.lockLine},
        {"systemValue", orNull(origin.systemValue)},
        {"systemLine", origin.systemLine},
        {"userValue", orNull(origin.userValue)},
        {"userLine", origin.userLine}};
    if (setting.value != nullptr && setting.value->isList())
        json["items"] = setting.items;
    return json;
}

/// Explains settings one after the other.
class Explanation {
public:
    Explanation(Session& session, const ExplainOptions& options)
        : m_output(session.output()), m_files(session.files()), m_allLayers(options.allLayers) {}

    void add(const Explained& setting) {
        m_isEmpty = false;
        if (m_output.isJson()) {
            m_json.push_back(jsonOf(setting));
            return;
        }
        std::vector<LayerText> texts = fileTexts(setting, m_files);
        if (m_allLayers) {
            addSetting(setting, {}, m_output, m_rows);
            addLayers(setting, texts, m_output, m_rows);
            return;
        }
        std::erase_if(texts,
                      [&](const LayerText& said) { return said.layer == setting.origin.layer; });
        addSetting(setting, texts, m_output, m_rows);
    }
    bool isEmpty() const { return m_isEmpty; }
    void print() const {
        if (m_output.isJson())
            m_output.print(m_json);
        else
            m_output.printTable(m_rows);
    }

private:
    const Output& m_output;
    StandardConfigurationFiles m_files;
    bool m_allLayers;
    bool m_isEmpty = true;
    Rows m_rows;
    nlohmann::ordered_json m_json = nlohmann::ordered_json::array();
};

ExitCode explain(Session& session, const ExplainOptions& options) {
    const std::vector<ExplainedSetting> settings =
        explainAll(session.catalogue(), session.loadUsable());
    Explanation explanation(session, options);
    for (const auto& [origin, items] : settings) {
        const auto found = session.settings().find(origin.path);
        const CatalogueItem* const item = found ? found->item : nullptr;
        if (origin.path.starts_with(options.prefix) ||
            (item != nullptr && item->path.starts_with(options.prefix)))
            explanation.add({origin, items, item == nullptr ? nullptr : item->value});
    }
    if (explanation.isEmpty() && !options.prefix.empty()) {
        session.find(options.prefix);
        throw Failure(ExitCode::Usage, "the files have no \"" + options.prefix + '"');
    }
    explanation.print();
    return ExitCode::Clean;
}

} // namespace

void addExplain(CommandLine& commandLine) {
    const auto options = std::make_shared<ExplainOptions>();
    CLI::App& verb = commandLine.addVerb(
        "explain", "Tell what applies, where it comes from, and what is locked by what",
        [options](Session& session) { return explain(session, *options); });
    verb.add_option("PREFIX", options->prefix, "Only settings whose paths begin with it");
    verb.add_flag("--all-layers", options->allLayers, "Also what each layer says");
}

} // namespace Orvant::Tool
