// Phases of a candidate.
//
// An output is delayed by its VCO tap (45 VCO degrees each) and its counter start (360 each), so a
// phase of phi degrees of the input clock is M x phi / N VCO degrees after the reference. Delays
// can only be positive: when some phase is negative, the feedback path is delayed by the largest of
// them instead, which moves the reference and with it every output ahead.
#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "loop/taps.h"
#include "loop/vco_phase.h"
#include "placing/phase_steps.h"
#include "placing/placement.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <cmath>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";
constexpr double FULL_TURN = 360.0;  // degrees
// More counters than any device feeds into each other; a host can close a circle of them.
constexpr int MAX_CASCADE_STEPS = 10;

// The smaller, or not a number when either is not.
double smaller(double a, double b)
{
    return (a != a || a < b) ? a : b;
}

// The reference was moved by the largest advance that is wanted. Rounding may leave a trace of one.
// What the feedback output divides by; 1 for feedback from the M counter.
int feedback_count(const PLL& pll)
{
    if (pll.m_feedback_tap < 0) {
        return 1;
    }
    check(pll.m_feedback_tap < pll.m_user_taps_count,
          "pll->m_feedback_tap < pll->m_user_taps_count", SOURCE);
    const PLL_OUTPUT_TAP& tap = pll.m_taps[nearest_index(pll.m_feedback_tap, PLL_MAX_TAPS)];
    return tap.m_bypass ? 1 : wrap_add(tap.m_high, tap.m_low);
}

double smallest_phase(const PLL_PROP& request, const PHASE_FRAME& frame)
{
    double smallest = 0.0;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        const double phase = wish.m_has_sclkout_phase ? wish.m_sclkout_phase : wish.m_phase;
        smallest = smaller(smallest, vco_degrees(frame, phase));
    }
    return smallest;
}

// Where the feedback path starts when it is delayed by `delay` VCO degrees.
TAP_AND_START place_feedback(double delay, const PLL_COUNTER_M& counter, int m, bool through_output)
{
    const int max_start = m == 1 ? 1 : counter.m_max_count;
    TAP_AND_START place = nearest_tap_and_start(delay, max_start);
    // A tap that the counter cannot take becomes the first tap of the next period, if there is one.
    if (!through_output && place.m_vco_tap > counter.m_max_vco_tap) {
        place.m_vco_tap = 0;
        if (place.m_start < max_start) {
            place.m_start = wrap_add(place.m_start, 1);
        }
    }
    return place;
}

// Delays the feedback path by `delay` VCO degrees and returns the reference that results.
int delay_feedback(double delay, int m, PLL* pll)
{
    const bool through_output = pll->m_feedback_tap >= 0;
    const TAP_AND_START place = place_feedback(delay, pll->m_m, m, through_output);
    pll->m_m.m_initial = place.m_start;
    pll->m_m.m_vco_tap = place.m_vco_tap;
    // With an output in the feedback it is that output which is delayed: M counts behind it, and
    // stays at its first start.
    if (through_output) {
        PLL_OUTPUT_TAP& tap = pll->m_taps[nearest_index(pll->m_feedback_tap, PLL_MAX_TAPS)];
        tap.m_initial = place.m_start;
        tap.m_vco_tap = place.m_vco_tap;
        pll->m_m.m_initial = 1;
        pll->m_m.m_vco_tap = 0;
    }
    return place.vco_degrees();
}

// The largest start of output `index`, its cascade included.
int largest_start(const PLL& pll, int index)
{
    int start = 1;
    for (int step = 0; step < MAX_CASCADE_STEPS && index >= 0 && index < PLL_MAX_TAPS; ++step) {
        const PLL_OUTPUT_TAP& tap = pll.m_taps[index];
        if (!tap.m_bypass) {
            const int count = wrap_add(tap.m_high, tap.m_low);
            start = wrap_add(wrap_mul(wrap_sub(start, 1), count), tap.m_max_count);
        }
        index = tap.m_previous_tap;
    }
    return start;
}

// A serial clock is placed by its own phase, on a VCO tap alone. The counter of its parallel clock
// then starts where it comes nearest on that tap.
TAP_AND_START choose_tap_and_start(const PLL_USER_TAP& wish, const PHASE_FRAME& frame,
                                   int max_start)
{
    const double target = at_least_zero(vco_degrees(frame, wish.m_phase) + frame.m_reference);
    if (!wish.m_has_sclkout_phase) {
        if (target == 0.0 && max_start >= 1) {
            return {0, 1};
        }
        return nearest_tap_and_start(target, max_start);
    }
    const double serial =
        at_least_zero(vco_degrees(frame, wish.m_sclkout_phase) + frame.m_reference);
    TAP_AND_START chosen = nearest_tap_and_start(serial, 1);
    PLL_UTIL::phase_to_counter_start(&chosen.m_start, target, chosen.m_vco_tap, max_start);
    return chosen;
}

