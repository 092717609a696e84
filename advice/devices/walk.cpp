#include "advice/devices/walk.h"

#include "advice/devices/clocks.h"

#include "pll_outcome.h"

#include <algorithm>
#include <cmath>

namespace advice {

namespace {

const RATIONAL MEGA(1000000);
const RATIONAL EIGHTH(1, 8);
constexpr double COST_OF_NEARLY_MET = 8192.0;
constexpr double COST_OF_DUTY = 0.01;
constexpr double EXACT = 1e-13;  // what doubles may be wrong by
constexpr double SMALL_M = 40.0;
constexpr double PS_MHZ = 1e6;

// Walks all settings of one plan.
class WALK
{
public:
    WALK(const DEVICE_REQUEST& request, const PLAN& plan, DEVICE_ANSWER* best, RANK* best_rank)
        : m_request(request),
          m_wishes(request.m_request.m_outputs),
          m_sheet(*request.m_device.m_sheet),
          m_plan(plan),
          m_best(best),
          m_best_rank(best_rank)
    {
        m_input = request.m_request.m_input.m_frequency / MEGA;
        m_pfd_range = range_of(FIGURE_KIND::PFD, "");
        m_vco_range = range_of(FIGURE_KIND::VCO, "");
        m_counts.resize(plan.m_counters.size());
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            const RATIONAL asked = m_wishes[i].m_frequency / MEGA;
            const FIGURE_RANGE range = range_of(FIGURE_KIND::OUTPUT, plan.m_clocks[i].m_output);
            // Nothing near a clock that is illegal itself would be of use: the closest setting
            // shows what is wrong with it.
            m_output_ranges.push_back(range.holds(asked) ? range : FIGURE_RANGE());
            m_asked.push_back(asked.to_double());
            m_tolerances.push_back(tolerances_of(request.m_request, i));
        }
    }

    void run()
    {
        const FIGURE_RANGE n_range = range_of(FIGURE_KIND::N, "");
        const std::int64_t last = n_range.m_most->floor().numerator();
        for (std::int64_t n = n_range.m_least->ceil().numerator(); n <= last; ++n) {
            m_n = RATIONAL(n);
            m_pfd = m_input / m_n;
            if (m_pfd_range.m_least && m_pfd < *m_pfd_range.m_least) {
                break;
            }
            if (m_pfd_range.holds(m_pfd)) {
                walk_loop();
            }
        }
    }

    bool take(const DEVICE_SETTING& setting)
    {
        const std::string& fed_back = m_plan.m_fed_back == NO_COUNTER
                                          ? m_plan.m_spare
                                          : m_plan.m_counters[m_plan.m_fed_back].m_output;
        if (setting.m_fed_back != fed_back || setting.m_clocks.size() != m_wishes.size() ||
            !is_step(setting.m_n, false) || !is_step(setting.m_m, m_plan.m_has_eighths) ||
            !take_counts(setting)) {
            return false;
        }
        m_n = setting.m_n;
        m_m = setting.m_m;
        m_pfd = m_input / m_n;
        m_loop = m_m * RATIONAL(m_plan.m_loop);
        if (m_plan.m_fed_back != NO_COUNTER) {
            m_loop = m_loop * m_counts[m_plan.m_fed_back];
        }
        m_vco = m_pfd * m_loop;
        keep(make_clocks());
        return true;
    }

private:
    static bool is_step(const RATIONAL& count, bool has_eighths)
    {
        return RATIONAL(0) < count && (has_eighths ? count / EIGHTH : count).is_integer();
    }

    // False where a count does not fit its counter, or two clocks of one counter disagree.
    bool take_counts(const DEVICE_SETTING& setting)
    {
        m_divisions.clear();
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            const PLAN_CLOCK& plan = m_plan.m_clocks[i];
            const CLOCK_SETTING& clock = setting.m_clocks[i];
            RATIONAL& count = m_counts[plan.m_counter];
            const bool is_other = RATIONAL(0) < count && count != clock.m_count;
            if (clock.m_output != plan.m_output || clock.m_select != plan.m_select || is_other ||
                !is_step(clock.m_count, m_plan.m_counters[plan.m_counter].m_has_eighths)) {
                return false;
            }
            count = clock.m_count;
            const auto is_it = [&](int division) {
                return count * RATIONAL(division) == clock.m_division;
            };
            if (std::none_of(plan.m_divisions.begin(), plan.m_divisions.end(), is_it)) {
                return false;
            }
            m_divisions.push_back(clock.m_division);
        }
        return std::all_of(m_counts.begin(), m_counts.end(),
                           [](const RATIONAL& count) { return RATIONAL(0) < count; });
    }

