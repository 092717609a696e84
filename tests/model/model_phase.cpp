// Phases of a candidate, and the next and previous phases that a user interface offers.
#include "model.h"
#include "model_util.h"

#include <cmath>

namespace {

constexpr double SAME_PHASE = 0.0001;  // degrees

// The fraction that turns VCO degrees into degrees of a clock, and the reference phase.
struct SCALE
{
    int m_m;  // M, times the count of the feedback tap
    int m_n;
    int m_reference;
};

double to_vco_degrees(const SCALE& scale, double phase)
{
    return static_cast<double>(scale.m_m) * phase / static_cast<double>(scale.m_n);
}

double smallest_phase(const SCALE& scale, const MODEL_PROP& request)
{
    double smallest = 0.0;
    for (int i = 0; i < model_taps_to_walk(request.m_taps_count); ++i) {
        const MODEL_CLOCK& clock = request.m_taps[i];
        const double phase = clock.m_has_sclkout_phase ? clock.m_sclkout_phase : clock.m_phase;
        smallest = model_min(smallest, to_vco_degrees(scale, phase));
    }
    return smallest;
}

// Negative phases are made by delaying the feedback path; returns the phase that it then has.
int delay_feedback(MODEL_PLL* pll, double smallest, int m, MODEL_REPORTS& reports)
{
    pll->m_m.m_initial = 1;
    pll->m_m.m_vco_tap = 0;
    if (!(smallest < 0.0)) {
        return 0;
    }
    const int max_start = m == 1 ? 1 : pll->m_m.m_max_count;
    MODEL_PLACE place = model_place_phase(-smallest, max_start, reports);
    if (pll->m_feedback_tap < 0 && place.m_vco_tap > pll->m_m.m_max_vco_tap) {
        place.m_vco_tap = 0;
        if (place.m_start < max_start) {
            place.m_start += 1;
        }
    }
    if (pll->m_feedback_tap < 0) {
        pll->m_m.m_initial = place.m_start;
        pll->m_m.m_vco_tap = place.m_vco_tap;
    } else {
        MODEL_TAP& tap = pll->m_taps[model_nearest_index(pll->m_feedback_tap, MODEL_MAX_TAPS)];
        tap.m_initial = place.m_start;
        tap.m_vco_tap = place.m_vco_tap;
    }
    return model_phase_of(place.m_vco_tap, place.m_start);
}

int largest_start(const MODEL_PLL& pll, int tap)
{
    int start = 1;
    int j = tap;
    for (int step = 0; step < MODEL_MAX_TAPS && j >= 0 && j < MODEL_MAX_TAPS; ++step) {
        const MODEL_TAP& t = pll.m_taps[j];
        if (!t.m_bypass) {
            const int before =
                model_multiply(model_subtract(start, 1), model_add(t.m_high, t.m_low));
            start = model_add(before, t.m_max_count);
        }
        j = t.m_previous_tap;
    }
    return start;
}

MODEL_PLACE choose_place(const MODEL_CLOCK& clock, const SCALE& scale, int max_start,
                         MODEL_REPORTS& reports)
{
    const double target = model_max(0.0, to_vco_degrees(scale, clock.m_phase) + scale.m_reference);
    if (!clock.m_has_sclkout_phase) {
        return model_place_phase(target, max_start, reports);
    }
    const double serial =
        model_max(0.0, to_vco_degrees(scale, clock.m_sclkout_phase) + scale.m_reference);
    const int vco_tap = model_place_phase(serial, 1, reports).m_vco_tap;
    return model_place_start(target, vco_tap, max_start, reports);
}

int source_start(const MODEL_TAP& source, int start)
{
    if (source.m_bypass) {
        return 1;
    }
    if (start <= source.m_max_count) {
        return start;
    }
    const int k = model_add(source.m_high, source.m_low);
    const int rest = model_remainder(start, k);
    if (rest >= source.m_max_count) {
        return source.m_max_count;
    }
    const int turns = model_divide(model_subtract(source.m_max_count, rest), k);
    return model_add(model_multiply(turns, k), rest);
}

void write_place(MODEL_PLL* pll, int i, const MODEL_PLACE& place, MODEL_REPORTS& reports)
{
    MODEL_TAP& tap = pll->m_taps[i];
    if (tap.m_previous_tap == MODEL_NO_TAP) {
        tap.m_vco_tap = place.m_vco_tap;
        tap.m_initial = place.m_start;
        return;
    }
    MODEL_TAP& source = pll->m_taps[model_nearest_index(tap.m_previous_tap, MODEL_MAX_TAPS)];
    if (source.m_previous_tap != MODEL_NO_TAP) {
        reports.push_back("pll->m_taps[phase_tap].m_previous_tap == PLL_ILLEGAL_TAP");
    }
    tap.m_vco_tap = 0;
    source.m_vco_tap = place.m_vco_tap;
    source.m_initial = source_start(source, place.m_start);
    const int k = model_add(source.m_high, source.m_low);
    const int turns = model_divide(model_subtract(place.m_start, source.m_initial), k);
    tap.m_initial = tap.m_bypass ? 1 : model_add(turns, 1);
}

void narrow_phase_neighbours(MODEL_PLL* pll, const MODEL_CLOCK& clock, int i, double achieved)
{
    const double wanted = clock.m_phase;
    const double step =
        clock.m_has_sclkout_phase ? 360.0 / model_m_over_n(*pll) : 45.0 / model_m_over_n(*pll);
    double next = achieved + step;
    double previous = achieved - step;
    if (!(std::fabs(achieved - wanted) <= SAME_PHASE)) {
        if (achieved > wanted) {
            next = achieved;
        } else {
            previous = achieved;
        }
    }
    MODEL_TAP& tap = pll->m_taps[i];
    if (std::fabs(next - wanted) > SAME_PHASE && next < tap.m_next_phase_degree) {
        tap.m_next_phase_degree = next;
    }
    if (std::fabs(wanted - previous) > SAME_PHASE && previous > tap.m_prev_phase_degree) {
        tap.m_prev_phase_degree = previous;
    }
}

void place_phase(MODEL_PLL* pll, const MODEL_CLOCK& clock, int i, const SCALE& scale,
                 MODEL_REPORTS& reports)
{
    const int max_start = largest_start(*pll, i);
    const MODEL_PLACE place = choose_place(clock, scale, max_start, reports);
    write_place(pll, i, place, reports);
    const double achieved =
        model_user_phase(scale.m_n, scale.m_m, *pll, place.m_vco_tap, place.m_start);
    pll->m_taps[i].m_delta_phase = clock.m_phase - achieved;
    double error = std::fabs(clock.m_phase - achieved);
    if (clock.m_has_sclkout_phase) {
        error += std::fabs(clock.m_sclkout_phase -
                           model_user_phase(scale.m_n, scale.m_m, *pll, place.m_vco_tap, 1));
    }
    pll->m_cost += error;
    pll->m_delta_phase += error;
    narrow_phase_neighbours(pll, clock, i, achieved);
}

}  // namespace

