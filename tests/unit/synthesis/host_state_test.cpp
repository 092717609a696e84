// What every exported operation that computes owes its host: the same bits in each rounding mode,
// flags and errno as they were, and no trap sprung.
#include "pll.h"
#include "pll_info.h"
#include "pll_manager.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "platform/host_state.h"
#include "synthesis_builders.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using namespace pll_internal;

namespace {

constexpr int ROUNDING_MODES[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
constexpr int FIN_PERIOD = 37037;  // ps

// What an operation gives, byte for byte.
class BYTES
{
public:
    template <class... NUMBER>
    void add(NUMBER... numbers)
    {
        (append(numbers), ...);
    }

    void add_text(const std::string& text) { m_bytes += text; }
    const std::string& get() const { return m_bytes; }

private:
    template <class NUMBER>
    void append(NUMBER number)
    {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        m_bytes.append(bytes, sizeof number);
    }

    std::string m_bytes;
};

struct OPERATION
{
    const char* m_name;
    std::function<void(BYTES*)> m_run;
};

// 27 MHz to 33/17 and 7/3 of it, at odd phases and duty cycles, with delays and a bandwidth.
struct ODD_REQUEST
{
    ODD_REQUEST() : m_pll(2, PLL_MAX_TAPS), m_request(2)
    {
        m_request.m_fin_period = FIN_PERIOD;
        m_request.m_bandwidth_type = 4;
        m_request.m_bandwidth = 777777.7;
        m_request.m_taps[0].m_mult = 33;
        m_request.m_taps[0].m_div = 17;
        m_request.m_taps[0].m_duty = 37;
        m_request.m_taps[1].m_mult = 7;
        m_request.m_taps[1].m_div = 3;
        m_request.m_taps[1].m_phase = 33.3;
        m_request.m_taps[1].m_delay = 333;
    }

    PLL m_pll;
    PLL_PROP m_request;
};

void add_fields(const PLL& pll, BYTES* bytes)
{
    bytes->add(pll.m_cost, pll.m_delta_phase, pll.m_delta_vco_period, pll.m_vco_period, pll.m_r,
               pll.m_i, pll.m_c_high, pll.m_m.m_count, pll.m_n.m_count);
    for (const PLL_OUTPUT_TAP& tap : pll.m_taps) {
        bytes->add(tap.m_count, tap.m_high, tap.m_initial, tap.m_vco_tap, tap.m_delta_phase,
                   tap.m_next_phase_degree, tap.m_prev_phase_degree, tap.m_next_duty_cycle,
                   tap.m_delay);
    }
}

void add_fields(const PLL_PROP& prop, BYTES* bytes)
{
    bytes->add(prop.m_bandwidth, prop.m_f_zero, prop.m_f_pole, prop.m_lock_min_period,
               prop.m_lock_max_period, prop.m_taps[0].m_phase, prop.m_taps[1].m_phase,
               prop.m_taps[1].m_delay);
}

void synthesize(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_pll.synthesize(box.m_request);
    add_fields(box.m_pll, bytes);
}

void synthesize_with_spread(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_request.m_down_spread = 0.005;
    box.m_pll.synthesize(box.m_request);
    add_fields(box.m_pll, bytes);
}

void take_properties(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_pll.synthesize(box.m_request);
    PLL_PROP result(2);
    result.m_fin_period = FIN_PERIOD;
    result.set_properties_from_internals(box.m_pll);
    add_fields(result, bytes);
}

void run_single_steps(BYTES* bytes)
{
    ODD_REQUEST box;
    PLL candidate(2, PLL_MAX_TAPS);
    box.m_pll.synthesize(box.m_request);
    candidate = box.m_pll;
    box.m_pll.synthesize_best_phase_and_duty_cycle(&candidate, box.m_request);
    box.m_pll.compute_phase_for_ui(&candidate, box.m_request, 0, 12.34);
    box.m_pll.compute_duty_cycle_for_ui(&candidate, box.m_request, 1, 43.21);
    candidate.correct_next_and_previous_values_for_ui();
    candidate.synthesize_delay_chains(box.m_request);
    add_fields(candidate, bytes);
    PLL_PROP result(2);
    result.compute_bandwidth(candidate);
    result.compute_user_delay_chains(candidate);
    add_fields(result, bytes);
}

void choose_row(BYTES* bytes)
{
    ODD_REQUEST box;
    DEVICE device(40);
    device.add_row(30, 333333.3, 444444.4);
    device.add_row(30, 555555.5, 666666.6);
    device.describe(box.m_pll);
    box.m_pll.m_m.m_count = 30;
    bytes->add(PLL::synthesize_best_bandwidth_using_table(&box.m_pll, box.m_request));
    add_fields(box.m_pll, bytes);
}

void ask(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_pll.synthesize(box.m_request);
    const PLL& pll = box.m_pll;
    bytes->add(pll.get_phase_degree_resolution(), pll.get_phase_ps_resolution(FIN_PERIOD),
               pll.get_phase_ps_min(1, FIN_PERIOD), pll.get_phase_ps_max(1, FIN_PERIOD),
               pll.get_sclkout_phase_ps_min_for_output(1, FIN_PERIOD),
               pll.get_sclkout_phase_ps_max_for_output(1, FIN_PERIOD),
               pll.get_next_phase_ps(1, FIN_PERIOD), pll.get_prev_phase_ps(1, FIN_PERIOD),
               pll.get_next_sclkout_phase_degree(1), pll.get_prev_sclkout_phase_degree(1));
    bytes->add(pll.get_next_sclkout_phase_ps(1, FIN_PERIOD),
               pll.get_prev_sclkout_phase_ps(1, FIN_PERIOD), pll.get_duty_cycle_resolution(0),
               pll.get_duty_cycle_min(0), pll.get_duty_cycle_max(0), pll.find_duty_cycle(0),
               pll.get_m_over_n());
}

void calculate(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_pll.synthesize(box.m_request);
    int vco_tap = 0;
    int start = 0;
    bytes->add(PLL_UTIL::phase_to_vco_tap_and_counter_start(&vco_tap, &start, 1000.7, 40), vco_tap,
               start, PLL_UTIL::phase_to_counter_start(&start, 1000.7, 3, 40), start,
               PLL_UTIL::user_phase(7, 33, &box.m_pll, 3, 5),
               pll_get_bandwidth_diff_cost(1.1e6, 0.3e6));
}

void list_ratios(BYTES* bytes)
{
    const PLL keeper(1, PLL_MAX_TAPS);
    PLL pll(1, PLL_MAX_TAPS);
    int* mults = nullptr;
    int* divs = nullptr;
    const int count = pll.find_vco_mult_div_values(&mults, &divs, FIN_PERIOD);
    for (int i = 0; i < count; ++i) {
        bytes->add(mults[i], divs[i]);
    }
}

void report(BYTES* bytes)
{
    ODD_REQUEST box;
    box.m_pll.synthesize(box.m_request);
    PLL_PROP result(2);
    result.m_fin_period = FIN_PERIOD;
    result.set_properties_from_internals(box.m_pll);
    std::ostringstream stream;
    stream.precision(15);
    box.m_pll.dump(stream, false, false);
    box.m_pll.dump(stream, false, true);
    box.m_pll.m_taps[0].dump(stream, true, false);
    box.m_request.dump(stream, true, false);
    result.dump(stream, false, true);
    result.m_taps[1].dump(stream, false);
    bytes->add_text(stream.str());
}

void read_numbers(BYTES* bytes)
{
    const PLL_MANAGER manager;
    char line[] = "0.1 1e-5 99999999999999999999 17";
    char* cursor = line;
    double real = 0;
    int number = 0;
    manager.find_float_token(&cursor, &real);
    bytes->add(real);
    manager.find_float_token(&cursor, &real);
    manager.find_number_token(&cursor, &number);
    bytes->add(real, number);
    std::istringstream stream("0.3 5 ");
    stream.imbue(std::locale::classic());
    pll_read_field(stream, real);
    pll_read_field(stream, number);
    bytes->add(real, number);
}

void read_database(BYTES* bytes)
{
    PLL_MANAGER manager;
    bytes->add(manager.read("."));
    PLL_QUERY query;
    query.m_family = "F";
    query.m_type = PLL_TYPE_ENUM::ENHANCED_PLL;
    PLL pll(1, PLL_MAX_TAPS);
    bytes->add(manager.init_pll(&pll, query));
    add_fields(pll, bytes);
}

const OPERATION OPERATIONS[] = {
    {"a synthesis", synthesize},
    {"a synthesis with spread spectrum", synthesize_with_spread},
    {"the properties of a result", take_properties},
    {"the steps of a synthesis", run_single_steps},
    {"a row of a table", choose_row},
    {"queries", ask},
    {"arithmetic", calculate},
    {"a list of ratios", list_ratios},
    {"reports", report},
    {"numbers of a file", read_numbers},
    {"a database", read_database},
};

// The current directory, with a small database in it.
class DATABASE
{
public:
    DATABASE()
    {
        write_file("ddb_pll_path.txt", "family \"F\" \"f.txt\"\n");
        write_file("f.txt", "family \"F\"\npll enhanced\nloop_filter_c 10.3\npart \"P\"\n"
                            "vco_min 500\nvco_max 1100\nvco_center 750\n");
    }

private:
    TEMP_WORKING_DIR m_dir;
};

std::string run(const OPERATION& operation)
{
    BYTES bytes;
    operation.m_run(&bytes);
    return bytes.get();
}

}  // namespace

TEST(HostStateOfOperations, DoesNotChangeAnAnswer)
{
    const DATABASE database;
    for (const OPERATION& operation : OPERATIONS) {
        const std::string expected = run(operation);
        EXPECT_FALSE(expected.empty());
        for (const int mode : ROUNDING_MODES) {
            std::fesetround(mode);
            const std::string bytes = run(operation);
            EXPECT_EQ(mode, std::fegetround());
            std::fesetround(FE_TONEAREST);
            EXPECT_TRUE(expected == bytes) << operation.m_name << " in rounding mode " << mode;
        }
    }
}

TEST(HostStateOfOperations, IsTheSameAfterwards)
{
    const DATABASE database;
    for (const OPERATION& operation : OPERATIONS) {
        for (const int raised : {0, FE_INVALID | FE_UNDERFLOW}) {
            SCOPED_TRACE(operation.m_name);
            std::feclearexcept(FE_ALL_EXCEPT);
            std::feraiseexcept(raised);
            errno = EDOM;
            run(operation);
            const int left = std::fetestexcept(FE_ALL_EXCEPT);
            EXPECT_EQ(EDOM, errno);
            EXPECT_EQ(raised, left & ~FE_INEXACT);
        }
    }
    std::feclearexcept(FE_ALL_EXCEPT);
}

// Beneath the surface too nothing is divided by zero that a sane host asked for.
TEST(HostStateOfOperations, SeesNoInvalidArithmetic)
{
    const DATABASE database;
    for (const OPERATION& operation : OPERATIONS) {
        std::feclearexcept(FE_ALL_EXCEPT);
        HOST_STATE::take_raised_flags();
        run(operation);
        EXPECT_EQ(0, HOST_STATE::take_raised_flags() & (FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW))
            << operation.m_name;
    }
}

#ifdef __GLIBC__
TEST(HostStateOfOperations, SpringsNoTrap)
{
    const DATABASE database;
    for (const OPERATION& operation : OPERATIONS) {
        const std::string expected = run(operation);
        std::feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
        const std::string bytes = run(operation);
        fedisableexcept(FE_ALL_EXCEPT);
        EXPECT_TRUE(expected == bytes) << operation.m_name;
    }
}
#endif

TEST(HostStateOfOperations, HoldsForHostileRequestsToo)
{
    PLL pll(1, PLL_MAX_TAPS);
    PLL_PROP request(1);
    request.m_taps[0].m_div = 0;
    request.m_vco_mult = 1;
    pll.m_n.m_count = 0;
    std::feclearexcept(FE_ALL_EXCEPT);
    errno = 0;
    pll.synthesize(request);
    pll.m_n.m_count = 0;
    pll.get_m_over_n();
    EXPECT_EQ(0, std::fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW));
    EXPECT_EQ(0, errno);
}
