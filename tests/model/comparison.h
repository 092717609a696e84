// One random case through the library and through the model, and what must hold besides.
#pragma once

#include "random_request.h"

#include <map>
#include <string>

// What came out of one case.
struct COMPARISON
{
    std::string m_difference;  // empty: library and model agree in everything
    std::string m_refusal;     // what the verifier holds against a success; empty: nothing
    bool m_met = false;
    int m_error = 0;  // of the PLL afterwards
    bool m_has_relative_error = false;
    int m_reports = 0;
};

// Runs the synthesis and the properties of a case both ways; compares results, reports and every
// field, doubles bit for bit.
COMPARISON compare_case(const RANDOM_CASE& random_case);

// The same with debugging on, in the current directory, whose "debug.log" is replaced: the answer
// must be the same, and the trace that of the plain loop, candidate by candidate. Says what
// differs.
std::string compare_debugging(const RANDOM_CASE& random_case);

// Compares the listings of VCO ratios; empty when they agree.
std::string compare_ratios(const RANDOM_CASE& random_case);

// ---- What must hold whatever the answer is; each empty when it holds.

// A copy made before the first synthesis gives the same answer.
std::string check_copy(const RANDOM_CASE& random_case);

// The order in which outputs are listed does not decide whether a request is met.
std::string check_order(const RANDOM_CASE& random_case);

// Wider limits keep a met request met.
std::string check_wider_limits(const RANDOM_CASE& random_case);

// The records that the library constructs are those that the model starts from.
std::string check_defaults();
