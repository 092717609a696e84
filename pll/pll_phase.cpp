// Phases of a candidate.
//
// An output is delayed by its VCO tap (45 VCO degrees each) and its counter start (360 each), so a
// phase of phi degrees of the input clock is M x phi / N VCO degrees after the reference. Delays
// can only be positive: when some phase is negative, the feedback path is delayed by the largest of
// them instead, which moves the reference and with it every output ahead.
#include "pll_arith.h"
#include "pll_report_error.h"
#include "pll_search.h"
#include "pll_util.h"

#include <cmath>

namespace {

constexpr const char* SOURCE = "pll";
constexpr double FULL_TURN = 360.0;    // degrees
constexpr double SAME_PHASE = 0.0001;  // degrees; closer phases are one
constexpr int MAX_CASCADE_STEPS = 10;

// The smaller, or not a number when either is not.
double smaller(double a, double b)
{
    return (a != a || a < b) ? a : b;
}

double at_least_zero(double value)
{
    return value < 0.0 ? 0.0 : value;
}

// Where a clock is wanted: all that its placing reads.
struct PLACING
{
    double m_m;  // M times the count of the feedback output
    int m_m_count;
    int m_n;
    int m_reference;  // VCO degrees
};

struct TAP_AND_START
{
    int m_vco_tap;
    int m_start;
};

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

double vco_degrees(const PLACING& placing, double phase)
{
    return placing.m_m * phase / placing.m_n;
}

double smallest_phase(const PLL_PROP& request, const PLACING& placing)
{
    double smallest = 0.0;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        const double phase = wish.m_has_sclkout_phase ? wish.m_sclkout_phase : wish.m_phase;
        smallest = smaller(smallest, vco_degrees(placing, phase));
    }
    return smallest;
}

// Delays the feedback path by `delay` VCO degrees and returns the reference that results.
int delay_feedback(double delay, int m, PLL* pll)
{
    PLL_COUNTER_M& counter = pll->m_m;
    const int max_start = m == 1 ? 1 : counter.m_max_count;
    PLL_UTIL::phase_to_vco_tap_and_counter_start(&counter.m_vco_tap, &counter.m_initial, delay,
                                                 max_start);
    if (pll->m_feedback_tap < 0 && counter.m_vco_tap > counter.m_max_vco_tap) {
        counter.m_vco_tap = 0;
        if (counter.m_initial < max_start) {
            counter.m_initial = wrap_add(counter.m_initial, 1);
        }
    }
    const int reference =
        PLL_UTIL::phase_from_vco_tap_and_counter_start(counter.m_vco_tap, counter.m_initial);
    if (pll->m_feedback_tap >= 0) {
        PLL_OUTPUT_TAP& tap = pll->m_taps[nearest_index(pll->m_feedback_tap, PLL_MAX_TAPS)];
        tap.m_initial = counter.m_initial;
        tap.m_vco_tap = counter.m_vco_tap;
        counter.m_initial = 1;
        counter.m_vco_tap = 0;
    }
    return reference;
}

