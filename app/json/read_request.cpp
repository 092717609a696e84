#include "app/json/request.h"

#include "app/words/usage_error.h"

#include "pll_info.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace {

using advice::RATIONAL;

constexpr int PERCENT = 100;
constexpr int PPB = 1000000000;
constexpr int LAST_VCO_TAP = PLL_VCO_TAPS_NUMBER - 1;

// A part of one, given in a finer unit.
template <int UNIT>
RATIONAL read_part(const PLACE& value)
{
    const RATIONAL part = value.read_exact() / RATIONAL(UNIT);
    if (!(part >= RATIONAL())) {
        value.refuse("0 or more");
    }
    return part;
}

RATIONAL read_not_negative(const PLACE& value)
{
    return read_part<1>(value);
}

// A value that is none of a request's; `find_problem` finds the others.
RATIONAL read_positive(const PLACE& value)
{
    const RATIONAL fraction = value.read_fraction();
    if (!fraction.is_positive()) {
        value.refuse("more than 0");
    }
    return fraction;
}

const JSON_FIELD<advice::OUTPUT_TOLERANCES> OUTPUT_TOLERANCE_FIELDS[] = {
    {"frequency_ppb",
     [](const PLACE& value, advice::OUTPUT_TOLERANCES* to) {
         to->m_frequency = read_part<PPB>(value);
     }},
    {"phase_deg", [](const PLACE& value,
                     advice::OUTPUT_TOLERANCES* to) { to->m_phase = read_not_negative(value); }},
    {"duty_percent", [](const PLACE& value,
                        advice::OUTPUT_TOLERANCES* to) { to->m_duty = read_not_negative(value); }},
    {"delay_ps", [](const PLACE& value,
                    advice::OUTPUT_TOLERANCES* to) { to->m_delay = read_not_negative(value); }},
};

const JSON_FIELD<advice::TOLERANCES> TOLERANCE_FIELDS[] = {
    {"frequency_ppb",
     [](const PLACE& value, advice::TOLERANCES* to) { to->m_frequency = read_part<PPB>(value); }},
    {"phase_deg",
     [](const PLACE& value, advice::TOLERANCES* to) { to->m_phase = read_not_negative(value); }},
    {"duty_percent",
     [](const PLACE& value, advice::TOLERANCES* to) { to->m_duty = read_not_negative(value); }},
    {"delay_ps",
     [](const PLACE& value, advice::TOLERANCES* to) { to->m_delay = read_not_negative(value); }},
    {"bandwidth_percent",
     [](const PLACE& value, advice::TOLERANCES* to) {
         to->m_bandwidth = read_part<PERCENT>(value);
     }},
    {"spread_percent",
     [](const PLACE& value, advice::TOLERANCES* to) { to->m_spread = read_part<PERCENT>(value); }},
    {"spread_rate_percent",
     [](const PLACE& value, advice::TOLERANCES* to) {
         to->m_spread_rate = read_part<PERCENT>(value);
     }},
};

const JSON_FIELD<advice::MARGINS> MARGIN_FIELDS[] = {
    {"limit_percent",
     [](const PLACE& value, advice::MARGINS* to) { to->m_limit_percent = value.read_number(); }},
    {"phase_deg",
     [](const PLACE& value, advice::MARGINS* to) { to->m_phase_degrees = value.read_number(); }},
};

// An output while its clock is read: its ratio follows from its frequency, and the other way round.
struct OUTPUT_READING
{
    advice::OUTPUT_WISH m_wish;
    bool m_has_frequency = false;
    bool m_has_ratio = false;
};

const JSON_FIELD<OUTPUT_READING> OUTPUT_FIELDS[] = {
    {"name",
     [](const PLACE& value, OUTPUT_READING* output) { output->m_wish.m_name = value.read_text(); }},
    {"frequency_hz",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_frequency = read_positive(value);
         output->m_has_frequency = true;
     }},
    {"ratio",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_ratio = read_positive(value);
         output->m_has_ratio = true;
     }},
    {"phase_deg", [](const PLACE& value,
                     OUTPUT_READING* output) { output->m_wish.m_phase = value.read_exact(); }},
    {"phase_exact_deg",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_phase = value.read_fraction();
     }},
    {"phase_to",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_phase_to = value.read_int(1, PLL_MAX_TAPS) - 1;
     }},
    {"duty_percent", [](const PLACE& value,
                        OUTPUT_READING* output) { output->m_wish.m_duty = value.read_exact(); }},
    {"duty_exact_percent",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_duty = value.read_fraction();
     }},
    {"delay_ps",
     [](const PLACE& value, OUTPUT_READING* output) {
         output->m_wish.m_delay = value.read_int(-MAX_DELAY_CHAIN_VALUE, MAX_DELAY_CHAIN_VALUE);
     }},
    {"even",
     [](const PLACE& value, OUTPUT_READING* output) { output->m_wish.m_even = value.read_bool(); }},
    {"even_count", [](const PLACE& value,
                      OUTPUT_READING* output) { output->m_wish.m_even_count = value.read_bool(); }},
    {"pin",
     [](const PLACE& value, OUTPUT_READING* output) { output->m_wish.m_pin = value.read_bool(); }},
    {"tolerances",
     [](const PLACE& value, OUTPUT_READING* output) {
         read_fields(value, OUTPUT_TOLERANCE_FIELDS, &output->m_wish.m_tolerances);
     }},
};

