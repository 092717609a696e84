// One phase-locked loop of a programmable-logic device: its counters, limits and loop filter, and
// the synthesis that fills them for a request.
//
//   fin -> N -> PFD -> loop filter -> VCO (-> post-scale) -> output counters -> clocks
//               ^------------- M or an output counter -----------'
//
// Output i runs at fin x M / (N x K_i). Periods are in ps, frequencies of the loop in Hz, phases in
// degrees of the input clock (360 are one period of the input, whatever the output), duty cycles in
// percent, resistances in ohm, capacitances in pF, currents in uA.
//
//   #include "pll.h"
//   #include "pll_prop.h"
//
//   PLL_PROP request(1);             // one output
//   request.m_fin_period = 40000;    // 25 MHz
//   request.m_taps[0].m_mult = 5;    // 125 MHz
//   PLL pll(1, PLL_MAX_TAPS);
//   if (!pll.synthesize(request)) {
//       std::puts(PLL::get_error_string(pll.m_error));
//   }
//
// The library is single-threaded; PLL::m_impl, PLL::m_pll_manager and the m_default_* limits are
// shared by the whole process. No exception leaves it. Unless said otherwise a call allocates
// nothing, and a failure changes nothing.
#pragma once

#include "mem_alloc_sys.h"
#include "pll_export.h"
#include "pll_info.h"
#include "pll_outcome.h"

#include <iosfwd>

class PLL_MANAGER;
class PLL_PROP;

// The M or the N counter.
class PLL_API PLL_COUNTER_M
{
public:
    PLL_COUNTER_M();
    virtual ~PLL_COUNTER_M();
    PLL_COUNTER_M(const PLL_COUNTER_M&) = default;
    PLL_COUNTER_M& operator=(const PLL_COUNTER_M&) = default;

    int m_count;        // what it divides by
    int m_ss_count;     // the second count while spread spectrum is on
    int m_initial;      // start count, from 1; delays by m_initial - 1 VCO periods
    int m_delay;        // ps, 0 to MAX_DELAY_CHAIN_VALUE
    int m_vco_tap;      // VCO phase tap that feeds it, 0 to PLL_VCO_TAPS_NUMBER - 1
    int m_max_vco_tap;  // largest tap allowed; 9999: all
    int m_min_count;    // smallest count; 1 for M
    int m_max_count;    // largest count
};

// One output counter.
class PLL_API PLL_OUTPUT_TAP
{
public:
    PLL_OUTPUT_TAP();
    virtual ~PLL_OUTPUT_TAP();
    PLL_OUTPUT_TAP(const PLL_OUTPUT_TAP&) = default;
    PLL_OUTPUT_TAP& operator=(const PLL_OUTPUT_TAP&) = default;

    // Writes the counter without a line end, as labelled text or as tab-separated values.
    void dump(std::ostream& stream, bool with_delta, bool compact) const;

    // Without a wish for a VCO ratio: the requested frequency is met. With one: that ratio is. See
    // pll_get_output_outcome for the output's own frequency.
    bool m_score;

    double m_delta_phase;  // requested minus achieved phase, degrees of the input; default 0
    int m_count;           // m_high + m_low; default 1
    int m_delay;           // ps, 0 to MAX_DELAY_CHAIN_VALUE; default 0
    bool m_even;           // false: the high phase is half a VCO period shorter
    bool m_bypass;         // the counter passes its clock and divides by one
    int m_high;            // VCO periods high, 0 to m_max_count
    int m_low;             // VCO periods low, 0 to m_max_count
    int m_max_count;       // largest m_high and m_low; 1: the counter cannot divide; default 512
    int m_initial;         // start count, from 1; each count above delays by a VCO period
    int m_vco_tap;         // VCO phase tap that feeds it, each 45 VCO degrees late
    int m_previous_tap;    // counter that feeds this one; PLL_ILLEGAL_TAP: the VCO

