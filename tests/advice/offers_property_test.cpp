// Over random requests: every offer is met when it is asked for, and every alternative is clean
// when it is verified.
#include "builders.h"

#include "advice/verify/verify.h"
#include "advice/why/alternatives.h"
#include "advice/why/offers.h"

#include <gtest/gtest.h>

#include <random>

namespace advice {
namespace {

constexpr int REQUESTS = 20000;
constexpr std::size_t MOST = 6;
constexpr unsigned SEED = 2026;

// The same numbers from every standard library: no distribution of its own.
int pick(std::mt19937* random, int least, int most)
{
    return least + static_cast<int>((*random)() % static_cast<unsigned>(most - least + 1));
}

bool happens(std::mt19937* random, int one_in)
{
    return pick(random, 1, one_in) == 1;
}

RATIONAL pick_frequency(std::mt19937* random, const REQUEST& request)
{
    if (happens(random, 2)) {
        return request.m_input.m_frequency * RATIONAL(pick(random, 1, 40), pick(random, 1, 20));
    }
    return RATIONAL(pick(random, 10, 600000)) * RATIONAL(1000);
}

REQUEST random_request(std::mt19937* random)
{
    REQUEST request;
    request.m_input = make_input(RATIONAL(pick(random, 5, 250)) * RATIONAL(MEGA));
    const int outputs = pick(random, 1, 4);
    for (int i = 0; i < outputs; ++i) {
        OUTPUT_WISH wish;
        wish.m_frequency = pick_frequency(random, request);
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
        wish.m_delay = happens(random, 8) ? pick(random, -2500, 2500) : 0;
        request.m_outputs.push_back(wish);
    }
    if (happens(random, 6)) {
        request.m_spread = RATIONAL(pick(random, 1, 9), 1000);
    }
    return request;
}

TEST(RandomOffers, AreMetWhenTheyAreAskedFor)
{
    std::mt19937 random(SEED);
    const LIMITS limits;
    int offers = 0;
    for (int i = 0; i < REQUESTS; ++i) {
        SCOPED_TRACE(i);
        const REQUEST request = random_request(&random);
        const ANSWER answer = solve(request, limits, EFFORT::THOROUGH);
        for (const OFFER& offer : find_offers(request, limits, answer, MOST)) {
            EXPECT_TRUE(solve(offer.m_request, limits, EFFORT::THOROUGH).is_met()) << offer.m_text;
            ++offers;
        }
    }
    RecordProperty("offers", offers);
    EXPECT_LT(REQUESTS / 2, offers);
}

TEST(RandomAlternatives, AreCleanWhenTheyAreVerified)
{
    std::mt19937 random(SEED);
    const LIMITS limits;
    int alternatives = 0;
    for (int i = 0; i < REQUESTS; ++i) {
        SCOPED_TRACE(i);
        const REQUEST request = random_request(&random);
        for (const ALTERNATIVE& alternative :
             find_alternatives(request, limits, CRITERION::LIBRARY, MOST)) {
            const VERIFICATION verification(alternative.m_request, limits,
                                            setting_of(alternative.m_answer->get_pll()));
            EXPECT_TRUE(verification.is_clean())
                << (verification.get_rules().empty()
                        ? misses_of(alternative.m_request, verification.get_verdict())
                        : verification.get_rules().front().m_text);
            ++alternatives;
        }
    }
    RecordProperty("alternatives", alternatives);
    EXPECT_LT(REQUESTS / 10, alternatives);
}

}  // namespace
}  // namespace advice
