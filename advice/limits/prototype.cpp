#include "advice/limits/prototype.h"

#include "pll_manager.h"

#include <algorithm>
#include <limits>

namespace advice {

namespace {

constexpr int NO_VCO_PERIOD = 0;  // no VCO is as fast, so a range that ends there holds nothing

int to_period(const RATIONAL& period)
{
    constexpr int LARGEST = std::numeric_limits<int>::max();
    if (!(period <= RATIONAL(LARGEST))) {
        return LARGEST;
    }
    return static_cast<int>(std::max<std::int64_t>(period.numerator(), 1));
}

RATIONAL period_of(const AMOUNT& frequency)
{
    constexpr int PS_PER_SECOND_EXPONENT = 12;
    return RATIONAL(power_of_ten(PS_PER_SECOND_EXPONENT)) / frequency.m_exact;
}

int shortest_period(const LIMIT& limit)
{
    return to_period(period_of(limit.m_value).floor());
}

int longest_period(const LIMIT& limit)
{
    return to_period(period_of(limit.m_value).ceil());
}

int count_of(const LIMIT& limit)
{
    return to_period(limit.m_value.m_exact.floor());
}

bool are_equal(const MEM_VECTOR<int>& shared, const std::vector<int>& own)
{
    return std::equal(shared.begin(), shared.end(), own.begin(), own.end());
}

void copy_loop(const PLL& from, PLL* to)
{
    to->m_ss_counter_max = from.m_ss_counter_max;
    to->m_ss_charge_pump_current = from.m_ss_charge_pump_current;
    to->m_c_fixed = from.m_c_fixed;
    to->m_r = from.m_r;
    to->m_c_high = from.m_c_high;
    to->m_i = from.m_i;
    to->m_i_min = from.m_i_min;
    to->m_ss_bandwidth = from.m_ss_bandwidth;
    to->m_low_bandwidth = from.m_low_bandwidth;
    to->m_medium_bandwidth = from.m_medium_bandwidth;
    to->m_high_bandwidth = from.m_high_bandwidth;
    to->m_info = from.m_info;
}

void copy_ranges(const PLL& from, PLL* to)
{
    for (int i = 0; i <= PLL_VCO_POST_SCALE_MAX; ++i) {
        to->m_vco_min_period[i] = from.m_vco_min_period[i];
        to->m_vco_max_period[i] = from.m_vco_max_period[i];
        to->m_vco_center_period[i] = from.m_vco_center_period[i];
        to->m_ss_vco_max_period[i] = from.m_ss_vco_max_period[i];
        to->m_kvco[i] = from.m_kvco[i];
    }
    to->m_pfd_min_period = from.m_pfd_min_period;
    to->m_pfd_max_period = from.m_pfd_max_period;
    to->m_fin_min_period = from.m_fin_min_period;
    to->m_max_vco_post_scale = from.m_max_vco_post_scale;
}

void copy_counters(const PLL& from, PLL* to)
{
    to->m_max_taps_count = from.m_max_taps_count;
    to->m_m.m_max_count = from.m_m.m_max_count;
    to->m_n.m_max_count = from.m_n.m_max_count;
    to->m_output_counter_cascade = from.m_output_counter_cascade;
    for (int i = 0; i < PLL_MAX_TAPS; ++i) {
        to->m_taps[i].m_max_count = from.m_taps[i].m_max_count;
    }
}

// A high phase of K / 2, halves rounded up, is all that a count up to K needs.
void widen_halves(int largest_count, PLL* pll)
{
    for (PLL_OUTPUT_TAP& tap : pll->m_taps) {
        tap.m_max_count = largest_count / 2 + largest_count % 2;
    }
}

void take_post_scales(const std::vector<int>& legal, PLL* pll)
{
    pll->m_max_vco_post_scale = std::min(legal.back(), PLL_VCO_POST_SCALE_MAX);
    for (int i = 1; i <= pll->m_max_vco_post_scale; ++i) {
        if (std::find(legal.begin(), legal.end(), i) == legal.end()) {
            pll->set_vco_max_period(NO_VCO_PERIOD, i);
            pll->set_ss_vco_max_period(NO_VCO_PERIOD, i);
        }
    }
}

}  // namespace

LIMITS::PROTOTYPE::PROTOTYPE() : m_pll(0, PLL_MAX_TAPS) {}

LIMITS::PROTOTYPE& LIMITS::PROTOTYPE::operator=(const PROTOTYPE& other)
{
    if (this != &other) {
        m_pll = other.m_pll;
        m_currents = other.m_currents;
        m_resistors = other.m_resistors;
        m_capacitors = other.m_capacitors;
    }
    return *this;
}

void LIMITS::PROTOTYPE::keep_components()
{
    const PLL_IMPL& shared = *PLL::m_impl;
    m_currents.assign(shared.m_charge_pump_currents.begin(), shared.m_charge_pump_currents.end());
    m_resistors.assign(shared.m_resistors.begin(), shared.m_resistors.end());
    m_capacitors.assign(shared.m_capacitors.begin(), shared.m_capacitors.end());
}

void LIMITS::PROTOTYPE::take_built_in()
{
    if (PLL::m_impl != nullptr) {
        keep_components();
    }
}

bool LIMITS::PROTOTYPE::take_device(PLL_MANAGER* manager, const PLL_QUERY& query)
{
    if (PLL::m_impl == nullptr || !manager->init_pll(&m_pll, query)) {
        return false;
    }
    keep_components();
    return true;
}

void LIMITS::PROTOTYPE::give_to(PLL* pll) const
{
    copy_loop(m_pll, pll);
    copy_ranges(m_pll, pll);
    copy_counters(m_pll, pll);
    const PLL_IMPL* const shared = PLL::m_impl;
    if (shared == nullptr || (are_equal(shared->m_charge_pump_currents, m_currents) &&
                              are_equal(shared->m_resistors, m_resistors) &&
                              are_equal(shared->m_capacitors, m_capacitors))) {
        return;
    }
    pll->clear_rci();
    std::for_each(m_currents.begin(), m_currents.end(), PLL::add_i);
    std::for_each(m_resistors.begin(), m_resistors.end(), PLL::add_r);
    std::for_each(m_capacitors.begin(), m_capacitors.end(), PLL::add_c);
}

void widen_to(const LIMIT& limit, PLL* pll)
{
    switch (limit.m_kind) {
    case LIMIT_KIND::VCO_MIN:
        pll->set_vco_max_period(longest_period(limit), limit.m_post_scale);
        pll->set_ss_vco_max_period(longest_period(limit), limit.m_post_scale);
        break;
    case LIMIT_KIND::VCO_MAX:
        pll->set_vco_min_period(shortest_period(limit), limit.m_post_scale);
        break;
    case LIMIT_KIND::PFD_MIN:
        pll->m_pfd_max_period = longest_period(limit);
        break;
    case LIMIT_KIND::PFD_MAX:
        pll->m_pfd_min_period = shortest_period(limit);
        break;
    case LIMIT_KIND::INPUT_MAX:
        pll->m_fin_min_period = shortest_period(limit);
        break;
    case LIMIT_KIND::M_MAX:
        pll->m_m.m_max_count = count_of(limit);
        break;
    case LIMIT_KIND::N_MIN:
        pll->m_n.m_min_count = count_of(limit);
        break;
    case LIMIT_KIND::N_MAX:
        pll->m_n.m_max_count = count_of(limit);
        break;
    case LIMIT_KIND::K_MAX:
        widen_halves(count_of(limit), pll);
        break;
    case LIMIT_KIND::POST_SCALES:
        take_post_scales(limit.m_legal, pll);
        break;
    case LIMIT_KIND::POST_SCALE_MAX:
        pll->m_max_vco_post_scale = std::min(count_of(limit), PLL_VCO_POST_SCALE_MAX);
        break;
    case LIMIT_KIND::INPUT_MIN:
    case LIMIT_KIND::OUTPUT_MIN:
    case LIMIT_KIND::OUTPUT_MAX:
    case LIMIT_KIND::PIN_MIN:
    case LIMIT_KIND::PIN_MAX:
    case LIMIT_KIND::K_MIN:
    case LIMIT_KIND::HALF_MAX:
    case LIMIT_KIND::M_INITIAL_MAX:
    case LIMIT_KIND::K_INITIAL_MAX:
    case LIMIT_KIND::M_TAP_MAX:
    case LIMIT_KIND::K_TAP_MAX:
    case LIMIT_KIND::K_TAP_RESOLUTION:
    case LIMIT_KIND::M_TAP_RESOLUTION:
    case LIMIT_KIND::VCO_TAPS:
    case LIMIT_KIND::OUTPUTS_MAX:
    case LIMIT_KIND::DELAY_MAX:
    case LIMIT_KIND::DELAY_RESOLUTION:
    case LIMIT_KIND::SPREAD_MIN:
    case LIMIT_KIND::SPREAD_MAX:
    case LIMIT_KIND::SPREAD_CYCLES_MAX:
    case LIMIT_KIND::FEEDBACK_DUTY_MIN:
    case LIMIT_KIND::FEEDBACK_DUTY_MAX:
    case LIMIT_KIND::M_MIN:  // the search starts at 2, whatever it is
    case LIMIT_KIND::M_LEGAL:
    case LIMIT_KIND::N_LEGAL:
    case LIMIT_KIND::K_LEGAL:
    case LIMIT_KIND::OTHER:
    case LIMIT_KIND::KIND_COUNT:
        break;
    }
}

}  // namespace advice
