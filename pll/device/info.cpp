// The records of the device description: defaults, owned arrays, reconfiguration records.
#include "pll_info.h"

#include "platform/arith.h"
#include "platform/report_error.h"

#include <algorithm>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll_info";

// What a description holds until a database says otherwise. A limit of 0 allows nothing, so a
// device of which nothing is known can make nothing; what is a preference or a model is marked as
// not given.
constexpr int DEFAULT_OUTPUT_COUNTERS = 10;
constexpr int NO_PREFERENCE = -1;
constexpr double NOT_GIVEN = std::numeric_limits<double>::max();

// All that a description owns is booked on one account, and zeroed.
void* allocate(std::size_t size)
{
    return MEM_MANAGER::new_wrapper(size, MEM_TRACKER(__FILE__, __LINE__), SOURCE);
}

void release(void* block)
{
    MEM_MANAGER::delete_wrapper(block, SOURCE);
}

// A new array with a copy of `count` values, or null.
template <class T>
T* copy_array(int count, const T* values)
{
    if (count < 1 || values == nullptr) {
        return nullptr;
    }
    auto* copy = static_cast<T*>(allocate(static_cast<std::size_t>(count) * sizeof(T)));
    if (copy != nullptr) {
        std::copy_n(values, count, copy);
    }
    return copy;
}

// Puts a copy of `count` values in the place of an owned array. The old array goes last: the values
// may be its own.
template <class T>
void replace_array(T** array, int* array_count, int count, const T* values)
{
    T* copy = copy_array(count, values);
    release(*array);
    *array = copy;
    *array_count = copy == nullptr ? 0 : count;
}

// A negative post-scale asks for the undivided VCO. Entry 0 is never in use.
int get_entry(const int (&entries)[3], int vco_post_scale)
{
    check(vco_post_scale <= PLL_VCO_POST_SCALE_MAX, "vco_post_scale <= PLL_VCO_POST_SCALE_MAX",
          SOURCE);
    return vco_post_scale < 0 ? entries[1]
                              : entries[nearest_index(vco_post_scale, PLL_VCO_POST_SCALE_MAX + 1)];
}

// What a value without a post-scale of its own means for all post-scales.
enum class SCALING
{
    AS_PERIOD,  // p times as long behind a post-scale of p
    ALIKE
};

void set_entries(int (&entries)[3], int value, int vco_post_scale, SCALING scaling)
{
    if (!check(vco_post_scale <= PLL_VCO_POST_SCALE_MAX, "vco_post_scale <= PLL_VCO_POST_SCALE_MAX",
               SOURCE)) {
        return;
    }
    if (vco_post_scale >= 0) {
        entries[vco_post_scale] = value;
        return;
    }
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        entries[p] = scaling == SCALING::AS_PERIOD ? wrap_mul(value, p) : value;
    }
}

}  // namespace

// Records are made and deleted by the database and by hosts alike, so they bring their allocator
// with them: either side may delete what the other made. Null when memory is exhausted.
void* PLL_BANDWIDTH_SETTING::operator new(std::size_t size) noexcept
{
    return allocate(size);
}

void* PLL_BANDWIDTH_SETTING::operator new[](std::size_t size) noexcept
{
    return allocate(size);
}

void PLL_BANDWIDTH_SETTING::operator delete(void* pointer) noexcept
{
    release(pointer);
}

void PLL_BANDWIDTH_SETTING::operator delete[](void* pointer) noexcept
{
    release(pointer);
}

PLL_BANDWIDTH_SETTING_GROUP::PLL_BANDWIDTH_SETTING_GROUP()
    : m_settings(MEM_ALLOCATOR<PLL_BANDWIDTH_SETTING*>(SOURCE))
{
}

void* PLL_BANDWIDTH_SETTING_GROUP::operator new(std::size_t size) noexcept
{
    return allocate(size);
}

void* PLL_BANDWIDTH_SETTING_GROUP::operator new[](std::size_t size) noexcept
{
    return allocate(size);
}

void PLL_BANDWIDTH_SETTING_GROUP::operator delete(void* pointer) noexcept
{
    release(pointer);
}

void PLL_BANDWIDTH_SETTING_GROUP::operator delete[](void* pointer) noexcept
{
    release(pointer);
}

