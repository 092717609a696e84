// A quick look at a setting: would its evaluation change anything?
//
// Costs only grow from term to term, so what the frequencies of a setting miss is a lower bound of
// its cost. One that is dearer than the best is not taken; it could still narrow the next and
// previous phases and duty cycles that the host is told. Duty cycles depend on counter values
// alone, and around a phase of 0 the largest ratio tells most: when earlier candidates told as
// much, nothing is left of it. Other phases are told without the rest of the evaluation.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/limits.h"
#include "search/result.h"
#include "shortcuts/feedback_rest.h"

#include <cstdint>

namespace pll_internal {

class CANDIDATE_SIEVE
{
public:
    CANDIDATE_SIEVE(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits);

    // Whether (m, n) at `post_scale` misses an output for sure, or costs more than the best of
    // `result`, tells nothing new and leaves an automatic bandwidth's `cut_off` of M as it is.
    bool retains(int post_scale, int m, int n, std::int64_t cut_off,
                 const SEARCH_RESULT& result) const;

    // The same for the phases of a legal setting, which are told at once.
    bool tells(int post_scale, int m, int n, std::int64_t cut_off, SEARCH_RESULT* result) const;

    // Takes note of what a candidate told whose outputs are all met.
    void note_told(const SEARCH_POINT& point, const PLL& candidate);

private:
    enum class VERDICT
    {
        MISSED,
        MET,
        UNSURE
    };

    // An output's wish, as the quick look uses it.
    struct OUTPUT
    {
        double m_inverse;     // div / mult
        double m_sure_error;  // a relative error above it is surely counted
        double m_largest_count;
    };

    static constexpr int TOLD_COUNTS = 1024;  // larger counters are not kept
    static constexpr int WORD_BITS = 64;

    // What is known of a setting whose outputs are surely met.
    struct MEASURE
    {
        double m_ratio;
        double m_relative_error;  // no more than the sum of all outputs'
        int m_counts[PLL_MAX_TAPS];
    };

    VERDICT measure(int m, int n, std::int64_t cut_off, MEASURE* measured) const;
    static bool loses(double cost, int n, const SEARCH_RESULT& result);
    bool is_told(int output, int count) const
    {
        return ((m_told[output][count / WORD_BITS] >> (count % WORD_BITS)) & 1U) != 0;
    }

    const PLL& m_pll;
    const PLL_PROP& m_request;
    const SEARCH_LIMITS& m_limits;
    FEEDBACK_REST m_rest;
    bool m_can_tell;         // what costs and carried values depend on is as simple as said above
    bool m_has_phases;       // other than 0
    double m_largest_ratio;  // of the candidates that told
    OUTPUT m_outputs[PLL_MAX_TAPS];
    std::uint64_t m_told[PLL_MAX_TAPS][TOLD_COUNTS / WORD_BITS];  // a bit for each counter value
};

}  // namespace pll_internal
