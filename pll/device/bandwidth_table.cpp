// The bandwidth table of a device: its check, its listing and its release. The check writes its
// findings to the standard output; nothing else in the library touches a standard stream.
#include "pll_info.h"

#include "platform/arith.h"
#include "platform/guest_stream.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <iostream>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll_info";

// Hands findings on and counts them.
class FINDINGS
{
public:
    FINDINGS(PLL_TABLE_FINDING_HANDLER handler, void* context)
        : m_handler(handler), m_context(context)
    {
    }

    void add(PLL_TABLE_FINDING_KIND kind, int m = 0, int value = 0)
    {
        ++m_count;
        if (m_handler != nullptr) {
            m_handler({kind, m, value}, m_context);
        }
    }

    bool is_empty() const { return m_count == 0; }

private:
    PLL_TABLE_FINDING_HANDLER m_handler;
    void* m_context;
    int m_count = 0;
};

// Returns the largest effective M that the device can set.
int check_size(const PLL_BASIC_INFO& basic_info, FINDINGS* findings)
{
    if (!basic_info.m_use_bandwidth_settings_table) {
        findings->add(PLL_TABLE_FINDING_KIND::TABLE_NOT_USED);
    }
    const int size = basic_info.m_bandwidth_settings_table_size;
    if (size < 1) {
        findings->add(PLL_TABLE_FINDING_KIND::SIZE_TOO_SMALL);
    }
    // The groups are counted by the effective M of a loop without an output in its feedback, from 0
    // on: group 0 is there so that the index is the M.
    const int max_m = wrap_mul(basic_info.m_vco_post_scale_counter_max, basic_info.m_m_counter_max);
    if (wrap_add(max_m, 1) != size) {
        findings->add(PLL_TABLE_FINDING_KIND::SIZE_DIFFERS, max_m, size);
    }
    return max_m;
}

// A row must be one that the device can set: its components are looked for among those on offer. A
// negative capacitor leaves the choice open, so there is nothing to look for.
void check_row(const PLL_BASIC_INFO& basic_info, int m, const PLL_BANDWIDTH_SETTING& row,
               FINDINGS* findings)
{
    if (row.m_m != m) {
        findings->add(PLL_TABLE_FINDING_KIND::ROW_OF_OTHER_M, m, row.m_m);
    }
    if (!pll_array_value_exists(row.m_charge_pump_current, basic_info.m_charge_pump_currents,
                                basic_info.m_number_of_charge_pump_currents)) {
        findings->add(PLL_TABLE_FINDING_KIND::CURRENT_NOT_LISTED, m, row.m_charge_pump_current);
    }
    if (!pll_array_value_exists(row.m_loop_filter_resistor, basic_info.m_loop_filter_resistors,
                                basic_info.m_number_of_loop_filter_resistors)) {
        findings->add(PLL_TABLE_FINDING_KIND::RESISTOR_NOT_LISTED, m, row.m_loop_filter_resistor);
    }
    if (row.m_loop_filter_capacitor >= 0 &&
        !pll_array_value_exists(row.m_loop_filter_capacitor, basic_info.m_loop_filter_capacitors,
                                basic_info.m_number_of_loop_filter_capacitors)) {
        findings->add(PLL_TABLE_FINDING_KIND::CAPACITOR_NOT_LISTED, m, row.m_loop_filter_capacitor);
    }
}

// From M = 1 on. The table may be shorter than the counters reach, which was found before.
void check_table(const PLL_BASIC_INFO& basic_info, FINDINGS* findings)
{
    const int max_m = check_size(basic_info, findings);
    const int size = basic_info.m_bandwidth_settings_table_size;
    for (int m = 1; m <= max_m && m < size; ++m) {
        for (const PLL_BANDWIDTH_SETTING* row :
             basic_info.m_bandwidth_settings_table[m].m_settings) {
            if (row != nullptr) {
                check_row(basic_info, m, *row, findings);
            }
        }
    }
}

void write_line(const PLL_TABLE_FINDING& finding, void* context)
{
    std::ostream& stream = *static_cast<std::ostream*>(context);
    pll_write_table_finding(stream, finding);
    stream << std::endl;
}

void dump_row(std::ostream& stream, const PLL_BANDWIDTH_SETTING& row)
{
    stream << "   m=" << row.m_m << " i=" << row.m_charge_pump_current
           << " r=" << row.m_loop_filter_resistor << " c=" << row.m_loop_filter_capacitor
           << " typical:bw=" << row.m_typical_bandwidth << ",pm=" << row.m_typical_phase_margin
           << ",jp=" << row.m_typical_jitter_peaking << " fast:bw=" << row.m_fast_bandwidth
           << ",pm=" << row.m_fast_phase_margin << ",jp=" << row.m_fast_jitter_peaking
           << " slow:bw=" << row.m_slow_bandwidth << ",pm=" << row.m_slow_phase_margin
           << ",jp=" << row.m_slow_jitter_peaking << '\n';
}