    // Neighbours: what could be had instead, over all settings that were looked at. They narrow
    // from synthesis to synthesis, see PLL::synthesize.
    double m_next_phase_degree;     // next larger phase within reach, degrees of the input
    double m_prev_phase_degree;     // next smaller one
    int m_next_duty_cycle;          // next larger duty cycle within reach, percent
    int m_prev_duty_cycle;          // next smaller one
    int m_smallest_duty_cycle_min;  // percent, of any setting
    int m_largest_duty_cycle_max;   // percent, of any setting
};

// What all PLLs share: the components that a loop filter may be built of, and the last list of VCO
// ratios. Exists while any PLL does.
class PLL_API PLL_IMPL
{
public:
    PLL_IMPL();
    ~PLL_IMPL();
    PLL_IMPL(const PLL_IMPL&) = delete;
    PLL_IMPL& operator=(const PLL_IMPL&) = delete;

    MEM_VECTOR<int> m_charge_pump_currents, m_capacitors, m_resistors;  // ascending; uA, pF, ohm
    int* m_mults;  // owned; last result of PLL::find_vco_mult_div_values
    int* m_divs;   // owned; the matching divisors

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;
};

class PLL_API PLL
{
public:
    // Why a synthesis failed. Two values are kept for the numbering only: PLL_M_N_NOT_FOUND_2 and
    // PLL_SS_REQUIRES_LOW_BANDWIDTH do not arise.
    enum PLL_ERROR_TYPE
    {
        PLL_NO_ERROR,
        PLL_M_N_NOT_FOUND,
        PLL_M_N_NOT_FOUND_2,
        PLL_POST_DIVIDER_MAX_EXCEEDED,
        PLL_MULT_DIV_NOT_ACHIEVED,
        PLL_DELAY_RANGE_TOO_WIDE,
        PLL_SS_REQUIRES_LOW_BANDWIDTH,
        PLL_SS_TOO_HIGH,
        PLL_FIN_OUT_OF_RANGE,
        PLL_NO_BANDWIDTH_FOR_MULT_DIV,
        PLL_NO_BANDWIDTH_FOR_FIN_MULT_DIV,
        MAX_PLL_ERROR_TYPE
    };

    // The PLL types of a device family, as `read_parameters` takes them: PLL_TYPE_ENUM, under the
    // class's own names on purpose.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wshadow"
#endif
    enum PLL_TYPE
    {
        ENHANCED_PLL,
        FAST_PLL,
        FAST_PLL_HIGH_SPEED,
        VESTRA_PLL,
        PLL_TYPE_MAX
    };
#ifdef __clang__
#pragma clang diagnostic pop
#endif

    // A PLL with `user_taps_count` clocks on a device of `max_taps_count` output counters, at most
    // PLL_MAX_TAPS, with the class-wide default limits. Counts out of range are internal errors.
    PLL(int user_taps_count, int max_taps_count);
    virtual ~PLL();
    PLL(const PLL&) = delete;

    // Copies every field, m_id included; the device description stays shared.
    PLL& operator=(const PLL& other);

    // ---- Synthesis

