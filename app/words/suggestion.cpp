#include "app/words/suggestion.h"

#include "app/words/letter_case.h"

#include <algorithm>
#include <numeric>

namespace {

// Insertions, deletions and replacements that turn one word into the other (Levenshtein), row by
// row of the table of prefixes.
std::size_t edit_distance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
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
        const std::size_t distance = edit_distance(lower_case(word), lower_case(candidate));
        if (distance < best_distance || (best.empty() && distance == best_distance)) {
            best = candidate;
            best_distance = distance;
        }
    }
    return best.empty() ? std::string() : "; did you mean " + std::string(best) + "?";
}

bool is_nearly(std::string_view word, std::string_view other)
{
    return edit_distance(lower_case(word), lower_case(other)) <= 1;
}
