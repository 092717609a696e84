// What can be had instead: requests near one that is not met, each of which is met.
//
//   for (const OFFER& offer : find_offers(request, limits, answer, most)) ...
//
// An offer changes one wish, or takes all that the nearest setting achieves. Every one was asked of
// the library and judged within the same limits before it is returned.
#pragma once

#include "advice/answer/answer.h"

#include <string>
#include <vector>

namespace advice {

struct OFFER
{
    REQUEST m_request;      // with the limits by hand of the request it comes from
    std::string m_text;     // "output 1 at 40.5 MHz in the place of 40 MHz (+1.25 %)"
    double m_change = 0.0;  // how much is given up: 0 nothing, 1 a wish that is dropped
};

// Offers by ascending change, at most `most`, for an answer that is not met. Empty when the answer
// is met. The work is bounded whatever the request.
std::vector<OFFER> find_offers(const REQUEST& request, const LIMITS& limits, const ANSWER& answer,
                               std::size_t most);

}  // namespace advice
