// Cuts the N of a row where the limits do.
#include "search/window.h"

namespace pll_internal {

namespace {

constexpr N_RANGE NOTHING = {1, 0};

std::int64_t first_too_slow(const ROW_PERIODS& periods, N_RANGE range)
{
    return first_that_holds(range.m_first, range.m_last, periods.guess_too_slow(),
                            [&](std::int64_t n) { return periods.is_too_slow(n); });
}

std::int64_t first_fast_enough(const ROW_PERIODS& periods, N_RANGE range)
{
    return first_that_holds(range.m_first, range.m_last, periods.guess_fast_enough(),
                            [&](std::int64_t n) { return !periods.is_too_fast(n); });
}

std::int64_t first_too_fast(const ROW_PERIODS& periods, N_RANGE range)
{
    return first_that_holds(range.m_first, range.m_last, periods.guess_fast_enough(),
                            [&](std::int64_t n) { return periods.is_too_fast(n); });
}

std::int64_t first_slow_no_more(const ROW_PERIODS& periods, N_RANGE range)
{
    return first_that_holds(range.m_first, range.m_last, periods.guess_too_slow(),
                            [&](std::int64_t n) { return !periods.is_too_slow(n); });
}

}  // namespace

N_RANGE ROW_PERIODS::legal_window(N_RANGE all) const
{
    if (m_fin > 0.0) {
        const std::int64_t first = first_fast_enough(*this, all);
        return {first, first_too_slow(*this, {first, all.m_last}) - 1};
    }
    const std::int64_t first = first_slow_no_more(*this, all);
    return {first, first_too_fast(*this, {first, all.m_last}) - 1};
}

ROW split_growing_row(const ROW_PERIODS& periods, N_RANGE all)
{
    const std::int64_t end = first_too_slow(periods, all);
    const std::int64_t last = std::min(end, all.m_last);
    const std::int64_t legal = first_fast_enough(periods, {all.m_first, last});
    if (end > all.m_last) {
        return {{all.m_first, legal - 1}, {legal, last}, NOTHING};
    }
    // The end itself is illegal however fast it is.
    return {{all.m_first, std::min(legal, end) - 1}, {legal, end - 1}, {end, end}};
}

ROW split_falling_row(const ROW_PERIODS& periods, N_RANGE all)
{
    if (periods.is_too_slow(all.m_first)) {
        return {NOTHING, NOTHING, {all.m_first, all.m_first}};
    }
    const std::int64_t fast = first_too_fast(periods, all);
    return {NOTHING, {all.m_first, fast - 1}, {fast, all.m_last}};
}

}  // namespace pll_internal
