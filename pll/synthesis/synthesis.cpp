// The synthesis: search, then finish. Only the finishing steps write into the host's PLL.
#include "pll.h"
#include "pll_prop.h"

#include "filter/loop_filter.h"
#include "loop/taps.h"
#include "placing/neighbours.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "search/debug_log.h"
#include "search/limits.h"
#include "search/result.h"
#include "synthesis/search.h"

#include <new>
#include <optional>
#include <unistd.h>

using namespace pll_internal;

namespace {

constexpr double FULL_TURN = 360.0;            // degrees
constexpr double NEGLIGIBLE_PHASE_TIME = 0.5;  // ps
constexpr int UNKNOWN_DUTY = 50;               // percent

bool s_obeys_debug_switch = true;

// The switch files of the current directory. The second wins, but there is nothing to win over
// while debugging is off: asking for it then would be a system call on every synthesis for nothing.
bool read_debug_switch(bool debug)
{
#ifndef PLL_WITHOUT_DEBUG_SWITCH
    if (s_obeys_debug_switch) {
        debug = debug || access("pll_debug", F_OK) == 0;
        return debug && access("pll_nodebug", F_OK) != 0;
    }
#endif
    return debug;
}

// Each error points at what its reader can change: the limits when nothing is legal, the
// frequencies when a counter cannot count that far, else the request.
PLL::PLL_ERROR_TYPE search_error(const SEARCH_RESULT& result)
{
    if (result.m_best_error == 0.0) {
        return PLL::PLL_NO_ERROR;
    }
    if (!result.m_found) {
        return PLL::PLL_M_N_NOT_FOUND;
    }
    return result.m_clamped ? PLL::PLL_POST_DIVIDER_MAX_EXCEEDED : PLL::PLL_MULT_DIV_NOT_ACHIEVED;
}

// Nothing can be tried, so nothing is known of phases and duty cycles. The pair is shown so that
// its reader sees which limit is in the way.
void take_closest_miss(const CLOSEST_MISS& miss, int taps_count, PLL* pll)
{
    pll->m_m.m_count = miss.m_m;
    pll->m_n.m_count = miss.m_n;
    pll->m_vco_period = miss.m_vco_period;
    for (int i = 0; i < clamp_taps(taps_count); ++i) {
        PLL_OUTPUT_TAP& tap = pll->m_taps[i];
        tap.m_next_phase_degree = 0.0;
        tap.m_prev_phase_degree = 0.0;
        tap.m_next_duty_cycle = UNKNOWN_DUTY;
        tap.m_prev_duty_cycle = UNKNOWN_DUTY;
        tap.m_smallest_duty_cycle_min = UNKNOWN_DUTY;
        tap.m_largest_duty_cycle_max = UNKNOWN_DUTY;
    }
}

// A missed request is placed only now: its candidates were ranked by their frequencies alone.
void finish_inexact(const SEARCH_LIMITS& limits, const PLL_PROP& request, PLL* pll)
{
    pll->synthesize_best_phase_and_duty_cycle(pll, request);
    if (limits.m_wish.m_table_mode) {
        PLL::synthesize_best_bandwidth_using_table(pll, request);
    }
    pll->correct_next_and_previous_values_for_ui();
}

void set_spread_counters(const PLL_PROP& request, PLL* pll)
{
    const int m = pll->m_m.m_count;
    // Rounded to the nearest whole count. N stays, so the frequency falls with M.
    pll->m_m.m_ss_count = wrap_sub(m, truncate_to_int(m * request.m_down_spread + 0.5));
    pll->m_n.m_ss_count = pll->m_n.m_count;
    pll->m_ss_cycles =
        std::min(safe_div(request.m_ss_period, request.m_fin_period), pll->m_ss_counter_max);
}

// Returns whether the delays could be placed.
bool finish_exact(const SEARCH_LIMITS& limits, const PLL_PROP& request, PLL* pll)
{
    pll->correct_next_and_previous_values_for_ui();
    if (limits.m_spread) {
        set_spread_counters(request, pll);
    }
    if (limits.m_wish.is_custom()) {
        synthesize_loop_filter(pll, request.m_fin_period, limits.m_wish.m_bandwidth,
                               limits.m_spread);
    }
    return pll->synthesize_delay_chains(request);
}

// The best candidate, with the neighbours that all candidates narrowed.
void take_best(const SEARCH_RESULT& result, int taps_count, PLL* pll)
{
    *pll = result.m_best;
    for (int i = 0; i < clamp_taps(taps_count); ++i) {
        write_neighbours(result.m_neighbours[i], &pll->m_taps[i]);
    }
}

bool finish_search(const SEARCH_LIMITS& limits, const SEARCH_RESULT& result,
                   const PLL_PROP& request, PLL* pll)
{
    if (result.m_best_error == 0.0) {
        take_best(result, request.m_taps_count, pll);
        return finish_exact(limits, request, pll);
    }
    if (result.m_found) {
        take_best(result, request.m_taps_count, pll);
        finish_inexact(limits, request, pll);
    } else {
        take_closest_miss(result.m_miss, request.m_taps_count, pll);
    }
    return false;
}

// A negative factor makes relative errors negative, and these count as met.
bool has_impossible_ratio(const PLL_PROP& request)
{
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        if (request.m_taps[i].m_mult < 1 || request.m_taps[i].m_div < 1) {
            return true;
        }
    }
    return false;
}

bool is_input_too_fast(const PLL_PROP& request, int fin_min_period)
{
    return (0 < request.m_fin_period && request.m_fin_period < fin_min_period) ||
           (1 <= request.m_fin2_period && request.m_fin2_period < fin_min_period);
}

