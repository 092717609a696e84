// The ways in which the outputs of a primitive can make the clocks of a request: which output makes
// which clock, what is fed back, and which counters are free.
#pragma once

#include "advice/request/request.h"
#include "advice/sheets/sheet.h"

#include <string>
#include <vector>

namespace advice {

// How one clock is made.
struct PLAN_CLOCK
{
    std::string m_output;          // of the sheet
    std::size_t m_counter = 0;     // index of the counter that it comes from
    std::vector<int> m_divisions;  // behind the counter, legal ones, ascending; {1}: none
    std::string m_select;          // value of the select parameter, empty: none is needed
    RATIONAL m_fixed_phase;        // that the selection gives
};

// A counter of the VCO.
struct PLAN_COUNTER
{
    std::string m_output;
    FIGURE_RANGE m_range;
    bool m_has_eighths = false;
};

constexpr std::size_t NO_COUNTER = static_cast<std::size_t>(-1);

struct PLAN
{
    std::vector<PLAN_CLOCK> m_clocks;  // as those of the request
    std::vector<PLAN_COUNTER> m_counters;
    std::string m_path;                   // value of the path parameter
    std::size_t m_fed_back = NO_COUNTER;  // index of the counter in the loop
    std::string m_spare;                  // output that is only fed back; it is M then
    int m_loop = 1;                       // further division in the loop
    FIGURE_RANGE m_m;                     // legal factors
    bool m_is_detour = false;             // only for what plans without it do not meet
    int m_order = 0;                      // of plans that do as well, the least is taken
    bool m_has_eighths = false;           // of M
};

// What a plan may use.
struct PLAN_OPTIONS
{
    bool m_fractions = false;  // eighths where the device has them
};

// All plans for a request, the simplest first; empty when the device has too few outputs.
std::vector<PLAN> make_plans(const REQUEST& request, const SHEET& sheet, const std::string& grade,
                             const PLAN_OPTIONS& options);

}  // namespace advice
