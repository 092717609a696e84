#include "advice/why/counts.h"

#include "advice/answer/answer.h"

#include "pll_settings.h"

#include <cstdint>

namespace advice {

namespace {

constexpr std::int64_t MOST_COUNTED = 2000000;
constexpr int BANDWIDTH_CUSTOM = static_cast<int>(BANDWIDTH_KIND::CUSTOM);

std::string legal_line(const char* limit, std::int64_t count)
{
    return std::string("legal for the ") + limit + ": " + std::to_string(count);
}

void count_limits(const PLL_PROP& prop, const PLL_SETTING_COUNTS& counts,
                  std::vector<std::string>* lines)
{
    lines->push_back("settings of post-scale, M and N: " + std::to_string(counts.m_all));
    lines->push_back(legal_line("VCO", counts.m_vco));
    lines->push_back(legal_line("PFD", counts.m_pfd));
    lines->push_back(legal_line("VCO and PFD", counts.m_vco_pfd));
    if (prop.m_fin2_period != 0) {
        lines->push_back(legal_line("second input too", counts.m_second_input));
    }
    if (prop.m_down_spread > 0.0) {
        lines->push_back(legal_line("spread too", counts.m_spread));
    }
    if (prop.m_bandwidth_type == BANDWIDTH_CUSTOM) {
        lines->push_back(legal_line("bandwidth too", counts.m_bandwidth));
    }
    lines->push_back("legal in all: " + std::to_string(counts.m_legal));
}

}  // namespace

std::vector<std::string> count_settings(const REQUEST& request, const LIMITS& limits)
{
    const PLL_PROP prop = to_prop(request);
    PLL pll(prop.m_taps_count, PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    const PLL_SETTING_COUNTS counts = pll_count_settings(pll, prop, MOST_COUNTED);

    std::vector<std::string> lines;
    count_limits(prop, counts, &lines);
    for (std::size_t i = 0; i < request.m_outputs.size() && i < PLL_MAX_TAPS; ++i) {
        lines.push_back(name_of_output(request, i) + " is met by " +
                        std::to_string(counts.m_output_met[i]) + " of the legal settings");
    }
    if (request.m_outputs.size() > 1) {
        lines.push_back("all outputs are met by " + std::to_string(counts.m_all_met) +
                        " of the legal settings");
    }
    if (!counts.m_is_complete) {
        lines.push_back("counting was cut: only the first " + std::to_string(MOST_COUNTED) +
                        " rows and legal settings were looked at");
    }
    return lines;
}

}  // namespace advice
