// The words of one output: "74.25MHz,phase=90,duty=40" or "ratio=11/4,even".
#pragma once

#include "app/request/request.h"

#include <string>

// Fills the wish and the library's record of the output. `argument` names the output in messages.
// Throws a USAGE_ERROR.
OUTPUT_WISH read_output(const std::string& argument, const std::string& text,
                        const RATIONAL& input_frequency, PLL_USER_TAP* tap);
