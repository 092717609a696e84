// The choice of a row of the bandwidth settings table.
//
// Each row of the candidate's effective M is costed; weights order the criteria: a bandwidth too
// fast for the PFD (2^23) outweighs a missed preset (2^17), which outweighs a small distance,
// counted in MHz.
#include "filter/table_row.h"

#include "pll_cost.h"
#include "pll_util.h"

#include "loop/loop_model.h"
#include "loop/taps.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cfloat>

using namespace pll_internal;

namespace {

constexpr double HERTZ_PER_INVERSE_PICOSECOND = 1e12;
constexpr double PFD_RULE_PENALTY = 8388608.0;
constexpr double PRESET_PENALTY = 131072.0;

// The largest loop bandwidth that each input clock allows, Hz.
struct PFD_BANDWIDTH_LIMITS
{
    double m_first;
    double m_second;
};

constexpr PLL_ROW_CHOICE NO_ROW = {nullptr, NO_ROW_COST, false};

PFD_BANDWIDTH_LIMITS pfd_limits(const PLL& pll, const PLL_PROP& request)
{
    const int multiplier = pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier;
    const double base =
        divide_by_any(HERTZ_PER_INVERSE_PICOSECOND, wrap_mul(multiplier, pll.m_n.m_count));
    return {base / request.m_fin_period,
            request.m_fin2_period > 0 ? base / request.m_fin2_period : DBL_MAX};
}

// Missing a preset at all weighs as much as a MHz, so that no row outside wins by being close.
double preset_miss(double bandwidth, double preset)
{
    return PRESET_PENALTY + pll_get_bandwidth_diff_cost(bandwidth, preset);
}

}  // namespace

namespace pll_internal {

double row_wish_penalty(const PLL& pll, const PLL_PROP& request, const PLL_BANDWIDTH_SETTING& row)
{
    const double bandwidth = row.m_typical_bandwidth;
    switch (request.m_bandwidth_type) {
    case PLL_BANDWIDTH_HIGH:
        return bandwidth < pll.m_high_bandwidth ? preset_miss(bandwidth, pll.m_high_bandwidth)
                                                : 0.0;
    case PLL_BANDWIDTH_MEDIUM:
        if (bandwidth < pll.m_low_bandwidth) {
            return preset_miss(bandwidth, pll.m_low_bandwidth);
        }
        return bandwidth > pll.m_high_bandwidth ? preset_miss(bandwidth, pll.m_high_bandwidth)
                                                : 0.0;
    case PLL_BANDWIDTH_LOW:
        return bandwidth > pll.m_low_bandwidth ? preset_miss(bandwidth, pll.m_low_bandwidth) : 0.0;
    case PLL_BANDWIDTH_AUTO:
        return 0.0;
    case PLL_BANDWIDTH_CUSTOM:
        return pll_get_bandwidth_diff_cost(bandwidth, request.m_bandwidth);
    default:
        report_error("unknown bandwidth type", "pll");
        return 0.0;
    }
}

const PLL_BANDWIDTH_SETTING_GROUP* find_row_group(const PLL& pll, int effective_m)
{
    if (!pll.m_info.has_info()) {
        return nullptr;
    }
    const PLL_BASIC_INFO& info = *pll.m_info.m_basic_info;
    if (effective_m < 0 || effective_m >= info.m_bandwidth_settings_table_size ||
        info.m_bandwidth_settings_table == nullptr) {
        return nullptr;
    }
    return &info.m_bandwidth_settings_table[effective_m];
}

}  // namespace pll_internal

