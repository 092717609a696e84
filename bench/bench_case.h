// The requests that the benchmarks time, made of five choices.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include <memory>
#include <string>

enum class BENCH_LIMITS
{
    BUILT_IN,  // what a PLL starts with
    LARGE      // a second post-scale with doubled periods, input periods from 500 ps
};

enum class BENCH_BANDWIDTH
{
    AUTO,   // lets the search end early once all clocks are met
    CUSTOM  // 1 MHz: every M must be tried
};

enum class BENCH_DEMAND
{
    EXACT,   // every clock can be met to the last digit
    NEAR,    // every clock can be met within a thousandth, none to the last digit
    MISSED,  // not all clocks can be met
    CROWDED  // slow clocks, which nearly all candidates meet within a thousandth
};

struct BENCH_CASE
{
    BENCH_LIMITS m_limits;
    BENCH_BANDWIDTH m_bandwidth;
    BENCH_DEMAND m_demand;
    int m_outputs;
    int m_fin_period;  // ps
};

inline constexpr int BENCH_PERIODS[] = {651, 1000, 5000, 10000, 20000, 40000};  // ps
inline constexpr int BENCH_OUTPUTS[] = {1, 5, 10};

const char* name_of(BENCH_LIMITS limits);

// "synthesis built-in auto exact 10 outputs": everything but the input period. Crowded cases, in
// which the library has phases and duty cycles to place and the lean loop has not, begin with
// "crowded" instead.
std::string row_name(const BENCH_CASE& bench_case);

// A PLL with as many clocks as wanted, within the limits wanted.
std::unique_ptr<PLL> make_pll(BENCH_LIMITS limits, int outputs);

// The request of a case, for a PLL within its limits.
PLL_PROP make_request(const BENCH_CASE& bench_case, const PLL& pll);
