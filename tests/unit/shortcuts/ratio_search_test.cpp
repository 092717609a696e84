// The search by VCO ratio against the walk over all rows: both must leave the same result behind.
#include "error_guard.h"
#include "random_ratio_request.h"
#include "search/debug_log.h"
#include "search/evaluation.h"
#include "search/limits.h"
#include "search/region.h"
#include "search/result.h"
#include "search/row_walk.h"
#include "shortcuts/met_search.h"
#include "shortcuts/nearest_search.h"
#include "shortcuts/ratio_search.h"
#include "synthesis/search.h"
#include "synthesis_builders.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <sstream>
#include <string>

using namespace pll_internal;

namespace {

// Everything that a search leaves, doubles to the last digit.
std::string text_of(const SEARCH_RESULT& result)
{
    std::ostringstream text;
    text << std::hexfloat << result.m_best_error << ' ' << result.m_best_cost << ' '
         << result.m_best_vco_deviation << ' ' << result.m_found << result.m_taken
         << result.m_clamped << '\n'
         << result.m_best.m_cost << ' ' << result.m_best.m_vco_period << ' '
         << result.m_best.m_delta_phase << ' ' << result.m_best.m_i << ' ' << result.m_best.m_r
         << ' ' << result.m_best.m_c_high << ' ' << result.m_best.m_bandwidth_legal_for_mult_div
         << result.m_best.m_bandwidth_legal_for_fin << '\n';
    for (const PLL_OUTPUT_TAP& tap : result.m_best.m_taps) {
        text << tap.m_delta_phase << ' ' << tap.m_score << tap.m_even << tap.m_bypass << ' '
             << tap.m_count << ' ' << tap.m_high << ' ' << tap.m_low << ' ' << tap.m_max_count
             << ' ' << tap.m_initial << ' ' << tap.m_vco_tap << ' ' << tap.m_previous_tap << '\n';
    }
    for (const NEIGHBOURS& neighbours : result.m_neighbours) {
        text << neighbours.m_next_phase << ' ' << neighbours.m_previous_phase << ' '
             << neighbours.m_next_duty << ' ' << neighbours.m_previous_duty << ' '
             << neighbours.m_smallest_duty << ' ' << neighbours.m_largest_duty << '\n';
    }
    result.m_best.dump(text, true, false);
    return text.str();
}

enum class WAY
{
    WALK,
    BY_RATIO
};

// The result of one way; an empty text when the search by ratio leaves it to the walk.
std::string search_by(WAY way, const PLL& pll, const PLL_PROP& request)
{
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    SEARCH_RESULT result(pll, request);
    EVALUATION evaluation(pll, request, limits, nullptr, &result);
    if (way == WAY::WALK) {
        walk_rows(&evaluation);
    } else if (search_by_ratio(&evaluation) != RATIO_SEARCH::DONE) {
        return "";
    }
    return text_of(result);
}

// M and N of the exact candidates of a search, in the order in which they were evaluated.
std::string exact_candidates(WAY way, const PLL& pll, const PLL_PROP& request)
{
    const TEMP_WORKING_DIR here;
    {
        SYNTHESIS_TRACE trace;
        trace.open();
        const SEARCH_LIMITS limits = read_search_limits(pll, request);
        SEARCH_RESULT result(pll, request);
        EVALUATION evaluation(pll, request, limits, &trace, &result);
        if (way == WAY::WALK) {
            walk_rows(&evaluation);
        } else {
            search_by_ratio(&evaluation);
        }
    }
    std::istringstream log(read_file("debug.log"));
    std::string candidates;
    std::string setting;
    for (std::string line; std::getline(log, line);) {
        if (line.starts_with("M ")) {
            setting = line;
        } else if (line.starts_with("N ")) {
            setting += ' ' + line + '\n';
        } else if (line.starts_with("cost 0 ")) {
            candidates += setting;
        }
    }
    return candidates;
}

// A request that thousands of candidates of many blocks of M meet, in columns or in rows.
struct CROWD
{
    CROWD(int fin_period, int bandwidth_type) : m_request(1), m_pll(1, PLL_MAX_TAPS)
    {
        m_request.m_fin_period = fin_period;
        m_request.m_bandwidth_type = bandwidth_type;
        m_request.m_taps[0].m_div = 800000 / fin_period;
        m_request.m_taps[0].m_mult = 1;
        m_pll.m_taps[0].m_max_count = 2000;
    }

