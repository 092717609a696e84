// The PLL object: its defaults, its copies, the components that all PLLs share and the messages of
// the errors that a synthesis leaves.
#include "pll.h"

#include "platform/arith.h"
#include "platform/report_error.h"

#include <algorithm>
#include <iterator>
#include <new>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";

// The built-in limits are those of no real device: a host without a database gets a plausible
// answer.
constexpr int DEFAULT_MAX_COUNT = 512;
constexpr int NO_TAP_LIMIT = 9999;
constexpr int FULL_DUTY_CYCLE = 100;
// Ends of the ints, as reports print them: nothing that an output can do lies beyond.
constexpr double NO_NEXT_PHASE = 2147483647.0;
constexpr double NO_PREVIOUS_PHASE = -2147483648.0;

constexpr int DEFAULT_SS_COUNTER_MAX = 32768;
constexpr int DEFAULT_SS_VCO_MAX_PERIOD = 1667;
constexpr int DEFAULT_SS_CHARGE_PUMP_CURRENT = 90;
// Gain in MHz/V, capacitors in pF, the resistor in ohm, currents in uA, bandwidths in Hz.
constexpr double DEFAULT_KVCO = 1880.0;
constexpr double DEFAULT_C_FIXED = 650.0;
constexpr double DEFAULT_R = 1020.5;
constexpr double DEFAULT_C_HIGH = 10.0;
constexpr double DEFAULT_I = 50.0;
constexpr double DEFAULT_I_MIN = 4.0;
constexpr double DEFAULT_SS_BANDWIDTH = 140000.0;
constexpr double DEFAULT_LOW_BANDWIDTH = 150000.0;
constexpr double DEFAULT_MEDIUM_BANDWIDTH = 800000.0;
constexpr double DEFAULT_HIGH_BANDWIDTH = 2000000.0;

// The components of the built-in limits, ascending.
constexpr int DEFAULT_CAPACITORS[] = {5, 10, 15, 20};
constexpr int DEFAULT_CURRENTS[] = {4,  10, 15, 20, 24, 30, 35,  40,  45,  50,  55,  60,
                                    65, 70, 75, 80, 85, 90, 100, 112, 135, 148, 164, 212};
constexpr int DEFAULT_RESISTORS[] = {1021,  2041,  3062,  4082,  7144,  8164,  9185,  10205,
                                     11226, 12246, 13266, 14287, 17349, 18369, 19390, 20410};

