// Whether a primitive's setting keeps the limits of its device, and what sources differ about.
#pragma once

#include "advice/primitive/setting.h"
#include "advice/sheets/catalog.h"

#include <string>
#include <vector>

namespace advice {

enum class LEGALITY
{
    LEGAL,
    ILLEGAL,
    DEPENDS  // on the source of a figure, or on the grade that the source file leaves open
};

// "legal", "illegal", "depends".
const char* name_of(LEGALITY legality);

// One figure of a sheet against one value of a setting.
struct JUDGED_FIGURE
{
    FIGURE m_figure;
    std::string m_device;          // "xc7-plle2:-1" when it is of one of several that were tried
    std::string m_output;          // empty: the loop
    RATIONAL m_value;              // in the figure's unit
    bool m_kept = true;            // by the range to be taken
    std::vector<bool> m_by_other;  // whether each of the other ranges is kept

    // Whether a source disagrees with the range to be taken.
    bool sources_differ() const;
    // A source that is to be taken refuses, and another one allows.
    bool depends() const;
};

// A device that an instance may stand in.
struct CANDIDATE_DEVICE
{
    const SHEET* m_sheet;
    std::string m_grade;
};

struct JUDGED_INSTANCE
{
    PRIMITIVE_SETTING m_setting;
    std::vector<CANDIDATE_DEVICE> m_devices;  // that it was judged for; several: left open
    LEGALITY m_legality = LEGALITY::ILLEGAL;
    std::vector<JUDGED_FIGURE> m_figures;  // of the first device that decides
};

// All figures of one device against a setting.
std::vector<JUDGED_FIGURE> judge_for(const PRIMITIVE_SETTING& setting,
                                     const CANDIDATE_DEVICE& device);

// Judges a setting for every device that it may stand in.
void judge(JUDGED_INSTANCE* instance);

// All instances of a Verilog source.
struct VERILOG_VERDICT
{
    std::vector<JUDGED_INSTANCE> m_instances;
    std::string m_problem;  // why there is nothing to judge, else empty
};

// What the user adds to a source.
struct VERIFY_OPTIONS
{
    std::optional<RATIONAL> m_input;        // MHz; goes before what the source says
    std::optional<DEVICE_CHOICE> m_device;  // likewise
};

// Finds and judges the primitives of a source. Those without parameters are left out.
VERILOG_VERDICT verify_verilog(const std::string& text, const SHEET_CATALOG& catalog,
                               const VERIFY_OPTIONS& options);

}  // namespace advice
