// What the counters of a PLL achieve, in clock terms.
//
// With M and N as the counts of feedback and input (M times the count of the feedback output, when
// an output is fed back), the VCO runs at fin x M / N and an output behind counters c1, c2, ... at
// fin x M / (N x c1 x c2 x ...). A VCO phase of p degrees is p x N / M degrees of the input clock,
// in which phases are counted whatever the output. The loop filter's pi is 3.14 everywhere: its
// figures are compared with tables that were computed so.
#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "loop/loop_model.h"
#include "platform/append_file.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cmath>
#include <ostream>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll_prop";
constexpr const char* TRACE_FILE = "pdebug.log";

constexpr int DEGREES_PER_PERIOD = 360;
constexpr int HALF_DUTY = 50;
constexpr double PERCENT = 100.0;
constexpr double HALF = 0.5;
constexpr double MHZ_PS = 1e6;  // frequency in MHz x period in ps
constexpr double HZ_PS = 1e12;  // frequency in Hz x period in ps
constexpr double FARAD_PER_PF = 1e-12;

// The counts that the achieved ratios are made of, and the phase that they are measured from.
struct FEEDBACK
{
    int m_mult;
    int m_div;
    int m_reference;  // VCO degrees
};

// A counter cascade seen as one counter.
struct CHAIN
{
    int m_product;  // of the counts
    int m_start;    // counter start of the whole
    int m_vco_tap;  // of the counter that the VCO feeds
};

int counter_sum_of(const PLL_OUTPUT_TAP& tap)
{
    return wrap_add(tap.m_high, tap.m_low);
}

// A counter that is bypassed passes its clock, though its halves still hold counts.
int count_of(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_bypass ? 1 : counter_sum_of(tap);
}

const PLL_OUTPUT_TAP& nearest_tap(const PLL& p, int tap)
{
    return p.m_taps[nearest_index(tap, PLL_MAX_TAPS)];
}

// ---- Spread spectrum

// Fills the spread of `prop` and takes the counts of the faster end.
void compute_spread(PLL_PROP* prop, const PLL& p, FEEDBACK* feedback, std::ostream* trace)
{
    if (p.m_ss_cycles == 0) {
        prop->m_down_spread = 0.0;
        prop->m_ss_period = 0;
        return;
    }
    const double fin = MHZ_PS / prop->m_fin_period;
    // A down spread goes from the nominal frequency to the one of the second counts. Hosts can set
    // both as they like, so the faster end is looked for: ratios and lock range are those of that
    // end.
    const double first = feedback->m_mult * fin / feedback->m_div;
    const double second = fin * p.m_m.m_ss_count / p.m_n.m_ss_count;
    double fastest = first;
    if (!(first >= second)) {
        fastest = second;
        feedback->m_mult = p.m_m.m_ss_count;
        feedback->m_div = p.m_n.m_ss_count;
    }
    if (trace != nullptr) {
        *trace << "Frequency: " << fastest << std::endl;
    }
    prop->m_down_spread = std::fabs(second - first) / fastest;
    prop->m_ss_period = wrap_mul(prop->m_fin_period, p.m_ss_cycles);
}

// ---- Feedback and lock range

void compute_feedback(const PLL_PROP& prop, const PLL& p, FEEDBACK* feedback)
{
    // Outputs are seen against the clock that is compared with the input, so what delays it
    // advances them.
    feedback->m_reference =
        PLL_UTIL::phase_from_vco_tap_and_counter_start(p.m_m.m_vco_tap, p.m_m.m_initial);
    if (prop.m_feedback_tap < 0) {
        return;
    }
    check(prop.m_feedback_tap < p.m_user_taps_count, "m_feedback_tap < p.m_user_taps_count",
          SOURCE);
    const PLL_OUTPUT_TAP& tap = nearest_tap(p, prop.m_feedback_tap);
    feedback->m_mult = wrap_mul(feedback->m_mult, count_of(tap));
    const int of_m = wrap_sub(wrap_mul(p.m_m.m_initial, DEGREES_PER_PERIOD), DEGREES_PER_PERIOD);
    feedback->m_reference = wrap_add(
        of_m, PLL_UTIL::phase_from_vco_tap_and_counter_start(tap.m_vco_tap, tap.m_initial));
}

// The input may vary until the VCO or the PFD leaves its range. The VCO's period is fin x div /
// mult, the PFD's fin x div; whichever ends first counts.
void compute_lock_range(PLL_PROP* prop, const PLL& p, const FEEDBACK& feedback)
{
    const int low = safe_div(wrap_mul(p.get_vco_min_period(-1), feedback.m_mult), feedback.m_div);
    prop->m_lock_min_period = std::max(low, safe_div(p.m_pfd_min_period, feedback.m_div));
    const int longest = longest_vco_period(p, p.m_ss_cycles >= 1 ? SPREAD::DOWN : SPREAD::OFF, -1);
    const int high = safe_div(wrap_mul(longest, feedback.m_mult), feedback.m_div);
    prop->m_lock_max_period = std::min(high, safe_div(p.m_pfd_max_period, feedback.m_div));
}

