// The ranking of candidates.
//
// Inexact candidates compare by their error sum alone, and the first of equals stays. Any exact one
// beats them. Exact candidates compare by a cost whose weights order the criteria: post-scale
// (65536), outputs that are only nearly met (8192), cascades (4096), then phases and duty cycles by
// what they miss. At equal cost the smaller N, an M that stays small, and a VCO near its centre
// win.
#include "search/ranking.h"

#include "pll_util.h"

#include "loop/loop_model.h"
#include "loop/taps.h"
#include "platform/arith.h"
#include "search/candidate.h"

#include <cfloat>
#include <cmath>

namespace pll_internal {

namespace {

constexpr double PREFERRED_M_PENALTY = 5.0;
constexpr double RATIO_LIMIT_PENALTY = 32768.0;
constexpr double EVEN_M_ADVANTAGE = 200.0;  // ps of VCO deviation
constexpr int LARGE_M = 40;                 // beyond it a loop is noisier

// One rounding for every penalty: costs are compared to the last digit.
void add_penalty_if(bool outside, double* cost)
{
    if (outside) {
        *cost += PREFERRED_M_PENALTY;
    }
}

double even_m_bias(const PLL& candidate, const PLL& best)
{
    const bool candidate_even = candidate.m_m.m_count % 2 == 0;
    const bool best_even = best.m_m.m_count % 2 == 0;
    if (candidate_even == best_even) {
        return 0.0;
    }
    return candidate_even ? EVEN_M_ADVANTAGE : -EVEN_M_ADVANTAGE;
}

bool wins_tie(const PLL& candidate, const SEARCH_RESULT& result)
{
    const PLL& best = result.m_best;
    if (candidate.m_n.m_count > best.m_n.m_count) {
        return false;
    }
    if (candidate.m_m.m_count > LARGE_M && best.m_m.m_count <= LARGE_M) {
        return false;
    }
    return even_m_bias(candidate, best) + result.m_best_vco_deviation >
           std::fabs(candidate.m_delta_vco_period);
}

void take(const PLL& candidate, SEARCH_RESULT* result)
{
    result->m_best_vco_deviation = std::fabs(candidate.m_delta_vco_period);
    result->m_best = candidate;
    result->m_taken = true;
}

}  // namespace

void add_preferred_m_penalties(bool spread, const PLL_BASIC_INFO& info, PLL* candidate)
{
    const int count = candidate->m_m.m_count;
    const int ss_count = candidate->m_m.m_ss_count;
    const int smallest = info.m_m_counter_preferred_min;
    const int largest = info.m_m_counter_preferred_max;
    if (smallest >= 0) {
        add_penalty_if(count < smallest, &candidate->m_cost);
        add_penalty_if(spread && ss_count < smallest, &candidate->m_cost);
    }
    if (largest >= 0) {
        add_penalty_if(count > largest, &candidate->m_cost);
        add_penalty_if(spread && ss_count > largest, &candidate->m_cost);
    }
}

void add_ratio_limit_penalty(const PLL_BASIC_INFO& info, PLL* candidate)
{
    if (info.m_spe_ratio_constant_x == DBL_MAX) {
        return;
    }
    const double division = effective_feedback_division(*candidate);
    const double ratio = divide_by_any(division, candidate->m_i);
    if (ratio > info.m_spe_ratio_constant_x) {
        candidate->m_cost += ratio + RATIO_LIMIT_PENALTY;
    }
}

bool RANKING::offer(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result)
{
    candidate->m_cost = score->m_error;
    if (m_trace != nullptr) {
        m_trace->candidate(*candidate);
    }
    return score->m_error != 0.0 ? offer_inexact(*candidate, *score, result)
                                 : offer_exact(candidate, score, result);
}

bool RANKING::offer_inexact(const PLL& candidate, const CANDIDATE_SCORE& score,
                            SEARCH_RESULT* result) const
{
    if (!(score.m_error < result->m_best_error)) {
        return false;
    }
    result->m_best_error = score.m_error;
    result->m_found = true;
    if (m_trace != nullptr) {
        m_trace->new_best();
    }
    result->m_best = candidate;
    result->m_clamped = score.m_clamped;
    return true;
}

bool RANKING::offer_exact(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result)
{
    result->m_best_error = 0.0;
    result->m_found = true;
    result->m_clamped = false;

    candidate->m_cost = add_frequency_cost(score->m_relative_error, candidate->m_vco_post_scale,
                                           candidate->m_cost + score->m_cascade_penalty);

    if (m_table_mode) {
        m_chooser.choose(candidate);
        const bool legal =
            candidate->m_bandwidth_legal_for_mult_div && candidate->m_bandwidth_legal_for_fin;
        if (m_pll.m_info.m_basic_info->m_is_pfd_bandwidth_rule_an_error && !legal) {
            score->m_may_lower_cut_off = false;
        }
    }
    m_placement.place(candidate, result->m_neighbours);
    add_device_penalties(candidate);
    return take_if_cheaper(*candidate, result);
}

void RANKING::add_device_penalties(PLL* candidate) const
{
    if (!m_pll.m_info.has_info()) {
        return;
    }
    const PLL_BASIC_INFO& info = *m_pll.m_info.m_basic_info;
    add_preferred_m_penalties(m_spread, info, candidate);
    add_ratio_limit_penalty(info, candidate);
}

bool RANKING::take_if_cheaper(const PLL& candidate, SEARCH_RESULT* result) const
{
    if (candidate.m_cost < result->m_best_cost) {
        result->m_best_cost = candidate.m_cost;
        take(candidate, result);
        return true;
    }
    if (candidate.m_cost == result->m_best_cost && wins_tie(candidate, *result)) {
        take(candidate, result);
        if (m_trace != nullptr) {
            m_trace->user_view(candidate, m_request);
        }
        return true;
    }
    return false;
}

}  // namespace pll_internal
