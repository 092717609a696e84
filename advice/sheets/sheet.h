// What a device sheet says: the exact limits of a real device with their sources, how its PLL is
// wired, and how the parameters of its primitive spell a setting. Sheets complement family files,
// which hold whole picoseconds and know nothing of primitives. docs/device-sheets.md describes the
// text form.
#pragma once

#include "advice/numbers/rational.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace advice {

// What a figure bounds.
enum class FIGURE_KIND
{
    INPUT,            // MHz
    PFD,              // MHz
    VCO,              // MHz
    OUTPUT,           // MHz
    FEEDBACK_OUTPUT,  // MHz, an output that is fed back and leads nowhere else
    N,                // counts, as all below
    M,                // the factor in the loop beside the division of a fed back output
    COUNT             // of outputs
};

// A range or a list, as one source or another gives it.
struct FIGURE_RANGE
{
    std::optional<RATIONAL> m_least;  // in the unit of the kind; none: no bound
    std::optional<RATIONAL> m_most;
    std::vector<int> m_values;  // the legal ones, ascending; empty: the range decides

    bool holds(const RATIONAL& value) const;
};

// What another source says in the place of a figure.
struct OTHER_FIGURE
{
    FIGURE_RANGE m_range;  // complete: bounds that the source does not dispute are the figure's
    std::vector<std::string> m_sources;
    std::string m_note;
};

// A limit of the device. Never without a source.
struct FIGURE
{
    FIGURE_KIND m_kind = FIGURE_KIND::INPUT;
    std::vector<std::string> m_grades;   // that it is of; empty: all
    std::vector<std::string> m_outputs;  // likewise
    std::vector<std::string> m_paths;    // feedback paths that it is for; empty: all others
    FIGURE_RANGE m_range;                // to be taken
    std::vector<std::string> m_sources;
    std::string m_note;
    std::vector<OTHER_FIGURE> m_others;
    int m_line = 0;
};

// What a parameter of the primitive sets.
enum class PARAMETER_ROLE
{
    FIXED,             // m_value, whatever the setting
    N,                 // the input's division
    M,                 // the factor in the loop
    PATH,              // what is fed back: SHEET::m_paths
    COUNT,             // the division of an output
    DEGREES,           // phase of an output in its degrees
    COARSE_PHASE,      // VCO periods; m_count - 1 is no delay
    FINE_PHASE,        // eighths of a VCO period
    SIXTEENTHS_PHASE,  // sixteenths of an output's period
    DUTY_SHARE,        // high time, a part of one
    SIXTEENTHS_DUTY,   // likewise in sixteenths
    ENABLE,            // "ENABLED" or "DISABLED"
    SELECT,            // which clock an output takes
    SHIFT_MODE,        // a key of SHEET::m_shift_register
    FILTER_RANGE,      // a code by the PFD: SHEET::m_filter_ranges
    PERIOD_NS,         // of the input
    INPUT_MHZ,         // likewise
    DEVICE             // one of SHEET::m_devices
};

enum class PARAMETER_TYPE
{
    INTEGER,
    REAL,
    STRING,
    BITS,   // a sized literal, or a string of bits in VHDL
    DIGITS  // a string of the digits 0 and 1
};

// How a count is written.
enum class PARAMETER_CODE
{
    COUNT,
    COUNT_LESS_1,
    LOG2
};

struct PARAMETER
{
    std::string m_name;
    std::vector<std::string> m_other_names;  // taken for it when read
    std::vector<std::string> m_primitives;   // that have it; empty: all
    PARAMETER_ROLE m_role = PARAMETER_ROLE::FIXED;
    PARAMETER_TYPE m_type = PARAMETER_TYPE::INTEGER;
    PARAMETER_CODE m_code = PARAMETER_CODE::COUNT;
    std::string m_output;                 // that it is of; empty: of the loop
    std::optional<std::string> m_absent;  // what holds when a file does not write it
    std::string m_value;                  // of PARAMETER_ROLE::FIXED
    int m_width = 0;                      // bits or digits
};

