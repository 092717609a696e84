// Requests in which the search has to look at far more than usual: each takes its time from one
// thing alone.
#include "bench_case.h"
#include "same_answer.h"
#include "sections.h"
#include "stopwatch.h"

#include <functional>

namespace {

constexpr double MS_PER_S = 1e3;

// A PLL and a request, made for one row.
struct CORNER
{
    std::unique_ptr<PLL> m_pll;
    PLL_PROP m_request;

    CORNER(BENCH_LIMITS limits, int outputs, int fin_period)
        : m_pll(make_pll(limits, outputs)), m_request(outputs)
    {
        m_request.m_fin_period = fin_period;
    }

    void set_max_counts(int max_count)
    {
        for (PLL_OUTPUT_TAP& tap : m_pll->m_taps) {
            tap.m_max_count = max_count;
        }
    }

    // Each output at a little less than one over `division`.
    void ask_for_divisions_near(int division)
    {
        for (int i = 0; i < m_request.m_taps_count; ++i) {
            m_request.m_taps[i].m_div = division + i;
        }
    }
};

void add_row(const std::string& work, CORNER* corner, double longest_ms, TARGET_TABLE* table)
{
    const double library = best_seconds([&] { corner->m_pll->synthesize(corner->m_request); });
    table->add_most(work, library * MS_PER_S, longest_ms, "ms");
}

void measure_short_cascades(int outputs, TARGET_TABLE* table)
{
    CORNER corner(BENCH_LIMITS::LARGE, outputs, 600);
    corner.m_pll->m_output_counter_cascade = true;
    for (int i = 1; i <= 2; ++i) {
        corner.m_pll->m_vco_min_period[i] = 250;
        corner.m_pll->m_vco_max_period[i] = 2500;
        corner.m_pll->m_pfd_min_period = 1;
    }
    corner.ask_for_divisions_near(400000);
    add_row("cascades, " + std::to_string(outputs) + " outputs near 1 / 400,000", &corner, 20.0,
            table);
}

void measure_long_cascades(int outputs, TARGET_TABLE* table)
{
    CORNER corner(BENCH_LIMITS::BUILT_IN, outputs, 500);
    corner.m_pll->m_output_counter_cascade = true;
    corner.set_max_counts(30000);
    corner.ask_for_divisions_near(1900000000);
    add_row("cascades, " + std::to_string(outputs) + " outputs near 1 / 1,900,000,000", &corner,
            50.0, table);
}

void measure_wide_miss(TARGET_TABLE* table, int fin)
{
    CORNER corner(BENCH_LIMITS::BUILT_IN, 7, fin);
    corner.m_pll->m_m.m_max_count = 70000;
    corner.m_pll->m_n.m_max_count = 60000;
    corner.m_pll->m_pfd_max_period = 2147483647;
    corner.ask_for_divisions_near(600001);
    add_row("M to 70,000, N to 60,000, 7 outputs near 1 / 600,001, fin " + std::to_string(fin),
            &corner, 300.0, table);
}

void measure_crowd(const char* name, const std::function<void(CORNER*)>& change,
                   TARGET_TABLE* table)
{
    const BENCH_CASE bench_case = {BENCH_LIMITS::LARGE, BENCH_BANDWIDTH::AUTO,
                                   BENCH_DEMAND::CROWDED, 10, 651};
    CORNER corner(BENCH_LIMITS::LARGE, 10, 651);
    corner.m_request = make_request(bench_case, *corner.m_pll);
    change(&corner);
    add_row(std::string("crowd of 10 outputs, ") + name, &corner, 3.0, table);
}

void measure_nothing_legal(TARGET_TABLE* table, int fin, int lo, int hi)
{
    CORNER corner(BENCH_LIMITS::BUILT_IN, 1, fin);
    corner.m_pll->m_m.m_max_count = 450000;
    corner.m_pll->m_n.m_max_count = 2;
    corner.m_pll->m_pfd_max_period = 2147483647;
    corner.m_pll->m_vco_min_period[1] = lo;
    corner.m_pll->m_vco_max_period[1] = hi;
    LEAN_ANSWER answer;
    const double lean =
        best_seconds([&] { answer = lean_synthesis(*corner.m_pll, corner.m_request); });
    corner.m_pll->synthesize(corner.m_request);
    printf("same %d\n", is_same_answer(*corner.m_pll, answer));
    add_row("nothing legal", &corner, lean * MS_PER_S, table);
}

}  // namespace

void measure_corners(TARGET_TABLE* table)
{
    for (int outputs : {5, 6, 7})
        measure_short_cascades(outputs, table);
    for (int outputs : {5, 6, 7})
        measure_long_cascades(outputs, table);
    for (int fin : {1, 500, 1000, 2000, 10000, 100000})
        measure_wide_miss(table, fin);
    measure_crowd(
        "plain", [](CORNER*) {}, table);
    measure_crowd(
        "a phase below 0", [](CORNER* c) { c->m_request.m_taps[3].m_phase = -20.0; }, table);
    measure_crowd(
        "an sclkout phase",
        [](CORNER* c) {
            c->m_request.m_taps[3].m_has_sclkout_phase = true;
            c->m_request.m_taps[3].m_sclkout_phase = 20.0;
        },
        table);
    measure_crowd(
        "an sclkout phase 0", [](CORNER* c) { c->m_request.m_taps[3].m_has_sclkout_phase = true; },
        table);
    measure_crowd(
        "a duty -5", [](CORNER* c) { c->m_request.m_taps[3].m_duty = -5; }, table);
    measure_crowd(
        "a duty 105", [](CORNER* c) { c->m_request.m_taps[3].m_duty = 105; }, table);
    measure_crowd(
        "1024 counter values",
        [](CORNER* c) {
            c->set_max_counts(2000);
            for (int i = 0; i < 10; i++) {
                c->m_request.m_taps[i].m_div *= 2;
            }
        },
        table);
    measure_nothing_legal(table, 100000000, 57, 57);
    measure_nothing_legal(table, 100000000, 10, 20);
    measure_nothing_legal(table, 100000000, 220, 220);
}
