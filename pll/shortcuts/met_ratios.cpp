#include "shortcuts/met_ratios.h"

#include "search/limits.h"
#include "search/ratio_error.h"
#include "shortcuts/cascade_reaches.h"

#include <cmath>
#include <cstring>

namespace pll_internal {

namespace {

// The exact tests are made of rounded operations on doubles: each bound is moved out by more.
constexpr double ROOM = 1e-6;
constexpr double ROUNDING = 1e-14;

// The counter values that an output can have, and the ratio that it asks for.
struct DIVIDER
{
    double m_ratio;      // mult / div
    double m_tolerance;  // relative
    double m_max_count;
};

// Two counters in a row divide by no more than each of them, multiplied.
DIVIDER read_divider(double ratio, int max_count, bool cascade)
{
    const double single = max_count == 1 ? 1.0 : 2.0 * max_count;
    return {ratio, std::max(MET_RELATIVE, EXACT_RATIO / ratio) * (1.0 + ROOM),
            cascade && max_count != 1 ? single * single : single};
}

// A ratio from which on more outputs need a second counter than there are counters left for them.
double end_of_cascades(const PLL& pll, const SEARCH_LIMITS& limits)
{
    constexpr double NO_END = 1e300;
    const CASCADE_REACHES reaches(pll, limits);
    const int left = std::min(pll.m_max_taps_count, PLL_MAX_TAPS) - limits.m_taps_count;
    return left < reaches.count() ? reaches.surely_for(left + 1) : NO_END;
}

}  // namespace

// One output's cut through the ranges found so far.
class MET_RATIOS::BUILDER
{
public:
    BUILDER() : m_count(0), m_overflown(false) {}

    void cut(const RATIO_RANGE& range, const DIVIDER& divider);
    void add(RATIO_RANGE range);

    // Replaces the ranges unless there are too many.
    void hand_over(MET_RATIOS* ratios) const
    {
        if (!m_overflown) {
            std::memcpy(ratios->m_ranges, m_ranges, std::size_t(m_count) * sizeof(RATIO_RANGE));
            ratios->m_count = m_count;
        }
    }

private:
    RATIO_RANGE m_ranges[CAPACITY];
    int m_count;
    bool m_overflown;
};

void MET_RATIOS::BUILDER::add(RATIO_RANGE range)
{
    if (range.is_empty()) {
        return;
    }
    if (m_count > 0 && range.m_low <= m_ranges[m_count - 1].m_high) {
        m_ranges[m_count - 1].m_high = std::max(m_ranges[m_count - 1].m_high, range.m_high);
    } else if (m_count < CAPACITY) {
        m_ranges[m_count++] = range;
    } else {
        m_overflown = true;
    }
}

void MET_RATIOS::BUILDER::cut(const RATIO_RANGE& range, const DIVIDER& divider)
{
    const double below = 1.0 - divider.m_tolerance;
    const double above = 1.0 + divider.m_tolerance;
    const double largest =
        std::min(divider.m_max_count, std::floor(range.m_high / divider.m_ratio / below));
    double count = std::max(1.0, std::ceil(range.m_low / divider.m_ratio / above));
    for (; count <= largest && !m_overflown; ++count) {
        const double multiple = count * divider.m_ratio;
        const bool overlaps_next = 2.0 * divider.m_tolerance * count >= 1.0;
        const double last = overlaps_next ? largest * divider.m_ratio : multiple;
        add({std::max(range.m_low, multiple * below), std::min(range.m_high, last * above)});
        if (overlaps_next) {
            return;
        }
    }
}

MET_RATIOS::MET_RATIOS(const PLL& pll, const SEARCH_LIMITS& limits, RATIO_RANGE within) : m_count(0)
{
    const int taps = limits.m_taps_count;
    if (taps > 0 && has_wish(limits.m_vco_wish)) {
        const double ratio = limits.m_vco_wish.m_ratio;
        const double room = EXACT_RATIO * (1.0 + ROOM) + ratio * ROUNDING;
        within = {std::max(within.m_low, ratio - room), std::min(within.m_high, ratio + room)};
    }
    if (limits.m_may_cascade) {
        within.m_high = std::min(within.m_high, end_of_cascades(pll, limits));
    }
    if (!within.is_empty()) {
        m_ranges[m_count++] = within;
    }
    // The fastest output leaves the fewest ranges, so it goes first.
    int fastest = 0;
    DIVIDER dividers[PLL_MAX_TAPS];
    for (int i = 0; i < taps; ++i) {
        dividers[i] = read_divider(limits.m_wishes[i].m_ratio, pll.m_taps[i].m_max_count,
                                   limits.m_may_cascade);
        fastest = dividers[i].m_ratio > dividers[fastest].m_ratio ? i : fastest;
    }
    for (int step = 0; step < taps && m_count > 0; ++step) {
        const DIVIDER& divider = dividers[step == 0 ? fastest : (step == fastest ? 0 : step)];
        BUILDER cuts;
        for (int i = 0; i < m_count; ++i) {
            cuts.cut(m_ranges[i], divider);
        }
        cuts.hand_over(this);
    }
}

}  // namespace pll_internal
