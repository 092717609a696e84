// The search over post-scale, M and N, the ranking of candidates and the final checks.
#include "model.h"
#include "model_util.h"

#include <cfloat>
#include <cmath>
#include <cstdint>

namespace {

enum MODEL_ERROR
{
    NOT_FOUND = 1,
    COUNT_EXCEEDED = 3,
    RATIO_MISSED = 4,
    SPREAD_TOO_HIGH = 7,
    INPUT_OUT_OF_RANGE = 8,
    NO_BANDWIDTH_FOR_RATIO = 9,
    NO_BANDWIDTH_FOR_INPUT = 10
};

constexpr double WORST = 1e300;

struct MISS
{
    int m_distance = 0x40000000;
    int m_m = 1;
    int m_n = 1;
    double m_vco_period = 1000.0;
};

// The whole state of one synthesis.
struct RUN
{
    MODEL_PLL* m_self;
    const MODEL_PROP* m_request;
    std::vector<MODEL_VISIT>* m_visits;  // null: nobody asks
    MODEL_REPORTS* m_reports;
    MODEL_WISH m_wish;
    MODEL_PLL m_candidate;
    MODEL_PLL m_best;
    double m_best_error = WORST;
    double m_best_cost = WORST;
    double m_best_vco_deviation = WORST;
    bool m_found = false;
    bool m_taken = false;
    bool m_best_clamped = false;
    MISS m_miss;
    std::int64_t m_cut_off = 0;
    int m_min_product = 0;
    int m_max_product = 0;
};

bool uses_table(const MODEL_PLL& pll)
{
    return pll.m_device != nullptr && pll.m_device->m_use_bandwidth_settings_table;
}

void resolve_bandwidth(RUN* run)
{
    const MODEL_PROP& request = *run->m_request;
    MODEL_WISH& wish = run->m_wish;
    wish.m_table_mode = uses_table(*run->m_self);
    wish.m_down_spread_active = !(request.m_down_spread == 0.0);
    wish.m_bandwidth_type = request.m_bandwidth_type;
    wish.m_bandwidth = request.m_bandwidth;
    wish.m_product = 0;
    if (wish.m_table_mode) {
        return;
    }
    if (wish.m_down_spread_active) {
        wish.m_bandwidth_type = 4;
        wish.m_bandwidth = run->m_self->m_ss_bandwidth;
    } else if (wish.m_bandwidth_type == 1) {
        wish.m_bandwidth_type = 4;
        wish.m_bandwidth = run->m_self->m_medium_bandwidth;
    } else if (wish.m_bandwidth_type == 2) {
        wish.m_bandwidth_type = 4;
        wish.m_bandwidth = run->m_self->m_low_bandwidth;
    } else if (wish.m_bandwidth_type == 0) {
        wish.m_bandwidth_type = 4;
        wish.m_bandwidth = run->m_self->m_high_bandwidth;
    }
}

void find_product_range(RUN* run)
{
    const std::vector<int>& currents = run->m_wish.m_parts->m_currents;
    const std::vector<int>& resistors = run->m_wish.m_parts->m_resistors;
    const int first_i = currents.empty() ? 0 : currents.front();
    const int first_r = resistors.empty() ? 0 : resistors.front();
    const int last_i = currents.empty() ? 0 : currents.back();
    const int last_r = resistors.empty() ? 0 : resistors.back();
    run->m_min_product = model_multiply(first_i, first_r);
    run->m_max_product = model_multiply(last_i, last_r);
}

void check_limits(RUN* run)
{
    if (run->m_self->m_m.m_min_count != 1) {
        run->m_reports->push_back("this->m_m.m_min_count == 1");
    }
    if (run->m_self->m_max_vco_post_scale > MODEL_MAX_POST_SCALE) {
        run->m_reports->push_back("max_vco_post_scale <= PLL_VCO_POST_SCALE_MAX");
    }
}

void build_working_plls(RUN* run)
{
    run->m_self->m_feedback_tap = run->m_request->m_feedback_tap;
    const int taps = run->m_request->m_taps_count;
    for (int pll = 0; pll < 2; ++pll) {
        if (taps < 0 || taps > MODEL_MAX_TAPS) {
            run->m_reports->push_back(
                "m_user_taps_count >= 0 && m_user_taps_count <= m_max_taps_count");
        }
    }
    run->m_candidate = *run->m_self;
    run->m_best = *run->m_self;
}

struct LIMITS
{
    int m_vco_min;
    int m_vco_max;
    int m_vco_center;
    int m_pfd_min;
    int m_pfd_max;
};

LIMITS limits_at(const RUN& run, int post_scale)
{
    const MODEL_PLL& self = *run.m_self;
    LIMITS limits = {self.m_vco_min_period[post_scale], self.m_vco_max_period[post_scale],
                     self.m_vco_center_period[post_scale], self.m_pfd_min_period,
                     self.m_pfd_max_period};
    if (run.m_wish.m_down_spread_active && self.m_ss_supported &&
        self.m_ss_vco_max_period[post_scale] != MODEL_UNSET) {
        limits.m_vco_max = self.m_ss_vco_max_period[post_scale];
    }
    return limits;
}

bool in_ranges(const LIMITS& limits, double vco, double pfd)
{
    return limits.m_vco_min - 1.0 <= vco && vco <= limits.m_vco_max + 1.0 &&
           limits.m_pfd_min - 1.0 <= pfd && pfd <= limits.m_pfd_max + 1.0;
}

// True when M may be evaluated; also sets the current-resistor product of M.
bool is_m_admitted(RUN* run, int post_scale, std::int64_t m)
{
    MODEL_WISH& wish = run->m_wish;
    bool admitted = true;
    if (run->m_request->m_bandwidth_type == 3 && !wish.m_down_spread_active &&
        4 * run->m_cut_off < m) {
        admitted = false;
    }
    if (wish.m_bandwidth_type == 4 && !wish.m_table_mode) {
        wish.m_product = model_truncate(((2.0 * static_cast<double>(m) * wish.m_bandwidth) * 3.14) /
                                        run->m_self->m_kvco[post_scale]);
        if (wish.m_product < run->m_min_product || wish.m_product > run->m_max_product) {
            admitted = false;
        }
    }
    return admitted;
}

void offer_miss(RUN* run, const LIMITS& limits, const MODEL_POINT& point)
{
    const int over = model_truncate(point.m_vco_period - limits.m_vco_max);
    const int under = model_truncate(limits.m_vco_min - point.m_vco_period);
    const int distance = model_add(over > 0 ? over : 0, under > 0 ? under : 0);
    if (distance < run->m_miss.m_distance) {
        run->m_miss = {distance, point.m_m, point.m_n, point.m_vco_period};
    }
}

void add_device_penalties(RUN* run)
{
    MODEL_PLL& candidate = run->m_candidate;
    const MODEL_DEVICE* device = run->m_self->m_device;
    if (device == nullptr) {
        return;
    }
    const bool spread = run->m_wish.m_down_spread_active;
    const int preferred_min = device->m_m_counter_preferred_min;
    const int preferred_max = device->m_m_counter_preferred_max;
    if (preferred_min >= 0) {
        candidate.m_cost += candidate.m_m.m_count < preferred_min ? 5.0 : 0.0;
        candidate.m_cost += spread && candidate.m_m.m_ss_count < preferred_min ? 5.0 : 0.0;
    }
    if (preferred_max >= 0) {
        candidate.m_cost += candidate.m_m.m_count > preferred_max ? 5.0 : 0.0;
        candidate.m_cost += spread && candidate.m_m.m_ss_count > preferred_max ? 5.0 : 0.0;
    }
    if (device->m_spe_ratio_constant_x == DBL_MAX) {
        return;
    }
    int d = model_multiply(candidate.m_m.m_count, candidate.m_vco_post_scale);
    if (candidate.m_feedback_tap >= 0) {
        d = model_multiply(d,
                           model_tap_count(candidate, candidate.m_feedback_tap, *run->m_reports));
    }
    if (d / candidate.m_i > device->m_spe_ratio_constant_x) {
        candidate.m_cost += d / candidate.m_i + 32768.0;
    }
}

bool wins_tie(const RUN& run)
{
    const MODEL_PLL& candidate = run.m_candidate;
    const MODEL_PLL& best = run.m_best;
    if (candidate.m_n.m_count > best.m_n.m_count) {
        return false;
    }
    if (candidate.m_m.m_count > 40 && best.m_m.m_count <= 40) {
        return false;
    }
    const bool even = candidate.m_m.m_count % 2 == 0;
    const bool best_even = best.m_m.m_count % 2 == 0;
    double bias = 0.0;
    if (even != best_even) {
        bias = even ? 200.0 : -200.0;
    }
    return bias + run.m_best_vco_deviation > std::fabs(candidate.m_delta_vco_period);
}

void carry_neighbours(RUN* run)
{
    for (int i = 0; i < model_taps_to_walk(run->m_request->m_taps_count); ++i) {
        const MODEL_TAP& from = run->m_candidate.m_taps[i];
        MODEL_TAP& to = run->m_best.m_taps[i];
        to.m_next_phase_degree = from.m_next_phase_degree;
        to.m_prev_phase_degree = from.m_prev_phase_degree;
        to.m_next_duty_cycle = from.m_next_duty_cycle;
        to.m_prev_duty_cycle = from.m_prev_duty_cycle;
        to.m_smallest_duty_cycle_min = from.m_smallest_duty_cycle_min;
        to.m_largest_duty_cycle_max = from.m_largest_duty_cycle_max;
    }
}

// Costs and compares an exact candidate; false when it must not lower the cut-off.
bool rank_exact(RUN* run, const MODEL_SCORE& score, int post_scale)
{
    MODEL_PLL& candidate = run->m_candidate;
    run->m_best_error = 0.0;
    run->m_found = true;
    run->m_best_clamped = false;
    candidate.m_cost += score.m_cascade_penalty;
    if (score.m_relative_error_sum > DBL_EPSILON) {
        candidate.m_cost += score.m_relative_error_sum / 0.001 + 8192.0;
    }
    candidate.m_cost += (post_scale - 1) * 65536;
    bool may_lower_cut_off = true;
    if (run->m_wish.m_table_mode) {
        model_choose_row(&candidate, *run->m_request, *run->m_reports);
        if (run->m_self->m_device->m_is_pfd_bandwidth_rule_an_error &&
            (!candidate.m_bandwidth_legal_for_mult_div || !candidate.m_bandwidth_legal_for_fin)) {
            may_lower_cut_off = false;
        }
    }
    model_place_phases_and_duties(run->m_self, &candidate, *run->m_request, *run->m_reports);
    add_device_penalties(run);
    if (candidate.m_cost < run->m_best_cost) {
        run->m_best_cost = candidate.m_cost;
        run->m_best_vco_deviation = std::fabs(candidate.m_delta_vco_period);
        run->m_best = candidate;
        run->m_taken = true;
    } else if (candidate.m_cost == run->m_best_cost && wins_tie(*run)) {
        run->m_best_vco_deviation = std::fabs(candidate.m_delta_vco_period);
        run->m_best = candidate;
        run->m_taken = true;
    }
    carry_neighbours(run);
    return may_lower_cut_off;
}

void evaluate(RUN* run, const MODEL_POINT& point)
{
    const MODEL_SCORE score = model_assign_outputs(&run->m_candidate, *run->m_self, run->m_best,
                                                   point, run->m_wish, *run->m_reports);
    run->m_candidate.m_cost = score.m_error_sum;
    if (run->m_visits != nullptr) {
        run->m_visits->push_back({run->m_candidate.m_m.m_count, run->m_candidate.m_n.m_count});
    }
    if (score.m_error_sum != 0.0) {
        if (score.m_error_sum < run->m_best_error) {
            run->m_best_error = score.m_error_sum;
            run->m_found = true;
            run->m_best = run->m_candidate;
            run->m_best_clamped = score.m_clamped_while_exact;
        }
        return;
    }
    const bool may_lower_cut_off = rank_exact(run, score, point.m_post_scale);
    if (point.m_m < run->m_cut_off && may_lower_cut_off &&
        score.m_relative_error_sum < DBL_EPSILON) {
        run->m_cut_off = point.m_m;
    }
}

bool is_second_input_legal(const RUN& run, const LIMITS& limits, double m, double n)
{
    const int fin2 = run.m_request->m_fin2_period;
    return fin2 <= 0 || in_ranges(limits, (fin2 * n) / m, fin2 * n);
}

void search_n(RUN* run, int post_scale, std::int64_t m, bool admitted)
{
    MODEL_PLL& self = *run->m_self;
    const LIMITS limits = limits_at(*run, post_scale);
    const double fin = run->m_request->m_fin_period;
    const double dm = static_cast<double>(m);
    std::int64_t n = self.m_n.m_min_count;
    for (; n <= self.m_n.m_max_count; ++n) {
        const double dn = static_cast<double>(n);
        const double vco = (fin * dn) / dm;
        const double pfd = fin * dn;
        self.m_vco_period = vco;
        const MODEL_POINT point = {post_scale, static_cast<int>(m), static_cast<int>(n), vco,
                                   limits.m_vco_center};
        bool valid = is_second_input_legal(*run, limits, dm, dn);
        if (!in_ranges(limits, vco, pfd)) {
            valid = false;
            if (!run->m_found) {
                offer_miss(run, limits, point);
            }
        }
        if (vco > limits.m_vco_max + 1.0 || pfd > limits.m_pfd_max + 1.0) {
            n = self.m_n.m_max_count;
        }
        if (valid && admitted) {
            evaluate(run, point);
        }
    }
}

void search(RUN* run)
{
    const MODEL_PLL& self = *run->m_self;
    run->m_cut_off = std::int64_t{self.m_m.m_max_count} + 1;
    for (int scale = 1; scale <= self.m_max_vco_post_scale && scale <= MODEL_MAX_POST_SCALE;
         ++scale) {
        for (std::int64_t m = 2; m <= self.m_m.m_max_count; ++m) {
            const bool admitted = is_m_admitted(run, scale, m);
            if (run->m_wish.m_down_spread_active &&
                model_truncate(static_cast<double>(m) * run->m_request->m_down_spread) <= 0) {
                continue;
            }
            search_n(run, scale, m, admitted);
        }
    }
}

void finish_without_candidate(RUN* run)
{
    MODEL_PLL& self = *run->m_self;
    self.m_m.m_count = run->m_miss.m_m;
    self.m_n.m_count = run->m_miss.m_n;
    self.m_vco_period = run->m_miss.m_vco_period;
    for (int i = 0; i < model_taps_to_walk(run->m_request->m_taps_count); ++i) {
        MODEL_TAP& tap = self.m_taps[i];
        tap.m_next_phase_degree = 0.0;
        tap.m_prev_phase_degree = 0.0;
        tap.m_next_duty_cycle = 50;
        tap.m_prev_duty_cycle = 50;
        tap.m_smallest_duty_cycle_min = 50;
        tap.m_largest_duty_cycle_max = 50;
    }
}

void finish_inexact(RUN* run)
{
    MODEL_PLL& self = *run->m_self;
    self = run->m_best;
    model_place_phases_and_duties(&self, &self, *run->m_request, *run->m_reports);
    if (run->m_wish.m_table_mode) {
        model_choose_row(&self, *run->m_request, *run->m_reports);
    }
    model_correct_neighbours(&self);
}

bool finish_exact(RUN* run)
{
    MODEL_PLL& self = *run->m_self;
    const MODEL_PROP& request = *run->m_request;
    self = run->m_best;
    model_correct_neighbours(&self);
    if (run->m_wish.m_down_spread_active) {
        const int m = self.m_m.m_count;
        self.m_m.m_ss_count = model_subtract(m, model_truncate(m * request.m_down_spread + 0.5));
        self.m_n.m_ss_count = self.m_n.m_count;
        const int cycles = model_divide(request.m_ss_period, request.m_fin_period);
        self.m_ss_cycles = cycles < self.m_ss_counter_max ? cycles : self.m_ss_counter_max;
    }
    if (!run->m_wish.m_table_mode && run->m_wish.m_bandwidth_type != 3) {
        model_choose_loop_filter(&self, run->m_wish, *run->m_reports);
    }
    return model_place_delays(&self, request, *run->m_reports);
}

bool has_impossible_ratio(const MODEL_PROP& request)
{
    for (int i = 0; i < model_taps_to_walk(request.m_taps_count); ++i) {
        if (request.m_taps[i].m_mult < 1 || request.m_taps[i].m_div < 1) {
            return true;
        }
    }
    return false;
}

bool check_input_and_bandwidth(RUN* run)
{
    MODEL_PLL& self = *run->m_self;
    const int fin = run->m_request->m_fin_period;
    const int fin2 = run->m_request->m_fin2_period;
    if ((0 < fin && fin < self.m_fin_min_period) || (1 <= fin2 && fin2 < self.m_fin_min_period)) {
        self.m_error = INPUT_OUT_OF_RANGE;
        return false;
    }
    if (self.m_device != nullptr && self.m_device->m_is_pfd_bandwidth_rule_an_error) {
        if (!self.m_bandwidth_legal_for_fin) {
            self.m_error = NO_BANDWIDTH_FOR_INPUT;
            return false;
        }
        if (!self.m_bandwidth_legal_for_mult_div) {
            self.m_error = NO_BANDWIDTH_FOR_RATIO;
            return false;
        }
    }
    return true;
}

bool make_final_checks(RUN* run, bool result, int error)
{
    MODEL_PLL& self = *run->m_self;
    if (self.m_delta_phase / 360.0 * run->m_request->m_fin_period < 0.5) {
        self.m_delta_phase = 0.0;
    }
    if (error != 0) {
        self.m_error = error;
    }
    if (result && (!run->m_taken || has_impossible_ratio(*run->m_request))) {
        result = false;
        self.m_error = RATIO_MISSED;
    }
    if (run->m_request->m_down_spread > 0.006) {
        result = false;
        self.m_error = SPREAD_TOO_HIGH;
    }
    return result && check_input_and_bandwidth(run);
}

// In ascending order, each ratio once.
void list_ratio(const MODEL_RATIO& ratio, std::vector<MODEL_RATIO>* list)
{
    bool listed = false;
    std::size_t place = list->size();
    for (std::size_t i = list->size(); i-- > 0;) {
        const MODEL_RATIO& other = (*list)[i];
        listed = listed || (other.m_mult == ratio.m_mult && other.m_div == ratio.m_div);
        if (std::int64_t{other.m_mult} * ratio.m_div >= std::int64_t{other.m_div} * ratio.m_mult) {
            place = i;
        }
    }
    if (!listed) {
        list->insert(list->begin() + static_cast<std::ptrdiff_t>(place), ratio);
    }
}

void list_ratios_of_m(const MODEL_PLL& pll, const LIMITS& limits, int fin_period, int m,
                      std::vector<MODEL_RATIO>* list, MODEL_REPORTS& reports)
{
    for (int n = pll.m_n.m_min_count; n <= pll.m_n.m_max_count; ++n) {
        const double pfd = static_cast<double>(fin_period) * n;
        if (in_ranges(limits, pfd / m, pfd)) {
            MODEL_RATIO ratio = {};
            model_normalize(&ratio.m_mult, &ratio.m_div, m, n, reports);
            list_ratio(ratio, list);
        }
    }
}

}  // namespace

