// The record of clocks as a user sees them: its defaults.
#include "pll_prop.h"

#include "platform/report_error.h"

using namespace pll_internal;

namespace {

// A fresh record asks for the input clock itself, with nothing that could limit a search.
constexpr int DEFAULT_DUTY = 50;
constexpr int DEFAULT_SS_PERIOD = 20000000;  // 50 kHz
constexpr double UNKNOWN = -1.0;

}  // namespace

// mult / div 1 / 1 and no delay: the clock that every PLL can make.
PLL_USER_TAP::PLL_USER_TAP()
    : m_delay(0),
      m_mult(1),
      m_div(1),
      m_phase(0.0),
      m_duty(DEFAULT_DUTY),
      m_sclkout_phase(0.0),
      m_has_sclkout_phase(false),
      m_use_even_counter_mode(false),
      m_use_even_counter_value(false)
{
}

PLL_USER_TAP::~PLL_USER_TAP() = default;

PLL_PROP::PLL_PROP(int taps_count)
    : m_bandwidth_type(PLL_BANDWIDTH_AUTO),
      m_fin_period(0),
      m_fin2_period(0),
      m_ss_period(DEFAULT_SS_PERIOD),
      m_feedback_tap(PLL_ILLEGAL_TAP),
      m_lock_min_period(0),
      m_lock_max_period(0),
      m_taps_count(taps_count),
      m_vco_mult(0),
      m_vco_div(0),
      m_down_spread(0.0),
      m_bandwidth(0.0),
      m_bandwidth_max(UNKNOWN),
      m_bandwidth_min(UNKNOWN),
      m_f_zero(0.0),
      m_f_pole(0.0),
      m_phase_margin(UNKNOWN),
      m_phase_margin_max(UNKNOWN),
      m_phase_margin_min(UNKNOWN),
      m_jitter_peak(UNKNOWN),
      m_jitter_peak_max(UNKNOWN),
      m_jitter_peak_min(UNKNOWN),
      m_use_reconfig(false)
{
    check(m_taps_count <= PLL_MAX_TAPS, "m_taps_count <= PLL_MAX_TAPS", "pll_prop");
}

PLL_PROP::~PLL_PROP() = default;
