#include "lean_candidate.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double EXACT = 1e-12;
constexpr double SAME_PHASE = 0.0001;  // degrees
constexpr int CIRCLE = 360;
constexpr int TAP_STEP = CIRCLE / PLL_VCO_TAPS_NUMBER;
constexpr double PERCENT = 100.0;

int counter_for(const LEAN_CLOCK& clock, int m, int n)
{
    const double count = double(m) * clock.m_div / (double(n) * clock.m_mult) + 0.5;
    if (count < 1.0) {
        return 1;
    }
    constexpr int LARGEST = std::numeric_limits<int>::max();
    return count > LARGEST ? LARGEST : int(count);
}

LEAN_COUNTER split(int count)
{
    const int high = count / 2;
    return {count, high, count - high, count % 2 == 0, count == 1, false, 0, 1, 0.0};
}

// Cuts a counter to what the device can count. Returns by how much.
double cut(int max_count, LEAN_COUNTER* counter)
{
    if (max_count == 1) {
        if (counter->m_bypass) {
            return 0.0;
        }
        const double excess = counter->m_count;
        *counter = split(1);
        return excess;
    }
    const double excess = double(std::max(counter->m_high - max_count, 0)) +
                          double(std::max(counter->m_low - max_count, 0));
    counter->m_high = std::min(counter->m_high, max_count);
    counter->m_low = std::min(counter->m_low, max_count);
    counter->m_count = counter->m_high + counter->m_low;
    return excess;
}

// Halves are rounded up, as the library does.
int rounded(double value)
{
    const double raised = value + 0.5;
    return int(raised);
}

struct PLACE
{
    int m_tap;
    int m_start;
};

PLACE place_phase(double vco_phase, int max_start)
{
    const int start = std::min(rounded(vco_phase) / CIRCLE + 1, max_start);
    const int rest = int(vco_phase - (CIRCLE * start - CIRCLE)) % CIRCLE;
    const int tap = int((rest + 0.5 * TAP_STEP) / TAP_STEP);
    if (tap < PLL_VCO_TAPS_NUMBER) {
        return {tap, start};
    }
    return start < max_start ? PLACE{tap - PLL_VCO_TAPS_NUMBER, start + 1}
                             : PLACE{PLL_VCO_TAPS_NUMBER - 1, start};
}

void narrow_phases(double wish, double achieved, double step, LEAN_CARRIED* carried)
{
    double next = achieved + step;
    double prev = achieved - step;
    if (std::fabs(achieved - wish) > SAME_PHASE) {
        (achieved > wish ? next : prev) = achieved;
    }
    if (std::fabs(next - wish) > SAME_PHASE && next < carried->m_next_phase) {
        carried->m_next_phase = next;
    }
    if (std::fabs(wish - prev) > SAME_PHASE && prev > carried->m_prev_phase) {
        carried->m_prev_phase = prev;
    }
}

double place_phase(const LEAN_CLOCK& clock, int m, int n, LEAN_COUNTER* counter,
                   LEAN_CARRIED* carried)
{
    const double vco_phase = std::max(0.0, double(m) * clock.m_phase / n);
    const int max_start = counter->m_bypass ? 1 : clock.m_max_count;
    const PLACE place = place_phase(vco_phase, max_start);
    counter->m_vco_tap = place.m_tap;
    counter->m_start = place.m_start;
    const int realised = CIRCLE * place.m_start + TAP_STEP * place.m_tap - CIRCLE;
    const double achieved = double(n) * realised / double(m);
    counter->m_delta_phase = clock.m_phase - achieved;
    narrow_phases(clock.m_phase, achieved, double(TAP_STEP) / (double(m) / n), carried);
    return std::fabs(counter->m_delta_phase);
}

// Splits a counter for a duty cycle. Returns by how much its halves exceeded the maximum.
double split_for_duty(const LEAN_CLOCK& clock, LEAN_COUNTER* counter)
{
    const int count = counter->m_count;
    if (count < 2) {
        counter->m_high = 1;
        counter->m_low = 0;
        return 0.0;
    }
    const int half_periods = rounded(2.0 * count * clock.m_duty / PERCENT);
    counter->m_even = half_periods % 2 == 0;
    counter->m_high = (half_periods + 1) / 2;
    counter->m_low = (2 * count - half_periods) / 2;
    double excess = 0.0;
    if (counter->m_high > clock.m_max_count) {
        excess += counter->m_high - clock.m_max_count;
        counter->m_low += counter->m_high - clock.m_max_count;
        counter->m_high = clock.m_max_count;
        counter->m_even = true;
    }
    if (counter->m_low > clock.m_max_count) {
        excess += counter->m_low - clock.m_max_count;
        counter->m_high += counter->m_low - clock.m_max_count;
        counter->m_low = clock.m_max_count;
        counter->m_even = false;
    }
    if (counter->m_high == 0 || counter->m_low == 0) {
        counter->m_even = counter->m_low == 0;
        counter->m_high = counter->m_high == 0 ? 1 : counter->m_high - 1;
        counter->m_low = count - counter->m_high;
    }
    return excess;
}

