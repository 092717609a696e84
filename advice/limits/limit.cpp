#include "advice/limits/limit.h"

#include <cstdio>
#include <iterator>

namespace advice {

namespace {

constexpr LIMIT_UNIT HZ = LIMIT_UNIT::HZ;
constexpr LIMIT_UNIT COUNT = LIMIT_UNIT::COUNT;
constexpr LIMIT_UNIT PS = LIMIT_UNIT::PS;
constexpr LIMIT_UNIT PERCENT = LIMIT_UNIT::PERCENT;
constexpr LIMIT_SIDE LEAST = LIMIT_SIDE::LEAST;
constexpr LIMIT_SIDE MOST = LIMIT_SIDE::MOST;

// In the order of LIMIT_KIND.
constexpr LIMIT_FACTS FACTS[] = {
    {"vco_min", "VCO", HZ, LEAST},
    {"vco_max", "VCO", HZ, MOST},
    {"pfd_min", "PFD", HZ, LEAST},
    {"pfd_max", "PFD", HZ, MOST},
    {"input_min", "input", HZ, LEAST},
    {"input_max", "input", HZ, MOST},
    {"output_min", "output", HZ, LEAST},
    {"output_max", "output", HZ, MOST},
    {"external_output_min", "output at a pin", HZ, LEAST},
    {"external_output_max", "output at a pin", HZ, MOST},
    {"m_min", "M", COUNT, LEAST},
    {"m_max", "M", COUNT, MOST},
    {"n_min", "N", COUNT, LEAST},
    {"n_max", "N", COUNT, MOST},
    {"k_min", "output counter", COUNT, LEAST},
    {"k_max", "output counter", COUNT, MOST},
    {"half_max", "half of an output counter", COUNT, MOST},
    {"post_scale_max", "VCO post-scale", COUNT, MOST},
    {"post_scales", "VCO post-scale", COUNT, LIMIT_SIDE::ONE_OF},
    {"m_initial_max", "start count of M", COUNT, MOST},
    {"k_initial_max", "start count of an output", COUNT, MOST},
    {"m_tap_max", "VCO phase tap of M", COUNT, MOST},
    {"k_tap_max", "VCO phase tap of an output", COUNT, MOST},
    {"k_tap_resolution", "VCO degrees of an output", COUNT, LIMIT_SIDE::MULTIPLE_OF},
    {"m_tap_resolution", "VCO degrees of M", COUNT, LIMIT_SIDE::MULTIPLE_OF},
    {"vco_taps", "VCO phase tap", COUNT, LIMIT_SIDE::ONE_OF},
    {"outputs_max", "number of output counters", COUNT, MOST},
    {"delay_max", "delay chain", PS, MOST},
    {"delay_resolution", "delay chain", PS, LIMIT_SIDE::MULTIPLE_OF},
    {"spread_min", "spread", PERCENT, LEAST},
    {"spread_max", "spread", PERCENT, MOST},
    {"spread_cycles_max", "input periods of a modulation period", COUNT, MOST},
    {"feedback_duty_min", "duty cycle of the feedback", PERCENT, LEAST},
    {"feedback_duty_max", "duty cycle of the feedback", PERCENT, MOST},
    {"m_legal", "M", COUNT, LIMIT_SIDE::ONE_OF},
    {"n_legal", "N", COUNT, LIMIT_SIDE::ONE_OF},
    {"k_legal", "output counter", COUNT, LIMIT_SIDE::ONE_OF},
    {"other", "rule of the device", COUNT, MOST},
};
static_assert(std::size(FACTS) == static_cast<std::size_t>(LIMIT_KIND::KIND_COUNT));

std::string write_number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

std::string write_value(const LIMIT& limit)
{
    constexpr double HZ_PER_MHZ = 1e6;
    const double value = limit.m_value.m_value;
    switch (facts_of(limit.m_kind).m_unit) {
    case LIMIT_UNIT::HZ:
        return write_number(value / HZ_PER_MHZ) + " MHz";
    case LIMIT_UNIT::PS:
        return write_number(value) + " ps";
    case LIMIT_UNIT::PERCENT:
        return write_number(value) + " %";
    case LIMIT_UNIT::COUNT:
        break;
    }
    return write_number(value);
}

std::string write_legal(const LIMIT& limit)
{
    std::string text = "one of";
    for (const int value : limit.m_legal) {
        text += " " + std::to_string(value);
    }
    return text;
}

}  // namespace

const LIMIT_FACTS& facts_of(LIMIT_KIND kind)
{
    return FACTS[static_cast<std::size_t>(kind) % std::size(FACTS)];
}

const char* name_of_unit(LIMIT_UNIT unit)
{
    switch (unit) {
    case LIMIT_UNIT::HZ:
        return "hz";
    case LIMIT_UNIT::COUNT:
        return "count";
    case LIMIT_UNIT::PS:
        return "ps";
    case LIMIT_UNIT::PERCENT:
        break;
    }
    return "percent";
}

const char* LIMIT::name() const
{
    return m_own_name.empty() ? facts_of(m_kind).m_name : m_own_name.c_str();
}

std::string to_text(const LIMIT& limit)
{
    std::string text = limit.name();
    if (limit.m_post_scale > 0) {
        text += " at post-scale " + std::to_string(limit.m_post_scale);
    }
    const bool is_list = facts_of(limit.m_kind).m_side == LIMIT_SIDE::ONE_OF;
    text += " = " + (is_list ? write_legal(limit) : write_value(limit));
    if (limit.m_with_spread) {
        text += " with spread";
    }
    return text + " (" + limit.m_source + ")";
}

}  // namespace advice
