// Clocks as a user sees them: the request that a synthesis reads, and the record of what a PLL
// achieves. One type serves both; use separate records for the two, since a filled result would be
// read as a request for everything in it.
#pragma once

#include "pll_export.h"
#include "pll_info.h"

#include <iosfwd>

class PLL;

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

    int m_delay;  // ps, wish and result
    int m_mult;   // output frequency = input frequency x m_mult / m_div
    int m_div;
    double m_phase;                 // degrees of the input clock, see above
    int m_duty;                     // percent
    double m_sclkout_phase;         // likewise, of the serial clock (counter start 1)
    bool m_has_sclkout_phase;       // m_sclkout_phase is valid
    bool m_use_even_counter_mode;   // wish: a counter without the half period
    bool m_use_even_counter_value;  // wish: even high and low counts
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

    int m_bandwidth_type;   // wish: 0 high, 1 medium, 2 low, 3 auto, 4 custom
    int m_fin_period;       // ps, wish
    int m_fin2_period;      // ps, wish; 0 or less: no second input clock
    int m_ss_period;        // ps, modulation period of the spread spectrum, wish and result
    int m_feedback_tap;     // wish and result; -1: the M counter
    int m_lock_min_period;  // ps, result
    int m_lock_max_period;  // ps, result
    PLL_USER_TAP m_taps[PLL_MAX_TAPS];
    int m_taps_count;  // 0 to PLL_MAX_TAPS
    int m_vco_mult;    // wish, with m_vco_div, when both are 1 or more; result
    int m_vco_div;
    double m_down_spread;       // fraction, 0: off; wish and result
    double m_bandwidth;         // Hz; wish with type custom; result
    double m_bandwidth_max;     // Hz, result; -1: unknown, as in all fields below
    double m_bandwidth_min;     // Hz, result
    double m_f_zero;            // Hz, result; 0: not computed
    double m_f_pole;            // Hz, result; 0: not computed
    double m_phase_margin;      // degrees, result
    double m_phase_margin_max;  // degrees, result
    double m_phase_margin_min;  // degrees, result
    double m_jitter_peak;       // dB, result
    double m_jitter_peak_max;   // dB, result
    double m_jitter_peak_min;   // dB, result
    bool m_use_reconfig;        // wish: the PLL is reconfigured at run time
};