// The order of the counters in the chain of bits that sets a device anew while it runs.
PLL_RECONFIG_INFO::PLL_RECONFIG_INFO(PLL_RECONFIG_TYPE_ENUM reconfig_type)
    : m_reconfig_type(reconfig_type),
      m_number_of_scan_chain_counter_orders(0),
      m_scan_chain_counter_orders(nullptr)
{
}

PLL_RECONFIG_INFO::~PLL_RECONFIG_INFO()
{
    release(m_scan_chain_counter_orders);
}

// Takes a copy: the list of a reader is gone after the line that it stood on.
void PLL_RECONFIG_INFO::set_scan_chain_counter_orders(int count, CDB_PLL_COUNTER_TYPE_ENUM* orders)
{
    replace_array(&m_scan_chain_counter_orders, &m_number_of_scan_chain_counter_orders, count,
                  orders);
}

void* PLL_RECONFIG_INFO::operator new(std::size_t size) noexcept
{
    return allocate(size);
}

void PLL_RECONFIG_INFO::operator delete(void* pointer) noexcept
{
    release(pointer);
}

// In the order of the members, as the compiler wants it: a row that is missing here would be a
// member that starts with whatever stood in memory.
PLL_BASIC_INFO::PLL_BASIC_INFO()
    : m_number_of_output_counters(DEFAULT_OUTPUT_COUNTERS),
      m_m_counter_max(0),
      m_m_counter_high_low_max(0),
      m_m_counter_initial_max(0),
      m_m_counter_preferred_min(NO_PREFERENCE),
      m_m_counter_preferred_max(NO_PREFERENCE),
      m_n_counter_max(0),
      m_vco_post_scale_counter_max(0),
      m_output_counter_max(0),
      m_output_counter_high_low_max(0),
      m_output_counter_initial_max(0),
      m_output_counter_cascade(false),
      m_m_counter_phase_tap_max(0),
      m_m_counter_phase_tap_resolution(0),
      m_output_counter_phase_tap_max(0),
      m_output_counter_phase_tap_resolution(0),
      m_time_delay_max(0),
      m_time_delay_resolution(0),
      m_ss_counter_max(0),
      m_valid_lock_multiplier(0),
      m_invalid_lock_multiplier(0),
      m_gate_lock_counter_min(0),
      m_gate_lock_counter_max(0),
      m_switch_over_counter_min(0),
      m_switch_over_counter_max(0),
      m_charge_pump_current_default(0),
      m_number_of_charge_pump_currents(0),
      m_charge_pump_currents(nullptr),
      m_number_of_charge_pump_current_bits(0),
      m_charge_pump_current_bits(nullptr),
      m_loop_filter_resistor_default(0),
      m_number_of_loop_filter_resistors(0),
      m_loop_filter_resistors(nullptr),
      m_number_of_loop_filter_resistor_bits(0),
      m_loop_filter_resistor_bits(nullptr),
      m_loop_filter_capacitor_default(0),
      m_number_of_loop_filter_capacitors(0),
      m_loop_filter_capacitors(nullptr),
      m_number_of_loop_filter_capacitor_bits(0),
      m_loop_filter_capacitor_bits(nullptr),
      m_loop_filter_fixed_capacitor(0),
      m_ss_bandwidth(0.0),
      m_ss_down_spread_min(0.0),
      m_ss_down_spread_max(0.0),
      m_ss_charge_pump_current(0),
      m_feedback_duty_cycle_min(0),
      m_feedback_duty_cycle_max(0),
      m_bandwidth_pfd_min_frequency_multiplier(0),
      m_bandwidth_low(0.0),
      m_bandwidth_medium(0.0),
      m_bandwidth_high(0.0),
      m_bandwidth_relative_tolerance(0.0),
      m_use_bandwidth_settings_table(false),
      m_bandwidth_settings_table(nullptr),
      m_bandwidth_settings_table_size(0),
      m_phase_absolute_tolerance(0.0),
      m_number_of_reconfig_infos(0),
      m_reconfig_infos(nullptr),
      m_is_pfd_bandwidth_rule_an_error(false),
      m_spe_ratio_constant_x(NOT_GIVEN),
      m_spe_push_out_constant_a(NOT_GIVEN),
      m_spe_push_out_constant_b(NOT_GIVEN),
      m_spe_push_out_constant_c(NOT_GIVEN),
      m_spe_pull_in_constant_d(NOT_GIVEN),
      m_spe_pull_in_constant_e(NOT_GIVEN),
      m_spe_pull_in_constant_f(NOT_GIVEN),
      m_spe_lock_fail_ratio_constant(NOT_GIVEN)
{
}

