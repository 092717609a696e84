// The steps of placing one output's phase, inline for the look at many candidates.
#pragma once

#include "pll_prop.h"

#include "loop/vco_phase.h"
#include "placing/neighbours.h"
#include "placing/placement.h"

#include <cmath>

namespace pll_internal {

// The reference was moved by the largest advance that is wanted, so a value below 0 is what
// rounding left of one.
inline double at_least_zero(double value)
{
    return value < 0.0 ? 0.0 : value;
}

// A phase in degrees of the input clock, in VCO degrees: the input's period is M / N of the VCO's.
inline double vco_degrees(const PHASE_FRAME& frame, double phase)
{
    if (phase == 0.0 && frame.m_ordinary) {
        return phase;  // spares the division
    }
    return frame.m_m * phase / frame.m_n;
}

// The phase of a place, degrees of the input clock, where nothing is fed back.
inline double phase_of(const PHASE_FRAME& frame, TAP_AND_START place)
{
    return input_degrees(frame.m_n, frame.m_m_count,
                         wrap_sub(place.vco_degrees(), frame.m_reference));
}

// The reference, VCO degrees, where the feedback path is delayed by `delay` of them and no output
// is in it. `counter` is the M counter.
int reference_without_feedback(const PLL_COUNTER_M& counter, double delay, int m);

// The frame of (m, n), both positive, where nothing is fed back. `most_negative` is the smallest
// phase of the request, degrees; 0 when none is below.
inline PHASE_FRAME frame_without_feedback(const PLL_COUNTER_M& counter, double most_negative, int m,
                                          int n)
{
    // By way of the rounded ratio, since neighbours are promised to its last digit.
    const double tap_step = DEGREES_PER_VCO_TAP / (double(m) / double(n));
    PHASE_FRAME frame{double(m), m, n, true, 0, tap_step, PLL_VCO_TAPS_NUMBER * tap_step};
    if (most_negative < 0.0) {
        frame.m_reference =
            reference_without_feedback(counter, -vco_degrees(frame, most_negative), m);
    }
    return frame;
}

// What placing an output achieves. Degrees are those of the input clock, as all phases of the
// library are, so outputs of all frequencies weigh alike.
struct PLACED_PHASE
{
    double m_achieved;  // degrees
    double m_miss;      // degrees; that of a serial clock included
};

// Of an output that is not cascaded, where nothing is fed back. It starts at `max_start` at most.
inline PLACED_PHASE place_parallel_phase(const PLL_USER_TAP& wish, const PHASE_FRAME& frame,
                                         int max_start)
{
    const double target = at_least_zero(frame.m_m * wish.m_phase / frame.m_n + frame.m_reference);
    const double achieved = phase_of(frame, nearest_tap_and_start(target, max_start));
    return {achieved, std::fabs(wish.m_phase - achieved)};
}

// The same of a serial clock, whose own counter starts at once: only VCO taps move it.
PLACED_PHASE place_serial_phase(const PLL_USER_TAP& wish, const PHASE_FRAME& frame, int max_start);

// Takes the phases on either side of the wish that are nearer than the neighbours known.
inline void narrow_phases(const PLL_USER_TAP& wish, double achieved, double step,
                          NEIGHBOURS* neighbours)
{
    constexpr double SAME_PHASE = 0.0001;  // degrees; closer phases are one
    // What is achieved is a neighbour itself when it is not the wish; the other one is a step away.
    const bool same = std::fabs(achieved - wish.m_phase) <= SAME_PHASE;
    const bool above = achieved > wish.m_phase;
    const double next = !same && above ? achieved : achieved + step;
    const double previous = !same && !above ? achieved : achieved - step;

    if (std::fabs(next - wish.m_phase) > SAME_PHASE && next < neighbours->m_next_phase) {
        neighbours->m_next_phase = next;
    }
    if (std::fabs(wish.m_phase - previous) > SAME_PHASE &&
        previous > neighbours->m_previous_phase) {
        neighbours->m_previous_phase = previous;
    }
}

}  // namespace pll_internal
