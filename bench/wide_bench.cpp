// Counters that count to a million, of which few settings or none are legal: the time of a request
// must not follow what counters can count to.
#include "bench_case.h"
#include "same_answer.h"
#include "sections.h"
#include "stopwatch.h"

namespace {

constexpr int MILLION = 1000000;
constexpr double LONGEST_MS = 100.0;
constexpr double MS_PER_S = 1e3;
constexpr int LONGEST_PERIOD = 2147483647;  // ps

struct WIDE_CASE
{
    const char* m_name;
    int m_fin_period;  // ps, as in the next five
    int m_fin2_period;
    int m_vco_min;
    int m_vco_max;
    int m_pfd_min;
    int m_pfd_max;
    int m_n_max;
    BENCH_BANDWIDTH m_bandwidth;
    bool m_lean_is_quick;  // the plain loop ends within a second or so
};

constexpr BENCH_BANDWIDTH AUTO = BENCH_BANDWIDTH::AUTO;
constexpr BENCH_BANDWIDTH CUSTOM = BENCH_BANDWIDTH::CUSTOM;

// clang-format off
constexpr WIDE_CASE WIDE_CASES[] = {
    // name                              fin         fin2      VCO                     PFD                            N max     bandwidth  lean
    {"tight VCO range",                  10000,      0,        1000,     1000,         1500,         333333,          MILLION,  AUTO,      true},
    {"tight VCO range, custom",          10000,      0,        1000,     1000,         1500,         333333,          MILLION,  CUSTOM,    true},
    {"tight PFD range",                  1,          0,        500,      501,          MILLION - 2,  MILLION - 1,     MILLION,  AUTO,      false},
    {"tight ranges, slow input",         100000000,  0,        1000,     1000,         1,            LONGEST_PERIOD,  9,        AUTO,      true},
    {"no legal PFD",                     10000,      0,        1000,     3334,         15000,        15001,           MILLION,  AUTO,      true},
    {"no legal PFD, N to the end",       1,          0,        1000,     3334,         2 * MILLION,  3 * MILLION,     MILLION,  AUTO,      false},
    {"no legal VCO, too slow",           100000000,  0,        10,       20,           1,            LONGEST_PERIOD,  MILLION,  AUTO,      true},
    {"no legal VCO, too fast",           1,          0,        MILLION,  2 * MILLION,  1,            LONGEST_PERIOD,  MILLION,  AUTO,      false},
    {"no legal VCO, between two N",      100000000,  0,        57,       57,           1,            LONGEST_PERIOD,  1,        AUTO,      true},
    {"VCO limits that cross",            1,          0,        1000,     900,          1,            LONGEST_PERIOD,  MILLION,  AUTO,      false},
    {"no legal second input",            10000,      MILLION,  1000,     3334,         1,            LONGEST_PERIOD,  MILLION,  AUTO,      false},
    {"every M barred by its bandwidth",  651,        0,        1000,     1000,         1500,         333333,          MILLION,  CUSTOM,    true},
};
// clang-format on

void measure(const WIDE_CASE& wide_case, TARGET_TABLE* table)
{
    const auto pll = make_pll(BENCH_LIMITS::BUILT_IN, PLL_MAX_TAPS);
    pll->m_m.m_max_count = MILLION;
    pll->m_n.m_max_count = wide_case.m_n_max;
    pll->m_vco_min_period[1] = wide_case.m_vco_min;
    pll->m_vco_max_period[1] = wide_case.m_vco_max;
    pll->m_pfd_min_period = wide_case.m_pfd_min;
    pll->m_pfd_max_period = wide_case.m_pfd_max;
    PLL_PROP request = make_request({BENCH_LIMITS::BUILT_IN, wide_case.m_bandwidth,
                                     BENCH_DEMAND::MISSED, PLL_MAX_TAPS, wide_case.m_fin_period},
                                    *make_pll(BENCH_LIMITS::BUILT_IN, PLL_MAX_TAPS));
    request.m_fin2_period = wide_case.m_fin2_period;
    const std::string work = std::string("counters to 10^6, ") + wide_case.m_name;
    if (wide_case.m_bandwidth == BENCH_BANDWIDTH::CUSTOM) {
        request.m_bandwidth = 1.0;
    }
    const double library = best_seconds([&] { pll->synthesize(request); });
    const bool is_found = pll->m_error != PLL::PLL_M_N_NOT_FOUND;
    std::string note = is_found ? "some legal" : "nothing legal";
    if (wide_case.m_lean_is_quick) {
        LEAN_ANSWER answer = {};
        const double lean = seconds_once([&] { answer = lean_synthesis(*pll, request); });
        if (!is_same_answer(*pll, answer)) {
            table->add_error(work, "the library and the lean loop answer differently");
            return;
        }
        note += ", lean loop " + std::to_string(int(lean * MS_PER_S)) + " ms";
    }
    table->add_most(work, library * MS_PER_S, LONGEST_MS, "ms", note);
}

}  // namespace

void measure_wide_counters(TARGET_TABLE* table)
{
    for (const WIDE_CASE& wide_case : WIDE_CASES) {
        measure(wide_case, table);
    }
}
