// What the host asks of a PLL: phases and duty cycles within reach, VCO limits, counts.
#include "pll.h"
#include "pll_util.h"

#include "loop/duty_cycle.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";

constexpr double DEGREES_PER_PERIOD = 360.0;
constexpr double DEGREES_PER_TAP = 45.0;
constexpr int LAST_VCO_TAP = PLL_VCO_TAPS_NUMBER - 1;

// Degrees count a period of the input, so `period` is that of the input whatever the output is.
double degree_to_ps(double degree, int period)
{
    return degree * period / DEGREES_PER_PERIOD;
}

// Queries answer for any index, after the report: a wrong one must not end a host that only shows
// what it gets.
const PLL_OUTPUT_TAP& nearest_tap(const PLL& pll, int tap)
{
    return pll.m_taps[nearest_index(tap, PLL_MAX_TAPS)];
}

const PLL_OUTPUT_TAP& checked_user_tap(const PLL& pll, int i)
{
    check(i >= 0 && i < pll.m_user_taps_count, "i >= 0 && i < m_user_taps_count", SOURCE);
    return nearest_tap(pll, i);
}

const PLL_OUTPUT_TAP& checked_tap(const PLL& pll, int i)
{
    check(i >= 0 && i < pll.m_total_taps_count, "i >= 0 && i < m_total_taps_count", SOURCE);
    return nearest_tap(pll, i);
}

// The phase of an output whose counter starts at once.
double phase_at_first_start(const PLL& pll, const PLL_OUTPUT_TAP& tap)
{
    return PLL_UTIL::user_phase(pll.get_n(), pll.get_m(), &pll, tap.m_vco_tap, 1);
}

// The entry of a post-scale, -1 being the one that the PLL is set to. Entry 0 is never in use.
template <class T>
T get_entry(const T (&entries)[3], int vco_post_scale, int current)
{
    const int s = vco_post_scale == -1 ? current : vco_post_scale;
    check(s >= 0 && s <= PLL_VCO_POST_SCALE_MAX,
          "vco_post_scale >= 0 && vco_post_scale <= PLL_VCO_POST_SCALE_MAX", SOURCE);
    return entries[nearest_index(s, PLL_VCO_POST_SCALE_MAX + 1)];
}

// Sets one entry, or with a negative post-scale entry p to `value_of(p)` for p = 1 and 2.
template <class T, class VALUE_OF>
void set_entries(T (&entries)[3], int vco_post_scale, VALUE_OF value_of)
{
    if (!check(vco_post_scale <= PLL_VCO_POST_SCALE_MAX, "vco_post_scale <= PLL_VCO_POST_SCALE_MAX",
               SOURCE)) {
        return;
    }
    if (vco_post_scale >= 0) {
        entries[vco_post_scale] = value_of(1);
        return;
    }
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        entries[p] = value_of(p);
    }
}

// A post-scale of p makes the period p times as long.
void set_periods(int (&periods)[3], int vco_post_scale, int value)
{
    set_entries(periods, vco_post_scale, [=](int p) { return wrap_mul(value, p); });
}

}  // namespace

// A VCO tap is 45 VCO degrees, and a degree of the input lasts M / N degrees of the VCO.
double PLL::get_phase_degree_resolution() const
{
    const HOST_STATE state;
    return state.keep(DEGREES_PER_TAP / get_m_over_n());
}

double PLL::get_phase_ps_resolution(int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_phase_degree_resolution(), period));
}

// Phases repeat after a period of the input, forwards by delaying the output and backwards by
// delaying the feedback. So the range is that of every output, whatever its counter.
double PLL::get_phase_degree_min(int) const
{
    return -DEGREES_PER_PERIOD;
}

double PLL::get_phase_degree_max(int) const
{
    return DEGREES_PER_PERIOD;
}

double PLL::get_phase_ps_min(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_phase_degree_min(tap), period));
}

double PLL::get_phase_ps_max(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_phase_degree_max(tap), period));
}

// A serial clock has the same range. Its steps differ: its counter starts at once, so only VCO taps
// move it.
double PLL::get_sclkout_phase_degree_min_for_output(int) const
{
    return -DEGREES_PER_PERIOD;
}

double PLL::get_sclkout_phase_degree_max_for_output(int) const
{
    return DEGREES_PER_PERIOD;
}

double PLL::get_sclkout_phase_ps_min_for_output(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_sclkout_phase_degree_min_for_output(tap), period));
}

double PLL::get_sclkout_phase_ps_max_for_output(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_sclkout_phase_degree_max_for_output(tap), period));
}

// The neighbours were narrowed by every candidate of the search, not by the one that won alone.
double PLL::get_next_phase_degree(int tap) const
{
    return checked_user_tap(*this, tap).m_next_phase_degree;
}

double PLL::get_prev_phase_degree(int tap) const
{
    return checked_user_tap(*this, tap).m_prev_phase_degree;
}

double PLL::get_next_phase_ps(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_next_phase_degree(tap), period));
}

double PLL::get_prev_phase_ps(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_prev_phase_degree(tap), period));
}

// One VCO tap further, unless the output already has the last tap and the feedback has none that it
// could go back to.
double PLL::get_next_sclkout_phase_degree(int tap) const
{
    const HOST_STATE state;
    const PLL_OUTPUT_TAP& output = checked_user_tap(*this, tap);
    const double resolution = get_phase_degree_resolution();
    const double phase = phase_at_first_start(*this, output);
    const bool at_the_end =
        output.m_vco_tap >= LAST_VCO_TAP && m_m.m_vco_tap == 0 && m_m.m_initial == 1;
    return state.keep(at_the_end ? phase : phase + resolution);
}

