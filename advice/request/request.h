// What is wanted of a PLL, exactly: clocks, loop, tolerances, and limits that the user sets. A
// request is plain data that any host can fill; `find_problem` tells whether it is one, `to_prop`
// translates it for the library.
#pragma once

#include "advice/numbers/rational.h"
#include "advice/numbers/text.h"

#include <optional>
#include <string>
#include <vector>

class PLL_PROP;

namespace advice {

// Smaller distances are told of a met answer too.
struct MARGINS
{
    double m_limit_percent = 5.0;   // to a limit of a frequency
    double m_phase_degrees = 45.0;  // phase margin of the loop
};

// An input clock. The library knows it by its period in whole ps, which need not be exact.
struct INPUT_CLOCK
{
    RATIONAL m_frequency;                         // Hz
    RATIONAL m_period;                            // ps
    int m_library_period = 0;                     // ps, nearest to the period; 0: does not fit
    FREQUENCY_UNIT m_unit = FREQUENCY_UNIT::MHZ;  // that it was given in, for texts
};

// The clock of a frequency in Hz. Its library period is 0 when that is not 1 to 2147483647 ps.
INPUT_CLOCK make_input(const RATIONAL& frequency);

// How far each kind of wish may be missed. What is not listed must be exact.
struct TOLERANCES
{
    RATIONAL m_frequency{100, 1000000};  // part of the frequency asked for
    RATIONAL m_phase{1};                 // degrees of the output
    RATIONAL m_duty{1};                  // points of percent
    RATIONAL m_delay{0};                 // ps
    RATIONAL m_bandwidth{1, 10};         // part of the bandwidth asked for
    RATIONAL m_spread{1, 10};            // part of the spread asked for
    RATIONAL m_spread_rate{1, 10};       // part of the rate asked for

    // Nothing may be missed at all.
    static TOLERANCES exact();
};

// The largest tolerance of a frequency, a part of one.
RATIONAL max_frequency_tolerance();

// The tolerances of one output, where they are its own.
struct OUTPUT_TOLERANCES
{
    std::optional<RATIONAL> m_frequency;  // units as above
    std::optional<RATIONAL> m_phase;
    std::optional<RATIONAL> m_duty;
    std::optional<RATIONAL> m_delay;
};

constexpr int NO_OUTPUT = -1;

// One output clock.
struct OUTPUT_WISH
{
    std::string m_name;                           // as the user calls it; empty: its number
    RATIONAL m_frequency;                         // Hz, exact
    FREQUENCY_UNIT m_unit = FREQUENCY_UNIT::MHZ;  // that it was asked in, for texts
    RATIONAL m_ratio{1};                          // to the input, exact
    RATIONAL m_phase;                             // degrees of the output, -360 to 360
    int m_phase_to = NO_OUTPUT;  // index of the output that the phase counts from; NO_OUTPUT: input
    RATIONAL m_duty{50};         // percent, above 0 and below 100
    int m_delay = 0;             // ps
    bool m_even = false;         // a counter without the half period
    bool m_even_count = false;   // even high and low counts
    bool m_pin = false;          // leaves the device, so the limits of pins hold
    OUTPUT_TOLERANCES m_tolerances;
};

// Values as the library's.
enum class BANDWIDTH_KIND
{
    HIGH,
    MEDIUM,
    LOW,
    AUTO,
    CUSTOM
};

// A closed range that the user sets in the place of a limit; an end without value is left as it is.
struct RANGE
{
    std::optional<RATIONAL> m_least;
    std::optional<RATIONAL> m_most;

    bool is_set() const { return m_least || m_most; }
};

// Limits by hand replace those in force, whether they are narrower or wider.
struct LIMITS_BY_HAND
{
    RANGE m_vco;                     // Hz, of every post-scale
    RANGE m_pfd;                     // Hz
    RANGE m_input;                   // Hz
    RANGE m_output;                  // Hz
    RANGE m_m;                       // counts
    RANGE m_n;                       // counts
    RANGE m_k;                       // counts of an output counter, cascades apart
    std::vector<int> m_post_scales;  // the legal ones; empty: as in force
    std::vector<int> m_vco_taps;     // likewise, phase taps of the VCO, 0 to 7

    bool is_set() const;
};

struct REQUEST
{
    INPUT_CLOCK m_input;
    std::optional<INPUT_CLOCK> m_input2;
    std::vector<OUTPUT_WISH> m_outputs;
    BANDWIDTH_KIND m_bandwidth_kind = BANDWIDTH_KIND::AUTO;
    RATIONAL m_bandwidth;                   // Hz, of BANDWIDTH_KIND::CUSTOM
    RATIONAL m_spread;                      // down spread, a part of one; 0: none
    std::optional<RATIONAL> m_spread_rate;  // Hz; none: the library's own
    std::optional<RATIONAL> m_vco_ratio;    // VCO to input
    int m_feedback = NO_OUTPUT;             // index of the output that is fed back; NO_OUTPUT: M
    bool m_reconfig = false;                // the PLL is reconfigured at run time
    std::optional<int> m_max_outputs;       // of the device; none: as many as it has
    LIMITS_BY_HAND m_by_hand;
    TOLERANCES m_tolerances;
    MARGINS m_margins;
};

// The name of an output in texts: the user's or "output 2".
std::string name_of_output(const REQUEST& request, std::size_t output);

// The tolerances that hold for an output: its own, else those of the request.
TOLERANCES tolerances_of(const REQUEST& request, std::size_t output);

// The frequency of output `output` in Hz for a ratio to the input; invalid when it does not fit.
RATIONAL frequency_of(const REQUEST& request, const RATIONAL& ratio);

// What keeps a request from being one.
struct REQUEST_PROBLEM
{
    std::string m_field;  // "input", "outputs", "spread" ...
    int m_output;         // index of the output that it is about, or NO_OUTPUT
    std::string m_text;   // what is wrong and what would be right
};

// The first problem of a request; none when the library can be asked. At most `max_outputs` outputs
// are legal.
std::optional<REQUEST_PROBLEM> find_problem(const REQUEST& request, int max_outputs);

// The phase of an output against the input in degrees of that output, relations to other outputs
// resolved: an output phased to one of another frequency counts from that one's rising edge.
RATIONAL phase_to_input(const REQUEST& request, std::size_t output);

// What the library is asked for: ratios as fractions of ints, phases in degrees of the input, duty
// cycles in whole percent. Of a request without a problem.
PLL_PROP to_prop(const REQUEST& request);

}  // namespace advice
