// The library's answer to a request, and what the program makes of it.
#pragma once

#include "app/request/request.h"

#include "pll.h"

#include <string>
#include <vector>

// The phase of an output in degrees of that output: 360 are one of its periods. Not a number where
// there is none.
struct OUTPUT_PHASE
{
    double m_asked;
    double m_achieved;
    double m_previous;  // the legal neighbours of the phase asked for
    double m_next;
    double m_step;  // one VCO tap
};

// How an output comes out.
struct OUTPUT_RESULT
{
    RATIONAL m_ratio;  // achieved, to the input
    RATIONAL m_error;  // relative to the ratio asked for; 0: exact
    OUTPUT_PHASE m_phase;
    bool m_missed;  // not taken for met, by the library or by the tolerance asked for
};

// Whether the last synthesis of a PLL, which failed, could try any M and N.
bool has_candidate(const PLL& pll);

// Whether a counter can count no further.
bool is_at_largest_count(const PLL_OUTPUT_TAP& tap);

class ANSWER
{
public:
    explicit ANSWER(const REQUEST& request);
    ANSWER(const ANSWER&) = delete;
    ANSWER& operator=(const ANSWER&) = delete;

    bool is_met() const { return m_library_met && m_within_tolerance; }
    bool is_met_by_library() const { return m_library_met; }
    // The outputs have been given counters; false when no M and N could be tried.
    bool has_outputs() const { return m_library_met || has_candidate(m_pll); }

    const PLL& get_pll() const { return m_pll; }
    const PLL_PROP& get_achieved() const { return m_achieved; }
    const std::vector<OUTPUT_RESULT>& get_outputs() const { return m_outputs; }

private:
    PLL m_pll;
    PLL_PROP m_achieved;
    bool m_library_met = false;
    bool m_within_tolerance = true;
    std::vector<OUTPUT_RESULT> m_outputs;
};

// Why the request is not met, a line each, most important first: the library's text, what was
// closest and by how much. Empty when it is met.
std::vector<std::string> explain_miss(const REQUEST& request, const ANSWER& answer);

// The longest VCO period of a post-scale, which a spread may shorten.
int vco_max_period(const REQUEST& request, const PLL& pll, int post_scale);

// The post-scale of the answer; without one, that which the closest miss comes closest in.
int settled_post_scale(const REQUEST& request, const ANSWER& answer);