namespace {

PLL_ROW_CHOICE cost_row(const PLL& pll, const PLL_PROP& request, const PFD_BANDWIDTH_LIMITS& limits,
                        const PLL_BANDWIDTH_SETTING& row)
{
    const double fast = row.m_fast_bandwidth;
    PLL_ROW_CHOICE choice{&row, 0.0, true};
    if (fast > limits.m_first) {
        choice.m_within = false;
        choice.m_cost = PFD_RULE_PENALTY + pll_get_bandwidth_diff_cost(fast, limits.m_first);
    }
    if (fast > limits.m_second) {
        choice.m_within = false;
        choice.m_cost += PFD_RULE_PENALTY;
        choice.m_cost += pll_get_bandwidth_diff_cost(fast, limits.m_second);
    }
    choice.m_cost += row_wish_penalty(pll, request, row);
    return choice;
}

// Adds to `walked` how many rows were looked at.
PLL_ROW_CHOICE walk_rows(const PLL& pll, const PLL_PROP& request,
                         const PFD_BANDWIDTH_LIMITS& limits,
                         const PLL_BANDWIDTH_SETTING_GROUP& group, int* walked)
{
    PLL_ROW_CHOICE best = NO_ROW;
    for (const PLL_BANDWIDTH_SETTING* row : group.m_settings) {
        if (row == nullptr) {
            continue;
        }
        ++*walked;
        const PLL_ROW_CHOICE choice = cost_row(pll, request, limits, *row);
        if (choice.m_cost < best.m_cost) {
            best = choice;
            if (best.m_cost <= DBL_EPSILON) {
                break;
            }
        }
    }
    return best;
}

void take_row(const PLL_ROW_CHOICE& choice, int effective_m, PLL* pll)
{
    const PLL_BANDWIDTH_SETTING& row = *choice.m_row;
    pll->m_bandwidth_legal_for_mult_div = true;
    check(effective_m == row.m_m, "m == best_setting->m_m", "pll");
    pll->m_r = row.m_loop_filter_resistor;
    pll->m_i = row.m_charge_pump_current;
    if (row.m_loop_filter_capacitor >= 0) {
        pll->m_c_high = row.m_loop_filter_capacitor;
    }
    pll->m_bandwidth_legal_for_fin = choice.m_within;
}

// Gives `pll` the chosen row, if any. Returns whether there is one.
bool take_choice(const PLL_ROW_CHOICE& choice, int effective_m, PLL* pll)
{
    if (choice.m_row != nullptr) {
        take_row(choice, effective_m, pll);
    } else {
        pll->m_bandwidth_legal_for_mult_div = false;
    }
    pll->m_cost += choice.m_cost;
    return choice.m_row != nullptr;
}

// Costs the rows as a search does that walks all of them; `write` receives each with its place.
template <class WRITE>
int cost_rows(const PLL& pll, const PLL_PROP& request, const PLL_BANDWIDTH_SETTING_GROUP& group,
              WRITE write)
{
    const PFD_BANDWIDTH_LIMITS limits = pfd_limits(pll, request);
    PLL_PROP without_wish(0);
    without_wish.m_fin2_period = request.m_fin2_period;
    without_wish.m_bandwidth_type = PLL_BANDWIDTH_AUTO;
    int count = 0;
    bool is_open = true;
    for (const PLL_BANDWIDTH_SETTING* row : group.m_settings) {
        if (row == nullptr) {
            continue;
        }
        PLL_ROW_COST cost;
        cost.m_row = row;
        cost.m_cost = cost_row(pll, request, limits, *row).m_cost;
        cost.m_pfd_cost = cost_row(pll, without_wish, limits, *row).m_cost;
        cost.m_wish_cost = row_wish_penalty(pll, request, *row);
        cost.m_is_looked_at = is_open;
        is_open = is_open && !(cost.m_cost <= DBL_EPSILON);
        write(count++, cost);
    }
    return count;
}

}  // namespace

bool PLL::synthesize_best_bandwidth_using_table(PLL* pll, const PLL_PROP& request)
{
    const HOST_STATE state;
    if (pll == nullptr) {
        return false;
    }
    const int effective_m = effective_feedback_division(*pll);
    const PLL_BANDWIDTH_SETTING_GROUP* group = find_row_group(*pll, effective_m);
    PLL_ROW_CHOICE choice = NO_ROW;
    if (group != nullptr) {
        int walked = 0;
        choice = walk_rows(*pll, request, pfd_limits(*pll, request), *group, &walked);
    }
    return take_choice(choice, effective_m, pll);
}