// What a port of the primitive is for.
enum class PORT_ROLE
{
    INPUT,                  // the input clock
    OUTPUT,                 // m_output
    FEEDBACK_IN,            // takes what is fed back
    FEEDBACK_OUT,           // drives it, from the M counter
    INTERNAL_FEEDBACK_OUT,  // drives it, from an output inside
    INTERNAL_FEEDBACK_OF,   // likewise of m_output
    LOCK,
    RESET,
    RESET_LOW,  // active when low
    STANDBY,
    STANDBY_LOW,
    LOW,  // tied
    HIGH
};

struct PORT
{
    std::string m_name;
    std::vector<std::string> m_other_names;
    std::vector<std::string> m_primitives;  // that have it; empty: all
    PORT_ROLE m_role = PORT_ROLE::LOW;
    std::string m_output;
    int m_width = 1;
};

// A clock that leaves the primitive.
struct SHEET_OUTPUT
{
    std::string m_name;
    std::string m_of;   // the output that it is made of; empty: of the VCO
    int m_divides = 1;  // by, when it has no parameter for that
    std::vector<std::string> m_primitives;
};

struct GRADE
{
    std::string m_name;
    std::string m_part;  // of the family file
};

struct FILTER_RANGE
{
    std::optional<RATIONAL> m_below;  // MHz of the PFD; none: whatever is left
    int m_code = 0;
};

// A value of the path parameter that names no output.
inline constexpr const char* PATH_UNKNOWN = "unknown";
inline constexpr const char* PATH_SHIFT_REGISTER = "shift register";

struct SHEET
{
    std::string m_name;    // "ecp5"
    std::string m_title;   // "ECP5 PLL"
    std::string m_family;  // of the database beside
    std::string m_file;    // that it was read from
    std::string m_filter;  // "not published"
    std::string m_constraints;
    std::string m_input_attribute;  // an attribute that gives the input in MHz
    std::string m_feedback;         // the output that is always fed back; empty: see m_paths
    std::vector<std::string> m_primitives;  // the first is the one to write
    std::vector<std::string> m_accepts;     // older ones that the device takes too
    std::vector<std::string> m_devices;     // values of PARAMETER_ROLE::DEVICE
    std::vector<std::string> m_eighths;     // "m" and outputs that may count in eighths
    std::vector<SHEET_OUTPUT> m_outputs;
    std::vector<PARAMETER> m_parameters;
    std::vector<PORT> m_ports;
    std::vector<GRADE> m_grades;  // the first is meant when none is named
    std::vector<FIGURE> m_figures;
    std::vector<FILTER_RANGE> m_filter_ranges;
    std::map<std::string, std::string> m_paths;  // value of the parameter to output; "": M alone
    std::map<int, int> m_shift_register;         // mode to division
    std::map<std::string, std::string> m_sources;

    // Null when there is none.
    const SHEET_OUTPUT* find_output(const std::string& name) const;
    const GRADE* find_grade(const std::string& name) const;
    const PARAMETER* find_parameter(PARAMETER_ROLE role, const std::string& output,
                                    const std::string& primitive) const;

    // The figure of a kind for a grade, an output ("" for the loop) and a path; null: no limit.
    const FIGURE* find_figure(FIGURE_KIND kind, const std::string& grade, const std::string& output,
                              const std::string& path) const;

    bool counts_eighths(const std::string& what) const;
};

// Whether `list` is empty or holds `name`.
bool covers(const std::vector<std::string>& list, const std::string& name);

// "vco", "pfd", ... as sheets spell it; "MHz" or "".
const char* name_of(FIGURE_KIND kind);
const char* unit_of(FIGURE_KIND kind);

// "400 to 800", "2, 4, 8", "from 10", "no limit".
std::string to_text(const FIGURE_RANGE& range);

}  // namespace advice
