// Clocks as a user sees them: the request that a synthesis reads, and the record of what a PLL
// achieves. One type serves both; use separate records for the two, since a filled result would be
// read as a request for everything in it.
#pragma once

#include "pll_export.h"
#include "pll_info.h"

#include <iosfwd>

class PLL;

// The kinds of loop bandwidth that a request may ask for: PLL_PROP::m_bandwidth_type. A low
// bandwidth keeps the jitter of the input out, a high one locks faster and follows the input.
enum PLL_BANDWIDTH_TYPE
{
    PLL_BANDWIDTH_HIGH,    // the PLL's high preset; of a table, at least that
    PLL_BANDWIDTH_MEDIUM,  // the medium preset; of a table, anything between low and high
    PLL_BANDWIDTH_LOW,     // the low preset; of a table, at most that
    PLL_BANDWIDTH_AUTO,    // none is asked for: the components stay as they are
    PLL_BANDWIDTH_CUSTOM   // PLL_PROP::m_bandwidth
};

// One output clock.
//
// Phases count degrees of the input clock: 360 are one period of the input, whatever the output.
// phi degrees of the output itself are phi x m_div / m_mult here; only for an output as fast as the
// input are the two the same.
class PLL_API PLL_USER_TAP
{
public:
    PLL_USER_TAP();
    virtual ~PLL_USER_TAP();
    PLL_USER_TAP(const PLL_USER_TAP&) = default;
    PLL_USER_TAP& operator=(const PLL_USER_TAP&) = default;

    // Writes the clock without a line end, as labelled text or as tab-separated values.
    void dump(std::ostream& stream, bool compact) const;

    // Delay against the input, ps, default 0. Wish: any; delays more than MAX_DELAY_CHAIN_VALUE
    // apart fail a synthesis (error 5). Result: what the delay chains make.
    int m_delay;

    // Output frequency = input frequency x m_mult / m_div, default 1 / 1. Wish: 1 or more each,
    // other factors are never met. Result: the reduced fraction of the counters.
    int m_mult;
    int m_div;

    // Degrees of the input clock, see above; default 0. A wish below 0 delays the feedback instead,
    // which the other outputs make up for.
    double m_phase;

    // Percent high, default 50. A wish outside 0 to 100 is served with the nearest count.
    int m_duty;

    // The phase of the serial clock: of the same counter with a start of 1, so that only its VCO
    // tap moves it. Degrees of the input clock. A wish when m_has_sclkout_phase is set; default 0,
    // unset.
    double m_sclkout_phase;
    bool m_has_sclkout_phase;

    bool m_use_even_counter_mode;   // wish: high ends with a whole VCO period; default false
    bool m_use_even_counter_value;  // wish: even high and low counts; default false
};

class PLL_API PLL_PROP
{
public:
    // A record of `taps_count` clocks, all at 1/1, 0 degrees and 50 percent, with automatic
    // bandwidth. More than PLL_MAX_TAPS is an internal error.
    explicit PLL_PROP(int taps_count);
    virtual ~PLL_PROP();
    PLL_PROP(const PLL_PROP&) = default;
    PLL_PROP& operator=(const PLL_PROP&) = default;

    // Fills the result fields from the counters of `p`, which must have as many user clocks. With
    // the debug switch of `p` on, appends a trace to "pdebug.log".
    void set_properties_from_internals(const PLL& p);

    // The loop-filter part of the above: zero, pole, bandwidth and what the table says of it.
    void compute_bandwidth(const PLL& p);

    // The delay part of the above.
    void compute_user_delay_chains(const PLL& p);

    // Writes the record, as a request or as achieved properties, as labelled lines or as
    // tab-separated values.
    void dump(std::ostream& stream, bool requested, bool compact) const;

    // ---- Wishes. A synthesis reads these and the outputs.

    int m_bandwidth_type;  // PLL_BANDWIDTH_TYPE, default automatic; others are internal errors
    int m_fin_period;      // ps, of the input clock; default 0, which no synthesis meets
    int m_fin2_period;     // ps, of a second input clock; 0, the default, or less: none
    int m_ss_period;       // ps, modulation period of the spread, default 20000000 (50 kHz); result
    int m_feedback_tap;    // output in the feedback; -1, the default: the M counter; result

    // ---- Results, but for what is said to be a wish.

    int m_lock_min_period;              // ps, shortest input period that the counters work with
    int m_lock_max_period;              // ps, longest one; both default 0
    PLL_USER_TAP m_taps[PLL_MAX_TAPS];  // wishes and results
    int m_taps_count;                   // outputs in use, 0 to PLL_MAX_TAPS; wish

    // VCO frequency over input frequency, reduced. A wish when both are 1 or more; it is then
    // scored in the place of each output's own error. Default 0 / 0: no wish.
    int m_vco_mult;
    int m_vco_div;

    // Down spread as a fraction, default 0: none. Wish and result. A synthesis fails above
    // PLL_LARGEST_DOWN_SPREAD (error 7).
    double m_down_spread;

    double m_bandwidth;      // Hz, of the loop; a wish with type custom; default 0
    double m_bandwidth_max;  // Hz, at the fast corner; -1, the default: unknown, as in all below
    double m_bandwidth_min;  // Hz, at the slow corner

    // Zero and pole of the loop filter, Hz: where its phase begins to rise and to fall again. 0,
    // the default: not computed.
    double m_f_zero;
    double m_f_pole;

    // Known from a bandwidth table only: typical, and the extremes of its corners.
    double m_phase_margin;      // degrees
    double m_phase_margin_max;  // degrees
    double m_phase_margin_min;  // degrees
    double m_jitter_peak;       // dB
    double m_jitter_peak_max;   // dB
    double m_jitter_peak_min;   // dB

    bool m_use_reconfig;  // wish: the PLL is reconfigured at run time; default false
};
