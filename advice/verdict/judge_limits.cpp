#include "advice/verdict/judge.h"

#include "pll.h"
#include "pll_prop.h"

#include <algorithm>
#include <limits>

namespace advice {

namespace {

constexpr double PERCENT = 100.0;
constexpr int TAP_DEGREES = 45;
constexpr int PS_PER_SECOND_EXPONENT = 12;

RATIONAL period_of(const RATIONAL& frequency)
{
    return RATIONAL(power_of_ten(PS_PER_SECOND_EXPONENT)) / frequency;
}

// Whether a frequency's period lies within the 1 ps that the library takes for legal; that of an
// input only by being rounded to whole ps.
bool is_within_slack(const LIMIT& limit, const RATIONAL& value)
{
    const bool is_input = limit.m_kind == LIMIT_KIND::INPUT_MAX;
    const RATIONAL beyond = (period_of(value) - period_of(limit.m_value.m_exact)).magnitude();
    return beyond <= (is_input ? RATIONAL(1, 2) : RATIONAL(1));
}

bool is_legal_value(const LIMIT& limit, const RATIONAL& value)
{
    return value.is_integer() && value.magnitude() < RATIONAL(std::numeric_limits<int>::max()) &&
           std::binary_search(limit.m_legal.begin(), limit.m_legal.end(),
                              static_cast<int>(value.numerator()));
}

bool is_kept(const LIMIT& limit, const AMOUNT& value)
{
    switch (facts_of(limit.m_kind).m_side) {
    case LIMIT_SIDE::LEAST:
        return !is_less(value, limit.m_value);
    case LIMIT_SIDE::MOST:
        return !is_less(limit.m_value, value);
    case LIMIT_SIDE::MULTIPLE_OF:
        return (value.m_exact / limit.m_value.m_exact).is_integer();
    case LIMIT_SIDE::ONE_OF:
        break;
    }
    return is_legal_value(limit, value.m_exact);
}

double margin_of(const LIMIT& limit, double value)
{
    const double bound = limit.m_value.m_value;
    switch (facts_of(limit.m_kind).m_side) {
    case LIMIT_SIDE::LEAST:
        return (value / bound - 1.0) * PERCENT;
    case LIMIT_SIDE::MOST:
        return (1.0 - value / bound) * PERCENT;
    case LIMIT_SIDE::MULTIPLE_OF:
    case LIMIT_SIDE::ONE_OF:
        break;
    }
    return 0.0;
}

class JUDGEMENTS
{
public:
    JUDGEMENTS(const JUDGE_INPUT& input, std::vector<JUDGED_LIMIT>* judged)
        : m_input(input), m_judged(judged)
    {
    }

    void judge(const LIMIT& limit)
    {
        if (limit.m_kind == LIMIT_KIND::INPUT_MIN || limit.m_kind == LIMIT_KIND::INPUT_MAX) {
            judge_inputs(limit, RATIONAL(1));
        } else if (m_input.m_has_setting) {
            judge_setting(limit);
        }
    }

private:
    JUDGED_LIMIT& add(const LIMIT& limit, const AMOUNT& value, int output = NO_OUTPUT)
    {
        JUDGED_LIMIT judged;
        judged.m_limit = &limit;
        judged.m_output = output;
        judged.m_value = value;
        judged.m_margin_percent = margin_of(limit, value.m_value);
        judged.m_kept = is_kept(limit, value);
        if (!judged.m_kept && limit.m_has_slack && value.is_exact()) {
            judged.m_slack_used = is_within_slack(limit, value.m_exact);
            judged.m_kept = judged.m_slack_used;
        }
        m_judged->push_back(judged);
        return m_judged->back();
    }

    // Of a frequency that is `ratio` of the inputs'.
    void judge_inputs(const LIMIT& limit, const RATIONAL& ratio)
    {
        add(limit, product(m_input.m_request.m_input.m_frequency, ratio));
        if (m_input.m_request.m_input2) {
            add(limit, product(m_input.m_request.m_input2->m_frequency, ratio)).m_input = 2;
        }
    }

