#include "random_request.h"

#include "random_corner.h"
#include "random_hostile.h"

#include <algorithm>

namespace {

constexpr const char* KIND_NAMES[] = {
    "built-in", "small", "edge",   "phase", "table",  "filter", "spread", "feedback", "cascade",
    "wide",     "crowd", "border", "hair",  "beyond", "walked", "mixed",  "hostile"};

// The counters that the request is built around; often, but not always, they can be had.
struct HIDDEN_ANSWER
{
    int m_m;
    int m_n;
    double m_vco_period;
};

class GENERATOR
{
public:
    GENERATOR(RANDOM_CASE* made, RANDOM* random)
        : m_case(*made), m_pll(made->m_pll), m_request(made->m_request), m_random(*random)
    {
    }

    void run();

private:
    bool is(CASE_KIND kind) const { return m_case.m_kind == kind; }

    // A feature that one kind is about and the mixed one has at times.
    bool wants(CASE_KIND kind, int percent)
    {
        const bool mixed = is(CASE_KIND::MIXED) || is(CASE_KIND::WIDE) || is(CASE_KIND::HOSTILE);
        return is(kind) || m_random.chance(mixed ? percent : 2);
    }

    int pick_max()
    {
        return m_random.chance(70) ? m_random.between(4, 40) : m_random.between(1, 6);
    }

    void make_counters();
    void make_windows();
    void put_edge(int* minimum, int* maximum, double period);
    void make_built_in();
    void make_taps();
    int pick_count(int tap);
    void make_ratio(MODEL_CLOCK* clock, int count);
    void make_phase(MODEL_CLOCK* clock);
    void make_second_input();
    void make_feedback();
    void make_bandwidth();
    void make_parts();
    void make_device();
    void make_table();
    void make_row(MODEL_ROW* row, int m);
    void make_spread();
    void make_delays();
    void make_vco_wish();

