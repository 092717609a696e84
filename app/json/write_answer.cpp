#include "app/json/answer.h"
#include "app/json/numbers.h"
#include "app/json/request.h"

#include "advice/verdict/achieved.h"

#include <algorithm>

namespace {

using advice::RATIONAL;

constexpr int PS_PER_SECOND_EXPONENT = 12;
constexpr double PPB = 1e9;

int count_counters(const PLL& pll)
{
    return std::clamp(pll.m_total_taps_count, 0, PLL_MAX_TAPS);
}

// Counters are numbered from 1, outputs first; the VCO has no number.
JSON write_source(const PLL_OUTPUT_TAP& tap)
{
    return tap.m_previous_tap < 0 ? JSON(nullptr) : JSON(tap.m_previous_tap + 1);
}

void add_counter(const PLL_OUTPUT_TAP& tap, JSON* object)
{
    (*object)["high"] = tap.m_high;
    (*object)["low"] = tap.m_low;
    (*object)["even"] = tap.m_even;
    (*object)["bypass"] = tap.m_bypass;
    (*object)["initial"] = tap.m_initial;
    (*object)["vco_tap"] = tap.m_vco_tap;
    (*object)["fed_by"] = write_source(tap);
}

JSON list_misses(const advice::VERDICT& verdict, int output)
{
    JSON missed = JSON::array();
    for (const advice::JUDGED_WISH& wish : verdict.m_wishes) {
        if (wish.m_output == output && !wish.m_kept) {
            missed.push_back(advice::name_of(wish.m_kind));
        }
    }
    return missed;
}

double error_in_ppb(const RATIONAL& asked, const RATIONAL& achieved)
{
    const RATIONAL error = achieved / asked - RATIONAL(1);
    return (error.is_valid() ? error.to_double() : achieved.to_double() / asked.to_double() - 1.0) *
           PPB;
}

JSON write_output(const ANSWER_PARTS& parts, const advice::ACHIEVED& achieved, std::size_t index)
{
    const advice::REQUEST& request = parts.m_request;
    const advice::ACHIEVED_OUTPUT& output = achieved.m_output[index];
    const PLL_OUTPUT_TAP& tap = parts.m_pll.m_taps[index];
    JSON object = JSON::object();
    object["name"] = json_name_of_output(request, index);
    object["frequency_hz"] = write_product(request.m_input.m_frequency, output.m_ratio);
    object["ratio"] = write_fraction(output.m_ratio);
    object["error_ppb"] =
        write_double(error_in_ppb(request.m_outputs[index].m_ratio, output.m_ratio));
    object["phase_deg"] = write_double(output.m_phase.to_double());
    object["duty_percent"] = write_double(output.m_duty.to_double());
    add_counter(tap, &object);
    object["delay_ps"] = parts.m_achieved.m_taps[index].m_delay;
    object["delay_chain_ps"] = tap.m_delay;
    object["missed"] = list_misses(parts.m_verdict, static_cast<int>(index));
    return object;
}

JSON write_cascades(const ANSWER_PARTS& parts)
{
    JSON cascades = JSON::array();
    const int outputs = static_cast<int>(parts.m_request.m_outputs.size());
    for (int i = outputs; parts.m_verdict.m_has_setting && i < count_counters(parts.m_pll); ++i) {
        JSON object = JSON::object();
        object["number"] = i + 1;
        add_counter(parts.m_pll.m_taps[i], &object);
        object["delay_chain_ps"] = parts.m_pll.m_taps[i].m_delay;
        cascades.push_back(std::move(object));
    }
    return cascades;
}

// The unit of a wish's values; none for a flag or a plain number.
const char* unit_of(advice::WISH_KIND kind)
{
    switch (kind) {
    case advice::WISH_KIND::FREQUENCY:
    case advice::WISH_KIND::BANDWIDTH:
    case advice::WISH_KIND::SPREAD_RATE:
        return "hz";
    case advice::WISH_KIND::PHASE:
        return "deg";
    case advice::WISH_KIND::DUTY:
    case advice::WISH_KIND::SPREAD:
        return "percent";
    case advice::WISH_KIND::DELAY:
        return "ps";
    case advice::WISH_KIND::EVEN:
    case advice::WISH_KIND::EVEN_COUNT:
    case advice::WISH_KIND::VCO_RATIO:
    case advice::WISH_KIND::KIND_COUNT:
        break;
    }
    return nullptr;
}

// Misses of frequencies and of the loop are parts of what was asked for.
bool is_relative(advice::WISH_KIND kind)
{
    return kind == advice::WISH_KIND::FREQUENCY || kind == advice::WISH_KIND::BANDWIDTH ||
           kind == advice::WISH_KIND::SPREAD || kind == advice::WISH_KIND::SPREAD_RATE ||
           kind == advice::WISH_KIND::VCO_RATIO;
}

JSON write_wish(const advice::JUDGED_WISH& wish)
{
    const double scale = is_relative(wish.m_kind) ? PPB : 1.0;
    const char* const unit = unit_of(wish.m_kind);
    JSON object = JSON::object();
    object["name"] = advice::name_of(wish.m_kind);
    object["output"] = wish.m_output == advice::NO_OUTPUT ? JSON(nullptr) : JSON(wish.m_output + 1);
    object["unit"] = unit == nullptr ? JSON(nullptr) : JSON(unit);
    object["asked"] = write_double(wish.m_asked.m_value);
    object["achieved"] = write_double(wish.m_achieved.m_value);
    object["miss"] = write_double(wish.m_miss.m_value * scale);
    object["tolerance"] = write_double(wish.m_tolerance.to_double() * scale);
    object["miss_unit"] = is_relative(wish.m_kind) ? JSON("ppb") : object["unit"];
    object["kept"] = wish.m_kept;
    return object;
}

JSON write_wishes(const advice::VERDICT& verdict)
{
    JSON wishes = JSON::array();
    for (const advice::JUDGED_WISH& wish : verdict.m_wishes) {
        wishes.push_back(write_wish(wish));
    }
    return wishes;
}

JSON write_limit(const advice::JUDGED_LIMIT& judged)
{
    const advice::LIMIT& limit = *judged.m_limit;
    JSON object = JSON::object();
    object["name"] = limit.name();
    object["unit"] = advice::name_of_unit(advice::facts_of(limit.m_kind).m_unit);
    object["limit"] = write_double(limit.m_value.m_value);
    if (!limit.m_legal.empty()) {
        object["legal"] = limit.m_legal;
    }
    object["value"] = write_double(judged.m_value.m_value);
    object["margin_percent"] = write_double(judged.m_margin_percent);
    object["source"] = limit.m_source;
    object["output"] =
        judged.m_output == advice::NO_OUTPUT ? JSON(nullptr) : JSON(judged.m_output + 1);
    object["input"] = judged.m_input;
    object["kept"] = judged.m_kept;
    object["slack_used"] = judged.m_slack_used;
    object["binding"] = !judged.m_is_note;
    return object;
}

// A period in ps, of which the library knows none when it is 0.
JSON write_frequency_of(int period)
{
    return period > 0
               ? write_fraction(RATIONAL(advice::power_of_ten(PS_PER_SECOND_EXPONENT), period))
               : JSON(nullptr);
}

// The library's mark for what it does not know is negative, or 0.
JSON write_known(double value)
{
    return value > 0.0 ? write_double(value) : JSON(nullptr);
}

JSON write_loop_filter(const ANSWER_PARTS& parts)
{
    if (!parts.m_verdict.m_has_setting) {
        return nullptr;
    }
    const PLL_PROP& achieved = parts.m_achieved;
    JSON object = JSON::object();
    object["bandwidth_hz"] = write_known(achieved.m_bandwidth);
    object["bandwidth_min_hz"] = write_known(achieved.m_bandwidth_min);
    object["bandwidth_max_hz"] = write_known(achieved.m_bandwidth_max);
    object["zero_hz"] = write_known(achieved.m_f_zero);
    object["pole_hz"] = write_known(achieved.m_f_pole);
    object["phase_margin_deg"] = write_double(advice::find_phase_margin(achieved));
    object["i_ua"] = write_double(parts.m_pll.m_i);
    object["r_ohm"] = write_double(parts.m_pll.m_r);
    object["c_pf"] = write_double(parts.m_pll.m_c_fixed);
    object["c_high_pf"] = write_double(parts.m_pll.m_c_high);
    return object;
}

JSON write_spread(const ANSWER_PARTS& parts, const advice::ACHIEVED& achieved)
{
    const PLL& pll = parts.m_pll;
    if (!parts.m_verdict.m_has_setting || pll.m_ss_cycles == 0) {
        return nullptr;
    }
    JSON object = JSON::object();
    object["down_percent"] = write_double(achieved.m_spread.to_double());
    object["rate_hz"] = write_fraction(achieved.m_spread_rate);
    object["m"] = pll.m_m.m_ss_count;
    object["n"] = pll.m_n.m_ss_count;
    object["cycles"] = pll.m_ss_cycles;
    return object;
}

JSON write_lock_range(const ANSWER_PARTS& parts)
{
    if (!parts.m_verdict.m_has_setting) {
        return nullptr;
    }
    JSON object = JSON::object();
    object["min_hz"] = write_frequency_of(parts.m_achieved.m_lock_max_period);
    object["max_hz"] = write_frequency_of(parts.m_achieved.m_lock_min_period);
    return object;
}

JSON write_warnings(const ANSWER_PARTS& parts)
{
    JSON warnings = JSON::array();
    for (const advice::WARNING& warning : parts.m_verdict.m_warnings) {
        warnings.push_back(advice::to_text(parts.m_request, parts.m_verdict, warning));
    }
    return warnings;
}

JSON write_offers(const std::vector<JSON_OFFER>& offers)
{
    JSON list = JSON::array();
    for (const JSON_OFFER& offer : offers) {
        JSON object = JSON::object();
        object["text"] = offer.m_text;
        object["command"] = offer.m_command;
        list.push_back(std::move(object));
    }
    return list;
}

}  // namespace

