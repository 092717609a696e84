// Initialisation of a PLL from the database: how limits of several devices combine.
#include "error_guard.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"
#include "pll.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

const char SOURCE[] = "pll_manager";
const int NO_MIN = PLL_UNSET_MAXIMUM;  // what a lower limit that nobody gave ends as
const int NO_MAX = PLL_UNSET_MINIMUM;  // likewise for an upper one

const int PLL_TIMING_INFO::*const SCALARS[] = {&PLL_TIMING_INFO::m_input_min,
                                               &PLL_TIMING_INFO::m_input_max,
                                               &PLL_TIMING_INFO::m_output_min,
                                               &PLL_TIMING_INFO::m_output_max,
                                               &PLL_TIMING_INFO::m_external_output_min,
                                               &PLL_TIMING_INFO::m_external_output_max,
                                               &PLL_TIMING_INFO::m_pfd_min,
                                               &PLL_TIMING_INFO::m_pfd_max,
                                               &PLL_TIMING_INFO::m_ss_spread_min,
                                               &PLL_TIMING_INFO::m_ss_spread_max};

PLL_QUERY query_of(const char* part, const char* speed_grade = nullptr)
{
    PLL_QUERY query;
    query.m_family = "Fam";
    query.m_type = ENHANCED_PLL;
    query.m_part = part;
    query.m_speed_grade = speed_grade;
    return query;
}

// Two parts in two grades; P2 has the wider ranges.
const std::string TWO_PARTS =
    PART_HEAD +
    "vco_min 1000\nvco_max 3000\nvco_center 1600\nvco_gain 500\nss_vco_max 2000\n"
    "pfd_min 10\npfd_max 100\ninput_min 20\ninput_max 200\noutput_min 30\noutput_max 300\n"
    "external_output_min 40\nexternal_output_max 400\nss_spread_min 50\nss_spread_max 500\n"
    "speed_grade 7\npart P2\n"
    "vco_min 900\nvco_max 3300\nvco_center 1700\nvco_gain 600\nss_vco_max 2100\n"
    "pfd_min 9\npfd_max 110\ninput_min 19\ninput_max 210\noutput_min 29\noutput_max 310\n"
    "external_output_min 39\nexternal_output_max 410\nss_spread_min 49\nss_spread_max 510\n";

std::vector<int> scalars(const PLL_TIMING_INFO& timing)
{
    std::vector<int> values;
    for (const int PLL_TIMING_INFO::*field : SCALARS) {
        values.push_back(timing.*field);
    }
    return values;
}

void expect_vco(const PLL_TIMING_INFO& timing, const std::vector<int>& expected)
{
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        SCOPED_TRACE(p);
        EXPECT_EQ(p * expected[0], timing.m_vco_min[p]);
        EXPECT_EQ(p * expected[1], timing.m_vco_max[p]);
        EXPECT_EQ(p * expected[2], timing.m_vco_center[p]);
        EXPECT_EQ(expected[3], timing.m_vco_gain[p]);
        EXPECT_EQ(p * expected[4], timing.m_ss_vco_max[p]);
    }
    EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_min[0]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_max[0]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_center[0]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_gain[0]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_ss_vco_max[0]);
}

TEST(InitInfo, OfOneRecordIsThatRecord)
{
    DATABASE database;
    ASSERT_TRUE(database.read(TWO_PARTS));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of("p1", "6")));
    EXPECT_EQ(&database.basic(), info.m_basic_info);
    expect_vco(info.m_timing_info, {1000, 3000, 1600, 500, 2000});
    EXPECT_EQ((std::vector<int>{20, 200, 30, 300, 40, 400, 10, 100, 50, 500}),
              scalars(info.m_timing_info));
}

