// The limits that read_parameters makes the defaults of all later PLLs. They last as long as the
// process, so this test is the only one of its program.
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "pll_manager.h"
#include "pll_prop.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const int SCALES = PLL_VCO_POST_SCALE_MAX + 1;
const int BUILT_IN_MAX_COUNT = 512;

// What a PLL takes from the defaults.
struct LIMITS
{
    int m_m_max;
    int m_n_max;
    int m_tap_max;
    int m_vco_min[SCALES];
    int m_vco_max[SCALES];
    int m_vco_center[SCALES];
    int m_pfd_min;
    int m_pfd_max;
    int m_fin_min;
};

const LIMITS BUILT_IN = {
    512, 512, 512, {1000, 1000, 1000}, {3334, 3334, 3334}, {1666, 1666, 1666}, 1500, 333333, 1000,
};

void expect_limits(const LIMITS& expected, const PLL& pll)
{
    EXPECT_EQ(expected.m_m_max, pll.m_m.m_max_count);
    EXPECT_EQ(expected.m_n_max, pll.m_n.m_max_count);
    for (int tap = 0; tap < PLL_MAX_TAPS; ++tap) {
        EXPECT_EQ(tap < pll.m_user_taps_count ? expected.m_tap_max : BUILT_IN_MAX_COUNT,
                  pll.m_taps[tap].m_max_count);
    }
    for (int p = 0; p < SCALES; ++p) {
        EXPECT_EQ(expected.m_vco_min[p], pll.m_vco_min_period[p]);
        EXPECT_EQ(expected.m_vco_max[p], pll.m_vco_max_period[p]);
        EXPECT_EQ(expected.m_vco_center[p], pll.m_vco_center_period[p]);
    }
    EXPECT_EQ(expected.m_pfd_min, pll.m_pfd_min_period);
    EXPECT_EQ(expected.m_pfd_max, pll.m_pfd_max_period);
    EXPECT_EQ(expected.m_fin_min, pll.m_fin_min_period);
}

// What no PLL takes from a family without being initialised itself.
void expect_built_in_rest(const PLL& pll)
{
    for (int p = 0; p < SCALES; ++p) {
        EXPECT_EQ(1667, pll.m_ss_vco_max_period[p]);
        EXPECT_EQ(1880.0, pll.m_kvco[p]);
    }
    EXPECT_EQ(1, pll.m_max_vco_post_scale);
    EXPECT_EQ(32768, pll.m_ss_counter_max);
    EXPECT_FALSE(pll.m_output_counter_cascade);
    EXPECT_EQ(90, pll.m_ss_charge_pump_current);
    EXPECT_EQ(140000.0, pll.m_ss_bandwidth);
    EXPECT_EQ(150000.0, pll.m_low_bandwidth);
    EXPECT_EQ(800000.0, pll.m_medium_bandwidth);
    EXPECT_EQ(2000000.0, pll.m_high_bandwidth);
    EXPECT_EQ(50.0, pll.m_i);
    EXPECT_EQ(4.0, pll.m_i_min);
    EXPECT_EQ(1020.5, pll.m_r);
    EXPECT_EQ(10.0, pll.m_c_high);
    EXPECT_EQ(650.0, pll.m_c_fixed);
    EXPECT_FALSE(pll.m_info.has_info());
}

const char FAMILY_FILE[] =
    "family Fam\n"
    "pll FAST_PLL\nm_counter_max 100\nn_counter_max 50\noutput_counter_high_low_max 25\n"
    "number_of_output_counters 4\nvco_post_scale_counter_max 2\nss_counter_max 3\n"
    "output_counter_cascade yes\nss_charge_pump_current 7\nss_bandwidth 1\nbandwidth_low 2\n"
    "bandwidth_medium 3\nbandwidth_high 4\ncharge_pump_current 5 6\nloop_filter_resistor 8\n"
    "charge_pump_current_default 5\nloop_filter_resistor_default 8\n"
    "loop_filter_capacitor_default 9\nloop_filter_fixed_capacitor 11\n"
    "speed_grade 6\npart P1\nvco_min 500\nvco_max 900\nvco_center 700\nvco_gain 123\n"
    "ss_vco_max 800\npfd_min 3\npfd_max 30000\ninput_min 2\n"
    "speed_grade 7\npart P2\nvco_min 400\nvco_max_post_scale 2 1850\n"
    "pll VESTRA_PLL\noutput_counter_high_low_max 9\nspeed_grade 6\npart P1\nvco_max 950\n";