// ---- User clocks

// In whole percent. A counter that divides by one passes the VCO's own halves.
int duty_of(const PLL_OUTPUT_TAP& tap)
{
    const int counter_sum = counter_sum_of(tap);
    const int out_count = count_of(tap);
    check(out_count == 1 || counter_sum != 0, "out_count == 1 || counter_sum != 0", SOURCE);
    if (out_count == 1) {
        return HALF_DUTY;
    }
    const double high = tap.m_even ? tap.m_high : tap.m_high - HALF;
    return truncate_to_int(high * PERCENT / counter_sum + HALF);
}

CHAIN chain_of(const PLL& p, int first)
{
    // One start of a counter is worth a whole count of the counter that feeds it.
    CHAIN chain = {1, 1, p.m_taps[first].m_vco_tap};
    int j = first;
    for (int step = 0; step < PLL_MAX_TAPS && 0 <= j && j < PLL_MAX_TAPS; ++step) {
        const PLL_OUTPUT_TAP& tap = p.m_taps[j];
        const int count = count_of(tap);
        chain.m_product = wrap_mul(chain.m_product, count);
        chain.m_start = wrap_add(wrap_mul(wrap_sub(chain.m_start, 1), count), tap.m_initial);
        chain.m_vco_tap = tap.m_vco_tap;
        j = tap.m_previous_tap;
    }
    return chain;
}

double achieved_phase(const FEEDBACK& feedback, int vco_tap, int counter_start)
{
    const int phase = PLL_UTIL::phase_from_vco_tap_and_counter_start(vco_tap, counter_start);
    return static_cast<double>(feedback.m_div) * wrap_sub(phase, feedback.m_reference) /
           static_cast<double>(feedback.m_mult);
}

void compute_clock(PLL_USER_TAP* clock, const PLL& p, int i, const FEEDBACK& feedback)
{
    clock->m_duty = duty_of(p.m_taps[i]);
    const CHAIN chain = chain_of(p, i);
    PLL_UTIL::normalize_fraction(&clock->m_mult, &clock->m_div, feedback.m_mult,
                                 wrap_mul(chain.m_product, feedback.m_div));
    clock->m_phase = achieved_phase(feedback, chain.m_vco_tap, chain.m_start);
    // What a serial clock on the same VCO tap would have: its counter starts at once.
    clock->m_sclkout_phase = achieved_phase(feedback, chain.m_vco_tap, 1);
    clock->m_has_sclkout_phase = true;
    // Two ways lead to a phase without an output in the feedback. Both round on their way, so they
    // are compared in single precision.
    if (p.m_feedback_tap < 0) {
        const double u_phase = PLL_UTIL::user_phase(feedback.m_div, feedback.m_mult, &p,
                                                    chain.m_vco_tap, chain.m_start);
        check(static_cast<float>(u_phase) == static_cast<float>(clock->m_phase),
              "(float)u_phase == (float)phase", SOURCE);
    }
}

// ---- Loop filter

bool uses_table(const PLL& p)
{
    return p.m_info.has_info() && p.m_info.m_basic_info->m_use_bandwidth_settings_table;
}

bool is_row_of(const PLL_BANDWIDTH_SETTING& row, const PLL& p)
{
    return row.m_charge_pump_current == p.m_i && row.m_loop_filter_resistor == p.m_r &&
           (row.m_loop_filter_capacitor < 0 || row.m_loop_filter_capacitor == p.m_c_high);
}

// Rows are known by their components: the search leaves these in a PLL, and no index of the row.
// The first row of effective multiplication `m` with the components of `p`, or null.
const PLL_BANDWIDTH_SETTING* find_row(const PLL& p, int m)
{
    const PLL_BASIC_INFO& basic_info = *p.m_info.m_basic_info;
    const PLL_BANDWIDTH_SETTING_GROUP* table = basic_info.m_bandwidth_settings_table;
    if (table == nullptr || m < 0 || m >= basic_info.m_bandwidth_settings_table_size) {
        return nullptr;
    }
    for (const PLL_BANDWIDTH_SETTING* row : table[m].m_settings) {
        if (row != nullptr && is_row_of(*row, p)) {
            return row;
        }
    }
    return nullptr;
}

// Charge-pump current times resistor times VCO gain, over M and 2 pi.
double modelled_bandwidth(const PLL& p, int m)
{
    return p.m_i * p.m_r * p.get_kvco(-1) / m * HALF / FILTER_PI;
}

