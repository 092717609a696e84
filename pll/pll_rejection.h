// Spares candidates that cannot win the work of becoming one.
//
// An inexact candidate wins only with an error sum below the best one so far (which is 0 once an
// exact one is known) and leaves nothing behind when it does not. Its sum grows from output to
// output, never shrinks, so it may be given up as soon as it has reached the best. Two tests do
// that: a quick one that bounds the sums of several candidates from below at once, and one with the
// exact expressions.
#pragma once

#include "pll.h"
#include "pll_prop.h"
#include "pll_ratio_error.h"

#include <cstdint>

class REJECTION
{
public:
    static constexpr int LANES = 4;  // candidates that the quick test looks at in one go

    // `m_max` is the largest M that will be asked about.
    REJECTION(const PLL& pll, const PLL_PROP& request, int m_max);

    // Of the candidates (m, n) .. (m, n + LANES - 1), bit i for n + i: those that may still win.
    std::uint32_t may_win(int m, std::int64_t n, double best_error) const;

    // Whether (m, n) is inexact with an error sum that is not below `best_error`. False may also
    // mean that this cannot be told without assigning the counters.
    bool rejects(int m, int n, double best_error) const;

private:
    void add_impossible_counter_error(int index, int count, CANDIDATE_SCORE* score) const;

    // An output's ratio, mult / div, and its inverse.
    struct WISH
    {
        double m_ratio;
        double m_inverse;
    };

    const PLL& m_pll;
    const PLL_PROP& m_request;
    int m_taps_count;
    bool m_can_tell;
    bool m_can_bound;
    WISH m_wishes[PLL_MAX_TAPS];
};
