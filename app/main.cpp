// pllcalc: computes the settings of a phase-locked loop from the clocks that are wanted.

#include "answer.h"
#include "command_line.h"
#include "internal_errors.h"
#include "output.h"
#include "report.h"
#include "usage_error.h"

#include <cstdio>
#include <new>
#include <string>

namespace {

enum EXIT_STATUS
{
    STATUS_MET = 0,
    STATUS_NOT_MET = 1,
    STATUS_USAGE = 2,
    STATUS_IO_FAILED = 4,
    STATUS_INTERNAL_ERROR = 5
};

void write_error(const char* message)
{
    std::fprintf(stderr, "pllcalc: %s\n", message);
}

EXIT_STATUS list_ratios(const COMMAND_LINE& line, std::string* text)
{
    if (!line.m_request.m_in) {
        throw USAGE_ERROR("--in", "the input clock is needed, such as --in 27MHz");
    }
    int count = 0;
    *text = report_ratios(read_input("--in", *line.m_request.m_in), line.m_ratio_form, &count);
    if (count == 0) {
        write_error("no VCO ratio can be realised from this input clock");
    }
    return count == 0 ? STATUS_NOT_MET : STATUS_MET;
}

EXIT_STATUS answer_request(const COMMAND_LINE& line, std::string* text)
{
    const REQUEST request = read_request(line.m_request);
    const ANSWER answer(request);
    if (line.m_command == COMMAND::STEPS) {
        *text = report_steps(request, answer);
    } else if (line.m_command == COMMAND::DUMP) {
        *text = report_dump(request, answer, line.m_dump_form);
    } else {
        *text = report_synthesis(request, answer);
    }
    return answer.is_met() ? STATUS_MET : STATUS_NOT_MET;
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
    case COMMAND::SYNTH:
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
    } catch (const std::bad_alloc&) {
        write_error("out of memory");
        return STATUS_IO_FAILED;
    }
}
