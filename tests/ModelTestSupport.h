#pragma once

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <TestSupport.h>

#include <regex>
#include <string>

namespace Orvant::Support {

/// @return a reader of a document with these elements
inline SimpleConfigReader readerOf(const std::string& elements) {
    return SimpleConfigReader(FileName(), document(elements), {"1.0"});
}

/// @return what a writer holds, without the line breaks and blanks between its tags
inline std::string compact(ConfigWriter& writer) {
    static const std::regex gap(">\\s+<");
    const std::string text = std::regex_replace(writer.getAsString(), gap, "><");
    return text.substr(0, text.find_last_of('>') + 1);
}

} // namespace Orvant::Support