// The start of the counter that feeds a cascade: the wanted one if it can count that far, else the
// largest below it that leaves a whole number of its counts to the next counter.
int source_start(const PLL_OUTPUT_TAP& source, int start)
{
    if (source.m_bypass) {
        return 1;
    }
    if (start <= source.m_max_count) {
        return start;
    }
    const int count = wrap_add(source.m_high, source.m_low);
    const int rest = safe_mod(start, count);
    if (rest >= source.m_max_count) {
        return source.m_max_count;
    }
    return wrap_add(wrap_mul(safe_div(wrap_sub(source.m_max_count, rest), count), count), rest);
}

// A cascade is fed with its phase at its source; what the source cannot count is left to the
// output.
void place_cascade(TAP_AND_START chosen, PLL_OUTPUT_TAP* tap, PLL* pll)
{
    PLL_OUTPUT_TAP& source = pll->m_taps[nearest_index(tap->m_previous_tap, PLL_MAX_TAPS)];
    check(source.m_previous_tap == PLL_ILLEGAL_TAP,
          "pll->m_taps[phase_tap].m_previous_tap == PLL_ILLEGAL_TAP", SOURCE);
    tap->m_vco_tap = 0;
    source.m_vco_tap = chosen.m_vco_tap;
    source.m_initial = source_start(source, chosen.m_start);
    if (tap->m_bypass) {
        tap->m_initial = 1;
        return;
    }
    const int count = wrap_add(source.m_high, source.m_low);
    tap->m_initial = wrap_add(safe_div(wrap_sub(chosen.m_start, source.m_initial), count), 1);
}

}  // namespace

namespace pll_internal {

PHASE_PLACING::PHASE_PLACING(const PLL_PROP& request, bool may_be_negative, PLL* pll)
    : m_request(request), m_pll(pll), m_frame{}
{
    const int m = wrap_mul(pll->m_m.m_count, feedback_count(*pll));
    m_frame.m_m = m;
    m_frame.m_m_count = m;
    m_frame.m_n = pll->m_n.m_count;
    m_frame.m_ordinary = m > 0 && m_frame.m_n > 0;
    const double ratio = pll->get_m_over_n();
    m_frame.m_tap_step = DEGREES_PER_VCO_TAP / ratio;
    m_frame.m_turn_step = FULL_TURN / ratio;

    const double smallest =
        may_be_negative || !m_frame.m_ordinary ? smallest_phase(request, m_frame) : 0.0;
    if (smallest < 0.0) {
        m_frame.m_reference = delay_feedback(-smallest, m, pll);
    } else {
        pll->m_m.m_initial = 1;
        pll->m_m.m_vco_tap = 0;
    }
    pll->m_delta_phase = 0.0;
}

void PHASE_PLACING::place(int index, NEIGHBOURS* neighbours)
{
    const PLL_USER_TAP& wish = m_request.m_taps[index];
    const TAP_AND_START chosen = choose_tap_and_start(wish, m_frame, largest_start(*m_pll, index));
    PLL_OUTPUT_TAP& tap = m_pll->m_taps[index];
    if (tap.m_previous_tap == PLL_ILLEGAL_TAP) {
        tap.m_vco_tap = chosen.m_vco_tap;
        tap.m_initial = chosen.m_start;
    } else {
        place_cascade(chosen, &tap, m_pll);
    }

    // The cost is in degrees of the input, so a phase of a slow output weighs as much as one of a
    // fast output that is off by the same time.
    const double achieved = user_phase(m_frame.m_n, m_frame.m_m_count, *m_pll, chosen);
    tap.m_delta_phase = wish.m_phase - achieved;
    double error = std::fabs(wish.m_phase - achieved);
    if (wish.m_has_sclkout_phase) {
        error += std::fabs(wish.m_sclkout_phase - user_phase(m_frame.m_n, m_frame.m_m_count, *m_pll,
                                                             {chosen.m_vco_tap, 1}));
    }
    m_pll->m_cost += error;
    m_pll->m_delta_phase += error;
    narrow_phases(wish, achieved,
                  wish.m_has_sclkout_phase ? m_frame.m_turn_step : m_frame.m_tap_step, neighbours);
}

int reference_without_feedback(const PLL_COUNTER_M& counter, double delay, int m)
{
    return place_feedback(delay, counter, m, false).vco_degrees();
}

PLACED_PHASE place_serial_phase(const PLL_USER_TAP& wish, const PHASE_FRAME& frame, int max_start)
{
    const TAP_AND_START chosen = choose_tap_and_start(wish, frame, max_start);
    const double achieved = phase_of(frame, chosen);
    return {achieved, std::fabs(wish.m_phase - achieved) +
                          std::fabs(wish.m_sclkout_phase - phase_of(frame, {chosen.m_vco_tap, 1}))};
}

}  // namespace pll_internal

void PLL::compute_phase_for_ui(PLL* pll, const PLL_PROP& request, int tap, double phase) const
{
    const HOST_STATE state;
    if (pll == nullptr) {
        return;
    }
    const int index = nearest_index(tap, PLL_MAX_TAPS);
    const PLL_USER_TAP& wish = request.m_taps[index];
    const double step =
        (wish.m_has_sclkout_phase ? FULL_TURN : DEGREES_PER_VCO_TAP) / pll->get_m_over_n();
    NEIGHBOURS neighbours = read_neighbours(pll->m_taps[index]);
    narrow_phases(wish, phase, step, &neighbours);
    write_neighbours(neighbours, &pll->m_taps[index]);
}
