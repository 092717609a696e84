// The list of VCO ratios.
#include "error_guard.h"
#include "failing_heap.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <vector>

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

// ---- Beside the listing by insertion

struct INSERTED_LIST
{
    std::vector<int> m_mults;
    std::vector<int> m_divs;

    void insert(int mult, int div)
    {
        std::size_t place = 0;
        while (place < m_mults.size() && m_mults[place] * div < m_divs[place] * mult) {
            ++place;
        }
        if (place < m_mults.size() && m_mults[place] == mult && m_divs[place] == div) {
            return;
        }
        m_mults.insert(m_mults.begin() + std::ptrdiff_t(place), mult);
        m_divs.insert(m_divs.begin() + std::ptrdiff_t(place), div);
    }
};

void insert_ratios_of_m(const PLL& pll, int post_scale, int m, int fin, INSERTED_LIST* list)
{
    const double vco_min = pll.m_vco_min_period[post_scale];
    const double vco_max = pll.m_vco_max_period[post_scale];
    for (int n = pll.m_n.m_min_count; n <= pll.m_n.m_max_count; ++n) {
        const double pfd = double(fin) * n;
        const double vco = pfd / m;
        if (vco_min - 1 <= vco && vco <= vco_max + 1 && pll.m_pfd_min_period - 1 <= pfd &&
            pfd <= pll.m_pfd_max_period + 1) {
            const int divisor = std::gcd(m, n);
            list->insert(m / divisor, n / divisor);
        }
    }
}

INSERTED_LIST insert_ratios(const PLL& pll, int fin)
{
    INSERTED_LIST list;
    for (int post_scale = 1; post_scale <= pll.m_max_vco_post_scale; ++post_scale) {
        for (int m = 2; m <= pll.m_m.m_max_count; ++m) {
            insert_ratios_of_m(pll, post_scale, m, fin, &list);
        }
    }
    return list;
}

void expect_inserted_list(PLL& pll, int fin)
{
    const INSERTED_LIST expected = insert_ratios(pll, fin);
    int* mults = nullptr;
    int* divs = nullptr;
    const int count = pll.find_vco_mult_div_values(&mults, &divs, fin);
    EXPECT_EQ(expected.m_mults, std::vector<int>(mults, mults + count));
    EXPECT_EQ(expected.m_divs, std::vector<int>(divs, divs + count));
}

class RANDOM_BOXES
{
public:
    explicit RANDOM_BOXES(unsigned seed) : m_generator(seed) {}

    int pick(int least, int most)
    {
        return std::uniform_int_distribution<int>(least, most)(m_generator);
    }

    // Limits of all kinds: wide and tight, with and without legal pairs. Returns the input period.
    int make(PLL* pll)
    {
        const int fin = pick(1, 400);
        pll->m_m.m_max_count = pick(1, 40);
        pll->m_n.m_max_count = pick(1, 40);
        pll->m_n.m_min_count = pick(0, 2) == 0 ? pick(1, 40) : 1;
        pll->m_pfd_min_period = fin * pick(0, 30) + pick(-2, 2);
        pll->m_pfd_max_period = pll->m_pfd_min_period + fin * pick(0, 40) + pick(-2, 2);
        pll->m_max_vco_post_scale = pick(1, 2);
        for (int post_scale = 1; post_scale <= 2; ++post_scale) {
            pll->m_vco_min_period[post_scale] = pick(1, 2 * fin);
            pll->m_vco_max_period[post_scale] =
                pll->m_vco_min_period[post_scale] + pick(-2, 1) * pick(0, 2) + pick(0, fin);
        }
        return pick(0, 9) == 0 ? turn_back(pll, fin) : fin;
    }

private:
    // The same box for an input whose period is negative.
    int turn_back(PLL* pll, int fin)
    {
        turn_back(&pll->m_pfd_min_period, &pll->m_pfd_max_period);
        turn_back(&pll->m_vco_min_period[1], &pll->m_vco_max_period[1]);
        turn_back(&pll->m_vco_min_period[2], &pll->m_vco_max_period[2]);
        return -fin;
    }

    static void turn_back(int* least, int* most)
    {
        const int turned = -*least;
        *least = -*most;
        *most = turned;
    }

    std::mt19937 m_generator;
};

TEST(VcoRatios, AreThoseOfTheListingByInsertion)
{
    constexpr int BOXES = 20000;
    RANDOM_BOXES boxes(20);
    PLL pll(1, PLL_MAX_TAPS);
    for (int i = 0; i < BOXES && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("box " + std::to_string(i) + " of seed 20");
        expect_inserted_list(pll, boxes.make(&pll));
    }
}

TEST(VcoRatios, AreThoseOfTheListingByInsertionWhereOnlyLargeNAreLegal)
{
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_vco_min_period[1] = 1;
    pll.m_vco_max_period[1] = 100000;
    for (int n_min : {1, 2, 8, 20, 59, 60}) {
        SCOPED_TRACE(n_min);
        pll.m_n.m_min_count = n_min;
        pll.m_n.m_max_count = 60;
        pll.m_m.m_max_count = 200;
        expect_inserted_list(pll, 651);
        pll.m_m.m_max_count = 10;
        expect_inserted_list(pll, 6510);
    }
}

TEST(VcoRatios, AreThoseOfTheListingByInsertionAtTheBuiltInLimits)
{
    PLL pll(1, PLL_MAX_TAPS);
    for (int fin : {5000, 10000, 20000, 40000}) {
        SCOPED_TRACE(fin);
        expect_inserted_list(pll, fin);
    }
}

TEST(VcoRatios, AreAsManyAtTheShortestInputPeriodAsCoprimePairsAreLegal)
{
    PLL pll(1, PLL_MAX_TAPS);
    int* mults = nullptr;
    int* divs = nullptr;
    EXPECT_EQ(36455, pll.find_vco_mult_div_values(&mults, &divs, 651));
    pll.m_max_vco_post_scale = 2;
    pll.set_vco_min_period(1000, -1);
    pll.set_vco_max_period(3334, -1);
    EXPECT_EQ(44246, pll.find_vco_mult_div_values(&mults, &divs, 651));
}

TEST(VcoRatios, KeepThePlacesOfDivisorsBelowOne)
{
    SMALL_PLL box(1, 3, 1);
    box.set_vco(-10, 0, 10);
    box.set_pfd(-10, 10);
    box.m_pll.m_n.m_min_count = 0;
    EXPECTED_REPORTS reports;
    EXPECT_EQ("2/1 3/1 1/0", list_ratios(box.m_pll, 4));
    reports.expect_only("x > 0 && y > 0", "pll_util", 4);
}

// ---- Memory

long count_allocations(const FAILING_HEAP& heap, PLL* pll, int fin)
{
    const long before = heap.get_allocations();
    int* mults = nullptr;
    int* divs = nullptr;
    EXPECT_LT(0, pll->find_vco_mult_div_values(&mults, &divs, fin));
    return heap.get_allocations() - before;
}

TEST(VcoRatios, TakeThreeBlocksHoweverManyTheyAre)
{
    FAILING_HEAP heap;
    heap.fail_none();
    PLL pll(1, PLL_MAX_TAPS);
    EXPECT_EQ(3, count_allocations(heap, &pll, 40000));
    EXPECT_EQ(3, count_allocations(heap, &pll, 651));
    pll.m_n.m_min_count = 500;  // so few N that pairs are gathered and sorted
    EXPECT_EQ(3, count_allocations(heap, &pll, 651));
}

}  // namespace
