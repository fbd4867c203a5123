#include "generating/ExplanationPage.h"

#include "catalogue/SettingText.h"
#include "generating/Markup.h"
#include "generating/PageFrame.h"

#include <FileHandling/FileUtilities.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>

#include <fmt/format.h>

namespace Orvant::Tool {

namespace {

using Origin = ConfigurationOrigin;

/// @return an element of a class
std::string elementOf(const std::string& tag, const std::string& ofClass,
                      const std::string& content) {
    return fmt::format("<{0} class=\"{1}\">{2}</{0}>", tag, ofClass, content);
}

/// A place, whose folder shows only when asked for: all rows have one of two.
std::string placeOf(const FileName& file, unsigned int line) {
    const std::string name = std::filesystem::path(file.toString()).filename().string();
    return fmt::format("<span title=\"{0}:{2}\">{1}:{2}</span>", escaped(file.toString()),
                       escaped(name), line);
}

/// @return what stands after "#" in an address
std::string fragmentOf(const std::string& text) {
    constexpr std::string_view plain = "/-._~";
    std::string fragment;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 && (std::isalnum(byte) != 0 || plain.find(character) != plain.npos))
            fragment += character;
        else
            fragment += fmt::format("%{:02X}", byte);
    }
    return fragment;
}

std::string shown(const CatalogueItem* item, const std::string& text) {
    return escaped(shownText(item == nullptr ? nullptr : item->value, text));
}

std::string lockOf(const Origin& origin) {
    if (!origin.locked)
        return "";
    std::string text = "locked";
    if (origin.lockLine == 0)
        text += " by the application";
    else if (origin.lockedBy != origin.path)
        text += " by " + escaped(origin.lockedBy);
    return elementOf("span", "lock",
                     "<svg aria-hidden=\"true\"><use href=\"#padlock\"/></svg> " + text) +
           (origin.lockLine == 0
                ? ""
                : elementOf("span", "place", placeOf(origin.lockFile, origin.lockLine)));
}

std::string vainOf(const Origin& origin, const StandardConfigurationFiles& files,
                   const CatalogueItem* item) {
    const auto say = [&](const FileName& file, unsigned int line, const std::string& text) {
        return elementOf("span", "vain",
                         placeOf(file, line) + " says " +
                             elementOf("span", "said", shown(item, text)));
    };
    std::string text;
    if (origin.systemValue && origin.layer != Origin::System)
        text += say(files.system, origin.systemLine, *origin.systemValue);
    if (origin.userValue && origin.layer != Origin::User)
        text += say(files.user, origin.userLine, *origin.userValue);
    return text;
}

std::string settingOf(const Origin& origin, const CatalogueItem* item) {
    const std::string label =
        item == nullptr || item->value == nullptr ? "" : item->value->constraint.label;
    return fmt::format("<a href=\"#{}\">{}</a>{}", fragmentOf(origin.path), escaped(origin.path),
                       label.empty() ? "" : elementOf("span", "label", escaped(label)));
}

std::string rowOf(const Origin& origin, const StandardConfigurationFiles& files,
                  const CatalogueItem* item) {
    const std::string place =
        origin.file.empty() ? "" : elementOf("span", "place", placeOf(origin.file, origin.line));
    return fmt::format("<tr class=\"layer-{}{}\"><th scope=\"row\">{}</th>{}<td>{}{}</td>"
                       "<td>{}</td><td>{}</td></tr>",
                       layerText(origin.layer), origin.locked ? " locked" : "",
                       settingOf(origin, item), elementOf("td", "value", shown(item, origin.value)),
                       elementOf("span", "from", layerText(origin.layer)), place, lockOf(origin),
                       vainOf(origin, files, item));
}

std::string fileOf(const std::string& name, const FileName& file) {
    if (file.empty())
        return "";
    return fmt::format("<dt>{}</dt><dd>{}{}</dd>", name, escaped(file.toString()),
                       FileUtilities::exists(file) ? "" : " (not there)");
}

std::string filesOf(const StandardConfigurationFiles& files) {
    return fileOf("System file", files.system) +
           fileOf(files.system.empty() ? "File" : "User's file", files.user);
}

/// @param texts what stands for names in the frame; what they hold stays as it is
std::string filled(std::string_view frame, const std::map<std::string_view, std::string>& texts) {
    constexpr std::string_view start = "{{";
    constexpr std::string_view end = "}}";
    std::string page;
    while (true) {
        const std::size_t place = frame.find(start);
        page += frame.substr(0, place);
        if (place == std::string_view::npos)
            return page;
        frame.remove_prefix(place + start.size());
        const std::size_t length = frame.find(end);
        page += texts.at(frame.substr(0, length));
        frame.remove_prefix(length + end.size());
    }
}

} // namespace

std::string makePage(const std::string& application, const SettingIndex& settings,
                     const StandardConfigurationFiles& files, const std::vector<Origin>& origins) {
    std::string rows;
    for (const Origin& origin : origins) {
        const auto found = settings.find(origin.path);
        rows += rowOf(origin, files, found ? found->item : nullptr) + '\n';
    }
    return filled(
        pageFrame,
        {{"application", escaped(application)}, {"files", filesOf(files)}, {"rows", rows}});
}

} // namespace Orvant::Tool
