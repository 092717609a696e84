// Values that no sane host gives, in every field that a synthesis reads: each ends in a defined
// result, the same each time, and leaves nothing behind.
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "pll_prop.h"
#include "synthesis_builders.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int INT_MINIMUM = std::numeric_limits<int>::min();
constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();

const int HOSTILE_INTS[] = {0,       1,        2,           -1,          -2,
                            7,       11,       100,         -100,        65536,
                            1000000, -1000000, INT_MAXIMUM, INT_MINIMUM, INT_MINIMUM + 1};
const double HOSTILE_DOUBLES[] = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  0.005,
                                  -0.005,
                                  1e-300,
                                  1e300,
                                  -1e300,
                                  45.0,
                                  -45.0,
                                  1e10,
                                  -1e10,
                                  5e-324,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::quiet_NaN()};

// A request on a small device, which a case then spoils.
struct VICTIM : SMALL_PLL
{
    VICTIM() : SMALL_PLL(3, 6, 4), m_device(9)
    {
        set_vco(600, 1666, 5000);
        set_pfd(1500, 30000);
        m_pll.m_vco_min_period[2] = 600;
        m_pll.m_vco_max_period[2] = 5000;
        m_request.m_fin2_period = 4100;
        set_ratio(1, 1, 2);
        set_ratio(2, 3, 4);
        clock(1).m_phase = -90.0;
        clock(2).m_duty = 30;
        clock(1).m_delay = 100;
        for (int i = 2; i < 9; ++i) {
            m_device.add_row(i, 1e6, 1.5e6);
        }
        m_device.m_info.m_bandwidth_pfd_min_frequency_multiplier = 5;
    }

    DEVICE m_device;
};

typedef std::function<void(VICTIM&)> SPOIL;

struct FIELD
{
    std::string m_name;
    bool m_is_double;
    bool m_is_counter_range;  // together with others it could ask for billions of candidates
    std::function<void(VICTIM&, int)> m_set_int;
    std::function<void(VICTIM&, double)> m_set_double;
};

class FIELD_LIST
{
public:
    template <class PLACE>
    void add_int(const std::string& name, PLACE place, bool range = false)
    {
        m_fields.push_back({name,
                            false,
                            range,
                            [place](VICTIM& victim, int value) { place(victim) = value; },
                            {}});
    }

    template <class PLACE>
    void add_double(const std::string& name, PLACE place)
    {
        m_fields.push_back({name, true, false, {}, [place](VICTIM& victim, double value) {
                                place(victim) = value;
                            }});
    }

    std::vector<FIELD> m_fields;
};

void add_request_fields(FIELD_LIST& list)
{
    for (int PLL_PROP::*field :
         {&PLL_PROP::m_bandwidth_type, &PLL_PROP::m_fin_period, &PLL_PROP::m_fin2_period,
          &PLL_PROP::m_ss_period, &PLL_PROP::m_feedback_tap, &PLL_PROP::m_taps_count,
          &PLL_PROP::m_vco_mult, &PLL_PROP::m_vco_div, &PLL_PROP::m_lock_min_period,
          &PLL_PROP::m_lock_max_period}) {
        list.add_int("request", [field](VICTIM& v) -> int& { return v.m_request.*field; });
    }
    for (double PLL_PROP::*field : {&PLL_PROP::m_down_spread, &PLL_PROP::m_bandwidth,
                                    &PLL_PROP::m_bandwidth_max, &PLL_PROP::m_bandwidth_min}) {
        list.add_double("request", [field](VICTIM& v) -> double& { return v.m_request.*field; });
    }
    for (int clock = 0; clock < 2; ++clock) {
        for (int PLL_USER_TAP::*field : {&PLL_USER_TAP::m_delay, &PLL_USER_TAP::m_mult,
                                         &PLL_USER_TAP::m_div, &PLL_USER_TAP::m_duty}) {
            list.add_int("clock",
                         [=](VICTIM& v) -> int& { return v.m_request.m_taps[clock].*field; });
        }
        list.add_double("phase",
                        [=](VICTIM& v) -> double& { return v.m_request.m_taps[clock].m_phase; });
        list.add_double("sclkout phase", [=](VICTIM& v) -> double& {
            v.m_request.m_taps[clock].m_has_sclkout_phase = true;
            return v.m_request.m_taps[clock].m_sclkout_phase;
        });
    }
}