    // Searches the counters for a request and fills this PLL with the best ones.
    //
    // True: every clock is met within PLL_MET_TOLERANCE and all checks pass. m_error stays as it
    // was, so a success after a failure still shows the old error. False: m_error says why, and the
    // counters are those that came closest. False with m_outcome OUT_OF_MEMORY leaves m_error as it
    // was, and the counters are unspecified but valid. m_outcome tells all these apart.
    //
    // A PLL that was used before may answer differently from a fresh one, since nothing of an
    // earlier synthesis is reset. Three things carry over:
    //   - The neighbours of each output (m_next_..., m_prev_..., m_smallest_..., m_largest_...)
    //   only
    //     ever narrow towards a wish, so those of an earlier request bound the new ones.
    //   - Loop-filter values that no step sets stay. The counters differ for that reason alone
    //   where
    //     the device limits the division over m_i, and m_i is not set anew.
    //   - The second counts of an earlier spread stay, and a device that prefers a range of M
    //   counts
    //     that of M against the next spread.
    // Hosts that want a fresh answer use a fresh PLL. Likewise a record that was filled by
    // PLL_PROP::set_properties_from_internals is no clean request: its results would be wishes.
    //
    // The debug switch, unless obey_debug_switch(false): the call looks for files named "pll_debug"
    // and "pll_nodebug" in the current directory. When the first is there and the second is not, it
    // appends a trace of the search to "debug.log" in the current directory, and m_debug stays set,
    // which makes PLL_PROP::set_properties_from_internals append to "pdebug.log". The trace costs a
    // line for each candidate and changes no answer.
    //
    // A request read as a whole: outputs beyond PLL_MAX_TAPS are ignored; a factor below 1 is never
    // met. Takes at most one step per legal (post-scale, M, N), mostly far fewer, and no heap
    // memory unless tracing; see docs/search.md.
    bool synthesize(const PLL_PROP& request);

    // Lists every VCO ratio mult / div, reduced, that the counters can make from an input clock of
    // `fin_period` ps, by ascending ratio. Returns how many there are. The arrays belong to the
    // library and stay valid until the next call or the end of the last PLL; null when there are
    // none or memory is exhausted. With a null output nothing happens and the result is 0.
    int find_vco_mult_div_values(int** mults, int** divs, int fin_period);

    // Places phases and duty cycles of the request on the counters of `pll`, charges what is missed
    // to its m_cost and m_delta_phase, and narrows its next and previous values. Then rebuilds the
    // counts of this PLL from their halves. True; false for a null PLL.
    bool synthesize_best_phase_and_duty_cycle(PLL* pll, const PLL_PROP& request);

    // Narrows the next and previous phase of output `tap` of `pll`, given the achieved `phase` in
    // degrees.
    void compute_phase_for_ui(PLL* pll, const PLL_PROP& request, int tap, double phase) const;

    // Likewise for its duty cycle, given the achieved one in percent.
    void compute_duty_cycle_for_ui(PLL* pll, const PLL_PROP& request, int tap,
                                   double duty_cycle) const;

    // Clamps next and previous duty cycles of the user clocks into what was found reachable.
    void correct_next_and_previous_values_for_ui();

    // Distributes the requested delays over the delay chains. False with m_error
    // PLL_DELAY_RANGE_TOO_WIDE when they lie too far apart.
    bool synthesize_delay_chains(const PLL_PROP& request);

    // Gives `pll` the row of its device's bandwidth table that fits the request best and adds the
    // row's cost. False when there is none for its effective M.
    static bool synthesize_best_bandwidth_using_table(PLL* pll, const PLL_PROP& request);

    // ---- Queries. An output index out of range is an internal error and reads the nearest output;
    // `period` is that of the input clock, in ps: its degrees are what phases count in. Bounds,
    // neighbours and steps of a phase in degrees of an output are those here times its mult / div.

