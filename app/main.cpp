// pllcalc: computes the settings of a phase-locked loop from the clocks that are wanted.

#include "advice/why/miss.h"
#include "app/command/alternatives.h"
#include "app/command/command_line.h"
#include "app/command/exit_status.h"
#include "app/command/verify.h"
#include "app/command/why.h"
#include "app/devices/device.h"
#include "app/devices/limit_sources.h"
#include "app/devices/new_device.h"
#include "app/lint/lint.h"
#include "app/output/characters.h"
#include "app/output/input_error.h"
#include "app/output/internal_errors.h"
#include "app/output/out_of_memory.h"
#include "app/output/output.h"
#include "app/primitive/commands.h"
#include "app/reports/reports.h"
#include "app/words/quantity.h"
#include "app/words/usage_error.h"

#include "mem_alloc_sys.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

// Messages quote words and names, which must not control a terminal.
void write_error(const char* message)
{
    std::fprintf(stderr, "pllcalc: %s\n", make_visible(message).c_str());
}

void write_errors(const std::vector<std::string>& messages)
{
    for (const std::string& message : messages) {
        write_error(message.c_str());
    }
}

EXIT_STATUS list_ratios(const COMMAND_LINE& line, std::string* text)
{
    if (!line.m_request.m_in) {
        throw USAGE_ERROR("--in", "the input clock is needed, such as --in 27MHz");
    }
    int count = 0;
    const std::unique_ptr<DEVICE> device = open_device(line.m_device);
    *text = report_ratios(read_input("--in", *line.m_request.m_in),
                          *make_limits(device.get(), read_limits(line.m_limits)), line.m_list_form,
                          &count);
    if (count == 0) {
        write_error("no VCO ratio can be realised from this input clock");
    }
    return count == 0 ? STATUS_NOT_MET : STATUS_MET;
}

EXIT_STATUS list_devices(const COMMAND_LINE& line, std::string* text)
{
    if (!line.m_device.m_family && !find_database(line.m_device.m_database)) {
        return static_cast<EXIT_STATUS>(list_real_devices(line.m_list_form, text));
    }
    std::vector<std::string> failures;
    *text = report_devices(line.m_device, line.m_list_form, &failures);
    write_errors(failures);
    return failures.empty() ? STATUS_MET : STATUS_IO_FAILED;
}

EXIT_STATUS show_device(const COMMAND_LINE& line, std::string* text)
{
    const std::unique_ptr<DEVICE> device = require_device(line.m_device);
    *text = line.m_shows_origins
                ? report_value_origins(*device, require_database(line.m_device), line.m_list_form)
                : report_device(*device, line.m_list_form);
    return STATUS_MET;
}

// A database that is named and not used would go unseen.
std::string note_unused_database(const DEVICE_WORDS& words)
{
    const std::optional<std::string> note = find_unused_database(words);
    return note ? "\nNOTE: " + make_visible(*note) + "\n" : "";
}

bool has_request(const REQUEST_WORDS& words)
{
    return !(words == REQUEST_WORDS());
}

// The lines of a reason as one: "missed: output 1, ...; it is the feedback".
std::string join_lines(std::string text)
{
    const std::string LINE_BREAK = "\n  ";
    for (std::size_t at = text.find(LINE_BREAK); at != std::string::npos;
         at = text.find(LINE_BREAK, at)) {
        text.replace(at, LINE_BREAK.size(), "; ");
    }
    return text;
}

EXIT_STATUS choose_row(const COMMAND_LINE& line, std::string* text)
{
    const std::unique_ptr<DEVICE> device = require_device(line.m_device);
    const REQUEST request = read_request(line.m_request, line.m_limits, device.get());
    const ANSWER answer(request, *request.m_limits, advice::EFFORT::THOROUGH);
    *text = report_choices(request, answer, line.m_list_form);
    if (line.m_list_form != LIST_FORM::TABLE) {
        if (!answer.is_met()) {
            write_error(advice::headline(request, answer.get_verdict()).c_str());
        }
        for (const std::string& reason : advice::explain_miss(request, *request.m_limits, answer)) {
            write_error(join_lines(reason).c_str());
        }
    }
    return answer.is_met() ? STATUS_MET : STATUS_NOT_MET;
}

