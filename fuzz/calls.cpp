// Calls on the C++ interface in any order, with any numbers. What a call must not do is crash, leak
// or run on: counters are as large as an int, but for calls whose work is promised to grow with
// them.
#include "fuzz.h"
#include "leak.h"

#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"

#include <bit>
#include <cstring>
#include <sstream>

namespace {

// Numbers out of the bytes of an input; zeros behind its end.
class BYTES
{
public:
    BYTES(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size), m_next(0) {}

    bool is_at_end() const { return m_next >= m_size; }

    std::uint8_t byte() { return is_at_end() ? std::uint8_t{0} : m_data[m_next++]; }

    // Small ones often, any other as well.
    int number()
    {
        constexpr std::uint8_t SMALL = 200;
        const std::uint8_t first = byte();
        if (first < SMALL) {
            return first;
        }
        std::uint8_t bytes[sizeof(int)] = {byte(), byte(), byte(), byte()};
        return std::bit_cast<int>(bytes);
    }

    double real()
    {
        constexpr std::uint8_t SMALL = 128;
        constexpr double STEP = 7.5;
        const std::uint8_t first = byte();
        if (first < SMALL) {
            return first * STEP;
        }
        std::uint8_t bytes[sizeof(double)];
        for (std::uint8_t& b : bytes) {
            b = byte();
        }
        return std::bit_cast<double>(bytes);
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_next;
};

struct OBJECTS
{
    PLL m_pll{2, PLL_MAX_TAPS};
    PLL m_other{3, PLL_MAX_TAPS};
    PLL_PROP m_request{2};
    PLL_PROP m_result{2};
};

int& int_field(OBJECTS* o, std::uint8_t which, std::uint8_t index)
{
    PLL_OUTPUT_TAP& tap = o->m_pll.m_taps[index % PLL_MAX_TAPS];
    PLL_USER_TAP& clock = o->m_request.m_taps[index % PLL_MAX_TAPS];
    int* const fields[] = {
        &o->m_pll.m_m.m_max_count,
        &o->m_pll.m_n.m_max_count,
        &o->m_pll.m_n.m_min_count,
        &o->m_pll.m_vco_min_period[1],
        &o->m_pll.m_vco_max_period[1],
        &o->m_pll.m_vco_center_period[1],
        &o->m_pll.m_pfd_min_period,
        &o->m_pll.m_pfd_max_period,
        &o->m_pll.m_user_taps_count,
        &o->m_pll.m_total_taps_count,
        &o->m_pll.m_max_taps_count,
        &o->m_pll.m_max_vco_post_scale,
        &o->m_pll.m_feedback_tap,
        &o->m_pll.m_vco_post_scale,
        &tap.m_max_count,
        &tap.m_count,
        &tap.m_high,
        &tap.m_low,
        &tap.m_previous_tap,
        &tap.m_initial,
        &clock.m_mult,
        &clock.m_div,
        &clock.m_duty,
        &clock.m_delay,
        &o->m_request.m_taps_count,
        &o->m_request.m_fin_period,
        &o->m_request.m_fin2_period,
        &o->m_request.m_feedback_tap,
        &o->m_request.m_vco_mult,
        &o->m_request.m_vco_div,
        &o->m_request.m_bandwidth_type,
        &o->m_request.m_ss_period,
        &o->m_pll.m_m.m_count,
        &o->m_pll.m_n.m_count,
        &o->m_pll.m_m.m_initial,
    };
    return *fields[which % std::size(fields)];
}

double& real_field(OBJECTS* o, std::uint8_t which, std::uint8_t index)
{
    PLL_USER_TAP& clock = o->m_request.m_taps[index % PLL_MAX_TAPS];
    double* const fields[] = {&clock.m_phase,
                              &clock.m_sclkout_phase,
                              &o->m_request.m_bandwidth,
                              &o->m_request.m_down_spread,
                              &o->m_pll.m_c_fixed,
                              &o->m_pll.m_c_high,
                              &o->m_pll.m_kvco[1],
                              &o->m_pll.m_i,
                              &o->m_pll.m_r,
                              &o->m_pll.m_vco_period};
    return *fields[which % std::size(fields)];
}

// The work of these grows with the counters, which they therefore get smaller.
void limit_counters(PLL* pll)
{
    constexpr int LARGEST = 300;
    pll->m_m.m_max_count = std::min(pll->m_m.m_max_count, LARGEST);
    pll->m_n.m_max_count = std::min(pll->m_n.m_max_count, LARGEST);
    pll->m_n.m_min_count = std::max(pll->m_n.m_min_count, -LARGEST);
}

void query(OBJECTS* o, BYTES* bytes)
{
    const PLL& pll = o->m_pll;
    const int tap = bytes->number();
    const int period = bytes->number();
    pll.get_phase_ps_min(tap, period);
    pll.get_next_sclkout_phase_ps(tap, period);
    pll.get_prev_sclkout_phase_ps(tap, period);
    pll.get_next_phase_ps(tap, period);
    pll.get_duty_cycle_min(tap);
    pll.get_duty_cycle_max(tap);
    pll.find_duty_cycle(tap);
    pll.get_combined_count(tap);
    pll.get_vco_min_period(tap);
    PLL_UTIL::get_tap_count(&pll, tap);
    PLL_UTIL::cascade_factor(tap, period);
    PLL_UTIL::gcd(tap, period);
}

void report(const OBJECTS& o)
{
    std::ostringstream stream;
    o.m_pll.dump(stream, false, false);
    o.m_pll.dump(stream, true, true);
    o.m_request.dump(stream, true, false);
    o.m_result.dump(stream, false, true);
}

void call(OBJECTS* o, BYTES* bytes)
{
    enum CALL
    {
        SET_INT,
        SET_REAL,
        SYNTHESIZE,
        RATIOS,
        STEPS,
        PROPERTIES,
        COPY,
        QUERY,
        REPORT,
        PARTS,
        CALLS
    };
    switch (bytes->byte() % CALLS) {
    case SET_INT: {
        int& field = int_field(o, bytes->byte(), bytes->byte());
        field = bytes->number();
        break;
    }
    case SET_REAL: {
        double& field = real_field(o, bytes->byte(), bytes->byte());
        field = bytes->real();
        break;
    }
    case SYNTHESIZE:
        limit_counters(&o->m_pll);
        o->m_pll.synthesize(o->m_request);
        break;
    case RATIOS: {
        int* mults = nullptr;
        int* divs = nullptr;
        limit_counters(&o->m_pll);
        o->m_pll.find_vco_mult_div_values(&mults, &divs, bytes->number());
        break;
    }
    case STEPS:
        o->m_pll.synthesize_best_phase_and_duty_cycle(&o->m_other, o->m_request);
        o->m_pll.compute_phase_for_ui(&o->m_other, o->m_request, bytes->number(), bytes->real());
        o->m_pll.compute_duty_cycle_for_ui(&o->m_other, o->m_request, bytes->number(),
                                           bytes->real());
        o->m_pll.correct_next_and_previous_values_for_ui();
        o->m_pll.synthesize_delay_chains(o->m_request);
        break;
    case PROPERTIES:
        o->m_result.set_properties_from_internals(o->m_pll);
        break;
    case COPY:
        o->m_other = o->m_pll;
        break;
    case QUERY:
        query(o, bytes);
        break;
    case REPORT:
        report(*o);
        break;
    case PARTS:
        PLL::add_i(bytes->number());
        PLL::add_r(bytes->number());
        break;
    default:  // the remainder of a division has no others
        break;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int MOST_CALLS = 60;
    BYTES bytes(data, size);
    PLL::obey_debug_switch(false);
    {
        OBJECTS objects;
        for (int i = 0; i < MOST_CALLS && !bytes.is_at_end(); ++i) {
            call(&objects, &bytes);
        }
    }
    expect_no_live_blocks();
    return 0;
}
