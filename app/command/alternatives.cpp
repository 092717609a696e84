#include "app/command/alternatives.h"

#include "advice/numbers/text.h"
#include "advice/why/alternatives.h"
#include "advice/why/change_request.h"
#include "advice/why/crystals.h"
#include "app/command/why.h"
#include "app/json/answer.h"
#include "app/json/numbers.h"
#include "app/output/text_table.h"
#include "app/request/request_text.h"
#include "app/words/quantity.h"
#include "app/words/usage_error.h"

#include <cmath>

namespace {

using advice::ALTERNATIVE;
using advice::CRITERION;
using advice::CRYSTAL;

constexpr int USUAL_TOP = 10;
constexpr int MOST_TOP = 500;
constexpr int MOST_CRYSTALS = 10000;

int read_top(const ALTERNATIVE_WORDS& words)
{
    return words.m_top ? read_integer("--top", *words.m_top, 1, MOST_TOP) : USUAL_TOP;
}

int read_plls(const ALTERNATIVE_WORDS& words)
{
    return words.m_plls ? read_integer("--plls", *words.m_plls, 1, PLL_MAX_TAPS) : 1;
}

CRITERION read_criterion(const ALTERNATIVE_WORDS& words)
{
    std::string legal;
    for (int i = 0; i < static_cast<int>(CRITERION::COUNT); ++i) {
        const auto criterion = static_cast<CRITERION>(i);
        if (words.m_by.value_or(advice::name_of(CRITERION::LIBRARY)) ==
            advice::name_of(criterion)) {
            return criterion;
        }
        legal += (legal.empty() ? "" : ", ") + std::string(advice::name_of(criterion));
    }
    throw USAGE_ERROR("--by", "'" + *words.m_by + "' is not legal; expected one of " + legal);
}

std::string write_clock(const REQUEST& request, const RATIONAL& ratio)
{
    return advice::write_frequency_number(advice::product(request.m_input.m_frequency, ratio),
                                          advice::FREQUENCY_UNIT::MHZ);
}

std::string worst_error_of(const ANSWER& answer)
{
    double worst = 0.0;
    for (const OUTPUT_RESULT& output : answer.get_outputs()) {
        const double error = output.m_error.to_double();
        worst = std::fabs(worst) < std::fabs(error) ? error : worst;
    }
    return advice::write_part(worst);
}

std::string report_alternatives(const REQUEST& request, const DEVICE_WORDS& device,
                                const std::vector<ALTERNATIVE>& alternatives)
{
    TEXT_TABLE table({{"no.", "", ALIGN::RIGHT},
                      {"VCO", "MHz", ALIGN::RIGHT},
                      {"N", "", ALIGN::RIGHT},
                      {"M", "", ALIGN::RIGHT},
                      {"post-scale", "", ALIGN::RIGHT},
                      {"PFD", "MHz", ALIGN::RIGHT},
                      {"worst error", "", ALIGN::RIGHT}});
    std::string reasons;
    for (std::size_t i = 0; i < alternatives.size(); ++i) {
        const ANSWER& answer = *alternatives[i].m_answer;
        const PLL& pll = answer.get_pll();
        const PLL_PROP& achieved = answer.get_achieved();
        const std::string number = std::to_string(i + 1);
        table.add_row({number,
                       write_clock(request, RATIONAL(achieved.m_vco_mult, achieved.m_vco_div)),
                       std::to_string(pll.get_n()), std::to_string(pll.get_m()),
                       std::to_string(pll.m_vco_post_scale),
                       write_clock(request, RATIONAL(1, pll.get_n())), worst_error_of(answer)});
        reasons += number + ". " +
                   (alternatives[i].m_reason.empty() ? "the first" : alternatives[i].m_reason) +
                   "\n  " + write_command(alternatives[i].m_request, device) + "\n";
    }
    std::string text;
    table.append_to(&text);
    return text + "\n" + reasons;
}

JSON write_alternatives(const DEVICE_WORDS& device, const std::vector<ALTERNATIVE>& alternatives)
{
    JSON list = JSON::array();
    for (const ALTERNATIVE& alternative : alternatives) {
        std::vector<std::string> reasons;
        if (!alternative.m_reason.empty()) {
            reasons.push_back(alternative.m_reason);
        }
        list.push_back(write_json_answer(
            parts_of(alternative.m_request, device, *alternative.m_answer), reasons, {}));
    }
    JSON object = JSON::object();
    object["schema_version"] = SCHEMA_VERSION;
    object["command"] = "alternatives";
    object["exit_status"] = alternatives.empty() ? 1 : 0;
    object["alternatives"] = std::move(list);
    return object;
}

std::vector<RATIONAL> list_range(const advice::RANGE& range, const RATIONAL& step)
{
    std::vector<RATIONAL> frequencies;
    if (!range.m_least || !range.m_most || !step.is_positive()) {
        throw USAGE_ERROR("--inputs", "a range needs both ends and --step, such as "
                                      "--inputs 10-40MHz --step 1MHz");
    }
    for (RATIONAL hertz = *range.m_least; hertz <= *range.m_most; hertz = hertz + step) {
        if (frequencies.size() == MOST_CRYSTALS) {
            throw USAGE_ERROR("--step", "too small; legal are at most " +
                                            std::to_string(MOST_CRYSTALS) + " inputs");
        }
        frequencies.push_back(hertz);
    }
    return frequencies;
}

std::vector<RATIONAL> read_inputs(const ALTERNATIVE_WORDS& words)
{
    if (!words.m_crystals) {
        return advice::standard_crystals();
    }
    if (words.m_step) {
        return list_range(read_frequency_range("--inputs", *words.m_crystals),
                          read_frequency("--step", *words.m_step));
    }
    std::vector<RATIONAL> frequencies;
    std::size_t start = 0;
    while (start <= words.m_crystals->size()) {
        const std::size_t end =
            std::min(words.m_crystals->find(',', start), words.m_crystals->size());
        frequencies.push_back(
            read_clock("--inputs", words.m_crystals->substr(start, end - start)).m_frequency);
        start = end + 1;
    }
    return frequencies;
}

std::string write_groups(const advice::REQUEST& request,
                         const std::vector<std::vector<std::size_t>>& groups)
{
    std::string text;
    for (const std::vector<std::size_t>& group : groups) {
        text += text.empty() ? "" : " | ";
        for (std::size_t i = 0; i < group.size(); ++i) {
            text += (i == 0 ? "" : ", ") + advice::name_of_output(request, group[i]);
        }
    }
    return text;
}

JSON write_crystals(const std::vector<CRYSTAL>& crystals)
{
    constexpr double PPB = 1e9;
    JSON list = JSON::array();
    for (const CRYSTAL& crystal : crystals) {
        JSON groups = JSON::array();
        for (const std::vector<std::size_t>& group : crystal.m_groups) {
            JSON numbers = JSON::array();
            for (const std::size_t output : group) {
                numbers.push_back(output + 1);
            }
            groups.push_back(std::move(numbers));
        }
        list.push_back(JSON{{"input_hz", write_fraction(crystal.m_frequency)},
                            {"met", crystal.m_met},
                            {"worst_error_ppb", write_double(crystal.m_worst_error * PPB)},
                            {"plls", std::move(groups)}});
    }
    return list;
}

std::string report_crystals(const REQUEST& request, const DEVICE_WORDS& device,
                            const std::vector<CRYSTAL>& crystals)
{
    std::string text;
    for (const CRYSTAL& crystal : crystals) {
        const bool has_error = std::isfinite(crystal.m_worst_error);
        text += advice::write_frequency(crystal.m_frequency, advice::FREQUENCY_UNIT::MHZ) +
                (crystal.m_met ? ": met" : ": NOT MET") +
                (has_error ? ", worst error " + advice::write_part(crystal.m_worst_error)
                           : ", no setting");
        if (crystal.m_groups.size() > 1) {
            text += ", PLLs: " + write_groups(request, crystal.m_groups);
        }
        text += "\n";
        for (const std::vector<std::size_t>& group : crystal.m_groups) {
            const advice::REQUEST changed = advice::with_input(request, crystal.m_frequency);
            text += "  " + write_command(advice::with_outputs(changed, group), device) + "\n";
        }
    }
    return text;
}

}  // namespace

