// What a primitive's parameters come to: an exact setting of its PLL.
#pragma once

#include "advice/primitive/instances.h"
#include "advice/sheets/sheet.h"

#include <optional>
#include <string>
#include <vector>

namespace advice {

// A clock that leaves a primitive.
struct PRIMITIVE_OUTPUT
{
    std::string m_name;               // as users call it: "CLKOP", "PLLOUT_B (GENCLK_HALF)"
    std::string m_sheet_name;         // of the sheet: "PLLOUT_B"
    RATIONAL m_count;                 // division of the VCO by its own counter
    RATIONAL m_division;              // of the VCO in all
    RATIONAL m_frequency;             // MHz
    std::optional<RATIONAL> m_phase;  // degrees of the output
    std::optional<RATIONAL> m_duty;   // percent
    bool m_has_counter = true;        // else another output's
    bool m_is_feedback_only = false;  // is fed back and leads nowhere else
};

// Something that can be said of a setting and breaks no limit.
struct PRIMITIVE_NOTE
{
    int m_line = 0;
    std::string m_text;
};

struct PRIMITIVE_SETTING
{
    std::string m_primitive;
    std::string m_name;
    int m_line = 0;
    std::string m_path;               // value of the path parameter
    std::string m_fed_back;           // the output in the loop; empty: M alone
    std::optional<RATIONAL> m_input;  // MHz
    RATIONAL m_n{1};
    RATIONAL m_m{1};     // the factor beside the division of the output that is fed back
    RATIONAL m_loop{1};  // what the VCO is divided by in all on its way back
    RATIONAL m_pfd;      // MHz
    RATIONAL m_vco;      // MHz
    std::vector<PRIMITIVE_OUTPUT> m_outputs;     // those in use whose counts are not 0
    std::vector<PRIMITIVE_OUTPUT> m_impossible;  // those that divide by 0 or less
    std::vector<PRIMITIVE_NOTE> m_notes;
    std::string m_problem;  // why it cannot be computed; empty when it can
};

// Computes the setting of an instance. `input` (MHz) goes before what the source says of it.
PRIMITIVE_SETTING compute_setting(const INSTANCE& instance, const SHEET& sheet,
                                  const std::optional<RATIONAL>& input);

// The frequency in MHz of a period that a source writes in ns: the one with the fewest decimals
// that rounds to it, as 12 for 83.333.
RATIONAL frequency_of_period(const RATIONAL& period);

}  // namespace advice
