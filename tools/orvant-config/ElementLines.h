#pragma once

#include <ConfigurationFramework/ConfigurationFileEditor.h>
#include <FileHandling/FileName.h>

#include <string>
#include <unordered_map>

namespace Orvant::Tool {

/// The lines of a file's elements.
class ElementLines {
public:
    /// @param file that can be edited; where it is not as it was then, no line is known
    explicit ElementLines(const FileName& file);

    /// @return the line of the first element of a path, from 1; 0: it is not known
    unsigned int of(const ConfigurationElementPath& path) const;

private:
    std::unordered_map<std::string, unsigned int> m_lines;
};

} // namespace Orvant::Tool
