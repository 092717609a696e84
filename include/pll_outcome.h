// What a synthesis came to, as records: whether any setting could be tried, which check refused one
// that was met, and how each output comes out. PLL::synthesize answers with a bool and an error
// value, and a late check overwrites the error of the search. These records keep the two apart.
//
//   PLL pll(2, PLL_MAX_TAPS);
//   pll.synthesize(request);
//   if (pll.m_outcome.m_kind == PLL_OUTCOME_KIND::MISSED) {
//       for (int i = 0; i < request.m_taps_count; ++i) {
//           const PLL_OUTPUT_OUTCOME output = pll_get_output_outcome(pll, request, i);
//           ...
#pragma once

#include "pll_export.h"

class PLL;
class PLL_PROP;

// ---- The tolerances that a synthesis decides with.

// An output whose ratio errs by less than this part of the ratio counts as met (0.1 %).
inline constexpr double PLL_MET_TOLERANCE = 0.001;

// A difference of two ratios below this is rounding, and the ratio counts as exact.
inline constexpr double PLL_EXACT_RATIO = 1e-12;

// Every limit of a VCO or PFD period is widened by this much, in ps.
inline constexpr double PLL_PERIOD_TOLERANCE = 1.0;

// The largest down spread that a synthesis accepts, as a fraction: 0.6 %.
inline constexpr double PLL_LARGEST_DOWN_SPREAD = 0.006;

// ---- The outcome of a whole synthesis.

// How far the search came.
enum class PLL_OUTCOME_KIND
{
    NONE,           // no synthesis yet
    NOTHING_TRIED,  // no legal M and N; the PLL holds the closest miss
    MISSED,         // some were tried, none met every output; the PLL holds the nearest
    MET,            // the call returned true
    REFUSED,        // every output is met, but m_refused_by turned the setting down
    OUT_OF_MEMORY   // the call returned false and left m_error as it was
};

// The checks that follow a search, in the order in which they run. The last one to fail sets
// m_error.
enum class PLL_CHECK
{
    NONE,             // all passed, or none was reached
    DELAYS,           // the delays lie further apart than a chain is long (error 5)
    RATIOS,           // a factor below 1, or a cost that is not a number (error 4)
    SPREAD,           // above PLL_LARGEST_DOWN_SPREAD (error 7), also of a request that is missed
    INPUT,            // an input clock is too fast (error 8)
    TABLE_FOR_INPUT,  // no row of the bandwidth table suits the input frequency (error 10)
    TABLE             // no row of the bandwidth table is for this division (error 9)
};

struct PLL_OUTCOME
{
    PLL_OUTCOME_KIND m_kind = PLL_OUTCOME_KIND::NONE;

    // The last check that failed. NONE unless the kind is REFUSED, MISSED or NOTHING_TRIED; of the
    // latter two only SPREAD arises.
    PLL_CHECK m_refused_by = PLL_CHECK::NONE;

    // M and N of the setting that the search chose, so VCO = input x m_m / m_n. m_m exceeds the
    // count of the M counter where an output is fed back. 0 unless the kind is MISSED, MET or
    // REFUSED. A loop filter that later multiplies both counters leaves these alone.
    int m_m = 0;
    int m_n = 0;
};

// ---- The outcome of one output.

enum class PLL_GRADE
{
    UNKNOWN,     // nothing was tried, or there is no such output
    EXACT,       // the ratio errs by less than PLL_EXACT_RATIO
    NEARLY_MET,  // by less than PLL_MET_TOLERANCE of the ratio
    MISSED
};

// What kept a counter from the division that its output needs.
enum class PLL_CLAMP
{
    NONE,
    HALVES,  // the high or low count reached the counter's m_max_count
    BYPASS   // the counter cannot divide, and passes the VCO clock
};

struct PLL_OUTPUT_OUTCOME
{
    PLL_GRADE m_grade = PLL_GRADE::UNKNOWN;

    // |VCO ratio / m_needed_count - requested ratio|: the error of the counter that the search
    // wanted, before anything was clamped. A ratio to the input; 0 below PLL_EXACT_RATIO.
    double m_ratio_error = 0.0;

    // m_ratio_error as a part of the requested ratio.
    double m_relative_error = 0.0;

    int m_needed_count = 0;               // whole division of the VCO that comes nearest
    PLL_CLAMP m_clamp = PLL_CLAMP::NONE;  // why the counter divides by something else

    // What the division of the output in the feedback leaves over of M; not 0 makes that output
    // missed. 0 for the others.
    int m_feedback_rest = 0;
};

// The outcome of output `output` of the last synthesis of `pll`, which must have been for
// `request`. UNKNOWN for an index outside the request's outputs, and unless the outcome's kind is
// MISSED, MET or REFUSED. Costs a few divisions; allocates nothing.
//
// A wish for a VCO ratio takes the place of an output's own error while a synthesis scores it. This
// grade speaks of the output's own frequency; `pll_is_vco_ratio_met` speaks of that wish.
PLL_API PLL_OUTPUT_OUTCOME pll_get_output_outcome(const PLL& pll, const PLL_PROP& request,
                                                  int output);

// True when the last synthesis of `pll` chose the VCO ratio that `request` wishes for, to
// PLL_EXACT_RATIO, or the request wishes for none. False when nothing was tried.
PLL_API bool pll_is_vco_ratio_met(const PLL& pll, const PLL_PROP& request);
