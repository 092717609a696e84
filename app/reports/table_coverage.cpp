// For each M of a bandwidth table: which wishes for a bandwidth its rows meet, and how fast the PFD
// must run for them.
#include "app/reports/reports.h"

#include "app/devices/origin.h"
#include "app/output/format.h"
#include "app/output/text_table.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double HZ_PER_MHZ = 1e6;
constexpr int MHZ_DECIMALS = 3;

enum WISH
{
    LOW,
    MEDIUM,
    HIGH,
    NUMBER_OF_WISHES
};

// For each wish the slowest PFD, in Hz, at which a row meets it; NaN: no row does.
typedef std::array<double, NUMBER_OF_WISHES> COVERAGE;

bool meets(const PLL_BASIC_INFO& info, const PLL_BANDWIDTH_SETTING& row, WISH wish)
{
    const double typical = row.m_typical_bandwidth;
    switch (wish) {
    case LOW:
        return typical <= info.m_bandwidth_low;
    case MEDIUM:
        return typical >= info.m_bandwidth_low && typical <= info.m_bandwidth_high;
    case HIGH:
        return typical >= info.m_bandwidth_high;
    case NUMBER_OF_WISHES:
        break;
    }
    return false;
}

COVERAGE find_coverage(const PLL_BASIC_INFO& info, const PLL_BANDWIDTH_SETTING_GROUP& group)
{
    COVERAGE coverage;
    coverage.fill(std::nan(""));
    for (const PLL_BANDWIDTH_SETTING* const row : group.m_settings) {
        const double pfd =
            std::max(0.0, row->m_fast_bandwidth * info.m_bandwidth_pfd_min_frequency_multiplier);
        for (int wish = LOW; wish < NUMBER_OF_WISHES; ++wish) {
            double& least = coverage[static_cast<std::size_t>(wish)];
            if (meets(info, *row, static_cast<WISH>(wish)) && !(least <= pfd)) {
                least = pfd;
            }
        }
    }
    return coverage;
}

std::string show_pfd(double pfd)
{
    return std::isnan(pfd) ? "-" : format_fixed(pfd / HZ_PER_MHZ, MHZ_DECIMALS);
}

}  // namespace

std::string report_table_coverage(const DEVICE& device, LIST_FORM form)
{
    const PLL_BASIC_INFO& info = device.get_basic_info();
    RECORD_LIST records({"m", "rows", "low_pfd_min_hz", "medium_pfd_min_hz", "high_pfd_min_hz"});
    TEXT_TABLE table({{"M", "", ALIGN::RIGHT},
                      {"rows", "", ALIGN::RIGHT},
                      {"low: PFD from", "MHz", ALIGN::RIGHT},
                      {"medium: PFD from", "MHz", ALIGN::RIGHT},
                      {"high: PFD from", "MHz", ALIGN::RIGHT}});
    for (int m = 1; m < info.m_bandwidth_settings_table_size; ++m) {
        const PLL_BANDWIDTH_SETTING_GROUP& group = info.m_bandwidth_settings_table[m];
        if (group.m_settings.empty()) {
            continue;
        }
        const COVERAGE coverage = find_coverage(info, group);
        const int rows = static_cast<int>(group.m_settings.size());
        records.add({RECORD_VALUE::number(m), RECORD_VALUE::number(rows),
                     RECORD_VALUE::number(coverage[LOW], 0),
                     RECORD_VALUE::number(coverage[MEDIUM], 0),
                     RECORD_VALUE::number(coverage[HIGH], 0)});
        table.add_row({std::to_string(m), std::to_string(rows), show_pfd(coverage[LOW]),
                       show_pfd(coverage[MEDIUM]), show_pfd(coverage[HIGH])});
    }
    if (form != LIST_FORM::TABLE) {
        return records.write(form);
    }
    std::string text = list_devices(device) + "\n";
    table.append_to(&text);
    return text + "\n-  no row of this M meets the wish; an M without a row cannot be used\n";
}