bool model_synthesize(MODEL_PLL* pll, const MODEL_PROP& request, const MODEL_PARTS& parts,
                      MODEL_REPORTS& reports, std::vector<MODEL_VISIT>* visits)
{
    RUN run = {};
    run.m_visits = visits;
    run.m_self = pll;
    run.m_request = &request;
    run.m_reports = &reports;
    run.m_wish.m_request = &request;
    run.m_wish.m_parts = &parts;
    resolve_bandwidth(&run);
    find_product_range(&run);
    check_limits(&run);
    build_working_plls(&run);
    search(&run);
    int error = 0;
    if (run.m_best_error != 0.0) {
        error = run.m_best_clamped ? COUNT_EXCEEDED : RATIO_MISSED;
    }
    bool result = false;
    if (!run.m_found) {
        error = NOT_FOUND;
        finish_without_candidate(&run);
    } else if (run.m_best_error != 0.0) {
        finish_inexact(&run);
    } else {
        result = finish_exact(&run);
    }
    return make_final_checks(&run, result, error);
}

std::vector<MODEL_RATIO> model_list_ratios(const MODEL_PLL& pll, int fin_period,
                                           MODEL_REPORTS& reports)
{
    std::vector<MODEL_RATIO> list;
    if (pll.m_m.m_min_count != 1) {
        reports.push_back("m_m.m_min_count == 1");
    }
    for (int scale = 1; scale <= pll.m_max_vco_post_scale && scale <= MODEL_MAX_POST_SCALE;
         ++scale) {
        const LIMITS limits = {pll.m_vco_min_period[scale], pll.m_vco_max_period[scale], 0,
                               pll.m_pfd_min_period, pll.m_pfd_max_period};
        for (int m = 2; m <= pll.m_m.m_max_count; ++m) {
            list_ratios_of_m(pll, limits, fin_period, m, &list, reports);
        }
    }
    return list;
}
