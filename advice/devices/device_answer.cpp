#include "advice/devices/device_answer.h"

#include "advice/devices/walk.h"

#include <algorithm>

namespace advice {

namespace {

const RATIONAL MEGA(1000000);
constexpr int PHASE_DECIMALS = 3;

bool is_legal_input(const DEVICE_REQUEST& request)
{
    const FIGURE* figure =
        request.m_device.m_sheet->find_figure(FIGURE_KIND::INPUT, request.m_device.m_grade, "", "");
    return figure == nullptr || figure->m_range.holds(request.m_request.m_input.m_frequency / MEGA);
}

void walk(const DEVICE_REQUEST& request, const PLAN_OPTIONS& options, DEVICE_ANSWER* answer,
          RANK* rank)
{
    for (const PLAN& plan : make_plans(request.m_request, *request.m_device.m_sheet,
                                       request.m_device.m_grade, options)) {
        walk_plan(request, plan, answer, rank);
    }
}

std::string percent_of(const RATIONAL& error)
{
    constexpr int DECIMALS = 4;
    return (error * RATIONAL(100)).to_decimal(DECIMALS) + " %";
}

std::string explain_no_setting(const DEVICE_REQUEST& request)
{
    const SHEET& sheet = *request.m_device.m_sheet;
    const std::vector<PLAN> plans =
        make_plans(request.m_request, sheet, request.m_device.m_grade, PLAN_OPTIONS());
    if (!plans.empty()) {
        return "no counters make these clocks within the limits of " + sheet.m_title;
    }
    const std::size_t wanted = request.m_request.m_outputs.size();
    if (request.m_request.m_feedback != NO_OUTPUT) {
        return sheet.m_title + " cannot feed that output back";
    }
    return sheet.m_title + " has no way to make " + std::to_string(wanted) + " outputs";
}

void explain(const DEVICE_REQUEST& request, DEVICE_ANSWER* answer)
{
    const SHEET& sheet = *request.m_device.m_sheet;
    if (!is_legal_input(request)) {
        answer->m_reasons.push_back(
            "the input of " + (request.m_request.m_input.m_frequency / MEGA).to_fraction() +
            " MHz is out of its range, " +
            to_text(
                sheet.find_figure(FIGURE_KIND::INPUT, request.m_device.m_grade, "", "")->m_range) +
            " MHz");
    } else if (!answer->m_has_setting) {
        answer->m_reasons.push_back(explain_no_setting(request));
    }
    for (const JUDGED_FIGURE& figure : answer->m_figures) {
        if (!figure.m_kept) {
            constexpr int DECIMALS = 6;
            answer->m_reasons.push_back(
                std::string("BROKEN limit ") + name_of(figure.m_figure.m_kind) + " of " +
                (figure.m_output.empty() ? "the loop" : figure.m_output) + ": " +
                figure.m_value.to_decimal(DECIMALS) + " " + unit_of(figure.m_figure.m_kind) +
                ", legal are " + to_text(figure.m_figure.m_range));
        }
    }
    for (std::size_t i = 0; i < answer->m_clocks.size(); ++i) {
        const DEVICE_CLOCK& clock = answer->m_clocks[i];
        const std::string name = name_of_output(request.m_request, i);
        if (clock.m_frequency_missed) {
            answer->m_reasons.push_back("MISSED frequency of " + name + " by " +
                                        percent_of(clock.m_error));
        }
        if (clock.m_phase_missed) {
            answer->m_reasons.push_back(
                "MISSED phase of " + name + ": " + clock.m_phase.to_decimal(PHASE_DECIMALS) +
                " deg for " + request.m_request.m_outputs[i].m_phase.to_decimal(PHASE_DECIMALS));
        }
        if (clock.m_duty_missed) {
            answer->m_reasons.push_back(
                "MISSED duty cycle of " + name + ": " + clock.m_duty.to_decimal(PHASE_DECIMALS) +
                " % for " + request.m_request.m_outputs[i].m_duty.to_decimal(PHASE_DECIMALS));
        }
    }
}

bool has_missed_wish(const DEVICE_ANSWER& answer)
{
    return std::any_of(
        answer.m_clocks.begin(), answer.m_clocks.end(), [](const DEVICE_CLOCK& clock) {
            return clock.m_frequency_missed || clock.m_phase_missed || clock.m_duty_missed;
        });
}

void judge_limits(const DEVICE_REQUEST& request, DEVICE_ANSWER* answer)
{
    answer->m_figures = judge_for(to_setting(request, *answer), request.m_device);
    answer->m_met =
        answer->m_met && std::all_of(answer->m_figures.begin(), answer->m_figures.end(),
                                     [](const JUDGED_FIGURE& figure) { return figure.m_kept; });
}

}  // namespace

DEVICE_ANSWER describe_setting(const DEVICE_REQUEST& request, const DEVICE_SETTING& setting)
{
    DEVICE_ANSWER answer;
    for (const bool fractions : {false, true}) {
        PLAN_OPTIONS options;
        options.m_fractions = fractions && !request.m_device.m_sheet->m_eighths.empty();
        for (const PLAN& plan : make_plans(request.m_request, *request.m_device.m_sheet,
                                           request.m_device.m_grade, options)) {
            if (take_setting(request, plan, setting, &answer)) {
                answer.m_met = !has_missed_wish(answer);
                judge_limits(request, &answer);
                explain(request, &answer);
                return answer;
            }
        }
    }
    return answer;
}

DEVICE_ANSWER answer_for_device(const DEVICE_REQUEST& request)
{
    DEVICE_ANSWER answer;
    RANK rank;
    if (is_legal_input(request)) {
        walk(request, PLAN_OPTIONS(), &answer, &rank);
        if (!answer.m_met && request.m_fractions && !request.m_device.m_sheet->m_eighths.empty()) {
            PLAN_OPTIONS options;
            options.m_fractions = true;
            walk(request, options, &answer, &rank);
        }
    }
    if (answer.m_has_setting) {
        judge_limits(request, &answer);
    }
    explain(request, &answer);
    return answer;
}

std::string primitive_of(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    const SHEET& sheet = *request.m_device.m_sheet;
    for (const std::string& primitive : sheet.m_primitives) {
        const bool has_all = std::all_of(
            answer.m_clocks.begin(), answer.m_clocks.end(), [&](const DEVICE_CLOCK& clock) {
                const SHEET_OUTPUT* output = sheet.find_output(clock.m_output);
                return output != nullptr && covers(output->m_primitives, primitive);
            });
        if (has_all) {
            return primitive;
        }
    }
    return sheet.m_primitives.front();
}

PRIMITIVE_SETTING to_setting(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    PRIMITIVE_SETTING setting;
    setting.m_primitive = primitive_of(request, answer);
    setting.m_input = request.m_request.m_input.m_frequency / MEGA;
    setting.m_path = answer.m_path;
    setting.m_fed_back = answer.m_fed_back;
    setting.m_n = answer.m_n;
    setting.m_m = answer.m_spare.empty() ? answer.m_m : RATIONAL(1);
    setting.m_loop = answer.m_loop;
    setting.m_pfd = answer.m_pfd;
    setting.m_vco = answer.m_vco;
    for (const DEVICE_CLOCK& clock : answer.m_clocks) {
        PRIMITIVE_OUTPUT output;
        output.m_name = output.m_sheet_name = clock.m_output;
        const SHEET_OUTPUT* record = request.m_device.m_sheet->find_output(clock.m_output);
        output.m_has_counter = record != nullptr && record->m_of.empty();
        output.m_count = clock.m_count;
        output.m_division = clock.m_division;
        output.m_frequency = clock.m_frequency;
        output.m_phase = clock.m_phase;
        output.m_duty = clock.m_duty;
        setting.m_outputs.push_back(output);
    }
    if (!answer.m_spare.empty()) {
        PRIMITIVE_OUTPUT spare;
        spare.m_name = spare.m_sheet_name = answer.m_spare;
        spare.m_count = spare.m_division = answer.m_m;
        spare.m_frequency = answer.m_vco / answer.m_m;
        spare.m_is_feedback_only = true;
        setting.m_outputs.push_back(spare);
    }
    return setting;
}

}  // namespace advice
