// Offers while they are sought: each is asked of the library before it is kept.
#pragma once

#include "advice/why/offers.h"

namespace advice {

class OFFERS_FOUND
{
public:
    OFFERS_FOUND(const REQUEST& request, const LIMITS& limits, const ANSWER& answer)
        : m_request(request), m_limits(limits), m_answer(answer)
    {
    }

    const REQUEST& get_request() const { return m_request; }
    const LIMITS& get_limits() const { return m_limits; }
    const ANSWER& get_answer() const { return m_answer; }

    // Whether a request is one and is met.
    bool is_met(const REQUEST& request);

    // Keeps an offer when it is met.
    bool add(REQUEST request, const std::string& text, double change);

    // The offers kept, by ascending change; requests that are the same once.
    std::vector<OFFER> take(std::size_t most);

private:
    const REQUEST& m_request;
    const LIMITS& m_limits;
    const ANSWER& m_answer;
    std::vector<OFFER> m_offers;
    int m_tries = 0;
};

// The kinds of offers, in the order in which they are sought.
void offer_frequencies(OFFERS_FOUND* found);  // of one output, below and above
void offer_inputs(OFFERS_FOUND* found);       // another input clock, below and above
void offer_achieved(OFFERS_FOUND* found);     // what the nearest setting achieves
void offer_shapes(OFFERS_FOUND* found);       // phase, duty cycle and delay of one output
void offer_loops(OFFERS_FOUND* found);  // bandwidth, spread, second input, VCO ratio, feedback

}  // namespace advice
