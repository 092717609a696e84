#include "app/lint/devices.h"

#include "app/devices/device.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

namespace {

// What a range is of.
struct QUANTITY
{
    const char* m_noun;  // behind its name
    const char* m_unit;
};

constexpr QUANTITY PERIOD = {" period", " ps"};
constexpr QUANTITY SPREAD = {"", " thousandths"};

// A range of a part, the keywords that give its ends, and which of them a synthesis needs.
struct PART_RANGE
{
    const char* m_name;
    QUANTITY m_quantity;
    int PLL_TIMING_INFO::*m_min;
    int PLL_TIMING_INFO::*m_max;
    const char* m_min_keyword;
    const char* m_max_keyword;
    bool m_needs_min;
    bool m_needs_max;
};

// clang-format off
const PART_RANGE PART_RANGES[] = {
    {"PFD", PERIOD, &PLL_TIMING_INFO::m_pfd_min, &PLL_TIMING_INFO::m_pfd_max, "pfd_min", "pfd_max", true, true},
    {"input", PERIOD, &PLL_TIMING_INFO::m_input_min, &PLL_TIMING_INFO::m_input_max, "input_min", "input_max", true, false},
    {"output", PERIOD, &PLL_TIMING_INFO::m_output_min, &PLL_TIMING_INFO::m_output_max, "output_min", "output_max", false, false},
    {"external output", PERIOD, &PLL_TIMING_INFO::m_external_output_min, &PLL_TIMING_INFO::m_external_output_max,
     "external_output_min", "external_output_max", false, false},
    {"spread", SPREAD, &PLL_TIMING_INFO::m_ss_spread_min, &PLL_TIMING_INFO::m_ss_spread_max, "ss_spread_min", "ss_spread_max", false, false},
};

// Numbers of a PLL type that must be at least 1.
struct NEEDED_NUMBER
{
    const char* m_keyword;
    int PLL_BASIC_INFO::*m_field;
    DEVICE_FINDING m_finding;
};

const NEEDED_NUMBER NEEDED_NUMBERS[] = {
    {"m_counter_max", &PLL_BASIC_INFO::m_m_counter_max, DEVICE_FINDING::LIMIT_UNSET},
    {"n_counter_max", &PLL_BASIC_INFO::m_n_counter_max, DEVICE_FINDING::LIMIT_UNSET},
    {"number_of_output_counters", &PLL_BASIC_INFO::m_number_of_output_counters, DEVICE_FINDING::LIMIT_UNSET},
    {"vco_post_scale_counter_max", &PLL_BASIC_INFO::m_vco_post_scale_counter_max, DEVICE_FINDING::LIMIT_UNSET},
    {"charge_pump_current_default", &PLL_BASIC_INFO::m_charge_pump_current_default, DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING},
    {"loop_filter_resistor_default", &PLL_BASIC_INFO::m_loop_filter_resistor_default, DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING},
    {"loop_filter_resistor", &PLL_BASIC_INFO::m_number_of_loop_filter_resistors, DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING},
    {"loop_filter_capacitor_default", &PLL_BASIC_INFO::m_loop_filter_capacitor_default, DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING},
    {"loop_filter_fixed_capacitor", &PLL_BASIC_INFO::m_loop_filter_fixed_capacitor, DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING},
};

// Lower and upper limits of a PLL type; below 1 they are not given.
struct NUMBER_RANGE
{
    int PLL_BASIC_INFO::*m_min;
    int PLL_BASIC_INFO::*m_max;
    const char* m_min_keyword;
    const char* m_max_keyword;
};

const NUMBER_RANGE NUMBER_RANGES[] = {
    {&PLL_BASIC_INFO::m_m_counter_preferred_min, &PLL_BASIC_INFO::m_m_counter_preferred_max, "m_counter_preferred_min", "m_counter_preferred_max"},
    {&PLL_BASIC_INFO::m_gate_lock_counter_min, &PLL_BASIC_INFO::m_gate_lock_counter_max, "gate_lock_counter_min", "gate_lock_counter_max"},
    {&PLL_BASIC_INFO::m_switch_over_counter_min, &PLL_BASIC_INFO::m_switch_over_counter_max, "switch_over_counter_min", "switch_over_counter_max"},
    {&PLL_BASIC_INFO::m_feedback_duty_cycle_min, &PLL_BASIC_INFO::m_feedback_duty_cycle_max, "feedback_duty_cycle_min", "feedback_duty_cycle_max"},
};

struct REAL_RANGE
{
    double PLL_BASIC_INFO::*m_min;
    double PLL_BASIC_INFO::*m_max;
    const char* m_min_keyword;
    const char* m_max_keyword;
};

const REAL_RANGE REAL_RANGES[] = {
    {&PLL_BASIC_INFO::m_ss_down_spread_min, &PLL_BASIC_INFO::m_ss_down_spread_max, "ss_down_spread_min", "ss_down_spread_max"},
    {&PLL_BASIC_INFO::m_bandwidth_low, &PLL_BASIC_INFO::m_bandwidth_medium, "bandwidth_low", "bandwidth_medium"},
    {&PLL_BASIC_INFO::m_bandwidth_medium, &PLL_BASIC_INFO::m_bandwidth_high, "bandwidth_medium", "bandwidth_high"},
    {&PLL_BASIC_INFO::m_bandwidth_low, &PLL_BASIC_INFO::m_bandwidth_high, "bandwidth_low", "bandwidth_high"},
};

struct PRESET
{
    const char* m_keyword;
    double PLL_BASIC_INFO::*m_field;
    bool m_is_upper;  // rows at it or below it serve
    bool m_is_lower;  // rows at it or above it serve
};

const PRESET PRESETS[] = {
    {"bandwidth_low", &PLL_BASIC_INFO::m_bandwidth_low, true, false},
    {"bandwidth_medium", &PLL_BASIC_INFO::m_bandwidth_medium, true, true},
    {"bandwidth_high", &PLL_BASIC_INFO::m_bandwidth_high, false, true},
};
// clang-format on

std::string quoted(const std::string& text)
{
    return "'" + text + "'";
}

// What is checked, and where the messages go.
struct CHECK
{
    const LINT_OBSERVER& m_observer;
    LINT_MESSAGES* m_messages;

