// The lists of limits. A database keeps frequencies as periods: the shortest is the highest.
#include "advice/limits/prototype.h"

#include <algorithm>

namespace advice {

namespace {

typedef PLL_BASIC_INFO BASIC;

// The smallest and largest spread that a part gives are thousandths.
constexpr int SPREAD_PARTS = 10;

struct BUILDER
{
    std::vector<LIMIT> m_list;
    LIMIT_ORIGIN m_origin;
    std::string m_source;

    LIMIT& add(LIMIT_KIND kind, const AMOUNT& value, const std::string& keyword)
    {
        LIMIT limit;
        limit.m_kind = kind;
        limit.m_value = value;
        limit.m_origin = m_origin;
        limit.m_keyword = m_origin == LIMIT_ORIGIN::DATABASE ? keyword : "";
        limit.m_source = m_source;
        m_list.push_back(limit);
        return m_list.back();
    }

    // Of a period in ps, which the library may widen by 1 ps; of no period nothing.
    void add_period(LIMIT_KIND kind, int period, const std::string& keyword, bool has_slack,
                    int post_scale = 0)
    {
        constexpr int PS_PER_SECOND_EXPONENT = 12;
        if (period == PLL_UNSET_MINIMUM || period == PLL_UNSET_MAXIMUM || period < 1) {
            return;
        }
        LIMIT& limit = add(kind, RATIONAL(power_of_ten(PS_PER_SECOND_EXPONENT), period), keyword);
        limit.m_has_slack = has_slack;
        limit.m_post_scale = post_scale;
    }