double duty_of(const LEAN_COUNTER& counter)
{
    if (counter.m_bypass || counter.m_count == 1) {
        return PERCENT / 2;
    }
    const double high = counter.m_even ? counter.m_high : counter.m_high - 0.5;
    return high * PERCENT / counter.m_count;
}

void narrow_duties(const LEAN_CLOCK& clock, const LEAN_COUNTER& counter, double duty,
                   LEAN_CARRIED* carried)
{
    const int count = counter.m_count;
    const int half = std::min(count - 1, clock.m_max_count);
    const double step = PERCENT / 2 / count;
    const double least = (count - half - 0.5) * PERCENT / count;
    const double most = count == 1 ? PERCENT / 2 : double(float(half) * 100.0F / float(count));
    carried->m_smallest_duty = std::min(carried->m_smallest_duty, rounded(least));
    carried->m_largest_duty = std::max(carried->m_largest_duty, rounded(most));
    const int nearest = rounded(duty);
    const double above = clock.m_duty >= nearest ? duty + step : duty;
    const double below = clock.m_duty <= nearest ? duty - step : duty;
    const int next = rounded(above > most ? most : above < least ? least : above);
    const int prev = rounded(below > most ? most : below < least ? least : below);
    if (clock.m_duty < next) {
        carried->m_next_duty = std::min(carried->m_next_duty, next);
    }
    if (clock.m_duty > prev) {
        carried->m_prev_duty = std::max(carried->m_prev_duty, prev);
    }
}

}  // namespace

LEAN_CLOCKS read_lean_clocks(const PLL& limits, const PLL_PROP& request)
{
    LEAN_CLOCKS clocks = {};
    clocks.m_count = request.m_taps_count;
    for (int i = 0; i < clocks.m_count; ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        const PLL_OUTPUT_TAP& tap = limits.m_taps[i];
        const double mult = wish.m_mult;
        const double div = wish.m_div;
        clocks.m_clocks[i] = {mult, div, mult / div, wish.m_phase, wish.m_duty, tap.m_max_count};
        clocks.m_carried[i] = {tap.m_next_phase_degree,       tap.m_prev_phase_degree,
                               tap.m_next_duty_cycle,         tap.m_prev_duty_cycle,
                               tap.m_smallest_duty_cycle_min, tap.m_largest_duty_cycle_max};
    }
    return clocks;
}

LEAN_SCORE assign_lean_counters(const LEAN_CLOCKS& clocks, int m, int n, LEAN_COUNTER* counters)
{
    LEAN_SCORE score;
    const double vco_ratio = double(m) / double(n);
    for (int i = 0; i < clocks.m_count; ++i) {
        const LEAN_CLOCK& clock = clocks.m_clocks[i];
        LEAN_COUNTER* counter = &counters[i];
        *counter = split(counter_for(clock, m, n));
        counter->m_met = true;
        const double error = std::fabs(vco_ratio / counter->m_count - clock.m_ratio);
        if (error >= EXACT) {
            const double relative = std::fabs(clock.m_div * error / clock.m_mult);
            score.m_relative += relative;
            if (relative >= LEAN_MET) {
                score.m_error += error;
                counter->m_met = false;
            }
        }
        const double excess = cut(clock.m_max_count, counter);
        if (excess != 0.0) {
            score.m_clamped = score.m_clamped || score.m_error == 0.0;
            score.m_error += excess;
            counter->m_met = false;
        }
    }
    return score;
}

double place_lean_phases(LEAN_CLOCKS* clocks, int m, int n, double cost, LEAN_COUNTER* counters)
{
    for (int i = 0; i < clocks->m_count; ++i) {
        const LEAN_CLOCK& clock = clocks->m_clocks[i];
        LEAN_CARRIED* carried = &clocks->m_carried[i];
        LEAN_COUNTER* counter = &counters[i];
        cost += place_phase(clock, m, n, counter, carried);
        cost += split_for_duty(clock, counter);
        const double duty = duty_of(*counter);
        cost += std::abs(clock.m_duty - rounded(duty)) / PERCENT;
        narrow_duties(clock, *counter, duty, carried);
    }
    return cost;
}