    FIGURE_RANGE range_of(FIGURE_KIND kind, const std::string& output) const
    {
        const std::string& grade = m_request.m_device.m_grade;
        const FIGURE* figure = m_sheet.find_figure(kind, grade, output, m_plan.m_path);
        if (figure == nullptr) {
            figure = m_sheet.find_figure(kind, grade, "", m_plan.m_path);
        }
        return figure == nullptr || !covers(figure->m_outputs, output) ? FIGURE_RANGE()
                                                                       : figure->m_range;
    }

    void walk_loop()
    {
        if (m_plan.m_fed_back == NO_COUNTER) {
            walk_m(RATIONAL(m_plan.m_loop));
            return;
        }
        for (const int count : list_counts(m_plan.m_counters[m_plan.m_fed_back].m_range)) {
            m_counts[m_plan.m_fed_back] = RATIONAL(count);
            walk_m(RATIONAL(m_plan.m_loop) * RATIONAL(count));
        }
    }

    static std::vector<int> list_counts(const FIGURE_RANGE& range)
    {
        if (!range.m_values.empty()) {
            return range.m_values;
        }
        std::vector<int> counts;
        for (std::int64_t count = range.m_least->ceil().numerator();
             count <= range.m_most->floor().numerator(); ++count) {
            counts.push_back(static_cast<int>(count));
        }
        return counts;
    }

    // All M that put the VCO into its range, whole or in eighths.
    void walk_m(const RATIONAL& division)
    {
        const RATIONAL step = m_plan.m_has_eighths ? EIGHTH : RATIONAL(1);
        const RATIONAL slowest = *m_vco_range.m_least / m_pfd / division;
        const RATIONAL fastest = *m_vco_range.m_most / m_pfd / division;
        const RATIONAL first = slowest < *m_plan.m_m.m_least ? *m_plan.m_m.m_least : slowest;
        const RATIONAL last = *m_plan.m_m.m_most < fastest ? *m_plan.m_m.m_most : fastest;
        for (RATIONAL m = (first / step).ceil() * step; m <= last; m = m + step) {
            m_m = m;
            m_loop = m * division;
            m_vco = m_pfd * m_loop;
            if (choose_counts()) {
                offer();
            }
        }
    }

    // ---- Counters

    bool choose_counts()
    {
        for (std::size_t i = 0; i < m_counts.size(); ++i) {
            if (i != m_plan.m_fed_back && !choose_count(i)) {
                return false;
            }
        }
        return choose_divisions();
    }

    // The count that errs least over the clocks that it makes; false when none is legal.
    bool choose_count(std::size_t counter)
    {
        double best = HUGE_VAL;
        for (const RATIONAL& count : list_candidates(counter)) {
            const double error = error_of(counter, count);
            if (error < best) {
                best = error;
                m_counts[counter] = count;
            }
        }
        return best < HUGE_VAL;
    }

