// Phases in VCO degrees: what a VCO tap and a counter start make, and which come nearest.
#pragma once

#include "pll.h"

#include "platform/arith.h"
#include "platform/report_error.h"

#include <cstdint>

namespace pll_internal {

// A ring oscillator has a tap at each of its stages, so its periods are cut into equal parts.
inline constexpr int DEGREES_PER_VCO_PERIOD = 360;
inline constexpr int DEGREES_PER_VCO_TAP = DEGREES_PER_VCO_PERIOD / PLL_VCO_TAPS_NUMBER;

// A place to start a clock at.
struct TAP_AND_START
{
    int m_vco_tap;  // each further one delays by an eighth of a VCO period
    int m_start;    // the count that the counter begins at; each further one delays by a period

    // How late the clock is. Wraps for starts that no counter has.
    int vco_degrees() const
    {
        return wrap_to_int(std::int64_t{DEGREES_PER_VCO_PERIOD} * m_start +
                           std::int64_t{DEGREES_PER_VCO_TAP} * m_vco_tap - DEGREES_PER_VCO_PERIOD);
    }
};

// A tap outside comes from a host or from a phase beyond every range; it is used as it is.
inline void check_vco_tap(int vco_tap)
{
    check(0 <= vco_tap && vco_tap <= PLL_VCO_TAPS_NUMBER - 1,
          "0 <= vco_tap && vco_tap <= PLL_VCO_TAPS_NUMBER - 1", "pll_util");
}

// The tap and the start, none above `max_start`, that come nearest to `phase`.
//
// Fractions of a VCO degree are cut. A phase far below 0 gives a tap below 0, which is reported.
inline TAP_AND_START nearest_tap_and_start(double phase, int max_start)
{
    // The start is rounded down and the tap to the nearest. A tap that rounds up to a whole period
    // is the first one of the next start, unless there is none: then it is the last tap.
    constexpr double HALF = 0.5;
    constexpr double LARGEST_PHASE = 2147483647.0;
    const double p = std::min(phase, LARGEST_PHASE);  // lets a NaN through
    int start = std::min(truncate_to_int(p + HALF) / DEGREES_PER_VCO_PERIOD + 1, max_start);
    const int whole_periods = TAP_AND_START{0, start}.vco_degrees();
    const int rest = truncate_to_int(p - whole_periods) % DEGREES_PER_VCO_PERIOD;
    int tap = (2 * rest + DEGREES_PER_VCO_TAP) / (2 * DEGREES_PER_VCO_TAP);  // the nearest
    if (tap > PLL_VCO_TAPS_NUMBER - 1) {
        if (start < max_start) {
            tap -= PLL_VCO_TAPS_NUMBER;
            ++start;
        } else {
            tap = PLL_VCO_TAPS_NUMBER - 1;
        }
    }
    check_vco_tap(tap);
    return {tap, start};
}

// The phase of the path that the PLL compares its input with.
//
// That is M's own clock or the output in the feedback, behind which M then starts. What delays this
// path advances all outputs, so phases are measured from it.
inline int reference_phase(const PLL& pll)
{
    if (pll.m_feedback_tap < 0) {
        return TAP_AND_START{pll.m_m.m_vco_tap, pll.m_m.m_initial}.vco_degrees();
    }
    const PLL_OUTPUT_TAP& tap = pll.m_taps[nearest_index(pll.m_feedback_tap, PLL_MAX_TAPS)];
    const int start = wrap_sub(wrap_add(tap.m_initial, pll.m_m.m_initial), 1);
    return TAP_AND_START{tap.m_vco_tap, start}.vco_degrees();
}

// A distance in VCO degrees, in degrees of the input clock.
//
// A period of the input lasts M / N periods of the VCO.
inline double input_degrees(int n, int m, int distance)
{
    if (distance == 0 && n > 0 && m > 0) {
        return 0.0;  // spares the division
    }
    return static_cast<double>(n) * distance / static_cast<double>(m);
}

// What a clock started at `place` is late, in degrees of the input clock.
//
// Negative when the reference is later than the clock. Wraps where no int holds the distance.
inline double user_phase(int n, int m, const PLL& pll, TAP_AND_START place)
{
    return input_degrees(n, m, wrap_sub(place.vco_degrees(), reference_phase(pll)));
}

}  // namespace pll_internal
