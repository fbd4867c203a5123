#include "common/NearestName.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace Orvant::Tool {

namespace {

/// Number of letters to insert, remove or replace (Levenshtein, 1966), regardless of case.
std::size_t distance(const std::string& first, const std::string& second) {
    std::vector<std::size_t> row(second.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    const auto lower = [](char letter) { return std::tolower(static_cast<unsigned char>(letter)); };
    for (std::size_t i = 0; i < first.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < second.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(first[i]) == lower(second[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

} // namespace

std::string nearestName(const std::string& text, const std::vector<std::string>& candidates) {
    std::string best;
    std::size_t least = text.size() / 3 + 2; // what is further away is another word
    for (const std::string& candidate : candidates) {
        const std::size_t difference =
            std::max(text.size(), candidate.size()) - std::min(text.size(), candidate.size());
        if (difference >= least)
            continue;
        if (const std::size_t found = distance(text, candidate); found < least) {
            least = found;
            best = candidate;
        }
    }
    return best;
}

std::string didYouMean(const std::string& name) {
    return name.empty() ? "" : "; did you mean \"" + name + "\"?";
}

} // namespace Orvant::Tool
