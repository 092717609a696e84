// The command line of the program.
#pragma once

#include "app/command/alternatives.h"
#include "app/devices/device.h"
#include "app/devices/new_device.h"
#include "app/lint/lint.h"
#include "app/primitive/words.h"
#include "app/reports/reports.h"
#include "app/request/request.h"

#include <optional>
#include <string>
#include <vector>

enum class COMMAND
{
    SYNTH,
    EXPLAIN,
    ALTERNATIVES,
    CRYSTAL,
    STEPS,
    DUMP,
    RATIOS,
    DEVICES,
    DEVICE,
    TABLE,
    LIMITS,
    NEW_DEVICE,
    ERRORS,
    LINT,
    KEYWORDS,
    DIFF,
    VERIFY,
    EXPORT
};

struct COMMAND_LINE
{
    COMMAND m_command;
    REQUEST_WORDS m_request;  // of ratios, the input alone
    LIMIT_WORDS m_limits;
    DEVICE_WORDS m_device;
    PRIMITIVE_WORDS m_primitive;
    NEW_DEVICE_WORDS m_new_device;
    ALTERNATIVE_WORDS m_alternatives;
    bool m_is_summary = false;
    std::optional<std::string> m_effective_m;  // of table, the M whose rows are wanted
    DUMP_FORM m_dump_form = DUMP_FORM::FULL;
    LIST_FORM m_list_form = LIST_FORM::TABLE;
    LINT_REQUEST m_lint;
    std::vector<std::string> m_words;  // of keywords and diff
    bool m_shows_origins = false;      // of device
    bool m_shows_coverage = false;     // of table
};

// Reads the command line. None when it asks for help or the version: `help` then receives the text.
// Throws a USAGE_ERROR.
std::optional<COMMAND_LINE> read_command_line(int count, const char* const* words,
                                              std::string* help);
