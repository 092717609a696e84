#include "suggestion.h"

#include <algorithm>
#include <numeric>

namespace {

char lower_case(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Insertions, deletions and replacements that turn one word into the other (Levenshtein), row by
// row of the table of prefixes. Cases do not differ.
std::size_t edit_distance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced =
                diagonal + (lower_case(from[i]) == lower_case(to[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string suggest(std::string_view word, const std::vector<std::string_view>& words)
{
    std::string_view best;
    std::size_t best_distance = std::max<std::size_t>(2, word.size() / 2);
    for (const std::string_view candidate : words) {
        const std::size_t distance = edit_distance(word, candidate);
        if (distance < best_distance || (best.empty() && distance == best_distance)) {
            best = candidate;
            best_distance = distance;
        }
    }
    return best.empty() ? std::string() : "; did you mean " + std::string(best) + "?";
}
