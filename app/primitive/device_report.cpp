#include "app/primitive/device_report.h"

#include "app/json/json.h"
#include "app/json/numbers.h"
#include "app/json/request.h"
#include "app/output/characters.h"
#include "app/output/format.h"
#include "app/output/text_table.h"
#include "app/primitive/figures.h"

#include <algorithm>
#include <cmath>

namespace {

using advice::DEVICE_ANSWER;
using advice::DEVICE_CLOCK;
using advice::DEVICE_REQUEST;
using advice::JUDGED_FIGURE;
using advice::RATIONAL;

constexpr int ANGLE_DECIMALS = 3;
constexpr int PERCENT = 100;
constexpr double PPB = 1e9;
constexpr double WHOLE = 100.0;

std::string name_of_device(const DEVICE_REQUEST& request)
{
    const advice::SHEET& sheet = *request.m_device.m_sheet;
    return sheet.m_grades.size() > 1 ? sheet.m_name + ":" + request.m_device.m_grade : sheet.m_name;
}

std::string headline(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    if (!answer.m_met) {
        return "NOT MET on " + name_of_device(request);
    }
    const bool is_exact =
        std::all_of(answer.m_clocks.begin(), answer.m_clocks.end(),
                    [](const DEVICE_CLOCK& clock) { return clock.m_error.is_zero(); });
    return std::string("MET: every ") + (is_exact ? "output is exact" : "wish is kept") +
           ", every limit of " + name_of_device(request) + " is kept";
}

std::string describe_loop(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    std::string text =
        "input " + format_mhz_short(request.m_request.m_input.m_frequency) + " MHz / N " +
        format_megahertz(answer.m_n) + " = PFD " + format_megahertz(answer.m_pfd) + " MHz, x M " +
        format_megahertz(answer.m_loop) + " = VCO " + format_megahertz(answer.m_vco) + " MHz\n";
    if (!answer.m_spare.empty()) {
        text += "the spare output " + answer.m_spare + " is the M counter\n";
    } else if (!answer.m_fed_back.empty()) {
        text += answer.m_fed_back + " is fed back: M is " + format_megahertz(answer.m_m) +
                " x its division\n";
    }
    if (answer.m_has_fractions) {
        text += "counts in eighths are used; --no-fraction forbids them\n";
    }
    return text;
}

std::string format_step(const DEVICE_CLOCK& clock, const RATIONAL& steps)
{
    return clock.m_phase_step.is_zero()
               ? "-"
               : format_phase((clock.m_phase + clock.m_phase_step * steps).to_double());
}

void append_clocks(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"output", "", ALIGN::LEFT},
                      {"asked", "MHz", ALIGN::RIGHT},
                      {"made", "MHz", ALIGN::RIGHT},
                      {"error", "", ALIGN::RIGHT},
                      {"by", "", ALIGN::LEFT},
                      {"divides", "VCO by", ALIGN::RIGHT},
                      {"phase", "deg", ALIGN::RIGHT},
                      {"previous", "deg", ALIGN::RIGHT},
                      {"next", "deg", ALIGN::RIGHT},
                      {"duty", "%", ALIGN::RIGHT}});
    for (std::size_t i = 0; i < answer.m_clocks.size(); ++i) {
        const DEVICE_CLOCK& clock = answer.m_clocks[i];
        const std::string& name = request.m_request.m_outputs[i].m_name;
        const bool names_its_clock = !clock.m_select.empty() && clock.m_select != "GENCLK";
        table.add_row({name.empty() ? std::to_string(i + 1) : name,
                       format_mhz_short(request.m_request.m_outputs[i].m_frequency),
                       format_megahertz(clock.m_frequency), format_error(clock.m_error),
                       clock.m_output + (names_its_clock ? " (" + clock.m_select + ")" : ""),
                       format_megahertz(clock.m_division), clock.m_phase.to_decimal(ANGLE_DECIMALS),
                       format_step(clock, RATIONAL(-1)), format_step(clock, RATIONAL(1)),
                       clock.m_duty.to_decimal(ANGLE_DECIMALS)});
    }
    table.append_to(text);
}