template <advice::RANGE advice::LIMITS_BY_HAND::*MEMBER>
void read_least(const PLACE& value, advice::LIMITS_BY_HAND* limits)
{
    (limits->*MEMBER).m_least = read_positive(value);
}

template <advice::RANGE advice::LIMITS_BY_HAND::*MEMBER>
void read_most(const PLACE& value, advice::LIMITS_BY_HAND* limits)
{
    (limits->*MEMBER).m_most = read_positive(value);
}

template <advice::RANGE advice::LIMITS_BY_HAND::*MEMBER>
void read_least_count(const PLACE& value, advice::LIMITS_BY_HAND* limits)
{
    (limits->*MEMBER).m_least = RATIONAL(value.read_int(1, std::numeric_limits<int>::max()));
}

template <advice::RANGE advice::LIMITS_BY_HAND::*MEMBER>
void read_most_count(const PLACE& value, advice::LIMITS_BY_HAND* limits)
{
    (limits->*MEMBER).m_most = RATIONAL(value.read_int(1, std::numeric_limits<int>::max()));
}

std::vector<int> read_ints(const PLACE& place, int least, int most)
{
    std::vector<int> values;
    place.read_list([&](const PLACE& value) { values.push_back(value.read_int(least, most)); });
    return values;
}

const JSON_FIELD<advice::LIMITS_BY_HAND> LIMIT_FIELDS[] = {
    {"vco_min_hz", read_least<&advice::LIMITS_BY_HAND::m_vco>},
    {"vco_max_hz", read_most<&advice::LIMITS_BY_HAND::m_vco>},
    {"pfd_min_hz", read_least<&advice::LIMITS_BY_HAND::m_pfd>},
    {"pfd_max_hz", read_most<&advice::LIMITS_BY_HAND::m_pfd>},
    {"input_min_hz", read_least<&advice::LIMITS_BY_HAND::m_input>},
    {"input_max_hz", read_most<&advice::LIMITS_BY_HAND::m_input>},
    {"output_min_hz", read_least<&advice::LIMITS_BY_HAND::m_output>},
    {"output_max_hz", read_most<&advice::LIMITS_BY_HAND::m_output>},
    {"m_min", read_least_count<&advice::LIMITS_BY_HAND::m_m>},
    {"m_max", read_most_count<&advice::LIMITS_BY_HAND::m_m>},
    {"n_min", read_least_count<&advice::LIMITS_BY_HAND::m_n>},
    {"n_max", read_most_count<&advice::LIMITS_BY_HAND::m_n>},
    {"k_min", read_least_count<&advice::LIMITS_BY_HAND::m_k>},
    {"k_max", read_most_count<&advice::LIMITS_BY_HAND::m_k>},
    {"post_scales",
     [](const PLACE& value, advice::LIMITS_BY_HAND* limits) {
         limits->m_post_scales = read_ints(value, 1, PLL_VCO_POST_SCALE_MAX);
     }},
    {"vco_taps",
     [](const PLACE& value, advice::LIMITS_BY_HAND* limits) {
         limits->m_vco_taps = read_ints(value, 0, LAST_VCO_TAP);
     }},
};

const JSON_FIELD<DEVICE_WORDS> DEVICE_FIELDS[] = {
    {"database",
     [](const PLACE& value, DEVICE_WORDS* words) { words->m_database = value.read_text(); }},
    {"family",
     [](const PLACE& value, DEVICE_WORDS* words) { words->m_family = value.read_text(); }},
    {"type", [](const PLACE& value, DEVICE_WORDS* words) { words->m_type = value.read_text(); }},
    {"part", [](const PLACE& value, DEVICE_WORDS* words) { words->m_part = value.read_text(); }},
    {"speed_grade",
     [](const PLACE& value, DEVICE_WORDS* words) { words->m_speed_grade = value.read_text(); }},
    {"migrate",
     [](const PLACE& value, DEVICE_WORDS* words) {
         value.read_list(
             [words](const PLACE& device) { words->m_migrate.push_back(device.read_text()); });
     }},
};

