#include <ConfigurationFramework/xml/NumberText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <locale>
#include <sstream>

namespace Orvant {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view withoutLeadingSpace(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\n\v\f\r");
    return text.substr(std::min(first, text.size()));
}

/// The characters that a stream takes for a floating-point number, well-formed or not.
std::string_view floatingPointPrefix(std::string_view text) {
    std::size_t i = 0;
    bool mantissa = false;
    bool point = false;
    bool exponent = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        ++i;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (isDigit(c)) {
            mantissa = true;
        } else if (c == '.' && !point && !exponent) {
            point = true;
        } else if ((c == 'e' || c == 'E') && mantissa && !exponent) {
            exponent = true;
            if (i + 1 < text.size() && (text[i + 1] == '+' || text[i + 1] == '-'))
                ++i;
        } else {
            break;
        }
    }
    return text.substr(0, i);
}

/// @param notation how std::to_chars is to write the number
template <typename Number, typename... Notation>
std::string format(Number number, Notation... notation) {
    std::array<char, 32> buffer{};
    char* const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, notation...).ptr;
    return {buffer.data(), end};
}

/// Removes the plus, which std::from_chars does not accept; another sign may not follow it.
/// @return an empty text if one does
std::string_view withoutPlus(std::string_view text) {
    if (!text.starts_with('+'))
        return text;
    text.remove_prefix(1);
    return text.starts_with('-') ? std::string_view() : text;
}

/// What an attempt to read a number gave.
struct Extraction {
    std::errc error;       ///< of std::from_chars
    std::string_view rest; ///< what follows the number
};

std::string_view after(const char* end, std::string_view text) {
    return text.substr(static_cast<std::size_t>(end - text.data()));
}

Extraction extract(std::string_view text, int& number) {
    const std::string_view digits = withoutPlus(withoutLeadingSpace(text));
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return {error, after(end, digits)};
}

Extraction extract(std::string_view text, double& number) {
    const std::string_view begin = withoutLeadingSpace(text);
    const std::string_view prefix = floatingPointPrefix(begin);
    const std::string_view digits = withoutPlus(prefix);
    const std::string_view rest = begin.substr(prefix.size());
    double result = 0.0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result);
    if (error == std::errc::result_out_of_range) {
        // Too large or too small: the standard leaves this open, and the stream decides.
        std::istringstream stream{std::string(prefix)};
        stream.imbue(std::locale::classic());
        if (!(stream >> result))
            return {error, rest};
    } else if (error != std::errc() || end != digits.data() + digits.size()) {
        return {std::errc::invalid_argument, rest};
    }
    number = result;
    return {std::errc(), rest};
}

NumberMatch matchOf(const Extraction& extraction) {
    if (extraction.error == std::errc::result_out_of_range)
        return NumberMatch::OutOfRange;
    if (extraction.error != std::errc())
        return NumberMatch::None;
    return withoutLeadingSpace(extraction.rest).empty() ? NumberMatch::Whole
                                                        : NumberMatch::Beginning;
}

} // namespace

bool extractNumber(std::string_view text, int& number) {
    return extract(text, number).error == std::errc();
}

bool extractNumber(std::string_view text, double& number) {
    return extract(text, number).error == std::errc();
}

NumberMatch matchNumber(std::string_view text, int& number) {
    return matchOf(extract(text, number));
}

NumberMatch matchNumber(std::string_view text, double& number) {
    return matchOf(extract(text, number));
}

std::string formatNumber(int number) {
    return format(number);
}

std::string formatNumber(double number) {
    return format(number, std::chars_format::general, 6);
}

std::string formatScientific(double number) {
    return format(number, std::chars_format::scientific, 10);
}

} // namespace Orvant
