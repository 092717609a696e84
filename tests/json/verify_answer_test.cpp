// What synth writes, verify finds clean; and whatever is changed in it, verify finds.
#include "random_requests.h"

#include "app/json/json.h"
#include "app/json/verify_answer.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using advice::ANSWER;
using advice::LIMITS;
using advice::RATIONAL;
using advice::REQUEST;

constexpr int MEGA = 1000000;

REQUEST two_clocks()
{
    REQUEST request;
    request.m_input = advice::make_input(RATIONAL(27 * MEGA));
    for (const int frequency : {148500000, 74250000}) {
        advice::OUTPUT_WISH wish;
        wish.m_frequency = RATIONAL(frequency);
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
        request.m_outputs.push_back(wish);
    }
    request.m_outputs[0].m_name = "pix";
    request.m_outputs[0].m_phase = RATIONAL(90);
    return request;
}

JSON write_answer(const REQUEST& request, const LIMITS& limits)
{
    const ANSWER answer(request, limits, advice::EFFORT::FIRST_ANSWER_ONLY);
    return write_json_answer(parts_of(request, {}, answer), {}, {});
}

std::string list_findings(const CHECKED_ANSWER& checked)
{
    std::string text;
    for (const JSON_DIFFERENCE& difference : checked.m_differences) {
        text += difference.m_place + " " + difference.m_text + "\n";
    }
    if (checked.m_verification != nullptr) {
        for (const advice::BROKEN_RULE& rule : checked.m_verification->get_rules()) {
            text += rule.m_place + " " + rule.m_text + "\n";
        }
    }
    return text;
}

// What is found in a document, limits by hand taken on top of `limits`.
CHECKED_ANSWER check(const JSON& document, const LIMITS& limits)
{
    const PLACE place("", document);
    return check_answer(place, read_request_of(place), limits);
}

TEST(VerifyAnswer, FindsNothingInWhatWasWritten)
{
    const LIMITS limits;
    const JSON document = write_answer(two_clocks(), limits);
    const CHECKED_ANSWER checked =
        check(read_document("answer", write_document(document, 2)), limits);
    EXPECT_EQ("", list_findings(checked));
    EXPECT_TRUE(checked.is_clean());
}

TEST(VerifyAnswer, SaysThatThereIsNoSetting)
{
    const LIMITS limits;
    REQUEST request = two_clocks();
    request.m_input = advice::make_input(RATIONAL(1000));
    for (advice::OUTPUT_WISH& wish : request.m_outputs) {
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
    }
    const JSON document = write_answer(request, limits);
    EXPECT_TRUE(document.at("pll").is_null());
    EXPECT_EQ(nullptr, check(document, limits).m_verification);
}

// A made-up setting is as good as one of the library, if it keeps everything.
TEST(VerifyAnswer, AcceptsASettingOfAnotherHand)
{
    const LIMITS limits;
    JSON document = write_answer(two_clocks(), limits);
    ASSERT_EQ(22, document.at("pll").at("m"));
    document["pll"]["m"] = 44;
    document["pll"]["n"] = 2;
    document["pll"]["pfd_hz"] = "13500000";
    for (const char* const key : {"loop_filter", "limits", "wishes", "lock_range", "warnings"}) {
        const JSON kept = document[key];
        document[key] = key == std::string("loop_filter") ? JSON{{"i_ua", kept["i_ua"]},
                                                                 {"r_ohm", kept["r_ohm"]},
                                                                 {"c_pf", kept["c_pf"]},
                                                                 {"c_high_pf", kept["c_high_pf"]}}
                                                          : JSON();
        if (key != std::string("loop_filter")) {
            document.erase(key);
        }
    }
    const CHECKED_ANSWER checked = check(document, limits);
    EXPECT_EQ("", list_findings(checked));
    EXPECT_TRUE(checked.is_clean());
}

// Whether the request is met.
bool expect_as_written(const REQUEST& request, const LIMITS& limits)
{
    const ANSWER answer(request, limits, advice::EFFORT::FIRST_ANSWER_ONLY);
    const JSON written = write_json_answer(parts_of(request, {}, answer), {}, {});
    const JSON document = read_document("answer", write_document(written, -1));
    EXPECT_EQ(
        written["request"],
        write_json_request(read_json_request(PLACE("request", document["request"])).m_request, {}));
    const CHECKED_ANSWER checked = check(document, limits);
    EXPECT_EQ("", list_findings(checked));
    EXPECT_EQ(answer.has_setting(), checked.m_verification != nullptr);
    EXPECT_EQ(answer.is_met(), checked.is_clean());
    if (testing::Test::HasFailure()) {
        ADD_FAILURE() << write_document(document, 2);
    }
    return answer.is_met();
}

