#include "lean_loop.h"

#include "lean_table.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

namespace {

constexpr int BANDWIDTH_AUTO = 3;
constexpr int BANDWIDTH_CUSTOM = 4;
constexpr int SMALLEST_M = 2;
constexpr int CUT_OFF_FACTOR = 4;
constexpr int SMALL_M = 40;
constexpr double TOLERANCE_PS = 1.0;
constexpr double WORST = 1e300;
constexpr int FARTHEST = 0x40000000;
constexpr double COST_OF_INACCURACY = 8192.0;
constexpr double COST_OF_POST_SCALE = 65536.0;
constexpr double EVEN_M_BONUS_PS = 200.0;

struct PERIODS
{
    double m_vco_min, m_vco_max, m_vco_center;
    double m_pfd_min, m_pfd_max;
};

// Everything the loops need, read once.
struct JOB
{
    double m_fin;
    int m_m_max, m_n_min, m_n_max, m_post_scale_max;
    bool m_auto, m_custom;
    double m_bandwidth;
    int m_product_min, m_product_max;  // of current and resistor
    bool m_table;                      // a table chooses the loop filter
    bool m_rule_is_error;
};

JOB read_job(const PLL& limits, const PLL_PROP& request)
{
    JOB job = {};
    job.m_fin = request.m_fin_period;
    job.m_m_max = limits.m_m.m_max_count;
    job.m_n_min = limits.m_n.m_min_count;
    job.m_n_max = limits.m_n.m_max_count;
    job.m_post_scale_max = limits.m_max_vco_post_scale;
    job.m_auto = request.m_bandwidth_type == BANDWIDTH_AUTO;
    const PLL_BASIC_INFO* info = limits.m_info.m_basic_info;
    job.m_table = info != nullptr && info->m_use_bandwidth_settings_table;
    job.m_rule_is_error = job.m_table && info->m_is_pfd_bandwidth_rule_an_error;
    job.m_custom = request.m_bandwidth_type == BANDWIDTH_CUSTOM && !job.m_table;
    job.m_bandwidth = request.m_bandwidth;
    const PLL_IMPL& parts = *PLL::m_impl;
    job.m_product_min = parts.m_charge_pump_currents.front() * parts.m_resistors.front();
    job.m_product_max = parts.m_charge_pump_currents.back() * parts.m_resistors.back();
    return job;
}

PERIODS read_periods(const PLL& limits, int post_scale)
{
    return {limits.m_vco_min_period[post_scale] - TOLERANCE_PS,
            limits.m_vco_max_period[post_scale] + TOLERANCE_PS,
            double(limits.m_vco_center_period[post_scale]), limits.m_pfd_min_period - TOLERANCE_PS,
            limits.m_pfd_max_period + TOLERANCE_PS};
}

bool bandwidth_is_feasible(const JOB& job, double kvco, int m)
{
    const int product = int(2.0 * m * job.m_bandwidth * 3.14 / kvco);
    return job.m_product_min <= product && product <= job.m_product_max;
}

// Of equal costs: no larger N, a small M, a VCO near its centre, rather an even M.
bool wins_tie(const LEAN_ANSWER& best, double best_deviation, int m, int n, double deviation)
{
    if (n > best.m_n || (m > SMALL_M && best.m_m <= SMALL_M)) {
        return false;
    }
    double bias = 0.0;
    if (m % 2 != best.m_m % 2) {
        bias = m % 2 == 0 ? EVEN_M_BONUS_PS : -EVEN_M_BONUS_PS;
    }
    return bias + best_deviation > deviation;
}

class SEARCH
{
public:
    SEARCH(const PLL& limits, const PLL_PROP& request, const JOB& job)
        : m_limits(limits),
          m_request(request),
          m_job(job),
          m_clocks(read_lean_clocks(limits, request)),
          m_cut_off(double(job.m_m_max) + 1.0),
          m_best_deviation(WORST),
          m_miss(FARTHEST),
          m_best{}
    {
        m_best.m_m = 1;
        m_best.m_n = 1;
        m_best.m_error = WORST;
        m_best.m_cost = WORST;
    }

