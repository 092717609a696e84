// The choice of a row of the bandwidth table, by cost.
#include "error_guard.h"
#include "filter/table_row.h"
#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace pll_internal;

namespace {

constexpr double MEGAHERTZ = 1e6;
constexpr double NOTHING_CHOSEN = 2147483647.0;

// M 4, N 1 from 10000 ps. With a PFD multiplier of 10 the limit is 10 MHz.
struct TABLE_PLL
{
    explicit TABLE_PLL(int size) : m_device(size), m_pll(1, PLL_MAX_TAPS), m_request(1)
    {
        m_device.describe(m_pll);
        m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 10;
        m_pll.m_m.m_count = 4;
        m_request.m_fin_period = 10000;
    }

    // The row's resistor tells which one was chosen.
    void add_row(int resistor, double typical, double fast)
    {
        m_device.add_row(4, typical * MEGAHERTZ, fast * MEGAHERTZ)->m_loop_filter_resistor =
            resistor;
    }

    bool choose() { return PLL::synthesize_best_bandwidth_using_table(&m_pll, m_request); }

    DEVICE m_device;
    PLL m_pll;
    PLL_PROP m_request;
};

TEST(BandwidthRow, IsTheFirstWithoutCost)
{
    TABLE_PLL box(5);
    box.add_row(1, 1.0, 2.0);
    box.add_row(2, 1.0, 1.0);
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(1.0, box.m_pll.m_r);
    EXPECT_EQ(40.0, box.m_pll.m_i);
    EXPECT_EQ(0.0, box.m_pll.m_cost);
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_mult_div);
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_fin);
}

TEST(BandwidthRow, GivesItsCapacitorOnlyWhereItHasOne)
{
    TABLE_PLL box(5);
    PLL_BANDWIDTH_SETTING* row = box.m_device.add_row(4, 1e6, 1e6);
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(10.0, box.m_pll.m_c_high);
    row->m_loop_filter_capacitor = 0;
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(0.0, box.m_pll.m_c_high);
    row->m_loop_filter_capacitor = 25;
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(25.0, box.m_pll.m_c_high);
}

void expect_nothing_chosen(TABLE_PLL& box)
{
    box.m_pll.m_cost = 1.0;
    box.m_pll.m_bandwidth_legal_for_mult_div = true;
    EXPECT_FALSE(box.choose());
    EXPECT_FALSE(box.m_pll.m_bandwidth_legal_for_mult_div);
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_fin);
    EXPECT_EQ(1.0 + NOTHING_CHOSEN, box.m_pll.m_cost);
    EXPECT_EQ(1020.5, box.m_pll.m_r);
    EXPECT_EQ(50.0, box.m_pll.m_i);
}

TEST(BandwidthRow, IsMissingBeyondTheTable)
{
    TABLE_PLL box(4);
    expect_nothing_chosen(box);
}

TEST(BandwidthRow, IsMissingInAnEmptyGroup)
{
    TABLE_PLL box(5);
    expect_nothing_chosen(box);
}

TEST(BandwidthRow, IsMissingWithoutTableOrDeviceOrForANegativeM)
{
    TABLE_PLL none(0);
    expect_nothing_chosen(none);
    TABLE_PLL no_device(5);
    no_device.m_pll.m_info.m_basic_info = nullptr;
    expect_nothing_chosen(no_device);
    TABLE_PLL negative(5);
    negative.m_pll.m_m.m_count = -1;
    expect_nothing_chosen(negative);
}

TEST(BandwidthRow, IsNotChosenAtACostThatIsNoneAtAll)
{
    TABLE_PLL box(5);
    box.add_row(1, std::numeric_limits<double>::infinity(), 1.0);
    box.m_request.m_bandwidth_type = 4;
    expect_nothing_chosen(box);
}

// ---- Effective M

