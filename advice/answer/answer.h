// The answer to a request: a setting of the PLL, what it achieves, and the verdict on it.
//
//   const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
//   if (answer.is_met()) use(answer.get_pll());
//
// The library's own answer comes first. When it misses a wish or a limit, the thorough search goes
// on among the VCO ratios that the counters can make, asks the library for each that keeps every
// output within its tolerance, and takes the cheapest whose verdict is met.
#pragma once

#include "advice/limits/limits.h"
#include "advice/request/request.h"
#include "advice/verdict/verdict.h"

#include "pll.h"
#include "pll_prop.h"

#include <vector>

namespace advice {

enum class EFFORT
{
    FIRST_ANSWER_ONLY,  // no further search, few allocations
    THOROUGH
};

// The phase of an output in degrees of that output: 360 are one of its periods. Not a number where
// there is none.
struct OUTPUT_PHASE
{
    double m_asked = 0.0;
    double m_achieved = 0.0;
    double m_previous = 0.0;  // one step of this setting back and on
    double m_next = 0.0;
    double m_step = 0.0;  // one VCO tap
    // Around the phase asked for, over all settings that the library looked at.
    double m_any_previous = 0.0;
    double m_any_next = 0.0;
};

// How an output comes out.
struct OUTPUT_RESULT
{
    RATIONAL m_ratio;      // achieved, to the input
    RATIONAL m_frequency;  // Hz; invalid when it does not fit
    RATIONAL m_error;      // achieved / asked - 1; invalid when it does not fit
    OUTPUT_PHASE m_phase;
    RATIONAL m_duty;        // percent
    bool m_missed = false;  // a wish of this output is not kept
};

// Where a setting comes from.
enum class ORIGIN
{
    FIRST_ANSWER,   // the library's own for the request as it stands
    FURTHER_SEARCH  // the library's for a VCO ratio that was asked for besides
};

class ANSWER
{
public:
    // Asks the library. The limits must outlive the answer, the request need not.
    ANSWER(const REQUEST& request, const LIMITS& limits, EFFORT effort);
    ANSWER(const ANSWER&) = delete;
    ANSWER& operator=(const ANSWER&) = delete;

    // The library takes the request for met, and every wish and every limit is kept.
    bool is_met() const { return m_library_met && m_verdict.m_met; }
    // What PLL::synthesize said of this setting.
    bool is_met_by_library() const { return m_library_met; }
    // The outputs have been given counters; false when no M and N could be tried.
    bool has_setting() const { return m_verdict.m_has_setting; }

    const PLL& get_pll() const { return m_pll; }
    const PLL_PROP& get_achieved() const { return m_achieved; }
    const std::vector<OUTPUT_RESULT>& get_outputs() const { return m_outputs; }
    const VERDICT& get_verdict() const { return m_verdict; }
    // What the library was asked: synthesising it with the limits gives this setting again.
    const PLL_PROP& get_asked() const { return m_asked; }
    // The smallest N that the library was allowed for it; 0: as the limits have it.
    int get_least_n() const { return m_least_n; }
    ORIGIN get_origin() const { return m_origin; }
    // How many VCO ratios the further search asked the library for.
    int get_tries() const { return m_tries; }

private:
    void synthesize(const REQUEST& request, const LIMITS& limits);
    void search_further(const REQUEST& request, const LIMITS& limits);
    void describe_outputs(const REQUEST& request);

    PLL m_pll;
    PLL_PROP m_asked;
    PLL_PROP m_achieved;
    VERDICT m_verdict;
    std::vector<OUTPUT_RESULT> m_outputs;
    ORIGIN m_origin = ORIGIN::FIRST_ANSWER;
    int m_least_n = 0;
    int m_tries = 0;
    bool m_library_met = false;
};

// The answer to a request that find_problem() finds none in.
inline ANSWER solve(const REQUEST& request, const LIMITS& limits, EFFORT effort)
{
    return ANSWER(request, limits, effort);
}

// Whether a synthesis, which failed, could try any M and N at all.
bool has_candidate(const PLL& pll);

}  // namespace advice