// An empty place in a group is not listed but counts in its size, as it does in a search.
void dump_group(std::ostream& stream, const PLL_BANDWIDTH_SETTING_GROUP& group)
{
    stream << "  list_size = " << group.m_settings.size() << ":\n";
    for (const PLL_BANDWIDTH_SETTING* row : group.m_settings) {
        if (row != nullptr) {
            dump_row(stream, *row);
        }
    }
}

}  // namespace

bool PLL_INFO::check_bandwidth_settings_table(PLL_TABLE_FINDING_HANDLER handler,
                                              void* context) const
{
    const HOST_STATE state;
    FINDINGS findings(handler, context);
    if (m_basic_info == nullptr || m_basic_info->m_bandwidth_settings_table == nullptr) {
        findings.add(PLL_TABLE_FINDING_KIND::NO_TABLE);
    } else {
        check_table(*m_basic_info, &findings);
    }
    return findings.is_empty();
}

bool PLL_INFO::is_bandwidth_settings_table_valid() const
{
    const HOST_STATE state;
    check(this->has_info(), "this->has_info()", SOURCE);
    // A stream of its own: plain decimal, whatever format the host gave the standard output.
    std::ostream output(std::cout.rdbuf());
    output.imbue(std::locale::classic());
    return check_bandwidth_settings_table(write_line, &output);
}

void pll_write_table_finding(std::ostream& stream, const PLL_TABLE_FINDING& finding)
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    const int m = finding.m_m;
    const int value = finding.m_value;
    stream << "Error: ";
    switch (finding.m_kind) {
    case PLL_TABLE_FINDING_KIND::NO_TABLE:
        stream << "Bandwidth settings table doesn't exist";
        break;
    case PLL_TABLE_FINDING_KIND::TABLE_NOT_USED:
        stream << "Bandwidth settings table set to not be used";
        break;
    case PLL_TABLE_FINDING_KIND::SIZE_TOO_SMALL:
        stream << "Bandwidth settings table size must be greater than 0";
        break;
    case PLL_TABLE_FINDING_KIND::SIZE_DIFFERS:
        stream << "max M size of " << m << " must be one less than table size of " << value;
        break;
    case PLL_TABLE_FINDING_KIND::ROW_OF_OTHER_M:
        stream << "M=" << m << " has setting with different M value: " << value;
        break;
    case PLL_TABLE_FINDING_KIND::CURRENT_NOT_LISTED:
        stream << "M=" << m << " has setting with illegal charge_pump_current: " << value;
        break;
    case PLL_TABLE_FINDING_KIND::RESISTOR_NOT_LISTED:
        stream << "M=" << m << " has setting with illegal loop_filter_resistor: " << value;
        break;
    case PLL_TABLE_FINDING_KIND::CAPACITOR_NOT_LISTED:
        stream << "M=" << m << " has setting with illegal loop_filter_capacitor: " << value;
        break;
    }
}

void PLL_INFO::dump_bandwidth_settings_table(std::ostream& stream) const
{
    const HOST_STATE state;
    const GUEST_STREAM guest(stream);
    check(this->has_info(), "this->has_info()", SOURCE);
    const int size = m_basic_info == nullptr ? 0 : m_basic_info->m_bandwidth_settings_table_size;
    const PLL_BANDWIDTH_SETTING_GROUP* table =
        m_basic_info == nullptr ? nullptr : m_basic_info->m_bandwidth_settings_table;
    stream << "Bandwidth Settings Table: (size=" << size << ")\n";
    for (int i = 0; i < size; ++i) {
        // A size without a table, which only a host can set: reported once instead of for each
        // group.
        if (!check(table != nullptr, "bandwidth_settings_table != 0", SOURCE)) {
            return;
        }
        stream << " m=" << i << ":\n";
        dump_group(stream, table[i]);
    }
}

// Rows first: the groups know them by pointer only. Both arguments are cleared, so a second call
// does nothing.
void pll_delete_bandwidth_settings_table(PLL_BANDWIDTH_SETTING_GROUP*& table, int& size)
{
    for (int i = 0; table != nullptr && i < size; ++i) {
        for (PLL_BANDWIDTH_SETTING*& row : table[i].m_settings) {
            delete row;
            row = nullptr;
        }
    }
    delete[] table;
    table = nullptr;
    size = 0;
}