    void add(DEVICE_FINDING finding, const LINT_PLACE& place, const std::string& text) const
    {
        m_messages->add(rule_of(finding), place, text);
    }
};

// ---- A part, by the limits that its initialisation computes

class PART_CHECK
{
public:
    PART_CHECK(const CHECK& check, const LINT_SUBJECT& subject, const PLL_TIMING_INFO& timing)
        : m_check(check), m_subject(subject), m_timing(timing)
    {
    }

    void run(int post_scales) const
    {
        for (int p = 1; p <= post_scales; ++p) {
            const std::string behind = p == 1 ? "" : " behind a post-scale of " + std::to_string(p);
            check_range("VCO" + behind, m_timing.get_vco_min_period(p),
                        m_timing.get_vco_max_period(p), VCO_ENDS);
            if (m_timing.get_vco_gain(p) < 1) {
                m_check.add(DEVICE_FINDING::LOOP_FILTER_VALUE_MISSING, place({"vco_gain"}),
                            "'vco_gain'" + behind + " is never set");
            }
        }
        for (const PART_RANGE& range : PART_RANGES) {
            const ENDS ends = {range.m_min_keyword, range.m_max_keyword, range.m_needs_min,
                               range.m_needs_max, range.m_quantity};
            check_range(range.m_name, m_timing.*range.m_min, m_timing.*range.m_max, ends);
        }
    }

private:
    struct ENDS
    {
        const char* m_min;
        const char* m_max;
        bool m_needs_min;
        bool m_needs_max;
        QUANTITY m_quantity;
    };
    static constexpr ENDS VCO_ENDS = {"vco_min", "vco_max", true, true, PERIOD};

    LINT_PLACE place(std::initializer_list<const char*> keywords) const
    {
        return m_check.m_observer.place_of(m_subject, keywords);
    }

    void check_range(const std::string& name, int min, int max, const ENDS& ends) const
    {
        if (ends.m_needs_min && !is_given(min)) {
            tell_of_missing(name, ends.m_min);
        }
        if (ends.m_needs_max && !is_given(max)) {
            tell_of_missing(name, ends.m_max);
        }
        if (is_given(min) && is_given(max) && min > max) {
            const std::string min_scaled = std::string(ends.m_min) + "_post_scale";
            const std::string max_scaled = std::string(ends.m_max) + "_post_scale";
            m_check.add(DEVICE_FINDING::LIMITS_CROSSED,
                        place({ends.m_min, ends.m_max, min_scaled.c_str(), max_scaled.c_str()}),
                        "no " + name + ends.m_quantity.m_noun + " is legal: the least is " +
                            std::to_string(min) + ends.m_quantity.m_unit + ", the largest " +
                            std::to_string(max) + ends.m_quantity.m_unit);
        }
    }

    void tell_of_missing(const std::string& name, const char* keyword) const
    {
        m_check.add(DEVICE_FINDING::LIMIT_UNSET, m_check.m_observer.place_of(m_subject),
                    "the " + name + " has no limit " + quoted(keyword) + ": nothing is legal");
    }