// The distance to the nearer end of a range, in percent of it; empty where a list decides.
std::string format_margin(const JUDGED_FIGURE& figure)
{
    const advice::FIGURE_RANGE& range = figure.m_figure.m_range;
    double margin = HUGE_VAL;
    if (range.m_least) {
        margin = std::min(margin, figure.m_value.to_double() / range.m_least->to_double() - 1.0);
    }
    if (range.m_most) {
        margin = std::min(margin, 1.0 - figure.m_value.to_double() / range.m_most->to_double());
    }
    return range.m_values.empty() ? format_fixed(margin * WHOLE, 1) : "-";
}

void append_limits(const DEVICE_ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"limit", "", ALIGN::LEFT},
                      {"of", "", ALIGN::LEFT},
                      {"value", "", ALIGN::RIGHT},
                      {"legal", "", ALIGN::LEFT},
                      {"margin", "%", ALIGN::RIGHT},
                      {"sources", "", ALIGN::LEFT}});
    for (const JUDGED_FIGURE& figure : answer.m_figures) {
        std::string sources;
        for (const std::string& source : figure.m_figure.m_sources) {
            sources += (sources.empty() ? "" : ", ") + source;
        }
        table.add_row({name_of(figure.m_figure.m_kind), figure.m_output,
                       format_megahertz(figure.m_value), to_text(figure.m_figure.m_range),
                       format_margin(figure), sources});
    }
    table.append_to(text);
    for (const JUDGED_FIGURE& figure : answer.m_figures) {
        if (figure.sources_differ()) {
            *text += describe_figure(figure) + "\n";
        }
    }
}

// ---- JSON

JSON write_hertz(const RATIONAL& megahertz)
{
    return write_product(megahertz, RATIONAL(HZ_PER_MHZ));
}

// Whole but in eighths.
JSON write_count(const RATIONAL& count)
{
    return count.is_integer() ? JSON(count.numerator()) : write_double(count.to_double());
}

JSON list_misses(const DEVICE_CLOCK& clock)
{
    JSON missed = JSON::array();
    if (clock.m_frequency_missed) {
        missed.push_back("frequency");
    }
    if (clock.m_phase_missed) {
        missed.push_back("phase");
    }
    if (clock.m_duty_missed) {
        missed.push_back("duty");
    }
    return missed;
}

// The counter as the library would have it. Where a table or eighths make the clock, there is none.
void write_counter(const DEVICE_CLOCK& clock, JSON* object)
{
    constexpr int TAPS = 8;
    const RATIONAL halves = clock.m_duty / RATIONAL(PERCENT) * clock.m_count * RATIONAL(2);
    const bool has_halves = clock.m_count.is_integer() && halves.is_integer();
    const RATIONAL high = (halves / RATIONAL(2)).ceil();
    const RATIONAL periods = clock.m_delay.floor();
    (*object)["high"] = has_halves ? write_count(high) : JSON();
    (*object)["low"] = has_halves ? write_count(clock.m_count - high) : JSON();
    (*object)["even"] = has_halves ? JSON((halves / RATIONAL(2)).is_integer()) : JSON();
    (*object)["bypass"] = clock.m_count == RATIONAL(1);
    (*object)["initial"] = write_count(periods + RATIONAL(1));
    (*object)["vco_tap"] = write_count((clock.m_delay - periods) * RATIONAL(TAPS));
    (*object)["fed_by"] = nullptr;
    (*object)["delay_ps"] = 0;
}