void compute_zero_and_pole(PLL_PROP* prop, const PLL& p)
{
    const double both = p.m_c_fixed * p.m_c_high / (p.m_c_fixed + p.m_c_high);  // in series
    prop->m_f_zero = 1 / (2 * FILTER_PI * p.m_r * p.m_c_fixed * FARAD_PER_PF);
    prop->m_f_pole = 1 / (2 * FILTER_PI * p.m_r * both * FARAD_PER_PF);
}

// Fast and slow are corners of the process. Which of them has the larger figure differs from figure
// to figure.
void take_row(PLL_PROP* prop, const PLL_BANDWIDTH_SETTING& row)
{
    prop->m_bandwidth = row.m_typical_bandwidth;
    prop->m_phase_margin = row.m_typical_phase_margin;
    prop->m_jitter_peak = row.m_typical_jitter_peaking;
    prop->m_bandwidth_max = std::max(row.m_fast_bandwidth, row.m_slow_bandwidth);
    prop->m_bandwidth_min = std::min(row.m_fast_bandwidth, row.m_slow_bandwidth);
    prop->m_phase_margin_max = std::max(row.m_fast_phase_margin, row.m_slow_phase_margin);
    prop->m_phase_margin_min = std::min(row.m_fast_phase_margin, row.m_slow_phase_margin);
    prop->m_jitter_peak_max = std::max(row.m_fast_jitter_peaking, row.m_slow_jitter_peaking);
    prop->m_jitter_peak_min = std::min(row.m_fast_jitter_peaking, row.m_slow_jitter_peaking);
}

// Shortens the longest input period until the PFD runs at the device's multiple of the bandwidth.
void apply_pfd_rule(PLL_PROP* prop, const PLL& p)
{
    if (!p.m_info.has_info() || !p.m_info.m_basic_info->m_is_pfd_bandwidth_rule_an_error) {
        return;
    }
    // The fastest corner breaks the rule first. A model has no corners.
    const double widest = prop->m_bandwidth_max > 0 ? prop->m_bandwidth_max : prop->m_bandwidth;
    const int multiplier = p.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
    const double longest = divide_by_any(divide_by_any(HZ_PS, widest), multiplier);
    const int longest_pfd_period = truncate_to_int(longest + HALF);
    prop->m_lock_max_period =
        std::min(prop->m_lock_max_period, safe_div(longest_pfd_period, p.get_n()));
}

}  // namespace

void PLL_PROP::set_properties_from_internals(const PLL& p)
{
    const HOST_STATE state;
    check(m_taps_count == p.m_user_taps_count, "m_taps_count == p.m_user_taps_count", SOURCE);
    TRACE_STREAM trace;
    if (p.m_debug) {
        trace.open(TRACE_FILE);
        trace.get() << "Computing properties for" << std::endl;
        p.dump(trace.get(), true, false);
    }
    m_feedback_tap = p.m_feedback_tap;
    FEEDBACK feedback = {p.get_m(), p.get_n(), 0};
    compute_spread(this, p, &feedback, p.m_debug ? &trace.get() : nullptr);
    compute_feedback(*this, p, &feedback);
    compute_lock_range(this, p, feedback);
    PLL_UTIL::normalize_fraction(&m_vco_mult, &m_vco_div, feedback.m_mult, feedback.m_div);
    for (int i = 0; i < std::min(m_taps_count, PLL_MAX_TAPS); ++i) {
        compute_clock(&m_taps[i], p, i, feedback);
    }
    compute_bandwidth(p);
    compute_user_delay_chains(p);
    if (p.m_debug) {
        dump(trace.get(), true, false);
    }
}

// A table was measured, so its figures stand wherever a row of it is set; the model is for the
// rest.
void PLL_PROP::compute_bandwidth(const PLL& p)
{
    const HOST_STATE state;
    const int m = effective_feedback_division(p, m_feedback_tap);
    const PLL_BANDWIDTH_SETTING* row = nullptr;
    if (uses_table(p)) {
        row = find_row(p, m);
    } else {
        compute_zero_and_pole(this, p);
    }
    if (row != nullptr) {
        take_row(this, *row);
    } else {
        m_bandwidth = modelled_bandwidth(p, m);
    }
    apply_pfd_rule(this, p);
}

// A delay on N delays all clocks, one on M or on the output in the feedback advances them.
void PLL_PROP::compute_user_delay_chains(const PLL& p)
{
    const HOST_STATE state;
    int base = wrap_sub(p.m_n.m_delay, p.m_m.m_delay);
    if (m_feedback_tap >= 0) {
        check(m_feedback_tap < m_taps_count, "m_feedback_tap < m_taps_count", SOURCE);
        base = wrap_sub(base, nearest_tap(p, m_feedback_tap).m_delay);
    }
    for (int i = 0; i < std::min(m_taps_count, PLL_MAX_TAPS); ++i) {
        m_taps[i].m_delay = wrap_add(base, p.m_taps[i].m_delay);
    }
}