// One VCO tap back, of the output or, from its first one, by moving the feedback on.
double PLL::get_prev_sclkout_phase_degree(int tap) const
{
    const HOST_STATE state;
    const PLL_OUTPUT_TAP& output = checked_user_tap(*this, tap);
    const double phase = phase_at_first_start(*this, output);
    const double previous = phase - get_phase_degree_resolution();
    if (output.m_vco_tap != 0) {
        return state.keep(previous);
    }
    // The feedback has a later tap to go to,
    if (m_m.m_vco_tap < LAST_VCO_TAP && m_m.m_vco_tap < m_m.m_max_vco_tap) {
        return state.keep(previous);
    }
    // or a later start: none when M counts to 1, and no more than half of those that it has.
    if (get_m() == 1) {
        return state.keep(phase);
    }
    return state.keep(m_m.m_initial < m_m.m_max_count / 2 ? previous : phase);
}

double PLL::get_next_sclkout_phase_ps(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_next_sclkout_phase_degree(tap), period));
}

double PLL::get_prev_sclkout_phase_ps(int tap, int period) const
{
    const HOST_STATE state;
    return state.keep(degree_to_ps(get_prev_sclkout_phase_degree(tap), period));
}

int PLL::get_next_duty_cycle(int tap) const
{
    return checked_user_tap(*this, tap).m_next_duty_cycle;
}

int PLL::get_prev_duty_cycle(int tap) const
{
    return checked_user_tap(*this, tap).m_prev_duty_cycle;
}

int PLL::get_smallest_duty_cycle_min(int tap) const
{
    return checked_user_tap(*this, tap).m_smallest_duty_cycle_min;
}

int PLL::get_largest_duty_cycle_max(int tap) const
{
    return checked_user_tap(*this, tap).m_largest_duty_cycle_max;
}

// Of the counter as it is set, not of the wish: a host calls these after a synthesis.
double PLL::get_duty_cycle_resolution(int tap) const
{
    const HOST_STATE state;
    return state.keep(duty_cycle_resolution(nearest_tap(*this, tap)));
}

double PLL::get_duty_cycle_min(int tap) const
{
    const HOST_STATE state;
    return state.keep(smallest_duty_cycle(nearest_tap(*this, tap)));
}

double PLL::get_duty_cycle_max(int tap) const
{
    const HOST_STATE state;
    return state.keep(largest_duty_cycle(nearest_tap(*this, tap)));
}

double PLL::find_duty_cycle(int tap) const
{
    const HOST_STATE state;
    return state.keep(checked_duty_cycle(nearest_tap(*this, tap), tap, m_total_taps_count));
}

// Of one counter alone; get_combined_count follows a cascade to the counter that the VCO feeds.
int PLL::get_k(int tap) const
{
    return sum_of_halves(checked_tap(*this, tap));
}

// The bypass flag of the first counter decides for the whole cascade.
int PLL::get_combined_count(int tap) const
{
    if (tap == PLL_ILLEGAL_TAP) {
        return 1;
    }
    const int first = nearest_index(tap, PLL_MAX_TAPS);
    if (m_taps[first].m_bypass) {
        return 1;
    }
    int product = 1;
    int j = first;
    // As many steps as there are counters: a host can make a cascade that feeds itself.
    for (int step = 0; step < PLL_MAX_TAPS && 0 <= j && j < PLL_MAX_TAPS; ++step) {
        product = wrap_mul(product, sum_of_halves(m_taps[j]));
        j = m_taps[j].m_previous_tap;
    }
    return product;
}

int PLL::get_m() const
{
    return m_m.m_count;
}

int PLL::get_n() const
{
    return m_n.m_count;
}

// Infinite, or no number, for an N of 0, as all that is derived from it then is.
double PLL::get_m_over_n() const
{
    const HOST_STATE state;
    return state.keep(static_cast<double>(m_m.m_count) / static_cast<double>(m_n.m_count));
}

// As the search left it, in ps; 1 before the first one.
double PLL::get_vco_period() const
{
    return m_vco_period;
}

// Periods are those behind the post-scale, where N, M and the outputs see the VCO.
int PLL::get_vco_min_period(int vco_post_scale) const
{
    return get_entry(m_vco_min_period, vco_post_scale, m_vco_post_scale);
}

int PLL::get_vco_max_period(int vco_post_scale) const
{
    return get_entry(m_vco_max_period, vco_post_scale, m_vco_post_scale);
}

int PLL::get_vco_center_period(int vco_post_scale) const
{
    return get_entry(m_vco_center_period, vco_post_scale, m_vco_post_scale);
}

int PLL::get_ss_vco_max_period(int vco_post_scale) const
{
    return get_entry(m_ss_vco_max_period, vco_post_scale, m_vco_post_scale);
}

double PLL::get_kvco(int vco_post_scale) const
{
    return get_entry(m_kvco, vco_post_scale, m_vco_post_scale);
}

void PLL::set_vco_min_period(int value, int vco_post_scale)
{
    set_periods(m_vco_min_period, vco_post_scale, value);
}

void PLL::set_vco_max_period(int value, int vco_post_scale)
{
    set_periods(m_vco_max_period, vco_post_scale, value);
}

void PLL::set_vco_center_period(int value, int vco_post_scale)
{
    set_periods(m_vco_center_period, vco_post_scale, value);
}

void PLL::set_ss_vco_max_period(int value, int vco_post_scale)
{
    set_periods(m_ss_vco_max_period, vco_post_scale, value);
}

// The gain is that of the oscillator itself, which no post-scale changes.
void PLL::set_kvco(double value, int vco_post_scale)
{
    set_entries(m_kvco, vco_post_scale, [=](int) { return value; });
}
