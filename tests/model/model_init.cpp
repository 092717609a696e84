// The model's combination of the limits of several devices, and what a PLL takes of it.
#include "model_database.h"

#include <algorithm>
#include <cstdint>

namespace {

typedef MODEL_TIMING T;

// A limit of the timing record, seen as an array: one entry per post-scale, or just the one.
struct LIMIT
{
    int* m_values;
    int m_first;
    int m_last;
    bool m_is_lower;
};

std::vector<LIMIT> limits_of(T* t)
{
    std::vector<LIMIT> limits = {
        {t->m_vco_min, 1, 2, true}, {t->m_vco_max, 1, 2, false}, {t->m_ss_vco_max, 1, 2, false}};
    for (int* const lower : {&t->m_input_min, &t->m_output_min, &t->m_external_output_min,
                             &t->m_pfd_min, &t->m_ss_spread_min}) {
        limits.push_back({lower, 0, 0, true});
    }
    for (int* const upper : {&t->m_input_max, &t->m_output_max, &t->m_external_output_max,
                             &t->m_pfd_max, &t->m_ss_spread_max}) {
        limits.push_back({upper, 0, 0, false});
    }
    return limits;
}

int swap_marks(int value)
{
    if (value == MODEL_UNSET) {
        return MODEL_NO_UPPER;
    }
    return value == MODEL_NO_UPPER ? MODEL_UNSET : value;
}

// Sums over all records that were met.
struct POOL
{
    std::int64_t m_center[3] = {0, 0, 0};
    std::int64_t m_gain[3] = {0, 0, 0};
    std::int64_t m_records = 0;
};

void add_to_sum(std::int64_t* sum, int value)
{
    *sum += value == MODEL_UNSET ? 0 : value;
}

bool is_met(const MODEL_PART& part, const MODEL_ENTRY& entry, int type)
{
    return part.m_type == type && (!entry.m_part || model_same_name(*entry.m_part, part.m_name)) &&
           (!entry.m_speed_grade || model_same_name(*entry.m_speed_grade, part.m_speed_grade));
}

void widen(const LIMIT& to, const LIMIT& from)
{
    for (int i = to.m_first; i <= to.m_last; ++i) {
        const int value = from.m_values[i];
        int& kept = to.m_values[i];
        if (value != MODEL_UNSET) {
            kept = to.m_is_lower ? std::min(kept, value) : std::max(kept, value);
        }
    }
}

// The widest limits over the records that an entry selects. An end that none gives stands at the
// far side: a lower one at the largest int, an upper one at the unset mark.
T widest(const MODEL_FAMILY& family, const MODEL_ENTRY& entry, int type, POOL* pool)
{
    T wide;
    const std::vector<LIMIT> to = limits_of(&wide);
    for (const LIMIT& limit : to) {
        for (int i = limit.m_first; i <= limit.m_last; ++i) {
            limit.m_values[i] = limit.m_is_lower ? MODEL_NO_UPPER : MODEL_UNSET;
        }
    }
    for (const MODEL_PART& part : family.m_parts) {
        if (!is_met(part, entry, type)) {
            continue;
        }
        ++pool->m_records;
        T record = part.m_timing;
        const std::vector<LIMIT> from = limits_of(&record);
        for (std::size_t n = 0; n < to.size(); ++n) {
            widen(to[n], from[n]);
        }
        for (int p = 1; p <= 2; ++p) {
            add_to_sum(&pool->m_center[p], record.m_vco_center[p]);
            add_to_sum(&pool->m_gain[p], record.m_vco_gain[p]);
        }
    }
    return wide;
}

void narrow(T* combined, T entry)
{
    const std::vector<LIMIT> to = limits_of(combined);
    const std::vector<LIMIT> from = limits_of(&entry);
    for (std::size_t n = 0; n < to.size(); ++n) {
        for (int i = to[n].m_first; i <= to[n].m_last; ++i) {
            const int value = from[n].m_values[i];
            int& kept = to[n].m_values[i];
            if (value != MODEL_UNSET && value != MODEL_NO_UPPER) {
                kept = to[n].m_is_lower ? std::max(kept, value) : std::min(kept, value);
            }
        }
    }
}

int mean(std::int64_t sum, std::int64_t count)
{
    return sum >= 1 ? static_cast<int>(sum / count) : MODEL_UNSET;
}

// Below 0, 0 or above 0, with the letters A to Z taken as small ones.
int compare_names(const std::string& a, const std::string& b)
{
    for (std::size_t i = 0; i < a.size() || i < b.size(); ++i) {
        const auto letter = [i](const std::string& text) {
            const int c = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
            return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
        };
        if (letter(a) != letter(b)) {
            return letter(a) - letter(b);
        }
    }
    return 0;
}

bool goes_before(MODEL_DATABASE* database, int type, const MODEL_ENTRY& a, const MODEL_ENTRY& b,
                 MODEL_REPORTS& reports)
{
    const int families = compare_names(a.m_family, b.m_family);
    if (families != 0) {
        const MODEL_FAMILY* const family_a = model_read_family(database, a.m_family, reports);
        const MODEL_FAMILY* const family_b = model_read_family(database, b.m_family, reports);
        if (family_a != nullptr && family_b != nullptr) {
            const MODEL_BASIC& basic_a = family_a->m_basics[type];
            const MODEL_BASIC& basic_b = family_b->m_basics[type];
            if (basic_a.m_use_bandwidth_settings_table && basic_b.m_use_bandwidth_settings_table &&
                basic_a.m_table.size() != basic_b.m_table.size()) {
                return basic_a.m_table.size() < basic_b.m_table.size();
            }
        }
        return families < 0;
    }
    if (a.m_part && b.m_part && compare_names(*a.m_part, *b.m_part) != 0) {
        return compare_names(*a.m_part, *b.m_part) < 0;
    }
    if (a.m_speed_grade && b.m_speed_grade &&
        compare_names(*a.m_speed_grade, *b.m_speed_grade) != 0) {
        return compare_names(*a.m_speed_grade, *b.m_speed_grade) < 0;
    }
    return true;
}

void fill_pll(const MODEL_BASIC& basic, const T& timing, MODEL_PLL* pll, MODEL_REPORTS& reports)
{
    pll->m_max_taps_count = basic.m_number_of_output_counters;
    pll->m_m.m_max_count = basic.m_m_counter_max;
    pll->m_n.m_max_count = basic.m_n_counter_max;
    pll->m_ss_counter_max = basic.m_ss_counter_max;
    pll->m_output_counter_cascade = basic.m_output_counter_cascade;
    if (basic.m_output_counter_high_low_max <= 0) {
        reports.push_back("info.is_output_counter_high_low()");
    }
    for (MODEL_TAP& tap : pll->m_taps) {
        tap.m_max_count = basic.m_output_counter_high_low_max;
    }
    for (int p = 1; p <= 2; ++p) {
        pll->m_vco_min_period[p] = timing.m_vco_min[p];
        pll->m_vco_max_period[p] = timing.m_vco_max[p];
        pll->m_vco_center_period[p] = timing.m_vco_center[p];
        pll->m_ss_vco_max_period[p] = timing.m_ss_vco_max[p];
        pll->m_kvco[p] = timing.m_vco_gain[p];
    }
    pll->m_pfd_min_period = timing.m_pfd_min;
    pll->m_pfd_max_period = timing.m_pfd_max;
    pll->m_fin_min_period = timing.m_input_min;
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
    if (!basic.m_currents.empty()) {
        pll->m_i_min = basic.m_currents.front();
    }
}

}  // namespace

