#pragma once

#include <string>
#include <vector>

namespace Orvant::Support {

/// Names that users give to files but that a URL, a shell or a narrow encoding would spoil.
inline const std::vector<std::string>& awkwardFileNames() {
    static const std::vector<std::string> names = {
        "two words.xml",
        " leading and trailing ",
        "number#1.xml",
        "100%.xml",
        "%41.xml",
        "this & that.xml",
        "a+b=c;d,e.xml",
        "'quoted' \".xml",
        "[x]{y}.xml",
        "Größe.xml",
        "Übergröße ñ ç å.xml",
        "настройки.xml",
        "設定.xml",
        "smile 😀.xml",
    };
    return names;
}

/// A name that can be stored but never used: no file system has files with a NUL in their names.
inline std::string nameWithNul() {
    return std::string("before\0after.xml", 16);
}

} // namespace Orvant::Support
