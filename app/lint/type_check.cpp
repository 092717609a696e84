#include "app/lint/type_check.h"

#include "app/lint/plausible.h"
#include "app/lint/words.h"

#include <algorithm>
#include <vector>

namespace {

constexpr double PS_PER_SECOND = 1e12;

// Counters without which nothing can be synthesised.
constexpr std::size_t NEEDED_COUNTERS[] = {keyword("n_counter_max"),
                                           keyword("vco_post_scale_counter_max")};

// A component, and the keywords any of which gives it.
struct COMPONENT
{
    std::size_t m_keyword;
    std::size_t m_other;
};

constexpr COMPONENT COMPONENTS[] = {
    {keyword("charge_pump_current_default"), keyword("charge_pump_current_default")},
    {keyword("loop_filter_resistor_default"), keyword("loop_filter_resistor_default")},
    {keyword("loop_filter_resistor"), keyword("loop_filter_resistor_bit")},
    {keyword("loop_filter_capacitor_default"), keyword("loop_filter_capacitor_default")},
    {keyword("loop_filter_fixed_capacitor"), keyword("loop_filter_fixed_capacitor")},
};

// A default, and the lists one of which it should be in.
struct DEFAULT_OF_LIST
{
    std::size_t m_default;
    std::size_t m_list;
    std::size_t m_bits;
};

constexpr DEFAULT_OF_LIST DEFAULTS[] = {
    {keyword("charge_pump_current_default"), keyword("charge_pump_current"),
     keyword("charge_pump_current_bit")},
    {keyword("loop_filter_resistor_default"), keyword("loop_filter_resistor"),
     keyword("loop_filter_resistor_bit")},
    {keyword("loop_filter_capacitor_default"), keyword("loop_filter_capacitor"),
     keyword("loop_filter_capacitor_bit")},
    {keyword("ss_charge_pump_current"), keyword("charge_pump_current"),
     keyword("charge_pump_current_bit")},
};

// Values of which the first should not be above the second.
struct ORDER
{
    std::size_t m_min;
    std::size_t m_max;
    bool m_counts_with_table;
};

constexpr ORDER ORDERS[] = {
    {keyword("m_counter_preferred_min"), keyword("m_counter_preferred_max"), true},
    {keyword("gate_lock_counter_min"), keyword("gate_lock_counter_max"), true},
    {keyword("switch_over_counter_min"), keyword("switch_over_counter_max"), true},
    {keyword("feedback_duty_cycle_min"), keyword("feedback_duty_cycle_max"), true},
    {keyword("ss_down_spread_min"), keyword("ss_down_spread_max"), true},
    {keyword("bandwidth_low"), keyword("bandwidth_high"), true},
    {keyword("bandwidth_low"), keyword("bandwidth_medium"), false},
    {keyword("bandwidth_medium"), keyword("bandwidth_high"), false},
    {keyword("time_delay_resolution"), keyword("time_delay_max"), true},
};

const SET_VALUE* find_either(const RECORD_VIEW& type, std::size_t first, std::size_t second)
{
    const SET_VALUE* const value = type.find(first);
    return value != nullptr ? value : type.find(second);
}

bool is_later(const SET_VALUE& a, const SET_VALUE& b)
{
    return a.m_order > b.m_order;
}

void append(std::string* list, const char* name)
{
    list->append(list->empty() ? "" : ", ").append(in_quotes(name));
}

void check_counters(const RECORD_VIEW& type, const std::string& name, const SOURCE_PLACE& place,
                    LINT_MESSAGES* messages)
{
    std::string missing;
    if (find_largest_m(type) == nullptr && type.is_complete()) {
        append(&missing, "m_counter_high_low_max");
    }
    for (const std::size_t counter : NEEDED_COUNTERS) {
        if (type.is_missing(counter)) {
            append(&missing, get_keyword(counter).m_name);
        }
    }
    const SET_VALUE* const output =
        find_later(type, keyword("output_counter_max"), keyword("output_counter_high_low_max"));
    if (output == nullptr && type.is_complete()) {
        append(&missing, "output_counter_high_low_max");
    } else if (output != nullptr && output->m_keyword == keyword("output_counter_max")) {
        messages->add(LINT_RULE::NO_HIGH_LOW_MAX, output->m_place,
                      "the output counters of the " + name +
                          " count nothing: 'output_counter_high_low_max' is 0, which is what "
                          "'output_counter_max' leaves");
    }
    if (!missing.empty()) {
        messages->add(LINT_RULE::LIMIT_UNSET, place,
                      "the " + name + " lacks " + missing + ": nothing is legal without a limit");
    }
}

// Weights of control bits that leave no value.
bool holds_zeros(const RECORD_VIEW& type, const SET_VALUE& list)
{
    const std::vector<int> values = type.model().list_of(list);
    return list.m_state == VALUE_STATE::GIVEN &&
           std::all_of(values.begin(), values.end(), [](int value) { return value == 0; });
}

void check_components(const RECORD_VIEW& type, const std::string& name, const SOURCE_PLACE& place,
                      LINT_MESSAGES* messages)
{
    const SET_VALUE* const currents =
        find_later(type, keyword("charge_pump_current"), keyword("charge_pump_current_bit"));
    const bool is_missing = currents == nullptr && type.is_complete();
    if (is_missing || (currents != nullptr && holds_zeros(type, *currents))) {
        messages->add(LINT_RULE::NO_CHARGE_PUMP_CURRENT,
                      currents == nullptr ? place : currents->m_place,
                      "the " + name + " has no charge-pump current; see 'charge_pump_current'");
    }
    std::string missing;
    for (const COMPONENT& component : COMPONENTS) {
        if (type.is_complete() &&
            find_either(type, component.m_keyword, component.m_other) == nullptr) {
            append(&missing, get_keyword(component.m_keyword).m_name);
        }
    }
    if (!missing.empty()) {
        messages->add(LINT_RULE::LOOP_FILTER_VALUE_MISSING, place,
                      "the " + name + " lacks " + missing);
    }
}

void check_defaults(const RECORD_VIEW& type, LINT_MESSAGES* messages)
{
    for (const DEFAULT_OF_LIST& entry : DEFAULTS) {
        const std::optional<double> value = type.number(entry.m_default);
        const SET_VALUE* const list = find_later(type, entry.m_list, entry.m_bits);
        if (!value || list == nullptr || list->m_state != VALUE_STATE::GIVEN ||
            holds_zeros(type, *list)) {
            continue;
        }
        const std::vector<int> values = type.model().list_of(*list);
        if (std::find(values.begin(), values.end(), static_cast<int>(*value)) == values.end()) {
            messages->add(LINT_RULE::DEFAULT_NOT_LISTED, type.find(entry.m_default)->m_place,
                          in_quotes(get_keyword(list->m_keyword).m_name) + " does not list the " +
                              short_number(*value) + " of " +
                              in_quotes(get_keyword(entry.m_default).m_name));
        }
    }
}

void check_orders(const RECORD_VIEW& type, bool has_table, LINT_MESSAGES* messages)
{
    for (const ORDER& order : ORDERS) {
        const std::optional<double> min = type.number(order.m_min);
        const std::optional<double> max = type.number(order.m_max);
        if (min && max && *min > *max && (order.m_counts_with_table || !has_table)) {
            const SET_VALUE& first = *type.find(order.m_min);
            const SET_VALUE& second = *type.find(order.m_max);
            messages->add(LINT_RULE::LIMITS_OUT_OF_ORDER,
                          is_later(first, second) ? first.m_place : second.m_place,
                          in_quotes(get_keyword(order.m_min).m_name) + " lies above " +
                              in_quotes(get_keyword(order.m_max).m_name));
        }
    }
    const std::optional<double> most = largest_m(type);
    const std::optional<double> preferred = type.number(keyword("m_counter_preferred_min"));
    if (most && preferred && *preferred > *most) {
        messages->add(LINT_RULE::LIMITS_OUT_OF_ORDER,
                      type.find(keyword("m_counter_preferred_min"))->m_place,
                      "'m_counter_preferred_min' lies above the largest M, " + short_number(*most));
    }
}

}  // namespace