void add_counter_fields(FIELD_LIST& list)
{
    for (PLL_COUNTER_M PLL::*counter : {&PLL::m_m, &PLL::m_n}) {
        for (int PLL_COUNTER_M::*field :
             {&PLL_COUNTER_M::m_count, &PLL_COUNTER_M::m_ss_count, &PLL_COUNTER_M::m_initial,
              &PLL_COUNTER_M::m_delay, &PLL_COUNTER_M::m_vco_tap, &PLL_COUNTER_M::m_max_vco_tap}) {
            list.add_int("counter", [=](VICTIM& v) -> int& { return v.m_pll.*counter.*field; });
        }
        for (int PLL_COUNTER_M::*field :
             {&PLL_COUNTER_M::m_min_count, &PLL_COUNTER_M::m_max_count}) {
            list.add_int(
                "counter range", [=](VICTIM& v) -> int& { return v.m_pll.*counter.*field; }, true);
        }
    }
    for (int tap : {0, 1, 3}) {
        for (int PLL_OUTPUT_TAP::*field :
             {&PLL_OUTPUT_TAP::m_max_count, &PLL_OUTPUT_TAP::m_previous_tap,
              &PLL_OUTPUT_TAP::m_initial, &PLL_OUTPUT_TAP::m_vco_tap, &PLL_OUTPUT_TAP::m_high,
              &PLL_OUTPUT_TAP::m_low, &PLL_OUTPUT_TAP::m_count, &PLL_OUTPUT_TAP::m_delay,
              &PLL_OUTPUT_TAP::m_next_duty_cycle, &PLL_OUTPUT_TAP::m_prev_duty_cycle,
              &PLL_OUTPUT_TAP::m_smallest_duty_cycle_min,
              &PLL_OUTPUT_TAP::m_largest_duty_cycle_max}) {
            list.add_int("tap", [=](VICTIM& v) -> int& { return v.m_pll.m_taps[tap].*field; });
        }
        for (double PLL_OUTPUT_TAP::*field :
             {&PLL_OUTPUT_TAP::m_next_phase_degree, &PLL_OUTPUT_TAP::m_prev_phase_degree,
              &PLL_OUTPUT_TAP::m_delta_phase}) {
            list.add_double("tap",
                            [=](VICTIM& v) -> double& { return v.m_pll.m_taps[tap].*field; });
        }
    }
}

void add_pll_fields(FIELD_LIST& list)
{
    for (int PLL::*field :
         {&PLL::m_ss_cycles, &PLL::m_ss_counter_max, &PLL::m_user_taps_count,
          &PLL::m_total_taps_count, &PLL::m_max_taps_count, &PLL::m_feedback_tap,
          &PLL::m_pfd_min_period, &PLL::m_pfd_max_period, &PLL::m_fin_min_period,
          &PLL::m_ss_charge_pump_current, &PLL::m_vco_post_scale, &PLL::m_max_vco_post_scale}) {
        list.add_int("pll", [field](VICTIM& v) -> int& { return v.m_pll.*field; });
    }
    for (double PLL::*field :
         {&PLL::m_cost, &PLL::m_delta_phase, &PLL::m_delta_vco_period, &PLL::m_c_fixed, &PLL::m_r,
          &PLL::m_c_high, &PLL::m_i, &PLL::m_i_min, &PLL::m_ss_bandwidth, &PLL::m_low_bandwidth,
          &PLL::m_medium_bandwidth, &PLL::m_high_bandwidth, &PLL::m_vco_period}) {
        list.add_double("pll", [field](VICTIM& v) -> double& { return v.m_pll.*field; });
    }
    for (int scale = 1; scale <= PLL_VCO_POST_SCALE_MAX; ++scale) {
        for (int(PLL::*field)[3] : {&PLL::m_vco_min_period, &PLL::m_vco_max_period,
                                    &PLL::m_vco_center_period, &PLL::m_ss_vco_max_period}) {
            list.add_int("vco", [=](VICTIM& v) -> int& { return (v.m_pll.*field)[scale]; });
        }
        list.add_double("gain", [=](VICTIM& v) -> double& { return v.m_pll.m_kvco[scale]; });
    }
}