TEST(BandwidthRow, StandsInTheGroupOfTheEffectiveM)
{
    TABLE_PLL post_scale(9);
    post_scale.m_device.add_row(8, 1e6, 1e6)->m_loop_filter_resistor = 8;
    post_scale.m_pll.m_vco_post_scale = 2;
    EXPECT_TRUE(post_scale.choose());
    EXPECT_EQ(8.0, post_scale.m_pll.m_r);

    TABLE_PLL feedback(13);
    feedback.m_device.add_row(12, 1e6, 1e6)->m_loop_filter_resistor = 12;
    feedback.m_pll.m_feedback_tap = 0;
    feedback.m_pll.m_taps[0].m_bypass = false;
    feedback.m_pll.m_taps[0].m_high = 2;
    feedback.m_pll.m_taps[0].m_low = 1;
    EXPECT_TRUE(feedback.choose());
    EXPECT_EQ(12.0, feedback.m_pll.m_r);
}

TEST(BandwidthRow, IsReportedWhenItBelongsToAnotherM)
{
    TABLE_PLL box(5);
    box.m_device.add_row(4, 1e6, 1e6)->m_m = 3;
    EXPECTED_REPORTS reports;
    EXPECT_TRUE(box.choose());
    reports.expect_only("m == best_setting->m_m", "pll");
    EXPECT_EQ(2000.0, box.m_pll.m_r);
}

// ---- PFD limits

struct PFD_CASE
{
    const char* m_name;
    double m_fast;  // MHz
    int m_n;
    int m_fin2;
    bool m_legal;
    double m_cost;
};

// The first input allows 10 MHz / N; a second one of 20000 ps half of that.
// clang-format off
constexpr PFD_CASE PFD_CASES[] = {
    // name                          fast  N   fin2 legal  cost
    {"at the limit",                 10.0, 1,     0, true,  0.0},
    {"1 MHz above the limit",        11.0, 1,     0, false, 8519680.0},
    {"N lowers the limit",            6.0, 2,     0, false, 8519680.0},
    {"at the second limit",           5.0, 1, 20000, true,  0.0},
    {"1 MHz above the second limit",  6.0, 1, 20000, false, 8519680.0},
    {"above both limits",            11.0, 1, 20000, false, 8519680.0 + 8388608.0 + 786432.0},
    {"a negative second input",      10.0, 1,    -1, true,  0.0},
};
// clang-format on

TEST(BandwidthPfdRule, CostsMoreThanAnyPreset)
{
    for (const PFD_CASE& c : PFD_CASES) {
        SCOPED_TRACE(c.m_name);
        TABLE_PLL box(5);
        box.add_row(1, 1.0, c.m_fast);
        box.m_pll.m_n.m_count = c.m_n;
        box.m_request.m_fin2_period = c.m_fin2;
        EXPECT_TRUE(box.choose());
        EXPECT_EQ(c.m_legal, box.m_pll.m_bandwidth_legal_for_fin);
        EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_mult_div);
        EXPECT_EQ(c.m_cost, box.m_pll.m_cost);
    }
}

TEST(BandwidthPfdRule, NeverAppliesWithAMultiplierOfZero)
{
    TABLE_PLL box(5);
    box.m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 0;
    box.add_row(1, 1.0, 1e30);
    EXPECT_TRUE(box.choose());
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_fin);
    EXPECT_EQ(0.0, box.m_pll.m_cost);
}

TEST(BandwidthPfdRule, OutweighsThePreset)
{
    TABLE_PLL box(5);
    box.m_request.m_bandwidth_type = 0;
    box.add_row(1, 9.0, 11.0);  // breaks the rule
    box.add_row(2, 0.1, 0.2);   // misses the preset by far
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(2.0, box.m_pll.m_r);
    EXPECT_TRUE(box.m_pll.m_bandwidth_legal_for_fin);
}

// ---- Wishes

struct WISH_CASE
{
    const char* m_name;
    int m_type;
    std::vector<double> m_typical;  // MHz, row by row
    int m_row;                      // from 1
    double m_cost;
};