EXIT_STATUS list_alternatives(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                              const DEVICE_WORDS& device, LIST_FORM form, std::string* text)
{
    const DEVICE_WORDS named = name_database(device, request.m_device);
    const std::vector<ALTERNATIVE> alternatives =
        advice::find_alternatives(request, *request.m_limits, read_criterion(words),
                                  static_cast<std::size_t>(read_top(words)));
    if (form == LIST_FORM::JSON) {
        *text = write_document(write_alternatives(named, alternatives), 2);
    } else if (alternatives.empty()) {
        *text = "NOT MET: there are no alternatives; pllcalc explain says why\n";
    } else {
        *text = report_alternatives(request, named, alternatives);
    }
    return alternatives.empty() ? STATUS_NOT_MET : STATUS_MET;
}

EXIT_STATUS list_crystals(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                          const DEVICE_WORDS& device, LIST_FORM form, std::string* text)
{
    const DEVICE_WORDS named = name_database(device, request.m_device);
    std::vector<CRYSTAL> crystals =
        advice::rank_crystals(request, *request.m_limits, read_inputs(words), read_plls(words));
    const bool is_met = !crystals.empty() && crystals.front().m_met;
    const auto top = static_cast<std::size_t>(read_top(words));
    crystals.resize(std::min(crystals.size(), top));
    if (form == LIST_FORM::JSON) {
        JSON object = JSON::object();
        object["schema_version"] = SCHEMA_VERSION;
        object["command"] = "crystal";
        object["exit_status"] = is_met ? 0 : 1;
        object["crystals"] = write_crystals(crystals);
        *text = write_document(object, 2);
    } else {
        *text = report_crystals(request, named, crystals);
    }
    return is_met ? STATUS_MET : STATUS_NOT_MET;
}

EXIT_STATUS list_groups(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                        const DEVICE_WORDS& device, std::string* text)
{
    const DEVICE_WORDS named = name_database(device, request.m_device);
    const int plls = read_plls(words);
    const auto groups = advice::find_groups(request, *request.m_limits, plls);
    if (groups.empty()) {
        *text = "NOT MET: " + std::to_string(plls) + " PLLs cannot make all outputs\n";
        return STATUS_NOT_MET;
    }
    *text =
        "MET with " + std::to_string(groups.size()) + (groups.size() == 1 ? " PLL\n" : " PLLs\n");
    for (std::size_t i = 0; i < groups.size(); ++i) {
        *text += "PLL " + std::to_string(i + 1) + ": " + write_groups(request, {groups[i]}) +
                 "\n  " + write_command(advice::with_outputs(request, groups[i]), named) + "\n";
    }
    return STATUS_MET;
}