void add_device_fields(FIELD_LIST& list)
{
    for (int PLL_BASIC_INFO::*field :
         {&PLL_BASIC_INFO::m_m_counter_preferred_min, &PLL_BASIC_INFO::m_m_counter_preferred_max,
          &PLL_BASIC_INFO::m_bandwidth_pfd_min_frequency_multiplier}) {
        list.add_int("device", [field](VICTIM& v) -> int& { return v.m_device.m_info.*field; });
    }
    list.add_double("device",
                    [](VICTIM& v) -> double& { return v.m_device.m_info.m_spe_ratio_constant_x; });
    for (int PLL_BANDWIDTH_SETTING::*field :
         {&PLL_BANDWIDTH_SETTING::m_m, &PLL_BANDWIDTH_SETTING::m_charge_pump_current,
          &PLL_BANDWIDTH_SETTING::m_loop_filter_resistor,
          &PLL_BANDWIDTH_SETTING::m_loop_filter_capacitor}) {
        list.add_int("row", [field](VICTIM& v) -> int& {
            return v.m_device.m_info.m_bandwidth_settings_table[2].m_settings[0]->*field;
        });
    }
    for (double PLL_BANDWIDTH_SETTING::*field :
         {&PLL_BANDWIDTH_SETTING::m_typical_bandwidth, &PLL_BANDWIDTH_SETTING::m_fast_bandwidth}) {
        list.add_double("row", [field](VICTIM& v) -> double& {
            return v.m_device.m_info.m_bandwidth_settings_table[2].m_settings[0]->*field;
        });
    }
}

std::vector<FIELD> all_fields()
{
    FIELD_LIST list;
    add_request_fields(list);
    add_counter_fields(list);
    add_pll_fields(list);
    add_device_fields(list);
    return list.m_fields;
}

// What kind of request is spoilt, besides.
enum class SETTING
{
    PLAIN,
    CUSTOM_BANDWIDTH,
    TABLE,
    FEEDBACK,
    CASCADE,
    SPREAD
};
const SETTING SETTINGS[] = {SETTING::PLAIN,    SETTING::CUSTOM_BANDWIDTH, SETTING::TABLE,
                            SETTING::FEEDBACK, SETTING::CASCADE,          SETTING::SPREAD};

void prepare(VICTIM& victim, SETTING setting)
{
    switch (setting) {
    case SETTING::PLAIN:
        break;
    case SETTING::CUSTOM_BANDWIDTH:
        victim.m_request.m_bandwidth_type = 4;
        victim.m_request.m_bandwidth = 2e6;
        victim.clock(0).m_use_even_counter_mode = true;
        break;
    case SETTING::TABLE:
        victim.m_device.describe(victim.m_pll);
        victim.m_device.m_info.m_is_pfd_bandwidth_rule_an_error = true;
        victim.m_pll.m_max_vco_post_scale = 2;
        victim.m_request.m_bandwidth_type = 4;
        break;
    case SETTING::FEEDBACK:
        victim.m_request.m_feedback_tap = 0;
        victim.clock(0).m_use_even_counter_value = true;
        break;
    case SETTING::CASCADE:
        victim.m_pll.m_output_counter_cascade = true;
        victim.tap(0).m_max_count = 2;
        victim.tap(1).m_max_count = 2;
        break;
    case SETTING::SPREAD:
        victim.m_request.m_down_spread = 0.5;  // so that small M can tell it apart
        break;
    }
}

