// What is kept and what is missed: a verdict on every wish and every limit of a request.
//
// Frequencies, ratios, counts and phases are compared as exact fractions; only figures of the loop
// filter are doubles. A record holds no text of its own; `to_text` writes one.
#pragma once

#include "advice/limits/limits.h"
#include "advice/numbers/amount.h"
#include "advice/request/request.h"

#include <string>
#include <vector>

class PLL;
class PLL_PROP;

namespace advice {

enum class WISH_KIND
{
    FREQUENCY,    // Hz; tolerance and miss are parts of the frequency asked for
    PHASE,        // degrees of the output; a whole turn is no miss
    DUTY,         // percent; miss in points
    DELAY,        // ps, relative to the other outputs' as asked
    EVEN,         // 1 asked; achieved 1 kept, 0 not
    EVEN_COUNT,   // likewise
    BANDWIDTH,    // Hz; miss a part
    SPREAD,       // percent; miss a part
    SPREAD_RATE,  // Hz; miss a part
    VCO_RATIO,    // a number; miss a part
    KIND_COUNT
};

// "frequency", "phase", "duty" ...: as options and JSON call it.
const char* name_of(WISH_KIND kind);

struct JUDGED_WISH
{
    WISH_KIND m_kind = WISH_KIND::FREQUENCY;
    int m_output = NO_OUTPUT;  // index, or NO_OUTPUT for the loop
    AMOUNT m_asked;
    AMOUNT m_achieved;     // a double that is not a number: nothing at all
    AMOUNT m_miss;         // signed, in the unit of the kind: see WISH_KIND
    RATIONAL m_tolerance;  // in the unit of the miss
    AMOUNT m_step;         // distance of the values that could be had; 0: unknown
    bool m_kept = true;
};

struct JUDGED_LIMIT
{
    const LIMIT* m_limit = nullptr;  // of the LIMITS or its rules, which must outlive this
    int m_output = NO_OUTPUT;        // index, or NO_OUTPUT for the loop
    int m_input = 1;                 // 2: with the second input
    AMOUNT m_value;                  // of the answer, in the limit's unit
    double m_margin_percent = 0.0;   // of the limit; negative beyond it
    bool m_kept = true;
    bool m_slack_used = false;  // beyond, by less than the 1 ps that the library allows
    bool m_is_note = false;     // does not bind: a limit of pins for an output without the word
};

enum class WARNING_KIND
{
    NEAR_LIMIT,    // m_index: of the judged limit
    SLACK_USED,    // likewise
    NOTE,          // likewise: would not hold at a pin
    PHASE_MARGIN,  // m_value: degrees
    LOCK_RANGE,    // leaves out input m_index
    BUILT_IN       // limits of no real device
};

struct WARNING
{
    WARNING_KIND m_kind = WARNING_KIND::NEAR_LIMIT;
    std::size_t m_index = 0;
    double m_value = 0.0;
};

struct VERDICT
{
    bool m_met = false;          // every wish and every binding limit is kept
    bool m_has_setting = false;  // counters were found at all; else wishes are all missed
    std::vector<JUDGED_WISH> m_wishes;
    std::vector<JUDGED_LIMIT> m_limits;
    std::vector<WARNING> m_warnings;
};

// Judges a setting: the counters of `pll`, and `achieved`, what the library says that they achieve.
// The limits must outlive the verdict. Records of an earlier verdict are reused.
void judge(const REQUEST& request, const LIMITS& limits, const PLL& pll, const PLL_PROP& achieved,
           VERDICT* verdict);

// Likewise, of a PLL for which no setting was found: nothing is kept but what the inputs keep.
void judge_without_setting(const REQUEST& request, const LIMITS& limits, const PLL& pll,
                           VERDICT* verdict);

// "MISSED phase of output 1: 0 deg for 20, steps of 45", or "phase of output 1: 20 deg" when kept.
std::string to_text(const REQUEST& request, const JUDGED_WISH& wish);

// "BROKEN output_max: output 1 at 900 MHz, limit 454.545455 MHz (output_min, chervil.txt:12)", or
// without the first word when kept.
std::string to_text(const REQUEST& request, const JUDGED_LIMIT& limit);

// "WARNING: ..." or "NOTE: ...".
std::string to_text(const REQUEST& request, const VERDICT& verdict, const WARNING& warning);

// What a verdict covers, in one line: "MET: every output is exact; ...".
std::string headline(const REQUEST& request, const VERDICT& verdict);

}  // namespace advice
