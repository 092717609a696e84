// Every wish and every limit is dropped in turn. What can be dropped while the rest stays
// impossible has no part in the conflict and stays away; what makes the rest possible is put back.
// What is left at the end is a conflict without a part too many.
//
// A limit of the search is dropped by widening it a good deal, not without end: the work of a
// search grows with its ranges.
#include "advice/why/conflict.h"

#include "advice/answer/answer.h"
#include "advice/numbers/text.h"
#include "advice/why/change_request.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace advice {

namespace {

constexpr int WIDER_FREQUENCY = 4;
constexpr int WIDER_M = 16;
constexpr int WIDER_N = 2;
constexpr int WIDER_DIVISION = 4096;
constexpr int LARGEST_DIVISION = 1 << 24;
constexpr int DECIMALS = 3;
constexpr int PERCENT = 100;

// What is asked and what holds, with some of it dropped.
struct CASE
{
    REQUEST m_request;
    std::vector<bool> m_dropped_outputs;
    std::vector<LIMIT_KIND> m_dropped_limits;
};

struct PART
{
    std::string m_text;
    std::function<void(CASE*)> m_drop;
};

// By how much a limit is widened when it is dropped; 0: it is taken away.
int widening_of(LIMIT_KIND kind)
{
    switch (kind) {
    case LIMIT_KIND::VCO_MIN:
    case LIMIT_KIND::VCO_MAX:
    case LIMIT_KIND::PFD_MIN:
    case LIMIT_KIND::PFD_MAX:
    case LIMIT_KIND::INPUT_MAX:
        return WIDER_FREQUENCY;
    case LIMIT_KIND::M_MAX:
        return WIDER_M;
    case LIMIT_KIND::N_MAX:
        return WIDER_N;
    case LIMIT_KIND::K_MAX:
    case LIMIT_KIND::HALF_MAX:
        return WIDER_DIVISION;
    case LIMIT_KIND::INPUT_MIN:
    case LIMIT_KIND::OUTPUT_MIN:
    case LIMIT_KIND::OUTPUT_MAX:
    case LIMIT_KIND::PIN_MIN:
    case LIMIT_KIND::PIN_MAX:
    case LIMIT_KIND::M_MIN:
    case LIMIT_KIND::N_MIN:
    case LIMIT_KIND::K_MIN:
    case LIMIT_KIND::POST_SCALE_MAX:
    case LIMIT_KIND::POST_SCALES:
    case LIMIT_KIND::M_INITIAL_MAX:
    case LIMIT_KIND::K_INITIAL_MAX:
    case LIMIT_KIND::M_TAP_MAX:
    case LIMIT_KIND::K_TAP_MAX:
    case LIMIT_KIND::K_TAP_RESOLUTION:
    case LIMIT_KIND::M_TAP_RESOLUTION:
    case LIMIT_KIND::VCO_TAPS:
    case LIMIT_KIND::OUTPUTS_MAX:
    case LIMIT_KIND::DELAY_MAX:
    case LIMIT_KIND::DELAY_RESOLUTION:
    case LIMIT_KIND::SPREAD_MIN:
    case LIMIT_KIND::SPREAD_MAX:
    case LIMIT_KIND::SPREAD_CYCLES_MAX:
    case LIMIT_KIND::FEEDBACK_DUTY_MIN:
    case LIMIT_KIND::FEEDBACK_DUTY_MAX:
    case LIMIT_KIND::M_LEGAL:
    case LIMIT_KIND::N_LEGAL:
    case LIMIT_KIND::K_LEGAL:
    case LIMIT_KIND::OTHER:
    case LIMIT_KIND::KIND_COUNT:
        break;
    }
    return 0;
}

// The library divides by twice the halves that a limit allows.
LIMIT_KIND widened_kind(LIMIT_KIND kind)
{
    return kind == LIMIT_KIND::HALF_MAX ? LIMIT_KIND::K_MAX : kind;
}

void drop_limit(const LIMITS& all, LIMIT_KIND kind, LIMITS* limits)
{
    const int widening = widening_of(kind);
    for (const LIMIT& limit : all.get_list()) {
        if (limit.m_kind != kind) {
            continue;
        }
        limits->remove(kind, limit.m_post_scale);
        if (widening == 0) {
            continue;
        }
        LIMIT wider = limit;
        wider.m_kind = widened_kind(kind);
        const RATIONAL factor(widening);
        wider.m_value = facts_of(kind).m_side == LIMIT_SIDE::LEAST ? limit.m_value.m_exact / factor
                                                                   : limit.m_value.m_exact * factor;
        if (facts_of(kind).m_unit == LIMIT_UNIT::COUNT &&
            RATIONAL(LARGEST_DIVISION) < wider.m_value.m_exact) {
            wider.m_value = RATIONAL(LARGEST_DIVISION);
        }
        wider.m_has_slack = false;
        wider.m_origin = LIMIT_ORIGIN::OPTION;
        limits->set(wider);
    }
}

bool is_possible(const CASE& trial, const LIMITS& limits)
{
    std::vector<std::size_t> outputs;
    for (std::size_t i = 0; i < trial.m_dropped_outputs.size(); ++i) {
        if (!trial.m_dropped_outputs[i]) {
            outputs.push_back(i);
        }
    }
    if (outputs.empty()) {
        return true;
    }
    const REQUEST request = with_outputs(trial.m_request, outputs);
    const std::unique_ptr<LIMITS> changed = limits.copy();
    for (const LIMIT_KIND kind : trial.m_dropped_limits) {
        drop_limit(limits, kind, changed.get());
    }
    if (find_problem(request, PLL_MAX_TAPS)) {
        return false;
    }
    // The further search walks over what the limits leave, which is too much once they are wider.
    const EFFORT effort =
        trial.m_dropped_limits.empty() ? EFFORT::THOROUGH : EFFORT::FIRST_ANSWER_ONLY;
    return ANSWER(request, *changed, effort).is_met();
}

std::string write_limit(const LIMIT& limit)
{
    return to_text(limit);
}

// The limits of a kind together, named by the first.
void list_limits(const LIMITS& limits, std::vector<PART>* parts)
{
    std::vector<LIMIT_KIND> seen;
    for (const LIMIT& limit : limits.get_list()) {
        const LIMIT_KIND kind = limit.m_kind;
        if (std::find(seen.begin(), seen.end(), kind) != seen.end() || kind == LIMIT_KIND::OTHER) {
            continue;
        }
        seen.push_back(kind);
        parts->push_back({"the limit " + write_limit(limit),
                          [kind](CASE* trial) { trial->m_dropped_limits.push_back(kind); }});
    }
}

void list_shapes(const REQUEST& request, std::size_t index, std::vector<PART>* parts)
{
    const OUTPUT_WISH& wish = request.m_outputs[index];
    const std::string name = name_of_output(request, index);
    const auto add = [&](const std::string& text, void (*drop)(OUTPUT_WISH*)) {
        parts->push_back({text + " of " + name, [index, drop](CASE* trial) {
                              drop(&trial->m_request.m_outputs[index]);
                          }});
    };
    constexpr int TURN = 360;
    if (!wish.m_phase.is_zero() || wish.m_phase_to != NO_OUTPUT) {
        add("the phase " + write_number(wish.m_phase.to_double(), DECIMALS) + " deg",
            [](OUTPUT_WISH* dropped) { dropped->m_tolerances.m_phase = RATIONAL(TURN); });
    }
    add("the duty cycle " + write_number(wish.m_duty.to_double(), DECIMALS) + " %",
        [](OUTPUT_WISH* dropped) { dropped->m_tolerances.m_duty = RATIONAL(PERCENT); });
    if (wish.m_delay != 0) {
        add("the delay " + std::to_string(wish.m_delay) + " ps",
            [](OUTPUT_WISH* dropped) { dropped->m_delay = 0; });
    }
    if (wish.m_even) {
        add("'even'", [](OUTPUT_WISH* dropped) { dropped->m_even = false; });
    }
    if (wish.m_even_count) {
        add("'even-count'", [](OUTPUT_WISH* dropped) { dropped->m_even_count = false; });
    }
}

void list_loop(const REQUEST& request, std::vector<PART>* parts)
{
    if (request.m_bandwidth_kind != BANDWIDTH_KIND::AUTO) {
        parts->push_back({"the bandwidth", [](CASE* trial) {
                              trial->m_request.m_bandwidth_kind = BANDWIDTH_KIND::AUTO;
                          }});
    }
    if (!request.m_spread.is_zero()) {
        parts->push_back(
            {"the spread of " +
                 write_number((request.m_spread * RATIONAL(PERCENT)).to_double(), DECIMALS) + " %",
             [](CASE* trial) {
                 trial->m_request.m_spread = RATIONAL();
                 trial->m_request.m_spread_rate.reset();
             }});
    }
    if (request.m_input2) {
        parts->push_back({"the second input of " + write_frequency(request.m_input2->m_frequency,
                                                                   request.m_input2->m_unit),
                          [](CASE* trial) { trial->m_request.m_input2.reset(); }});
    }
    if (request.m_vco_ratio) {
        parts->push_back({"the VCO ratio " + request.m_vco_ratio->to_fraction(),
                          [](CASE* trial) { trial->m_request.m_vco_ratio.reset(); }});
    }
    if (request.m_feedback != NO_OUTPUT) {
        parts->push_back({"the feedback from " +
                              name_of_output(request, static_cast<std::size_t>(request.m_feedback)),
                          [](CASE* trial) { trial->m_request.m_feedback = NO_OUTPUT; }});
    }
}

// In the order in which they are dropped: what seldom matters first, the clocks last.
std::vector<PART> list_parts(const REQUEST& request, const LIMITS& limits)
{
    std::vector<PART> parts;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        list_shapes(request, i, &parts);
    }
    list_loop(request, &parts);
    list_limits(limits, &parts);
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        parts.push_back(
            {name_of_output(request, i) + " at " + write_frequency(wish.m_frequency, wish.m_unit),
             [i](CASE* trial) { trial->m_dropped_outputs[i] = true; }});
    }
    return parts;
}

}  // namespace

std::vector<std::string> find_conflict(const REQUEST& request, const LIMITS& limits)
{
    CASE left{request, std::vector<bool>(request.m_outputs.size(), false), {}};
    if (is_possible(left, limits)) {
        return {};
    }
    std::vector<std::string> conflict;
    for (const PART& part : list_parts(request, limits)) {
        CASE trial = left;
        part.m_drop(&trial);
        if (is_possible(trial, limits)) {
            conflict.push_back(part.m_text);
        } else {
            left = trial;
        }
    }
    return conflict;
}

std::string describe_conflict(const std::vector<std::string>& conflict)
{
    if (conflict.empty()) {
        return "";
    }
    if (conflict.size() == 1) {
        return conflict.front() +
               " cannot be kept, nor with all else dropped and limits several times wider";
    }
    std::string text;
    for (std::size_t i = conflict.size(); i > 0; --i) {
        const bool is_last = i == 1;
        const bool is_first = i == conflict.size();
        text += (is_first ? "" : is_last ? " and " : ", ") + conflict[i - 1];
    }
    return text + " exclude one another; without any one of them the others can be kept";
}

}  // namespace advice
