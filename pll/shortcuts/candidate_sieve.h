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

#include "placing/placement.h"
#include "search/limits.h"
#include "search/result.h"
#include "shortcuts/feedback_rest.h"
#include "shortcuts/row_bound.h"

#include <cstdint>

namespace pll_internal {

class CANDIDATE_SIEVE
{
public:
    CANDIDATE_SIEVE(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits);

    // Whether (m, n) at `post_scale` misses an output for sure, or costs more than the best of
    // `result`, tells nothing new and leaves an automatic bandwidth's `cut_off` of M as it is.
    bool retains(int post_scale, int m, int n, std::int64_t cut_off,
                 const SEARCH_RESULT& result) const
    {
        return m_rest.of(m, n) != 0.0 ||
               (!m_tells && is_in_vain(post_scale, m, n, cut_off, result));
    }

    enum class LOOK
    {
        UNSURE,
        MISSED,
        TOLD  // all that its evaluation would, but for a row of a bandwidth table
    };

    // The same for a legal setting whose phases are told at once, or which gets a row of a
    // bandwidth table. `rows` bounds the cost of that.
    LOOK look_at(int post_scale, int m, int n, std::int64_t cut_off, ROW_BOUND* rows,
                 SEARCH_RESULT* result) const;

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
        double m_inverse;        // div / mult
        double m_sure_error;     // a relative error above it is surely counted
        double m_largest_count;  // that it divides by, and may have been told
    };

    // Counts that were told, one bit each, up to an end that grows with them.
    class TOLD_COUNTS
    {
    public:
        static constexpr int MOST = 16383;  // larger ones are not kept

        TOLD_COUNTS() : m_words_in_use(0) {}

        int end() const { return m_words_in_use * WORD_BITS; }
        bool has(int count) const  // below the end
        {
            return ((m_words[count / WORD_BITS] >> (count % WORD_BITS)) & 1U) != 0;
        }
        void add(int count)
        {
            for (; end() <= count; ++m_words_in_use) {
                m_words[m_words_in_use] = 0;
            }
            m_words[count / WORD_BITS] |= std::uint64_t{1} << (count % WORD_BITS);
        }

    private:
        static constexpr int WORD_BITS = 64;

        int m_words_in_use;
        std::uint64_t m_words[(MOST + 1) / WORD_BITS];
    };

    // What is known of a setting whose outputs are surely met.
    struct MEASURE
    {
        double m_ratio;
        double m_relative_error;  // no more than the sum of all outputs'
        int m_counts[PLL_MAX_TAPS];
    };

    bool is_in_vain(int post_scale, int m, int n, std::int64_t cut_off,
                    const SEARCH_RESULT& result) const;
    VERDICT measure(int m, int n, std::int64_t cut_off, MEASURE* measured) const;
    static bool loses(double cost, int n, const SEARCH_RESULT& result);
    bool places_zero_phases(const PHASE_FRAME& frame, const MEASURE& measured) const;

    const PLL& m_pll;
    const PLL_PROP& m_request;
    const SEARCH_LIMITS& m_limits;
    FEEDBACK_REST m_rest;
    bool m_can_tell;         // what costs and carried values depend on is as simple as said above
    bool m_has_vco_wish;     // and an output to count what it misses
    bool m_tells;            // what is passed over leaves something behind
    double m_largest_ratio;  // of the candidates that told
    double m_most_negative;  // phase of the request; 0: none is below
    int m_most_start;        // that every output with a phase of 0 can start at, if it divides
    int m_phased_count;
    int m_phased[PLL_MAX_TAPS];          // the outputs with other phases, or a serial clock
    double m_most_counts[PLL_MAX_TAPS];  // that each output divides by
    OUTPUT m_outputs[PLL_MAX_TAPS];
    TOLD_COUNTS m_told[PLL_MAX_TAPS];
};

}  // namespace pll_internal
