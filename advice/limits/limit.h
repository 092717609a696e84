// One limit of a device: what it bounds, where it stands and where it comes from.
#pragma once

#include "advice/numbers/amount.h"

#include <string>
#include <vector>

namespace advice {

// What a limit bounds. The names say frequencies: `vco_max` is the highest VCO frequency, which a
// database keeps as the shortest period under the keyword vco_min.
enum class LIMIT_KIND
{
    VCO_MIN,  // Hz, of the VCO behind its post-scale, one limit for each post-scale
    VCO_MAX,
    PFD_MIN,  // Hz, input over N
    PFD_MAX,
    INPUT_MIN,  // Hz, of both inputs
    INPUT_MAX,
    OUTPUT_MIN,  // Hz, of every output
    OUTPUT_MAX,
    PIN_MIN,  // Hz, of outputs that leave the device; of others a note
    PIN_MAX,
    M_MIN,  // counts
    M_MAX,
    N_MIN,
    N_MAX,
    K_MIN,  // of an output counter, cascades apart
    K_MAX,
    HALF_MAX,  // of the high and of the low phase of an output counter, VCO periods
    POST_SCALE_MAX,
    POST_SCALES,    // the legal ones
    M_INITIAL_MAX,  // start counts
    K_INITIAL_MAX,
    M_TAP_MAX,  // phase taps of the VCO
    K_TAP_MAX,
    K_TAP_RESOLUTION,  // VCO degrees that phase taps are multiples of
    M_TAP_RESOLUTION,
    VCO_TAPS,          // the legal ones, of M and outputs
    OUTPUTS_MAX,       // output counters, cascades counted
    DELAY_MAX,         // ps, of each delay chain
    DELAY_RESOLUTION,  // ps, delays are multiples of it
    SPREAD_MIN,        // percent down
    SPREAD_MAX,
    SPREAD_CYCLES_MAX,  // input periods of one modulation period
    FEEDBACK_DUTY_MIN,  // percent, of an output that is fed back
    FEEDBACK_DUTY_MAX,
    M_LEGAL,  // of counters that can count to certain values only
    N_LEGAL,
    K_LEGAL,
    OTHER,  // of a device sheet, named by itself
    KIND_COUNT
};

enum class LIMIT_SIDE
{
    LEAST,
    MOST,
    MULTIPLE_OF,
    ONE_OF
};

enum class LIMIT_UNIT
{
    HZ,
    COUNT,
    PS,
    PERCENT
};

enum class LIMIT_ORIGIN
{
    BUILT_IN,
    OPTION,
    DATABASE,
    SHEET,
    LIBRARY  // of the library itself, whatever the device
};

// What is the same for all limits of a kind.
struct LIMIT_FACTS
{
    const char* m_name;  // "vco_max"
    const char* m_text;  // "VCO", "output", "largest M": what a sentence calls it
    LIMIT_UNIT m_unit;
    LIMIT_SIDE m_side;
};

const LIMIT_FACTS& facts_of(LIMIT_KIND kind);

// "hz", "count", "ps", "percent".
const char* name_of_unit(LIMIT_UNIT unit);

struct LIMIT
{
    LIMIT_KIND m_kind = LIMIT_KIND::OTHER;
    AMOUNT m_value;              // in the unit of the kind
    int m_output = -1;           // index of the output that it is of; -1: of all
    int m_post_scale = 0;        // that a VCO limit is of; 0: of all
    bool m_has_slack = false;    // the library takes a period within 1 ps beyond it for legal
    bool m_with_spread = false;  // holds while the spread is on only
    LIMIT_ORIGIN m_origin = LIMIT_ORIGIN::BUILT_IN;
    std::string m_keyword;     // of the database or sheet: "vco_min_post_scale 1"; else empty
    std::string m_source;      // "built in", "option --vco", "FILE:LINE"
    std::string m_own_name;    // of LIMIT_KIND::OTHER
    std::vector<int> m_legal;  // of LIMIT_SIDE::ONE_OF, ascending

    // "vco_max", or a sheet's own name.
    const char* name() const;
};

// "vco_max = 1000 MHz (built in)": one line without its end.
std::string to_text(const LIMIT& limit);

}  // namespace advice
