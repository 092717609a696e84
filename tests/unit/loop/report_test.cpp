// Unit tests of the reports of a PLL and its output counters.
#include "pll.h"

#include "error_guard.h"
#include "golden.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

enum class COST
{
    WITHOUT,
    WITH
};

std::string full_report(const PLL& pll, COST cost)
{
    std::ostringstream stream;
    pll.dump(stream, cost == COST::WITH, false);
    return stream.str();
}

std::string compact_report(const PLL& pll)
{
    std::ostringstream stream;
    pll.dump(stream, false, true);
    return stream.str();
}

std::string tap_report(const PLL_OUTPUT_TAP& tap, COST delta)
{
    std::ostringstream stream;
    tap.dump(stream, delta == COST::WITH, false);
    return stream.str();
}

// Two user clocks, the first behind a cascade counter; a number of its own in every field.
void fill(PLL* pll)
{
    pll->m_m.m_count = 27;
    pll->m_n.m_count = 4;
    pll->m_m.m_initial = 2;
    pll->m_m.m_vco_tap = 3;
    pll->m_m.m_delay = 250;
    pll->m_n.m_delay = 500;
    pll->m_total_taps_count = 3;
    pll->m_cost = 12.5;
    pll->m_delta_phase = 1.25;
    pll->m_delta_vco_period = -3.5;
    PLL_OUTPUT_TAP& first = pll->m_taps[0];
    first.m_count = 7;
    first.m_high = 4;
    first.m_low = 3;
    first.m_even = false;
    first.m_bypass = false;
    first.m_initial = 5;
    first.m_vco_tap = 6;
    first.m_delay = 125;
    first.m_previous_tap = 2;
    first.m_delta_phase = 0.5;
    first.m_max_count = 256;
    PLL_OUTPUT_TAP& second = pll->m_taps[2];
    second.m_count = 10;
    second.m_high = 5;
    second.m_low = 5;
    second.m_bypass = false;
}

// Counts the flushes of a stream.
class FLUSH_COUNTER : public std::stringbuf
{
public:
    int m_flushes = 0;

protected:
    int sync() override
    {
        ++m_flushes;
        return 0;
    }
};

}  // namespace

TEST(GoldenPllReport, OfAFreshPll)
{
    const PLL pll(2, 10);
    expect_golden(full_report(pll, COST::WITHOUT), "pll_report_fresh.txt");
}

TEST(GoldenPllReport, WithCascadeAndDelays)
{
    PLL pll(2, 10);
    fill(&pll);
    expect_golden(full_report(pll, COST::WITHOUT), "pll_report_full.txt");
}

TEST(GoldenPllReport, WithSpreadPostScaleAndFeedback)
{
    PLL pll(2, 10);
    fill(&pll);
    pll.m_ss_cycles = 300;
    pll.m_m.m_ss_count = 26;
    pll.m_n.m_ss_count = 4;
    pll.m_vco_post_scale = 2;
    pll.set_vco_min_period(2000, 2);
    pll.set_kvco(940.5, 2);
    pll.m_feedback_tap = 1;
    expect_golden(full_report(pll, COST::WITHOUT), "pll_report_spread.txt");
}

TEST(GoldenPllReport, WithCost)
{
    PLL pll(2, 10);
    fill(&pll);
    pll.m_feedback_tap = 0;
    pll.m_ss_cycles = 300;  // shown without the cost only
    expect_golden(full_report(pll, COST::WITH), "pll_report_cost.txt");
}

TEST(GoldenPllReport, Compact)
{
    PLL pll(2, 10);
    fill(&pll);
    expect_golden(compact_report(pll), "pll_report_compact.txt");
}

TEST(PllReport, OfNoClocksEndsWithAnEmptyLine)
{
    const PLL pll(0, 10);
    EXPECT_EQ("1\t1\t1\t0\t50\t10\t1.0205\t0\t", compact_report(pll));
    EXPECT_EQ("M 1\nN 1\ncost 0 delta phase 0 delta vco period 0 M0   1 VCO  0 \n\n",
              full_report(pll, COST::WITH));
}

TEST(PllReport, NamesThePostScaleAboveOneOnly)
{
    PLL pll(0, 10);
    for (const int s : {0, 1}) {
        pll.m_vco_post_scale = s;
        EXPECT_EQ(std::string::npos, full_report(pll, COST::WITHOUT).find("post scale"));
    }
    pll.m_vco_post_scale = 2;
    EXPECT_NE(std::string::npos,
              full_report(pll, COST::WITHOUT).find(" VCO center 1666 VCO post scale 2\n"));
}

