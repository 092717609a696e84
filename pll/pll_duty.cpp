// Duty cycles of a candidate.
//
// A counter of K is high for m_high VCO periods, less half a one in odd mode, so duty cycles come
// in steps of half a VCO period: of 2K half periods h = 2K x duty / 100, rounded, are high.
#include "pll_arith.h"
#include "pll_report_error.h"
#include "pll_search.h"

#include <cmath>
#include <cstdint>

namespace {

constexpr const char* SOURCE = "pll";
constexpr double PERCENT = 100;
constexpr double ODD_HALF_PENALTY = 262144.0;
constexpr double NO_DISTANCE = 2147483647.0;

// The high and low halves while they are worked on.
struct SPLIT
{
    int m_high;
    int m_low;
    bool m_even;
};

// h / 2 rounded towards plus infinity.
int half_rounded_up(int h)
{
    return h / 2 + (h > 0 && h % 2 != 0 ? 1 : 0);
}

SPLIT split_for_duty(int count, int duty)
{
    const std::int64_t half_periods = std::int64_t{2} * count;
    const int high_halves = truncate_to_int(double(half_periods) * duty / PERCENT + 0.5);
    return {half_rounded_up(high_halves), wrap_to_int((half_periods - high_halves) / 2),
            high_halves % 2 == 0};
}

// What one half cannot count goes to the other, at a cost.
void clamp_split(int max_count, SPLIT* split, double* cost)
{
    if (split->m_high > max_count) {
        const int excess = wrap_sub(split->m_high, max_count);
        *cost += excess;
        split->m_high = max_count;
        split->m_even = true;
        split->m_low = wrap_add(split->m_low, excess);
    }
    if (split->m_low > max_count) {
        const int excess = wrap_sub(split->m_low, max_count);
        *cost += excess;
        split->m_low = max_count;
        split->m_even = false;
        split->m_high = wrap_add(split->m_high, excess);
    }
}

void give_each_half_one(SPLIT* split)
{
    if (split->m_high == 0) {
        split->m_high = 1;
        split->m_low = wrap_sub(split->m_low, 1);
        split->m_even = false;
    }
    if (split->m_low == 0) {
        split->m_low = 1;
        split->m_high = wrap_sub(split->m_high, 1);
        split->m_even = true;
    }
    check(split->m_high > 0 && split->m_low > 0, "high > 0 && low > 0", SOURCE);
}

void use_even_mode(double ideal_high, PLL_OUTPUT_TAP* tap)
{
    if (tap->m_even) {
        return;
    }
    tap->m_even = true;
    const bool can_move = tap->m_high >= 2 && tap->m_low < tap->m_max_count;
    if (can_move && std::fabs(double(tap->m_high) - 1 - ideal_high) <
                        std::fabs(double(tap->m_high) - ideal_high)) {
        tap->m_high = wrap_sub(tap->m_high, 1);
        tap->m_low = wrap_add(tap->m_low, 1);
    }
}

// A way from two odd halves to two even ones: high grows or shrinks by one.
struct MOVE
{
    int m_step;       // added to high, taken from low
    bool m_even;      // mode after the move
    double m_offset;  // effective high time after the move, less high before it
};

constexpr MOVE UP_EVEN = {1, true, 1.0};
constexpr MOVE UP_HALF = {1, false, 0.5};
constexpr MOVE DOWN_EVEN = {-1, true, -1.0};
constexpr MOVE DOWN_HALF = {-1, false, -1.5};

const MOVE* best_move(const PLL_OUTPUT_TAP& tap, bool even_mode, double ideal_high)
{
    const auto distance = [&](const MOVE& move) {
        return std::fabs(tap.m_high + move.m_offset - ideal_high);
    };
    const MOVE* best = nullptr;
    double best_distance = NO_DISTANCE;
    const auto take_if_closer = [&](const MOVE& move) {
        if (distance(move) < best_distance) {
            best = &move;
            best_distance = distance(move);
        }
    };
    if (tap.m_high < tap.m_max_count && tap.m_low >= 2) {
        best = &UP_EVEN;
        best_distance = distance(UP_EVEN);
        if (!even_mode) {
            take_if_closer(UP_HALF);
        }
    }
    if (tap.m_low < tap.m_max_count && tap.m_high >= 2) {
        take_if_closer(DOWN_EVEN);
        if (!even_mode) {
            take_if_closer(DOWN_HALF);
        }
    }
    return best;
}

void use_even_halves(const PLL_USER_TAP& wish, double ideal_high, PLL_OUTPUT_TAP* tap, double* cost)
{
    if (tap->m_high % 2 != 0 && tap->m_low % 2 != 0) {
        const MOVE* move = best_move(*tap, wish.m_use_even_counter_mode, ideal_high);
        if (move != nullptr) {
            tap->m_high = wrap_add(tap->m_high, move->m_step);
            tap->m_low = wrap_sub(tap->m_low, move->m_step);
            tap->m_even = move->m_even;
        }
    }
    if (tap->m_high % 2 != 0 || tap->m_low % 2 != 0) {
        *cost += ODD_HALF_PENALTY;
    }
}

double clamp_into(double value, double smallest, double largest)
{
    if (value > largest) {
        return largest;
    }
    return value < smallest ? smallest : value;
}

int round_percent(double duty)
{
    return truncate_to_int(duty + 0.5);
}

}  // namespace