    RANDOM_CASE& m_case;
    MODEL_PLL& m_pll;
    MODEL_PROP& m_request;
    RANDOM& m_random;
    HIDDEN_ANSWER m_answer = {2, 1, 1500.0};
};

void GENERATOR::make_counters()
{
    m_pll.m_m.m_max_count = std::max(pick_max(), 2);
    m_pll.m_n.m_max_count = pick_max();
    if (is(CASE_KIND::SPREAD)) {
        m_pll.m_m.m_max_count = m_random.between(200, 700);
        m_pll.m_n.m_max_count = m_random.between(1, 4);
    }
    if (m_random.chance(3)) {
        m_pll.m_m.m_max_count = m_random.between(1, 3);
    }
    if (is(CASE_KIND::WIDE)) {
        m_pll.m_m.m_max_count = m_random.between(60, 200);
        m_pll.m_n.m_max_count = m_random.between(30, 150);
    }
    m_pll.m_n.m_min_count = m_random.chance(10) ? m_random.between(1, 3) : 1;
    // Small answers of wide counters have multiples, and meet the end of the search for high M.
    const int reach = is(CASE_KIND::WIDE) && m_random.chance(60) ? 20 : 1;
    m_answer.m_m = m_random.between(2, std::max(2, m_pll.m_m.m_max_count / reach));
    m_answer.m_n = m_random.between(1, std::max(1, m_pll.m_n.m_max_count / reach));
    m_answer.m_vco_period = m_random.between(900, 3400);
    const double fin = m_answer.m_vco_period * m_answer.m_m / m_answer.m_n;
    m_request.m_fin_period = std::max(1, static_cast<int>(fin));
    if (m_random.chance(15)) {
        m_pll.m_max_vco_post_scale = m_random.between(0, 2);
    }
    if (m_random.chance(15)) {
        m_pll.m_m.m_max_vco_tap = m_random.between(0, 7);
    }
}

// Ends a window on a period, or up to two picoseconds beside it.
void GENERATOR::put_edge(int* minimum, int* maximum, double period)
{
    const int at = static_cast<int>(period) + m_random.between(-2, 2);
    if (m_random.chance(50)) {
        *minimum = at;
    } else {
        *maximum = at;
    }
    if (m_random.chance(15)) {
        *minimum = *maximum;
    }
}

void GENERATOR::make_windows()
{
    const double fin = m_request.m_fin_period;
    const int vco = static_cast<int>(fin * m_answer.m_n / m_answer.m_m);
    const int pfd = static_cast<int>(fin * m_answer.m_n);
    for (int scale = 0; scale < 3; ++scale) {
        const int width = m_random.chance(50) ? 100 : 1500;
        m_pll.m_vco_min_period[scale] = vco - m_random.between(0, width);
        m_pll.m_vco_max_period[scale] = vco + m_random.between(0, width);
        m_pll.m_vco_center_period[scale] = vco + m_random.between(-width, width);
        m_pll.m_ss_vco_max_period[scale] =
            m_random.chance(10) ? MODEL_UNSET : vco + m_random.between(0, width);
        if (wants(CASE_KIND::EDGE, 10)) {
            put_edge(&m_pll.m_vco_min_period[scale], &m_pll.m_vco_max_period[scale], vco);
        }
    }
    m_pll.m_pfd_min_period = m_random.chance(60) ? 1 : pfd / 2;
    m_pll.m_pfd_max_period = m_random.chance(60) ? 333333 : pfd + m_random.between(0, pfd);
    if (wants(CASE_KIND::EDGE, 10) && m_random.chance(60)) {
        put_edge(&m_pll.m_pfd_min_period, &m_pll.m_pfd_max_period, pfd);
    }
    if (m_random.chance(4)) {  // nothing fits
        m_pll.m_vco_max_period[1] = m_pll.m_vco_min_period[1] - m_random.between(3, 50);
    }
    if (m_random.chance(70)) {
        m_pll.m_fin_min_period = m_random.between(1, m_request.m_fin_period);
    }
}

void GENERATOR::make_built_in()
{
    m_answer.m_m = m_random.between(2, 60);
    m_answer.m_n = m_random.between(1, 8);
    constexpr int PERIODS[] = {651, 1000, 3000, 5000, 6734, 8000, 10000, 20000, 37037, 40000};
    m_request.m_fin_period = PERIODS[m_random.between(0, 9)];
}

// A divisor for one output; in cascades beyond what a counter can hold.
int GENERATOR::pick_count(int tap)
{
    const int max_count = m_pll.m_taps[tap].m_max_count;
    if (is(CASE_KIND::CROWD)) {
        return m_random.between(100, std::max(100, max_count));
    }
    if (m_random.chance(10)) {
        return 1;
    }
    if (m_pll.m_output_counter_cascade && m_random.chance(60)) {
        return m_random.between(1, 2 * max_count) * m_random.between(1, 2 * max_count);
    }
    return m_random.between(1, std::max(1, 2 * max_count + (m_random.chance(10) ? 2 : 0)));
}

void GENERATOR::make_ratio(MODEL_CLOCK* clock, int count)
{
    clock->m_mult = m_answer.m_m;
    clock->m_div = m_answer.m_n * count;
    const int style = m_random.between(0, 99);
    if (style < 15) {  // about a thousandth off, on either side
        const int off = m_random.between(-2, 2);
        const int scale = m_random.between(990, 1200);
        clock->m_mult = clock->m_mult * scale + off * m_answer.m_m;
        clock->m_div *= scale;
    } else if (style < 20) {
        clock->m_mult = m_random.between(1, 20);
        clock->m_div = m_random.between(1, 20);
    } else if (style < 22) {
        clock->m_mult = m_random.between(1, 100000);
    } else if (style < 50) {
        const int common = m_random.between(1, 9);
        clock->m_mult *= common;
        clock->m_div *= common;
    }
}

void GENERATOR::make_phase(MODEL_CLOCK* clock)
{
    const bool about_phase = wants(CASE_KIND::PHASE, 50);
    if (about_phase) {
        const double step = 45.0 * m_answer.m_n / m_answer.m_m;
        const int style = m_random.between(0, 2);
        if (style == 0) {
            clock->m_phase = m_random.between(-360, 360);
        } else if (style == 1) {
            clock->m_phase = m_random.between(-20, 60) * step;
        } else {
            clock->m_phase = m_random.fraction() * 900.0 - 360.0;
        }
    }
    if (about_phase || m_random.chance(20)) {
        clock->m_duty = m_random.between(0, 100);
    }
    if (about_phase && m_random.chance(15)) {
        clock->m_has_sclkout_phase = true;
        clock->m_sclkout_phase = m_random.between(-8, 16) * 45.0 * m_random.fraction();
    }
    clock->m_use_even_counter_mode = m_random.chance(about_phase ? 20 : 3);
    clock->m_use_even_counter_value = m_random.chance(about_phase ? 20 : 3);
}

void GENERATOR::make_taps()
{
    const bool few = is(CASE_KIND::BUILT_IN) || m_random.chance(70);
    const int taps = m_random.between(m_random.chance(3) ? 0 : 1, few ? 3 : MODEL_MAX_TAPS);
    m_request.m_taps_count = taps;
    m_pll.m_user_taps_count = taps;
    m_pll.m_total_taps_count = taps;
    m_pll.m_max_taps_count =
        m_random.chance(50) ? MODEL_MAX_TAPS : m_random.between(taps, MODEL_MAX_TAPS);
    m_pll.m_output_counter_cascade = wants(CASE_KIND::CASCADE, 20);
    int max_count = is(CASE_KIND::CASCADE) ? m_random.between(1, 8) : pick_max();
    if (is(CASE_KIND::CROWD)) {
        max_count = 900;
    }
    for (int i = 0; i < taps; ++i) {
        if (!is(CASE_KIND::BUILT_IN)) {
            m_pll.m_taps[i].m_max_count = m_random.chance(90) ? max_count : pick_max();
        }
        MODEL_CLOCK& clock = m_request.m_taps[i];
        const bool built_in = is(CASE_KIND::BUILT_IN);
        make_ratio(&clock, built_in ? m_random.between(1, 30) : pick_count(i));
        make_phase(&clock);
    }
}

void GENERATOR::make_second_input()
{
    if (!m_random.chance(12)) {
        return;
    }
    const int fin = m_request.m_fin_period;
    m_request.m_fin2_period = m_random.chance(80) ? fin + m_random.between(-fin / 8, fin / 8)
                                                  : m_random.between(-5, 2 * fin);
}

void GENERATOR::make_feedback()
{
    if (!wants(CASE_KIND::FEEDBACK, 12) || m_request.m_taps_count == 0) {
        return;
    }
    const int tap = m_random.between(0, m_request.m_taps_count - 1);
    m_request.m_feedback_tap = tap;
    if (m_random.chance(75)) {  // a divisor of M, so that the feedback can be exact
        int count = m_random.between(1, m_answer.m_m);
        while (m_answer.m_m % count != 0) {
            --count;
        }
        m_request.m_taps[tap].m_mult = m_answer.m_m;
        m_request.m_taps[tap].m_div = m_answer.m_n * count;
    }
    if (m_random.chance(5)) {
        m_request.m_feedback_tap = m_random.between(-3, 14);
    }
}

void GENERATOR::make_parts()
{
    if (!wants(CASE_KIND::FILTER, 25)) {
        return;
    }
    for (std::vector<int>* list : {&m_case.m_parts.m_currents, &m_case.m_parts.m_resistors}) {
        if (m_random.chance(40)) {
            continue;
        }
        const int step = list == &m_case.m_parts.m_currents ? 60 : 6000;
        list->clear();
        int value = 0;
        for (int left = m_random.between(m_random.chance(20) ? 0 : 1, 6); left > 0; --left) {
            value += m_random.between(1, step);
            list->push_back(value);
        }
    }
    m_pll.m_i_min = m_random.chance(50) ? 4.0 : m_random.between(1, 120);
    m_pll.m_kvco[1] = m_random.between(200, 4000);
    m_pll.m_kvco[2] = m_random.between(200, 4000);
    m_pll.m_c_fixed = m_random.between(100, 1000);
    m_pll.m_c_high = m_random.chance(50) ? m_random.between(1, 40) : m_random.between(40, 900);
}

void GENERATOR::make_bandwidth()
{
    if (m_random.chance(is(CASE_KIND::BUILT_IN) || is(CASE_KIND::FILTER) ? 90 : 40)) {
        m_request.m_bandwidth_type = m_random.between(0, 4);
    }
    if (m_random.chance(2)) {
        m_request.m_bandwidth_type = m_random.chance(50) ? 5 : -1;
    }
    m_request.m_bandwidth = m_random.between(1, 300) * 10000.0;
    if (m_random.chance(30)) {
        m_pll.m_low_bandwidth = m_random.between(5, 60) * 10000.0;
        m_pll.m_medium_bandwidth = m_random.between(20, 150) * 10000.0;
        m_pll.m_high_bandwidth = m_random.between(60, 300) * 10000.0;
    }
}

void GENERATOR::make_row(MODEL_ROW* row, int m)
{
    row->m_m = m_random.chance(98) ? m : m + 1;
    row->m_charge_pump_current = m_random.chance(1) ? 0 : m_random.between(1, 2) * 20;
    row->m_loop_filter_resistor = m_random.between(1, 2) * 1000;
    row->m_loop_filter_capacitor = m_random.chance(30) ? -1 : m_random.between(0, 4) * 5;
    row->m_typical_bandwidth = m_random.between(1, 60) * 50000.0;
    row->m_fast_bandwidth = row->m_typical_bandwidth * (1.0 + m_random.fraction());
    row->m_slow_bandwidth = row->m_typical_bandwidth * m_random.fraction();
    if (m_random.chance(20)) {
        std::swap(row->m_fast_bandwidth, row->m_slow_bandwidth);
    }
    row->m_typical_phase_margin = m_random.between(40, 60);
    row->m_fast_phase_margin = m_random.between(40, 60);
    row->m_slow_phase_margin = m_random.between(40, 60);
    row->m_typical_jitter_peaking = m_random.fraction();
    row->m_fast_jitter_peaking = m_random.fraction();
    row->m_slow_jitter_peaking = m_random.fraction();
}

void GENERATOR::make_table()
{
    MODEL_DEVICE& device = m_case.m_device;
    device.m_use_bandwidth_settings_table = m_random.chance(95);
    const int size = m_random.chance(80) ? 2 * m_pll.m_m.m_max_count + 1
                                         : m_random.between(0, m_pll.m_m.m_max_count);
    device.m_table.resize(static_cast<std::size_t>(size));
    for (int m = 0; m < size; ++m) {
        std::vector<MODEL_ROW>& rows = device.m_table[static_cast<std::size_t>(m)];
        rows.resize(static_cast<std::size_t>(m_random.chance(15) ? 0 : m_random.between(1, 4)));
        for (MODEL_ROW& row : rows) {
            make_row(&row, m);
        }
    }
}

void GENERATOR::make_device()
{
    MODEL_DEVICE& device = m_case.m_device;
    const bool has_table = wants(CASE_KIND::TABLE, is(CASE_KIND::WIDE) ? 30 : 25);
    m_case.m_has_device = has_table || m_random.chance(15);
    if (!m_case.m_has_device) {
        return;
    }
    if (has_table) {
        make_table();
    }
    device.m_bandwidth_pfd_min_frequency_multiplier =
        m_random.chance(20) ? 0 : m_random.between(1, 20);
    device.m_is_pfd_bandwidth_rule_an_error = m_random.chance(30);
    if (m_random.chance(30)) {
        device.m_m_counter_preferred_min = m_random.between(0, m_pll.m_m.m_max_count);
    }
    if (m_random.chance(30)) {
        device.m_m_counter_preferred_max = m_random.between(0, m_pll.m_m.m_max_count);
    }
    if (m_random.chance(30)) {
        device.m_spe_ratio_constant_x = m_random.fraction() * 2.0;
    }
}

void GENERATOR::make_spread()
{
    if (!wants(CASE_KIND::SPREAD, 8)) {
        return;
    }
    m_request.m_down_spread = m_random.between(10, m_random.chance(90) ? 60 : 75) * 0.0001;
    if (m_random.chance(5)) {
        m_request.m_down_spread = 0.006;
    }
    if (m_random.chance(30)) {
        m_request.m_ss_period = m_random.between(1, 100000000);
    }
    m_pll.m_ss_supported = m_random.chance(80);
    m_pll.m_ss_charge_pump_current = m_random.chance(80) ? 90 : m_random.between(-1, 2);
    if (m_random.chance(30)) {
        m_pll.m_ss_bandwidth = m_random.between(1, 60) * 10000.0;
    }
}

void GENERATOR::make_delays()
{
    if (!m_random.chance(15)) {
        return;
    }
    const int middle = m_random.between(-4000, 4000);
    const int reach = m_random.chance(85) ? 1500 : 3000;
    for (int i = 0; i < m_request.m_taps_count; ++i) {
        m_request.m_taps[i].m_delay = middle + m_random.between(-reach, reach) / 2;
    }
    m_request.m_use_reconfig = m_random.chance(30);
    if (m_random.chance(20)) {
        m_pll.m_m.m_delay = m_random.between(-10, 3100);
    }
}

void GENERATOR::make_vco_wish()
{
    if (m_random.chance(12)) {
        m_request.m_vco_mult = m_random.chance(80) ? m_answer.m_m : m_random.between(0, 20);
        m_request.m_vco_div = m_random.chance(80) ? m_answer.m_n : m_random.between(0, 20);
    }
}

void GENERATOR::run()
{
    if (is(CASE_KIND::BUILT_IN)) {
        make_built_in();
    } else {
        make_counters();
        make_windows();
    }
    make_taps();
    make_second_input();
    make_feedback();
    make_bandwidth();
    make_parts();
    if (!is(CASE_KIND::BUILT_IN)) {
        make_device();
    }
    make_spread();
    make_delays();
    make_vco_wish();
    if (is(CASE_KIND::HOSTILE)) {
        make_hostile(&m_case, &m_random);
    }
    make_corner(&m_case, &m_random);
}

}  // namespace

