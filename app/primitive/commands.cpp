#include "app/primitive/commands.h"

#include "advice/devices/device_answer.h"
#include "advice/sheets/catalog.h"
#include "app/output/characters.h"
#include "app/output/input_error.h"
#include "app/output/text_table.h"
#include "app/primitive/check_device_answer.h"
#include "app/primitive/device_report.h"
#include "app/primitive/export.h"
#include "app/primitive/verify.h"
#include "app/words/quantity.h"
#include "app/words/usage_error.h"

#include <cstdio>

namespace {

using advice::FIGURE_KIND;
using advice::SHEET;
using advice::SHEET_CATALOG;

constexpr int STATUS_MET = 0;
constexpr int STATUS_NOT_MET = 1;
constexpr int STATUS_USAGE = 2;
constexpr const char* STANDARD_INPUT = "-";

SHEET_CATALOG open_catalog()
{
    const std::string directory = advice::find_devices_directory();
    if (directory.empty()) {
        throw INPUT_ERROR("no device sheets were found; the variable PLL_DEVICES may name them");
    }
    return SHEET_CATALOG(directory);
}

std::optional<advice::DEVICE_CHOICE> choose_device(const SHEET_CATALOG& catalog,
                                                   const PRIMITIVE_WORDS& words)
{
    if (!words.m_device) {
        return std::nullopt;
    }
    std::string problem;
    auto choice = catalog.choose(*words.m_device, &problem);
    if (!choice) {
        throw USAGE_ERROR("--device", problem);
    }
    return choice;
}

RATIONAL in_megahertz(const RATIONAL& hertz)
{
    constexpr int HZ_PER_MHZ = 1000000;
    return hertz / RATIONAL(HZ_PER_MHZ);
}

int status_of(const advice::VERILOG_VERDICT& verdict)
{
    switch (result_of(verdict)) {
    case VERIFY_RESULT::CLEAN:
        return STATUS_MET;
    case VERIFY_RESULT::ILLEGAL:
        return STATUS_NOT_MET;
    case VERIFY_RESULT::NO_SETTING:
        break;
    }
    return STATUS_USAGE;
}

// ---- Requests

// Wishes about what nobody publishes of these devices.
void refuse_what_is_unknown(const REQUEST_WORDS& words)
{
    struct UNKNOWN_WISH
    {
        const char* m_option;
        bool m_is_there;
    };
    const UNKNOWN_WISH wishes[] = {
        {"--in2", words.m_in2.has_value()},
        {"--bandwidth", words.m_bandwidth.has_value()},
        {"--spread", words.m_spread.has_value()},
        {"--spread-rate", words.m_spread_rate.has_value()},
        {"--vco-ratio", words.m_vco_ratio.has_value()},
        {"--reconfig", words.m_reconfig},
    };
    for (const UNKNOWN_WISH& wish : wishes) {
        if (wish.m_is_there) {
            throw USAGE_ERROR(wish.m_option, "not together with --device, whose loop filter and "
                                             "reconfiguration are not published");
        }
    }
}

advice::OBJECTIVE read_objective(const PRIMITIVE_WORDS& words)
{
    if (!words.m_objective || *words.m_objective == "sum") {
        return advice::OBJECTIVE::SUM;
    }
    if (*words.m_objective != "worst") {
        throw USAGE_ERROR("--objective",
                          "'" + *words.m_objective + "' is not legal; expected sum or worst");
    }
    return advice::OBJECTIVE::WORST;
}

void refuse_delays(const REQUEST& request)
{
    for (const OUTPUT_WISH& wish : request.m_outputs) {
        if (wish.m_delay != 0) {
            throw USAGE_ERROR("--out", "delay: devices with sheets have no delay chains");
        }
    }
}

// What belongs beside a text that other programs read.
void write_warning(const std::string& text)
{
    std::fprintf(stderr, "pllcalc: %s\n", make_visible(text).c_str());
}

void export_answer(const PRIMITIVE_WORDS& words, const advice::DEVICE_REQUEST& request,
                   const advice::DEVICE_ANSWER& answer, std::string* text)
{
    if (answer.m_has_setting) {
        *text = write_export(words, advice::make_hdl(request, answer, name_of_module(words)));
    }
    for (const std::string& reason : answer.m_reasons) {
        write_warning(reason);
    }
}

std::string join_grades(const SHEET& sheet)
{
    std::string text;
    for (const advice::GRADE& grade : sheet.m_grades) {
        text += (text.empty() ? "" : " ") + grade.m_name;
    }
    return text;
}

std::string range_of(const SHEET& sheet, FIGURE_KIND kind)
{
    const advice::FIGURE* figure = sheet.find_figure(kind, sheet.m_grades.front().m_name, "", "");
    if (figure == nullptr) {
        figure = sheet.find_figure(kind, sheet.m_grades.front().m_name,
                                   sheet.m_outputs.front().m_name, "");
    }
    return figure == nullptr ? "-" : to_text(figure->m_range);
}

}  // namespace

