// `verify` of a hardware description: the primitives in it, what they come to, and whether that is
// legal.
#pragma once

#include "advice/primitive/judge.h"

#include <string>

enum class VERIFY_RESULT
{
    CLEAN,      // nothing is illegal
    ILLEGAL,    // at least one instance is
    NO_SETTING  // there is none to judge
};

VERIFY_RESULT result_of(const advice::VERILOG_VERDICT& verdict);

// For people: a line for each instance, its clocks, and the limits that are not simply kept.
std::string report_verilog(const advice::VERILOG_VERDICT& verdict, const std::string& file);

// For programs: one object.
std::string write_json_verilog(const advice::VERILOG_VERDICT& verdict, int exit_status);
