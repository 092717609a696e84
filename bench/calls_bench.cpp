// What single calls execute and take from the heap.
#include "bench_case.h"
#include "sections.h"
#include "stopwatch.h"

namespace {

constexpr int FIN_PERIOD = 10000;      // ps
constexpr int WORST_FIN_PERIOD = 651;  // ps

std::string count_blocks(const METERED_HEAP& heap)
{
    return std::to_string(heap.get_allocations()) + " blocks, " +
           std::to_string(heap.get_peak_bytes()) + " bytes at most";
}

void report_instructions(const std::string& row, const std::function<void()>& work,
                         TARGET_TABLE* table)
{
    const std::string title = "instructions: " + row;
    const double instructions = count_instructions(work);
    if (instructions < 0.0) {
        table->add_text(title, "not counted here");
    } else {
        table->add_figure(title, instructions, "");
    }
}

void measure_synthesis(BENCH_DEMAND demand, TARGET_TABLE* table)
{
    METERED_HEAP heap;
    const BENCH_CASE bench_case = {BENCH_LIMITS::BUILT_IN, BENCH_BANDWIDTH::AUTO, demand,
                                   PLL_MAX_TAPS, FIN_PERIOD};
    const auto pll = make_pll(bench_case.m_limits, bench_case.m_outputs);
    const PLL_PROP request = make_request(bench_case, *pll);
    const std::string row = row_name(bench_case) + ", 100 MHz";
    report_instructions(
        row, [&] { pll->synthesize(request); }, table);
    heap.reset();
    pll->synthesize(request);
    table->add_text("memory of a call: " + row, count_blocks(heap));
}

void measure_listing(BENCH_LIMITS limits, TARGET_TABLE* table)
{
    METERED_HEAP heap;
    const auto pll = make_pll(limits, 1);
    int* mults = nullptr;
    int* divs = nullptr;
    const auto list = [&] { pll->find_vco_mult_div_values(&mults, &divs, WORST_FIN_PERIOD); };
    const std::string row = std::string("ratios ") + name_of(limits) + ", 651 ps";
    report_instructions(row, list, table);
    heap.reset();
    list();
    table->add_text("memory of a call: " + row, count_blocks(heap));
}

}  // namespace

void measure_calls(TARGET_TABLE* table)
{
    for (const BENCH_DEMAND demand :
         {BENCH_DEMAND::EXACT, BENCH_DEMAND::NEAR, BENCH_DEMAND::MISSED}) {
        measure_synthesis(demand, table);
    }
    measure_listing(BENCH_LIMITS::BUILT_IN, table);
    measure_listing(BENCH_LIMITS::LARGE, table);
}
