// Which pairs of M and N are candidates, where the search ends early, and the closest miss.
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// ---- Bounds. M 2 and N 1 is the only pair: VCO = input / 2, PFD = input.

struct BOUND_CASE
{
    const char* m_name;
    int m_fin;
    int m_fin2;
    bool m_legal;
};

void expect_bounds(const BOUND_CASE& bound, int pfd_min, int pfd_max)
{
    SCOPED_TRACE(bound.m_name);
    ONE_CANDIDATE box(1);
    box.set_vco(1000, 1666, 3334);
    box.set_pfd(pfd_min, pfd_max);
    box.m_request.m_fin_period = bound.m_fin;
    box.m_request.m_fin2_period = bound.m_fin2;
    EXPECT_EQ(bound.m_legal, box.synthesize());
    EXPECT_EQ(bound.m_legal ? PLL::PLL_NO_ERROR : PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
}

// clang-format off
constexpr BOUND_CASE VCO_BOUNDS[] = {
    // name                                   fin   fin2  legal
    {"VCO 1 ps above its maximum",            6670,    0, true},
    {"VCO 1.5 ps above its maximum",          6671,    0, false},
    {"VCO 1 ps below its minimum",            1998,    0, true},
    {"VCO 1.5 ps below its minimum",          1997,    0, false},
    {"second VCO 1 ps above its maximum",     4000, 6670, true},
    {"second VCO 1.5 ps above its maximum",   4000, 6671, false},
    {"second VCO 1 ps below its minimum",     4000, 1998, true},
    {"second VCO 1.5 ps below its minimum",   4000, 1997, false},
    {"a second input of 0 is none",           4000,    0, true},
    {"a negative second input is none",       4000,   -5, true},
    {"a second input of 1 is one",            4000,    1, false},
};
constexpr BOUND_CASE PFD_BOUNDS[] = {
    // name                                   fin   fin2  legal
    {"PFD 1 ps above its maximum",            5001,    0, true},
    {"PFD 2 ps above its maximum",            5002,    0, false},
    {"PFD 1 ps below its minimum",            2999,    0, true},
    {"PFD 2 ps below its minimum",            2998,    0, false},
    {"second PFD 1 ps above its maximum",     4000, 5001, true},
    {"second PFD 2 ps above its maximum",     4000, 5002, false},
    {"second PFD 1 ps below its minimum",     4000, 2999, true},
    {"second PFD 2 ps below its minimum",     4000, 2998, false},
};
// clang-format on

TEST(SearchBounds, AreOnePicosecondWiderForTheVco)
{
    for (const BOUND_CASE& bound : VCO_BOUNDS) {
        expect_bounds(bound, 1, 1000000);
    }
}

TEST(SearchBounds, AreOnePicosecondWiderForThePfd)
{
    for (const BOUND_CASE& bound : PFD_BOUNDS) {
        expect_bounds(bound, 3000, 5000);
    }
}

TEST(SearchBounds, HoldForTheSmallestAndLargestCounts)
{
    // VCO 1500 ps: M 4 with N 1 from 6000 ps, M 2 with N 3 from 1000 ps.
    SMALL_PLL largest_m(0, 4, 1);
    largest_m.m_request.m_fin_period = 6000;
    largest_m.set_vco(1490, 1500, 1510);
    EXPECT_TRUE(largest_m.synthesize());
    EXPECT_EQ(4, largest_m.m_pll.get_m());
    SMALL_PLL largest_n(0, 2, 3);
    largest_n.m_request.m_fin_period = 1000;
    largest_n.set_vco(1490, 1500, 1510);
    EXPECT_TRUE(largest_n.synthesize());
    EXPECT_EQ(3, largest_n.m_pll.get_n());
    largest_n.m_pll.m_n.m_min_count = 3;
    EXPECT_TRUE(largest_n.synthesize());
    largest_n.m_pll.m_n.m_min_count = 4;
    EXPECT_FALSE(largest_n.synthesize());
}

TEST(SearchBounds, StartAtMTwo)
{
    SMALL_PLL box(0, 1, 1);
    box.m_request.m_fin_period = 2000;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
}

// ---- Spread-spectrum limit of the VCO. M 200 and N 1: VCO = input / 200.

bool meets_spread(int fin, int ss_vco_max, bool supported)
{
    SMALL_PLL box(0, 200, 1);
    box.set_pfd(1, 1000000);
    box.m_request.m_fin_period = fin;
    box.m_request.m_down_spread = 0.005;
    box.m_pll.m_ss_vco_max_period[1] = ss_vco_max;
    box.m_pll.m_ss_supported = supported;
    return box.synthesize();
}

TEST(SearchBounds, UseTheSpreadSpectrumMaximumOfTheVco)
{
    EXPECT_TRUE(meets_spread(333600, 1667, true));   // 1668 ps
    EXPECT_FALSE(meets_spread(333601, 1667, true));  // 1668.005 ps
}

TEST(SearchBounds, IgnoreASpreadSpectrumMaximumThatIsUnsetOrUnsupported)
{
    EXPECT_TRUE(meets_spread(400000, PLL_UNSET_MINIMUM, true));
    EXPECT_FALSE(meets_spread(400000, 0, true));
    EXPECT_TRUE(meets_spread(400000, 0, false));
}

TEST(SearchBounds, IgnoreTheSpreadSpectrumMaximumWithoutSpread)
{
    ONE_CANDIDATE box(0);
    box.m_pll.m_ss_vco_max_period[1] = 1000;
    EXPECT_TRUE(box.synthesize());
}

// ---- Closest miss

struct MISS_CASE
{
    const char* m_name;
    int m_fin;
    int m_m_max;
    int m_n_max;
    int m_m;
    int m_n;
    double m_vco_period;
};

// clang-format off
constexpr MISS_CASE MISS_CASES[] = {
    // name                                        fin    Mmax Nmax  M  N  VCO
    {"too slow: the largest M",                    100000,   4,   2, 4, 1, 25000.0},
    {"too fast: the smallest M with the largest N",   200,   4,   2, 2, 2, 200.0},
    {"equal in whole picoseconds: the first",           1,   3,   1, 2, 1, 0.5},
    {"one picosecond nearer: the later",                3,   3,   2, 2, 2, 3.0},
};
// clang-format on

TEST(SearchClosestMiss, IsTheFirstPairWithTheSmallestWholeDistance)
{
    for (const MISS_CASE& miss : MISS_CASES) {
        SCOPED_TRACE(miss.m_name);
        SMALL_PLL box(1, miss.m_m_max, miss.m_n_max);
        box.m_request.m_fin_period = miss.m_fin;
        EXPECT_FALSE(box.synthesize());
        EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
        EXPECT_EQ(miss.m_m, box.m_pll.get_m());
        EXPECT_EQ(miss.m_n, box.m_pll.get_n());
        EXPECT_EQ(miss.m_vco_period, box.m_pll.get_vco_period());
    }
}

TEST(SearchClosestMiss, CountsAPfdAloneAsDistanceZero)
{
    SMALL_PLL box(1, 4, 2);
    box.set_pfd(20000, 30000);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(2000.0, box.m_pll.get_vco_period());
}

TEST(SearchClosestMiss, LeavesOutPairsThatFailForTheSecondInputAlone)
{
    ONE_CANDIDATE box(1);
    box.m_request.m_fin2_period = 100;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(1000.0, box.m_pll.get_vco_period());
}

TEST(SearchClosestMiss, TakesPairsThatFailForBothInputs)
{
    ONE_CANDIDATE box(1);
    box.m_request.m_fin_period = 9000;
    box.m_request.m_fin2_period = 100;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(4500.0, box.m_pll.get_vco_period());
}

TEST(SearchClosestMiss, GoesOnInTheSecondPostScale)
{
    // M 3 misses the first range by 2666 ps, M 2 the second one by 500 ps.
    SMALL_PLL box(1, 3, 1);
    box.m_request.m_fin_period = 20000;
    box.m_pll.m_vco_min_period[2] = 9000;
    box.m_pll.m_vco_max_period[2] = 9500;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(3, box.m_pll.get_m());
    box.m_pll.m_max_vco_post_scale = 2;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(10000.0, box.m_pll.get_vco_period());
}

TEST(SearchClosestMiss, LooksAtPairsOfABarredM)
{
    // A bandwidth of 1 Hz bars every M. Alone, the legal pair leaves no miss; with N 2 the VCO of
    // 5000 ps is one.
    ONE_CANDIDATE legal(1);
    legal.m_request.m_bandwidth_type = 4;
    legal.m_request.m_bandwidth = 1.0;
    EXPECT_FALSE(legal.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, legal.m_pll.m_error);
    EXPECT_EQ(1, legal.m_pll.get_m());
    EXPECT_EQ(1, legal.m_pll.get_n());
    EXPECT_EQ(1000.0, legal.m_pll.get_vco_period());

    SMALL_PLL mixed(1, 2, 2);
    mixed.m_request.m_fin_period = 5000;
    mixed.m_request.m_bandwidth_type = 4;
    mixed.m_request.m_bandwidth = 1.0;
    EXPECT_FALSE(mixed.synthesize());
    EXPECT_EQ(2, mixed.m_pll.get_m());
    EXPECT_EQ(2, mixed.m_pll.get_n());
    EXPECT_EQ(5000.0, mixed.m_pll.get_vco_period());
}

// The rule word by word, for boxes without clocks: every pair in order, no short cut but the early
// end of a row.
struct PLAIN_SEARCH
{
    PLAIN_SEARCH(const PLL& pll, int fin)
    {
        for (int m = 2; m <= pll.m_m.m_max_count; ++m) {
            for (int n = pll.m_n.m_min_count; n <= pll.m_n.m_max_count; ++n) {
                if (visit(pll, fin, m, n)) {
                    break;
                }
            }
        }
    }

    // Returns whether the row ends.
    bool visit(const PLL& pll, int fin, int m, int n)
    {
        const double vco = double(fin) * n / m;
        const double pfd = double(fin) * n;
        const double vco_min = pll.m_vco_min_period[1];
        const double vco_max = pll.m_vco_max_period[1];
        const bool is_legal = vco_min - 1 <= vco && vco <= vco_max + 1 &&
                              pll.m_pfd_min_period - 1 <= pfd && pfd <= pll.m_pfd_max_period + 1;
        const int distance = std::max(static_cast<int>(vco - vco_max), 0) +
                             std::max(static_cast<int>(vco_min - vco), 0);
        if (is_legal) {
            m_found = true;
        } else if (!m_found && distance < m_distance) {
            m_distance = distance;
            m_m = m;
            m_n = n;
            m_vco = vco;
        }
        return vco > vco_max + 1 || pfd > pll.m_pfd_max_period + 1;
    }

    bool m_found = false;
    int m_distance = 0x40000000;
    int m_m = 1;
    int m_n = 1;
    double m_vco = 1000.0;
};

void expect_plain_result(SMALL_PLL& box)
{
    const PLAIN_SEARCH plain(box.m_pll, box.m_request.m_fin_period);
    ASSERT_EQ(plain.m_found, box.synthesize());
    if (!plain.m_found) {
        ASSERT_EQ(plain.m_m, box.m_pll.get_m());
        ASSERT_EQ(plain.m_n, box.m_pll.get_n());
        ASSERT_EQ(plain.m_vco, box.m_pll.get_vco_period());
    }
}

// VCO limits that cross, touch and are negative included.
void expect_plain_results(int fin, int n_min, int pfd_max)
{
    SMALL_PLL box(0, 40, 4);
    box.m_pll.m_fin_min_period = 0;
    box.m_pll.m_n.m_min_count = n_min;
    box.m_request.m_fin_period = fin;
    box.set_pfd(1, pfd_max);
    for (int vco_min = -4; vco_min <= 8; ++vco_min) {
        for (int vco_max = -4; vco_max <= 8; ++vco_max) {
            SCOPED_TRACE(testing::Message() << fin << " ps, N from " << n_min << ", VCO " << vco_min
                                            << " to " << vco_max);
            box.set_vco(vco_min, 1, vco_max);
            expect_plain_result(box);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

TEST(SearchClosestMiss, IsThatOfAPlainSearchInAllSmallBoxes)
{
    for (int fin : {1, 2, 7, 40, -5}) {
        for (int n_min : {-1, 0, 1, 2}) {
            for (int pfd_max : {1, 15, 1000}) {
                expect_plain_results(fin, n_min, pfd_max);
                ASSERT_FALSE(testing::Test::HasFatalFailure());
            }
        }
    }
}

// ---- Early end

TEST(SearchEarlyEnd, StopsAtTheFirstPfdBeyondItsMaximum)
{
    // The VCO of N 2 would lie in its range, but N 1 is beyond the PFD's already.
    SMALL_PLL box(1, 2, 4);
    box.m_request.m_fin_period = 1000;
    box.set_pfd(1, 900);
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(500.0, box.m_pll.get_vco_period());
    box.set_pfd(1, 999);  // 1 ps of tolerance
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.get_n());
    EXPECT_EQ(1000.0, box.m_pll.get_vco_period());
}

TEST(SearchEarlyEnd, DoesNotDependOnTheLargestN)
{
    SMALL_PLL box(1, 2, 2147483647);
    box.m_request.m_fin_period = 9000;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(4500.0, box.m_pll.get_vco_period());
}

TEST(SearchEarlyEnd, HoldsForANegativeStartToo)
{
    // From N -3 and an input of -2000 ps on, VCO and PFD shrink as N grows: at N -3 both lie above
    // their ranges, the loop ends and the legal N -1 is not seen.
    SMALL_PLL box(0, 2, 2);
    box.set_vco(900, 1000, 1100);
    box.m_request.m_fin_period = -2000;
    box.m_pll.m_n.m_min_count = -3;
    EXPECT_FALSE(box.synthesize());
    EXPECT_EQ(PLL::PLL_M_N_NOT_FOUND, box.m_pll.m_error);
    EXPECT_EQ(-3, box.m_pll.get_n());
    EXPECT_EQ(3000.0, box.m_pll.get_vco_period());
    box.m_pll.m_n.m_min_count = -1;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(-1, box.m_pll.get_n());
}

// ---- Cut-off of the automatic bandwidth at four times the first exact M

SMALL_PLL* cut_off_box(int bandwidth_type, int m_max)
{
    // M 2 to 20 are legal and exact; the centre draws to the largest.
    SMALL_PLL* box = new SMALL_PLL(1, m_max, 1);
    box->m_request.m_fin_period = 20000;
    box->m_request.m_bandwidth_type = bandwidth_type;
    box->set_vco(1000, 1000, 10000);
    return box;
}

int find_m(SMALL_PLL* box)
{
    const std::unique_ptr<SMALL_PLL> owner(box);
    EXPECT_TRUE(box->synthesize());
    return box->m_pll.get_m();
}

TEST(SearchCutOff, BarsMAboveFourTimesTheFirstExactM)
{
    EXPECT_EQ(8, find_m(cut_off_box(3, 8)));
    EXPECT_EQ(8, find_m(cut_off_box(3, 9)));
    EXPECT_EQ(8, find_m(cut_off_box(3, 20)));
}

TEST(SearchCutOff, HoldsForTheAutomaticBandwidthOnly)
{
    EXPECT_EQ(9, find_m(cut_off_box(0, 9)));
    EXPECT_EQ(20, find_m(cut_off_box(0, 20)));
    EXPECT_EQ(9, find_m(cut_off_box(7, 9)));  // no bandwidth at all
    EXPECT_EQ(9, find_m(cut_off_box(-1, 9)));
}

TEST(SearchCutOff, NeedsClocksThatAreMetExactly)
{
    // 1001/1000 is met within a thousandth by every M, and exactly by none.
    SMALL_PLL* near = cut_off_box(3, 20);
    near->set_ratio(0, 1001, 1000);
    EXPECT_EQ(20, find_m(near));
}

TEST(SearchCutOff, NeedsALegalBandwidthRowWhereTheRuleIsAnError)
{
    for (bool is_error : {true, false}) {
        const std::unique_ptr<SMALL_PLL> box(cut_off_box(3, 9));
        DEVICE device(10);
        device.add_row(9, 1e6, 1e6);
        device.m_info.m_is_pfd_bandwidth_rule_an_error = is_error;
        device.describe(box->m_pll);
        EXPECT_TRUE(box->synthesize());
        EXPECT_EQ(is_error ? 9 : 8, box->m_pll.get_m());
        EXPECT_EQ(is_error, box->m_pll.m_bandwidth_legal_for_mult_div);
    }
}

TEST(SearchCutOff, IsOffWithDownSpread)
{
    // M 200 is exact; 805 and more lie above four times that.
    SMALL_PLL box(1, 810, 1);
    box.m_request.m_fin_period = 1620000;
    box.m_request.m_down_spread = 0.005;
    box.set_pfd(1, 2000000);
    box.set_vco(2000, 2000, 9000);
    box.m_pll.m_ss_supported = false;
    DEVICE device(0);
    device.m_info.m_m_counter_preferred_min = 805;  // outweighs the preference for M up to 40
    device.describe(box.m_pll);
    EXPECT_TRUE(box.synthesize());
    EXPECT_LE(805, box.m_pll.get_m());
}

// ---- Bandwidths that no current and resistor can make

bool is_bandwidth_feasible(double bandwidth)
{
    // One product only, 1000; 2 x M x 3.14 / gain is 1, so that it stands for bandwidths of 1000
    // up to 1001.
    ONE_CANDIDATE box(1);
    set_components(box.m_pll, {10}, {100});
    box.m_pll.m_kvco[1] = 12.56;
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = bandwidth;
    return box.synthesize();
}

TEST(SearchBandwidth, BarsProductsOutsideTheComponents)
{
    EXPECT_FALSE(is_bandwidth_feasible(999.5));
    EXPECT_TRUE(is_bandwidth_feasible(1000.5));
    EXPECT_FALSE(is_bandwidth_feasible(1001.5));
}

TEST(SearchBandwidth, TakesTheGainOfThePostScaleInQuestion)
{
    ONE_CANDIDATE box(1);
    set_components(box.m_pll, {10}, {100});
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 1000.5;
    box.m_pll.m_max_vco_post_scale = 2;
    box.m_pll.m_kvco[2] = 12.56;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.m_vco_post_scale);
}

TEST(SearchBandwidth, DoesNotLookAtTheComponentsWithATable)
{
    ONE_CANDIDATE box(1);
    DEVICE device(3);
    device.add_row(2, 1e6, 1e6);
    device.describe(box.m_pll);
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 1.0;
    EXPECT_TRUE(box.synthesize());
}

TEST(SearchBandwidth, TakesEmptyListsForOneZero)
{
    ONE_CANDIDATE box(1);
    box.m_pll.clear_rci();
    box.m_request.m_bandwidth_type = 4;
    box.m_request.m_bandwidth = 1e6;
    EXPECT_FALSE(box.synthesize());
    box.m_request.m_bandwidth = 0.0;  // a product of 0, the only one there is
    EXPECT_TRUE(box.synthesize());
}

// ---- Post-scales

TEST(SearchPostScale, PrefersTheFirst)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_max_vco_post_scale = 2;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(1, box.m_pll.m_vco_post_scale);
    EXPECT_EQ(0.0, box.m_pll.m_cost);
}

TEST(SearchPostScale, TakesTheSecondWhereTheFirstHasNoLegalPair)
{
    ONE_CANDIDATE box(1);
    box.m_pll.m_max_vco_post_scale = 2;
    box.m_pll.m_vco_min_period[1] = 2500;
    box.m_pll.m_vco_center_period[2] = 1900;
    EXPECT_TRUE(box.synthesize());
    EXPECT_EQ(2, box.m_pll.m_vco_post_scale);
    EXPECT_EQ(65536.0, box.m_pll.m_cost);
    EXPECT_EQ(100.0, box.m_pll.m_delta_vco_period);
}

}  // namespace
