// Requests in JSON: what can be read, and what is refused by name and place.
#include "app/json/request.h"

#include "app/json/answer.h"
#include "app/words/usage_error.h"

#include <gtest/gtest.h>

namespace {

using advice::RATIONAL;

const char* const SIMPLE =
    R"({"input_hz": "27000000", "outputs": [{"name": "pix", "frequency_hz": "148500000"}]})";

// Everything that a request can hold.
const char* const FULL = R"({
  "input_hz": "27000000", "input2_hz": "27000000000/1001",
  "outputs": [
    {"name": "pix", "frequency_hz": "148500000", "phase_deg": 90.0, "duty_percent": 40.0,
     "delay_ps": -250, "even": true, "even_count": true, "pin": true,
     "tolerances": {"frequency_ppb": 50000.0, "phase_deg": 5.0, "duty_percent": 2.5,
                    "delay_ps": 10.0}},
    {"name": "2", "frequency_hz": "6750000/91", "phase_deg": 33.333333333333336,
     "phase_exact_deg": "100/3", "phase_to": 1}
  ],
  "bandwidth_hz": "1200000", "spread_percent": 0.5, "spread_rate_hz": "30000",
  "vco_ratio": "11/2", "feedback": 2, "reconfig": true, "max_outputs": 4,
  "tolerances": {"frequency_ppb": 1000.0, "phase_deg": 0.0, "duty_percent": 3.0, "delay_ps": 1.0,
                 "bandwidth_percent": 20.0, "spread_percent": 5.0, "spread_rate_percent": 1.0},
  "margins": {"limit_percent": 2.5, "phase_deg": 30.0},
  "limits": {"vco_min_hz": "600000000", "vco_max_hz": "1200000000", "pfd_min_hz": "1000000",
             "pfd_max_hz": "300000000", "input_min_hz": "1", "input_max_hz": "2000000000",
             "output_min_hz": "3", "output_max_hz": "900000000", "m_min": 2, "m_max": 128,
             "n_min": 1, "n_max": 64, "k_min": 2, "k_max": 512, "post_scales": [1, 2],
             "vco_taps": [0, 4]},
  "device": {"database": "data/sample", "family": "Sorrel", "type": "ENHANCED_PLL",
             "part": "SR20-7", "speed_grade": "7", "migrate": ["Chervil:CH30-6"]}
})";

JSON_REQUEST read(const std::string& text)
{
    const JSON document = read_document("request", text);
    return read_json_request(PLACE("request", document));
}

std::string refusal_of(const std::string& text)
{
    try {
        read(text);
    } catch (const USAGE_ERROR& error) {
        return error.what();
    }
    return "";
}

TEST(JsonRequest, IsReadWithItsExactFrequencies)
{
    const advice::REQUEST request = read(SIMPLE).m_request;
    ASSERT_EQ(1U, request.m_outputs.size());
    EXPECT_EQ("pix", request.m_outputs[0].m_name);
    EXPECT_EQ(RATIONAL(11, 2), request.m_outputs[0].m_ratio);
    EXPECT_EQ(RATIONAL(100, 1000000), request.m_tolerances.m_frequency);
}

TEST(JsonRequest, KeepsEveryKeyOnItsWayThrough)
{
    const JSON_REQUEST request = read(FULL);
    EXPECT_EQ(read_document("full", FULL), write_json_request(request.m_request, request.m_device));
    EXPECT_EQ(RATIONAL(100, 3), request.m_request.m_outputs[1].m_phase);
    EXPECT_EQ(0, request.m_request.m_outputs[1].m_phase_to);
    EXPECT_EQ(1, request.m_request.m_feedback);
    EXPECT_EQ("7", request.m_device.m_speed_grade);
}

TEST(JsonRequest, TakesARatioInThePlaceOfAFrequency)
{
    const advice::REQUEST request =
        read(R"({"input_hz": "1001000000/37", "outputs": [{"ratio": "11/2"}]})").m_request;
    EXPECT_EQ(RATIONAL(11, 2), request.m_outputs[0].m_ratio);
    EXPECT_EQ(RATIONAL(1001000000, 37) * RATIONAL(11, 2), request.m_outputs[0].m_frequency);
}

struct REFUSAL_CASE
{
    const char* m_name;
    const char* m_text;
    const char* m_message;
};

