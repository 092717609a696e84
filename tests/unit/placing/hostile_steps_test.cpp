// The steps of a synthesis that a host can call by themselves, with values that no synthesis
// leaves.
#include "error_guard.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int INT_MINIMUM = std::numeric_limits<int>::min();
constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

const int HOSTILE_INTS[] = {0, 1, -1, 2, 9, 10, 100, INT_MAXIMUM, INT_MINIMUM, INT_MINIMUM + 1};
const double HOSTILE_DOUBLES[] = {0.0,    45.0,     -45.0,     1e300,
                                  -1e300, INFINITE, -INFINITE, NOT_A_NUMBER};

TEST(HostileSteps, FailForANullPll)
{
    PLL pll(1, 10);
    const PLL_PROP request(1);
    EXPECTED_REPORTS reports;
    reports.accept_all();
    EXPECT_FALSE(pll.synthesize_best_phase_and_duty_cycle(nullptr, request));
    EXPECT_FALSE(PLL::synthesize_best_bandwidth_using_table(nullptr, request));
    pll.compute_phase_for_ui(nullptr, request, 0, 0.0);
    pll.compute_duty_cycle_for_ui(nullptr, request, 0, 50.0);
    EXPECT_EQ(2147483647.0, pll.m_taps[0].m_next_phase_degree);
    EXPECT_EQ(100, pll.m_taps[0].m_next_duty_cycle);
}

TEST(HostileSteps, TakeAnyTapIndex)
{
    PLL pll(2, 10);
    const PLL_PROP request(2);
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int tap : HOSTILE_INTS) {
        pll.compute_phase_for_ui(&pll, request, tap, 10.0);
        pll.compute_duty_cycle_for_ui(&pll, request, tap, 50.0);
    }
    EXPECT_EQ(10.0, pll.m_taps[0].m_next_phase_degree);
    EXPECT_EQ(10.0, pll.m_taps[9].m_next_phase_degree);
}

TEST(HostileSteps, TakeAnyAchievedValue)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (double value : HOSTILE_DOUBLES) {
        for (int duty : HOSTILE_INTS) {
            PLL pll(1, 10);
            PLL_PROP request(1);
            request.m_taps[0].m_duty = duty;
            request.m_taps[0].m_phase = value;
            pll.compute_phase_for_ui(&pll, request, 0, 10.0);
            pll.compute_phase_for_ui(&pll, request, 0, value);
            pll.compute_duty_cycle_for_ui(&pll, request, 0, value);
            pll.correct_next_and_previous_values_for_ui();
            EXPECT_FALSE(std::isnan(pll.m_taps[0].m_next_phase_degree));
            EXPECT_FALSE(std::isnan(pll.m_taps[0].m_prev_phase_degree));
        }
    }
}

void place_phase_on_counters(int m, int n, double phase, int feedback)
{
    PLL pll(2, 10);
    PLL_PROP request(2);
    pll.m_m.m_count = m;
    pll.m_n.m_count = n;
    pll.m_feedback_tap = feedback;
    pll.m_m.m_max_count = n;
    pll.m_m.m_max_vco_tap = 3;
    request.m_taps[0].m_phase = phase;
    request.m_taps[1].m_has_sclkout_phase = true;
    request.m_taps[1].m_sclkout_phase = phase;
    EXPECT_TRUE(pll.synthesize_best_phase_and_duty_cycle(&pll, request));
    for (int i = 0; i < 2; ++i) {
        EXPECT_LE(0, pll.m_taps[i].m_vco_tap);
        EXPECT_GT(PLL_VCO_TAPS_NUMBER, pll.m_taps[i].m_vco_tap);
    }
}

TEST(HostileSteps, PlaceAnyPhaseOnAnyCounters)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int m : HOSTILE_INTS) {
        for (int n : HOSTILE_INTS) {
            for (double phase : HOSTILE_DOUBLES) {
                place_phase_on_counters(m, n, phase, -1);
                place_phase_on_counters(m, n, phase, 0);
            }
        }
    }
}