ANSWER_PARTS parts_of(const advice::REQUEST& request, const DEVICE_WORDS& device,
                      const advice::ANSWER& answer)
{
    return {request,
            device,
            answer.get_pll(),
            answer.get_achieved(),
            answer.get_verdict(),
            answer.is_met(),
            answer.is_met_by_library() ? PLL::PLL_NO_ERROR : answer.get_pll().m_error};
}

JSON write_json_error(PLL::PLL_ERROR_TYPE error)
{
    JSON object = JSON::object();
    object["value"] = static_cast<int>(error);
    object["text"] = PLL::get_error_string(error);
    return object;
}

JSON write_json_loop(const ANSWER_PARTS& parts)
{
    if (!parts.m_verdict.m_has_setting) {
        return nullptr;
    }
    const PLL& pll = parts.m_pll;
    const RATIONAL input = parts.m_request.m_input.m_frequency;
    const advice::ACHIEVED achieved = advice::find_achieved(parts.m_request, pll);
    JSON object = JSON::object();
    object["n"] = pll.get_n();
    object["m"] = pll.get_m();
    object["post_scale"] = pll.m_vco_post_scale;
    object["vco_hz"] = write_product(input, achieved.m_vco_ratio);
    object["pfd_hz"] = write_product(input, RATIONAL(1, pll.get_n()));
    object["feedback"] = pll.m_feedback_tap < 0 ? JSON("m") : JSON(pll.m_feedback_tap + 1);
    object["vco_ratio"] = write_fraction(achieved.m_vco_ratio);
    object["m_initial"] = pll.m_m.m_initial;
    object["m_vco_tap"] = pll.m_m.m_vco_tap;
    object["m_delay_ps"] = pll.m_m.m_delay;
    object["n_initial"] = pll.m_n.m_initial;
    object["n_vco_tap"] = pll.m_n.m_vco_tap;
    object["n_delay_ps"] = pll.m_n.m_delay;
    return object;
}

