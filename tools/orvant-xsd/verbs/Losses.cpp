#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "common/Messages.h"

#include <algorithm>
#include <array>

namespace Orvant::Tool {

namespace {

using Losses = std::vector<XsdLoss>;

constexpr std::array effects{XsdLoss::notValid, XsdLoss::acceptsLess, XsdLoss::acceptsMore,
                             XsdLoss::documentationOnly};

fmt::text_style styleOf(const std::string& effect) {
    if (effect == XsdLoss::documentationOnly)
        return {};
    return fmt::fg(effect == XsdLoss::notValid ? fmt::terminal_color::red
                                               : fmt::terminal_color::yellow);
}

/// How many losses there are of an effect.
std::ptrdiff_t count(const Losses& losses, const std::string& effect) {
    return std::ranges::count(losses, effect, &XsdLoss::effect);
}

std::string summaryOf(const Losses& losses) {
    std::string text;
    for (const char* const effect : effects)
        if (const auto number = count(losses, effect); number != 0)
            text += (text.empty() ? "" : ", ") + std::to_string(number) + ' ' + effect;
    return std::to_string(losses.size()) + (losses.size() == 1 ? " loss: " : " losses: ") + text;
}

void print(const std::string& file, const Losses& losses, const Output& output) {
    for (const XsdLoss& loss : losses) {
        const std::string what =
            loss.owner.empty() ? loss.construct : loss.construct + " of " + loss.owner;
        output.print(oneLine(messageAt(file, loss.line, what, "")) +
                     output.styled(loss.effect, styleOf(loss.effect)) + '\n');
    }
    if (!losses.empty())
        output.print(oneLine(file + ": " + summaryOf(losses)) + '\n');
}

nlohmann::ordered_json jsonOf(const std::string& file, const Losses& losses) {
    nlohmann::ordered_json json{{"file", file}, {"losses", nlohmann::ordered_json::array()}};
    for (const XsdLoss& loss : losses)
        json["losses"].push_back({{"line", loss.line},
                                  {"construct", loss.construct},
                                  {"owner", loss.owner},
                                  {"effect", loss.effect}});
    for (const char* const effect : effects)
        json["summary"][effect] = count(losses, effect);
    return json;
}

ExitCode losses(SchemaFile& schema, const Output& output) {
    const Losses losses = schema.reader().getLosses();
    if (output.isJson())
        output.print(jsonOf(schema.name(), losses));
    else
        print(schema.name(), losses, output);
    return losses.empty() ? ExitCode::Clean : ExitCode::Findings;
}

} // namespace

void addLosses(CommandLine& commandLine) {
    commandLine.addVerb("losses", "Tell what is lost where only the library's model is written",
                        losses);
}

} // namespace Orvant::Tool
