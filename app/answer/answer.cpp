#include "app/answer/answer.h"

#include "app/answer/output_phase.h"

namespace {

// The numbers of both ratios fit an int, so the error fits 64 bits.
RATIONAL relative_error(const RATIONAL& achieved, const RATIONAL& asked)
{
    return achieved / asked - RATIONAL(1, 1);
}

// Where a VCO ratio is asked for, the library scores that in the place of the output. An output in
// the feedback that leaves a rest makes the VCO another one, so others may come out exact by
// chance.
bool is_missed(const REQUEST& request, const PLL& pll, std::size_t output, const RATIONAL& error)
{
    const RATIONAL MET(1, 1000);
    const PLL_OUTPUT_TAP& tap = pll.m_taps[output];
    if (request.m_prop.m_vco_mult >= 1 && error.is_valid()) {
        return !(error.magnitude() < MET);
    }
    const bool is_fed_back = static_cast<int>(output) == pll.m_feedback_tap;
    const bool is_exact = error == RATIONAL() && !is_fed_back && !is_at_largest_count(tap);
    return !tap.m_score && !is_exact;
}

}  // namespace

bool is_at_largest_count(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_high >= tap.m_max_count || tap.m_low >= tap.m_max_count;
}

// A search that could try none leaves the phases no neighbours. Its error is not asked for: a later
// check may have put its own in the place.
bool has_candidate(const PLL& pll)
{
    return pll.m_taps[0].m_next_phase_degree != pll.m_taps[0].m_prev_phase_degree;
}

ANSWER::ANSWER(const REQUEST& request)
    : m_pll(request.m_prop.m_taps_count, request.m_max_outputs),
      m_achieved(request.m_prop.m_taps_count)
{
    set_limits(request, &m_pll);
    m_library_met = m_pll.synthesize(request.m_prop);
    m_achieved.m_fin_period = request.m_prop.m_fin_period;
    m_achieved.m_use_reconfig = request.m_prop.m_use_reconfig;
    m_achieved.set_properties_from_internals(m_pll);
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        OUTPUT_RESULT result;
        result.m_ratio = RATIONAL(m_achieved.m_taps[i].m_mult, m_achieved.m_taps[i].m_div);
        result.m_phase = find_phase(request, m_pll, m_achieved, i);
        result.m_error = relative_error(result.m_ratio, request.m_outputs[i].m_ratio);
        const bool outside = request.m_tolerance && result.m_error.is_valid() &&
                             *request.m_tolerance < result.m_error.magnitude();
        result.m_missed =
            outside || (!m_library_met && is_missed(request, m_pll, i, result.m_error));
        m_within_tolerance = m_within_tolerance && !outside;
        m_outputs.push_back(result);
    }
}