TEST(InitInfo, OfUnsetLimitsIsCrossed)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of("P1")));
    const PLL_TIMING_INFO& timing = info.m_timing_info;
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        EXPECT_EQ(NO_MIN, timing.m_vco_min[p]);
        EXPECT_EQ(NO_MAX, timing.m_vco_max[p]);
        EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_center[p]);
        EXPECT_EQ(PLL_UNSET_MINIMUM, timing.m_vco_gain[p]);
        EXPECT_EQ(NO_MAX, timing.m_ss_vco_max[p]);
    }
    EXPECT_EQ((std::vector<int>{NO_MIN, NO_MAX, NO_MIN, NO_MAX, NO_MIN, NO_MAX, NO_MIN, NO_MAX,
                                NO_MIN, NO_MAX}),
              scalars(timing));
}

TEST(InitInfo, WidensOverTheRecordsOfOneEntry)
{
    DATABASE database;
    ASSERT_TRUE(database.read(TWO_PARTS));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of(nullptr)));
    expect_vco(info.m_timing_info, {900, 3300, 1650, 550, 2100});
    EXPECT_EQ((std::vector<int>{19, 210, 29, 310, 39, 410, 9, 110, 49, 510}),
              scalars(info.m_timing_info));
}

TEST(InitInfo, NarrowsOverTheEntries)
{
    DATABASE database;
    ASSERT_TRUE(database.read(TWO_PARTS));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("FAM", "p2", nullptr);
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    expect_vco(info.m_timing_info, {1000, 3000, 1650, 550, 2000});
    EXPECT_EQ((std::vector<int>{20, 200, 30, 300, 40, 400, 10, 100, 50, 500}),
              scalars(info.m_timing_info));
}

TEST(InitInfo, NarrowsEachEndOnItsOwn)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_min 1000\nvco_max 3000\n"
                                          "part P2\nvco_min 1200\nvco_max 2800\n"));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("Fam", "P2", nullptr);
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(1200, info.m_timing_info.m_vco_min[1]);
    EXPECT_EQ(2800, info.m_timing_info.m_vco_max[1]);
}

TEST(InitInfo, TakesAnEntryThatGivesALimitAloneForAll)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "pfd_min 7\npart P2\npfd_max 9\n"));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("Fam", "P2", nullptr);
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(7, info.m_timing_info.m_pfd_min);
    EXPECT_EQ(9, info.m_timing_info.m_pfd_max);
}

TEST(InitInfo, TakesTheLargestIntAsAbsent)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "pfd_min 2147483647\npfd_max 2147483647\n"));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of("P1")));
    EXPECT_EQ(NO_MIN, info.m_timing_info.m_pfd_min);
    EXPECT_EQ(NO_MAX, info.m_timing_info.m_pfd_max);
}

TEST(InitInfo, SelectsByTypePartAndSpeedGrade)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_center 1\npart P2\nvco_center 2\n"
                                          "speed_grade 7\npart P3\nvco_center 4\n"
                                          "pll FAST_PLL\npart P1\nvco_center 8\n"));
    struct
    {
        const char* m_part;
        const char* m_speed_grade;
        int m_center;
    } const CASES[] = {{"P1", nullptr, 1}, {"P2", "6", 2},    {"p3", "7", 4},
                       {nullptr, "6", 1},  {nullptr, "7", 4}, {nullptr, nullptr, 2}};
    for (const auto& c : CASES) {
        PLL_INFO info;
        ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of(c.m_part, c.m_speed_grade)));
        EXPECT_EQ(c.m_center, info.m_timing_info.m_vco_center[1]);
    }
    PLL_INFO info;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query_of("P1", "7")));
    PLL_QUERY query = query_of("P1");
    query.m_type = FAST_PLL;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(8, info.m_timing_info.m_vco_center[1]);
}

TEST(InitInfo, AveragesOverRecordsWithoutAValueToo)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_center 1601\nvco_gain 0\npart P2\n"));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of(nullptr)));
    EXPECT_EQ(800, info.m_timing_info.m_vco_center[1]);
    EXPECT_EQ(1601, info.m_timing_info.m_vco_center[2]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, info.m_timing_info.m_vco_gain[1]);
}

