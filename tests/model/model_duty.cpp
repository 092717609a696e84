// Duty cycles of a candidate, and the next and previous ones that a user interface offers.
#include "model.h"
#include "model_util.h"

#include <cmath>
#include <cstdint>

namespace {

constexpr double ODD_COUNT_COST = 262144.0;

void split_for_duty(MODEL_PLL* pll, MODEL_TAP* tap, int duty, MODEL_REPORTS& reports)
{
    const int k = tap->m_count;
    if (k < 2) {
        tap->m_high = 1;
        tap->m_low = 0;
        return;
    }
    const std::int64_t half_periods = std::int64_t{2} * k;
    const std::int64_t h = model_truncate(static_cast<double>(half_periods) * duty / 100 + 0.5);
    tap->m_even = h % 2 == 0;
    tap->m_high = static_cast<int>(h > 0 ? (h + 1) / 2 : h / 2);
    const std::int64_t low = (half_periods - h) / 2;
    tap->m_low = static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(low)));
    if (tap->m_high > tap->m_max_count) {
        const int excess = model_subtract(tap->m_high, tap->m_max_count);
        pll->m_cost += excess;
        tap->m_high = tap->m_max_count;
        tap->m_even = true;
        tap->m_low = model_add(tap->m_low, excess);
    }
    if (tap->m_low > tap->m_max_count) {
        const int excess = model_subtract(tap->m_low, tap->m_max_count);
        pll->m_cost += excess;
        tap->m_low = tap->m_max_count;
        tap->m_even = false;
        tap->m_high = model_add(tap->m_high, excess);
    }
    if (tap->m_high == 0) {
        tap->m_high = 1;
        tap->m_low = model_subtract(tap->m_low, 1);
        tap->m_even = false;
    }
    if (tap->m_low == 0) {
        tap->m_low = 1;
        tap->m_high = model_subtract(tap->m_high, 1);
        tap->m_even = true;
    }
    if (!(tap->m_high > 0 && tap->m_low > 0)) {
        reports.push_back("high > 0 && low > 0");
    }
}

void force_even_mode(MODEL_TAP* tap, double ideal)
{
    if (tap->m_even) {
        return;
    }
    tap->m_even = true;
    const bool movable = tap->m_high >= 2 && tap->m_low < tap->m_max_count;
    if (movable && std::fabs(tap->m_high - 1.0 - ideal) < std::fabs(tap->m_high - ideal)) {
        tap->m_high -= 1;
        tap->m_low += 1;
    }
}

bool is_odd(int value)
{
    return value % 2 != 0;
}

void force_even_counts(MODEL_TAP* tap, double ideal, bool whole_periods_only)
{
    if (!is_odd(tap->m_high) || !is_odd(tap->m_low)) {
        return;
    }
    const double high = tap->m_high;
    const bool up = tap->m_high < tap->m_max_count && tap->m_low >= 2;
    const bool down = tap->m_low < tap->m_max_count && tap->m_high >= 2;
    double best = 2147483647.0;
    int move = 0;
    bool even = tap->m_even;
    if (up) {
        best = std::fabs(high + 1.0 - ideal);
        move = 1;
        even = true;
    }
    if (up && !whole_periods_only && std::fabs(high + 0.5 - ideal) < best) {
        best = std::fabs(high + 0.5 - ideal);
        move = 1;
        even = false;
    }
    if (down && std::fabs(high - 1.0 - ideal) < best) {
        best = std::fabs(high - 1.0 - ideal);
        move = -1;
        even = true;
    }
    if (down && !whole_periods_only && std::fabs(high - 1.5 - ideal) < best) {
        move = -1;
        even = false;
    }
    tap->m_high = model_add(tap->m_high, move);
    tap->m_low = model_subtract(tap->m_low, move);
    tap->m_even = even;
}