// Arrays of numbers were allocated raw and are released so; what is in the lists of records was
// created as an object and is deleted as one.
PLL_BASIC_INFO::~PLL_BASIC_INFO()
{
    release(m_charge_pump_currents);
    release(m_charge_pump_current_bits);
    release(m_loop_filter_resistors);
    release(m_loop_filter_resistor_bits);
    release(m_loop_filter_capacitors);
    release(m_loop_filter_capacitor_bits);
    for (int i = 0; i < m_number_of_reconfig_infos; ++i) {
        delete m_reconfig_infos[i];
    }
    release(m_reconfig_infos);
    pll_delete_bandwidth_settings_table(m_bandwidth_settings_table,
                                        m_bandwidth_settings_table_size);
}

// A device either limits the halves of its output counters or their whole count.
bool PLL_BASIC_INFO::is_output_counter_high_low() const
{
    return m_output_counter_high_low_max > 0;
}

void PLL_BASIC_INFO::set_vco_post_scale_counter_max(int value)
{
    m_vco_post_scale_counter_max = value;
    // The value stays, and is reported: who reads it later cuts it to what the library can search.
    check(m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX,
          "m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX", SOURCE);
}

// Components come with the bits that select them, in lists of their own whose lengths need not
// agree.
void PLL_BASIC_INFO::set_charge_pump_currents(int count, const int* values)
{
    replace_array(&m_charge_pump_currents, &m_number_of_charge_pump_currents, count, values);
}

void PLL_BASIC_INFO::set_charge_pump_current_bits(int count, const int* values)
{
    replace_array(&m_charge_pump_current_bits, &m_number_of_charge_pump_current_bits, count,
                  values);
}

void PLL_BASIC_INFO::set_loop_filter_resistors(int count, const int* values)
{
    replace_array(&m_loop_filter_resistors, &m_number_of_loop_filter_resistors, count, values);
}

void PLL_BASIC_INFO::set_loop_filter_resistor_bits(int count, const int* values)
{
    replace_array(&m_loop_filter_resistor_bits, &m_number_of_loop_filter_resistor_bits, count,
                  values);
}

void PLL_BASIC_INFO::set_loop_filter_capacitors(int count, const int* values)
{
    replace_array(&m_loop_filter_capacitors, &m_number_of_loop_filter_capacitors, count, values);
}

void PLL_BASIC_INFO::set_loop_filter_capacitor_bits(int count, const int* values)
{
    replace_array(&m_loop_filter_capacitor_bits, &m_number_of_loop_filter_capacitor_bits, count,
                  values);
}

void PLL_BASIC_INFO::set_bandwidth_settings_table(int size, PLL_BANDWIDTH_SETTING_GROUP* table)
{
    // The table is owned from now on. One that is set again is only given another size: deleting it
    // would leave nothing to set.
    if (table != m_bandwidth_settings_table) {
        pll_delete_bandwidth_settings_table(m_bandwidth_settings_table,
                                            m_bandwidth_settings_table_size);
    }
    m_bandwidth_settings_table = table;
    m_bandwidth_settings_table_size = size;
}

// A handful at most, so a walk is as good as any index.
PLL_RECONFIG_INFO* PLL_BASIC_INFO::find_reconfig_info(PLL_RECONFIG_TYPE_ENUM type) const
{
    for (int i = 0; i < m_number_of_reconfig_infos; ++i) {
        if (m_reconfig_infos[i]->m_reconfig_type == type) {
            return m_reconfig_infos[i];
        }
    }
    return nullptr;
}