TEST(InitInfo, AveragesHugeValues)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_gain 2147483647\npart P2\nvco_gain 2147483647\n"
                                          "part P3\nvco_gain 2147483644\n"));
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query_of(nullptr)));
    EXPECT_EQ(2147483646, info.m_timing_info.m_vco_gain[1]);
}

TEST(InitInfo, CountsARecordOfTwoEntriesTwice)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_center 1000\npart P2\nvco_center 4000\n"));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("Fam", nullptr, nullptr);
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(2000, info.m_timing_info.m_vco_center[1]);
}

TEST(InitInfo, NeedsOnlyOneEntryToMatch)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "vco_center 1000\n"));
    PLL_QUERY query = query_of("nothing");
    PLL_INFO info;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    query.add_migration_part("Fam", "P1", nullptr);
    EXPECT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(1000, info.m_timing_info.m_vco_center[1]);
}

TEST(InitInfo, LeavesTheTimingRecordOfAFailure)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD));
    PLL_INFO info;
    info.m_timing_info.m_pfd_min = 5;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query_of("nothing")));
    EXPECT_EQ(5, info.m_timing_info.m_pfd_min);
    EXPECT_EQ(&database.basic(), info.m_basic_info);
}

TEST(InitInfo, FailsWithAFamilyThatCannotBeRead)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("Nowhere", nullptr, nullptr);
    PLL_INFO info;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    EXPECT_TRUE(database.m_manager.init_pll_info(&info, query_of("P1")));
}

TEST(InitInfo, TakesTheBasicInformationOfTheFamilyThatSortsFirst)
{
    DATABASE database;
    for (const char* name : {"Zeta", "Alpha", "Fam"}) {
        ASSERT_TRUE(database.read("family " + std::string(name) +
                                  "\npll ENHANCED_PLL\nspeed_grade 6\npart P1\n"));
    }
    PLL_QUERY query = query_of("P1");
    query.add_migration_part("Zeta", "P1", nullptr);
    query.add_migration_part("Alpha", "P1", nullptr);
    PLL_INFO info;
    ASSERT_TRUE(database.m_manager.init_pll_info(&info, query));
    EXPECT_EQ(&database.basic("Alpha"), info.m_basic_info);
}

// The comparison goes round in a circle: C before A by table, A before B and B before C by name.
TEST(InitInfo, SortsByInsertionWhereTheOrderIsACircle)
{
    const auto add = [](PLL_MANAGER* manager, const char* name, int size) {
        PLL_FAMILY_INFO* const family = manager->create_family_info(name);
        manager->create_part_info(family, "P", "6", ENHANCED_PLL);
        PLL_BASIC_INFO& basic = family->m_basic_infos[ENHANCED_PLL];
        basic.m_use_bandwidth_settings_table = size > 0;
        basic.m_bandwidth_settings_table_size = 0;
        if (size > 0) {
            basic.set_bandwidth_settings_table(
                size, new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(size)]);
        }
        return &basic;
    };
    PLL_MANAGER manager;
    PLL_BASIC_INFO* const a = add(&manager, "A", 9);
    PLL_BASIC_INFO* const b = add(&manager, "B", 0);
    PLL_BASIC_INFO* const c = add(&manager, "C", 3);
    const auto first_of = [&manager](const char* first, const char* second, const char* own) {
        PLL_QUERY query;
        query.m_family = own;
        query.m_type = ENHANCED_PLL;
        query.add_migration_part(first, nullptr, nullptr);
        query.add_migration_part(second, nullptr, nullptr);
        PLL_INFO info;
        EXPECT_TRUE(manager.init_pll_info(&info, query));
        return info.m_basic_info;
    };
    // A, B; then C: not before B, so it stays last.
    EXPECT_EQ(a, first_of("A", "B", "C"));
    // C, A: C stays first; then B: not before A.
    EXPECT_EQ(c, first_of("C", "A", "B"));
    // B, C: then A: not before C.
    EXPECT_EQ(b, first_of("B", "C", "A"));
}

