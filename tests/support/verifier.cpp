// The definitions, with M, N and K the counts of feedback, input and one output:
//
//   VCO period = fin x N / (M x F), F the division of the output in the feedback (1 without one)
//   PFD period = fin x N
//   output     = fin frequency x M x F / (N x K), K the product along a cascade
//   phase      = (start - 1) x 360 + VCO tap x 45 VCO degrees, behind the feedback's own
//
// A loop filter chosen without a table may have multiplied M and N by a common factor; the VCO is
// the same, and the PFD range holds before it.
#include "verifier.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <sstream>

namespace {

constexpr double MET = 0.001;         // relative error of a ratio
constexpr double TOLERANCE = 1.0;     // ps, on every bound of a period
constexpr double MAX_SPREAD = 0.006;  // largest down spread
constexpr double SAME_RATIO = 1e-12;  // a VCO ratio that was asked for
constexpr double PHASE_STEP = 45.0;   // VCO degrees between taps
constexpr double CUSTOM_ROUNDING = 1e-9;

// Lives for one verdict; its members are the checks in order.
class VERIFIER
{
public:
    VERIFIER(const PLL_PROP& request, const PLL& before, const PLL& result)
        : m_request(request),
          m_before(before),
          m_result(result),
          m_taps(std::clamp(request.m_taps_count, 0, PLL_MAX_TAPS))
    {
    }

    VERDICT run();

private:
    void object(const std::string& text) { m_verdict.m_objections.push_back(text); }
    void object_at(int tap, const std::string& text)
    {
        object("output " + std::to_string(tap) + ": " + text);
    }
    void remark_at(int tap, const std::string& text)
    {
        m_verdict.m_remarks.push_back("output " + std::to_string(tap) + ": " + text);
    }

    bool check_structure();
    void check_chain(int tap);
    void check_main_counters();
    void check_counter(int tap);
    void check_ratio(int tap);
    void check_periods();
    bool has_legal_factor(int post_scale) const;
    void check_vco_ratio();
    void check_spread();
    void check_input();
    void check_loop_filter();
    void check_bandwidth_rule();
    void check_delays();
    void remark_phase(int tap);
    void remark_duty(int tap);

    bool spreads() const { return !(m_request.m_down_spread == 0.0); }
    bool uses_table() const;
    double division_of(int tap) const;
    double start_of(int tap, int* vco_tap) const;
    double m_times_feedback() const;