PLL_RECONFIG_INFO* PLL_BASIC_INFO::create_reconfig_info(PLL_RECONFIG_TYPE_ENUM type)
{
    PLL_RECONFIG_INFO* present = find_reconfig_info(type);
    if (present != nullptr) {
        return present;
    }
    // The longer list and the record are both there before the old list goes: memory that runs out
    // in between leaves everything as it was.
    const auto size = static_cast<std::size_t>(m_number_of_reconfig_infos);
    auto** longer =
        static_cast<PLL_RECONFIG_INFO**>(allocate((size + 1) * sizeof(PLL_RECONFIG_INFO*)));
    auto* added = longer == nullptr ? nullptr : new PLL_RECONFIG_INFO(type);
    if (added == nullptr) {
        release(longer);
        return nullptr;
    }
    std::copy_n(m_reconfig_infos, size, longer);
    longer[size] = added;
    release(m_reconfig_infos);
    m_reconfig_infos = longer;
    ++m_number_of_reconfig_infos;
    return added;
}

int PLL_BASIC_INFO::get_number_of_reconfig_scan_chain_counter_orders(
    PLL_RECONFIG_TYPE_ENUM type) const
{
    const PLL_RECONFIG_INFO* info = find_reconfig_info(type);
    return info == nullptr ? 0 : info->m_number_of_scan_chain_counter_orders;
}

CDB_PLL_COUNTER_TYPE_ENUM
PLL_BASIC_INFO::get_reconfig_scan_chain_counter_order(PLL_RECONFIG_TYPE_ENUM type, int index) const
{
    // The type behind the last one says that there is none.
    const PLL_RECONFIG_INFO* info = find_reconfig_info(type);
    if (info == nullptr || info->m_number_of_scan_chain_counter_orders < 1 ||
        info->m_scan_chain_counter_orders == nullptr) {
        return CDB_PLL_COUNTER_TYPE_MAX;
    }
    return info->m_scan_chain_counter_orders[nearest_index(
        index, info->m_number_of_scan_chain_counter_orders)];
}

// Periods in ps behind the post-scale, gains in MHz/V of the oscillator itself.
int PLL_TIMING_INFO::get_vco_min_period(int vco_post_scale) const
{
    return get_entry(m_vco_min, vco_post_scale);
}

int PLL_TIMING_INFO::get_vco_max_period(int vco_post_scale) const
{
    return get_entry(m_vco_max, vco_post_scale);
}

int PLL_TIMING_INFO::get_vco_center_period(int vco_post_scale) const
{
    return get_entry(m_vco_center, vco_post_scale);
}

int PLL_TIMING_INFO::get_vco_gain(int vco_post_scale) const
{
    return get_entry(m_vco_gain, vco_post_scale);
}

int PLL_TIMING_INFO::get_ss_vco_max_period(int vco_post_scale) const
{
    return get_entry(m_ss_vco_max, vco_post_scale);
}

// Without a post-scale one value stands for all of them. Behind a post-scale of p a period is p
// times as long, so a file need give the limits of the oscillator only.
void PLL_TIMING_INFO::set_vco_min_period(int value, int vco_post_scale)
{
    set_entries(m_vco_min, value, vco_post_scale, SCALING::AS_PERIOD);
}

void PLL_TIMING_INFO::set_vco_max_period(int value, int vco_post_scale)
{
    set_entries(m_vco_max, value, vco_post_scale, SCALING::AS_PERIOD);
}

void PLL_TIMING_INFO::set_vco_center_period(int value, int vco_post_scale)
{
    set_entries(m_vco_center, value, vco_post_scale, SCALING::AS_PERIOD);
}

// A post-scale makes periods longer. The gain stays that of the oscillator, unless a database says
// otherwise.
void PLL_TIMING_INFO::set_vco_gain(int value, int vco_post_scale)
{
    set_entries(m_vco_gain, value, vco_post_scale, SCALING::ALIKE);
}

void PLL_TIMING_INFO::set_ss_vco_max_period(int value, int vco_post_scale)
{
    set_entries(m_ss_vco_max, value, vco_post_scale, SCALING::AS_PERIOD);
}

// Borrowed: a description belongs to the manager that read it.
PLL_INFO::PLL_INFO() : m_basic_info(nullptr) {}

// Without one a PLL works within the built-in limits.
bool PLL_INFO::has_info() const
{
    return m_basic_info != nullptr;
}

int* pll_copy_value_array(int count, const int* values)
{
    return copy_array(count, values);
}

// In the order in which components are listed, which need not be ascending here.
bool pll_array_value_exists(int value, const int* values, int count)
{
    return count > 0 && values != nullptr &&
           std::find(values, values + count, value) != values + count;
}