    const CHECK& m_check;
    const LINT_SUBJECT& m_subject;
    const PLL_TIMING_INFO& m_timing;
};

void check_part(PLL_MANAGER* manager, const PLL_FAMILY_INFO& family, const PLL_PART_INFO& part,
                const CHECK& check)
{
    const LINT_SUBJECT subject(&family, part.m_type, &part);
    PLL_QUERY query;
    query.m_family = family.m_name;
    query.m_type = part.m_type;
    query.m_part = part.m_name;
    query.m_speed_grade = part.m_speed_grade;
    PLL_INFO info;
    if (!manager->init_pll_info(&info, query)) {
        check.add(DEVICE_FINDING::INIT_FAILS, check.m_observer.place_of(subject),
                  "part " + quoted(part.m_name) + " cannot be initialised");
        return;
    }
    const int post_scales =
        std::clamp(info.m_basic_info->m_vco_post_scale_counter_max, 1, int{PLL_VCO_POST_SCALE_MAX});
    PART_CHECK(check, subject, info.m_timing_info).run(post_scales);
}

// ---- A PLL type

void check_numbers(const PLL_BASIC_INFO& basic, const LINT_SUBJECT& subject, const CHECK& check)
{
    for (const NEEDED_NUMBER& number : NEEDED_NUMBERS) {
        if (basic.*number.m_field < 1) {
            check.add(number.m_finding, check.m_observer.place_of(subject, {number.m_keyword}),
                      quoted(number.m_keyword) + " of the " + name_of_type(subject.m_type) +
                          " is never set, or 0");
        }
    }
    if (basic.m_number_of_charge_pump_currents < 1) {
        check.add(
            DEVICE_FINDING::NO_CHARGE_PUMP_CURRENT,
            check.m_observer.place_of(subject, {"charge_pump_current", "charge_pump_current_bit"}),
            std::string("the ") + name_of_type(subject.m_type) +
                " has no charge-pump current; see 'charge_pump_current'");
    }
    if (!basic.is_output_counter_high_low()) {
        check.add(DEVICE_FINDING::NO_HIGH_LOW_MAX,
                  check.m_observer.place_of(subject,
                                            {"output_counter_max", "output_counter_high_low_max"}),
                  std::string("the output counters of the ") + name_of_type(subject.m_type) +
                      " count nothing: 'output_counter_high_low_max' is 0, which is what "
                      "'output_counter_max' leaves");
    }
}

template <class RANGE>
void check_range(const PLL_BASIC_INFO& basic, const RANGE& range, const LINT_SUBJECT& subject,
                 const CHECK& check)
{
    const auto min = basic.*range.m_min;
    const auto max = basic.*range.m_max;
    if (min > 0 && max > 0 && min > max) {
        check.add(DEVICE_FINDING::LIMITS_CROSSED,
                  check.m_observer.place_of(subject, {range.m_min_keyword, range.m_max_keyword}),
                  quoted(range.m_min_keyword) + " lies above " + quoted(range.m_max_keyword));
    }
}

// The typical bandwidths of a table that gives them; crossed when it gives none.
struct BANDWIDTHS
{
    double m_min = std::numeric_limits<double>::max();
    double m_max = 0.0;
};

BANDWIDTHS table_bandwidths(const PLL_BASIC_INFO& basic)
{
    BANDWIDTHS bandwidths;
    for (int m = 1; m < basic.m_bandwidth_settings_table_size; ++m) {
        for (const PLL_BANDWIDTH_SETTING* row : basic.m_bandwidth_settings_table[m].m_settings) {
            if (row->m_typical_bandwidth > 0.0) {
                bandwidths.m_min = std::min(bandwidths.m_min, row->m_typical_bandwidth);
                bandwidths.m_max = std::max(bandwidths.m_max, row->m_typical_bandwidth);
            }
        }
    }
    return bandwidths;
}

void check_presets(const PLL_BASIC_INFO& basic, const LINT_SUBJECT& subject, const CHECK& check)
{
    const BANDWIDTHS bandwidths = table_bandwidths(basic);
    if (bandwidths.m_min > bandwidths.m_max) {
        return;
    }
    for (const PRESET& preset : PRESETS) {
        const double value = basic.*preset.m_field;
        const bool is_too_low = preset.m_is_upper && value < bandwidths.m_min;
        const bool is_too_high = preset.m_is_lower && value > bandwidths.m_max;
        if (value > 0.0 && (is_too_low || is_too_high)) {
            check.add(DEVICE_FINDING::PRESET_OUTSIDE_TABLE,
                      check.m_observer.place_of(subject, {preset.m_keyword}),
                      quoted(preset.m_keyword) + " lies " + (is_too_low ? "below" : "above") +
                          " every typical bandwidth of the table");
        }
    }
}

void check_row(const PLL_BASIC_INFO& basic, const LINT_ROW& row, const CHECK& check)
{
    const auto check_value = [&](const char* name, int value, int count, const int* values) {
        if (!pll_array_value_exists(value, values, count)) {
            check.add(DEVICE_FINDING::ROW_OUTSIDE_LISTS, row.m_place,
                      quoted(name) + " does not list " + std::to_string(value));
        }
    };
    const PLL_BANDWIDTH_SETTING& setting = row.m_row;
    check_value("charge_pump_current", setting.m_charge_pump_current,
                basic.m_number_of_charge_pump_currents, basic.m_charge_pump_currents);
    check_value("loop_filter_resistor", setting.m_loop_filter_resistor,
                basic.m_number_of_loop_filter_resistors, basic.m_loop_filter_resistors);
    if (setting.m_loop_filter_capacitor >= 0) {
        check_value("loop_filter_capacitor", setting.m_loop_filter_capacitor,
                    basic.m_number_of_loop_filter_capacitors, basic.m_loop_filter_capacitors);
    }
}

void check_type(const PLL_FAMILY_INFO& family, PLL_TYPE_ENUM type, const CHECK& check)
{
    const LINT_SUBJECT subject(&family, type);
    const PLL_BASIC_INFO& basic = family.m_basic_infos[type];
    check_numbers(basic, subject, check);
    for (const NUMBER_RANGE& range : NUMBER_RANGES) {
        check_range(basic, range, subject, check);
    }
    for (const REAL_RANGE& range : REAL_RANGES) {
        check_range(basic, range, subject, check);
    }
    if (basic.m_bandwidth_settings_table != nullptr) {
        check_presets(basic, subject, check);
    }
    for (const LINT_ROW& row : check.m_observer.rows()) {
        if (row.m_family == &family && row.m_type == type) {
            check_row(basic, row, check);
        }
    }
}

bool has_part(const PLL_FAMILY_INFO& family, PLL_TYPE_ENUM type)
{
    return std::any_of(family.m_parts, family.m_parts + family.m_number_of_parts,
                       [type](const PLL_PART_INFO* part) { return part->m_type == type; });
}

}  // namespace