// Presets of 150 kHz and 2 MHz; a custom wish of 1 MHz.
const WISH_CASE WISH_CASES[] = {
    {"high: the first at or above the preset", 0, {1.5, 2.5}, 2, 0.0},
    {"high: the preset itself", 0, {2.0}, 1, 0.0},
    {"high: below", 0, {1.5}, 1, 196608.0},
    {"medium: between the others", 1, {0.1, 2.5, 1.0}, 3, 0.0},
    {"medium: the low preset itself", 1, {0.15}, 1, 0.0},
    {"medium: the high preset itself", 1, {2.0}, 1, 0.0},
    {"medium: below", 1, {0.025}, 1, 131072.0 + 16384.0},
    {"medium: above", 1, {2.5}, 1, 196608.0},
    {"low: below the preset", 2, {1.15, 0.1}, 2, 0.0},
    {"low: the preset itself", 2, {0.15}, 1, 0.0},
    {"low: above", 2, {1.15}, 1, 262144.0},
    {"automatic: any", 3, {77.0, 1.0}, 1, 0.0},
    {"custom: the nearest", 4, {0.5, 1.25}, 2, 32768.0},
    {"custom: the first of two", 4, {0.9, 1.1}, 1, 13107.2},
    {"custom: no fixed part", 4, {1.0}, 1, 0.0},
};

TEST(BandwidthWish, DecidesByItsCost)
{
    for (const WISH_CASE& c : WISH_CASES) {
        SCOPED_TRACE(c.m_name);
        TABLE_PLL box(5);
        box.m_request.m_bandwidth_type = c.m_type;
        box.m_request.m_bandwidth = 1e6;
        int row = 0;
        for (double typical : c.m_typical) {
            box.add_row(++row, typical, 1.0);
        }
        EXPECT_TRUE(box.choose());
        EXPECT_EQ(c.m_row, box.m_pll.m_r);
        EXPECT_NEAR(c.m_cost, box.m_pll.m_cost, 1e-9);
    }
}

TEST(BandwidthWish, IgnoresTheMediumPreset)
{
    TABLE_PLL box(5);
    box.m_request.m_bandwidth_type = 1;
    box.m_pll.m_medium_bandwidth = 5e7;
    box.add_row(1, 1.0, 1.0);
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(0.0, box.m_pll.m_cost);
}

TEST(BandwidthWish, TakesThePresetsOfThePll)
{
    TABLE_PLL box(5);
    box.m_request.m_bandwidth_type = 0;
    box.m_pll.m_high_bandwidth = 3e6;
    box.add_row(1, 2.0, 1.0);
    EXPECT_TRUE(box.choose());
    EXPECT_EQ(262144.0, box.m_pll.m_cost);
}

TEST(BandwidthWish, IsReportedForEachRowWhenUnknown)
{
    for (int type : {5, -1}) {
        TABLE_PLL box(5);
        box.m_request.m_bandwidth_type = type;
        box.add_row(1, 1.0, 11.0);  // breaks the rule, so that the next row is looked at
        box.add_row(2, 1.0, 1.0);
        box.add_row(3, 1.0, 1.0);  // not reached
        EXPECTED_REPORTS reports;
        EXPECT_TRUE(box.choose());
        reports.expect_only("unknown bandwidth type", "pll", 2);
        EXPECT_EQ(2.0, box.m_pll.m_r);
    }
}

// ---- Components

TEST(BandwidthComponents, AreAppendedAsTheyCome)
{
    PLL pll(1, 10);
    pll.clear_rci();
    PLL::add_i(7);
    PLL::add_i(3);
    PLL::add_i(7);
    PLL::add_r(1);
    PLL::add_c(5);
    PLL::add_c(4);
    EXPECT_EQ((MEM_VECTOR<int>{7, 3, 7}), PLL::m_impl->m_charge_pump_currents);
    EXPECT_EQ((MEM_VECTOR<int>{1}), PLL::m_impl->m_resistors);
    EXPECT_EQ((MEM_VECTOR<int>{5, 4}), PLL::m_impl->m_capacitors);
}

// ---- Many candidates of one synthesis, beside the walk

class RANDOM_TABLE
{
public:
    explicit RANDOM_TABLE(unsigned seed) : m_generator(seed), m_device(GROUPS) {}