    void judge_vco(const LIMIT& limit)
    {
        const PLL& pll = m_input.m_pll;
        const bool is_spread = pll.m_ss_cycles > 0;
        const bool is_replaced = !limit.m_with_spread && is_spread &&
                                 limit.m_kind == LIMIT_KIND::VCO_MIN && has_spread_vco_limit();
        const bool holds = limit.m_post_scale == 0 || limit.m_post_scale == pll.m_vco_post_scale;
        if (holds && !is_replaced && (!limit.m_with_spread || is_spread)) {
            judge_inputs(limit, m_input.m_achieved.m_vco_ratio);
        }
    }

    bool has_spread_vco_limit() const
    {
        const std::vector<LIMIT>& limits = m_input.m_limits.get_list();
        return std::any_of(limits.begin(), limits.end(), [&](const LIMIT& limit) {
            return limit.m_with_spread && limit.m_kind == LIMIT_KIND::VCO_MIN &&
                   limit.m_post_scale == m_input.m_pll.m_vco_post_scale;
        });
    }

    void judge_outputs(const LIMIT& limit)
    {
        const bool is_of_pins =
            limit.m_kind == LIMIT_KIND::PIN_MIN || limit.m_kind == LIMIT_KIND::PIN_MAX;
        for (int i = 0; i < m_input.m_achieved.m_outputs; ++i) {
            if (limit.m_output != NO_OUTPUT && limit.m_output != i) {
                continue;
            }
            const auto index = static_cast<std::size_t>(i);
            const AMOUNT frequency = product(m_input.m_request.m_input.m_frequency,
                                             m_input.m_achieved.m_output[index].m_ratio);
            JUDGED_LIMIT& judged = add(limit, frequency, i);
            judged.m_is_note = is_of_pins && !m_input.m_request.m_outputs[index].m_pin;
        }
    }

    int count_taps() const { return std::clamp(m_input.m_pll.m_total_taps_count, 0, PLL_MAX_TAPS); }

    // The counter that keeps the limit worst: the first one that breaks it, else the one that is
    // closest to it.
    template <class READ>
    void judge_counters(const LIMIT& limit, READ read)
    {
        if (limit.m_output != NO_OUTPUT) {
            if (limit.m_output < m_input.m_achieved.m_outputs) {
                add(limit, RATIONAL(read(m_input.m_pll.m_taps[limit.m_output])), limit.m_output);
            }
            return;
        }
        const bool is_least = facts_of(limit.m_kind).m_side == LIMIT_SIDE::LEAST;
        int worst = 0;
        for (int i = 1; i < count_taps(); ++i) {
            const std::int64_t value = read(m_input.m_pll.m_taps[i]);
            const std::int64_t other = read(m_input.m_pll.m_taps[worst]);
            const bool is_worse = is_least ? value < other : value > other;
            const bool other_breaks = !is_kept(limit, RATIONAL(other));
            const bool breaks = !is_kept(limit, RATIONAL(value));
            worst = breaks == other_breaks ? (is_worse ? i : worst) : breaks ? i : worst;
        }
        add(limit, RATIONAL(read(m_input.m_pll.m_taps[worst])), worst);
    }

    void judge_delays(const LIMIT& limit)
    {
        const PLL& pll = m_input.m_pll;
        int worst = pll.m_n.m_delay;
        const auto look_at = [&](int delay) {
            const bool breaks = !is_kept(limit, RATIONAL(delay));
            const bool worst_breaks = !is_kept(limit, RATIONAL(worst));
            worst =
                breaks > worst_breaks || (breaks == worst_breaks && delay > worst) ? delay : worst;
        };
        look_at(pll.m_m.m_delay);
        for (int i = 0; i < count_taps(); ++i) {
            look_at(pll.m_taps[i].m_delay);
        }
        add(limit, RATIONAL(worst));
    }

