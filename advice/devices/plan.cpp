#include "advice/devices/plan.h"

#include <algorithm>
#include <numeric>

namespace advice {

namespace {

constexpr const char* SIMPLE_CLOCK = "GENCLK";
constexpr const char* HALF_CLOCK = "GENCLK_HALF";
constexpr const char* SHIFTED_BY_0 = "SHIFTREG_0deg";
constexpr const char* SHIFTED_BY_90 = "SHIFTREG_90deg";
const RATIONAL QUARTER_TURN(90);

class PLANNER
{
public:
    PLANNER(const REQUEST& request, const SHEET& sheet, const std::string& grade,
            const PLAN_OPTIONS& options)
        : m_request(request), m_sheet(sheet), m_grade(grade), m_options(options)
    {
        for (const SHEET_OUTPUT& output : sheet.m_outputs) {
            (output.m_of.empty() ? m_own : m_derived).push_back(output);
        }
    }

    std::vector<PLAN> make()
    {
        if (m_own.size() == 1 && !m_derived.empty()) {
            m_sheet.m_shift_register.empty() ? plan_derived() : plan_selected();
        } else if (m_request.m_outputs.size() <= m_own.size()) {
            plan_counters();
        }
        return std::move(m_plans);
    }

private:
    std::size_t count() const { return m_request.m_outputs.size(); }

    FIGURE_RANGE range_of(FIGURE_KIND kind, const std::string& output, const std::string& path)
    {
        const FIGURE* figure = m_sheet.find_figure(kind, m_grade, output, path);
        return figure == nullptr ? FIGURE_RANGE() : figure->m_range;
    }

    PLAN_COUNTER counter_of(const std::string& output)
    {
        return {output, range_of(FIGURE_KIND::COUNT, output, ""), false};
    }

    PLAN start(const std::string& path)
    {
        PLAN plan;
        plan.m_path = path;
        plan.m_m = range_of(FIGURE_KIND::M, "", path);
        plan.m_has_eighths =
            m_options.m_fractions && m_sheet.counts_eighths(name_of(FIGURE_KIND::M));
        return plan;
    }

    // The value of the path parameter that puts an output into the loop; `is_inside`: without
    // leaving the primitive, where it can.
    std::string path_of(const std::string& output, bool is_inside) const
    {
        std::string found;
        for (const auto& [value, target] : m_sheet.m_paths) {
            if (target == output) {
                const bool is_internal = value.rfind("INT_", 0) == 0;
                if (found.empty() || is_internal == is_inside) {
                    found = value;
                }
            }
        }
        return found;
    }

    bool can_use_m_alone() const
    {
        return m_sheet.m_paths.empty() ||
               std::any_of(m_sheet.m_paths.begin(), m_sheet.m_paths.end(),
                           [](const auto& path) { return path.second.empty(); });
    }

    // ---- Every clock has a counter of its own

    PLAN one_to_one(const std::string& path)
    {
        PLAN plan = start(path);
        for (std::size_t i = 0; i < count(); ++i) {
            plan.m_clocks.push_back({m_own[i].m_name, i, {1}, "", {}});
            plan.m_counters.push_back(counter_of(m_own[i].m_name));
        }
        return plan;
    }

    void plan_counters()
    {
        if (m_request.m_feedback != NO_OUTPUT) {
            plan_fed_back(static_cast<std::size_t>(m_request.m_feedback));
        } else if (can_use_m_alone()) {
            m_options.m_fractions ? plan_eighths()
                                  : m_plans.push_back(one_to_one(path_of("", false)));
        } else if (count() < m_own.size()) {
            // A spare output becomes the M counter.
            const std::string& spare = m_own[count()].m_name;
            PLAN plan = one_to_one(path_of(spare, true));
            plan.m_spare = spare;
            plan.m_m = range_of(FIGURE_KIND::COUNT, spare, "");
            m_plans.push_back(plan);
        } else {
            for (std::size_t i = 0; i < count(); ++i) {
                plan_fed_back(i);
            }
        }
    }

    void plan_fed_back(std::size_t output)
    {
        const std::string path = path_of(m_own[output].m_name, false);
        if (!path.empty()) {
            PLAN plan = one_to_one(path);
            plan.m_fed_back = output;
            m_plans.push_back(plan);
        }
    }

    // Each clock without a phase in turn gets the output that counts in eighths.
    void plan_eighths()
    {
        for (std::size_t i = 0; i < count(); ++i) {
            const OUTPUT_WISH& wish = m_request.m_outputs[i];
            PLAN plan = one_to_one(path_of("", false));
            std::swap(plan.m_clocks[0].m_output, plan.m_clocks[i].m_output);
            std::swap(plan.m_clocks[0].m_counter, plan.m_clocks[i].m_counter);
            plan.m_counters[0].m_has_eighths = wish.m_phase.is_zero() &&
                                               wish.m_duty == RATIONAL(50) &&
                                               m_sheet.counts_eighths(m_own[0].m_name);
            m_plans.push_back(plan);
        }
    }

