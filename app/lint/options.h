// The words of "pllcalc lint".
#pragma once

#include "app/lint/lint.h"

#include <CLI/CLI.hpp>

inline constexpr char LINT_EXAMPLES[] = "  pllcalc lint data/sample\n"
                                        "  pllcalc lint data/sample/sorrel/sorrel_pll.txt -Werror\n"
                                        "  pllcalc lint data/sample --format sarif\n"
                                        "  pllcalc lint --explain limits-crossed\n";

void add_lint_options(CLI::App* app, LINT_REQUEST* request);

// Throws a USAGE_ERROR unless the words named what to look at.
void require_lint_path(const LINT_REQUEST& request);