bool model_init_info(MODEL_DATABASE* database, const MODEL_QUERY& query, MODEL_INFO* info,
                     MODEL_REPORTS& reports)
{
    if (query.m_type == MODEL_TYPES) {
        reports.push_back("info != NULL && query.m_family != NULL && query.m_type != PLL_TYPE_MAX");
        return false;
    }
    std::vector<MODEL_ENTRY> entries = query.m_migration;
    entries.push_back(query.m_own);
    for (std::size_t i = 1; i < entries.size(); ++i) {
        std::size_t at = i;
        while (at > 0 &&
               goes_before(database, query.m_type, entries[at], entries[at - 1], reports)) {
            std::swap(entries[at], entries[at - 1]);
            --at;
        }
    }
    const MODEL_FAMILY* const first = model_read_family(database, entries[0].m_family, reports);
    if (first == nullptr) {
        return false;
    }
    info->m_family = first;
    T combined;
    for (const LIMIT& limit : limits_of(&combined)) {
        for (int i = limit.m_first; i <= limit.m_last; ++i) {
            limit.m_values[i] = limit.m_is_lower ? MODEL_UNSET : MODEL_NO_UPPER;
        }
    }
    POOL pool;
    for (const MODEL_ENTRY& entry : entries) {
        const MODEL_FAMILY* const family = model_read_family(database, entry.m_family, reports);
        if (family == nullptr) {
            return false;
        }
        narrow(&combined, widest(*family, entry, query.m_type, &pool));
    }
    if (pool.m_records == 0) {
        return false;
    }
    for (const LIMIT& limit : limits_of(&combined)) {
        for (int i = limit.m_first; i <= limit.m_last; ++i) {
            limit.m_values[i] = swap_marks(limit.m_values[i]);
        }
    }
    for (int p = 1; p <= 2; ++p) {
        combined.m_vco_center[p] = mean(pool.m_center[p], pool.m_records);
        combined.m_vco_gain[p] = mean(pool.m_gain[p], pool.m_records);
    }
    info->m_timing = combined;
    return true;
}

bool model_init_pll(MODEL_DATABASE* database, const MODEL_QUERY& query, MODEL_INFO* info,
                    MODEL_PLL* pll, MODEL_COMPONENTS* components, MODEL_REPORTS& reports)
{
    if (!model_init_info(database, query, info, reports)) {
        return false;
    }
    const MODEL_BASIC& basic = info->m_family->m_basics[query.m_type];
    fill_pll(basic, info->m_timing, pll, reports);
    components->m_parts.m_currents = basic.m_currents;
    components->m_parts.m_resistors = basic.m_resistors;
    components->m_capacitors = basic.m_capacitors;
    MODEL_DEVICE* const device = &components->m_device;
    device->m_use_bandwidth_settings_table = basic.m_use_bandwidth_settings_table;
    device->m_table = basic.m_table;
    device->m_bandwidth_pfd_min_frequency_multiplier =
        basic.m_bandwidth_pfd_min_frequency_multiplier;
    device->m_is_pfd_bandwidth_rule_an_error = basic.m_is_pfd_bandwidth_rule_an_error;
    device->m_m_counter_preferred_min = basic.m_m_counter_preferred_min;
    device->m_m_counter_preferred_max = basic.m_m_counter_preferred_max;
    device->m_spe_ratio_constant_x = basic.m_spe_ratio_constant_x;
    pll->m_device = device;
    return true;
}