    void judge_vco_taps(const LIMIT& limit)
    {
        const int of_m = m_input.m_pll.m_m.m_vco_tap;
        if (is_kept(limit, RATIONAL(of_m))) {
            judge_counters(limit, [](const PLL_OUTPUT_TAP& tap) { return tap.m_vco_tap; });
        } else {
            add(limit, RATIONAL(of_m));
        }
    }

    void judge_spread(const LIMIT& limit)
    {
        if (!m_input.m_achieved.m_spread.is_zero()) {
            add(limit, m_input.m_achieved.m_spread);
        }
    }

    void judge_feedback_duty(const LIMIT& limit)
    {
        const int tap = m_input.m_pll.m_feedback_tap;
        if (tap >= 0 && tap < m_input.m_achieved.m_outputs) {
            add(limit, m_input.m_achieved.m_output[static_cast<std::size_t>(tap)].m_duty, tap);
        }
    }

    void judge_pfd(const LIMIT& limit) { judge_inputs(limit, RATIONAL(1, m_input.m_pll.get_n())); }

    void judge_cycles(const LIMIT& limit)
    {
        if (m_input.m_pll.m_ss_cycles > 0) {
            add(limit, RATIONAL(m_input.m_pll.m_ss_cycles));
        }
    }

    void judge_setting(const LIMIT& limit);

    // Limits that are neither of the loop's counts nor of the outputs'.
    struct OTHER_RULE
    {
        LIMIT_KIND m_kind;
        void (JUDGEMENTS::*m_judge)(const LIMIT& limit);
    };

    static const OTHER_RULE OTHER_RULES[];

