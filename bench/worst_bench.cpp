// The slowest of many requests that cannot be met, with the large limits.
#include "bench_case.h"
#include "sections.h"
#include "stopwatch.h"

#include <random>

namespace {

constexpr int REQUESTS = 400;
constexpr unsigned SEED = 1;
constexpr double LONGEST_MS = 1.0;
constexpr double MS_PER_S = 1e3;
constexpr int SHORTEST_FIN_PERIOD = 500;  // ps
constexpr int LONGEST_FIN_PERIOD = 2000;  // beyond it there is less to search
constexpr int LARGEST_FACTOR = 5000;

class RANDOM_REQUESTS
{
public:
    RANDOM_REQUESTS() : m_generator(SEED) {}

    PLL_PROP make(PLL* pll);

private:
    int pick(int least, int most)
    {
        return std::uniform_int_distribution<int>(least, most)(m_generator);
    }
    void ask_for_clock(int kind, PLL_USER_TAP* tap);

    std::mt19937 m_generator;
};

// Of all kinds: any ratios, clocks too fast or too slow for a counter, clocks nearly of the VCO.
void RANDOM_REQUESTS::ask_for_clock(int kind, PLL_USER_TAP* tap)
{
    constexpr int KINDS = 5;
    switch ((kind < 0 ? pick(0, KINDS - 1) : kind) % KINDS) {
    case 0:
        tap->m_mult = pick(1, LARGEST_FACTOR);
        tap->m_div = pick(1, LARGEST_FACTOR);
        break;
    case 1:
        tap->m_mult = pick(2, 4);
        tap->m_div = 1;
        break;
    case 2:
        tap->m_mult = 1;
        tap->m_div = pick(1, LARGEST_FACTOR);
        break;
    case 3:
        tap->m_mult = pick(100, 200);
        tap->m_div = pick(300, 700);
        break;
    default:
        tap->m_mult = pick(400, 600);
        tap->m_div = pick(400, 600);
        break;
    }
}

PLL_PROP RANDOM_REQUESTS::make(PLL* pll)
{
    constexpr int MIXED = -1;
    constexpr int TYPES = 5;
    PLL_PROP request(pick(1, PLL_MAX_TAPS));
    request.m_fin_period = pick(0, 2) == 0 ? pick(SHORTEST_FIN_PERIOD, LONGEST_FIN_PERIOD)
                                           : pick(SHORTEST_FIN_PERIOD, SHORTEST_FIN_PERIOD + 200);
    request.m_bandwidth_type = pick(0, TYPES - 1);
    request.m_bandwidth = pick(100000, 2000000);
    const int kind = pick(MIXED, 4);
    for (int i = 0; i < request.m_taps_count; ++i) {
        ask_for_clock(kind, &request.m_taps[i]);
    }
    if (pick(0, 5) == 0) {
        request.m_feedback_tap = pick(0, request.m_taps_count - 1);
    }
    if (pick(0, 5) == 0) {
        request.m_vco_mult = pick(1, 600);
        request.m_vco_div = pick(1, 600);
    }
    if (pick(0, 5) == 0) {
        request.m_fin2_period = request.m_fin_period + pick(0, 10);
    }
    if (pick(0, 9) == 0) {
        request.m_down_spread = 0.005;
    }
    pll->m_output_counter_cascade = pick(0, 9) == 0;
    return request;
}

bool is_missed(const PLL& pll)
{
    return pll.m_error == PLL::PLL_POST_DIVIDER_MAX_EXCEEDED ||
           pll.m_error == PLL::PLL_MULT_DIV_NOT_ACHIEVED;
}

std::string describe(const PLL_PROP& request, const PLL& pll)
{
    std::string text = std::to_string(request.m_taps_count) + " outputs at " +
                       std::to_string(request.m_fin_period) + " ps, type " +
                       std::to_string(request.m_bandwidth_type);
    text += request.m_feedback_tap >= 0 ? ", feedback" : "";
    text += request.m_vco_mult > 0 ? ", VCO ratio" : "";
    text += request.m_fin2_period > 0 ? ", second input" : "";
    text += request.m_down_spread > 0.0 ? ", spread" : "";
    text += pll.m_output_counter_cascade ? ", cascade" : "";
    return text;
}

}  // namespace

void measure_worst_requests(TARGET_TABLE* table)
{
    RANDOM_REQUESTS requests;
    double worst = 0.0;
    std::string worst_request;
    int missed = 0;
    for (int i = 0; i < REQUESTS; ++i) {
        const auto pll = make_pll(BENCH_LIMITS::LARGE, PLL_MAX_TAPS);
        const PLL_PROP request = requests.make(pll.get());
        const auto synthesize = [&] { pll->synthesize(request); };
        synthesize();
        if (!is_missed(*pll)) {
            continue;
        }
        ++missed;
        double seconds = seconds_once(synthesize);
        if (seconds > worst) {
            seconds = best_seconds(synthesize);
        }
        if (seconds > worst) {
            worst = seconds;
            worst_request = describe(request, *pll);
        }
    }
    table->add_most("worst missed request, large limits", worst * MS_PER_S, LONGEST_MS, "ms",
                    "of " + std::to_string(missed) + ": " + worst_request);
}