    PLL_PROP m_request;
    PLL m_pll;
};

// What the search leaves, whichever way it takes.
struct FOUND
{
    FOUND(const PLL& pll, const PLL_PROP& request) : m_result(pll, request)
    {
        search(pll, request, read_search_limits(pll, request), nullptr, &m_result);
    }

    SEARCH_RESULT m_result;
};

struct TALLY
{
    int m_by_ratio = 0;
    int m_exact = 0;
    int m_missed = 0;
};

void expect_the_walk(const PLL& pll, const PLL_PROP& request, TALLY* tally)
{
    const std::string by_ratio = search_by(WAY::BY_RATIO, pll, request);
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    SEARCH_RESULT walked(pll, request);
    EVALUATION evaluation(pll, request, limits, nullptr, &walked);
    walk_rows(&evaluation);
    ASSERT_EQ(walked.m_found, !by_ratio.empty());
    if (!walked.m_found) {
        return;
    }
    ASSERT_EQ(text_of(walked), by_ratio);
    ++tally->m_by_ratio;
    ++(walked.m_best_error == 0.0 ? tally->m_exact : tally->m_missed);
}

TEST(RatioSearch, LeavesWhatTheWalkLeavesInSmallBoxes)
{
    RANDOM_RATIOS random(30);
    TALLY tally;
    for (int i = 0; i < 3000; ++i) {
        const PLL_PROP request = random.request();
        const auto pll = random.pll(request, 1 + random.number(60), random.number(40));
        pll->m_feedback_tap = request.m_feedback_tap;
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
    }
    EXPECT_GT(tally.m_exact, 300);
    EXPECT_GT(tally.m_missed, 500);
}

TEST(RatioSearch, LeavesWhatTheWalkLeavesInLargeBoxes)
{
    RANDOM_RATIOS random(31);
    TALLY tally;
    for (int i = 0; i < 150; ++i) {
        const PLL_PROP request = random.request();
        const auto pll = random.pll(request, 512, 512);
        pll->m_feedback_tap = request.m_feedback_tap;
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
    }
    EXPECT_GT(tally.m_exact, 20);
    EXPECT_GT(tally.m_missed, 20);
}

TEST(RatioSearch, EvaluatesEveryExactCandidateInTheOrderOfTheWalk)
{
    constexpr int AUTO = 3;
    constexpr int LOW = 2;
    for (const int fin_period : {700, 10000, 40000}) {
        for (const int bandwidth_type : {AUTO, LOW}) {
            for (const int mult : {1, 3, 1009}) {
                CROWD crowd(fin_period, bandwidth_type);
                crowd.m_request.m_taps[0].m_mult = mult;
                crowd.m_request.m_taps[0].m_div *= mult;
                crowd.m_request.m_taps[0].m_div += mult > 3 ? 1 : 0;
                crowd.m_pll.m_low_bandwidth = 1e6;
                crowd.m_pll.m_n.m_max_count = 150;
                SCOPED_TRACE(testing::Message()
                             << fin_period << ' ' << bandwidth_type << ' ' << mult);
                const std::string walked =
                    exact_candidates(WAY::WALK, crowd.m_pll, crowd.m_request);
                EXPECT_GT(walked.size(), 10U);
                EXPECT_EQ(walked, exact_candidates(WAY::BY_RATIO, crowd.m_pll, crowd.m_request));
            }
        }
    }
}

// Few columns of N beside many rows of M, with more exact candidates than are gathered at once.
TEST(RatioSearch, VisitsMoreExactCandidatesThanCanBeGathered)
{
    CROWD crowd(40000, 2);
    crowd.m_pll.m_m.m_max_count = 4000;
    crowd.m_pll.m_vco_min_period[1] = 100;
    crowd.m_pll.m_low_bandwidth = 1e6;
    crowd.m_request.m_taps[0].m_div = 1;
    crowd.m_request.m_taps[0].m_mult = 1;
    const std::string walked = exact_candidates(WAY::WALK, crowd.m_pll, crowd.m_request);
    EXPECT_GT(std::count(walked.begin(), walked.end(), '\n'), 1024);
    EXPECT_EQ(walked, exact_candidates(WAY::BY_RATIO, crowd.m_pll, crowd.m_request));
}

// Requests that most candidates of a small box meet: those that cost more than the best are passed
// over as soon as they tell nothing new.
PLL_PROP crowded_request(RANDOM_RATIOS* random)
{
    PLL_PROP request(random->number(3));
    request.m_fin_period = 1000 * random->number(4);
    request.m_bandwidth_type = random->chance(70) ? 3 : 4;
    request.m_bandwidth = 1e5 * random->number(20);
    const int division = 100 * random->number(8);
    const bool phases = random->chance(60);
    const bool negative = random->chance(50);
    for (int i = 0; i < request.m_taps_count; ++i) {
        const int off = random->chance(50) ? random->number(5) - 3 : 0;
        request.m_taps[i].m_mult = 1000;
        request.m_taps[i].m_div = 1000 * division + off * division;
        request.m_taps[i].m_duty = random->chance(50) ? 50 : random->number(101) - 1;
        request.m_taps[i].m_phase =
            phases && random->chance(60) ? random->number(400) - (negative ? 200 : 1) : 0;
        request.m_taps[i].m_has_sclkout_phase = random->chance(10);
        request.m_taps[i].m_sclkout_phase = random->number(90) - (random->chance(30) ? 45 : 1);
        request.m_taps[i].m_use_even_counter_mode = random->chance(10);
        request.m_taps[i].m_use_even_counter_value = random->chance(10);
    }
    return request;
}

TEST(RatioSearch, LeavesWhatTheWalkLeavesInCrowds)
{
    RANDOM_RATIOS random(35);
    TALLY tally;
    for (int i = 0; i < 3000; ++i) {
        const PLL_PROP request = crowded_request(&random);
        const auto pll = random.pll(request, 2 + random.number(60), random.number(30));
        for (PLL_OUTPUT_TAP& tap : pll->m_taps) {
            tap.m_max_count = random.chance(90) ? 2000 : 300;
        }
        pll->m_m.m_max_vco_tap = random.chance(30) ? random.number(7) - 1 : 9999;
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
    }
    EXPECT_GT(tally.m_exact, 1400);
}

// Rows with and without capacitors, groups without rows or with ones that cost too much, and rows
// of another group's M, which are reported.
void fill_randomly(DEVICE* device, int groups, RANDOM_RATIOS* random)
{
    const int kind = random->number(4);
    for (int m = 1; m < groups; ++m) {
        const int rows = random->chance(20) ? 0 : random->number(4);
        const bool has_capacitors = kind == 1 || (kind == 2 && random->chance(50));
        for (int i = 0; i < rows; ++i) {
            const double typical = 1e4 * random->number(200);
            PLL_BANDWIDTH_SETTING* row = device->add_row(
                m, random->chance(1) ? 1e14 : typical, typical * (1.0 + 0.1 * random->number(20)));
            row->m_charge_pump_current = 10 * random->number(20);
            row->m_loop_filter_resistor = 1000 * random->number(20);
            const bool has_capacitor = kind == 3 ? random->chance(50) : has_capacitors;
            row->m_loop_filter_capacitor = has_capacitor ? random->number(9) : -1;
            row->m_m = random->chance(99) ? m : m + 1;
        }
    }
}

TEST(RatioSearch, LeavesWhatTheWalkLeavesInCrowdsWithATable)
{
    RANDOM_RATIOS random(38);
    TALLY tally;
    for (int i = 0; i < 2000; ++i) {
        PLL_PROP request = crowded_request(&random);
        request.m_bandwidth_type = random.number(5) - 1;
        const auto pll = random.pll(request, 2 + random.number(60), random.number(30));
        for (PLL_OUTPUT_TAP& tap : pll->m_taps) {
            tap.m_max_count = 2000;
        }
        DEVICE device(20 + random.number(80));
        fill_randomly(&device, device.m_info.m_bandwidth_settings_table_size, &random);
        device.m_info.m_bandwidth_pfd_min_frequency_multiplier = random.number(12) - 2;
        device.m_info.m_is_pfd_bandwidth_rule_an_error = random.chance(30);
        device.m_info.m_spe_ratio_constant_x =
            random.chance(30) ? 0.1 * random.number(20) : DBL_MAX;
        device.describe(*pll);
        EXPECTED_REPORTS reports;
        reports.accept_all();
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
    }
    EXPECT_GT(tally.m_exact, 900);
}

// At the first post-scale a counter of 126 nearly meets 1 / 42, next to the ratio 3. At the second
// 3 / 1 is exact but dearer, and still ends the search at M 12: nothing is told of smaller
// counters, which need a larger M.
TEST(RatioSearch, LetsADearerCandidateCutTheSearchOff)
{
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    request.m_bandwidth_type = 3;
    request.m_taps[0].m_div = 42;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_max_vco_post_scale = 2;
    pll.m_m.m_max_count = 2000;
    pll.m_n.m_max_count = 600;
    pll.m_pfd_max_period = 1000000000;
    pll.m_vco_min_period[1] = 3331;
    pll.m_vco_max_period[1] = 3332;
    pll.m_vco_min_period[2] = 2500;
    pll.m_vco_max_period[2] = 3610;
    pll.m_taps[0].m_max_count = 70;
    TALLY tally;
    expect_the_walk(pll, request, &tally);
    EXPECT_EQ(1, tally.m_exact);
    EXPECT_EQ(1, FOUND(pll, request).m_result.m_best_point.m_post_scale);
}

// Steps of a phase are told down to 0.0001 degrees, next to which the larger of two ratios may tell
// nothing and the smaller something.
TEST(RatioSearch, TellsPhaseStepsAsLongAsTheyCount)
{
    PLL_PROP request(1);
    request.m_fin_period = 900000000;
    request.m_bandwidth_type = 3;
    request.m_taps[0].m_mult = 4500010;
    request.m_taps[0].m_div = 10;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_m.m_max_count = 1000000;
    pll.m_n.m_max_count = 2;
    pll.m_pfd_max_period = 2000000000;
    request.m_taps[0].m_mult += 1;
    TALLY tally;
    expect_the_walk(pll, request, &tally);
    EXPECT_EQ(1, tally.m_exact);
}

// A duty cycle beyond 0 to 100 % leaves one half empty, which is reported for every candidate.
TEST(RatioSearch, ReportsWhatTheWalkReports)
{
    for (const int duty : {-1, 0, 100, 101}) {
        CROWD crowd(2000, 3);
        crowd.m_pll.m_m.m_max_count = 64;
        crowd.m_pll.m_n.m_max_count = 64;
        crowd.m_request.m_taps[0].m_mult = 1009;
        crowd.m_request.m_taps[0].m_div *= 1009;
        crowd.m_request.m_taps[0].m_div += 1;
        crowd.m_request.m_taps[0].m_duty = duty;
        EXPECTED_REPORTS reports;
        const std::string walked = search_by(WAY::WALK, crowd.m_pll, crowd.m_request);
        const std::size_t count = reports.count();
        EXPECT_EQ(walked, search_by(WAY::BY_RATIO, crowd.m_pll, crowd.m_request));
        EXPECT_EQ(2 * count, reports.count()) << duty;
        EXPECT_EQ(duty < 0 || duty > 100, count > 100) << duty;
    }
}

TEST(RatioSearch, LeavesOddRequestsToTheWalk)
{
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    PLL pll(1, PLL_MAX_TAPS);
    EXPECT_NE("", search_by(WAY::BY_RATIO, pll, request));
    const auto expect_left = [&](auto change) {
        PLL_PROP odd(1);
        odd.m_fin_period = 10000;
        PLL odd_pll(1, PLL_MAX_TAPS);
        change(&odd_pll, &odd);
        EXPECT_EQ("", search_by(WAY::BY_RATIO, odd_pll, odd));
        EXPECT_NE("", search_by(WAY::WALK, odd_pll, odd));
    };
    expect_left([](PLL*, PLL_PROP* odd) { odd->m_fin_period = -10000; });
    expect_left([](PLL*, PLL_PROP* odd) { odd->m_taps[0].m_mult = 0; });
    expect_left([](PLL*, PLL_PROP* odd) { odd->m_taps[0].m_div = -1; });
    expect_left([](PLL*, PLL_PROP* odd) { odd->m_taps[0].m_phase = 1e300; });
    expect_left([](PLL*, PLL_PROP* odd) { odd->m_taps[0].m_phase = std::nan(""); });
    expect_left([](PLL* odd, PLL_PROP*) { odd->m_n.m_min_count = 0; });
    expect_left([](PLL* odd, PLL_PROP*) { odd->m_taps[0].m_max_count = -1; });
}

// A row without current makes a cost of which nothing can be said, so its candidates are exact but
// never taken: what is left behind is then the best of those that miss before them.
TEST(RatioSearch, LeavesWhatTheWalkLeavesWhereCostsAreNoNumbers)
{
    RANDOM_RATIOS random(34);
    int never_taken = 0;
    for (int i = 0; i < 500; ++i) {
        const PLL_PROP request = random.request();
        const auto pll = random.pll(request, 40, 20);
        DEVICE device(41);
        device.m_info.m_spe_ratio_constant_x = 1.0;
        for (int m = 1; m <= 40; ++m) {
            const bool dead = i % 2 == 0 || random.chance(20);
            device.add_row(m, 1e6, 1e6)->m_charge_pump_current = dead ? 0 : 40;
        }
        device.describe(*pll);
        SCOPED_TRACE(i);
        const SEARCH_LIMITS limits = read_search_limits(*pll, request);
        SEARCH_RESULT expected(*pll, request);
        EVALUATION evaluation(*pll, request, limits, nullptr, &expected);
        walk_rows(&evaluation);
        ASSERT_EQ(text_of(expected), text_of(FOUND(*pll, request).m_result));
        never_taken += expected.m_best_error == 0.0 && !expected.m_taken ? 1 : 0;
    }
    EXPECT_GT(never_taken, 20);
}

// The feedback path may hold a counter that no clock of the request uses. One of nothing takes all
// of M with it: what an exact candidate costs is then no number, and the best of those that miss
// stays.
struct FEEDBACK_BEYOND
{
    FEEDBACK_BEYOND() : m_pll(2, PLL_MAX_TAPS), m_request(1)
    {
        m_pll.m_m.m_max_count = 4;
        m_pll.m_n.m_max_count = 1;
        m_request.m_fin_period = 10000;
        m_request.m_taps[0].m_mult = 4;
        m_request.m_taps[0].m_phase = 90.0;
        m_request.m_feedback_tap = 1;
        set_halves(0, 0);
    }