EXIT_STATUS show_table(const COMMAND_LINE& line, std::string* text)
{
    if (line.m_shows_coverage) {
        if (has_request(line.m_request) || line.m_effective_m) {
            throw USAGE_ERROR("--coverage", "not together with a request or --m");
        }
        *text = report_table_coverage(*require_device(line.m_device), line.m_list_form);
        return STATUS_MET;
    }
    if (has_request(line.m_request)) {
        if (line.m_effective_m) {
            throw USAGE_ERROR("--m", "not together with a request, which chooses M itself");
        }
        return choose_row(line, text);
    }
    std::optional<int> effective_m;
    if (line.m_effective_m) {
        effective_m = read_integer("--m", *line.m_effective_m, 0, std::numeric_limits<int>::max());
    }
    const std::unique_ptr<DEVICE> device = require_device(line.m_device);
    std::vector<std::string> findings;
    *text = report_table(*device, effective_m, line.m_list_form, &findings);
    if (line.m_list_form != LIST_FORM::TABLE) {
        write_errors(findings);
    }
    return findings.empty() ? STATUS_MET : STATUS_NOT_MET;
}

EXIT_STATUS answer_on_real_device(const COMMAND_LINE& line, std::string* text)
{
    if (!(line.m_limits == LIMIT_WORDS())) {
        throw USAGE_ERROR("--device", "not together with limits by hand");
    }
    const ANSWER_FORM form = line.m_command == COMMAND::EXPORT     ? ANSWER_FORM::EXPORT
                             : line.m_list_form == LIST_FORM::JSON ? ANSWER_FORM::OBJECT
                             : line.m_is_summary                   ? ANSWER_FORM::SUMMARY
                                                                   : ANSWER_FORM::TEXT;
    return static_cast<EXIT_STATUS>(
        answer_for_real_device(line.m_primitive, line.m_request, form, text));
}

EXIT_STATUS export_instance(const COMMAND_LINE& line, std::string* text)
{
    if (line.m_primitive.m_device) {
        return answer_on_real_device(line, text);
    }
    return static_cast<EXIT_STATUS>(
        export_generic(line.m_primitive, line.m_request, line.m_limits, text));
}

// Whether several settings are asked for.
bool lists_others(const COMMAND_LINE& line)
{
    return line.m_command == COMMAND::ALTERNATIVES || line.m_command == COMMAND::CRYSTAL ||
           line.m_alternatives.m_top || line.m_alternatives.m_plls;
}

EXIT_STATUS list_others(const COMMAND_LINE& line, const REQUEST& request, std::string* text)
{
    const bool is_json = line.m_list_form == LIST_FORM::JSON;
    if (is_json && request.m_device != nullptr) {
        name_sources(*request.m_device, request.m_limits.get());
    }
    if (line.m_command == COMMAND::CRYSTAL) {
        return list_crystals(request, line.m_alternatives, line.m_device, line.m_list_form, text);
    }
    if (line.m_alternatives.m_plls) {
        return list_groups(request, line.m_alternatives, line.m_device, text);
    }
    return list_alternatives(request, line.m_alternatives, line.m_device, line.m_list_form, text);
}

// A crystal is what is sought: any input will do to read the outputs.
REQUEST_WORDS choose_input(const COMMAND_LINE& line)
{
    REQUEST_WORDS words = line.m_request;
    if (line.m_command == COMMAND::CRYSTAL) {
        if (words.m_in) {
            throw USAGE_ERROR("--in", "crystal looks for the input; --inputs names those to try");
        }
        words.m_in = "25MHz";
    }
    return words;
}

EXIT_STATUS answer_request(const COMMAND_LINE& line, std::string* text)
{
    if (line.m_primitive.m_device) {
        return answer_on_real_device(line, text);
    }
    if (line.m_list_form == LIST_FORM::CSV) {
        throw USAGE_ERROR("--format", "'csv' is not legal for one answer; expected table or json");
    }
    const std::unique_ptr<DEVICE> device = open_device(line.m_device);
    const REQUEST request = read_request(choose_input(line), line.m_limits, device.get());
    if (lists_others(line)) {
        return list_others(line, request, text);
    }
    const ANSWER answer(request, *request.m_limits, advice::EFFORT::THOROUGH);
    const std::vector<advice::JUDGED_LIMIT>& judged = answer.get_verdict().m_limits;
    const bool is_broken =
        std::any_of(judged.begin(), judged.end(),
                    [](const advice::JUDGED_LIMIT& limit) { return !limit.m_kept; });
    const bool is_json = line.m_list_form == LIST_FORM::JSON;
    if ((is_broken || is_json) && device != nullptr) {
        name_sources(*device, request.m_limits.get());
    }
    if (line.m_command == COMMAND::STEPS) {
        *text = report_steps(request, answer);
    } else if (line.m_command == COMMAND::DUMP) {
        *text = report_dump(request, answer, line.m_dump_form);
    } else if (line.m_command == COMMAND::EXPLAIN) {
        *text = explain(request, answer, line.m_device);
    } else if (is_json) {
        *text = write_json(request, answer, line.m_device);
    } else if (line.m_is_summary) {
        *text = report_summary(request, answer);
    } else {
        *text = report_synthesis(request, answer) + note_unused_database(line.m_device) +
                explain_shortly(request, answer, line.m_device);
    }
    return answer.is_met() ? STATUS_MET : STATUS_NOT_MET;
}

