// Prints messages on a database.
#pragma once

#include "app/lint/messages.h"

#include <string>

// FILE:LINE:COLUMN: error|warning: TEXT [NAME], one a line; with `carets` also the source line and
// a caret below its column.
std::string print_as_text(const LINT_MESSAGES& messages, bool carets);

std::string print_as_json(const LINT_MESSAGES& messages);

// Static Analysis Results Interchange Format 2.1.0, for review tools.
std::string print_as_sarif(const LINT_MESSAGES& messages);