TEST(InitInfo, ReportsWhatItCannotDoWithout)
{
    const char* const CONDITION =
        "info != NULL && query.m_family != NULL && query.m_type != PLL_TYPE_MAX";
    EXPECTED_REPORTS reports;
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD));
    PLL_INFO info;
    EXPECT_FALSE(database.m_manager.init_pll_info(nullptr, query_of("P1")));
    reports.expect_only(CONDITION, SOURCE);
    PLL_QUERY query = query_of("P1");
    query.m_family = nullptr;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    reports.expect_only(CONDITION, SOURCE);
    query = query_of("P1");
    query.m_type = PLL_TYPE_MAX;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    reports.expect_only(CONDITION, SOURCE);
    query.m_type = static_cast<PLL_TYPE_ENUM>(PLL_TYPE_MAX + 1);
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    reports.expect_none();
    EXPECT_EQ(nullptr, info.m_basic_info);
}

TEST(InitInfo, ReportsAMigrationPartWithoutFamilyAndFails)
{
    EXPECTED_REPORTS reports;
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD));
    PLL_QUERY query = query_of("P1");
    query.add_migration_part(nullptr, nullptr, nullptr);
    reports.expect_only("family != 0", SOURCE);
    PLL_INFO info;
    EXPECT_FALSE(database.m_manager.init_pll_info(&info, query));
    reports.expect_only("family_info != NULL", SOURCE);
}

// ---- The PLL

const std::string DEVICE =
    TYPE_HEAD +
    "number_of_output_counters 6\nm_counter_max 512\nn_counter_max 64\nss_counter_max 32\n"
    "output_counter_cascade on\noutput_counter_high_low_max 200\nvco_post_scale_counter_max 2\n"
    "ss_charge_pump_current 33\nss_bandwidth 1.5e5\nbandwidth_low 1e5\nbandwidth_medium 1e6\n"
    "bandwidth_high 4e6\ncharge_pump_current_default 40\nloop_filter_resistor_default 1500\n"
    "loop_filter_capacitor_default 9\nloop_filter_fixed_capacitor 77\n"
    "charge_pump_current 30 10 20\nloop_filter_resistor 2000 1000\nloop_filter_capacitor 5\n"
    "speed_grade 6\npart P1\nvco_min 1000\nvco_max 3000\nvco_center 1600\nvco_gain 500\n"
    "ss_vco_max 2000\npfd_min 10\npfd_max 100\ninput_min 20\n";

TEST(InitPll, GivesItTheLimitsOfTheDevice)
{
    DATABASE database;
    ASSERT_TRUE(database.read(DEVICE));
    PLL pll(2, 10);
    ASSERT_TRUE(database.m_manager.init_pll(&pll, query_of("P1")));
    EXPECT_EQ(&database.basic(), pll.m_info.m_basic_info);
    EXPECT_EQ(3000, pll.m_info.m_timing_info.m_vco_max[1]);
    EXPECT_EQ(6, pll.m_max_taps_count);
    EXPECT_EQ(512, pll.m_m.m_max_count);
    EXPECT_EQ(64, pll.m_n.m_max_count);
    EXPECT_EQ(32, pll.m_ss_counter_max);
    EXPECT_TRUE(pll.m_output_counter_cascade);
    for (const PLL_OUTPUT_TAP& tap : pll.m_taps) {
        EXPECT_EQ(200, tap.m_max_count);
    }
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        EXPECT_EQ(1000 * p, pll.m_vco_min_period[p]);
        EXPECT_EQ(3000 * p, pll.m_vco_max_period[p]);
        EXPECT_EQ(1600 * p, pll.m_vco_center_period[p]);
        EXPECT_EQ(2000 * p, pll.m_ss_vco_max_period[p]);
        EXPECT_EQ(500.0, pll.m_kvco[p]);
    }
    EXPECT_EQ(10, pll.m_pfd_min_period);
    EXPECT_EQ(100, pll.m_pfd_max_period);
    EXPECT_EQ(20, pll.m_fin_min_period);
    EXPECT_EQ(2, pll.m_max_vco_post_scale);
    EXPECT_EQ(33, pll.m_ss_charge_pump_current);
}