    double pick(double least, double most)
    {
        return std::uniform_real_distribution<double>(least, most)(m_generator);
    }
    int pick_one(int least, int most)
    {
        return std::uniform_int_distribution<int>(least, most)(m_generator);
    }

    // Groups of no row to many, with equal bandwidths among them.
    void fill(int most_rows)
    {
        for (int m = 0; m < GROUPS; ++m) {
            const int rows = pick_one(0, most_rows);
            for (int i = 0; i < rows; ++i) {
                const double typical = pick_one(0, 1) * 1e6 + pick_one(1, 12) * 2.5e5;
                const double fast = pick_one(0, 3) == 0 ? pick(0.0, 2e8) : pick_one(1, 20) * 5e5;
                PLL_BANDWIDTH_SETTING* row = m_device.add_row(m, typical, fast);
                row->m_loop_filter_resistor = i;
                row->m_loop_filter_capacitor = pick_one(-1, 2);
            }
        }
    }

    static constexpr int GROUPS = 6;

    std::mt19937 m_generator;
    DEVICE m_device;
};

void expect_same_choice(const PLL& walked, const PLL& chosen)
{
    EXPECT_EQ(walked.m_r, chosen.m_r);
    EXPECT_EQ(walked.m_i, chosen.m_i);
    EXPECT_EQ(walked.m_c_high, chosen.m_c_high);
    EXPECT_EQ(walked.m_cost, chosen.m_cost);
    EXPECT_EQ(walked.m_bandwidth_legal_for_mult_div, chosen.m_bandwidth_legal_for_mult_div);
    EXPECT_EQ(walked.m_bandwidth_legal_for_fin, chosen.m_bandwidth_legal_for_fin);
}

// Chooses for every M and N both ways.
void expect_walked_choices(RANDOM_TABLE* table, const PLL_PROP& request)
{
    constexpr int LARGEST_N = 30;
    PLL walked(1, PLL_MAX_TAPS);
    PLL chosen(1, PLL_MAX_TAPS);
    table->m_device.describe(walked);
    table->m_device.describe(chosen);
    PLL_BANDWIDTH_CHOOSER chooser(request);
    for (int m = 1; m <= RANDOM_TABLE::GROUPS; ++m) {
        for (int n = 1; n <= LARGEST_N; ++n) {
            SCOPED_TRACE("M " + std::to_string(m) + ", N " + std::to_string(n));
            walked.m_m.m_count = chosen.m_m.m_count = m;
            walked.m_n.m_count = chosen.m_n.m_count = n;
            walked.m_cost = chosen.m_cost = 0.0;
            EXPECT_EQ(PLL::synthesize_best_bandwidth_using_table(&walked, request),
                      chooser.choose(&chosen));
            expect_same_choice(walked, chosen);
        }
    }
}

// Every other request has limits that some fast bandwidths hit exactly.
void make_request(RANDOM_TABLE* table, int type, PLL_PROP* request)
{
    PLL_BASIC_INFO& info = table->m_device.m_info;
    request->m_bandwidth_type = type;
    request->m_bandwidth = table->pick_one(0, 1) == 0 ? 1e6 : table->pick(0.0, 3e6);
    if (table->pick_one(0, 4) == 0) {
        request->m_bandwidth = 1e8;  // so far away that breaking the rule is no worse
    }
    request->m_fin_period = table->pick_one(1000, 20000);
    request->m_fin2_period = table->pick_one(0, 1) * table->pick_one(1000, 20000);
    info.m_bandwidth_pfd_min_frequency_multiplier = table->pick_one(0, 40);
    if (table->pick_one(0, 1) == 0) {
        request->m_fin_period = 10000;
        info.m_bandwidth_pfd_min_frequency_multiplier = 10;
    }
}