int place_reference(const PLL_PROP& request, const PLACING& placing, PLL* pll)
{
    const double smallest = smallest_phase(request, placing);
    if (smallest < 0.0) {
        return delay_feedback(-smallest, placing.m_m_count, pll);
    }
    pll->m_m.m_initial = 1;
    pll->m_m.m_vco_tap = 0;
    return 0;
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

TAP_AND_START choose_tap_and_start(const PLL_USER_TAP& wish, const PLACING& placing, int max_start)
{
    TAP_AND_START chosen{0, 1};
    const double target = at_least_zero(vco_degrees(placing, wish.m_phase) + placing.m_reference);
    if (!wish.m_has_sclkout_phase) {
        PLL_UTIL::phase_to_vco_tap_and_counter_start(&chosen.m_vco_tap, &chosen.m_start, target,
                                                     max_start);
        return chosen;
    }
    const double serial =
        at_least_zero(vco_degrees(placing, wish.m_sclkout_phase) + placing.m_reference);
    int serial_start = 1;
    PLL_UTIL::phase_to_vco_tap_and_counter_start(&chosen.m_vco_tap, &serial_start, serial, 1);
    PLL_UTIL::phase_to_counter_start(&chosen.m_start, target, chosen.m_vco_tap, max_start);
    return chosen;
}

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

void place_phase(int index, const PLL_PROP& request, const PLACING& placing, PLL* pll)
{
    const PLL_USER_TAP& wish = request.m_taps[index];
    const TAP_AND_START chosen = choose_tap_and_start(wish, placing, largest_start(*pll, index));
    PLL_OUTPUT_TAP& tap = pll->m_taps[index];
    if (tap.m_previous_tap == PLL_ILLEGAL_TAP) {
        tap.m_vco_tap = chosen.m_vco_tap;
        tap.m_initial = chosen.m_start;
    } else {
        place_cascade(chosen, &tap, pll);
    }

    const double achieved =
        PLL_UTIL::user_phase(placing.m_n, placing.m_m_count, pll, chosen.m_vco_tap, chosen.m_start);
    tap.m_delta_phase = wish.m_phase - achieved;
    double error = std::fabs(wish.m_phase - achieved);
    if (wish.m_has_sclkout_phase) {
        error +=
            std::fabs(wish.m_sclkout_phase - PLL_UTIL::user_phase(placing.m_n, placing.m_m_count,
                                                                  pll, chosen.m_vco_tap, 1));
    }
    pll->m_cost += error;
    pll->m_delta_phase += error;
    pll->compute_phase_for_ui(pll, request, index, achieved);
}

}  // namespace

void place_phases_and_duty_cycles(const PLL_PROP& request, PLL* pll)
{
    const int m = wrap_mul(pll->m_m.m_count, feedback_count(*pll));
    PLACING placing{double(m), m, pll->m_n.m_count, 0};
    placing.m_reference = place_reference(request, placing, pll);
    pll->m_delta_phase = 0.0;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        place_phase(i, request, placing, pll);
        const PLL_USER_TAP& wish = request.m_taps[i];
        place_duty_cycle(wish, &pll->m_taps[i], &pll->m_cost);
        const double duty = pll->find_duty_cycle(i);
        pll->m_cost += std::fabs(double(wrap_sub(wish.m_duty, truncate_to_int(duty + 0.5)))) / 100;
        pll->compute_duty_cycle_for_ui(pll, request, i, duty);
    }
}

bool PLL::synthesize_best_phase_and_duty_cycle(PLL* pll, const PLL_PROP& request)
{
    if (pll == nullptr) {
        return false;
    }
    place_phases_and_duty_cycles(request, pll);
    set_output_counts_from_high_low();
    return true;
}

void PLL::compute_phase_for_ui(PLL* pll, const PLL_PROP& request, int tap, double phase) const
{
    if (pll == nullptr) {
        return;
    }
    const int index = nearest_index(tap, PLL_MAX_TAPS);
    const PLL_USER_TAP& wish = request.m_taps[index];
    PLL_OUTPUT_TAP& output = pll->m_taps[index];
    const double step = wish.m_has_sclkout_phase ? FULL_TURN / pll->get_m_over_n()
                                                 : pll->get_phase_degree_resolution();
    const bool same = std::fabs(phase - wish.m_phase) <= SAME_PHASE;
    const bool above = phase > wish.m_phase;
    const double next = !same && above ? phase : phase + step;
    const double previous = !same && !above ? phase : phase - step;

    if (std::fabs(next - wish.m_phase) > SAME_PHASE && next < output.m_next_phase_degree) {
        output.m_next_phase_degree = next;
    }
    if (std::fabs(wish.m_phase - previous) > SAME_PHASE && previous > output.m_prev_phase_degree) {
        output.m_prev_phase_degree = previous;
    }
}
