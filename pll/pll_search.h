// The search of one synthesis: what it reads once, what it keeps, and its steps.
//
// Data goes one way: the limits are read from the PLL and the request, windows of N are found for
// every post-scale and M, each legal (post-scale, M, N) becomes a candidate with output counters,
// and the ranking keeps the best. Nothing here writes into the host's PLL.
#pragma once

#include "pll.h"
#include "pll_bandwidth.h"
#include "pll_placement.h"
#include "pll_prop.h"
#include "pll_ratio_error.h"
#include "pll_trace.h"

// How a loop bandwidth is asked for, after presets have been turned into numbers.
enum BANDWIDTH_TYPE
{
    BANDWIDTH_HIGH,
    BANDWIDTH_MEDIUM,
    BANDWIDTH_LOW,
    BANDWIDTH_AUTO,
    BANDWIDTH_CUSTOM
};

// The request's loop bandwidth as the search uses it.
struct BANDWIDTH_WISH
{
    int m_type;          // BANDWIDTH_TYPE, or what the request holds instead
    double m_bandwidth;  // Hz, of a custom wish
    bool m_table_mode;   // the device's table decides, so the search itself asks for nothing

    bool is_custom() const { return m_type == BANDWIDTH_CUSTOM && !m_table_mode; }
};

// The periods that a VCO may have at one post-scale, in ps, before the tolerance.
struct VCO_LIMITS
{
    double m_min;
    double m_max;
    int m_center;
};

// All that the search reads of the PLL and the request, read once.
struct SEARCH_LIMITS
{
    int m_fin_period;   // ps
    int m_fin2_period;  // ps; 0 or less: none
    int m_m_max;
    int m_n_min;
    int m_n_max;
    int m_max_post_scale;
    double m_pfd_min;  // ps
    double m_pfd_max;  // ps
    double m_down_spread;
    bool m_spread;   // down spread is asked for
    bool m_cut_off;  // automatic bandwidth: M need not exceed four times the smallest exact one
    BANDWIDTH_WISH m_wish;
    int m_product_min;  // charge-pump current x resistor
    int m_product_max;
    int m_first_resistor;  // ohm
    int m_taps_count;      // of the request, as many as a record holds
    RATIO_WISH m_wishes[PLL_MAX_TAPS];
    bool m_may_cascade;     // candidates may use counters beyond those of the outputs
    RATIO_WISH m_vco_wish;  // 0 / 0 or less: none

    VCO_LIMITS get_vco(const PLL& pll, int post_scale) const;
};

// One (post-scale, M, N) that the limits allow.
struct SEARCH_POINT
{
    int m_post_scale;
    int m_m;
    int m_n;
    double m_vco_period;  // ps
    int m_vco_center;     // ps
    int m_product;        // charge-pump current x resistor that a custom bandwidth asks for
};

// The illegal pair whose VCO period was nearest to the range, for when nothing is legal.
struct CLOSEST_MISS
{
    int m_distance = 0x40000000;
    int m_m = 1;
    int m_n = 1;
    double m_vco_period = 1000.0;  // ps
};

// What a search found.
struct SEARCH_RESULT
{
    explicit SEARCH_RESULT(const PLL& pll, const PLL_PROP& request);

    PLL m_best;
    SEARCH_POINT m_best_point{};
    double m_best_error = WORST;
    double m_best_cost = WORST;
    double m_best_vco_deviation = WORST;  // ps
    bool m_found = false;                 // some candidate was better than none
    bool m_taken = false;                 // some exact candidate was taken into m_best
    bool m_clamped = false;               // of the best inexact one
    CLOSEST_MISS m_miss;

    static constexpr double WORST = 1e300;
};

// The trace of a synthesis; while closed, nothing is written.
class SYNTHESIS_TRACE
{
public:
    // Opens "debug.log" in the current directory for appending.
    void open() { m_file.open("debug.log"); }

    void request(const SEARCH_LIMITS& limits, const PLL_PROP& request);
    void candidate(const PLL& candidate);
    void new_best();
    void user_view(const PLL& candidate, const PLL_PROP& request);
    void best(const PLL& pll);

private:
    TRACE_STREAM m_file;
};

// Reads what the search needs. Reports the counters that a search cannot start from.
SEARCH_LIMITS read_search_limits(const PLL& pll, const PLL_PROP& request);

// Visits every (post-scale, M, N) that is legal and fills `result`. `trace` is null while debugging
// is off.
void search(const PLL& pll, const PLL_PROP& request, const SEARCH_LIMITS& limits,
            SYNTHESIS_TRACE* trace, SEARCH_RESULT* result);

// The charge-pump current times resistor that `bandwidth` asks for at `m` and a VCO gain.
int current_resistor_product(int m, double bandwidth, double vco_gain);

// Turns `candidate` into the setting of `point`: counters, cascades, feedback. Carried values are
// taken from `best`. Returns what it measures.
CANDIDATE_SCORE assign_candidate(const PLL& pll, const PLL_PROP& request,
                                 const SEARCH_LIMITS& limits, const SEARCH_POINT& point,
                                 const PLL& best, PLL* candidate);

// The division of the first of two counters that share `count`, with the counter `source_index` as
// the first one; 0 when they cannot, or need not.
int find_cascade(const PLL& pll, int count, int max_count, int source_index);

// The next and previous values that are carried from candidate to candidate.
void copy_carried_values(const PLL_OUTPUT_TAP& from, PLL_OUTPUT_TAP* to);

// Costs `candidate`, whose counters stand, and keeps it in `result` when it beats the best.
class RANKING
{
public:
    RANKING(const PLL& pll, const PLL_PROP& request, bool table_mode, bool spread,
            SYNTHESIS_TRACE* trace)
        : m_pll(pll),
          m_request(request),
          m_table_mode(table_mode),
          m_spread(spread),
          m_trace(trace),
          m_placement(pll, request),
          m_chooser(request)
    {
    }

    // Returns whether the candidate was taken as the best.
    bool offer(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result);

private:
    bool offer_inexact(const PLL& candidate, const CANDIDATE_SCORE& score,
                       SEARCH_RESULT* result) const;
    bool offer_exact(PLL* candidate, CANDIDATE_SCORE* score, SEARCH_RESULT* result);
    void add_device_penalties(PLL* candidate) const;
    bool compare_cost(const PLL& candidate, SEARCH_RESULT* result) const;

    const PLL& m_pll;
    const PLL_PROP& m_request;
    bool m_table_mode;
    bool m_spread;
    SYNTHESIS_TRACE* m_trace;
    PLACEMENT m_placement;
    PLL_BANDWIDTH_CHOOSER m_chooser;
};

// Chooses resistor and charge-pump current for a custom bandwidth, raising M and N by a common
// factor when the current would be too small.
void synthesize_loop_filter(PLL* pll, int fin_period, double bandwidth, bool spread);

// M times post-scale times the count of the feedback output: what the loop divides by.
int effective_feedback_division(const PLL& pll);

// Clocks to walk over: never more than a record holds, never less than none.
inline int clamp_taps(int count)
{
    return count < 0 ? 0 : (count > PLL_MAX_TAPS ? PLL_MAX_TAPS : count);
}
