// Requests that tens of thousands of candidates meet, each of which must be costed.
#include "bench_case.h"
#include "same_answer.h"
#include "sections.h"
#include "stopwatch.h"

namespace {

constexpr double LONGEST_NS = 40.0;
constexpr double NS_PER_S = 1e9;
constexpr int WORST_FIN_PERIOD = 651;  // ps
constexpr int NEAR_DIVISION = 1561;
constexpr int PARTS = 10;  // the divisions lie a tenth apart

void measure(const std::string& row, PLL* pll, const PLL_PROP& request, TARGET_TABLE* table)
{
    LEAN_ANSWER answer = {};
    const double lean = best_seconds([&] { answer = lean_synthesis(*pll, request); });
    const double library = best_seconds([&] { pll->synthesize(request); });
    if (!is_same_answer(*pll, answer)) {
        table->add_error(row, "the library and the lean loop answer differently");
        return;
    }
    const double costed = double(answer.m_met) * request.m_taps_count;
    char note[96];
    std::snprintf(note, sizeof(note), "a candidate and output; %d candidates, lean loop %.1f ns",
                  answer.m_met, lean / costed * NS_PER_S);
    table->add_most(row, library / costed * NS_PER_S, LONGEST_NS, "ns", note);
}

// Ten clocks of nearly the input's frequency over 1561.
void measure_near_division(TARGET_TABLE* table)
{
    const auto pll = make_pll(BENCH_LIMITS::LARGE, PLL_MAX_TAPS);
    PLL_PROP request(PLL_MAX_TAPS);
    request.m_fin_period = WORST_FIN_PERIOD;
    for (int i = 0; i < PLL_MAX_TAPS; ++i) {
        request.m_taps[i].m_mult = PARTS;
        request.m_taps[i].m_div = NEAR_DIVISION * PARTS + i;
    }
    measure("crowded large auto 10 outputs near fin / 1561, 651 ps", pll.get(), request, table);
}

// The same with a phase for every clock, which each candidate achieves in its own way.
void measure_phases(BENCH_CASE bench_case, TARGET_TABLE* table)
{
    constexpr double PHASE_STEP = 27.5;  // degrees
    const auto pll = make_pll(bench_case.m_limits, bench_case.m_outputs);
    PLL_PROP request = make_request(bench_case, *pll);
    for (int i = 0; i < request.m_taps_count; ++i) {
        request.m_taps[i].m_phase = PHASE_STEP * (i + 1);
    }
    measure(row_name(bench_case) + ", 651 ps, phases", pll.get(), request, table);
}

}  // namespace

void measure_crowds(TARGET_TABLE* table)
{
    measure_near_division(table);
    for (const BENCH_LIMITS limits : {BENCH_LIMITS::BUILT_IN, BENCH_LIMITS::LARGE}) {
        for (const int outputs : BENCH_OUTPUTS) {
            const BENCH_CASE bench_case = {limits, BENCH_BANDWIDTH::AUTO, BENCH_DEMAND::CROWDED,
                                           outputs, WORST_FIN_PERIOD};
            const auto pll = make_pll(limits, outputs);
            measure(row_name(bench_case) + ", 651 ps", pll.get(), make_request(bench_case, *pll),
                    table);
            measure_phases(bench_case, table);
        }
    }
}
