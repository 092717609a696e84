#include "bench_case.h"

#include <cmath>
#include <numeric>

namespace {

constexpr int TYPE_AUTO = 3;
constexpr int TYPE_CUSTOM = 4;
constexpr double CUSTOM_BANDWIDTH = 1e6;  // Hz
constexpr int LARGE_POST_SCALE_MAX = 2;
constexpr int LARGE_FIN_MIN_PERIOD = 500;  // ps
constexpr int BASE_M = 37;                 // prime, so that no smaller M makes the same ratios
constexpr int SMALLEST_COUNTER = 2;
constexpr int TOO_FAST_PERIOD = 700;  // ps, shorter than any VCO period
constexpr int NEAR_MULT = 3001;       // prime and out of reach of any counter
constexpr int NEAR_DIV = 3000;
constexpr int CROWDED_MULT = 1009;  // likewise
constexpr int ROOM_FOR_OUTPUTS = 8;

// Ratios to the VCO that have no common multiple a VCO could run at.
constexpr int UNRELATED_MULTS[PLL_MAX_TAPS] = {101, 103, 107, 109, 113, 127, 131, 137, 139, 149};
constexpr int UNRELATED_DIVS[PLL_MAX_TAPS] = {997, 991, 983, 977, 971, 967, 953, 947, 941, 937};

const char* name_of(BENCH_BANDWIDTH bandwidth)
{
    return bandwidth == BENCH_BANDWIDTH::AUTO ? "auto" : "custom";
}

const char* name_of(BENCH_DEMAND demand)
{
    switch (demand) {
    case BENCH_DEMAND::EXACT:
        return "exact";
    case BENCH_DEMAND::NEAR:
        return "near";
    case BENCH_DEMAND::MISSED:
        return "missed";
    case BENCH_DEMAND::CROWDED:
        break;
    }
    return "near";
}

// The N that brings the VCO closest to its centre with an M of BASE_M.
int base_n(const PLL& pll, int fin_period)
{
    const double center = pll.m_vco_center_period[1];
    int best = 0;
    for (int n = 1; n <= pll.m_n.m_max_count; ++n) {
        const double pfd = double(fin_period) * n;
        if (pfd < pll.m_pfd_min_period || std::gcd(n, BASE_M) != 1) {
            continue;
        }
        const double deviation = std::fabs(pfd / BASE_M - center);
        if (best == 0 || deviation < std::fabs(double(fin_period) * best / BASE_M - center)) {
            best = n;
        }
    }
    return best;
}

// The slowest clock that counters of two full halves can make of any legal VCO.
int crowded_division(const PLL& pll, int fin_period)
{
    const int largest_count = pll.m_taps[0].m_max_count * 2 - ROOM_FOR_OUTPUTS;
    return largest_count * (pll.m_vco_min_period[1] - 1) / fin_period;
}

void ask_for(PLL_USER_TAP* tap, int mult, int div)
{
    const int divisor = std::gcd(mult, div);
    tap->m_mult = mult / divisor;
    tap->m_div = div / divisor;
}

}  // namespace

const char* name_of(BENCH_LIMITS limits)
{
    return limits == BENCH_LIMITS::BUILT_IN ? "built-in" : "large";
}

std::string row_name(const BENCH_CASE& bench_case)
{
    const bool is_crowded = bench_case.m_demand == BENCH_DEMAND::CROWDED;
    return std::string(is_crowded ? "crowded " : "synthesis ") + name_of(bench_case.m_limits) +
           ' ' + name_of(bench_case.m_bandwidth) + ' ' + name_of(bench_case.m_demand) + ' ' +
           std::to_string(bench_case.m_outputs) +
           (bench_case.m_outputs == 1 ? " output" : " outputs");
}

std::unique_ptr<PLL> make_pll(BENCH_LIMITS limits, int outputs)
{
    auto pll = std::make_unique<PLL>(outputs, PLL_MAX_TAPS);
    if (limits == BENCH_LIMITS::LARGE) {
        pll->m_max_vco_post_scale = LARGE_POST_SCALE_MAX;
        pll->set_vco_min_period(pll->m_vco_min_period[1], -1);
        pll->set_vco_max_period(pll->m_vco_max_period[1], -1);
        pll->set_vco_center_period(pll->m_vco_center_period[1], -1);
        pll->m_fin_min_period = LARGE_FIN_MIN_PERIOD;
    }
    return pll;
}

PLL_PROP make_request(const BENCH_CASE& bench_case, const PLL& pll)
{
    PLL_PROP request(bench_case.m_outputs);
    request.m_fin_period = bench_case.m_fin_period;
    if (bench_case.m_bandwidth == BENCH_BANDWIDTH::CUSTOM) {
        request.m_bandwidth_type = TYPE_CUSTOM;
        request.m_bandwidth = CUSTOM_BANDWIDTH;
    } else {
        request.m_bandwidth_type = TYPE_AUTO;
    }
    const int n = base_n(pll, bench_case.m_fin_period);
    for (int i = 0; i < bench_case.m_outputs; ++i) {
        PLL_USER_TAP* tap = &request.m_taps[i];
        const int counter = SMALLEST_COUNTER + i;
        if (bench_case.m_demand == BENCH_DEMAND::EXACT) {
            ask_for(tap, BASE_M, n * counter);
        } else if (bench_case.m_demand == BENCH_DEMAND::NEAR) {
            ask_for(tap, BASE_M * NEAR_MULT, n * counter * NEAR_DIV);
        } else if (bench_case.m_demand == BENCH_DEMAND::CROWDED) {
            const int division = crowded_division(pll, bench_case.m_fin_period);
            ask_for(tap, CROWDED_MULT, CROWDED_MULT * division - counter);
        } else if (bench_case.m_outputs == 1) {
            ask_for(tap, bench_case.m_fin_period, TOO_FAST_PERIOD);
        } else {
            ask_for(tap, BASE_M * UNRELATED_MULTS[i], n * UNRELATED_DIVS[i]);
        }
    }
    return request;
}
