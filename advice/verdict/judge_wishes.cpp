#include "advice/verdict/judge.h"

#include "pll.h"
#include "pll_prop.h"

#include <limits>

namespace advice {

namespace {

const RATIONAL FULL_TURN(360);
constexpr int TAP_DEGREES = 45;
constexpr int HALF_STEP = 50;  // percent that half a VCO period is of one
constexpr double NONE = std::numeric_limits<double>::quiet_NaN();

// What is missed relative to what was asked for; in doubles where the fraction does not fit.
AMOUNT relative_miss(const AMOUNT& asked, const AMOUNT& achieved)
{
    const RATIONAL exact = achieved.m_exact / asked.m_exact - RATIONAL(1);
    return exact.is_valid() ? AMOUNT(exact) : AMOUNT(achieved.m_value / asked.m_value - 1.0);
}

// The way from one phase to another, -180 to 180 degrees: whole turns cannot be seen.
RATIONAL turn_between(const RATIONAL& asked, const RATIONAL& achieved)
{
    const RATIONAL difference = achieved - asked;
    const RATIONAL turns = (difference / FULL_TURN).rounded();
    return difference - turns * FULL_TURN;
}

class WISHES
{
public:
    WISHES(const JUDGE_INPUT& input, std::vector<JUDGED_WISH>* wishes)
        : m_input(input), m_wishes(wishes)
    {
    }

    void add_outputs()
    {
        const std::size_t count = m_input.m_request.m_outputs.size();
        for (std::size_t i = 0; i < count; ++i) {
            add_output(i);
        }
    }

    void add_loop()
    {
        const REQUEST& request = m_input.m_request;
        add_bandwidth();
        if (!request.m_spread.is_zero()) {
            add_spread();
        }
        if (request.m_vco_ratio) {
            add_relative(WISH_KIND::VCO_RATIO, NO_OUTPUT, *request.m_vco_ratio,
                         m_input.m_achieved.m_vco_ratio, RATIONAL());
        }
    }

private:
    JUDGED_WISH& add(WISH_KIND kind, int output, const AMOUNT& asked, const AMOUNT& achieved,
                     const AMOUNT& miss, const RATIONAL& tolerance)
    {
        JUDGED_WISH wish;
        wish.m_kind = kind;
        wish.m_output = output;
        wish.m_asked = asked;
        wish.m_tolerance = tolerance;
        if (m_input.m_has_setting) {
            wish.m_achieved = achieved;
            wish.m_miss = miss;
            wish.m_kept = miss.is_exact() ? miss.m_exact.magnitude() <= tolerance
                                          : miss.m_value <= tolerance.to_double() &&
                                                -miss.m_value <= tolerance.to_double();
        } else {
            wish.m_achieved = AMOUNT(NONE);
            wish.m_miss = AMOUNT(NONE);
            wish.m_kept = false;
        }
        m_wishes->push_back(wish);
        return m_wishes->back();
    }

    JUDGED_WISH& add_relative(WISH_KIND kind, int output, const AMOUNT& asked,
                              const AMOUNT& achieved, const RATIONAL& tolerance)
    {
        return add(kind, output, asked, achieved, relative_miss(asked, achieved), tolerance);
    }

    void add_output(std::size_t index)
    {
        const OUTPUT_WISH& wish = m_input.m_request.m_outputs[index];
        const ACHIEVED_OUTPUT& achieved = m_input.m_achieved.m_output[index];
        const TOLERANCES tolerances = tolerances_of(m_input.m_request, index);
        const int output = static_cast<int>(index);
        // The miss of the ratio is that of the frequency, and fits where frequencies do not.
        const RATIONAL& input = m_input.m_request.m_input.m_frequency;
        add(WISH_KIND::FREQUENCY, output, product(input, wish.m_ratio),
            product(input, achieved.m_ratio), relative_miss(wish.m_ratio, achieved.m_ratio),
            tolerances.m_frequency);
        add_phase(index, tolerances.m_phase);
        add(WISH_KIND::DUTY, output, wish.m_duty, achieved.m_duty, achieved.m_duty - wish.m_duty,
            tolerances.m_duty)
            .m_step = RATIONAL(HALF_STEP) / RATIONAL(count_of(m_input.m_pll.m_taps[index]));
        const RATIONAL delay(m_input.m_prop.m_taps[index].m_delay);
        if (wish.m_delay != 0 || !delay.is_zero()) {
            add(WISH_KIND::DELAY, output, RATIONAL(wish.m_delay), delay,
                delay - RATIONAL(wish.m_delay), tolerances.m_delay);
        }
        add_counter_wishes(index);
    }

