// Duty cycles of a candidate.
//
// A counter of K is high for m_high VCO periods, less half a one in odd mode, so duty cycles come
// in steps of half a VCO period: of 2K half periods h = 2K x duty / 100, rounded, are high.
#include "pll.h"
#include "pll_prop.h"

#include "loop/duty_cycle.h"
#include "loop/taps.h"
#include "placing/placement.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";
constexpr double PERCENT = 100;
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

// In half periods, since an odd mode moves the edge by one of them. Wide, as twice a count can be
// more than an int holds.
SPLIT split_for_duty(int count, int duty)
{
    const std::int64_t half_periods = std::int64_t{2} * count;
    const int high_halves = truncate_to_int(double(half_periods) * duty / PERCENT + 0.5);
    return {half_rounded_up(high_halves), wrap_to_int((half_periods - high_halves) / 2),
            high_halves % 2 == 0};
}

void add_charge(double charge, DUTY_PLAN* plan)
{
    plan->m_charges[plan->m_charges_count++] = charge;
}

// What one half cannot count goes to the other, at a cost.
void clamp_split(int max_count, SPLIT* split, DUTY_PLAN* plan)
{
    // The charge is the excess itself, in counts: a split that fits is cheaper than one that is
    // nearer to its duty cycle. The mode then gives the clamped half all that it can have.
    if (split->m_high > max_count) {
        const int excess = wrap_sub(split->m_high, max_count);
        add_charge(excess, plan);
        plan->m_has_clamps = true;
        split->m_high = max_count;
        split->m_even = true;
        split->m_low = wrap_add(split->m_low, excess);
    }
    if (split->m_low > max_count) {
        const int excess = wrap_sub(split->m_low, max_count);
        add_charge(excess, plan);
        plan->m_has_clamps = true;
        split->m_low = max_count;
        split->m_even = false;
        split->m_high = wrap_add(split->m_high, excess);
    }
}

// A clock that never falls, or never rises, is none: a duty cycle of 0 or 100 percent gets one
// period. The mode keeps that half as short as can be.
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

// Without the odd mode the high half is as long as it is counted. One period less may then be
// nearer.
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

// UP_EVEN is taken for want of anything else, at whatever distance; the others must be nearer.
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

void use_even_halves(const PLL_USER_TAP& wish, double ideal_high, PLL_OUTPUT_TAP* tap,
                     DUTY_PLAN* plan)
{
    // Two odd halves become even by moving one period. With an odd count one half stays odd,
    // whatever moves, and nothing but the charge is left.
    if (tap->m_high % 2 != 0 && tap->m_low % 2 != 0) {
        const MOVE* move = best_move(*tap, wish.m_use_even_counter_mode, ideal_high);
        if (move != nullptr) {
            tap->m_high = wrap_add(tap->m_high, move->m_step);
            tap->m_low = wrap_sub(tap->m_low, move->m_step);
            tap->m_even = move->m_even;
        }
    }
    if (tap->m_high % 2 != 0 || tap->m_low % 2 != 0) {
        add_charge(ODD_HALF_PENALTY, plan);
    }
}

// Unlike std::clamp, defined for limits that cross.
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

// Splits the count of `tap` into halves.
void split_count(const PLL_USER_TAP& wish, PLL_OUTPUT_TAP* tap, DUTY_PLAN* plan)
{
    const int count = tap->m_count;
    if (count < 2) {
        tap->m_high = 1;
        tap->m_low = 0;
    } else {
        SPLIT split = split_for_duty(count, wish.m_duty);
        clamp_split(tap->m_max_count, &split, plan);
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
        use_even_halves(wish, ideal_high, tap, plan);
    }
    check(wrap_add(tap->m_low, tap->m_high) == tap->m_count,
          "pll->m_taps[i].m_low + pll->m_taps[i].m_high == pll->m_taps[i].m_count", SOURCE);
}

// What the host will be told of a tap that achieves `duty`, percent.
void describe(const PLL_OUTPUT_TAP& tap, int wish, double duty, DUTY_PLAN* plan)
{
    const double resolution = duty_cycle_resolution(tap);
    const double smallest = smallest_duty_cycle(tap);
    const double largest = largest_duty_cycle(tap);
    plan->m_smallest = round_percent(smallest);
    plan->m_largest = round_percent(largest);

    const int rounded = round_percent(duty);
    // The neighbours stand on either side of the wish. An achieved value that lies above the wish
    // is itself the next one, one that lies below is itself the previous one.
    const double above = wish >= rounded ? duty + resolution : duty;
    const double below = wish <= rounded ? duty - resolution : duty;
    const int next = round_percent(clamp_into(above, smallest, largest));
    const int previous = round_percent(clamp_into(below, smallest, largest));
    plan->m_next = wish < next ? next : std::numeric_limits<int>::max();
    plan->m_previous = wish > previous ? previous : std::numeric_limits<int>::min();
}