    const JUDGE_INPUT& m_input;
    std::vector<JUDGED_LIMIT>* m_judged;
};

// A count of the loop that a limit bounds.
struct LOOP_RULE
{
    LIMIT_KIND m_kind;
    std::int64_t (*m_read)(const PLL& pll);
};

const LOOP_RULE LOOP_RULES[] = {
    {LIMIT_KIND::M_MIN, [](const PLL& pll) { return std::int64_t{pll.get_m()}; }},
    {LIMIT_KIND::M_MAX, [](const PLL& pll) { return std::int64_t{pll.get_m()}; }},
    {LIMIT_KIND::M_LEGAL, [](const PLL& pll) { return std::int64_t{pll.get_m()}; }},
    {LIMIT_KIND::N_MIN, [](const PLL& pll) { return std::int64_t{pll.get_n()}; }},
    {LIMIT_KIND::N_MAX, [](const PLL& pll) { return std::int64_t{pll.get_n()}; }},
    {LIMIT_KIND::N_LEGAL, [](const PLL& pll) { return std::int64_t{pll.get_n()}; }},
    {LIMIT_KIND::POST_SCALE_MAX, [](const PLL& pll) { return std::int64_t{pll.m_vco_post_scale}; }},
    {LIMIT_KIND::POST_SCALES, [](const PLL& pll) { return std::int64_t{pll.m_vco_post_scale}; }},
    {LIMIT_KIND::M_INITIAL_MAX, [](const PLL& pll) { return std::int64_t{pll.m_m.m_initial}; }},
    {LIMIT_KIND::M_TAP_MAX, [](const PLL& pll) { return std::int64_t{pll.m_m.m_vco_tap}; }},
    {LIMIT_KIND::M_TAP_RESOLUTION,
     [](const PLL& pll) { return std::int64_t{pll.m_m.m_vco_tap} * TAP_DEGREES; }},
    {LIMIT_KIND::OUTPUTS_MAX, [](const PLL& pll) { return std::int64_t{pll.m_total_taps_count}; }},
};

// Likewise of an output.
struct COUNTER_RULE
{
    LIMIT_KIND m_kind;
    std::int64_t (*m_read)(const PLL_OUTPUT_TAP& tap);
};

typedef PLL_OUTPUT_TAP TAP;

const COUNTER_RULE COUNTER_RULES[] = {
    {LIMIT_KIND::K_MIN, count_of},
    {LIMIT_KIND::K_MAX, count_of},
    {LIMIT_KIND::K_LEGAL, count_of},
    {LIMIT_KIND::HALF_MAX,
     [](const TAP& tap) { return std::int64_t{std::max(tap.m_high, tap.m_low)}; }},
    {LIMIT_KIND::K_INITIAL_MAX, [](const TAP& tap) { return std::int64_t{tap.m_initial}; }},
    {LIMIT_KIND::K_TAP_MAX, [](const TAP& tap) { return std::int64_t{tap.m_vco_tap}; }},
    {LIMIT_KIND::K_TAP_RESOLUTION,
     [](const TAP& tap) { return std::int64_t{tap.m_vco_tap} * TAP_DEGREES; }},
};

const JUDGEMENTS::OTHER_RULE JUDGEMENTS::OTHER_RULES[] = {
    {LIMIT_KIND::VCO_MIN, &JUDGEMENTS::judge_vco},
    {LIMIT_KIND::VCO_MAX, &JUDGEMENTS::judge_vco},
    {LIMIT_KIND::PFD_MIN, &JUDGEMENTS::judge_pfd},
    {LIMIT_KIND::PFD_MAX, &JUDGEMENTS::judge_pfd},
    {LIMIT_KIND::OUTPUT_MIN, &JUDGEMENTS::judge_outputs},
    {LIMIT_KIND::OUTPUT_MAX, &JUDGEMENTS::judge_outputs},
    {LIMIT_KIND::PIN_MIN, &JUDGEMENTS::judge_outputs},
    {LIMIT_KIND::PIN_MAX, &JUDGEMENTS::judge_outputs},
    {LIMIT_KIND::VCO_TAPS, &JUDGEMENTS::judge_vco_taps},
    {LIMIT_KIND::DELAY_MAX, &JUDGEMENTS::judge_delays},
    {LIMIT_KIND::DELAY_RESOLUTION, &JUDGEMENTS::judge_delays},
    {LIMIT_KIND::SPREAD_MIN, &JUDGEMENTS::judge_spread},
    {LIMIT_KIND::SPREAD_MAX, &JUDGEMENTS::judge_spread},
    {LIMIT_KIND::SPREAD_CYCLES_MAX, &JUDGEMENTS::judge_cycles},
    {LIMIT_KIND::FEEDBACK_DUTY_MIN, &JUDGEMENTS::judge_feedback_duty},
    {LIMIT_KIND::FEEDBACK_DUTY_MAX, &JUDGEMENTS::judge_feedback_duty},
};

// A limit without a rule here is one that the rules of a device judge.
void JUDGEMENTS::judge_setting(const LIMIT& limit)
{
    for (const OTHER_RULE& rule : OTHER_RULES) {
        if (rule.m_kind == limit.m_kind) {
            (this->*rule.m_judge)(limit);
        }
    }
    for (const LOOP_RULE& rule : LOOP_RULES) {
        if (rule.m_kind == limit.m_kind) {
            add(limit, RATIONAL(rule.m_read(m_input.m_pll)));
        }
    }
    for (const COUNTER_RULE& rule : COUNTER_RULES) {
        if (rule.m_kind == limit.m_kind) {
            judge_counters(limit, rule.m_read);
        }
    }
}

}  // namespace

void judge_limits(const JUDGE_INPUT& input, std::vector<JUDGED_LIMIT>* limits)
{
    JUDGEMENTS judgements(input, limits);
    for (const LIMIT& limit : input.m_limits.get_list()) {
        judgements.judge(limit);
    }
    if (input.m_limits.get_rules() != nullptr && input.m_has_setting) {
        input.m_limits.get_rules()->judge(input.m_request, input.m_pll, limits);
    }
}

}  // namespace advice
