#include "app/command/verify.h"

#include "advice/numbers/text.h"
#include "advice/verdict/achieved.h"
#include "app/devices/limit_sources.h"
#include "app/json/verify_answer.h"
#include "app/output/input_error.h"
#include "app/output/input_file.h"
#include "app/primitive/commands.h"
#include "app/request/request.h"
#include "app/words/usage_error.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

namespace {

const char* const STANDARD_INPUT = "-";

std::string read_input_text(const std::string& file)
{
    if (file == STANDARD_INPUT) {
        return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    }
    if (const std::optional<std::string> reason = why_unreadable(file)) {
        throw INPUT_ERROR("cannot read " + file + ": " + *reason);
    }
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// JSON begins with a brace, which no Verilog does.
bool is_json(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && (text[first] == '{' || text[first] == '[');
}

// The device of the answer, or the one that the command line names in its place.
DEVICE_WORDS choose_device(const DEVICE_WORDS& of_answer, const DEVICE_WORDS& of_line)
{
    const bool is_named = of_line.m_family || of_line.m_type || of_line.m_part ||
                          of_line.m_speed_grade || !of_line.m_migrate.empty();
    DEVICE_WORDS words = is_named ? of_line : of_answer;
    if (of_line.m_database) {
        words.m_database = of_line.m_database;
    }
    return words;
}

struct FINDING
{
    std::string m_place;
    std::string m_text;
};

// What is broken and what is untrue, rules first.
std::vector<FINDING> list_findings(const advice::REQUEST& request, const CHECKED_ANSWER& checked)
{
    std::vector<FINDING> findings;
    for (const advice::BROKEN_RULE& rule : checked.m_verification->get_rules()) {
        findings.push_back({rule.m_place, rule.m_text});
    }
    if (checked.m_error != PLL::PLL_NO_ERROR) {
        findings.push_back({"error", std::string("the library refuses it: ") +
                                         PLL::get_error_string(checked.m_error)});
    }
    const advice::VERDICT& verdict = checked.m_verification->get_verdict();
    if (checked.m_verification->is_possible()) {
        for (const advice::JUDGED_LIMIT& limit : verdict.m_limits) {
            if (!limit.m_kept && !limit.m_is_note) {
                findings.push_back({"limits", advice::to_text(request, limit)});
            }
        }
        for (const advice::JUDGED_WISH& wish : verdict.m_wishes) {
            if (!wish.m_kept) {
                findings.push_back({"wishes", advice::to_text(request, wish)});
            }
        }
    }
    for (const JSON_DIFFERENCE& difference : checked.m_differences) {
        findings.push_back({difference.m_place, difference.m_text});
    }
    return findings;
}

std::string describe_output(const advice::REQUEST& request, const advice::ACHIEVED& achieved,
                            std::size_t index)
{
    constexpr int DECIMALS = 3;
    const advice::ACHIEVED_OUTPUT& output = achieved.m_output[index];
    const advice::OUTPUT_WISH& wish = request.m_outputs[index];
    const RATIONAL error = output.m_ratio / wish.m_ratio - RATIONAL(1);
    return advice::name_of_output(request, index) + ": " +
           advice::write_frequency(advice::product(request.m_input.m_frequency, output.m_ratio),
                                   wish.m_unit) +
           " (" + advice::write_part(error.to_double()) + "), phase " +
           advice::write_number(output.m_phase.to_double(), DECIMALS) + " deg, duty " +
           advice::write_number(output.m_duty.to_double(), DECIMALS) + " %\n";
}

// What the setting does.
std::string describe(const advice::REQUEST& request, const PLL& pll)
{
    const advice::ACHIEVED achieved = advice::find_achieved(request, pll);
    const RATIONAL input = request.m_input.m_frequency;
    const auto write = [&](const RATIONAL& ratio) {
        return advice::write_frequency(advice::product(input, ratio), request.m_input.m_unit);
    };
    std::string text = "input " + write(RATIONAL(1)) + ", N " + std::to_string(pll.get_n()) +
                       ", PFD " + write(RATIONAL(1, pll.get_n())) + ", M " +
                       std::to_string(pll.get_m()) + ", VCO " + write(achieved.m_vco_ratio) + "\n";
    for (std::size_t i = 0; i < static_cast<std::size_t>(achieved.m_outputs); ++i) {
        text += describe_output(request, achieved, i);
    }
    return text;
}

std::string report_text(const advice::REQUEST& request, const CHECKED_ANSWER& checked,
                        const std::vector<FINDING>& findings)
{
    const advice::VERDICT& verdict = checked.m_verification->get_verdict();
    std::string text = findings.empty()
                           ? "CLEAN: " + std::to_string(verdict.m_wishes.size()) + " wishes and " +
                                 std::to_string(verdict.m_limits.size()) +
                                 " limits are kept, every figure is right\n"
                           : "BROKEN: " + std::to_string(findings.size()) +
                                 (findings.size() == 1 ? " finding\n" : " findings\n");
    for (const FINDING& finding : findings) {
        text += finding.m_place + ": " + finding.m_text + "\n";
    }
    if (checked.m_verification->is_possible()) {
        text += "\n" + describe(request, checked.m_verification->get_pll());
    }
    return text;
}

JSON write_findings(const CHECKED_ANSWER& checked, const std::vector<FINDING>& findings)
{
    JSON object = JSON::object();
    object["clean"] = checked.is_clean();
    JSON list = JSON::array();
    for (const FINDING& finding : findings) {
        list.push_back(JSON{{"place", finding.m_place}, {"text", finding.m_text}});
    }
    object["findings"] = std::move(list);
    return object;
}

// The result of one answer, as text and as JSON.
struct VERIFIED
{
    EXIT_STATUS m_status = STATUS_MET;
    std::string m_text;
    JSON m_json;
};

VERIFIED verify_answer(const PLACE& answer, const DEVICE_WORDS& of_line)
{
    JSON_REQUEST request = read_request_of(answer);
    request.m_device = choose_device(request.m_device, of_line);
    const std::unique_ptr<DEVICE> device = open_device(request.m_device);
    const auto limits = make_limits(device.get(), request.m_request.m_by_hand);
    if (device != nullptr) {
        name_sources(*device, limits.get());
    }
    const CHECKED_ANSWER checked = check_answer(answer, request, *limits);
    VERIFIED verified;
    if (checked.m_verification == nullptr) {
        verified.m_status = STATUS_USAGE;
        verified.m_text = "NO SETTING: the answer holds no counters\n";
        verified.m_json = {{"clean", false}, {"findings", JSON::array()}};
        return verified;
    }
    const std::vector<FINDING> findings = list_findings(request.m_request, checked);
    verified.m_status = checked.is_clean() ? STATUS_MET : STATUS_NOT_MET;
    verified.m_text = report_text(request.m_request, checked, findings);
    verified.m_json = write_findings(checked, findings);
    return verified;
}

VERIFIED verify_answer_of_device(const PLACE& answer, const PRIMITIVE_WORDS& words)
{
    const CHECKED_DEVICE_ANSWER checked = verify_device_answer(words, answer);
    VERIFIED verified;
    const bool is_clean = checked.m_has_setting && checked.m_differences.empty();
    verified.m_json = {{"clean", is_clean}, {"findings", JSON::array()}};
    if (!checked.m_has_setting) {
        verified.m_status = STATUS_USAGE;
        verified.m_text = "NO SETTING: the answer holds no counters\n";
        return verified;
    }
    verified.m_status = is_clean ? STATUS_MET : STATUS_NOT_MET;
    verified.m_text =
        is_clean ? "CLEAN: every wish and limit is kept, every figure is right\n" : "BROKEN\n";
    for (const JSON_DIFFERENCE& each : checked.m_differences) {
        verified.m_text += each.m_place + ": " + each.m_text + "\n";
        verified.m_json["findings"].push_back(JSON{{"place", each.m_place}, {"text", each.m_text}});
    }
    verified.m_text += checked.m_description.empty() ? "" : "\n" + checked.m_description;
    return verified;
}

// The worst of several: no setting is worse than a broken one.
VERIFIED verify_alternatives(const PLACE& list, const DEVICE_WORDS& of_line)
{
    VERIFIED all;
    all.m_json = JSON{{"alternatives", JSON::array()}};
    std::size_t number = 0;
    list.read_list([&](const PLACE& answer) {
        VERIFIED one = verify_answer(answer, of_line);
        all.m_status = std::max(all.m_status, one.m_status);
        all.m_text += (all.m_text.empty() ? "" : "\n") + std::string("alternative ") +
                      std::to_string(++number) + ": " + one.m_text;
        all.m_json["alternatives"].push_back(std::move(one.m_json));
    });
    return all;
}

EXIT_STATUS verify_answers(const std::string& name, const std::string& content,
                           const VERIFY_WORDS& words, std::string* text)
{
    const JSON document = read_document(name, content);
    const PLACE place("", document);
    const bool is_list = document.is_object() && document.contains("alternatives");
    const VERIFIED verified =
        is_list ? verify_alternatives(place.require("alternatives"), words.m_device)
        : is_device_answer(document) ? verify_answer_of_device(place, words.m_primitive)
                                     : verify_answer(place, words.m_device);
    if (words.m_form == LIST_FORM::JSON) {
        JSON object{{"schema_version", SCHEMA_VERSION},
                    {"command", "verify"},
                    {"exit_status", static_cast<int>(verified.m_status)}};
        object.update(verified.m_json);
        *text = write_document(object, 2);
    } else {
        *text = verified.m_text;
    }
    return verified.m_status;
}

}  // namespace

EXIT_STATUS verify_any(const VERIFY_WORDS& words, std::string* text)
{
    const std::string file = words.m_primitive.m_file.value_or(STANDARD_INPUT);
    const std::string content = read_input_text(file);
    if (is_json(content)) {
        return verify_answers(file == STANDARD_INPUT ? "standard input" : file, content, words,
                              text);
    }
    return static_cast<EXIT_STATUS>(
        verify_description(words.m_primitive, content, words.m_form, text));
}
