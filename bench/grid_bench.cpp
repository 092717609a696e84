// Syntheses and listings of VCO ratios, each beside a lean loop that gives the same answer. An
// answer that differs stops the measurement.
#include "bench_case.h"
#include "lean_loop.h"
#include "ratio_reporter.h"
#include "same_answer.h"
#include "sections.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

constexpr int REPETITIONS = 6;
constexpr double SECONDS_EACH = 0.003;

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

void measure_library(benchmark::State& state, const BENCH_CASE& bench_case)
{
    const auto pll = make_pll(bench_case.m_limits, bench_case.m_outputs);
    const PLL_PROP request = make_request(bench_case, *pll);
    const LEAN_ANSWER expected = lean_synthesis(*pll, request);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(pll->synthesize(request));
    }
    if (!is_same_answer(*pll, expected)) {
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
    if (!is_same_list(count, mults, divs, expected)) {
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

// ---- What is wanted

constexpr double LEAST_MEAN = 20.0;
constexpr double LEAST_RATIO = 4.0;
constexpr double SHORT_LEAN_US = 30.0;  // below it the library's own time counts, not the ratio
constexpr double LARGEST_SHORT_US = 5.0;
constexpr double LEAST_MISSED_RATIO = 25.0;
constexpr double LARGEST_MISSED_US = 10.0;
constexpr int MISSED_PERIOD = 10000;  // ps

// Requests that cannot be met, at 100 MHz and the built-in limits.
void judge_missed(const std::vector<MEASURED_PAIR>& pairs, TARGET_TABLE* table)
{
    for (const int outputs : BENCH_OUTPUTS) {
        const BENCH_CASE bench_case = {BENCH_LIMITS::BUILT_IN, BENCH_BANDWIDTH::AUTO,
                                       BENCH_DEMAND::MISSED, outputs, MISSED_PERIOD};
        const std::string work = row_name(bench_case) + ", 100 MHz";
        for (const MEASURED_PAIR& pair : pairs) {
            if (pair.m_row != row_name(bench_case) || pair.m_fin_period != MISSED_PERIOD) {
                continue;
            }
            const std::string note = "lean loop " + std::to_string(int(pair.m_lean_us)) + " us";
            table->add_least(work, pair.get_ratio(), LEAST_MISSED_RATIO, "times", note);
            if (outputs == PLL_MAX_TAPS) {
                table->add_most(work, pair.m_library_us, LARGEST_MISSED_US, "us");
            } else {
                table->add_figure(work, pair.m_library_us, "us");
            }
        }
    }
}

std::string describe(const MEASURED_PAIR& pair)
{
    return pair.m_row + " at " + std::to_string(pair.m_fin_period) + " ps";
}

void judge_lowest_ratio(const std::vector<MEASURED_PAIR>& pairs, TARGET_TABLE* table)
{
    const MEASURED_PAIR* lowest = nullptr;
    int below = 0;
    for (const MEASURED_PAIR& pair : pairs) {
        if (pair.m_lean_us < SHORT_LEAN_US) {
            continue;
        }
        below += pair.get_ratio() < LEAST_RATIO ? 1 : 0;
        if (lowest == nullptr || pair.get_ratio() < lowest->get_ratio()) {
            lowest = &pair;
        }
    }
    if (lowest != nullptr) {
        table->add_least("grid: lowest ratio, lean loop 30 us or more", lowest->get_ratio(),
                         LEAST_RATIO, "times",
                         describe(*lowest) + "; below: " + std::to_string(below));
    }
}

void judge_short_requests(const std::vector<MEASURED_PAIR>& pairs, TARGET_TABLE* table)
{
    const MEASURED_PAIR* slowest = nullptr;
    int above = 0;
    for (const MEASURED_PAIR& pair : pairs) {
        if (pair.m_lean_us >= SHORT_LEAN_US || pair.get_ratio() >= LEAST_RATIO) {
            continue;
        }
        above += pair.m_library_us > LARGEST_SHORT_US ? 1 : 0;
        if (slowest == nullptr || pair.m_library_us > slowest->m_library_us) {
            slowest = &pair;
        }
    }
    if (slowest != nullptr) {
        table->add_most("grid: longest time below 4 times, lean loop under 30 us",
                        slowest->m_library_us, LARGEST_SHORT_US, "us",
                        describe(*slowest) + "; above: " + std::to_string(above));
    }
}

void judge_grid(const std::vector<MEASURED_PAIR>& pairs, TARGET_TABLE* table)
{
    if (pairs.empty()) {
        return;
    }
    double logarithms = 0.0;
    for (const MEASURED_PAIR& pair : pairs) {
        logarithms += std::log(pair.get_ratio());
    }
    table->add_least("grid: geometric mean", std::exp(logarithms / double(pairs.size())),
                     LEAST_MEAN, "times", std::to_string(pairs.size()) + " requests");
    judge_lowest_ratio(pairs, table);
    judge_short_requests(pairs, table);
}

}  // namespace

void measure_grid(TARGET_TABLE* table)
{
    for (const BENCH_LIMITS limits : {BENCH_LIMITS::BUILT_IN, BENCH_LIMITS::LARGE}) {
        add_syntheses(limits);
        add_listings(limits);
    }
    RATIO_REPORTER reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const std::vector<MEASURED_PAIR> syntheses = reporter.get_pairs("synthesis ");
    judge_missed(syntheses, table);
    judge_grid(syntheses, table);
    if (reporter.get_failures() != 0) {
        table->add_error("grid", std::to_string(reporter.get_failures()) +
                                     " wrong answers; see the measurements above");
    }
}