    // The counts around the ideal one of each clock, and around the borders of its range.
    std::vector<RATIONAL> list_candidates(std::size_t counter) const
    {
        const PLAN_COUNTER& record = m_plan.m_counters[counter];
        std::vector<RATIONAL> candidates;
        if (!record.m_range.m_values.empty()) {
            for (const int value : record.m_range.m_values) {
                candidates.emplace_back(value);
            }
            return candidates;
        }
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            if (m_plan.m_clocks[i].m_counter != counter) {
                continue;
            }
            const RATIONAL asked = m_wishes[i].m_frequency / MEGA;
            add_candidates(record, m_vco / asked, &candidates);
            if (m_output_ranges[i].m_most) {
                add_candidates(record, m_vco / *m_output_ranges[i].m_most, &candidates);
            }
            if (m_output_ranges[i].m_least) {
                add_candidates(record, m_vco / *m_output_ranges[i].m_least, &candidates);
            }
        }
        return candidates;
    }

    static void add_candidates(const PLAN_COUNTER& record, const RATIONAL& ideal,
                               std::vector<RATIONAL>* candidates)
    {
        const RATIONAL step = record.m_has_eighths && RATIONAL(2) <= ideal ? EIGHTH : RATIONAL(1);
        const RATIONAL scaled = ideal / step;
        for (const RATIONAL& each : {scaled.floor() * step, scaled.ceil() * step}) {
            candidates->push_back(each < *record.m_range.m_least  ? *record.m_range.m_least
                                  : *record.m_range.m_most < each ? *record.m_range.m_most
                                                                  : each);
        }
    }

    // Infinite when an output leaves its range.
    double error_of(std::size_t counter, const RATIONAL& count) const
    {
        double sum = 0.0;
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            if (m_plan.m_clocks[i].m_counter != counter) {
                continue;
            }
            sum += error_of_clock(i, count * RATIONAL(nearest_division(i, count)));
        }
        return sum;
    }

    // Of the divisions behind a counter the one that comes closest.
    int nearest_division(std::size_t clock, const RATIONAL& count) const
    {
        const std::vector<int>& legal = m_plan.m_clocks[clock].m_divisions;
        const double ideal = m_vco.to_double() / count.to_double() / m_asked[clock];
        const auto above = std::lower_bound(legal.begin(), legal.end(), ideal);
        if (above == legal.begin() || above == legal.end()) {
            return above == legal.begin() ? legal.front() : legal.back();
        }
        const int below = *(above - 1);
        return ideal / below - 1.0 <= 1.0 - ideal / *above ? below : *above;
    }

    double error_of_clock(std::size_t clock, const RATIONAL& division) const
    {
        const RATIONAL frequency = m_vco / division;
        return m_output_ranges[clock].holds(frequency)
                   ? std::fabs(frequency.to_double() / m_asked[clock] - 1.0)
                   : HUGE_VAL;
    }

    // What stands behind the counters.
    bool choose_divisions()
    {
        m_divisions.resize(m_wishes.size());
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            const RATIONAL& count = m_counts[m_plan.m_clocks[i].m_counter];
            m_divisions[i] = count * RATIONAL(nearest_division(i, count));
            if (error_of_clock(i, m_divisions[i]) == HUGE_VAL) {
                return false;
            }
        }
        return true;
    }

    // ---- Ranking

    void offer()
    {
        RANK rank;
        rank.m_is_missed = false;
        rank.m_is_detour = m_plan.m_is_detour;
        rank.m_order = m_plan.m_order;
        rank.m_n = m_n.to_double();
        rank.m_has_large_m = SMALL_M < m_loop.to_double();
        rank.m_has_even_m = (m_loop / RATIONAL(2)).is_integer();
        rank.m_vco_period = PS_MHZ / m_vco.to_double();
        rank_frequencies(&rank);
        if (rank.m_error > 0.0) {
            // Of settings that miss alike the library takes the one with the smallest M.
            rank.m_n = m_loop.to_double();
            rank.m_has_large_m = false;
            rank.m_has_even_m = false;
            rank.m_vco_period = m_n.to_double();
        }
        // What phases and duty cycles add can only make it worse.
        if (*m_best_rank < rank) {
            return;
        }
        std::vector<DEVICE_CLOCK> clocks = make_clocks();
        for (std::size_t i = 0; i < clocks.size(); ++i) {
            const DEVICE_CLOCK& clock = clocks[i];
            rank.m_is_missed = rank.m_is_missed || clock.m_frequency_missed ||
                               clock.m_phase_missed || clock.m_duty_missed;
            rank.m_cost +=
                phase_distance(m_wishes[i].m_phase, clock.m_phase).to_double() +
                (m_wishes[i].m_duty - clock.m_duty).magnitude().to_double() * COST_OF_DUTY;
        }
        if (rank < *m_best_rank) {
            *m_best_rank = rank;
            keep(std::move(clocks));
            m_best->m_met = !rank.m_is_missed;
        }
    }

    void rank_frequencies(RANK* rank) const
    {
        double sum = 0.0;
        double nearly = 0.0;
        double worst = 0.0;
        for (std::size_t i = 0; i < m_wishes.size(); ++i) {
            const double error = error_of_clock(i, m_divisions[i]);
            const double relative = error < EXACT ? 0.0 : error;
            worst = std::max(worst, relative);
            nearly += relative;
            sum += relative < PLL_MET_TOLERANCE ? 0.0 : relative * m_asked[i];
            rank->m_is_missed =
                rank->m_is_missed || relative > m_tolerances[i].m_frequency.to_double() + EXACT;
        }
        const bool by_worst = m_request.m_objective == OBJECTIVE::WORST;
        rank->m_error = by_worst ? worst : sum;
        rank->m_cost = nearly > 0.0 ? nearly / PLL_MET_TOLERANCE + COST_OF_NEARLY_MET : 0.0;
    }

    std::vector<DEVICE_CLOCK> make_clocks() const
    {
        std::vector<DEVICE_CLOCK> clocks(m_wishes.size());
        for (std::size_t i = 0; i < clocks.size(); ++i) {
            const OUTPUT_WISH& wish = m_wishes[i];
            const PLAN_CLOCK& plan = m_plan.m_clocks[i];
            DEVICE_CLOCK& clock = clocks[i];
            clock.m_output = plan.m_output;
            clock.m_select = plan.m_select;
            clock.m_count = m_counts[plan.m_counter];
            clock.m_division = m_divisions[i];
            clock.m_frequency = m_vco / clock.m_division;
            clock.m_error = clock.m_frequency * MEGA / wish.m_frequency - RATIONAL(1);
            place_clock(wish, m_sheet, plan, m_sheet.m_primitives.front(),
                        plan.m_counter == m_plan.m_fed_back, &clock);
            const TOLERANCES& tolerances = m_tolerances[i];
            clock.m_frequency_missed = !(clock.m_error.magnitude() <= tolerances.m_frequency);
            clock.m_phase_missed =
                !(phase_distance(wish.m_phase, clock.m_phase) <= tolerances.m_phase);
            clock.m_duty_missed = !((wish.m_duty - clock.m_duty).magnitude() <= tolerances.m_duty);
        }
        return clocks;
    }

    void keep(std::vector<DEVICE_CLOCK> clocks)
    {
        DEVICE_ANSWER& best = *m_best;
        best.m_has_setting = true;
        best.m_n = m_n;
        best.m_m = m_m;
        best.m_loop = m_loop;
        best.m_pfd = m_pfd;
        best.m_vco = m_vco;
        best.m_path = m_plan.m_path;
        best.m_spare = m_plan.m_spare;
        best.m_fed_back = m_plan.m_fed_back == NO_COUNTER
                              ? m_plan.m_spare
                              : m_plan.m_counters[m_plan.m_fed_back].m_output;
        best.m_clocks = std::move(clocks);
        best.m_has_fractions =
            !m_m.is_integer() ||
            std::any_of(best.m_clocks.begin(), best.m_clocks.end(),
                        [](const DEVICE_CLOCK& clock) { return !clock.m_count.is_integer(); });
    }

    const DEVICE_REQUEST& m_request;
    const std::vector<OUTPUT_WISH>& m_wishes;
    const SHEET& m_sheet;
    const PLAN& m_plan;
    DEVICE_ANSWER* m_best;
    RANK* m_best_rank;
    RATIONAL m_input;
    FIGURE_RANGE m_pfd_range;
    FIGURE_RANGE m_vco_range;
    std::vector<FIGURE_RANGE> m_output_ranges;
    std::vector<double> m_asked;
    std::vector<TOLERANCES> m_tolerances;
    RATIONAL m_n;
    RATIONAL m_m;
    RATIONAL m_loop;
    RATIONAL m_pfd;
    RATIONAL m_vco;
    std::vector<RATIONAL> m_counts;     // of the counters
    std::vector<RATIONAL> m_divisions;  // of the clocks
};

}  // namespace

void walk_plan(const DEVICE_REQUEST& request, const PLAN& plan, DEVICE_ANSWER* best, RANK* rank)
{
    WALK(request, plan, best, rank).run();
}

bool take_setting(const DEVICE_REQUEST& request, const PLAN& plan, const DEVICE_SETTING& setting,
                  DEVICE_ANSWER* answer)
{
    RANK rank;
    return WALK(request, plan, answer, &rank).take(setting);
}

}  // namespace advice
