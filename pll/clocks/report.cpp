// The reports of a properties record. Labels carry their own padding, "Khz" and "kHz" stand side by
// side for the sake of those who search old listings; numbers take the format of the host's stream.
#include "pll_prop.h"

#include "platform/arith.h"
#include "platform/guest_stream.h"
#include "platform/host_state.h"

#include <algorithm>
#include <ostream>

using namespace pll_internal;

namespace {

constexpr double MHZ_PS = 1e6;  // frequency in MHz x period in ps
constexpr double KHZ_PS = 1e9;  // frequency in kHz x period in ps
constexpr double HZ_PER_MHZ = 1e6;
constexpr double HZ_PER_KHZ = 1000;
constexpr double PERCENT = 100;

// An unknown period reads as 0 MHz: infinity is spelled in more ways than one.
double mhz_of_period(int period)
{
    return period == 0 ? 0.0 : MHZ_PS / period;
}

int listed_taps(const PLL_PROP& prop)
{
    return std::min(prop.m_taps_count, PLL_MAX_TAPS);
}

// As of a PLL. The longest period comes first: it is the lowest frequency.
void dump_compact(std::ostream& stream, const PLL_PROP& prop)
{
    stream << prop.m_bandwidth / HZ_PER_MHZ << " MHz\t" << mhz_of_period(prop.m_lock_max_period)
           << " MHz\t" << mhz_of_period(prop.m_lock_min_period) << " MHz\t";
    for (int i = 0; i < listed_taps(prop); ++i) {
        const PLL_USER_TAP& tap = prop.m_taps[i];
        const int period = safe_div(wrap_mul(prop.m_fin_period, tap.m_div), tap.m_mult);
        stream << mhz_of_period(period) << " MHz\t";
        tap.dump(stream, true);
    }
}

void dump_input(std::ostream& stream, const char* label, int period)
{
    stream << label << period << " ps (" << mhz_of_period(period) << " MHz)" << std::endl;
}

void dump_bandwidth_wish(std::ostream& stream, const PLL_PROP& prop)
{
    stream << "Requested bandwidth ";
    switch (prop.m_bandwidth_type) {
    case PLL_BANDWIDTH_HIGH:
        stream << "high";
        break;
    case PLL_BANDWIDTH_MEDIUM:
        stream << "medium";
        break;
    case PLL_BANDWIDTH_LOW:
        stream << "low";
        break;
    case PLL_BANDWIDTH_AUTO:
        stream << "auto";
        break;
    case PLL_BANDWIDTH_CUSTOM:
        stream << "custom at " << prop.m_bandwidth << std::endl;
        break;
    default:  // the host's int, not an enumerator
        stream << "Illegal";
        break;
    }
    stream << std::endl;
}

// A wish shows the input and the bandwidth as asked for; what was achieved shows the loop filter.
void dump_request(std::ostream& stream, const PLL_PROP& prop)
{
    dump_input(stream, "Nominal fin ", prop.m_fin_period);
    if (prop.m_fin2_period > 0) {
        dump_input(stream, "fin2 ", prop.m_fin2_period);
    }
    dump_bandwidth_wish(stream, prop);
}

struct VALUE_RANGE
{
    double m_min;
    double m_max;
};

// " (min to max)" when both ends are known.
void dump_range(std::ostream& stream, VALUE_RANGE range, double scale, const char* unit)
{
    if (range.m_max > 0 && range.m_min > 0) {
        stream << " (" << range.m_min / scale << unit << " to " << range.m_max / scale << unit
               << ')';
    }
}

// Only a table knows these figures. 0 is what a record without them holds.
void dump_when_known(std::ostream& stream, const char* label, double value, VALUE_RANGE range,
                     const char* unit)
{
    if (value > 0) {
        stream << label << value << unit;
        dump_range(stream, range, 1, unit);
        stream << std::endl;
    }
}

void dump_achieved(std::ostream& stream, const PLL_PROP& prop)
{
    stream << "F Zero " << prop.m_f_zero / HZ_PER_KHZ << " Khz" << std::endl;
    stream << "F Bandwidth " << prop.m_bandwidth / HZ_PER_KHZ << " Khz";
    dump_range(stream, {prop.m_bandwidth_min, prop.m_bandwidth_max}, HZ_PER_KHZ, " Khz");
    stream << std::endl;
    stream << "F Pole " << prop.m_f_pole / HZ_PER_KHZ << " Khz" << std::endl;
    dump_when_known(stream, "Phase Margin ", prop.m_phase_margin,
                    {prop.m_phase_margin_min, prop.m_phase_margin_max}, " deg");
    dump_when_known(stream, "Jitter Peak ", prop.m_jitter_peak,
                    {prop.m_jitter_peak_min, prop.m_jitter_peak_max}, " dB");
}

// What stands in a request and in a result alike; there the values are wishes, here facts.
void dump_common(std::ostream& stream, const PLL_PROP& prop)
{
    if (prop.m_down_spread != 0) {
        stream << "Down Spread " << PERCENT * prop.m_down_spread << " % " << std::endl
               << "Spread Frequency " << KHZ_PS / prop.m_ss_period << " kHz" << std::endl;
    }
    stream << "Lock range " << prop.m_lock_min_period << '-' << prop.m_lock_max_period << " ps ("
           << mhz_of_period(prop.m_lock_max_period) << '-' << mhz_of_period(prop.m_lock_min_period)
           << " MHz)" << std::endl;
    stream << (prop.m_use_reconfig ? "using reconfig" : "not using reconfig") << std::endl;
    if (prop.m_feedback_tap >= 0) {
        stream << "feedback " << prop.m_feedback_tap << std::endl;
    }
    if (prop.m_vco_mult != 0) {
        stream << "VCO mult " << prop.m_vco_mult << std::endl
               << "VCO div " << prop.m_vco_div << std::endl;
    }
    for (int i = 0; i < listed_taps(prop); ++i) {
        stream << std::endl << "tap " << i << ' ';
        prop.m_taps[i].dump(stream, false);
    }
    stream << std::endl << std::endl;
}

}  // namespace

void PLL_USER_TAP::dump(std::ostream& stream, bool compact) const
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    if (compact) {
        stream << m_mult << '\t' << m_div << '\t' << m_duty << '\t' << m_phase << '\t';
        return;
    }
    stream << "  mult  " << m_mult << "  div   " << m_div << "  duty  " << m_duty << "  phase "
           << m_phase << "  delay " << m_delay;
    if (m_has_sclkout_phase) {
        stream << "  sclkout_phase " << m_sclkout_phase;
    }
    if (m_use_even_counter_mode) {
        stream << "  use_even_counter_mode " << 1;
    }
    if (m_use_even_counter_value) {
        stream << "  use_even_counter_value " << 1;
    }
}

void PLL_PROP::dump(std::ostream& stream, bool requested, bool compact) const
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    if (compact) {
        dump_compact(stream, *this);
        return;
    }
    if (requested) {
        dump_request(stream, *this);
    } else {
        dump_achieved(stream, *this);
    }
    dump_common(stream, *this);
}
