// The reports of a PLL and its output counters. Labels carry their own padding; numbers take the
// format of the host's stream.
#include "pll.h"

#include "platform/arith.h"
#include "platform/guest_stream.h"
#include "platform/host_state.h"

#include <algorithm>
#include <ostream>

using namespace pll_internal;

namespace {

constexpr double OHM_PER_KILOOHM = 1000.0;

// Cascades add counters to those of the user; a report shows all that are in use.
int listed_taps(const PLL& pll)
{
    return std::min(pll.m_total_taps_count, PLL_MAX_TAPS);
}

// Fields with tabs between them, without labels and without a line break at the end: a host may put
// more on the line.
void dump_compact(std::ostream& stream, const PLL& pll)
{
    stream << pll.get_m() << '\t' << pll.get_n() << '\t' << pll.m_m.m_initial << '\t'
           << pll.m_m.m_vco_tap << '\t' << pll.m_i << '\t' << pll.m_c_high << '\t'
           << pll.m_r / OHM_PER_KILOOHM << '\t' << pll.m_total_taps_count << '\t';
    for (int t = 0; t < listed_taps(pll); ++t) {
        pll.m_taps[t].dump(stream, false, true);
    }
}

// A PLL that does not spread has second counts too, which mean nothing.
void dump_spread(std::ostream& stream, const PLL& pll)
{
    if (pll.m_ss_cycles != 0) {
        stream << "M2 " << pll.m_m.m_ss_count << std::endl
               << "N2 " << pll.m_n.m_ss_count << std::endl
               << "SS=" << pll.m_ss_cycles << std::endl;
    }
}

// The limits are those behind the post-scale, so it is named where it divides.
void dump_limits(std::ostream& stream, const PLL& pll)
{
    stream << "VCO min " << pll.get_vco_min_period(-1) << " VCO max " << pll.get_vco_max_period(-1)
           << " VCO center " << pll.get_vco_center_period(-1);
    if (pll.m_vco_post_scale > 1) {
        stream << " VCO post scale " << pll.m_vco_post_scale;
    }
    stream << std::endl;
    stream << "PFD min " << pll.m_pfd_min_period << " PFD max " << pll.m_pfd_max_period
           << " VCO gain " << pll.get_kvco(-1) << std::endl;
}

void dump_steps(std::ostream& stream, const PLL& pll)
{
    stream << "Phase degree resolution " << pll.get_phase_degree_resolution() << std::endl
           << " tap phase min/max degree (duty cycle resolution) " << std::endl;
    for (int t = 0; t < listed_taps(pll); ++t) {
        stream << pll.get_phase_degree_min(t) << ' ' << pll.get_phase_degree_max(t) << " ("
               << pll.get_duty_cycle_resolution(t) << ')' << std::endl;
    }
    stream << std::endl;
}

void dump_settings(std::ostream& stream, const PLL& pll)
{
    dump_spread(stream, pll);
    stream << "M_delay " << pll.m_m.m_delay << std::endl
           << "N_delay " << pll.m_n.m_delay << std::endl
           << "M0   " << pll.m_m.m_initial << std::endl
           << "VCO  " << pll.m_m.m_vco_tap << std::endl;
    dump_limits(stream, pll);
    stream << "i      " << pll.m_i << std::endl
           << "c_high " << pll.m_c_high << std::endl
           << "r      " << pll.m_r << std::endl;
    dump_steps(stream, pll);
}

// What ranked the setting, in the place of the limits that it was found within.
void dump_cost(std::ostream& stream, const PLL& pll)
{
    stream << "cost " << pll.m_cost << " delta phase " << pll.m_delta_phase << " delta vco period "
           << pll.m_delta_vco_period << " M0   " << pll.m_m.m_initial << " VCO  "
           << pll.m_m.m_vco_tap << ' ' << std::endl;
}

void dump_tap_compact(std::ostream& stream, const PLL_OUTPUT_TAP& tap)
{
    stream << tap.m_count << '\t' << tap.m_high << '\t' << tap.m_low << '\t'
           << (tap.m_even ? "even" : "odd") << '\t' << (tap.m_bypass ? "on " : "off") << '\t'
           << tap.m_initial << '\t' << tap.m_vco_tap << '\t';
}

}  // namespace

void PLL_OUTPUT_TAP::dump(std::ostream& stream, bool with_delta, bool compact) const
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    if (compact) {
        dump_tap_compact(stream, *this);
        return;
    }
    stream << "  count " << m_count << "  high  " << m_high << "  low   " << m_low << "  even  "
           << int{m_even} << "  bypass " << int{m_bypass} << "  init  " << m_initial << "  vco   "
           << m_vco_tap << "  delay " << m_delay << "  max_count " << m_max_count;
    if (m_previous_tap != PLL_ILLEGAL_TAP) {
        stream << "  previous_tap " << m_previous_tap;
    }
    if (with_delta) {
        stream << "  delta phase " << m_delta_phase;
    }
}

void PLL::dump(std::ostream& stream, bool with_cost, bool compact) const
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    if (compact) {
        dump_compact(stream, *this);
        return;
    }
    // Lines end with a flush, so that a trace is complete up to the line where a host crashed.
    stream << "M " << get_m() << std::endl << "N " << get_n() << std::endl;
    if (with_cost) {
        dump_cost(stream, *this);
    } else {
        dump_settings(stream, *this);
    }
    if (m_feedback_tap >= 0) {
        stream << "feedback " << m_feedback_tap << std::endl;
    }
    for (int t = 0; t < listed_taps(*this); ++t) {
        stream << std::endl << "tap " << t << ' ';
        m_taps[t].dump(stream, with_cost, false);
    }
    stream << std::endl;
}
