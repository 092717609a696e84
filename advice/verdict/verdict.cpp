#include "advice/verdict/verdict.h"

#include "advice/verdict/judge.h"

#include "pll.h"
#include "pll_prop.h"

#include <algorithm>
#include <iterator>

namespace advice {

namespace {

bool is_kept(const VERDICT& verdict)
{
    return std::all_of(verdict.m_wishes.begin(), verdict.m_wishes.end(),
                       [](const JUDGED_WISH& wish) { return wish.m_kept; }) &&
           std::all_of(verdict.m_limits.begin(), verdict.m_limits.end(),
                       [](const JUDGED_LIMIT& limit) { return limit.m_kept || limit.m_is_note; });
}

// Only frequencies are near: a counter at its end is as good as any other.
bool is_near(const JUDGED_LIMIT& judged, double percent)
{
    const LIMIT_FACTS& facts = facts_of(judged.m_limit->m_kind);
    const bool is_end = facts.m_side == LIMIT_SIDE::LEAST || facts.m_side == LIMIT_SIDE::MOST;
    return judged.m_kept && is_end && facts.m_unit == LIMIT_UNIT::HZ &&
           judged.m_margin_percent < percent;
}

void warn_of_limits(const REQUEST& request, VERDICT* verdict)
{
    for (std::size_t i = 0; i < verdict->m_limits.size(); ++i) {
        const JUDGED_LIMIT& judged = verdict->m_limits[i];
        if (judged.m_slack_used) {
            verdict->m_warnings.push_back({WARNING_KIND::SLACK_USED, i, judged.m_margin_percent});
        } else if (judged.m_is_note) {
            if (!judged.m_kept) {
                verdict->m_warnings.push_back({WARNING_KIND::NOTE, i, judged.m_margin_percent});
            }
        } else if (is_near(judged, request.m_margins.m_limit_percent)) {
            verdict->m_warnings.push_back({WARNING_KIND::NEAR_LIMIT, i, judged.m_margin_percent});
        }
    }
}

// A lock range ends in whole ps, so it can leave out the very input that it was computed for.
void warn_of_lock_range(const REQUEST& request, const PLL_PROP& achieved, VERDICT* verdict)
{
    const RATIONAL shortest(achieved.m_lock_min_period);
    const RATIONAL longest(achieved.m_lock_max_period);
    const auto look_at = [&](const INPUT_CLOCK& input, std::size_t number) {
        const bool is_inside = shortest <= input.m_period && input.m_period <= longest;
        if (!is_inside && longest.is_positive()) {
            verdict->m_warnings.push_back({WARNING_KIND::LOCK_RANGE, number, 0.0});
        }
    };
    look_at(request.m_input, 1);
    if (request.m_input2) {
        look_at(*request.m_input2, 2);
    }
}

void start(VERDICT* verdict, bool has_setting)
{
    verdict->m_has_setting = has_setting;
    verdict->m_wishes.clear();
    verdict->m_limits.clear();
    verdict->m_warnings.clear();
}

}  // namespace

const char* name_of(WISH_KIND kind)
{
    static constexpr const char* NAMES[] = {"frequency",   "phase",      "duty",      "delay",
                                            "even",        "even_count", "bandwidth", "spread",
                                            "spread_rate", "vco_ratio"};
    static_assert(std::size(NAMES) == static_cast<std::size_t>(WISH_KIND::KIND_COUNT));
    return NAMES[static_cast<std::size_t>(kind) % std::size(NAMES)];
}

void judge(const REQUEST& request, const LIMITS& limits, const PLL& pll, const PLL_PROP& achieved,
           VERDICT* verdict)
{
    start(verdict, true);
    const ACHIEVED exact = find_achieved(request, pll);
    const JUDGE_INPUT input{request, limits, pll, achieved, exact, true};
    judge_wishes(input, &verdict->m_wishes);
    judge_limits(input, &verdict->m_limits);
    verdict->m_met = is_kept(*verdict);
    warn_of_limits(request, verdict);
    warn_of_lock_range(request, achieved, verdict);
    const double margin = find_phase_margin(achieved);
    if (margin < request.m_margins.m_phase_degrees) {
        verdict->m_warnings.push_back({WARNING_KIND::PHASE_MARGIN, 0, margin});
    }
    if (!limits.has_device()) {
        verdict->m_warnings.push_back({WARNING_KIND::BUILT_IN, 0, 0.0});
    }
}

void judge_without_setting(const REQUEST& request, const LIMITS& limits, const PLL& pll,
                           VERDICT* verdict)
{
    start(verdict, false);
    const ACHIEVED nothing;
    const PLL_PROP prop(static_cast<int>(request.m_outputs.size()));
    const JUDGE_INPUT input{request, limits, pll, prop, nothing, false};
    judge_wishes(input, &verdict->m_wishes);
    judge_limits(input, &verdict->m_limits);
    verdict->m_met = false;
}

}  // namespace advice