void check_family(PLL_MANAGER* manager, const PLL_FAMILY_INFO& family,
                  const LINT_OBSERVER& observer, LINT_MESSAGES* messages)
{
    const CHECK check = {observer, messages};
    bool is_known = family.m_number_of_parts > 0;
    for (int i = ENHANCED_PLL; i < PLL_TYPE_MAX; ++i) {
        const PLL_TYPE_ENUM type = static_cast<PLL_TYPE_ENUM>(i);
        const LINT_SUBJECT subject(&family, type);
        if (has_part(family, type)) {
            check_type(family, type, check);
        } else if (observer.subjects().count(subject) != 0) {
            is_known = true;
            check.add(DEVICE_FINDING::INIT_FAILS, observer.place_of(subject),
                      std::string("no ") + name_of_type(type) + " of family " +
                          quoted(family.m_name) + " can be initialised: no part has one");
        }
    }
    if (!is_known) {
        check.add(DEVICE_FINDING::INIT_FAILS,
                  observer.place_of_family(&family).value_or(LINT_PLACE()),
                  "family " + quoted(family.m_name) + " has no part: see 'family' and 'part'");
    }
    for (int i = 0; i < family.m_number_of_parts; ++i) {
        check_part(manager, family, *family.m_parts[i], check);
    }
    check_table_sizes(family, observer, messages);
}

void check_table_sizes(const PLL_FAMILY_INFO& family, const LINT_OBSERVER& observer,
                       LINT_MESSAGES* messages)
{
    for (int i = ENHANCED_PLL; i < PLL_TYPE_MAX; ++i) {
        const PLL_TYPE_ENUM type = static_cast<PLL_TYPE_ENUM>(i);
        const PLL_BASIC_INFO& basic = family.m_basic_infos[type];
        const std::int64_t largest_m =
            std::int64_t{basic.m_vco_post_scale_counter_max} * basic.m_m_counter_max;
        const int size = basic.m_bandwidth_settings_table_size;
        if (basic.m_bandwidth_settings_table == nullptr ||
            (largest_m > 0 && largest_m == size - 1)) {
            continue;
        }
        const LINT_SUBJECT subject(&family, type);
        messages->add(rule_of(DEVICE_FINDING::TABLE_SIZE),
                      observer.place_of(subject, {"bandwidth_settings_table_file"}),
                      "the bandwidth table is for M up to " + std::to_string(size - 1) +
                          ", the counters reach " + std::to_string(largest_m));
    }
}
