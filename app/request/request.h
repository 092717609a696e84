// The words of a request, and what they ask for.
#pragma once

#include "advice/answer/answer.h"
#include "app/numbers/rational.h"

#include "pll_prop.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class DEVICE;
class PLL;

using advice::ANSWER;
using advice::INPUT_CLOCK;
using advice::OUTPUT_PHASE;
using advice::OUTPUT_RESULT;
using advice::OUTPUT_WISH;

// The words for the bandwidths but the custom one, which is a frequency.
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
    std::optional<std::string> m_phase_tolerance;
    std::optional<std::string> m_duty_tolerance;
    std::optional<std::string> m_delay_tolerance;
    std::optional<std::string> m_bandwidth_tolerance;
    std::optional<std::string> m_spread_tolerance;
    std::optional<std::string> m_margin;
    std::optional<std::string> m_phase_margin;
    bool m_reconfig = false;
    bool m_exact = false;

    bool operator==(const REQUEST_WORDS& other) const = default;
};

// Limits by hand, unread.
struct LIMIT_WORDS
{
    std::optional<std::string> m_vco;
    std::optional<std::string> m_pfd;
    std::optional<std::string> m_input_range;
    std::optional<std::string> m_output_range;
    std::optional<std::string> m_m;
    std::optional<std::string> m_n;
    std::optional<std::string> m_k;
    std::optional<std::string> m_post_scales;
    std::optional<std::string> m_taps;

    bool operator==(const LIMIT_WORDS& other) const = default;
};

// How far a phase may be asked for, either way, in degrees of the output.
constexpr int MAX_PHASE = 360;

// A request of the command line: what is asked, of which device, within which limits.
struct REQUEST : advice::REQUEST
{
    explicit REQUEST(advice::REQUEST request);

    int m_device_outputs = 0;          // that may be used
    PLL_PROP m_prop;                   // what the library is asked for first
    const DEVICE* m_device = nullptr;  // not owned; null: the built-in limits
    std::unique_ptr<advice::LIMITS> m_limits;
};

// All throw a USAGE_ERROR, or an INPUT_ERROR for a device of which the database says too little.
INPUT_CLOCK read_input(const std::string& argument, const std::string& text);
advice::LIMITS_BY_HAND read_limits(const LIMIT_WORDS& words);
REQUEST read_request(const REQUEST_WORDS& words, const LIMIT_WORDS& limits, const DEVICE* device);

// The limits of a device, or the built-in ones, and above them those by hand.
std::unique_ptr<advice::LIMITS> make_limits(const DEVICE* device,
                                            const advice::LIMITS_BY_HAND& by_hand);