void narrow_duty_cycles(const DUTY_PLAN& plan, NEIGHBOURS* neighbours)
{
    neighbours->m_smallest_duty = std::min(neighbours->m_smallest_duty, plan.m_smallest);
    neighbours->m_largest_duty = std::max(neighbours->m_largest_duty, plan.m_largest);
    neighbours->m_next_duty = std::min(neighbours->m_next_duty, plan.m_next);
    neighbours->m_previous_duty = std::max(neighbours->m_previous_duty, plan.m_previous);
}

// In whole percent, as the wish is: a hundredth of a unit of cost each, so that a duty cycle
// decides between settings that are alike in everything else.
void charge_deviation(const PLL_USER_TAP& wish, double duty, DUTY_PLAN* plan)
{
    add_charge(std::fabs(double(wrap_sub(wish.m_duty, round_percent(duty)))) / 100, plan);
}

// Outputs with the same wish and the same counters get the same plans, so they share them.
bool is_same_wish(const PLL_USER_TAP& a, const PLL_USER_TAP& b)
{
    return a.m_duty == b.m_duty && a.m_use_even_counter_mode == b.m_use_even_counter_mode &&
           a.m_use_even_counter_value == b.m_use_even_counter_value;
}

// A search of few candidates does not pay for clearing the table. Counts above 2^24 would not leave
// room for the output in a key of 32 bits.
constexpr int NEW_PLANS_FOR_TABLE = 64;
constexpr int NO_PERCENT = 255;
constexpr int LARGEST_KEPT_COUNT = 1 << 24;

std::uint8_t pack_percent(int percent)
{
    return std::uint8_t(percent < 0 || percent > int(PERCENT) ? NO_PERCENT : percent);
}

// The charges of a plan without clamps: perhaps an odd half, then the deviation.
SMALL_DUTY_PLAN pack(std::uint32_t key, const DUTY_PLAN& plan)
{
    // The deviation is a whole number of percent over 100; times 100 and rounded it is that again.
    const double deviation = plan.m_charges[plan.m_charges_count - 1] * PERCENT;
    return {key,
            plan.m_high,
            plan.m_even,
            plan.m_charges_count > 1,
            pack_percent(round_percent(deviation)),
            pack_percent(plan.m_smallest),
            pack_percent(plan.m_largest),
            pack_percent(plan.m_next),
            pack_percent(plan.m_previous)};
}

void unpack(const SMALL_DUTY_PLAN& small, int count, DUTY_PLAN* plan)
{
    plan->m_count = count;
    plan->m_high = small.m_high;
    plan->m_low = count - small.m_high;
    plan->m_even = small.m_even != 0;
    plan->m_charges_count = 0;
    if (small.m_has_odd_half != 0) {
        add_charge(ODD_HALF_PENALTY, plan);
    }
    add_charge(small.m_deviation / PERCENT, plan);
    plan->m_smallest = small.m_smallest;
    plan->m_largest = small.m_largest;
    plan->m_next = small.m_next == NO_PERCENT ? std::numeric_limits<int>::max() : small.m_next;
    plan->m_previous =
        small.m_previous == NO_PERCENT ? std::numeric_limits<int>::min() : small.m_previous;
}

void carry_out(const DUTY_PLAN& plan, PLL_OUTPUT_TAP* tap, double* cost)
{
    tap->m_high = plan.m_high;
    tap->m_low = plan.m_low;
    tap->m_even = plan.m_even;
    // One by one, in the order in which they arose: their sum could round to another cost.
    for (int i = 0; i < plan.m_charges_count; ++i) {
        *cost += plan.m_charges[i];
    }
}

}  // namespace