TEST(VerifyAnswer, FindsNothingInTheAnswersToRandomRequests)
{
    constexpr unsigned SEED = 20261122;
    constexpr int REQUESTS = 20000;
    const RANDOM_LIMITS all;
    ASSERT_LT(10U, all.count());
    std::mt19937 random(SEED);
    int met = 0;
    for (int i = 0; i < REQUESTS && !HasFailure(); ++i) {
        const LIMITS& limits = all.get(static_cast<std::size_t>(i) % all.count());
        const REQUEST request = make_random_request(&random, limits.get_max_outputs());
        SCOPED_TRACE("seed " + std::to_string(SEED) + ", request " + std::to_string(i));
        met += expect_as_written(request, limits) ? 1 : 0;
    }
    EXPECT_LT(REQUESTS / 10, met);
}

// ---- Every field changed in turn.

JSON change(const JSON& value)
{
    if (value.is_boolean()) {
        return !value.get<bool>();
    }
    if (value.is_number_integer()) {
        return value.get<int>() + 1;
    }
    if (value.is_number()) {
        return value.get<double>() + 1.0;
    }
    if (value.is_null()) {
        return 1;
    }
    const std::string text = value.get<std::string>();
    const auto fraction = RATIONAL::parse(text);
    return fraction ? (*fraction + RATIONAL(1)).to_fraction() : text + "x";
}

// Fields that may be anything: what they say is about other requests, or a name that nobody checks.
bool is_free(const std::string& path)
{
    const std::set<std::string> FREE = {"/request/device", "/reasons", "/offers"};
    return FREE.count(path) != 0;
}

// Paths of all values that are no list and no object.
void list_fields(const JSON& value, const std::string& path, std::vector<std::string>* paths)
{
    if (is_free(path)) {
        return;
    }
    if (!value.is_structured()) {
        paths->push_back(path);
    } else if (value.is_object()) {
        for (const auto& item : value.items()) {
            list_fields(item.value(), path + "/" + item.key(), paths);
        }
    } else {
        for (std::size_t i = 0; i < value.size(); ++i) {
            list_fields(value[i], path + "/" + std::to_string(i), paths);
        }
    }
}

bool is_found(const JSON& document, const LIMITS& limits)
{
    try {
        return !check(document, limits).is_clean();
    } catch (const std::runtime_error&) {
        return true;  // no answer any more, which is told too
    }
}

void expect_every_change_found(const REQUEST& request, const LIMITS& limits)
{
    const JSON document = write_answer(request, limits);
    ASSERT_TRUE(check(document, limits).is_clean()) << list_findings(check(document, limits));
    std::vector<std::string> paths;
    list_fields(document, "", &paths);
    EXPECT_LT(100U, paths.size());
    for (const std::string& path : paths) {
        JSON changed = document;
        JSON& field = changed[JSON::json_pointer(path)];
        field = change(field);
        EXPECT_TRUE(is_found(changed, limits)) << path << " as " << field;
    }
}

TEST(VerifyAnswer, FindsEveryFieldThatIsChanged)
{
    const LIMITS limits;
    expect_every_change_found(two_clocks(), limits);
}

TEST(VerifyAnswer, FindsEveryFieldThatIsChangedWithSpreadAndDelays)
{
    const LIMITS limits;
    REQUEST request = two_clocks();
    request.m_spread = RATIONAL(5, 1000);
    request.m_spread_rate = RATIONAL(40000);
    request.m_outputs[1].m_delay = 250;
    request.m_outputs[1].m_duty = RATIONAL(40);
    request.m_tolerances.m_spread = RATIONAL(1, 2);
    expect_every_change_found(request, limits);
}

TEST(VerifyAnswer, FindsEveryFieldThatIsChangedWithFeedbackFromAnOutput)
{
    const LIMITS limits;
    REQUEST request = two_clocks();
    request.m_outputs[0].m_phase = RATIONAL();
    request.m_feedback = 1;
    expect_every_change_found(request, limits);
}

}  // namespace