    const LEAN_ANSWER& run()
    {
        for (int post_scale = 1; post_scale <= m_job.m_post_scale_max; ++post_scale) {
            const PERIODS periods = read_periods(m_limits, post_scale);
            const double kvco = m_limits.m_kvco[post_scale];
            for (int m = SMALLEST_M; m <= m_job.m_m_max; ++m) {
                if (m_job.m_auto && CUT_OFF_FACTOR * m_cut_off < m) {
                    break;
                }
                try_dividers(post_scale, m, periods,
                             m_job.m_custom && !bandwidth_is_feasible(m_job, kvco, m));
            }
        }
        std::copy_n(m_clocks.m_carried, PLL_MAX_TAPS, m_best.m_carried);
        return m_best;
    }

private:
    void try_dividers(int post_scale, int m, const PERIODS& periods, bool barred)
    {
        if (barred && m_best.m_found) {
            return;
        }
        for (int n = m_job.m_n_min; n <= m_job.m_n_max; ++n) {
            const double pfd = m_job.m_fin * n;
            const double vco = pfd / m;
            const bool too_slow = vco > periods.m_vco_max || pfd > periods.m_pfd_max;
            if (too_slow || vco < periods.m_vco_min || pfd < periods.m_pfd_min) {
                if (!m_best.m_found) {
                    take_miss(periods, m, n, vco);
                }
                if (too_slow) {
                    return;
                }
            } else if (!barred) {
                offer(post_scale, m, n, vco - periods.m_vco_center);
            }
        }
    }

    void take_miss(const PERIODS& periods, int m, int n, double vco)
    {
        const int over = int(vco - (periods.m_vco_max - TOLERANCE_PS));
        const int under = int(periods.m_vco_min + TOLERANCE_PS - vco);
        const int distance = std::max(over, 0) + std::max(under, 0);
        if (distance < m_miss) {
            m_miss = distance;
            m_best.m_m = m;
            m_best.m_n = n;
        }
    }

    void offer(int post_scale, int m, int n, double deviation)
    {
        LEAN_COUNTER counters[PLL_MAX_TAPS];
        const LEAN_SCORE score = assign_lean_counters(m_clocks, m, n, counters);
        if (score.m_error != 0.0) {
            if (score.m_error < m_best.m_error) {
                m_best.m_error = score.m_error;
                take(post_scale, m, n, counters);
            }
            return;
        }
        m_best.m_exact = true;
        m_best.m_error = 0.0;
        ++m_best.m_met;
        offer_exact(post_scale, m, n, std::fabs(deviation), score.m_relative, counters);
    }

    void offer_exact(int post_scale, int m, int n, double deviation, double relative,
                     LEAN_COUNTER* counters)
    {
        bool may_cut_off = relative <= DBL_EPSILON;
        double cost = may_cut_off ? 0.0 : relative / LEAN_MET + COST_OF_INACCURACY;
        cost += (post_scale - 1) * COST_OF_POST_SCALE;
        LEAN_ROW_CHOICE choice = {nullptr, 0.0, true};
        if (m_job.m_table) {
            choice = choose_lean_row(m_limits, m_request, m * post_scale, n);
            cost += choice.m_cost;
            may_cut_off = may_cut_off &&
                          !(m_job.m_rule_is_error && (choice.m_row == nullptr || !choice.m_within));
        }
        cost = place_lean_phases(&m_clocks, m, n, cost, counters);
        if (cost < m_best.m_cost ||
            (cost == m_best.m_cost && wins_tie(m_best, m_best_deviation, m, n, deviation))) {
            m_best.m_cost = cost;
            m_best.m_row = choice.m_row;
            m_best_deviation = deviation;
            take(post_scale, m, n, counters);
        }
        if (may_cut_off && m < m_cut_off) {
            m_cut_off = m;
        }
    }