std::uint64_t RANDOM::next()
{
    m_state += 0x9E3779B97F4A7C15U;
    std::uint64_t z = m_state;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
}

int RANDOM::between(int first, int last)
{
    const std::uint64_t span = static_cast<std::uint64_t>(std::int64_t{last} - first) + 1;
    return static_cast<int>(first + static_cast<std::int64_t>(next() % span));
}

bool RANDOM::chance(int percent)
{
    return between(0, 99) < percent;
}

double RANDOM::fraction()
{
    return static_cast<double>(next() >> 11U) / 9007199254740992.0;
}

const char* case_kind_name(CASE_KIND kind)
{
    return KIND_NAMES[static_cast<int>(kind)];
}

CASE_KIND find_case_kind(const std::string& name)
{
    int kind = 0;
    while (kind < static_cast<int>(CASE_KIND::COUNT) && name != KIND_NAMES[kind]) {
        ++kind;
    }
    return static_cast<CASE_KIND>(kind);
}

bool is_sane(CASE_KIND kind)
{
    return kind != CASE_KIND::HOSTILE && kind != CASE_KIND::BEYOND && kind != CASE_KIND::WALKED;
}

RANDOM_CASE make_random_case(CASE_KIND kind, std::uint64_t seed)
{
    RANDOM_CASE made;
    made.m_kind = kind;
    made.m_seed = seed;
    RANDOM random(seed * static_cast<std::uint64_t>(CASE_KIND::COUNT) +
                  static_cast<std::uint64_t>(kind));
    GENERATOR(&made, &random).run();
    return made;
}
