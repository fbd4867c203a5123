#pragma once

#include <string>
#include <string_view>

// Numbers as streams in the classic locale read and write them, whatever the application's locale.

namespace Orvant {

/// Reads a number from the front of a text, as a stream does: white space before it is skipped,
/// anything after it is ignored. An overflow is not a number; an underflow is.
/// @param number written on success only
/// @return true when there was a number
bool extractNumber(std::string_view text, int& number);
/// @copydoc extractNumber(std::string_view, int&)
bool extractNumber(std::string_view text, double& number);

/// How much of a text is a number, as extractNumber() reads it.
enum class NumberMatch {
    None,       ///< the text does not begin with a number
    OutOfRange, ///< it begins with a number that the type cannot hold
    Beginning,  ///< something other than white space follows the number
    Whole       ///< nothing but white space follows the number
};

/// @param number of the type to be read; written like that of extractNumber()
NumberMatch matchNumber(std::string_view text, int& number);
/// @copydoc matchNumber(std::string_view, int&)
NumberMatch matchNumber(std::string_view text, double& number);

/// @return the number in decimal digits, after a minus if it is negative
std::string formatNumber(int number);
/// @return the number in default notation, with six significant digits
std::string formatNumber(double number);
/// @return the number in scientific notation, with ten digits after the point
std::string formatScientific(double number);

} // namespace Orvant
