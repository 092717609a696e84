// Small devices and requests for the tests of the synthesis, small enough to follow by hand.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include <memory>

// A PLL of post-scale 1 with few counts to try, and a request of as many clocks, each 1/1 at 0
// degrees and 50 percent from an input of 4000 ps. Unlike the class-wide defaults, the VCO range
// stops at 4000 ps, so that M 2 to 4 with N 1 and 2 are all legal but where a VCO is too slow.
struct SMALL_PLL
{
    SMALL_PLL(int clocks, int m_max, int n_max) : m_pll(clocks, PLL_MAX_TAPS), m_request(clocks)
    {
        m_pll.m_m.m_max_count = m_max;
        m_pll.m_n.m_max_count = n_max;
        set_vco(1000, 1666, 4000);
        m_request.m_fin_period = 4000;
    }

    void set_vco(int min_period, int center_period, int max_period)
    {
        m_pll.m_vco_min_period[1] = min_period;
        m_pll.m_vco_center_period[1] = center_period;
        m_pll.m_vco_max_period[1] = max_period;
    }

    void set_pfd(int min_period, int max_period)
    {
        m_pll.m_pfd_min_period = min_period;
        m_pll.m_pfd_max_period = max_period;
    }

    void set_ratio(int clock, int mult, int div)
    {
        m_request.m_taps[clock].m_mult = mult;
        m_request.m_taps[clock].m_div = div;
    }

    bool synthesize() { return m_pll.synthesize(m_request); }

    PLL_OUTPUT_TAP& tap(int index) { return m_pll.m_taps[index]; }
    PLL_USER_TAP& clock(int index) { return m_request.m_taps[index]; }

    PLL m_pll;
    PLL_PROP m_request;
};

// One candidate only: M 2 and N 1, with a VCO of 2000 ps, from an input of 4000 ps.
struct ONE_CANDIDATE : SMALL_PLL
{
    explicit ONE_CANDIDATE(int clocks) : SMALL_PLL(clocks, 2, 1) {}
};

// A device description with a bandwidth table of `size` groups (none when 0) for a PLL.
class DEVICE
{
public:
    explicit DEVICE(int size)
    {
        if (size > 0) {
            m_info.set_bandwidth_settings_table(
                size, new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(size)]);
            m_info.m_use_bandwidth_settings_table = true;
        }
    }

    // Appends a row to the group of effective multiplication `m`.
    PLL_BANDWIDTH_SETTING* add_row(int m, double typical_bandwidth, double fast_bandwidth)
    {
        PLL_BANDWIDTH_SETTING* row = new PLL_BANDWIDTH_SETTING;
        row->m_m = m;
        row->m_charge_pump_current = 40;
        row->m_loop_filter_resistor = 2000;
        row->m_loop_filter_capacitor = -1;
        row->m_typical_bandwidth = typical_bandwidth;
        row->m_fast_bandwidth = fast_bandwidth;
        m_info.m_bandwidth_settings_table[m].m_settings.push_back(row);
        return row;
    }

    // The device must outlive the use of the PLL.
    void describe(PLL& pll) { pll.m_info.m_basic_info = &m_info; }

    PLL_BASIC_INFO m_info;
};

// Makes these the only components that a loop filter may be built of, until the last PLL goes.
inline void set_components(PLL& pll, std::initializer_list<int> currents,
                           std::initializer_list<int> resistors)
{
    pll.clear_rci();
    for (int current : currents) {
        PLL::add_i(current);
    }
    for (int resistor : resistors) {
        PLL::add_r(resistor);
    }
}
