#include "lean_loop.h"

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
constexpr double EXACT = 1e-12;
constexpr double MET = 0.001;
constexpr double WORST = 1e300;
constexpr double COST_OF_INACCURACY = 8192.0;
constexpr double COST_OF_POST_SCALE = 65536.0;
constexpr double EVEN_M_BONUS_PS = 200.0;

struct PERIODS
{
    double m_vco_min, m_vco_max, m_vco_center;
    double m_pfd_min, m_pfd_max;
};

struct CLOCK
{
    double m_mult, m_div, m_ratio;
    int m_max_count;
};

// Everything the loops need, read once.
struct JOB
{
    double m_fin;
    int m_m_max, m_n_min, m_n_max, m_post_scale_max;
    bool m_auto, m_custom;
    double m_bandwidth;
    int m_product_min, m_product_max;  // of current and resistor
    int m_clock_count;
    CLOCK m_clocks[PLL_MAX_TAPS];
};

struct ERRORS
{
    double m_sum;       // of the clocks that miss
    double m_relative;  // of all clocks
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
    job.m_custom = request.m_bandwidth_type == BANDWIDTH_CUSTOM;
    job.m_bandwidth = request.m_bandwidth;
    const PLL_IMPL& parts = *PLL::m_impl;
    job.m_product_min = parts.m_charge_pump_currents.front() * parts.m_resistors.front();
    job.m_product_max = parts.m_charge_pump_currents.back() * parts.m_resistors.back();
    job.m_clock_count = request.m_taps_count;
    for (int i = 0; i < job.m_clock_count; ++i) {
        const PLL_USER_TAP& tap = request.m_taps[i];
        const double mult = tap.m_mult;
        const double div = tap.m_div;
        job.m_clocks[i] = {mult, div, mult / div, limits.m_taps[i].m_max_count};
    }
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

int counter_for(const CLOCK& clock, int m, int n)
{
    const double count = double(m) * clock.m_div / (double(n) * clock.m_mult) + 0.5;
    if (count < 1.0) {
        return 1;
    }
    constexpr int LARGEST = std::numeric_limits<int>::max();
    return count > LARGEST ? LARGEST : int(count);
}

// How far the halves of a counter exceed what it can count.
double excess_of(int count, int max_count)
{
    if (max_count == 1) {
        return count > 1 ? count : 0;
    }
    const int high = count / 2;
    const int low = count - high;
    return double(std::max(high - max_count, 0)) + double(std::max(low - max_count, 0));
}

ERRORS errors_of(const JOB& job, int m, int n)
{
    ERRORS errors = {0.0, 0.0};
    const double vco_ratio = double(m) / double(n);
    for (int i = 0; i < job.m_clock_count; ++i) {
        const CLOCK& clock = job.m_clocks[i];
        const int count = counter_for(clock, m, n);
        const double error = std::fabs(vco_ratio / count - clock.m_ratio);
        if (error >= EXACT) {
            const double relative = std::fabs(clock.m_div * error / clock.m_mult);
            errors.m_relative += relative;
            if (relative >= MET) {
                errors.m_sum += error;
            }
        }
        errors.m_sum += excess_of(count, clock.m_max_count);
    }
    return errors;
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
    SEARCH(const PLL& limits, const JOB& job)
        : m_limits(limits),
          m_job(job),
          m_cut_off(double(job.m_m_max) + 1.0),
          m_best_deviation(WORST),
          m_best{false, false, 0, 0, 0, WORST, 0, WORST}
    {
    }

    LEAN_ANSWER run()
    {
        for (int post_scale = 1; post_scale <= m_job.m_post_scale_max; ++post_scale) {
            const PERIODS periods = read_periods(m_limits, post_scale);
            const double kvco = m_limits.m_kvco[post_scale];
            for (int m = SMALLEST_M; m <= m_job.m_m_max; ++m) {
                if (m_job.m_auto && CUT_OFF_FACTOR * m_cut_off < m) {
                    break;
                }
                if (m_job.m_custom && !bandwidth_is_feasible(m_job, kvco, m)) {
                    continue;
                }
                try_dividers(post_scale, m, periods);
            }
        }
        return m_best;
    }

private:
    void try_dividers(int post_scale, int m, const PERIODS& periods)
    {
        for (int n = m_job.m_n_min; n <= m_job.m_n_max; ++n) {
            const double pfd = m_job.m_fin * n;
            const double vco = pfd / m;
            if (vco > periods.m_vco_max || pfd > periods.m_pfd_max) {
                return;
            }
            if (vco >= periods.m_vco_min && pfd >= periods.m_pfd_min) {
                offer(post_scale, m, n, std::fabs(vco - periods.m_vco_center));
            }
        }
    }

    void offer(int post_scale, int m, int n, double deviation)
    {
        const ERRORS errors = errors_of(m_job, m, n);
        if (errors.m_sum != 0.0) {
            if (errors.m_sum < m_best.m_error) {
                m_best = {true, false, post_scale, m, n, errors.m_sum, 0, WORST};
            }
            return;
        }
        ++m_best.m_met;
        double cost = 0.0;
        if (errors.m_relative > DBL_EPSILON) {
            cost += errors.m_relative / MET + COST_OF_INACCURACY;
        } else if (m < m_cut_off) {
            m_cut_off = m;
        }
        cost += (post_scale - 1) * COST_OF_POST_SCALE;
        if (cost < m_best.m_cost ||
            (cost == m_best.m_cost && wins_tie(m_best, m_best_deviation, m, n, deviation))) {
            m_best = {true, true, post_scale, m, n, 0.0, m_best.m_met, cost};
            m_best_deviation = deviation;
        }
    }

    const PLL& m_limits;
    const JOB& m_job;
    double m_cut_off;  // smallest M that met every clock to the last digit
    double m_best_deviation;
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

void append_ratios(const PLL& limits, const PERIODS& periods, int fin_period, int m,
                   std::vector<LEAN_RATIO>* ratios)
{
    for (int n = limits.m_n.m_min_count; n <= limits.m_n.m_max_count; ++n) {
        const double pfd = double(fin_period) * n;
        const double vco = pfd / m;
        if (vco > periods.m_vco_max || pfd > periods.m_pfd_max) {
            return;
        }
        if (vco >= periods.m_vco_min && pfd >= periods.m_pfd_min) {
            const int divisor = std::gcd(m, n);
            ratios->push_back({m / divisor, n / divisor});
        }
    }
}

}  // namespace

LEAN_ANSWER lean_synthesis(const PLL& limits, const PLL_PROP& request)
{
    const JOB job = read_job(limits, request);
    return SEARCH(limits, job).run();
}

void lean_vco_ratios(const PLL& limits, int fin_period, std::vector<LEAN_RATIO>* ratios)
{
    ratios->clear();
    for (int post_scale = 1; post_scale <= limits.m_max_vco_post_scale; ++post_scale) {
        const PERIODS periods = read_periods(limits, post_scale);
        for (int m = SMALLEST_M; m <= limits.m_m.m_max_count; ++m) {
            append_ratios(limits, periods, fin_period, m, ratios);
        }
    }
    std::sort(ratios->begin(), ratios->end(), is_smaller);
    ratios->erase(std::unique(ratios->begin(), ratios->end(), is_equal), ratios->end());
}