// clang-format off
const REFUSAL_CASE REFUSAL_CASES[] = {
    // name                     request  message
    {"no JSON",                 "{\"input_hz\": }",
     "request:1: expected JSON; found something else at byte 14"},
    {"no object",               "[]",
     "request: expected an object; found a list"},
    {"no input",                R"({"outputs": []})",
     "request: needs the key 'input_hz'"},
    {"no outputs",              R"({"input_hz": "27"})",
     "request: needs the key 'outputs'"},
    {"an input in MHz",         R"({"input_mhz": "27", "input_hz": "1", "outputs": []})",
     "request: unknown key 'input_mhz'; legal are input_hz, input2_hz, outputs, bandwidth, "
     "bandwidth_hz, spread_percent, spread_rate_hz, vco_ratio, feedback, reconfig, max_outputs, "
     "tolerances, margins, limits, device; did you mean input_hz?"},
    {"a number for a frequency", R"({"input_hz": 27000000, "outputs": []})",
     "request.input_hz: expected a number or fraction in a string, such as \"148500000/1001\"; "
     "found 27000000"},
    {"no frequency",            R"({"input_hz": "0", "outputs": []})",
     "request.input_hz: expected more than 0; found \"0\""},
    {"an output without clock", R"({"input_hz": "27000000", "outputs": [{"name": "a"}]})",
     "request.outputs[0]: needs one of the keys 'frequency_hz' and 'ratio'"},
    {"an unknown key of an output",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1", "phase": 90}]})",
     "request.outputs[0]: unknown key 'phase'; legal are name, frequency_hz, ratio, phase_deg, "
     "phase_exact_deg, phase_to, duty_percent, duty_exact_percent, delay_ps, even, even_count, "
     "pin, tolerances"},
    {"a phase in words",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}, {"ratio": "1", "phase_deg": "90x"}]})",
     "request.outputs[1].phase_deg: expected a number of at most 18 digits, or a fraction in a "
     "string; found \"90x\""},
    {"a phase that is too large",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1", "phase_deg": 361}]})",
     "request.outputs[0].phase: expected -360 to 360 degrees of the output"},
    {"half a picosecond",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1", "delay_ps": 0.5}]})",
     "request.outputs[0].delay_ps: expected a whole number from -3000 to 3000; found 0.5"},
    {"a flag that is none",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1", "even": 1}]})",
     "request.outputs[0].even: expected true or false; found 1"},
    {"a feedback that is none",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}], "feedback": "n"})",
     "request.feedback: expected \"m\" or the number of an output; found \"n\""},
    {"two bandwidths",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}], "bandwidth": "low", "bandwidth_hz": "1"})",
     "request: only one of 'bandwidth' and 'bandwidth_hz'"},
    {"a tolerance below 0",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}], "tolerances": {"phase_deg": -1}})",
     "request.tolerances.phase_deg: expected 0 or more; found -1"},
    {"a tap that there is not",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}], "limits": {"vco_taps": [8]}})",
     "request.limits.vco_taps[0]: expected a whole number from 0 to 7; found 8"},
    {"a device that is none",
     R"({"input_hz": "27000000", "outputs": [{"ratio": "1"}], "device": {"family": 3}})",
     "request.device.family: expected a string; found 3"},
    {"no outputs at all",       R"({"input_hz": "27000000", "outputs": []})",
     "request.outputs: 0 outputs; legal are 1 to 10"},
};
// clang-format on

TEST(JsonRequest, IsRefusedByNameAndPlace)
{
    for (const REFUSAL_CASE& c : REFUSAL_CASES) {
        SCOPED_TRACE(c.m_name);
        EXPECT_EQ(c.m_message, refusal_of(c.m_text));
    }
}

// Every value of a full request becomes one of another type, which no key takes.
void refuse_other_types(const JSON& value, const JSON::json_pointer& path)
{
    if (value.is_structured() && !value.empty()) {
        for (const auto& item : value.items()) {
            const JSON::json_pointer child =
                value.is_array() ? path / std::stoul(item.key()) : path / item.key();
            refuse_other_types(item.value(), child);
        }
    }
    JSON changed = read_document("full", FULL);
    changed[path] = value.is_boolean() ? JSON("true") : JSON(true);
    EXPECT_NE("", refusal_of(changed.dump())) << path.to_string();
}

TEST(JsonRequest, RefusesAWrongTypeOfEveryKey)
{
    refuse_other_types(read_document("full", FULL), JSON::json_pointer());
}

// A hostile document ends in a message, however it is cut.
TEST(JsonRequest, RefusesEveryCutOfItself)
{
    const std::string text = FULL;
    const std::size_t end = text.find_last_of('}');
    for (std::size_t length = 0; length <= end; ++length) {
        EXPECT_NE("", refusal_of(text.substr(0, length))) << length;
    }
}

TEST(JsonRequest, RefusesDeepNesting)
{
    EXPECT_EQ("request: expected JSON of at most 64 nested values",
              refusal_of(std::string(1000000, '[')));
}

TEST(JsonRequest, RefusesNumbersThatNoDoubleHolds)
{
    EXPECT_EQ("request: expected JSON; a number in it is too large",
              refusal_of(R"({"input_hz": "1", "outputs": [], "spread_percent": 1e999})"));
}

}  // namespace
