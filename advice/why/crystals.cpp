#include "advice/why/crystals.h"

#include "advice/why/change_request.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace advice {

namespace {

typedef std::vector<std::vector<std::size_t>> GROUPS;
typedef unsigned MASK;  // a bit for each output

// In kHz, but for the last two, which are fractions of it.
constexpr int STANDARD_KHZ[] = {
    1000,  1843,   2000,   3072,   3579,   3686,   4000,   4096,   4194,   4915,  5000,
    6000,  7372,   8000,   9216,   10000,  11059,  11289,  12000,  12288,  13000, 13500,
    13560, 14318,  14745,  15360,  16000,  16384,  16777,  18000,  18432,  19200, 19440,
    19660, 20000,  22118,  22579,  24000,  24576,  25000,  26000,  27000,  28636, 29491,
    30000, 32000,  32768,  33333,  33868,  36000,  36864,  38400,  40000,  44545, 48000,
    49152, 50000,  54000,  60000,  61440,  64000,  65536,  66666,  74250,  75000, 77760,
    80000, 100000, 106250, 122880, 125000, 148500, 150000, 155520, 156250, 200000};

// Crystals whose last digits the list above cuts off, in Hz.
struct EXACT_CRYSTAL
{
    int m_khz;
    int m_hertz;
};

constexpr EXACT_CRYSTAL EXACT_CRYSTALS[] = {
    {1843, 1843200},   {3579, 3579545},   {3686, 3686400},   {4194, 4194304},   {4915, 4915200},
    {7372, 7372800},   {11059, 11059200}, {11289, 11289600}, {14318, 14318180}, {14745, 14745600},
    {16777, 16777216}, {19660, 19660800}, {22118, 22118400}, {22579, 22579200}, {28636, 28636360},
    {29491, 29491200}, {33333, 33333333}, {33868, 33868800}, {44545, 44545454}, {66666, 66666666},
};

RATIONAL exact_crystal(int khz)
{
    constexpr int HZ_PER_KHZ = 1000;
    for (const EXACT_CRYSTAL& exact : EXACT_CRYSTALS) {
        if (exact.m_khz == khz) {
            return {exact.m_hertz};
        }
    }
    return {WIDE_INT{khz} * HZ_PER_KHZ};
}

class SPLITTER
{
public:
    SPLITTER(const REQUEST& request, const LIMITS& limits) : m_request(request), m_limits(limits) {}

    // Groups of all outputs of `left`; false when `plls` PLLs cannot make them.
    bool split(MASK left, int plls, GROUPS* groups)
    {
        if (left == 0) {
            return true;
        }
        if (plls == 0) {
            return false;
        }
        const MASK lowest = left & (~left + 1);
        // Large groups first: as few PLLs as can be.
        for (MASK group = left; group != 0; group = (group - 1) & left) {
            if ((group & lowest) == 0 || (plls == 1 && group != left) || !is_possible(group)) {
                continue;
            }
            groups->push_back(outputs_of(group));
            if (split(left & ~group, plls - 1, groups)) {
                return true;
            }
            groups->pop_back();
        }
        return false;
    }

private:
    std::vector<std::size_t> outputs_of(MASK group) const
    {
        std::vector<std::size_t> outputs;
        for (std::size_t i = 0; i < m_request.m_outputs.size(); ++i) {
            if ((group >> i & 1U) != 0) {
                outputs.push_back(i);
            }
        }
        return outputs;
    }

    // An output whose phase counts from another one must have it in its group.
    bool keeps_relations(MASK group) const
    {
        for (const std::size_t output : outputs_of(group)) {
            const int to = m_request.m_outputs[output].m_phase_to;
            if (to != NO_OUTPUT && (group >> static_cast<unsigned>(to) & 1U) == 0) {
                return false;
            }
        }
        return true;
    }

    bool is_possible(MASK group)
    {
        const auto known = m_possible.find(group);
        if (known != m_possible.end()) {
            return known->second;
        }
        const bool is_met =
            keeps_relations(group) &&
            ANSWER(with_outputs(m_request, outputs_of(group)), m_limits, EFFORT::FIRST_ANSWER_ONLY)
                .is_met();
        m_possible[group] = is_met;
        return is_met;
    }

    const REQUEST& m_request;
    const LIMITS& m_limits;
    std::map<MASK, bool> m_possible;
};

void add_figures(const REQUEST& request, const LIMITS& limits, CRYSTAL* crystal)
{
    for (const std::vector<std::size_t>& group : crystal->m_groups) {
        const ANSWER answer(with_outputs(request, group), limits, EFFORT::FIRST_ANSWER_ONLY);
        crystal->m_cost += answer.get_pll().m_cost;
        for (const OUTPUT_RESULT& output : answer.get_outputs()) {
            crystal->m_worst_error =
                std::max(crystal->m_worst_error, std::fabs(output.m_error.to_double()));
        }
    }
}

// The outputs are all that a missed request says of itself.
void add_miss(const REQUEST& request, const LIMITS& limits, CRYSTAL* crystal)
{
    const ANSWER answer(request, limits, EFFORT::FIRST_ANSWER_ONLY);
    crystal->m_worst_error = answer.has_setting() ? 0.0 : HUGE_VAL;
    for (std::size_t i = 0; answer.has_setting() && i < answer.get_outputs().size(); ++i) {
        crystal->m_worst_error = std::max(crystal->m_worst_error,
                                          std::fabs(answer.get_outputs()[i].m_error.to_double()));
    }
}

}  // namespace

std::vector<RATIONAL> standard_crystals()
{
    std::vector<RATIONAL> crystals;
    for (const int khz : STANDARD_KHZ) {
        crystals.push_back(exact_crystal(khz));
    }
    return crystals;
}

GROUPS find_groups(const REQUEST& request, const LIMITS& limits, int plls)
{
    const MASK all = (MASK{1} << request.m_outputs.size()) - 1;
    for (int count = 1; count <= plls; ++count) {
        GROUPS groups;
        if (SPLITTER(request, limits).split(all, count, &groups)) {
            return groups;
        }
    }
    return {};
}

std::vector<CRYSTAL> rank_crystals(const REQUEST& request, const LIMITS& limits,
                                   const std::vector<RATIONAL>& frequencies, int plls)
{
    std::vector<CRYSTAL> crystals;
    for (const RATIONAL& frequency : frequencies) {
        const REQUEST changed = with_input(request, frequency);
        if (find_problem(changed, PLL_MAX_TAPS)) {
            continue;
        }
        CRYSTAL crystal;
        crystal.m_frequency = frequency;
        crystal.m_groups = find_groups(changed, limits, plls);
        crystal.m_met = !crystal.m_groups.empty();
        if (crystal.m_met) {
            add_figures(changed, limits, &crystal);
        } else {
            add_miss(changed, limits, &crystal);
        }
        crystals.push_back(std::move(crystal));
    }
    const auto key = [](const CRYSTAL& c) {
        return std::make_tuple(!c.m_met, c.m_groups.size(), c.m_worst_error, c.m_cost);
    };
    std::stable_sort(crystals.begin(), crystals.end(),
                     [&](const CRYSTAL& a, const CRYSTAL& b) { return key(a) < key(b); });
    return crystals;
}

}  // namespace advice