// A request while it is read, in the order of the fields: outputs need the input, the feedback
// needs the outputs.
typedef JSON_REQUEST READING;

void read_output(const PLACE& place, READING* reading)
{
    advice::REQUEST& request = reading->m_request;
    OUTPUT_READING output;
    read_fields(place, OUTPUT_FIELDS, &output);
    if (output.m_has_frequency == output.m_has_ratio) {
        throw USAGE_ERROR(place.get_path(), "needs one of the keys 'frequency_hz' and 'ratio'");
    }
    advice::OUTPUT_WISH& wish = output.m_wish;
    if (output.m_has_frequency) {
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
    } else {
        wish.m_frequency = request.m_input.m_frequency * wish.m_ratio;
    }
    request.m_outputs.push_back(wish);
    if (wish.m_name == std::to_string(request.m_outputs.size())) {
        request.m_outputs.back().m_name.clear();
    }
}

void read_bandwidth(const PLACE& value, READING* reading)
{
    const std::string name = value.read_text();
    const auto* const found =
        std::find(std::begin(BANDWIDTH_NAMES), std::end(BANDWIDTH_NAMES), name);
    if (found == std::end(BANDWIDTH_NAMES)) {
        value.refuse("high, medium, low or auto, or the key 'bandwidth_hz'");
    }
    reading->m_request.m_bandwidth_kind =
        static_cast<advice::BANDWIDTH_KIND>(found - std::begin(BANDWIDTH_NAMES));
}

const JSON_FIELD<READING> REQUEST_FIELDS[] = {
    {"input_hz",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_input = advice::make_input(read_positive(value));
     }},
    {"input2_hz",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_input2 = advice::make_input(read_positive(value));
     }},
    {"outputs",
     [](const PLACE& value, READING* reading) {
         value.read_list([reading](const PLACE& output) { read_output(output, reading); });
     }},
    {"bandwidth", read_bandwidth},
    {"bandwidth_hz",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_bandwidth_kind = advice::BANDWIDTH_KIND::CUSTOM;
         reading->m_request.m_bandwidth = read_positive(value);
     }},
    {"spread_percent",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_spread = value.read_exact() / RATIONAL(PERCENT);
     }},
    {"spread_rate_hz",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_spread_rate = read_positive(value);
     }},
    {"vco_ratio", [](const PLACE& value,
                     READING* reading) { reading->m_request.m_vco_ratio = read_positive(value); }},
    {"feedback",
     [](const PLACE& value, READING* reading) {
         const int outputs = static_cast<int>(reading->m_request.m_outputs.size());
         reading->m_request.m_feedback = value.read_feedback(outputs) - 1;
     }},
    {"reconfig", [](const PLACE& value,
                    READING* reading) { reading->m_request.m_reconfig = value.read_bool(); }},
    {"max_outputs",
     [](const PLACE& value, READING* reading) {
         reading->m_request.m_max_outputs = value.read_int(1, PLL_MAX_TAPS);
     }},
    {"tolerances",
     [](const PLACE& value, READING* reading) {
         read_fields(value, TOLERANCE_FIELDS, &reading->m_request.m_tolerances);
     }},
    {"margins",
     [](const PLACE& value, READING* reading) {
         read_fields(value, MARGIN_FIELDS, &reading->m_request.m_margins);
     }},
    {"limits",
     [](const PLACE& value, READING* reading) {
         read_fields(value, LIMIT_FIELDS, &reading->m_request.m_by_hand);
     }},
    {"device", [](const PLACE& value,
                  READING* reading) { read_fields(value, DEVICE_FIELDS, &reading->m_device); }},
};

// Where a problem of the request stands: the keys are those of the library's fields, but for units.
std::string place_of(const PLACE& place, const advice::REQUEST_PROBLEM& problem)
{
    const std::string output = problem.m_output == advice::NO_OUTPUT
                                   ? ""
                                   : ".outputs[" + std::to_string(problem.m_output) + "]";
    return place.get_path() + output + "." + problem.m_field;
}

}  // namespace

JSON_REQUEST read_json_request(const PLACE& place)
{
    JSON_REQUEST reading;
    place.require("input_hz");
    place.require("outputs");
    read_fields(place, REQUEST_FIELDS, &reading);
    if (place.get_value().contains("bandwidth") && place.get_value().contains("bandwidth_hz")) {
        throw USAGE_ERROR(place.get_path(), "only one of 'bandwidth' and 'bandwidth_hz'");
    }
    const auto problem = advice::find_problem(
        reading.m_request, reading.m_request.m_max_outputs.value_or(PLL_MAX_TAPS));
    if (problem) {
        throw USAGE_ERROR(place_of(place, *problem), problem->m_text);
    }
    return reading;
}