    void set_halves(int high, int low)
    {
        m_pll.m_taps[1].m_high = high;
        m_pll.m_taps[1].m_low = low;
        m_pll.m_taps[1].m_bypass = false;
    }

    PLL m_pll;
    PLL_PROP m_request;
};

TEST(RatioSearch, LeavesTheBestMissWhereNoExactCostIsANumber)
{
    FEEDBACK_BEYOND box;
    EXPECT_FALSE(box.m_pll.synthesize(box.m_request));
    EXPECT_EQ(PLL::PLL_MULT_DIV_NOT_ACHIEVED, box.m_pll.m_error);
    EXPECT_EQ(3, box.m_pll.get_m());
    EXPECT_EQ(1.0, box.m_pll.m_cost);
    EXPECT_NEAR(10000.0 / 3, box.m_pll.get_vco_period(), 1e-9);
}

TEST(RatioSearch, LeavesFeedbackThatMayTakeAllOfMToTheWalk)
{
    struct HALVES
    {
        const char* m_name;
        int m_high;
        int m_low;
        bool m_by_ratio;
    };
    // clang-format off
    constexpr HALVES CASES[] = {
        // name                                 high        low  by ratio
        {"nothing",                                0,          0, false},
        {"one",                                    1,          0, true},
        {"less than nothing",                      0,         -1, false},
        {"M 4 times it fits",              268435456,  268435455, true},
        {"M 4 times it is 2^31",           268435456,  268435456, false},
        {"2^31 and 2^31, which is nothing", 2147483647, 2147483647, false},
    };
    // clang-format on
    for (const HALVES& halves : CASES) {
        SCOPED_TRACE(halves.m_name);
        FEEDBACK_BEYOND box;
        box.set_halves(halves.m_high, halves.m_low);
        box.m_pll.m_feedback_tap = box.m_request.m_feedback_tap;
        EXPECT_EQ(halves.m_by_ratio, !search_by(WAY::BY_RATIO, box.m_pll, box.m_request).empty());
        if (halves.m_by_ratio) {
            EXPECT_EQ(search_by(WAY::WALK, box.m_pll, box.m_request),
                      search_by(WAY::BY_RATIO, box.m_pll, box.m_request));
        }
    }
}

// Counters of 2 to 12 need many cascades; the counters beyond the outputs show the last ones.
TEST(RatioSearch, LeavesTheTracesOfCascadesThatTheWalkLeaves)
{
    RANDOM_RATIOS random(32);
    TALLY tally;
    int used = 0;
    for (int i = 0; i < 3000; ++i) {
        PLL_PROP request = random.request();
        for (int tap = 0; tap < request.m_taps_count; ++tap) {
            request.m_taps[tap].m_div *= random.chance(50) ? random.number(30) : 1;
        }
        const auto pll = random.pll(request, 1 + random.number(60), random.number(40));
        pll->m_output_counter_cascade = true;
        pll->m_max_taps_count = request.m_taps_count + random.number(4) - 1;
        pll->m_feedback_tap = request.m_feedback_tap;
        for (int tap = 0; tap < request.m_taps_count; ++tap) {
            pll->m_taps[tap].m_max_count = random.number(6);
        }
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
        const FOUND found(*pll, request);
        used += found.m_result.m_best.m_total_taps_count > request.m_taps_count ? 1 : 0;
    }
    EXPECT_GT(tally.m_exact, 100);
    EXPECT_GT(tally.m_missed, 500);
    EXPECT_GT(used, 100);
}

// The feedback path may be said to hold a counter that only cascades set up: what it divides by,
// and so what a candidate costs, is then left behind by any candidate before it.
TEST(RatioSearch, LeavesFeedbackFromACascadeToTheWalk)
{
    PLL_PROP request(1);
    request.m_fin_period = 10000;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_feedback_tap = 1;
    EXPECTED_REPORTS reports;
    reports.accept_all();  // of a feedback output that is none
    EXPECT_NE("", search_by(WAY::BY_RATIO, pll, request));
    pll.m_output_counter_cascade = true;
    EXPECT_EQ("", search_by(WAY::BY_RATIO, pll, request));
    EXPECT_NE("", search_by(WAY::WALK, pll, request));
    pll.m_feedback_tap = 0;
    EXPECT_NE("", search_by(WAY::BY_RATIO, pll, request));
}

// An output that misses 14 / 6 = 7 / 3 least, of all fractions.
struct SEVEN_THIRDS
{
    SEVEN_THIRDS() : m_request(1), m_pll(1, PLL_MAX_TAPS)
    {
        m_request.m_fin_period = 2000;
        m_request.m_taps[0].m_mult = 2 * 7003;
        m_request.m_taps[0].m_div = 3000;
        m_pll.m_m.m_max_count = 70;
        m_pll.m_n.m_max_count = 30;
        m_pll.m_vco_min_period[1] = 856;
        m_pll.m_vco_max_period[1] = 857;
        m_pll.m_taps[0].m_max_count = 1;
    }

