#include "app/json/answer.h"

#include <limits>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

// Any int: whether a counter can have it is for the rules to say.
int read_any(const PLACE& object, const char* key)
{
    return object.require(key).read_int(SMALLEST, LARGEST);
}

double read_component(const PLACE& object, const char* key)
{
    return object.require(key).read_number();
}

advice::OUTPUT_COUNTER read_counter(const PLACE& object)
{
    advice::OUTPUT_COUNTER counter;
    counter.m_high = read_any(object, "high");
    counter.m_low = read_any(object, "low");
    counter.m_even = object.require("even").read_bool();
    counter.m_bypass = object.require("bypass").read_bool();
    counter.m_initial = read_any(object, "initial");
    counter.m_vco_tap = read_any(object, "vco_tap");
    const PLACE source = object.require("fed_by");
    if (!source.is_null()) {
        counter.m_fed_by = source.read_int(1, PLL_MAX_TAPS) - 1;
    }
    counter.m_delay = read_any(object, "delay_chain_ps");
    return counter;
}

void read_loop(const PLACE& loop, std::size_t outputs, advice::SETTING* setting)
{
    setting->m_m.m_count = read_any(loop, "m");
    setting->m_m.m_initial = read_any(loop, "m_initial");
    setting->m_m.m_vco_tap = read_any(loop, "m_vco_tap");
    setting->m_m.m_delay = read_any(loop, "m_delay_ps");
    setting->m_n.m_count = read_any(loop, "n");
    setting->m_n.m_initial = read_any(loop, "n_initial");
    setting->m_n.m_vco_tap = read_any(loop, "n_vco_tap");
    setting->m_n.m_delay = read_any(loop, "n_delay_ps");
    setting->m_post_scale = read_any(loop, "post_scale");
    setting->m_feedback = loop.require("feedback").read_feedback(static_cast<int>(outputs)) - 1;
}

void read_spread(const PLACE& spread, advice::SETTING* setting)
{
    if (!spread.is_null()) {
        setting->m_m.m_spread_count = read_any(spread, "m");
        setting->m_n.m_spread_count = read_any(spread, "n");
        setting->m_spread_cycles = read_any(spread, "cycles");
    }
}

}  // namespace

advice::SETTING read_json_setting(const PLACE& answer, std::size_t outputs)
{
    advice::SETTING setting;
    read_loop(answer.require("pll"), outputs, &setting);
    const auto add = [&setting](const PLACE& counter) {
        setting.m_counters.push_back(read_counter(counter));
    };
    answer.require("outputs").read_list(add);
    answer.require("cascades").read_list(add);
    const PLACE filter = answer.require("loop_filter");
    setting.m_components.m_i = read_component(filter, "i_ua");
    setting.m_components.m_r = read_component(filter, "r_ohm");
    setting.m_components.m_c_fixed = read_component(filter, "c_pf");
    setting.m_components.m_c_high = read_component(filter, "c_high_pf");
    read_spread(answer.require("spread"), &setting);
    return setting;
}
