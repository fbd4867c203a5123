#pragma once

#include <FileHandling/FileName.h>

#include <cstdint>
#include <string>

namespace Orvant {

/// Something in a configuration file that does not take effect as it is written.
///
/// @code
/// for (const ConfigurationProblem& problem : manager.getLoadProblems())
///     std::cerr << problem.file.toString() << ':' << problem.line << ':' << problem.column << ": "
///               << problem.path << ": " << problem.text << '\n';
/// @endcode
struct ConfigurationProblem {
    /// What is wrong.
    enum Kind : std::int32_t {
        Damaged,         ///< the file is not a configuration document
        OtherVersion,    ///< the file is of a version that is not accepted
        Unreadable,      ///< the file could not be read, or the required system file is missing
        NotConverted,    ///< the text is not one of the value's type
        PartlyConverted, ///< only the beginning of the text is read: the rest does not convert, or
                         ///< stands after a comment, a reference or other markup
        OutOfRange,      ///< the number is too large for the value's type, or the text is none of
                         ///< those that the value's range, choices or condition allow
        OddLock,         ///< an attribute editable that does not lock or unlock anything
        /// No registered object declares or writes the element. That includes one that only the
        /// loadContent() of a class reads, under an old name, say, unless the class declares a
        /// NotPersistent value of that name.
        Unknown,
        Twice ///< a second element where only the first is read
    };

    Kind kind;           ///< what is wrong
    FileName file;       ///< the file that holds it
    unsigned int line;   ///< line of the element or of the error, from 1; 0 for a whole file
    unsigned int column; ///< column there, from 1, in UTF-16 code units; 0 for a whole file
    std::string path;    ///< the setting, as in ConfigurationOrigin; empty for a whole file
    std::string text;    ///< what the file says and what was taken instead, a sentence in English
};

} // namespace Orvant