    double get_phase_degree_resolution() const;  // per VCO tap; with feedback from counter M
    double get_phase_ps_resolution(int period) const;
    double get_phase_degree_min(int tap) const;
    double get_phase_degree_max(int tap) const;
    double get_phase_ps_min(int tap, int period) const;
    double get_phase_ps_max(int tap, int period) const;
    double get_sclkout_phase_degree_min_for_output(int tap) const;
    double get_sclkout_phase_degree_max_for_output(int tap) const;
    double get_sclkout_phase_ps_min_for_output(int tap, int period) const;
    double get_sclkout_phase_ps_max_for_output(int tap, int period) const;
    double get_next_phase_degree(int tap) const;
    double get_prev_phase_degree(int tap) const;
    double get_next_phase_ps(int tap, int period) const;
    double get_prev_phase_ps(int tap, int period) const;
    double get_next_sclkout_phase_degree(int tap) const;
    double get_prev_sclkout_phase_degree(int tap) const;
    double get_next_sclkout_phase_ps(int tap, int period) const;
    double get_prev_sclkout_phase_ps(int tap, int period) const;
    int get_next_duty_cycle(int tap) const;
    int get_prev_duty_cycle(int tap) const;
    int get_smallest_duty_cycle_min(int tap) const;
    int get_largest_duty_cycle_max(int tap) const;
    double get_duty_cycle_resolution(int tap) const;
    double get_duty_cycle_min(int tap) const;
    double get_duty_cycle_max(int tap) const;
    double find_duty_cycle(int tap) const;  // what the counter produces now
    int get_k(int tap) const;               // m_high + m_low
    int get_combined_count(int tap) const;  // total division of a cascade; PLL_ILLEGAL_TAP gives 1
    int get_m() const;
    int get_n() const;
    double get_m_over_n() const;
    double get_vco_period() const;  // ps

    // The entry of a post-scale 0 to PLL_VCO_POST_SCALE_MAX; -1 is the current one. Others are
    // internal errors and read the nearest entry.
    int get_vco_min_period(int vco_post_scale) const;
    int get_vco_max_period(int vco_post_scale) const;
    int get_vco_center_period(int vco_post_scale) const;
    int get_ss_vco_max_period(int vco_post_scale) const;
    double get_kvco(int vco_post_scale) const;

    // Sets the entry of a post-scale. A negative one sets entries 1 and 2, periods as value x 1 and
    // value x 2, the gain alike. One above PLL_VCO_POST_SCALE_MAX is an internal error: nothing is
    // set.
    void set_vco_min_period(int value, int vco_post_scale);
    void set_vco_max_period(int value, int vco_post_scale);
    void set_vco_center_period(int value, int vco_post_scale);
    void set_ss_vco_max_period(int value, int vco_post_scale);
    void set_kvco(double value, int vco_post_scale);

    // ---- Candidate components, shared by all PLLs; without a live PLL nothing happens.

    void clear_rci();
    static void add_i(int value);  // uA
    static void add_r(int value);  // ohm
    static void add_c(int value);  // pF

    // Whether files in the current directory switch debugging, for all PLLs; at first they do.
    // While they do, a synthesis turns m_debug on where there is a file "pll_debug", and off where
    // there is "pll_nodebug". Otherwise the host's m_debug stands and no file is looked for; so it
    // is always in a library that was built with PLL_DEBUG_SWITCH off.
    static void obey_debug_switch(bool obey);

    // m_count = m_high + m_low for every tap in use.
    void set_output_counts_from_high_low();

    // Writes the PLL as labelled lines or as tab-separated values. `with_cost` writes the cost in
    // the place of limits and loop filter.
    void dump(std::ostream& stream, bool with_cost, bool compact) const;

    // ---- Device database

    // Creates the process-wide manager and reads the path file of the directory `location`. True
    // without reading when there is a manager already; false when nothing could be read.
    static bool init_family_info(const char* location);

    // Destroys the manager and all that it read.
    static void delete_family_info();

    // Makes the limits of a family's PLL type the defaults of every later PLL.
    static bool read_parameters(const char* family, PLL_TYPE type);

    // The message of an error value, owned by the library. MAX_PLL_ERROR_TYPE is an internal error;
    // it and other values without a message give an empty text.
    static const char* get_error_string(PLL_ERROR_TYPE error);

    // ---- Fields

    // Of the best setting that was found.

    double m_cost;              // exact: its cost; missed: the sum of its errors; default 0
    double m_delta_phase;       // degrees of the input that all phases miss; below 0.5 ps it is 0
    double m_delta_vco_period;  // VCO period minus centre, ps; default 0
    int m_ss_cycles;            // input periods per modulation period; default 0: no spread
    int m_ss_counter_max;       // upper bound of m_ss_cycles; default 32768