JSON write_clock(const DEVICE_REQUEST& request, const DEVICE_CLOCK& clock, std::size_t index)
{
    JSON object = JSON::object();
    object["name"] = json_name_of_output(request.m_request, index);
    object["frequency_hz"] = write_hertz(clock.m_frequency);
    object["ratio"] = write_fraction(clock.m_frequency * RATIONAL(HZ_PER_MHZ) /
                                     request.m_request.m_input.m_frequency);
    object["error_ppb"] = write_double(clock.m_error.to_double() * PPB);
    object["phase_deg"] = write_double(clock.m_phase.to_double());
    object["phase_step_deg"] = write_double(clock.m_phase_step.to_double());
    object["duty_percent"] = write_double(clock.m_duty.to_double());
    write_counter(clock, &object);
    object["made_by"] = clock.m_output;
    object["select"] = clock.m_select.empty() ? JSON(nullptr) : JSON(clock.m_select);
    object["count"] = write_fraction(clock.m_count);
    object["division"] = write_fraction(clock.m_division);
    object["missed"] = list_misses(clock);
    return object;
}

JSON write_loop(const DEVICE_ANSWER& answer)
{
    JSON object = JSON::object();
    object["n"] = write_count(answer.m_n);
    object["m"] = write_count(answer.m_loop);
    object["post_scale"] = 1;
    object["vco_hz"] = write_hertz(answer.m_vco);
    object["pfd_hz"] = write_hertz(answer.m_pfd);
    object["feedback"] = "m";
    for (std::size_t i = 0; i < answer.m_clocks.size(); ++i) {
        if (answer.m_clocks[i].m_output == answer.m_fed_back) {
            object["feedback"] = i + 1;
        }
    }
    object["fed_back_by"] = answer.m_fed_back.empty() ? JSON(nullptr) : JSON(answer.m_fed_back);
    object["feedback_factor"] = write_count(answer.m_m);
    return object;
}

JSON write_error(const DEVICE_ANSWER& answer)
{
    if (answer.m_met) {
        return {{"value", 0}, {"text", "No error"}};
    }
    return {{"value", answer.m_has_setting ? 4 : 1},
            {"text", answer.m_reasons.empty() ? "" : answer.m_reasons.front()}};
}

}  // namespace

std::string report_device_answer(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    std::string text = headline(request, answer) + "\n";
    for (const std::string& reason : answer.m_reasons) {
        text += "  " + make_visible(reason) + "\n";
    }
    text += "\ndevice " + request.m_device.m_sheet->m_title + ", primitive " +
            advice::primitive_of(request, answer) + "\n";
    if (answer.m_has_setting) {
        text += describe_loop(request, answer) + "\n";
        append_clocks(request, answer, &text);
        text += "\nlimits, frequencies in MHz\n";
        append_limits(answer, &text);
    }
    return text + "\nfilter, bandwidth and phase margin: " + request.m_device.m_sheet->m_filter +
           " for this device\n";
}

std::string summarise_device_answer(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
{
    std::string text = (answer.m_met ? "MET " : "NOT MET ") + name_of_device(request);
    if (answer.m_has_setting) {
        text += " n=" + format_megahertz(answer.m_n) + " m=" + format_megahertz(answer.m_loop) +
                " vco=" + format_megahertz(answer.m_vco) + "MHz";
    }
    for (const DEVICE_CLOCK& clock : answer.m_clocks) {
        text += " " + clock.m_output + "=" + format_megahertz(clock.m_frequency) + "MHz";
    }
    return text + "\n";
}

JSON write_json_device_answer(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer,
                              int exit_status)
{
    JSON document = JSON::object();
    document["schema_version"] = SCHEMA_VERSION;
    document["command"] = "synth";
    document["met"] = answer.m_met;
    document["exit_status"] = exit_status;
    document["device"] = name_of_device(request);
    document["grade"] = request.m_device.m_grade;
    document["request"] = write_json_request(request.m_request, DEVICE_WORDS());
    document["error"] = write_error(answer);
    document["pll"] = answer.m_has_setting ? write_loop(answer) : JSON(nullptr);
    document["outputs"] = JSON::array();
    for (std::size_t i = 0; i < answer.m_clocks.size(); ++i) {
        document["outputs"].push_back(write_clock(request, answer.m_clocks[i], i));
    }
    document["limits"] = write_json_figures(answer.m_figures);
    document["loop_filter"] = request.m_device.m_sheet->m_filter;
    document["reasons"] = answer.m_reasons;
    document["offers"] = JSON::array();
    return document;
}
