// The words of a request, and the request that they make.
#pragma once

#include "app/numbers/rational.h"

#include "pll_prop.h"

#include <optional>
#include <string>
#include <vector>

class DEVICE;
class PLL;

// The values of PLL_PROP::m_bandwidth_type.
enum BANDWIDTH_TYPE
{
    BANDWIDTH_HIGH,
    BANDWIDTH_MEDIUM,
    BANDWIDTH_LOW,
    BANDWIDTH_AUTO,
    BANDWIDTH_CUSTOM
};

// The words for those but the custom one, which is a frequency.
inline constexpr const char* BANDWIDTH_WORDS[] = {"high", "medium", "low", "auto"};

// What the command line holds, unread.
struct REQUEST_WORDS
{
    std::optional<std::string> m_in;
    std::optional<std::string> m_in2;
    std::vector<std::string> m_outs;
    std::optional<std::string> m_bandwidth;
    std::optional<std::string> m_spread;
    std::optional<std::string> m_spread_rate;
    std::optional<std::string> m_feedback;
    std::optional<std::string> m_vco_ratio;
    std::optional<std::string> m_max_outputs;
    std::optional<std::string> m_tolerance;
    bool m_reconfig = false;
    bool m_exact = false;

    bool operator==(const REQUEST_WORDS& other) const = default;
};

// An input clock. The library knows it by its period in whole ps, which need not be exact.
struct INPUT_CLOCK
{
    RATIONAL m_frequency;  // Hz
    RATIONAL m_period;     // ps
    int m_library_period;  // ps, nearest to the period
};

// How far a phase may be asked for, either way, in degrees of the output.
constexpr int MAX_PHASE = 360;

// What an output was asked for, exactly.
struct OUTPUT_WISH
{
    RATIONAL m_ratio;  // to the input
    RATIONAL m_phase;  // degrees, 360 to a period of the output
};

struct REQUEST
{
    INPUT_CLOCK m_input;
    std::optional<INPUT_CLOCK> m_input2;
    std::vector<OUTPUT_WISH> m_outputs;
    int m_max_outputs;                    // of the device
    std::optional<RATIONAL> m_tolerance;  // largest error of an output, a part of one
    PLL_PROP m_prop;                      // what the library is asked for
    const DEVICE* m_device;               // not owned; null: the built-in limits
};

// Both throw a USAGE_ERROR, or an INPUT_ERROR for a device of which the database says too little.
INPUT_CLOCK read_input(const std::string& argument, const std::string& text);
REQUEST read_request(const REQUEST_WORDS& words, const DEVICE* device);

// Gives the limits of the request's device to a PLL. Throws an INPUT_ERROR likewise.
void set_limits(const REQUEST& request, PLL* pll);