// Centre periods are averaged over both parts, of which one gives none.
const LIMITS OF_FAST_PLL = {
    100, 50, 25, {1000, 400, 800}, {3334, 900, 1850}, {1666, 350, 700}, 3, 30000, 2,
};

// Lower limits that are missing stand above all values, upper ones below; counters without a limit
// are 0.
const LIMITS OF_VESTRA_PLL = {
    0,
    0,
    9,
    {1000, PLL_UNSET_MAXIMUM, PLL_UNSET_MAXIMUM},
    {3334, 950, 1900},
    {1666, PLL_UNSET_MINIMUM, PLL_UNSET_MINIMUM},
    PLL_UNSET_MAXIMUM,
    PLL_UNSET_MINIMUM,
    PLL_UNSET_MAXIMUM,
};

class LastingDefaults : public testing::Test
{
protected:
    LastingDefaults()
    {
        write_file(m_dir.file("ddb_pll_path.txt"), "Fam . family.txt\n");
        write_file(m_dir.file("family.txt"), FAMILY_FILE);
    }

    bool init() const { return PLL::init_family_info(m_dir.path().c_str()); }

    void fail_without_a_database() const
    {
        EXPECTED_REPORTS reports;
        EXPECT_FALSE(PLL::read_parameters("Fam", PLL::FAST_PLL));
        reports.expect_only("m_pll_manager != NULL", "pll");
    }

    void fail_for_what_is_unknown() const
    {
        EXPECT_FALSE(PLL::read_parameters("Other", PLL::FAST_PLL));
        EXPECT_FALSE(PLL::read_parameters("Fam", PLL::ENHANCED_PLL));
        EXPECTED_REPORTS reports;
        EXPECT_FALSE(PLL::read_parameters("Fam", PLL::PLL_TYPE_MAX));
        EXPECT_FALSE(PLL::read_parameters(nullptr, PLL::FAST_PLL));
        reports.expect_only(
            "info != NULL && query.m_family != NULL && query.m_type != PLL_TYPE_MAX", "pll_manager",
            2);
    }

    // With the family's limits, 2000 ps can be doubled to a VCO period of 500 ps and more.
    static bool synthesises_at(int vco_period)
    {
        PLL pll(1, PLL_MAX_TAPS);
        PLL_PROP request(1);
        request.m_fin_period = 4 * vco_period;
        request.m_taps[0].m_mult = 4;
        return pll.synthesize(request) && pll.get_vco_period() == vco_period;
    }

    TEMP_DIR m_dir;
};

TEST_F(LastingDefaults, LastForTheRestOfTheProcess)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
    expect_limits(BUILT_IN, PLL(3, PLL_MAX_TAPS));
    fail_without_a_database();
    ASSERT_TRUE(init());
    fail_for_what_is_unknown();
    expect_limits(BUILT_IN, PLL(3, PLL_MAX_TAPS));
    EXPECT_FALSE(synthesises_at(600));

    {
        const PLL earlier(3, PLL_MAX_TAPS);
        ASSERT_TRUE(PLL::read_parameters("FAM", PLL::FAST_PLL));
        expect_limits(BUILT_IN, earlier);
        const std::vector<int> currents(PLL::m_impl->m_charge_pump_currents.begin(),
                                        PLL::m_impl->m_charge_pump_currents.end());
        EXPECT_EQ((std::vector<int>{5, 6}), currents);  // the lists are those of every live PLL
        const PLL later(3, PLL_MAX_TAPS);
        expect_limits(OF_FAST_PLL, later);
        expect_built_in_rest(later);
    }
    EXPECT_TRUE(synthesises_at(600));
    EXPECT_FALSE(synthesises_at(1200));

    fail_for_what_is_unknown();
    PLL::delete_family_info();
    fail_without_a_database();
    expect_limits(OF_FAST_PLL, PLL(1, PLL_MAX_TAPS));

    ASSERT_TRUE(init());
    expect_limits(OF_FAST_PLL, PLL(0, 0));
    ASSERT_TRUE(PLL::read_parameters("Fam", PLL::VESTRA_PLL));
    PLL::delete_family_info();
    expect_limits(OF_VESTRA_PLL, PLL(10, PLL_MAX_TAPS));
    expect_built_in_rest(PLL(0, 0));
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
}

}  // namespace
