#include "shortcuts/met_search.h"

#include "shortcuts/feedback_rest.h"

#include <algorithm>

namespace pll_internal {

namespace {

// An automatic bandwidth often ends a search early, so the first block is small; every next one is
// as many times larger as the cut-off reaches.
constexpr std::int64_t FIRST_BLOCK_END = 64;
constexpr std::int64_t BLOCK_GROWTH = 4;

constexpr unsigned HALF = 32;

std::uint64_t pack(std::int64_t m, std::int64_t n)
{
    return (std::uint64_t(m) << HALF) | std::uint64_t(n);
}

std::int64_t m_of(std::uint64_t fraction)
{
    return std::int64_t(fraction >> HALF);
}

std::int64_t n_of(std::uint64_t fraction)
{
    return std::int64_t(std::uint32_t(fraction));
}

}  // namespace

inline void MET_SEARCH::visit(const WORK& work, std::int64_t m, std::int64_t n)
{
    if (!m_sifted.is_idle(work.m_post_scale, int(m), int(n)) && work.m_region.is_legal(m, n)) {
        m_sifted.evaluate_if_met(work.m_post_scale, int(m), int(n));
    }
}

void MET_SEARCH::search(int post_scale, const REGION& region)
{
    if (region.is_empty()) {
        return;
    }
    const PLL& pll = m_evaluation.pll();
    const FEEDBACK_REST rest(pll, m_evaluation.limits());
    const std::int64_t first_n = std::max(region.n_range().m_first, rest.first_n_without());
    if (first_n > region.n_range().m_last) {
        return;
    }
    const MET_RATIOS ratios(pll, m_evaluation.limits(), region.ratios());
    if (ratios.count() == 0) {
        return;
    }
    const WORK work{region, ratios, post_scale, first_n};
    const M_RANGE all = region.m_range();
    for (M_RANGE block{all.m_first, FIRST_BLOCK_END};
         block.m_first <= all.m_last && !m_evaluation.is_cut_off(block.m_first);
         block = {block.m_last + 1, block.m_last * BLOCK_GROWTH}) {
        block.m_last = std::min(std::max(block.m_first, block.m_last), all.m_last);
        search_block(work, block);
    }
}

// Walks over the rows of M or over the columns of N, whichever are fewer. But what columns hold
// must be put in order, which takes longer than a look at as many rows; what is more than can be
// put in order at once is halved.
void MET_SEARCH::search_block(const WORK& work, M_RANGE block)
{
    const RATIO_RANGE ratios = work.m_region.ratios();
    const std::int64_t columns = work.m_region.n_between(ratios, block.m_last).m_last -
                                 work.m_region.n_between(ratios, block.m_first).m_first + 1;
    const std::int64_t rows = block.m_last - block.m_first + 1;
    const bool is_gathered = columns < rows && gather(work, block);
    if (columns >= rows || (is_gathered ? m_gathered > rows : CAPACITY > rows)) {
        visit_rows(work, block);
    } else if (is_gathered) {
        visit_gathered(work);
    } else {
        const std::int64_t middle = block.m_first + (block.m_last - block.m_first) / 2;
        search_block(work, {block.m_first, middle});
        search_block(work, {middle + 1, block.m_last});
    }
}

void MET_SEARCH::visit_rows(const WORK& work, M_RANGE block)
{
    for (std::int64_t m = block.m_first; m <= block.m_last && !m_evaluation.is_cut_off(m); ++m) {
        visit_row(work, m);
    }
}

// Collects the fractions of a block, column by column. Returns false when they are too many.
bool MET_SEARCH::gather(const WORK& work, M_RANGE block)
{
    const RATIO_RANGE ratios = work.m_region.ratios();
    const std::int64_t first =
        std::max(work.m_first_n, work.m_region.n_between(ratios, block.m_first).m_first);
    const std::int64_t last = work.m_region.n_between(ratios, block.m_last).m_last;
    m_gathered = 0;
    for (std::int64_t n = first; n <= last; ++n) {
        for (const RATIO_RANGE& met : work.m_ratios) {
            const M_RANGE column = work.m_region.m_between(met, n);
            if (!add_column({std::max(column.m_first, block.m_first),
                             std::min(column.m_last, block.m_last)},
                            n)) {
                return false;
            }
        }
    }
    return true;
}

// Returns false when there is no room for them.
bool MET_SEARCH::add_column(M_RANGE column, std::int64_t n)
{
    if (column.m_last - column.m_first >= CAPACITY - m_gathered) {
        return false;
    }
    for (std::int64_t m = column.m_first; m <= column.m_last; ++m) {
        m_fractions[m_gathered++] = pack(m, n);
    }
    return true;
}

void MET_SEARCH::visit_gathered(const WORK& work)
{
    std::sort(m_fractions, m_fractions + m_gathered);
    for (int i = 0; i < m_gathered; ++i) {
        const std::int64_t m = m_of(m_fractions[i]);
        if (m_evaluation.is_cut_off(m)) {
            return;
        }
        visit(work, m, n_of(m_fractions[i]));
    }
}

// N grows as the ratio falls, so the ranges are taken from the highest to the lowest.
void MET_SEARCH::visit_row(const WORK& work, std::int64_t m)
{
    const N_RANGE all = work.m_region.n_range();
    const double lowest = double(m) / double(all.m_last);
    std::int64_t next = work.m_first_n;
    const RATIO_RANGE* met = std::upper_bound(
        work.m_ratios.begin(), work.m_ratios.end(), double(m) / double(next),
        [](double ratio, const RATIO_RANGE& range) { return ratio < range.m_low; });
    while (met != work.m_ratios.begin() && (met - 1)->m_high >= lowest) {
        --met;
        const N_RANGE range = work.m_region.n_between(*met, m);
        for (std::int64_t n = std::max(range.m_first, next); n <= range.m_last; ++n) {
            visit(work, m, n);
        }
        next = std::max(next, range.m_last + 1);
    }
}

}  // namespace pll_internal