    // Of a count; one below 1 was not given.
    void add_count(LIMIT_KIND kind, int count, const char* keyword)
    {
        if (count >= 1 && count != PLL_UNSET_MAXIMUM) {
            add(kind, RATIONAL(count), keyword);
        }
    }
};

void add_vco(const PLL& pll, BUILDER* builder)
{
    for (int i = 1; i <= std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX); ++i) {
        const std::string suffix = "_post_scale " + std::to_string(i);
        builder->add_period(LIMIT_KIND::VCO_MIN, pll.get_vco_max_period(i), "vco_max" + suffix,
                            true, i);
        builder->add_period(LIMIT_KIND::VCO_MAX, pll.get_vco_min_period(i), "vco_min" + suffix,
                            true, i);
        const std::size_t before = builder->m_list.size();
        if (pll.m_ss_supported) {
            builder->add_period(LIMIT_KIND::VCO_MIN, pll.get_ss_vco_max_period(i),
                                "ss_vco_max" + suffix, true, i);
        }
        if (builder->m_list.size() > before) {
            builder->m_list.back().m_with_spread = true;
        }
    }
}

void add_loop(const PLL& pll, BUILDER* builder)
{
    add_vco(pll, builder);
    builder->add_period(LIMIT_KIND::PFD_MIN, pll.m_pfd_max_period, "pfd_max", true);
    builder->add_period(LIMIT_KIND::PFD_MAX, pll.m_pfd_min_period, "pfd_min", true);
    builder->add_period(LIMIT_KIND::INPUT_MAX, pll.m_fin_min_period, "input_min", true);
    builder->add_count(LIMIT_KIND::M_MAX, pll.m_m.m_max_count, "m_counter_max");
    builder->add_count(LIMIT_KIND::N_MAX, pll.m_n.m_max_count, "n_counter_max");
    builder->add_count(LIMIT_KIND::HALF_MAX, pll.m_taps[0].m_max_count,
                       "output_counter_high_low_max");
    builder->add_count(LIMIT_KIND::POST_SCALE_MAX, pll.m_max_vco_post_scale,
                       "vco_post_scale_counter_max");
    builder->add_count(LIMIT_KIND::OUTPUTS_MAX, pll.m_max_taps_count, "number_of_output_counters");
    builder->add_count(LIMIT_KIND::SPREAD_CYCLES_MAX, pll.m_ss_counter_max, "ss_counter_max");
}

// What the search does not look at.
void add_timing(const PLL_TIMING_INFO& timing, BUILDER* builder)
{
    builder->add_period(LIMIT_KIND::INPUT_MIN, timing.m_input_max, "input_max", false);
    builder->add_period(LIMIT_KIND::OUTPUT_MIN, timing.m_output_max, "output_max", false);
    builder->add_period(LIMIT_KIND::OUTPUT_MAX, timing.m_output_min, "output_min", false);
    builder->add_period(LIMIT_KIND::PIN_MIN, timing.m_external_output_max, "external_output_max",
                        false);
    builder->add_period(LIMIT_KIND::PIN_MAX, timing.m_external_output_min, "external_output_min",
                        false);
}

bool is_given(int limit)
{
    return limit != PLL_UNSET_MINIMUM && limit != PLL_UNSET_MAXIMUM;
}

// A part may give the spread in thousandths; else that of the PLL type holds, a part of one.
void add_spread(const PLL_TIMING_INFO& timing, const BASIC& basic, BUILDER* builder)
{
    constexpr double PERCENT = 100.0;
    if (is_given(timing.m_ss_spread_min)) {
        builder->add(LIMIT_KIND::SPREAD_MIN, RATIONAL(timing.m_ss_spread_min, SPREAD_PARTS),
                     "ss_spread_min");
    } else if (basic.m_ss_down_spread_min != 0.0) {
        builder->add(LIMIT_KIND::SPREAD_MIN, AMOUNT(basic.m_ss_down_spread_min * PERCENT),
                     "ss_down_spread_min");
    }
    if (is_given(timing.m_ss_spread_max)) {
        builder->add(LIMIT_KIND::SPREAD_MAX, RATIONAL(timing.m_ss_spread_max, SPREAD_PARTS),
                     "ss_spread_max");
    } else if (basic.m_ss_down_spread_max != 0.0) {
        builder->add(LIMIT_KIND::SPREAD_MAX, AMOUNT(basic.m_ss_down_spread_max * PERCENT),
                     "ss_down_spread_max");
    }
}

void add_counters(const BASIC& basic, BUILDER* builder)
{
    builder->add_count(LIMIT_KIND::K_MAX, basic.m_output_counter_max, "output_counter_max");
    builder->add_count(LIMIT_KIND::M_INITIAL_MAX, basic.m_m_counter_initial_max,
                       "m_counter_initial_max");
    builder->add_count(LIMIT_KIND::K_INITIAL_MAX, basic.m_output_counter_initial_max,
                       "output_counter_initial_max");
    builder->add_count(LIMIT_KIND::M_TAP_MAX, basic.m_m_counter_phase_tap_max,
                       "m_counter_phase_tap_max");
    builder->add_count(LIMIT_KIND::K_TAP_MAX, basic.m_output_counter_phase_tap_max,
                       "output_counter_phase_tap_max");
    builder->add_count(LIMIT_KIND::M_TAP_RESOLUTION, basic.m_m_counter_phase_tap_resolution,
                       "m_counter_phase_tap_resolution");
    builder->add_count(LIMIT_KIND::K_TAP_RESOLUTION, basic.m_output_counter_phase_tap_resolution,
                       "output_counter_phase_tap_resolution");
    builder->add_count(LIMIT_KIND::DELAY_MAX, basic.m_time_delay_max, "time_delay_max");
    builder->add_count(LIMIT_KIND::DELAY_RESOLUTION, basic.m_time_delay_resolution,
                       "time_delay_resolution");
    builder->add_count(LIMIT_KIND::FEEDBACK_DUTY_MIN, basic.m_feedback_duty_cycle_min,
                       "feedback_duty_cycle_min");
    builder->add_count(LIMIT_KIND::FEEDBACK_DUTY_MAX, basic.m_feedback_duty_cycle_max,
                       "feedback_duty_cycle_max");
}

// The library refuses a larger spread for every device.
void add_library(BUILDER* builder)
{
    constexpr int LARGEST_SPREAD_MILLIS = 600;  // thousandths of a percent
    constexpr int MILLIS = 1000;
    LIMIT& spread =
        builder->add(LIMIT_KIND::SPREAD_MAX, RATIONAL(LARGEST_SPREAD_MILLIS, MILLIS), "");
    spread.m_origin = LIMIT_ORIGIN::LIBRARY;
    spread.m_source = "library";
}

}  // namespace

std::vector<LIMIT> list_built_in(const PLL& pll)
{
    BUILDER builder{{}, LIMIT_ORIGIN::BUILT_IN, "built in"};
    add_loop(pll, &builder);
    add_library(&builder);
    return builder.m_list;
}

std::vector<LIMIT> list_device(const PLL& pll)
{
    BUILDER builder{{}, LIMIT_ORIGIN::DATABASE, "database"};
    add_loop(pll, &builder);
    add_timing(pll.m_info.m_timing_info, &builder);
    if (pll.m_info.has_info()) {
        add_spread(pll.m_info.m_timing_info, *pll.m_info.m_basic_info, &builder);
        add_counters(*pll.m_info.m_basic_info, &builder);
    }
    add_library(&builder);
    return builder.m_list;
}

}  // namespace advice