namespace pll_internal {

DUTY_PLACING::DUTY_PLACING(const PLL& pll, const PLL_PROP& request)
    : m_request(request), m_taps_count(clamp_taps(request.m_taps_count)), m_new_plans(0)
{
    for (int i = 0; i < m_taps_count; ++i) {
        m_plans[i].m_count = 0;
        m_max_counts[i] = pll.m_taps[i].m_max_count;
        m_kinds[i] = 0;
        // Ends at the output itself.
        while (!is_same_wish(request.m_taps[m_kinds[i]], request.m_taps[i]) ||
               m_max_counts[m_kinds[i]] != m_max_counts[i]) {
            ++m_kinds[i];
        }
    }
}

// Whether a plan depends on the count alone, has neither clamps nor an empty half, and breaks no
// promise that would have to be reported each time.
bool DUTY_PLACING::is_ordinary(int index, const PLL& pll) const
{
    const PLL_OUTPUT_TAP& tap = pll.m_taps[index];
    const int duty = m_request.m_taps[index].m_duty;
    return 2 <= tap.m_count && tap.m_count <= LARGEST_KEPT_COUNT && !tap.m_bypass &&
           tap.m_max_count == m_max_counts[index] && (tap.m_count - 1) / 2 < tap.m_max_count &&
           0 <= duty && duty <= int(PERCENT) && index < pll.m_total_taps_count;
}

void DUTY_PLACING::make_plan(int index, const PLL& pll, DUTY_PLAN* plan) const
{
    const PLL_USER_TAP& wish = m_request.m_taps[index];
    PLL_OUTPUT_TAP tap = pll.m_taps[index];
    plan->m_count = tap.m_count;
    plan->m_charges_count = 0;
    plan->m_has_clamps = false;
    split_count(wish, &tap, plan);
    plan->m_high = tap.m_high;
    plan->m_low = tap.m_low;
    plan->m_even = tap.m_even;
    const double duty = checked_duty_cycle(tap, index, pll.m_total_taps_count);
    charge_deviation(wish, duty, plan);
    describe(tap, wish.m_duty, duty, plan);
}

std::uint32_t DUTY_PLACING::key_of(int index, int count) const
{
    return std::uint32_t(count) * PLL_MAX_TAPS + std::uint32_t(m_kinds[index]);
}

SMALL_DUTY_PLAN* DUTY_PLACING::slot_of(std::uint32_t key)
{
    return m_new_plans < NEW_PLANS_FOR_TABLE ? nullptr : &m_table[key % TABLE_SIZE];
}

void DUTY_PLACING::count_new_plan()
{
    if (m_new_plans < NEW_PLANS_FOR_TABLE && ++m_new_plans == NEW_PLANS_FOR_TABLE) {
        std::memset(m_table, 0, sizeof m_table);
    }
}

const DUTY_PLAN& DUTY_PLACING::plan_of(int index, const PLL& pll)
{
    DUTY_PLAN& plan = m_plans[index];
    const int count = pll.m_taps[index].m_count;
    if (plan.m_count == count) {
        return plan;
    }
    const std::uint32_t key = key_of(index, count);
    SMALL_DUTY_PLAN* slot = slot_of(key);
    if (slot != nullptr && slot->m_key == key) {
        unpack(*slot, count, &plan);
        return plan;
    }
    make_plan(index, pll, &plan);
    if (slot == nullptr) {
        count_new_plan();
    } else if (!plan.m_has_clamps) {
        *slot = pack(key, plan);
    }
    return plan;
}

void DUTY_PLACING::place(int index, PLL* pll, NEIGHBOURS* neighbours)
{
    DUTY_PLAN made;
    const bool is_kept = is_ordinary(index, *pll);
    if (!is_kept) {
        make_plan(index, *pll, &made);
    }
    const DUTY_PLAN& plan = is_kept ? plan_of(index, *pll) : made;
    carry_out(plan, &pll->m_taps[index], &pll->m_cost);
    narrow_duty_cycles(plan, neighbours);
}

}  // namespace pll_internal

void PLL::compute_duty_cycle_for_ui(PLL* pll, const PLL_PROP& request, int tap,
                                    double duty_cycle) const
{
    const HOST_STATE state;
    if (pll == nullptr) {
        return;
    }
    const int index = nearest_index(tap, PLL_MAX_TAPS);
    DUTY_PLAN plan;
    describe(pll->m_taps[index], request.m_taps[index].m_duty, duty_cycle, &plan);
    NEIGHBOURS neighbours = read_neighbours(pll->m_taps[index]);
    narrow_duty_cycles(plan, &neighbours);
    write_neighbours(neighbours, &pll->m_taps[index]);
}

void PLL::correct_next_and_previous_values_for_ui()
{
    const HOST_STATE state;
    // Neighbours come from all candidates, bounds from all as well; together they may have come
    // from different ones.
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
