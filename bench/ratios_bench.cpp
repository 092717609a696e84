// Listings of VCO ratios beside the one by insertion.
#include "bench_case.h"
#include "lean_loop.h"
#include "sections.h"
#include "stopwatch.h"

#include <algorithm>

namespace {

constexpr int FIN_PERIOD = 651;  // ps
constexpr double LONGEST_MS = 5.0;
constexpr double LEAST_RATIO = 1000.0;
constexpr double MS_PER_S = 1e3;

void measure_listing(BENCH_LIMITS limits, TARGET_TABLE* table)
{
    const auto pll = make_pll(limits, 1);
    const std::string row = std::string("ratios ") + name_of(limits) + ", 651 ps";
    int* mults = nullptr;
    int* divs = nullptr;
    int count = 0;
    const double seconds =
        best_seconds([&] { count = pll->find_vco_mult_div_values(&mults, &divs, FIN_PERIOD); });
    INSERTED_RATIOS ratios;
    const double inserted = seconds_once([&] { ratios.list(*pll, FIN_PERIOD); });
    if (std::size_t(count) != ratios.get_count() ||
        !std::equal(mults, mults + count, ratios.get_mults()) ||
        !std::equal(divs, divs + count, ratios.get_divs())) {
        table->add_error(row, "the library and the insertion list different ratios");
        return;
    }
    table->add_most(row, seconds * MS_PER_S, LONGEST_MS, "ms", std::to_string(count) + " ratios");
    table->add_least(row + ", to insertion", inserted / seconds, LEAST_RATIO, "times",
                     "insertion " + std::to_string(int(inserted * MS_PER_S)) + " ms");
}

}  // namespace

void measure_ratios(TARGET_TABLE* table)
{
    measure_listing(BENCH_LIMITS::BUILT_IN, table);
    measure_listing(BENCH_LIMITS::LARGE, table);
}
