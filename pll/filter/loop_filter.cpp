// The loop filter of an exact setting without a bandwidth table.
//
// A charge pump of current I drives a resistor R with a fixed capacitor Cf in series and a small
// one Ch across both (F. M. Gardner, "Charge-Pump Phase-Lock Loops", IEEE Trans. Comm. COM-28,
// 1980). The loop bandwidth is close to
//     bw = I x R x Kvco / (2 pi F)         F: what the feedback divides by
// and the phase margin is largest when bw is the geometric mean of zero and pole, which gives R
// first and then I. Pi is FILTER_PI throughout.
#include "filter/loop_filter.h"

#include "loop/loop_model.h"
#include "platform/arith.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace pll_internal {

namespace {

constexpr double TWO_PI = 2.0 * FILTER_PI;
constexpr double PICO = 1e12;
constexpr double RESISTOR_SCALE = PICO / TWO_PI;
constexpr double NOT_CLOSE = 999999999.0;

// The value closest to `target` among those that `is_legal` takes; the first of equals, and
// `otherwise` when there is none.
template <class LEGAL>
double closest(const MEM_VECTOR<int>& values, double target, double otherwise, LEGAL is_legal)
{
    double best = otherwise;
    double best_difference = NOT_CLOSE;
    for (const int value : values) {
        const double difference = std::fabs(value - target);
        if (is_legal(value) && difference < best_difference) {
            best = value;
            best_difference = difference;
        }
    }
    return best;
}

double target_current(const PLL& pll, int division, double bandwidth, double resistor)
{
    return division * TWO_PI * bandwidth / pll.get_kvco(-1) / resistor;
}

// The factor that M and N can still grow by, wanted to be `wanted`.
int common_factor(const PLL& pll, int fin_period, int wanted)
{
    const int n = pll.m_n.m_count;
    const int m = pll.m_m.m_count;
    const int n_limit = std::min(pll.m_n.m_max_count, safe_div(pll.m_pfd_max_period, fin_period));
    int factor = wanted;
    if (std::int64_t{factor} * n > n_limit) {
        factor = safe_div(n_limit, n);
    }
    if (std::int64_t{factor} * m > pll.m_m.m_max_count) {
        factor = safe_div(pll.m_m.m_max_count, m);
    }
    return std::max(factor, 1);
}

void multiply_counters(int factor, bool spread, PLL* pll)
{
    pll->m_m.m_count = wrap_mul(pll->m_m.m_count, factor);
    pll->m_n.m_count = wrap_mul(pll->m_n.m_count, factor);
    if (pll->m_m.m_ss_count != 0 || spread) {
        pll->m_m.m_ss_count = wrap_mul(pll->m_m.m_ss_count, factor);
        pll->m_n.m_ss_count = wrap_mul(pll->m_n.m_ss_count, factor);
    }
}

// What a charge-pump current is chosen for.
struct LOOP
{
    double m_bandwidth;  // Hz
    int m_division;      // of the feedback path
};

// The resistor for a given current, with zero and pole on either side of the bandwidth.
double resistor_for_current(const PLL& pll, const LOOP& loop, double current,
                            const MEM_VECTOR<int>& resistors, double first)
{
    const double bandwidth = loop.m_bandwidth;
    const double fixed = pll.m_c_fixed;
    const double high = pll.m_c_high;
    const double target = TWO_PI * loop.m_division * bandwidth / pll.get_kvco(-1) / current;
    const double lower = PICO / (fixed * TWO_PI * bandwidth);
    const double upper = PICO / ((fixed * high / (fixed + high)) * TWO_PI * bandwidth);
    return closest(resistors, target, first,
                   [&](int value) { return lower < value && value < upper; });
}

}  // namespace

int current_resistor_product(int m, double bandwidth, double vco_gain)
{
    return truncate_to_int(2.0 * m * bandwidth * FILTER_PI / vco_gain);
}

void synthesize_loop_filter(PLL* pll, int fin_period, double bandwidth, bool spread)
{
    const MEM_VECTOR<int>& currents = PLL::m_impl->m_charge_pump_currents;
    const MEM_VECTOR<int>& resistors = PLL::m_impl->m_resistors;
    const double first_resistor = resistors.empty() ? 0 : resistors.front();
    const double current_min = pll->m_i_min;

    const double target = RESISTOR_SCALE / bandwidth / pll->m_c_fixed *
                          std::sqrt((pll->m_c_fixed + pll->m_c_high) / pll->m_c_high);
    double resistor = closest(resistors, target, first_resistor, [](int) { return true; });
    LOOP loop{bandwidth, effective_feedback_division(*pll)};
    double wanted_current = target_current(*pll, loop.m_division, bandwidth, resistor);
    if (wanted_current < current_min * 0.5) {
        const int wanted = truncate_to_int(current_min / wanted_current + 0.5);
        multiply_counters(common_factor(*pll, fin_period, wanted), spread, pll);
        loop.m_division = effective_feedback_division(*pll);
        wanted_current = target_current(*pll, loop.m_division, bandwidth, resistor);
    }
    double current = closest(currents, wanted_current, current_min,
                             [&](int value) { return !(value < current_min); });

    const bool own_current = spread && pll->m_ss_charge_pump_current >= 1;
    if (wanted_current < current_min * 0.5 || (own_current && pll->m_ss_supported)) {
        current = own_current ? pll->m_ss_charge_pump_current : current_min;
        resistor = resistor_for_current(*pll, loop, current, resistors, first_resistor);
    }
    pll->m_r = resistor;
    pll->m_i = current;
}

}  // namespace pll_internal