TEST(HostileSteps, SplitAnyCountIntoAnyHalves)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int count : HOSTILE_INTS) {
        for (int max_count : HOSTILE_INTS) {
            for (int duty : HOSTILE_INTS) {
                PLL pll(1, 10);
                PLL_PROP request(1);
                pll.m_taps[0].m_count = count;
                pll.m_taps[0].m_bypass = false;
                pll.m_taps[0].m_max_count = max_count;
                request.m_taps[0].m_duty = duty;
                request.m_taps[0].m_use_even_counter_mode = duty % 2 == 0;
                request.m_taps[0].m_use_even_counter_value = true;
                EXPECT_TRUE(pll.synthesize_best_phase_and_duty_cycle(&pll, request));
            }
        }
    }
}

TEST(HostileSteps, WalkAnyCascade)
{
    // Loops, indexes outside the record, and counters that divide by nothing.
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int previous : HOSTILE_INTS) {
        for (int back : HOSTILE_INTS) {
            for (int half : HOSTILE_INTS) {
                PLL pll(1, 10);
                PLL_PROP request(1);
                pll.m_total_taps_count = 2;
                pll.m_m.m_count = 4;
                pll.m_taps[0].m_count = 4;
                pll.m_taps[0].m_bypass = false;
                pll.m_taps[0].m_previous_tap = previous;
                pll.m_taps[1].m_previous_tap = back;
                pll.m_taps[1].m_bypass = false;
                pll.m_taps[1].m_high = half;
                pll.m_taps[1].m_low = 0;
                pll.m_taps[1].m_max_count = half;
                request.m_taps[0].m_phase = 1e6;
                EXPECT_TRUE(pll.synthesize_best_phase_and_duty_cycle(&pll, request));
                request.set_properties_from_internals(pll);
            }
        }
    }
}

void share_delays(int first, int second, int feedback)
{
    PLL pll(2, 10);
    PLL_PROP request(2);
    pll.m_feedback_tap = feedback;
    request.m_taps[0].m_delay = first;
    request.m_taps[1].m_delay = second;
    const bool met = pll.synthesize_delay_chains(request);
    EXPECT_EQ(met, pll.m_error == PLL::PLL_NO_ERROR);
    for (int i = 0; met && i < 2; ++i) {
        EXPECT_GE(MAX_DELAY_CHAIN_VALUE, pll.m_taps[i].m_delay);
    }
}

TEST(HostileSteps, ShareAnyDelays)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int first : HOSTILE_INTS) {
        for (int second : HOSTILE_INTS) {
            for (int feedback : HOSTILE_INTS) {
                share_delays(first, second, feedback);
            }
        }
    }
}

void choose_row(int m, int n, int post_scale, int feedback)
{
    PLL pll(1, 10);
    DEVICE device(3);
    device.add_row(2, 1e6, 1e6);
    device.m_info.m_bandwidth_pfd_min_frequency_multiplier = n;
    device.describe(pll);
    PLL_PROP request(1);
    request.m_fin_period = n;
    request.m_fin2_period = m;
    pll.m_m.m_count = m;
    pll.m_n.m_count = n;
    pll.m_vco_post_scale = post_scale;
    pll.m_feedback_tap = feedback;
    EXPECT_EQ(PLL::synthesize_best_bandwidth_using_table(&pll, request),
              pll.m_bandwidth_legal_for_mult_div);
}

void choose_rows(int m, int n, int post_scale)
{
    for (int feedback : HOSTILE_INTS) {
        choose_row(m, n, post_scale, feedback);
    }
}

TEST(HostileSteps, ChooseARowForAnyCounters)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (int m : HOSTILE_INTS) {
        for (int n : HOSTILE_INTS) {
            for (int post_scale : HOSTILE_INTS) {
                choose_rows(m, n, post_scale);
            }
        }
    }
}

TEST(HostileSteps, SurviveATableThatIsSmallerThanItSays)
{
    // A size without groups, a group without rows, a row that is none.
    PLL pll(1, 10);
    DEVICE device(3);
    device.m_info.m_bandwidth_settings_table[1].m_settings.push_back(nullptr);
    device.describe(pll);
    const PLL_PROP request(1);
    EXPECTED_REPORTS reports;
    reports.accept_all();
    EXPECT_FALSE(PLL::synthesize_best_bandwidth_using_table(&pll, request));
    device.m_info.set_bandwidth_settings_table(5, nullptr);
    EXPECT_FALSE(PLL::synthesize_best_bandwidth_using_table(&pll, request));
}

}  // namespace
