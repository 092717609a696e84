// Times syntheses and listings of VCO ratios, each beside a lean loop that gives the same answer.
// An answer that differs stops the measurement and makes the program fail: a comparison of times
// says nothing when the work is not the same.
#include "bench_case.h"
#include "lean_loop.h"
#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

constexpr int REPETITIONS = 3;
constexpr double SECONDS_EACH = 0.02;

const char DIFFERENT_COUNTERS[] = "the library and the lean loop choose different counters";
const char DIFFERENT_RATIOS[] = "the library and the lean loop list different ratios";
const char WRONG_DEMAND[] = "the request is not of the kind that its name says";

bool is_of_kind(BENCH_DEMAND demand, const LEAN_ANSWER& answer)
{
    switch (demand) {
    case BENCH_DEMAND::EXACT:
        return answer.m_exact && answer.m_cost == 0.0;
    case BENCH_DEMAND::NEAR:
    case BENCH_DEMAND::CROWDED:
        return answer.m_exact && answer.m_cost != 0.0;
    case BENCH_DEMAND::MISSED:
        break;
    }
    return answer.m_found && !answer.m_exact;
}

bool is_same(const PLL& pll, const LEAN_ANSWER& answer)
{
    return pll.get_m() == answer.m_m && pll.get_n() == answer.m_n &&
           pll.m_vco_post_scale == answer.m_post_scale;
}

void measure_library(benchmark::State& state, const BENCH_CASE& bench_case)
{
    const auto pll = make_pll(bench_case.m_limits, bench_case.m_outputs);
    const PLL_PROP request = make_request(bench_case, *pll);
    const LEAN_ANSWER expected = lean_synthesis(*pll, request);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(pll->synthesize(request));
    }
    if (!is_same(*pll, expected)) {
        state.SkipWithError(DIFFERENT_COUNTERS);
    }
    if (bench_case.m_demand == BENCH_DEMAND::CROWDED) {
        state.counters["candidates_met"] = expected.m_met;
        state.counters["per_candidate_and_output"] = benchmark::Counter(
            double(expected.m_met) * bench_case.m_outputs,
            benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    }
}

void measure_lean(benchmark::State& state, const BENCH_CASE& bench_case)
{
    const auto pll = make_pll(bench_case.m_limits, bench_case.m_outputs);
    const PLL_PROP request = make_request(bench_case, *pll);
    LEAN_ANSWER answer = {};
    while (state.KeepRunning()) {
        answer = lean_synthesis(*pll, request);
        benchmark::DoNotOptimize(answer);
    }
    if (!is_of_kind(bench_case.m_demand, answer)) {
        state.SkipWithError(WRONG_DEMAND);
    }
}

bool is_same(int count, const int* mults, const int* divs, const std::vector<LEAN_RATIO>& ratios)
{
    if (std::size_t(count) != ratios.size()) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const LEAN_RATIO& ratio = ratios[std::size_t(i)];
        if (mults[i] != ratio.m_mult || divs[i] != ratio.m_div) {
            return false;
        }
    }
    return true;
}

void measure_library_listing(benchmark::State& state, BENCH_LIMITS limits, int fin_period)
{
    const auto pll = make_pll(limits, 1);
    std::vector<LEAN_RATIO> expected;
    lean_vco_ratios(*pll, fin_period, &expected);
    int* mults = nullptr;
    int* divs = nullptr;
    int count = 0;
    while (state.KeepRunning()) {
        count = pll->find_vco_mult_div_values(&mults, &divs, fin_period);
        benchmark::DoNotOptimize(count);
    }
    if (!is_same(count, mults, divs, expected)) {
        state.SkipWithError(DIFFERENT_RATIOS);
    }
    state.counters["ratios"] = count;
}

void measure_lean_listing(benchmark::State& state, BENCH_LIMITS limits, int fin_period)
{
    const auto pll = make_pll(limits, 1);
    std::vector<LEAN_RATIO> ratios;
    while (state.KeepRunning()) {
        lean_vco_ratios(*pll, fin_period, &ratios);
        benchmark::DoNotOptimize(ratios.data());
    }
    state.counters["ratios"] = double(ratios.size());
}

template <class MEASURE>
void add(const std::string& name, MEASURE measure)
{
    benchmark::RegisterBenchmark(name.c_str(), measure)
        ->Repetitions(REPETITIONS)
        ->MinTime(SECONDS_EACH)
        ->Unit(benchmark::kMicrosecond);
}

void add_pair(const BENCH_CASE& bench_case)
{
    const std::string row = row_name(bench_case);
    add(lean_name(row, bench_case.m_fin_period),
        [bench_case](benchmark::State& state) { measure_lean(state, bench_case); });
    add(library_name(row, bench_case.m_fin_period),
        [bench_case](benchmark::State& state) { measure_library(state, bench_case); });
}

void add_syntheses(BENCH_LIMITS limits, BENCH_BANDWIDTH bandwidth, BENCH_DEMAND demand)
{
    for (const int outputs : BENCH_OUTPUTS) {
        for (const int period : BENCH_PERIODS) {
            add_pair({limits, bandwidth, demand, outputs, period});
        }
    }
}

void add_syntheses(BENCH_LIMITS limits)
{
    for (const BENCH_BANDWIDTH bandwidth : {BENCH_BANDWIDTH::AUTO, BENCH_BANDWIDTH::CUSTOM}) {
        add_syntheses(limits, bandwidth, BENCH_DEMAND::EXACT);
        add_syntheses(limits, bandwidth, BENCH_DEMAND::NEAR);
        add_syntheses(limits, bandwidth, BENCH_DEMAND::MISSED);
    }
    add_syntheses(limits, BENCH_BANDWIDTH::AUTO, BENCH_DEMAND::CROWDED);
}

void add_listings(BENCH_LIMITS limits)
{
    const std::string row = std::string("ratios ") + name_of(limits);
    for (const int period : BENCH_PERIODS) {
        add(lean_name(row, period), [limits, period](benchmark::State& state) {
            measure_lean_listing(state, limits, period);
        });
        add(library_name(row, period), [limits, period](benchmark::State& state) {
            measure_library_listing(state, limits, period);
        });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    for (const BENCH_LIMITS limits : {BENCH_LIMITS::BUILT_IN, BENCH_LIMITS::LARGE}) {
        add_syntheses(limits);
        add_listings(limits);
    }
    RATIO_REPORTER reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.get_failures() == 0 ? 0 : 1;
}
