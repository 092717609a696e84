// The library counts a phase in degrees of the input clock, 360 to a period of the input, whatever
// the output. A board designer thinks of the output, whose period is another. With r the ratio of
// output to input,
//
//   degrees of the output = r x degrees of the input
//   one VCO tap           = 45 x (VCO period / output period) degrees of the output
#include "app/answer/output_phase.h"

#include <cmath>
#include <limits>

namespace {

constexpr double TAP_DEGREES = 45.0;   // of the VCO
constexpr double SAME_PHASE = 0.0001;  // degrees; closer phases are one
constexpr double NO_PHASE = std::numeric_limits<double>::quiet_NaN();

// Of a neighbour that the library found, or NO_PHASE where it holds its mark for none.
double scale_neighbour(double of_input, double ratio)
{
    const bool is_mark =
        of_input >= std::numeric_limits<int>::max() || of_input <= std::numeric_limits<int>::min();
    return is_mark ? NO_PHASE : of_input * ratio;
}

// The loop holds the output that is fed back in phase with the input, wherever its counter starts.
// The neighbours of the others are those of the answer alone: the library forms them with steps
// that leave the counter of the fed-back output out.
void find_neighbours_with_feedback(bool is_fed_back, OUTPUT_PHASE* phase)
{
    if (is_fed_back) {
        phase->m_previous = phase->m_next = phase->m_step = NO_PHASE;
        return;
    }
    const double miss = phase->m_achieved - phase->m_asked;
    phase->m_previous = phase->m_achieved - (miss < -SAME_PHASE ? 0.0 : phase->m_step);
    phase->m_next = phase->m_achieved + (miss > SAME_PHASE ? 0.0 : phase->m_step);
}

}  // namespace

OUTPUT_PHASE find_phase(const REQUEST& request, const PLL& pll, const PLL_PROP& achieved,
                        std::size_t output)
{
    const PLL_USER_TAP& clock = achieved.m_taps[output];
    const int tap = static_cast<int>(output);
    const double ratio = RATIONAL(clock.m_mult, clock.m_div).to_double();
    const double vco_ratio = RATIONAL(achieved.m_vco_mult, achieved.m_vco_div).to_double();
    OUTPUT_PHASE phase;
    phase.m_asked = request.m_outputs[output].m_phase.to_double();
    phase.m_achieved = clock.m_phase * ratio;
    phase.m_step = TAP_DEGREES * ratio / vco_ratio;
    phase.m_previous = scale_neighbour(pll.get_prev_phase_degree(tap), ratio);
    phase.m_next = scale_neighbour(pll.get_next_phase_degree(tap), ratio);
    if (pll.m_feedback_tap >= 0) {
        find_neighbours_with_feedback(tap == pll.m_feedback_tap, &phase);
    }
    return phase;
}
