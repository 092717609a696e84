// The further search against every VCO ratio that there is: what it calls not met, no ratio of the
// library's own list meets; what it calls met, a verifier of its own finds so.

#include "builders.h"

#include "advice/answer/further_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace advice {
namespace {

constexpr unsigned SEED = 20251122;
constexpr int REQUESTS = 400;
constexpr int PHASES[] = {0, 0, 30, 45, 90, 120, 180};

// Frequencies of one decimal, phases that some VCO may have, narrow limits so that lists are short.
class RANDOM_REQUESTS
{
public:
    REQUEST make()
    {
        static constexpr const char* INPUTS[] = {"27", "25", "33.333", "54", "48"};
        static constexpr int PPM[] = {0, 5, 100, 1000, 20000};
        REQUEST request;
        request.m_input = make_input(mhz(INPUTS[draw(std::size(INPUTS))]));
        const std::size_t outputs = 1 + draw(3);
        for (std::size_t i = 0; i < outputs; ++i) {
            OUTPUT_WISH wish;
            wish.m_frequency = RATIONAL(static_cast<int>(10 + draw(2000)) * 100000);
            wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
            wish.m_phase = RATIONAL(PHASES[draw(std::size(PHASES))]);
            request.m_outputs.push_back(wish);
        }
        request.m_tolerances.m_frequency = RATIONAL(PPM[draw(std::size(PPM))], MEGA);
        request.m_tolerances.m_phase = RATIONAL(static_cast<int>(1 + draw(5)));
        request.m_by_hand.m_m = {std::nullopt, RATIONAL(64)};
        request.m_by_hand.m_n = {std::nullopt, RATIONAL(8)};
        return request;
    }

    std::size_t draw(std::size_t below) { return m_engine() % below; }

private:
    std::mt19937 m_engine{SEED};
};

// Whether counts put every output of a VCO ratio within its tolerance, from the definition alone.
bool keeps_frequencies(const REQUEST& request, const RATIONAL& vco_ratio, VCO_CANDIDATE* candidate)
{
    candidate->m_counts.clear();
    for (const OUTPUT_WISH& wish : request.m_outputs) {
        const RATIONAL division = (vco_ratio / wish.m_ratio).rounded();
        const int count = division.is_positive() ? static_cast<int>(division.numerator()) : 1;
        const RATIONAL miss =
            (vco_ratio / RATIONAL(count) / wish.m_ratio - RATIONAL(1)).magnitude();
        if (!(miss <= request.m_tolerances.m_frequency)) {
            return false;
        }
        candidate->m_counts.push_back(count);
    }
    return true;
}

// The first ratio of the library's list whose setting is judged to be met; empty: none.
std::string find_met_ratio(const REQUEST& request, const LIMITS& limits)
{
    const int outputs = static_cast<int>(request.m_outputs.size());
    PLL lister(outputs, PLL_MAX_TAPS);
    limits.give_to(&lister, request);
    int* mults = nullptr;
    int* divs = nullptr;
    const int count =
        lister.find_vco_mult_div_values(&mults, &divs, request.m_input.m_library_period);
    std::vector<RATIONAL> ratios;
    for (int i = 0; i < count; ++i) {
        ratios.emplace_back(mults[i], divs[i]);
    }
    for (const RATIONAL& ratio : ratios) {
        VCO_CANDIDATE candidate{static_cast<int>(ratio.numerator()),
                                static_cast<int>(ratio.denominator()),
                                0,
                                {},
                                0.0,
                                0.0};
        if (!keeps_frequencies(request, ratio, &candidate)) {
            continue;
        }
        PLL pll(outputs, PLL_MAX_TAPS);
        limits.give_to(&pll, request);
        if (!pll.synthesize(to_prop(request, candidate))) {
            continue;
        }
        PLL_PROP achieved(outputs);
        achieved.m_fin_period = request.m_input.m_library_period;
        achieved.set_properties_from_internals(pll);
        VERDICT verdict;
        judge(request, limits, pll, achieved, &verdict);
        if (verdict.m_met) {
            return ratio.to_fraction();
        }
    }
    return "";
}

// What the counters of an answer make, in doubles: written from the definition of a PLL.
void expect_kept(const REQUEST& request, const ANSWER& answer)
{
    const PLL& pll = answer.get_pll();
    const double input = request.m_input.m_frequency.to_double();
    const double vco = input * pll.get_m() / pll.get_n();
    EXPECT_GE(vco, 299.9e6);
    EXPECT_LE(vco, 1001.1e6);
    EXPECT_LE(pll.get_m(), 64);
    EXPECT_LE(pll.get_n(), 8);
    const double reference = 360.0 * (pll.m_m.m_initial - 1) + 45.0 * pll.m_m.m_vco_tap;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const PLL_OUTPUT_TAP& tap = pll.m_taps[i];
        const int count = tap.m_bypass ? 1 : tap.m_high + tap.m_low;
        const double error = vco / count / wish.m_frequency.to_double() - 1.0;
        EXPECT_LE(std::fabs(error), request.m_tolerances.m_frequency.to_double() + 1e-12);
        const double phase =
            (360.0 * (tap.m_initial - 1) + 45.0 * tap.m_vco_tap - reference) / count;
        const double miss = std::remainder(phase - wish.m_phase.to_double(), 360.0);
        EXPECT_LE(std::fabs(miss), request.m_tolerances.m_phase.to_double() + 1e-9);
    }
}

TEST(FurtherSearch, FindsASettingWhereverAVcoRatioHasOne)
{
    RANDOM_REQUESTS requests;
    int further = 0;
    int not_met = 0;
    for (int i = 0; i < REQUESTS; ++i) {
        SCOPED_TRACE("request " + std::to_string(i) + ", seed " + std::to_string(SEED));
        const REQUEST request = requests.make();
        LIMITS limits;
        limits.take(request.m_by_hand);
        const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
        if (answer.is_met()) {
            expect_kept(request, answer);
            further += answer.get_origin() == ORIGIN::FURTHER_SEARCH ? 1 : 0;
        } else {
            EXPECT_EQ("", find_met_ratio(request, limits));
            ++not_met;
        }
    }
    EXPECT_LT(REQUESTS / 20, further);
    EXPECT_LT(REQUESTS / 20, not_met);
}

TEST(FurtherSearch, IsBoundedWhateverTheCountersAre)
{
    REQUEST request = request_of("100", {"33.3333", "33.3334"});
    request.m_tolerances.m_frequency = RATIONAL(1, 10);
    request.m_by_hand.m_m = {std::nullopt, RATIONAL(1000000)};
    request.m_by_hand.m_n = {std::nullopt, RATIONAL(1000000)};
    request.m_by_hand.m_k = {std::nullopt, RATIONAL(1000000)};
    request.m_by_hand.m_pfd = {RATIONAL(1), std::nullopt};
    LIMITS limits;
    limits.take(request.m_by_hand);
    PLL pll(2, PLL_MAX_TAPS);
    limits.give_to(&pll, request);
    constexpr std::size_t MOST = 100;
    EXPECT_GE(MOST, list_candidates(request, limits, pll, MOST).size());
}

}  // namespace
}  // namespace advice