// Returns false when memory is exhausted; the list is then as it was.
bool append(MEM_VECTOR<int>* list, int value)
{
    try {
        list->push_back(value);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

template <std::size_t COUNT>
bool append_all(MEM_VECTOR<int>* list, const int (&values)[COUNT])
{
    return std::all_of(values, values + COUNT, [=](int value) { return append(list, value); });
}

// Gives the memory back too: hosts look at the account of "pll" after the last PLL is gone.
void clear_and_release(MEM_VECTOR<int>* list)
{
    MEM_VECTOR<int>(list->get_allocator()).swap(*list);
}

void clear_lists(PLL_IMPL* impl)
{
    clear_and_release(&impl->m_charge_pump_currents);
    clear_and_release(&impl->m_capacitors);
    clear_and_release(&impl->m_resistors);
}

// All lists or none: a synthesis with half of the components would look like an answer.
void fill_lists(PLL_IMPL* impl)
{
    const bool filled = append_all(&impl->m_capacitors, DEFAULT_CAPACITORS) &&
                        append_all(&impl->m_charge_pump_currents, DEFAULT_CURRENTS) &&
                        append_all(&impl->m_resistors, DEFAULT_RESISTORS);
    if (!filled) {
        clear_lists(impl);
    }
}

}  // namespace

// Periods in ps, of a post-scale of 0 (never in use), 1 and 2. Without a device only 1 is on offer.
int PLL::m_default_vco_min_period[3] = {1000, 1000, 1000};
int PLL::m_default_vco_max_period[3] = {3334, 3334, 3334};
int PLL::m_default_vco_center_period[3] = {1666, 1666, 1666};
int PLL::m_default_pfd_min_period = 1500;
int PLL::m_default_pfd_max_period = 333333;
int PLL::m_default_fin_min_period = 1000;
int PLL::m_default_m_counter_max_count = DEFAULT_MAX_COUNT;
int PLL::m_default_n_counter_max_count = DEFAULT_MAX_COUNT;
int PLL::m_default_tap_counter_max_count = DEFAULT_MAX_COUNT;
int PLL::m_id_count = 0;
// Lives from the first PLL to the last. The count of PLLs is their next identity, too.
PLL_IMPL* PLL::m_impl = nullptr;
PLL_MANAGER* PLL::m_pll_manager = nullptr;

// By the number of the error. The first two of a search are told apart by their number alone: hosts
// show the text, and to its reader both are one.
const char* const PLL::m_error_strings[MAX_PLL_ERROR_TYPE] = {
    "No error",
    "No combination of counter values of M and the pre-divider N satisfy VCO and PFD ranges, "
    "for requested clock synthesis",
    "No combination of counter values of M and the pre-divider N satisfy VCO and PFD ranges, "
    "for requested clock synthesis",
    "Post divider maximum count value exceeded. (Reduce division value or Fin frequency)",
    "Division and Multiplication cannot be achieved",
    "Maximum Delay differs too much from Minimum Delay",
    "Spread Spectrum requires a low bandwidth setting",
    "Requested Spread Spectrum value is too high",
    "Requested input clock frequency does not satisfy the valid frequency range",
    "Cannot find legal bandwidth settings for requested multiplication and division",
    "Cannot find legal bandwidth settings for requested input frequency, multiplication and "
    "division",
};

// A counter that divides by one and delays nothing, so that a PLL which was never synthesized reads
// as one that passes its input on. M and N are both of this kind.
PLL_COUNTER_M::PLL_COUNTER_M()
    : m_count(1),
      m_ss_count(1),
      m_initial(1),
      m_delay(0),
      m_vco_tap(0),
      m_max_vco_tap(NO_TAP_LIMIT),
      m_min_count(1),
      m_max_count(DEFAULT_MAX_COUNT)
{
}

PLL_COUNTER_M::~PLL_COUNTER_M() = default;

// Next and previous values start inverted, so that the first one within reach replaces them.
PLL_OUTPUT_TAP::PLL_OUTPUT_TAP()
    : m_score(false),
      m_delta_phase(0.0),
      m_count(1),
      m_delay(0),
      m_even(true),
      m_bypass(true),
      m_high(1),
      m_low(0),
      m_max_count(DEFAULT_MAX_COUNT),
      m_initial(1),
      m_vco_tap(0),
      m_previous_tap(PLL_ILLEGAL_TAP),
      m_next_phase_degree(NO_NEXT_PHASE),
      m_prev_phase_degree(NO_PREVIOUS_PHASE),
      m_next_duty_cycle(FULL_DUTY_CYCLE),
      m_prev_duty_cycle(0),
      m_smallest_duty_cycle_min(FULL_DUTY_CYCLE),
      m_largest_duty_cycle_max(0)
{
}

PLL_OUTPUT_TAP::~PLL_OUTPUT_TAP() = default;

PLL_IMPL::PLL_IMPL()
    : m_charge_pump_currents(MEM_ALLOCATOR<int>(SOURCE)),
      m_capacitors(MEM_ALLOCATOR<int>(SOURCE)),
      m_resistors(MEM_ALLOCATOR<int>(SOURCE)),
      m_mults(nullptr),
      m_divs(nullptr)
{
}

// The last list of ratios is handed out by pointer and kept until the next one, or until here.
PLL_IMPL::~PLL_IMPL()
{
    MEM_MANAGER::delete_wrapper(m_mults, SOURCE);
    MEM_MANAGER::delete_wrapper(m_divs, SOURCE);
}

// Null, and no exception, when memory is exhausted: PLLs then report that by failing to synthesize.
void* PLL_IMPL::operator new(std::size_t size) noexcept
{
    return MEM_MANAGER::new_wrapper(size, MEM_TRACKER(__FILE__, __LINE__), SOURCE);
}

void PLL_IMPL::operator delete(void* pointer) noexcept
{
    MEM_MANAGER::delete_wrapper(pointer, SOURCE);
}

PLL::PLL(int user_taps_count, int max_taps_count)
    : m_cost(0.0),
      m_delta_phase(0.0),
      m_delta_vco_period(0.0),
      m_ss_cycles(0),
      m_ss_counter_max(DEFAULT_SS_COUNTER_MAX),
      m_user_taps_count(user_taps_count),
      m_total_taps_count(user_taps_count),
      m_max_taps_count(max_taps_count),
      m_feedback_tap(PLL_ILLEGAL_TAP),
      m_pfd_min_period(m_default_pfd_min_period),
      m_pfd_max_period(m_default_pfd_max_period),
      m_fin_min_period(m_default_fin_min_period),
      m_ss_charge_pump_current(DEFAULT_SS_CHARGE_PUMP_CURRENT),
      m_ss_supported(true),
      m_output_counter_cascade(false),
      m_vco_post_scale(1),
      m_max_vco_post_scale(1),
      m_c_fixed(DEFAULT_C_FIXED),
      m_r(DEFAULT_R),
      m_c_high(DEFAULT_C_HIGH),
      m_i(DEFAULT_I),
      m_i_min(DEFAULT_I_MIN),
      m_ss_bandwidth(DEFAULT_SS_BANDWIDTH),
      m_low_bandwidth(DEFAULT_LOW_BANDWIDTH),
      m_medium_bandwidth(DEFAULT_MEDIUM_BANDWIDTH),
      m_high_bandwidth(DEFAULT_HIGH_BANDWIDTH),
      m_vco_period(1.0),
      m_bandwidth_legal_for_mult_div(true),
      m_bandwidth_legal_for_fin(true),
      m_id(m_id_count++),
      m_debug(false),
      m_error(PLL_NO_ERROR)
{
    check(max_taps_count <= PLL_MAX_TAPS,
          "m_max_taps_count >= 0 && m_max_taps_count <= PLL_MAX_TAPS", SOURCE);
    check(m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count,
          "m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count", SOURCE);
    // Only the outputs of the user: a counter that a cascade adds gets the maximum of its output.
    m_m.m_max_count = m_default_m_counter_max_count;
    m_n.m_max_count = m_default_n_counter_max_count;
    for (int i = 0; i < std::min(user_taps_count, PLL_MAX_TAPS); ++i) {
        m_taps[i].m_max_count = m_default_tap_counter_max_count;
    }
    std::copy_n(m_default_vco_min_period, std::size(m_vco_min_period), m_vco_min_period);
    std::copy_n(m_default_vco_max_period, std::size(m_vco_max_period), m_vco_max_period);
    std::copy_n(m_default_vco_center_period, std::size(m_vco_center_period), m_vco_center_period);
    std::fill_n(m_ss_vco_max_period, std::size(m_ss_vco_max_period), DEFAULT_SS_VCO_MAX_PERIOD);
    std::fill_n(m_kvco, std::size(m_kvco), DEFAULT_KVCO);
    // The first one makes what all of them share. Counting is enough: one thread is all that calls.
    if (m_id == 0) {
        m_impl = new PLL_IMPL;
        if (m_impl != nullptr) {
            fill_lists(m_impl);
        }
    }
}

PLL::~PLL()
{
    --m_id_count;
    if (m_id_count == 0) {
        delete m_impl;
        m_impl = nullptr;
    }
}

// Copies all, the identity included. How many PLLs there are does not change by it.
PLL& PLL::operator=(const PLL& other) = default;

// Components are offered by the host in ascending order; the smallest and largest are read from the
// ends of the lists. What finds no memory is left out.
void PLL::clear_rci()
{
    if (m_impl != nullptr) {
        clear_lists(m_impl);
    }
}

// Components are offered one by one, in the order in which a device lists them.
void PLL::add_i(int value)
{
    if (m_impl != nullptr) {
        append(&m_impl->m_charge_pump_currents, value);
    }
}

void PLL::add_r(int value)
{
    if (m_impl != nullptr) {
        append(&m_impl->m_resistors, value);
    }
}

void PLL::add_c(int value)
{
    if (m_impl != nullptr) {
        append(&m_impl->m_capacitors, value);
    }
}

// A device is set by the halves of its counters, so these have the last word.
void PLL::set_output_counts_from_high_low()
{
    for (int i = 0; i < std::min(m_total_taps_count, PLL_MAX_TAPS); ++i) {
        m_taps[i].m_count = wrap_add(m_taps[i].m_high, m_taps[i].m_low);
    }
}

const char* PLL::get_error_string(PLL_ERROR_TYPE error)
{
    check(error != MAX_PLL_ERROR_TYPE, "error != MAX_PLL_ERROR_TYPE", SOURCE);
    // A negative one becomes larger than every index.
    const auto index = static_cast<std::size_t>(error);
    return index < std::size(m_error_strings) ? m_error_strings[index] : "";
}
