#include "advice/why/miss.h"
#include "app/devices/origin.h"
#include "app/output/format.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"

#include "pll.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

constexpr int PERCENT_DECIMALS = 1;
constexpr double NEAR = 5.0;       // percent to a limit that count as near
constexpr double TOLERANCE = 1.0;  // ps, by which the library widens every range

// A limit that the search holds, and what the answer makes of it.
struct MET_LIMIT
{
    const char* m_name;
    std::string m_keyword;
    const INPUT_CLOCK* m_input;
    double m_period;  // ps, of the answer, as the library takes the input
};

std::vector<MET_LIMIT> list_met_limits(const REQUEST& request, const ANSWER& answer)
{
    const PLL& pll = answer.get_pll();
    const INPUT_CLOCK* const input = &request.m_input;
    const int post_scale = advice::settled_post_scale(request, answer);
    const std::string suffix = "_post_scale " + std::to_string(post_scale);
    const bool is_spread =
        advice::vco_max_period(request, pll, post_scale) != pll.get_vco_max_period(post_scale);
    const double pfd_period = double(request.m_prop.m_fin_period) * pll.get_n();
    std::vector<MET_LIMIT> limits = {
        {"VCO highest", "vco_min" + suffix, input, pll.get_vco_period()},
        {"VCO lowest", (is_spread ? "ss_vco_max" : "vco_max") + suffix, input,
         pll.get_vco_period()},
        {"PFD highest", "pfd_min", input, pfd_period},
        {"PFD lowest", "pfd_max", input, pfd_period},
        {"input highest", "input_min", input, double(request.m_prop.m_fin_period)},
    };
    if (request.m_input2) {
        const double second = request.m_prop.m_fin2_period;
        const INPUT_CLOCK* const input2 = &*request.m_input2;
        limits.push_back({"second PFD highest", "pfd_min", input2, second * pll.get_n()});
        limits.push_back({"second PFD lowest", "pfd_max", input2, second * pll.get_n()});
        limits.push_back({"second input highest", "input_min", input2, second});
    }
    return limits;
}

const DEVICE_LIMIT* find_limit(const std::string& keyword)
{
    const std::span<const DEVICE_LIMIT> limits = list_limits();
    const auto found = std::find_if(limits.begin(), limits.end(), [&](const DEVICE_LIMIT& limit) {
        return keyword == limit.m_keyword;
    });
    return found == limits.end() ? nullptr : &*found;
}

// The answer's own period, without the rounding of the input's.
double exact_period(const MET_LIMIT& met)
{
    return met.m_period * met.m_input->m_period.to_double() / met.m_input->m_library_period;
}

// The distance of a frequency to its limit in percent of the limit; negative beyond it.
double distance(LIMIT_KIND kind, int limit, double period)
{
    const double part = kind == LIMIT_KIND::SMALLEST ? 1.0 - limit / period : limit / period - 1.0;
    return part * PERCENT;
}

const char* judge(LIMIT_KIND kind, int limit, double period)
{
    const double beyond = kind == LIMIT_KIND::SMALLEST ? limit - period : period - limit;
    if (beyond > TOLERANCE) {
        return "BEYOND";
    }
    return distance(kind, limit, period) < NEAR ? "near" : "";
}

void append_met_limits(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"limit", "", ALIGN::LEFT},
                      {"", "MHz", ALIGN::RIGHT},
                      {"set by device", "", ALIGN::LEFT},
                      {"answer", "MHz", ALIGN::RIGHT},
                      {"distance", "%", ALIGN::RIGHT},
                      {"", "", ALIGN::LEFT}});
    for (const MET_LIMIT& met : list_met_limits(request, answer)) {
        const DEVICE_LIMIT* const limit = find_limit(met.m_keyword);
        if (limit == nullptr) {
            continue;
        }
        const int value = limit->m_read(request.m_device->get_info().m_timing_info);
        if (is_given(value)) {
            table.add_row(
                {met.m_name, format_period_as_mhz(value), find_origin(*request.m_device, *limit),
                 format_period_as_mhz(exact_period(met)),
                 format_fixed(distance(limit->m_kind, value, met.m_period), PERCENT_DECIMALS),
                 judge(limit->m_kind, value, met.m_period)});
        }
    }
    *text += "\n";
    table.append_to(text);
}

// A count of the answer, beside the largest that a device has.
struct USED_COUNT
{
    const char* m_name;
    int m_used;
    int m_largest;
};

std::vector<USED_COUNT> list_counts(const PLL& pll, const PLL_BASIC_INFO& device)
{
    int half = 0;
    for (int i = 0; i < std::min(pll.m_total_taps_count, PLL_MAX_TAPS); ++i) {
        half = std::max({half, pll.m_taps[i].m_high, pll.m_taps[i].m_low});
    }
    return {
        {"M", pll.get_m(), device.m_m_counter_max},
        {"N", pll.get_n(), device.m_n_counter_max},
        {"post-scale", pll.m_vco_post_scale, device.m_vco_post_scale_counter_max},
        {"half of an output counter", half, device.m_output_counter_high_low_max},
        {"number of counters", pll.m_total_taps_count, device.m_number_of_output_counters},
    };
}

// The library takes the counters of one family for all; what does not fit the others is told.
void append_misfits(const DEVICE& device, const PLL& pll, std::string* text)
{
    const std::vector<DEVICE_ENTRY>& entries = device.get_entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (const USED_COUNT& count : list_counts(pll, *entries[i].m_info.m_basic_info)) {
            if (count.m_used > count.m_largest) {
                *text += "NOTE: device " + std::to_string(i + 1) + " does not fit: its " +
                         count.m_name + " is at most " + std::to_string(count.m_largest) +
                         ", the answer has " + std::to_string(count.m_used) + "\n";
            }
        }
    }
}

}  // namespace

std::string report_origins(const REQUEST& request, const ANSWER& answer)
{
    if (request.m_device == nullptr) {
        return "";
    }
    std::string text = list_devices(*request.m_device);
    if (request.m_device->get_entries().size() > 1) {
        append_met_limits(request, answer, &text);
        append_misfits(*request.m_device, answer.get_pll(), &text);
        text += "\n";
    }
    return text;
}
