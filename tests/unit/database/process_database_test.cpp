// The process-wide database and the limits that it makes defaults.
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "pll_manager.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

const std::string FAMILY_FILE =
    "family Fam\npll FAST_PLL\nm_counter_max 100\nn_counter_max 50\n"
    "output_counter_high_low_max 25\nspeed_grade 6\npart P1\nvco_min 500\nvco_max 900\n"
    "vco_center 700\npfd_min 3\npfd_max 30\ninput_min 2\nspeed_grade 7\npart P2\nvco_min 400\n";

// Defaults last for the rest of the process; here only for the test.
struct SAVED_DEFAULTS
{
    SAVED_DEFAULTS()
    {
        std::copy(PLL::m_default_vco_min_period, PLL::m_default_vco_min_period + 3, m_vco[0]);
        std::copy(PLL::m_default_vco_max_period, PLL::m_default_vco_max_period + 3, m_vco[1]);
        std::copy(PLL::m_default_vco_center_period, PLL::m_default_vco_center_period + 3, m_vco[2]);
    }
    ~SAVED_DEFAULTS()
    {
        std::copy(m_vco[0], m_vco[0] + 3, PLL::m_default_vco_min_period);
        std::copy(m_vco[1], m_vco[1] + 3, PLL::m_default_vco_max_period);
        std::copy(m_vco[2], m_vco[2] + 3, PLL::m_default_vco_center_period);
        PLL::m_default_m_counter_max_count = m_m;
        PLL::m_default_n_counter_max_count = m_n;
        PLL::m_default_tap_counter_max_count = m_tap;
        PLL::m_default_pfd_min_period = m_pfd_min;
        PLL::m_default_pfd_max_period = m_pfd_max;
        PLL::m_default_fin_min_period = m_fin_min;
    }

    int m_vco[3][3];
    int m_m = PLL::m_default_m_counter_max_count;
    int m_n = PLL::m_default_n_counter_max_count;
    int m_tap = PLL::m_default_tap_counter_max_count;
    int m_pfd_min = PLL::m_default_pfd_min_period;
    int m_pfd_max = PLL::m_default_pfd_max_period;
    int m_fin_min = PLL::m_default_fin_min_period;
};

class LibraryEntry : public testing::Test
{
protected:
    LibraryEntry()
    {
        write_file(m_dir.file("ddb_pll_path.txt"), "Fam . family.txt\n");
        write_file(m_dir.file("family.txt"), FAMILY_FILE);
    }
    ~LibraryEntry() override { PLL::delete_family_info(); }

    bool init() { return PLL::init_family_info(m_dir.path().c_str()); }

    TEMP_DIR m_dir;
    SAVED_DEFAULTS m_defaults;
};

TEST_F(LibraryEntry, ReadsThePathFileOnly)
{
    EXPECT_EQ(nullptr, PLL::m_pll_manager);
    EXPECT_TRUE(init());
    ASSERT_NE(nullptr, PLL::m_pll_manager);
    ASSERT_EQ(1, PLL::m_pll_manager->get_number_of_families());
    EXPECT_EQ(0, PLL::m_pll_manager->m_families[0]->m_number_of_parts);
}

TEST_F(LibraryEntry, KeepsTheFirstDatabase)
{
    EXPECT_TRUE(init());
    EXPECT_TRUE(PLL::init_family_info("/nowhere/at/all"));
    EXPECT_TRUE(PLL::init_family_info(nullptr));
    EXPECT_STREQ("Fam", PLL::m_pll_manager->get_family(0));
}

TEST_F(LibraryEntry, KeepsTheManagerOfADatabaseThatCannotBeRead)
{
    EXPECT_FALSE(PLL::init_family_info("/nowhere/at/all"));
    EXPECT_NE(nullptr, PLL::m_pll_manager);
    EXPECT_TRUE(init());
    EXPECT_EQ(0, PLL::m_pll_manager->get_number_of_families());
}

TEST_F(LibraryEntry, ReportsANullLocationAndKeepsTheManager)
{
    EXPECTED_REPORTS reports;
    EXPECT_FALSE(PLL::init_family_info(nullptr));
    reports.expect_only("path != NULL", "pll_manager");
    EXPECT_NE(nullptr, PLL::m_pll_manager);
}

