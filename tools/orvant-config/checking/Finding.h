#pragma once

#include <FileHandling/FileName.h>

#include <cstdint>
#include <string>

namespace Orvant::Tool {

/// Something that an administrator should know of a file.
struct Finding {
    /// How much it matters, in ascending order.
    enum Severity : std::int32_t {
        Warning,  ///< odd, but settings and locks are as they are written
        Error,    ///< a setting or a lock does not take effect as it is written, or can be evaded
        FileError ///< the file is not used at all
    };

    Severity severity;
    std::string kind;            ///< "NotConverted", for programs
    FileName file;               ///< what it is about
    unsigned int line = 0;       ///< from 1; 0: it has no place
    unsigned int column = 0;     ///< from 1; 0: it has no place
    std::string path;            ///< the setting; empty for a whole file
    std::string text;            ///< a sentence
    std::string suggestion = {}; ///< a name that may be meant; empty: none is known
};

} // namespace Orvant::Tool
