// Phases of counters are delays in eighths of a VCO period; those of tables are sixteenths of the
// clock itself. Duty cycles of counters are half periods of the VCO.

#include "advice/devices/clocks.h"

namespace advice {

namespace {

const RATIONAL TURN(360);
const RATIONAL HALF_TURN(180);
const RATIONAL EIGHTHS(8);
const RATIONAL SIXTEENTHS(16);
const RATIONAL HALF(50);
const RATIONAL PERCENT(100);
const RATIONAL LARGEST_HALF(64);    // of a counter, VCO periods
const RATIONAL LARGEST_DELAY(511);  // eighths: 63 periods and seven
const RATIONAL LARGEST_COARSE(1023);
const RATIONAL LEAST_TABLE_DUTY(2);
const RATIONAL MOST_TABLE_DUTY(14);

RATIONAL wrap(const RATIONAL& degrees)
{
    const RATIONAL turns = degrees / TURN;
    return (turns - turns.floor()) * TURN;
}

RATIONAL clamp(const RATIONAL& value, const RATIONAL& least, const RATIONAL& most)
{
    return value < least ? least : most < value ? most : value;
}

// By counters: the nearest eighth of a VCO period within reach, either way round.
void place_delay(const RATIONAL& wanted, const RATIONAL& largest, DEVICE_CLOCK* clock)
{
    const RATIONAL period = clock->m_division * EIGHTHS;
    const RATIONAL steps = wrap(wanted) / TURN * period;
    RATIONAL nearest = steps.rounded();
    if (nearest == period) {
        nearest = RATIONAL(0);
    }
    if (largest < nearest) {
        // Beyond the longest delay the nearest phases are that one's and the next turn's.
        nearest = period - steps < steps - largest ? RATIONAL(0) : largest;
    }
    clock->m_delay = nearest / EIGHTHS;
    clock->m_phase = nearest / period * TURN;
    clock->m_phase_step = TURN / period;
}

void place_in_table(const RATIONAL& wanted, DEVICE_CLOCK* clock)
{
    RATIONAL steps = (wrap(wanted) / TURN * SIXTEENTHS).rounded();
    if (steps == SIXTEENTHS) {
        steps = RATIONAL(0);
    }
    clock->m_phase = steps / SIXTEENTHS * TURN;
    clock->m_phase_step = TURN / SIXTEENTHS;
}

// High and low each count up to 64 VCO periods, in halves.
RATIONAL duty_of_counter(const RATIONAL& wanted, const RATIONAL& count)
{
    if (!count.is_integer() || count < RATIONAL(2)) {
        return HALF;
    }
    const RATIONAL least = count - LARGEST_HALF < RATIONAL(1) ? RATIONAL(1) : count - LARGEST_HALF;
    const RATIONAL most = count - least;
    const RATIONAL high = (wanted / PERCENT * count * RATIONAL(2)).rounded() / RATIONAL(2);
    return clamp(high, least, most) / count * PERCENT;
}

}  // namespace

RATIONAL phase_distance(const RATIONAL& a, const RATIONAL& b)
{
    const RATIONAL distance = wrap(a - b);
    return HALF_TURN < distance ? TURN - distance : distance;
}

void place_clock(const OUTPUT_WISH& wish, const SHEET& sheet, const PLAN_CLOCK& plan,
                 const std::string& primitive, bool is_fed_back, DEVICE_CLOCK* clock)
{
    const auto has = [&](PARAMETER_ROLE role) {
        return sheet.find_parameter(role, plan.m_output, primitive) != nullptr;
    };
    clock->m_phase = plan.m_fixed_phase;
    clock->m_delay = RATIONAL(0);
    clock->m_phase_step = RATIONAL(0);
    clock->m_duty = HALF;
    if (has(PARAMETER_ROLE::SIXTEENTHS_PHASE)) {
        place_in_table(wish.m_phase, clock);
    } else if (is_fed_back || !clock->m_count.is_integer()) {
        // Nothing that could move it.
    } else if (has(PARAMETER_ROLE::COARSE_PHASE)) {
        place_delay(wish.m_phase, LARGEST_COARSE, clock);
    } else if (has(PARAMETER_ROLE::DEGREES)) {
        place_delay(wish.m_phase, LARGEST_DELAY, clock);
    }
    if (has(PARAMETER_ROLE::DUTY_SHARE)) {
        clock->m_duty = duty_of_counter(wish.m_duty, clock->m_count);
    } else if (has(PARAMETER_ROLE::SIXTEENTHS_DUTY)) {
        const RATIONAL steps = (wish.m_duty / PERCENT * SIXTEENTHS).rounded();
        clock->m_duty = clamp(steps, LEAST_TABLE_DUTY, MOST_TABLE_DUTY) / SIXTEENTHS * PERCENT;
    }
}

}  // namespace advice
