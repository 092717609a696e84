// Unit tests of the reports of a properties record.
#include "pll_prop.h"

#include "error_guard.h"
#include "golden.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

enum class FORM
{
    REQUESTED,
    ACHIEVED
};

std::string full_report(const PLL_PROP& prop, FORM form)
{
    std::ostringstream stream;
    prop.dump(stream, form == FORM::REQUESTED, false);
    return stream.str();
}

std::string compact_report(const PLL_PROP& prop)
{
    std::ostringstream stream;
    prop.dump(stream, true, true);
    return stream.str();
}

std::string tap_report(const PLL_USER_TAP& tap)
{
    std::ostringstream stream;
    tap.dump(stream, false);
    return stream.str();
}

// What a synthesis with spread, table and feedback may leave.
void fill(PLL_PROP* prop)
{
    prop->m_fin_period = 37037;
    prop->m_fin2_period = 40000;
    prop->m_ss_period = 33333300;
    prop->m_down_spread = 0.005;
    prop->m_feedback_tap = 1;
    prop->m_lock_min_period = 20000;
    prop->m_lock_max_period = 64000;
    prop->m_vco_mult = 11;
    prop->m_vco_div = 2;
    prop->m_bandwidth = 1.2e6;
    prop->m_bandwidth_max = 1.5e6;
    prop->m_bandwidth_min = 9e5;
    prop->m_f_zero = 240123.5;
    prop->m_f_pole = 15847234.0;
    prop->m_phase_margin = 60;
    prop->m_phase_margin_max = 65.5;
    prop->m_phase_margin_min = 55;
    prop->m_jitter_peak = 0.1;
    prop->m_jitter_peak_max = 0.2;
    prop->m_jitter_peak_min = 0.05;
    prop->m_use_reconfig = true;
    PLL_USER_TAP& first = prop->m_taps[0];
    first.m_mult = 11;
    first.m_div = 8;
    first.m_phase = 90.5;
    first.m_duty = 40;
    first.m_delay = 250;
    first.m_sclkout_phase = -22.5;
    first.m_has_sclkout_phase = true;
    prop->m_taps[1].m_use_even_counter_mode = true;
    prop->m_taps[1].m_use_even_counter_value = true;
}

}  // namespace

TEST(GoldenPropReport, OfAFreshRequest)
{
    expect_golden(full_report(PLL_PROP(2), FORM::REQUESTED), "prop_report_fresh_requested.txt");
}

TEST(GoldenPropReport, OfAFreshResult)
{
    expect_golden(full_report(PLL_PROP(2), FORM::ACHIEVED), "prop_report_fresh_achieved.txt");
}

TEST(GoldenPropReport, OfARequestWithEverything)
{
    PLL_PROP prop(2);
    fill(&prop);
    prop.m_bandwidth_type = 4;
    expect_golden(full_report(prop, FORM::REQUESTED), "prop_report_requested.txt");
}

TEST(GoldenPropReport, OfAResultWithEverything)
{
    PLL_PROP prop(2);
    fill(&prop);
    expect_golden(full_report(prop, FORM::ACHIEVED), "prop_report_achieved.txt");
}

TEST(GoldenPropReport, Compact)
{
    PLL_PROP prop(2);
    fill(&prop);
    expect_golden(compact_report(prop), "prop_report_compact.txt");
}

TEST(PropReport, NamesTheBandwidthType)
{
    const char* const words[] = {"high", "medium", "low", "auto"};
    PLL_PROP prop(0);
    for (int type = 0; type < 4; ++type) {
        prop.m_bandwidth_type = type;
        EXPECT_NE(std::string::npos,
                  full_report(prop, FORM::REQUESTED)
                      .find(std::string("Requested bandwidth ") + words[type] + "\nLock range"));
    }
    prop.m_bandwidth_type = 4;
    prop.m_bandwidth = 1.2e6;
    EXPECT_NE(std::string::npos, full_report(prop, FORM::REQUESTED)
                                     .find("Requested bandwidth custom at 1.2e+06\n\nLock range"));
    for (const int type : {-1, 5, 7, SMALLEST, LARGEST}) {
        prop.m_bandwidth_type = type;
        EXPECT_NE(
            std::string::npos,
            full_report(prop, FORM::REQUESTED).find("Requested bandwidth Illegal\nLock range"));
    }
}

TEST(PropReport, NamesASecondInputAboveZeroOnly)
{
    PLL_PROP prop(0);
    for (const int period : {0, -1, SMALLEST}) {
        prop.m_fin2_period = period;
        EXPECT_EQ(std::string::npos, full_report(prop, FORM::REQUESTED).find("fin2"));
    }
    prop.m_fin2_period = 1;
    EXPECT_NE(std::string::npos,
              full_report(prop, FORM::REQUESTED).find("\nfin2 1 ps (1e+06 MHz)\n"));
    EXPECT_EQ(std::string::npos, full_report(prop, FORM::ACHIEVED).find("fin2"));
}

TEST(PropReport, PrintsZeroForAFrequencyWithoutAPeriod)
{
    const PLL_PROP prop(0);
    const std::string text = full_report(prop, FORM::REQUESTED);
    EXPECT_NE(std::string::npos, text.find("Nominal fin 0 ps (0 MHz)\n"));
    EXPECT_NE(std::string::npos, text.find("Lock range 0-0 ps (0-0 MHz)\n"));
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t", compact_report(prop));
}