    // ---- Counters. Limits in them are set by PLL_MANAGER::init_pll or by hand.

    PLL_COUNTER_M m_n;                    // divides the input, 1 to its m_max_count
    PLL_COUNTER_M m_m;                    // divides the feedback, 2 to its m_max_count in a search
    int m_user_taps_count;                // outputs of the host
    int m_total_taps_count;               // those and the counters that cascades take
    int m_max_taps_count;                 // output counters of the device
    PLL_OUTPUT_TAP m_taps[PLL_MAX_TAPS];  // outputs first, then the counters of cascades
    int m_feedback_tap;  // output in the feedback; PLL_ILLEGAL_TAP, the default: the M counter

    // ---- Limits. Entry p of an array is for post-scale p, entry 0 for hosts. The defaults are the
    // class-wide ones where a member of that name exists.

    int m_vco_min_period[3];        // ps, default 1000
    int m_vco_max_period[3];        // ps, default 3334
    int m_vco_center_period[3];     // ps, default 1666; preferred among settings of equal cost
    int m_ss_vco_max_period[3];     // ps, default 1667; with spread, in the place of the maximum
    double m_kvco[3];               // VCO gain, MHz/V, default 1880
    int m_pfd_min_period;           // ps, default 1500
    int m_pfd_max_period;           // ps, default 333333
    int m_fin_min_period;           // ps, default 1000; a faster input fails (error 8)
    int m_ss_charge_pump_current;   // uA, default 90; forced with spread when 1 or more
    bool m_ss_supported;            // default true: the two limits of spread above hold
    bool m_output_counter_cascade;  // default false
    int m_vco_post_scale;           // of the setting, default 1; getters read it for -1
    int m_max_vco_post_scale;       // largest that a search tries, 1 or 2, default 1; 0: none

    // ---- Loop filter. Without a table a synthesis with automatic bandwidth leaves it as it is.

    double m_c_fixed;           // pF, in series with the resistor; default 650
    double m_r;                 // ohm, default 1020.5
    double m_c_high;            // pF, across both; default 10
    double m_i;                 // uA, charge pump; default 50
    double m_i_min;             // uA, the smallest that a loop filter may be given; default 4
    double m_ss_bandwidth;      // Hz, of a loop with spread; default 140000
    double m_low_bandwidth;     // Hz, what the presets mean; default 150000
    double m_medium_bandwidth;  // Hz, default 800000
    double m_high_bandwidth;    // Hz, default 2000000

    // ---- Result of the last synthesis.

    double m_vco_period;                  // ps, behind the post-scale; default 1
    bool m_bandwidth_legal_for_mult_div;  // the table has a row for the division; default true
    bool m_bandwidth_legal_for_fin;       // the row keeps the PFD rule; default true

    PLL_INFO m_info;         // the device; empty by default
    int m_id;                // PLLs alive when this one was constructed; not unique
    bool m_debug;            // a synthesis appends its trace to "debug.log"; default false
    PLL_ERROR_TYPE m_error;  // of the last synthesis that failed; none by default
    PLL_OUTCOME m_outcome;   // of the last synthesis, whether it failed or not

    static int m_default_vco_min_period[3];
    static int m_default_vco_max_period[3];
    static int m_default_vco_center_period[3];
    static int m_default_pfd_min_period;
    static int m_default_pfd_max_period;
    static int m_default_fin_min_period;
    static int m_default_m_counter_max_count;
    static int m_default_n_counter_max_count;
    static int m_default_tap_counter_max_count;
    static int m_id_count;    // PLLs alive
    static PLL_IMPL* m_impl;  // null while no PLL lives
    static PLL_MANAGER* m_pll_manager;
    static const char* const m_error_strings[MAX_PLL_ERROR_TYPE];
};