JSON write_json_outputs(const ANSWER_PARTS& parts)
{
    JSON outputs = JSON::array();
    if (parts.m_verdict.m_has_setting) {
        const advice::ACHIEVED achieved = advice::find_achieved(parts.m_request, parts.m_pll);
        for (std::size_t i = 0; i < static_cast<std::size_t>(achieved.m_outputs); ++i) {
            outputs.push_back(write_output(parts, achieved, i));
        }
    }
    return outputs;
}

JSON write_json_limits(const ANSWER_PARTS& parts)
{
    JSON limits = JSON::array();
    for (const advice::JUDGED_LIMIT& judged : parts.m_verdict.m_limits) {
        limits.push_back(write_limit(judged));
    }
    return limits;
}

JSON write_json_answer(const ANSWER_PARTS& parts, const std::vector<std::string>& reasons,
                       const std::vector<JSON_OFFER>& offers)
{
    JSON object = JSON::object();
    object["schema_version"] = SCHEMA_VERSION;
    object["command"] = "synth";
    object["met"] = parts.m_met;
    object["exit_status"] = parts.m_met ? 0 : 1;
    object["request"] = write_json_request(parts.m_request, parts.m_device);
    object["error"] = write_json_error(parts.m_error);
    object["pll"] = write_json_loop(parts);
    object["outputs"] = write_json_outputs(parts);
    object["cascades"] = write_cascades(parts);
    object["loop_filter"] = write_loop_filter(parts);
    object["spread"] = write_spread(parts, advice::find_achieved(parts.m_request, parts.m_pll));
    object["lock_range"] = write_lock_range(parts);
    object["wishes"] = write_wishes(parts.m_verdict);
    object["limits"] = write_json_limits(parts);
    object["warnings"] = write_warnings(parts);
    object["reasons"] = reasons;
    object["offers"] = write_offers(offers);
    return object;
}
