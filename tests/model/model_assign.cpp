// From a legal (post-scale, M, N) to output counters and error sums.
#include "model.h"
#include "model_util.h"

#include <cmath>

namespace {

constexpr double EXACT = 1e-12;          // ratio differences below are none
constexpr double MET = 0.001;            // relative errors below count as met
constexpr double NO_COUNT = 131072.0;    // feedback through a counter of 0
constexpr double CASCADE_COST = 4096.0;  // of each cascade tap

void prepare(MODEL_PLL* candidate, const MODEL_PLL& self, const MODEL_POINT& point,
             const MODEL_WISH& wish)
{
    candidate->m_i_min = self.m_i_min;
    for (int scale = 1; scale <= MODEL_MAX_POST_SCALE; ++scale) {
        candidate->m_vco_min_period[scale] = self.m_vco_min_period[scale];
        candidate->m_vco_max_period[scale] = self.m_vco_max_period[scale];
        candidate->m_vco_center_period[scale] = self.m_vco_center_period[scale];
    }
    candidate->m_pfd_min_period = self.m_pfd_min_period;
    candidate->m_pfd_max_period = self.m_pfd_max_period;
    candidate->m_i = self.m_i;
    candidate->m_feedback_tap = self.m_feedback_tap;
    candidate->m_m.m_max_count = self.m_m.m_max_count;
    candidate->m_n.m_max_count = self.m_n.m_max_count;
    candidate->m_m.m_count = point.m_m;
    candidate->m_n.m_count = point.m_n;
    candidate->m_vco_post_scale = point.m_post_scale;
    candidate->m_delta_vco_period = point.m_vco_period - point.m_vco_center;
    candidate->m_vco_period = point.m_vco_period;
    if (wish.m_bandwidth_type == 4 && !wish.m_table_mode) {
        const std::vector<int>& resistors = wish.m_parts->m_resistors;
        candidate->m_r = resistors.empty() ? 0.0 : resistors.front();
        candidate->m_i = wish.m_product / candidate->m_r;
    }
    candidate->m_total_taps_count = wish.m_request->m_taps_count;
}

int counter_value(const MODEL_POINT& point, const MODEL_CLOCK& clock)
{
    const double v = (static_cast<double>(point.m_m) * clock.m_div) /
                         (static_cast<double>(point.m_n) * clock.m_mult) +
                     0.5;
    if (v < 1.0) {
        return 1;
    }
    if (v > 2147483647.0) {
        return 2147483647;
    }
    return model_truncate(v);
}

void split_count(MODEL_TAP* tap, int count)
{
    tap->m_count = count;
    tap->m_bypass = count == 1;
    tap->m_high = count / 2;
    tap->m_low = count - count / 2;
    tap->m_even = count % 2 == 0;
}

void write_tap(MODEL_TAP* tap, int count, int max_count, const MODEL_TAP& carried)
{
    split_count(tap, count);
    tap->m_max_count = max_count;
    tap->m_previous_tap = MODEL_NO_TAP;
    tap->m_next_phase_degree = carried.m_next_phase_degree;
    tap->m_prev_phase_degree = carried.m_prev_phase_degree;
    tap->m_next_duty_cycle = carried.m_next_duty_cycle;
    tap->m_prev_duty_cycle = carried.m_prev_duty_cycle;
    tap->m_smallest_duty_cycle_min = carried.m_smallest_duty_cycle_min;
    tap->m_largest_duty_cycle_max = carried.m_largest_duty_cycle_max;
}

// The frequency error of one clock, and of the VCO where a ratio is asked for; what counts goes
// into the sums, the result decides whether the clock is met.
double add_frequency_error(MODEL_SCORE* score, const MODEL_POINT& point, int count,
                           const MODEL_CLOCK& clock, const MODEL_PROP& request)
{
    const double m_over_n = static_cast<double>(point.m_m) / static_cast<double>(point.m_n);
    double e = std::fabs(m_over_n / count -
                         static_cast<double>(clock.m_mult) / static_cast<double>(clock.m_div));
    if (e < EXACT) {
        e = 0.0;
    } else {
        const double relative = std::fabs((clock.m_div * e) / clock.m_mult);
        score->m_relative_error_sum += relative;
        if (relative >= MET) {
            score->m_error_sum += e;
        } else {
            e = 0.0;
        }
    }
    if (request.m_vco_mult >= 1 && request.m_vco_div >= 1) {
        e = std::fabs(m_over_n - static_cast<double>(request.m_vco_mult) /
                                     static_cast<double>(request.m_vco_div));
        if (e < EXACT) {
            e = 0.0;
        }
        score->m_error_sum += e;
    }
    return e;
}

// True when the feedback through this counter is inexact.
bool put_into_feedback(MODEL_PLL* candidate, MODEL_SCORE* score, int m, int count)
{
    if (count == 0) {
        score->m_error_sum += NO_COUNT;
        return true;
    }
    const int rest = model_remainder(m, count);
    score->m_error_sum += rest;
    candidate->m_m.m_count = m >= count ? model_divide(m, count) : 1;
    return rest != 0;
}

bool add_cascade(MODEL_PLL* candidate, MODEL_SCORE* score, const MODEL_PLL& self, int i, int count,
                 MODEL_REPORTS& reports)
{
    const int max_count = self.m_taps[i].m_max_count;
    const int reach = model_multiply(2, max_count);
    if (!self.m_output_counter_cascade || count <= reach) {
        return false;
    }
    const int factor = model_cascade_factor(count, reach, reports);
    const int source = score->m_taps_in_use;
    if (factor <= 1 || self.m_max_taps_count <= source || source >= MODEL_MAX_TAPS) {
        return false;
    }
    MODEL_TAP& cascade = candidate->m_taps[source];
    cascade.m_score = true;
    cascade.m_count = factor;
    cascade.m_bypass = false;
    cascade.m_high = factor / 2;
    cascade.m_low = factor - factor / 2;
    cascade.m_even = (factor & 1) != 1;
    cascade.m_max_count = max_count;
    cascade.m_previous_tap = MODEL_NO_TAP;
    split_count(&candidate->m_taps[i], count / factor);
    candidate->m_taps[i].m_previous_tap = source;
    score->m_taps_in_use += 1;
    candidate->m_total_taps_count += 1;
    score->m_cascade_penalty += CASCADE_COST;
    return true;
}

void note_clamp(MODEL_SCORE* score)
{
    if (score->m_error_sum == 0.0) {
        score->m_clamped_while_exact = true;
    }
}

bool clamp_tap(MODEL_TAP* tap, MODEL_SCORE* score, int max_count)
{
    bool clamped = false;
    if (tap->m_high > max_count) {
        note_clamp(score);
        score->m_error_sum += model_subtract(tap->m_high, max_count);
        tap->m_high = max_count;
        tap->m_count = model_add(max_count, tap->m_low);
        clamped = true;
    }
    if (tap->m_low > max_count) {
        note_clamp(score);
        score->m_error_sum += model_subtract(tap->m_low, max_count);
        tap->m_low = max_count;
        tap->m_count = model_add(tap->m_high, max_count);
        clamped = true;
    }
    return clamped;
}

bool force_bypass(MODEL_TAP* tap, MODEL_SCORE* score)
{
    if (tap->m_bypass) {
        return false;
    }
    note_clamp(score);
    score->m_error_sum += model_add(tap->m_high, tap->m_low);
    tap->m_high = 1;
    tap->m_low = 0;
    tap->m_bypass = true;
    tap->m_count = 1;
    return true;
}

}  // namespace