    const PLL_PROP& m_request;
    const PLL& m_before;
    const PLL& m_result;
    const int m_taps;
    VERDICT m_verdict;
};

double output_count(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_bypass ? 1.0 : static_cast<double>(tap.m_high) + tap.m_low;
}

bool is_between(double low, double value, double high)
{
    return low - TOLERANCE <= value && value <= high + TOLERANCE;
}

bool VERIFIER::uses_table() const
{
    const PLL_BASIC_INFO* info = m_before.m_info.m_basic_info;
    return info != nullptr && info->m_use_bandwidth_settings_table;
}

// What an output divides the VCO by; its cascade included.
double VERIFIER::division_of(int tap) const
{
    double product = 1.0;
    for (int j = tap; j >= 0; j = m_result.m_taps[j].m_previous_tap) {
        product *= output_count(m_result.m_taps[j]);
    }
    return product;
}

// VCO periods from the first edge to the start of an output, and the VCO tap of its source.
double VERIFIER::start_of(int tap, int* vco_tap) const
{
    double start = 0.0;
    for (int j = tap; j >= 0; j = m_result.m_taps[j].m_previous_tap) {
        start = start * output_count(m_result.m_taps[j]) + m_result.m_taps[j].m_initial - 1;
        *vco_tap = m_result.m_taps[j].m_vco_tap;
    }
    return start;
}

double VERIFIER::m_times_feedback() const
{
    const int feedback = m_result.m_feedback_tap;
    return m_result.m_m.m_count *
           (feedback >= 0 && feedback < m_taps ? division_of(feedback) : 1.0);
}

// What every other check relies on: indexes that lead somewhere and chains that end.
bool VERIFIER::check_structure()
{
    const int total = m_result.m_total_taps_count;
    if (total < m_taps || total > PLL_MAX_TAPS ||
        total > std::max(m_taps, m_before.m_max_taps_count)) {
        object("the number of taps in use is none that the device has");
        return false;
    }
    if (m_result.m_feedback_tap != m_request.m_feedback_tap) {
        object("the feedback is not the one asked for");
    }
    for (int i = 0; i < m_taps; ++i) {
        check_chain(i);
    }
    return m_verdict.m_objections.empty();
}

void VERIFIER::check_chain(int tap)
{
    const int source = m_result.m_taps[tap].m_previous_tap;
    if (source == PLL_ILLEGAL_TAP) {
        return;
    }
    if (source < m_taps || source >= m_result.m_total_taps_count) {
        object_at(tap, "its source is no cascade tap");
    } else if (!m_before.m_output_counter_cascade) {
        object_at(tap, "it is cascaded on a device that cannot");
    } else if (m_result.m_taps[source].m_previous_tap != PLL_ILLEGAL_TAP) {
        object_at(tap, "its source has a source");
    }
    for (int other = 0; other < tap; ++other) {
        if (m_result.m_taps[other].m_previous_tap == source) {
            object_at(tap, "its source feeds another output");
        }
    }
}

void VERIFIER::check_main_counters()
{
    const PLL_COUNTER_M& m = m_result.m_m;
    const PLL_COUNTER_M& n = m_result.m_n;
    if (m.m_count < 1 || m.m_count > m_before.m_m.m_max_count) {
        object("M is outside its counter");
    }
    if (n.m_count < m_before.m_n.m_min_count || n.m_count > m_before.m_n.m_max_count) {
        object("N is outside its counter");
    }
    if (m.m_initial < 1 || m.m_initial > std::max(1, m_before.m_m.m_max_count)) {
        object("the start of M is outside its counter");
    }
    if (m.m_vco_tap < 0 || m.m_vco_tap >= PLL_VCO_TAPS_NUMBER ||
        m.m_vco_tap > std::max(0, m_before.m_m.m_max_vco_tap)) {
        object("M is fed by a VCO tap that it has not");
    }
    if (m_result.m_vco_post_scale < 1 ||
        m_result.m_vco_post_scale >
            std::min(m_before.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX)) {
        object("the VCO post-scale is none of the device's");
    }
}

void VERIFIER::check_counter(int tap)
{
    const PLL_OUTPUT_TAP& t = m_result.m_taps[tap];
    const bool is_source = tap >= m_taps;
    int max_count = m_before.m_taps[tap].m_max_count;
    for (int i = 0; is_source && i < m_taps; ++i) {
        if (m_result.m_taps[i].m_previous_tap == tap) {
            max_count = m_before.m_taps[i].m_max_count;
        }
    }
    if (t.m_high < 0 || t.m_low < 0 || t.m_high > max_count || t.m_low > max_count) {
        object_at(tap, "high or low count outside its counter");
    }
    if (std::int64_t{t.m_high} + t.m_low != t.m_count || t.m_count < 1) {
        object_at(tap, "high and low count do not add up");
    }
    if (t.m_bypass != (t.m_count == 1)) {
        object_at(tap, "bypassed although it divides, or not although it does not");
    }
    if (!t.m_bypass && (t.m_high < 1 || t.m_low < 1)) {
        object_at(tap, "never high or never low");
    }
    if (t.m_vco_tap < 0 || t.m_vco_tap >= PLL_VCO_TAPS_NUMBER) {
        object_at(tap, "fed by a VCO tap that there is not");
    }
    if (!is_source && (t.m_initial < 1 || t.m_initial > std::max(1, max_count))) {
        object_at(tap, "start outside its counter");
    }
    if (!t.m_score) {
        object_at(tap, "marked as missed");
    }
}

void VERIFIER::check_ratio(int tap)
{
    const PLL_USER_TAP& clock = m_request.m_taps[tap];
    const double asked = static_cast<double>(clock.m_mult) / clock.m_div;
    const double achieved = m_times_feedback() / m_result.m_n.m_count / division_of(tap);
    const double error = std::fabs(achieved - asked);
    if (!(error < SAME_RATIO || error / asked < MET)) {
        object_at(tap, "frequency off by a thousandth or more");
    }
}

// Some common factor of M and N leaves the ranges of VCO and PFD kept.
bool VERIFIER::has_legal_factor(int post_scale) const
{
    double vco_max = m_before.m_vco_max_period[post_scale];
    if (spreads() && m_before.m_ss_supported &&
        m_before.m_ss_vco_max_period[post_scale] != PLL_UNSET_MINIMUM) {
        vco_max = m_before.m_ss_vco_max_period[post_scale];
    }
    const double vco_min = m_before.m_vco_min_period[post_scale];
    const bool may_multiply = !uses_table() && (spreads() || m_request.m_bandwidth_type != 3);
    const int common = may_multiply ? std::gcd(m_result.m_m.m_count, m_result.m_n.m_count) : 1;
    for (int factor = 1; factor <= common; ++factor) {
        bool legal = common % factor == 0;
        const int divider = m_result.m_n.m_count / factor;
        for (const int fin : {m_request.m_fin_period, m_request.m_fin2_period}) {
            if (fin <= 0 && fin == m_request.m_fin2_period) {
                continue;
            }
            const double pfd = static_cast<double>(fin) * divider;
            const double vco = pfd / (m_times_feedback() / factor);
            legal = legal && is_between(vco_min, vco, vco_max) &&
                    is_between(m_before.m_pfd_min_period, pfd, m_before.m_pfd_max_period);
        }
        if (legal) {
            return true;
        }
    }
    return false;
}

void VERIFIER::check_periods()
{
    if (!has_legal_factor(m_result.m_vco_post_scale)) {
        object("VCO or PFD outside its range");
    }
    const double vco =
        static_cast<double>(m_request.m_fin_period) * m_result.m_n.m_count / m_times_feedback();
    if (!(std::fabs(m_result.m_vco_period - vco) <= vco * CUSTOM_ROUNDING)) {
        object("the VCO period is not the one that the counters make");
    }
}

void VERIFIER::check_vco_ratio()
{
    if (m_taps == 0 || m_request.m_vco_mult < 1 || m_request.m_vco_div < 1) {
        return;
    }
    const double asked = static_cast<double>(m_request.m_vco_mult) / m_request.m_vco_div;
    const double achieved = m_times_feedback() / m_result.m_n.m_count;
    if (!(std::fabs(achieved - asked) < SAME_RATIO * std::max(1.0, asked))) {
        object("the VCO does not run at the ratio asked for");
    }
}

void VERIFIER::check_spread()
{
    if (!spreads()) {
        return;
    }
    if (!(m_request.m_down_spread <= MAX_SPREAD)) {
        object("the down spread is too high to be met");
    }
    const double m = m_result.m_m.m_count;
    const double step = std::gcd(m_result.m_m.m_count, m_result.m_n.m_count);
    const double off = m - m_result.m_m.m_ss_count - m * m_request.m_down_spread;
    if (!(std::fabs(off) <= 0.5 * step + CUSTOM_ROUNDING * m)) {
        object("M spreads by another amount");
    }
    if (m_result.m_n.m_ss_count != m_result.m_n.m_count) {
        object("N changes with the spread");
    }
    if (m_result.m_ss_cycles > m_before.m_ss_counter_max) {
        object("the modulation period is outside its counter");
    }
}

void VERIFIER::check_input()
{
    const int min = m_before.m_fin_min_period;
    if (m_request.m_fin_period > 0 && m_request.m_fin_period < min) {
        object("the input clock is too fast");
    }
    if (m_request.m_fin2_period > 0 && m_request.m_fin2_period < min) {
        object("the second input clock is too fast");
    }
}

template <class LIST>
bool is_listed(const LIST& list, double value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

void VERIFIER::check_loop_filter()
{
    const bool no_bandwidth =
        !spreads() && (m_request.m_bandwidth_type == 3 || m_request.m_bandwidth_type < 0 ||
                       m_request.m_bandwidth_type > 4);
    if (uses_table() || no_bandwidth) {
        return;
    }
    const bool has_resistors = !PLL::m_impl->m_resistors.empty();
    if (has_resistors && !is_listed(PLL::m_impl->m_resistors, m_result.m_r)) {
        object("the loop-filter resistor is none of the device's");
    }
    const bool is_special = m_result.m_i == m_before.m_i_min ||
                            (spreads() && m_result.m_i == m_before.m_ss_charge_pump_current);
    if (!is_special && !is_listed(PLL::m_impl->m_charge_pump_currents, m_result.m_i)) {
        object("the charge-pump current is none of the device's");
    }
}

void VERIFIER::check_bandwidth_rule()
{
    const PLL_BASIC_INFO* info = m_before.m_info.m_basic_info;
    if (info == nullptr || !info->m_is_pfd_bandwidth_rule_an_error) {
        return;
    }
    if (!m_result.m_bandwidth_legal_for_fin || !m_result.m_bandwidth_legal_for_mult_div) {
        object("the bandwidth breaks the rule of the PFD");
    }
}

void VERIFIER::check_delays()
{
    for (int i = 0; i < m_taps; ++i) {
        const int delay = m_result.m_taps[i].m_delay;
        if (delay > MAX_DELAY_CHAIN_VALUE) {
            object_at(i, "delay chain set beyond its end");
        } else if (delay < 0) {
            remark_at(i, "delay below what its chain can do");
        }
    }
    for (const PLL_COUNTER_M* counter : {&m_result.m_m, &m_result.m_n}) {
        if (counter->m_delay < 0 || counter->m_delay > MAX_DELAY_CHAIN_VALUE) {
            m_verdict.m_remarks.push_back("delay chain of M or N set outside its range");
        }
    }
}

void VERIFIER::remark_phase(int tap)
{
    int vco_tap = 0;
    int reference_tap = m_result.m_m.m_vco_tap;
    double reference = m_result.m_m.m_initial - 1;
    const int feedback = m_result.m_feedback_tap;
    const double start = start_of(tap, &vco_tap);
    if (feedback >= 0 && feedback < m_taps) {
        reference += start_of(feedback, &reference_tap);
    }
    const double vco_degrees = 360.0 * (start - reference) + PHASE_STEP * (vco_tap - reference_tap);
    const double scale = m_result.m_n.m_count / m_times_feedback();
    const double off = std::fabs(vco_degrees * scale - m_request.m_taps[tap].m_phase);
    if (!(off <= PHASE_STEP / 2 * scale + MET)) {
        std::ostringstream text;
        text << "phase off by " << off << " degrees";
        remark_at(tap, text.str());
    }
}

void VERIFIER::remark_duty(int tap)
{
    const PLL_OUTPUT_TAP& t = m_result.m_taps[tap];
    const double high = t.m_even ? t.m_high : t.m_high - 0.5;
    const double duty = t.m_bypass ? 50.0 : high * 100.0 / output_count(t);
    const double off = std::fabs(duty - m_request.m_taps[tap].m_duty);
    if (!(off <= 0.5)) {
        std::ostringstream text;
        text << "duty cycle off by " << off << " percent";
        remark_at(tap, text.str());
    }
}

VERDICT VERIFIER::run()
{
    check_main_counters();
    if (!check_structure()) {
        return m_verdict;
    }
    for (int i = 0; i < m_result.m_total_taps_count; ++i) {
        check_counter(i);
    }
    if (!m_verdict.m_objections.empty()) {
        return m_verdict;  // ratios of counters that do not count say nothing
    }
    for (int i = 0; i < m_taps; ++i) {
        check_ratio(i);
        remark_phase(i);
        remark_duty(i);
    }
    check_periods();
    check_vco_ratio();
    check_spread();
    check_input();
    check_loop_filter();
    check_bandwidth_rule();
    check_delays();
    return m_verdict;
}

}  // namespace

VERDICT verify_result(const PLL_PROP& request, const PLL& before, const PLL& result)
{
    return VERIFIER(request, before, result).run();
}