void place_duty_cycle(const PLL_USER_TAP& wish, PLL_OUTPUT_TAP* tap, double* cost)
{
    const int count = tap->m_count;
    if (count < 2) {
        tap->m_high = 1;
        tap->m_low = 0;
    } else {
        SPLIT split = split_for_duty(count, wish.m_duty);
        clamp_split(tap->m_max_count, &split, cost);
        give_each_half_one(&split);
        tap->m_high = split.m_high;
        tap->m_low = split.m_low;
        tap->m_even = split.m_even;
    }
    const double ideal_high = double(wish.m_duty) * count / PERCENT;
    if (wish.m_use_even_counter_mode) {
        use_even_mode(ideal_high, tap);
    }
    if (wish.m_use_even_counter_value) {
        use_even_halves(wish, ideal_high, tap, cost);
    }
    check(wrap_add(tap->m_low, tap->m_high) == tap->m_count,
          "pll->m_taps[i].m_low + pll->m_taps[i].m_high == pll->m_taps[i].m_count", SOURCE);
}

void PLL::compute_duty_cycle_for_ui(PLL* pll, const PLL_PROP& request, int tap,
                                    double duty_cycle) const
{
    if (pll == nullptr) {
        return;
    }
    const int index = nearest_index(tap, PLL_MAX_TAPS);
    const double resolution = pll->get_duty_cycle_resolution(index);
    const double smallest = pll->get_duty_cycle_min(index);
    const double largest = pll->get_duty_cycle_max(index);
    PLL_OUTPUT_TAP& output = pll->m_taps[index];
    output.m_smallest_duty_cycle_min =
        std::min(output.m_smallest_duty_cycle_min, round_percent(smallest));
    output.m_largest_duty_cycle_max =
        std::max(output.m_largest_duty_cycle_max, round_percent(largest));

    const int wish = request.m_taps[index].m_duty;
    const int rounded = round_percent(duty_cycle);
    const double above = wish >= rounded ? duty_cycle + resolution : duty_cycle;
    const double below = wish <= rounded ? duty_cycle - resolution : duty_cycle;
    const int next = round_percent(clamp_into(above, smallest, largest));
    const int previous = round_percent(clamp_into(below, smallest, largest));
    if (wish < next) {
        output.m_next_duty_cycle = std::min(output.m_next_duty_cycle, next);
    }
    if (wish > previous) {
        output.m_prev_duty_cycle = std::max(output.m_prev_duty_cycle, previous);
    }
}

void PLL::correct_next_and_previous_values_for_ui()
{
    const auto clamp = [](const PLL_OUTPUT_TAP& tap, int duty) {
        if (duty > tap.m_largest_duty_cycle_max) {
            return tap.m_largest_duty_cycle_max;
        }
        return duty < tap.m_smallest_duty_cycle_min ? tap.m_smallest_duty_cycle_min : duty;
    };
    for (int i = 0; i < clamp_taps(m_user_taps_count); ++i) {
        m_taps[i].m_next_duty_cycle = clamp(m_taps[i], m_taps[i].m_next_duty_cycle);
        m_taps[i].m_prev_duty_cycle = clamp(m_taps[i], m_taps[i].m_prev_duty_cycle);
    }
}
