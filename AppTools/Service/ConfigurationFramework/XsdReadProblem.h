#pragma once

#include <string>

namespace Orvant {

/// Why a schema file could not be read.
///
/// @code
/// if (const auto problem = reader.getReadProblem())
///     std::cerr << "Machine.xsd:" << problem->line << ':' << problem->column << ": "
///               << problem->message << '\n';
/// @endcode
struct XsdReadProblem {
    unsigned int line = 0;   ///< of the first error, from 1; 0: the problem has no place
    unsigned int column = 0; ///< there, from 1, in UTF-16 code units; 0: the problem has no place
    std::string message;     ///< what is wrong and what would be right, in English
};

} // namespace Orvant