MODEL_SCORE model_assign_outputs(MODEL_PLL* candidate, const MODEL_PLL& self, const MODEL_PLL& best,
                                 const MODEL_POINT& point, const MODEL_WISH& wish,
                                 MODEL_REPORTS& reports)
{
    const MODEL_PROP& request = *wish.m_request;
    MODEL_SCORE score;
    score.m_taps_in_use = request.m_taps_count;
    prepare(candidate, self, point, wish);
    for (int i = 0; i < model_taps_to_walk(request.m_taps_count); ++i) {
        const MODEL_CLOCK& clock = request.m_taps[i];
        MODEL_TAP& tap = candidate->m_taps[i];
        const int max_count = self.m_taps[i].m_max_count;
        const int count = counter_value(point, clock);
        write_tap(&tap, count, max_count, best.m_taps[i]);
        const double e = add_frequency_error(&score, point, count, clock, request);
        bool inexact_feedback = false;
        if (i == candidate->m_feedback_tap) {
            inexact_feedback = put_into_feedback(candidate, &score, point.m_m, count);
        }
        bool clamped = false;
        if (max_count == 1) {
            clamped = force_bypass(&tap, &score);
        } else if (!add_cascade(candidate, &score, self, i, count, reports)) {
            clamped = clamp_tap(&tap, &score, max_count);
        }
        tap.m_score = e == 0.0 && !inexact_feedback && !clamped;
    }
    return score;
}
