#pragma once

#include <ConfigurationFramework/ConfigurationDescription.h>
#include <ConfigurationFramework/ConfigurationOrigin.h>

#include <string>
#include <vector>

namespace Orvant::Tool {

// How people read what a catalogue says.

/// @return "default", "system" or "user"
const char* layerText(ConfigurationOrigin::Layer layer);
/// @param value null: a class writes the text without declaring it
/// @return a text of a setting, as files hold it: strings in quotes
std::string shownText(const ConfigurationValueDescription* value, const std::string& text);

/// @return "bool", "int", "unsigned", "double", "float", "string" or "list"
std::string typeText(ConfigurationValueBase::ValueType type);
/// @return the default: strings and items of lists in quotes
std::string defaultText(const ConfigurationValueDescription& value);
/// @return what an element of a value holds, with numbers as people write them
std::vector<std::string> readableTexts(const ConfigurationValueDescription& value,
                                       std::vector<std::string> texts);
/// @return a value that a file holds: strings and items of lists in quotes
/// @param texts one text, or the items of a list
std::string valueText(const ConfigurationValueDescription& value,
                      const std::vector<std::string>& texts);
/// @return a value that a file holds: strings in quotes
std::string valueText(const ConfigurationValueDescription& value, const std::string& text);
/// @return type, default and rule: "double, 45 unless set, from 1 to 170"
std::string declarationText(const ConfigurationValueDescription& value);

} // namespace Orvant::Tool
