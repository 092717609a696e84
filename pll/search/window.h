// Where the counters can be legal.
//
// For a fixed M the PFD period fin x N and the VCO period fin x N / M both grow with N (or both
// fall, for a negative input period), rounding included. So every limit cuts the N of a row at one
// place, which a division finds to within a step; the exact comparison then decides.
#pragma once

#include "pll_outcome.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace pll_internal {

// The first value in first..last for which `holds`, which must stay true once it is; last + 1 when
// there is none. `guess` is where it is expected.
template <class HOLDS>
std::int64_t first_that_holds(std::int64_t first, std::int64_t last, double guess, HOLDS holds)
{
    constexpr int STEPS_NEAR_GUESS = 4;
    std::int64_t low = first;      // nothing below holds
    std::int64_t high = last + 1;  // holds, or is past the end
    std::int64_t at = first;
    if (guess > double(first)) {
        at = guess < double(last) ? std::int64_t(guess) : last;
    }
    for (int step = 0; low < high; ++step) {
        if (step >= STEPS_NEAR_GUESS) {
            at = low + (high - low) / 2;
        }
        if (holds(at)) {
            high = at;
            at = at - 1;
        } else {
            low = at + 1;
            at = at + 1;
        }
        at = std::clamp(at, low, std::max(low, high - 1));
    }
    return low;
}

constexpr double PERIOD_TOLERANCE = PLL_PERIOD_TOLERANCE;  // ps, on every VCO and PFD bound

// A closed range of N; empty when m_first is above m_last.
struct N_RANGE
{
    std::int64_t m_first;
    std::int64_t m_last;

    bool is_empty() const { return m_first > m_last; }
};

// A closed range of periods, ps.
struct PERIOD_RANGE
{
    double m_min;
    double m_max;
};

// One input clock at one post-scale and M: its periods at every N, and what is legal of them.
class ROW_PERIODS
{
public:
    ROW_PERIODS(double fin, double m, PERIOD_RANGE vco, PERIOD_RANGE pfd)
        : m_fin(fin),
          m_m(m),
          m_vco_min(vco.m_min - PERIOD_TOLERANCE),
          m_vco_max(vco.m_max + PERIOD_TOLERANCE),
          m_pfd_min(pfd.m_min - PERIOD_TOLERANCE),
          m_pfd_max(pfd.m_max + PERIOD_TOLERANCE)
    {
    }

    double vco(std::int64_t n) const { return m_fin * double(n) / m_m; }
    double pfd(std::int64_t n) const { return m_fin * double(n); }
    bool is_vco_too_fast(std::int64_t n) const { return vco(n) < m_vco_min; }
    bool is_too_fast(std::int64_t n) const { return is_vco_too_fast(n) || pfd(n) < m_pfd_min; }
    bool is_too_slow(std::int64_t n) const { return vco(n) > m_vco_max || pfd(n) > m_pfd_max; }

    // About where a growing row becomes fast enough, and too slow.
    double guess_fast_enough() const { return std::max(m_vco_min * m_m, m_pfd_min) / m_fin; }
    double guess_too_slow() const { return std::min(m_vco_max * m_m, m_pfd_max) / m_fin; }

    // The N that are legal, of those in `all`.
    N_RANGE legal_window(N_RANGE all) const;

private:
    double m_fin;  // ps
    double m_m;
    double m_vco_min;  // ps, tolerance included, as in the next three
    double m_vco_max;
    double m_pfd_min;
    double m_pfd_max;
};

// The N of one row, in the order in which a search visits them: illegal ones before the legal
// window, the window, and illegal ones behind it.
struct ROW
{
    N_RANGE m_before;
    N_RANGE m_legal;
    N_RANGE m_behind;
};

// A growing row (positive input period) ends with the first N that is too slow.
ROW split_growing_row(const ROW_PERIODS& periods, N_RANGE all);

// A falling one ends at once when it starts too slow.
ROW split_falling_row(const ROW_PERIODS& periods, N_RANGE all);

}  // namespace pll_internal