// The last checks that can refuse a setting, in their order.
PLL_CHECK find_last_refusal(const PLL& pll, const PLL_PROP& request)
{
    if (is_input_too_fast(request, pll.m_fin_min_period)) {
        return PLL_CHECK::INPUT;
    }
    if (!pll.m_info.has_info() || !pll.m_info.m_basic_info->m_is_pfd_bandwidth_rule_an_error) {
        return PLL_CHECK::NONE;
    }
    if (!pll.m_bandwidth_legal_for_fin) {
        return PLL_CHECK::TABLE_FOR_INPUT;
    }
    return pll.m_bandwidth_legal_for_mult_div ? PLL_CHECK::NONE : PLL_CHECK::TABLE;
}

PLL::PLL_ERROR_TYPE error_of(PLL_CHECK check)
{
    switch (check) {
    case PLL_CHECK::DELAYS:
        return PLL::PLL_DELAY_RANGE_TOO_WIDE;
    case PLL_CHECK::RATIOS:
        return PLL::PLL_MULT_DIV_NOT_ACHIEVED;
    case PLL_CHECK::SPREAD:
        return PLL::PLL_SS_TOO_HIGH;
    case PLL_CHECK::INPUT:
        return PLL::PLL_FIN_OUT_OF_RANGE;
    case PLL_CHECK::TABLE_FOR_INPUT:
        return PLL::PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV;
    case PLL_CHECK::TABLE:
        return PLL::PLL_NO_BANDWIDTH_FOR_MULT_DIV;
    case PLL_CHECK::NONE:
        break;
    }
    return PLL::PLL_NO_ERROR;
}

// Notes that a check failed. A later one overwrites what an earlier one noted, in the error too.
void refuse(PLL_CHECK check, PLL* pll)
{
    pll->m_error = error_of(check);
    pll->m_outcome.m_refused_by = check;
}

// Returns whether the setting stands.
bool run_final_checks(bool met, const SEARCH_RESULT& result, const PLL_PROP& request, PLL* pll)
{
    if (met && (!result.m_taken || has_impossible_ratio(request))) {
        refuse(PLL_CHECK::RATIOS, pll);
        met = false;
    }
    // Missed requests are checked as well: this error takes the place of theirs.
    if (request.m_down_spread > PLL_LARGEST_DOWN_SPREAD) {
        refuse(PLL_CHECK::SPREAD, pll);
        return false;
    }
    if (!met) {
        return false;
    }
    const PLL_CHECK refusal = find_last_refusal(*pll, request);
    if (refusal != PLL_CHECK::NONE) {
        refuse(refusal, pll);
    }
    return refusal == PLL_CHECK::NONE;
}

// What the search alone came to. A setting whose delays find no place is refused at once.
PLL_OUTCOME describe_search(const SEARCH_RESULT& result, bool met)
{
    PLL_OUTCOME outcome;
    if (!result.m_found) {
        outcome.m_kind = PLL_OUTCOME_KIND::NOTHING_TRIED;
        return outcome;
    }
    const bool is_exact = result.m_best_error == 0.0;
    outcome.m_kind = is_exact ? PLL_OUTCOME_KIND::REFUSED : PLL_OUTCOME_KIND::MISSED;
    outcome.m_refused_by = is_exact && !met ? PLL_CHECK::DELAYS : PLL_CHECK::NONE;
    outcome.m_m = result.m_best_point.m_m;
    outcome.m_n = result.m_best_point.m_n;
    return outcome;
}

bool synthesize_request(const PLL_PROP& request, PLL* pll)
{
    pll->m_debug = read_debug_switch(pll->m_debug);
    std::optional<SYNTHESIS_TRACE> trace;
    if (pll->m_debug) {
        trace.emplace().open();
    }
    const SEARCH_LIMITS limits = read_search_limits(*pll, request);
    if (trace) {
        trace->request(limits, request);
    }
    // From here on the PLL is the setting that is looked for; candidates start as copies of it.
    pll->m_feedback_tap = request.m_feedback_tap;

    SEARCH_RESULT result(*pll, request);
    search(*pll, request, limits, trace ? &*trace : nullptr, &result);

    const PLL::PLL_ERROR_TYPE error = search_error(result);
    const bool met = finish_search(limits, result, request, pll);
    pll->m_outcome = describe_search(result, met);
    if (pll->m_delta_phase / FULL_TURN * request.m_fin_period < NEGLIGIBLE_PHASE_TIME) {
        pll->m_delta_phase = 0.0;
    }
    if (error != PLL::PLL_NO_ERROR) {
        pll->m_error = error;
    }
    if (trace) {
        trace->best(*pll);
    }
    const bool stands = run_final_checks(met, result, request, pll);
    if (stands) {
        pll->m_outcome.m_kind = PLL_OUTCOME_KIND::MET;
    }
    return stands;
}

}  // namespace

void PLL::obey_debug_switch(bool obey)
{
    s_obeys_debug_switch = obey;
}

bool PLL::synthesize(const PLL_PROP& request)
{
    const HOST_STATE state;
    m_outcome = PLL_OUTCOME{PLL_OUTCOME_KIND::OUT_OF_MEMORY};
    if (m_impl == nullptr) {
        return false;  // the first PLL found no memory for what all share
    }
    try {
        return synthesize_request(request, this);
        // m_error stays as it was: memory has no number among the errors of a setting.
    } catch (const std::bad_alloc&) {
        m_outcome = PLL_OUTCOME{PLL_OUTCOME_KIND::OUT_OF_MEMORY};
        return false;
    }
}