// Everything that the synthesis and the properties left, as text.
std::string run(SETTING setting, const SPOIL& spoil)
{
    VICTIM victim;
    prepare(victim, setting);
    spoil(victim);
    std::ostringstream text;
    text.precision(17);
    const bool met = victim.synthesize();
    text << met << ' ' << victim.m_pll.m_error << ' ' << victim.m_pll.m_vco_period << '\n';
    victim.m_pll.dump(text, false, false);
    victim.m_pll.dump(text, true, false);
    victim.m_pll.dump(text, true, true);
    PLL_PROP result(3);
    result.m_fin_period = victim.m_request.m_fin_period;
    result.set_properties_from_internals(victim.m_pll);
    result.dump(text, true, false);
    result.dump(text, false, false);
    result.dump(text, false, true);
    EXPECT_LE(PLL::PLL_NO_ERROR, victim.m_pll.m_error);
    EXPECT_GT(PLL::MAX_PLL_ERROR_TYPE, victim.m_pll.m_error);
    EXPECT_TRUE(met || victim.m_pll.m_error != PLL::PLL_NO_ERROR);
    if (met) {
        EXPECT_FALSE(victim.m_request.m_down_spread > 0.006);
        for (int i = 0; i < std::min(victim.m_request.m_taps_count, PLL_MAX_TAPS); ++i) {
            EXPECT_LT(0, victim.clock(i).m_mult);
            EXPECT_LT(0, victim.clock(i).m_div);
        }
    }
    return text.str();
}

void expect_defined_result(SETTING setting, const SPOIL& spoil)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
    const std::string first = run(setting, spoil);
    EXPECT_EQ(first, run(setting, spoil));
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
}

TEST(HostileSynthesis, IsMetUnspoilt)
{
    // Most settings can be met, so that spoiling one field reaches all steps.
    for (SETTING setting : {SETTING::PLAIN, SETTING::CUSTOM_BANDWIDTH, SETTING::TABLE}) {
        VICTIM victim;
        prepare(victim, setting);
        EXPECT_TRUE(victim.synthesize()) << static_cast<int>(setting);
    }
}

// Sets a field to each of the values, in every setting.
template <class VALUE, std::size_t COUNT>
void expect_defined_results(const FIELD& field, const VALUE (&values)[COUNT],
                            void (*set)(const FIELD& field, VICTIM& victim, VALUE value))
{
    SCOPED_TRACE(field.m_name);
    for (SETTING setting : SETTINGS) {
        for (VALUE value : values) {
            SCOPED_TRACE(value);
            expect_defined_result(setting, [&](VICTIM& v) { set(field, v, value); });
        }
    }
}

TEST(HostileSynthesis, TakesAnyIntInAnyField)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (const FIELD& field : all_fields()) {
        if (!field.m_is_double) {
            expect_defined_results<int>(
                field, HOSTILE_INTS, [](const FIELD& f, VICTIM& v, int i) { f.m_set_int(v, i); });
        }
    }
}

TEST(HostileSynthesis, TakesAnyDoubleInAnyField)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (const FIELD& field : all_fields()) {
        if (field.m_is_double) {
            expect_defined_results<double>(
                field, HOSTILE_DOUBLES,
                [](const FIELD& f, VICTIM& v, double d) { f.m_set_double(v, d); });
        }
    }
}

void spoil_some(VICTIM& victim, const std::vector<FIELD>& fields, unsigned seed)
{
    std::mt19937 random(seed);
    const std::size_t count = 2 + random() % 6;
    for (std::size_t i = 0; i < count; ++i) {
        const FIELD& field = fields[random() % fields.size()];
        if (field.m_is_double) {
            field.m_set_double(victim, HOSTILE_DOUBLES[random() % std::size(HOSTILE_DOUBLES)]);
        } else if (!field.m_is_counter_range) {
            field.m_set_int(victim, HOSTILE_INTS[random() % std::size(HOSTILE_INTS)]);
        } else {
            field.m_set_int(victim, static_cast<int>(random() % 24) - 8);
        }
    }
}

TEST(HostileSynthesis, TakesAnyValuesInSeveralFields)
{
    constexpr unsigned RUNS = 4000;
    const std::vector<FIELD> fields = all_fields();
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (unsigned seed = 0; seed < RUNS; ++seed) {
        SCOPED_TRACE(seed);
        expect_defined_result(SETTINGS[seed % std::size(SETTINGS)],
                              [&](VICTIM& v) { spoil_some(v, fields, seed); });
    }
}