int verify_description(const PRIMITIVE_WORDS& words, const std::string& description, LIST_FORM form,
                       std::string* text)
{
    const SHEET_CATALOG catalog = open_catalog();
    advice::VERIFY_OPTIONS options;
    options.m_device = choose_device(catalog, words);
    if (words.m_input) {
        options.m_input = in_megahertz(read_clock("--input", *words.m_input).m_frequency);
    }
    const std::string file = words.m_file.value_or(STANDARD_INPUT);
    const advice::VERILOG_VERDICT verdict = advice::verify_verilog(description, catalog, options);
    const int status = status_of(verdict);
    if (form == LIST_FORM::JSON) {
        *text = write_json_verilog(verdict, status);
    } else if (!verdict.m_problem.empty()) {
        throw USAGE_ERROR(file, verdict.m_problem);
    } else {
        *text = report_verilog(verdict, file);
    }
    return status;
}

CHECKED_DEVICE_ANSWER verify_device_answer(const PRIMITIVE_WORDS& words, const PLACE& answer)
{
    const SHEET_CATALOG catalog = open_catalog();
    if (const auto named = choose_device(catalog, words)) {
        return check_device_answer(answer, {named->m_sheet, named->m_grade}, true);
    }
    std::string problem;
    const PLACE device = answer.require("device");
    const auto own = catalog.choose(device.read_text(), &problem);
    if (!own) {
        throw USAGE_ERROR(device.get_path(), problem);
    }
    return check_device_answer(answer, {own->m_sheet, own->m_grade}, false);
}

int answer_for_real_device(const PRIMITIVE_WORDS& words, const REQUEST_WORDS& request_words,
                           ANSWER_FORM form, std::string* text)
{
    refuse_what_is_unknown(request_words);
    const SHEET_CATALOG catalog = open_catalog();
    const advice::DEVICE_CHOICE choice = *choose_device(catalog, words);
    const REQUEST read = read_request(request_words, LIMIT_WORDS(), nullptr);
    refuse_delays(read);
    advice::DEVICE_REQUEST request;
    request.m_request = read;
    request.m_device = {choice.m_sheet, choice.m_grade};
    request.m_objective = read_objective(words);
    request.m_fractions = !words.m_no_fraction;
    const advice::DEVICE_ANSWER answer = advice::answer_for_device(request);
    const int status = answer.m_met ? STATUS_MET : STATUS_NOT_MET;
    switch (form) {
    case ANSWER_FORM::TEXT:
        *text = report_device_answer(request, answer);
        break;
    case ANSWER_FORM::SUMMARY:
        *text = summarise_device_answer(request, answer);
        break;
    case ANSWER_FORM::OBJECT:
        *text = write_document(write_json_device_answer(request, answer, status), 2);
        break;
    case ANSWER_FORM::EXPORT:
        export_answer(words, request, answer, text);
        break;
    }
    return status;
}

int export_generic(const PRIMITIVE_WORDS& words, const REQUEST_WORDS& request_words,
                   const LIMIT_WORDS& limits, std::string* text)
{
    const REQUEST request = read_request(request_words, limits, nullptr);
    const ANSWER answer(request, *request.m_limits, advice::EFFORT::THOROUGH);
    if (answer.has_setting()) {
        *text = write_export(words, make_generic_hdl(request, answer, name_of_module(words)));
    }
    if (!answer.is_met()) {
        write_warning("NOT MET; see synth for the reasons");
    }
    return answer.is_met() ? STATUS_MET : STATUS_NOT_MET;
}

int list_real_devices(LIST_FORM form, std::string* text)
{
    const SHEET_CATALOG catalog = open_catalog();
    TEXT_TABLE table({{"device", "", ALIGN::LEFT},
                      {"title", "", ALIGN::LEFT},
                      {"grades", "", ALIGN::LEFT},
                      {"primitive", "", ALIGN::LEFT},
                      {"VCO", "MHz", ALIGN::LEFT},
                      {"PFD", "MHz", ALIGN::LEFT},
                      {"output", "MHz", ALIGN::LEFT}});
    RECORD_LIST records(
        {"device", "title", "grades", "primitive", "vco_mhz", "pfd_mhz", "output_mhz"});
    for (const SHEET* sheet : catalog.get_sheets()) {
        const std::vector<std::string> cells = {sheet->m_name,
                                                sheet->m_title,
                                                join_grades(*sheet),
                                                sheet->m_primitives.front(),
                                                range_of(*sheet, FIGURE_KIND::VCO),
                                                range_of(*sheet, FIGURE_KIND::PFD),
                                                range_of(*sheet, FIGURE_KIND::OUTPUT)};
        table.add_row(cells);
        std::vector<RECORD_VALUE> values;
        for (const std::string& cell : cells) {
            values.push_back(RECORD_VALUE::text(cell));
        }
        records.add(values);
    }
    if (!catalog.get_problems().empty()) {
        throw INPUT_ERROR(to_text(catalog.get_problems().front()));
    }
    if (form != LIST_FORM::TABLE) {
        *text = records.write(form);
        return STATUS_MET;
    }
    *text = "Real devices (synth --device NAME[:GRADE]); ranges are of the first grade\n";
    table.append_to(text);
    return STATUS_MET;
}
