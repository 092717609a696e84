// Initialisation of a PLL from the database.
//
// A query selects part records: those of one entry (its own names or those of one migration part)
// may be several, of which the design may meet any, so their limits are widened to cover all. A
// design must fit every entry, so the limits of the entries are narrowed to what all of them allow.
// Centre periods and gains are averaged over all records.
#include "gen_string.h"
#include "pll.h"
#include "pll_manager.h"
#include "pll_util.h"

#include "database/memory.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <iterator>
#include <utility>

using namespace pll_internal;

namespace {

typedef MEM_VECTOR<PLL_MIGRATION_PART_INFO> PART_LIST;

const int SCALES = PLL_VCO_POST_SCALE_MAX + 1;  // entries by VCO post-scale, of which 0 is not used

// The two ends of a range that a timing record gives without a post-scale.
struct TIMING_RANGE
{
    int PLL_TIMING_INFO::*m_min;
    int PLL_TIMING_INFO::*m_max;
};

const TIMING_RANGE TIMING_RANGES[] = {
    {&PLL_TIMING_INFO::m_input_min, &PLL_TIMING_INFO::m_input_max},
    {&PLL_TIMING_INFO::m_output_min, &PLL_TIMING_INFO::m_output_max},
    {&PLL_TIMING_INFO::m_external_output_min, &PLL_TIMING_INFO::m_external_output_max},
    {&PLL_TIMING_INFO::m_pfd_min, &PLL_TIMING_INFO::m_pfd_max},
    {&PLL_TIMING_INFO::m_ss_spread_min, &PLL_TIMING_INFO::m_ss_spread_max},
};

const int RANGES = static_cast<int>(std::size(TIMING_RANGES));

// Limits under way. An end that nobody gave stands beyond every value.
struct LIMITS
{
    LIMITS(int no_min, int no_max)
    {
        std::fill(m_vco_min, m_vco_min + SCALES, no_min);
        std::fill(m_vco_max, m_vco_max + SCALES, no_max);
        std::fill(m_ss_vco_max, m_ss_vco_max + SCALES, no_max);
        std::fill(m_min, m_min + RANGES, no_min);
        std::fill(m_max, m_max + RANGES, no_max);
    }

