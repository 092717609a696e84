#include "app/json/numbers.h"
#include "app/json/request.h"

namespace {

using advice::RATIONAL;

constexpr int PERCENT = 100;
constexpr int PPB = 1000000000;

JSON write_output_tolerances(const advice::OUTPUT_TOLERANCES& tolerances)
{
    JSON object = JSON::object();
    if (tolerances.m_frequency) {
        object["frequency_ppb"] = write_exact(*tolerances.m_frequency * RATIONAL(PPB));
    }
    if (tolerances.m_phase) {
        object["phase_deg"] = write_exact(*tolerances.m_phase);
    }
    if (tolerances.m_duty) {
        object["duty_percent"] = write_exact(*tolerances.m_duty);
    }
    if (tolerances.m_delay) {
        object["delay_ps"] = write_exact(*tolerances.m_delay);
    }
    return object;
}

// A number, as every program expects it, and beside it the fraction where the number is not it.
void add_number(const char* key, const char* exact_key, const RATIONAL& value, JSON* object)
{
    (*object)[key] = write_double(value.to_double());
    if (!is_exact_double(value)) {
        (*object)[exact_key] = write_fraction(value);
    }
}

void add_flag(const char* key, bool is_set, JSON* object)
{
    if (is_set) {
        (*object)[key] = true;
    }
}

JSON write_output(const advice::REQUEST& request, std::size_t index)
{
    const advice::OUTPUT_WISH& wish = request.m_outputs[index];
    JSON object = JSON::object();
    object["name"] = json_name_of_output(request, index);
    if (wish.m_frequency.is_valid()) {
        object["frequency_hz"] = write_fraction(wish.m_frequency);
    } else {
        object["ratio"] = write_fraction(wish.m_ratio);
    }
    add_number("phase_deg", "phase_exact_deg", wish.m_phase, &object);
    if (wish.m_phase_to != advice::NO_OUTPUT) {
        object["phase_to"] = wish.m_phase_to + 1;
    }
    if (!(wish.m_duty == advice::OUTPUT_WISH().m_duty)) {
        add_number("duty_percent", "duty_exact_percent", wish.m_duty, &object);
    }
    if (wish.m_delay != 0) {
        object["delay_ps"] = wish.m_delay;
    }
    add_flag("even", wish.m_even, &object);
    add_flag("even_count", wish.m_even_count, &object);
    add_flag("pin", wish.m_pin, &object);
    const JSON tolerances = write_output_tolerances(wish.m_tolerances);
    if (!tolerances.empty()) {
        object["tolerances"] = tolerances;
    }
    return object;
}

void add_tolerance(const char* key, const RATIONAL& value, const RATIONAL& usual, int unit,
                   JSON* object)
{
    if (!(value == usual)) {
        (*object)[key] = write_exact(value * RATIONAL(unit));
    }
}

JSON write_tolerances(const advice::TOLERANCES& tolerances)
{
    const advice::TOLERANCES usual;
    JSON object = JSON::object();
    add_tolerance("frequency_ppb", tolerances.m_frequency, usual.m_frequency, PPB, &object);
    add_tolerance("phase_deg", tolerances.m_phase, usual.m_phase, 1, &object);
    add_tolerance("duty_percent", tolerances.m_duty, usual.m_duty, 1, &object);
    add_tolerance("delay_ps", tolerances.m_delay, usual.m_delay, 1, &object);
    add_tolerance("bandwidth_percent", tolerances.m_bandwidth, usual.m_bandwidth, PERCENT, &object);
    add_tolerance("spread_percent", tolerances.m_spread, usual.m_spread, PERCENT, &object);
    add_tolerance("spread_rate_percent", tolerances.m_spread_rate, usual.m_spread_rate, PERCENT,
                  &object);
    return object;
}

JSON write_margins(const advice::MARGINS& margins)
{
    const advice::MARGINS usual;
    JSON object = JSON::object();
    if (margins.m_limit_percent != usual.m_limit_percent) {
        object["limit_percent"] = write_double(margins.m_limit_percent);
    }
    if (margins.m_phase_degrees != usual.m_phase_degrees) {
        object["phase_deg"] = write_double(margins.m_phase_degrees);
    }
    return object;
}

void add_frequencies(const std::string& name, const advice::RANGE& range, JSON* object)
{
    if (range.m_least) {
        (*object)[name + "_min_hz"] = write_fraction(*range.m_least);
    }
    if (range.m_most) {
        (*object)[name + "_max_hz"] = write_fraction(*range.m_most);
    }
}

void add_counts(const std::string& name, const advice::RANGE& range, JSON* object)
{
    if (range.m_least) {
        (*object)[name + "_min"] = range.m_least->numerator();
    }
    if (range.m_most) {
        (*object)[name + "_max"] = range.m_most->numerator();
    }
}

JSON write_limits(const advice::LIMITS_BY_HAND& limits)
{
    JSON object = JSON::object();
    add_frequencies("vco", limits.m_vco, &object);
    add_frequencies("pfd", limits.m_pfd, &object);
    add_frequencies("input", limits.m_input, &object);
    add_frequencies("output", limits.m_output, &object);
    add_counts("m", limits.m_m, &object);
    add_counts("n", limits.m_n, &object);
    add_counts("k", limits.m_k, &object);
    if (!limits.m_post_scales.empty()) {
        object["post_scales"] = limits.m_post_scales;
    }
    if (!limits.m_vco_taps.empty()) {
        object["vco_taps"] = limits.m_vco_taps;
    }
    return object;
}

void add_text(const char* key, const std::optional<std::string>& text, JSON* object)
{
    if (text) {
        (*object)[key] = *text;
    }
}

JSON write_device(const DEVICE_WORDS& words)
{
    JSON object = JSON::object();
    add_text("database", words.m_database, &object);
    add_text("family", words.m_family, &object);
    add_text("type", words.m_type, &object);
    add_text("part", words.m_part, &object);
    add_text("speed_grade", words.m_speed_grade, &object);
    if (!words.m_migrate.empty()) {
        object["migrate"] = words.m_migrate;
    }
    return object;
}

void add_loop(const advice::REQUEST& request, JSON* object)
{
    if (request.m_bandwidth_kind == advice::BANDWIDTH_KIND::CUSTOM) {
        (*object)["bandwidth_hz"] = write_fraction(request.m_bandwidth);
    } else if (request.m_bandwidth_kind != advice::BANDWIDTH_KIND::AUTO) {
        (*object)["bandwidth"] =
            BANDWIDTH_NAMES[static_cast<std::size_t>(request.m_bandwidth_kind)];
    }
    if (!request.m_spread.is_zero()) {
        (*object)["spread_percent"] = write_exact(request.m_spread * RATIONAL(PERCENT));
    }
    if (request.m_spread_rate) {
        (*object)["spread_rate_hz"] = write_fraction(*request.m_spread_rate);
    }
    if (request.m_vco_ratio) {
        (*object)["vco_ratio"] = write_fraction(*request.m_vco_ratio);
    }
    if (request.m_feedback != advice::NO_OUTPUT) {
        (*object)["feedback"] = request.m_feedback + 1;
    }
    add_flag("reconfig", request.m_reconfig, object);
    if (request.m_max_outputs) {
        (*object)["max_outputs"] = *request.m_max_outputs;
    }
}

void add_unless_empty(const char* key, JSON member, JSON* object)
{
    if (!member.empty()) {
        (*object)[key] = std::move(member);
    }
}

}  // namespace

std::string json_name_of_output(const advice::REQUEST& request, std::size_t output)
{
    const std::string& name = request.m_outputs[output].m_name;
    return name.empty() ? std::to_string(output + 1) : name;
}

JSON write_json_request(const advice::REQUEST& request, const DEVICE_WORDS& device)
{
    JSON object = JSON::object();
    object["input_hz"] = write_fraction(request.m_input.m_frequency);
    if (request.m_input2) {
        object["input2_hz"] = write_fraction(request.m_input2->m_frequency);
    }
    JSON outputs = JSON::array();
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        outputs.push_back(write_output(request, i));
    }
    object["outputs"] = std::move(outputs);
    add_loop(request, &object);
    add_unless_empty("tolerances", write_tolerances(request.m_tolerances), &object);
    add_unless_empty("margins", write_margins(request.m_margins), &object);
    add_unless_empty("limits", write_limits(request.m_by_hand), &object);
    add_unless_empty("device", write_device(device), &object);
    return object;
}
