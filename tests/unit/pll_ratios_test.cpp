// The list of VCO ratios.
#include "error_guard.h"
#include "failing_heap.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string list_ratios(PLL& pll, int fin)
{
    int* mults = nullptr;
    int* divs = nullptr;
    const int count = pll.find_vco_mult_div_values(&mults, &divs, fin);
    EXPECT_EQ(count == 0, mults == nullptr);
    EXPECT_EQ(count == 0, divs == nullptr);
    EXPECT_EQ(PLL::m_impl->m_mults, mults);
    EXPECT_EQ(PLL::m_impl->m_divs, divs);
    std::string list;
    for (int i = 0; i < count; ++i) {
        list += (i == 0 ? "" : " ") + std::to_string(mults[i]) + "/" + std::to_string(divs[i]);
    }
    return list;
}

TEST(VcoRatios, AreReducedUniqueAndAscending)
{
    SMALL_PLL box(1, 4, 2);
    EXPECT_EQ("1/1 3/2 2/1 3/1 4/1", list_ratios(box.m_pll, 4000));
}

TEST(VcoRatios, AscendBetweenFractionsWithUnlikeDivisors)
{
    SMALL_PLL box(1, 7, 5);
    box.set_vco(1, 1, 100000);
    EXPECT_EQ("2/5 1/2 3/5 2/3 3/4 4/5 1/1 6/5 5/4 4/3 7/5 3/2 5/3 7/4 2/1 7/3 5/2 3/1 7/2 4/1 5/1"
              " 6/1 7/1",
              list_ratios(box.m_pll, 4000));
}

struct BOUND_CASE
{
    const char* m_name;
    int m_fin;
    const char* m_list;
};

// M 2 and N 1; VCO 1000 to 4000 ps, PFD 3000 to 7000 ps.
// clang-format off
constexpr BOUND_CASE BOUND_CASES[] = {
    // name                         fin  list
    {"PFD 1 ps below its minimum", 2999, "2/1"},
    {"PFD 2 ps below its minimum", 2998, ""},
    {"PFD 1 ps above its maximum", 7001, "2/1"},
    {"PFD 2 ps above its maximum", 7002, ""},
};
constexpr BOUND_CASE VCO_BOUND_CASES[] = {
    // name                           fin  list
    {"VCO 1 ps below its minimum",   1998, "2/1"},
    {"VCO 1.5 ps below its minimum", 1997, ""},
    {"VCO 1 ps above its maximum",   8002, "2/1"},
    {"VCO 1.5 ps above its maximum", 8003, ""},
    {"no input",                        0, ""},
    {"a negative input",            -4000, ""},
};
// clang-format on

TEST(VcoRatios, AllowOnePicosecondOnEveryBound)
{
    for (const BOUND_CASE& c : BOUND_CASES) {
        SCOPED_TRACE(c.m_name);
        SMALL_PLL box(1, 2, 1);
        box.set_pfd(3000, 7000);
        EXPECT_EQ(c.m_list, list_ratios(box.m_pll, c.m_fin));
    }
    for (const BOUND_CASE& c : VCO_BOUND_CASES) {
        SCOPED_TRACE(c.m_name);
        SMALL_PLL box(1, 2, 1);
        box.set_pfd(1, 1000000);
        EXPECT_EQ(c.m_list, list_ratios(box.m_pll, c.m_fin));
    }
}

TEST(VcoRatios, JoinThePostScales)
{
    SMALL_PLL box(1, 4, 1);
    box.set_vco(1900, 2000, 2100);
    box.m_pll.m_vco_min_period[2] = 1000;
    box.m_pll.m_vco_max_period[2] = 2000;
    EXPECT_EQ("2/1", list_ratios(box.m_pll, 4000));
    box.m_pll.m_max_vco_post_scale = 2;
    EXPECT_EQ("2/1 3/1 4/1", list_ratios(box.m_pll, 4000));
}

TEST(VcoRatios, IgnoreTheSpreadSpectrumMaximumAndTheSmallestInput)
{
    SMALL_PLL box(1, 2, 1);
    box.m_pll.m_ss_vco_max_period[1] = 1;
    box.m_pll.m_ss_cycles = 5;
    box.m_pll.m_fin_min_period = 1000000;
    EXPECT_EQ("2/1", list_ratios(box.m_pll, 4000));
}

TEST(VcoRatios, TakeNFromItsMinimum)
{
    SMALL_PLL box(1, 4, 2);
    box.m_pll.m_n.m_min_count = 2;
    EXPECT_EQ("1/1 3/2 2/1", list_ratios(box.m_pll, 4000));
}

TEST(VcoRatios, AreNoneWithoutAPostScale)
{
    SMALL_PLL box(1, 4, 2);
    EXPECT_NE("", list_ratios(box.m_pll, 4000));
    box.m_pll.m_max_vco_post_scale = 0;
    EXPECT_EQ("", list_ratios(box.m_pll, 4000));
}

TEST(VcoRatios, ReplaceTheLastListAndGoWithTheLastPll)
{
    const std::size_t before = MEM_MANAGER::get_live_blocks("pll");
    {
        SMALL_PLL box(1, 4, 2);
        const std::size_t empty = MEM_MANAGER::get_live_blocks("pll");
        list_ratios(box.m_pll, 4000);
        const std::size_t full = MEM_MANAGER::get_live_blocks("pll");
        EXPECT_EQ(empty + 2, full);
        list_ratios(box.m_pll, 5000);
        EXPECT_EQ(full, MEM_MANAGER::get_live_blocks("pll"));
        list_ratios(box.m_pll, 0);
        EXPECT_EQ(empty, MEM_MANAGER::get_live_blocks("pll"));
        list_ratios(box.m_pll, 4000);
    }
    EXPECT_EQ(before, MEM_MANAGER::get_live_blocks("pll"));
}

TEST(VcoRatios, ReportAnMMinimumOtherThanOne)
{
    SMALL_PLL box(1, 4, 2);
    box.m_pll.m_m.m_min_count = 3;
    EXPECTED_REPORTS reports;
    EXPECT_EQ("1/1 3/2 2/1 3/1 4/1", list_ratios(box.m_pll, 4000));
    reports.expect_only("m_m.m_min_count == 1", "pll");
}

TEST(VcoRatios, LeaveThePllAlone)
{
    SMALL_PLL box(1, 4, 2);
    box.m_pll.m_error = PLL::PLL_SS_TOO_HIGH;
    list_ratios(box.m_pll, 4000);
    EXPECT_EQ(1, box.m_pll.get_m());
    EXPECT_EQ(1, box.m_pll.get_n());
    EXPECT_EQ(1.0, box.m_pll.get_vco_period());
    EXPECT_EQ(PLL::PLL_SS_TOO_HIGH, box.m_pll.m_error);
}

TEST(VcoRatios, AreNoneWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    SMALL_PLL box(1, 4, 2);
    long nth = 0;
    do {
        heap.fail_at(++nth);
        const std::string list = list_ratios(box.m_pll, 4000);
        EXPECT_EQ(heap.get_failures() == 0 ? "1/1 3/2 2/1 3/1 4/1" : "", list);
    } while (heap.get_failures() != 0);
    EXPECT_LT(2, nth);  // the two arrays at least
}

}  // namespace