    // ---- One counter makes all clocks

    PLAN one_counter(const std::string& path, bool is_in_loop)
    {
        PLAN plan = start(path);
        plan.m_counters.push_back(counter_of(m_own[0].m_name));
        plan.m_fed_back = is_in_loop ? 0 : NO_COUNTER;
        return plan;
    }

    std::vector<int> divisions_of(const SHEET_OUTPUT& output)
    {
        const FIGURE_RANGE range = range_of(FIGURE_KIND::COUNT, output.m_name, "");
        return output.m_of.empty() || range.m_values.empty() ? std::vector<int>{output.m_divides}
                                                             : range.m_values;
    }

    // Clocks and outputs in every order: an output behind the counter, its phase tables, a divider.
    void plan_derived()
    {
        std::vector<std::size_t> order(m_sheet.m_outputs.size());
        std::iota(order.begin(), order.end(), 0);
        if (count() > order.size()) {
            return;
        }
        std::vector<std::vector<std::size_t>> seen;
        do {
            const std::vector<std::size_t> used(
                order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count()));
            if (std::find(seen.begin(), seen.end(), used) != seen.end()) {
                continue;
            }
            seen.push_back(used);
            PLAN plan = one_counter("", !m_sheet.m_feedback.empty());
            for (const std::size_t index : used) {
                const SHEET_OUTPUT& output = m_sheet.m_outputs[index];
                plan.m_clocks.push_back({output.m_name, 0, divisions_of(output), "", {}});
            }
            plan.m_is_detour = count() == 1 && used.front() != 0;
            plan.m_order = static_cast<int>(m_plans.size());
            m_plans.push_back(plan);
        } while (std::next_permutation(order.begin(), order.end()));
    }

    // Two ports that take the same clock, half of it, or the shift register's.
    void plan_selected()
    {
        const std::string simple = path_of("", false);
        const std::string shifted = path_of(PATH_SHIFT_REGISTER, false);
        if (count() == 1) {
            add_selected(simple, 1, {{m_own[0].m_name, 0, {1}, SIMPLE_CLOCK, {}}});
            return;
        }
        if (count() > 2) {
            return;
        }
        for (std::size_t first = 0; first < 2; ++first) {
            add_pair(simple, 1, first, {SIMPLE_CLOCK, 1, {}}, {SIMPLE_CLOCK, 1, {}});
            add_pair(simple, 1, first, {SIMPLE_CLOCK, 1, {}}, {HALF_CLOCK, 2, {}});
            const int division = m_sheet.m_shift_register.begin()->second;
            add_pair(shifted, division, first, {SHIFTED_BY_0, division, {}},
                     {SHIFTED_BY_90, division, QUARTER_TURN});
        }
    }

    struct SELECTION
    {
        const char* m_select;
        int m_division;
        RATIONAL m_phase;
    };

    // `first`: which clock of the request the first port makes.
    void add_pair(const std::string& path, int loop, std::size_t first, const SELECTION& a,
                  const SELECTION& b)
    {
        std::vector<PLAN_CLOCK> clocks = {
            {m_own[0].m_name, 0, {a.m_division}, a.m_select, a.m_phase},
            {m_derived[0].m_name, 0, {b.m_division}, b.m_select, b.m_phase}};
        if (first == 1) {
            std::swap(clocks[0], clocks[1]);
        }
        add_selected(path, loop, clocks);
    }

    void add_selected(const std::string& path, int loop, const std::vector<PLAN_CLOCK>& clocks)
    {
        if (path.empty()) {
            return;
        }
        const auto target = m_sheet.m_paths.find(path);
        PLAN plan = one_counter(path, target != m_sheet.m_paths.end() && !target->second.empty());
        plan.m_loop = loop;
        plan.m_clocks = clocks;
        plan.m_order = static_cast<int>(m_plans.size());
        m_plans.push_back(plan);
    }

    const REQUEST& m_request;
    const SHEET& m_sheet;
    const std::string& m_grade;
    PLAN_OPTIONS m_options;
    std::vector<SHEET_OUTPUT> m_own;
    std::vector<SHEET_OUTPUT> m_derived;
    std::vector<PLAN> m_plans;
};

}  // namespace

std::vector<PLAN> make_plans(const REQUEST& request, const SHEET& sheet, const std::string& grade,
                             const PLAN_OPTIONS& options)
{
    return PLANNER(request, sheet, grade, options).make();
}

}  // namespace advice
