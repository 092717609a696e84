// The command line of the program.
#pragma once

#include "report.h"
#include "request.h"

#include <optional>
#include <string>

enum class COMMAND
{
    SYNTH,
    STEPS,
    DUMP,
    RATIOS,
    ERRORS
};

struct COMMAND_LINE
{
    COMMAND m_command;
    REQUEST_WORDS m_request;  // of ratios, the input alone
    DUMP_FORM m_dump_form = DUMP_FORM::FULL;
    RATIO_FORM m_ratio_form = RATIO_FORM::TABLE;
};

// Reads the command line. None when it asks for help or the version: `help` then receives the text.
// Throws a USAGE_ERROR.
std::optional<COMMAND_LINE> read_command_line(int count, const char* const* words,
                                              std::string* help);