TEST(BandwidthChooser, ChoosesLikeTheWalk)
{
    constexpr int TABLES = 150;
    constexpr int FEW_ROWS = 8;
    constexpr int MANY_ROWS = 50;  // more than are sorted
    for (unsigned seed = 0; seed < TABLES && !testing::Test::HasFailure(); ++seed) {
        RANDOM_TABLE table(seed);
        table.fill(seed % 10 == 0 ? MANY_ROWS : FEW_ROWS);
        PLL_PROP request(1);
        for (int type = 0; type <= 4; ++type) {
            SCOPED_TRACE("table " + std::to_string(seed) + ", type " + std::to_string(type));
            make_request(&table, type, &request);
            expect_walked_choices(&table, request);
        }
    }
}

TEST(BandwidthChooser, TakesTheFirstRowThatCostsNextToNothing)
{
    RANDOM_TABLE table(1);
    PLL_PROP request(1);
    request.m_bandwidth_type = 4;
    request.m_fin_period = 1000;
    for (double bandwidth : {1e-18, 0.0, 2e-15, 1e-15}) {
        request.m_bandwidth = bandwidth;
        table.m_device.add_row(1, 1e-15, 3.0);
        table.m_device.add_row(1, 0.0, 2.0)->m_loop_filter_resistor = 7;
        table.m_device.add_row(1, 2e-15, 1.0)->m_loop_filter_resistor = 8;
        expect_walked_choices(&table, request);
    }
}

TEST(BandwidthChooser, BreaksTheRuleWhereAWishIsMissedByEvenMore)
{
    RANDOM_TABLE table(1);
    PLL_PROP request(1);
    request.m_bandwidth_type = 4;
    request.m_bandwidth = 1e8;
    request.m_fin_period = 10000;
    table.m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 10;
    table.m_device.add_row(1, 1e6, 1e5);
    table.m_device.add_row(1, 1e8, 8e6)->m_loop_filter_resistor = 7;
    expect_walked_choices(&table, request);
}

TEST(BandwidthChooser, WalksWhatHasNoOrder)
{
    constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
    for (const double typical : {1e6, NO_NUMBER}) {
        RANDOM_TABLE table(2);
        table.fill(5);
        for (int m = 1; m < RANDOM_TABLE::GROUPS; ++m) {
            table.m_device.add_row(m, typical, typical == 1e6 ? NO_NUMBER : 5e6);
        }
        table.fill(5);
        PLL_PROP request(1);
        for (int type = 0; type <= 4; ++type) {
            make_request(&table, type, &request);
            expect_walked_choices(&table, request);
        }
    }
}

TEST(BandwidthChooser, ForgetsNoRowOverOneWhoseCostIsNoNumber)
{
    RANDOM_TABLE table(1);
    PLL_PROP request(1);
    request.m_bandwidth_type = 4;
    request.m_bandwidth = 1e6;
    request.m_fin_period = 10000;
    table.m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 1;
    table.m_device.add_row(1, 1.2e6, 1e6)->m_loop_filter_resistor = 7;
    table.m_device.add_row(1, std::numeric_limits<double>::quiet_NaN(), 2e6);
    table.m_device.add_row(1, 5e6, 3e6);
    expect_walked_choices(&table, request);
}

TEST(BandwidthChooser, ReportsAnUnknownTypeForEachRow)
{
    TABLE_PLL box(5);
    box.m_request.m_bandwidth_type = 5;
    box.add_row(1, 1.0, 11.0);
    box.add_row(2, 1.0, 1.0);
    PLL_BANDWIDTH_CHOOSER chooser(box.m_request);
    EXPECTED_REPORTS reports;
    for (int candidate = 0; candidate < 30; ++candidate) {
        EXPECT_TRUE(chooser.choose(&box.m_pll));
    }
    reports.expect_only("unknown bandwidth type", "pll", 60);
}

TEST(BandwidthChooser, ReportsARowOfAnotherMEveryTime)
{
    TABLE_PLL box(5);
    box.m_device.add_row(4, 1e6, 1e6)->m_m = 3;
    PLL_BANDWIDTH_CHOOSER chooser(box.m_request);
    EXPECTED_REPORTS reports;
    for (int candidate = 0; candidate < 30; ++candidate) {
        EXPECT_TRUE(chooser.choose(&box.m_pll));
    }
    reports.expect_only("m == best_setting->m_m", "pll", 30);
}

}  // namespace