void synthesize_with_components(const std::vector<int>& currents, const std::vector<int>& resistors,
                                double bandwidth)
{
    VICTIM victim;
    prepare(victim, SETTING::CUSTOM_BANDWIDTH);
    victim.m_request.m_bandwidth = bandwidth;
    victim.m_pll.clear_rci();
    for (int current : currents) {
        PLL::add_i(current);
    }
    for (int resistor : resistors) {
        PLL::add_r(resistor);
    }
    const bool met = victim.synthesize();
    EXPECT_EQ(!met, victim.m_pll.m_error != PLL::PLL_NO_ERROR);
}

TEST(HostileSynthesis, TakesAnyComponents)
{
    const std::vector<int> lists[] = {
        {}, {0}, {INT_MINIMUM}, {INT_MAXIMUM}, {INT_MINIMUM, INT_MAXIMUM}, {-1, 0, 1}};
    for (const std::vector<int>& currents : lists) {
        for (const std::vector<int>& resistors : lists) {
            for (double bandwidth : HOSTILE_DOUBLES) {
                synthesize_with_components(currents, resistors, bandwidth);
            }
        }
    }
}

TEST(HostileSynthesis, TakesMoreClocksThanThePllHas)
{
    EXPECTED_REPORTS reports;
    for (int pll_clocks : {0, 1, 10}) {
        for (int clocks : {1, 3, 10, 11, 1000, INT_MAXIMUM}) {
            SMALL_PLL box(pll_clocks, 4, 2);
            box.m_request.m_taps_count = clocks;
            EXPECT_TRUE(box.synthesize());
            // Every clock that there can be has its count of 2, and none lies beyond the record.
            for (int i = 0; i < std::min(clocks, PLL_MAX_TAPS); ++i) {
                EXPECT_EQ(2, box.tap(i).m_count);
            }
            if (clocks <= PLL_MAX_TAPS) {
                reports.expect_none();
            } else {
                reports.expect_only(
                    "m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count", "pll", 2);
            }
        }
    }
}

TEST(HostileSynthesis, TakesFewerThanNoClocks)
{
    for (int clocks : {-1, INT_MINIMUM}) {
        SMALL_PLL box(1, 4, 2);
        box.m_request.m_taps_count = clocks;
        EXPECTED_REPORTS reports;
        EXPECT_TRUE(box.synthesize());
        EXPECT_EQ(2U,
                  reports.count("m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count"));
    }
}

struct RATIO_CASE
{
    int m_mult;
    int m_div;
};

TEST(HostileSynthesis, NeverMeetsARatioThatIsNone)
{
    const RATIO_CASE ratios[] = {{0, 0},
                                 {0, 1},
                                 {1, 0},
                                 {-1, -1},
                                 {-1, 1},
                                 {1, -1},
                                 {INT_MINIMUM, INT_MINIMUM},
                                 {INT_MINIMUM, INT_MAXIMUM},
                                 {0, INT_MINIMUM}};
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (const RATIO_CASE& ratio : ratios) {
        for (int feedback : {-1, 0}) {
            SCOPED_TRACE(std::to_string(ratio.m_mult) + "/" + std::to_string(ratio.m_div));
            SMALL_PLL box(2, 4, 2);
            box.m_request.m_feedback_tap = feedback;
            box.set_ratio(0, ratio.m_mult, ratio.m_div);
            EXPECT_FALSE(box.synthesize());
            EXPECT_NE(PLL::PLL_NO_ERROR, box.m_pll.m_error);
        }
    }
}

TEST(HostileSynthesis, TakesAFeedbackTapOutOfRange)
{
    EXPECTED_REPORTS reports;
    for (int tap : {2, 9, 10, 11, 1000, INT_MAXIMUM}) {
        SCOPED_TRACE(tap);
        SMALL_PLL box(2, 4, 2);
        box.m_request.m_feedback_tap = tap;
        box.synthesize();
        EXPECT_EQ(tap, box.m_pll.m_feedback_tap);
        EXPECT_LT(0U, reports.count("pll->m_feedback_tap < pll->m_user_taps_count"));
        reports.accept_all();
    }
    for (int tap : {-2, INT_MINIMUM}) {
        SMALL_PLL box(2, 4, 2);
        box.m_request.m_feedback_tap = tap;
        EXPECT_TRUE(box.synthesize());
    }
}

}  // namespace