    void add_phase(std::size_t index, const RATIONAL& tolerance)
    {
        const OUTPUT_WISH& wish = m_input.m_request.m_outputs[index];
        const ACHIEVED& all = m_input.m_achieved;
        const ACHIEVED_OUTPUT& achieved = all.m_output[index];
        RATIONAL phase = achieved.m_phase;
        if (wish.m_phase_to != NO_OUTPUT) {
            const ACHIEVED_OUTPUT& other = all.m_output[static_cast<std::size_t>(wish.m_phase_to)];
            phase = phase - other.m_phase * achieved.m_ratio / other.m_ratio;
        }
        JUDGED_WISH& judged = add(WISH_KIND::PHASE, static_cast<int>(index), wish.m_phase, phase,
                                  turn_between(wish.m_phase, phase), tolerance);
        judged.m_step = RATIONAL(TAP_DEGREES) / achieved.m_division;
    }

    void add_counter_wishes(std::size_t index)
    {
        const OUTPUT_WISH& wish = m_input.m_request.m_outputs[index];
        const PLL_OUTPUT_TAP& tap = m_input.m_pll.m_taps[index];
        const int output = static_cast<int>(index);
        if (wish.m_even) {
            add_flag(WISH_KIND::EVEN, output, tap.m_even || tap.m_bypass);
        }
        if (wish.m_even_count) {
            add_flag(WISH_KIND::EVEN_COUNT, output, tap.m_high % 2 == 0 && tap.m_low % 2 == 0);
        }
    }

    void add_flag(WISH_KIND kind, int output, bool is_kept)
    {
        const RATIONAL achieved(is_kept ? 1 : 0);
        add(kind, output, RATIONAL(1), achieved, achieved - RATIONAL(1), RATIONAL());
    }

    // Low is at most the low preset, high at least the high one, medium what lies between.
    void add_bandwidth()
    {
        const REQUEST& request = m_input.m_request;
        const PLL& pll = m_input.m_pll;
        const AMOUNT achieved(m_input.m_prop.m_bandwidth);
        AMOUNT asked(request.m_bandwidth);
        bool less_is_kept = false;
        bool more_is_kept = false;
        switch (request.m_bandwidth_kind) {
        case BANDWIDTH_KIND::AUTO:
            return;
        case BANDWIDTH_KIND::CUSTOM:
            break;
        case BANDWIDTH_KIND::LOW:
            asked = AMOUNT(pll.m_low_bandwidth);
            less_is_kept = true;
            break;
        case BANDWIDTH_KIND::HIGH:
            asked = AMOUNT(pll.m_high_bandwidth);
            more_is_kept = true;
            break;
        case BANDWIDTH_KIND::MEDIUM:
            less_is_kept = achieved.m_value >= pll.m_low_bandwidth;
            more_is_kept = achieved.m_value <= pll.m_high_bandwidth;
            asked = AMOUNT(less_is_kept ? pll.m_high_bandwidth : pll.m_low_bandwidth);
            break;
        }
        JUDGED_WISH& judged = add_relative(WISH_KIND::BANDWIDTH, NO_OUTPUT, asked, achieved,
                                           request.m_tolerances.m_bandwidth);
        const bool is_on_the_right_side = (less_is_kept && judged.m_miss.m_value <= 0.0) ||
                                          (more_is_kept && judged.m_miss.m_value >= 0.0);
        judged.m_kept = judged.m_kept || (m_input.m_has_setting && is_on_the_right_side);
    }

    void add_spread()
    {
        constexpr int PERCENT = 100;
        constexpr int DEFAULT_RATE = 50000;  // Hz, of the library
        const REQUEST& request = m_input.m_request;
        const ACHIEVED& achieved = m_input.m_achieved;
        add_relative(WISH_KIND::SPREAD, NO_OUTPUT, request.m_spread * RATIONAL(PERCENT),
                     achieved.m_spread, request.m_tolerances.m_spread);
        add_relative(WISH_KIND::SPREAD_RATE, NO_OUTPUT,
                     request.m_spread_rate.value_or(RATIONAL(DEFAULT_RATE)), achieved.m_spread_rate,
                     request.m_tolerances.m_spread_rate);
    }

    const JUDGE_INPUT& m_input;
    std::vector<JUDGED_WISH>* m_wishes;
};

}  // namespace

void judge_wishes(const JUDGE_INPUT& input, std::vector<JUDGED_WISH>* wishes)
{
    WISHES all(input, wishes);
    all.add_outputs();
    all.add_loop();
}

}  // namespace advice
