#include "advice/answer/answer.h"

#include "advice/answer/further_search.h"
#include "advice/verdict/achieved.h"

#include <cmath>
#include <limits>

namespace advice {

namespace {

constexpr std::size_t MOST_TRIES = 256;  // syntheses of a further search
constexpr double NO_PHASE = std::numeric_limits<double>::quiet_NaN();

int count_outputs(const REQUEST& request)
{
    return static_cast<int>(request.m_outputs.size());
}

int max_outputs(const REQUEST& request, const LIMITS& limits)
{
    return request.m_max_outputs.value_or(limits.get_max_outputs());
}

// What no other counters cure: the library refuses the request before or after its search.
bool is_final(PLL::PLL_ERROR_TYPE error)
{
    return error == PLL::PLL_DELAY_RANGE_TOO_WIDE || error == PLL::PLL_SS_TOO_HIGH ||
           error == PLL::PLL_FIN_OUT_OF_RANGE;
}

// A neighbour that the library found, or NO_PHASE where it holds its mark for none.
double scale_neighbour(double of_input, double ratio)
{
    const bool is_mark =
        of_input >= std::numeric_limits<int>::max() || of_input <= std::numeric_limits<int>::min();
    return is_mark ? NO_PHASE : of_input * ratio;
}

OUTPUT_PHASE describe_phase(const REQUEST& request, const PLL& pll, const ACHIEVED_OUTPUT& output,
                            std::size_t index)
{
    constexpr double TAP_DEGREES = 45.0;
    const int tap = static_cast<int>(index);
    const double ratio = output.m_ratio.to_double();
    OUTPUT_PHASE phase;
    phase.m_asked = phase_to_input(request, index).to_double();
    phase.m_achieved = output.m_phase.to_double();
    phase.m_step = TAP_DEGREES / output.m_division.to_double();
    phase.m_previous = phase.m_achieved - phase.m_step;
    phase.m_next = phase.m_achieved + phase.m_step;
    phase.m_any_previous = scale_neighbour(pll.get_prev_phase_degree(tap), ratio);
    phase.m_any_next = scale_neighbour(pll.get_next_phase_degree(tap), ratio);
    if (pll.m_feedback_tap >= 0) {
        // The library forms these with steps that leave the counter in the feedback out.
        phase.m_any_previous = phase.m_any_next = NO_PHASE;
    }
    if (tap == pll.m_feedback_tap) {
        // The loop holds it in phase with the input, wherever its counter starts.
        phase.m_previous = phase.m_next = phase.m_step = NO_PHASE;
    }
    return phase;
}

// Fills `pll` with the library's answer to `asked`.
bool ask(const REQUEST& request, const LIMITS& limits, const PLL_PROP& asked, int least_n, PLL* pll)
{
    limits.give_to(pll, request);
    if (least_n > 0) {
        pll->m_n.m_min_count = least_n;
    }
    return pll->synthesize(asked);
}

void fill_achieved(const REQUEST& request, const PLL& pll, PLL_PROP* achieved)
{
    achieved->m_fin_period = request.m_input.m_library_period;
    achieved->m_use_reconfig = request.m_reconfig;
    achieved->set_properties_from_internals(pll);
}

// The library's cost of a candidate, with what its outputs miss of those that were asked for.
double full_cost(const PLL& pll, const VCO_CANDIDATE& candidate)
{
    return pll.m_cost + candidate.m_least_cost;
}

}  // namespace

bool has_candidate(const PLL& pll)
{
    switch (pll.m_outcome.m_kind) {
    case PLL_OUTCOME_KIND::MISSED:
    case PLL_OUTCOME_KIND::MET:
    case PLL_OUTCOME_KIND::REFUSED:
        return true;
    case PLL_OUTCOME_KIND::NONE:
    case PLL_OUTCOME_KIND::NOTHING_TRIED:
    case PLL_OUTCOME_KIND::OUT_OF_MEMORY:
        break;
    }
    return false;
}

ANSWER::ANSWER(const REQUEST& request, const LIMITS& limits, EFFORT effort)
    : m_pll(count_outputs(request), max_outputs(request, limits)),
      m_asked(to_prop(request)),
      m_achieved(count_outputs(request))
{
    synthesize(request, limits);
    if (effort == EFFORT::THOROUGH && !is_met() && !is_final(m_pll.m_error)) {
        search_further(request, limits);
    }
    describe_outputs(request);
}

void ANSWER::synthesize(const REQUEST& request, const LIMITS& limits)
{
    m_library_met = ask(request, limits, m_asked, 0, &m_pll);
    fill_achieved(request, m_pll, &m_achieved);
    if (m_library_met || has_candidate(m_pll)) {
        judge(request, limits, m_pll, m_achieved, &m_verdict);
    } else {
        judge_without_setting(request, limits, m_pll, &m_verdict);
    }
}

void ANSWER::search_further(const REQUEST& request, const LIMITS& limits)
{
    PLL pll(count_outputs(request), max_outputs(request, limits));
    limits.give_to(&pll, request);
    const std::vector<VCO_CANDIDATE> candidates = list_candidates(request, limits, pll, MOST_TRIES);
    double best_cost = HUGE_VAL;
    VERDICT verdict;
    for (const VCO_CANDIDATE& candidate : candidates) {
        if (candidate.m_least_cost >= best_cost) {
            break;  // those that follow cost no less
        }
        PLL tried(count_outputs(request), max_outputs(request, limits));
        const PLL_PROP asked = advice::to_prop(request, candidate);
        PLL_PROP achieved(count_outputs(request));
        ++m_tries;
        if (!ask(request, limits, asked, candidate.m_least_n, &tried)) {
            continue;
        }
        fill_achieved(request, tried, &achieved);
        judge(request, limits, tried, achieved, &verdict);
        if (verdict.m_met && full_cost(tried, candidate) < best_cost) {
            best_cost = full_cost(tried, candidate);
            m_pll = tried;
            m_asked = asked;
            m_achieved = achieved;
            m_least_n = candidate.m_least_n;
            m_library_met = true;
            m_origin = ORIGIN::FURTHER_SEARCH;
            std::swap(m_verdict, verdict);
        }
    }
}

void ANSWER::describe_outputs(const REQUEST& request)
{
    const ACHIEVED exact = find_achieved(request, m_pll);
    m_outputs.resize(static_cast<std::size_t>(exact.m_outputs));
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        OUTPUT_RESULT& result = m_outputs[i];
        result.m_ratio = exact.m_output[i].m_ratio;
        result.m_frequency = exact.m_output[i].m_frequency;
        result.m_error = result.m_ratio / request.m_outputs[i].m_ratio - RATIONAL(1);
        result.m_phase = describe_phase(request, m_pll, exact.m_output[i], i);
        result.m_duty = exact.m_output[i].m_duty;
    }
    for (const JUDGED_WISH& wish : m_verdict.m_wishes) {
        if (wish.m_output != NO_OUTPUT && !wish.m_kept) {
            m_outputs[static_cast<std::size_t>(wish.m_output)].m_missed = true;
        }
    }
}

}  // namespace advice
