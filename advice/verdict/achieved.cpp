#include "advice/verdict/achieved.h"

#include "pll.h"
#include "pll_prop.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace advice {

namespace {

constexpr int FULL_TURN = 360;  // degrees
constexpr int TAP_DEGREES = 45;
constexpr int PERCENT = 100;
constexpr int HALF_DUTY = 50;

const PLL_OUTPUT_TAP& nearest_tap(const PLL& pll, int tap)
{
    return pll.m_taps[std::clamp(tap, 0, PLL_MAX_TAPS - 1)];
}

// VCO degrees by which a tap and a counter start delay.
WIDE_INT phase_of(WIDE_INT start, int vco_tap)
{
    return (start - 1) * FULL_TURN + WIDE_INT{TAP_DEGREES} * vco_tap;
}

// The feedback path: what it multiplies by, and the VCO degrees that it delays by.
struct FEEDBACK
{
    RATIONAL m_mult;
    WIDE_INT m_phase;
};

FEEDBACK find_feedback(const PLL& pll)
{
    FEEDBACK feedback{RATIONAL(pll.get_m()), phase_of(pll.m_m.m_initial, pll.m_m.m_vco_tap)};
    if (pll.m_feedback_tap >= 0) {
        const PLL_OUTPUT_TAP& tap = nearest_tap(pll, pll.m_feedback_tap);
        feedback.m_mult = feedback.m_mult * RATIONAL(count_of(tap));
        feedback.m_phase = phase_of(pll.m_m.m_initial, 0) + phase_of(tap.m_initial, tap.m_vco_tap);
    }
    return feedback;
}

RATIONAL find_duty(const PLL_OUTPUT_TAP& tap)
{
    const std::int64_t count = count_of(tap);
    if (count <= 1) {
        return {HALF_DUTY};
    }
    const WIDE_INT half_periods = WIDE_INT{2} * tap.m_high - (tap.m_even ? 0 : 1);
    return {half_periods * PERCENT, WIDE_INT{2} * count};
}

// Division and phase of the counters from output `first` up to the VCO.
void follow_chain(const PLL& pll, int first, const FEEDBACK& feedback, ACHIEVED_OUTPUT* output)
{
    RATIONAL division(1);
    RATIONAL start(1);
    int vco_tap = 0;
    int tap = first;
    for (int step = 0; step < PLL_MAX_TAPS && tap >= 0 && tap < PLL_MAX_TAPS; ++step) {
        const PLL_OUTPUT_TAP& counter = pll.m_taps[tap];
        const RATIONAL count(count_of(counter));
        division = division * count;
        start = (start - RATIONAL(1)) * count + RATIONAL(counter.m_initial);
        vco_tap = counter.m_vco_tap;
        tap = counter.m_previous_tap;
    }
    output->m_division = division;
    const RATIONAL vco_degrees = (start - RATIONAL(1)) * RATIONAL(FULL_TURN) +
                                 RATIONAL(WIDE_INT{TAP_DEGREES} * vco_tap - feedback.m_phase);
    output->m_phase = vco_degrees / division;
}

void find_spread(const REQUEST& request, const PLL& pll, RATIONAL* fastest, ACHIEVED* achieved)
{
    if (pll.m_ss_cycles == 0) {
        return;
    }
    const RATIONAL first = *fastest;
    const RATIONAL second(pll.m_m.m_ss_count, pll.m_n.m_ss_count);
    *fastest = first < second ? second : first;
    achieved->m_spread = (second - first).magnitude() / *fastest * RATIONAL(PERCENT);
    achieved->m_spread_rate = request.m_input.m_frequency / RATIONAL(pll.m_ss_cycles);
}

}  // namespace

std::int64_t count_of(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_bypass ? 1 : std::int64_t{tap.m_high} + tap.m_low;
}

ACHIEVED find_achieved(const REQUEST& request, const PLL& pll)
{
    ACHIEVED achieved;
    const FEEDBACK feedback = find_feedback(pll);
    achieved.m_vco_ratio = feedback.m_mult / RATIONAL(pll.get_n());
    find_spread(request, pll, &achieved.m_vco_ratio, &achieved);
    achieved.m_outputs =
        std::min({static_cast<int>(request.m_outputs.size()), pll.m_user_taps_count, PLL_MAX_TAPS});
    for (int i = 0; i < achieved.m_outputs; ++i) {
        ACHIEVED_OUTPUT& output = achieved.m_output[static_cast<std::size_t>(i)];
        follow_chain(pll, i, feedback, &output);
        output.m_ratio = achieved.m_vco_ratio / output.m_division;
        output.m_frequency = frequency_of(request, output.m_ratio);
        output.m_duty = find_duty(pll.m_taps[i]);
    }
    return achieved;
}

// The zero lifts the phase of the open loop at its bandwidth, the pole lowers it again.
double find_phase_margin(const PLL_PROP& achieved)
{
    constexpr double DEGREES_PER_RADIAN = 57.29577951308232;
    if (achieved.m_phase_margin >= 0.0) {
        double least = achieved.m_phase_margin;
        for (const double corner : {achieved.m_phase_margin_min, achieved.m_phase_margin_max}) {
            least = corner >= 0.0 ? std::min(least, corner) : least;
        }
        return least;
    }
    const bool is_known =
        achieved.m_f_zero > 0.0 && achieved.m_f_pole > 0.0 && achieved.m_bandwidth > 0.0;
    if (!is_known) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return (std::atan(achieved.m_bandwidth / achieved.m_f_zero) -
            std::atan(achieved.m_bandwidth / achieved.m_f_pole)) *
           DEGREES_PER_RADIAN;
}

}  // namespace advice
