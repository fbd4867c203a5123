#pragma once

#include <locale>
#include <string>

namespace Orvant::Support {

/// Writes 1.234,5 for a thousand and so on.
class GroupingPunctuation : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

/// Gives the global locale this punctuation while it is in scope.
class GlobalLocale {
public:
    GlobalLocale()
        : m_former(std::locale::global(std::locale(std::locale(), new GroupingPunctuation))) {}
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;
    ~GlobalLocale() { std::locale::global(m_former); }

private:
    std::locale m_former;
};

} // namespace Orvant::Support
