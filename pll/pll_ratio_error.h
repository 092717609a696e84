// How far a candidate's output frequencies are from the request. The expressions stand here once,
// for the assignment of counters and for the test that spares hopeless candidates it: both must
// come to the same last digit.
#pragma once

#include "pll_arith.h"
#include "pll_prop.h"

#include <cmath>

// What one candidate measures while its output counters are assigned.
struct CANDIDATE_SCORE
{
    double m_error = 0.0;           // frequency-ratio errors that count, impossible counters
    double m_relative_error = 0.0;  // of every output that is not exact
    double m_cascade_penalty = 0.0;
    bool m_clamped = false;  // a counter was clamped or forced while m_error was still 0
    bool m_may_lower_cut_off = true;
};

inline constexpr double EXACT_RATIO = 1e-12;   // below it a ratio error is rounding
inline constexpr double MET_RELATIVE = 0.001;  // below it an output counts as met

// The counter that comes nearest to an output's ratio.
inline int counter_value(int m, int n, const PLL_USER_TAP& wish)
{
    const double value = (double(m) * wish.m_div) / (double(n) * wish.m_mult) + 0.5;
    return value < 1.0 ? 1 : truncate_to_int(value);
}

// Adds the error of one output with counter `count`. Returns it, 0 when the output counts as met.
inline double add_frequency_error(int m, int n, int count, const PLL_USER_TAP& wish,
                                  CANDIDATE_SCORE* score)
{
    const double ratio = double(m) / double(n);
    const double error = std::fabs(ratio / count - double(wish.m_mult) / double(wish.m_div));
    if (error < EXACT_RATIO) {
        return 0.0;
    }
    const double relative = std::fabs((wish.m_div * error) / wish.m_mult);
    score->m_relative_error += relative;
    if (!(relative >= MET_RELATIVE)) {
        return 0.0;
    }
    score->m_error += error;
    return error;
}

// The wish for a VCO ratio counts once for every output, in the place of the output's own error.
inline double add_vco_ratio_error(int m, int n, const PLL_PROP& request, double tap_error,
                                  CANDIDATE_SCORE* score)
{
    if (request.m_vco_mult < 1 || request.m_vco_div < 1) {
        return tap_error;
    }
    const double ratio = double(m) / double(n);
    double error = std::fabs(ratio - double(request.m_vco_mult) / double(request.m_vco_div));
    if (error < EXACT_RATIO) {
        error = 0.0;
    }
    score->m_error += error;
    return error;
}

// What an output in the feedback path leaves over of M; a division by 0 leaves more than any.
inline int feedback_rest(int m, int count)
{
    constexpr int NO_FEEDBACK_COUNT = 131072;
    return count == 0 ? NO_FEEDBACK_COUNT : safe_mod(m, count);
}

// Charges what a counter cannot count. The flag tells that nothing else was wrong before.
inline void charge_impossible_counter(int excess, CANDIDATE_SCORE* score)
{
    if (score->m_error == 0.0) {
        score->m_clamped = true;
    }
    score->m_error += excess;
}
