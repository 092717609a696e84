// Counter and phase arithmetic. All int steps wrap, so that any input has one defined result.
#include "pll.h"
#include "pll_util.h"

#include "loop/vco_phase.h"
#include "platform/arith.h"
#include "platform/divisors.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll_util";

constexpr int HALF_PERIOD = DEGREES_PER_VCO_PERIOD / 2;
constexpr double HALF = 0.5;
constexpr double LARGEST_PHASE = 2147483647.0;
constexpr double HZ_PER_MHZ = 1000000;
constexpr double COST_PER_MHZ = 131072;

}  // namespace

// Takes any tap and start, legal or not: reports show what hosts have set.
int PLL_UTIL::phase_from_vco_tap_and_counter_start(int vco_tap, int counter_start)
{
    return TAP_AND_START{vco_tap, counter_start}.vco_degrees();
}

// A null pointer is a host's mistake that must not end the host: nothing is written and 0 returned.
int PLL_UTIL::phase_to_vco_tap_and_counter_start(int* vco_tap, int* counter_start, double phase,
                                                 int max_counter_start)
{
    const HOST_STATE state;
    if (vco_tap == nullptr || counter_start == nullptr) {
        return 0;
    }
    const TAP_AND_START nearest = nearest_tap_and_start(phase, max_counter_start);
    *vco_tap = nearest.m_vco_tap;
    *counter_start = nearest.m_start;
    return state.keep(nearest.vco_degrees());
}

int PLL_UTIL::phase_to_counter_start(int* counter_start, double phase, int vco_tap,
                                     int max_counter_start)
{
    const HOST_STATE state;
    if (counter_start == nullptr) {
        return 0;
    }
    check_vco_tap(vco_tap);
    // The tap is given, as that of a serial clock is, and only the start is left to choose. It is
    // rounded to the nearest period: half of one on top, then cut.
    const double p = std::min(phase, LARGEST_PHASE);  // lets a NaN through
    const double beyond_tap = p - wrap_mul(DEGREES_PER_VCO_TAP, vco_tap);
    int start = 1;
    if (!(beyond_tap < 0)) {
        const int rounded = wrap_add(truncate_to_int(beyond_tap + HALF), HALF_PERIOD);
        start = std::min(rounded / DEGREES_PER_VCO_PERIOD + 1, max_counter_start);
    }
    *counter_start = start;
    return state.keep(phase_from_vco_tap_and_counter_start(vco_tap, start));
}

int PLL_UTIL::gcd(int x, int y)
{
    check(x > 0 && y > 0, "x > 0 && y > 0", SOURCE);
    // Euclid's, with the smaller number first. It also ends for the ones that were reported: a rest
    // of 0 or less ends it, and so no division by zero is reached.
    if (x > y) {
        return gcd(y, x);
    }
    int a = x;
    int b = y;
    while (a > 1) {
        const int rest = b % a;
        b = a;
        a = rest;
    }
    return a == 1 ? a : b;
}

void PLL_UTIL::normalize_fraction(int* numerator_out, int* denominator_out, int numerator,
                                  int denominator)
{
    if (numerator_out == nullptr || denominator_out == nullptr) {
        return;
    }
    // Both are read before either is written: the results may be the operands themselves.
    const int divisor = gcd(numerator, denominator);
    *numerator_out = safe_div(numerator, divisor);
    *denominator_out = safe_div(denominator, divisor);
}

double PLL_UTIL::user_phase(int numerator, int denominator, const PLL* pll, int vco_tap,
                            int counter_start)
{
    const HOST_STATE state;
    if (pll == nullptr) {
        return 0.0;
    }
    return state.keep(::user_phase(numerator, denominator, *pll, {vco_tap, counter_start}));
}

int PLL_UTIL::cascade_factor(int count, int max_count)
{
    // A count that fits needs no cascade. It is reported, and answered all the same.
    check(count > max_count, "count > max_count", SOURCE);
    if (max_count < 2) {
        return 0;
    }
    if (count == 0) {
        return 2;  // every number divides 0
    }
    // A divisor that leaves no more than the maximum is at least their quotient. When it is above
    // the square root its partner below is one too, save for 1.
    const std::uint32_t size = static_cast<std::uint32_t>(std::abs(std::int64_t{count}));
    const std::uint32_t largest = static_cast<std::uint32_t>(max_count);
    const bool fits = count <= max_count;
    const std::uint32_t factor =
        smallest_divisor_from(size, fits ? 2 : (size + largest - 1) / largest);
    if (factor != 0) {
        return factor <= largest ? static_cast<int>(factor) : 0;
    }
    return fits && 1 < size && size <= largest ? static_cast<int>(size) : 0;
}

// A bypassed counter divides by one, whatever its halves say: they keep what they counted before.
int PLL_UTIL::get_tap_count(const PLL* pll, int tap)
{
    if (pll == nullptr) {
        return 0;
    }
    // Both ends are reported by themselves, since handlers know each condition by its text.
    check(tap >= 0, "tap >= 0", SOURCE);
    check(tap < pll->m_user_taps_count, "tap < pll->m_user_taps_count", SOURCE);
    const PLL_OUTPUT_TAP& output = pll->m_taps[nearest_index(tap, PLL_MAX_TAPS)];
    return output.m_bypass ? 1 : wrap_add(output.m_high, output.m_low);
}

int pll_ceil_log2(int value)
{
    // 0 has no logarithm; the interface says 0 for it.
    if (value < 1) {
        check(value == 0, "value == 0", SOURCE);
        return 0;
    }
    int halvings = 0;
    for (int rest = value; rest > 1; rest >>= 1) {
        ++halvings;
    }
    return (1 << halvings) == value ? halvings : halvings + 1;
}

void pll_set_array(int* destination, int first, int last, const int* source)
{
    if (destination == nullptr || source == nullptr) {
        return;
    }
    // Wide, so that a range that ends at the largest int ends at all.
    for (std::int64_t i = first; i <= last; ++i) {
        destination[i] = source[i];
    }
}

// A limit on a period is one on a frequency the other way round: "no least" becomes "no most".
// Other values are left, since their unit changes with them and the caller knows it.
int pll_limit_switch(int value)
{
    if (value == PLL_UNSET_MINIMUM) {
        return PLL_UNSET_MAXIMUM;
    }
    return value == PLL_UNSET_MAXIMUM ? PLL_UNSET_MINIMUM : value;
}

// A power of two for a MHz keeps the cost of whole MHz exact, and small against what breaking the
// rule of the PFD costs.
double pll_get_bandwidth_diff_cost(double a, double b)
{
    const HOST_STATE state;
    return state.keep(std::fabs(a - b) / HZ_PER_MHZ * COST_PER_MHZ);
}
