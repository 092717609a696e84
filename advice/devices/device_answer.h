// Exact answers for real devices: among all settings that keep every limit of a device sheet, the
// one that the library would take first, whatever counters the device has. Counters are so few
// that all of them are tried.
//
// Settings are ranked as docs/search.md ranks them: met wishes first, then the sum of the errors
// (or, on wish, the largest), then what phases and duty cycles miss, then the smaller N, M up to
// 40, and the
// faster VCO, with a bonus for an even M.
#pragma once

#include "advice/primitive/judge.h"
#include "advice/request/request.h"

#include <optional>
#include <string>
#include <vector>

namespace advice {

enum class OBJECTIVE
{
    SUM,   // of the errors
    WORST  // the largest relative error
};

struct DEVICE_REQUEST
{
    REQUEST m_request;
    CANDIDATE_DEVICE m_device;
    OBJECTIVE m_objective = OBJECTIVE::SUM;
    bool m_fractions = true;  // eighths may be used where whole numbers miss
};

// How a clock of the request comes out.
struct DEVICE_CLOCK
{
    std::string m_output;             // of the sheet
    std::string m_select;             // which clock it takes, where it has a choice
    RATIONAL m_count;                 // of the counter that it comes from
    RATIONAL m_division;              // of the VCO in all
    RATIONAL m_frequency;             // MHz
    RATIONAL m_error;                 // achieved / asked - 1
    RATIONAL m_delay;                 // VCO periods
    RATIONAL m_phase;                 // degrees of the output, 0 and up to 360
    RATIONAL m_phase_step;            // likewise; 0: it cannot be moved
    RATIONAL m_duty;                  // percent
    bool m_frequency_missed = false;  // of the tolerances of the request
    bool m_phase_missed = false;
    bool m_duty_missed = false;
};

struct DEVICE_ANSWER
{
    bool m_has_setting = false;
    bool m_met = false;  // every wish is kept; limits always are
    bool m_has_fractions = false;
    RATIONAL m_n;
    RATIONAL m_m;                          // the factor in the loop beside what is fed back
    RATIONAL m_loop;                       // division of the loop in all
    RATIONAL m_pfd;                        // MHz
    RATIONAL m_vco;                        // MHz
    std::string m_path;                    // value of the path parameter
    std::string m_fed_back;                // output in the loop; empty: M alone
    std::string m_spare;                   // the same when it makes no clock of the request
    std::vector<DEVICE_CLOCK> m_clocks;    // in the order of the request
    std::vector<JUDGED_FIGURE> m_figures;  // all limits of the setting
    std::vector<std::string> m_reasons;    // why wishes are missed
};

// Counts that somebody chose for a request.
struct CLOCK_SETTING
{
    std::string m_output;
    std::string m_select;
    RATIONAL m_count;
    RATIONAL m_division;  // of the VCO in all
};

struct DEVICE_SETTING
{
    RATIONAL m_n;
    RATIONAL m_m;                         // the factor in the loop beside what is fed back
    std::string m_fed_back;               // output in the loop; empty: M alone
    std::vector<CLOCK_SETTING> m_clocks;  // in the order of the request
};

// What a setting comes to, and whether it keeps wishes and limits. It has no setting when the
// device cannot be wired so.
DEVICE_ANSWER describe_setting(const DEVICE_REQUEST& request, const DEVICE_SETTING& setting);

// The best setting there is. The request must have no problem (find_problem).
DEVICE_ANSWER answer_for_device(const DEVICE_REQUEST& request);

// The first primitive of the device that has all the outputs in use.
std::string primitive_of(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer);

// The setting as its primitive would have it; what verification judges.
PRIMITIVE_SETTING to_setting(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer);

}  // namespace advice