    NEAREST_SEARCH::BEST search() const
    {
        const SEARCH_LIMITS limits = read_search_limits(m_pll, m_request);
        KEPT_CASCADES cascades(m_pll, limits);
        NEAREST_SEARCH search(m_pll, limits, &cascades);
        search.search(1, REGION(m_pll, limits, 1));
        return search.best();
    }

    PLL_PROP m_request;
    PLL m_pll;
};

// All multiples miss by the same: the first of them stays.
TEST(NearestSearch, KeepsTheFirstOfEqualSums)
{
    const NEAREST_SEARCH::BEST best = SEVEN_THIRDS().search();
    EXPECT_EQ(1, best.m_post_scale);
    EXPECT_EQ(7, best.m_m);
    EXPECT_EQ(3, best.m_n);
}

TEST(NearestSearch, TakesTheFirstMultipleWhoseCounterIsLongEnough)
{
    for (int n_min = 4; n_min <= 30; ++n_min) {
        SEVEN_THIRDS box;
        box.m_pll.m_n.m_min_count = n_min;
        const NEAREST_SEARCH::BEST best = box.search();
        EXPECT_EQ((n_min + 2) / 3 * 3, best.m_n);
        EXPECT_EQ((n_min + 2) / 3 * 7, best.m_m);
    }
}

// A custom bandwidth allows other M at each post-scale when the gains of the VCO differ.
TEST(NearestSearch, LooksAtTheSecondPostScaleForAnMThatTheFirstHasNot)
{
    RANDOM_RATIOS random(36);
    TALLY tally;
    int second = 0;
    for (int i = 0; i < 500; ++i) {
        PLL_PROP request = random.request();
        const auto pll = random.pll(request, 60, 30);
        set_components(*pll, {10, 20}, {1000});
        const double product_per_m = 12000.0 / random.number(20);
        pll->m_max_vco_post_scale = 2;
        pll->m_kvco[2] = pll->m_kvco[1] * (0.25 + 0.1 * random.number(30));
        request.m_bandwidth_type = 4;
        request.m_bandwidth = product_per_m * pll->m_kvco[1] / 6.28;
        SCOPED_TRACE(i);
        expect_the_walk(*pll, request, &tally);
        const FOUND found(*pll, request);
        const bool missed = found.m_result.m_best_error != 0.0;
        second += missed && found.m_result.m_best_point.m_post_scale == 2 ? 1 : 0;
    }
    EXPECT_GT(tally.m_missed, 100);
    EXPECT_GT(second, 30);
}

// A wide range of ratios, of which only the lowest miss by little: cells that hold many settings
// are cut into smaller ones.
TEST(NearestSearch, LeavesWhatTheWalkLeavesInCrowdedCells)
{
    RANDOM_RATIOS random(37);
    TALLY tally;
    for (int i = 0; i < 12; ++i) {
        PLL_PROP request(1 + random.number(4));
        request.m_fin_period = 1000 * random.number(10);
        for (int tap = 0; tap < request.m_taps_count; ++tap) {
            request.m_taps[tap].m_mult = random.number(3);
            request.m_taps[tap].m_div = 60001 + random.number(20000);
        }
        PLL pll(request.m_taps_count, PLL_MAX_TAPS);
        pll.m_m.m_max_count = 900;
        pll.m_n.m_max_count = 700;
        pll.m_vco_min_period[1] = random.number(50);
        pll.m_vco_max_period[1] = 20000 * random.number(10);
        pll.m_pfd_max_period = 2000000000;
        pll.m_output_counter_cascade = random.chance(30);
        SCOPED_TRACE(i);
        expect_the_walk(pll, request, &tally);
    }
    EXPECT_GT(tally.m_missed, 6);
}

TEST(NearestSearch, FindsNothingWhereNothingIsLegal)
{
    PLL_PROP request(1);
    request.m_fin_period = 2000;
    PLL pll(1, PLL_MAX_TAPS);
    pll.m_vco_min_period[1] = 901;
    pll.m_vco_max_period[1] = 902;
    pll.m_m.m_max_count = 3;
    const SEARCH_LIMITS limits = read_search_limits(pll, request);
    KEPT_CASCADES cascades(pll, limits);
    NEAREST_SEARCH search(pll, limits, &cascades);
    search.search(1, REGION(pll, limits, 1));
    EXPECT_EQ(0, search.best().m_post_scale);
}

}  // namespace