void model_place_phases_and_duties(MODEL_PLL* self, MODEL_PLL* candidate, const MODEL_PROP& request,
                                   MODEL_REPORTS& reports)
{
    MODEL_PLL& pll = *candidate;
    SCALE scale = {pll.m_m.m_count, pll.m_n.m_count, 0};
    if (pll.m_feedback_tap >= 0) {
        if (pll.m_feedback_tap >= pll.m_user_taps_count) {
            reports.push_back("pll->m_feedback_tap < pll->m_user_taps_count");
        }
        const int index = model_nearest_index(pll.m_feedback_tap, MODEL_MAX_TAPS);
        scale.m_m = model_multiply(scale.m_m, model_output_count(pll.m_taps[index]));
    }
    scale.m_reference = delay_feedback(&pll, smallest_phase(scale, request), scale.m_m, reports);
    pll.m_delta_phase = 0.0;
    for (int i = 0; i < model_taps_to_walk(request.m_taps_count); ++i) {
        place_phase(&pll, request.m_taps[i], i, scale, reports);
        model_place_duty(&pll, request.m_taps[i], i, reports);
    }
    for (int i = 0; i < model_taps_to_walk(self->m_total_taps_count); ++i) {
        self->m_taps[i].m_count = model_add(self->m_taps[i].m_high, self->m_taps[i].m_low);
    }
}