namespace pll_internal {

bool PLL_BANDWIDTH_CHOOSER::choose(PLL* candidate)
{
    const int effective_m = effective_feedback_division(*candidate);
    const PLL_BANDWIDTH_SETTING_GROUP* group = find_row_group(*candidate, effective_m);
    return take_choice(group == nullptr ? NO_ROW : choose_row(*candidate, *group), effective_m,
                       candidate);
}

// The first candidates of a group walk its rows: most groups of most requests have no more, and
// walks that end early need no help.
PLL_ROW_CHOICE PLL_BANDWIDTH_CHOOSER::choose_row(const PLL& candidate,
                                                 const PLL_BANDWIDTH_SETTING_GROUP& group)
{
    const PFD_BANDWIDTH_LIMITS limits = pfd_limits(candidate, m_request);
    if (&group != m_group) {
        m_group = &group;
        m_walked = 0;
        m_row_count = NOT_SORTED;
    }
    if (m_row_count == NOT_SORTED && m_walked >= ROWS_BEFORE_SORTING) {
        sort_rows(candidate);
    }
    if (m_row_count > 0) {
        const double limit = std::min(limits.m_first, limits.m_second);
        const auto allowed = std::upper_bound(m_fast, m_fast + m_row_count, limit) - m_fast;
        if (allowed > 0 && m_best[allowed - 1].m_cost < PFD_RULE_PENALTY) {
            return {m_best[allowed - 1].m_row, m_best[allowed - 1].m_cost, true};
        }
    }
    return walk_rows(candidate, m_request, limits, group, &m_walked);
}

// Sorts nothing where the walk must be made: each row reports an unknown type, and costs that are
// no numbers have no order.
void PLL_BANDWIDTH_CHOOSER::sort_rows(const PLL& candidate)
{
    m_row_count = 0;
    if (m_request.m_bandwidth_type < PLL_BANDWIDTH_HIGH ||
        m_request.m_bandwidth_type > PLL_BANDWIDTH_CUSTOM) {
        return;
    }
    int place = 0;
    for (const PLL_BANDWIDTH_SETTING* row : m_group->m_settings) {
        if (row != nullptr &&
            !insert_row(row->m_fast_bandwidth,
                        {row, place, row_wish_penalty(candidate, m_request, *row)})) {
            m_row_count = 0;
            return;
        }
        ++place;
    }
    for (int i = 1; i < m_row_count; ++i) {
        if (is_better(m_best[i - 1], m_best[i])) {
            m_best[i] = m_best[i - 1];
        }
    }
}

// Returns false for a row that cannot be sorted.
bool PLL_BANDWIDTH_CHOOSER::insert_row(double fast, const ROW_COST& row)
{
    if (m_row_count == MOST_ROWS || fast != fast || row.m_cost != row.m_cost) {
        return false;
    }
    int at = m_row_count++;
    for (; at > 0 && m_fast[at - 1] > fast; --at) {
        m_fast[at] = m_fast[at - 1];
        m_best[at] = m_best[at - 1];
    }
    m_fast[at] = fast;
    m_best[at] = row;
    return true;
}

// A walk ends at the first row that costs next to nothing, and keeps the first of equals.
bool PLL_BANDWIDTH_CHOOSER::is_better(const ROW_COST& a, const ROW_COST& b)
{
    const bool a_ends = a.m_cost <= DBL_EPSILON;
    const bool b_ends = b.m_cost <= DBL_EPSILON;
    if (a_ends != b_ends) {
        return a_ends;
    }
    return a_ends || a.m_cost == b.m_cost ? a.m_place < b.m_place : a.m_cost < b.m_cost;
}

}  // namespace pll_internal

int pll_get_row_costs(const PLL& pll, const PLL_PROP& request, PLL_ROW_COST* rows, int most)
{
    const HOST_STATE state;
    const PLL_BANDWIDTH_SETTING_GROUP* group =
        find_row_group(pll, effective_feedback_division(pll));
    if (group == nullptr) {
        return 0;
    }
    int taken = 0;
    double least = NO_ROW_COST;
    const int count = cost_rows(pll, request, *group, [&](int index, const PLL_ROW_COST& cost) {
        if (cost.m_is_looked_at && cost.m_cost < least) {
            least = cost.m_cost;
            taken = index;
        }
        if (index < most) {
            rows[index] = cost;
        }
    });
    if (least < NO_ROW_COST && taken < most) {
        rows[taken].m_is_taken = true;
    }
    return count;
}

double pll_get_largest_bandwidth(const PLL& pll, const PLL_PROP& request)
{
    const HOST_STATE state;
    if (!pll.m_info.has_info()) {
        return 0.0;
    }
    const PFD_BANDWIDTH_LIMITS limits = pfd_limits(pll, request);
    return state.keep(std::min(limits.m_first, limits.m_second));
}

int pll_get_effective_m(const PLL& pll)
{
    return effective_feedback_division(pll);
}