    void take(int post_scale, int m, int n, const LEAN_COUNTER* counters)
    {
        m_best.m_found = true;
        m_best.m_post_scale = post_scale;
        m_best.m_m = m;
        m_best.m_n = n;
        std::copy_n(counters, m_clocks.m_count, m_best.m_counters);
    }

    const PLL& m_limits;
    const PLL_PROP& m_request;
    const JOB& m_job;
    LEAN_CLOCKS m_clocks;
    double m_cut_off;  // smallest M that met every clock to the last digit
    double m_best_deviation;
    int m_miss;  // ps to the nearest illegal VCO
    LEAN_ANSWER m_best;
};

bool is_smaller(const LEAN_RATIO& a, const LEAN_RATIO& b)
{
    return std::int64_t(a.m_mult) * b.m_div < std::int64_t(b.m_mult) * a.m_div;
}

bool is_equal(const LEAN_RATIO& a, const LEAN_RATIO& b)
{
    return a.m_mult == b.m_mult && a.m_div == b.m_div;
}

template <class TAKE>
void take_row(const PLL& limits, const PERIODS& periods, int fin_period, int m, TAKE take)
{
    for (int n = limits.m_n.m_min_count; n <= limits.m_n.m_max_count; ++n) {
        const double pfd = double(fin_period) * n;
        const double vco = pfd / m;
        if (vco > periods.m_vco_max || pfd > periods.m_pfd_max) {
            return;
        }
        if (vco >= periods.m_vco_min && pfd >= periods.m_pfd_min) {
            const int divisor = std::gcd(m, n);
            take(LEAN_RATIO{m / divisor, n / divisor});
        }
    }
}

template <class TAKE>
void for_each_legal_pair(const PLL& limits, int fin_period, TAKE take)
{
    for (int post_scale = 1; post_scale <= limits.m_max_vco_post_scale; ++post_scale) {
        const PERIODS periods = read_periods(limits, post_scale);
        for (int m = SMALLEST_M; m <= limits.m_m.m_max_count; ++m) {
            take_row(limits, periods, fin_period, m, take);
        }
    }
}

}  // namespace

LEAN_ANSWER lean_synthesis(const PLL& limits, const PLL_PROP& request)
{
    const JOB job = read_job(limits, request);
    return SEARCH(limits, request, job).run();
}

void lean_vco_ratios(const PLL& limits, int fin_period, std::vector<LEAN_RATIO>* ratios)
{
    ratios->clear();
    for_each_legal_pair(limits, fin_period,
                        [ratios](const LEAN_RATIO& ratio) { ratios->push_back(ratio); });
    std::sort(ratios->begin(), ratios->end(), is_smaller);
    ratios->erase(std::unique(ratios->begin(), ratios->end(), is_equal), ratios->end());
}

void INSERTED_RATIOS::list(const PLL& limits, int fin_period)
{
    m_mults.reset();
    m_divs.reset();
    m_count = 0;
    for_each_legal_pair(limits, fin_period, [this](const LEAN_RATIO& ratio) { insert(ratio); });
}

void INSERTED_RATIOS::insert(const LEAN_RATIO& ratio)
{
    for (std::size_t i = 0; i < m_count; ++i) {
        if (m_mults[i] == ratio.m_mult && m_divs[i] == ratio.m_div) {
            return;
        }
    }
    std::size_t place = 0;
    while (place < m_count && is_smaller({m_mults[place], m_divs[place]}, ratio)) {
        ++place;
    }
    m_mults = with_one_more(m_mults, place, ratio.m_mult);
    m_divs = with_one_more(m_divs, place, ratio.m_div);
    ++m_count;
}

INSERTED_RATIOS::ARRAY INSERTED_RATIOS::with_one_more(const ARRAY& array, std::size_t place,
                                                      int value) const
{
    ARRAY longer = std::make_unique_for_overwrite<int[]>(m_count + 1);
    std::copy_n(array.get(), place, longer.get());
    longer[place] = value;
    std::copy_n(array.get() + place, m_count - place, longer.get() + place + 1);
    return longer;
}