TEST(PropReport, ShowsARangeOnlyWhenBothEndsAreKnown)
{
    PLL_PROP prop(0);
    prop.m_bandwidth = 1e6;
    prop.m_phase_margin = 60;
    prop.m_jitter_peak = 0.5;
    prop.m_bandwidth_max = 2e6;
    prop.m_phase_margin_min = 50;
    prop.m_jitter_peak_max = 0.75;
    prop.m_jitter_peak_min = 0.0;
    const std::string half = full_report(prop, FORM::ACHIEVED);
    EXPECT_NE(std::string::npos, half.find("F Bandwidth 1000 Khz\n"));
    EXPECT_NE(std::string::npos, half.find("Phase Margin 60 deg\n"));
    EXPECT_NE(std::string::npos, half.find("Jitter Peak 0.5 dB\n"));
    prop.m_bandwidth_min = 5e5;
    prop.m_phase_margin_max = 70;
    prop.m_jitter_peak_min = 0.25;
    const std::string both = full_report(prop, FORM::ACHIEVED);
    EXPECT_NE(std::string::npos, both.find("F Bandwidth 1000 Khz (500 Khz to 2000 Khz)\n"));
    EXPECT_NE(std::string::npos, both.find("Phase Margin 60 deg (50 deg to 70 deg)\n"));
    EXPECT_NE(std::string::npos, both.find("Jitter Peak 0.5 dB (0.25 dB to 0.75 dB)\n"));
    prop.m_phase_margin = 0;
    prop.m_jitter_peak = -1;
    const std::string unknown = full_report(prop, FORM::ACHIEVED);
    EXPECT_EQ(std::string::npos, unknown.find("Phase Margin"));
    EXPECT_EQ(std::string::npos, unknown.find("Jitter Peak"));
}

TEST(PropReport, ShowsSpreadFeedbackAndVcoRatioOnlyWhenThereAre)
{
    PLL_PROP prop(0);
    const std::string without = full_report(prop, FORM::ACHIEVED);
    for (const char* label : {"Down Spread", "Spread Frequency", "feedback", "VCO mult"}) {
        EXPECT_EQ(std::string::npos, without.find(label)) << label;
    }
    prop.m_down_spread = 0.005;
    prop.m_feedback_tap = 0;
    prop.m_vco_mult = -1;
    EXPECT_NE(std::string::npos,
              full_report(prop, FORM::ACHIEVED)
                  .find("Down Spread 0.5 % \nSpread Frequency 50 kHz\nLock range 0-0 ps (0-0 MHz)\n"
                        "not using reconfig\nfeedback 0\nVCO mult -1\nVCO div 0\n\n\n"));
}

TEST(PropReport, DividesPeriodsInIntegers)
{
    PLL_PROP prop(1);
    prop.m_fin_period = 10000;
    prop.m_taps[0].m_mult = 3;
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t300.03 MHz\t3\t1\t50\t0\t", compact_report(prop));  // 3333 ps
    prop.m_taps[0].m_mult = 20000;
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t0 MHz\t20000\t1\t50\t0\t", compact_report(prop));
}

TEST(UserTapReport, ShowsItsOptionalFields)
{
    PLL_USER_TAP tap;
    const std::string plain = "  mult  1  div   1  duty  50  phase 0  delay 0";
    EXPECT_EQ(plain, tap_report(tap));
    tap.m_sclkout_phase = 4.5;  // not valid
    EXPECT_EQ(plain, tap_report(tap));
    tap.m_has_sclkout_phase = true;
    EXPECT_EQ(plain + "  sclkout_phase 4.5", tap_report(tap));
    tap.m_use_even_counter_value = true;
    EXPECT_EQ(plain + "  sclkout_phase 4.5  use_even_counter_value 1", tap_report(tap));
    tap.m_use_even_counter_mode = true;
    EXPECT_EQ(plain + "  sclkout_phase 4.5  use_even_counter_mode 1  use_even_counter_value 1",
              tap_report(tap));
    std::ostringstream stream;
    tap.dump(stream, true);
    EXPECT_EQ("1\t1\t50\t0\t", stream.str());
}

TEST(HostilePropReport, DividesByZeroAsZero)
{
    PLL_PROP prop(1);
    prop.m_fin_period = SMALLEST;
    prop.m_taps[0].m_mult = 0;
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t0 MHz\t0\t1\t50\t0\t", compact_report(prop));
    prop.m_taps[0].m_mult = -1;  // wraps to itself
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t-0.000465661 MHz\t-1\t1\t50\t0\t", compact_report(prop));
    prop.m_down_spread = std::numeric_limits<double>::quiet_NaN();
    prop.m_ss_period = 0;
    EXPECT_NE(std::string::npos,
              full_report(prop, FORM::ACHIEVED).find(" % \nSpread Frequency inf kHz\n"));
}

TEST(HostilePropReport, ListsNoMoreClocksThanThereAre)
{
    PLL_PROP prop(1);
    prop.m_taps_count = LARGEST;
    const std::string text = full_report(prop, FORM::REQUESTED);
    EXPECT_NE(std::string::npos, text.find("tap 9 "));
    EXPECT_EQ(std::string::npos, text.find("tap 10 "));
    prop.m_taps_count = SMALLEST;
    EXPECT_EQ(std::string::npos, full_report(prop, FORM::REQUESTED).find("tap"));
    EXPECT_EQ("0 MHz\t0 MHz\t0 MHz\t", compact_report(prop));
}
