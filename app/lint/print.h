// Writes messages for people and for programs, one after the other as they come.
#pragma once

#include "app/lint/messages.h"
#include "app/output/output.h"

#include <memory>

enum class LINT_FORMAT
{
    TEXT,
    JSON,
    SARIF
};

// `carets`: in a text, the source line stands below each message.
std::unique_ptr<LINT_PRINTER> make_lint_printer(LINT_FORMAT format, bool carets,
                                                const READINGS* readings, OUTPUT_STREAM* output);

std::unique_ptr<LINT_PRINTER> make_sarif_printer(const READINGS* readings, OUTPUT_STREAM* output);