double achieved_duty(const MODEL_PLL& pll, int i, MODEL_REPORTS& reports)
{
    if (i >= pll.m_total_taps_count) {
        reports.push_back("i >= 0 && i < m_total_taps_count");
    }
    const MODEL_TAP& tap = pll.m_taps[i];
    const int sum = model_add(tap.m_high, tap.m_low);
    const int out = tap.m_bypass ? 1 : sum;
    if (sum == 0 && out != 1) {
        reports.push_back("out_count == 1 || counter_sum != 0");
    }
    if (out == 1) {
        return 50.0;
    }
    const double high_time = tap.m_even ? tap.m_high : tap.m_high - 0.5;
    return high_time * 100 / sum;
}

int clamp_and_round(double value, double min, double max)
{
    if (value > max) {
        value = max;
    } else if (value < min) {
        value = min;
    }
    return model_truncate(value + 0.5);
}

void narrow_duty_neighbours(MODEL_TAP* tap, int wanted, double achieved)
{
    const double resolution = 50.0 / model_add(tap->m_high, tap->m_low);
    const int c = tap->m_count;
    const int below = model_subtract(c, 1);
    const int k = below < tap->m_max_count ? below : tap->m_max_count;
    const double min = (static_cast<double>(c) - k - 0.5) * 100 / c;
    const double max =
        c == 1 ? 50.0 : static_cast<double>(static_cast<float>(k) * 100.0F / static_cast<float>(c));
    const int smallest = model_truncate(min + 0.5);
    const int largest = model_truncate(max + 0.5);
    if (smallest < tap->m_smallest_duty_cycle_min) {
        tap->m_smallest_duty_cycle_min = smallest;
    }
    if (largest > tap->m_largest_duty_cycle_max) {
        tap->m_largest_duty_cycle_max = largest;
    }
    const int rounded = model_truncate(achieved + 0.5);
    const double upper = wanted < rounded ? achieved : achieved + resolution;
    const double lower = wanted > rounded ? achieved : achieved - resolution;
    const int next = clamp_and_round(upper, min, max);
    const int previous = clamp_and_round(lower, min, max);
    if (wanted < next && next < tap->m_next_duty_cycle) {
        tap->m_next_duty_cycle = next;
    }
    if (wanted > previous && previous > tap->m_prev_duty_cycle) {
        tap->m_prev_duty_cycle = previous;
    }
}

}  // namespace

void model_place_duty(MODEL_PLL* pll, const MODEL_CLOCK& clock, int i, MODEL_REPORTS& reports)
{
    MODEL_TAP& tap = pll->m_taps[i];
    split_for_duty(pll, &tap, clock.m_duty, reports);
    const double ideal = static_cast<double>(clock.m_duty) * tap.m_count / 100;
    if (clock.m_use_even_counter_mode) {
        force_even_mode(&tap, ideal);
    }
    if (clock.m_use_even_counter_value) {
        force_even_counts(&tap, ideal, clock.m_use_even_counter_mode);
        if (is_odd(tap.m_high) || is_odd(tap.m_low)) {
            pll->m_cost += ODD_COUNT_COST;
        }
    }
    if (model_add(tap.m_low, tap.m_high) != tap.m_count) {
        reports.push_back("pll->m_taps[i].m_low + pll->m_taps[i].m_high == pll->m_taps[i].m_count");
    }
    const double achieved = achieved_duty(*pll, i, reports);
    const int miss = model_subtract(clock.m_duty, model_truncate(achieved + 0.5));
    pll->m_cost += std::fabs(static_cast<double>(miss)) / 100;
    narrow_duty_neighbours(&tap, clock.m_duty, achieved);
}

void model_correct_neighbours(MODEL_PLL* pll)
{
    for (int i = 0; i < model_taps_to_walk(pll->m_user_taps_count); ++i) {
        MODEL_TAP& tap = pll->m_taps[i];
        for (int* duty : {&tap.m_next_duty_cycle, &tap.m_prev_duty_cycle}) {
            if (*duty > tap.m_largest_duty_cycle_max) {
                *duty = tap.m_largest_duty_cycle_max;
            } else if (*duty < tap.m_smallest_duty_cycle_min) {
                *duty = tap.m_smallest_duty_cycle_min;
            }
        }
    }
}