TEST_F(LibraryEntry, GivesEverythingBackAndReadsAnew)
{
    const std::size_t before = MEM_MANAGER::get_live_blocks(nullptr);
    EXPECT_TRUE(init());
    EXPECT_EQ(2, PLL::m_pll_manager->get_number_of_speed_grades("Fam"));
    PLL::delete_family_info();
    EXPECT_EQ(nullptr, PLL::m_pll_manager);
    EXPECT_EQ(before, MEM_MANAGER::get_live_blocks(nullptr));
    PLL::delete_family_info();
    write_file(m_dir.file("ddb_pll_path.txt"), "Other . family.txt\n");
    EXPECT_TRUE(init());
    EXPECT_STREQ("Other", PLL::m_pll_manager->get_family(0));
}

TEST_F(LibraryEntry, MakesTheLimitsOfAFamilyTheDefaults)
{
    EXPECT_TRUE(init());
    EXPECT_TRUE(PLL::read_parameters("fam", PLL::FAST_PLL));
    const PLL pll(1, 10);
    EXPECT_EQ(100, pll.m_m.m_max_count);
    EXPECT_EQ(50, pll.m_n.m_max_count);
    EXPECT_EQ(25, pll.m_taps[0].m_max_count);
    const int MIN[] = {1000, 400, 800};
    const int MAX[] = {3334, 900, 1800};
    const int CENTER[] = {1666, 350, 700};
    for (int p = 0; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        EXPECT_EQ(MIN[p], pll.m_vco_min_period[p]);
        EXPECT_EQ(MAX[p], pll.m_vco_max_period[p]);
        EXPECT_EQ(CENTER[p], pll.m_vco_center_period[p]);
    }
    EXPECT_EQ(3, pll.m_pfd_min_period);
    EXPECT_EQ(30, pll.m_pfd_max_period);
    EXPECT_EQ(2, pll.m_fin_min_period);
}

TEST_F(LibraryEntry, LeavesEarlierPllsAndOtherLimitsAlone)
{
    EXPECT_TRUE(init());
    const PLL earlier(1, 10);
    const double kvco = earlier.m_kvco[1];
    const int ss_vco_max = earlier.m_ss_vco_max_period[1];
    EXPECT_TRUE(PLL::read_parameters("Fam", PLL::FAST_PLL));
    EXPECT_NE(100, earlier.m_m.m_max_count);
    const PLL later(1, 10);
    EXPECT_EQ(kvco, later.m_kvco[1]);
    EXPECT_EQ(ss_vco_max, later.m_ss_vco_max_period[1]);
}

TEST_F(LibraryEntry, LeavesTheDefaultsOfAFailure)
{
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(init());
    EXPECT_FALSE(PLL::read_parameters("Unknown", PLL::FAST_PLL));
    EXPECT_FALSE(PLL::read_parameters("Fam", PLL::VESTRA_PLL));
    reports.expect_none();
    EXPECT_FALSE(PLL::read_parameters("Fam", PLL::PLL_TYPE_MAX));
    EXPECT_FALSE(PLL::read_parameters("Fam", static_cast<PLL::PLL_TYPE>(7)));
    EXPECT_FALSE(PLL::read_parameters(nullptr, PLL::FAST_PLL));
    reports.expect_only("info != NULL && query.m_family != NULL && query.m_type != PLL_TYPE_MAX",
                        "pll_manager", 3);
    EXPECT_EQ(m_defaults.m_m, PLL::m_default_m_counter_max_count);
    EXPECT_EQ(m_defaults.m_fin_min, PLL::m_default_fin_min_period);
}

TEST_F(LibraryEntry, ReportsThatThereIsNoDatabase)
{
    EXPECTED_REPORTS reports;
    EXPECT_FALSE(PLL::read_parameters("Fam", PLL::FAST_PLL));
    reports.expect_only("m_pll_manager != NULL", "pll");
}

TEST_F(LibraryEntry, TakesEveryType)
{
    write_file(m_dir.file("family.txt"),
               "family Fam\nspeed_grade 6\n"
               "pll ENHANCED_PLL\noutput_counter_high_low_max 11\npart P\n"
               "pll FAST_PLL\noutput_counter_high_low_max 12\npart P\n"
               "pll FAST_PLL_HIGH_SPEED\noutput_counter_high_low_max 13\npart P\n"
               "pll VESTRA_PLL\noutput_counter_high_low_max 14\npart P\n");
    EXPECT_TRUE(init());
    int expected = 11;
    for (const PLL::PLL_TYPE type :
         {PLL::ENHANCED_PLL, PLL::FAST_PLL, PLL::FAST_PLL_HIGH_SPEED, PLL::VESTRA_PLL}) {
        EXPECT_TRUE(PLL::read_parameters("Fam", type));
        EXPECT_EQ(expected, PLL::m_default_tap_counter_max_count);
        ++expected;
    }
}

}  // namespace