TEST(PllReport, NamesTheFeedbackOutputFromZeroOn)
{
    PLL pll(1, 10);
    EXPECT_EQ(std::string::npos, full_report(pll, COST::WITH).find("feedback"));
    pll.m_feedback_tap = 0;
    EXPECT_NE(std::string::npos, full_report(pll, COST::WITH).find("feedback 0\n"));
}

TEST(PllReport, FlushesEveryLine)
{
    PLL pll(1, 10);
    FLUSH_COUNTER buffer;
    std::ostream stream(&buffer);
    pll.dump(stream, true, false);
    // M, N, cost, the line end before the tap and the last one.
    EXPECT_EQ(5, buffer.m_flushes);
}

TEST(PllReport, TakesTheFormatOfTheStreamButForTruthValues)
{
    PLL pll(1, 10);
    pll.m_i = 1.0 / 3;
    std::ostringstream stream;
    stream.precision(3);
    stream << std::boolalpha;
    pll.dump(stream, false, false);
    EXPECT_NE(std::string::npos, stream.str().find("i      0.333\n"));
    EXPECT_NE(std::string::npos, stream.str().find("  even  1  bypass 1  "));
}

TEST(TapReport, ShowsPreviousTapAndDeltaOnDemand)
{
    PLL_OUTPUT_TAP tap;
    const std::string plain = "  count 1  high  1  low   0  even  1  bypass 1  init  1  vco   0"
                              "  delay 0  max_count 512";
    EXPECT_EQ(plain, tap_report(tap, COST::WITHOUT));
    EXPECT_EQ(plain + "  delta phase 0", tap_report(tap, COST::WITH));
    tap.m_previous_tap = 0;
    EXPECT_EQ(plain + "  previous_tap 0", tap_report(tap, COST::WITHOUT));
    tap.m_delta_phase = 2.5;
    EXPECT_EQ(plain + "  previous_tap 0  delta phase 2.5", tap_report(tap, COST::WITH));
    tap.m_previous_tap = -2;
    EXPECT_EQ(plain + "  previous_tap -2", tap_report(tap, COST::WITHOUT));
}

TEST(TapReport, CompactIsTabSeparated)
{
    PLL_OUTPUT_TAP tap;
    std::ostringstream stream;
    tap.dump(stream, true, true);
    EXPECT_EQ("1\t1\t0\teven\ton \t1\t0\t", stream.str());
    tap.m_even = false;
    tap.m_bypass = false;
    stream.str("");
    tap.dump(stream, false, true);
    EXPECT_EQ("1\t1\t0\todd\toff\t1\t0\t", stream.str());
}

TEST(HostilePllReport, ListsNoMoreTapsThanThereAre)
{
    EXPECTED_REPORTS reports;
    PLL pll(1, 10);
    pll.m_total_taps_count = LARGEST;
    const std::string text = full_report(pll, COST::WITH);
    EXPECT_NE(std::string::npos, text.find("tap 9 "));
    EXPECT_EQ(std::string::npos, text.find("tap 10 "));
    EXPECT_NE(std::string::npos, compact_report(pll).find("\t2147483647\t1\t1\t0\teven"));
    pll.m_total_taps_count = SMALLEST;
    EXPECT_EQ(std::string::npos, full_report(pll, COST::WITH).find("tap 0"));
    reports.expect_none();
}

TEST(HostilePllReport, PrintsWhatItFinds)
{
    EXPECTED_REPORTS reports;
    PLL pll(1, 10);
    pll.m_m.m_count = 0;
    pll.m_n.m_count = SMALLEST;
    pll.m_vco_post_scale = LARGEST;
    pll.m_taps[0].m_high = 0;
    pll.m_r = std::numeric_limits<double>::infinity();
    const std::string text = full_report(pll, COST::WITHOUT);
    EXPECT_NE(std::string::npos, text.find("M 0\nN -2147483648\n"));
    EXPECT_NE(std::string::npos, text.find("Phase degree resolution -inf\n"));
    EXPECT_NE(std::string::npos, text.find("r      inf\n"));
    EXPECT_NE(std::string::npos, text.find("-360 360 (inf)\n"));
    reports.expect_only("vco_post_scale >= 0 && vco_post_scale <= PLL_VCO_POST_SCALE_MAX", "pll",
                        4);
}