EXIT_STATUS list_limits(const COMMAND_LINE& line, std::string* text)
{
    const std::unique_ptr<DEVICE> device = open_device(line.m_device);
    const auto limits = make_limits(device.get(), read_limits(line.m_limits));
    if (device != nullptr) {
        name_sources(*device, limits.get());
    }
    *text = report_limits(*limits, line.m_list_form);
    if (line.m_list_form == LIST_FORM::TABLE) {
        *text += note_unused_database(line.m_device);
    }
    return STATUS_MET;
}

// Messages go out while files are read.
EXIT_STATUS lint_database(const LINT_REQUEST& request, std::string* text)
{
    if (request.m_explain) {
        *text = explain_rule(*request.m_explain == "all" ? "" : *request.m_explain);
        return STATUS_MET;
    }
    std::string problem;
    OUTPUT_STREAM output;
    const LINT_VERDICT verdict = lint(request, &output, &problem);
    std::string reason;
    if (output.finish(&reason) == WRITE_RESULT::FAILED) {
        write_error(("cannot write the output: " + reason).c_str());
        return STATUS_IO_FAILED;
    }
    switch (verdict) {
    case LINT_VERDICT::CLEAN:
        break;
    case LINT_VERDICT::WARNINGS:
        return STATUS_NOT_MET;
    case LINT_VERDICT::ERRORS:
        return STATUS_LINT_ERRORS;
    case LINT_VERDICT::UNREADABLE:
        write_error(problem.c_str());
        return STATUS_IO_FAILED;
    }
    return STATUS_MET;
}

EXIT_STATUS run_command(int count, const char* const* words, std::string* text)
{
    const std::optional<COMMAND_LINE> line = read_command_line(count, words, text);
    if (!line) {
        return STATUS_MET;
    }
    switch (line->m_command) {
    case COMMAND::ERRORS:
        *text = report_errors();
        return STATUS_MET;
    case COMMAND::RATIOS:
        return list_ratios(*line, text);
    case COMMAND::DEVICES:
        return list_devices(*line, text);
    case COMMAND::DEVICE:
        return show_device(*line, text);
    case COMMAND::TABLE:
        return show_table(*line, text);
    case COMMAND::LIMITS:
        return list_limits(*line, text);
    case COMMAND::NEW_DEVICE:
        *text = write_new_device(line->m_new_device);
        return STATUS_MET;
    case COMMAND::LINT:
        return lint_database(line->m_lint, text);
    case COMMAND::KEYWORDS:
        *text =
            report_keywords(line->m_words.empty() ? "" : line->m_words.front(), line->m_list_form);
        return STATUS_MET;
    case COMMAND::DIFF: {
        int differences = 0;
        *text = report_database_diff(line->m_words[0], line->m_words[1], line->m_list_form,
                                     &differences);
        return differences == 0 ? STATUS_MET : STATUS_NOT_MET;
    }
    case COMMAND::VERIFY:
        return verify_any({line->m_primitive, line->m_device, line->m_list_form}, text);
    case COMMAND::EXPORT:
        return export_instance(*line, text);
    case COMMAND::SYNTH:
    case COMMAND::EXPLAIN:
    case COMMAND::ALTERNATIVES:
    case COMMAND::CRYSTAL:
    case COMMAND::STEPS:
    case COMMAND::DUMP:
        break;
    }
    return answer_request(*line, text);
}

EXIT_STATUS run(int count, const char* const* words)
{
    std::string text;
    EXIT_STATUS status = run_command(count, words, &text);
    if (MEM_MANAGER::was_exhausted()) {
        throw std::bad_alloc();
    }
    if (had_internal_errors()) {
        status = STATUS_INTERNAL_ERROR;
    }
    std::string reason;
    if (write_output(text, &reason) == WRITE_RESULT::FAILED) {
        write_error(("cannot write the output: " + reason).c_str());
        status = STATUS_IO_FAILED;
    }
    return status;
}

}  // namespace

int main(int count, char** words)
{
    keep_running_without_reader();
    watch_internal_errors();
    try {
        return run(count, words);
    } catch (const USAGE_ERROR& error) {
        write_error(error.what());
        return STATUS_USAGE;
    } catch (const INPUT_ERROR& error) {
        write_error(error.what());
        return STATUS_IO_FAILED;
    } catch (const std::bad_alloc&) {
        end_without_memory();
    }
}