const SET_VALUE* find_later(const RECORD_VIEW& type, std::size_t one, std::size_t other)
{
    const SET_VALUE* const first = type.find(one);
    const SET_VALUE* const second = type.find(other);
    if (first == nullptr || second == nullptr) {
        return first != nullptr ? first : second;
    }
    return is_later(*first, *second) ? first : second;
}

const SET_VALUE* find_largest_m(const RECORD_VIEW& type)
{
    return find_later(type, keyword("m_counter_max"), keyword("m_counter_high_low_max"));
}

std::optional<double> largest_m(const RECORD_VIEW& type)
{
    const SET_VALUE* const value = find_largest_m(type);
    if (value == nullptr || value->m_state != VALUE_STATE::GIVEN) {
        return std::nullopt;
    }
    return value->m_keyword == keyword("m_counter_max") ? value->m_value : 2 * value->m_value;
}

void check_type(const RECORD_VIEW& type, const std::string& name, const SOURCE_PLACE& place,
                bool has_table, LINT_MESSAGES* messages)
{
    if (type.is_empty()) {
        if (type.is_complete()) {
            messages->add(LINT_RULE::LIMIT_UNSET, place,
                          "nothing is said of the " + name +
                              ": its counters and components are missing");
        }
        return;
    }
    check_counters(type, name, place, messages);
    check_components(type, name, place, messages);
    check_defaults(type, messages);
    check_orders(type, has_table, messages);
}

void check_presets(const RECORD_VIEW& type, const TABLE_BANDWIDTHS& table, double fastest_pfd,
                   LINT_MESSAGES* messages)
{
    if (!table.are_given()) {
        return;
    }
    const std::optional<double> low = type.number(keyword("bandwidth_low"));
    const std::optional<double> high = type.number(keyword("bandwidth_high"));
    const bool misses_low = low && *low < table.m_min;
    const bool misses_high = high && *high > table.m_max;
    if (misses_low) {
        messages->add(LINT_RULE::PRESET_OUTSIDE_TABLE, type.find(keyword("bandwidth_low"))->m_place,
                      "'bandwidth_low' lies below every typical bandwidth of the table");
    }
    if (misses_high) {
        messages->add(LINT_RULE::PRESET_OUTSIDE_TABLE,
                      type.find(keyword("bandwidth_high"))->m_place,
                      "'bandwidth_high' lies above every typical bandwidth of the table");
    }
    if (low && high && !misses_low && !misses_high && *low <= *high && !table.m_has_medium) {
        messages->add(LINT_RULE::PRESET_OUTSIDE_TABLE, type.find(keyword("bandwidth_low"))->m_place,
                      "no typical bandwidth of the table lies between 'bandwidth_low' and "
                      "'bandwidth_high', where those of medium requests should");
    }
    const std::size_t rule = keyword("bandwidth_pfd_min_frequency_multiplier");
    const std::optional<double> multiplier = type.number(rule);
    if (multiplier && fastest_pfd > 0.0 &&
        table.m_fast_min * *multiplier > PS_PER_SECOND / fastest_pfd) {
        messages->add(LINT_RULE::MULTIPLIER_TOO_LARGE, type.find(rule)->m_place,
                      "every row is beyond the PFD rule: " + short_number(*multiplier) +
                          " times the lowest bandwidth lies above the fastest PFD");
    }
}
