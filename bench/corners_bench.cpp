// Requests in the corners of the search: each takes its time from one thing alone.
#include "bench_case.h"
#include "lean_candidate.h"
#include "same_answer.h"
#include "sections.h"
#include "stopwatch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

namespace {

constexpr double MS_PER_S = 1e3;
constexpr int LONGEST_PERIOD = 2147483647;  // ps

// A PLL and a request, made for one row.
struct CORNER
{
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

    // Of both post-scales, ps.
    void set_vco(int min_period, int max_period)
    {
        for (int post_scale = 1; post_scale <= PLL_VCO_POST_SCALE_MAX; ++post_scale) {
            m_pll->m_vco_min_period[post_scale] = min_period;
            m_pll->m_vco_max_period[post_scale] = max_period;
        }
    }

    // Each output at one over `division` or a little more.
    void ask_for_divisions_near(int division)
    {
        for (int i = 0; i < m_request.m_taps_count; ++i) {
            m_request.m_taps[i].m_div = division + i;
        }
    }

    double seconds()
    {
        return best_seconds([this] { m_pll->synthesize(m_request); });
    }

    std::unique_ptr<PLL> m_pll;
    PLL_PROP m_request;
};

// ---- Counters far too small for their outputs

constexpr int FEWEST_OUTPUTS = 5;
constexpr int MOST_OUTPUTS = 7;

void measure_short_cascades(int outputs, TARGET_TABLE* table)
{
    constexpr double LONGEST_MS = 20.0;
    CORNER corner(BENCH_LIMITS::LARGE, outputs, 600);
    corner.m_pll->m_output_counter_cascade = true;
    corner.m_pll->m_pfd_min_period = 1;
    corner.set_vco(430, 3334);
    corner.ask_for_divisions_near(400000);
    table->add_most("cascades, " + std::to_string(outputs) + " outputs near 1 / 400,000",
                    corner.seconds() * MS_PER_S, LONGEST_MS, "ms", "290,000 legal pairs");
}

void measure_long_cascades(int outputs, TARGET_TABLE* table)
{
    constexpr double LONGEST_MS = 50.0;
    CORNER corner(BENCH_LIMITS::BUILT_IN, outputs, 500);
    corner.m_pll->m_output_counter_cascade = true;
    corner.set_max_counts(30000);
    corner.ask_for_divisions_near(1900000000);
    table->add_most("cascades, " + std::to_string(outputs) + " outputs near 1 / 1,900,000,000",
                    corner.seconds() * MS_PER_S, LONGEST_MS, "ms", "46,100 legal pairs");
}

void measure_wide_miss(TARGET_TABLE* table)
{
    constexpr double LONGEST_MS = 300.0;
    CORNER corner(BENCH_LIMITS::BUILT_IN, MOST_OUTPUTS, 2000);
    corner.m_pll->m_m.m_max_count = 70000;
    corner.m_pll->m_n.m_max_count = 60000;
    corner.m_pll->m_pfd_max_period = LONGEST_PERIOD;
    corner.set_vco(10, 100000);
    corner.ask_for_divisions_near(600001);
    table->add_most("M to 70,000, N to 60,000, 7 outputs near 1 / 600,001",
                    corner.seconds() * MS_PER_S, LONGEST_MS, "ms");
}

// ---- Crowds in which one output asks for something rare

struct ODD_CROWD
{
    const char* m_name;
    void (*m_ask)(CORNER* corner);
};

constexpr int ODD_OUTPUT = 3;

PLL_USER_TAP& odd_output(CORNER* corner)
{
    return corner->m_request.m_taps[ODD_OUTPUT];
}

constexpr ODD_CROWD ODD_CROWDS[] = {
    {"a phase below 0", [](CORNER* corner) { odd_output(corner).m_phase = -20.0; }},
    {"a serial clock",
     [](CORNER* corner) {
         odd_output(corner).m_has_sclkout_phase = true;
         odd_output(corner).m_sclkout_phase = 20.0;
     }},
    {"a duty cycle of -5 %", [](CORNER* corner) { odd_output(corner).m_duty = -5; }},
    {"a duty cycle of 105 %", [](CORNER* corner) { odd_output(corner).m_duty = 105; }},
    {"counts to 2,000",
     [](CORNER* corner) {
         corner->set_max_counts(2000);
         for (PLL_USER_TAP& tap : corner->m_request.m_taps) {
             tap.m_div *= 2;
         }
     }},
};

void measure_crowd(const ODD_CROWD& crowd, TARGET_TABLE* table)
{
    constexpr double LONGEST_MS = 3.0;
    constexpr int FIN_PERIOD = 651;  // ps
    CORNER corner(BENCH_LIMITS::LARGE, PLL_MAX_TAPS, FIN_PERIOD);
    corner.m_request = make_request({BENCH_LIMITS::LARGE, BENCH_BANDWIDTH::AUTO,
                                     BENCH_DEMAND::CROWDED, PLL_MAX_TAPS, FIN_PERIOD},
                                    *corner.m_pll);
    crowd.m_ask(&corner);
    table->add_most(std::string("crowd of 10 outputs, ") + crowd.m_name,
                    corner.seconds() * MS_PER_S, LONGEST_MS, "ms");
}

// ---- Beside the lean loop

void measure_nothing_legal(TARGET_TABLE* table)
{
    CORNER corner(BENCH_LIMITS::BUILT_IN, 1, 100000000);
    corner.m_pll->m_m.m_max_count = 450000;
    corner.m_pll->m_n.m_max_count = 2;
    corner.m_pll->m_pfd_max_period = LONGEST_PERIOD;
    corner.set_vco(220, 220);
    const std::string work = "nothing legal, M to 450,000, N 1 to 2";
    LEAN_ANSWER answer = {};
    const double lean =
        best_seconds([&] { answer = lean_synthesis(*corner.m_pll, corner.m_request); });
    const double library = corner.seconds();
    if (!is_same_answer(*corner.m_pll, answer)) {
        table->add_error(work, "the library and the lean loop answer differently");
        return;
    }
    table->add_most(work, library * MS_PER_S, lean * MS_PER_S, "ms",
                    "wanted: the lean loop's time");
}

// The lean way to a trace: the candidates of one post-scale in order, each shown by the report that
// the library has of it, each line flushed.
class TRACED_LOOP
{
public:
    TRACED_LOOP(const PLL& limits, const PLL_PROP& request)
        : m_limits(limits),
          m_clocks(read_lean_clocks(limits, request)),
          m_shown(request.m_taps_count, PLL_MAX_TAPS),
          m_fin_period(request.m_fin_period)
    {
        m_shown = limits;
    }