    int m_vco_min[SCALES];
    int m_vco_max[SCALES];
    int m_ss_vco_max[SCALES];
    int m_min[RANGES];
    int m_max[RANGES];
    std::int64_t m_center_sum[SCALES] = {0, 0, 0};
    std::int64_t m_gain_sum[SCALES] = {0, 0, 0};
};

void keep_smaller(int* limit, int value)
{
    *limit = std::min(*limit, value);
}

void keep_larger(int* limit, int value)
{
    *limit = std::max(*limit, value);
}

typedef void (*KEEP)(int* limit, int value);

void keep_if_set(int* limit, int value, KEEP keep)
{
    if (value != PLL_UNSET_MINIMUM) {
        keep(limit, value);
    }
}

void keep_if_given(int* limit, int value, KEEP keep)
{
    if (value != PLL_UNSET_MINIMUM && value != PLL_UNSET_MAXIMUM) {
        keep(limit, value);
    }
}

std::int64_t zero_if_unset(int value)
{
    return value == PLL_UNSET_MINIMUM ? 0 : value;
}

// Widens the limits of an entry to cover one more record.
void widen(LIMITS* limits, const PLL_TIMING_INFO& timing)
{
    for (int p = 1; p < SCALES; ++p) {
        keep_if_set(&limits->m_vco_min[p], timing.get_vco_min_period(p), keep_smaller);
        keep_if_set(&limits->m_vco_max[p], timing.get_vco_max_period(p), keep_larger);
        keep_if_set(&limits->m_ss_vco_max[p], timing.get_ss_vco_max_period(p), keep_larger);
        limits->m_center_sum[p] += zero_if_unset(timing.get_vco_center_period(p));
        limits->m_gain_sum[p] += zero_if_unset(timing.get_vco_gain(p));
    }
    for (int i = 0; i < RANGES; ++i) {
        keep_if_set(&limits->m_min[i], timing.*TIMING_RANGES[i].m_min, keep_smaller);
        keep_if_set(&limits->m_max[i], timing.*TIMING_RANGES[i].m_max, keep_larger);
    }
}

// Narrows the combined limits to what one more entry allows.
void narrow(LIMITS* combined, const LIMITS& entry)
{
    for (int p = 1; p < SCALES; ++p) {
        keep_if_given(&combined->m_vco_min[p], entry.m_vco_min[p], keep_larger);
        keep_if_given(&combined->m_vco_max[p], entry.m_vco_max[p], keep_smaller);
        keep_if_given(&combined->m_ss_vco_max[p], entry.m_ss_vco_max[p], keep_smaller);
        combined->m_center_sum[p] += entry.m_center_sum[p];
        combined->m_gain_sum[p] += entry.m_gain_sum[p];
    }
    for (int i = 0; i < RANGES; ++i) {
        keep_if_given(&combined->m_min[i], entry.m_min[i], keep_larger);
        keep_if_given(&combined->m_max[i], entry.m_max[i], keep_smaller);
    }
}

// Sums below 1 have no average.
int average(std::int64_t sum, std::int64_t count)
{
    return sum >= 1 ? static_cast<int>(sum / count) : PLL_UNSET_MINIMUM;
}

PLL_TIMING_INFO timing_of(const LIMITS& limits, std::int64_t number_of_records)
{
    PLL_TIMING_INFO timing;
    for (int p = 1; p < SCALES; ++p) {
        timing.set_vco_min_period(pll_limit_switch(limits.m_vco_min[p]), p);
        timing.set_vco_max_period(pll_limit_switch(limits.m_vco_max[p]), p);
        timing.set_vco_center_period(average(limits.m_center_sum[p], number_of_records), p);
        timing.set_vco_gain(average(limits.m_gain_sum[p], number_of_records), p);
        timing.set_ss_vco_max_period(pll_limit_switch(limits.m_ss_vco_max[p]), p);
    }
    for (int i = 0; i < RANGES; ++i) {
        timing.*TIMING_RANGES[i].m_min = pll_limit_switch(limits.m_min[i]);
        timing.*TIMING_RANGES[i].m_max = pll_limit_switch(limits.m_max[i]);
    }
    return timing;
}

// A name that is not given matches every one.
bool matches(const char* wanted, const char* name)
{
    return wanted == nullptr || gen_stricmp(wanted, name) == 0;
}

// Adds the records of a family that an entry selects to its limits; returns their number.
std::int64_t widen_to_family(LIMITS* limits, const PLL_FAMILY_INFO& family,
                             const PLL_MIGRATION_PART_INFO& entry, PLL_TYPE_ENUM type)
{
    std::int64_t number_of_records = 0;
    for (int i = 0; i < family.m_number_of_parts; ++i) {
        const PLL_PART_INFO& part = *family.m_parts[i];
        if (part.m_type == type && matches(entry.m_part, part.m_name) &&
            matches(entry.m_speed_grade, part.m_speed_grade)) {
            widen(limits, part.m_timing_info);
            ++number_of_records;
        }
    }
    return number_of_records;
}

// The comparison is no strict order, so no sort of the standard library may be given it. This one
// ends whatever it says.
void sort_entries(PART_LIST* entries, const PLL_MIGRATION_PART_INFO_COMPARE& is_before)
{
    for (std::size_t i = 1; i < entries->size(); ++i) {
        for (std::size_t j = i; j > 0 && is_before((*entries)[j], (*entries)[j - 1]); --j) {
            std::swap((*entries)[j], (*entries)[j - 1]);
        }
    }
}

PART_LIST sorted_entries(PLL_MANAGER* manager, const PLL_QUERY& query)
{
    PART_LIST entries{MEM_ALLOCATOR<PLL_MIGRATION_PART_INFO>(PLL_MANAGER_SOURCE)};
    if (query.m_migration_info != nullptr) {
        entries = query.m_migration_info->m_parts;
    }
    entries.push_back({query.m_family, query.m_part, query.m_speed_grade});
    sort_entries(&entries, PLL_MIGRATION_PART_INFO_COMPARE(manager, query.m_type));
    return entries;
}

// The basic information is that of the family that sorts first, whichever the query named.
bool combine_entries(PLL_MANAGER* manager, const PLL_QUERY& query, PLL_INFO* info)
{
    const PART_LIST entries = sorted_entries(manager, query);
    PLL_FAMILY_INFO* const first_family = manager->read_family_info(entries.front().m_family);
    if (first_family == nullptr) {
        return false;
    }
    info->m_basic_info = &first_family->m_basic_infos[query.m_type];

    LIMITS combined(PLL_UNSET_MINIMUM, PLL_UNSET_MAXIMUM);
    std::int64_t number_of_records = 0;
    for (const PLL_MIGRATION_PART_INFO& entry : entries) {
        const PLL_FAMILY_INFO* const family = manager->read_family_info(entry.m_family);
        if (family == nullptr) {
            return false;
        }
        LIMITS limits(PLL_UNSET_MAXIMUM, PLL_UNSET_MINIMUM);
        number_of_records += widen_to_family(&limits, *family, entry, query.m_type);
        narrow(&combined, limits);
    }
    if (number_of_records == 0) {
        return false;
    }
    info->m_timing_info = timing_of(combined, number_of_records);
    return true;
}

void append_values(MEM_VECTOR<int>* list, int count, const int* values)
{
    if (values != nullptr && count > 0) {
        list->assign(values, values + count);
    }
}

// Replaces the components that all PLLs may choose from; false, with nothing changed, when memory
// is exhausted.
bool replace_candidates(const PLL_BASIC_INFO& basic, PLL* pll)
{
    if (PLL::m_impl == nullptr) {
        return true;
    }
    try {
        const MEM_ALLOCATOR<int> allocator("pll");
        MEM_VECTOR<int> currents(allocator);
        MEM_VECTOR<int> resistors(allocator);
        MEM_VECTOR<int> capacitors(allocator);
        append_values(&currents, basic.m_number_of_charge_pump_currents,
                      basic.m_charge_pump_currents);
        append_values(&resistors, basic.m_number_of_loop_filter_resistors,
                      basic.m_loop_filter_resistors);
        append_values(&capacitors, basic.m_number_of_loop_filter_capacitors,
                      basic.m_loop_filter_capacitors);
        pll->clear_rci();
        PLL::m_impl->m_charge_pump_currents.swap(currents);
        PLL::m_impl->m_resistors.swap(resistors);
        PLL::m_impl->m_capacitors.swap(capacitors);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

void set_counter_limits(PLL* pll, const PLL_BASIC_INFO& basic)
{
    pll->m_max_taps_count = basic.m_number_of_output_counters;
    pll->m_m.m_max_count = basic.m_m_counter_max;
    pll->m_n.m_max_count = basic.m_n_counter_max;
    pll->m_ss_counter_max = basic.m_ss_counter_max;
    pll->m_output_counter_cascade = basic.m_output_counter_cascade;
    check(basic.is_output_counter_high_low(), "info.is_output_counter_high_low()",
          PLL_MANAGER_SOURCE);
    for (PLL_OUTPUT_TAP& tap : pll->m_taps) {
        tap.m_max_count = basic.m_output_counter_high_low_max;
    }
}

void set_timing_limits(PLL* pll, const PLL_TIMING_INFO& timing)
{
    for (int p = 1; p < SCALES; ++p) {
        pll->set_vco_min_period(timing.get_vco_min_period(p), p);
        pll->set_vco_max_period(timing.get_vco_max_period(p), p);
        pll->set_vco_center_period(timing.get_vco_center_period(p), p);
        pll->set_ss_vco_max_period(timing.get_ss_vco_max_period(p), p);
        pll->set_kvco(timing.get_vco_gain(p), p);
    }
    pll->m_pfd_min_period = timing.m_pfd_min;
    pll->m_pfd_max_period = timing.m_pfd_max;
    pll->m_fin_min_period = timing.m_input_min;
}

void set_loop_filter(PLL* pll, const PLL_BASIC_INFO& basic)
{
    pll->m_max_vco_post_scale = basic.m_vco_post_scale_counter_max;
    pll->m_ss_charge_pump_current = basic.m_ss_charge_pump_current;
    pll->m_ss_bandwidth = basic.m_ss_bandwidth;
    pll->m_low_bandwidth = basic.m_bandwidth_low;
    pll->m_medium_bandwidth = basic.m_bandwidth_medium;
    pll->m_high_bandwidth = basic.m_bandwidth_high;
    pll->m_i = basic.m_charge_pump_current_default;
    pll->m_r = basic.m_loop_filter_resistor_default;
    pll->m_c_high = basic.m_loop_filter_capacitor_default;
    pll->m_c_fixed = basic.m_loop_filter_fixed_capacitor;
    if (basic.m_number_of_charge_pump_currents > 0 && basic.m_charge_pump_currents != nullptr) {
        pll->m_i_min = basic.m_charge_pump_currents[0];
    }
}

}  // namespace

bool PLL_MANAGER::init_pll_info(PLL_INFO* info, const PLL_QUERY& query)
{
    const HOST_STATE state;
    if (!check(info != nullptr && query.m_family != nullptr && query.m_type != PLL_TYPE_MAX,
               "info != NULL && query.m_family != NULL && query.m_type != PLL_TYPE_MAX",
               PLL_MANAGER_SOURCE) ||
        query.m_type < ENHANCED_PLL || query.m_type > PLL_TYPE_MAX) {
        return false;
    }
    try {
        return combine_entries(this, query, info);
    } catch (const std::exception&) {
        return false;
    }
}

bool PLL_MANAGER::init_pll(PLL* pll, const PLL_QUERY& query)
{
    const HOST_STATE state;
    if (!check(pll != nullptr, "pll != NULL", PLL_MANAGER_SOURCE)) {
        return false;
    }
    PLL_INFO info;
    if (!init_pll_info(&info, query) || !replace_candidates(*info.m_basic_info, pll)) {
        return false;
    }
    pll->m_info = info;
    set_counter_limits(pll, *info.m_basic_info);
    set_timing_limits(pll, info.m_timing_info);
    set_loop_filter(pll, *info.m_basic_info);
    return true;
}
