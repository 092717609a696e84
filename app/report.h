// What the commands print, as texts of at most 100 columns.
#pragma once

#include "answer.h"
#include "request.h"

#include <string>

enum class DUMP_FORM
{
    FULL,
    COMPACT
};
enum class RATIO_FORM
{
    TABLE,
    CSV
};

// The answer to a request: whether it is met, settings, and what they achieve.
std::string report_synthesis(const REQUEST& request, const ANSWER& answer);

// "MET" or "NOT MET" with the reasons.
std::string report_verdict(const REQUEST& request, const ANSWER& answer);

// The legal phase steps and duty cycles around the answer, for each output.
std::string report_steps(const REQUEST& request, const ANSWER& answer);

// The library's own reports of request, settings and achieved properties.
std::string report_dump(const REQUEST& request, const ANSWER& answer, DUMP_FORM form);

// All VCO ratios that can be realised from an input clock; `count` receives how many.
std::string report_ratios(const INPUT_CLOCK& input, RATIO_FORM form, int* count);

// The error values of the library with their texts.
std::string report_errors();
