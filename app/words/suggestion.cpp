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

std::string_view nearest_word(std::string_view word, const std::vector<std::string_view>& words)
{
    const std::string lower = lower_case(word);
    std::string_view best;
    std::size_t best_distance = std::max<std::size_t>(2, word.size() / 2);
    for (const std::string_view candidate : words) {
        const std::size_t longer = std::max(candidate.size(), word.size());
        const std::size_t shorter = std::min(candidate.size(), word.size());
        if (longer - shorter > best_distance) {
            continue;  // their difference in length alone is too much
        }
        const std::size_t distance = edit_distance(lower, lower_case(candidate));
        if (distance < best_distance || (best.empty() && distance == best_distance)) {
            best = candidate;
            best_distance = distance;
        }
    }
    return best;
}

std::string_view close_word(std::string_view word, const std::vector<std::string_view>& words)
{
    constexpr std::size_t LETTERS_PER_MISTAKE = 5;
    const std::string_view nearest = nearest_word(word, words);
    const std::size_t most = std::max<std::size_t>(2, word.size() / LETTERS_PER_MISTAKE);
    return edit_distance(lower_case(word), lower_case(nearest)) <= most ? nearest
                                                                        : std::string_view();
}

std::string suggest(std::string_view word, const std::vector<std::string_view>& words)
{
    const std::string_view best = nearest_word(word, words);
    return best.empty() ? std::string() : "; did you mean " + std::string(best) + "?";
}

bool is_nearly(std::string_view word, std::string_view other)
{
    return edit_distance(lower_case(word), lower_case(other)) <= 1;
}