    void run(const char* path)
    {
        std::ofstream log(path, std::ios::app);
        for (int m = 2; m <= m_limits.m_m.m_max_count; ++m) {
            for (int n = 1; n <= m_limits.m_n.m_max_count; ++n) {
                const double pfd = double(m_fin_period) * n;
                const double vco = pfd / m;
                if (vco > m_limits.m_vco_max_period[1] + 1.0 ||
                    pfd > m_limits.m_pfd_max_period + 1.0) {
                    break;
                }
                if (vco >= m_limits.m_vco_min_period[1] - 1.0 &&
                    pfd >= m_limits.m_pfd_min_period - 1.0) {
                    show(m, n, vco, &log);
                }
            }
        }
    }

private:
    void show(int m, int n, double vco, std::ostream* log)
    {
        LEAN_COUNTER counters[PLL_MAX_TAPS];
        m_shown.m_cost = assign_lean_counters(m_clocks, m, n, counters).m_error;
        m_shown.m_m.m_count = m;
        m_shown.m_n.m_count = n;
        m_shown.m_delta_vco_period = vco - m_limits.m_vco_center_period[1];
        for (int i = 0; i < m_clocks.m_count; ++i) {
            PLL_OUTPUT_TAP& tap = m_shown.m_taps[i];
            tap.m_count = counters[i].m_count;
            tap.m_high = counters[i].m_high;
            tap.m_low = counters[i].m_low;
            tap.m_even = counters[i].m_even;
            tap.m_bypass = counters[i].m_bypass;
        }
        m_shown.dump(*log, true, false);
    }

    const PLL& m_limits;
    LEAN_CLOCKS m_clocks;
    PLL m_shown;
    int m_fin_period;  // ps
};

void measure_tracing(int outputs, TARGET_TABLE* table)
{
    constexpr int TURNS = 3;
    constexpr int FIN_PERIOD = 10000;  // ps
    const char* const lean_log = "pll_bench_lean.log";
    const char* const library_log = "debug.log";
    CORNER corner(BENCH_LIMITS::BUILT_IN, outputs, FIN_PERIOD);
    corner.m_request = make_request({BENCH_LIMITS::BUILT_IN, BENCH_BANDWIDTH::CUSTOM,
                                     BENCH_DEMAND::MISSED, outputs, FIN_PERIOD},
                                    *corner.m_pll);
    corner.m_request.m_bandwidth_type = 3;
    corner.m_pll->m_debug = true;
    double lean = 0.0;
    double library = 0.0;
    for (int turn = 0; turn < TURNS; ++turn) {
        const double plain =
            seconds_once([&] { TRACED_LOOP(*corner.m_pll, corner.m_request).run(lean_log); });
        const double ours = seconds_once([&] { corner.m_pll->synthesize(corner.m_request); });
        lean = turn == 0 ? plain : std::min(lean, plain);
        library = turn == 0 ? ours : std::min(library, ours);
        std::remove(lean_log);
        std::remove(library_log);
    }
    table->add_most("tracing on, missed, " + std::to_string(outputs) + " outputs",
                    library * MS_PER_S, lean * MS_PER_S, "ms", "wanted: a plain loop's time");
}

// A directory that traces can be written to, the current one while the object lives.
class TRACE_DIRECTORY
{
public:
    TRACE_DIRECTORY()
        : m_before(std::filesystem::current_path()),
          m_path(std::filesystem::temp_directory_path() / "pll_bench_traces")
    {
        std::filesystem::create_directories(m_path);
        std::filesystem::current_path(m_path);
    }
    ~TRACE_DIRECTORY()
    {
        std::filesystem::current_path(m_before);
        std::filesystem::remove_all(m_path);
    }
    TRACE_DIRECTORY(const TRACE_DIRECTORY&) = delete;
    TRACE_DIRECTORY& operator=(const TRACE_DIRECTORY&) = delete;

private:
    std::filesystem::path m_before;
    std::filesystem::path m_path;
};

}  // namespace

void measure_corners(TARGET_TABLE* table)
{
    for (int outputs = FEWEST_OUTPUTS; outputs <= MOST_OUTPUTS; ++outputs) {
        measure_short_cascades(outputs, table);
    }
    for (int outputs = FEWEST_OUTPUTS; outputs <= MOST_OUTPUTS; ++outputs) {
        measure_long_cascades(outputs, table);
    }
    measure_wide_miss(table);
    for (const ODD_CROWD& crowd : ODD_CROWDS) {
        measure_crowd(crowd, table);
    }
    measure_nothing_legal(table);
    const TRACE_DIRECTORY traces;
    for (const int outputs : {1, PLL_MAX_TAPS}) {
        measure_tracing(outputs, table);
    }
}
