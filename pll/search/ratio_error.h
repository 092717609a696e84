// How far a candidate's output frequencies are from the request. The expressions stand here once,
// for the assignment of counters and for the test that spares hopeless candidates it: both must
// come to the same last digit.
#pragma once

#include "pll_outcome.h"

#include "platform/arith.h"

#include <cfloat>
#include <cmath>

namespace pll_internal {

// What one candidate measures while its output counters are assigned.
struct CANDIDATE_SCORE
{
    double m_error = 0.0;           // frequency-ratio errors that count, impossible counters
    double m_relative_error = 0.0;  // of every output that is not exact
    double m_cascade_penalty = 0.0;
    bool m_clamped = false;  // a counter was clamped or forced while m_error was still 0
    bool m_may_lower_cut_off = true;
};

inline constexpr double EXACT_RATIO = PLL_EXACT_RATIO;     // below it a ratio error is rounding
inline constexpr double MET_RELATIVE = PLL_MET_TOLERANCE;  // below it an output counts as met

// What a clock asks for, as the expressions below use it.
struct RATIO_WISH
{
    double m_mult;
    double m_div;
    double m_ratio;    // mult / div
    double m_inverse;  // div / mult
};

inline RATIO_WISH read_ratio_wish(int mult, int div)
{
    return {double(mult), double(div), double(mult) / double(div), double(div) / double(mult)};
}

inline bool has_wish(const RATIO_WISH& wish)
{
    return wish.m_mult >= 1.0 && wish.m_div >= 1.0;
}

// The VCO of a candidate.
struct VCO_RATIO
{
    VCO_RATIO(int m, int n) : m_m(m), m_n(n), m_ratio(m_m / m_n) {}

    double m_m;
    double m_n;
    double m_ratio;  // M / N
};

// The counter that comes nearest to an output's ratio.
inline int counter_value(const VCO_RATIO& vco, const RATIO_WISH& wish)
{
    const double value = (vco.m_m * wish.m_div) / (vco.m_n * wish.m_mult) + 0.5;
    return value < 1.0 ? 1 : truncate_to_int(value);
}

// Adds the error of one output with counter `count`. Returns it, 0 when the output counts as met.
inline double add_frequency_error(const VCO_RATIO& vco, int count, const RATIO_WISH& wish,
                                  CANDIDATE_SCORE* score)
{
    const double error = std::fabs(vco.m_ratio / count - wish.m_ratio);
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

// How far M / N is from a VCO ratio that is wished for; 0 where that is rounding.
inline double vco_ratio_error(double ratio, const RATIO_WISH& wish)
{
    const double error = std::fabs(ratio - wish.m_ratio);
    return error < EXACT_RATIO ? 0.0 : error;
}

// The wish for a VCO ratio, if any, counts once for every output, in the place of the output's own
// error.
inline double add_vco_ratio_error(const VCO_RATIO& vco, const RATIO_WISH& wish, double tap_error,
                                  CANDIDATE_SCORE* score)
{
    if (!has_wish(wish)) {
        return tap_error;
    }
    const double error = vco_ratio_error(vco.m_ratio, wish);
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

// What outputs that are only nearly met cost a candidate.
inline double near_miss_cost(double relative_error)
{
    constexpr double NEARLY_MET_PENALTY = 8192.0;
    return relative_error > DBL_EPSILON ? relative_error / MET_RELATIVE + NEARLY_MET_PENALTY : 0.0;
}

// A higher post-scale costs more than all that is wrong with a met candidate of a lower one.
inline double post_scale_cost(int post_scale)
{
    constexpr double POST_SCALE_PENALTY = 65536;
    return (post_scale - 1) * POST_SCALE_PENALTY;
}

// Adds both to `cost`. The sum never falls when an error grows.
inline double add_frequency_cost(double relative_error, int post_scale, double cost)
{
    return cost + near_miss_cost(relative_error) + post_scale_cost(post_scale);
}

}  // namespace pll_internal
