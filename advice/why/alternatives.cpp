#include "advice/why/alternatives.h"

#include "advice/answer/further_search.h"
#include "advice/numbers/text.h"
#include "advice/verdict/achieved.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace advice {

namespace {

constexpr std::size_t MOST_RATIOS = 512;  // that the library is asked for
constexpr int DECIMALS = 6;

struct CRITERION_NAME
{
    const char* m_name;
    const char* m_text;  // of a reason
};

// In the order of CRITERION.
constexpr CRITERION_NAME NAMES[] = {
    {"library", "cost"},
    {"worst-error", "worst error"},
    {"vco-highest", "VCO"},
    {"vco-lowest", "VCO"},
    {"pfd-highest", "PFD"},
    {"fewest-counters", "output counters"},
    {"phase-step", "coarsest phase step"},
    {"bandwidth", "distance from the bandwidth"},
    {"phase-margin", "phase margin"},
};
static_assert(std::size(NAMES) == static_cast<std::size_t>(CRITERION::COUNT));

double worst_error(const ANSWER& answer)
{
    double worst = 0.0;
    for (const OUTPUT_RESULT& output : answer.get_outputs()) {
        worst = std::max(worst, std::fabs(output.m_error.to_double()));
    }
    return worst;
}

double coarsest_step(const ANSWER& answer)
{
    double coarsest = 0.0;
    for (const OUTPUT_RESULT& output : answer.get_outputs()) {
        coarsest = output.m_phase.m_step > coarsest ? output.m_phase.m_step : coarsest;
    }
    return coarsest;
}

double vco_of(const REQUEST& request, const ANSWER& answer)
{
    return request.m_input.m_frequency.to_double() * answer.get_achieved().m_vco_mult /
           answer.get_achieved().m_vco_div;
}

// A figure that is no number comes last.
double last_if_none(double rank)
{
    return std::isnan(rank) ? HUGE_VAL : rank;
}

double rank_of(const REQUEST& request, const ANSWER& answer, double extra_cost, CRITERION criterion)
{
    switch (criterion) {
    case CRITERION::LIBRARY:
        return answer.get_pll().m_cost + extra_cost;
    case CRITERION::WORST_ERROR:
        return worst_error(answer);
    case CRITERION::VCO_HIGHEST:
        return -vco_of(request, answer);
    case CRITERION::VCO_LOWEST:
        return vco_of(request, answer);
    case CRITERION::PFD_HIGHEST:
        return -request.m_input.m_frequency.to_double() / answer.get_pll().get_n();
    case CRITERION::FEWEST_COUNTERS:
        return answer.get_pll().m_total_taps_count;
    case CRITERION::PHASE_STEP:
        return coarsest_step(answer);
    case CRITERION::BANDWIDTH:
        return std::fabs(answer.get_achieved().m_bandwidth - request.m_bandwidth.to_double());
    case CRITERION::PHASE_MARGIN:
        return last_if_none(-find_phase_margin(answer.get_achieved()));
    case CRITERION::COUNT:
        break;
    }
    return 0.0;
}

bool is_same_ratio(const ANSWER& answer, const VCO_CANDIDATE& candidate)
{
    return RATIONAL(answer.get_achieved().m_vco_mult, answer.get_achieved().m_vco_div) ==
           RATIONAL(candidate.m_mult, candidate.m_div);
}

void add_others(const REQUEST& request, const LIMITS& limits, CRITERION criterion,
                const ANSWER& first, std::vector<ALTERNATIVE>* alternatives)
{
    PLL pll(static_cast<int>(request.m_outputs.size()), PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    for (const VCO_CANDIDATE& candidate : list_candidates(request, limits, pll, MOST_RATIOS)) {
        if (is_same_ratio(first, candidate)) {
            continue;
        }
        ALTERNATIVE other;
        other.m_request = request;
        other.m_request.m_vco_ratio = RATIONAL(candidate.m_mult, candidate.m_div);
        other.m_answer =
            std::make_unique<ANSWER>(other.m_request, limits, EFFORT::FIRST_ANSWER_ONLY);
        if (other.m_answer->is_met()) {
            other.m_rank = rank_of(request, *other.m_answer, candidate.m_least_cost, criterion);
            alternatives->push_back(std::move(other));
        }
    }
}

std::string explain_rank(const ALTERNATIVE& first, const ALTERNATIVE& other, CRITERION criterion)
{
    const std::string name = NAMES[static_cast<std::size_t>(criterion)].m_text;
    if (first.m_rank == other.m_rank) {
        return "same " + name + " as the first, which the search comes to before";
    }
    const auto write = [](double rank) { return write_number(std::fabs(rank), DECIMALS); };
    return name + " " + write(other.m_rank) + ", the first has " + write(first.m_rank);
}

}  // namespace

const char* name_of(CRITERION criterion)
{
    return NAMES[static_cast<std::size_t>(criterion) % std::size(NAMES)].m_name;
}

std::vector<ALTERNATIVE> find_alternatives(const REQUEST& request, const LIMITS& limits,
                                           CRITERION criterion, std::size_t most)
{
    std::vector<ALTERNATIVE> alternatives;
    ALTERNATIVE first;
    first.m_request = request;
    first.m_answer = std::make_unique<ANSWER>(request, limits, EFFORT::THOROUGH);
    if (!first.m_answer->is_met() || most == 0) {
        return alternatives;
    }
    first.m_rank = rank_of(request, *first.m_answer, 0.0, criterion);
    const ANSWER& answer = *first.m_answer;
    alternatives.push_back(std::move(first));
    add_others(request, limits, criterion, answer, &alternatives);
    // What the library takes is its first whatever the figures say.
    const auto from = alternatives.begin() + (criterion == CRITERION::LIBRARY ? 1 : 0);
    std::stable_sort(from, alternatives.end(), [](const ALTERNATIVE& a, const ALTERNATIVE& b) {
        return a.m_rank < b.m_rank;
    });
    if (alternatives.size() > most) {
        alternatives.erase(alternatives.begin() + static_cast<std::ptrdiff_t>(most),
                           alternatives.end());
    }
    for (std::size_t i = 1; i < alternatives.size(); ++i) {
        alternatives[i].m_reason = explain_rank(alternatives[0], alternatives[i], criterion);
    }
    return alternatives;
}

}  // namespace advice