TEST(InitPll, GivesItTheLoopFilterOfTheDevice)
{
    DATABASE database;
    ASSERT_TRUE(database.read(DEVICE));
    PLL pll(2, 10);
    ASSERT_TRUE(database.m_manager.init_pll(&pll, query_of("P1")));
    EXPECT_EQ(1.5e5, pll.m_ss_bandwidth);
    EXPECT_EQ(1e5, pll.m_low_bandwidth);
    EXPECT_EQ(1e6, pll.m_medium_bandwidth);
    EXPECT_EQ(4e6, pll.m_high_bandwidth);
    EXPECT_EQ(40.0, pll.m_i);
    EXPECT_EQ(1500.0, pll.m_r);
    EXPECT_EQ(9.0, pll.m_c_high);
    EXPECT_EQ(77.0, pll.m_c_fixed);
    EXPECT_EQ(10.0, pll.m_i_min);
    EXPECT_EQ((MEM_VECTOR<int>{10, 20, 30}), PLL::m_impl->m_charge_pump_currents);
    EXPECT_EQ((MEM_VECTOR<int>{1000, 2000}), PLL::m_impl->m_resistors);
    EXPECT_EQ((MEM_VECTOR<int>{5}), PLL::m_impl->m_capacitors);
}

TEST(InitPll, BooksTheSharedListsAsThePllDoes)
{
    DATABASE database;
    ASSERT_TRUE(database.read(DEVICE));
    PLL pll(2, 10);
    ASSERT_TRUE(database.m_manager.init_pll(&pll, query_of("P1")));
    EXPECT_STREQ("pll", PLL::m_impl->m_charge_pump_currents.get_allocator().get_source());
}

TEST(InitPll, OfADeviceWithoutComponentsEmptiesTheLists)
{
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "output_counter_high_low_max 1\n"));
    PLL pll(1, 10);
    const double i_min = pll.m_i_min;
    ASSERT_TRUE(database.m_manager.init_pll(&pll, query_of("P1")));
    EXPECT_EQ(i_min, pll.m_i_min);
    EXPECT_TRUE(PLL::m_impl->m_charge_pump_currents.empty());
    EXPECT_TRUE(PLL::m_impl->m_resistors.empty());
    EXPECT_TRUE(PLL::m_impl->m_capacitors.empty());
}

TEST(InitPll, ReportsADeviceWhoseOutputCountersHaveNoHalves)
{
    EXPECTED_REPORTS reports;
    DATABASE database;
    ASSERT_TRUE(database.read(PART_HEAD + "output_counter_max 512\n"));
    PLL pll(1, 10);
    EXPECT_TRUE(database.m_manager.init_pll(&pll, query_of("P1")));
    reports.expect_only("info.is_output_counter_high_low()", SOURCE);
    EXPECT_EQ(0, pll.m_taps[9].m_max_count);
}

TEST(InitPll, LeavesThePllOfAFailure)
{
    DATABASE database;
    ASSERT_TRUE(database.read(DEVICE));
    PLL pll(1, 10);
    const MEM_VECTOR<int> currents = PLL::m_impl->m_charge_pump_currents;
    EXPECT_FALSE(database.m_manager.init_pll(&pll, query_of("nothing")));
    EXPECT_EQ(nullptr, pll.m_info.m_basic_info);
    EXPECT_EQ(512, pll.m_taps[0].m_max_count);
    EXPECT_EQ(currents, PLL::m_impl->m_charge_pump_currents);
}

TEST(InitPll, OfNoPllIsReported)
{
    EXPECTED_REPORTS reports;
    DATABASE database;
    EXPECT_FALSE(database.m_manager.init_pll(nullptr, query_of("P1")));
    reports.expect_only("pll != NULL", SOURCE);
}

}  // namespace
